@echo off
rem Registers Quillon for all users of this machine: Quillon.dll, and QuillonWorkbench.dll, with which scripts run the
rem reports without a host platform. Both stay where they are. Run it as an administrator.
rem The exit status is 0 when both are registered; else it is 1, and neither is.
setlocal
rem Quillon is 32-bit: on 64-bit Windows, the 32-bit regsvr32 lies apart.
set "regsvr32=%SystemRoot%\SysWOW64\regsvr32.exe"
if not exist "%regsvr32%" set "regsvr32=%SystemRoot%\System32\regsvr32.exe"

set "file=Quillon.dll"
if not exist "%~dp0%file%" goto missing
"%regsvr32%" /s "%~dp0%file%"
set "status=%errorlevel%"
if not "%status%"=="0" goto refused

set "file=QuillonWorkbench.dll"
if not exist "%~dp0%file%" goto missing
"%regsvr32%" /s "%~dp0%file%"
set "status=%errorlevel%"
if not "%status%"=="0" goto refused

echo Quillon is registered.
exit /b 0

:missing
echo error: %file% is not beside this script. Unpack the whole package into one folder and run the script there.>&2
goto back
:refused
echo error: %file% could not be registered: regsvr32 ended with %status%. Run this script as an administrator.>&2
:back
if exist "%~dp0Quillon.dll" "%regsvr32%" /u /s "%~dp0Quillon.dll"
exit /b 1
