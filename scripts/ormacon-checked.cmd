@echo off
rem Runs Ormacon.exe with the same options. Ormacon's own exit status does not show whether a command has failed;
rem this one does:
rem     0   success
rem     1   the command failed, or its success cannot be seen in this way; the reason is printed
rem     2   stopped at the keyboard
rem     3   crashed, or not started
rem Run it as an administrator. What the program prints is kept for a moment in the folder of this file, where other
rem users cannot prepare or change it.
setlocal
set "errorlevel="
set "size="
for %%c in (--set-host --set-port --set-parallelism --set-credentials --uninstall) do if "%~1"=="%%c" goto known
echo ormacon-checked runs --set-host, --set-port, --set-parallelism, --set-credentials and --uninstall only.
exit /b 1

:known
if not exist "%~dp0Ormacon.exe" goto missing
set "output=%~dp0checked-%random%-%time::=%.txt"
"%~dp0Ormacon.exe" %* >"%output%"
set "status=%errorlevel%"
if not exist "%output%" goto no_output
type "%output%"
for %%f in ("%output%") do set "size=%%~zf"
del "%output%"
if "%status%"=="-1073741510" goto stopped
if not "%status%"=="0" goto crashed
rem A hidden password leaves a line end.
if "%size%"=="0" exit /b 0
if "%size%"=="2" exit /b 0
exit /b 1

:missing
echo Ormacon.exe is not in the folder "%~dp0".
exit /b 3

:no_output
echo Cannot write to the folder "%~dp0". Run this as an administrator.
exit /b 3

:stopped
echo Ormacon.exe was stopped at the keyboard.
exit /b 2

:crashed
echo Ormacon.exe crashed, was ended, or could not be started. Its exit status is %status%.
exit /b 3
