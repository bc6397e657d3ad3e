"""One walk: steps that a seed decides, and what has to hold after each."""

import collections
import os
import random
import sys
import time
import traceback

import evidence
from e2e_case import FAILURES

from walks import invariants, steps
from walks.world import World

STEPS_A_SHELL = (8, 20)
LATEST_STEPS = 25


class Walk:
    def __init__(self, seed, steps, until=None, patience=1.0):
        """Ends after so many steps, or at a time of the monotonic clock."""
        self.seed = seed
        self.steps = 0
        self.counts = collections.Counter()
        self.failure = ""
        self._wanted_steps = steps
        self._until = until
        self._patience = patience
        self._dice = random.Random(seed)
        self._latest = collections.deque(maxlen=LATEST_STEPS)

    @property
    def is_over(self):
        return self.steps >= self._wanted_steps or (self._until is not None and time.monotonic() >= self._until)

    def run(self):
        """Whether everything held; else `failure` says what did not."""
        world = World(self._dice, self._patience)
        requests = invariants.Requests(world)
        try:
            while not self.is_over:
                self._live(world, requests)
        except Exception as error:  # whatever it is, it is what a walk is there to find
            self._note_failure(world, error)
        finally:
            world.end()
        return not self.failure

    def _live(self, world, requests):
        """The steps of one shell."""
        self._latest.append("a shell: " + world.start_shell())
        for _ in range(self._dice.randint(*STEPS_A_SHELL)):
            if self.is_over:
                break
            self._step(world, requests)
        self._latest.append("all pages close, and the shell ends")
        for place in world.places:
            if place.is_hurried:
                world.settle(place)
        status = world.end_shell()
        assert status == 0, "the shell ended with status %s: %s" % (status, world.shell.errors())

    def _step(self, world, requests):
        step = steps.choose(world)
        start = time.monotonic()
        self.steps += 1
        self.counts[step.__name__] += 1
        self._latest.append("%d: %s" % (self.steps, step.__name__))
        told = step(world)
        invariants.check(world, requests)
        self._latest[-1] += " %s, %.1f s" % (told or "", time.monotonic() - start)

    def _note_failure(self, world, error):
        text = "".join(traceback.format_exception_only(error)).strip()
        place = traceback.extract_tb(error.__traceback__)[-1]
        title = "walk with seed %d, step %d" % (self.seed, self.steps)
        self.failure = "%s: %s\n  at %s:%d\nThe latest steps:\n  %s" % (
            title, text, place.filename, place.lineno, "\n  ".join(self._latest))
        print("\n" + self.failure, file=sys.stderr, flush=True)
        evidence.keep(os.path.join(FAILURES, "walk-%d" % self.seed), title, world.shells[-1:], [world.server])
