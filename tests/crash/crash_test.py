"""Lets the crash program die in every way and looks at what it leaves: dump, log, notice, exit status, backtrace."""
import collections
import concurrent.futures
import os
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
REPORTED_FRAME = rb"\r\nStack frames:\r\n0x[0-9a-f]+ crash_program\.exe \+ "

BEGIN = ["Trying to generate crash dump", "Executing crash handlers.", "Crash handlers were successfully executed."]
RECORDING = [r"Generating dump to .*\\logs\\Dumps$"]
RECORDED = BEGIN + RECORDING
FAULTY = BEGIN[:2] + ["A crash handler has failed."] + RECORDING
IN_PROCESS = [r"Writing dump\. Dump path: .*\\Ormacon_crash_\d+_1\.mdmp\.$"]
KILLED = RECORDED + ["Dump generator process failed with 9: unexpected exit code$"]
LEGACY = RECORDED + ["Dump generator process failed with 1: unspecified failure$",
                     r"Cannot load dbghelp\.dll library\.$",
                     r"Writing legacy dump\. Dump path: .*\\Ormacon_crash_\d+_1-exceptions\.log\.$"]
# Each stage faults after its line; the minidump's writer does so after a fault of its own.
FAULTS = FAULTY + IN_PROCESS + ["The library goes on.", r"MiniDumpWriteDump\(\) function call has failed", LEGACY[-1]]
NO_FOLDER = BEGIN + [r"WARN\|The folder for crash dumps is unknown\.$"]
FILE_FOLDER = BEGIN + [r"WARN\|Cannot open dump folder \[.*\\Dumps\]\.$"]
LINKED_FOLDER = BEGIN + [r"WARN\|Dump folder \[.*\\Dumps\] is a link\.$"]

# After the base name and the process id.
MINIDUMP, OWN_MINIDUMP, REPORT, NO_DUMP = r"_\d+_\d{18}\.mdmp", r"_1\.mdmp", r"_1-exceptions\.log", None
IN_FOLDER, NOWHERE, UNKNOWN, NO_NOTICE = ("The crash dump is in {}.\n", "No crash dump could be written.\n",
                                          "No crash dump could be written: the log folder is unknown.\n", None)
ACCESS_VIOLATION, STACK_OVERFLOW, TERMINATE, ABORT = 0xC0000005, 0xC00000FD, 0xE0000001, 0x40000015

# function: what the backtrace shows; obstacle: what is in the folder of program and logs, a file or a link@
Case = collections.namedtuple("Case", "way status function lines dump notice obstacle overrides",
                              defaults=(RECORDED, MINIDUMP, IN_FOLDER, "", ""))
