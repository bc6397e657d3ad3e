"""The clipboard between the page, a second program (xclip) and Chromium itself."""

import base64
import json
import os
import struct
import subprocess
import unittest
import zlib

from e2e_case import EndToEndCase

CUSTOM = "Chromium Web Custom MIME Data Format"
BROWSER_CUSTOM = "chromium/x-web-custom-data"
MEBIBYTE = 1 << 20

WAIT_FOR = """
for (let value; ; await new Promise((resolve) => setTimeout(resolve, 20))) {
  value = %s;
  if (value) return value;
}"""


def png(width, height):
    """A black picture of one byte a pixel."""
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    header = struct.pack(">IIBBBBB", width, height, 8, 0, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(bytes(height * (width + 1)))) + chunk(b"IEND", b"")


def custom_format(**pairs):
    def text(value):
        data = value.encode("utf-16-le")
        return struct.pack("<I", len(data) // 2) + data + bytes(-len(data) % 4)
    payload = struct.pack("<I", len(pairs)) + b"".join(text(key.replace("_", "/")) + text(value) for key, value in pairs.items())
    return struct.pack("<I", len(payload)) + payload


class ClipboardTest(EndToEndCase):
    def setUp(self):
        self.display = self.start_display()
        self.shell = self.start_shell(environment={"DISPLAY": self.display.name})
        self.page = self.open(self.shell)

    def xclip(self, *arguments):
        return ["xclip", "-display", self.display.name, "-selection", "clipboard", *arguments]

    def place(self, target, data):
        """A program that owns the clipboard and offers one target, until it is replaced or ended."""
        owner = subprocess.Popen(self.xclip("-quiet", "-t", target, "-i"), stdin=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.addCleanup(owner.wait)
        self.addCleanup(owner.kill)
        owner.stdin.write(data)
        owner.stdin.close()
        self.until(lambda: target in self.targets(), "xclip offers " + target)
        return owner

    def user(self, *actions):
        """Chromium lets a page copy and paste for what a user does, not for a script."""
        environment = dict(os.environ, DISPLAY=self.display.name)
        window = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "."], env=environment, capture_output=True, text=True, check=True)
        subprocess.run(["xdotool", "windowfocus", "--sync", window.stdout.split()[0], *actions], env=environment, check=True, timeout=30)

    def targets(self):
        return self.placed("TARGETS").decode().split("\n")

    def placed(self, target):
        """What a program gets that asks for a target; empty when there is no such."""
        return subprocess.run(self.xclip("-t", target, "-o"), capture_output=True, timeout=30).stdout

    def call(self, method, arguments=None):
        return self.shell.evaluate(self.page, "return await helio.call(%s, %s)" % (json.dumps(method), json.dumps(arguments or {})))

    def got(self):
        """The reply of getClipboardData, decoded."""
        result = self.call("getClipboardData")["result"]
        return {key: [base64.b64decode(each) for each in value] if isinstance(value, list) else base64.b64decode(value)
                for key, value in result.items()}

    def test_other_programs_contents_reach_the_page(self):
        self.assertEqual(self.got(), {})
        html = "<b>Küche \U0001f373</b>"
        picture = png(3, 2)
        large = b"0123456789abcdef" * (MEBIBYTE // 16)
        for target, data, expected in (
            ("UTF8_STRING", "Küche \U0001f373".encode(), {"text/plain": "Küche \U0001f373".encode()}),
            ("UTF8_STRING", large, {"text/plain": large}),
            ("text/html", html.encode(), {"text/html": html.encode()}),
            ("text/html", b"\xff\xfe" + html.encode("utf-16-le"), {"text/html": html.encode()}),
            ("HTML Format", b"x", {}),
            ("text/uri-list", b"https://d.test/a\r\nfile:///tmp/b%20c\r\n", {"text/uri-list": [b"https://d.test/a", b"file:///tmp/b c"]}),
            (CUSTOM, custom_format(text_zqdocA="Ä", text_other="x"), {"text/zqdoca": "Ä".encode()}),
            (BROWSER_CUSTOM, custom_format(text_zqdoc="b"), {"text/zqdoc": b"b"}),
            (CUSTOM, custom_format(text_zqdoc="cut")[:-8], {}),
            ("image/png", picture, {"image/png": None}),
        ):
            self.place(target, data)
            got = self.got()
            if "image/png" in got:
                self.assertEqual(got["image/png"][16:24], picture[16:24])
                got["image/png"] = None
            self.assertEqual(got, expected, target)

    def test_the_pages_contents_reach_other_programs(self):
        arguments = {"text/html": "<b>ü</b>", "text/plain": "ü", "text/zqdoc": {"n": 1}, "image/base64": base64.b64encode(png(3, 2)).decode()}
        self.assertEqual(self.call("setClipboardData", arguments)["callstatus"], "ok")
        html = self.placed("text/html").decode()
        self.assertTrue(html.startswith("<meta ") and "<b>ü</b>" in html, html)
        wrapped = self.placed("HTML Format").decode()
        self.assertTrue(wrapped.startswith("Version:0.9\r\nStartHTML:0000000105\r\n") and "--><b>ü</b><!--" in wrapped, wrapped)
        self.assertEqual(self.got()["text/html"].decode(), wrapped)
        self.assertEqual(self.placed("UTF8_STRING").decode(), "ü")
        for name in (CUSTOM, BROWSER_CUSTOM):
            self.assertEqual(self.placed(name), custom_format(text_zqdoc='{"n":1}'))
        self.assertEqual(self.placed("image/png")[16:24], png(3, 2)[16:24])
        large = "ä" * MEBIBYTE
        self.assertEqual(self.call("writeClipboard", {"data": {"type": "text", "content": large}}), {"result": "ok"})
        self.assertEqual(self.placed("UTF8_STRING").decode(), large)

    def test_chromium_itself_copies_and_pastes(self):
        self.shell.evaluate(self.page, """
            document.addEventListener('copy', (event) => {
                event.clipboardData.setData('text/zqdoc', 'own');
                event.clipboardData.setData('text/html', '<b>ü</b>');
                event.clipboardData.setData('text/plain', 'ü');
                event.preventDefault();
                event.stopImmediatePropagation();
                window.__copied__ = true;
            }, true);
            document.addEventListener('paste', (event) => {
                window.__pasted__ = ['text/zqdoc', 'text/html', 'text/plain'].map((type) => event.clipboardData.getData(type));
                event.preventDefault();
                event.stopImmediatePropagation();
            }, true);""")
        self.user("mousemove", "500", "400", "click", "1")
        self.user("key", "ctrl+c")
        self.shell.evaluate(self.page, WAIT_FOR % "window.__copied__")
        got = self.got()
        self.assertEqual((got["text/zqdoc"], got["text/plain"]), (b"own", "ü".encode()))
        self.assertIn("<b>ü</b>", got["text/html"].decode())
        self.assertIn("<b>ü</b>", self.placed("text/html").decode())
        self.call("setClipboardData", {"text/zqdoc": "mine", "text/html": "<i>ä</i>", "text/plain": "ä"})
        self.user("key", "ctrl+v")
        own, html, plain = self.shell.evaluate(self.page, WAIT_FOR % "window.__pasted__")
        self.assertEqual((own, plain), ("mine", "ä"))
        self.assertIn("<i>ä</i>", html)
        self.assertNotIn("StartHTML", html)

    def test_an_owner_that_vanishes_leaves_nothing(self):
        owner = self.place("UTF8_STRING", b"text")
        owner.kill()
        owner.wait()
        self.until(lambda: "UTF8_STRING" not in self.targets(), "nobody offers the text any more")
        self.assertEqual(self.got(), {})
        self.assertEqual(self.call("readClipboard"), {"type": "binary"})


if __name__ == "__main__":
    unittest.main()
