"""A cloud service process of its own, and calls to it over its local socket (framed Thrift, binary protocol)."""

import os
import signal
import socket
import struct
import subprocess
import time

VERSION_CALL = 0x80010001
STOP, I32, STRING, STRUCT, MAP = 0, 8, 11, 12, 13
PATIENCE = 600


def text(value):
    data = value.encode()
    return struct.pack(">I", len(data)) + data


def text_field(number, value):
    return struct.pack(">bh", STRING, number) + text(value)


def map_field(number, values):
    head = struct.pack(">bhbbI", MAP, number, STRING, STRING, len(values))
    return head + b"".join(text(key) + text(value) for key, value in values.items())


class Reader:
    """What `call` answers: a struct with a CallResult as field 0."""

    def __init__(self, data):
        self.data, self.position = data, 0

    def number(self, form):
        value, = struct.unpack_from(form, self.data, self.position)
        self.position += struct.calcsize(form)
        return value

    def text(self):
        size = self.number(">I")
        self.position += size
        return self.data[self.position - size:self.position].decode()

    def value(self, kind):
        if kind == I32:
            return self.number(">i")
        if kind == STRING:
            return self.text()
        if kind == MAP:
            kinds = self.number(">b"), self.number(">b")
            return {self.value(kinds[0]): self.value(kinds[1]) for _ in range(self.number(">I"))}
        if kind == STRUCT:
            fields = {}
            while (field := self.number(">b")) != STOP:
                number = self.number(">h")
                fields[number] = self.value(field)
            return fields
        raise ValueError("the service answered a type that was not expected: %d" % kind)


class CloudService:
    """Ends with the `with` block."""

    def __init__(self, program, data_dir, resolve, api_url="http://docs.test"):
        self.caller = (text_field(1, "bench") + text_field(2, data_dir) + text_field(3, api_url) +
                       map_field(4, resolve) + text_field(5, "vlt_sid=bench;") + b"\0")
        self.process = subprocess.Popen([program, "--data-dir", data_dir])
        self.socket = None
        path = os.path.join(data_dir, "vltcloudsvr.sock")
        for _ in range(500):
            try:
                self.socket = socket.socket(socket.AF_UNIX)
                self.socket.connect(path)
                self.socket.settimeout(PATIENCE)
                return
            except OSError:
                self.socket.close()
                time.sleep(0.01)
        self.process.kill()
        raise TimeoutError("the cloud service did not start")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.socket.close()
        self.process.send_signal(signal.SIGTERM)
        self.process.wait()

    def call(self, function, **values):
        """The values of the result. Arguments by position are given as a0, a1, …"""
        arguments = {key[1:] if key[1:].isdigit() else key: value for key, value in values.items()}
        message = (struct.pack(">I", VERSION_CALL) + text("call") + struct.pack(">I", 1) +
                   struct.pack(">bh", STRUCT, 1) + self.caller + text_field(2, function) +
                   map_field(3, arguments) + b"\0")
        self.socket.sendall(struct.pack(">I", len(message)) + message)
        size, = struct.unpack(">I", self.receive(4))
        reader = Reader(self.receive(size))
        reader.number(">I")
        reader.text()
        reader.number(">I")
        result = reader.value(STRUCT).get(0, {})
        if result.get(1, -1) != 0:
            raise RuntimeError("%s: %s" % (function, result))
        return result[2]

    def receive(self, size):
        data = bytearray(size)
        view = memoryview(data)
        while view:
            got = self.socket.recv_into(view)
            if got == 0:
                raise ConnectionError("the cloud service ended")
            view = view[got:]
        return bytes(data)

    def wait(self, direction):
        """Until nothing is under way; all have to be finished."""
        while True:
            values = self.call("listTransfers", direction=direction, offset="0", count="1")
            if values["active"] == "0":
                if values["failed"] != "0":
                    raise RuntimeError("transfers failed: %s" % values["rows"])
                return values
            time.sleep(0.01)

    def peak_mib(self):
        with open("/proc/%d/status" % self.process.pid, encoding="ascii") as status:
            for line in status:
                if line.startswith("VmHWM:"):
                    return int(line.split()[1]) / 1024
        raise RuntimeError("no peak of memory is known")
