"""Pipes, devices, folders, links and huge files in the places of the program's own ones: it starts, and documents open."""

import json
import os
import unittest

from e2e_case import BUILD, TEXT_DOCUMENT
from local_packages import installed_packages
from package_case import PackageCase
from test_storage import CALL


def pipe(path):
    os.mkfifo(path)


def endless(path):
    os.symlink("/dev/zero", path)


def folder(path):
    os.makedirs(os.path.join(path, "inner"))


def huge(path):
    with open(path, "wb") as file:
        file.truncate(3 << 30)


KINDS = (pipe, endless, folder, huge)
OWN_FILES = ("shell.log", "events.jsonl", "quick-access.json", "quick-access.json.lock", "kcc.store", "kcc.store.lock",
             "startup-pages.json", "recovery/odd.json", "settings/Maravel/Common.conf", "settings/Maravel/VLTCloud.conf",
             "settings/Maravel/Common.conf.lock", "settings/Maravel/Plugins.conf")


def resident_megabytes(pid):
    with open("/proc/%d/status" % pid, encoding="ascii") as file:
        peak = next(line for line in file if line.startswith("VmHWM"))
    return int(peak.split()[1]) >> 10


class DataDirectoryTest(PackageCase):
    def test_the_shell_starts_and_opens_a_document_whatever_lies_in_its_data_directory(self):
        for kind in KINDS:
            with self.subTest(kind=kind.__name__):
                data_dir = os.path.join(self.packages, kind.__name__)
                for name in OWN_FILES:
                    path = os.path.join(data_dir, name)
                    os.makedirs(os.path.dirname(path), exist_ok=True)
                    kind(path)
                shell = self.start_with(installed_packages(BUILD), data_dir=data_dir)
                page = self.open_text(shell)
                self.assert_readable(shell, page)
                self.assertLess(resident_megabytes(shell.pid), 700)
                shell.quit()

    def test_the_host_file_may_become_a_pipe_while_the_shell_runs(self):
        shell = self.start_with(installed_packages(BUILD))
        shell.call("shell.state")
        os.remove(shell.host_file)
        os.mkfifo(shell.host_file)
        shell.wait_for_log("it is not a regular file")
        os.remove(shell.host_file)
        page = self.open_text(shell)
        self.assert_readable(shell, page)

    def test_many_domains_and_pinned_documents_do_not_hold_the_start(self):
        data_dir = os.path.join(self.packages, "many")
        os.makedirs(data_dir)
        with open(os.path.join(data_dir, "quick-access.json"), "w", encoding="utf-8") as file:
            json.dump({"entries": [{"fileId": str(i), "name": "Document %d" % i} for i in range(50000)]}, file)
        domains = {"other%d" % i: "https://host%d.test" % i for i in range(100000)}
        shell = self.start_with(installed_packages(BUILD), {"domains": domains}, data_dir=data_dir)
        shell.wait_for_log("only 200 hosts are answered locally")
        page = self.open_text(shell)
        self.assertEqual(self.answers(shell, page, "/preopen/word"), ["local"])


class PackageFilesTest(PackageCase):
    def test_odd_files_of_a_front_end_package_leave_the_document_to_the_server(self):
        for name in ("version", "inject.json", "preload-file.json", "dist_langs/zh-CN/index-w.html"):
            for kind in (pipe, endless, huge):
                with self.subTest(name=name, kind=kind.__name__):
                    package = self.package("%s-%s" % (kind.__name__, name.replace("/", "-")))
                    path = os.path.join(package, name)
                    if os.path.exists(path):
                        os.remove(path)
                    kind(path)
                    shell = self.start_with({"w": package}, preloading=True)
                    page = self.open_text(shell)
                    self.assert_readable(shell, page)
                    shell.quit()


