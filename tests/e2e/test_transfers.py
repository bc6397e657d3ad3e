"""Files between this machine and the drive, chosen in the page, carried by the cloud service."""

import hashlib
import json
import os
import random
import signal
import unittest
import urllib.request

from e2e_case import BUILD
from local_packages import installed_packages
from package_case import PackageCase
from processes import service_process

INTERFACE_PAGE = "/interface.html"

# The reports that the page's function gets, kept for the test.
LISTEN = """
window.__reports__ = [];
window.onReport = (text) => window.__reports__.push(JSON.parse(text));
helio.call('%s', {callback: 'onReport'});
await helio.call('clouddocsApiVersion');"""


def digest(path):
    with open(path, "rb") as file:
        return hashlib.sha1(file.read()).hexdigest()


def tree(folder):
    """Relative path to SHA-1 of every file below a folder."""
    return {os.path.relpath(os.path.join(place, name), folder): digest(os.path.join(place, name))
            for place, _, names in os.walk(folder) for name in names}


class TransfersTest(PackageCase):
    def start(self):
        self.data_dir = os.path.join(self.packages, "shell")
        user = {"loggedIn": True, "userId": "u", "sessionKey": "k", "localDataDir": os.path.join(self.packages, "local")}
        shell = self.start_with(installed_packages(BUILD), {"user": user}, data_dir=self.data_dir)
        page, _ = self.begin(shell, self.server.url(INTERFACE_PAGE))
        self.until_page(shell, page, "Boolean(window.helioInterface)")
        return shell, page

    def drive(self, path):
        request = urllib.request.Request("http://127.0.0.1:%d/api/v1/drive/%s" % (self.server.http_port, path), headers={"Cookie": "vlt_sid=test"})
        with urllib.request.urlopen(request, timeout=20) as answer:
            return json.load(answer)

    def item(self, parent, name):
        items = {each["name"]: each for each in self.drive("groups/0/folders/%s" % parent)["items"]}
        return items.get(name)

    def make_folder(self, count):
        folder = os.path.join(self.packages, "folder")
        dice = random.Random(7)
        for number in range(count):
            place = os.path.join(folder, "part %d" % (number % 7), "ü" if number % 2 else ".hidden")
            os.makedirs(place, exist_ok=True)
            with open(os.path.join(place, "file-%d.bin" % number), "wb") as file:
                file.write(dice.randbytes(dice.choice((0, 1, 700, 5000))))
        with open(os.path.join(folder, "large.bin"), "wb") as file:
            file.write(dice.randbytes(6 << 20))
        return folder

    def call(self, shell, page, name, arguments):
        """Calls a method that answers nothing."""
        shell.evaluate(page, "helio.call('%s', %s); return true" % (name, json.dumps(arguments)))

    def kill_service(self):
        os.kill(self.until(lambda: service_process(self.data_dir), "the cloud service runs"), signal.SIGKILL)

    def count_below(self, folder):
        return sum(len(names) for _, _, names in os.walk(folder))

    def stored_files(self, parent):
        items = self.drive("groups/0/folders/%s" % parent)["items"]
        return sum(self.stored_files(each["id"]) if each["type"] == "folder" else 1 for each in items)

    def test_a_folder_goes_up_and_comes_down_although_the_service_is_killed(self):
        shell, page = self.start()
        count = 1000
        source = self.make_folder(count)
        shell.evaluate(page, LISTEN % "fileUploadListener")
        shell.call("dialog.answer", dialog="file", value=[source])
        self.call(shell, page, "callFileUploader", {"isDir": "1", "groupid": "0", "parentid": "0"})
        self.until(lambda: self.item("0", "folder") and self.stored_files(self.item("0", "folder")["id"]) > 100, "a part goes up")
        self.kill_service()
        folder = self.item("0", "folder")["id"]
        self.until(lambda: self.stored_files(folder) == count + 1, "all goes up")
        self.until(lambda: shell.evaluate(page, "return window.__reports__.some((each) => !each.queued)"), "a report says so")
        reported = shell.evaluate(page, "return window.__reports__.flatMap((each) => each.success.map(({src, sha1}) => [src, sha1]))")
        expected = {os.path.join(source, path): sha1 for path, sha1 in tree(source).items()}
        self.assertTrue(dict(reported) == expected, "the reports of success are not those of the files")
        self.assertEqual(len(reported), len(expected), "a file was reported twice")

        target = os.path.join(self.packages, "target")
        os.makedirs(target)
        shell.evaluate(page, LISTEN % "fileDownloadListener")
        shell.call("dialog.answer", dialog="file", value=[target])
        self.call(shell, page, "callFileDownload", {"fileids": [{"id": folder, "idDir": True}], "groupid": "0"})
        self.until(lambda: self.count_below(target) > 100, "a part comes down")
        self.kill_service()
        arrived = os.path.join(target, "folder")
        expected = tree(source)
        self.until(lambda: self.count_below(target) == len(expected) and tree(arrived) == expected, "all comes down")
        self.until(lambda: shell.evaluate(page, "return window.__reports__.length > 0"), "a report of the download")

    def test_a_new_version_keeps_the_file_and_another_suffix_is_refused(self):
        shell, page = self.start()
        first, second, other = (os.path.join(self.packages, name) for name in ("plan.txt", "plan.TXT", "plan.pdf"))
        for path, text in ((first, "one"), (second, "two"), (other, "three")):
            with open(path, "w", encoding="utf-8") as file:
                file.write(text)
        shell.evaluate(page, LISTEN % "fileUploadListener")
        self.call(shell, page, "uploadFileDrag", {"groupid": "0", "parentid": "0", "files": [first]})
        self.until(lambda: self.item("0", "plan.txt"), "it is uploaded")
        file_id = self.item("0", "plan.txt")["id"]
        version = {"isDir": "0", "groupid": "0", "parentid": "0", "fileid": file_id, "filename": "plan.txt"}
        shell.call("dialog.answer", dialog="file", value=[other])
        self.assertEqual(shell.evaluate(page, "return await helio.call('callFileUploader', %s)" % json.dumps(version)),
                         {"result": "FileSuffixConflict"})
        shell.call("dialog.answer", dialog="file", value=[second])
        self.call(shell, page, "callFileUploader", version)
        self.until(lambda: self.drive("items/" + file_id)["version"] == 2, "a new version")
        self.assertEqual(self.drive("items/" + file_id)["sha1"], hashlib.sha1(b"two").hexdigest())
        # The dialog is cancelled: nothing happens, and the page can go on.
        self.call(shell, page, "callFileUploader", {"isDir": "0"})
        self.assertEqual(shell.evaluate(page, "return (await helio.call('clouddocsApiVersion')).version"), "1.0.0")

    def test_a_full_drive_and_files_that_vanish_are_reported(self):
        shell, page = self.start()
        path = os.path.join(self.packages, "refused.txt")
        with open(path, "w", encoding="utf-8") as file:
            file.write("x")
        self.control("fault", {"/api/v1/drive/groups": {"status": 507}})
        shell.evaluate(page, LISTEN % "fileUploadListener")
        gone = os.path.join(self.packages, "gone.txt")
        self.call(shell, page, "uploadFileDrag", {"groupid": "0", "parentid": "0", "files": [path, gone]})
        failed = "return window.__reports__.flatMap((each) => each.failed.map(({src}) => src))"
        self.until(lambda: {path, gone} <= set(shell.evaluate(page, failed)), "the failures are reported")
        messages = shell.evaluate(page, "return window.__reports__.flatMap((each) => each.failed.map(({result, msg}) => [result, msg]))")
        self.assertTrue(all(result == "Failed" and message for result, message in messages), messages)


if __name__ == "__main__":
    unittest.main()
