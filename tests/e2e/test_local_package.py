"""A document opens from a local package, with the server's first answers; every refusal leaves it to the server."""

import os
import unittest

from e2e_case import BUILD, TABLE_DOCUMENT, TEXT_DOCUMENT, UNTIL_SAVED
from helio_shell import merged
from local_packages import installed_packages, switches
from package_case import PackageCase


VERSION_CHECK = "/api/v3/office/prefetch/vcs"
OTHER_TEXT_DOCUMENT = "/p/100005?officeType=w"


class LocalPackageTest(PackageCase):
    def test_nothing_of_the_front_end_comes_from_the_server(self):
        for preloading in (False, True):
            with self.subTest(preloading=preloading):
                shell = self.start_with(installed_packages(BUILD), preloading=preloading)
                count = len(self.server.requests())
                page = self.open_text(shell)
                self.assertEqual(self.page_requests(count), [])
                for part in ("/preopen/word", "part=file_info,font_name_map"):
                    self.assertEqual(self.answers(shell, page, part), ["local"], part)
                self.assertEqual(set(self.answers(shell, page, "/hybrid/weboffice-static/js/")), {"local"})
                self.assert_readable(shell, page)
                self.assertEqual(shell.evaluate(page, "return window.__DOCS_STATE__.contentFrom"), "prefetched")
                self.assertEqual(self.steps(shell), [
                    ("set_start", "no_error"), ("url_checking", "no_error"), ("frontver_checked_by_pck", "no_error"),
                    ("local_plugin_setting", "no_error"), ("set_finish", "no_error")])
                sent = [each for each in self.server.requests()[count:] if "/preopen/" in each["target"]]
                self.assertEqual(len(sent), 1, "the add-on asked, the page did not")
                shell.quit()

    def test_tables_have_a_third_answer(self):
        shell = self.start_with(installed_packages(BUILD))
        page = self.open_text(shell, TABLE_DOCUMENT)
        for part in ("/preopen/vs", "part=file_info,font_name_map", "part=file_info,config,ssr"):
            self.assertEqual(set(self.answers(shell, page, part)) - {"local"}, set(), part)
        self.assertIn("Budget", self.state(shell, page)["title"])

    def test_a_link_leads_to_a_document_of_another_kind(self):
        shell = self.start_with(installed_packages(BUILD))
        page = self.open_text(shell, TABLE_DOCUMENT)
        # Its first script is in memory already, its editor is not: it runs long after the page was read.
        shell.evaluate(page, "setTimeout(() => location.assign('/p/100001')); return true")
        self.until_page(shell, page, "window.__DOCS_STATE__ && __DOCS_STATE__.officeType === 'w' && __DOCS_STATE__.editable")
        self.assert_readable(shell, page)

    def test_edits_are_saved_and_seen_after_a_reload(self):
        shell = self.start_with(installed_packages(BUILD))
        page = self.open_text(shell)
        self.type_text(shell, page, " Kept over a reload.", UNTIL_SAVED)
        since = shell.mark()
        shell.call("page.invoke", page=page, method="refreshPage", args=[])
        self.wait_ready_again(shell, page, since)
        self.assert_readable(shell, page, "Kept over a reload.")

    def test_a_deployment_without_a_documents_site_shows_what_it_is_told(self):
        shell = self.start_with(installed_packages(BUILD), {"domains": {"quill": None}})
        page, _ = self.begin(shell, self.server.url(TEXT_DOCUMENT))
        shell.wait_for_page(page, "loadFinished")
        self.assertEqual(self.steps(shell)[-1], ("url_checking", "quill_domain_empty"))
        # Without the site's address no session is written for it either.
        self.until_text(shell, page, "Sign in to see this document")

    def test_another_host_is_refused_unless_forced(self):
        other = {"resolve": {"other.skyleaf.test:443": "127.0.0.1:%d" % self.server.https_port}}
        for forced in (False, True):
            shell = self.start_with(installed_packages(BUILD), other, forceProxy=forced)
            page, _ = self.begin(shell, "https://other.skyleaf.test" + TEXT_DOCUMENT + "&openEnv=hybrid")
            shell.wait_for_page(page, "loadFinished")
            errors = [error for _, error in self.steps(shell)]
            mismatch = [error for error in errors if error.startswith("host_not_match_https://other.skyleaf.test/p/100001")]
            self.assertTrue(mismatch and mismatch[0].endswith("_https://docs.skyleaf.test, need add proxy"), errors)
            self.assertEqual(self.steps(shell)[-1][0], "set_finish" if forced else "url_checking")
            shell.quit()

    def test_a_missing_package_is_fetched_and_used_by_the_next_open(self):
        gone = os.path.join(self.packages, "gone")
        shell = self.start_with({"w": gone}, {"settings": {"cloudService/downloadSpreadMs": 0}})
        page = self.open_text(shell)
        self.assertIn(("local_plugin_setting", "plugin_error"), self.steps(shell))
        self.assert_readable(shell, page)
        asked = shell.wait_for_event("docs_localproxy_dop_active").params["fields"]
        self.assertEqual((asked["pluginname"], asked["errormsg"], asked["scene"]), ("quillword", "active", "skyleaf"))
        shell.wait_for_log("plug-in quillword: version ")

        since = shell.mark()
        page = self.open_text(shell)
        self.assertIn(("local_plugin_setting", "no_error"), self.steps(shell, since))
        for part in ("/p/", "/hybrid/"):
            self.assertEqual(set(self.answers(shell, page, part)), {"local"}, part)


