' Fills in the filter of the cost-item voucher report through its dialog, runs the report and opens documents behind its
' rows, as a Basic platform does: filter, key and Cancel by reference, and read back. Prints one line a finding;
' run_script.sh holds the lines against fx_wt.vbs.expected.
'
'   cscript //nologo fx_wt.vbs ACCOUNT
Option Explicit

Const warning = 48

' The ledger lines of the chosen types: estimated purchase receipts and sales issues.
Const chosenLines = " From ia_subsidiary base Where ((base.cVouType = N'01' And base.bFlag = 1) Or base.cVouType In (N'32', N'3201'))"

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

Function WorkTables()
  WorkTables = Look("Select Count(*) From sysobjects Where name Like '%FXWtTmp'")
End Function

Sub DropResult(e)
  wb.Query "Drop Table " & e.DataSource.SQL
End Sub

' The codes (half 0) or the names (half 1) of an item's choices.
Function Choices(item, half)
  Dim halves
  halves = Split(item.Choices, "{##}")
  Choices = Split(halves(half), "{#}")
End Function

Function Listed(texts)
  Dim text
  For Each text In texts
    If Listed <> "" Then Listed = Listed & ","
    Listed = Listed & text
  Next
End Function

' The user enters a value, and the dialog calls the class.
Sub Change(control, filter, key, value)
  filter.FilterList(key).varValue = value
  control.CallBack_ValueChange key, filter
End Sub

Sub ProvokeErrors()
  Dim report, control, cancel, view
  On Error Resume Next
  Set report = CreateObject("Quillon.clsFXWt")
  report.GETSQL Nothing
  Say "no argument object", Hex(Err.Number) & " from " & Err.Source
  Err.Clear
  Call report.MoveDataDetail()
  Say "no run before", Hex(Err.Number) & " " & Err.Description
  Err.Clear
  report.Execute wb.NewArgument("fx-wt")
  Say "no row", YesNo(Err.Number <> 0)
  Err.Clear
  Set control = CreateObject("Quillon.clsWtFilterControl")
  control.CallBack_FilterInit Nothing
  Say "no dialog", Hex(Err.Number)
  Err.Clear
  control.CallBack_ValueChange "Vendor.cVCCode", wb.NewArgument("fx-wt").rawFilter
  Say "a filter in no dialog", Err.Description
  Err.Clear
  control.CallBack_ReportViewInit wb.NewDialog("fx-wt").rawFilter, view
  Say "a view is not asked of it", Hex(Err.Number) & ", " & YesNo(IsEmpty(view))
  Err.Clear
End Sub

Sub KeepProperties()
  Dim report, control, filter
  Set report = CreateObject("Quillon.clsFXWt")
  Say "no filter at first", YesNo(report.objFilter Is Nothing)
  Set filter = wb.NewArgument("fx-wt").rawFilter
  Set report.objFilter = filter
  Say "the filter that was set", YesNo(report.objFilter Is filter)
  Set report.objFilter = Nothing
  Say "and taken back", YesNo(report.objFilter Is Nothing)
  report.msLanguage = "zh-CN"
  report.tarn_tmpTable = "first"
  report.m_sBaseTable = "second"
  Say "texts", report.msLanguage & " " & report.tarn_tmpTable & " " & report.m_sBaseTable
  Set control = CreateObject("Quillon.clsWtFilterControl")
  control.msLanguage = "en-US"
  Say "the dialog's language", control.msLanguage
End Sub

Sub ShowDialog(e)
  Dim control, filter, types, names, cancel, accepted
  Set filter = e.rawFilter
  Set control = CreateObject("Quillon.clsWtFilterControl")
  Say "FilterInit gives Empty", YesNo(IsEmpty(control.CallBack_FilterInit(filter)))
  Say "AuthString", e.Login.AuthString
  Set types = filter.FilterList("cVouType")
  Say "voucher types", Listed(Choices(types, 0))
  names = Choices(types, 1)
  Say "the first two", names(0) & ", " & names(1)
  Say "business types", UBound(Choices(filter.FilterList("cBusType"), 0)) + 1
  Say "warehouse", YesNo(filter.FilterList("cWhCode").Available)
  Say "department", YesNo(filter.FilterList("cDepCode").Available)

  Change control, filter, "Inventory.cInvCCode", "0'1"
  Say "inventories", "[" & filter.FilterList("Inventory.cInvCode").LookupCondition & "]"
  Change control, filter, "Customer.cCCCode", "02"
  Say "customers", "[" & filter.FilterList("Customer.cCusCode").LookupCondition & "]"
  Change control, filter, "Vendor.cVCCode", "03"
  Say "vendors", "[" & filter.FilterList("Vendor.cVenCode").LookupCondition & "]"
  Change control, filter, "Inventory.cInvCCode", ""
  Change control, filter, "Customer.cCCCode", ""
  Change control, filter, "Vendor.cVCCode", ""
  Say "vendors of no class", "[" & filter.FilterList("Vendor.cVenCode").LookupCondition & "]"

  types.varValue = "011" & vbTab & "32"
  For Each cancel In Array(False, True)
    accepted = control.CallBack_FilterClick(filter, cancel)
    Say "accepted", YesNo(VarType(accepted) = vbBoolean And accepted)
    Say "Cancel afterwards", YesNo(cancel)
  Next
