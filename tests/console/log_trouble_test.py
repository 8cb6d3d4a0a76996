"""A log that makes trouble: commands do their work wherever it opens, and say why where it does not. These tests change
the machine's settings or limits, which is for a machine of their own."""
import gzip
import os
import pathlib
import re
import resource
import unittest

from console_kit import ConsoleTest, windows_path

GAP = r"^WARN\|Records that could not be written to the log: [1-9]\d*\.$"
DONE = "Unloading configuration library ok."


class LogTrouble(ConsoleTest):
    def test_long_and_foreign_path(self):
        folder = pathlib.Path(self.folder, *["l" * 60] * 5, "журнал-日志-𝒳")
        self.log_to(windows_path(str(folder)), 1000)
        for host in ("first", "second"):
            self.assertEqual("", self.run_program("--set-host", host))
        archives = [gzip.decompress(path.read_bytes()) for path in folder.glob("*/Ormacon*.log.gz")]
        self.assertGreater(len(archives), 2)
        texts = b"".join(archives) + (folder / "RmanPluginLogs" / "Ormacon.log").read_bytes()
        self.assertEqual([b"first", b"second"], sorted(re.findall(rb"command, host = \[(.*)\]", texts)))

    def test_refused(self):
        directory = windows_path(self.path("Ormacon.exe"))
        self.log_to(directory)
        lines = self.run_program("--set-host", "h.example.org").split("\n")
        self.assertRegex(lines.pop(0), r"^\w.*\S$")  # the system's own text
        self.assertEqual([f"Cannot create directory [{directory}].", "--tr:Error code: 0x000000b7",
                          f"Failed to initialize log [{directory}\\RmanPluginLogs\\Ormacon.log].", "Cannot init logging"],
                         lines)
        self.assertFalse(os.path.exists(self.path("report.txt")), "the library was called")

    def test_disk_is_full_for_a_while(self):
        # A limit on the size of its files looks like a full disk to the program, and anyone can set it.
        terminal = self.terminal("bash", "-c", "trap '' XFSZ; ulimit -S -f 1; exec \"$@\"", "bash", "wine64",
                                 self.path("Ormacon.exe"), "--set-credentials", "user")
        self.wait_for(terminal, "Enter password for user:")
        before = self.log()
        resource.prlimit(int(self.programs()[0]), resource.RLIMIT_FSIZE, (resource.RLIM_INFINITY,) * 2)
        terminal.answer("x")
        self.ending(terminal)
        self.assertEqual({"SetCredentialsDirect": 1}, self.calls())
        gap, *after = self.log()[len(before):]
        self.assertRegex(gap, GAP)
        self.assertNotIn("could not", "".join(after))
        self.assertEqual(DONE, after[-1])


if __name__ == "__main__":
    unittest.main()
