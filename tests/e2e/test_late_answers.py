"""Answers that come when the document that asked is gone: the next document of the tab never gets them."""

import glob
import json
import os
import signal
import unittest

from e2e_case import BUILD
from local_packages import installed_packages
from package_case import PackageCase, service_process

# Every document has functions of the same names.
LISTEN = """
window.got = [];
for (const name of ['onInfo', 'onPrefetch', 'onNetwork', 'onFile'])
  window[name] = (text) => got.push([name, text]);
"""
# What is asked while the cloud service stands still and the documents server is slow.
ASK = """
helio.call('docs.storage.info.select', {localId: '', fileId: '100001', callback: 'onInfo'}).catch(() => {});
helio.call('docs.storage.info.download', {localId: %s, serverAddress: location.origin + '/slow', relativePos: 'slow', callback: 'onFile'});
helio.call('webview.preload.prefetch', {key: 'first', dataCallbackName: 'onPrefetch', timeout: 2500});
helio.call('checkNetwork', {callback: 'onNetwork'});
helio.call('getRoamingMode').then((reply) => (window.name = 'answered'));
return 1"""
# An answer of its own for each way; those of the first document are due before.
ASK_AGAIN = """
const until = async (name, start) => {
  start();
  while (!got.some((each) => each[0] === name)) await new Promise((r) => setTimeout(r, 20));
};
await until('onPrefetch', () => helio.call('webview.preload.prefetch', {key: 'second', dataCallbackName: 'onPrefetch', timeout: 3000}));
await until('onNetwork', () => helio.call('checkNetwork', {callback: 'onNetwork'}));
await until('onInfo', () => helio.call('docs.storage.info.select', {localId: '', fileId: 'nobody', callback: 'onInfo'}));
return got"""


class LateAnswersTest(PackageCase):
    def start(self):
        self.local_data = os.path.join(self.packages, "local")
        self.data_dir = os.path.join(self.packages, "data")
        user = {"loggedIn": True, "userId": "u", "sessionKey": "k", "localDataDir": self.local_data}
        return self.start_with(installed_packages(BUILD), {"user": user}, data_dir=self.data_dir)

    def stop_service(self):
        """The cloud service stands still until `continue_service`."""
        self.service = service_process(self.data_dir)
        self.assertIsNotNone(self.service)
        os.kill(self.service, signal.SIGSTOP)
        self.addCleanup(self.continue_service)
        self.until(self.is_service_stopped, "the service stands still")

    def is_service_stopped(self):
        """A signal reaches the threads one after the other."""
        states = []
        for path in glob.glob("/proc/%d/task/*/stat" % self.service):
            with open(path, encoding="utf-8", errors="replace") as file:
                states.append(file.read().rpartition(")")[2].split()[0])
        return set(states) == {"T"}

    def continue_service(self):
        if self.service:
            os.kill(self.service, signal.SIGCONT)
        self.service = None

    def made_record(self, shell, page):
        return shell.evaluate(page, LISTEN + """
            helio.call('docs.storage.info.create', {fileId: '100001', callback: 'onInfo'});
            while (!got.length) await new Promise((r) => setTimeout(r, 20));
            return JSON.parse(got[0][1]).result.localId""")

    def late_answers(self, shell, page, leave):
        local_id = self.made_record(shell, page)
        self.control("fault", {"/slow": {"delayMs": 1500}})
        self.stop_service()
        shell.evaluate(page, ASK % json.dumps(local_id))
        leave()
        shell.evaluate(page, LISTEN)
        self.continue_service()
        return shell.evaluate(page, ASK_AGAIN, timeout=30)

    def check(self, got):
        self.assertEqual(sorted(name for name, _ in got), ["onInfo", "onNetwork", "onPrefetch"], got)
        answers = {name: json.loads(text) for name, text in got}
        self.assertEqual(answers["onInfo"]["callstatus"], "fail", "the record is of the document before")

    def test_after_a_reload(self):
        shell = self.start()
        page = self.open_text(shell)

        def reload():
            since = shell.mark()
            shell.evaluate(page, "setTimeout(() => location.reload(), 0); return 1")
            self.wait_ready_again(shell, page, since)

        self.check(self.late_answers(shell, page, reload))
        dropped = [each for each in shell.notifications("log") if "end with their document" in each.params["text"]]
        self.assertTrue(dropped)

    def test_from_the_documents_to_the_drive(self):
        shell = self.start()
        page = self.open_text(shell)
        drive = "https://" + self.server.drive

        def go():
            shell.evaluate(page, "setTimeout(() => { location.href = %s; }, 0); return 1" % json.dumps(drive + "/"))
            self.wait_for_url(shell, page, drive)
            self.until_page(shell, page, "document.readyState === 'complete'")

        self.check(self.late_answers(shell, page, go))


if __name__ == "__main__":
    unittest.main()
