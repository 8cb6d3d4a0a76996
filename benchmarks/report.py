"""Reads the results of Google Benchmark and prints the table. Each figure is the median of the rounds."""
import json
import statistics
import sys
from pathlib import Path

NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}

# Title, result, title and name of the baseline, and the limit: "<" is the most time, ">" the least speed, in relation
# to the baseline. A quiet machine always keeps the limits; docs/benchmarks.md shows what was measured.
ROWS = (
    ("log record, 1 thread", "log/product/threads:1", "WriteFile", "log/write_file/threads:1", ">", 0.7),
    ("log record, 1 thread", "log/product/threads:1", "spdlog", "log/spdlog/threads:1", ">", 2.5),
    ("log record, 8 threads", "log/product/threads:8", "WriteFile", "log/write_file/threads:8", ">", 0.55),
    ("archiving 15 MiB", "archive/product/15", "deflate", "archive/deflate/15", "<", 1.15),
    ("format_message", "format/product", "fmt", "format/fmt", "<", 0.9),
    ("to UTF-8", "convert/product/to_utf8", "two calls and the memory", "convert/floor/to_utf8", "<", 1.5),
    ("to UTF-16", "convert/product/to_wide", "two calls and the memory", "convert/floor/to_wide", "<", 1.25),
    ("--help", "run/product_help", "minimal program", "run/minimal_help", "<", 1.2),
    ("--show-config", "run/product_show_config", "minimal program", "run/minimal_show_config", "<", 1.15),
)


def read_results(folder):
    """Returns the times in nanoseconds, one of each round, and the memory in MiB, by the name of the benchmark."""
    times, memory = {}, {}
    for file in sorted(folder.glob("*.json")):
        for run in json.loads(file.read_text())["benchmarks"]:
            if run.get("error_occurred"):
                sys.exit(f"!! the benchmark {run['name']} failed: {run['error_message']}")
            name = run["name"].replace("/real_time", "").replace("/manual_time", "")
            times.setdefault(name, []).append(run["real_time"] * NANOSECONDS[run["time_unit"]])
            if "memory" in run:
                memory.setdefault(name, []).append(run["memory"] / 2**20)
    return times, memory


def median_ratio(numerators, denominators):
    """The figures of a round are compared with each other: the machine's speed may change between rounds."""
    return statistics.median(one / other for one, other in zip(numerators, denominators))


def duration(rounds):
    nanoseconds = statistics.median(rounds)
    unit = next(unit for unit in ("s", "ms", "us", "ns") if nanoseconds >= NANOSECONDS[unit] or unit == "ns")
    return f"{nanoseconds / NANOSECONDS[unit]:.3g} {unit}"


def row(title, result, baseline, ratio, target, passed):
    return title, result, baseline, ratio, target, "pass" if passed else "fail"


def compared(title, times, peer, baseline, direction, limit):
    ratio = median_ratio(times, baseline) if direction == "<" else median_ratio(baseline, times)
    what, sign, passed = ("time", "≤", ratio <= limit) if direction == "<" else ("speed", "≥", ratio >= limit)
    return row(title, duration(times), f"{peer} {duration(baseline)}", f"{ratio:.2f}× the {what}",
               f"{sign} {limit:.2f}×", passed)


def memory_row(small, large):
    growth = statistics.median(large) - statistics.median(small)
    return row("memory for archiving 60 MiB", f"{statistics.median(large):.1f} MiB",
               f"1 MiB {statistics.median(small):.1f} MiB", f"{growth:+.1f} MiB", "≤ +1 MiB", growth <= 1)


def repository_row(times):
    counts = (1000, 10_000, 100_000)
    each = [[time / count for time in times[f"repositories/{count}"]] for count in counts]
    growth = max(median_ratio(one, each[0]) for one in each)
    return row("repository step, each of 1,000, 10,000, 100,000", ", ".join(map(duration, each)), "",
               f"{growth:.2f}× the first", "≤ 1.25×", growth <= 1.25)


def size_row(program, libraries):
    size, floor = (file.stat().st_size / 2**20 for file in (program, libraries))
    return row("program file", f"{size:.2f} MiB", f"its libraries {floor:.2f} MiB", f"{size / floor:.2f}× the size",
               "≤ 1.30×", size <= 1.3 * floor)


def main():
    times, memory = read_results(Path(sys.argv[1]))
    table = [("Benchmark", "Result", "Baseline", "Ratio", "Target", "Status")]
    for title, result, peer, baseline, direction, limit in ROWS:
        if result in times:
            table.append(compared(title, times[result], peer, times[baseline], direction, limit))
    if memory:
        table.append(memory_row(*(memory[f"archive/product/{size}"] for size in (1, 60))))
    if any(name.startswith("repositories/") for name in times):
        table.append(repository_row(times))
    table.append(size_row(Path(sys.argv[2]) / "Ormacon.exe", Path(sys.argv[2]) / "libraries_program.exe"))
    table.insert(1, ["---"] * len(table[0]))
    for cells in table:
        print("| " + " | ".join(cells) + " |")


main()
