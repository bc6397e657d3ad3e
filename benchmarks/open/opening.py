"""One measured opening of a document in a shell of its own."""

import json
import os
import pathlib
import time
import urllib.request

PAGE_REPORT = (pathlib.Path(__file__).parent / "page_report.js").read_text(encoding="utf-8")
OPEN_TIMEOUT = 120
# More than this between the page's clock and the machine's makes a time useless.
MOST_SKEW_MS = 5

# What a step of the opening is called in the report, and where it stands in an opening. All milliseconds since the notify.
STEPS = {
    "navigation": "the browser starts to navigate",
    "page": "the page is received",
    "script": "the editor's script is received",
    "run": "the editor's script begins to run",
    "ready": "the editor's script has run",
    "reply": "the document is received",
    "mount": "the document goes into the editor",
    "visible": "the text is painted",
    "editable": "the editor takes input",
}


class BadOpening(Exception):
    """The document opened in another way than its mode wants, or not at all."""


def control(server, resource, body):
    """Tells the documents server what to do from now on."""
    request = urllib.request.Request("http://127.0.0.1:%d/_control/%s" % (server.http_port, resource),
                                     json.dumps(body).encode(), method="PUT")
    with urllib.request.urlopen(request, timeout=10) as answer:
        answer.read()


def open_document(shell, url, before_close=None, page_type=1):
    """Opens the document in a new page, and closes the page. Returns the page's report, with its steps."""
    page = shell.call("page.create", type=page_type)["page"]
    since = shell.mark()
    start = time.time() * 1000
    shell.call("page.notify", page=page, text=url)
    shell.call("page.load", page=page)
    try:
        shell.wait_for_page(page, "webFileReady", timeout=OPEN_TIMEOUT, since=since)
        report = shell.evaluate(page, PAGE_REPORT, timeout=30)
        report["answeredBy"] = answers(shell, page, since)
        report["requestedBeforeNotify"] = report["origin"] < start
        report["steps"] = steps(report, start)
        if before_close:
            before_close(page, report)
    finally:
        shell.call("page.close", page=page)
    shell.wait_for_page(page, "closed", since=since)
    if not report["times"]["visible"] or abs(report["clockSkew"]) > MOST_SKEW_MS:
        raise BadOpening("no text was painted, or the clocks differ: %s" % json.dumps(report))
    return report


def answers(shell, page, since):
    """Who answered which kind of request of the page: {"page": {"local"}, …}. What the browser had is not in it."""
    kinds = {"/preopen/": "preopen", "/office-config/": "config", "/hybrid/weboffice-static/js/": "script", "/p/": "page"}
    found = {}
    for each in shell.notifications("request"):
        kind = next((kind for part, kind in kinds.items() if part in each.params["url"]), None)
        if kind and each.params["page"] == page:
            found.setdefault(kind, set()).add(each.params["by"])
    return {kind: sorted(by) for kind, by in found.items()}


def steps(report, start):
    """Milliseconds since the notify, by the names of STEPS; below 0 for what a page did before it was told."""
    marks = report["marks"]
    at = report["origin"] - start
    script = [each["responseEnd"] for each in report["scripts"] if "/editor-" in each["name"]]
    return {
        "navigation": at,
        "page": at + report["pageReceived"],
        "script": at + max(script, default=0),
        "run": at + marks["docs-editor-start"],
        "ready": at + marks["docs-editor-ready"],
        "reply": at + marks.get("docs-reply", 0),
        "mount": at + marks["docs-mount"],
        "visible": report["times"]["visible"] - start,
        "editable": report["times"]["editable"] - start,
    }


def resident_bytes(pid):
    """Resident memory of one process, and of all processes of its group."""
    own = group = 0
    for entry in os.listdir("/proc"):
        if not entry.isdigit():
            continue
        try:
            with open("/proc/%s/status" % entry, encoding="ascii", errors="replace") as file:
                fields = dict(line.split(":", 1) for line in file if ":" in line)
            if os.getpgid(int(entry)) != pid or "VmRSS" not in fields:
                continue
        except (OSError, ValueError):
            continue
        size = int(fields["VmRSS"].split()[0]) * 1024
        group += size
        own = size if int(entry) == pid else own
    return own, group
