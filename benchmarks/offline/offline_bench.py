"""Injection and preloaded files; prints a markdown table with the ratios to the peers.

    offline_bench.py BUILD_DIR [--json FILE]
"""

import argparse
import json
import os
import subprocess
import sys

REPETITIONS = 9


def medians(build):
    program = os.path.join(build, "bin", "offline_bench")
    output = subprocess.run([program, "--benchmark_format=json", "--benchmark_repetitions=%d" % REPETITIONS,
                             "--benchmark_enable_random_interleaving=true", "--benchmark_report_aggregates_only=true"],
                            capture_output=True, text=True, check=True)
    runs = json.loads(output.stdout)["benchmarks"]
    broken = [run["run_name"] for run in runs if run.get("error_occurred")]
    if broken:
        raise SystemExit("offline_bench: %s failed" % ", ".join(broken))
    return {run["run_name"]: run for run in runs if run["aggregate_name"] == "median"}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--json")
    arguments = parser.parse_args()
    found = medians(arguments.build)
    rows = []
    for text in ("plain", "mixed"):
        ours = found["inject_html/" + text]["real_time"] / 1e6
        floor = found["inject_floor/" + text]["real_time"] / 1e6
        rows.append(("Injecting 1 MiB of %s content into a page of 1 MiB, beside escaping, converting and one copy" % text,
                     "%.2f ms" % ours, "%.2f ms" % floor, "%.2f ×" % (ours / floor), "at most 2 ×"))
    def millions(name, threads):
        return found["%s/real_time/threads:%d" % (name, threads)]["items_per_second"] / 1e6

    def growth(name):
        return millions(name, 2) / millions(name, 1)

    own = millions("read_own_map", 1)
    rows.append(("Preloaded files read on one thread, beside a map without a lock",
                 "%.1f million/s" % millions("read_own_files", 1), "%.1f million/s" % own,
                 "%.2f ×" % (millions("read_own_files", 1) / own), ""))
    for name, which in (("read_own_files", "each its own files"), ("read_same_files", "both the same files")):
        rows.append(("Growth from one thread to two, %s, beside a map for each thread" % which,
                     "%.2f ×" % growth(name), "%.2f ×" % growth("read_own_map"),
                     "%.2f ×" % (growth(name) / growth("read_own_map")), "growth of more than 1 ×"))
    print("| What | Ours | Peer | Ratio | Wanted |\n|---|---|---|---|---|")
    for row in rows:
        print("| %s |" % " | ".join(row))
    if arguments.json:
        with open(arguments.json, "w", encoding="utf-8") as file:
            json.dump(found, file, indent=2)
    return 0


if __name__ == "__main__":
    sys.exit(main())
