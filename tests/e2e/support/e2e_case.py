"""What the end-to-end tests share: one documents server a class, and shells that lead to it.

A test waits for what it means, with `until` or the `wait_for…` of the shell; none sleeps. Each test program has a display of
its own. What a failed test's shells wrote and showed is kept in `failures` of the build.
"""

import atexit
import contextlib
import functools
import json
import os
import shutil
import tempfile
import time
import unittest
from urllib.parse import parse_qs, urlsplit

import evidence
import waiting
from helio_shell import DEFAULT_TIMEOUT, DocumentsServer, RpcError, Shell, VirtualDisplay, merged

BUILD = os.environ["SKYLEAF_BUILD"]
PROGRAMS = os.path.join(BUILD, "bin")
SITE = os.path.join(BUILD, "webapp", "site")
PACKAGE_ZIPS = os.path.join(BUILD, "webapp", "package-zips")
FAILURES = os.path.join(BUILD, "failures")

TEXT_DOCUMENT = "/p/100001?officeType=w"
TABLE_DOCUMENT = "/p/100002?officeType=s"

# Types at the end of the first paragraph, as a script; ends when the editor has taken it. Only then "saved" means this text.
TYPE_TEXT = """
    const editor = document.querySelector('.ProseMirror');
    editor.focus();
    document.getSelection().selectAllChildren(editor.querySelector('p'));
    document.getSelection().collapseToEnd();
    const typed = %s;
    document.execCommand('insertText', false, typed);
    while (!editor.pmViewDesc.node.textContent.includes(typed.trim())) await new Promise(r => setTimeout(r, 5));
"""
UNTIL_SAVED = "while (!window.__DOCS_STATE__.saved) await new Promise(r => setTimeout(r, 20));"


def query(url, name):
    """The value of a query item; None when absent."""
    values = parse_qs(urlsplit(url).query, keep_blank_values=True).get(name)
    return values[0] if values else None


@functools.lru_cache(None)
def own_display():
    """The display of this test program."""
    display = VirtualDisplay()
    atexit.register(display.stop)
    return display


class EndToEndCase(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.directory = tempfile.mkdtemp(prefix="skyleaf-e2e-")
        cls.addClassCleanup(shutil.rmtree, cls.directory, ignore_errors=True)
        cls.documents = os.path.join(cls.directory, "documents")
        os.makedirs(cls.documents)
        cls.server = DocumentsServer(PROGRAMS, cls.documents, SITE, ["--packages", PACKAGE_ZIPS])
        cls.addClassCleanup(cls.server.stop)

    def run(self, result=None):
        self._shells = []
        self._displays = []
        self._has_evidence = False
        return super().run(result)

    @property
    def name(self):
        return ".".join(self.id().split(".")[-2:])

    # What a failure leaves

    @contextlib.contextmanager
    def subTest(self, *arguments, **params):
        with super().subTest(*arguments, **params):
            try:
                yield
            except Exception:
                self._keep_evidence()
                raise

    def _callTestMethod(self, method):
        try:
            super()._callTestMethod(method)
        except unittest.SkipTest:
            raise
        except BaseException:
            self._keep_evidence()
            raise

    def _keep_evidence(self):
        if self._has_evidence:
            return
        self._has_evidence = True
        displays = self._displays or ([own_display()] if self._shells else [])
        evidence.keep(os.path.join(FAILURES, self.name), self.name, self._shells, [self.server], displays)

    # Shells and pages

    def start_display(self):
        """A display of the test's own, for one that looks at a clipboard or types."""
        display = VirtualDisplay()
        self._displays.append(display)
        self.addCleanup(display.stop)
        return display

    def start_shell(self, host=None, programs=PROGRAMS, environment=None, **options):
        """A shell of this test; it has to end well."""
        directory = tempfile.mkdtemp(prefix="shell-", dir=self.directory)
        environment = {"DISPLAY": own_display().name, **(environment or {})}
        shell = Shell(programs, host=merged(self.server.host_members(), host or {}), environment=environment,
                      directory=directory, **options)
        self._shells.append(shell)
        self.addCleanup(self._end, shell, directory)
        return shell

    def _end(self, shell, directory):
        try:
            was_running = shell.is_running
            status = shell.quit()
            if was_running and status != 0:
                self._keep_evidence()
                self.fail("the shell ended with status %s: %s" % (status, shell.errors()))
        finally:
            shutil.rmtree(directory, ignore_errors=True)

    def create(self, shell, page_type=1):
        return shell.call("page.create", type=page_type)["page"]

    def begin(self, shell, text, page_type=1):
        """A page that begins to show what the text says, and where its notifications begin."""
        page = self.create(shell, page_type)
        since = shell.mark()
        shell.call("page.notify", page=page, text=text)
        shell.call("page.load", page=page)
        return page, since

    def open(self, shell, path=TEXT_DOCUMENT, page_type=1):
        """A page that shows a document of the server, reported as ready."""
        page, since = self.begin(shell, self.server.url(path), page_type)
        shell.wait_for_page(page, "webFileReady", since=since)
        return page

    def state(self, shell, page):
        return shell.call("page.state", page=page)

    def type_text(self, shell, page, text, then=""):
        shell.evaluate(page, TYPE_TEXT % json.dumps(text) + then)

    # Waiting

    def until(self, is_done, what, timeout=DEFAULT_TIMEOUT):
        """Waits until `is_done()` is true, and returns its value; fails with what was waited for."""
        return waiting.until(is_done, what, timeout)

    def outlast(self, seconds):
        """Lets a time limit of the product pass, one that the test has set."""
        time.sleep(seconds)

    def until_page(self, shell, page, expression, timeout=DEFAULT_TIMEOUT):
        """Waits until the expression is true in the page's document, whichever that becomes. Returns its value."""
        last = None

        def evaluate():
            nonlocal last
            try:
                last = shell.evaluate(page, "return %s" % expression)
            except RpcError as error:  # the document is just being replaced
                last = str(error)
                return None
            return last
        return self.until(evaluate, lambda: "%s in page %s; the latest: %s" % (expression, page, str(last)[:400]), timeout)

    def until_text(self, shell, page, text):
        """Waits until the page shows the text."""
        shown = ""

        def is_shown():
            nonlocal shown
            try:
                shown = shell.evaluate(page, "return document.body ? document.body.innerText : ''")
            except RpcError as error:  # the document is just being replaced
                shown = str(error)
            return text in shown
        self.until(is_shown, lambda: "%r in page %s, which shows: %s" % (text, page, shown[:400]))
        return shown

    def until_request(self, is_wanted, what, count=0):
        """Waits until the server logged such a request after its first `count`."""
        return self.until(lambda: [each for each in self.server.requests()[count:] if is_wanted(each)],
                          "request of the server: " + what)

    def wait_ready_again(self, shell, page, since):
        shell.wait_for_page(page, "webFileReady", since=since)
        return self.state(shell, page)

    def wait_for_url(self, shell, page, part, timeout=DEFAULT_TIMEOUT):
        """Waits until the page's browser shows a URL that holds `part`."""
        self.until(lambda: part in self.state(shell, page)["url"],
                   lambda: "%r in the address of page %s, which is %s" % (part, page, self.state(shell, page)["url"]), timeout)
