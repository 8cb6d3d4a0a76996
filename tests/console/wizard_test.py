"""Whole sessions of the wizard as a person sees them."""
import unittest

from console_kit import ConsoleTest, windows_path

HOST = "Enter backup server name or IP address %s: "
PORT = "Enter backup server port %s: "
USER = "Enter username%s: "
PASSWORD = "Enter password for %s%s: "
KEPT = " [(do not change the existing password)]"
SERVER = ["Tovak repositories: \r\n", "1. Central Primary\r\n", "2. Central Archive\r\n", "3. Encrypted Vault\r\n",
          "4. Branch Office\r\n", "5. Disaster Recovery Site\r\n"]
CHOICE = "Specify up to 4 Tovak repositories to use as target using whitespace as a separator%s: "
STREAMS = ("Enter the number of data streams (1-64) to run in parallel for each repository (RMAN DEVICE PARALLELISM "
           "value). Channel count per device [%s]: ")
SUMMARY = ("Summary of the demonstration library (no backup server is contacted):\r\n"
           "  Backup server: backup.example.org\r\n  Port: 10006\r\n  User name: CORP\\oracle\r\n"
           "  Password: (hidden)\r\n  Parallelism: 8\r\n  Repository for backup copy 1: Encrypted Vault (encrypted)\r\n"
           "  Repository for backup copy 2: Central Primary\r\n")
MENU = ("Save configuration?\r\n1. Apply configuration to the Oracle environment\r\n"
        "2. Export configuration into a file for manual setup\r\n3. Cancel without saving\r\nEnter: ")
FIRST = [(HOST % "", "backup.example.org"), (PORT % "0", "10006"), (USER % "", r"CORP\oracle"),
         (PASSWORD % (r"CORP\oracle", ""), "s3cret-word"), (CHOICE % "", "3  1"), (STREAMS % "1", "8")]
CONFIGURED = ("Backup server: backup.example.org\nPort: 10006\nUser name: oracle\nDomain name: CORP\nParallelism: 8\n"
              "Repository:\n1. Encrypted Vault\n2. Central Primary")


class Wizard(ConsoleTest):
    def session(self, questions):
        """Answers the questions and applies; compares the whole screen and what was printed."""
        terminal = self.start("--wizard")
        self.talk(terminal, questions + [("Enter: ", "1")])
        screen = self.ending(terminal)
        prompts = [prompt for prompt, _ in questions]
        texts = prompts[:4] + SERVER + prompts[4:] + [
            "\r\n", SUMMARY, MENU, "The demonstration library has applied the configuration and keeps it in "
            + windows_path(self.path("OrmaconDemoState.xml")) + ".\r\n"]
        # Neither the log nor the screen tells "\r\n" from "\n".
        self.assertEqual([text.replace("\r\n", "\n") for text in texts], self.printed())
        seen = {prompt: "" if "password" in prompt else answer for prompt, answer in questions} | {MENU: "1"}
        expected = "".join(text + (seen[text] + "\r\n" if text in seen else "") for text in texts)
        self.assertEqual([line.rstrip() for line in expected.rstrip().splitlines()],
                         [line.rstrip() for line in screen.split("\n")])

    def test_unconfigured_host_then_enter_everywhere(self):
        # Each call leaves the console without echo and whole lines; no question may show that.
        self.scenario("".join(f'<Function name="{name}" consoleMode="0"/>' for name in (
            "GetConfig", "SetHost", "SetPort", "SetCredentials", "GetTBRRepositories", "SetParallelism", "GetSummary")))
        again = [(HOST % " [backup.example.org]", ""), (PORT % "10006", ""), (USER % r" [CORP\oracle]", ""),
                 (PASSWORD % (r"CORP\oracle", KEPT), ""), (CHOICE % " [3 1]", ""), (STREAMS % "8", "")]
        for questions in (FIRST, again):
            self.session(questions)
            self.assertEqual(1, self.calls()["Commit"])
            self.assertEqual(CONFIGURED, self.run_program("--show-config"))
            self.assertEqual("s3cret-word", self.stored_password())


if __name__ == "__main__":
    unittest.main()
