"""The rounds of a soak: what is done how often, what is checked, and what is told at the end."""

import collections
import os
import random
import sys
import time
import traceback

import evidence
from e2e_case import FAILURES
from helio_shell import RpcError, ShellEnded

from soak import actions, faults, invariants, resources
from soak.world import World

WARM_UP_ROUNDS = 8
ROUNDS_A_SETTLING = 10
ACTIONS_A_ROUND = (2, 5)
LATEST_ACTIONS = 20


def quiet(world):
    actions.stay_quiet(world, world.dice.triangular(30, 300, 30))


def short_quiet(world):
    actions.stay_quiet(world, world.dice.uniform(0.5, 2))


# What is done, and how often beside the others.
COMMON = [
    (6, actions.open_document), (10, actions.edit_and_save), (3, actions.edit_and_close), (3, actions.close_document),
    (4, actions.reload), (3, actions.release_and_come_back), (3, actions.look_at_tabs), (1, actions.open_table),
    (1, actions.print_document), (2, actions.choose_files), (2, actions.transfer), (1, actions.sign_out_and_in),
    (2, faults.kill_renderer), (2, faults.kill_service), (1, faults.kill_service_while_transferring), (1, faults.kill_shell),
    (1, faults.quit_shell), (2, faults.server_down_and_back), (1, faults.full_disk), (1, faults.change_clock), (2, short_quiet),
]  # fmt: skip
LONG = COMMON + [(1, quiet)]


class Soak:
    def __init__(self, seed, seconds=None, rounds=None, is_short=False, patience=1.0, most_failures=5):
        """Ends after so many seconds or rounds, whichever is given."""
        self.seed = seed
        self._dice = random.Random(seed)
        self._deadline = time.monotonic() + seconds if seconds else None
        self._most_rounds = rounds
        self._table = COMMON if is_short else LONG
        self._patience = patience
        self._most_failures = most_failures
        self.rounds = 0
        self.counts = collections.Counter()
        self.left_out = set()
        self.failures = []
        self.longest_hold = 0.0
        self.holds = 0
        self.start_usage = self.end_usage = None
        self._latest = collections.deque(maxlen=LATEST_ACTIONS)
        self._must_choose = []

    @property
    def is_over(self):
        if len(self.failures) >= self._most_failures:
            return True
        if self._most_rounds is not None:
            return self.rounds >= self._most_rounds
        return time.monotonic() >= self._deadline

    def run(self):
        while not self.is_over:
            self._play_in_a_world()
        return not self.failures

    def _play_in_a_world(self):
        """Rounds until the soak is over, or something fails: what follows then begins in a new world."""
        world = World(self._dice, self._patience)
        watch = invariants.HoldWatch(world)
        self.start_usage = None
        rounds_here = 0
        try:
            while not self.is_over:
                self._round(world)
                rounds_here += 1
                if rounds_here == WARM_UP_ROUNDS or (rounds_here > WARM_UP_ROUNDS and rounds_here % ROUNDS_A_SETTLING == 0):
                    self._settle(world)
            if rounds_here > WARM_UP_ROUNDS:
                self._settle(world)
            assert watch.longest < world.limit(invariants.LONGEST_HOLD), "the window was held %.1f s" % watch.longest
        except (AssertionError, RpcError, ShellEnded, TimeoutError, OSError) as error:
            self._note_failure(world, error)
        finally:
            watch.end()
            self.longest_hold = max(self.longest_hold, watch.longest)
            self.holds += watch.over_limit
            world.end()

    def _round(self, world):
        self.rounds += 1
        for _ in range(self._dice.randint(*ACTIONS_A_ROUND)):
            action = self._choose()
            name = action.__name__
            start = time.monotonic()
            self._latest.append("round %d: %s" % (self.rounds, name))
            try:
                action(world)
            except faults.NotPossible as reason:
                self.left_out.add("%s: %s" % (name, reason))
                continue
            self.counts[name] += 1
            self._latest[-1] += ", %.1f s" % (time.monotonic() - start)
        self._latest.append("round %d: what has to hold" % self.rounds)
        invariants.check(world)

    def _choose(self):
        """By weight, once each was there: a short soak misses none."""
        if not self.counts and not self._must_choose:
            self._must_choose = [action for _, action in COMMON]
            self._dice.shuffle(self._must_choose)
        if self._must_choose:
            return self._must_choose.pop()
        return self._dice.choices([action for _, action in self._table], [weight for weight, _ in self._table])[0]

    def _settle(self, world):
        """Closes all pages, and holds memory and descriptors against those after the rounds that warmed up."""
        self._latest.append("round %d: all pages are closed" % self.rounds)
        for page in world.pages():
            world.close(page)
        usage = resources.settled(world)
        if self.start_usage is None:
            self.start_usage = usage
        self.end_usage = usage
        grown = resources.grown(self.start_usage, usage)
        assert not grown, "grown since the first rounds: %s" % "; ".join(grown)

    def _note_failure(self, world, error):
        text = "".join(traceback.format_exception_only(error)).strip()
        place = traceback.extract_tb(error.__traceback__)[-1]
        title = "seed %d, round %d" % (self.seed, self.rounds)
        self.failures.append("%s: %s" % (title, text))
        print("\n%s FAILED\n%s\n  at %s:%d\nThe latest actions:\n  %s" % (
            title, text, place.filename, place.lineno, "\n  ".join(self._latest)), file=sys.stderr, flush=True)
        directory = os.path.join(FAILURES, "soak-%d-%d" % (self.seed, self.rounds))
        evidence.keep(directory, title, world.shells[-2:], [world.server], [world.display])
