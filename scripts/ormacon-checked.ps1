# Runs Ormacon.exe with the same options. Ormacon's own exit status does not show whether a command has failed;
# this one does:
#     0   success
#     1   the command failed, or its success cannot be seen in this way; the reason is printed
#     2   stopped at the keyboard
#     3   crashed, or not started
# Run it as an administrator.
$commands = '--set-host', '--set-port', '--set-parallelism', '--set-credentials', '--uninstall'
if ($commands -cnotcontains ([string]$args[0]).Split('=')[0]) {
    "ormacon-checked runs --set-host, --set-port, --set-parallelism, --set-credentials and --uninstall only."
    exit 1
}
$program = Join-Path $PSScriptRoot 'Ormacon.exe'
if (-not (Test-Path -LiteralPath $program)) {
    "Ormacon.exe is not in the folder ""$PSScriptRoot""."
    exit 3
}
try { $output = & $program @args }
catch {
    "Ormacon.exe could not be started: $_"
    exit 3
}
$status = $LASTEXITCODE
$output
if ($status -eq -1073741510) {
    "Ormacon.exe was stopped at the keyboard."
    exit 2
}
if ($status -ne 0) {
    "Ormacon.exe crashed, was ended, or could not be started. Its exit status is $status."
    exit 3
}
# A hidden password leaves a line end.
if (($output -join '').Trim()) { exit 1 }
exit 0