CASES = [
    Case("stack_overflow", STACK_OVERFLOW, "recurse<64>"),
    Case("stack_overflow_second_thread", STACK_OVERFLOW, "recurse<64>"),
    # Wine ends the thread without a report where Windows ends the process.
    Case("stack_overflow_unreported", 1, None, [], NO_DUMP, NO_NOTICE),
    Case("uncaught_int", TERMINATE, "uncaught_int"),
    Case("library_load", ABORT, "DllMain"),
    Case("log_lock_held", ACCESS_VIOLATION, "write_through_null", []),
    Case("crash_while_exiting", ACCESS_VIOLATION, "write_through_null"),
    Case("loader_lock_held", STACK_OVERFLOW, "recurse<64>"),
    Case("stack_overflow_recovered", 0, None, [], NO_DUMP, NO_NOTICE),
    Case("two_at_once", ACCESS_VIOLATION, "write_through_null"),
    Case("hanging_handler", ACCESS_VIOLATION, None, BEGIN[:2], NO_DUMP, NO_NOTICE),
    Case("faults_in_filter", ACCESS_VIOLATION, None, FAULTS, NO_DUMP, NO_NOTICE),
    Case("faults_in_vectored_handler", 0xC0000374, None, FAULTS, NO_DUMP, NO_NOTICE),
    Case("damaged_heap", ACCESS_VIOLATION, "damaged_heap"),
    Case("aborting_handler", ABORT, "aborting_handler", FAULTY),
    Case("overflowing_handler", ACCESS_VIOLATION, "write_through_null", BEGIN[:2]),
    # No library of the folder that the recorder is run from may be loaded.
    Case("password_in_use", ACCESS_VIOLATION, "password_in_use", obstacle="dbghelp.dll"),
    Case("password_and_abort", ABORT, "password_and_abort"),
    Case("recorder_killed", ACCESS_VIOLATION, "recorder_killed", KILLED + IN_PROCESS, OWN_MINIDUMP),
    Case("damaged_frame", ABORT, None, LEGACY, REPORT, overrides="dbghelp="),
    # Ways to die whose dumps would show nothing new.
    Case("no_dump_folder", 0xC0000417, None, NO_FOLDER, NO_DUMP, UNKNOWN),
    Case("pure_virtual_call", TERMINATE, None, FILE_FOLDER, NO_DUMP, NOWHERE, "logs/Dumps"),
    Case("heap_corruption", 0xC0000374, None, LINKED_FOLDER, NO_DUMP, NOWHERE, "logs/Dumps@"),
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
        line = f"{windows_path(self.folder / PROGRAM.name)} {case.way} {windows_path(self.folder)} & echo !errorlevel!"
        command = f'. "{ROOT}/scripts/common.sh"; WINEDLLOVERRIDES+=";{case.overrides}" exec wine64 cmd /v:on /c "$1"'
        begin = time.monotonic()
        run = subprocess.run(["bash", "-c", command, "bash", line], input=PASSWORD + "\n", capture_output=True,
                             text=True, timeout=200)
        self.seconds = time.monotonic() - begin
        printed = run.stdout.split()
        check(self.name, printed, f"no exit status, {run.stderr!r}")
        self.status = int(printed[-1]) & 0xFFFFFFFF if printed else None
        self.notice = run.stderr.removeprefix("pure virtual method called\n")  # which the C++ runtime prints
        self.files = [path for path in self.dumps.glob("*") if path.is_file()]

    def check(self):
        case = self.case
        log = (self.folder / "logs/Ormacon.log").read_text(encoding="utf-8").splitlines()
        check(self.name, self.status == case.status, f"status {self.status} instead of {case.status}")
        process_id = next(line.rpartition(" ")[2] for line in log if "Process Id: " in line)
        names = [re.fullmatch(rf"Ormacon_crash_{process_id}{case.dump}", file.name) for file in self.files]
        check(self.name, all(names) and len(names) == (case.dump is not NO_DUMP), f"files {self.files}")
        check(self.name, not (self.folder / RECORDER).is_file(), "the recorder's file was left behind")
        # Printed last: it is missing when the watching thread had to end the process.
        notice = f"The program has crashed with 0x{case.status:08X}. {case.notice}" if case.notice else ""
        check(self.name, self.notice == notice.format(windows_path(self.dumps)), f"notice {self.notice!r}")
        self.check_log(log)
        for path in (path for path in self.folder.rglob("*") if path.is_file()):
            content = path.read_bytes()
            for encoding in "utf-8", "utf-16-le":
                check(self.name, PASSWORD.encode(encoding) not in content, f"password as {encoding} in {path.name}")
            if "exceptions" in path.name:
                check(self.name, re.search(REPORTED_FRAME, content), f"no frame in {content}")

    def check_log(self, log):
        """The last lines are those of the crash; they and the line before them have the id of the crashed thread."""
        begin = next((i for i, line in enumerate(log) if BEGIN[0] in line), len(log))
        rest = iter(log[begin:])
        for line in self.case.lines:
            check(self.name, any(re.search(line, found) for found in rest), f"{line!r} is not in its place in {log[begin - 1:]}")
        check(self.name, list(rest) == [] or self.case.lines[-1] not in RECORDED, f"lines after the end of {log}")
        threads = {line.partition(">")[0].partition("<")[2] for line in log[begin - 1:]} - {"     +"}  # continued lines
        # So have the lines of the spare thread, which handles the stack overflow of a second thread.
        check(self.name, len(threads) <= 1, f"several threads in {log}")


def prepare(name, obstacle=""):
    folder = WORK / name
    shutil.rmtree(folder, ignore_errors=True)
    (folder / "logs").mkdir(parents=True)
    for file in PROGRAM, PROGRAM.with_name("crash_library.dll"):
        os.link(file, folder / file.name)
    place = folder / obstacle.rstrip("@")
    if obstacle.endswith("@"):
        (folder / "elsewhere").mkdir()
        place.symlink_to(folder / "elsewhere")
    elif obstacle:
        place.touch()


def check_case(number):
    case = CASES[number]
    name = f"{number}-{case.way}"
    prepare(name, case.obstacle)
    crash = Crash(case, name)
    crash.check()
    return crash


def check_crashes_at_once():
    """Programs that share one recorder file lose no dump; a later crash deletes the oldest one."""
    prepare("at_once")
    case = Case("uncaught_int", TERMINATE, None)
    with concurrent.futures.ThreadPoolExecutor(4) as programs:
        crashes = list(programs.map(lambda _: Crash(case, "at_once"), range(4)))
    for crash in crashes:
        check("at_once", crash.status == TERMINATE, f"status {crash.status}, notice {crash.notice!r}")
    dumps = set(crashes[0].dumps.iterdir())
    check("at_once", len(dumps) == 4 and all(dump.suffix == ".mdmp" for dump in dumps), f"{dumps}")
    check("at_once", not (crashes[0].folder / RECORDER).exists(), "the recorder's file was left behind")
    oldest = min(dumps, key=lambda dump: dump.stat().st_mtime_ns)
    for number in range(6):
        (crashes[0].dumps / f"Ormacon_crash_{number}_1.mdmp").touch()
    last = Crash(case, "at_once")
    check("at_once", len(last.files) == 10 and dumps - set(last.files) == {oldest}, f"{last.files} after {dumps}")
    log = (last.folder / "logs/Ormacon.log").read_text()
    check("at_once", f"Dump [{windows_path(oldest)}] deleted." in log, f"not in {log}")


def check_backtraces(crashes):
    commands = [f"settings set target.exec-search-paths {PROGRAM.parent} {SYSTEM_MODULES}"]
    for crash in crashes:
        commands += [f"target create --core {crash.files[0]}", "bt 40"]
    debugger = [DEBUGGER, "--batch"] + [part for command in commands for part in ("-o", command)]
    output = subprocess.run(debugger, capture_output=True, text=True, timeout=300).stdout
    for crash in crashes:
        backtrace = output.partition(f"target create --core {crash.files[0]}\n")[2].partition("(lldb) target")[0]
        frame = rf"frame #\d+:.*[`: ]{re.escape(crash.case.function)}(\(| \+ |$)"
        check(crash.name, re.search(frame, backtrace, re.MULTILINE), f"no {crash.case.function} in {backtrace}")


DEBUGGER = next(filter(shutil.which, ["lldb"] + [f"lldb-{version}" for version in range(30, 13, -1)]), None)
if DEBUGGER is None:
    sys.exit("lldb is missing")
with concurrent.futures.ThreadPoolExecutor(3) as executor:
    crashes = list(executor.map(check_case, range(len(CASES))))
check_crashes_at_once()
check_backtraces([crash for crash in crashes if crash.case.function and crash.files])
for crash in crashes:
    print(f"{crash.name:32} {crash.seconds:5.1f} s")
print(f"{len(failures)} failures")
sys.exit(1 if failures else 0)
