"""What a page can be told: commands, open parameters, tool bar, pages made in advance."""

import json
import unittest
from urllib.parse import urlsplit

from e2e_case import EndToEndCase, query


class NotifyTest(EndToEndCase):
    def setUp(self):
        self.shell = self.start_shell()

    def notify_and_load(self, page, text):
        since = self.shell.mark()
        self.shell.call("page.notify", page=page, text=text)
        self.shell.call("page.load", page=page)
        self.shell.wait_for_page(page, "loadFinished", since=since)
        return self.state(self.shell, page)

    def test_commands_are_paths_of_the_service(self):
        page = self.create(self.shell)
        url = self.notify_and_load(page, "")["url"]
        self.assertEqual(urlsplit(url).path, "/")
        for name in ("v", "type", "channel", "t"):
            self.assertTrue(query(url, name), name)

        since = self.shell.mark()
        self.shell.call("page.notify", page=page, text="/secret?x=1")
        self.shell.wait_for_page(page, "loadFinished", since=since)
        url = self.state(self.shell, page)["url"]
        self.assertTrue(url.startswith(self.server.url("/secret?x=1&v=")), url)

        # On a locked page the command "lock" shows nothing else.
        count = len(self.server.requests())
        self.shell.call("page.notify", page=page, text="lock")
        self.shell.evaluate(page, "await fetch('/robots.txt?after-lock')")
        self.until_request(lambda each: "after-lock" in each["target"], "what the page asks afterwards", count)
        self.assertEqual(self.state(self.shell, page)["url"], url)
        self.assertFalse([each for each in self.server.requests()[count:] if "lock" in each["target"].split("?")[0]])

    def test_tool_bar(self):
        page = self.create(self.shell)
        self.notify_and_load(page, "")
        height = self.shell.evaluate(page, "return window.innerHeight")
        for text, expected in (("setToolBar=1", "< %d"), ("SETTOOLBAR=0", "=== %d"), ("setToolBar=2", "< %d")):
            self.shell.call("page.notify", page=page, text=text)
            self.until_page(self.shell, page, "window.innerHeight " + expected % height)

    def test_invoke_by_name(self):
        page = self.open(self.shell)
        self.assertEqual(self.shell.call("page.invoke", page=page, method="getPageProperty", args=["fileType"]), "w")
        self.assertIn("/p/100001", self.shell.call("page.invoke", page=page, method="getCurrentUrl", args=[]))
        for wrong in ("NotifyUrl", "notifyUrl()", ""):
            with self.assertRaises(Exception):
                self.shell.call("page.invoke", page=page, method=wrong, args=[])

    def test_open_files(self):
        page = self.open(self.shell)
        base = "url=" + self.server.url("/p/100002?officeType=s")
        # A document with an id opens in a preview page and is found again.
        since = self.shell.mark()
        self.assertTrue(self.shell.call("page.openFiles", page=page, args=[base + "&fileid=100002&filename=Budget.xlsx"]))
        created = self.shell.wait_for(lambda n: n.method == "page" and n.params["what"] == "created", since=since)
        preview = created.params["page"]
        self.shell.wait_for_page(preview, "webFileReady", since=since)
        state = self.state(self.shell, preview)
        self.assertEqual(state["type"], 48)
        self.assertEqual(state["properties"]["File_ID"], "100002")
        self.assertTrue(state["current"])

        since = self.shell.mark()
        self.assertTrue(self.shell.call("page.openFiles", page=page, args=[base + "&fileid=100002"]))
        self.shell.wait_for_page(preview, "webFileReady", since=since)  # refreshed, not opened twice
        created = [n for n in self.shell.notifications("page")[0:] if n.params["what"] == "created"]
        self.assertEqual(len(created), 2)

        # Without an id it is a plain browser page; without a URL nothing happens.
        self.assertTrue(self.shell.call("page.openFiles", page=page, args=["url=" + self.server.url("/home")]))
        windows = self.shell.call("shell.state")["windows"]
        self.assertEqual(len(windows[0]["pages"]), 3)
        self.assertFalse(self.shell.call("page.openFiles", page=self.create(self.shell), args=["nothing"]))

    def test_page_made_in_advance_is_used(self):
        page = self.create(self.shell)
        self.shell.wait_for_page(page, "created")
        command = {"action": "preInit", "params": {"entry": "list", "fileId": "100001", "fileName": "Welcome.docx"}}
        self.shell.call("page.notify", page=page, text=json.dumps(command))
        self.shell.wait_for_log("init browser")
        state = self.state(self.shell, page)
        self.assertEqual(state["properties"]["precreated_page_id"], "100001")
        self.assertEqual(query(state["notifyUrl"], "pcEnter"), "joinonline")
        since = self.shell.mark()
        self.shell.call("page.load", page=page)
        self.shell.wait_for_page(page, "webFileReady", since=since)
        self.assertFalse(self.state(self.shell, page)["properties"]["is_unuse_precreated"])
        inits = [n.params["fields"]["init"] for n in self.shell.notifications("event")
                 if n.params["name"] == "docs_cloud_precreate"]
        self.assertEqual(inits, ["true", "false"])


class UnusedPageTest(EndToEndCase):
    def test_page_made_in_advance_and_never_used_goes(self):
        shell = self.start_shell(host={"configCentre": {"60": {"57911": {"unsed_page_lifetime": 1}}}})
        self.open(shell)
        unused = self.create(shell)
        command = {"action": "preInit", "params": {"entry": "list", "fileId": "100002", "fileName": "Budget.xlsx"}}
        shell.call("page.notify", page=unused, text=json.dumps(command))
        shell.wait_for_page(unused, "closed", timeout=180)
        used = [n.params["fields"]["used"] for n in shell.notifications("event")
                if n.params["name"] == "docs_cloud_precreate"]
        self.assertEqual(used, ["false", "false"])


if __name__ == "__main__":
    unittest.main()
