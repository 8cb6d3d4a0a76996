"""The real program in a real terminal, each test in a folder of its own."""
import base64
import gzip
import os
import pathlib
import shutil
import subprocess
import sys
import time
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "scripts"))
from terminal import Terminal  # noqa: E402

BIN = os.environ.get("TEST_BIN", os.path.join(ROOT, "build/test/bin"))
WORK = os.path.realpath(os.environ.get("TEST_WORK", os.path.join(ROOT, "build/test/tests/console")))
SETTINGS = r"HKLM\SOFTWARE\Tovak\Tovak Central"
SECONDS = 60  # for what takes a moment, on a machine that has other work to do


def prepare_windows_environment():
    """That of the scripts, in the tests' own prefix, since they write to its registry."""
    shell = ". scripts/common.sh && use_wine test-wine >&2 && env -0"
    wanted = subprocess.run(["bash", "-c", shell], cwd=ROOT, stdout=subprocess.PIPE, text=True, check=True).stdout
    os.environ.update(entry.split("=", 1) for entry in wanted.split("\0") if "=" in entry)
    # Kept for a while after its last program; refused when there is one already.
    run_quietly("wineserver", "-p60", check=False)


def run_quietly(*command, check=True):
    # No pipes: the Windows environment's own processes would keep them open.
    subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                   check=check, timeout=120)


def forms(secret):
    """A text as files may contain it: itself, in hexadecimal digits, and in base64 at each place of a longer text."""
    for encoding in ("utf-8", "utf-16-le"):
        raw = secret.encode(encoding)
        yield from (raw, raw.hex().encode())
        for before in range(3):
            text = base64.b64encode(bytes(before) + raw)
            yield text[(0, 2, 3)[before]:(before + len(raw)) // 3 * 4]


def windows_path(path):
    return f"Z:{path}".replace("/", "\\")


class ConsoleTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        prepare_windows_environment()
        # What a run that was interrupted has set, such as limits of the log.
        run_quietly("wine64", "reg", "delete", SETTINGS, "/f", check=False)
        cls.addClassCleanup(run_quietly, "wine64", "reg", "delete", SETTINGS, "/f", check=False)

    def setUp(self):
        self.folder = os.path.join(WORK, "runs", self.id().split(".", 1)[1])
        shutil.rmtree(self.folder, ignore_errors=True)
        os.makedirs(self.folder)
        for name in ("Ormacon.exe", "OrmaconLib.dll"):
            os.link(os.path.join(BIN, name), self.path(name))
        os.environ["ORMACON_DEMO_REPORT"] = windows_path(self.path("report.txt"))
        self.log_to(self.folder)

    def log_to(self, directory, size=None):
        """The size limits the log in bytes, and in archives, too."""
        run_quietly("wine64", "reg", "add", SETTINGS, "/v", "LogDirectory", "/d", windows_path(directory), "/f")
        for name in ("AgentMaxLogSize", "AgentMaxLogCount") if size else ():
            run_quietly("wine64", "reg", "add", SETTINGS, "/v", name, "/t", "REG_DWORD", "/d", str(size), "/f")
            self.addCleanup(run_quietly, "wine64", "reg", "delete", SETTINGS, "/v", name, "/f", check=False)

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def start(self, *options):
        terminal = Terminal(("wine64", self.path("Ormacon.exe"), *options), columns=500, rows=60, cwd=self.folder)
        self.addCleanup(terminal.close)
        return terminal

    def ending(self, terminal, status=0):
        """The screen after a run; every run that reaches its end has the exit status 0."""
        self.wait_for(terminal, terminal.ended)
        self.assertEqual(status, terminal.exit_status(), terminal.screen())
        return terminal.screen()

    def scenario(self, elements):
        pathlib.Path(self.path("scenario.xml")).write_text(f"<DemoScenario>{elements}</DemoScenario>", "utf-8")
        os.environ["ORMACON_DEMO_SCENARIO"] = windows_path(self.path("scenario.xml"))

    def wait_for(self, terminal, condition):
        self.assertTrue(terminal.wait(condition, SECONDS), "waited in vain:\n" + terminal.screen())

    def answer(self, terminal, answers):
        """Answers whatever is asked."""
        for answer in answers:
            self.assertTrue(terminal.wait_for_prompt_or_end(0.1), terminal.screen())
            terminal.answer(answer)

    def log(self):
        """The log's lines without time stamp and thread id."""
        text = pathlib.Path(self.path("RmanPluginLogs", "Ormacon.log")).read_text("utf-8")
        return [line.split("> ", 1)[-1] for line in text.split("\n")]

    def calls(self):
        """How often each library function was called in the last run. All of its memory must have been freed."""
        first, *rest = pathlib.Path(self.path("report.txt")).read_text("utf-8").splitlines()
        self.assertRegex(first, r"^texts=(\d+)/\1 arrays=(\d+)/\2 wrong=0$")
        counts = (line.split("=") for line in rest if not line.startswith("Free"))
        return {name: int(count) for name, count in counts}

    def is_own_program(self, process):
        try:
            return (process / "comm").read_text() == "Ormacon.exe\n" and os.readlink(process / "cwd") == self.folder
        except OSError:
            return False

    def assert_gone(self):
        deadline = time.monotonic() + SECONDS
        while any(map(self.is_own_program, pathlib.Path("/proc").glob("[0-9]*"))):
            self.assertLess(time.monotonic(), deadline, "still running")
            time.sleep(0.05)

    def assert_without(self, secrets, content, place):
        for form in (form for secret in secrets for form in forms(secret)):
            self.assertFalse(form.lower() in content.lower(), f"{form} in {place}")

    def assert_in_no_file(self, *secrets):
        files = {}
        for path in pathlib.Path(self.folder).rglob("*"):
            if path.is_file() and path.suffix not in (".exe", ".dll"):
                content = path.read_bytes()
                files[str(path)] = gzip.decompress(content) if path.suffix == ".gz" else content
                self.assert_without(secrets, files[str(path)], path)
        return files
