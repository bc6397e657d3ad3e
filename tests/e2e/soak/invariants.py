"""What holds after every round. Each check raises an AssertionError that says what does not hold."""

import statistics
import threading
import time

from helio_shell import ShellEnded

ANSWER_LIMIT = 0.1
LONGEST_HOLD = 2.0
OPENING = "(() => { const text = document.body ? document.body.innerText : ''; return !text.includes('Opening…') && text.length > 0; })()"


def check(world):
    words_are_safe(world)
    nothing_stays_opening(world)
    window_answers(world)


def words_are_safe(world):
    """Every word that a page called saved, or kept here, is on the server or in a journal of this computer."""
    texts = world.kept_texts()
    lost = [word for word in world.safe_words if word not in texts]
    assert not lost, "called safe, and gone: %s" % ["%s (%s)" % (word, world.safe_words[word]) for word in lost]


def nothing_stays_opening(world):
    for page in world.pages():
        if world.state(page)["loaded"]:
            world.until_page(page, OPENING, 30)


def window_answers(world):
    times = []
    for _ in range(5):
        start = time.monotonic()
        world.shell.call("shell.state", timeout=world.limit(30))
        times.append(time.monotonic() - start)
    limit = world.limit(ANSWER_LIMIT)
    middle = statistics.median(times)
    assert middle <= limit, "the window answers in %d ms, not in %d" % (middle * 1000, limit * 1000)


class HoldWatch:
    """Calls the shell all the time, and notes how long its window was held."""

    def __init__(self, world):
        self._world = world
        self._ended = threading.Event()
        self.longest = 0.0
        self.over_limit = 0
        self._thread = threading.Thread(target=self._watch, daemon=True)
        self._thread.start()

    def _watch(self):
        while not self._ended.wait(0.2):
            start = time.monotonic()
            try:
                self._world.shell.call("shell.state", timeout=60)
            except (ShellEnded, TimeoutError, OSError):
                continue
            held = time.monotonic() - start
            self.longest = max(self.longest, held)
            self.over_limit += held > ANSWER_LIMIT

    def end(self):
        self._ended.set()
        self._thread.join(70)
