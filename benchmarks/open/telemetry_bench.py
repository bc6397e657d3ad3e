#!/usr/bin/env python3
"""What data collection, the story of opens included, costs an opening from the local package with preloading.

  telemetry_bench.py BUILD [--opens 25] [--json FILE]

Two shells, one with data collection and one without, open the document by turns. Prints the medians and their ratio.
"""

import argparse
import json
import os
import pathlib
import statistics
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tests" / "e2e" / "support"))

from helio_shell import DocumentsServer, merged  # noqa: E402
from modes import Preloading  # noqa: E402
from opening import BadOpening  # noqa: E402

WARM_UP_OPENS = 3
PAUSE = 0.3
MOST_RATIO = 1.01
STEPS = {"visible": "text painted", "editable": "editor takes input"}


class Collecting(Preloading):
    telemetry = True

    def host_members(self):
        return merged(super().host_members(), {"telemetry": self.telemetry})


class NotCollecting(Collecting):
    telemetry = False


def measure(build, opens):
    """{"on"/"off": [steps of an opening]}"""
    programs = os.path.join(build, "bin")
    package = os.path.join(build, "webapp", "packages", "quillword")
    with tempfile.TemporaryDirectory(prefix="telemetry-bench-") as documents, \
            DocumentsServer(programs, documents, os.path.join(build, "webapp", "site")) as server:
        modes = {}
        try:
            for name, mode_class in (("on", Collecting), ("off", NotCollecting)):
                modes[name] = mode_class(programs, server, package)
                modes[name].warm_up(WARM_UP_OPENS)
            found = {name: [] for name in modes}
            for turn in range(opens):
                for name in sorted(modes, reverse=turn % 2 == 1):
                    try:
                        found[name].append(modes[name].open()["steps"])
                    except BadOpening as miss:
                        print("%s: %s" % (name, miss), file=sys.stderr)
                    time.sleep(PAUSE)
                print("  %d of %d" % (turn + 1, opens), file=sys.stderr, flush=True)
            return found
        finally:
            for mode in modes.values():
                mode.quit()


def text_of(found):
    lines = ["| Since the notify, p50 | data collection on | off | on / off | openings |", "|---|---:|---:|---:|---:|"]
    for step, label in STEPS.items():
        on, off = (statistics.median(each[step] for each in found[name]) for name in ("on", "off"))
        lines.append("| %s | %.1f ms | %.1f ms | %.3f | %d, %d |" % (label, on, off, on / off, len(found["on"]), len(found["off"])))
    return "\n".join(lines) + "\n\nAt most %.2f is wanted.\n" % MOST_RATIO


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build")
    parser.add_argument("--opens", type=int, default=25)
    parser.add_argument("--json", type=pathlib.Path)
    arguments = parser.parse_args()
    found = measure(arguments.build, arguments.opens)
    if not all(found.values()):
        print("telemetry: no opening went the way of the mode", file=sys.stderr)
        return 1
    print(text_of(found), end="")
    if arguments.json:
        arguments.json.write_text(json.dumps(found, indent=1) + "\n")
    return 0


if __name__ == "__main__":
    sys.exit(main())
