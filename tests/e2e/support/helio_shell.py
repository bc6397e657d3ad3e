"""Drives the shell through its control protocol, and the documents server beside it.

    with DocumentsServer(programs, documents, site) as server, Shell(programs, host=server.host_members()) as shell:
        page = shell.call("page.create", type=1)["page"]
        shell.call("page.notify", page=page, text=server.url("/p/100001?officeType=w"))
        shell.call("page.load", page=page)
        shell.wait_for_page(page, "webFileReady")

Standard library only. Every process that is started here is ended here.
"""

import collections
import json
import os
import shutil
import signal
import subprocess
import tempfile
import threading
import time

DEFAULT_TIMEOUT = 30.0


class RpcError(Exception):
    """The shell answered a call with an error."""

    def __init__(self, error):
        super().__init__("%s (%s)" % (error.get("message"), error.get("code")))
        self.code = error.get("code")
        self.message = error.get("message")


class ShellEnded(Exception):
    """The shell ended, or closed its output, while something was still expected of it."""


# `at` is when it was read here, in seconds of the monotonic clock.
Notification = collections.namedtuple("Notification", "method params at")


class ManagedProcess:
    """A child process in a process group of its own, so that what it started ends with it."""

    def __init__(self, command, **options):
        self.process = subprocess.Popen(command, start_new_session=True, **options)

    def stop(self, timeout=10.0):
        """Asks it to end, insists after a while. Returns the exit status."""
        if self.process.poll() is None:
            self._signal(signal.SIGTERM)
            try:
                self.process.wait(timeout)
            except subprocess.TimeoutExpired:
                pass
        return self.kill()

    def kill(self):
        """Ends whatever is left of the group. Returns the exit status."""
        self._signal(signal.SIGKILL)
        return self.process.wait()

    def _signal(self, number):
        try:
            os.killpg(self.process.pid, number)
        except ProcessLookupError:
            pass


class VirtualDisplay:
    """An X server without a screen, for machines without one."""

    def __init__(self, size="1400x900x24"):
        read_end, write_end = os.pipe()
        command = ["Xvfb", "-displayfd", str(write_end), "-screen", "0", size, "-nolisten", "tcp"]
        self._server = ManagedProcess(
            command, pass_fds=[write_end], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL
        )
        os.close(write_end)
        with os.fdopen(read_end) as answer:
            number = answer.readline().strip()
        if not number:
            self.stop()
            raise RuntimeError("Xvfb did not start")
        self.name = ":" + number

    def stop(self):
        self._server.stop()


def write_host_file(directory, members):
    """Writes a host file into the directory, replacing it in one step. Returns its path."""
    path = os.path.join(directory, "host.json")
    with open(path + ".new", "w", encoding="utf-8") as file:
        json.dump(members, file, ensure_ascii=False, indent=2)
    os.replace(path + ".new", path)
    return path


def merged(base, extra):
    """`base` with the members of `extra`; objects are merged member by member."""
    result = dict(base)
    for name, value in extra.items():
        both = isinstance(value, dict) and isinstance(result.get(name), dict)
        result[name] = merged(result[name], value) if both else value
    return result


