' Fills in the filter of the detail ledger through its dialog, runs the ledger of one item and opens documents behind its
' rows, as a Basic platform does: Cancel and ReturnViewClass by reference, and read back. Prints one line a finding;
' run_script.sh holds the lines against fx_detail.vbs.expected.
'
'   cscript //nologo fx_detail.vbs ACCOUNT
Option Explicit

Const warning = 48

Dim wb

Sub Say(subject, value)
  WScript.Echo subject & ": " & value
End Sub

' "yes" or "no", in any language of the machine.
Function YesNo(holds)
  If holds Then YesNo = "yes" Else YesNo = "no"
End Function

' The first field of the first row.
Function Look(sql)
  Look = wb.Query(sql).Fields(0).Value
End Function

Function RowsOf(e, condition)
  RowsOf = Look("Select Count(*) From " & e.DataSource.SQL & " Where " & condition)
End Function

Sub DropResult(e)
  wb.Query "Drop Table " & e.DataSource.SQL
End Sub

' The user enters a value, and the dialog calls the class.
Sub Change(control, filter, key, value)
  filter.FilterList(key).varValue = value
  control.CallBack_ValueChange key, filter
End Sub

' An inventory that the current year has posted issues of, without batch and free items, and its warehouse.
Sub ChooseItem(filter, year)
  Dim rows
  Set rows = wb.Query("Select Top 1 base.cInvCode, base.cWhCode From ia_subsidiary base " & _
                      "Inner Join Inventory inv On inv.cInvCode = base.cInvCode " & _
                      "Where base.iYear = " & year & " And base.iMonth > 0 And base.cVouType = N'32' " & _
                      "And base.cPZID Is Not Null And IsNull(inv.bCheckBatch, 0) = 0 " & _
                      "And IsNull(inv.bCheckFree1, 0) = 0 And IsNull(inv.bCheckFree2, 0) = 0 " & _
                      "Order By base.cInvCode, base.cWhCode")
  filter.FilterList("cInvCode").varValue = rows("cInvCode").Value
  filter.FilterList("cWhCode").varValue = rows("cWhCode").Value
End Sub

Sub ShowDialog(e)
  Dim control, filter, breakdowns, view, cancel, before, item, batchItem
  Set filter = e.rawFilter
  Set control = CreateObject("Quillon.clsFilterControl")
  Say "FilterInit gives Empty", YesNo(IsEmpty(control.CallBack_FilterInit(filter)))
  Say "AuthString", e.Login.AuthString
  Say "the year is the login's", YesNo(filter.FilterList("iYear").varValue = e.Login.cIYear)
  breakdowns = Split(filter.FilterList("cCaType").Choices, "{##}")
  breakdowns = Split(breakdowns(0), "{#}")
  Say "breakdown by class at first", YesNo(filter.FilterList("cCaType").varValue = breakdowns(0))
  Say "warehouse", YesNo(filter.FilterList("cWhCode").Available)
  Say "department", YesNo(filter.FilterList("cDepCode").Available)

  control.CallBack_ReportViewInit filter, view
  Say "view", view & " in a variable of type " & VarType(view)
  Change control, filter, "cCaType", breakdowns(1)
  view = 7
  control.CallBack_ReportViewChange "cCaType", filter, view
  Say "view by cost item", view
  Change control, filter, "cInvCCode", "0'1"
  Say "inventories", filter.FilterList("cInvCode").LookupCondition
  Change control, filter, "cInvCCode", ""
  Change control, filter, "iYear", e.Login.cIYear
  Say "warehouse after a change of the year", YesNo(filter.FilterList("cWhCode").Available)
  Say "department after it", YesNo(filter.FilterList("cDepCode").Available)

  ' Refused as long as the warehouse lacks; a variable that holds no Boolean takes the refusal as well.
  ChooseItem filter, e.Login.iYear
  item = filter.FilterList("cWhCode").varValue
  filter.FilterList("cWhCode").varValue = ""
  cancel = 7
  control.CallBack_FilterClick filter, cancel
  Say "Cancel that held 7 equals True", YesNo(cancel = True)
  cancel = Empty
  before = wb.Messages.Count
  control.CallBack_FilterClick filter, cancel
  Say "Cancel without a warehouse", YesNo(cancel) & " in a variable of type " & VarType(cancel)
  Say "messages", wb.Messages.Count - before
  Say "its flags", wb.Messages(wb.Messages.Count).Flags
  filter.FilterList("cWhCode").varValue = item
  cancel = False
  control.CallBack_FilterClick filter, cancel
  Say "Cancel with a warehouse", YesNo(cancel)

  ' Of a batch-managed inventory the batch must be given.
  item = filter.FilterList("cInvCode").varValue
  batchItem = Look("Select Top 1 cInvCode From Inventory Where bCheckBatch = 1 And IsNull(bCheckFree1, 0) = 0 " & _
                   "And IsNull(bCheckFree2, 0) = 0 Order By cInvCode")
  filter.FilterList("cInvCode").varValue = batchItem
  control.CallBack_FilterClick filter, cancel
  Say "Cancel without a batch", YesNo(cancel)
  filter.FilterList("cInvCode").varValue = item
  cancel = False
  control.CallBack_FilterClick filter, cancel
  Say "messages in all", wb.Messages.Count - before
End Sub

