"""Closing, restarting and releasing documents with words that are not saved yet."""

import glob
import os
import unittest

from e2e_case import BUILD, TABLE_DOCUMENT, UNTIL_SAVED, query
from local_packages import installed_packages
from package_case import PackageCase

TEXT = "return document.querySelector('.ProseMirror').innerText"
SAVING_FAILS = {"/api/v3/office/file/100001/content": {"status": 503}}


class ClosingCase(PackageCase):
    offline_editing = False

    def setUp(self):
        super().setUp()
        self.addCleanup(self.start_server)  # for the next test
        self.user = {"loggedIn": True, "userId": "u", "sessionKey": "k", "localDataDir": os.path.join(self.packages, "local")}
        self.data_dir = os.path.join(self.packages, "data")

    def start(self, **host):
        return self.start_with(installed_packages(BUILD), {"user": self.user, **host}, data_dir=self.data_dir,
                               offline_editing=self.offline_editing)

    def start_server(self):
        """The server again, at its old address and with its documents, when it is away."""
        if not self.server.is_running:
            self.server.start()

    def open_and_type_unsaved(self, shell, text=" Unsaved."):
        """A page with words that the server, which goes away, never gets."""
        page = self.open_text(shell)
        self.server.kill()
        self.type_text(shell, page, text)
        return page

    def stored(self):
        with open(os.path.join(self.documents, "100001.json"), encoding="utf-8") as file:
            return file.read()

    def pages(self, shell):
        return [page for window in shell.call("shell.state")["windows"] for page in window["pages"]]

    def assert_asked(self, shell, since, *parts):
        asked = shell.wait_for_log("messageBox ", since=since).params["text"]
        for part in parts:
            self.assertIn(part, asked)


class ClosingTest(ClosingCase):
    def test_words_typed_just_now_are_saved_before_the_page_goes(self):
        shell = self.start()
        for number, way in enumerate(["in front", "behind another", "end of the shell"]):
            page = self.open_text(shell)
            if way == "behind another":
                shell.call("tab.select", page=self.open(shell, TABLE_DOCUMENT))
            words = " Last words %d." % number
            self.type_text(shell, page, words)
            if way == "end of the shell":
                self.assertEqual(shell.quit(), 0)
            else:
                self.assertTrue(shell.call("page.close", page=page), way)
            self.assertIn(words, self.stored(), way)

    def test_what_cannot_be_saved_is_asked_about(self):
        shell = self.start()
        page = self.open_and_type_unsaved(shell)
        since = shell.mark()
        self.assertFalse(shell.call("page.close", page=page))
        self.assert_asked(shell, since, "dialog cancelled", "not saved. Close it all the same?", "Welcome")
        for action in ("fixTab", "refresh"):
            since = shell.mark()
            shell.call("tab.trigger", page=page, action=action)
            self.assert_asked(shell, since, "dialog cancelled", "Load it anew all the same?")
        self.assertIn(" Unsaved.", shell.evaluate(page, TEXT))

        # The page is as it was: what it holds is saved when that is possible again.
        self.start_server()
        shell.evaluate(page, UNTIL_SAVED, timeout=60)
        self.assertIn(" Unsaved.", self.stored())
        self.control("fault", SAVING_FAILS)
        self.type_text(shell, page, " Given up.")
        shell.call("dialog.answer", dialog="messageBox", value="discard", times=2)
        since = shell.mark()
        shell.call("tab.trigger", page=page, action="fixTab")
        shell.wait_for_page(page, "webFileReady", timeout=60, since=since)
        self.assertNotIn("Given up", shell.evaluate(page, TEXT))
        self.type_text(shell, page, " Given up.")
        self.assertTrue(shell.call("page.close", page=page))
        self.assertEqual(self.pages(shell), [])
        self.assertNotIn("Given up", self.stored())

    def test_several_documents_are_asked_about_once_and_stay_together(self):
        shell = self.start()
        kept = self.open(shell, TABLE_DOCUMENT)
        pages = [self.open_text(shell), self.open_text(shell)]
        self.server.kill()
        for page in pages:
            self.type_text(shell, page, " Unsaved.")
        since = shell.mark()
        shell.call("tab.trigger", page=kept, action="closeOtherTabs")
        self.assert_asked(shell, since, "dialog cancelled", "The changes in 2 documents are not saved.")
        self.assertEqual(self.pages(shell), [kept] + pages)
        shell.call("dialog.answer", dialog="messageBox", value="discard")
        shell.call("tab.trigger", page=kept, action="closeOtherTabs")
        self.until(lambda: self.pages(shell) == [kept], "other tabs are still there")

    def test_a_page_that_hangs_does_not_hold_anybody_up(self):
        shell = self.start()
        pages = [self.open_text(shell), self.open(shell, TABLE_DOCUMENT)]
        for page in pages:
            shell.evaluate(page, "Object.defineProperty(window, 'skyleafDocs', {get() { for (;;); }})")
        since = shell.mark()
        self.assertFalse(shell.call("page.close", page=pages[0]))
        self.assert_asked(shell, since, "dialog cancelled", "This page does not answer. Close it all the same?")
        shell.call("dialog.answer", dialog="messageBox", value="discard")
        self.assertTrue(shell.call("page.close", page=pages[0]))
        self.assertEqual(shell.quit(), 0)

    def test_the_end_of_the_shell_asks_nobody_and_says_what_was_lost(self):
        shell = self.start()
        self.open_and_type_unsaved(shell)
        self.assertEqual(shell.quit(), 0)
        with open(os.path.join(self.data_dir, "shell.log"), encoding="utf-8") as log:
            self.assertIn("closed with unsaved changes", log.read())


