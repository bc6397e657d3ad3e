#!/usr/bin/env python3
"""Times from telling a page what to open until its text is visible and until it can be edited, in several modes.

  open_bench.py BUILD [--opens 15] [--modes abcdefgh] [--lines "40 ms,150 ms"] [--out FILE] [--picture FILE]

Every mode has a shell of its own; the openings go round the modes, so that whatever else runs here hits all alike. A
mode that does not work in this build is named as not measured, with the reason. Prints markdown; with --out also
writes FILE.json and FILE.md. --check ends with status 1 when a target is missed or was not measured.
"""

import argparse
import json
import os
import pathlib
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tests" / "e2e" / "support"))

import report  # noqa: E402
from code_cache import measure_code_cache  # noqa: E402
from fetches import MOST_RATIO, measure_fetches  # noqa: E402
from helio_shell import DocumentsServer, RpcError, ShellEnded  # noqa: E402
from modes import MODES  # noqa: E402
from opening import BadOpening, control, open_document, resident_bytes  # noqa: E402

LINES = {
    "no shaping": {"rttMs": 0, "kbps": 0},
    "40 ms": {"rttMs": 40, "kbps": 10000},
    "150 ms": {"rttMs": 150, "kbps": 1600},
}
FAILURES = (BadOpening, RpcError, ShellEnded, TimeoutError, OSError)
WARM_UP_OPENS = 3
PAUSE = 0.3
MOST_GROWTH = 1.05
# Of a mode's openings, how many may go another way than the mode's before it counts as not working.
MOST_MISSES = 0.2


def tell(text):
    print(text, file=sys.stderr, flush=True)


class Contender:
    """A mode that takes part, with its openings; or why it does not."""

    def __init__(self, mode_class, programs, server, package):
        self.letter, self.label = mode_class.letter, mode_class.label
        self.openings, self.misses = [], []
        self.problem = None
        self.mode = None
        self._try(lambda: setattr(self, "mode", mode_class(programs, server, package)))

    def _try(self, action):
        if self.problem:
            return
        try:
            action()
        except FAILURES as failure:
            self.problem = str(failure).splitlines()[0][:200]
            tell("(%s) %s" % (self.letter, self.problem))

    def begin(self):
        """Warms up for another line."""
        self.openings, self.misses = [], []
        self._try(lambda: self.mode.warm_up(WARM_UP_OPENS))

    def open(self):
        self._try(self._open)

    def _open(self):
        try:
            self.openings.append(self.mode.open())
        except BadOpening as miss:
            self.misses.append(str(miss).splitlines()[0][:200])

    def result(self):
        if not self.problem and len(self.misses) > MOST_MISSES * (len(self.openings) + len(self.misses)):
            self.problem = self.misses[0]
            tell("(%s) %s" % (self.letter, self.problem))
        if self.problem:
            return {"label": self.label, "problem": self.problem}
        return {"label": self.label, "misses": self.misses, "raw": [each["steps"] for each in self.openings], **report.summary(self.openings)}

    def quit(self):
        if self.mode:
            self.mode.quit()


def measure_line(contenders, opens):
    for each in contenders:
        each.begin()
    for turn in range(opens):
        first = turn % len(contenders)
        for each in contenders[first:] + contenders[:first]:
            each.open()
            time.sleep(PAUSE)
        tell("  %d of %d" % (turn + 1, opens))
    return {each.letter: each.result() for each in contenders}


def measure_memory(contenders):
    """After 10 openings and closings more, and after 50; in mode e, or the best that there is."""
    working = [each for each in contenders if not each.problem]
    chosen = next((each for each in working if each.letter == "e"), working[-1] if working else None)
    if chosen is None:
        return None
    memory = {"mode": "(%s) %s" % (chosen.letter, chosen.label)}
    for count in range(1, 51):
        open_document(chosen.mode.shell, chosen.mode.url())
        time.sleep(PAUSE)
        if count in (10, 50):
            time.sleep(3)
            own, group = resident_bytes(chosen.mode.shell.pid)
            memory["after%d" % count] = {"shell": own, "with its browser processes": group}
    return memory


