"""A document opens, is edited and saved, is released and comes back, and survives what happens to its browser."""

import json
import os
import unittest

from e2e_case import TABLE_DOCUMENT, TEXT_DOCUMENT, UNTIL_SAVED, EndToEndCase, query


class OpenTest(EndToEndCase):
    def setUp(self):
        foreign = {"foreign.skyleaf.test:80": "127.0.0.1:%d" % self.server.http_port}
        self.shell = self.start_shell(host={"resolve": foreign})

    def test_text_document_opens_is_edited_and_saved(self):
        page = self.open(self.shell)
        state = self.state(self.shell, page)
        for name, value in {"officeType": "w", "openEnv": "hybrid", "client_proxy": "false"}.items():
            self.assertEqual(query(state["notifyUrl"], name), value, name)
        self.assertRegex(query(state["notifyUrl"], "traceId"), "^[0-9a-f]{32}$")
        self.assertEqual(state["properties"]["File_ID"], "100001")
        self.assertEqual(state["properties"]["URL_File_ID"], "100001")
        self.assertTrue(state["loaded"])
        self.assertFalse(state["released"])
        self.assertIn("Welcome", state["title"])

        text = self.shell.evaluate(page, "return document.body.innerText")
        self.assertIn("Welcome", text)
        self.type_text(self.shell, page, " Written by a test.", UNTIL_SAVED)
        with open(os.path.join(self.documents, "100001.json"), encoding="utf-8") as file:
            self.assertIn("Written by a test.", json.dumps(json.load(file)["content"]))

        self.assertEqual(
            self.shell.evaluate(page, "return await helio.call('clouddocsApiVersion')"),
            {"callstatus": "ok", "version": "1.0.0"},
        )
        for directory in ("cache-v2", "cookies-v3"):
            path = os.path.join(self.shell.data_dir, "home/vlt/addons/data/win-x64/ncloudpage", directory)
            self.assertTrue(os.listdir(path), path)
        steps = self.shell.wait_for_event("docs_cloud_opentime").params["fields"]
        times = self.shell.wait_for_event("performance_heliostat_openclouddoctime").params["fields"]
        self.assertEqual(sorted(times), ["create_browser_time", "navigate_time", "prepare_time"])
        self.assertTrue(all(int(each) >= 0 for each in times.values()), times)
        self.assertTrue(steps["steps"].startswith("create_succeeded;"), steps["steps"])
        self.assertTrue(steps["steps"].endswith("web_file_ready;"), steps["steps"])
        requests = [n.params for n in self.shell.notifications("request") if n.params["page"] == page]
        self.assertTrue(any("/preopen/word" in r["url"] and r["by"] == "network" and r["status"] == 200 for r in requests))
        user_agent = [r["userAgent"] for r in self.server.requests() if "/preopen/" in r["target"]][-1]
        self.assertTrue(user_agent.endswith(" VLTQuillHybrid/1.0"), user_agent)

    def test_code_block_becomes_a_code_editor(self):
        page = self.open(self.shell)
        shown = self.shell.evaluate(page, """
            const editor = document.querySelector('.ProseMirror');
            const block = () => document.querySelector('.code-block .cm-content');
            const until = async (isDone) => { while (!isDone()) await new Promise(r => setTimeout(r, 20)); };
            editor.focus();
            document.getSelection().selectAllChildren(editor.querySelector('p'));
            document.execCommand('insertText', false, '```python ');
            await until(block);
            block().focus();
            document.getSelection().selectAllChildren(block());
            document.execCommand('insertText', false, 'answer = 42');
            await until(() => block().querySelector('span[class]'));
            return [block().innerText, document.querySelector('.code-block select').value];""")
        self.assertEqual(shown, ["answer = 42", "Python"])

    def test_table_document_opens(self):
        page = self.open(self.shell, TABLE_DOCUMENT)
        self.assertIn("Budget", self.state(self.shell, page)["title"])
        self.assertEqual(self.shell.evaluate(page, "return window.__DOCS_STATE__.officeType"), "s")

    def test_released_page_comes_back(self):
        page = self.open(self.shell)
        before = self.state(self.shell, page)
        self.shell.call("page.release", page=page)
        self.assertTrue(self.state(self.shell, page)["released"])
        since = self.shell.mark()
        self.shell.call("page.load", page=page)
        after = self.wait_ready_again(self.shell, page, since)
        self.assertEqual(query(after["notifyUrl"], "from"), "discard-page-reload")
        self.assertRegex(query(after["notifyUrl"], "startTime"), r"^\d{13}$")
        self.assertNotEqual(query(after["notifyUrl"], "traceId"), query(before["notifyUrl"], "traceId"))
        self.assertIn("Welcome", self.shell.evaluate(page, "return document.body.innerText"))
        actions = [n.params["fields"]["action"] for n in self.shell.notifications("event")
                   if n.params["name"] == "memory_release_start"]
        self.assertEqual(actions, ["release", "restart"])

    def test_crashed_renderer_is_replaced(self):
        page = self.open(self.shell)
        # The address on the service's host is what comes back.
        since = self.shell.mark()
        self.shell.call("browser.crash", page=page)
        after = self.wait_ready_again(self.shell, page, since)
        self.assertIn("/p/100001", after["url"])

        # Elsewhere, the page's own URL comes back, with the reason.
        self.shell.evaluate(page, "setTimeout(() => { location.href = 'http://foreign.skyleaf.test/home'; }, 0)")
        self.wait_for_url(self.shell, page, "foreign.")
        since = self.shell.mark()
        self.shell.call("browser.crash", page=page)
        after = self.wait_ready_again(self.shell, page, since)
        self.assertEqual(query(after["url"], "from"), "cefProcessAbort")
        self.assertRegex(query(after["url"], "startTime"), r"^\d{13}$")

    def test_login_change_reloads(self):
        page = self.open(self.shell)
        since = self.shell.mark()
        self.shell.call("user.set", loggedIn=True, userId="42", sessionKey="key")
        self.wait_ready_again(self.shell, page, since)


class ManyWindowsTest(EndToEndCase):
    def test_documents_side_by_side(self):
        shell = self.start_shell()
        pages = [self.open(shell, TEXT_DOCUMENT if i % 2 else TABLE_DOCUMENT) for i in range(4)]
        state = shell.call("shell.state")
        self.assertEqual([p["page"] if isinstance(p, dict) else p for w in state["windows"] for p in w["pages"]], pages)
        shell.call("page.close", page=pages[1])
        shell.wait_for_page(pages[1], "closed")
        with self.assertRaisesRegex(Exception, "page"):
            shell.call("page.state", page=pages[1])
        self.assertIn("Budget", self.state(shell, pages[2])["title"])


if __name__ == "__main__":
    unittest.main()
