"""Wrong files, wrong lines, wrong texts, and a server that is down or talks nonsense: a clear error, and on it goes."""

import json
import os
import socket
import subprocess
import tempfile
import threading
import unittest

from e2e_case import PROGRAMS, EndToEndCase, own_display
from helio_shell import RpcError


def run_shell(*arguments):
    environment = dict(os.environ, QT_QPA_PLATFORM="xcb", DISPLAY=own_display().name)
    return subprocess.run([os.path.join(PROGRAMS, "skyleaf-shell"), *arguments], capture_output=True, text=True,
                          timeout=120, env=environment, check=False)


class StartTest(unittest.TestCase):
    def test_wrong_start_is_refused_with_a_reason(self):
        with tempfile.TemporaryDirectory() as directory:
            def host(number, text):
                path = os.path.join(directory, "host%d.json" % number)
                with open(path, "w", encoding="utf-8") as file:
                    file.write(text)
                return path
            cases = [
                (["--nonsense"], "nonsense"),
                (["--host", os.path.join(directory, "missing.json")], "missing.json"),
                (["first", "second"], "second"),
            ]
            for text, named in (("{", "host file"), ('{"domain": {}}', "domain"),
                                ('{"capabilities": "many"}', "capabilities"), ("[]", "object")):
                cases.append((["--host", host(len(cases), text)], named))
            for arguments, named in cases:
                result = run_shell(*arguments)
                self.assertEqual(result.returncode, 2, arguments)
                self.assertIn(named, result.stderr)
        self.assertEqual(run_shell("--help").returncode, 0)
        self.assertIn("1.0", run_shell("--version").stdout)


class ControlTest(EndToEndCase):
    def test_wrong_lines_change_nothing(self):
        shell = self.start_shell()
        for line, code in (("no json", -32700), ("[]", -32600), ('{"jsonrpc":"2.0","id":1}', -32600)):
            since = shell.mark()
            shell.send_line(line)
            answer = shell.wait_for(lambda n: n.method == "response", since=since)
            self.assertEqual(answer.params["error"]["code"], code, line)
        for method, params in (("page.fly", {}), ("page.create", {"type": "x"}), ("page.create", {"type": 7}),
                               ("page.notify", {"page": 99, "text": ""}), ("page.notify", {"page": 1, "txt": ""})):
            with self.assertRaises(RpcError):
                shell.call(method, **params)
        self.assertEqual(shell.call("shell.state")["windows"][0]["pages"], [])

    def test_wrong_calls_and_texts(self):
        shell = self.start_shell()
        page = self.open(shell)
        errors = shell.evaluate(page, """
            const texts = [];
            for (const [name, args] of [['noSuchMethod', {}], ['docs.nothing.at', {}], ['docs.print.none', {}],
                                        ['', {}], ['deleteLater', {}], ['docs.print.deleteLater', {}]])
                await helio.call(name, args).then(() => texts.push('resolved ' + name), e => texts.push(String(e)));
            return texts""")
        self.assertEqual(len(errors), 6)
        for text in errors:
            self.assertRegex(text, "unknown|malformed")
        for code, limit, message in (("throw new Error('boom')", 30000, "boom"), ("syntax error here", 30000, "does not compile"),
                                     ("return await new Promise(() => {})", 500, "time")):
            with self.assertRaisesRegex(RpcError, message):
                shell.call("page.evaluate", page=page, code=code, timeoutMs=limit)
        for text in ("x" * 10_000_000, "a\0b", '{"action":"preInit"', "http://:bad:"):
            shell.call("page.notify", page=page, text=text)
        shell.call("shell.state")

    def test_configuration_changes_reach_the_shell(self):
        shell = self.start_shell()
        shell.call("config.set", group=60, item=64146, value={"enabled": False})
        self.begin(shell, "")
        shell.wait_for_log("supported protocols disabled")


class NonsenseServer:
    """Accepts connections and answers with what it is given."""

    def __init__(self, answer):
        self._socket = socket.create_server(("127.0.0.1", 0))
        self.port = self._socket.getsockname()[1]
        self._answer = answer
        threading.Thread(target=self._serve, daemon=True).start()

    def _serve(self):
        while True:
            try:
                connection, _ = self._socket.accept()
            except OSError:
                return
            with connection:
                if self._answer:
                    connection.recv(65536)
                    connection.sendall(self._answer)

    def close(self):
        self._socket.close()


class ServerFaultTest(EndToEndCase):
    def test_faults_are_reported_and_other_documents_open(self):
        for name, answer in (("resets", b""), ("garbage", b"\x00\xff nonsense\r\n\r\n"),
                             ("cut", b"HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nshort")):
            with self.subTest(name):
                wrong = NonsenseServer(answer)
                self.addCleanup(wrong.close)
                shell = self.start_shell(
                    host={"resolve": {"wrong.skyleaf.test:80": "127.0.0.1:%d" % wrong.port}})
                page, since = self.begin(shell, "http://wrong.skyleaf.test/p/1")
                if name == "cut":  # an answer that began is shown as far as it came
                    shell.wait_for_page(page, "loadFinished", since=since)
                else:
                    shell.wait_for(lambda n: n.method == "event" and n.params["fields"].get("step") == "load_error",
                                   since=since, what="event of a load error")
                self.until_text(shell, self.open(shell), "Welcome")

    def test_server_that_is_down(self):
        shell = self.start_shell(host={"resolve": {"down.skyleaf.test:80": "127.0.0.1:9"}})
        self.begin(shell, "http://down.skyleaf.test/p/1")
        shell.wait_for(lambda n: n.method == "event" and n.params["fields"].get("step") == "load_error",
                       what="event of a load error")
        self.open(shell)


if __name__ == "__main__":
    unittest.main()
