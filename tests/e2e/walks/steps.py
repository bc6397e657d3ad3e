"""The steps of a walk: each is a function of the world. What it returns is told when the walk fails."""

import json
import os
import shutil
import signal
import time

from e2e_case import BUILD, TYPE_TEXT, UNTIL_SAVED
from helio_shell import RpcError
from local_packages import (
    ADD_ON_GROUP, DELAYED_LOAD_ITEM, PRELOADING_ITEM, PROXY_RESET_ITEM, VERSION_CHECK_ITEM, copy_package, installed_packages)
from processes import service_process

from e2e_case import BUILD
from walks.world import STARTING_VERSION, TABLES, TEXTS, UPGRADE, kind_of, marker

MOST_PAGES = 4
# How often the next step does not wait for what this one asked for.
HURRY = 0.3
# Under how many addresses a page may have shown one document: the server is asked for it where a package does not fit.
MOST_ADDRESSES = 3


# Choosing

def a_place(world):
    return world.dice.choice(world.places) if world.places else None


def shown(world):
    """A page whose document is there to be used; None when there is none."""
    loaded = [place for place in world.places if not place.is_released]
    if not loaded:
        return None
    place = world.dice.choice(loaded)
    if place.is_hurried:
        world.settle(place)
    return place


def another(world, place=None):
    """A document that the page does not show."""
    return world.dice.choice([each for each in TEXTS * 2 + TABLES if place is None or each != place.document])


def told(place, text=""):
    return "page %d, %s%s%s" % (place.page, place.document or "a new document", text, ", hurried" if place.is_hurried else "")


# Documents

def go(world, place, document, act, may_hurry=True, is_by_browser=False):
    """The page is asked for the document by `act`; waits until it shows it, or hurries on."""
    if place.is_hurried or place.is_released or place.document is None:
        place.behind.clear()  # what was never shown is nothing to go back to
    elif document != place.document:
        place.behind.append(place.document)
    place.document = document
    if document is None:
        world.new_wanted += 1
    act()
    if is_by_browser:
        world.until(lambda: "/p/" + document in world.state(place)["url"], lambda: told(place, " is on its way"))
    if not may_hurry or world.dice.random() >= HURRY:
        world.settle(place)
    else:
        place.is_hurried = True
    return told(place)


def tell(world, place):
    def act():
        world.loads[place.document] += 1 + place.is_restarting
        world.shell.call("page.notify", page=place.page, text=world.url(place.document))
        state = world.state(place)
        if not state["loaded"] or state["released"]:
            world.shell.call("page.load", page=place.page)
            place.behind.clear()
        place.is_released = False
    return act


def open_document(world):
    if len(world.places) >= MOST_PAGES:
        return close(world)
    place = world.add_place(world.dice.choice((1, 48)))
    return "opened, " + go(world, place, another(world), tell(world, place))


def notify_another(world):
    place = a_place(world)
    if place is None or place.document is None:
        return open_document(world)
    return go(world, place, another(world, place), tell(world, place))


def notify_again(world):
    """The document that the page shows, or is about to."""
    place = a_place(world)
    if place is None or place.document is None:
        return open_document(world)
    before, since = world.state(place), world.shell.mark()
    text = go(world, place, place.document, tell(world, place), may_hurry=False)
    if before["loaded"] and world.state(place)["notifyUrl"] != before["notifyUrl"]:  # loaded anew, at another address
        world.shell.wait_for_page(place.page, "webFileReady", since=since, timeout=world.limit(45))
        world.settle(place)
    return text


def new_document(world):
    place = a_place(world)
    if place is None or place.document is None:
        return open_document(world)
    return go(world, place, None, tell(world, place), may_hurry=False)


def follow_link(world):
    place = shown(world)
    if place is None:
        return open_document(world)
    document = another(world, place)

    def act():
        world.shell.evaluate(place.page, "setTimeout(() => location.assign(%s)); return true" % json.dumps(world.url(document)))
    return "link, " + go(world, place, document, act, is_by_browser=True)


def back(world):
    place = shown(world)
    if place is None or not place.behind:
        return follow_link(world)
    leaving = place.document
    document = place.behind.pop()
    behind = list(place.behind)

    def act():
        for _ in range(MOST_ADDRESSES):
            before = world.state(place)["url"]
            world.shell.evaluate(place.page, "setTimeout(() => history.back()); return true")
            world.until(lambda: world.state(place)["url"] != before, lambda: told(place, ": back leads away from " + before))
            if "/p/" + document in world.state(place)["url"]:
                break
            world.settle_at(place, leaving)
        place.behind[:] = behind
    return go(world, place, document, act, is_by_browser=True)


def close(world):
    place = shown(world)
    if place is None:
        return open_document(world)
    world.close(place)
    return "page %d" % place.page


def type_word(world):
    """Only where no other page holds an older version of the document."""
    place = shown(world)
    if place is None or kind_of(place.document) != "w" or [each.document for each in world.places].count(place.document) > 1:
        return open_document(world)
    world.words += 1
    word = " %sn%d" % (marker(place.document), world.words)
    world.shell.evaluate(place.page, TYPE_TEXT % json.dumps(word) + UNTIL_SAVED, timeout=world.limit(45))
    stored = world.stored()[place.document]
    assert word in json.dumps(stored), "saved, the page says, but the server has %s" % json.dumps(stored["content"])[:500]
    world.contents[place.document] = stored["content"]
    return told(place)


# Pages

def again(world, place, act):
    """The page shows its document again after `act`."""
    since = world.shell.mark()
    act()
    place.behind.clear()
    if world.dice.random() < HURRY:
        place.is_hurried = True
    else:
        world.shell.wait_for_page(place.page, "webFileReady", since=since, timeout=world.limit(45))
        world.settle(place)
    return told(place)


