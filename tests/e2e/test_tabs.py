"""Tabs: their menus, icons and windows, quick access, the end of a killed shell, and the release of inactive pages."""

import glob
import json
import os
import subprocess

from e2e_case import EndToEndCase, TABLE_DOCUMENT, TEXT_DOCUMENT, query
from processes import children


def renderers(shell):
    """The processes that the shell's Chromium forked for its pages."""
    of = children()
    return {page for started in of.get(shell.pid, ()) for page in of.get(started, ())}


class TabsCase(EndToEndCase):
    TABS = 20

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        with open(os.path.join(cls.documents, "100001.json"), encoding="utf-8") as file:
            document = json.load(file)
        for number in range(cls.TABS):
            document.update(id=str(200001 + number), name="Document %d.docx" % (number + 1))
            with open(os.path.join(cls.documents, document["id"] + ".json"), "w", encoding="utf-8") as file:
                json.dump(document, file)

    def menu(self, shell, page):
        return {each["name"]: each["enabled"] for each in shell.call("tab.menu", page=page)}

    def trigger(self, shell, page, action):
        shell.call("tab.trigger", page=page, action=action)

    def windows(self, shell):
        return [window["pages"] for window in shell.call("shell.state")["windows"]]

    def data_dir(self, name):
        return os.path.join(self.directory, name)


class TabMenuTest(TabsCase):
    def setUp(self):
        self.display = self.start_display()
        self.shell = self.start_shell(environment={"DISPLAY": self.display.name})

    def pasted(self):
        command = ["xclip", "-display", self.display.name, "-selection", "clipboard", "-o"]
        return subprocess.run(command, capture_output=True, timeout=30, check=False, text=True).stdout

    def test_document_actions(self):
        page = self.open(self.shell)
        self.assertEqual(
            list(self.menu(self.shell, page)),
            ["refresh", "copyLink", "pin2quickaccess", "fixTab", "detachTab", "closeTab", "closeOtherTabs"],
        )
        since = self.shell.mark()
        self.trigger(self.shell, page, "refresh")
        self.shell.wait_for_page(page, "webFileReady", since=since)

        self.trigger(self.shell, page, "copyLink")
        self.until(lambda: self.pasted() == self.server.url("/p/100001"), "the link is on the clipboard")

        before = renderers(self.shell)
        self.assertTrue(before)
        since = self.shell.mark()
        self.trigger(self.shell, page, "fixTab")
        self.shell.wait_for_page(page, "webFileReady", since=since)
        self.until(lambda: not before & renderers(self.shell), "the old renderer process goes")
        self.assertEqual(query(self.state(self.shell, page)["url"], "from"), "discard-page-reload")
        for wrong in ("fixtab", ""):
            with self.assertRaises(Exception):
                self.trigger(self.shell, page, wrong)

    def test_entries_of_the_script(self):
        page = self.open(self.shell)
        self.shell.evaluate(page, """
            window.__chosen__ = new Promise((done) => helio.on('menuItemChosen', done));
            helio.emitHost('menuItemDataReady', {items: [
              {id: 'rename', text: 'Rename & move', value: {deep: [1]}},
              {id: '', text: 'no id'}, {id: 'off', text: 'Off', enabled: false}, 7]});""")
        self.until(lambda: "script.off" in self.menu(self.shell, page), "the entries come")
        menu = self.menu(self.shell, page)
        self.assertEqual([name for name in menu if name.startswith("script.")], ["script.rename", "script.off"])
        self.assertFalse(menu["script.off"])
        self.trigger(self.shell, page, "script.rename")
        chosen = self.shell.evaluate(page, "return JSON.parse(await window.__chosen__)")
        self.assertEqual(chosen, {"id": "rename", "value": {"deep": [1]}})

    def test_window_of_its_own_and_back(self):
        pages = [self.open(self.shell, path) for path in (TEXT_DOCUMENT, TABLE_DOCUMENT, TEXT_DOCUMENT)]
        moved = pages[1]
        self.shell.evaluate(moved, "window.__kept__ = 1")
        self.trigger(self.shell, moved, "detachTab")
        self.assertEqual(self.windows(self.shell), [[pages[0], pages[2]], [moved]])
        self.assertNotIn("detachTab", self.menu(self.shell, moved))
        self.trigger(self.shell, moved, "reAttachTab")
        self.until(lambda: self.windows(self.shell) == [pages], "the page is back in its place")
        self.assertEqual(self.shell.evaluate(moved, "return window.__kept__"), 1)

        self.trigger(self.shell, moved, "closeOtherTabs")
        self.until(lambda: self.windows(self.shell) == [[moved]], "the other tabs go")
        self.trigger(self.shell, moved, "closeTab")
        self.until(lambda: self.windows(self.shell) == [[]], "the tab goes")

    def test_icons_follow_the_file_type(self):
        def icon(page):
            file = os.path.join(self.directory, "icon.png")
            self.shell.call("tab.icon", page=page, file=file)
            with open(file, "rb") as drawn:
                return drawn.read()

        plain = self.open(self.shell)
        kinds = ("docx", "xlsx", "vpp", "otl", "db", "nsheet", "unheard")
        icons = {}
        for kind in kinds:
            self.shell.call("page.openFiles", page=plain, args=[
                "url=%s&fileid=9%s&filename=a.%s&suffix=%s&newpage=true" % (self.server.url(TEXT_DOCUMENT), kind, kind, kind)])
            page = self.shell.call("shell.state")["windows"][0]["currentPage"]
            self.assertEqual(self.state(self.shell, page)["properties"]["suffix"], kind)
            icons[kind] = icon(page)
        self.assertEqual(len(set(icons.values())), len(kinds))
        self.assertEqual(icon(plain), icons["docx"], "the title names the file")
        self.assertNotIn(icon(self.create(self.shell)), icons.values())


