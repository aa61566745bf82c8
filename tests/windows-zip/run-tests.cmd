@echo off
rem Runs the test programs that stand in "tests" beside this file, or those whose names are given:
rem     run-tests [NAME...]        for example: run-tests platform-tests
rem One line for each, and a last one with the counts; the exit status is 1 where any failed. What each program
rem printed is kept in "logs" beside this file or, where nothing can be written there, in the folder for temporary
rem files.
setlocal EnableExtensions DisableDelayedExpansion
set "root=%~dp0"
set "logs=%root%logs"
call :can_write
if errorlevel 1 set "logs=%TEMP%\plugincore-test-logs"
call :can_write
if errorlevel 1 (
  echo Logs cannot be written to "%logs%".
  exit /b 1
)
echo Logs: "%logs%"
rem Tests have folders of their own in the place of the user's.
set PLUGINCORE_PORTABLE=1
set passed=0
set failed=0
set skipped=0
if not "%~1"=="" goto named
for /f "delims=" %%p in ('dir /b "%root%tests\*-tests.exe"') do call :run "%%~np"
goto counts
:named
for %%p in (%*) do call :run "%%~p"
:counts
echo %passed% passed, %failed% failed, %skipped% skipped
if not %failed%==0 exit /b 1
if %passed%==0 exit /b 1
exit /b 0

:can_write
if not exist "%logs%\" mkdir "%logs%" 2>nul
if not exist "%logs%\" exit /b 1
type nul >"%logs%\probe" 2>nul
if not exist "%logs%\probe" exit /b 1
del "%logs%\probe"
exit /b 0

:run
if not exist "%root%tests\%~1.exe" (
  echo FAILED   %~1: there is no such program
  set /a failed+=1
  exit /b 0
)
"%root%tests\%~1.exe" --gtest_shuffle >"%logs%\%~1.log" 2>&1
set status=%ERRORLEVEL%
if %status%==0 (
  echo passed   %~1
  set /a passed+=1
) else if %status%==77 (
  echo skipped  %~1: there is no screen for windows
  set /a skipped+=1
) else (
  echo FAILED   %~1: status %status%, see its log
  set /a failed+=1
)
exit /b 0
