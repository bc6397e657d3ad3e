"""What a user does: each function is one action, with the world as its argument."""

import hashlib
import json
import os
import time
import urllib.request

from e2e_case import TABLE_DOCUMENT

from soak.world import DOCUMENTS, FIRST_DOCUMENT

MOST_TABS = 5
INTERFACE_PAGE = "/interface.html"
LISTEN = """
    window.reports = [];
    window.onReport = (text) => window.reports.push(JSON.parse(text));
    helio.call('fileUploadListener', {callback: 'onReport'});
    await helio.call('clouddocsApiVersion');"""


def a_document(world):
    """A page with a document, in front and ready for a user; opens one when there is none."""
    pages = list(world.documents())
    if not pages:
        return open_document(world)
    page = world.dice.choice(pages)
    world.bring_back(page)
    return page


def open_document(world):
    shown = world.documents()
    if len(shown) >= MOST_TABS:
        close_document(world)
        shown = world.documents()
    free = sorted(set(range(FIRST_DOCUMENT, FIRST_DOCUMENT + DOCUMENTS)) - set(shown.values()))
    return world.open(world.dice.choice(free))


def open_table(world):
    page, since = world.begin(world.server.url(TABLE_DOCUMENT))
    world.ready(page, since)
    world.close(page)


def edit_and_save(world):
    page = a_document(world)
    words = [world.type_word(page) for _ in range(world.dice.randint(1, 4))]
    world.wait_until_safe(page, words)


def edit_and_close(world):
    """The window is not given time to save: only what the page calls safe counts."""
    page = a_document(world)
    world.wait_until_safe(page, [world.type_word(page)])
    world.close(page)


def close_document(world):
    page = a_document(world)
    world.wait_until_safe(page, [])
    world.close(page)


def reload(world):
    page = a_document(world)
    words = [world.type_word(page)]
    world.wait_until_safe(page, words)
    since = world.shell.mark()
    world.shell.call("page.invoke", page=page, method="refreshPage", args=[])
    world.ready(page, since)


def release_and_come_back(world):
    page = a_document(world)
    world.wait_until_safe(page, [world.type_word(page)])
    world.shell.call("page.release", page=page)
    world.until(lambda: world.state(page)["released"], "page %s is released" % page, 30)
    world.bring_back(page)


def look_at_tabs(world):
    for page in list(world.documents()):
        world.bring_back(page)


def print_document(world):
    page = a_document(world)
    source = os.path.join(world.directory, "print.txt")
    with open(source, "w", encoding="utf-8") as file:
        file.write("to print\n" * world.dice.randint(1, 500))
    target = source + "-%d.pdf" % world.dice.randrange(10**9)
    world.shell.call("dialog.answer", dialog="print", value=target)
    order = {"fileAbsolutePath": source, "fileId": "1"}
    world.shell.evaluate(page, "helio.call('docs.print.printFileByZeo', %s); return true" % json.dumps(order))
    world.until(lambda: os.path.exists(target) and os.path.getsize(target), target + " is printed", 60)


def an_interface_page(world):
    page, _ = world.begin(world.server.url(INTERFACE_PAGE))
    world.until_page(page, "Boolean(window.helioInterface)", 60)
    return page


def choose_files(world):
    """The file chooser, cancelled and answered, and a message box."""
    page = an_interface_page(world)
    since = world.shell.mark()
    world.shell.evaluate(page, "helio.call('callFileUploader', {isDir: '0', groupid: '0', parentid: '0'}); return true")
    world.shell.wait_for_log("dialog cancelled: file", since=since, timeout=world.limit(30))
    since = world.shell.mark()
    world.shell.evaluate(page, "helio.call('gotoH5Page'); return true")
    world.shell.wait_for_log('messageBox "": "gotoH5Page"', since=since, timeout=world.limit(30))
    world.close(page)


def drive_items(world):
    request = urllib.request.Request("http://127.0.0.1:%d/api/v1/drive/groups/0/folders/0" % world.server.http_port,
                                     headers={"Cookie": "vlt_sid=test"})
    with urllib.request.urlopen(request, timeout=world.limit(30)) as answer:
        return {each["name"]: each for each in json.load(answer)["items"]}


def has_failed(world, page, source):
    failed = "window.reports.some((each) => each.failed.some(({src}) => src === %s))" % json.dumps(source)
    return world.shell.evaluate(page, "return " + failed)


def transfer(world, meanwhile=lambda page: None):
    """A file goes up to the drive and comes down again; `meanwhile` is called with the page once that was ordered."""
    page = an_interface_page(world)
    name = "file-%d.bin" % world.dice.randrange(10**9)
    source = os.path.join(world.directory, name)
    content = world.dice.randbytes(world.dice.choice((0, 700, 300_000)))
    with open(source, "wb") as file:
        file.write(content)
    world.shell.evaluate(page, LISTEN)
    upload = "helio.call('uploadFileDrag', %s); return true" % json.dumps({"groupid": "0", "parentid": "0", "files": [source]})
    world.shell.evaluate(page, upload)
    meanwhile(page)
    world.until(lambda: drive_items(world).get(name) or has_failed(world, page, source),
                name + " is on the drive, or its failure is told", 90)
    if not drive_items(world).get(name):
        world.shell.evaluate(page, upload)
    item = world.until(lambda: drive_items(world).get(name), name + " is on the drive", 90)
    assert item["sha1"] == hashlib.sha1(content).hexdigest(), "another content of %s is on the drive" % name
    target = os.path.join(world.directory, "target-" + name)
    os.makedirs(target)
    world.shell.call("dialog.answer", dialog="file", value=[target])
    download = {"fileids": [{"id": item["id"], "idDir": False}], "groupid": "0"}
    world.shell.evaluate(page, "helio.call('callFileDownload', %s); return true" % json.dumps(download))
    arrived = os.path.join(target, name)

    def is_there():
        try:
            with open(arrived, "rb") as file:
                return file.read() == content
        except OSError:
            return False
    world.until(is_there, arrived + " is there", 90)
    world.close(page)


def sign_out_and_in(world):
    world.shell.call("user.set", loggedIn=False, userId="", sessionKey="")
    page, _ = world.begin(world.server.url(INTERFACE_PAGE))
    world.until_page(page, "Boolean(window.helioInterface)", 60)
    world.close(page)
    since = world.shell.mark()
    world.shell.call("user.set", **world.user)
    for page in world.documents():
        if world.state(page)["loaded"]:
            world.ready(page, since)


def stay_quiet(world, seconds):
    """Nobody touches anything; afterwards a document opens as always."""
    time.sleep(seconds)
    world.close(world.open(FIRST_DOCUMENT + DOCUMENTS - 1)) if not world.documents() else edit_and_save(world)
