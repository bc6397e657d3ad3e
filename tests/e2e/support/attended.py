"""A shell that somebody sits before: without control protocol, on a display of its own, driven by keys and the pointer."""

import os
import shutil
import subprocess
import tempfile
import time

from helio_shell import ManagedProcess, VirtualDisplay, write_host_file


class AttendedShell:
    def __init__(self, programs, host, data_dir, text=None):
        self._directory = tempfile.mkdtemp(prefix="skyleaf-attended-")
        self._display = VirtualDisplay()
        self._programs = programs
        self._data_dir = data_dir
        self._host_file = write_host_file(self._directory, host)
        self.environment = dict(os.environ, DISPLAY=self._display.name, QT_QPA_PLATFORM="xcb")
        self.stderr_path = os.path.join(self._directory, "stderr.log")
        with open(self.stderr_path, "wb") as errors:
            self._process = ManagedProcess(self.command(text), env=self.environment, stdin=subprocess.DEVNULL,
                                           stdout=errors, stderr=errors)

    def command(self, text=None):
        """What another start of this shell is."""
        command = [os.path.join(self._programs, "skyleaf-shell"), "--host", self._host_file, "--data-dir", self._data_dir]
        return command + (["--", text] if text is not None else [])

    @property
    def process(self):
        return self._process.process

    def windows(self, name):
        """The ids of the windows in sight whose title the expression finds."""
        found = self._xdotool("search", "--onlyvisible", "--name", name)
        return found.stdout.split()

    def titles(self):
        return [self._xdotool("getwindowname", window).stdout.strip() for window in self.windows(".")]

    def wait_for_window(self, name, timeout=60):
        self.until(lambda: self.windows(name), "no window named %s" % name, timeout)
        return self.windows(name)[-1]

    def wait_until_gone(self, name, timeout=30):
        self.until(lambda: not self.windows(name), "the window named %s is still there" % name, timeout)

    def keys(self, window, *keys):
        """Presses keys in a window. There is no window manager that would give it the keyboard."""
        self._xdotool("windowfocus", "--sync", window)
        for key in keys:
            self._xdotool("key", key)

    def type(self, window, text):
        self._xdotool("windowfocus", "--sync", window)
        self._xdotool("type", text)

    def click(self, window, x, y, button=1):
        self._xdotool("mousemove", "--window", window, str(x), str(y), "click", str(button))

    def until(self, is_done, what, timeout=30):
        deadline = time.monotonic() + timeout
        while not is_done():
            if time.monotonic() > deadline:
                raise AssertionError("%s within %s s; titles: %s; %s" % (what, timeout, self.titles(), self.errors()))
            time.sleep(0.1)

    def errors(self):
        with open(self.stderr_path, encoding="utf-8", errors="replace") as file:
            return file.read()[-2000:]

    def stop(self):
        self._process.stop()
        self._display.stop()
        shutil.rmtree(self._directory, ignore_errors=True)

    def _xdotool(self, *arguments):
        return subprocess.run(["xdotool", *arguments], env=self.environment, capture_output=True, text=True, timeout=30)
