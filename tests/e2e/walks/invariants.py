"""What holds after every step, seen from outside. Each check raises an AssertionError that says what does not hold."""

import json
import re

from walks.world import markers

CONNECTION = re.compile(r"connid: (\w+)")


def check(world, requests):
    documents_are_their_own(world)
    for place in world.places:
        if not place.is_hurried and not place.is_released:
            page_is_its_documents(world, place)
    requests.check()


def documents_are_their_own(world):
    """Nothing is stored but what a document's own page typed."""
    stored = world.stored()
    unknown = set(stored) - set(world.contents)
    assert len(unknown) <= world.new_wanted, "nobody asked for the documents %s" % sorted(unknown)
    for number, document in stored.items():
        found = markers(json.dumps(document))
        assert found <= {number}, "document %s holds text of %s" % (number, sorted(found - {number}))
        if number in world.contents:
            assert document["content"] == world.contents[number], "document %s was changed: %s" % (
                number, json.dumps(document["content"])[:500])


def page_is_its_documents(world, place):
    """The document that was asked for last, and nothing of any other."""
    world.settle(place)
    name = world.stored()[place.document]["name"]
    world.until(lambda: world.state(place)["title"] == name, lambda: "the title of page %d is %r, not %r" % (
        place.page, world.state(place)["title"], name))
    state = world.state(place)
    for member in ("url", "notifyUrl"):
        assert "/p/" + place.document in state[member], "%s of page %d with %s is %s" % (
            member, place.page, place.document, state[member])
    seen = world.look(place)
    found = markers(seen["all"]) - {place.document}
    assert not found, "page %d with %s holds text of %s" % (place.page, place.document, sorted(found))


class Requests:
    """What the add-on asks the server: nothing twice for one load, under ids that no other load has."""

    def __init__(self, world):
        self._world = world
        self._first = len(world.server.requests())
        self._since = world.shell.mark()

    def check(self):
        made = [found.group(1) for each in self._world.shell.notifications("log")
                if (found := CONNECTION.search(each.params["text"]))]
        assert len(set(made)) == len(made), "a connection id was made twice"
        asked = {}
        for each in self._world.server.requests()[self._first:]:
            if not is_add_ons(each):
                continue
            key = each["target"], connection_of(each)
            asked[key] = asked.get(key, 0) + 1
        twice = {key: count for key, count in asked.items() if count > 1 and is_of_one_load(*key)}
        assert not twice, "asked more than once: %s" % twice
        files = {}
        for target, connection in asked:
            if connection:
                files.setdefault(connection, set()).add(target)
        shared = {connection: targets for connection, targets in files.items() if len(targets) > 1}
        assert not shared, "a connection id of several documents: %s" % shared
