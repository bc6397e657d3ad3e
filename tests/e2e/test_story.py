"""How a document was opened is told by the shell: as data, and as a picture that a reader understands."""

import json
import os
import xml.etree.ElementTree as ElementTree

from e2e_case import BUILD, TABLE_DOCUMENT, TEXT_DOCUMENT
from helio_shell import RpcError
from local_packages import installed_packages
from package_case import PackageCase

FETCHED = {"open_file", "get_env_config", "get_ssr_content"}


class StoryTest(PackageCase):
    def export(self, shell, page, ending):
        path = os.path.join(self.packages, "story" + ending)
        shell.call("story.export", page=page, file=path)
        with open(path, "rb") as file:
            return file.read()

    def story(self, shell, page):
        return json.loads(self.export(shell, page, ".json"))

    def picture_texts(self, shell, page):
        root = ElementTree.fromstring(self.export(shell, page, ".svg"))
        return [each.text or "" for each in root.iter("{http://www.w3.org/2000/svg}text")]

    def test_a_local_open(self):
        self.control("shaping", {"rttMs": 300, "kbps": 10000})
        self.addCleanup(self.control, "shaping", {"rttMs": 0, "kbps": 0})
        self.control("fault", {"/api/v3/office/file/100002/preopen": {"delayMs": 3500}})  # the page asks before it is there
        shell = self.start_with(installed_packages(BUILD), preloading=True)
        page = self.open_text(shell, TABLE_DOCUMENT)
        shell.wait_for_page(page, "loadFinished")
        story = self.story(shell, page)
        self.assertEqual((story["outcome"], story["page"], story["troubles"]), ("ready", page, []))

        steps = {each["name"]: each["atMs"] for each in story["steps"]}
        order = ["create_succeeded", "init_self_load", "browser_created", "load_start", "web_file_ready"]
        times = [steps[name] for name in order]
        self.assertEqual(times, sorted(times), order)
        self.assertAlmostEqual(story["totalMs"], steps["web_file_ready"], delta=1)
        self.assertLessEqual(FETCHED, {each["name"] for each in story["serverRequests"]})
        self.assertGreater(min(each["endMs"] - each["startMs"] for each in story["serverRequests"]), 250)

        given = {each["reply"]: each for each in story["localAnswers"] if "reply" in each}
        self.assertEqual(set(given), FETCHED)
        waits = {each["forReply"]: each for each in story["waits"]}
        self.assertIn("open_file", waits, "the page asked before the answer was there")
        self.assertEqual(waits["open_file"]["who"], given["open_file"]["url"])
        self.assertFalse([each for each in story["networkRequests"] if "/p/" in each["url"]])

        texts = self.picture_texts(shell, page)
        for label in ("Shell", "Add-on asks the server", "Answered on this computer", "Asked over the network", "Document ready"):
            self.assertTrue(label in texts or label in " ".join(texts), label)
        self.assertIn(story["document"], texts[0])
        self.assertTrue(self.export(shell, page, ".png").startswith(b"\x89PNG"))

    def test_the_network_and_a_failure_are_told(self):
        shell = self.start_with({})
        page = self.open_text(shell)
        story = self.story(shell, page)
        self.assertEqual(story["outcome"], "ready")
        self.assertIn("no local package is installed", json.dumps(story["troubles"]))
        self.assertTrue([each for each in story["networkRequests"] if "/p/100001" in each["url"]])
        self.assertIn("Front end over the network", " ".join(self.picture_texts(shell, page)))

        self.control("fault", {"/p/100001": {"status": 503}})
        failing = self.create(shell)
        since = shell.mark()
        shell.call("page.notify", page=failing, text=self.server.url(TEXT_DOCUMENT))
        shell.call("page.load", page=failing)
        shell.wait_for_page(failing, "loadFinished", since=since)
        story = self.story(shell, failing)
        self.assertEqual(story["outcome"], "failed")
        self.assertIn("503", " ".join(each["text"] for each in story["troubles"]))
        self.assertIn("did not open", self.picture_texts(shell, failing)[0])

    def test_bad_exports_are_refused(self):
        shell = self.start_with(installed_packages(BUILD))
        page = self.create(shell)
        with self.assertRaisesRegex(RpcError, "no open is known of page"):
            self.story(shell, page)
        page = self.open_text(shell)
        with self.assertRaisesRegex(RpcError, "not to .*story.txt"):
            self.export(shell, page, ".txt")
        with self.assertRaisesRegex(RpcError, "cannot write"):
            shell.call("story.export", page=page, file=os.path.join(self.packages, "none", "a.svg"))

    def test_without_data_collection_nothing_is_told(self):
        shell = self.start_with(installed_packages(BUILD), {"telemetry": False})
        page = self.open_text(shell)
        self.assertEqual(shell.notifications("event"), [])
        self.assertFalse(os.path.exists(os.path.join(shell.data_dir, "events.jsonl")))
        with self.assertRaisesRegex(RpcError, "data collection is off"):
            self.story(shell, page)
