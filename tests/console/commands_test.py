"""The commands of one call each: what they print, log and change."""
import os
import pathlib
import re
import subprocess
import unittest

from console_kit import ConsoleTest, windows_path

HELP = """\
  --help                               Show this help page
  --show-config                        Show configuration
  --wizard                             Start configuration wizard
  --set-credentials ACCOUNT [PASSWORD] Set credentials (use username@domain
                                       format for user account
  --set-host HOST                      Set backup server host name or IP
                                       address
  --set-port PORT                      Set backup server port
  --set-repositories                   Set Tovak repository as the backup
                                       target (up to 4 repositories can be
                                       specified for multiple copies)
  --set-parallelism CHANNELS           Set parallel processing channels count
                                       (RMAN parallelism)
  --map-backup                         Map imported backup"""
EMPTY_CONFIG = "Backup server:\nPort: 0\nUser name:\nDomain name:\nParallelism: 1\nRepository:"
LOADING, UNLOADING = "Loading configuration library in %s mode", "Unloading configuration library"
PARSING, PARSED = "Parsing incoming values", "Parsing incoming values ok."
WINDOWS_LIBRARIES = {"advapi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "shell32.dll",
                     "api-ms-win-core-synch-l1-2-0.dll"}


def dll_characteristics(file):
    """The DllCharacteristics of a program file and of those that it contains as data."""
    begins = [match.start() for match in re.finditer(b"MZ", file)]
    headers = [begin + int.from_bytes(file[begin + 0x3c:begin + 0x40], "little") for begin in begins]
    return [int.from_bytes(file[header + 0x5e:header + 0x60], "little")
            for header in headers if file[header:header + 4] == b"PE\0\0"]


