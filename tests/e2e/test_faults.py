"""Whatever goes wrong with the server's answers, the package or the cloud service: the document opens and the log says why."""

import os
import random
import shutil
import signal
import unittest

from e2e_case import BUILD, TEXT_DOCUMENT
from local_packages import installed_packages, switches
from package_case import PackageCase
from processes import service_process

PREOPEN = "/api/v3/office/file/100001/preopen"
ENV_CONFIG = "/office-config/100001"
VERSION_CHECK = "/api/v3/office/prefetch/vcs"
PACKAGE_INFO = "/api/quill/office/prefetch/config"

WRONG_TYPES = '{"result": 7, "data": {}, "client_version": [], "office_type": 3, "config": "x", "window.__VLTENV__": []}'

# What the server does to a request: each is done to the add-on's own one, the page asks again where it needs to.
SERVER_FAULTS = {
    "500": {"status": 500},
    "302": {"status": 302, "location": "https://elsewhere.skyleaf.test/"},
    "garbage": {"body": "{\"result\": \"ok"},
    "wrong types": {"body": WRONG_TYPES},
    "50 MB": {"size": 50 * 1024 * 1024},
    "late": {"delayMs": 7000},
    "cut": {"cutAfter": 20},
    "reset": {"reset": True},
}


class ServerAnswersTest(PackageCase):
    def rules(self, faults, times=1):
        return {prefix: dict(fault, times=times) for prefix, fault in faults.items()}

    def test_answers_of_the_server(self):
        shell = self.start_with(installed_packages(BUILD))
        for name, fault in SERVER_FAULTS.items():
            for prefix in (PREOPEN, ENV_CONFIG, PACKAGE_INFO):
                with self.subTest(fault=name, request=prefix):
                    self.control("fault", self.rules({prefix: fault}))
                    page = self.open_text(shell)
                    self.assert_readable(shell, page)
                    shell.call("page.close", page=page)
        for text in ("replyName: open_file, request error HTTPStatusCode: 500",
                     "replyName: open_file, request error HTTPStatusCode: 302",
                     "replyName: get_env_config, request error HTTPStatusCode: 500"):
            shell.wait_for_log(text)


class VersionCheckTest(PackageCase):
    def test_version_check_that_is_late_or_nonsense(self):
        for name, fault in SERVER_FAULTS.items():
            with self.subTest(fault=name):
                self.control("fault", {VERSION_CHECK: fault})
                shell = self.start_with(installed_packages(BUILD), version_check=True, delay_ms=150)
                page = self.open_text(shell)
                self.assert_readable(shell, page)
                # A document whose kind is not known yet: the kind is asked from the server.
                page = self.open_text(shell, "/p/100002")
                self.assert_readable(shell, page, "Budget")
                shell.quit()


class BrokenPackageTest(PackageCase):
    def test_package_that_is_broken(self):
        def spoil(relative, text):
            def change(package):
                with open(os.path.join(package, relative), "w", encoding="utf-8") as file:
                    file.write(text)
            return change

        def remove(relative):
            return lambda package: (shutil.rmtree if os.path.isdir(os.path.join(package, relative)) else os.remove)(
                os.path.join(package, relative))

        outside = '{"pc": ["/../../../../../../etc/passwd", "/dist_langs/../../outside", 3, "", null]}'
        spoilers = {
            "preload list garbage": spoil("preload-file.json", "{\"pc\": "),
            "preload list outside": spoil("preload-file.json", outside),
            "preload list missing": remove("preload-file.json"),
            "inject list garbage": spoil("inject.json", "nonsense"),
            "inject list missing": remove("inject.json"),
            "no marker": spoil("inject.json", "[1, \"_UNKNOWN\"]"),
            "page missing": remove("dist_langs"),
            "scripts missing": remove("weboffice-static"),
        }
        for preloading in (False, True):
            for name, change in spoilers.items():
                with self.subTest(name=name, preloading=preloading):
                    package = self.package("1.0.0")
                    self.addCleanup(shutil.rmtree, package, ignore_errors=True)
                    change(package)
                    shell = self.start_with({"w": package}, preloading=preloading)
                    try:
                        self.assert_readable(shell, self.open_text(shell))
                    finally:
                        shell.quit()
                        shutil.rmtree(package)

    def test_package_that_goes_between_decision_and_request(self):
        for preloading in (False, True):
            package = self.package("1.0.0")
            shell = self.start_with({"w": package}, preloading=preloading)
            page = self.create(shell)
            since = shell.mark()
            shell.call("page.notify", page=page, text=self.server.url(TEXT_DOCUMENT))
            shutil.rmtree(package)
            shell.call("page.load", page=page)
            shell.wait_for_page(page, "webFileReady", since=since)
            self.assert_readable(shell, page)
            shell.quit()


