"""The clipboard formats beside the conversion or the copy alone, and their peak memory; prints a markdown table.

    clipboard_bench.py BUILD_DIR [--json FILE]
"""

import argparse
import json
import os
import subprocess
import sys

REPETITIONS = 9


def run(build, program, *arguments):
    return subprocess.run([os.path.join(build, "bin", program), *arguments], capture_output=True, text=True, check=True).stdout


def size_text(size):
    return "%d MiB" % (size >> 20) if size >= 1 << 20 else "%d KiB" % (size >> 10)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--json")
    arguments = parser.parse_args()
    report = json.loads(run(arguments.build, "clipboard_bench", "--benchmark_format=json", "--benchmark_min_time=0.05",
                            "--benchmark_repetitions=%d" % REPETITIONS, "--benchmark_enable_random_interleaving=true",
                            "--benchmark_report_aggregates_only=true"))
    times = {each["run_name"]: each["real_time"] / 1e3 for each in report["benchmarks"] if each["aggregate_name"] == "median"}
    peaks = [json.loads(line) for line in run(arguments.build, "clipboard_peak").splitlines()]
    rows = []
    for each in peaks:
        name, size = each["name"].rsplit("/", 1)
        ours, floor = times[each["name"] + "/ours"], times[each["name"] + "/floor"]
        rows.append({"what": name, "size": int(size), "us": ours, "floor": floor, "ratio": ours / floor, "peak": each["peak"],
                     "memory": (each["peak"] + each["input"]) / each["input"]})
    print("| What | Input | Ours, µs | Floor, µs | Ratio, at most 2 | Memory with the input, at most 3 × |\n|---|---|---|---|---|---|")
    for row in sorted(rows, key=lambda each: (each["what"], each["size"])):
        print("| %s | %s | %.2f | %.2f | %.2f | %.2f × |"
              % (row["what"], size_text(row["size"]), row["us"], row["floor"], row["ratio"], row["memory"]))
    if arguments.json:
        with open(arguments.json, "w", encoding="utf-8") as file:
            json.dump(rows, file, indent=2)
    return 0


if __name__ == "__main__":
    sys.exit(main())
