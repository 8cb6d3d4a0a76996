"""Lets the crash program die in every way and looks at what it leaves: dump, log, exit status, backtrace."""
import concurrent.futures
import pathlib
import re
import shutil
import subprocess
import sys
import time

ROOT, PROGRAM, WORK = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
SYSTEM_MODULES = "/usr/lib/x86_64-linux-gnu/wine/x86_64-windows"
PASSWORD = "Zq7#tiger"
RECORDER = "TovakDumpRecorder"

BEGIN = ["Trying to generate crash dump", "Executing crash handlers.", "Crash handlers were successfully executed."]
OUT_OF_PROCESS = BEGIN + [r"Generating dump to .*\\logs\\Dumps$"]
IN_PROCESS = BEGIN + [r"Failed to create dump recorder file: .*\\Dumps\\TovakDumpRecorder$",
                      r"Writing dump\. Dump path: .*\\Ormacon_crash_\d+_1\.mdmp\.$"]
LEGACY = BEGIN + ["Generating dump to ", "Dump generator process failed with 1: unspecified failure$",
                  r"Cannot load dbghelp\.dll library\.$",
                  r"Writing legacy dump\. Dump path: .*\\Ormacon_crash_\d+_1-exceptions\.log\.$"]

ACCESS_VIOLATION, TERMINATE, ABORT = 0xC0000005, 0xE0000001, 0x40000015
# way to die: exit status, log lines in order, a function of the backtrace
WAYS = {
    "access_violation": (ACCESS_VIOLATION, OUT_OF_PROCESS, "access_violation"),
    "stack_overflow": (0xC00000FD, OUT_OF_PROCESS, "recurse<64>"),
    "uncaught_int": (TERMINATE, OUT_OF_PROCESS, "uncaught_int"),
    "throwing_destructor": (TERMINATE, OUT_OF_PROCESS, "~throwing_t"),
    "pure_virtual_call": (TERMINATE, OUT_OF_PROCESS, "base_t::call"),
    "call_abort": (ABORT, OUT_OF_PROCESS, "call_abort"),
    "heap_corruption": (0xC0000374, OUT_OF_PROCESS, "heap_corruption"),
    "invalid_parameter": (0xC0000417, OUT_OF_PROCESS, "invalid_parameter"),
    "library_fault": (ACCESS_VIOLATION, OUT_OF_PROCESS, "SetHostDirect"),
    "second_thread": (ACCESS_VIOLATION, OUT_OF_PROCESS, "write_through_null"),
    "log_lock_held": (ACCESS_VIOLATION, OUT_OF_PROCESS, "faulting_sink_t::write_line"),
    "heap_lock_held": (ACCESS_VIOLATION, OUT_OF_PROCESS, "heap_lock_held"),
    "crash_while_exiting": (ACCESS_VIOLATION, OUT_OF_PROCESS, "write_through_null"),
    "password_in_use": (ACCESS_VIOLATION, OUT_OF_PROCESS, "password_in_use"),
}
failures = []


def check(name, condition, what):
    if not condition:
        failures.append(f"{name}: {what}")
        print(f"FAILED {name}: {what}")


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


