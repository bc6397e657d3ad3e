"""The small world that a soak plays in: a documents server, a shell, the documents in it, and the words that are safe."""

import glob
import json
import os
import shutil
import subprocess
import tempfile

import waiting
from e2e_case import BUILD, PACKAGE_ZIPS, PROGRAMS, SITE, TYPE_TEXT
from helio_shell import DocumentsServer, RpcError, Shell, VirtualDisplay, merged
from local_packages import installed_packages, plugin_members, switches
from processes import service_process

DOCUMENTS = 8
FIRST_DOCUMENT = 300001
DISK_BYTES = 24 << 20
OFFLINE_EDITING = {"configCentre": {"60": {"60708": {
    "DOPOfflineEditMasterSwitch": True, "wordDOPSwitch": True, "vsDOPSwitch": True}}}}
OFFLINE = "Offline: changes are kept on this computer"

# "saved" or "kept" once the page says so of all that was typed; else an empty text.
SAFETY = """(() => {
    if (!window.__DOCS_STATE__) return '';
    if (__DOCS_STATE__.saved) return 'saved';
    return document.getElementById('save-state').textContent === %s ? 'kept' : '';
})()""" % json.dumps(OFFLINE)


class SmallDisk:
    """A directory on a file system of its own that can be full, where the machine lets us mount one."""

    def __init__(self, directory):
        self.directory = directory
        os.makedirs(directory)
        mount = ["mount", "-t", "tmpfs", "-o", "size=%d" % DISK_BYTES, "skyleaf-soak", directory]
        self.can_be_full = os.getuid() == 0 and subprocess.run(mount, capture_output=True, check=False).returncode == 0

    def fill(self):
        with open(os.path.join(self.directory, ".filler"), "wb", buffering=0) as file:
            for size in (1 << 16, 1):
                try:
                    while file.write(bytes(size)) == size:
                        pass
                except OSError:
                    pass

    def empty(self):
        os.unlink(os.path.join(self.directory, ".filler"))

    def unmount(self):
        if self.can_be_full:
            subprocess.run(["umount", "-l", self.directory], check=False)


class Clock:
    """What the documents server takes for the time of day, where the library that can change it is installed. Chromium does
    not run under it, so the shell's clock stays."""

    LIBRARIES = glob.glob("/usr/lib/*/faketime/libfaketimeMT.so.1")

    def __init__(self, directory):
        self._file = os.path.join(directory, "clock")
        self.can_be_set = bool(self.LIBRARIES)
        self.set(0)

    def set(self, seconds):
        """So many seconds beside the real time."""
        with open(self._file + ".new", "w", encoding="ascii") as file:
            file.write("%+ds\n" % seconds)
        os.replace(self._file + ".new", self._file)

    def environment(self):
        if not self.can_be_set:
            return {}
        return {"LD_PRELOAD": self.LIBRARIES[0], "FAKETIME_TIMESTAMP_FILE": self._file, "FAKETIME_NO_CACHE": "1",
                "FAKETIME_DONT_FAKE_MONOTONIC": "1",
                "ASAN_OPTIONS": os.environ.get("ASAN_OPTIONS", "") + ":verify_asan_link_order=0"}


