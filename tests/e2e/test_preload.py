"""Browsers that were made in advance: a running front end takes the next document over, or it is loaded as always."""

import glob
import os
import shutil
import signal
import unittest

from e2e_case import BUILD, TABLE_DOCUMENT, TEXT_DOCUMENT, UNTIL_SAVED
from helio_shell import merged
from local_packages import installed_packages, plugin_members, switches
from package_case import PackageCase
from processes import start_time

PREVIEW = 48
EVENT = "docs_localproxy_dop_preloaddocframework"
CHECK = "_checkPreloadDocFramework "
KEPT = "kept for "
FEATURE = {"features": {"PreCreateCloudDocsContainer": True}}
# What a take-over may last: ample, since the machine may be busy.
AMPLE = {"settings": {"takeOver/scriptMs": 60000, "takeOver/answerMs": 60000, "takeOver/documentMs": 60000}}
HANG = """<script>addEventListener('ON_APP_OPENFILE_READY', () => { for (;;); }, true);</script>"""


def edited(path, old, new):
    with open(path, encoding="utf-8") as file:
        text = file.read()
    with open(path, "w", encoding="utf-8") as file:
        file.write(text.replace(old, new, 1))


def browser_processes(shell):
    """The browser processes of the shell's process group."""
    found = set()
    for path in glob.glob("/proc/[0-9]*/comm"):
        try:
            with open(path, encoding="utf-8") as file:
                name = file.read()
            pid = int(path.split("/")[2])
            if name.startswith("QtWebEngine") and os.getpgid(pid) == shell.pid:
                found.add(pid)
        except OSError:
            continue
    return found


class PreloadCase(PackageCase):
    def start_preloading(self, paths=None, members=None, **options):
        options.setdefault("preloading", True)
        return self.start_with(installed_packages(BUILD) if paths is None else paths, merged(merged(FEATURE, AMPLE), members or {}), **options)

    def kept(self, shell, since, what=KEPT):
        return shell.wait_for_log(what, since=since)

    def open_first(self, shell, path=TEXT_DOCUMENT):
        """Opens a document and waits until a browser is kept for the next."""
        since = shell.mark()
        page = self.open(shell, path, PREVIEW)
        self.kept(shell, since)
        return page

    def events(self, shell, since):
        return [each.params["fields"] for each in shell.notifications()[since:]
                if each.method == "event" and each.params["name"] == EVENT]

    def checks(self, shell, since):
        """What the checks of the front end came to, the repeated ones left out."""
        texts = [each.params["text"].split("--")[0] for each in shell.notifications()[since:]
                 if each.method == "log" and each.params["text"].startswith(CHECK)]
        return [text[len(CHECK):] for text in texts if not text.endswith(("already check", "Framework fail"))]


class TakeOverTest(PreloadCase):
    def test_the_second_preview_takes_over_and_behaves_like_any_other_page(self):
        shell = self.start_preloading()
        self.open_first(shell)
        since, count = shell.mark(), len(self.server.requests())
        page = self.open(shell, page_type=PREVIEW)
        self.assertEqual(self.checks(shell, since), ["success"])
        self.assertEqual(self.page_requests(count), [])
        self.assertEqual(self.answers(shell, page, "/p/"), [], "the page was not loaded at all")
        for part in ("/preopen/word", "part=file_info,font_name_map"):
            self.assertEqual(self.answers(shell, page, part), ["local"], part)
        state = self.state(shell, page)
        [event] = self.events(shell, since)
        self.assertEqual((event["url"], event["officetype"], event["reportver"]), (state["notifyUrl"], "w", "1.0"))
        self.assertEqual((state["title"], state["url"]), ("Welcome.docx", state["notifyUrl"]))
        self.assert_readable(shell, page)

        self.type_text(shell, page, " Typed after the take-over.", UNTIL_SAVED + "await fetch('/robots.txt?after-take-over');")
        agents = [each["userAgent"] for each in self.server.requests() if "after-take-over" in each["target"]]
        self.assertTrue(agents and agents[0].endswith(" VLTQuillHybrid/1.0 PreloadDocFramework"), agents)
        since = shell.mark()
        shell.call("page.invoke", page=page, method="refreshPage", args=[])
        self.wait_ready_again(shell, page, since)
        self.assert_readable(shell, page, "Typed after the take-over.")

    def test_it_takes_over_however_the_version_of_the_front_end_is_found(self):
        for options in ({"delay_ms": 150}, {"version_check": True}, {"version_check": True, "delay_ms": 150},
                        {"preloading": False, "proxy_reset": True}):
            with self.subTest(options):
                shell = self.start_preloading(**options)
                self.open_first(shell)
                since = shell.mark()
                page = self.open(shell, page_type=PREVIEW)
                self.assertEqual((self.checks(shell, since), len(self.events(shell, since))), (["success"], 1))
                self.assertEqual(self.answers(shell, page, "/p/"), [])
                self.assert_readable(shell, page)
                shell.quit()

    def test_what_does_not_fit_is_loaded(self):
        def upgrade(package):
            with open(os.path.join(package, "version"), "w", encoding="utf-8") as file:
                file.write("9.9")

        version = "1.0.0"
        cases = [
            ("officetype not match", TABLE_DOCUMENT, "Budget", lambda package: None),
            ("frontVer not match, record is , current is " + version, TEXT_DOCUMENT, "Welcome", upgrade),
        ]
        for reason, path, text, prepare in cases:
            with self.subTest(reason=reason):
                package = self.package(version)
                shell = self.start_preloading({"w": package, "s": installed_packages(BUILD)["s"]})
                self.open_first(shell)
                prepare(package)
                since = shell.mark()
                page = self.open(shell, path, PREVIEW)
                self.assertEqual(self.checks(shell, since), [reason])
                self.assertEqual((self.answers(shell, page, "/p/"), self.events(shell, since)), (["local"], []))
                self.assert_readable(shell, page, text)
                shell.quit()
                shutil.rmtree(package)

    def test_a_front_end_of_the_site_only_warms_the_browser_up(self):
        shell = self.start_preloading({})
        count = len(self.server.requests())
        self.open_first(shell)
        self.assertIn("/dist_langs/zh-CN/index-w.html", [each["target"] for each in self.server.requests()[count:]])
        since = shell.mark()
        page = self.open(shell, page_type=PREVIEW)
        self.assertEqual(self.checks(shell, since), ["PreloadDocFramework not enable"])
        self.assert_readable(shell, page)