class Commands(ConsoleTest):
    def test_settings_last(self):
        for options in (["--set-host", "backup.example.org"], ["--set-port", "10006"], ["--set-parallelism", "8"]):
            self.assertEqual("", self.run_program(*options))
        asking = self.start("--set-credentials", r"CORP\oracle")
        self.talk(asking, [(r"Enter password for CORP\oracle: ", "Tr0ub4dor-&3")])
        self.assertEqual("Enter password for CORP\\oracle:", self.ending(asking))
        self.assertEqual({"SetCredentialsDirect": 1}, self.calls())
        self.assertIn("Read from console [Hidden data]", self.log())
        self.scenario('<Server edition="1"/>')
        asking = self.start("--set-repositories")
        self.talk(asking, [("Specify up to 4 Tovak repositories to use as target using whitespace as a separator: ",
                            "3 1")])
        self.ending(asking)
        self.assertEqual({"GetTBRRepositoriesDirect": 1, "SetRepositoriesDirect": 1}, self.calls())
        listing = ["Backup server: backup.example.org\n", "Port: 10006\n", "User name: oracle\n", "Domain name: CORP\n",
                   "Parallelism: 8\n", "Repository: \n", "1. Encrypted Vault\n", "2. Central Primary\n"]
        self.assertEqual([line.rstrip() for line in listing], self.run_program("--show-config").split("\n"))
        self.assertEqual(listing, self.printed())
        self.assert_gone()

    def test_help_hides_uninstall_which_works(self):
        for options in ([], ["--help"], ["--hel"]):
            self.assertEqual(HELP, "\n".join(line.rstrip() for line in self.run_program(*options).split("\n")))
        self.assertFalse(os.path.exists(self.path("report.txt")), "help needs no library")
        self.run_program("--set-host", "h.example.org")
        for options in (["--uninstall"], ["--uninstall", "--help"]):
            self.assertEqual("", self.run_program(*options))
            self.assertEqual({"UninstallDirect": 1}, self.calls())
        self.assertEqual(EMPTY_CONFIG, self.run_program("--show-config"))

    def test_bad_command_line(self):
        self.assertEqual("unrecognised option '--set-prot\ufffd'\nFailed to parse incoming parameters\n"
                         "Ormacon.exe --help lists the options.",
                         self.run_program("--set-cred", "user", "pw", "--set-prot\u202e", "-verbose"))
        self.assertEqual("ERR |" + PARSING + " Failed.", self.log()[self.log().index(PARSING) + 1])

    def test_unusable_library(self):
        library = pathlib.Path(self.path("OrmaconLib.dll"))
        whole = library.read_bytes()
        not_loaded = r"\w[^\n]*\S\nFailed to load configuration library\n--tr:Error code: 0x%s"
        missing = r"Cannot find function \[Cancel\] in the configuration library\."
        for option, mode, method, content, failure in (
                ("--show-config", "direct", "ShowConfig", b"this is no library", not_loaded % "000000c1"),
                ("--wizard", "wizard", "StartWizard", whole.replace(b"\0Cancel", b"\0Cancek"), missing)):
            with self.subTest(failure):
                library.unlink()  # which is shared with the other tests
                library.write_bytes(content)
                self.assertRegex(self.run_program(option), f"^{failure}\nFailed to execute method {method}$")
                self.assertEqual([f"Executing method {method}", LOADING % mode, "ERR |" + LOADING % mode + " Failed.",
                                  f"ERR |Executing method {method} Failed."], self.log()[-4:])
        # Not even the current folder is searched.
        os.mkdir(self.path("current"))
        library.rename(self.path("current", "OrmaconLib.dll")).write_bytes(whole)
        terminal = self.terminal("wine64", self.path("Ormacon.exe"), "--show-config", cwd=self.path("current"))
        self.assertRegex(self.ending(terminal), not_loaded % "0000007e")

    def test_map_backup(self):
        for code, printed in ((0, ["2 mapped\n"]), (-3, ["Error has occurred\n", "2 mapped\n"])):
            with self.subTest(code):
                self.scenario(f'<MapBackup code="{code}" text="2 mapped&#10;"/>')
                self.assertEqual("".join(printed).rstrip(), self.run_program("--map-backup"))
                self.assertEqual(printed, self.printed())
                self.assertIn(f"Map backup results [{code}] [2 mapped", self.log())
                self.assertIn("Executing method MapBackup ok.", self.log())
                self.assertEqual({"MapBackupDirect": 1}, self.calls())

    def test_program_files(self):
        listing = subprocess.run(["x86_64-w64-mingw32-objdump", "-p", self.path("Ormacon.exe")], capture_output=True,
                                 text=True, check=True).stdout
        self.assertLessEqual({name.lower() for name in re.findall(r"DLL Name: (\S+)", listing)}, WINDOWS_LIBRARIES)
        # High-entropy addresses, addresses chosen at each start, no execution of data; the program carries another one.
        # Both programs have a manifest inside, so that Windows looks for none beside them.
        for name, images, manifests in ("Ormacon.exe", 2, 2), ("OrmaconLib.dll", 1, 0):
            with self.subTest(name), open(self.path(name), "rb") as file:
                content = file.read()
                self.assertEqual([0x0160] * images, dll_characteristics(content))
                self.assertEqual(manifests, content.count(b'requestedExecutionLevel level="asInvoker"'))

    def test_whole_log_of_a_run(self):
        with open(self.path("tovak_common_config.xml"), "w", encoding="utf-8") as file:
            file.write("<Config><PluginParameters><minPluginManagerPort>7000x</minPluginManagerPort>"
                       "<logsDir>C:\\l</logsDir></PluginParameters></Config>")
        self.run_program("--set-host", "backup.example.org")
        lines = self.log()
        self.assertRegex("\n".join(lines[:7]), "\n".join([
            "^={77}", "Path to the executable module: " + re.escape(windows_path(self.path("Ormacon.exe"))),
            r"Module version: \d+(\.\d+){3}", "Comments: Configuration tool of the Tovak RMAN plug-in",
            r"Process Id: \d+", r"OS version: Windows 10\.0\.\d+ \(\w+, x64\)", "={77}$"]))
        found = lines.index(f"Getting current directory by module path [{windows_path(self.path('Ormacon.exe'))}]")
        self.assertEqual(["=" * 84, "Searching no libraries in the current folder: ok"], lines[7:9])
        self.assertRegex(lines[10], "^Cannot find target link path in the registry: ")
        self.assertEqual(
            [f"Loading xml file [{windows_path(self.path('tovak_common_config.xml'))}]",
             "Xml file was successfully loaded", "Plugin manager port is [7000]",
             "Plugin to manager connection attempts count is [30]", "Manager lock directory is []",
             "Logs directory is [C:\\l]", PARSING, PARSED, "Executing method SetBackupServer", LOADING % "direct",
             LOADING % "direct" + " ok.", "Executing SetBackupServer command, host = [backup.example.org]",
             "Calling SetHost function", "Calling SetHost function ok.", "Executing method SetBackupServer ok.",
             UNLOADING, UNLOADING + " ok."], lines[found + 1:])


if __name__ == "__main__":
    unittest.main()
