"""Many tabs in the real shell: what released ones cost, and how fast they come back; prints markdown tables.

    tabs_bench.py BUILD_DIR [--tabs N] [--open N] [--rounds N] [--json FILE]

Memory: the proportional set sizes of all processes with many tabs, all but some of them released, stand beside those
with only that many tabs. Time: switching to a released tab, until its document takes input, stands beside a fresh open
of another document in the same shell.
"""

import argparse
import json
import os
import pathlib
import shutil
import statistics
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).parent
sys.path.insert(0, str(HERE.parent.parent / "tests" / "e2e" / "support"))

from helio_shell import DocumentsServer, Shell  # noqa: E402
from process_memory import processes_of, proportional_bytes  # noqa: E402

FIRST_ID = 300001
MOST_MEMORY_RATIO = 1.3
MOST_TIME_RATIO = 1.2
OPEN_TIMEOUT = 120
SETTLE_SECONDS = 5
MIB = 1 << 20

EDITABLE = """
const limit = Date.now() + 30000;
const state = () => window.__DOCS_STATE__;
while (!(state() && state().times.editable) && Date.now() < limit) await new Promise((done) => setTimeout(done, 20));
return state().times.editable"""


def write_documents(directory, count):
    """Copies of the demo document under ids of their own."""
    with open(os.path.join(directory, "100001.json"), encoding="utf-8") as file:
        document = json.load(file)
    for number in range(count):
        document.update(id=str(FIRST_ID + number), name="Document %d.docx" % (number + 1))
        with open(os.path.join(directory, document["id"] + ".json"), "w", encoding="utf-8") as file:
            json.dump(document, file)


class Tabs:
    """A shell with tabs."""

    def __init__(self, shell, server):
        self.shell = shell
        self.server = server
        self.pages = []

    def open(self):
        """Opens the next document in a new tab, made current. Returns milliseconds until it takes input."""
        url = self.server.url("/p/%d?officeType=w" % (FIRST_ID + len(self.pages)))
        start = time.time() * 1000
        page = self.shell.call("page.create", type=1)["page"]
        self.pages.append(page)
        since = self.shell.mark()
        self.shell.call("tab.select", page=page)
        self.shell.call("page.notify", page=page, text=url)
        self.shell.call("page.load", page=page)
        return self.editable(page, since) - start

    def switch_to(self, page):
        """Makes a released tab current. Returns milliseconds until it takes input."""
        if not self.shell.call("page.state", page=page)["released"]:
            raise RuntimeError("tab %d was to be a released one" % page)
        since = self.shell.mark()
        start = time.time() * 1000
        self.shell.call("tab.select", page=page)
        return self.editable(page, since) - start

    def editable(self, page, since):
        """When the page began to take input, in milliseconds since the epoch."""
        self.shell.wait_for_page(page, "webFileReady", timeout=OPEN_TIMEOUT, since=since)
        return self.shell.evaluate(page, EDITABLE, timeout=60)

    def release(self, page):
        if not self.shell.call("page.release", page=page):
            raise RuntimeError("tab %d was not released" % page)

    def memory(self):
        time.sleep(SETTLE_SECONDS)
        pids = processes_of(self.shell.pid, self.shell.data_dir)
        return {"bytes": proportional_bytes(pids), "processes": len(pids)}


def measure_few(programs, server, count):
    with Shell(programs, host=server.host_members()) as shell:
        tabs = Tabs(shell, server)
        for _ in range(count):
            tabs.open()
        return tabs.memory()


def measure_many(programs, server, count, kept, rounds):
    with Shell(programs, host=server.host_members()) as shell:
        tabs = Tabs(shell, server)
        for number in range(count):
            tabs.open()
            if number >= kept:
                tabs.release(tabs.pages[number - kept])
        memory = tabs.memory()
        released = tabs.pages[: count - kept]
        back, fresh = [], []
        # In turns, so that both see the same machine; each leaves as many live tabs as it found.
        for number in range(rounds):
            again = released[number % len(released)]
            back.append(tabs.switch_to(again))
            fresh.append(tabs.open())
            tabs.release(again)
            shell.call("tab.select", page=tabs.pages[count - 1])
            shell.call("page.close", page=tabs.pages[-1])
        return memory, {"back": back, "fresh": fresh}


def print_tables(found):
    few, many = found["few"], found["many"]
    print("| memory of all processes (PSS) | MiB | processes | ratio | wanted |\n|---|---|---|---|---|")
    print("| %d open tabs | %.0f | %d | 1.00 | |" % (found["open"], few["bytes"] / MIB, few["processes"]))
    print("| %d tabs, %d of them released | %.0f | %d | %.2f | at most %.1f |" % (
        found["tabs"], found["tabs"] - found["open"], many["bytes"] / MIB, many["processes"],
        many["bytes"] / few["bytes"], MOST_MEMORY_RATIO))
    fresh, back = (statistics.median(found["times"][name]) for name in ("fresh", "back"))
    print("\n| until the document takes input, median of %d | ms | ratio | wanted |\n|---|---|---|---|" % found["rounds"])
    print("| fresh open | %.0f | 1.00 | |" % fresh)
    print("| back to a released tab | %.0f | %.2f | at most %.1f |" % (back, back / fresh, MOST_TIME_RATIO))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--tabs", type=int, default=200)
    parser.add_argument("--open", type=int, default=10)
    parser.add_argument("--rounds", type=int, default=15)
    parser.add_argument("--json")
    arguments = parser.parse_args()
    if not 0 < arguments.open < arguments.tabs or arguments.rounds < 1:
        parser.error("--tabs must be more than --open, and all numbers greater than 0")
    programs = os.path.join(arguments.build, "bin")
    webapp = os.path.join(arguments.build, "webapp")
    directory = tempfile.mkdtemp(prefix="skyleaf-tabs-bench-")
    found = {"tabs": arguments.tabs, "open": arguments.open, "rounds": arguments.rounds}
    try:
        documents = os.path.join(directory, "documents")
        os.makedirs(documents)
        with DocumentsServer(programs, documents, os.path.join(webapp, "site"),
                             ["--packages", os.path.join(webapp, "package-zips")]) as server:
            write_documents(documents, arguments.tabs + arguments.rounds)
            found["few"] = measure_few(programs, server, arguments.open)
            found["many"], found["times"] = measure_many(programs, server, arguments.tabs, arguments.open, arguments.rounds)
    finally:
        shutil.rmtree(directory, ignore_errors=True)
    print_tables(found)
    if arguments.json:
        pathlib.Path(arguments.json).write_text(json.dumps(found, indent=1), encoding="utf-8")


if __name__ == "__main__":
    main()