' The ledger of the item in the filter, against the ledger tables.
Sub RunLedger(e)
  Dim year, inv, wh, movements
  CreateObject("Quillon.clsFXDetail").GETSQL e
  year = e.Login.iYear
  inv = e.rawFilter.FilterList("cInvCode").varValue
  wh = e.rawFilter.FilterList("cWhCode").varValue
  Say "DataSource.Type", e.DataSource.Type
  Say "rows of the opening balance", YesNo(RowsOf(e, "datatype = 0") > 0)
  Say "rows of movements", YesNo(RowsOf(e, "datatype = 1") > 0)
  Say "rows of month balances", YesNo(RowsOf(e, "datatype = 2") > 0)
  movements = " From ia_subsidiary Where iYear = " & year & " And iMonth > 0 And cInvCode = N'" & inv & _
              "' And cWhCode = N'" & wh & "' And cVouType <> N'33'"
  Say "every ledger line has one number", _
      YesNo(Look("Select Count(Distinct RowNo) From " & e.DataSource.SQL & " Where datatype = 1") = _
            Look("Select Count(*)" & movements))
  Say "one item only", YesNo(RowsOf(e, "cInvCode <> N'" & inv & "'") = 0)
  Say "work tables left", Look("Select Count(*) From tempdb..sysobjects Where name Like '#%FXDetail%'")
End Sub

' The argument of an Execute for a row of the ledger.
Sub Choose(e, action, sql)
  e.Action = action
  e.RelateData.TakeRow wb.Query(sql)
End Sub

Sub OpenDocuments(e)
  Dim report, posted, rows, opened, year
  Set report = CreateObject("Quillon.clsFXDetail")
  posted = "Select Top 1 * From " & e.DataSource.SQL & " Where datatype = 1 And cPZID Is Not Null Order By RowNo"
  Set rows = wb.Query(posted)

  Choose e, "Vouch", posted
  report.Execute e
  Say "documents opened", wb.Vouchers.Count
  Set opened = wb.Vouchers(1)
  Say "through", opened.Member
  Say "its number is the row's", YesNo(opened.Heading("cVouCode") = rows("cVouCode").Value)
  Say "its name is the row's", YesNo(opened.Heading("cVouName") = rows("cVouType").Value)
  Say "its item is the row's", YesNo(opened.Line(1, "cInvCode") = rows("cInvCode").Value)
  Say "it is shown with its number", YesNo(InStr(opened.Text, rows("cVouCode").Value) > 0)

  Choose e, "Link", posted
  report.Execute e
  Say "documents opened then", wb.Vouchers.Count
  Set opened = wb.Vouchers(2)
  Say "through", opened.Member
  Say "class and number are the row's", _
      YesNo(opened.Heading("cSign") & " " & opened.Heading("ino_id") = rows("cPZCode").Value)
  Say "menu", opened.Heading("menuCode")
  Say "it has entries", YesNo(opened.LineCount > 1)

  Choose e, "Vouch", "Select Top 1 * From " & e.DataSource.SQL & " Where datatype = 2"
  report.Execute e
  Say "a balance opens nothing", YesNo(wb.Vouchers.Count = 2)

  ' A row whose line is not posted: nothing is opened, and the user gets a message.
  Choose e, "", "Select N'any' As cVouType, N'' As cPZID, 1 As ID"
  report.Execute e
  Say "a row that is not posted opens nothing", YesNo(wb.Vouchers.Count = 2)
  Say "and says so as a warning", YesNo(wb.Messages(wb.Messages.Count).Flags = warning)

  On Error Resume Next
  Choose e, "Vouch", "Select N'any' As cVouType, N'' As cPZID, N'7' As cVouCode, N'' As iPZID, -1 As ID, N'' As cBusType"
  report.Execute e
  Say "a line that the ledger does not have", Hex(Err.Number) & " from " & Err.Source
  Err.Clear
  On Error GoTo 0
End Sub

Sub ProvokeErrors()
  Dim view, cancel
  On Error Resume Next
  CreateObject("Quillon.clsFXDetail").GETSQL Nothing
  Say "no argument object", Hex(Err.Number) & " from " & Err.Source
  Err.Clear
  CreateObject("Quillon.clsFilterControl").CallBack_FilterClick Nothing, cancel
  Say "no dialog", Hex(Err.Number) & ", " & YesNo(IsEmpty(cancel))
  Err.Clear
  CreateObject("Quillon.clsFilterControl").CallBack_ReportViewInit wb.NewDialog("sfc-item").rawFilter, view
  Say "a filter without breakdown leaves the view", YesNo(IsEmpty(view))
  CreateObject("Quillon.clsFXDetail").Execute wb.NewArgument("fx-detail")
  Say "no row", YesNo(Err.Number <> 0)
  Err.Clear
End Sub

Sub RunOnce(filter)
  Dim e, key
  Set e = wb.NewArgument("fx-detail")
  For Each key In Array("iYear", "cInvCode", "cWhCode")
    e.rawFilter.FilterList(key).varValue = filter.FilterList(key).varValue
  Next
  CreateObject("Quillon.clsFXDetail").GETSQL e
  DropResult e
End Sub

Sub CountObjects(filter)
  Dim before, run
  RunOnce filter
  before = wb.LiveObjects
  For run = 1 To 3
    RunOnce filter
  Next
  Say "objects that three more runs leave", wb.LiveObjects - before
End Sub

Dim argument
Set wb = CreateObject("QuillonWorkbench.Platform")
wb.OpenAccount WScript.Arguments(0)
ProvokeErrors
Set argument = wb.NewDialog("fx-detail")
ShowDialog argument
RunLedger argument
OpenDocuments argument
DropResult argument
CountObjects argument.rawFilter
WScript.Quit 0