def measure(arguments, directory):
    programs = os.path.join(arguments.build, "bin")
    package = os.path.join(arguments.build, "webapp", "packages", "quillword")
    documents = os.path.join(directory, "documents")
    os.makedirs(documents)
    results = {"lines": {}, "memory": None, "fetches": None, "codeCache": None}
    classes = [each for each in MODES if each.letter in arguments.modes]
    with DocumentsServer(programs, documents, os.path.join(arguments.build, "webapp", "site")) as server:
        contenders = []
        try:
            contenders += [Contender(each, programs, server, package) for each in classes]
            for line in arguments.lines:
                tell("%s (%s)" % (line, LINES[line]))
                control(server, "shaping", LINES[line])
                results["lines"][line] = measure_line(contenders, arguments.opens)
            control(server, "shaping", LINES["no shaping"])
            if not arguments.times_only:
                tell("memory")
                results["memory"] = measure_memory(contenders)
        finally:
            for each in contenders:
                each.quit()
        if not arguments.times_only:
            tell("fetches")
            try:
                results["fetches"] = measure_fetches(programs, server, package, directory)
            except FAILURES as failure:
                results["fetchProblem"] = str(failure).splitlines()[0][:200]
            tell("code cache")
            letters = [each for each in "bce" if each in arguments.modes]
            results["codeCache"] = measure_code_cache(letters, programs, server, package, directory, FAILURES)
    return results


def target_rows(results):
    rows = report.target_rows(results["lines"])
    for name, times in (results["fetches"] or {}).items():
        value = report.statistics.median(times["local"]) / report.statistics.median(times["nginx"])
        rows.append(("fetching a %s at most %.1f × nginx" % (name, MOST_RATIO), value, MOST_RATIO))
    if results["memory"]:
        growth = results["memory"]["after50"]["shell"] / results["memory"]["after10"]["shell"]
        rows.append(("resident memory of the shell after 50 openings at most %.2f × after 10" % MOST_GROWTH, growth, MOST_GROWTH))
    return rows


def text_of(results, rows):
    parts = [report.mode_table(line, modes) for line, modes in results["lines"].items()]
    parts += [report.step_table(line, modes) for line, modes in results["lines"].items()]
    if results["fetches"]:
        parts.append(report.fetch_table(results["fetches"]))
    elif "fetchProblem" in results:
        parts.append("Fetches from the add-on: not measured: " + results["fetchProblem"])
    if results["memory"]:
        parts.append(report.memory_table(results["memory"]))
    if results["codeCache"]:
        parts.append(report.code_cache_table(results["codeCache"]))
    return "\n\n".join(parts + [report.target_table(rows)]) + "\n"


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build")
    parser.add_argument("--opens", type=int, default=15)
    parser.add_argument("--modes", default="".join(each.letter for each in MODES))
    parser.add_argument("--lines", type=lambda text: text.split(","), default=["40 ms", "150 ms"])
    parser.add_argument("--times-only", action="store_true", help="neither memory nor fetches")
    parser.add_argument("--out", type=pathlib.Path)
    parser.add_argument("--picture", type=pathlib.Path)
    parser.add_argument("--check", action="store_true", help="status 1 when a target is missed or was not measured")
    arguments = parser.parse_args()
    unknown = [line for line in arguments.lines if line not in LINES]
    if unknown or not set(arguments.modes) <= {each.letter for each in MODES} or arguments.opens < 1:
        parser.error("lines are %s, modes %s" % (", ".join(LINES), "".join(each.letter for each in MODES)))
    return arguments


def main():
    arguments = parse_arguments()
    with tempfile.TemporaryDirectory(prefix="open-bench-") as directory:
        results = measure(arguments, directory)
    rows = target_rows(results)
    text = text_of(results, rows)
    print(text, end="")
    if arguments.out:
        arguments.out.with_suffix(".json").write_text(json.dumps(results, indent=1) + "\n")
        arguments.out.with_suffix(".md").write_text(text)
    if arguments.picture:
        arguments.picture.write_text(report.picture(results["lines"]))
    missed = [row for row in rows if row[1] is None or row[1] > row[2]]
    return 1 if arguments.check and missed else 0


if __name__ == "__main__":
    sys.exit(main())