class DocumentsServer:
    """The documents server on free ports of this machine."""

    def __init__(self, programs, documents, site, arguments=(), host="docs.skyleaf.test", drive="drive.skyleaf.test"):
        self.host = host
        self.drive = drive
        self._directory = tempfile.mkdtemp(prefix="skyleaf-documents-")
        ready_file = os.path.join(self._directory, "ready.json")
        self.access_log = os.path.join(self._directory, "access.jsonl")
        self.log_path = os.path.join(self._directory, "server.log")
        command = [
            os.path.join(programs, "skyleaf-documents-server"),
            "--documents", documents, "--site", site, "--http-port", "0", "--https-port", "0",
            "--ready-file", ready_file, "--access-log", self.access_log,
            *arguments,
        ]  # fmt: skip
        with open(self.log_path, "wb") as log:
            self._process = ManagedProcess(command, stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        try:
            ports = self._wait_until_ready(ready_file)
        except Exception:
            self.stop()
            raise
        self.http_port = ports["http"]
        self.https_port = ports["https"]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()

    @property
    def pid(self):
        return self._process.process.pid

    @property
    def is_running(self):
        return self._process.process.poll() is None

    def _wait_until_ready(self, path):
        deadline = time.monotonic() + DEFAULT_TIMEOUT
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


class Shell:
    """A shell that obeys the control protocol. Calls may come from any thread."""

    def __init__(self, programs, host=None, data_dir=None, text=None, arguments=(), environment=None):
        """`host`: members of a host file. `data_dir`: kept when given, else made and removed with the shell."""
        self._directory = tempfile.mkdtemp(prefix="skyleaf-shell-")
        self._display = None
        self._open_calls = {}
        self._last_id = 0
        self._notifications = []
        self._ended = False
        self._changed = threading.Condition()
        self._write_lock = threading.Lock()
        self.data_dir = data_dir or os.path.join(self._directory, "data")
        self.stderr_path = os.path.join(self._directory, "stderr.log")
        command = [os.path.join(programs, "skyleaf-shell"), "--control", "--headless", "--data-dir", self.data_dir]
        if host is not None:
            self.host_file = write_host_file(self._directory, host)
            command += ["--host", self.host_file]
        command += list(arguments)
        if text is not None:
            command += ["--", text]
        try:
            self._start(command, environment or {})
        except Exception:
            self._clean_up()
            raise

    def _start(self, command, extra_environment):
        environment = dict(os.environ, **extra_environment)
        if not environment.get("DISPLAY"):
            self._display = VirtualDisplay()
            environment["DISPLAY"] = self._display.name
        environment.setdefault("QT_QPA_PLATFORM", "xcb")
        with open(self.stderr_path, "wb") as errors:
            self._process = ManagedProcess(
                command, env=environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=errors
            )
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.quit()

    @property
    def pid(self):
        return self._process.process.pid

    # Calls

    def call(self, method, /, timeout=DEFAULT_TIMEOUT, **params):
        """Calls a method and waits for its result. RpcError when the shell refuses, ShellEnded when it is gone."""
        return self.result_of(self.start_call(method, **params), timeout)

    def start_call(self, method, /, **params):
        """Sends a request without waiting; `result_of` takes what this returns."""
        with self._changed:
            self._last_id += 1
            number = self._last_id
            self._open_calls[number] = None
        self.send_line(json.dumps({"jsonrpc": "2.0", "id": number, "method": method, "params": params}))
        return number

    def result_of(self, number, timeout=DEFAULT_TIMEOUT):
        with self._changed:
            self._wait(lambda: self._open_calls[number] is not None, timeout, "response to call %d" % number)
            message = self._open_calls.pop(number)
        if "error" in message:
            raise RpcError(message["error"])
        return message["result"]

    def send_line(self, line):
        """Sends a line as it is, for what no well-behaved caller sends."""
        try:
            with self._write_lock:
                self._process.process.stdin.write(line.encode("utf-8") + b"\n")
                self._process.process.stdin.flush()
        except (BrokenPipeError, ValueError) as error:
            raise ShellEnded("the shell does not listen any more: " + self.errors()) from error

    def evaluate(self, page, code, timeout=DEFAULT_TIMEOUT):
        """The value that `code`, the body of an async function, returns in the page."""
        return self.call("page.evaluate", timeout=timeout + 5, page=page, code=code, timeoutMs=int(timeout * 1000))

    # Notifications

    def notifications(self, method=None):
        """What was reported so far, oldest first."""
        with self._changed:
            return [each for each in self._notifications if method in (None, each.method)]

    def mark(self):
        """How many notifications there are: where a later `wait_for` may begin."""
        with self._changed:
            return len(self._notifications)

    def wait_for(self, predicate, timeout=DEFAULT_TIMEOUT, since=0):
        """The first notification, from number `since` on, that the predicate takes; waits until there is one."""
        found = []
        position = since

        def search():
            nonlocal position
            while not found and position < len(self._notifications):
                if predicate(self._notifications[position]):
                    found.append(self._notifications[position])
                position += 1
            return bool(found)

        with self._changed:
            self._wait(search, timeout, "notification")
        return found[0]

    def wait_for_page(self, page, what, timeout=DEFAULT_TIMEOUT, since=0):
        wanted = {"page": page, "what": what}
        return self.wait_for(lambda each: each.method == "page" and each.params == wanted, timeout, since)

    def wait_for_event(self, name, timeout=DEFAULT_TIMEOUT, since=0):
        return self.wait_for(lambda each: each.method == "event" and each.params["name"] == name, timeout, since)

    def wait_for_log(self, text, timeout=DEFAULT_TIMEOUT, since=0):
        return self.wait_for(lambda each: each.method == "log" and text in each.params["text"], timeout, since)

    def _wait(self, is_done, timeout, what):
        """With the lock held."""
        deadline = time.monotonic() + timeout
        while not is_done():
            if self._ended:
                raise ShellEnded("the shell ended before the %s: %s" % (what, self.errors()))
            left = deadline - time.monotonic()
            if left <= 0:
                raise TimeoutError("no %s within %s s: %s" % (what, timeout, self.errors()))
            self._changed.wait(left)

    def _read(self):
        for line in self._process.process.stdout:
            message = json.loads(line)
            with self._changed:
                if "method" in message:
                    self._notifications.append(Notification(message["method"], message["params"], time.monotonic()))
                elif message["id"] in self._open_calls:
                    self._open_calls[message["id"]] = message
                else:
                    self._notifications.append(Notification("response", message, time.monotonic()))
                self._changed.notify_all()
        with self._changed:
            self._ended = True
            self._changed.notify_all()

    # End

    def errors(self):
        """What the shell wrote to standard error, its last part."""
        try:
            with open(self.stderr_path, encoding="utf-8", errors="replace") as file:
                return file.read()[-4000:]
        except OSError:
            return ""

    def quit(self, timeout=20.0):
        """Ends the shell as a user would. Returns the exit status; 0 is a clean end."""
        process = self._process.process
        if process.poll() is None:
            try:
                self.send_line(json.dumps({"jsonrpc": "2.0", "method": "shell.quit"}))
                process.stdin.close()
                process.wait(timeout)
            except (ShellEnded, OSError, subprocess.TimeoutExpired):
                pass
        status = self._process.stop()
        self._clean_up()
        return status

    def kill(self):
        """Ends the shell and its child processes as a power cut would; the data directory stays when it was given."""
        self._process.kill()
        self._clean_up()

    def _clean_up(self):
        if getattr(self, "_process", None):
            self._reader.join(5)
            self.output_has_ended = not self._reader.is_alive()  # else a process that outlives the shell holds it
            if self.output_has_ended:
                self._process.process.stdout.close()
        if self._display:
            self._display.stop()
            self._display = None
        shutil.rmtree(self._directory, ignore_errors=True)