class LocalCopyTest(PackageCase):
    """Documents whose local storage package holds something else than it should."""

    def setUp(self):
        super().setUp()
        self.local_data = os.path.join(self.packages, "local")
        user = {"loggedIn": True, "userId": "u", "sessionKey": "k", "localDataDir": self.local_data}
        self.shell = self.start_with(installed_packages(BUILD), {"user": user}, preloading=True)
        page = self.open_text(self.shell)
        self.record = self.shell.evaluate(page, CALL % ("create", json.dumps({"fileId": "100001"})))["result"]
        self.shell.call("page.close", page=page)

    def path(self, place, name):
        return os.path.join(self.local_data, "quillfile", self.record["localId"]) + self.record[place] + "/" + name

    def open_copy(self):
        page = self.open_text(self.shell, TEXT_DOCUMENT + "&localId=" + self.record["localId"])
        self.assert_readable(self.shell, page)
        return page

    def injected(self, page, member):
        return self.shell.evaluate(page, "return window.__INJECT__." + member)

    def test_odd_files_are_not_injected_and_hold_nobody_up(self):
        places = (("pkgSyncPath", "content.word"), ("pkgCachePath", "csr.html"))
        for kind in KINDS:
            for place, name in places:
                kind(self.path(place, name))
            with self.subTest(kind=kind.__name__):
                other = self.create(self.shell)
                since = self.shell.mark()
                self.shell.call("page.notify", page=other, text=self.server.url("/p/100002?officeType=s"))
                self.shell.call("page.load", page=other)
                page = self.open_copy()
                self.shell.wait_for_page(other, "webFileReady", since=since)
                self.assertIsNone(self.injected(page, "_LOCAL_INJECT_DATA.content"))
                self.assertIsNone(self.injected(page, "_LOCAL_INJECT_CACHE"))
                self.shell.wait_for_log("content.word is not injected", since=since)
                self.shell.call("page.close", page=page)
                self.shell.call("page.close", page=other)
            for place, name in places:
                path = self.path(place, name)
                if kind is folder:
                    os.rmdir(os.path.join(path, "inner"))
                    os.rmdir(path)
                else:
                    os.remove(path)

    def test_a_second_name_of_a_file_elsewhere_is_not_injected(self):
        secret = os.path.join(self.packages, "secret")
        with open(secret, "w", encoding="utf-8") as file:
            file.write('"a secret"')
        os.link(secret, self.path("pkgSyncPath", "content.word"))
        page = self.open_copy()
        self.assertIsNone(self.injected(page, "_LOCAL_INJECT_DATA.content"))

    def test_no_content_and_no_rendering_swallows_the_page(self):
        cases = (("<!--<script>", '"</script><!--<script>"'), ("<script><!-- unclosed", '{"a": "cut'),
                 ("</body><textarea><plaintext>", "/* swallowed"), ("</script><!--", "1; window.__INJECT__ = null"),
                 ("<style><svg><![CDATA[\u2028\u2029", "a b"), ("<template>", "[" * 5000 + "]" * 5000))
        for rendering, content in cases:
            with self.subTest(rendering=rendering, content=content[:40]):
                for place, name, text in (("pkgCachePath", "csr.html", rendering), ("pkgSyncPath", "content.word", content)):
                    with open(self.path(place, name), "w", encoding="utf-8") as file:
                        file.write(text)
                page = self.open_copy()
                if content != "a b":  # no value in any way: the script is not run, and the page asks the server
                    csr = self.injected(page, "_LOCAL_INJECT_CACHE.csr")
                    self.assertEqual(csr, rendering.replace("</", "<\\/"))
                self.shell.call("page.close", page=page)

    def test_a_document_may_have_any_name(self):
        name = "a<!--<script>"
        page = self.open_text(self.shell)
        made = self.shell.evaluate(page, "return (await fetch('/api/v3/office/files', {method: 'POST', body: %s})).json()" %
                                   json.dumps(json.dumps({"officeType": "w", "name": name})))
        self.assertIn(name, made["name"])
        self.assertEqual(self.shell.evaluate(page, CALL % ("create", json.dumps({"fileId": made["id"]})))["callstatus"], "ok")
        record = self.shell.evaluate(page, CALL % ("select", json.dumps({"localId": "", "fileId": made["id"]})))["result"]
        changed = CALL % ("update", json.dumps({"localId": record["localId"], "data": {"fname": name}}))
        self.assertEqual(self.shell.evaluate(page, changed)["callstatus"], "ok")
        page = self.open_text(self.shell, "/p/%s?officeType=w&localId=%s" % (made["id"], record["localId"]))
        self.assertIn(name, self.state(self.shell, page)["title"])
        self.assertIn(name, self.shell.evaluate(page, "return JSON.stringify(window.__INJECT__)"))


if __name__ == "__main__":
    unittest.main()
