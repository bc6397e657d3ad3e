#!/usr/bin/env python3
"""Transfers of the cloud service beside curl, to and from the same documents server in the same run.

    transfers_bench.py BUILD_DIR [--json FILE] [--rounds 3] [--mib 1024] [--files 10000]

Each round does the same work with both, in turns; the table has the medians. The service reads a file once before it
sends it (the server wants its SHA-1 first) and checks the SHA-1 of what it receives; curl does neither. Wants
about 14 GiB of room in the temporary directory at the standard sizes.
"""

import argparse
import hashlib
import json
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time
import urllib.request

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tests" / "e2e" / "support"))

from cloud_service import CloudService  # noqa: E402
from helio_shell import DocumentsServer  # noqa: E402
import poll_hold  # noqa: E402

GROUP = "7"
MIB = 1024 * 1024
LEAST_RATIO = 0.7
MOST_MIB = 64
CONNECTIONS = 4
MOST_POLL_SECONDS = 1  # the web page asks once a second
MOST_HOLD_SECONDS = 0.05


def tell(text):
    print(text, file=sys.stderr, flush=True)


def timed(action):
    begin = time.monotonic()
    action()
    return time.monotonic() - begin


class Bench:
    def __init__(self, build, server, service, directory, options):
        self.server, self.service, self.directory, self.options = server, service, directory, options
        self.api = "http://127.0.0.1:%d/api/v1/drive" % server.http_port
        self.block = os.urandom(16 * MIB)
        self.seconds = {}
        self.hold = None

    def note(self, what, who, seconds):
        self.seconds.setdefault(what, {}).setdefault(who, []).append(seconds)
        tell("%s, %s: %.2f s" % (what, who, seconds))

    def ask(self, method, path, members=None):
        body = None if members is None else json.dumps(members).encode()
        request = urllib.request.Request(self.api + path, body, {"Content-Type": "application/json", "Cookie": "vlt_sid=bench"}, method=method)
        with urllib.request.urlopen(request) as answer:
            return json.load(answer)

    def large_file(self, name):
        """A new content, so that the server has none of it."""
        path = os.path.join(self.directory, name)
        with open(path, "wb") as file:
            file.write(os.urandom(MIB))
            for _ in range(self.options.mib // 16):
                file.write(self.block)
        return path

    def curl(self, target, *arguments):
        subprocess.run(["curl", "-sS", "--fail", "-H", "Cookie: vlt_sid=bench", "-o", target, *arguments], check=True)

    def upload_by_curl(self, path):
        """Answers the seconds without those that the SHA-1 takes, and the file's id."""
        with open(path, "rb") as file:
            sha1 = hashlib.file_digest(file, "sha1").hexdigest()
        order = {"groupid": GROUP, "parentid": "0", "fileid": "0", "name": os.path.basename(path),
                 "size": os.path.getsize(path), "sha1": sha1}
        begin = time.monotonic()
        upload = self.ask("POST", "/uploads", order)["uploadid"]
        self.curl(os.devnull, "-T", path, "-H", "Expect:", "%s/uploads/%s?offset=0" % (self.api, upload))
        item = self.ask("POST", "/uploads/%s/finish" % upload)
        return time.monotonic() - begin, item["id"]

    def upload(self, paths):
        self.service.call("batchUploadFileListToAnyExistedPath", groupid=GROUP, parentid="0", fileid="",
                          paths=json.dumps(paths))
        self.service.wait("upload")

    def large(self, round_number):
        ours, peer = (self.large_file("%s-%d" % (who, round_number)) for who in ("ours", "curl"))
        def up_peer():
            seconds, file_id = self.upload_by_curl(peer)
            self.note("up", "curl", seconds)
            return file_id
        def up_ours():
            self.note("up", "service", timed(lambda: self.upload([ours])))
        # Whoever is first may find the disk idle: they take turns.
        if round_number % 2:
            file_id = up_peer()
            up_ours()
        else:
            up_ours()
            file_id = up_peer()

        target = os.path.join(self.directory, "down")
        os.makedirs(target, exist_ok=True)
        def down_peer():
            by_curl = os.path.join(target, "by-curl")
            self.note("down", "curl",
                      timed(lambda: self.curl(by_curl, "%s/files/%s/content" % (self.api, file_id))))
            os.remove(by_curl)
        def down_ours():
            def work():
                self.service.call("downloadCloudFiles", fileids=file_id, directory=target, historyid="")
                self.service.wait("download")
            self.note("down", "service", timed(work))
            os.remove(os.path.join(target, os.path.basename(peer)))
        for action in (down_peer, down_ours) if round_number % 2 else (down_ours, down_peer):
            action()
        os.remove(ours)
        os.remove(peer)

    def small_files(self, name):
        folder = os.path.join(self.directory, name)
        os.makedirs(folder)
        paths = []
        for number in range(self.options.files):
            paths.append(os.path.join(folder, "file %05d.txt" % number))
            with open(paths[-1], "wb") as file:
                file.write(os.urandom(2048))
        return folder, paths

    def small_by_curl(self, paths, parent):
        """One curl with as many connections as the service has, kept open; the SHA-1s are taken before."""
        config = os.path.join(self.directory, "curl.config")
        with open(config, "w", encoding="utf-8") as file:
            for path in paths:
                with open(path, "rb") as source:
                    sha1 = hashlib.sha1(source.read()).hexdigest()
                name = os.path.basename(path).replace(" ", "%20")
                file.write('upload-file = "%s"\nurl = "%s/groups/%s/folders/%s/files?name=%s&sha1=%s"\n'
                           'output = "/dev/null"\n' % (path, self.api, GROUP, parent, name, sha1))
        return timed(lambda: subprocess.run(
            ["curl", "-sS", "--fail", "-H", "Cookie: vlt_sid=bench", "--parallel", "--parallel-max", str(CONNECTIONS), "-K", config],
            check=True, stderr=subprocess.DEVNULL, stdout=subprocess.DEVNULL))

    def small(self, round_number):
        _, by_curl = self.small_files("by-curl-%d" % round_number)
        order = {"parentid": "0", "name": "by curl %d" % round_number}
        parent = self.ask("POST", "/groups/%s/folders" % GROUP, order)["id"]
        folder, _ = self.small_files("small-%d" % round_number)
        def peer():
            self.note("small", "curl", self.small_by_curl(by_curl, parent))
        def work():
            self.service.call("folderUpload", groupid=GROUP, parentid="0", path=folder)
            self.service.wait("upload")
        def ours():
            self.note("small", "service", timed(work))
        for action in (peer, ours) if round_number % 2 else (ours, peer):
            action()

    def polls(self):
        """Uploads many small files, and asks once a second for the states of all of them."""
        folder, paths = self.small_files("polled")
        polls = []
        self.service.call("folderUpload", groupid=GROUP, parentid="0", path=folder)
        active = True
        while active:
            states = {}
            polls.append(timed(lambda: states.update(
                self.service.call("getBatchUploadFileListState", a0="|".join(paths)))))
            active = any(states[path].startswith(("queue", "uploading")) for path in paths)
            time.sleep(1)
        if not all(states[path].startswith("ok/") for path in paths):
            raise RuntimeError("not all small files arrived")
        self.seconds["poll"] = {"service": polls}


def rows_of(bench, peaks):
    rows, missed = [], []
    def row(what, ours, peer, compared, wanted, is_met):
        rows.append("| %s | %s | %s | %s | %s | %s |" % (what, ours, peer, compared, wanted, "yes" if is_met else "no"))
        if not is_met:
            missed.append(what)
    gigabytes = (bench.options.mib + 1) * MIB / 1e9
    for key, what in (("up", "Upload of %d MiB" % bench.options.mib), ("down", "Download of %d MiB" % bench.options.mib)):
        ours, peer = (statistics.median(bench.seconds[key][who]) for who in ("service", "curl"))
        row(what, "%.2f GB/s" % (gigabytes / ours), "%.2f GB/s" % (gigabytes / peer), "%.2f ×" % (peer / ours),
            "at least %.1f ×" % LEAST_RATIO, peer / ours >= LEAST_RATIO)
    ours, peer = (statistics.median(bench.seconds["small"][who]) for who in ("service", "curl"))
    files = bench.options.files
    row("Upload of %d files of 2 KiB" % files, "%.0f/s" % (files / ours), "%.0f/s" % (files / peer),
        "%.2f ×" % (peer / ours), "at least %.1f ×" % LEAST_RATIO, peer / ours >= LEAST_RATIO)
    longest = max(bench.seconds["poll"]["service"])
    row("Longest answer to a poll of %d paths, meanwhile" % files, "%.0f ms" % (longest * 1000), "–", "–",
        "at most %.0f ms" % (MOST_POLL_SECONDS * 1000), longest <= MOST_POLL_SECONDS)
    held, text_size = bench.hold
    row("Longest hold of the shell's user-interface thread, while it reports them (%.1f million characters a poll); "
        "idle instead of curl" % (text_size / 1e6), "%.0f ms" % (held["watching"] * 1000), "%.0f ms" % (held["idle"] * 1000),
        "–", "under %.0f ms" % (MOST_HOLD_SECONDS * 1000), held["watching"] < MOST_HOLD_SECONDS)
    for what, peak in peaks.items():
        row("Peak memory of the service after %s" % what, "%.1f MiB" % peak, "–", "–", "under %d MiB" % MOST_MIB,
            peak < MOST_MIB)
    return rows, missed


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--json")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--mib", type=int, default=1024)
    parser.add_argument("--files", type=int, default=10000)
    parser.add_argument("--check", action="store_true", help="end with status 1 when a target is missed")
    options = parser.parse_args()
    programs = os.path.join(options.build, "bin")
    peaks = {}
    with tempfile.TemporaryDirectory() as directory:
        for name in ("documents", "site", "service"):
            os.mkdir(os.path.join(directory, name))
        with DocumentsServer(programs, os.path.join(directory, "documents"), os.path.join(directory, "site")) as server, \
                CloudService(os.path.join(programs, "vltcloudsvr"), os.path.join(directory, "service"),
                             {"docs.test": "127.0.0.1:%d" % server.http_port}) as service:
            bench = Bench(options.build, server, service, directory, options)
            for round_number in range(options.rounds):
                bench.large(round_number)
            peaks["the large files"] = service.peak_mib()
            for round_number in range(options.rounds):
                bench.small(round_number)
            bench.polls()
            peaks["the small files and their polls"] = service.peak_mib()
    bench.hold = poll_hold.measure(options.build, options.files)
    rows, missed = rows_of(bench, peaks)
    print("| What | Ours | curl | Ratio | Wanted | Met |\n|---|---|---|---|---|---|")
    print("\n".join(rows))
    if options.json:
        with open(options.json, "w", encoding="utf-8") as file:
            json.dump({"seconds": bench.seconds, "hold": bench.hold, "peakMib": peaks, "missed": missed}, file, indent=2)
    return 1 if options.check and missed else 0


if __name__ == "__main__":
    sys.exit(main())
