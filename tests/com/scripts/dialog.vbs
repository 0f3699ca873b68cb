' Fills in the filters of the two summary reports through their dialog's callbacks, as a Basic platform does: filter, key,
' Cancel and ReturnViewClass by reference, and read back. Prints one line a finding; run_script.sh holds the lines against
' dialog.vbs.expected.
'
'   cscript //nologo dialog.vbs ACCOUNT
Option Explicit

Dim wb

Sub Say(subject, value)
  WScript.Echo subject & ": " & value
End Sub

' "yes" or "no", in any language of the machine.
Function YesNo(holds)
  If holds Then YesNo = "yes" Else YesNo = "no"
End Function

Function Holds(text, part)
  Holds = InStr(1, text, part, vbBinaryCompare) > 0
End Function

Function Item(e, key)
  Set Item = e.rawFilter.FilterList(key)
End Function

' The user enters a value, and the dialog calls the class.
Sub Change(control, filter, key, value)
  filter.FilterList(key).varValue = value
  control.CallBack_ValueChange key, filter
End Sub

Function RowsOf(e)
  RowsOf = wb.Query("Select Count(*) From " & e.DataSource.SQL).Fields(0).Value
  wb.Query "Drop Table " & e.DataSource.SQL
End Function

Sub OutboundSummary()
  Dim e, filter, control, view, cancel, accepted
  Set e = wb.NewDialog("outsum-item")
  Set filter = e.rawFilter
  Set control = CreateObject("Quillon.clsSFCFilterControl")
  Say "the year before", "[" & Item(e, "iYear").varValue & "]"
  Say "FilterInit gives Empty", YesNo(IsEmpty(control.CallBack_FilterInit(filter)))
  Say "AuthString", e.Login.AuthString
  Say "the year is the login's", YesNo(Item(e, "iYear").varValue = e.Login.cIYear)
  Say "the years hold it", YesNo(Holds(Item(e, "iYear").Choices, e.Login.cIYear))
  Say "mode", Item(e, "cModal").varValue
  Say "source", Item(e, "cSource").varValue
  Say "grade", Item(e, "iGrade").varValue & " to " & Item(e, "iGrade").varValue2
  Say "grades", Item(e, "iGrade").Choices
  Say "voucher type 32 is offered", YesNo(Holds(Item(e, "cVouType").Choices, "{#}32{"))
  Say "voucher type 3201 is not", YesNo(Not Holds(Item(e, "cVouType").Choices, "3201"))
  Say "business types are offered", YesNo(Holds(Item(e, "cBusType").Choices, "{#}"))
  Say "warehouse", YesNo(Item(e, "cWhCode").Available)
  Say "department", YesNo(Item(e, "cDepCode").Available)

  control.CallBack_ReportViewInit filter, view
  Say "view", view & " in a variable of type " & VarType(view)
  Change control, filter, "cModal", "2"
  view = 7
  control.CallBack_ReportViewChange "cModal", filter, view
  Say "view by expense item", view
  Say "grade by expense item", YesNo(Item(e, "iGrade").Available)
  Change control, filter, "cModal", "0"
  control.CallBack_ReportViewChange "cModal", filter, view
  Say "view by class", view
  Say "grade by class", YesNo(Item(e, "iGrade").Available)

  Change control, filter, "cInvCCode", "01"
  Say "inventories", Item(e, "cInvCode").LookupCondition
  Change control, filter, "cInvCCode", "0'1"
  Say "inventories with a quote", Item(e, "cInvCode").LookupCondition
  Change control, filter, "cInvCCode", ""
  Change control, filter, "iYear", "1999"
  Say "voucher types of a year without issues", Left(Item(e, "cVouType").Choices, 6)
  Change control, filter, "iYear", e.Login.cIYear
  Say "voucher types again", YesNo(Holds(Item(e, "cVouType").Choices, "{#}32{"))
  control.InitYear
  control.InitGrade

  For Each cancel In Array(False, True)
    accepted = control.CallBack_FilterClick(filter, cancel)
    Say "accepted", YesNo(VarType(accepted) = vbBoolean And accepted)
    Say "Cancel afterwards", YesNo(cancel)
  Next
  CreateObject("Quillon.clsOutsum_Item").GETSQL e
  Say "the report has rows", YesNo(RowsOf(e) > 0)
End Sub

Sub ReceiptIssueBalance()
  Dim e, filter, control, view
  Set e = wb.NewDialog("sfc-item")
  Set filter = e.rawFilter
  Set control = CreateObject("Quillon.clsSFCFilterControl")
  Call control.CallBack_FilterInit(filter)
  Say "balance condition", Item(e, "cFSType").varValue
  Say "expired inventories", Item(e, "bIncludeExpire").varValue
  Say "transfers", Item(e, "bIncludeTransVouch").varValue & ", " & YesNo(Item(e, "bIncludeTransVouch").Available)
  control.CallBack_ReportViewInit filter, view
  Say "its view", view
  Change control, filter, "cInvClass", "02"
  Say "its inventories", Item(e, "cInvCode").LookupCondition
  filter.FilterList("bIncludeTransVouch") = "0"
  Change control, filter, "iYear", e.Login.cIYear
  Say "transfers after a change of the year", Item(e, "bIncludeTransVouch").varValue
  Change control, filter, "cInvClass", ""
  CreateObject("Quillon.clsSFC_Item").GETSQL e
  Say "its report has rows", YesNo(RowsOf(e) > 0)
End Sub

Sub ProvokeErrors()
  Dim control, view
  Set control = CreateObject("Quillon.clsSFCFilterControl")
  On Error Resume Next
  control.CallBack_FilterInit Nothing
  Say "no dialog", Hex(Err.Number)
  Err.Clear
  control.CallBack_ReportViewInit Nothing, view
  Say "no dialog for the view", Hex(Err.Number) & ", " & YesNo(IsEmpty(view))
  Err.Clear
  control.InitYear
  Say "not started", Err.Description
  Err.Clear
  control.CallBack_ValueChange "cModal", wb.NewArgument("sfc-item").rawFilter
  Say "a filter in no dialog", Err.Description
  Err.Clear
End Sub

Sub OpenAndClose()
  Dim filter, view, cancel, control
  Set filter = wb.NewDialog("outsum-item").rawFilter
  Set control = CreateObject("Quillon.clsSFCFilterControl")
  control.CallBack_FilterInit filter
  control.CallBack_ReportViewInit filter, view
  control.CallBack_ValueChange "iYear", filter
  control.CallBack_FilterClick filter, cancel
End Sub

Sub CountObjects()
  Dim before, run
  OpenAndClose
  before = wb.LiveObjects
  For run = 1 To 5
    OpenAndClose
  Next
  Say "objects that five more dialogs leave", wb.LiveObjects - before
End Sub

Set wb = CreateObject("QuillonWorkbench.Platform")
wb.OpenAccount WScript.Arguments(0)
ProvokeErrors
OutboundSummary
ReceiptIssueBalance
CountObjects
WScript.Quit 0
