; The Windows installer: puts the files into a folder, registers the libraries for all users and enters Quillon into the
; list of installed programs; uninstall.exe, which it writes, takes all of that back. An installed version, in whatever
; folder, is uninstalled first; without another wish the new one takes its folder.
;
;   quillon-VERSION-win32-setup.exe /S /D=C:\Folder with blanks     silent; /D comes last and takes no quotes
;   uninstall.exe /S                                                silent
;
; Exit status of either: 0 done; 1 given up by the user; 2 a file cannot be written; 10 no administrator; 11 the libraries
; cannot be registered, and nothing is installed; 12 Quillon is in use or cannot be uninstalled first, and nothing is
; changed; 13 the libraries cannot be unregistered, and nothing is removed. Without /S a message says what happened and what
; to do.
;
; make_installer.sh defines VERSION, SIZE_IN_KB, OUTPUT, and INSTALL_FILES and REMOVE_FILES, which put in and take out the files.
Unicode true
SetCompressor /SOLID lzma
Name "Quillon ${VERSION}"
OutFile "${OUTPUT}"
RequestExecutionLevel admin
; The entry in the list of installed programs.
!define ENTRY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Quillon"
InstallDir "$PROGRAMFILES32\Quillon"
InstallDirRegKey HKLM "${ENTRY}" "InstallLocation"
AllowSkipFiles off
ShowInstDetails show
ShowUninstDetails show

VIProductVersion "${VERSION}.0"
VIFileVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "Quillon"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "FileDescription" "Installs Quillon ${VERSION}"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "LegalCopyright" ""

Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

!define NO_ADMINISTRATOR 10
!define NOT_REGISTERED 11
!define IN_USE 12
!define NOT_UNREGISTERED 13

!macro Stop status text
  SetErrorLevel ${status}
  MessageBox MB_OK|MB_ICONSTOP "${text}" /SD IDOK
  Abort "${text}"
!macroend

!macro NeedAdministrator
  UserInfo::GetAccountType
  Pop $0
  StrCmp $0 "Admin" administrator
  SetErrorLevel ${NO_ADMINISTRATOR}
  MessageBox MB_OK|MB_ICONSTOP "Quillon is installed for all users. Run this program as an administrator." /SD IDOK
  Quit
administrator:
!macroend

; Jumps to in_use when a program has loaded the file. Such a file cannot be opened for writing.
!macro NeedUnused name extension
  IfFileExists "$INSTDIR\${name}.${extension}" 0 ${name}_${extension}_is_free
  ClearErrors
  FileOpen $0 "$INSTDIR\${name}.${extension}" a
  IfErrors in_use
  FileClose $0
${name}_${extension}_is_free:
!macroend

; What regsvr32 ended with is in $0 then. This program is 32-bit, so the system's folder is that of the 32-bit regsvr32.
!macro Regsvr32 options file
  StrCpy $0 "cannot be run"
  ExecWait '"$SYSDIR\regsvr32.exe" /s ${options} "$INSTDIR\${file}"' $0
!macroend

Function .onInit
  !insertmacro NeedAdministrator
FunctionEnd

Function un.onInit
  !insertmacro NeedAdministrator
FunctionEnd

Section "Quillon"
  ; An uninstaller that is told its folder by _? runs where it is, and can be waited for; it leaves only itself.
  ReadRegStr $1 HKLM "${ENTRY}" "InstallLocation"
  StrCmp $1 "" installed_before_is_gone
  IfFileExists "$1\uninstall.exe" 0 installed_before_is_gone
  DetailPrint "Uninstalling the version in $1"
  ExecWait '"$1\uninstall.exe" /S _?=$1' $0
  StrCmp $0 0 uninstalled
  ; A library of it is missing or broken, so it cannot be unregistered; what is registered now takes its place.
  StrCmp $0 ${NOT_UNREGISTERED} installed_before_is_gone
  !insertmacro Stop ${IN_USE} "The version of Quillon in $1 cannot be uninstalled (its uninstaller ended with $0). \
    Close the programs that use it, the report platform for one, and run this again."
uninstalled:
  Delete "$1\uninstall.exe"
  RMDir "$1"
installed_before_is_gone:

  SetOutPath "$INSTDIR"
  !include "${INSTALL_FILES}"
  StrCpy $1 "Quillon.dll"
  !insertmacro Regsvr32 "" "$1"
  StrCmp $0 0 0 not_registered
  StrCpy $1 "QuillonWorkbench.dll"
  !insertmacro Regsvr32 "" "$1"
  StrCmp $0 0 0 not_registered

  WriteUninstaller "$INSTDIR\uninstall.exe"
  WriteRegStr HKLM "${ENTRY}" "DisplayName" "Quillon"
  WriteRegStr HKLM "${ENTRY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKLM "${ENTRY}" "DisplayIcon" "$INSTDIR\quillon.exe"
  WriteRegStr HKLM "${ENTRY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKLM "${ENTRY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKLM "${ENTRY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKLM "${ENTRY}" "EstimatedSize" ${SIZE_IN_KB}
  WriteRegDWORD HKLM "${ENTRY}" "NoModify" 1
  WriteRegDWORD HKLM "${ENTRY}" "NoRepair" 1
  Goto done

not_registered:
  StrCpy $2 $0
  !insertmacro Regsvr32 "/u" "Quillon.dll"
  SetOutPath "$TEMP"
  !include "${REMOVE_FILES}"
  RMDir "$INSTDIR"
  !insertmacro Stop ${NOT_REGISTERED} "$1 cannot be registered (regsvr32 ended with $2), so nothing is installed. \
    Check that no policy or virus scanner forbids it, and run this again as an administrator."
done:
SectionEnd

Section "Uninstall"
  !insertmacro NeedUnused Quillon dll
  !insertmacro NeedUnused QuillonWorkbench dll
  !insertmacro NeedUnused quillon exe
  Goto not_in_use
in_use:
  !insertmacro Stop ${IN_USE} "Quillon is in use. Close the programs that use it, the report platform for one, \
    and run this again."
not_in_use:

  StrCpy $1 "QuillonWorkbench.dll"
  !insertmacro Regsvr32 "/u" "$1"
  StrCmp $0 0 0 not_unregistered
  StrCpy $1 "Quillon.dll"
  !insertmacro Regsvr32 "/u" "$1"
  StrCmp $0 0 unregistered
not_unregistered:
  !insertmacro Stop ${NOT_UNREGISTERED} "$1 cannot be unregistered (regsvr32 ended with $0), so nothing is removed. \
    If the file is missing, install Quillon again, which puts it back."
unregistered:

  !include "${REMOVE_FILES}"
  Delete "$INSTDIR\uninstall.exe"
  ; A folder with files of others in it stays.
  RMDir "$INSTDIR"
  DeleteRegKey HKLM "${ENTRY}"
SectionEnd
