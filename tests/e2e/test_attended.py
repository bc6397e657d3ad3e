"""What somebody sees who closes a document with unsaved words: real windows, keys and the pointer."""

import os
import signal
import subprocess
import time
import unittest

from attended import AttendedShell
from e2e_case import BUILD, PROGRAMS, TEXT_DOCUMENT
from helio_shell import merged
from local_packages import installed_packages, plugin_members, switches
from package_case import PackageCase

DOCUMENT = "Welcome"
QUESTION = "^Close"


class AttendedTest(PackageCase):
    def setUp(self):
        super().setUp()
        self.addCleanup(self.start_server)  # for the next test
        packages = plugin_members(installed_packages(BUILD), **switches(offline_editing=False))
        members = merged(self.server.host_members(), packages)
        self.shell = AttendedShell(PROGRAMS, members, os.path.join(self.packages, "data"), self.server.url(TEXT_DOCUMENT))
        self.addCleanup(self.shell.stop)
        self.window = self.shell.wait_for_window(DOCUMENT)
        self.type_until_saved("Begun")

    def start_server(self):
        """The server again, at its old address and with its documents, when it is away."""
        if not self.server.is_running:
            self.server.start()

    def stored(self):
        with open(os.path.join(self.documents, "100001.json"), encoding="utf-8") as file:
            return file.read()

    def type(self, text):
        self.shell.click(self.window, 600, 400)
        self.shell.type(self.window, text)

    def type_until_saved(self, text):
        """Words in the open document. The editor may not be there yet for the first ones."""
        def is_saved():
            self.type(text)
            deadline = time.monotonic() + 4
            while text not in self.stored() and time.monotonic() < deadline:
                time.sleep(0.1)
            return text in self.stored()
        self.shell.until(is_saved, "never saved: " + text, timeout=60)

    def close_tab(self):
        self.shell.keys(self.window, "ctrl+w")
        return self.shell.wait_for_window(QUESTION)

    def test_a_tab_with_unsaved_words_asks_before_it_closes(self):
        self.server.kill()
        self.type("Omega")
        question = self.close_tab()
        self.shell.keys(question, "Escape")
        self.shell.wait_until_gone(QUESTION)
        self.assertTrue(self.shell.windows(DOCUMENT), "the tab is gone")
        self.start_server()
        self.shell.until(lambda: "Omega" in self.stored(), "the words that stayed were not saved", timeout=60)

        self.server.kill()
        self.type("Forgotten")
        question = self.close_tab()
        self.shell.keys(question, "Tab", "space")
        self.shell.wait_until_gone(DOCUMENT)
        self.assertNotIn("Forgotten", self.stored())
        self.shell.process.send_signal(signal.SIGTERM)
        self.assertEqual(self.shell.process.wait(20), 0)

    def test_a_signal_asks_and_a_second_one_ends(self):
        self.server.kill()
        self.type("Omega")
        self.shell.process.send_signal(signal.SIGTERM)
        question = self.shell.wait_for_window(QUESTION)
        self.shell.keys(question, "Escape")
        self.shell.wait_until_gone(QUESTION)
        self.assertIsNone(self.shell.process.poll())
        self.shell.process.send_signal(signal.SIGTERM)
        self.shell.wait_for_window(QUESTION)
        self.shell.process.send_signal(signal.SIGTERM)
        self.assertEqual(self.shell.process.wait(20), 0)

    def test_a_second_start_hands_its_text_over(self):
        before = self.shell.titles()
        second = subprocess.run(self.shell.command(self.server.url("/p/100002?officeType=s")), env=self.shell.environment,
                                timeout=60, capture_output=True, text=True)
        self.assertEqual((second.returncode, second.stdout, second.stderr), (0, "", ""))
        self.shell.wait_until_gone(DOCUMENT)
        self.assertEqual(len(self.shell.titles()), len(before), "it opened a window of its own")


if __name__ == "__main__":
    unittest.main()
