"""Local storage packages of documents: their records through the script interface, and pages that open from their copy."""

import json
import os
import unittest

from e2e_case import BUILD, TEXT_DOCUMENT
from local_packages import installed_packages
from package_case import PackageCase

CALL = """
return await new Promise((resolve, reject) => {
  window.__answer__ = (text) => resolve(JSON.parse(text));
  helio.call('docs.storage.info.%s', {...%s, callback: '__answer__'}).catch(reject);
})"""


class StorageTest(PackageCase):
    def start(self):
        self.local_data = os.path.join(self.packages, "local")
        user = {"loggedIn": True, "userId": "u", "sessionKey": "k", "localDataDir": self.local_data}
        return self.start_with(installed_packages(BUILD), {"user": user})

    def info(self, shell, page, method, **arguments):
        return shell.evaluate(page, CALL % (method, json.dumps(arguments)))

    def test_records_are_made_read_changed_and_removed(self):
        shell = self.start()
        page = self.open_text(shell)
        made = self.info(shell, page, "create", fileId="100001")
        self.assertEqual(made["callstatus"], "ok", made)
        local_id = made["result"]["localId"]
        folder = os.path.join(self.local_data, "quillfile", local_id)
        self.assertTrue(os.path.isdir(folder))
        changed = self.info(shell, page, "update", localId=local_id, data={"title": "Küche \U0001f373"})
        self.assertEqual(changed["callstatus"], "ok", changed)
        read = self.info(shell, page, "select", localId="", fileId="100001")["result"]
        self.assertEqual((read["localId"], read["title"]), (local_id, "Küche \U0001f373"))
        self.assertEqual(self.info(shell, page, "remove", localId=local_id), {"callstatus": "ok", "result": True})
        self.assertFalse(os.path.exists(folder))
        gone = self.info(shell, page, "select", localId=local_id, fileId="100001")
        self.assertEqual((gone["callstatus"], gone["err"]), ("fail", "getDOPFileInfo error"))
        self.assertNotEqual(gone["ipcerrorcode"], 0)
        for method, arguments, error in (("create", {}, "fileId isEmpty"), ("remove", {}, "localId isEmpty"),
                                         ("update", {"localId": "x", "data": "text"}, "param isEmpty"),
                                         ("download", {"localId": "..", "serverAddress": "https://d.test/", "relativePos": "a"},
                                          "localPckRootPath isEmpty"),
                                         ("download", {"localId": "x", "serverAddress": "https://d.test/",
                                                       "relativePos": "../../y"}, "relativePos is invalid")):
            answer = shell.evaluate(page, "return await helio.call('docs.storage.info.%s', %s)" % (method, json.dumps(arguments)))
            self.assertEqual(answer, {"callstatus": "error", "err": error}, method)

    def test_a_page_opens_from_the_local_copy(self):
        shell = self.start()
        page = self.open_text(shell)
        record = self.info(shell, page, "create", fileId="100001")["result"]
        copy = shell.evaluate(page, """
            const reply = await fetch('/api/v3/office/file/100001/preopen/word', {method: 'POST', body: '{}'});
            const {content, 'window.__VLTENV__': {file_version}} = await reply.json();
            return {content, file_version};""")
        text = json.dumps(copy).replace("Welcome to Skyleaf", "From the local copy </script>")
        self.write(record, "pkgSyncPath", "content.word", text)
        self.write(record, "pkgCachePath", "csr.html", "<h1>Kept rendering</h1>")
        self.control("fault", {"/api/v3/office/file/100001/preopen": {"delayMs": 10000}})
        page = self.open_text(shell, TEXT_DOCUMENT + "&localId=" + record["localId"])
        self.assertEqual(shell.evaluate(page, "return window.__DOCS_STATE__.contentFrom"), "injected")
        self.assert_readable(shell, page, "From the local copy </script>")
        self.assertEqual(shell.evaluate(page, "return window.__INJECT__._LOCAL_INJECT_CACHE.csr"),
                         "<h1>Kept rendering<\\/h1>")

    def write(self, record, place, name, text):
        directory = os.path.join(self.local_data, "quillfile", record["localId"]) + record[place]
        with open(os.path.join(directory, name), "w", encoding="utf-8") as file:
            file.write(text)


if __name__ == "__main__":
    unittest.main()
