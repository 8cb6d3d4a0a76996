"""Texts outside every code page and outside the basic plane, from the command line and from the keyboard."""
import os
import subprocess
import unittest

from console_kit import HELPERS, ConsoleTest

HOST, ACCOUNT, PASSWORD = "bäckup-日本.example.org", "КОРП\\oráčле𝒳日", "pä𝒳ß\"日 €;%1\\"


def shown(text):
    """Wine 8 shows each half of a character beyond the basic plane as one replacement character."""
    return text.replace("𝒳", "\ufffd\ufffd")


class Texts(ConsoleTest):
    def stored_password(self):
        """As the library itself gives it out."""
        reader = self.path("password_reader.exe")
        if not os.path.exists(reader):
            os.link(os.path.join(HELPERS, "password_reader.exe"), reader)
        units = subprocess.run(["wine64", reader], capture_output=True, text=True, check=True).stdout.split()
        return b"".join(int(unit, 16).to_bytes(2, "little") for unit in units).decode("utf-16-le")

    def check_account(self):
        domain, user = ACCOUNT.split("\\")
        self.assertEqual(f"Backup server: {HOST}\nPort: 0\nUser name: {shown(user)}\nDomain name: {domain}\n"
                         "Parallelism: 1\nRepository:", self.run_program("--show-config"))
        self.assertIn(user, self.read("OrmaconDemoState.xml"))
        self.assertEqual(PASSWORD, self.stored_password())
        self.assertIn(f"Executing SetCredentials command, newDomainAndUsername = [{ACCOUNT}]", self.log())
        self.assert_in_no_file(PASSWORD)

    def test_from_the_command_line(self):
        self.assertEqual("", self.run_program("--set-host", HOST))
        self.assertEqual("", self.run_program("--set-credentials", ACCOUNT, PASSWORD, "ignored"))
        self.check_account()

    def test_typed_account_and_host(self):
        terminal = self.start("--wizard")
        for answer in (HOST, "10006", ACCOUNT, PASSWORD, "1", "2", "1"):
            self.assertTrue(terminal.wait_for_prompt_or_end(), terminal.screen())
            terminal.answer(answer)
        self.ending(terminal)
        domain, user = ACCOUNT.split("\\")
        self.assertIn(f'host="{HOST}"', self.read("OrmaconDemoState.xml"))
        self.assertIn(f'domain="{domain}" userName="{user}"', self.read("OrmaconDemoState.xml"))
        self.assertEqual(PASSWORD, self.stored_password())

    def test_from_the_keyboard(self):
        self.assertEqual("", self.run_program("--set-host", HOST))
        terminal = self.start("--set-credentials", ACCOUNT)
        self.wait_for(terminal, "Enter password for " + shown(ACCOUNT) + ":")
        terminal.wait_for_prompt_or_end()
        terminal.answer(PASSWORD)
        self.assertEqual("Enter password for " + shown(ACCOUNT) + ":", self.ending(terminal))
        self.check_account()


if __name__ == "__main__":
    unittest.main()
