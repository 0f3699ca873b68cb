@echo off
rem Takes out of the registry what register.cmd wrote. Run it, as an administrator, before the files are deleted or moved.
rem The exit status is 0 when nothing of Quillon is registered any more; else it is 1.
setlocal
rem Quillon is 32-bit: on 64-bit Windows, the 32-bit regsvr32 lies apart.
set "regsvr32=%SystemRoot%\SysWOW64\regsvr32.exe"
if not exist "%regsvr32%" set "regsvr32=%SystemRoot%\System32\regsvr32.exe"

set "file=QuillonWorkbench.dll"
if not exist "%~dp0%file%" goto missing
"%regsvr32%" /u /s "%~dp0%file%"
set "status=%errorlevel%"
if not "%status%"=="0" goto refused

set "file=Quillon.dll"
if not exist "%~dp0%file%" goto missing
"%regsvr32%" /u /s "%~dp0%file%"
set "status=%errorlevel%"
if not "%status%"=="0" goto refused

echo Quillon is not registered any more.
exit /b 0

:missing
echo error: %file% is not beside this script, and only it knows what to take out. Unpack the package again, beside it.>&2
exit /b 1
:refused
echo error: %file% could not be unregistered: regsvr32 ended with %status%. Run this script as an administrator.>&2
exit /b 1
