"""Typing for a program without a person: it always ends and prints the dialogue."""
import os
import subprocess
import sys
import unittest

from console_kit import ROOT, SECONDS, ConsoleTest

MORE = "!! the program asked for more lines than the input has; its terminal was closed\n"
HOST = "Enter backup server name or IP address :"
RESTART = "Some errors occurred while applying the configuration. Restart the wizard? (y/n):"
REFUSED = "it is neither a host name nor an IP address."


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
        self.assertIn(REFUSED, shown.replace("\n", ""))


if __name__ == "__main__":
    unittest.main()
