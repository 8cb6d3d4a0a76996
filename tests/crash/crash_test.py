"""Lets the crash program die in every way and looks at what it leaves: dump, log, notice, exit status, backtrace."""
import collections
import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import unittest

from console_kit import BIN, WORK, forms, prepare_windows_environment, windows_path

PROGRAM = pathlib.Path(BIN, "crash_program.exe")
SYSTEM_MODULES = "/usr/lib/x86_64-linux-gnu/wine/x86_64-windows"
PASSWORD = "Zq7#tiger"
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
FAULTS = FAULTY + IN_PROCESS + ["The library goes on.", r"MiniDumpWriteDump\(\) function call has failed",
                                "Error code: 0xc0000005$", LEGACY[-1]]
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
    Case("stack_overflow", STACK_OVERFLOW, "recurse"),
    Case("uncaught_int", TERMINATE, "uncaught_int"),
    Case("log_lock_held", ACCESS_VIOLATION, "write_through_null", []),
    Case("crash_while_exiting", ACCESS_VIOLATION, "write_through_null"),
    Case("loader_lock_held", STACK_OVERFLOW, "recurse"),
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
    Case("recorder_killed", ACCESS_VIOLATION, "recorder_killed", KILLED + IN_PROCESS, OWN_MINIDUMP),
    Case("damaged_frame", ABORT, None, LEGACY, REPORT, overrides="dbghelp="),
    # Ways to die whose dumps would show nothing new.
    Case("no_dump_folder", 0xC0000417, None, NO_FOLDER, NO_DUMP, UNKNOWN),
    Case("pure_virtual_call", TERMINATE, None, FILE_FOLDER, NO_DUMP, NOWHERE, "logs/Dumps"),
    Case("heap_corruption", 0xC0000374, None, LINKED_FOLDER, NO_DUMP, NOWHERE, "logs/Dumps@"),
]


def prepare(name, obstacle=""):
    """Returns an empty folder with the program and this obstacle."""
    folder = pathlib.Path(WORK, "crashes", name)
    shutil.rmtree(folder, ignore_errors=True)
    (folder / "logs").mkdir(parents=True)
    os.link(PROGRAM, folder / PROGRAM.name)
    place = folder / obstacle.rstrip("@")
    if obstacle.endswith("@"):
        (folder / "elsewhere").mkdir()
        place.symlink_to(folder / "elsewhere")
    elif obstacle:
        place.touch()
    return folder


class Crash:
    """A run of the program, and what it has left."""

    def __init__(self, case, folder):
        self.case, self.folder, self.dumps = case, folder, folder / "logs/Dumps"
        # The status that a Unix program gets has 8 bits; the command interpreter prints all 32.
        line = f"{windows_path(folder / PROGRAM.name)} {case.way} {windows_path(folder)} & echo !errorlevel!"
        overrides = f"{os.environ['WINEDLLOVERRIDES']};{case.overrides}"
        run = subprocess.run(["wine64", "cmd", "/v:on", "/c", line], input=PASSWORD + "\n", capture_output=True,
                             text=True, timeout=200, env={**os.environ, "WINEDLLOVERRIDES": overrides})
        printed = run.stdout.split()
        self.status = int(printed[-1]) & 0xFFFFFFFF if printed else f"none is printed: {run}"
        self.notice = run.stderr.removeprefix("pure virtual method called\n")  # which the C++ runtime prints
        self.log = (folder / "logs/Ormacon.log").read_text(encoding="utf-8").splitlines()
        self.files = [path for path in self.dumps.glob("*") if path.is_file()]


