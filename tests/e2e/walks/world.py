"""The world of a walk: a documents server, one shell at a time, documents with a marker each, and what every page has to show."""

import collections
import glob
import json
import os
import re
import shutil
import tempfile

import waiting
from e2e_case import BUILD, PACKAGE_ZIPS, PROGRAMS, SITE, own_display
from helio_shell import DocumentsServer, RpcError, Shell, merged
from local_packages import copy_package, installed_packages, plugin_members, switches

TEXTS = [str(number) for number in range(400001, 400006)]
TABLES = [str(number) for number in range(400011, 400013)]
SEEDS = {"w": "100001", "s": "100002"}
MARKER = re.compile(r"walkmark(\d+)")
# What of a page says which document it is; nothing of it is waited for inside the page.
LOOK = """
    const state = window.__DOCS_STATE__ || {};
    return {
        fileId: state.fileId, editable: Boolean(state.editable), kind: state.officeType,
        text: document.body ? document.body.innerText : '',
        all: document.documentElement.outerHTML + JSON.stringify(window.__INJECT__ || null),
    };"""
LIMIT = 45
STARTING_VERSION, UPGRADE = "1.1.0", "2.0.0"


def marker(document):
    return "walkmark" + document


def markers(text):
    return set(MARKER.findall(text))


def kind_of(document):
    return "s" if document in TABLES else "w"


class Place:
    """A page, and the document that it was asked for last; None for a new one whose id is not known yet."""

    def __init__(self, page):
        self.page = page
        self.document = None
        self.behind = []  # where going back leads to
        self.is_released = False
        self.is_hurried = False  # not waited for yet
        self.is_restarting = False