class World:
    def __init__(self, dice, patience=1.0):
        """`dice` decides everything; `patience` stretches every limit, for builds that are slow."""
        self.dice = dice
        self.patience = patience
        self.directory = tempfile.mkdtemp(prefix="skyleaf-soak-")
        self.display = VirtualDisplay()
        self.server_disk = SmallDisk(os.path.join(self.directory, "documents"))
        self.local_disk = SmallDisk(os.path.join(self.directory, "local"))
        self.data_dir = os.path.join(self.directory, "data")
        self.clock = Clock(self.directory)
        self.server = DocumentsServer(PROGRAMS, self.server_disk.directory, SITE, ["--packages", PACKAGE_ZIPS],
                                      environment=self.clock.environment())
        self._make_documents()
        self.safe_words = {}  # word: what the page said of it
        self.shells = []
        self.start_shell()

    def limit(self, seconds):
        return seconds * self.patience

    def _make_documents(self):
        with open(os.path.join(self.server_disk.directory, "100001.json"), encoding="utf-8") as file:
            document = json.load(file)
        for number in range(FIRST_DOCUMENT, FIRST_DOCUMENT + DOCUMENTS):
            document.update(id=str(number), name="Soak %d.docx" % number)
            with open(os.path.join(self.server_disk.directory, "%d.json" % number), "w", encoding="utf-8") as file:
                json.dump(document, file)

    # The shell

    @property
    def user(self):
        return {"loggedIn": True, "userId": "u", "sessionKey": "k", "localDataDir": self.local_disk.directory,
                "cacheRoot": os.path.join(self.directory, "cache")}

    def start_shell(self):
        members = plugin_members(installed_packages(BUILD), **switches(preloading=True, version_check=True, proxy_reset=True))
        members = merged(merged(members, OFFLINE_EDITING), {"user": self.user})
        directory = os.path.join(self.directory, "shell-%d" % len(self.shells))
        os.makedirs(directory)
        self.shell = Shell(PROGRAMS, host=self.server.host_members(**members), data_dir=self.data_dir, directory=directory,
                           environment={"DISPLAY": self.display.name})
        self.shells.append(self.shell)
        self.shell.call("shell.state", timeout=self.limit(30))
        return self.shell

    @property
    def service(self):
        return service_process(self.data_dir)

    # Pages

    def state(self, page):
        return self.shell.call("page.state", page=page)

    def pages(self):
        return [page for window in self.shell.call("shell.state")["windows"] for page in window["pages"]]

    def documents(self):
        """The pages that show documents of the soak: {page: document}."""
        found = {}
        for page in self.pages():
            state = self.state(page)
            for document in range(FIRST_DOCUMENT, FIRST_DOCUMENT + DOCUMENTS):
                if "/p/%d" % document in (state["url"] or state["notifyUrl"]):
                    found[page] = document
        return found

    def begin(self, text, page_type=1):
        page = self.shell.call("page.create", type=page_type)["page"]
        since = self.shell.mark()
        self.shell.call("page.notify", page=page, text=text)
        self.shell.call("page.load", page=page)
        return page, since

    def open(self, document):
        page, since = self.begin(self.server.url("/p/%d?officeType=w" % document))
        self.ready(page, since)
        return page

    def ready(self, page, since):
        self.shell.wait_for_page(page, "webFileReady", since=since, timeout=self.limit(60))

    def close(self, page):
        since = self.shell.mark()
        self.shell.call("page.close", page=page)
        self.shell.wait_for_page(page, "closed", since=since, timeout=self.limit(30))

    def bring_back(self, page):
        """Shows the page's tab; a document that is not loaded, or is just being loaded, is waited for."""
        self.shell.call("tab.select", page=page)
        if not self.state(page)["loaded"] or self.state(page)["released"]:
            self.shell.call("page.load", page=page)
        self.until_page(page, "window.__DOCS_STATE__ && __DOCS_STATE__.editable", 60)

    def until(self, is_done, what, seconds):
        return waiting.until(is_done, what, self.limit(seconds))

    def until_page(self, page, expression, seconds):
        last = None

        def evaluate():
            nonlocal last
            try:
                last = self.shell.evaluate(page, "return " + expression, timeout=self.limit(20))
            except RpcError as error:  # the document is just being replaced
                last = str(error)
                return None
            return last
        return self.until(evaluate, lambda: "%s in page %s, the latest: %s" % (expression, page, str(last)[:300]), seconds)

    # Words

    def type_word(self, page):
        """Types a word that occurs nowhere else; the page has taken it afterwards. Returns the word."""
        word = "w%09d" % self.dice.randrange(10**9)
        self.shell.evaluate(page, TYPE_TEXT % json.dumps(" " + word), timeout=self.limit(20))
        return word

    def wait_until_safe(self, page, words, seconds=60, wanted=("saved", "kept")):
        """Waits until the page says that all is saved, or kept on this computer; the words count from then on."""
        said = self.until_page(page, "(safety => %s.includes(safety) && safety)(%s)" % (json.dumps(list(wanted)), SAFETY), seconds)
        for word in words:
            self.safe_words[word] = said
        return said

    def kept_texts(self):
        """All that is in journals on this computer and, looked at afterwards, in documents of the server: a word may be on
        its way from the first to the second."""
        texts = []
        for pattern in (os.path.join(self.local_disk.directory, "**", "unsent*"), os.path.join(self.server_disk.directory, "*.json")):
            for path in glob.glob(pattern, recursive=True):
                try:
                    with open(path, encoding="utf-8", errors="replace") as file:
                        texts.append(file.read())
                except OSError:
                    continue  # it was replaced meanwhile; its words are in what replaced it
        return "\n".join(texts)

    # End

    def end(self):
        status = self.shell.quit()
        self.server.stop()
        self.display.stop()
        self.server_disk.unmount()
        self.local_disk.unmount()
        shutil.rmtree(self.directory, ignore_errors=True)
        return status
