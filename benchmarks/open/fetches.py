"""How fast a page gets what the add-on holds in memory, beside nginx serving the same bytes to the same page."""

import hashlib
import json
import os
import shutil

from modes import DOCUMENT, Preloading
from nginx_peer import Nginx
from opening import BadOpening, open_document

FETCHES = 60
SCRIPT_BYTES = 1 << 20
MOST_RATIO = 1.2

READ_BYTES = """
const reply = await fetch(%s, {cache: 'no-store'});
return {status: reply.status, local: reply.headers.get('x-client-proxy'), text: await reply.text()};"""

# Turn by turn, each with the whole body read; the first of each only warms up.
COMPARE = """
const urls = %s;
const times = urls.map(() => []);
for (let round = 0; round <= %d; ++round) {
  for (const index of round %% 2 ? [0, 1] : [1, 0]) {
    const start = performance.now();
    const reply = await fetch(urls[index], {cache: 'no-store'});
    const {byteLength} = await reply.arrayBuffer();
    if (!reply.ok || byteLength !== %d) throw new Error(`${urls[index]}: ${reply.status}, ${byteLength} bytes`);
    if (round > 0) times[index].push(performance.now() - start);
  }
}
return times;"""


def package_with_large_script(package, directory):
    """A copy of the package with one more script, of exactly SCRIPT_BYTES. Returns the copy and the script's name."""
    copy = os.path.join(directory, "package-with-script")
    shutil.copytree(package, copy)
    scripts = os.path.join(copy, "weboffice-static", "js")
    largest = max((os.path.join(scripts, name) for name in os.listdir(scripts)), key=os.path.getsize)
    with open(largest, "rb") as file:
        data = file.read(SCRIPT_BYTES)
    name = "bench.%s.js" % hashlib.sha256(data).hexdigest()[:16]
    with open(os.path.join(scripts, name), "wb") as file:
        file.write(data.ljust(SCRIPT_BYTES, b"\n"))
    listed = os.path.join(copy, "preload-file.json")
    with open(listed, encoding="utf-8") as file:
        read_ahead = json.load(file)
    read_ahead["pc"].append("/weboffice-static/js/" + name)
    with open(listed, "w", encoding="utf-8") as file:
        json.dump(read_ahead, file)
    return copy, name


def measure_fetches(programs, server, package, directory):
    """{"reply" and "script": {"local": times in ms, "nginx": times in ms}}"""
    copy, script = package_with_large_script(package, directory)
    mode = Preloading(programs, server, copy)
    results = {}

    def compare(page, _report):
        reply = "/office-config/%s?part=file_info,font_name_map,config,plugin_config&proxy=true&timeout=5000" % DOCUMENT
        for name, url in (("reply", reply), ("script", "/hybrid/weboffice-static/js/" + script)):
            answer = mode.shell.evaluate(page, READ_BYTES % json.dumps(url))
            if answer["status"] != 200 or answer["local"] != "true":
                raise BadOpening("%s was not answered locally" % url)
            data = answer["text"].encode()
            with Nginx({"peer": data}) as nginx:
                urls = json.dumps([url, nginx.url("peer")])
                local, peer = mode.shell.evaluate(page, COMPARE % (urls, FETCHES, len(data)), timeout=120)
            results[name] = {"bytes": len(data), "local": local, "nginx": peer}

    try:
        mode.warm_up(1)
        open_document(mode.shell, mode.url(), compare)
    finally:
        mode.quit()
    return results
