"""Several starts on one data directory."""

import os
import signal
import subprocess
import time
import unittest

from e2e_case import PROGRAMS, TEXT_DOCUMENT, EndToEndCase

SHELL = os.path.join(PROGRAMS, "skyleaf-shell")


class OneInstanceTest(EndToEndCase):
    def run_shell(self, data_dir, *arguments):
        # Without a display: a start that hands its text over needs none.
        environment = {name: value for name, value in os.environ.items() if name not in ("DISPLAY", "QT_QPA_PLATFORM")}
        return subprocess.run([SHELL, "--data-dir", data_dir, *arguments], env=environment, timeout=60,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True)

    def assert_taken(self, shell, data_dir):
        since = shell.mark()
        second = self.run_shell(data_dir, "--", self.server.url(TEXT_DOCUMENT))
        self.assertEqual((second.returncode, second.stderr), (0, ""))
        return shell.wait_for(lambda each: each.method == "page" and each.params["what"] == "webFileReady",
                              since=since, timeout=60).params["page"]

    def test_later_starts_hand_over_what_they_were_to_show(self):
        # Longer than the address of a socket may be.
        for name in ("short", os.path.join("long" * 20, "er" * 30)):
            data_dir = os.path.join(self.directory, name)
            shell = self.start_shell(data_dir=data_dir)
            shell.call("shell.state")
            page = self.assert_taken(shell, data_dir)
            self.assertTrue(self.state(shell, page)["current"])
            self.assertEqual(self.run_shell(data_dir).returncode, 0, "only to the front")
            self.assertEqual(shell.call("shell.state")["windows"][0]["pages"], [page])

            refused = self.run_shell(data_dir, "--control", "--headless")
            self.assertEqual(refused.returncode, 2)
            self.assertIn("is in use by another shell (process %d)" % shell.pid, refused.stderr)
            shell.kill()

            shell = self.start_shell(data_dir=data_dir)  # the lock of the killed one is free
            shell.call("shell.state")
            self.assert_taken(shell, data_dir)
            self.assertEqual(shell.quit(), 0)

    def test_a_shell_that_hangs_is_named(self):
        data_dir = os.path.join(self.directory, "hangs")
        shell = self.start_shell(data_dir=data_dir)
        shell.call("shell.state")
        os.kill(shell.pid, signal.SIGSTOP)
        try:
            begin = time.monotonic()
            second = self.run_shell(data_dir, "--", "x")
            self.assertLess(time.monotonic() - begin, 20)
            self.assertEqual(second.returncode, 1)
            self.assertIn("(process %d), which does not answer" % shell.pid, second.stderr)
        finally:
            os.kill(shell.pid, signal.SIGCONT)
        self.assertEqual(shell.quit(), 0)


if __name__ == "__main__":
    unittest.main()
