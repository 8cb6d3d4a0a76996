"""Adds up what gcov reports about a coverage build: lines and branches per folder, and the files below 85 % of lines.

coverage.py ROOT
A branch is one way out of a condition; those on which an exception leaves are not counted.
"""
import collections
import json
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(sys.argv[1]).resolve()
BUILD = ROOT / "build" / "coverage"
PRODUCT = ("app", "common", "conf_tool", "demo_library", "wizard")


def gcov(notes):
    """What gcov reports about one object; its .gcda file is missing where nothing of it ran."""
    command = ["x86_64-w64-mingw32-gcov-posix", "--json-format", "--stdout", "--branch-probabilities", str(notes)]
    output = subprocess.run(command, capture_output=True, text=True, cwd=notes.parent, check=True).stdout
    return [json.loads(line) for line in output.splitlines() if line.startswith("{")]


def product_file(report, name):
    path = pathlib.Path(report["current_working_directory"], name).resolve()
    if not path.is_relative_to(ROOT):
        return None
    inner = path.relative_to(ROOT)
    return inner if inner.parts[0] in PRODUCT else None


class Source:
    def __init__(self):
        self.lines = collections.Counter()  # number: how often it ran
        self.branches = collections.Counter()  # (number, place on the line): how often it was taken

    def add(self, line):
        number = line["line_number"]
        self.lines[number] += line["count"]
        ways = [branch["count"] for branch in line["branches"] if not branch["throw"]]
        for place, count in enumerate(ways):
            self.branches[number, place] += count


def read_sources():
    sources = collections.defaultdict(Source)
    for notes in sorted(BUILD.rglob("*.gcno")):
        for report in gcov(notes):
            for file in report["files"]:
                name = product_file(report, file["file"])
                for line in file["lines"] if name else []:
                    sources[name].add(line)
    return sources


def reached(counters):
    counts = [count for counter in counters for count in counter.values()]
    hit = sum(count > 0 for count in counts)
    return f"{hit:5} of {len(counts):5} {100 * hit / len(counts) if counts else 100:5.1f} %"


def show(title, sources):
    print(f"{title:44} {reached([s.lines for s in sources])} {reached([s.branches for s in sources])}")


def is_low(source):
    return sum(count > 0 for count in source.lines.values()) < 0.85 * len(source.lines)


def unreached(source):
    return " ".join(str(number) for number in sorted(source.lines) if source.lines[number] == 0)


def main():
    sources = read_sources()
    print(f"{'':44} {'lines':22} branches")
    for folder in sorted({name.parent for name in sources}):
        show(str(folder), [source for name, source in sources.items() if name.parent == folder])
    show("all", sources.values())
    print("\nbelow 85 % of lines:")
    for name, source in sorted(sources.items()):
        if is_low(source):
            show(str(name), [source])
            print("    never:", unreached(source))


main()
