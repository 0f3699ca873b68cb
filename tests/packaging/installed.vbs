' Whether Quillon is registered from a folder and works: every class by ProgID, the versions of the files, and a report
' over an account. Prints one line a finding.
'
'   cscript //nologo installed.vbs INSTALLED_FOLDER ACCOUNT
Option Explicit

Dim folder, name, files, shell, library, workbench, e, received, inLedger
folder = WScript.Arguments(0)

Sub Say(subject, value)
  WScript.Echo subject & ": " & value
End Sub

' "yes" or "no", in any language of the machine.
Function YesNo(holds)
  If holds Then YesNo = "yes" Else YesNo = "no"
End Function

' The first field of the first row.
Function Look(sql)
  Look = workbench.Query(sql).Fields(0).Value
End Function

For Each name In Array("Quillon.clsSFC_Item", "Quillon.ClsBusiness", "Quillon.clsFXDetail", "Quillon.clsOutsum_Item", _
                       "Quillon.clsFXWt", "Quillon.clsWtFilterControl", "Quillon.clsSFCFilterControl", _
                       "Quillon.clsFilterControl", "QuillonWorkbench.Platform")
  Say "created " & name, YesNo(IsObject(CreateObject(name)))
Next

Set shell = CreateObject("WScript.Shell")
For Each name In Array("Quillon.clsSFC_Item", "QuillonWorkbench.Platform")
  library = shell.RegRead("HKCR\CLSID\" & shell.RegRead("HKCR\" & name & "\CLSID\") & "\InprocServer32\")
  Say name & " is of this folder", YesNo(LCase(Left(library, Len(folder) + 1)) = LCase(folder & "\"))
Next
Set files = CreateObject("Scripting.FileSystemObject")
For Each name In Array("Quillon.dll", "QuillonWorkbench.dll", "quillon.exe")
  Say "version of " & name, files.GetFileVersion(folder & "\" & name)
Next

Set workbench = CreateObject("QuillonWorkbench.Platform")
workbench.OpenAccount WScript.Arguments(1)
Set e = workbench.NewArgument("sfc-item")
e.rawFilter.FilterList("iYear").varValue = CStr(e.Login.iYear)
e.rawFilter.FilterList("cModal") = "1"
CreateObject("Quillon.clsSFC_Item").GETSQL e
received = Look("Select Sum(iMoney) From " & e.DataSource.SQL & " Where iState = 2")
inLedger = Look("Select Sum(IsNull(item.iItemInPrice, 0) + IsNull(item.iItemOutPrice, 0)) " & _
                "From ia_subsidiary_Item item Inner Join ia_subsidiary base On item.iSubID = base.AutoID " & _
                "Where base.bRdFlag = 1 And base.iMonth > 0 And base.iYear = " & e.Login.iYear & _
                " And base.cWhCode Is Not Null")
Say "a report's receipts are the ledger's", YesNo(received > 0 And CStr(received) = CStr(inLedger))
workbench.Query "Drop Table " & e.DataSource.SQL
WScript.Quit 0