class RefusalTest(PackageCase):
    def test_refusals_leave_the_document_to_the_server(self):
        empty = self.package("1.0.0")
        open(os.path.join(empty, "version"), "w", encoding="utf-8").close()
        gone = os.path.join(self.packages, "gone")
        good = installed_packages(BUILD)["w"]
        settings = "usercenter/docsOfflinePage/w/"
        with open(os.path.join(good, "version"), encoding="utf-8") as file:
            version = file.read().strip()
        cases = [
            ("switch_off", {"wordDOPSwitch": False}, good, {}),
            ("switch_off", {"DOPMasterSwitch": False}, good, {}),
            ("plugin_error", {}, gone, {}),
            ("local_pck_data_error", {}, empty, {}),
            ("local_pck_req_expire", {}, good, {"settings": {settings + "expireTime/" + version: 1000}}),
            ("local_pck_must_upgrade", {}, good, {"settings": {settings + "mustUpgrade/" + version: True}}),
            ("local_vcs_must_upgrade", {"version_check": True}, good, {
                "settings": {"usercenter/docsOfflinePage/vcs/w/%s/clientVersion" % version: "9.9"}}),
            ("direct_plugin_load_error", {}, None, {}),
        ]
        for error, options, path, members in cases:
            with self.subTest(error=error, options=options):
                # A record of an earlier check: the server's own answer would replace it, so there is none.
                self.control("fault", {VERSION_CHECK: {"status": 503}})
                shell = self.start_with({"w": path} if path else {}, members, **options)
                count = len(self.server.requests())
                page = self.open_text(shell)
                self.assertIn(error, [found for _, found in self.steps(shell)])
                self.assertTrue(self.page_requests(count), "from the server")
                self.assert_readable(shell, page)
                shell.quit()


class VersionSwitchTest(PackageCase):
    """Version 1.1.0 of the text package was installed and served; 2.0.0 is installed beside it as its upgrade."""

    def setUp(self):
        super().setUp()
        self.first, self.second = self.package("1.1.0"), self.package("2.0.0")
        self.data_dir = os.path.join(self.packages, "data")
        with open(os.path.join(self.documents, "100001.json"), encoding="utf-8") as file:
            copied = file.read()
        with open(os.path.join(self.documents, "100005.json"), "w", encoding="utf-8") as file:
            file.write(copied.replace("100001", "100005"))
        shell = self.start_with({"w": self.first}, data_dir=self.data_dir)
        self.assertEqual(self.front_version(shell, self.open_text(shell)), "1.1.0")
        shell.quit()

    def start_upgraded(self, members=None, **options):
        plugin = {"path": self.first, "upgradePath": self.second}
        return self.start_shell(host=merged({"plugins": {"quillword": plugin}, **switches(**options)}, members or {}), data_dir=self.data_dir)

    def want(self, **versions):
        """The server wants these versions of documents ("f100001") from now on."""
        self.control("versions", {"files": {name[1:]: {"front_ver": version} for name, version in versions.items()}})

    def test_an_upgrade_is_served_until_the_version_check_wants_another(self):
        self.want(f100001="1.1.0")
        shell = self.start_upgraded(version_check=True)
        page = self.open_text(shell)
        shell.wait_for_log("current version 2.0.0 and new version 1.1.0")
        since = shell.mark()
        shell.call("page.release", page=page)
        shell.call("page.load", page=page)
        self.wait_ready_again(shell, page, since)
        self.assertEqual(self.front_version(shell, page), "1.1.0")
        shell.wait_for_event("docs_localproxy_dop_result", step_name="update_finish", error_msg="no_error")

    def test_the_delayed_load_runs_different_versions_side_by_side(self):
        self.want(f100001="1.1.0", f100005="2.0.0")
        shell = self.start_upgraded(version_check=True, delay_ms=10000)
        pages = [self.open_text(shell), self.open_text(shell, OTHER_TEXT_DOCUMENT)]
        self.assertEqual([self.front_version(shell, page) for page in pages], ["1.1.0", "2.0.0"])
        for page in pages:
            self.assertEqual(set(self.answers(shell, page, "/hybrid/weboffice-static/js/")), {"local"})
            self.assert_readable(shell, page)
        self.assertEqual([error for step, error in self.steps(shell) if step == "update_finish"], ["no_error"] * 2)

    def test_a_version_that_is_not_there_goes_to_the_server(self):
        self.want(f100001="7.0.0")
        shell = self.start_upgraded(version_check=True, delay_ms=10000)
        count = len(self.server.requests())
        page = self.open_text(shell)
        self.assertIn(("update_frontver_comparing", "no plugin available"), self.steps(shell))
        self.assertIn("referer=version_mismatch", self.state(shell, page)["url"])
        self.assertTrue(self.page_requests(count))
        self.assert_readable(shell, page)

    def test_the_environment_configuration_resets_the_proxy_for_the_next_open(self):
        self.want(f100001="1.1.0", f100005="2.0.0")
        shell = self.start_upgraded(proxy_reset=True)
        self.open_text(shell)
        shell.wait_for_log("front ver changed!  old front ver 2.0.0 and new front ver 1.1.0")
        shell.wait_for_event("docs_localproxy_dop_result", step_name="update_finish", error_msg="no_error")
        page = self.open_text(shell)
        self.assertEqual(self.front_version(shell, page), "1.1.0")
        other = self.open_text(shell, OTHER_TEXT_DOCUMENT)
        self.assertEqual(self.front_version(shell, other), "2.0.0")


if __name__ == "__main__":
    unittest.main()
