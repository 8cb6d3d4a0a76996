"""Whole sessions of the wizard as a person sees them."""
import os
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
SUMMARY = ("Summary of the demonstration library (no backup server is contacted):\r\n  Backup server: %s\r\n"
           "  Port: 10006\r\n  User name: CORP\\oracle\r\n  Password: (hidden)\r\n  Parallelism: 8\r\n"
           "  Repository for backup copy 1: Encrypted Vault (encrypted)\r\n"
           "  Repository for backup copy 2: Central Primary\r\n")
MENU = ("Save configuration?\r\n1. Apply configuration to the Oracle environment\r\n"
        "2. Export configuration into a file for manual setup\r\n3. Cancel without saving\r\nEnter: ")
RESTART = "Some errors occurred while applying the configuration. Restart the wizard? (y/n): "
XML, TXT = ("Enter path to Tovak configuration XML file %s: ", "Enter path to Oracle RMAN configuration TXT file %s: ")
REPLACE = "%s already exists. Do you want to replace it? (yes/no): "
UNPARSED = "Unable to parse the value, please try again."
FIRST = [(HOST % "", "backup.example.org"), (PORT % "0", "10006"), (USER % "", r"CORP\oracle"),
         (PASSWORD % (r"CORP\oracle", ""), "s3cret-word"), (CHOICE % "", "3  1"), (STREAMS % "1", "8")]
CONFIGURED = ("Backup server: backup.example.org\nPort: 10006\nUser name: oracle\nDomain name: CORP\nParallelism: 8\n"
              "Repository:\n1. Encrypted Vault\n2. Central Primary")


class Wizard(ConsoleTest):
    def session(self, dialogue, ends_with=""):
        """Plays a dialogue of (prompt, answer) and other texts; compares the whole screen and what was printed."""
        terminal = self.start("--wizard")
        asked = [entry for entry in dialogue if isinstance(entry, tuple)]
        self.talk(terminal, [(prompt.rsplit("\r\n", 1)[-1], answer) for prompt, answer in asked])
        screen = self.ending(terminal)
        texts = [entry[0] if isinstance(entry, tuple) else entry for entry in dialogue] + [ends_with] * bool(ends_with)
        # Neither the log nor the screen tells "\r\n" from "\n".
        self.assertEqual([text.replace("\r\n", "\n") for text in texts], self.printed())
        expected = "".join(self.as_shown(entry) for entry in dialogue) + ends_with
        self.assertEqual([line.rstrip() for line in expected.rstrip().splitlines()],
                         [line.rstrip() for line in screen.split("\n")])

    @staticmethod
    def as_shown(entry):
        if isinstance(entry, str):
            return entry
        prompt, answer = entry
        return prompt + ("" if prompt.startswith("Enter password") else answer) + "\r\n"

    @staticmethod
    def with_server(dialogue):
        """The dialogue with the list of repositories before its question."""
        return dialogue[:4] + SERVER + dialogue[4:]

    def applied(self):
        return ("The demonstration library has applied the configuration and keeps it in "
                + windows_path(self.path("OrmaconDemoState.xml")) + ".\r\n")

    def test_unconfigured_host_then_enter_everywhere(self):
        summary = ["\r\n", SUMMARY % "backup.example.org"]
        self.session(self.with_server(FIRST) + summary + [(MENU, "1")], self.applied())
        self.assertEqual(CONFIGURED, self.run_program("--show-config"))
        again = [(HOST % " [backup.example.org]", ""), (PORT % "10006", ""), (USER % r" [CORP\oracle]", ""),
                 (PASSWORD % (r"CORP\oracle", KEPT), ""), (CHOICE % " [3 1]", ""), (STREAMS % "8", "")]
        self.session(self.with_server(again) + summary + [(MENU, "1")], self.applied())
        self.assertEqual(1, self.calls()["Commit"])
        self.assertEqual(CONFIGURED, self.run_program("--show-config"))
        self.assert_in_no_file("s3cret-word")

    def test_export_twice_then_cancel(self):
        folder = windows_path(self.path("export"))
        xml, txt = folder.replace("\\export", "\\export/tovak_config.xml"), folder + "/rman_config.txt"
        os.makedirs(self.path("other"))
        typed = windows_path(self.path("other", "typed.txt"))
        summary = ["\r\n", SUMMARY % "backup.example.org"]
        files = [(MENU, "2"), (XML % xml, ""), "Saved\r\n", (TXT % txt, typed), "Saved\r\n"]
        again = [(MENU, ""), UNPARSED, (MENU, "4"), UNPARSED, (MENU, "2"), (XML % xml, ""),
                 (REPLACE % xml, "no"), (XML % xml, ""), (REPLACE % xml, "Y"), "Saved\r\n",
                 (TXT % txt, ""), "Saved\r\n"]
        result = "The wizard was cancelled: the configuration of this host is unchanged.\r\n"
        self.session(self.with_server(FIRST) + summary + files + again + [(MENU, "3")],
                     self.exported([xml, typed, xml, txt]) + result)
        for names in (("export", "tovak_config.xml"), ("export", "rman_config.txt"), ("other", "typed.txt")):
            self.assertTrue(os.path.getsize(self.path(*names)) > 0, names)
        self.assertEqual((2, 2, 1, None), tuple(self.calls().get(name) for name in (
            "ExportTovakConfig", "ExportRMANConfig", "Cancel", "Commit")))
        self.assertFalse(os.path.exists(self.path("OrmaconDemoState.xml")))
        self.assert_in_no_file("s3cret-word")

    @staticmethod
    def exported(paths):
        kinds = ["Tovak", "RMAN"] * 2
        return "".join(f"The {kind} configuration was exported to {path}.\r\n".replace("/", "\\")
                       for kind, path in zip(kinds, paths))

    def test_refused_host_restarts_and_stops(self):
        refusal = "The backup server [not a host] is not allowed: it is neither a host name nor an IP address.\r\n"
        self.session([(HOST % "", "not a host"), refusal, (RESTART, ""), (HOST % "", "not a host"), refusal,
                      (RESTART, "NO")])
        self.assertEqual({"InitializeWizard": 2, "GetScopeEdition": 2, "GetConfig": 2, "SetHost": 2}, self.calls())
        self.assertEqual(1, self.log().count("No value, assuming YES"))
        failed = self.log().index("WARN|Failed to execute wizard ")
        self.assertEqual(["WARN|" + refusal.rstrip(), "Prompting user to re-run wizard"],
                         self.log()[failed + 1:failed + 3])

    def test_line_longer_than_one_read(self):
        """The rest of the line answers the next prompt."""
        terminal = self.start("--wizard")
        self.talk(terminal, [(HOST % "", "x" * 1024 + "N")])
        self.assertTrue(self.ending(terminal).endswith(RESTART.rstrip()))
        reads = [line for line in self.log() if line.startswith("Read from console")]
        self.assertEqual([f"Read from console [{'x' * 1024}]", "Read from console [N]"], reads)


if __name__ == "__main__":
    unittest.main()
