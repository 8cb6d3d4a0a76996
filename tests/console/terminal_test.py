"""Typing for a program without a person: it always ends and prints the dialogue. And a log that makes trouble, which
needs a machine whose settings and limits may be changed."""
import gzip
import os
import pathlib
import re
import resource
import subprocess
import sys
import unittest

from console_kit import ROOT, SECONDS, ConsoleTest, windows_path

MORE = "!! the program asked for more lines than the input has; its terminal was closed\n"
HOST = "Enter backup server name or IP address :"


class Typing(ConsoleTest):
    def typed(self, text, *options):
        """Exit status, dialogue and complaint."""
        done = subprocess.run([sys.executable, os.path.join(ROOT, "scripts/terminal.py"), "wine64",
                               self.path("Ormacon.exe"), *options], input=text, capture_output=True,
                              timeout=5 * SECONDS, cwd=self.folder, check=False)
        self.assert_gone()
        return done.returncode, done.stdout.decode().rstrip("\n"), done.stderr.decode()

    def test_input_that_ends_early(self):
        self.assertEqual((0, "Backup server:\nPort: 0\nUser name:\nDomain name:\nParallelism: 1\nRepository:", ""),
                         self.typed(b"", "--show-config"))
        self.assertEqual((1, HOST, MORE), self.typed(b"", "--wizard"))
        self.assertEqual((1, HOST + " h.example.org\nEnter backup server port 0: 7\nEnter username:", MORE),
                         self.typed(b"h.example.org\r\n7", "--wizard"))
        self.assertNotIn("Commit", self.calls())

    def test_semicolons_arrive_and_more_input_is_left_over(self):
        for account, more in ("user", b"left over\n"), ("a;", b""), (";", b""), ("b;;", b""), (";c", b""):
            self.assertEqual((0, f"Enter password for {account}:", ""),
                             self.typed(b"x;\n" + more, "--set-credentials", account))
            self.assertEqual({"SetCredentialsDirect": 1}, self.calls())

    def test_the_rest_of_a_hidden_line_is_dropped(self):
        for length in (1022, 1023, 1024, 1025, 3000):
            answers = f"h.example.org\n1\nuser\n{'P' * length}SECRETREST\n1\n"
            self.assertEqual(1, self.typed(answers.encode(), "--wizard")[0])
            self.assertIn("Read from console [1]", self.log()[-12:])
        self.assert_in_no_file("SECRETREST")

    def test_long_line(self):
        status, shown, _ = self.typed(b"x" * 5000 + b"\nn\n", "--wizard")
        self.assertEqual(0, status)
        reads = [line for line in self.log() if line.startswith("Read from console")]
        answers = ["x" * 1024] * 4 + ["x" * 904, "n"]  # to host, restart, host, restart, host, restart
        self.assertEqual([f"Read from console [{answer}]" for answer in answers], reads)
        self.assertIn("it is neither a host name nor an IP address.", shown.replace("\n", ""))


class LogTrouble(ConsoleTest):
    def test_long_and_foreign_path(self):
        folder = pathlib.Path(self.folder, *["l" * 60] * 5, "журнал-日志-𝒳")
        self.log_to(folder, 1000)
        for host in ("first", "second"):
            self.assertEqual("", self.ending(self.start("--set-host", host)))
        archives = [gzip.decompress(path.read_bytes()) for path in folder.glob("*/Ormacon*.log.gz")]
        self.assertGreater(len(archives), 2)
        texts = b"".join(archives) + (folder / "RmanPluginLogs" / "Ormacon.log").read_bytes()
        self.assertEqual([b"first", b"second"], sorted(re.findall(rb"command, host = \[(.*)\]", texts)))

    def test_refused(self):
        self.log_to(self.path("Ormacon.exe"))
        directory = windows_path(self.path("Ormacon.exe"))
        lines = self.ending(self.start("--set-host", "h.example.org")).split("\n")
        self.assertRegex(lines.pop(0), r"^\w.*\S$")  # the system's own text
        self.assertEqual([f"Cannot create directory [{directory}].", "--tr:Error code: 0x000000b7",
                          f"Failed to initialize log [{directory}\\RmanPluginLogs\\Ormacon.log].", "Cannot init logging"],
                         lines)
        self.assertFalse(os.path.exists(self.path("report.txt")), "the library was called")

    def test_disk_is_full_for_a_while(self):
        # A limit on the size of its files looks like a full disk to the program, and anyone can set it.
        terminal = self.terminal("bash", "-c", "trap '' XFSZ; ulimit -S -f 1; exec \"$@\"", "bash", "wine64",
                                 self.path("Ormacon.exe"), "--set-credentials", "user")
        self.await_prompt(terminal, "Enter password for user: ")
        before = self.log()
        resource.prlimit(self.programs()[0], resource.RLIMIT_FSIZE, (resource.RLIM_INFINITY,) * 2)
        terminal.answer("x")
        self.ending(terminal)
        self.assertEqual({"SetCredentialsDirect": 1}, self.calls())
        gap, *after = self.log()[len(before):]
        self.assertRegex(gap, r"^WARN\|Records that could not be written to the log: [1-9]\d*\.$")
        self.assertNotIn("could not", "".join(after))
        self.assertEqual("Unloading configuration library ok.", after[-1])


if __name__ == "__main__":
    unittest.main()