class PreparedBrowserTest(PreloadCase):
    def test_one_that_died_while_it_waited_is_not_handed_out(self):
        shell = self.start_preloading()
        self.open_first(shell)
        since = shell.mark()
        os.kill(max(browser_processes(shell), key=start_time), signal.SIGKILL)  # the one that waits was started last
        self.kept(shell, since, "dropped for ")
        page = self.open(shell, page_type=PREVIEW)
        self.assertEqual((self.checks(shell, since), self.answers(shell, page, "/p/")), ([], ["local"]))
        self.assert_readable(shell, page)

    def test_a_crash_while_it_takes_over_ends_readable(self):
        shell = self.start_preloading()
        since = shell.mark()
        self.open_first(shell)
        page, since = self.begin(shell, self.server.url(TEXT_DOCUMENT), PREVIEW)
        shell.wait_for_event(EVENT, since=since)
        shell.call("browser.crash", page=page)
        self.assert_readable(shell, page)
        self.assertIn("/p/100001", self.state(shell, page)["url"])

    def test_one_that_hangs_is_ended_and_the_document_is_loaded(self):
        version = "1.0.0"
        package = self.package(version)
        edited(os.path.join(package, "dist_langs", "zh-CN", "index-w.html"), "<meta charset", HANG + "<meta charset")
        shell = self.start_preloading({"w": package}, {"settings": {"takeOver/answerMs": 1500}})
        self.open_first(shell)
        page, since = self.begin(shell, self.server.url(TEXT_DOCUMENT), PREVIEW)
        shell.wait_for_page(page, "webFileReady", since=since)
        self.assertEqual((len(self.events(shell, since)), self.answers(shell, page, "/p/")), (1, ["local"]))
        self.assert_readable(shell, page)

    def test_documents_that_are_made_or_missing_end_with_something_to_see(self):
        shell = self.start_preloading()
        self.open_first(shell)
        since = shell.mark()
        page = self.open(shell, "/office/new/w?officeType=w", PREVIEW)
        self.assertEqual(self.events(shell, since), [], "nothing is fetched in advance for it, so nobody tells the front end")
        self.assertTrue(shell.evaluate(page, "return document.querySelector('.ProseMirror') !== null"))

        self.kept(shell, since)
        page, since = self.begin(shell, self.server.url("/p/missing?officeType=w"), PREVIEW)
        shell.wait_for_event(EVENT, since=since)
        self.until_page(shell, page, "(problem => problem && !problem.hidden && problem.innerText)(document.getElementById('problem'))")

    def test_without_the_library_pages_make_their_browsers(self):
        root = os.path.join(self.packages, "installation")
        shutil.copytree(os.path.join(BUILD, "lib"), os.path.join(root, "lib"), ignore=shutil.ignore_patterns("ncefpreload"))
        os.symlink(os.path.join(BUILD, "resources"), os.path.join(root, "resources"))
        os.mkdir(os.path.join(root, "bin"))
        for name in ("skyleaf-shell", "vltcloudsvr"):
            shutil.copy(os.path.join(BUILD, "bin", name), os.path.join(root, "bin"))
        members = merged(plugin_members(installed_packages(BUILD), **switches(preloading=True)), FEATURE)
        shell = self.start_shell(host=members, programs=os.path.join(root, "bin"))
        for _ in range(2):
            page = self.open(shell, page_type=PREVIEW)
            self.assert_readable(shell, page)
        shell.wait_for_log("bTryToUsePreloadBrowser: 1, initByPreloadBrowser: 0")
        self.assertEqual(self.events(shell, 0), [])

    def test_many_openings_leave_nothing_behind(self):
        shell = self.start_preloading()
        processes, taken = [], 0
        for _ in range(20):
            since = shell.mark()
            page = self.open(shell, page_type=PREVIEW)
            self.assert_readable(shell, page)
            shell.call("page.close", page=page)
            shell.wait_for_page(page, "closed", since=since)
            self.kept(shell, since)
            taken += len(self.events(shell, since))
            processes.append(len(browser_processes(shell)))
        self.assertGreaterEqual(taken, 18)
        self.until(lambda: len(browser_processes(shell)) <= processes[1], "no process more than early on: %s" % processes)
        self.assertTrue([each for each in shell.notifications("log") if "taken back for " in each.params["text"]])
        self.assertEqual(shell.quit(), 0)


if __name__ == "__main__":
    unittest.main()
