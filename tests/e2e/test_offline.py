"""Editing while the documents server is away: what was typed outlives the shell, and reaches the server later."""

import glob
import json
import os
import time
import unittest

from e2e_case import BUILD, PROGRAMS, SITE, TABLE_DOCUMENT
from helio_shell import DocumentsServer
from local_packages import installed_packages
from package_case import PackageCase

OFFLINE_EDITING = {"60708": {"DOPOfflineEditMasterSwitch": True, "wordDOPSwitch": True, "vsDOPSwitch": True}}
SEEDS = ("100001.json", "100002.json")
OFFLINE = "Offline: changes are kept on this computer"
TYPE = """
const editor = document.querySelector('.ProseMirror');
editor.focus();
document.getSelection().selectAllChildren(editor.querySelector('p'));
document.getSelection().collapseToEnd();
document.execCommand('insertText', false, %s);
"""
CHANGE_CELL = """
const cell = document.querySelector('.tabulator-row .tabulator-cell[tabulator-field]');
cell.dispatchEvent(new MouseEvent('dblclick', {bubbles: true}));
const input = cell.querySelector('input');
input.value = 'Offline cell';
input.dispatchEvent(new Event('change'));
"""
SAVED = "while (!window.__DOCS_STATE__.saved) await new Promise(r => setTimeout(r, 50));"
SAVE_STATE = "while (document.getElementById('save-state').textContent !== %s) await new Promise(r => setTimeout(r, 50));"


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


class OfflineTest(PackageCase):
    def setUp(self):
        super().setUp()
        self.addCleanup(self.start_server)  # for the next test
        self.local_data = os.path.join(self.packages, "local")
        self.addCleanup(self.replace_document, self.stored())

    def replace_document(self, text):
        with open(os.path.join(self.documents, "100001.json"), "w", encoding="utf-8") as file:
            file.write(text)

    def stop_server(self):
        self.server.kill()

    def start_server(self):
        """The server again, at its old address and with its documents, when it is away."""
        if self.server.is_running:
            return
        ports = ["--http-port", str(self.server.http_port), "--https-port", str(self.server.https_port)]
        type(self).server = DocumentsServer(PROGRAMS, self.documents, SITE, ports)
        self.addClassCleanup(self.server.stop)

    def start(self):
        user = {"loggedIn": True, "userId": "u", "sessionKey": "k", "localDataDir": self.local_data}
        host = {"configCentre": {"60": OFFLINE_EDITING}, "user": user}
        return self.start_with(installed_packages(BUILD), host, data_dir=os.path.join(self.packages, "data"))

    def type(self, shell, page, text, then=""):
        shell.evaluate(page, TYPE % json.dumps(text) + then)

    def package_files(self, name):
        return glob.glob(os.path.join(self.local_data, "quillfile", "*", "sync", name))

    def wait_until(self, condition, what):
        deadline = time.monotonic() + 30
        while not condition():
            self.assertLess(time.monotonic(), deadline, what)
            time.sleep(0.05)

    def type_offline(self, shell, page, text):
        self.type(shell, page, text)
        self.wait_until(lambda: any(text in read(path) for path in self.package_files("unsent.*")), "not kept: " + text)
        shell.evaluate(page, SAVE_STATE % json.dumps(OFFLINE))

    def stored(self):
        return read(os.path.join(self.documents, "100001.json"))

    def edit_and_lose_everything(self):
        """Typed with the server, without it, and in a shell that ends at once. Returns a shell that follows, without server."""
        shell = self.start()
        page = self.open_text(shell)
        self.type(shell, page, " First.", SAVED)
        self.wait_until(lambda: self.package_files("content.word"), "no copy on the disk")
        self.stop_server()
        self.type_offline(shell, page, " Second.")
        self.type_offline(shell, page, " Third.")
        shell.kill()
        shell = self.start()
        page = self.open_text(shell)
        shell.evaluate(page, SAVE_STATE % json.dumps(OFFLINE))
        self.assert_readable(shell, page, " First. Second. Third.")
        self.assertNotIn("Second", self.stored())
        return shell, page

    def test_changes_made_without_the_server_outlive_the_shell_and_are_sent_later(self):
        shell, page = self.edit_and_lose_everything()
        self.type_offline(shell, page, " Fourth.")
        self.start_server()
        shell.evaluate(page, SAVED, timeout=60)
        self.assertIn(" First. Second. Third. Fourth.", self.stored())
        self.wait_until(lambda: not self.package_files("unsent.*"), "the journal stayed")
        self.assertIn(" Fourth.", read(self.package_files("content.word")[0]))

    def test_a_cell_changed_without_the_server_is_sent_later(self):
        shell = self.start()
        page = self.open(shell, TABLE_DOCUMENT)
        self.wait_until(lambda: self.package_files("content.vs"), "no copy on the disk")
        self.stop_server()
        shell.evaluate(page, CHANGE_CELL)
        self.wait_until(lambda: any("Offline cell" in read(path) for path in self.package_files("unsent.*")), "not kept")
        shell.kill()
        shell = self.start()
        page = self.open(shell, TABLE_DOCUMENT)
        self.assert_readable(shell, page, "Offline cell")
        self.start_server()
        shell.evaluate(page, SAVED, timeout=60)
        self.assertIn("Offline cell", read(os.path.join(self.documents, "100002.json")))

    def test_a_document_that_moved_on_is_shown_and_the_offline_version_kept_beside_it(self):
        shell, page = self.edit_and_lose_everything()
        self.replace_document(self.stored().replace(" First.", " Of somebody else.").replace('"version":2', '"version":3'))
        self.assertIn('"version":3', self.stored())
        self.start_server()
        self.assert_readable(shell, page, "Your offline version was kept as")
        self.assert_readable(shell, page, " Of somebody else.")
        self.assertNotIn("Second", self.stored())
        copies = [path for path in glob.glob(os.path.join(self.documents, "*.json")) if os.path.basename(path) not in SEEDS]
        self.assertEqual(len(copies), 1, copies)
        copy = read(copies[0])
        self.assertIn(" First. Second. Third.", copy)
        self.assertIn("(offline version)", copy)
        self.wait_until(lambda: not self.package_files("unsent.*"), "the journal stayed")


if __name__ == "__main__":
    unittest.main()
