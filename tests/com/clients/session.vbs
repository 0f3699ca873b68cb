' A session with the voucher report as a Basic client has it: dialog, report, document behind a row, errors. The same
' session runs in JScript and in two C++ clients; each has to print session.expected.
'
'   cscript //nologo session.vbs ACCOUNT
Option Explicit

' The ledger lines of sales issues, settled by issue or by invoice.
Const chosenLines = " From ia_subsidiary base Where base.cVouType In (N'32', N'3201')"

Dim wb, quiet

Sub Say(subject, value)
  If Not quiet Then WScript.Echo subject & ": " & value
End Sub

Function YesNo(holds)
  If holds Then YesNo = "yes" Else YesNo = "no"
End Function

Function Look(sql)
  Look = wb.Query(sql).Fields(0).Value
End Function

Sub FillInFilter(e)
  Dim control, filter, cancel, halves
  Set filter = e.rawFilter
  Set control = CreateObject("Quillon.clsWtFilterControl")
  Say "FilterInit gives nothing", YesNo(IsEmpty(control.CallBack_FilterInit(filter)))
  halves = Split(filter.FilterList("cVouType").Choices, "{##}")
  Say "voucher types offered", UBound(Split(halves(0), "{#}")) + 1
  filter.FilterList("Inventory.cInvCCode").varValue = "01"
  control.CallBack_ValueChange "Inventory.cInvCCode", filter
  Say "inventories of class 01", "[" & filter.FilterList("Inventory.cInvCode").LookupCondition & "]"
  filter.FilterList("Inventory.cInvCCode").varValue = ""
  control.CallBack_ValueChange "Inventory.cInvCCode", filter
  Say "inventories of no class", "[" & filter.FilterList("Inventory.cInvCode").LookupCondition & "]"
  filter.FilterList("cVouType").varValue = "32"
  cancel = False
  Say "accepted", YesNo(control.CallBack_FilterClick(filter, cancel) = True And Not cancel)
End Sub

Sub RunReport(e)
  Dim report, table, opened
  Set report = CreateObject("Quillon.clsFXWt")
  report.tarn_tmpTable = "kept by the platform"
  report.GETSQL e
  table = e.DataSource.SQL
  Say "tarn_tmpTable", report.tarn_tmpTable
  Say "the filter is the dialog's", YesNo(report.objFilter Is e.rawFilter)
  Say "every ledger line is there", _
      YesNo(Look("Select Count(Distinct AutoID) From " & table) = Look("Select Count(*)" & chosenLines))
  Say "issues are the ledger's", _
      YesNo(Look("Select Sum(iItemOutPrice) From " & table) = Look( _
            "Select Sum(iItemOutPrice) From ia_subsidiary_Item Where iSubID In (Select base.AutoID" & chosenLines & ")"))
  e.Action = "Vouch"
  e.RelateData.TakeRow wb.Query("Select * From " & table & " Where cVouType = N'32'")
  report.Execute e
  Set opened = wb.Vouchers(wb.Vouchers.Count)
  Say "opened through", opened.Member
  Say "its type", opened.Heading("cVouType") & " " & opened.Heading("cVouName")
  wb.Query "Drop Table " & table
End Sub

Sub ProvokeErrors()
  Dim report
  Set report = CreateObject("Quillon.clsFXWt")
  On Error Resume Next
  Call report.MoveDataDetail()
  Say "no run before", Err.Description
  Err.Clear
  report.NoSuchMember
  If Err.Number <> 0 Then Say "no such member", "refused"
End Sub

Sub Session()
  Dim e
  Set e = wb.NewDialog("fx-wt")
  FillInFilter e
  RunReport e
  ProvokeErrors
End Sub

' Documents that were opened stay with the platform object.
Function Kept()
  Kept = wb.LiveObjects - wb.Vouchers.Count
End Function

Sub CountObjects()
  Dim before, run
  quiet = True
  before = Kept()
  For run = 1 To 3
    Session
  Next
  quiet = False
  Say "objects that three more sessions leave", Kept() - before
End Sub

Set wb = CreateObject("QuillonWorkbench.Platform")
wb.Language = "en"
wb.OpenAccount WScript.Arguments(0)
Session
CountObjects
WScript.Quit 0