class QuickAccessTest(TabsCase):
    def test_pin_and_open_again(self):
        data = self.data_dir("pins")
        shell = self.start_shell(data_dir=data)
        page = self.open(shell)
        title = self.state(shell, page)["title"]
        for _ in range(2):
            self.trigger(shell, page, "pin2quickaccess")
        pinned = shell.call("quickAccess.list")
        self.assertEqual([(each["fileId"], each["name"]) for each in pinned], [("100001", title)])
        self.assertEqual(shell.wait_for_event("tab_menu_click").params["fields"]["item"], "pin2quickaccess")

        shell.call("page.close", page=page)
        since = shell.mark()
        shell.call("quickAccess.open", fileId="100001")
        opened = shell.wait_for(lambda n: n.method == "page" and n.params["what"] == "webFileReady", since=since)
        again = opened.params["page"]
        self.assertEqual(self.state(shell, again)["title"], title)
        shell.call("quickAccess.open", fileId="100001")
        self.assertEqual(self.windows(shell), [[again]], "a document that is open is brought to the front")
        shell.quit()

        shell = self.start_shell(data_dir=data)
        self.assertEqual(shell.call("quickAccess.list"), pinned)
        self.assertTrue(shell.call("quickAccess.unpin", fileId="100001"))
        self.assertFalse(shell.call("quickAccess.unpin", fileId="100001"))
        self.assertEqual(shell.call("quickAccess.list"), [])
        shell.quit()

        path = os.path.join(data, "quick-access.json")
        with open(path, "w", encoding="utf-8") as file:
            file.write('{"entries": [{"fileId"')
        shell = self.start_shell(data_dir=data)
        self.assertEqual(shell.call("quickAccess.list"), [])
        self.assertTrue(os.path.exists(path + ".corrupt"))