class FaultTest(PackageCase):
    def test_cloud_service_killed_during_a_query(self):
        shell = self.start_with(installed_packages(BUILD))
        seen = set()
        for _ in range(2):
            self.open_text(shell)  # starts it
            process = self.until(lambda: service_process(shell.data_dir), "the cloud service runs")
            seen.add(process)
            os.kill(process, signal.SIGSTOP)  # it takes the query and does not answer
            page, since = self.begin(shell, self.server.url(TEXT_DOCUMENT))
            os.kill(process, signal.SIGKILL)
            shell.wait_for_page(page, "webFileReady", since=since)
            self.assert_readable(shell, page)
        self.assertEqual(len(seen), 2, "it was started again")

    def test_settings_corrupted_by_hand(self):
        shell = self.start_with(installed_packages(BUILD), version_check=True)
        self.open_text(shell)
        data_dir = os.path.join(self.packages, "kept")
        shutil.copytree(shell.data_dir, data_dir, ignore=shutil.ignore_patterns("*.sock"))
        shell.quit()
        damaged = 0
        for folder, _, files in os.walk(data_dir):
            for name in files:
                if name.endswith((".conf", ".store", ".sqlite", ".db")) and "ncloudpage" not in folder:
                    with open(os.path.join(folder, name), "r+b") as file:
                        file.write(b"\x00\xff[nonsense=")
                    damaged += 1
        self.assertGreater(damaged, 1)
        shell = self.start_shell(host={"plugins": {"quillword": {"path": installed_packages(BUILD)["w"]}},
                                       **switches(version_check=True)}, data_dir=data_dir)
        self.assert_readable(shell, self.open_text(shell))

    def test_configuration_centre_without_the_items(self):
        shell = self.start_shell(host={"plugins": {"quillword": {"path": installed_packages(BUILD)["w"]}}})
        page = self.open_text(shell)
        self.assertIn(("set_switch_checking", "switch_off"), self.steps(shell))
        self.assert_readable(shell, page)


class RandomFaultsTest(PackageCase):
    """Many opens in a row with random faults; SKYLEAF_SOAK_OPENS says how many, SKYLEAF_SOAK_SEED which."""

    def test_every_open_ends_in_a_readable_document(self):
        opens = int(os.environ.get("SKYLEAF_SOAK_OPENS", "20"))
        seed = int(os.environ.get("SKYLEAF_SOAK_SEED", "1"))
        choose = random.Random(seed)
        package = self.package("1.0.0")
        spare = self.packages + "-spare"
        shutil.copytree(package, spare)
        self.addCleanup(shutil.rmtree, spare, ignore_errors=True)
        shell = self.start_with({"w": package}, preloading=True, version_check=True, proxy_reset=True)
        for number in range(opens):
            what = choose.choice(["none", "server", "server", "version", "package", "service"])
            detail = ""
            self.control("fault", {})
            self.control("versions", {})
            if what == "server":
                prefix = choose.choice([PREOPEN, ENV_CONFIG, VERSION_CHECK])
                detail = choose.choice([name for name in SERVER_FAULTS if name != "late" or prefix != PREOPEN])
                self.control("fault", {prefix: dict(SERVER_FAULTS[detail], times=1)})
            elif what == "version":
                detail = choose.choice(["1.0.0", "9.9.9"])
                self.control("versions", {"word": {"front_ver": detail}})
            elif what == "package":
                shutil.rmtree(package, ignore_errors=True)
            elif what == "service":
                process = service_process(shell.data_dir)
                if process:
                    os.kill(process, signal.SIGKILL)
            with self.subTest(number=number, what=what, detail=detail, seed=seed):
                page = self.open_text(shell)
                self.assert_readable(shell, page)
                shell.call("page.close", page=page)
            if not os.path.isdir(package):
                shutil.copytree(spare, package)
        self.assertEqual(shell.quit(), 0)


if __name__ == "__main__":
    unittest.main()