class World:
    def __init__(self, dice, patience=1.0):
        """`dice` decides everything; `patience` stretches every limit, for builds that are slow."""
        self.dice = dice
        self.patience = patience
        self.directory = tempfile.mkdtemp(prefix="skyleaf-walk-")
        self.documents = os.path.join(self.directory, "documents")
        os.makedirs(self.documents)
        self.server = DocumentsServer(PROGRAMS, self.documents, SITE, ["--packages", PACKAGE_ZIPS])
        self.contents = {}  # of each document that is known, as it was left by its own page
        self.new_wanted = 0  # new documents that were asked for, and are not known yet
        self.words = 0
        self.loads = collections.Counter()  # of each document, as opens of their own
        self._make_documents()
        self.shells = []
        self.shell = None
        self.places = []
        self.data_dir = None

    def _make_documents(self):
        text = {"type": "doc", "content": [{"type": "paragraph", "content": [{"type": "text", "text": ""}]}]}
        for kind, seed in SEEDS.items():
            with open(os.path.join(self.documents, seed + ".json"), encoding="utf-8") as file:
                document = json.load(file)
            for number in TABLES if kind == "s" else TEXTS:
                document.update(id=number, name="Walk %s.%s" % (number, "xlsx" if kind == "s" else "docx"))
                if kind == "s":
                    document["content"]["sheets"][0]["name"] = marker(number)  # rows are drawn in the current tab only
                else:
                    text["content"][0]["content"][0]["text"] = marker(number)
                    document["content"] = text
                with open(os.path.join(self.documents, number + ".json"), "w", encoding="utf-8") as file:
                    json.dump(document, file)
        self.contents = {number: document["content"] for number, document in self.stored().items()}

    def stored(self):
        """The server's documents."""
        found = {}
        for path in glob.glob(os.path.join(self.documents, "*.json")):
            with open(path, encoding="utf-8") as file:
                document = json.load(file)
            found[document["id"]] = document
        return found

    # Shells

    @property
    def user(self):
        return {"loggedIn": True, "userId": "u", "sessionKey": "k", "localDataDir": os.path.join(self.data_dir, "local")}

    def start_shell(self):
        """The next shell, with switches of its own. Returns what they are."""
        number = len(self.shells)
        directory = os.path.join(self.directory, "shell-%d" % number)
        os.makedirs(directory)
        if self.data_dir is None or self.dice.random() < 0.5:
            self.data_dir = os.path.join(directory, "data")
        self.packages = os.path.join(directory, "packages")
        os.makedirs(self.packages)
        self.tell_server(fault={}, versions={})
        options = {name: self.dice.random() < 0.5 for name in ("preloading", "version_check", "proxy_reset", "offline_editing")}
        options["delay_ms"] = self.dice.choice((None, 150, 1500))
        prepares = self.dice.random() < 0.5
        installed = installed_packages(BUILD)
        self.package = copy_package(installed["w"], self.packages, STARTING_VERSION)
        members = plugin_members({"w": self.package, "s": installed["s"]}, **switches(**options))
        extra = {"features": {"PreCreateCloudDocsContainer": prepares}, "user": self.user}
        if self.dice.random() < 0.5:
            extra["plugins"] = {"quillword": {"upgradePath": copy_package(installed["w"], self.packages, UPGRADE)}}
        self.shell = Shell(PROGRAMS, host=self.server.host_members(**merged(members, extra)), data_dir=self.data_dir,
                           directory=directory, environment={"DISPLAY": own_display().name})
        self.shells.append(self.shell)
        self.places = []
        return "prepared browsers %s, upgrade %s, %s" % (prepares, "plugins" in extra, options)

    def end_shell(self):
        """Closes all pages, then the shell; returns its status."""
        for place in list(self.places):
            self.close(place)
            for other in self.places:  # one of them came to the front
                self.note_return(other)
        return self.shell.quit(timeout=self.limit(60))

    def end(self):
        if self.shell:
            self.shell.quit()
        self.server.stop()
        shutil.rmtree(self.directory, ignore_errors=True)

    def tell_server(self, **resources):
        for resource, body in resources.items():
            self.server.control(resource, body)

    # Pages

    def state(self, place):
        return self.shell.call("page.state", page=place.page)

    def url(self, document, names_kind=None):
        """The address of a document; of a new one for None. The kind is named, or not, as the dice say."""
        if document is None:
            return self.server.url("/office/new/w")
        names_kind = self.dice.random() < 0.7 if names_kind is None else names_kind
        return self.server.url("/p/" + document + ("?officeType=" + kind_of(document) if names_kind else ""))

    def add_place(self, page_type):
        place = Place(self.shell.call("page.create", type=page_type)["page"])
        self.places.append(place)
        return place

    def close(self, place):
        since = self.shell.mark()
        self.shell.call("dialog.answer", dialog="messageBox", value="discard")
        self.shell.call("page.close", page=place.page)
        self.shell.wait_for_page(place.page, "closed", since=since, timeout=self.limit(LIMIT))
        self.shell.call("dialog.answer", dialog="messageBox", value=None)
        self.places.remove(place)

    def note_return(self, place):
        """A released page comes back by itself when its tab comes to the front, only then."""
        if not place.is_released:
            return
        state = self.state(place)
        if state["loaded"] and not state["released"]:
            assert state["current"], "page %d came back, and nobody sees it" % place.page
            self.loads[place.document] += 1
            place.is_released = False

    def limit(self, seconds):
        return seconds * self.patience

    def until(self, is_done, what):
        return waiting.until(is_done, what, self.limit(LIMIT))

    def look(self, place):
        """What the page shows; an error's text while the document is just being replaced."""
        try:
            return self.shell.evaluate(place.page, LOOK, timeout=self.limit(LIMIT))
        except RpcError as error:
            return str(error)

    def settle(self, place):
        """Waits until the page shows the document that it was asked for last. Returns what it shows."""
        seen = ""

        def is_shown():
            nonlocal seen
            seen = self.look(place)
            if isinstance(seen, str) or not seen["editable"]:
                return False
            if place.document is None:
                return seen["fileId"] and seen["fileId"] not in self.contents
            is_complete = place.document not in self.marked or marker(place.document) in seen["text"]
            return seen["fileId"] == place.document and is_complete
        self.until(is_shown, lambda: "page %d shows %s, which was asked for last; it is at %s and shows %s" % (
            place.page, place.document or "a new document", self.state(place)["url"],
            {**seen, "all": "…"} if isinstance(seen, dict) else seen))
        if place.document is None:
            place.document = seen["fileId"]
            self.new_wanted -= 1
            self.contents[place.document] = self.stored()[place.document]["content"]
        place.is_hurried = place.is_restarting = False
        return seen

    def settle_at(self, place, document):
        """Waits until the page shows that document, which is on the way to the one that it was asked for."""
        wanted, place.document = place.document, document
        self.settle(place)
        place.document = wanted

    @property
    def marked(self):
        """The documents that have their marker."""
        return {number for number, content in self.contents.items() if markers(json.dumps(content))}
