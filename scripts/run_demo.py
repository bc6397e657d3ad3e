"""Opens a document of the demo in the shell; called by ./run.

With a display: the documents server and the shell run until the shell's window is closed. Headless: the shell opens the
document, and the run ends with a screenshot, the time line of the open and its picture.
"""

import argparse
import json
import os
import subprocess
import sys
import tempfile
import time

from helio_shell import DocumentsServer, Shell, merged, write_host_file
from local_packages import installed_packages, plugin_members, switches


def parse_arguments():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", required=True)
    parser.add_argument("--work", required=True)
    parser.add_argument("--text")
    parser.add_argument("--headless", action="store_true")
    return parser.parse_args()


def host_members(build, server):
    """The demo's deployment: documents are shown by the local packages that the build made."""
    packages = plugin_members(installed_packages(build))
    items = switches(preloading=True, version_check=True, proxy_reset=True, offline_editing=True)
    return merged(server.host_members(features={"SupportSendFileWindow": True}, **packages), items)


def run_with_window(programs, members, text, data_dir):
    with tempfile.TemporaryDirectory(prefix="skyleaf-run-") as directory:
        host = write_host_file(directory, members)
        command = [os.path.join(programs, "skyleaf-shell"), "--host", host, "--data-dir", data_dir, "--", text]
        return subprocess.run(command, check=False).returncode


def time_line(notifications, page, start):
    """The lines of the open: requests, steps and events with their milliseconds since the notify."""
    lines = []
    for each in notifications:
        at = (each.at - start) * 1000
        params = each.params
        if each.method == "request" and params.get("page") == page:
            lines.append((at, "request", "%s %s %s (%s, %d bytes, %.1f ms)" % (
                params["method"], params["status"], params["url"], params["by"], params["bytes"], params["ms"])))
        elif each.method == "event":
            step = params["fields"].get("step", "")
            lines.append((at, "event", (params["name"] + " " + step).strip()))
        elif each.method == "page" and params["page"] == page:
            lines.append((at, "page", params["what"]))
    return lines


def open_headless(programs, members, text, data_dir, work):
    with Shell(programs, host=members, data_dir=data_dir) as shell:
        page = shell.call("page.create", type=1)["page"]
        shell.call("page.notify", page=page, text=text)
        start = time.monotonic()
        shell.call("page.load", page=page)
        shell.wait_for_page(page, "webFileReady" if "/p/" in text or "/l/" in text else "loadFinished", timeout=60)
        shell.evaluate(page, "await new Promise(r => requestAnimationFrame(() => setTimeout(r, 300)))")
        picture = os.path.join(work, "screenshot.png")
        shell.call("page.screenshot", page=page, file=picture)
        stories = [os.path.join(work, "story" + ending) for ending in (".svg", ".png", ".json")]
        for story in stories:
            shell.call("story.export", page=page, file=story)
        state = shell.call("page.state", page=page)
        visible = shell.evaluate(page, "return document.body.innerText.slice(0, 400)")
        steps = [n.params["fields"]["step_list"] for n in shell.notifications("event")
                 if n.params["name"] == "docs_cloud_opentime"]
        lines = time_line(shell.notifications(), page, start)

    with open(os.path.join(work, "timeline.txt"), "w", encoding="utf-8") as file:
        for at, kind, text_of_line in lines:
            file.write("%9.1f ms  %-8s %s\n" % (at, kind, text_of_line))
    print("Opened: %s\nTitle:  %s\n" % (state["url"], state["title"]))
    print("The page's text begins:\n" + "\n".join("  | " + line for line in visible.splitlines()[:8]))
    print("\nTime line (milliseconds since the load):")
    for at, kind, text_of_line in lines:
        print("%9.1f  %-8s %s" % (at, kind, text_of_line[:150]))
    if steps:
        print("\nSteps since the page was made (ms): " + json.dumps(json.loads(steps[-1])))
    print("\nScreenshot: %s\nTime line:  %s" % (os.path.relpath(picture), os.path.relpath(file.name)))
    print("Story:      " + ", ".join(os.path.relpath(story) for story in stories))
    return 0


def main():
    arguments = parse_arguments()
    programs = os.path.join(arguments.build, "bin")
    site = os.path.join(arguments.build, "webapp", "site")
    documents = os.path.join(arguments.work, "documents")
    data_dir = os.path.join(arguments.work, "data")
    for directory in (documents, data_dir):
        os.makedirs(directory, exist_ok=True)
    packages = os.path.join(arguments.build, "webapp", "package-zips")
    with DocumentsServer(programs, documents, site, ["--packages", packages]) as server:
        members = host_members(arguments.build, server)
        text = arguments.text or server.url("/p/100001?officeType=w")
        if arguments.headless:
            return open_headless(programs, members, text, data_dir, arguments.work)
        return run_with_window(programs, members, text, data_dir)


if __name__ == "__main__":
    sys.exit(main())
