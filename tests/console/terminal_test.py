"""Lines that are too long, Ctrl+C and a closed window, in a real terminal."""
import os
import subprocess
import sys
import unittest

from console_kit import ROOT, SECONDS, ConsoleTest, Terminal, windows_path

COUNT = int(os.environ.get("ORMACON_INTERRUPTS", 5))  # for scripts/soak.sh


class Typing(ConsoleTest):
    def typed(self, text, *options):
        """Exit status and dialogue."""
        done = subprocess.run([sys.executable, os.path.join(ROOT, "scripts/terminal.py"), "wine64",
                               self.path("Ormacon.exe"), *options], input=text, capture_output=True,
                              timeout=5 * SECONDS, cwd=self.folder, check=False)
        self.assert_gone()
        return done.returncode, done.stdout.decode().rstrip("\n")

    def test_the_rest_of_a_hidden_line_is_dropped(self):
        for length in (1022, 1023, 1024, 1025, 3000):
            answers = f"h.example.org\n1\nuser\n{'P' * length}SECRETREST\n1\n"
            self.assertEqual(1, self.typed(answers.encode(), "--wizard")[0])
            self.assertIn("Read from console [1]", self.log()[-14:])
        self.assert_in_no_file("SECRETREST")

    def test_long_line(self):
        status, shown = self.typed(b"x" * 5000 + b"\nn\n", "--wizard")
        self.assertEqual(0, status)
        reads = [line for line in self.log() if line.startswith("Read from console")]
        answers = ["x" * 1024] * 4 + ["x" * 904, "n"]  # to host, restart, host, restart, host, restart
        self.assertEqual([f"Read from console [{answer}]" for answer in answers], reads)
        self.assertIn("it is neither a host name nor an IP address.", shown.replace("\n", ""))

    def test_log_that_cannot_be_opened(self):
        self.log_to(self.path("Ormacon.exe"))
        directory = windows_path(self.path("Ormacon.exe"))
        status, shown = self.typed(b"", "--set-host", "h.example.org")
        self.assertEqual((0, [f"Cannot create directory [{directory}].", "--tr:Error code: 0x000000b7",
                              f"Failed to initialize log [{directory}\\RmanPluginLogs\\Ormacon.log].",
                              "Cannot init logging"]), (status, shown.split("\n")[1:]))  # after the system's own text
        self.assertFalse(os.path.exists(self.path("report.txt")), "the library was called")


class Interrupts(ConsoleTest):
    """The program is gone at once, and nothing was changed."""

    def start_up_to_password_prompt(self):
        terminal = self.start("--set-credentials", "user")
        self.wait_for(terminal, lambda: terminal.cursor_line() == "Enter password for user: " and terminal.reads())
        return terminal

    def check_interrupted(self):
        self.assert_gone()
        for line in "Read from console [Hidden data]", "Calling SetCredentials function":
            self.assertNotIn(line, self.log())

    def test_ctrl_c_at_the_password_prompt(self):
        # Wine's console starts the desktop at the first key, and hangs when Ctrl+C comes in that moment: start it now.
        other = Terminal(("wine64", "cmd"))
        self.addCleanup(other.close)
        self.wait_for(other, lambda: other.cursor_line().endswith(">") and other.reads())
        other.type("x")
        self.wait_for(other, lambda: other.cursor_line().endswith(">x"))
        for _ in range(COUNT):
            terminal = self.start_up_to_password_prompt()
            terminal.type("secret")
            terminal.press("C-c")
            self.wait_for(terminal, terminal.ended)
            self.check_interrupted()

    def test_closed_window_at_the_password_prompt(self):
        for run in range(COUNT):
            terminal = self.start_up_to_password_prompt()
            terminal.type("secret"[:run % 4])
            terminal.close()
            self.check_interrupted()


if __name__ == "__main__":
    unittest.main()
