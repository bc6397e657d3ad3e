"""What V8 did with the scripts of a shell's pages: compiled them, or took them from a code cache.

    log = V8Log(directory)
    with Shell(programs, environment=log.environment()) as shell:
        open_a_document(shell)
        print(log.scripts("/editor-w."))    # [Script(url, from_cache=False)]

V8 itself writes the log, one file a page process. That needs a browser without its sandbox, which is how tests run.
"""

import collections
import os

Script = collections.namedtuple("Script", "url from_cache")


class V8Log:
    def __init__(self, directory):
        """`directory` is empty, and V8's alone; no blank or comma in its name."""
        if " " in directory or "," in directory:
            raise ValueError("V8 takes no such name: " + directory)
        self._directory = directory

    def environment(self, flags=""):
        """For a shell; `flags` are further flags of the browser."""
        log = "--js-flags=--log-function-events,--logfile=%s/%%p.log" % self._directory
        return {"QTWEBENGINE_CHROMIUM_FLAGS": (log + " " + flags).strip(), "QTWEBENGINE_DISABLE_SANDBOX": "1"}

    def clear(self):
        for name in os.listdir(self._directory):
            os.unlink(os.path.join(self._directory, name))

    def scripts(self, url_part):
        """The scripts, with this in their addresses, that page processes ran since the log was cleared."""
        return [script for name in sorted(os.listdir(self._directory))
                for script in scripts_of(os.path.join(self._directory, name)) if url_part in script.url]


def scripts_of(path):
    """The scripts in one log file. Those that a worker keeps are compiled there without being run: it is left out."""
    urls, cached = {}, set()
    with open(path, encoding="utf-8", errors="replace") as file:
        for line in file:
            fields = line.rstrip("\n").split(",")
            if fields[0] == "script-details" and len(fields) > 2:
                urls[fields[1]] = fields[2]
            elif fields[:2] == ["script", "deserialize"]:
                cached.add(fields[2])
    if any(url.endswith("/sw.js") for url in urls.values()):
        return []
    by_url = collections.OrderedDict()
    for number, url in urls.items():
        by_url[url] = by_url.get(url, False) or number in cached
    return [Script(url, from_cache) for url, from_cache in by_url.items() if url]
