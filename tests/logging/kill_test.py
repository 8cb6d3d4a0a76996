"""Ends a program that logs and archives at random moments: no record that was logged is lost or kept twice.

kill_test.py PROGRAM FOLDER [ROUNDS [SEED]]: the seed, which is printed, decides how and when each round ends.
"""
import collections
import contextlib
import glob
import gzip
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import time
import unittest

from console_kit import prepare_windows_environment

PROGRAM, WORK = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
ROUNDS = int(sys.argv[3]) if len(sys.argv) > 3 else 200
SEED = int(sys.argv[4]) if len(sys.argv) > 4 else time.time_ns() % 10**6
ROUNDS_IN_FOLDER = 10
LOG, TEMPORARY, OUTPUT = WORK / "Ormacon.log", WORK / "Ormacon.log.gz.tmp", WORK / "output"
ARCHIVE = re.compile(r"Ormacon(?:\.(\d+))?\.log\.gz")
RECORD = re.compile(rb"^\[.{19}\] <[ \d]{6}> (\d+) (\d+)\.*\|\r\n", re.M)


def is_open(path):
    """Wine's server carries out what a killed program has asked for last, a renaming for example, and then closes its
    files."""
    for opened in glob.iglob("/proc/[0-9]*/fd/*"):
        with contextlib.suppress(OSError):  # closed meanwhile, or another user's
            if os.readlink(opened) == str(path):
                return True
    return False


class Kills(unittest.TestCase):
    def records(self):
        """Round and number of every record, the oldest first; there may be no other files than those of one log."""
        ages = {int(match[1] or 0): match[0] for match in map(ARCHIVE.fullmatch, os.listdir(WORK)) if match}
        self.assertLessEqual(set(os.listdir(WORK)), {*ages.values(), LOG.name, TEMPORARY.name, OUTPUT.name})
        packed = b"".join((WORK / ages[age]).read_bytes() for age in sorted(ages, reverse=True))
        content = gzip.decompress(packed) + LOG.read_bytes()
        self.assertNotRegex(content, b"Cannot.*")
        return [(int(match[1]), int(match[2])) for match in RECORD.finditer(content)]

    def check_records(self, expected):
        found = self.records()
        self.assertTrue(found == expected, (set(found) ^ set(expected), expected[-3:]))

    def start(self):
        """A writer that has opened the log, and waits for its order."""
        with open(OUTPUT, "wb") as output:
            self.writer = subprocess.Popen(
                ["wine64", PROGRAM, "--gtest_also_run_disabled_tests", "--gtest_filter=child.DISABLED_writes"],
                cwd=WORK, stdin=subprocess.PIPE, stdout=output)
        self.wait_for(lambda: b"ready" in OUTPUT.read_bytes(), 0.001)

    def order(self, round_number, count):
        with self.writer.stdin as orders:
            orders.write(b"%d %d\n" % (round_number, count))

    def wait_for(self, condition, pause=0):
        while not condition():
            self.assertIsNone(self.writer.poll(), OUTPUT.read_text())
            time.sleep(pause)

    def logged(self):
        return OUTPUT.read_bytes().count(b"!")

    def kill(self):
        """Some records later: in the middle of whatever it does, while it compresses, or when it has published."""
        count, aim = random.randint(1, 150), random.choice(["any", "compressing", "published"])
        self.wait_for(lambda: self.logged() >= count, 0.001)
        if aim != "any":
            self.wait_for(TEMPORARY.exists)
        if aim == "published":
            self.wait_for(lambda: not TEMPORARY.exists())
        else:
            time.sleep(random.uniform(0, 0.005))
        self.writer.kill()
        self.writer.wait()
        while is_open(LOG):
            time.sleep(0.001)

    def run_rounds(self, rounds, seen):
        expected = []
        for round_number in rounds:
            self.start()
            self.check_records(expected)
            self.order(round_number, 5000)
            self.kill()
            found = [number for origin, number in self.records() if origin == round_number]
            last = max(found, default=0)
            self.assertIn(last - self.logged(), (0, 1))
            expected += [(round_number, number) for number in range(1, last + 1)]
            seen.update({"while compressing": TEMPORARY.exists(), "published, log not cut": len(found) > len(set(found)),
                         "records": last})
        self.start()
        self.order(ROUNDS, 100)
        self.assertEqual(0, self.writer.wait(), OUTPUT.read_text())
        self.check_records(expected + [(ROUNDS, number) for number in range(1, 101)])
        self.assertFalse(TEMPORARY.exists(), "the left-over of a killed process is still there")

    def test_kills(self):
        print(f"{ROUNDS} rounds, seed {SEED}", flush=True)
        random.seed(SEED)
        prepare_windows_environment()
        seen = collections.Counter()
        for first in range(0, ROUNDS, ROUNDS_IN_FOLDER):
            shutil.rmtree(WORK, ignore_errors=True)
            WORK.mkdir(parents=True)
            self.run_rounds(range(first, min(first + ROUNDS_IN_FOLDER, ROUNDS)), seen)
        print(dict(seen))
        self.assertTrue(ROUNDS < 100 or all(seen.values()), "the kills missed a moment")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
