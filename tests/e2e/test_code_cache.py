"""What is kept of scripts between openings: V8's code where the browser keeps any, and never another version's."""

import os
import subprocess
import tempfile
import unittest

from e2e_case import SITE, TEXT_DOCUMENT
from local_packages import plugin_members, switches
from package_case import PackageCase
from v8_log import V8Log

PACK = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "demo", "webapp", "pack.mjs")
VERSIONS = "return skyleafDocs.versions"
SCRIPTS = "return performance.getEntriesByType('resource').map(e => e.name.split('/').pop()).filter(n => n.endsWith('.js'))"


class CodeCacheTest(PackageCase):
    def setUp(self):
        super().setUp()
        folder = tempfile.mkdtemp(prefix="v8-", dir=self.directory)
        self.log = V8Log(folder)

    def open_and_close(self, shell, path=TEXT_DOCUMENT):
        """Opens the document, and tells the versions of its scripts, their names, and which came from a code cache."""
        self.log.clear()
        page = self.open(shell, path)
        versions = shell.evaluate(page, VERSIONS)
        names = shell.evaluate(page, SCRIPTS)
        shell.call("page.close", page=page)
        shell.wait_for_page(page, "closed")
        from_cache = {each.url.rsplit("/", 1)[1]: each.from_cache for each in self.log.scripts("/weboffice-static/js/")}
        return versions, set(names), from_cache

    def test_a_kept_script_is_not_compiled_again(self):
        shell = self.start_shell(environment=self.log.environment())
        path = TEXT_DOCUMENT + "&sw=1"
        page = self.open(shell, path)
        shell.evaluate(page, "await navigator.serviceWorker.ready")
        shell.call("page.close", page=page)
        for _ in range(2):
            self.open_and_close(shell, path)
        _, names, from_cache = self.open_and_close(shell, path)
        editor = [name for name in names if name.startswith("editor-w.")]
        self.assertEqual([from_cache[name] for name in editor], [True])

    def pack(self, version):
        """The text package as that version, where an earlier one may be. Returns its directory and its script names."""
        out = os.path.join(self.packages, "installed")
        subprocess.run(["node", PACK, "--site", SITE, "--out", out, "--plugins", "quillword", "--version", version], check=True)
        package = os.path.join(out, "quillword")
        scripts = os.listdir(os.path.join(package, "weboffice-static", "js"))
        return package, {name for name in scripts if name.endswith(".js")}

    def test_a_changed_package_never_runs_earlier_code(self):
        data_dir = os.path.join(self.packages, "data")
        seen = {}
        for version in ("7.0.0", "7.0.1", "7.0.0"):
            package, packed = self.pack(version)
            for preloading in (False, True):
                with self.subTest(version=version, preloading=preloading):
                    members = plugin_members({"w": package}, **switches(preloading=preloading))
                    shell = self.start_shell(host=members, data_dir=data_dir, environment=self.log.environment())
                    for _ in range(2):
                        versions, names, from_cache = self.open_and_close(shell)
                        self.assertEqual(versions, {"page": version, "document": version, "editor": version})
                        self.assertTrue(names and names <= packed, names - packed)
                        self.assertLessEqual(set(from_cache), packed)
                    shell.quit()
            self.assertEqual(seen.setdefault(version, packed), packed)
        self.assertFalse(seen["7.0.0"] & seen["7.0.1"])


if __name__ == "__main__":
    unittest.main()
