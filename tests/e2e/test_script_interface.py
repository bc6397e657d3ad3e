"""Every script method of the bridge and its handlers, called from a page of the site."""

import json
import os
import unittest

from e2e_case import BUILD
from local_packages import installed_packages
from package_case import PackageCase

INTERFACE_PAGE = "/interface.html"


class ScriptInterfaceTest(PackageCase):
    def start(self):
        data = os.path.join(self.packages, "data")
        self.dropped = os.path.join(self.packages, "dropped.txt")
        with open(self.dropped, "w", encoding="utf-8") as file:
            file.write("dropped")
        members = {"user": {"loggedIn": True, "userId": "u", "sessionKey": "k", "localDataDir": data,
                            "cacheRoot": os.path.join(self.packages, "cache")},
                   "features": {"SupportSendFileWindow": True}}
        return self.start_with(installed_packages(BUILD), members)

    def open_interface(self, shell):
        page, since = self.begin(shell, self.server.url(INTERFACE_PAGE))
        shell.wait_for_page(page, "loadFinished", since=since)
        shell.evaluate(page, "window.helioInterface.env.droppedFile = %s" % json.dumps(self.dropped))
        return page

    def test_every_call_comes_back_as_the_table_says(self):
        shell = self.start()
        page = self.open_interface(shell)
        rows = shell.evaluate(page, "return await window.helioInterface.runAll()", timeout=120)
        wrong = ["%s %s: %s" % (row["name"], json.dumps(row["arguments"])[:100], row["problem"]) for row in rows if row["problem"]]
        self.assertGreater(len(rows), 70)
        self.assertEqual([], wrong, "\n".join(wrong))

    def test_calls_that_end_the_page_do_so(self):
        shell = self.start()

        def reported(what):
            return lambda page, since: shell.wait_for_page(page, what, since=since)

        def logged(text):
            return lambda page, since: shell.wait_for_log(text, since=since)

        def at(part):
            return lambda page, since: self.wait_for_url(shell, page, part)

        # A sign-in or sign-out loads every page again, this one included.
        effects = {"jsReload": reported("loadFinished"), "jsReloadCef": reported("loadFinished"), "closeDialog": reported("closed"),
                   "tavaLogin": reported("loadFinished"), "tavaLogout": reported("loadFinished"),
                   "showOfflinePage": at("error-page"), "gotoHomepage": at(self.server.url("/?v="))}
        for name in ("gotoH5Page", "shareFile", "showVipUpgradeDialog", "showUserSecureIdentityDialog"):
            effects[name] = logged('messageBox "": "%s"' % name)
        page = self.open_interface(shell)
        ending = {call["name"]: call["id"] for call in shell.evaluate(page, "return window.helioInterface.calls") if call["ends"]}
        self.assertEqual(set(ending), set(effects))
        shell.call("page.close", page=page)
        for name, wait_for_effect in effects.items():
            with self.subTest(name):
                page = self.open_interface(shell)
                since = shell.mark()
                # Not waited for: the page may end before it answers.
                shell.start_call("page.evaluate", page=page, code="window.helioInterface.run(%d)" % ending[name], timeoutMs=30000)
                wait_for_effect(page, since)
                if name != "closeDialog":
                    shell.call("page.close", page=page)

    def test_wrong_arguments_harm_nothing(self):
        shell = self.start()
        page = self.open_interface(shell)
        names = sorted({call["name"] for call in shell.evaluate(page, "return window.helioInterface.calls") if not call["ends"]})
        shell.evaluate(page, """
            const huge = 'x'.repeat(1 << 20);
            const values = [undefined, -1e308, [[]], {a: {b: 1}}, '..\\u0000/'];
            const members = ['callback', 'data', 'dataCallbackName', 'fileAbsolutePath', 'fileId', 'fileid', 'fileids', 'fileName', 'filename',
              'files', 'filter', 'groupid', 'key', 'localId', 'parentid', 'relativePos', 'distRelativePos', 'serverAddress', 'packageInfo',
              'source', 'text/html', 'text/plain', 'image/base64', 'text/uri-list', 'timeout', 'type', 'url', 'x/zqdoc'];
            let answered = 0;
            const call = (name, args) => helio.call(name, args).then(() => answered++, () => answered++);
            for (const name of %s) {
              for (const value of values) call(name, Object.fromEntries(members.map((member) => [member, value])));
              if (!name.startsWith('open')) call(name, {data: huge, fileName: huge, relativePos: huge, localId: 'x', 'text/html': huge});
            }
            while (answered <= %d) await new Promise((done) => setTimeout(done, 20));""" % (json.dumps(names), len(names)), timeout=120)
        self.assertFalse(os.path.exists(os.path.join(self.packages, "outside.txt")))
        # Another page still opens and answers.
        other = self.open_interface(shell)
        self.assertEqual(shell.evaluate(other, "return (await helio.call('clouddocsApiVersion')).version"), "1.0.0")

    def test_a_page_may_close_while_calls_are_out(self):
        shell = self.start()
        for _ in range(5):
            page = self.open_interface(shell)
            local_id = shell.evaluate(page, """
                return await new Promise((resolve) => {
                  window.__made__ = (text) => resolve(JSON.parse(text).result.localId);
                  helio.call('docs.storage.info.create', {fileId: 'closing', callback: '__made__'});
                })""")
            shell.evaluate(page, """
                window.__none__ = () => {};
                const file = {localId: %s, relativePos: 'large', callback: '__none__', dataCallbackName: '__none__', data: 'QUJD'.repeat(1 << 20)};
                helio.call('docs.storage.file.update', file);
                helio.call('docs.storage.file.read', file);
                helio.call('getRoamingMode');
                helio.call('checkNetwork', {callback: '__none__'});
                helio.call('webview.preload.prefetch', {key: 'x', dataCallbackName: '__none__', timeout: 50});
                helio.call('callFileUploader', {});
                return true""" % json.dumps(local_id))
            shell.call("page.close", page=page)
        page = self.open_interface(shell)
        self.assertEqual(shell.evaluate(page, "return (await helio.call('clouddocsApiVersion')).version"), "1.0.0")


if __name__ == "__main__":
    unittest.main()