class ReleaseTest(ClosingCase):
    def test_unsaved_words_keep_a_page_from_being_released(self):
        shell = self.start(settings={"discardPage/inactivatePageDiscardTime": 1})
        page = self.open_text(shell)
        self.control("fault", SAVING_FAILS)
        self.type_text(shell, page, " Unsaved.")
        other = self.open(shell, TABLE_DOCUMENT)
        shell.call("tab.select", page=other)
        shell.call("tab.select", page=self.create(shell))
        # The other one shows that the time has come.
        self.until(lambda: self.state(shell, other)["released"], "nothing was released")
        self.assertFalse(self.state(shell, page)["released"])
        self.control("fault", {})
        self.until(lambda: self.state(shell, page)["released"], "the saved page was not released", timeout=60)
        self.assertIn(" Unsaved.", self.stored())

    def test_a_new_document_comes_back_as_itself(self):
        shell = self.start()
        page = self.create(shell)
        shell.call("page.notify", page=page, text=self.server.url("/office/new/w"))
        since = shell.mark()
        shell.call("page.load", page=page)
        shell.wait_for_page(page, "webFileReady", timeout=60, since=since)
        self.type_text(shell, page, "My own words.", UNTIL_SAVED)
        path = shell.evaluate(page, "return location.pathname")
        self.assertTrue(path.startswith("/p/"), path)
        for restart in ("release", "fixTab"):
            since = shell.mark()
            if restart == "release":
                self.assertTrue(shell.call("page.release", page=page))
                shell.call("page.load", page=page)
            else:
                shell.call("tab.trigger", page=page, action="fixTab")
            shell.wait_for_page(page, "webFileReady", timeout=60, since=since)
            self.assertEqual(shell.evaluate(page, "return location.pathname"), path, restart)
            self.assertIn("My own words.", shell.evaluate(page, TEXT), restart)
            self.assertEqual(query(self.state(shell, page)["notifyUrl"], "from"), "discard-page-reload")
        self.until(lambda: path in self.recorded(), "never recorded")
        shell.kill()

        shell = self.start()
        shell.call("dialog.answer", dialog="recover", value=True)
        self.until(lambda: self.pages(shell), "nothing was restored")
        [page] = self.pages(shell)
        self.assert_readable(shell, page, "My own words.")

    def recorded(self):
        texts = []
        for path in glob.glob(os.path.join(self.data_dir, "recovery", "*.json")):
            with open(path, encoding="utf-8") as file:
                texts.append(file.read())
        return "".join(texts)


class KeptTest(ClosingCase):
    offline_editing = None  # as the shell has it

    def test_words_that_are_kept_on_this_computer_need_no_question(self):
        shell = self.start()
        page = self.open_text(shell)
        copies = os.path.join(self.user["localDataDir"], "quillfile", "*", "sync", "content.word")
        self.until(lambda: glob.glob(copies), "no copy on this computer")
        self.server.kill()
        self.type_text(shell, page, " Kept here.")
        self.assertTrue(shell.call("page.close", page=page))
        page = self.open_text(shell)
        self.assert_readable(shell, page, " Kept here.")
        self.start_server()
        shell.evaluate(page, UNTIL_SAVED, timeout=60)
        self.assertIn(" Kept here.", self.stored())


if __name__ == "__main__":
    unittest.main()
