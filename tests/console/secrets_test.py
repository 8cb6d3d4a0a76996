"""A password that cannot be missed: given to the program in every way, found nowhere."""
import unittest

from console_kit import ConsoleTest, assert_without, windows_path

HALVES = ("Zq7#tiger-Xw9v", "éím-Žluť-日本")  # the second one outside every code page: not every leak would show it
SECRET = "".join(HALVES)
CREDENTIALS = "--set-credentials"
CRASH, REFUSED = 'crash="access-violation"', 'fail="The account is refused: %1 ä."'
# Command lines that end without a question.
GIVEN = [[CREDENTIALS, r"CORP\oracle", *words] for words in (
    [SECRET], [SECRET, "--set-host", "h.example.org"], ["-" + SECRET], ["--x=" + SECRET, "-log"],
    [SECRET, SECRET, "-verbose"])] + [
    ["-log", CREDENTIALS, r"a\b\c", SECRET], [CREDENTIALS, r"a\b\c", SECRET], [CREDENTIALS, "", SECRET],
    ["--password=" + SECRET, CREDENTIALS, "a"], ["--password=" + SECRET], ["--wizard", SECRET]]
OTHERS = [[], ["--show-config"], ["--set-port", "7"], ["--set-port", "0"], ["--set-parallelism", "99"],
          ["--map-backup"], ["--set-host", "?"]]
FAULTS = [("", 0), (REFUSED, 0), ('failWithoutText="1"', 0), ('crash="exception"', 0), (CRASH, 5)]
QUESTIONS = ["h.example.org", "10006", "user", SECRET]
# The faults of the library, the answers, and the exit status.
WIZARDS = [("", [*QUESTIONS, "1", "4", "2", "", "", "1"], 0),
           (f'<Function name="SetCredentials" {REFUSED} first="1"/>',
            [*QUESTIONS, "y", *QUESTIONS, "1", "4", "3"], 0),
           (f'<Function name="Commit" {CRASH}/>', [*QUESTIONS, "1", "4", "1"], 5)]


class Secrets(ConsoleTest):
    def setUp(self):
        super().setUp()
        self.screens = []
        self.log_to(windows_path(self.folder), 4000)

    def ending(self, terminal, status=0):
        self.screens.append(super().ending(terminal, status))
        return self.screens[-1]

    def run_and_answer(self, option, answers, status=0):
        terminal = self.start(*option)
        self.answer(terminal, answers)
        self.ending(terminal, status)

    def use_everything(self):
        for words in GIVEN:
            self.run_program(*words)
        for fault, status in FAULTS:
            self.scenario(f'<Function name="SetCredentialsDirect" {fault}/>')
            self.run_and_answer([CREDENTIALS, "user"], [SECRET], status)
            self.assertEqual({"SetCredentialsDirect": 1}, self.calls())
        for faults, answers, status in WIZARDS:
            self.scenario(faults)
            self.run_and_answer(["--wizard"], answers, status)
            self.assertLessEqual(1, self.calls()["SetCredentials"])
        for words in OTHERS:
            self.run_program(*words)
        self.run_and_answer(["--set-repositories"], ["1"])

    def test_found_nowhere(self):
        self.use_everything()
        files = self.assert_in_no_file(*HALVES)
        for place, content in enumerate(self.screens):
            for half in HALVES:
                assert_without(self, half, content.replace("\n", "").encode(), f"screen {place}")
        self.assertIn(b"protectedPassword=", files[self.path("OrmaconDemoState.xml")])
        for kind, least in ((".log.gz", 5), (".mdmp", 2), ("export/", 2)):
            self.assertLessEqual(least, sum(kind in name for name in files), kind)
        self.run_program("--uninstall")
        self.assert_in_no_file(*HALVES)


if __name__ == "__main__":
    unittest.main()
