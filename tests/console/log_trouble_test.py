"""A log that makes trouble: commands do their work wherever it opens, and say why where it does not."""
import gzip
import os
import pathlib
import re
import resource
import unittest

from console_kit import ConsoleTest, windows_path

GAP = r"^WARN\|Records that could not be written to the log: [1-9]\d*\.$"
DONE = "Unloading configuration library ok."
LOG = os.path.join("RmanPluginLogs", "Ormacon.log")
# The log directory below the test's folder, the folder that is there already, and what is said about it.
REFUSED = [
    ("\\Ormacon.exe", "", "Cannot create directory [{}]."),
]


class LogTrouble(ConsoleTest):
    def set_host(self, host):
        self.assertEqual("", self.run_program("--set-host", host))
        self.assertIn(f'host="{host}"', self.read("OrmaconDemoState.xml"))

    def asking(self, *launcher):
        terminal = self.terminal(*launcher, "wine64", self.path("Ormacon.exe"), "--set-credentials", "user")
        self.wait_for(terminal, "Enter password for user:")
        return terminal

    def finish(self, terminal):
        self.talk(terminal, [("Enter password for user: ", "x")])
        self.assertEqual("Enter password for user:", self.ending(terminal))
        self.assertEqual({"SetCredentialsDirect": 1}, self.calls())

    def test_long_and_foreign_path(self):
        folder = pathlib.Path(self.folder, *["l" * 60] * 5, "журнал-日志-𝒳")
        self.log_to(windows_path(str(folder)), 1000)
        for host in ("first", "second"):
            self.set_host(host)
        archives = [gzip.decompress(path.read_bytes()) for path in folder.glob("*/Ormacon*.log.gz")]
        self.assertGreater(len(archives), 2)
        texts = b"".join(archives) + (folder / LOG).read_bytes()
        self.assertEqual([b"first", b"second"], sorted(re.findall(rb"command, host = \[(.*)\]", texts)))

    def test_refused(self):
        for directory, obstacle, sentence in REFUSED:
            with self.subTest(sentence):
                os.makedirs(self.path(obstacle), exist_ok=True)
                directory = windows_path(self.folder) + directory
                self.log_to(directory)
                lines = self.run_program("--set-host", "h.example.org").split("\n")
                self.assertRegex(lines.pop(0), r"^\w.*\S$")  # the system's own text
                self.assertRegex(lines.pop(1), "^--tr:Error code: 0x[0-9a-f]{8}$")
                self.assertEqual([sentence.format(directory),
                                  f"Failed to initialize log [{directory}\\RmanPluginLogs\\Ormacon.log].",
                                  "Cannot init logging"], lines)
                self.assertFalse(os.path.exists(self.path("report.txt")), "the library was called")

    def test_disk_is_full_for_a_while(self):
        # To the program a limit of the size of its files is what a full disk is, and it needs no rights.
        terminal = self.asking("bash", "-c", "trap '' XFSZ; ulimit -S -f 1; exec \"$@\"", "bash")
        before = self.log()
        resource.prlimit(int(self.programs()[0]), resource.RLIMIT_FSIZE, (resource.RLIM_INFINITY,) * 2)
        self.finish(terminal)
        gap, *after = self.log()[len(before):]
        self.assertRegex(gap, GAP)
        self.assertNotIn("could not", "".join(after))
        self.assertEqual(DONE, after[-1])

    def test_log_is_deleted_while_it_is_open(self):
        terminal = self.asking()
        self.set_host("second.example.org")  # meanwhile, with a log of its own
        for name in "Ormacon.log", "Ormacon_2.log":
            self.assertEqual(1, self.log(name).count("=" * 84))
        self.assertEqual(DONE, self.log("Ormacon_2.log")[-1])
        os.remove(self.path(LOG))
        self.finish(terminal)
        self.set_host("next.example.org")
        self.assertEqual(DONE, self.log()[-1])


if __name__ == "__main__":
    unittest.main()
