"""Ctrl+C, Ctrl+Break and a closed window: the program is gone at once, the console echoes, and nothing was changed."""
import os
import time
import unittest

from console_kit import BIN, ConsoleTest

COUNT = os.environ.get("ORMACON_INTERRUPTS")  # for scripts/soak.sh
RUNS = int(COUNT or 30)
CLOSED_WINDOWS = int(COUNT or 3)
PROMPT = r"Enter password for CORP\oracle: "
ANSWERS = ["h.example.org", "10006", r"CORP\oracle", "s3cret-word", "3 1", "8"]  # to the wizard


class Interrupts(ConsoleTest):
    def start_in_shell(self, event, runs, *options):
        return self.terminal("wine64", os.path.join(BIN, "console_test/break_sender.exe"), event, str(runs), "runs.txt",
                             self.path("Ormacon.exe"), *options)

    def await_ends(self, terminal, runs):
        """Waits for the reports on these runs. On a busy machine, later ones may have ended, too."""
        expected = [f"run {run}: ended, echo on" for run in range(1, runs + 1)]
        self.wait_for(terminal, lambda: os.path.exists(self.path("runs.txt")) and
                      self.read("runs.txt").count("\n") >= runs)
        self.assertEqual(expected, self.read("runs.txt").splitlines()[:runs], terminal.screen())

    def check_console_afterwards(self, terminal):
        self.assert_gone()
        os.remove(self.path("runs.txt"))
        terminal.type("seen again")
        self.wait_for(terminal, lambda: "seen again" in terminal.screen())
        terminal.close()

    def check_nothing_was_changed(self):
        for name in "report.txt", "OrmaconDemoState.xml":
            self.assertFalse(os.path.exists(self.path(name)), name)
        for line in "Read from console [Hidden data]", "Calling SetCredentials function":
            self.assertNotIn(line, self.log())

    def test_ctrl_c_at_the_password_prompt(self):
        terminal = self.start_in_shell("wait", RUNS, "--set-credentials", "userRUN")
        for run in range(1, RUNS + 1):
            self.await_prompt(terminal, f"Enter password for user{run}: ")
            if run == 1:  # then Wine keeps the line of the read that has ended, and echoes in it what nobody reads yet
                terminal.type("secret")
            terminal.press("C-c")
            self.await_ends(terminal, run)
        self.check_nothing_was_changed()
        self.check_console_afterwards(terminal)

    def test_ctrl_break_at_the_password_prompt(self):
        terminal = self.start_in_shell("break", RUNS, "--set-credentials", r"CORP\oracle")
        for run in range(1, RUNS + 1):
            self.await_ends(terminal, run)
        self.check_nothing_was_changed()
        self.check_console_afterwards(terminal)

    def test_closed_window_at_the_password_prompt(self):
        for run in range(1, CLOSED_WINDOWS + 1):
            terminal = self.start("--set-credentials", "user")
            self.wait_for(terminal, lambda: "Enter password for user:" in terminal.screen())
            terminal.type("secret"[:run % 4])
            terminal.close()
            self.assert_gone()
            self.check_nothing_was_changed()

    def test_ctrl_c_in_the_wizard(self):
        for count, prompt in ((3, PROMPT), (6, "Enter: ")):
            with self.subTest(prompt):
                terminal = self.start_in_shell("wait", 1, "--wizard")
                self.answer(terminal, ANSWERS[:count])
                self.await_prompt(terminal, prompt)
                terminal.press("C-c")
                self.await_ends(terminal, 1)
                self.check_console_afterwards(terminal)
                self.assertNotIn("Commit", self.calls())
                self.assertFalse(os.path.exists(self.path("OrmaconDemoState.xml")))

    def test_library_that_changes_the_console_mode(self):
        for fault in ("delay='60000'", "crash='access-violation'", "fail='refused'"):
            with self.subTest(fault):
                self.scenario(f"<Function name='SetHostDirect' consoleMode='1' {fault}/>")
                terminal = self.start_in_shell("wait", 1, "--set-host", "h")
                self.wait_for(terminal, lambda: os.path.exists(self.path("report.txt")))
                if fault.startswith("delay"):
                    time.sleep(0.3)
                    terminal.press("C-c")
                self.await_ends(terminal, 1)
                self.check_console_afterwards(terminal)
                os.remove(self.path("report.txt"))


if __name__ == "__main__":
    unittest.main()
