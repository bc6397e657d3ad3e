"""Files of a local storage package, read and written by a page of the real shell; prints markdown tables.

    storage_bench.py BUILD_DIR [--json FILE]

16 MiB that the page reads stand beside a fetch of the same bytes, which the request gateway answers from a local
package; small files stand beside the same operations of this script on the same file system.
"""

import argparse
import base64
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

from helio_shell import DocumentsServer, Shell, merged  # noqa: E402
from local_packages import copy_package, installed_packages, plugin_members, switches  # noqa: E402

LARGE_BYTES = 16 << 20
ROUNDS = 9
FILES = 1000
MOST_RATIO = 3
LEAST_PER_SECOND = 1000
OPERATIONS = ("create", "read", "update", "remove")
DOCUMENT = "/p/100001?officeType=w"

CREATE_RECORD = """
return await new Promise((resolve, reject) => {
  window.__record__ = (text) => resolve(JSON.parse(text).result.localId);
  helio.call('docs.storage.info.create', {fileId: '100001', callback: '__record__'}).catch(reject);
})"""


def large_bytes():
    """Text, so that both ways of reading it give the same bytes; with characters that JSON escapes."""
    line = b'"A line of the large file, with a backslash \\ and a tab \t in it"\n'
    return (line * (LARGE_BYTES // len(line) + 1))[:LARGE_BYTES]


def open_page(shell, server):
    page = shell.call("page.create", type=1)["page"]
    since = shell.mark()
    shell.call("page.notify", page=page, text=server.url(DOCUMENT))
    shell.call("page.load", page=page)
    shell.wait_for_page(page, "webFileReady", timeout=60, since=since)
    return page


def measure_page(build, directory):
    """What storage_page.js answers."""
    programs = os.path.join(build, "bin")
    webapp = os.path.join(build, "webapp")
    package = copy_package(installed_packages(build)["w"], directory, "1.0.0")
    content = large_bytes()
    pathlib.Path(package, "weboffice-static", "js", "bench.js").write_bytes(content)
    documents = os.path.join(directory, "documents")
    os.makedirs(documents)
    local_data = os.path.join(directory, "local")
    with DocumentsServer(programs, documents, os.path.join(webapp, "site"),
                         ["--packages", os.path.join(webapp, "package-zips")]) as server:
        user = {"loggedIn": True, "userId": "u", "sessionKey": "k", "localDataDir": local_data}
        members = merged(plugin_members({"w": package}, **switches()), {"user": user})
        with Shell(programs, host=merged(server.host_members(), members)) as shell:
            page = open_page(shell, server)
            local_id = shell.evaluate(page, CREATE_RECORD)
            pathlib.Path(local_data, "quillfile", local_id, "large").write_bytes(content)
            setup = {"localId": local_id, "largeBytes": LARGE_BYTES, "rounds": ROUNDS, "files": FILES,
                     "scriptUrl": "/hybrid/weboffice-static/js/bench.js"}
            script = "const setup = %s;\n%s" % (json.dumps(setup), (HERE / "storage_page.js").read_text(encoding="utf-8"))
            found = shell.evaluate(page, script, timeout=300)
            by = {each.params["by"] for each in shell.notifications("request") if each.params["url"].endswith("/bench.js")}
            if by != {"local"}:
                raise RuntimeError("the large file was to come from the local package, not from %s" % by)
            return found


def measure_plain(directory):
    """Milliseconds of the same operations without any page, by operation."""
    places = [os.path.join(directory, "plain", str(index % 10), str(index)) for index in range(FILES)]

    def create(index, path):
        os.makedirs(os.path.dirname(path), exist_ok=True)
        replace(path, b"one %d" % index)

    def replace(path, content):
        with open(path + ".new", "wb") as file:
            file.write(content)
        os.replace(path + ".new", path)

    actions = {
        "create": create,
        "read": lambda index, path: base64.b64encode(pathlib.Path(path).read_bytes()),
        "update": lambda index, path: replace(path, b"two %d" % index),
        "remove": lambda index, path: os.remove(path),
    }
    times = {}
    for name in OPERATIONS:
        start = time.perf_counter()
        for index, path in enumerate(places):
            actions[name](index, path)
        times[name] = (time.perf_counter() - start) * 1000
    return times


def print_tables(found):
    medians = {name: statistics.median(times) for name, times in found["large"].items()}
    print("| 16 MiB to the page, median of %d | ms | ratio | wanted |\n|---|---|---|---|" % ROUNDS)
    print("| fetch, answered by the gateway | %.1f | 1.00 | |" % medians["fetch"])
    for name in ("read", "readDataSteam"):
        print("| %s | %.1f | %.2f | at most %d |" % (name, medians[name], medians[name] / medians["fetch"], MOST_RATIO))
    print("\n| %d small files, operations a second | %s | all | wanted |" % (FILES, " | ".join(OPERATIONS)))
    print("|---" * (len(OPERATIONS) + 3) + "|")
    for key, title, wanted in (("plain", "without a page", ""), ("together", "from the page, 32 at a time", LEAST_PER_SECOND),
                               ("oneByOne", "from the page, one by one", "")):
        times = found[key]
        rates = [FILES / times[name] * 1000 for name in OPERATIONS]
        rates.append(FILES * len(OPERATIONS) / sum(times.values()) * 1000)
        print("| %s | %s | %s |" % (title, " | ".join("%.0f" % rate for rate in rates),
                                    "at least %d" % wanted if wanted else ""))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--json")
    arguments = parser.parse_args()
    directory = tempfile.mkdtemp(prefix="skyleaf-storage-bench-")
    try:
        found = measure_page(arguments.build, directory)
        found["plain"] = measure_plain(directory)
    finally:
        shutil.rmtree(directory, ignore_errors=True)
    print_tables(found)
    if arguments.json:
        pathlib.Path(arguments.json).write_text(json.dumps(found, indent=1), encoding="utf-8")


if __name__ == "__main__":
    main()
