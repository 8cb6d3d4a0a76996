"""Texts outside every code page and outside the basic plane, from the command line and from the keyboard."""
import unittest

from console_kit import ConsoleTest

HOST, ACCOUNT, PASSWORD = "bäckup-日本.example.org", "КОРП\\oráčле𝒳日", "pä𝒳ß\"日 €;%1\\"
RESTART = "Some errors occurred while applying the configuration. Restart the wizard? (y/n): "


def shown(text):
    """Wine 8 shows each half of a character beyond the basic plane as one replacement character."""
    return text.replace("𝒳", "\ufffd\ufffd")


class Texts(ConsoleTest):
    def check_state(self):
        domain, user = ACCOUNT.split("\\")
        state = self.read("OrmaconDemoState.xml")
        self.assertIn(f'host="{HOST}"', state)
        self.assertIn(f'domain="{domain}" userName="{user}"', state)
        self.assertEqual(PASSWORD, self.stored_password())

    def test_from_the_command_line(self):
        self.assertEqual("", self.run_program("--set-host", HOST))
        self.assertEqual("", self.run_program("--set-credentials", ACCOUNT, PASSWORD, "ignored"))
        self.assertIn(f"Executing SetCredentials command, newDomainAndUsername = [{ACCOUNT}]", self.log())
        self.check_state()
        domain, user = ACCOUNT.split("\\")
        self.assertEqual(f"Backup server: {HOST}\nPort: 0\nUser name: {shown(user)}\nDomain name: {domain}\n"
                         "Parallelism: 1\nRepository:", self.run_program("--show-config"))

    def test_from_the_keyboard(self):
        terminal = self.start("--wizard")
        for prompt, answer in (("Enter backup server name", HOST), ("port 0:", "10006"), ("Enter username:", ACCOUNT),
                               (f"Enter password for {shown(ACCOUNT)}:", PASSWORD), ("separator:", "1"),
                               ("device [1]:", "2"), ("Enter:", "1")):
            self.wait_for(terminal, prompt)
            terminal.answer(answer)
        self.ending(terminal)
        self.check_state()

    def check_end(self, screen, expected):
        """What has scrolled off the screen may be lost on a busy machine."""
        shown = "".join(screen.split())[-20000:]
        self.assertEqual(20000, len(shown))
        self.assertTrue("".join(expected.split()).endswith(shown), shown)

    def test_very_long_reason_of_the_library(self):
        reason = "".join(f"{number:06d}:%1-äöü日" for number in range(60000))
        self.scenario(f'<Function name="SetPortDirect" fail="{reason}"/><Function name="GetConfig" fail="{reason}"/>')
        self.check_end(self.run_program("--set-port", "1"), reason + "Failed to execute method SetBackupServerPort")
        self.assertEqual(["Executing SetNetworkPort command, port = [1]", "Calling SetPort function",
                          "ERR |Failed to call SetPort function", "ERR |Executing method SetBackupServerPort Failed.",
                          "Unloading configuration library", "Unloading configuration library ok."], self.log()[-6:])
        terminal = self.start("--wizard")
        self.talk(terminal, [(RESTART, "n")])
        self.check_end(self.ending(terminal), reason + RESTART + "n")
        self.assertTrue("WARN|" + reason in self.log())


if __name__ == "__main__":
    unittest.main()
