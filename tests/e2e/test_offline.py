"""Editing while the documents server is away: what was typed outlives the shell, and reaches the server later."""

import glob
import json
import os
import unittest

from e2e_case import BUILD, TABLE_DOCUMENT, UNTIL_SAVED
from local_packages import installed_packages
from package_case import PackageCase

OFFLINE_EDITING = {"60708": {"DOPOfflineEditMasterSwitch": True, "wordDOPSwitch": True, "vsDOPSwitch": True}}
SEEDS = ("100001.json", "100002.json")
OFFLINE = "Offline: changes are kept on this computer"
CHANGE_CELL = """
const cell = document.querySelector('.tabulator-row .tabulator-cell[tabulator-field]');
cell.dispatchEvent(new MouseEvent('dblclick', {bubbles: true}));
const input = cell.querySelector('input');
input.value = 'Offline cell';
input.dispatchEvent(new Event('change'));
"""
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
        if not self.server.is_running:
            self.server.start()

    def start(self):
        user = {"loggedIn": True, "userId": "u", "sessionKey": "k", "localDataDir": self.local_data}
        host = {"configCentre": {"60": OFFLINE_EDITING}, "user": user}
        return self.start_with(installed_packages(BUILD), host, data_dir=os.path.join(self.packages, "data"))

    def package_files(self, name):
        return glob.glob(os.path.join(self.local_data, "quillfile", "*", "sync", name))

    def type_offline(self, shell, page, text):
        self.type_text(shell, page, text)
        self.until(lambda: any(text in read(path) for path in self.package_files("unsent.*")), "kept: " + text)
        shell.evaluate(page, SAVE_STATE % json.dumps(OFFLINE))

    def stored(self):
        return read(os.path.join(self.documents, "100001.json"))

    def edit_and_lose_everything(self):
        """Typed with the server, without it, and in a shell that ends at once. Returns a shell that follows, without server."""
        shell = self.start()
        page = self.open_text(shell)
        self.type_text(shell, page, " First.", UNTIL_SAVED)
        self.until(lambda: self.package_files("content.word"), "a copy is on the disk")
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
        shell.evaluate(page, UNTIL_SAVED)
        self.assertIn(" First. Second. Third. Fourth.", self.stored())
        self.until(lambda: not self.package_files("unsent.*"), "the journal goes")
        self.until(lambda: " Fourth." in read(self.package_files("content.word")[0]), "the copy is that of the last word")

    def test_a_cell_changed_without_the_server_is_sent_later(self):
        shell = self.start()
        page = self.open(shell, TABLE_DOCUMENT)
        self.until(lambda: self.package_files("content.vs"), "a copy is on the disk")
        self.stop_server()
        shell.evaluate(page, CHANGE_CELL)
        self.until(lambda: any("Offline cell" in read(path) for path in self.package_files("unsent.*")), "the cell is kept")
        shell.kill()
        shell = self.start()
        page = self.open(shell, TABLE_DOCUMENT)
        self.assert_readable(shell, page, "Offline cell")
        self.start_server()
        shell.evaluate(page, UNTIL_SAVED)
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
        self.until(lambda: not self.package_files("unsent.*"), "the journal goes")


if __name__ == "__main__":
    unittest.main()