End Sub

' The report of the types in the filter, against the ledger tables.
Sub RunReport(e)
  Dim report, items, before
  before = WorkTables()
  Set report = CreateObject("Quillon.clsFXWt")
  report.GETSQL e
  Say "DataSource.Type", e.DataSource.Type
  Say "its language", report.msLanguage
  Say "its filter", YesNo(report.objFilter Is e.rawFilter)
  Say "it has rows", YesNo(RowsOf(e, "1 = 1") > 0)
  Say "every ledger line is there", _
      YesNo(Look("Select Count(Distinct AutoID) From " & e.DataSource.SQL) = Look("Select Count(*)" & chosenLines))
  items = " From ia_subsidiary_Item item Where item.iSubID In (Select base.AutoID" & chosenLines & ")"
  Say "receipts are the ledger's", YesNo(Look("Select Sum(iIteminPrice) From " & e.DataSource.SQL) = _
                                         Look("Select Sum(item.iItemInPrice)" & items))
  Say "issues are the ledger's", YesNo(Look("Select Sum(iItemOutPrice) From " & e.DataSource.SQL) = _
                                       Look("Select Sum(item.iItemOutPrice)" & items))
  Say "rows of other types", RowsOf(e, "cVouType Not In (N'01', N'32', N'3201')")
  Say "material", Look("Select Min(cAmoType) From " & e.DataSource.SQL & " Where cfxCode = N'CI01'")
  Say "unit costs of nothing", RowsOf(e, "IsNull(iItemInQuantity, 0) = 0 And IsNull(iItemoutQuantity, 0) = 0 " & _
                                         "And (iUnitCost Is Not Null Or iUnitUsed Is Not Null)")
  Say "work tables that it leaves", WorkTables() - before
  On Error Resume Next
  Call report.MoveDataDetail()
  Say "the connection is closed", Hex(Err.Number)
  Err.Clear
  On Error GoTo 0
End Sub

' The argument of an Execute for a row of the report.
Sub Choose(e, action, sql)
  e.Action = action
  e.RelateData.TakeRow wb.Query(sql)
End Sub

Sub OpenDocuments(e)
  Dim report, posted, rows, opened, number
  Set report = CreateObject("Quillon.clsFXWt")
  posted = "Select Top 1 * From " & e.DataSource.SQL & " Where cPzID Is Not Null And cVouType = N'32' Order By AutoID, cfxCode"
  Set rows = wb.Query(posted)

  Choose e, "Vouch", posted
  report.Execute e
  Say "documents opened", wb.Vouchers.Count
  Set opened = wb.Vouchers(1)
  Say "through", opened.Member
  Say "its type", opened.Heading("cVouType") & " " & opened.Heading("cVouName")
  Say "its number is the row's", YesNo(opened.Heading("cVouCode") = rows("cVouCode").Value)
  number = 0
  Do
    number = number + 1
  Loop Until opened.Line(number, "AutoID") = CStr(rows("AutoID").Value)
  Say "its item is the row's", YesNo(opened.Line(number, "cInvCode") = rows("cInvCode").Value)

  Choose e, "Link", posted
  report.Execute e
  Say "documents opened then", wb.Vouchers.Count
  Set opened = wb.Vouchers(2)
  Say "through", opened.Member
  Say "menu", opened.Heading("menuCode")
  Say "it has entries", YesNo(opened.LineCount > 1)

  ' A row whose line is not posted: nothing is opened, and the user gets a message.
  Choose e, "", "Select N'32' As cVouType, N'' As cPzID, 1 As AutoID"
  report.Execute e
  Say "a row that is not posted opens nothing", YesNo(wb.Vouchers.Count = 2)
  Say "and says so as a warning", YesNo(wb.Messages(wb.Messages.Count).Flags = warning)
End Sub

Sub RunOnce(filter)
  Dim e
  Set e = wb.NewArgument("fx-wt")
  e.rawFilter.FilterList("cVouType").varValue = filter.FilterList("cVouType").varValue
  CreateObject("Quillon.clsFXWt").GETSQL e
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
wb.Language = "en"
wb.OpenAccount WScript.Arguments(0)
ProvokeErrors
KeepProperties
Set argument = wb.NewDialog("fx-wt")
ShowDialog argument
RunReport argument
OpenDocuments argument
DropResult argument
CountObjects argument.rawFilter
WScript.Quit 0
