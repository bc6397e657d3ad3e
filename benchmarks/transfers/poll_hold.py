"""How long the shell's user-interface thread is held while a page watches a large upload.

A page uploads a folder; the documents server stands still, so that every file is under way and each poll, once a
second, reports all of them. Meanwhile the control protocol, which the same thread answers, is asked without a pause:
the longest answer is the longest hold. The same page before the upload is the peer.
"""

import json
import os
import pathlib
import signal
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent.parent / "tests" / "e2e" / "support"))

from helio_shell import DocumentsServer, Shell, merged  # noqa: E402
from local_packages import installed_packages, plugin_members, switches  # noqa: E402

PAGE = "/interface.html"
WATCH = """
window.__polls__ = [];
window.__onReport__ = (text) => window.__polls__.push(text.length);
helio.call('fileUploadListener', {callback: '__onReport__'});
return true;"""
UPLOAD = "helio.call('callFileUploader', {isDir: '1', groupid: '0', parentid: '0'}); return true;"
LEAST_POLLS = 10


def make_folder(directory, files):
    folder = os.path.join(directory, "folder")
    for number in range(files):
        place = os.path.join(folder, "part %02d" % (number % 40))
        os.makedirs(place, exist_ok=True)
        with open(os.path.join(place, "file %05d.bin" % number), "wb") as file:
            file.write(b"x" * 2048)
    return folder


def longest_answer(shell, page, is_over):
    longest = 0
    while not is_over():
        start = time.perf_counter()
        shell.call("page.state", page=page)
        longest = max(longest, time.perf_counter() - start)
    return longest


def for_seconds(seconds):
    end = time.perf_counter() + seconds
    return lambda: time.perf_counter() > end


def measure(build, files, seconds=12):
    """Seconds: {"watching": longest, "idle": longest}, and the characters of a poll's text."""
    programs, webapp = os.path.join(build, "bin"), os.path.join(build, "webapp")
    with tempfile.TemporaryDirectory() as directory:
        folder = make_folder(directory, files)
        documents = os.path.join(directory, "documents")
        os.mkdir(documents)
        with DocumentsServer(programs, documents, os.path.join(webapp, "site")) as server:
            user = {"loggedIn": True, "userId": "u", "sessionKey": "k", "localDataDir": os.path.join(directory, "local")}
            members = merged(plugin_members(installed_packages(build), **switches()), {"user": user})
            with Shell(programs, host=merged(server.host_members(), members)) as shell:
                page = shell.call("page.create", type=1)["page"]
                since = shell.mark()
                shell.call("page.notify", page=page, text=server.url(PAGE))
                shell.call("page.load", page=page)
                shell.wait_for_page(page, "loadFinished", timeout=60, since=since)
                idle = longest_answer(shell, page, for_seconds(seconds))
                shell.evaluate(page, WATCH)
                os.kill(server.pid, signal.SIGSTOP)
                try:
                    shell.call("dialog.answer", dialog="file", value=[folder])
                    shell.evaluate(page, UPLOAD)
                    deadline = time.monotonic() + 120
                    while len(polls(shell, page)) < 2:  # the folder was read, and its files were queued
                        if time.monotonic() > deadline:
                            raise TimeoutError("no poll says what is under way")
                        time.sleep(0.2)
                    watching = longest_answer(shell, page, for_seconds(seconds))
                    sizes = polls(shell, page)
                finally:
                    os.kill(server.pid, signal.SIGCONT)
    if len(sizes) < LEAST_POLLS:
        raise RuntimeError("only %d polls in %d seconds" % (len(sizes), seconds))
    return {"idle": idle, "watching": watching}, max(sizes)


def polls(shell, page):
    return shell.evaluate(page, "return window.__polls__")


if __name__ == "__main__":
    print(json.dumps(measure(sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 10000)))
