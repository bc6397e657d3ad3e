"""Which documents can reach the native side, and what a page learns of another view's local answers."""

import unittest

from e2e_case import EndToEndCase


class IsolationTest(EndToEndCase):
    def setUp(self):
        resolve = {"foreign.skyleaf.test:80": "127.0.0.1:%d" % self.server.http_port}
        self.shell = self.start_shell(host={"resolve": resolve})

    def test_foreign_origin_has_no_script_object(self):
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

        # The browser's own transport is there, but what is said over it without the document's token is not heard.
        answers = self.shell.evaluate(page, """
            const transport = window.qt && window.qt.webChannelTransport;
            if (!transport || !transport.send) return [];
            const answers = [];
            transport.onmessage = event => answers.push(event.data);
            transport.send(JSON.stringify({type: 3, id: 1}));
            await new Promise(r => setTimeout(r, 300));
            const objects = answers.length ? Object.keys(JSON.parse(answers[0]).data || {}) : [];
            const call = JSON.stringify({id: 'x', name: 'clouddocsApiVersion', args: {}});
            let id = 2;
            for (const object of objects)
                for (const method of ['fromJSAsynCall', 'fromJSAsynCallBase64', 'emitHost'])
                    for (const token of ['', 'undefined', '0'.repeat(32)])
                        transport.send(JSON.stringify({type: 6, object, method, id: id++, args: [token, call, '{}']}));
            await new Promise(r => setTimeout(r, 300));
            return answers""")
        self.assertNotIn("1.0.0", "".join(answers))

    def test_view_header_of_a_page_counts_for_nothing(self):
        first = self.open(self.shell)
        second = self.open(self.shell)
        # A large reply is published for one view: its address is worth nothing to another.
        self.shell.evaluate(first, "await helio.call('clouddocsApiVersion'); return 1")
        status = self.shell.evaluate(second, """
            const answer = await fetch('/.helio/reply/' + '0'.repeat(32), {headers: {'X-Helio-View': 'a'.repeat(32)}});
            return answer.status""")
        self.assertEqual(status, 404)
        logged = [r for r in self.server.requests() if "helio" in r["target"].lower()]
        self.assertFalse([r for r in logged if "view" in str(r).lower() and "X-Helio" in str(r)])


if __name__ == "__main__":
    unittest.main()
