' Runs the receipt/issue/balance report the way a Basic client does: late-bound, arguments by reference and by value,
' default members, Err. Prints one line a finding; run_script.sh holds the lines against sfc_item.vbs.expected.
'
'   cscript //nologo sfc_item.vbs ACCOUNT
Option Explicit

Dim wb, connection

Sub Say(subject, value)
  WScript.Echo subject & ": " & value
End Sub

' "yes" or "no", in any language of the machine.
Function YesNo(holds)
  If holds Then YesNo = "yes" Else YesNo = "no"
End Function

Function NewArgument(mode)
  Dim e
  Set e = wb.NewArgument("sfc-item")
  e.rawFilter.FilterList("iYear").varValue = CStr(e.Login.iYear)
  e.rawFilter.FilterList("cModal") = mode
  Set NewArgument = e
End Function

' The first field of the first row.
Function Look(sql)
  Dim rows
  Set rows = CreateObject("ADODB.Recordset")
  rows.Open sql, connection, 3, 1
  Look = rows.Fields(0).Value
  rows.Close
End Function

Function RowsOf(e)
  RowsOf = Look("Select Count(*) From " & e.DataSource.SQL)
End Function

Sub DropResult(e)
  connection.Execute "Drop Table " & e.DataSource.SQL
End Sub

Sub SayError(subject)
  Say subject, Hex(Err.Number) & " from " & Err.Source
  Err.Clear
End Sub

Sub CreateEveryClass()
  Dim name
  For Each name In Array("clsSFC_Item", "ClsBusiness", "clsFXDetail", "clsOutsum_Item", "clsFXWt", _
                         "clsWtFilterControl", "clsSFCFilterControl", "clsFilterControl")
    Say "created Quillon." & name, YesNo(IsObject(CreateObject("Quillon." & name)))
  Next
End Sub

Sub RunReport()
  Dim e, report, affected, received, inLedger
  Set e = NewArgument("1")
  Set report = CreateObject("Quillon.clsSFC_Item")
  Say "TempTablename before", "[" & report.TempTablename() & "]"
  report.tarn_tmpTable = "kept by the platform"
  report.GETSQL e
  Say "TempTablename after", "[" & report.TempTablename() & "]"
  Say "tarn_tmpTable", report.tarn_tmpTable
  Say "DataSource.Type", e.DataSource.Type
  Say "report has rows", YesNo(RowsOf(e) > 0)
  received = Look("Select Sum(iMoney) From " & e.DataSource.SQL & " Where iState = 2")
  inLedger = Look("Select Sum(IsNull(item.iItemInPrice, 0) + IsNull(item.iItemOutPrice, 0)) " & _
                  "From ia_subsidiary_Item item Inner Join ia_subsidiary base On item.iSubID = base.AutoID " & _
                  "Where base.bRdFlag = 1 And base.iMonth > 0 And base.iYear = " & e.Login.iYear & _
                  " And base.cWhCode Is Not Null")
  Say "receipts are the ledger's", YesNo(received > 0 And CStr(received) = CStr(inLedger))
  Say "the unknown cost item was removed", YesNo(Look("Select Count(*) From " & e.DataSource.SQL & _
                                                      " Where IsNull(cFXCode, N'') = N''") = 0)
  e.Action = "LINK"
  report.Execute e
  Say "Execute left the rows alone", YesNo(RowsOf(e) > 0)
  connection.Execute "Delete From " & e.DataSource.SQL, affected
  Say "records affected came back", YesNo(affected > 0)
  Say "report is empty now", YesNo(RowsOf(e) = 0)
  DropResult e
End Sub

' The same run, its argument passed by value, as an expression and as a member of an array.
Sub PassArguments()
  Dim e, report, list(1)
  Set report = CreateObject("Quillon.clsSFC_Item")
  Set e = NewArgument("0")
  report.GETSQL (e)
  Say "by value", YesNo(RowsOf(e) > 0)
  DropResult e
  Set list(1) = NewArgument("2")
  report.GETSQL list(1)
  Say "an array's element", YesNo(RowsOf(list(1)) > 0)
  DropResult list(1)
  Set e = NewArgument("1")
  Call report.GETSQL(e)
  Say "with Call", YesNo(RowsOf(e) > 0)
  DropResult e
End Sub

Sub ProvokeErrors()
  Dim e, report, business
  Set e = NewArgument("1")
  Set report = CreateObject("Quillon.clsSFC_Item")
  On Error Resume Next
  report.GETSQL Nothing
  SayError "no argument object"
  report.GETSQL "text"
  Say "a text as argument object", Err.Number
  Err.Clear
  report.GETSQL
  Say "no argument", Err.Number
  Err.Clear
  report.NoSuchMember
  Say "no such member", Err.Number
  Err.Clear
  CreateObject("ADODB.Connection").Open "Data Source=missing.account"
  Say "a missing account is named", YesNo(InStr(Err.Description, "missing.account") > 0)
  SayError "a missing account"

  connection.Execute "Select * From NoSuchTable"
  Say "ADO's error", Err.Description
  SayError "ADO's error"
  Say "ADO's native error", connection.Errors(0).NativeError
  On Error GoTo 0

  Set business = CreateObject("Quillon.ClsBusiness")
  Say "Init gives Empty", YesNo(IsEmpty(business.Init(e)))
  business.Init Nothing
End Sub

' Errors inside the build are absorbed; the workbench keeps them for whoever asks.
Sub StopTheBuild()
  Dim e, report
  Set report = CreateObject("Quillon.clsSFC_Item")
  Set e = NewArgument("1")
  e.rawFilter.FilterList("cFSType").varValue = "1"
  report.GETSQL e
  Say "dropping the group index fails", wb.FailureNumber
  Say "all rows are written before", YesNo(RowsOf(e) > 0)
  DropResult e
  Set e = NewArgument("1")
  e.rawFilter.FilterList("cJudgeMoney").varValue = "9"
  report.GETSQL e
  Say "a filter that cannot be translated makes no table", _
      YesNo(Look("Select Count(*) From Sysobjects Where name = '" & e.DataSource.SQL & "'") = 0)
End Sub

Sub RunOnce()
  Dim e
  Set e = NewArgument("1")
  CreateObject("Quillon.clsSFC_Item").GETSQL e
  DropResult e
End Sub

Sub CountObjects()
  Dim before, run
  RunOnce
  before = wb.LiveObjects
  For run = 1 To 5
    RunOnce
  Next
  Say "objects that five more runs leave", wb.LiveObjects - before
End Sub

CreateEveryClass
Set wb = CreateObject("QuillonWorkbench.Platform")
wb.OpenAccount WScript.Arguments(0)
Set connection = CreateObject("ADODB.Connection")
connection.Open NewArgument("1").Login.OrvDbName
RunReport
PassArguments
ProvokeErrors
StopTheBuild
CountObjects
WScript.Quit 0
