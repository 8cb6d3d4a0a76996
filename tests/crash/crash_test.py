"""Lets the crash program die in every way and looks at what it leaves: dump, log, notice, exit status, backtrace."""
import collections
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
FRAME_IN_REPORT = rb"\r\nStack frames:\r\n0x[0-9a-f]+ crash_program\.exe \+ "

BEGIN = ["Trying to generate crash dump", "Executing crash handlers.", "Crash handlers were successfully executed."]
RECORDED = BEGIN + [r"Generating dump to .*\\logs\\Dumps$"]
REFUSED = BEGIN + [r"Failed to create dump recorder file: .*\\Dumps\\TovakDumpRecorder$"]
IN_PROCESS = [r"Writing dump\. Dump path: .*\\Ormacon_crash_\d+_1\.mdmp\.$"]
KILLED = RECORDED + ["Dump generator process failed with 9: unexpected exit code$"]
LEGACY = RECORDED + ["Dump generator process failed with 1: unspecified failure$",
                     r"Cannot load dbghelp\.dll library\.$",
                     r"Writing legacy dump\. Dump path: .*\\Ormacon_crash_\d+_1-exceptions\.log\.$"]
NO_WAY = REFUSED + [r"Cannot create a blank minidump file\.", r"Cannot create a legacy dump file\."]

# Behind the base name and the process id.
MINIDUMP, OWN_MINIDUMP, REPORT, NO_DUMP = r"_\d+_\d{18}\.mdmp", r"_1\.mdmp", r"_1-exceptions\.log", None
TOLD, NO_DUMP_TOLD, NOTHING_TOLD = "The crash dump is in {}.\n", "No crash dump could be written.\n", None
ACCESS_VIOLATION, TERMINATE, ABORT = 0xC0000005, 0xE0000001, 0x40000015

# function: what the backtrace shows; obstacle: what stands in the log folder, a folder or else a file
Case = collections.namedtuple("Case", "way status function lines dump notice obstacle overrides",
                              defaults=(RECORDED, MINIDUMP, TOLD, "", ""))
CASES = [
    # No library of the folder that the recorder is run from may be loaded.
    Case("access_violation", ACCESS_VIOLATION, "access_violation", obstacle="Dumps/dbghelp.dll"),
    Case("stack_overflow", 0xC00000FD, "recurse<64>"),
    # Wine ends the thread without a word where Windows still tells.
    Case("stack_overflow_unreported", 1, None, [], NO_DUMP, NOTHING_TOLD),
    Case("uncaught_int", TERMINATE, "uncaught_int"),
    Case("throwing_destructor", TERMINATE, "~throwing_t"),
    Case("pure_virtual_call", TERMINATE, "base_t::call"),
    Case("call_abort", ABORT, "call_abort"),
    Case("heap_corruption", 0xC0000374, "heap_corruption"),
    Case("invalid_parameter", 0xC0000417, "invalid_parameter"),
    Case("overwritten_frame", 0xC000001D, "overwritten_frame"),
    Case("library_fault", ACCESS_VIOLATION, "SetHostDirect"),
    Case("second_thread", ACCESS_VIOLATION, "write_through_null"),
    Case("log_lock_held", ACCESS_VIOLATION, "faulting_sink_t::write_line"),
    Case("heap_lock_held", ACCESS_VIOLATION, "heap_lock_held"),
    Case("crash_while_exiting", ACCESS_VIOLATION, "write_through_null"),
    Case("crashing_handler", ABORT, None, BEGIN[:2], NO_DUMP, NOTHING_TOLD),
    Case("password_in_use", ACCESS_VIOLATION, "password_in_use"),
    Case("password_and_abort", ABORT, "password_and_abort"),
    Case("recorder_killed", ACCESS_VIOLATION, "recorder_killed", KILLED + IN_PROCESS, OWN_MINIDUMP),
    Case("password_in_use", ACCESS_VIOLATION, "password_in_use", REFUSED + IN_PROCESS, OWN_MINIDUMP,
         obstacle="Dumps/TovakDumpRecorder/"),
    Case("password_in_use", ACCESS_VIOLATION, None, LEGACY, REPORT, overrides="dbghelp="),
    Case("damaged_frame", ABORT, None, LEGACY, REPORT, NOTHING_TOLD, overrides="dbghelp="),
    Case("call_abort", ABORT, None, NO_WAY, NO_DUMP, NO_DUMP_TOLD, "Dumps"),
]
failures = []


def check(name, condition, what):
    if not condition:
        failures.append(name)
        print(f"FAILED {name}: {what}")


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


