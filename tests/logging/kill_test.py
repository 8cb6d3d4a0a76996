"""Ends a program that logs and archives at random moments: no record that was logged is lost or kept twice.

kill_test.py PROGRAM FOLDER [ROUNDS [SEED]]: the seed, which is printed, decides how and when each round ends.
"""
import collections
import contextlib
import glob
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import time

from console_kit import prepare_windows_environment

PROGRAM, WORK = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
ROUNDS = int(sys.argv[3]) if len(sys.argv) > 3 else 200
SEED = int(sys.argv[4]) if len(sys.argv) > 4 else time.time_ns() % 10**6
ROUNDS_IN_FOLDER = 10
TEMPORARY = WORK / "Ormacon.log.gz.tmp"
ARCHIVE = re.compile(r"Ormacon(?:\.(\d+))?\.log\.gz")
RECORD = re.compile(rb"^\[.{19}\] <[ \d]{6}> (\d+) (\d+)\.*\|\r\n", re.M)
seen = collections.Counter()


def records():
    """Round and number of every record, the oldest first; there may be no other files than those of one log."""
    ages = {int(match[1] or 0): match[0] for match in map(ARCHIVE.fullmatch, os.listdir(WORK)) if match}
    assert {*ages.values(), "Ormacon.log", TEMPORARY.name, "output"}.issuperset(os.listdir(WORK)), os.listdir(WORK)
    packed = [ages[age] for age in sorted(ages, reverse=True)]
    content = subprocess.check_output(["gzip", "-dc", *packed], cwd=WORK) if packed else b""
    content += (WORK / "Ormacon.log").read_bytes()
    assert b"Cannot" not in content, content[content.index(b"Cannot"):][:300]
    return [(int(match[1]), int(match[2])) for match in RECORD.finditer(content)]


def is_open(path):
    """Wine's server carries out what a killed program has asked for last, a renaming for example, and then closes its
    files."""
    for opened in glob.iglob("/proc/[0-9]*/fd/*"):
        with contextlib.suppress(OSError):  # closed meanwhile, or another user's
            if os.readlink(opened) == str(path):
                return True
    return False


class Writer:
    """Has opened the log, and waits for its order."""

    def __init__(self):
        self.output = WORK / "output"
        with open(self.output, "wb") as output:
            self.process = subprocess.Popen(
                ["wine64", PROGRAM, "--gtest_also_run_disabled_tests", "--gtest_filter=child.DISABLED_writes"],
                cwd=WORK, stdin=subprocess.PIPE, stdout=output)
        self.wait_for(lambda: b"ready" in self.output.read_bytes(), 0.001)

    def write(self, round_number, count):
        self.process.stdin.write(b"%d %d\n" % (round_number, count))
        self.process.stdin.close()

    def wait_for(self, condition, pause=0):
        while not condition():
            assert self.process.poll() is None, f"status {self.process.returncode}: {self.output.read_text()}"
            time.sleep(pause)

    def logged(self):
        return self.output.read_bytes().count(b"!")

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
        self.process.kill()
        self.process.wait()
        while is_open(WORK / "Ormacon.log"):
            time.sleep(0.001)


def run_rounds(rounds):
    expected = []
    for round_number in rounds:
        writer = Writer()
        assert records() == expected, (round_number, set(records()) ^ set(expected))
        writer.write(round_number, 5000)
        writer.kill()
        found = [number for origin, number in records() if origin == round_number]
        last = max(found, default=0)
        assert 0 <= last - writer.logged() <= 1, (round_number, last, writer.logged())
        expected += [(round_number, number) for number in range(1, last + 1)]
        seen["while compressing"] += TEMPORARY.exists()
        seen["published, log not cut"] += len(found) > len(set(found))
        seen["records"] += last
    writer = Writer()
    writer.write(ROUNDS, 100)
    assert writer.process.wait() == 0, writer.output.read_text()
    assert records() == expected + [(ROUNDS, number) for number in range(1, 101)], "after an end of its own"
    assert not TEMPORARY.exists(), "the left-over of a killed process is still there"


print(f"{ROUNDS} rounds, seed {SEED}", flush=True)
random.seed(SEED)
prepare_windows_environment()
for first in range(0, ROUNDS, ROUNDS_IN_FOLDER):
    shutil.rmtree(WORK, ignore_errors=True)
    WORK.mkdir(parents=True)
    run_rounds(range(first, min(first + ROUNDS_IN_FOLDER, ROUNDS)))
print(dict(seen))
assert ROUNDS < 100 or all(seen.values()), "the kills missed a moment"