class RecoveryTest(TabsCase):
    def records(self, data):
        return glob.glob(os.path.join(data, "recovery", "*.json"))

    def recorded(self, data):
        """The URLs in the record of the one shell that runs, by window."""
        paths = self.records(data)
        if len(paths) != 1:
            return []
        with open(paths[0], encoding="utf-8") as file:
            return [[item["params"]["url"] for item in window["items"]] for window in json.load(file)["windows"]]

    def paths(self, count):
        return ["/p/%d?officeType=w" % (200001 + number) for number in range(count)]

    def open_tabs(self, shell, count):
        return [self.open(shell, path) for path in self.paths(count)]

    def restart_after_kill(self, data):
        shell = self.start_shell(data_dir=data)
        return shell, shell.call("shell.state")["recoverable"]

    def test_a_killed_shell_comes_back(self):
        data = self.data_dir("killed")
        shell = self.start_shell(data_dir=data)
        pages = self.open_tabs(shell, self.TABS)
        blank = self.create(shell)
        since = shell.mark()
        shell.call("page.notify", page=blank, text=json.dumps({"action": "preInit", "params": {"entry": "test"}}))
        shell.wait_for_log("getWorkAreaRecoverItem about:blank", since=since)
        current = pages[7]
        shell.call("tab.select", page=current)
        shell.call("tab.move", page=pages[-1], index=0)
        order = [pages[-1]] + pages[:-1]
        titles = {page: self.state(shell, page)["title"] for page in pages}
        urls = [self.server.url("/p/%d" % (200001 + pages.index(page))) for page in order]
        self.until(lambda: [[u.split("?")[0] for u in w] for w in self.recorded(data)] == [urls], lambda: "the order is recorded: %s" % self.recorded(data))
        self.until(lambda: "traceId" not in str(self.recorded(data)), "no open-time items are recorded")
        shell.kill()

        shell, offered = self.restart_after_kill(data)
        self.assertEqual(offered, self.TABS)
        self.assertEqual(self.windows(shell), [[]])
        since = shell.mark()
        shell.call("dialog.answer", dialog="recover", value=True)
        restored = self.windows(shell)[0]
        self.assertEqual([tab["title"] for tab in shell.call("shell.state")["windows"][0]["tabs"]], [titles[page] for page in order])
        shown = restored[order.index(current)]
        shell.wait_for_page(shown, "webFileReady", since=since)
        states = [self.state(shell, page) for page in restored]
        self.assertEqual([state["current"] for state in states], [page == shown for page in restored])
        self.assertEqual(query(states[restored.index(shown)]["url"], "from"), "recover")
        self.assertEqual([page for page, state in zip(restored, states) if state["url"]], [shown], "only the shown one loads")

        # What was not looked at yet is not lost when the shell is killed again.
        other = restored[0]
        since = shell.mark()
        shell.call("tab.select", page=other)
        shell.wait_for_page(other, "webFileReady", since=since)
        self.until(lambda: [[u.split("?")[0] for u in w] for w in self.recorded(data)] == [urls], "the record is whole")
        shell.kill()
        shell, offered = self.restart_after_kill(data)
        self.assertEqual(offered, self.TABS)
        shell.call("dialog.answer", dialog="recover", value=False)
        self.assertEqual(self.windows(shell), [[]])
        shell.quit()
        self.assertEqual(self.records(data), [])

    def test_windows_and_a_clean_end(self):
        data = self.data_dir("windows")
        shell = self.start_shell(data_dir=data)
        pages = self.open_tabs(shell, 2)
        plain = self.create(shell, 11)
        shell.call("page.notify", page=plain, text=self.server.url("/?plain"))
        shell.call("page.load", page=plain)
        self.trigger(shell, pages[1], "detachTab")
        self.until(lambda: [len(window) for window in self.recorded(data)] == [2, 1], "the windows are recorded")
        shell.kill()
        shell, offered = self.restart_after_kill(data)
        shell.call("dialog.answer", dialog="recover", value=True)
        self.until(lambda: [len(window) for window in self.windows(shell)] == [2, 1], "the windows are restored")
        plain = self.windows(shell)[0][1]
        shell.call("tab.select", page=plain)
        self.wait_for_url(shell, plain, "/?plain")
        self.assertEqual(shell.quit(), 0)
        self.assertEqual(self.records(data), [])
        self.assertEqual(self.restart_after_kill(data)[1], 0)

    def test_damaged_records(self):
        data = self.data_dir("damaged")
        os.makedirs(os.path.join(data, "recovery"))

        def write(name, text):
            with open(os.path.join(data, "recovery", name), "w", encoding="utf-8") as file:
                file.write(text)

        good = {"pageType": 1, "title": "Good", "params": {"url": self.server.url("/p/200001?officeType=w")}}
        items = [{"pageType": 1}, 7, {**good, "pageType": 777}, {**good, "params": {"url": "about:blank"}}, good]
        write("a.json", json.dumps({"version": 1, "windows": [{"current": 1, "items": items}, "x"]}))
        write("b.json", '{"version": 1, "windows": [{"ite')
        write("c.json", "")
        shell, offered = self.restart_after_kill(data)
        self.assertEqual(offered, 2)
        shell.wait_for_log("work area record")
        shell.call("dialog.answer", dialog="recover", value=True)
        self.assertEqual([tab["title"] for tab in shell.call("shell.state")["windows"][0]["tabs"]], ["Good"])
        page = self.windows(shell)[0][0]
        shell.wait_for_page(page, "webFileReady")
        self.assertTrue(os.path.exists(os.path.join(data, "recovery", "unreadable.corrupt")))
        with self.assertRaises(Exception):
            shell.call("dialog.answer", dialog="recover", value="yes")


class ReleaseTest(TabsCase):
    def test_inactive_pages_are_released_and_come_back(self):
        shell = self.start_shell(host={"settings": {"discardPage/inactivatePageDiscardTime": 2}}, data_dir=self.data_dir("release"))
        inactive = self.open(shell, "/p/200001?officeType=w")
        first = renderers(shell)
        active = self.open(shell, TABLE_DOCUMENT)
        shell.call("tab.select", page=active)
        event = shell.wait_for_event("memory_release_start")
        self.assertEqual(event.params["fields"]["action"], "release")
        self.assertTrue(self.state(shell, inactive)["released"])
        self.assertFalse(self.state(shell, active)["released"])
        self.until(lambda: first - renderers(shell), "the renderer process of the first page goes")

        since = shell.mark()
        shell.call("tab.select", page=inactive)
        shell.wait_for_page(inactive, "webFileReady", since=since)
        state = self.state(shell, inactive)
        self.assertFalse(state["released"])
        self.assertEqual(query(state["url"], "from"), "discard-page-reload")
