"""The documents server of the tests. Standard library only."""

import json
import os
import shutil
import subprocess
import tempfile
import time
import urllib.request

from processes import ManagedProcess

START_LIMIT = 60.0


def merged(base, extra):
    """`base` with the members of `extra`; objects are merged member by member."""
    result = dict(base)
    for name, value in extra.items():
        both = isinstance(value, dict) and isinstance(result.get(name), dict)
        result[name] = merged(result[name], value) if both else value
    return result


class DocumentsServer:
    """The documents server on free ports of this machine. It keeps its ports when it is started again."""

    def __init__(self, programs, documents, site, arguments=(), host="docs.skyleaf.test", drive="drive.skyleaf.test",
                 environment=None):
        self.host = host
        self.drive = drive
        self._directory = tempfile.mkdtemp(prefix="skyleaf-documents-")
        self.access_log = os.path.join(self._directory, "access.jsonl")
        self.log_path = os.path.join(self._directory, "server.log")
        self.http_port = self.https_port = 0
        self._environment = dict(os.environ, **(environment or {}))
        self._command = [os.path.join(programs, "skyleaf-documents-server"), "--documents", documents, "--site", site,
                         "--access-log", self.access_log, *arguments]
        try:
            self.start()
        except Exception:
            self.stop()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()

    def start(self):
        """Starts it, also after `kill`: then at its old address, with its documents."""
        ready_file = os.path.join(self._directory, "ready.json")
        if os.path.exists(ready_file):
            os.unlink(ready_file)
        command = self._command + ["--http-port", str(self.http_port), "--https-port", str(self.https_port),
                                   "--ready-file", ready_file]
        with open(self.log_path, "ab") as log:
            self._process = ManagedProcess(command, stdin=subprocess.DEVNULL, stdout=log, stderr=log, env=self._environment)
        ports = self._wait_until_ready(ready_file)
        self.http_port, self.https_port = ports["http"], ports["https"]

    @property
    def pid(self):
        return self._process.pid

    @property
    def is_running(self):
        return self._process.is_running

    def _wait_until_ready(self, path):
        deadline = time.monotonic() + START_LIMIT
        while not os.path.exists(path):
            if not self.is_running or time.monotonic() > deadline:
                with open(self.log_path, encoding="utf-8", errors="replace") as log:
                    raise RuntimeError("the documents server did not start: " + log.read())
            time.sleep(0.02)
        with open(path, encoding="utf-8") as file:
            return json.load(file)

    def url(self, path="/", scheme="https"):
        """The address of a path as the browser sees it."""
        return "%s://%s%s" % (scheme, self.host, path)

    def host_members(self, **extra):
        """Members of a host file that lead to this server."""
        resolve = {}
        for host in (self.host, self.drive):
            resolve[host + ":443"] = "127.0.0.1:%d" % self.https_port
            resolve[host + ":80"] = "127.0.0.1:%d" % self.http_port
        return merged({"resolve": resolve}, extra)

    def control(self, resource, body):
        """Tells the server what to do from now on; see the server's ControlApi."""
        request = urllib.request.Request("http://127.0.0.1:%d/_control/%s" % (self.http_port, resource),
                                         json.dumps(body).encode(), method="PUT")
        with urllib.request.urlopen(request, timeout=30):
            pass

    def requests(self):
        """The requests that the server has logged so far, oldest first."""
        if not os.path.exists(self.access_log):
            return []
        with open(self.access_log, encoding="utf-8") as file:
            return [json.loads(line) for line in file if line.endswith("\n")]

    def kill(self):
        """Ends the server as a power cut would."""
        self._process.kill()

    def stop(self):
        self._process.stop()
        shutil.rmtree(self._directory, ignore_errors=True)