class Crash:
    def __init__(self, case, name):
        self.case, self.name, self.folder = case, name, WORK / name
        self.dumps = self.folder / "logs/Dumps"
        # The status that a Unix program gets has 8 bits; the command interpreter prints all 32.
        line = f"{windows_path(PROGRAM)} {case.way} {windows_path(self.folder)} & echo !errorlevel!"
        command = f'. "{ROOT}/scripts/common.sh"; WINEDLLOVERRIDES+=";{case.overrides}" exec wine64 cmd /v:on /c "$1"'
        begin = time.monotonic()
        run = subprocess.run(["bash", "-c", command, "bash", line], input=PASSWORD + "\n", capture_output=True,
                             text=True, timeout=200)
        self.seconds = time.monotonic() - begin
        self.status = int(run.stdout.split()[-1]) & 0xFFFFFFFF
        self.told = run.stderr.removeprefix("pure virtual method called\n")  # which the C++ runtime tells
        self.log = (self.folder / "logs/Ormacon.log").read_text(encoding="utf-8").splitlines()
        self.files = [path for path in self.dumps.glob("*") if path.is_file() and path.suffix != ".dll"]

    def check(self):
        case = self.case
        check(self.name, self.status == case.status, f"status {self.status:08X} instead of {case.status:08X}")
        process_id = next(line.rpartition(" ")[2] for line in self.log if "Process Id: " in line)
        names = [re.fullmatch(rf"Ormacon_crash_{process_id}{case.dump}", file.name) for file in self.files]
        check(self.name, all(names) and len(names) == (case.dump is not NO_DUMP), f"files {self.files}")
        check(self.name, case.dump is not NO_DUMP or self.seconds < 30, f"took {self.seconds} s")
        notice = f"The program has crashed with 0x{case.status:08X}. {case.notice}" if case.notice else ""
        check(self.name, self.told == notice.format(windows_path(self.dumps)), f"told {self.told!r}")
        lines_behind = self.check_log(case.lines)
        check(self.name, lines_behind == 0 or case.lines is not RECORDED, f"{lines_behind} lines behind the end")
        for path in (path for path in self.folder.rglob("*") if path.is_file()):
            content = path.read_bytes()
            for encoding in "utf-8", "utf-16-le":
                check(self.name, PASSWORD.encode(encoding) not in content, f"password as {encoding} in {path.name}")
            check(self.name, "exceptions" not in path.name or re.search(FRAME_IN_REPORT, content), f"no frame in {content}")

    def check_log(self, expected):
        """The number of lines behind the expected ones."""
        rest = iter(self.log)
        for line in expected:
            check(self.name, any(re.search(line, found) for found in rest), f"{line!r} is not in its place in {self.log}")
        return len(list(rest))


def prepare(name, obstacle=""):
    shutil.rmtree(WORK / name, ignore_errors=True)
    place = WORK / name / "logs" / obstacle
    if obstacle and not obstacle.endswith("/"):
        place.parent.mkdir(parents=True)
        place.touch()
    else:
        place.mkdir(parents=True)


def check_case(number):
    case = CASES[number]
    name = f"{number}-{case.way}"
    prepare(name, case.obstacle)
    crash = Crash(case, name)
    crash.check()
    return crash


def check_many_crashes():
    prepare("many_crashes")
    seen = []
    for i in range(25):
        # Reports and minidumps count alike; the reports are quicker.
        crash = Crash(Case("call_abort", ABORT, None, overrides="" if i == 12 else "dbghelp="), "many_crashes")
        # A process id comes again, and with it the name of a dump that is gone.
        dumps = [(file.name, file.stat().st_mtime_ns) for file in crash.files]
        seen += [dump for dump in dumps if dump not in seen]
        check(crash.name, len(seen) == i + 1, f"{len(seen)} dumps in {i + 1} crashes")
        check(crash.name, set(dumps) == set(seen[-10:]), f"{dumps} are not the youngest of {seen}")
    crash.check_log([r"Dump \[.*\\Ormacon_crash_.*\] deleted\."] * 15)


def check_backtraces(crashes):
    commands = [f"settings set target.exec-search-paths {PROGRAM.parent} {SYSTEM_MODULES}"]
    for crash in crashes:
        commands += [f"target create --core {crash.files[0]}", "bt 40"]
    debugger = ["lldb", "--batch"] + [part for command in commands for part in ("-o", command)]
    output = subprocess.run(debugger, capture_output=True, text=True, timeout=300).stdout
    for crash in crashes:
        backtrace = output.partition(f"target create --core {crash.files[0]}\n")[2].partition("(lldb) target")[0]
        frame = rf"frame #\d+:.*[`: ]{re.escape(crash.case.function)}(\(| \+ |$)"
        check(crash.name, re.search(frame, backtrace, re.MULTILINE), f"no {crash.case.function} in {backtrace}")


if shutil.which("lldb") is None:
    sys.exit("lldb is missing")
with concurrent.futures.ThreadPoolExecutor(3) as executor:
    many_crashes = executor.submit(check_many_crashes)
    crashes = list(executor.map(check_case, range(len(CASES))))
    many_crashes.result()
check_backtraces([crash for crash in crashes if crash.case.function and crash.files])
print(f"{len(failures)} failures")
sys.exit(1 if failures else 0)