def release(world):
    place = a_place(world)
    if place is None or place.is_released or place.document is None:
        return open_document(world)
    world.shell.call("page.release", page=place.page)
    place.is_released = world.state(place)["released"]
    if place.is_released:
        place.is_hurried = False
    return told(place, ", released" if place.is_released else ", refused")


def come_back(world):
    released = [place for place in world.places if place.is_released]
    if not released:
        return release(world)
    place = world.dice.choice(released)
    place.is_released = False
    world.loads[place.document] += 1
    return again(world, place, lambda: world.shell.call(world.dice.choice(("page.load", "tab.select")), page=place.page))


def restart(world):
    place = shown(world)
    if place is None:
        return open_document(world)
    world.loads[place.document] += 1
    place.is_restarting = True  # goes on after the answer
    return again(world, place, lambda: world.shell.call("tab.trigger", page=place.page, action="fixTab"))


def crash_renderer(world):
    place = a_place(world)
    if place is None or place.is_released or place.document is None:
        return open_document(world)
    if place.is_hurried:
        try:
            world.shell.call("browser.crash", page=place.page)
        except RpcError:
            return "no renderer yet"
        place.behind.clear()
        return told(place)
    return again(world, place, lambda: world.shell.call("browser.crash", page=place.page))


def move_to_window_and_back(world):
    place = shown(world)
    if place is None:
        return open_document(world)
    names = [each["name"] for each in world.shell.call("tab.menu", page=place.page) if each["enabled"]]
    action = next((each for each in ("reAttachTab", "detachTab") if each in names), None)
    if action is None:
        return open_document(world)
    world.shell.call("tab.trigger", page=place.page, action=action)
    world.settle(place)
    return told(place, ", " + action)


def change_login(world):
    """Released pages come back for the user; new documents are waited for, since nobody else may make one."""
    for place in world.places:
        if place.document is None:
            world.settle(place)
    since = world.shell.mark()
    world.shell.call("user.set", loggedIn=False, userId="", sessionKey="")
    world.shell.call("user.set", **world.user)
    for place in world.places:
        place.behind.clear()
        world.loads[place.document] += place.is_released
        place.is_released = world.state(place)["released"]
        if not place.is_released and not place.is_hurried:
            world.shell.wait_for_page(place.page, "webFileReady", since=since, timeout=world.limit(45))
            world.settle(place)
    return ""


def crash_service(world):
    pid = service_process(world.data_dir)
    if pid:
        os.kill(pid, signal.SIGKILL)
    return "process %s" % pid


# The server, the packages and the switches

def change_versions(world):
    document = another(world)
    versions = world.dice.choice((
        {}, {},
        {"files": {document: {"front_ver": STARTING_VERSION}}}, {"files": {document: {"front_ver": UPGRADE}}},
        {"files": {document: {"front_ver": "7.0.0"}}},
        {"word": {"front_ver": UPGRADE}}, {"word": {"must_upgrade": True}}, {"word": {"expire_time": int(time.time()) - 5}}))
    world.tell_server(versions=versions)
    return json.dumps(versions)


def fail_at_server(world):
    """Something goes wrong with what is asked in advance, while a page is told a document."""
    place = a_place(world)
    if place is None or place.document is None:
        return open_document(world)
    document = another(world, place)
    prefixes = ("/api/v3/office/file/%s/preopen" % document, "/office-config/%s" % document, "/api/v3/office/prefetch/vcs",
                "/api/quill/office/prefetch/config")
    fault = world.dice.choice((
        {"status": 500}, {"delayMs": 2500}, {"body": "{\"result\": \"ok"}, {"cutAfter": 20}, {"reset": True}))
    rule = {world.dice.choice(prefixes): dict(fault, times=1)}
    world.loads[document] += "cutAfter" in fault  # what was cut is asked again
    world.tell_server(fault=rule)
    text = go(world, place, document, tell(world, place), may_hurry=False)
    world.tell_server(fault={})
    return text + " " + json.dumps(rule)


def damage_package(world):
    """A package that is damaged is put in order the next time."""
    pages = os.path.join(world.package, "dist_langs")
    if os.path.isdir(pages):
        if world.dice.random() < 0.5:
            shutil.rmtree(world.package)
            return "removed"
        shutil.rmtree(pages)
        return "pages removed"
    shutil.rmtree(world.package, ignore_errors=True)
    copy_package(installed_packages(BUILD)["w"], world.packages, STARTING_VERSION)
    return "in order"


def turn_switch(world):
    item, value = world.dice.choice((
        (DELAYED_LOAD_ITEM, {"enabled": False}), (DELAYED_LOAD_ITEM, {"enabled": True, "delay_interval": 300}),
        (VERSION_CHECK_ITEM, {"enabled": True}), (VERSION_CHECK_ITEM, {"enabled": False}),
        (PROXY_RESET_ITEM, {"enabled": True}), (PROXY_RESET_ITEM, {"enabled": False}),
        (PRELOADING_ITEM, {"enabled": True}), (PRELOADING_ITEM, {"enabled": False})))
    world.shell.call("config.set", group=int(ADD_ON_GROUP), item=int(item), value=value)
    return "%s %s" % (item, value)


TABLE = [
    (6, open_document), (10, notify_another), (2, notify_again), (6, follow_link), (5, back), (2, new_document),
    (4, type_word), (1, close), (4, release), (5, come_back), (3, restart), (4, crash_renderer), (1, crash_service), (1, change_login),
    (2, move_to_window_and_back), (4, change_versions), (3, fail_at_server), (2, damage_package), (2, turn_switch),
]  # fmt: skip


def choose(world):
    return world.dice.choices([step for _, step in TABLE], [weight for weight, _ in TABLE])[0]
