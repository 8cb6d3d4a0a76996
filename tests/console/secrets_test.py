"""A password that cannot be missed: given to the program in every way, found nowhere."""
import unittest

from console_kit import ConsoleTest

HALVES = ("Zq7#tiger-Xw9v", "éím-Žluť-日本")  # the second one outside every code page: not every leak would show it
SECRET = "".join(HALVES)
CREDENTIALS = "--set-credentials"
CRASH, REFUSED = 'crash="access-violation"', 'fail="The account is refused: %1 ä."'
QUESTIONS = ["h.example.org", "10006", "user", SECRET]
# What the library does, the command line, the answers, and the exit status.
RUNS = [("", [CREDENTIALS, r"CORP\oracle", *words], [], 0) for words in (
    [SECRET], [SECRET, "--set-host", "h.example.org"], ["-" + SECRET], ["--x=" + SECRET, "-log"],
    [SECRET, SECRET, "-verbose"])]
RUNS += [("", words, [], 0) for words in (
    ["-log", CREDENTIALS, r"a\b\c", SECRET], [CREDENTIALS, r"a\b\c", SECRET], [CREDENTIALS, "", SECRET],
    ["--password=" + SECRET, CREDENTIALS, "a"], ["--password=" + SECRET], ["--wizard", SECRET])]
RUNS += [(f'<Function name="SetCredentialsDirect" {fault}/>', [CREDENTIALS, "user"], [SECRET], status)
         for fault, status in (("", 0), (REFUSED, 0), ('failWithoutText="1"', 0), ('crash="exception"', 0), (CRASH, 5))]
RUNS += [("", ["--wizard"], [*QUESTIONS, "1", "4", "2", "", "", "1"], 0),
         (f'<Function name="SetCredentials" {REFUSED} first="1"/>', ["--wizard"],
          [*QUESTIONS, "y", *QUESTIONS, "1", "4", "3"], 0),
         (f'<Function name="Commit" {CRASH}/>', ["--wizard"], [*QUESTIONS, "1", "4", "1"], 5)]
RUNS += [("", words, [], 0) for words in (
    [], ["--show-config"], ["--set-port", "7"], ["--set-parallelism", "99"], ["--map-backup"], ["--set-host", "?"])]
RUNS += [("", ["--set-repositories"], ["1"], 0)]


class Secrets(ConsoleTest):
    def test_found_nowhere(self):
        self.log_to(self.path("журнал-日志-𝒳"), 4000)
        for scenario, options, answers, status in RUNS:
            self.scenario(scenario)
            terminal = self.start(*options)
            self.answer(terminal, answers)
            screen = self.ending(terminal, status)
            self.assert_without(HALVES, screen.replace("\n", "").encode(), screen)
            if SECRET in answers:
                self.assertRegex(" ".join(self.calls()), "SetCredentials")
        files = self.assert_in_no_file(*HALVES)
        self.assertIn(b"protectedPassword=", files[self.path("OrmaconDemoState.xml")])
        for kind, least in ((".log.gz", 5), (".mdmp", 2), ("export/", 2)):
            self.assertLessEqual(least, sum(kind in name for name in files), kind)
        self.ending(self.start("--uninstall"))
        self.assert_in_no_file(*HALVES)


if __name__ == "__main__":
    unittest.main()
