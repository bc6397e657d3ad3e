"""What the end-to-end tests of local packages share."""

import os
import shutil

from e2e_case import BUILD, TEXT_DOCUMENT, EndToEndCase
from helio_shell import merged
from local_packages import copy_package, installed_packages, plugin_members, switches
from processes import service_process

__all__ = ["PackageCase", "service_process"]

FRONT_VERSION = "return document.documentElement.dataset.frontVersion"


class PackageCase(EndToEndCase):
    def setUp(self):
        self.control("fault", {})
        self.control("versions", {})
        self.packages = os.path.join(self.directory, self.id().rsplit(".", 1)[1])
        os.makedirs(self.packages)
        self.addCleanup(shutil.rmtree, self.packages, ignore_errors=True)

    def control(self, resource, body):
        """Tells the documents server what to do from now on."""
        self.server.control(resource, body)

    def package(self, version, kind="w"):
        """A package of its own, of that version."""
        return copy_package(installed_packages(BUILD)[kind], self.packages, version)

    def start_with(self, paths, members=None, data_dir=None, **options):
        """A shell that serves documents from the packages; the options are those of `switches`."""
        host = merged(plugin_members(paths, **switches(**options)), members or {})
        return self.start_shell(host=host, data_dir=data_dir)

    def steps(self, shell, since=0):
        """The steps of the decisions so far: [(step, error)]."""
        return [(each.params["fields"]["step_name"], each.params["fields"]["error_msg"])
                for each in shell.notifications()[since:]
                if each.method == "event" and each.params["name"] == "docs_localproxy_dop_result"]

    def answers(self, shell, page, part):
        """Who answered the page's requests whose URL holds `part`."""
        return [each.params["by"] for each in shell.notifications("request")
                if each.params["page"] == page and part in each.params["url"]]

    def page_requests(self, count):
        """The browser's requests for the front end among the server's, from number `count` on."""
        return [each for each in self.server.requests()[count:]
                if each["target"].startswith(("/p/", "/l/", "/hybrid/", "/weboffice-static/", "/dist_langs/"))]

    def assert_readable(self, shell, page, text="Welcome"):
        self.until_text(shell, page, text)

    def front_version(self, shell, page):
        return shell.evaluate(page, FRONT_VERSION)

    def open_text(self, shell, path=TEXT_DOCUMENT):
        return self.open(shell, path)
