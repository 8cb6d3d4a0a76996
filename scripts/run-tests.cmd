@echo off
rem Runs the tests of Ormacon on this machine. Nothing is installed, and administrator rights are not needed.
rem It writes below its own folder only. For a moment each test program also has a key of its own in the registry,
rem HKEY_CURRENT_USER\Software\OrmaconTest and a number, in place of HKEY_LOCAL_MACHINE; it removes the key again.
rem The tests that drive a terminal, read dumps or kill processes run on Linux and are not among these.
rem Ends with 0 when every test has passed, otherwise with 1.
setlocal
cd /d "%~dp0"
set "report=%~dp0report.txt"
set "output=%~dp0output.txt"
set programs=0
set failures=0

>"%report%" echo Ormacon @VERSION@, commit @COMMIT@
ver >>"%report%"
>>"%report%" echo Processor: %PROCESSOR_IDENTIFIER%
>>"%report%" echo.

for %%p in (@PROGRAMS@) do call :run "tests\%%p"

>>"%report%" echo.
if not %failures%==0 goto failed
echo All %programs% test programs have passed. Please send report.txt.
>>"%report%" echo All %programs% test programs have passed.
exit /b 0

:failed
echo %failures% of %programs% test programs have failed. Please send report.txt, which shows what they wrote.
>>"%report%" echo %failures% of %programs% test programs have failed.
exit /b 1

rem Runs one program in its own folder.
:run
set /a programs+=1
pushd "%~dp1"
"%~nx1" >"%output%" 2>&1
set "status=%errorlevel%"
popd
if "%status%"=="0" (
    echo passed  %~n1
    >>"%report%" echo passed  %~n1
    >>"%report%" find " ran. (" <"%output%"
) else (
    set /a failures+=1
    echo FAILED  %~n1, exit status %status%
    >>"%report%" echo FAILED  %~n1, exit status %status%
    type "%output%" >>"%report%"
)
del "%output%"
exit /b