class Crash:
    def __init__(self, way, name=None, overrides="", prepare=None):
        self.name = name or way
        self.folder = WORK / self.name
        if prepare != "again":
            shutil.rmtree(self.folder, ignore_errors=True)
        self.dumps = self.folder / "logs" / "Dumps"
        self.dumps.mkdir(parents=True, exist_ok=True)
        if prepare == "refuse recorder":
            (self.dumps / RECORDER).mkdir()
        command = f'. "{ROOT}/scripts/common.sh"; export WINEDLLOVERRIDES="$WINEDLLOVERRIDES;{overrides}"; exec wine64 "$@"'
        begin = time.monotonic()
        run = subprocess.run(["bash", "-c", command, "bash", str(PROGRAM), way, windows_path(self.folder)],
                             input=PASSWORD + "\n", capture_output=True, text=True, timeout=200)
        self.seconds = time.monotonic() - begin
        self.status = run.returncode
        self.files = sorted(path for path in self.dumps.iterdir() if path.is_file())

    def check(self, status, lines, ending=".mdmp"):
        check(self.name, self.status == status & 0xFF, f"status {self.status} instead of {status & 0xFF}")
        check(self.name, len(self.files) == 1 and self.files[0].name.endswith(ending), f"files {self.files}")
        check(self.name, all(file.stat().st_size > 500 for file in self.files), "an empty dump")
        self.check_log(lines)
        self.check_no_password()

    def check_log(self, lines):
        log = (self.folder / "logs" / "Ormacon.log").read_text(encoding="utf-8").splitlines()
        position = 0
        for line in lines:
            found = [i for i in range(position, len(log)) if re.search(line, log[i])]
            check(self.name, found, f"no line {line!r} behind line {position} of\n" + "\n".join(log))
            position = found[0] + 1 if found else position
        for line in log[position:] if lines is OUT_OF_PROCESS else []:
            check(self.name, False, f"line behind the end: {line}")

    def check_no_password(self):
        for path in (path for path in self.folder.rglob("*") if path.is_file()):
            content = path.read_bytes()
            for encoding in "utf-8", "utf-16-le":
                check(self.name, PASSWORD.encode(encoding) not in content, f"password as {encoding} in {path.name}")

    def check_backtrace(self, function):
        modules = f"settings set target.exec-search-paths {PROGRAM.parent} {SYSTEM_MODULES}"
        debugger = ["lldb-14", "--batch", "-o", modules, "-o", f"target create --core {self.files[0]}", "-o", "bt 40"]
        output = subprocess.run(debugger, capture_output=True, text=True, timeout=100).stdout
        frame = rf"frame #\d+:.*[`: ]{re.escape(function)}(\(| \+ |$)"
        check(self.name, re.search(frame, output, re.MULTILINE), f"{function} is not in the backtrace:\n{output}")


def check_way(way):
    status, lines, function = WAYS[way]
    crash = Crash(way)
    crash.check(status, lines)
    if crash.files:
        crash.check_backtrace(function)


def check_ways():
    with concurrent.futures.ThreadPoolExecutor(2) as executor:
        list(executor.map(check_way, WAYS))


def check_unreported():
    """Wine ends the thread without a word where Windows still tells; either way the process must end, and badly."""
    crash = Crash("stack_overflow_unreported")
    check(crash.name, crash.status in (1, 0xFD), f"status {crash.status}")
    check(crash.name, crash.seconds < 30, f"took {crash.seconds} s")


def check_fallbacks():
    in_process = Crash("password_in_use", "recorder_refused", prepare="refuse recorder")
    in_process.check(ACCESS_VIOLATION, IN_PROCESS)
    if in_process.files:
        in_process.check_backtrace("password_in_use")
    legacy = Crash("password_in_use", "no_debug_help", overrides="dbghelp=")
    legacy.check(ACCESS_VIOLATION, LEGACY, "-exceptions.log")


def check_crash_of_the_handling():
    crash = Crash("crashing_handler")
    check(crash.name, crash.status == ABORT & 0xFF, f"status {crash.status}")
    check(crash.name, crash.files == [], f"files {crash.files}")
    check(crash.name, crash.seconds < 20, f"took {crash.seconds} s")


def check_many_crashes():
    seen = []
    for i in range(25):
        # Reports and minidumps count alike; the reports are quicker.
        crash = Crash("call_abort", "many_crashes", "" if i % 12 == 0 else "dbghelp=", "again" if seen else None)
        # A process id comes again, and with it the name of a dump that is gone.
        dumps = [(file.name, file.stat().st_mtime_ns) for file in crash.files]
        seen += [dump for dump in dumps if dump not in seen]
        check(crash.name, len(seen) == i + 1, f"{len(seen)} dumps in {i + 1} crashes")
        check(crash.name, set(dumps) == set(seen[-10:]), f"{dumps} are not the youngest of {seen}")
    crash.check_log([r"Dump \[.*\\Ormacon_crash_.*\] deleted\."] * 15)


if shutil.which("lldb-14") is None:
    sys.exit("lldb-14 is missing")
check_ways()
check_unreported()
check_fallbacks()
check_crash_of_the_handling()
check_many_crashes()
print(f"{len(failures)} failures")
sys.exit(1 if failures else 0)
