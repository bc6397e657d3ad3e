"""What holds after every step, seen from outside. Each check raises an AssertionError that says what does not hold."""

import collections
import json
import re

from walks.world import markers

MADE = re.compile(r"injectId: \w+ connid: (\w+)")
CONNECTION = re.compile(r"connid\W+(\w+)")
# What is asked for a document: the kind of the request, the document, what of it.
OF_A_DOCUMENT = re.compile(r"(/api/v3/office/file/|/api/v3/office/prefetch/vcs/|/office-config/)(\d+)(/preopen|\?part=[\w,]+)?")


def check(world, requests):
    documents_are_their_own(world)
    for place in world.places:
        world.note_return(place)
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
    seen = world.settle(place)
    name = world.stored()[place.document]["name"]
    world.until(lambda: world.state(place)["title"] == name, lambda: "the title of page %d is %r, not %r" % (
        place.page, world.state(place)["title"], name))
    state = world.state(place)
    for member in ("url", "notifyUrl"):
        assert "/p/" + place.document in state[member], "%s of page %d with %s is %s" % (
            member, place.page, place.document, state[member])
    found = markers(seen["all"]) - {place.document}
    assert not found, "page %d with %s holds text of %s" % (place.page, place.document, sorted(found))


class Requests:
    """What the add-on asks the server: each thing once for a load that was begun, under ids that no other load has."""

    def __init__(self, world):
        self._world = world

    def check(self):
        # Of all shells: what is answered late is logged after its shell has ended.
        made = [found.group(1) for shell in self._world.shells for each in shell.notifications("log")
                if (found := MADE.match(each.params["text"]))]
        assert len(set(made)) == len(made), "a connection id was made twice: %s" % made
        asked, documents = collections.Counter(), collections.defaultdict(list)
        for each in self._world.server.requests():
            found = OF_A_DOCUMENT.match(each["target"])
            if not found:
                continue
            document = found.group(2)
            connection = CONNECTION.search(each["target"] + each["body"])
            is_add_ons = "AppleWebKit" not in each["userAgent"]
            if is_add_ons and each["status"] != 0:  # what a reset connection took is sent again
                asked[(found.group(1) + (found.group(3) or ""), document)] += 1
            if connection and is_add_ons:
                documents[connection.group(1)].append(document)
                assert connection.group(1) in made, "a connection id of nobody: %s" % connection.group(1)
            elif connection and connection.group(1) in made:
                documents[connection.group(1)].append(document)
                # the page may ask itself for what the add-on did not get
                assert len(set(documents[connection.group(1)])) == 1, "one connection id for %s" % documents[connection.group(1)]
        for (what, document), count in asked.items():
            begun = self._world.loads[document]
            assert count <= begun, "%s of %s was asked for %d times in %d loads" % (what, document, count, begun)
