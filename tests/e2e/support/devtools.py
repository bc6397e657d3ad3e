"""Talks to Chromium's own debugging port: what the control protocol cannot do, such as traces of the engine.

    with Shell(programs, environment=debugging_environment(port)) as shell:
        with DevTools(port) as tools:
            tools.call("Network.clearBrowserCache")
            events = tools.trace(["v8", "devtools.timeline"], lambda: open_a_document(shell))

Standard library only; the port is on this machine.
"""

import base64
import json
import os
import socket
import struct
import time
import urllib.request

TIMEOUT = 30.0


def debugging_environment(port):
    """What makes a shell listen for this module on the port."""
    return {"QTWEBENGINE_REMOTE_DEBUGGING": "127.0.0.1:%d" % port}


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class WebSocket:
    """The client's side of one connection: texts both ways, nothing else."""

    TEXT, CLOSE, PING, PONG = 1, 8, 9, 10

    def __init__(self, host, port, path):
        self._socket = socket.create_connection((host, port), TIMEOUT)
        self._input = self._socket.makefile("rb")
        key = base64.b64encode(os.urandom(16)).decode()
        self._socket.sendall((
            "GET %s HTTP/1.1\r\nHost: %s:%d\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
            "Sec-WebSocket-Key: %s\r\nSec-WebSocket-Version: 13\r\n\r\n" % (path, host, port, key)
        ).encode())
        status = self._input.readline()
        if b" 101 " not in status:
            raise ConnectionError("no web socket: " + status.decode(errors="replace").strip())
        while self._input.readline() not in (b"\r\n", b""):
            pass

    def send(self, text):
        self._send(self.TEXT, text.encode())

    def receive(self):
        """The next text."""
        message = b""
        while True:
            last, kind, payload = self._frame()
            if kind == self.CLOSE:
                raise ConnectionError("the web socket was closed")
            if kind == self.PING:
                self._send(self.PONG, payload)
            elif kind != self.PONG:
                message += payload
                if last:
                    return message.decode()

    def close(self):
        self._input.close()
        self._socket.close()

    def _send(self, kind, payload):
        size = len(payload)
        if size < 126:
            head = struct.pack("!BB", 0x80 | kind, 0x80 | size)
        elif size < 65536:
            head = struct.pack("!BBH", 0x80 | kind, 0x80 | 126, size)
        else:
            head = struct.pack("!BBQ", 0x80 | kind, 0x80 | 127, size)
        mask = os.urandom(4)
        self._socket.sendall(head + mask + bytes(byte ^ mask[i % 4] for i, byte in enumerate(payload)))

    def _frame(self):
        first, second = self._read(2)
        size = second & 127
        if size == 126:
            (size,) = struct.unpack("!H", self._read(2))
        elif size == 127:
            (size,) = struct.unpack("!Q", self._read(8))
        return bool(first & 0x80), first & 15, self._read(size)

    def _read(self, size):
        data = self._input.read(size)
        if len(data) < size:
            raise ConnectionError("the web socket ended")
        return data


def targets(port):
    """What can be debugged: one entry a page, with its "webSocketDebuggerUrl"."""
    with urllib.request.urlopen("http://127.0.0.1:%d/json/list" % port, timeout=TIMEOUT) as reply:
        return json.load(reply)


def wait_for_target(port, url_part=""):
    deadline = time.monotonic() + TIMEOUT
    while True:
        try:
            found = [each for each in targets(port) if each.get("type") == "page" and url_part in each.get("url", "")]
        except OSError:
            found = []
        if found:
            return found[0]
        if time.monotonic() > deadline:
            raise TimeoutError("nothing to debug on port %d with %r in its address" % (port, url_part))
        time.sleep(0.05)


class DevTools:
    """A debugging session, with the page whose address holds `url_part`."""

    def __init__(self, port, url_part=""):
        url = wait_for_target(port, url_part)["webSocketDebuggerUrl"]
        self._socket = WebSocket("127.0.0.1", port, "/" + url.split("/", 3)[3])
        self._last_id = 0
        self._events = []

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        self._socket.close()

    def call(self, method, **params):
        self._last_id += 1
        self._socket.send(json.dumps({"id": self._last_id, "method": method, "params": params}))
        while True:
            message = json.loads(self._socket.receive())
            if message.get("id") == self._last_id:
                if "error" in message:
                    raise RuntimeError("%s: %s" % (method, message["error"].get("message")))
                return message["result"]
            self._events.append(message)

    def trace(self, categories, action):
        """The trace events of those categories, of all processes, while `action` runs."""
        self._events.clear()
        self.call("Tracing.start", transferMode="ReportEvents", traceConfig={"includedCategories": categories})
        try:
            action()
        finally:
            self.call("Tracing.end")
        while not any(each.get("method") == "Tracing.tracingComplete" for each in self._events):
            self._events.append(json.loads(self._socket.receive()))
        collected = [each["params"]["value"] for each in self._events if each.get("method") == "Tracing.dataCollected"]
        return [event for part in collected for event in part]
