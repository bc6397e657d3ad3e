"""Which documents can reach the native side, and what a page learns of another view's local answers."""

import json
import unittest

from e2e_case import BUILD, TABLE_DOCUMENT
from local_packages import installed_packages
from package_case import PackageCase


class IsolationTest(PackageCase):
    def test_foreign_origin_has_no_script_object(self):
        resolve = {"foreign.skyleaf.test:80": "127.0.0.1:%d" % self.server.http_port}
        self.shell = self.start_shell(host={"resolve": resolve})
        page = self.open(self.shell)
        self.assertEqual(self.shell.evaluate(page, "return typeof window.helio.call"), "function")
        self.shell.evaluate(page, """
            const link = document.createElement('a');
            link.href = 'http://foreign.skyleaf.test/';
            document.body.append(link);
            setTimeout(() => link.click(), 0);
            return 1""")
        self.wait_for_url(self.shell, page, "foreign.")
        found = self.shell.evaluate(page, """
            return [location.host, typeof window.helio, typeof window.QWebChannel]""")
        self.assertEqual(found, ["foreign.skyleaf.test", "undefined", "undefined"])

        # The browser's own transport is there, but what is said over it without the document's token is not heard. What
        # one evaluation sent is dealt with before the next one comes back, and so are the answers.
        self.shell.evaluate(page, """
            window.answers = [];
            window.transport = window.qt && window.qt.webChannelTransport;
            if (transport && transport.send) {
                transport.onmessage = event => answers.push(event.data);
                transport.send(JSON.stringify({type: 3, id: 1}));
            }""")
        self.shell.evaluate(page, """
            const objects = answers.length ? Object.keys(JSON.parse(answers[0]).data || {}) : [];
            const call = JSON.stringify({id: 'x', name: 'clouddocsApiVersion', args: {}});
            let id = 2;
            for (const object of objects)
                for (const method of ['fromJSAsynCall', 'fromJSAsynCallBase64', 'emitHost'])
                    for (const token of ['', 'undefined', '0'.repeat(32)])
                        transport.send(JSON.stringify({type: 6, object, method, id: id++, args: [token, call, '{}']}));""")
        self.shell.evaluate(page, "return 1")
        self.assertNotIn("1.0.0", self.shell.evaluate(page, "return answers.join()"))

    def test_what_one_page_gets_locally_no_other_gets(self):
        shell = self.start_with({"w": installed_packages(BUILD)["w"]})
        first, second = self.open(shell), self.open(shell, TABLE_DOCUMENT)
        script = shell.evaluate(first, "return document.querySelector('script[src*=\"/hybrid/\"]').src")
        self.assertEqual(self.answers(shell, first, script), ["local"])
        shell.evaluate(second, "await fetch(%s, {cache: 'reload'}).catch(() => {})" % json.dumps(script))
        shell.wait_for(lambda n: n.method == "request" and n.params["page"] == second and n.params["url"] == script,
                       what="request of the second page")
        self.assertEqual(self.answers(shell, second, script), ["network"])


if __name__ == "__main__":
    unittest.main()
