"""Reads the results of Google Benchmark and prints the table. Each figure is the median of the rounds."""
import json
import statistics
import subprocess
import sys
from pathlib import Path

NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


class Results:
    """Times in nanoseconds, one of each round, and counters, by the name of the benchmark."""

    def __init__(self, folder):
        self.times = {}
        self.memory = {}
        for file in sorted(folder.glob("*.json")):
            for run in json.loads(file.read_text())["benchmarks"]:
                if run.get("error_occurred"):
                    sys.exit(f"!! the benchmark {run['name']} failed: {run['error_message']}")
                self.times.setdefault(run["name"], []).append(run["real_time"] * NANOSECONDS[run["time_unit"]])
                if "memory" in run:
                    self.memory[run["name"]] = run["memory"]

    def has(self, name):
        return name in self.times

    def __getitem__(self, name):
        return self.times[name]


def median_ratio(times, baselines):
    """The figures of a round are compared with each other: the machine's speed may change between rounds."""
    return statistics.median(time / baseline for time, baseline in zip(times, baselines))


def duration(rounds):
    nanoseconds = statistics.median(rounds)
    for unit, factor in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= factor:
            return f"{nanoseconds / factor:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def rounded(ratio, limit):
    """Two decimals, and as many more as it takes to see on which side of the limit the ratio is."""
    digits = 2
    while limit is not None and float(f"{ratio:.{digits}f}") == limit != ratio and digits < 6:
        digits += 1
    return f"{ratio:.{digits}f}"


class Table:
    def __init__(self):
        self.rows = [("Benchmark", "Result", "Baseline", "Ratio", "Target", "Status")]

    def row(self, benchmark, result, baseline, ratio, target, passed):
        """A row without a target has no status."""
        status = "" if not target else "pass" if passed else "fail"
        self.rows.append((benchmark, result, baseline, ratio, target, status))

    def at_most(self, benchmark, result, baseline, name, limit=None):
        """The time as a multiple of the baseline's."""
        ratio = median_ratio(result, baseline)
        self.row(benchmark, duration(result), f"{name} {duration(baseline)}", f"{rounded(ratio, limit)}× the time",
                 "" if limit is None else f"≤ {limit:.2f}×", limit is None or ratio <= limit)

    def at_least(self, benchmark, result, baseline, name, limit=None):
        """The speed as a multiple of the baseline's."""
        ratio = median_ratio(baseline, result)
        self.row(benchmark, duration(result), f"{name} {duration(baseline)}", f"{rounded(ratio, limit)}× the speed",
                 "" if limit is None else f"≥ {limit:.2f}×", limit is None or ratio >= limit)

    def print(self):
        widths = [max(len(row[i]) for row in self.rows) for i in range(len(self.rows[0]))]
        for number, row in enumerate(self.rows):
            print("| " + " | ".join(cell.ljust(width) for cell, width in zip(row, widths)) + " |")
            if number == 0:
                print("|" + "|".join("-" * (width + 2) for width in widths) + "|")


def log_rows(table, results):
    one, eight = (f"log/{{}}/real_time/threads:{threads}" for threads in (1, 8))
    if not results.has(one.format("product")):
        return
    record = results[one.format("product")]
    table.at_least("log record, 1 thread", record, results[one.format("write_file")], "WriteFile", 0.75)
    table.at_most("log record, composed only", results["log/unwritten"], results[one.format("write_file")], "WriteFile")
    table.at_least("log record, 1 thread", record, results[one.format("spdlog")], "spdlog", 1.4)
    shared = results[eight.format("product")]
    table.at_most("log record, 8 threads", shared, record, "1 thread", 1.25)
    table.at_least("log record, 8 threads", shared, results[eight.format("spdlog")], "spdlog", 1)
    table.at_least("log record, 8 threads", shared, results[eight.format("write_file")], "WriteFile", 1)


def archive_rows(table, results):
    name = "archive/product/{}/real_time"
    if not results.has(name.format(15)):
        return
    table.at_most("archiving 15 MiB", results[name.format(15)], results["archive/deflate/15/real_time"], "deflate", 1.08)
    memory = [results.memory[name.format(size)] for size in (1, 15, 60)]
    table.row("memory for archiving 1, 15, 60 MiB", ", ".join(f"{bytes / 1024:.0f}" for bytes in memory) + " KiB", "",
              "", "< 1 MiB, constant", max(memory) < 2**20 and max(memory) == min(memory))


def format_rows(table, results):
    for size in ("short", "long"):
        if not results.has(f"format/product/{size}"):
            return
        product, fmt, boost, joined = (results[f"format/{name}/{size}"]
                                       for name in ("product", "fmt", "boost", "joined"))
        table.at_most(f"format_message, {size}", product, fmt, "fmt", 1)
        table.at_most(f"format_message, {size}", product, joined, "joining the pieces", 1.15)
        table.at_least(f"format_message, {size}", product, boost, "boost::format")


def convert_rows(table, results):
    for size, text in ((64, "64 characters"), (65536, "64 KiB")):
        for way, title in (("to_utf8", "to UTF-8"), ("to_wide", "to UTF-16")):
            if not results.has(f"convert/product/{way}/{size}"):
                return
            table.at_most(f"{title}, {text}", results[f"convert/product/{way}/{size}"],
                          results[f"convert/system/{way}/{size}"], "one system call")
            table.at_most(f"{title}, {text}", results[f"convert/product/{way}/{size}"],
                          results[f"convert/floor/{way}/{size}"], "two calls and the memory", 1.12)


def process_rows(table, results):
    for option in ("help", "show-config"):
        if not results.has(f"process/product/{option}/real_time"):
            return
        table.at_most(f"--{option}", results[f"process/product/{option}/real_time"],
                      results[f"process/minimal/{option}/real_time"], "minimal program", 1.1)


def repository_rows(table, results):
    for part, name in (("step", "repositories/step/{}/manual_time"), ("selection", "repositories/selection/{}")):
        if not results.has(name.format(1000)):
            return
        each = [[time / count for time in results[name.format(count)]] for count in (1000, 10_000, 100_000)]
        growth = max(median_ratio(times, each[0]) for times in each)
        table.row(f"repository {part}, each of 1,000, 10,000, 100,000", ", ".join(map(duration, each)), "",
                  f"{rounded(growth, 1.25)}× the first", "≤ 1.25×" if part == "step" else "", growth <= 1.25)


def size_row(table, program, libraries):
    sections = subprocess.run(["x86_64-w64-mingw32-objdump", "-h", program], check=True, capture_output=True,
                              text=True).stdout
    debug_data = " with debug data" if ".debug_" in sections else ""
    no_symbols = "" if program.with_suffix(".debug").exists() else ", Ormacon.debug is missing"
    size, floor = (file.stat().st_size / 2**20 for file in (program, libraries))
    table.row("program file", f"{size:.2f} MiB{debug_data}{no_symbols}", f"its libraries {floor:.2f} MiB",
              f"{rounded(size / floor, 1.3)}× the size", "≤ 1.30×, no debug data",
              size <= 1.3 * floor and not debug_data and not no_symbols)


def main():
    results = Results(Path(sys.argv[1]))
    table = Table()
    for rows in (log_rows, archive_rows, format_rows, convert_rows, process_rows, repository_rows):
        rows(table, results)
    size_row(table, Path(sys.argv[2]) / "Ormacon.exe", Path(sys.argv[2]) / "libraries_program.exe")
    table.print()


main()
