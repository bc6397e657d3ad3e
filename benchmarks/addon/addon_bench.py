"""Loading the add-on and making pages; prints a markdown table with the ratios to the peers.

    addon_bench.py BUILD_DIR [--json FILE]
"""

import argparse
import json
import os
import statistics
import subprocess
import sys

RUNS = 31


def load_microseconds(build, module):
    program = os.path.join(build, "bin", "load_module")
    return float(subprocess.run([program, module], capture_output=True, text=True, check=True).stdout)


def measure_load(build):
    modules = {"add-on": os.path.join(build, "lib", "libskyleaf.so"),
               "empty library": os.path.join(build, "lib", "libempty_module.so")}
    times = {name: [] for name in modules}
    for _ in range(RUNS):
        for name, module in modules.items():
            times[name].append(load_microseconds(build, module))
    return {name: statistics.median(values) for name, values in times.items()}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--json")
    arguments = parser.parse_args()
    load = measure_load(arguments.build)
    output = subprocess.run([os.path.join(arguments.build, "bin", "page_bench")], capture_output=True, text=True, check=True)
    pages = json.loads(output.stdout)
    growth = pages["heapAfterSecondThousand"] - pages["heapAfterFirstThousand"]
    rows = [
        ("Loading the add-on, over an empty library linked to the same libraries",
         "%.2f ms" % (load["add-on"] / 1000), "%.2f ms" % (load["empty library"] / 1000),
         "%.2f ms more" % ((load["add-on"] - load["empty library"]) / 1000), "at most 2 ms more"),
        ("Constructing and destroying a page without a browser, beside a bare page of the framework",
         "%.1f µs" % pages["pageMicroseconds"], "%.1f µs" % pages["barePageMicroseconds"],
         "%.1f ×" % (pages["pageMicroseconds"] / pages["barePageMicroseconds"]), "at most 200 µs"),
        ("Heap after the second thousand pages, over the first thousand",
         "%.0f bytes" % pages["heapAfterSecondThousand"], "%.0f bytes" % pages["heapAfterFirstThousand"],
         "%+.0f bytes" % growth, "no growth"),
    ]
    print("| What | Ours | Peer | Difference | Wanted |\n|---|---|---|---|---|")
    for row in rows:
        print("| %s |" % " | ".join(row))
    if arguments.json:
        with open(arguments.json, "w", encoding="utf-8") as file:
            json.dump({"load": load, "pages": pages}, file, indent=2)
    return 0


if __name__ == "__main__":
    sys.exit(main())