class CrashHandling(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        prepare_windows_environment()
        with concurrent.futures.ThreadPoolExecutor(3) as executor:
            cls.crashes = list(executor.map(lambda case: Crash(case, prepare(case.way, case.obstacle)), CASES))

    def test_every_way_to_die_leaves_what_it_should(self):
        for crash in self.crashes:
            with self.subTest(crash.case.way):
                self.check_status_and_files(crash)
                self.check_log(crash)

    def check_status_and_files(self, crash):
        case = crash.case
        self.assertEqual(case.status, crash.status)
        # Printed last: it is missing when the watching thread had to end the process.
        notice = f"The program has crashed with 0x{case.status:08X}. {case.notice}" if case.notice else ""
        self.assertEqual(notice.format(windows_path(crash.dumps)), crash.notice)
        process_id = next(line.rpartition(" ")[2] for line in crash.log if "Process Id: " in line)
        wanted = f"Ormacon_crash_{process_id}{case.dump}" if case.dump else ""
        self.assertRegex(" ".join(file.name for file in crash.files), f"^{wanted}$")
        self.assertFalse((crash.folder / "TovakDumpRecorder").is_file(), "the recorder's file was left behind")
        for path in crash.folder.rglob("*"):
            if path.is_file() and path.suffix not in (".exe", ".dll"):
                content = path.read_bytes()
                for form in forms(PASSWORD):
                    self.assertFalse(form.lower() in content.lower(), f"{form} in {path}")
                if case.dump == REPORT and path in crash.files:
                    self.assertRegex(content, REPORTED_FRAME)

    def check_log(self, crash):
        """The last lines are those of the crash; they and the line before them have the id of the crashed thread."""
        lines, log = crash.case.lines, crash.log
        begin = next((i for i, line in enumerate(log) if BEGIN[0] in line), len(log))
        rest = iter(log[begin:])
        for line in lines:
            self.assertTrue(any(re.search(line, found) for found in rest), f"{line!r} is not in its place in {log}")
        if not lines or lines[-1] in RECORDED:
            self.assertEqual([], list(rest), log)
        threads = {line.partition(">")[0].partition("<")[2] for line in log[begin - 1:]} - {"     +"}  # continued lines
        # So have the lines of the spare thread, which handles the stack overflow of a second thread.
        self.assertLessEqual(len(threads), 1, log)

    def test_programs_that_crash_at_once_lose_no_dump_and_a_later_one_deletes_the_oldest(self):
        case, folder = Case("uncaught_int", TERMINATE, None), prepare("at_once")
        with concurrent.futures.ThreadPoolExecutor(4) as programs:
            crashes = list(programs.map(lambda _: Crash(case, folder), range(4)))
        self.assertEqual([TERMINATE] * 4, [crash.status for crash in crashes])
        dumps = set(crashes[0].dumps.iterdir())
        evidence = [run.notice for run in crashes] + [log.read_text() for log in (folder / "logs").glob("*.log")]
        self.assertEqual([".mdmp"] * 4, [dump.suffix for dump in dumps], evidence)
        self.assertFalse((folder / "TovakDumpRecorder").exists(), "the recorder's file was left behind")
        oldest = min(dumps, key=lambda dump: dump.stat().st_mtime_ns)
        for number in range(6):
            (crashes[0].dumps / f"Ormacon_crash_{number}_1.mdmp").touch()
        last = Crash(case, folder)
        self.assertEqual((10, {oldest}), (len(last.files), dumps - set(last.files)))
        self.assertIn(f"Dump [{windows_path(oldest)}] deleted.", "\n".join(last.log))

    def test_backtraces_name_the_function(self):
        crashes = [crash for crash in self.crashes if crash.case.function and crash.files]
        debugger = next(filter(shutil.which, ["lldb"] + [f"lldb-{version}" for version in range(30, 13, -1)]), None)
        self.assertIsNotNone(debugger, "lldb is missing")
        commands = [f"settings set target.exec-search-paths {PROGRAM.parent} {SYSTEM_MODULES}"]
        for crash in crashes:
            commands += [f"target create --core {crash.files[0]}", "bt 40"]
        options = [part for command in commands for part in ("-o", command)]
        output = subprocess.run([debugger, "--batch", *options], capture_output=True, text=True, timeout=300).stdout
        for crash in crashes:
            with self.subTest(crash.case.way):
                backtrace = output.partition(f"target create --core {crash.files[0]}\n")[2].partition("(lldb) target")[0]
                self.assertRegex(backtrace, rf"(?m)frame #\d+:.*[`: ]{re.escape(crash.case.function)}(\(| \+ |$)")


if __name__ == "__main__":
    unittest.main()
