"""The ways in which a document opens that are compared, and the shell that each needs.

Switches are read once a process, so every mode has a shell of its own, with its own caches.
"""

import json
import os

from devtools import DevTools, debugging_environment, free_port
from helio_shell import Shell, merged
from local_packages import plugin_members, switches
from opening import BadOpening, open_document

DOCUMENT = "100001"
PREVIEW_PAGE = 48
PATH = "/p/" + DOCUMENT + "?officeType=w"
INSTALL_WORKER = """
try {
  await navigator.serviceWorker.register('/sw.js');
  await navigator.serviceWorker.ready;
  return '';
} catch (error) {
  return error.message;
}"""
MAKE_LOCAL_COPY = """
return await new Promise((resolve, reject) => {
  setTimeout(() => reject(new Error('the cloud service did not answer')), 10000);
  window.__madeLocalCopy__ = (text) => resolve(JSON.parse(text));
  helio.call('docs.storage.info.create', {fileId: '%s', callback: '__madeLocalCopy__'}).catch(reject);
})"""
READ_DOCUMENT = """
const reply = await fetch('/api/v3/office/file/%s/preopen/word', {method: 'POST', body: '{}'});
const {content, 'window.__VLTENV__': {file_version}} = await reply.json();
return {content, file_version};"""
READ_RENDERING = "return document.querySelector('.ProseMirror').innerHTML"


class Mode:
    """A shell that opens the document in one way. `check` says what makes an opening one of this mode."""

    letter = label = ""
    page_type = 1

    def __init__(self, programs, server, package):
        self.server = server
        self.package = package
        self.shell = Shell(programs, host=self.host_members(), environment=self.environment())
        self.data_dir = self.shell.data_dir

    def host_members(self):
        return self.server.host_members()

    def environment(self):
        return {}

    def url(self):
        return self.server.url(PATH)

    def warm_up(self, opens):
        for _ in range(opens):
            open_document(self.shell, self.url())

    def open(self):
        report = open_document(self.shell, self.url(), self.before_close, self.page_type)
        problem = self.check(report)
        if problem:
            raise BadOpening(problem)
        return report

    def before_close(self, page, report):
        """For what a mode does to its shell between two openings."""

    def check(self, report):
        """None, or what makes this no opening of the mode."""
        return None

    def quit(self):
        self.shell.quit()


class ColdNetwork(Mode):
    letter, label = "a", "network, cold HTTP cache"

    def environment(self):
        self._port = free_port()
        return debugging_environment(self._port)

    def warm_up(self, opens):
        open_document(self.shell, self.url(), self.before_close)

    def before_close(self, page, report):
        with DevTools(self._port, "/p/") as tools:
            tools.call("Network.clearBrowserCache")

    def check(self, report):
        fetched = all(each["bodyFetched"] for each in report["scripts"])
        return None if fetched else "a script came from the HTTP cache"


class WarmNetwork(Mode):
    letter, label = "b", "network, warm HTTP cache, revalidated"

    def check(self, report):
        if any(each["bodyFetched"] for each in report["scripts"]):
            return "a script came from the network"
        return None if report["answeredBy"].get("page") == ["network"] else "the page was not revalidated"


class ServiceWorker(Mode):
    letter, label = "c", "service worker precache"

    def url(self):
        return super().url() + "&sw=1"

    def warm_up(self, opens):
        open_document(self.shell, self.url(), self._install)
        super().warm_up(opens)

    def _install(self, page, _report):
        problem = self.shell.evaluate(page, INSTALL_WORKER, timeout=120)
        if problem:
            raise BadOpening("no service worker: " + problem)

    def check(self, report):
        by_worker = report["worker"] and all(each["workerStart"] > 0 for each in report["scripts"])
        return None if by_worker else "the service worker did not answer"


class LocalPackage(Mode):
    letter, label = "d", "local package"
    options = {}

    def host_members(self):
        members = plugin_members({"w": self.package}, **switches(version_check=True, **self.options))
        return merged(super().host_members(), members)

    def check(self, report):
        by = report["answeredBy"]
        if "network" in by.get("page", []) + by.get("script", []):
            return "the front end came from the server"
        if by.get("page") != ["local"]:
            return "the page did not come from the package"
        return None if "network" not in by.get("preopen", []) else "the document was asked for over the network"


class Preloading(LocalPackage):
    letter, label = "e", "local package, preloading"
    options = {"preloading": True}


class DelayedLoad(LocalPackage):
    letter, label = "f", "local package, preloading, delayed load"
    options = {"preloading": True, "delay_ms": 150}


class LocalCopy(Preloading):
    letter, label = "g", "as (e), with a local copy of the document and its rendering"

    def __init__(self, programs, server, package):
        self._local_id = ""
        super().__init__(programs, server, package)

    def url(self):
        return super().url() + ("&localId=" + self._local_id if self._local_id else "")

    def host_members(self):
        self._local_data = os.path.join(os.path.dirname(os.path.abspath(self.server.access_log)), "local-data")
        user = {"loggedIn": True, "userId": "bench", "sessionKey": "key", "localDataDir": self._local_data}
        return merged(super().host_members(), {"user": user})

    def warm_up(self, opens):
        if not self._local_id:
            open_document(self.shell, self.url(), self._make_copy)
        super().warm_up(opens)

    def _make_copy(self, page, _report):
        made = self.shell.evaluate(page, MAKE_LOCAL_COPY % DOCUMENT)
        if made.get("callstatus") != "ok":
            raise BadOpening("no local copy could be made: %s" % made)
        self._local_id = made["result"]["localId"]
        folder = os.path.join(self._local_data, "quillfile", self._local_id)
        copy = self.shell.evaluate(page, READ_DOCUMENT % DOCUMENT)
        self._write(folder, made["result"].get("pkgSyncPath", "/sync"), "content.word", json.dumps(copy, ensure_ascii=False))
        rendering = self.shell.evaluate(page, READ_RENDERING)
        self._write(folder, made["result"].get("pkgCachePath", "/cache"), "csr.html", rendering)

    def _write(self, folder, place, name, text):
        directory = folder + place
        os.makedirs(directory, exist_ok=True)
        with open(os.path.join(directory, name), "w", encoding="utf-8") as file:
            file.write(text)

    def check(self, report):
        problem = super().check(report)
        if problem or (report["visibleFrom"], report["contentFrom"]) == ("injected", "injected"):
            return problem
        return "the text came from %s, the content from %s" % (report["visibleFrom"], report["contentFrom"])


class TakenOver(Preloading):
    letter, label = "h", "as (e), taken over by a front end that runs already"
    page_type = PREVIEW_PAGE

    def host_members(self):
        return merged(super().host_members(), {"features": {"PreCreateCloudDocsContainer": True}})

    def warm_up(self, opens):
        for _ in range(opens):
            self._then_wait(lambda: open_document(self.shell, self.url(), page_type=self.page_type))

    def open(self):
        return self._then_wait(super().open)

    def _then_wait(self, action):
        """The next front end is loaded before anybody else is measured."""
        since = self.shell.mark()
        try:
            return action()
        finally:
            self.shell.wait_for_log("kept for ", timeout=60, since=since)

    def check(self, report):
        by = report["answeredBy"]
        if "page" in by or report["requestedBeforeNotify"] is False:
            return "the page was loaded"
        return None if by.get("preopen") == ["local"] else "the document was asked for over the network"


MODES = [ColdNetwork, WarmNetwork, ServiceWorker, LocalPackage, Preloading, DelayedLoad, LocalCopy, TakenOver]
