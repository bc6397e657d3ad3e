"""Child processes and displays of the tests, and what /proc says of processes. Standard library only."""

import glob
import os
import shutil
import signal
import struct
import subprocess
import tempfile
import zlib


class ManagedProcess:
    """A child process in a process group of its own, so that what it started ends with it."""

    def __init__(self, command, **options):
        self.process = subprocess.Popen(command, start_new_session=True, **options)

    @property
    def pid(self):
        return self.process.pid

    @property
    def is_running(self):
        return self.process.poll() is None

    def stop(self, timeout=10.0):
        """Asks it to end, insists after a while. Returns the exit status."""
        if self.is_running:
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
    """An X server without a screen, for machines without one, and for tests that share nothing."""

    def __init__(self, size="1400x900x24"):
        self._directory = tempfile.mkdtemp(prefix="skyleaf-display-")
        read_end, write_end = os.pipe()
        command = ["Xvfb", "-displayfd", str(write_end), "-screen", "0", size, "-nolisten", "tcp",
                   "-fbdir", self._directory]  # fmt: skip
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

    def save_picture(self, path):
        """Writes what the display shows as a PNG file; works also when nothing on it answers."""
        with open(os.path.join(self._directory, "Xvfb_screen0"), "rb") as file:
            picture = png_of_window_dump(file.read())
        with open(path, "wb") as file:
            file.write(picture)

    def stop(self):
        self._server.stop()
        shutil.rmtree(self._directory, ignore_errors=True)


def png_of_window_dump(dump):
    """The PNG form of an X window dump with 32 bits a pixel, blue first."""
    header_size, width, height = (struct.unpack_from(">I", dump, place)[0] for place in (0, 16, 20))
    bytes_a_line, colours = (struct.unpack_from(">I", dump, place)[0] for place in (48, 76))
    start = header_size + colours * 12
    rows = bytearray()
    for number in range(height):
        line = dump[start + number * bytes_a_line:][:width * 4]
        row = bytearray(width * 3)
        row[0::3], row[1::3], row[2::3] = line[2::4], line[1::4], line[0::4]
        rows += b"\0" + row

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    head = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + chunk(b"IDAT", zlib.compress(bytes(rows))) + chunk(b"IEND", b"")


def children():
    """The processes of this machine, by their parents."""
    found = {}
    for path in glob.glob("/proc/[0-9]*/stat"):
        try:
            with open(path, encoding="utf-8", errors="replace") as file:
                parent = int(file.read().rpartition(")")[2].split()[1])
        except OSError:
            continue  # it ended meanwhile
        found.setdefault(parent, set()).add(int(path.split("/")[2]))
    return found


def command_line(pid):
    """The arguments of a process, its program first; empty when it is gone."""
    try:
        with open("/proc/%d/cmdline" % pid, "rb") as file:
            return file.read().decode(errors="replace").rstrip("\0").split("\0")
    except OSError:
        return []


def start_time(pid):
    """When a process began, in clock ticks since the machine started."""
    with open("/proc/%d/stat" % pid, encoding="utf-8", errors="replace") as file:
        return int(file.read().rpartition(")")[2].split()[19])


def all_pids():
    return [int(path.split("/")[2]) for path in glob.glob("/proc/[0-9]*")]


def service_process(data_dir):
    """The cloud service process of a data directory; None when there is none."""
    for pid in all_pids():
        arguments = command_line(pid)
        if arguments and os.path.basename(arguments[0]) == "vltcloudsvr" and data_dir in arguments:
            return pid
    return None
