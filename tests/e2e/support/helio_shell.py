"""Drives the shell through its control protocol, and the documents server beside it.

    with DocumentsServer(programs, documents, site) as server, Shell(programs, host=server.host_members()) as shell:
        page = shell.call("page.create", type=1)["page"]
        shell.call("page.notify", page=page, text=server.url("/p/100001?officeType=w"))
        shell.call("page.load", page=page)
        shell.wait_for_page(page, "webFileReady")

Standard library only. Every process that is started here is ended here.
"""

import collections
import glob
import json
import os
import shutil
import subprocess
import tempfile
import threading
import time

from documents_server import DocumentsServer, merged
from processes import ManagedProcess, VirtualDisplay

__all__ = ["DocumentsServer", "ManagedProcess", "Notification", "RpcError", "Shell", "ShellEnded", "VirtualDisplay",
           "merged", "write_host_file"]

# How long something is waited for that should happen: ample, since a machine may be busy.
DEFAULT_TIMEOUT = 60.0


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


def write_host_file(directory, members):
    """Writes a host file into the directory, replacing it in one step. Returns its path."""
    path = os.path.join(directory, "host.json")
    with open(path + ".new", "w", encoding="utf-8") as file:
        json.dump(members, file, ensure_ascii=False, indent=2)
    os.replace(path + ".new", path)
    return path


class Shell:
    """A shell that obeys the control protocol. Calls may come from any thread."""

    def __init__(self, programs, host=None, data_dir=None, text=None, arguments=(), environment=None, directory=None):
        """`host`: members of a host file. `data_dir`: kept when given, else in the directory. `directory`: where logs and
        the host file are; kept when given, else made and removed with the shell."""
        self._owns_directory = directory is None
        self._directory = directory or tempfile.mkdtemp(prefix="skyleaf-shell-")
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
        return self._process.pid

    @property
    def is_running(self):
        return self._process.is_running

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

    def wait_for(self, predicate, timeout=DEFAULT_TIMEOUT, since=0, what="notification"):
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
            self._wait(search, timeout, what)
        return found[0]

    def wait_for_page(self, page, what, timeout=DEFAULT_TIMEOUT, since=0):
        wanted = {"page": page, "what": what}
        return self.wait_for(lambda each: each.method == "page" and each.params == wanted, timeout, since,
                             '"%s" of page %s' % (what, page))

    def wait_for_event(self, name, timeout=DEFAULT_TIMEOUT, since=0, **fields):
        """An event of data collection; with these values among its fields."""
        def is_wanted(each):
            if each.method != "event" or each.params["name"] != name:
                return False
            return all(each.params["fields"].get(key) == value for key, value in fields.items())
        return self.wait_for(is_wanted, timeout, since, "event %s %s" % (name, fields or ""))

    def wait_for_log(self, text, timeout=DEFAULT_TIMEOUT, since=0):
        return self.wait_for(lambda each: each.method == "log" and text in each.params["text"], timeout, since,
                             "line of the log with %r" % text)

    def _wait(self, is_done, timeout, what):
        """With the lock held."""
        deadline = time.monotonic() + timeout
        while not is_done():
            if self._ended:
                raise ShellEnded("the shell ended before the %s: %s" % (what, self.errors()))
            left = deadline - time.monotonic()
            if left <= 0:
                raise TimeoutError("no %s within %s s; the latest notifications:\n%s\n%s" % (
                    what, timeout, self._latest(), self.errors()))
            self._changed.wait(left)

    def _latest(self, count=12):
        return "\n".join("  %s %s" % (each.method, json.dumps(each.params, ensure_ascii=False)[:200])
                         for each in self._notifications[-count:])

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

    def quit(self, timeout=60.0):
        """Ends the shell as a user would. Returns the exit status; 0 is a clean end."""
        process = self._process.process
        if process.poll() is None:
            try:
                self.send_line(json.dumps({"jsonrpc": "2.0", "method": "shell.quit"}))
                process.stdin.close()
                process.wait(timeout)
            except subprocess.TimeoutExpired:
                self._note_threads()
            except (ShellEnded, OSError):
                pass
        status = self._process.stop()
        self._clean_up()
        return status

    def _note_threads(self):
        """Adds to the errors what the threads of a shell that does not end are waiting in."""
        with open(self.stderr_path, "a", encoding="utf-8") as errors:
            errors.write("the shell does not end; its threads:\n")
            for folder in sorted(glob.glob("/proc/%d/task/*" % self.pid)):
                texts = []
                for name in ("comm", "wchan", "syscall"):
                    try:
                        with open(os.path.join(folder, name), encoding="ascii", errors="replace") as file:
                            texts.append(file.read().strip())
                    except OSError:
                        continue  # it ended meanwhile, or the machine does not tell
                errors.write("  %s %s\n" % (os.path.basename(folder), " ".join(texts)))

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
        if self._owns_directory:
            shutil.rmtree(self._directory, ignore_errors=True)
