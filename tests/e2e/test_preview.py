"""Preview pages and pages of links: what the suite asks them to show, and links that open a page of their own."""

import base64
import os
import unittest

from e2e_case import TEXT_DOCUMENT, EndToEndCase

UNIFIED = {"productSwitches": {"cloudDocsContainerUnified": True}}
OPEN_LINK = """
    const link = document.createElement('a');
    link.href = %s; link.target = '_blank'; link.textContent = 'elsewhere';
    document.body.append(link);
    setTimeout(() => link.click(), 0);"""


def encoded(text):
    return base64.b64encode(text.encode()).decode()


class PreviewTest(EndToEndCase):
    def preview(self, url, *rest):
        return "&".join(["previewCloudDoc", encoded(url), ""] + list(rest))

    def notify(self, page, text):
        return self.shell.call("page.notify", page=page, text=text)

    def properties(self, page):
        return self.state(self.shell, page)["properties"]

    def test_what_was_asked_decides_the_result(self):
        self.shell = self.start_shell(host={"features": {"CloudDocsPathRecoveryOnOpen": True}})
        url = self.server.url("/p/100001?officeType=w&pcEnter=mail")
        local = os.path.join(self.directory, "A", "Plan B.docx")
        os.makedirs(os.path.dirname(local))
        open(local, "wb").close()
        page = self.create(self.shell, 48)
        for text, result in [
            ("suffix", False),
            ("suffix:docx", True),
            ("suffix:", True),
            ("previewCloudDoc", False),
            ("previewCloudDoc&%%%&&docx&7", False),
            (self.preview(self.server.url("/p/x"), "docx", "-1"), False),
            (self.preview("no/host/7", "docx"), False),
        ]:
            self.assertIs(self.notify(page, text), result, text)
        self.assertEqual(self.properties(page)["suffix"], "docx")

        since = self.shell.mark()
        text = self.preview(url, "docx", "100001", "filePath", *local.replace("A/", "A&").split("&"))
        self.assertIs(self.notify(page, text), True)
        self.shell.wait_for_page(page, "webFileReady", since=since)
        properties = self.properties(page)
        self.assertEqual(properties["File_ID"], "100001")
        self.assertEqual(properties["fileName"], "Plan B.docx")
        self.assertIn("Welcome", self.shell.evaluate(page, "return document.body.innerText"))
        self.wait_for_source(page, "mail")

        # The page is in use; from elsewhere the open document is found, unless a page of its own is wanted.
        self.assertIs(self.notify(page, self.preview(self.server.url("/p/100002"), "xlsx")), False)
        other = self.create(self.shell, 48)
        since = self.shell.mark()
        self.assertIs(self.notify(other, text), True)
        self.wait_ready_again(self.shell, page, since)
        self.assertTrue(self.state(self.shell, page)["current"])
        self.assertFalse(self.state(self.shell, other)["loaded"])
        since = self.shell.mark()
        encoded_url = encoded(self.server.url("/p/100002%3FofficeType%3Ds"))
        self.assertIs(self.notify(other, "previewCloudDoc&&&xlsx&percentEncoding&NEWPAGE&" + encoded_url), True)
        self.shell.wait_for_page(other, "webFileReady", since=since)
        self.assertIn("Budget", self.state(self.shell, other)["title"])

        plain = self.create(self.shell, 48)
        self.assertIs(self.notify(plain, self.server.url(TEXT_DOCUMENT)), True)
        self.assertIn("/p/100001", self.state(self.shell, plain)["notifyUrl"])

    def wait_for_source(self, page, source):
        self.shell.wait_for_page(page, "loadFinished")
        self.assertEqual(self.properties(page)["File_SrcFrom"], source)

    def test_links_open_pages_of_their_own(self):
        for host in (UNIFIED, {}):
            self.shell = self.start_shell(host=host)
            page = self.open(self.shell)
            since = self.shell.mark()
            self.shell.evaluate(page, OPEN_LINK % ("'%s'" % self.server.url("/p/100002?officeType=s")))
            made = self.shell.wait_for(
                lambda n: n.method == "page" and n.params["what"] == "created", since=since).params["page"]
            self.shell.wait_for_page(made, "loadFinished", since=since)
            state = self.state(self.shell, made)
            self.assertIn("/p/100002", state["url"])
            self.assertTrue(state["current"])
            self.assertIn("Budget", state["title"])
            self.assertEqual(state["type"], 48 if host else 11)
            if host:
                self.assertEqual(self.shell.evaluate(made, "return await helio.call('clouddocsApiVersion')")["callstatus"], "ok")
            self.assertIn("/p/100001", self.state(self.shell, page)["url"])
            self.assertIs(self.shell.call("page.close", page=made), True)
            self.shell.wait_for_page(made, "closed")
            self.shell.quit()


if __name__ == "__main__":
    unittest.main()
