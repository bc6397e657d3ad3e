"""What the end-to-end tests share: one documents server a class, and shells that lead to it."""

import os
import shutil
import tempfile
import time
import unittest
from urllib.parse import parse_qs, urlsplit

from helio_shell import DocumentsServer, Shell, merged

BUILD = os.environ["SKYLEAF_BUILD"]
PROGRAMS = os.path.join(BUILD, "bin")
SITE = os.path.join(BUILD, "webapp", "site")
PACKAGE_ZIPS = os.path.join(BUILD, "webapp", "package-zips")

TEXT_DOCUMENT = "/p/100001?officeType=w"
TABLE_DOCUMENT = "/p/100002?officeType=s"


def query(url, name):
    """The value of a query item; None when absent."""
    values = parse_qs(urlsplit(url).query, keep_blank_values=True).get(name)
    return values[0] if values else None


class EndToEndCase(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.directory = tempfile.mkdtemp(prefix="skyleaf-e2e-")
        cls.addClassCleanup(shutil.rmtree, cls.directory, ignore_errors=True)
        cls.documents = os.path.join(cls.directory, "documents")
        os.makedirs(cls.documents)
        cls.server = DocumentsServer(PROGRAMS, cls.documents, SITE, ["--packages", PACKAGE_ZIPS])
        cls.addClassCleanup(cls.server.stop)

    def start_shell(self, host=None, **options):
        shell = Shell(PROGRAMS, host=merged(self.server.host_members(), host or {}), **options)
        self.addCleanup(shell.quit)
        return shell

    def create(self, shell, page_type=1):
        return shell.call("page.create", type=page_type)["page"]

    def open(self, shell, path=TEXT_DOCUMENT, page_type=1):
        """A page that shows a document of the server, reported as ready."""
        page = self.create(shell, page_type)
        since = shell.mark()
        shell.call("page.notify", page=page, text=self.server.url(path))
        shell.call("page.load", page=page)
        shell.wait_for_page(page, "webFileReady", timeout=60, since=since)
        return page

    def state(self, shell, page):
        return shell.call("page.state", page=page)

    def wait_ready_again(self, shell, page, since):
        shell.wait_for_page(page, "webFileReady", timeout=60, since=since)
        return self.state(shell, page)

    def wait_for_url(self, shell, page, part, timeout=30):
        """Waits until the page's browser shows a URL that holds `part`."""
        deadline = time.monotonic() + timeout
        while part not in self.state(shell, page)["url"]:
            self.assertLess(time.monotonic(), deadline, "never at " + part)
            time.sleep(0.05)
