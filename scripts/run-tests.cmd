@echo off
rem Runs the tests of Ormacon on this machine. Nothing is installed, and administrator rights are not needed.
rem It writes below its own folder only, but Ormacon.exe, which some tests run, logs where it always does: in the folder
rem "Tovak\Backup\RmanPluginLogs" of ProgramData, or where this machine's settings say. Do not type while the tests run:
rem some of them type into this window. For a moment each test program also has a key of its own in the registry,
rem HKEY_CURRENT_USER\Software\OrmaconTest and a number, in place of HKEY_LOCAL_MACHINE; it removes the key again.
rem The tests that drive a terminal, read dumps or kill processes run on Linux and are not among these.
rem Ends with 0 when every test has passed, otherwise with 1.
setlocal
set "errorlevel="
rem Room for what the tests write. The command prompt itself cannot use longer paths.
set "room=%~dp0tests\room_for_the_folders_that_the_tests_make_and_for_the_long_names_of_the_files_that_they_write_into_them"
if not exist "%~dp0run-tests.cmd" goto no_room
md "%room%" 2>nul
if not exist "%room%" goto no_room
rd "%room%"
pushd "%~dp0"
set "report=%~dp0report.txt"
set programs=0
set failures=0

call :describe_machine >"%report%" 2>&1
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

:no_room
echo The tests have not run. Unpack the zip into a folder with a shorter path, where you may write.
exit /b 1

:describe_machine
echo Ormacon @VERSION@, commit @COMMIT@
ver
call :value "HKLM\SOFTWARE\Microsoft\Windows NT\CurrentVersion" ProductName
call :value "HKLM\SOFTWARE\Microsoft\Windows NT\CurrentVersion" InstallationType
call :value "HKLM\SOFTWARE\Microsoft\Windows NT\CurrentVersion" CurrentBuildNumber
call :value "HKLM\SOFTWARE\Microsoft\Windows NT\CurrentVersion" UBR
call :value "HKCU\Control Panel\International" LocaleName
call :value "HKLM\SYSTEM\CurrentControlSet\Control\Nls\Language" InstallLanguage
call :value "HKLM\SYSTEM\CurrentControlSet\Control\Nls\CodePage" ACP
call :value "HKLM\SYSTEM\CurrentControlSet\Control\Nls\CodePage" OEMCP
call :value "HKLM\SYSTEM\CurrentControlSet\Control\FileSystem" LongPathsEnabled
chcp
echo Integrity level, S-1-16-12288 or more if elevated:
whoami /groups | find "S-1-16-"
echo Console, followed by a complaint if there is none:
>con echo The tests of Ormacon take a few minutes.
echo Processor: %PROCESSOR_IDENTIFIER%
echo Folder: "%~dp0"
echo.
exit /b

rem Shows one value of the registry, or a complaint.
:value
reg query %1 /v %2 | find "%2"
exit /b

rem Runs one program in its own folder. It passes only when its output says so: if the file cannot be opened, the program
rem does not run, and the exit status may be that of the command before.
:run
set /a programs+=1
set "output=%~dp0output%programs%.txt"
pushd "%~dp1"
"%~nx1" >"%output%" 2>&1
set "status=%errorlevel%"
popd
find "[  PASSED  ]" <"%output%" >nul
if errorlevel 1 set "status=%status% without a result"
if "%status%"=="0" (
    echo passed  %~n1
    >>"%report%" echo passed  %~n1
    find "  SKIPPED " <"%output%" >nul
    if errorlevel 1 (>>"%report%" find " ran. (" <"%output%") else type "%output%" >>"%report%"
) else (
    set /a failures+=1
    echo FAILED  %~n1, exit status %status%
    >>"%report%" echo FAILED  %~n1, exit status %status%
    type "%output%" >>"%report%"
)
del "%output%"
exit /b
