"""Who the browser says that its user is: the cookies that the page writes, the server that asks for them, and sign-in."""

import json
import os
import shutil
import unittest

from e2e_case import PACKAGE_ZIPS, PROGRAMS, SITE, TEXT_DOCUMENT, EndToEndCase
from helio_shell import DocumentsServer

NOBODY = {"user": {"loggedIn": False, "userId": "", "sessionKey": ""}}
DRIVE_PAGE = "setTimeout(() => { location.href = 'https://drive.skyleaf.test/drive'; }, 0)"


class CookiesTest(EndToEndCase):
    def setUp(self):
        # Each test has a server of its own, since its log and its sessions are what is looked at.
        self.server = DocumentsServer(PROGRAMS, os.path.join(self.directory, self.id()), SITE,
                                      ["--packages", PACKAGE_ZIPS, "--session", "anna", "--session", "bert"])
        self.addCleanup(self.server.stop)

    def browser_requests(self, part):
        """The cookies that came with each request of a page whose target holds `part`."""
        return [r["cookies"] for r in self.server.requests()
                if part in r["target"] and "VLTQuillHybrid" in r["userAgent"]]

    def tell_sessions(self, **change):
        self.server.control("sessions", change)

    def user(self, key, **more):
        return {"user": {"loggedIn": True, "userId": key, "sessionKey": key, **more}}

    def test_both_origins_get_the_cookies(self):
        shell = self.start_shell(host={**self.user("anna"), "debugInfo": {"weboffice_branch": "feature-1"}})
        page = self.open(shell)
        self.assertTrue(self.browser_requests("/p/100001"))
        for cookies in self.browser_requests("/p/100001") + self.browser_requests("/preopen/"):
            self.assertEqual(sorted(cookies), ["vlt_sid", "vltua", "weboffice_branch"])
        self.assertEqual(shell.evaluate(page, "return document.cookie.includes('vlt_sid')"), False, "http-only")
        identity = shell.evaluate(page, "return /vltua=([^;]*)/.exec(document.cookie)[1]")
        self.assertRegex(shell.evaluate(page, "return atob('%s'.replace(/-/g, '+').replace(/_/g, '/'))" % identity),
                         "pc-vltbrowser/")

        shell.evaluate(page, DRIVE_PAGE)
        self.wait_for_url(shell, page, "drive.skyleaf.test")
        self.until_text(shell, page, "Drive")
        self.until(lambda: self.browser_requests("/api/v1/drive/groups"), "the drive is listed")
        for cookies in self.browser_requests("/api/v1/drive/groups"):
            self.assertEqual(sorted(cookies), ["vlt_sid", "vltua"])

        # A new user: both origins get the new session, and the page is told.
        since = shell.mark()
        shell.evaluate(page, "window.told = []; window.onLogin = text => window.told.push(text); "
                             "helio.call('registerCookieUpdateHandler', {callback: 'onLogin'}); await helio.call('clouddocsApiVersion'); "
                             "window.addEventListener('beforeunload', () => sessionStorage.setItem('told', window.told.join()))")
        shell.call("user.set", **self.user("bert")["user"])
        shell.wait_for_page(page, "loadFinished", since=since)
        told = shell.evaluate(page, "return sessionStorage.getItem('told')")
        self.assertEqual({k: json.loads(told)[k] for k in ("act", "logined", "userid", "vltkey")},
                         {"act": "notifyLoginStatus", "logined": 1, "userid": "bert", "vltkey": "bert"})
        self.tell_sessions(remove=["anna"])
        self.open(shell)
        self.until_text(shell, page, "Drive")
        self.assertFalse([r for r in self.server.requests() if r["status"] == 401])

    def test_without_session_the_document_asks_to_sign_in(self):
        shell = self.start_shell(host=NOBODY)
        page, _ = self.begin(shell, self.server.url(TEXT_DOCUMENT))
        self.until_text(shell, page, "Sign in to see this document")
        self.assertEqual([r["cookies"] for r in self.server.requests() if r["target"].startswith("/p/")], [["vltua"]])
        self.assertEqual(shell.evaluate(page, """
            while (document.getElementById('sign-in').hidden) await new Promise(r => setTimeout(r, 20));
            return [document.getElementById('sign-in').hidden,
                    getComputedStyle(document.querySelector('.title-bar')).display,
                    (await fetch('/api/v3/office/files')).status,
                    (await (await fetch('/api/v3/office/files')).json()).result]"""),
            [False, "flex", 401, "userNotLogin"])
        since = shell.mark()
        shell.call("user.set", **self.user("anna")["user"])
        self.wait_ready_again(shell, page, since)
        self.assertIn("Welcome", shell.evaluate(page, "return document.body.innerText"))

    def test_cookie_store_survives_a_restart(self):
        data = os.path.join(self.directory, "data-" + self.id())
        self.addCleanup(shutil.rmtree, data, ignore_errors=True)
        shell = self.start_shell(host=self.user("anna"), data_dir=data)
        page = self.open(shell)
        shell.evaluate(page, "document.cookie = 'kept=by-the-browser; max-age=86400; path=/'")
        self.assertEqual(shell.quit(), 0)

        shell = self.start_shell(host=self.user("anna"), data_dir=data)
        page = self.open(shell)
        self.assertIn("kept=by-the-browser", shell.evaluate(page, "return document.cookie"))

    def test_a_removed_session_loses_no_edits(self):
        shell = self.start_shell(host=self.user("anna"))
        page = self.open(shell)
        self.tell_sessions(remove=["anna"])
        self.type_text(shell, page, " Typed without a session.")
        self.until_text(shell, page, "You are not signed in any more")
        buttons = shell.evaluate(page, "return [...document.querySelectorAll('[data-notice=session] button')].map(b => b.innerText)")
        self.assertEqual(buttons, ["Sign in", "Try again"])
        self.assertIn("Typed without a session.", shell.evaluate(page, "return document.body.innerText"))
        since = shell.mark()
        shell.call("user.set", **self.user("bert")["user"])
        self.wait_ready_again(shell, page, since)
        self.until_text(shell, page, "Typed without a session.")
        path = os.path.join(self.directory, self.id(), "100001.json")
        with open(path, encoding="utf-8") as file:
            self.assertIn("Typed without a session.", file.read())


if __name__ == "__main__":
    unittest.main()
