"""The rounds of a soak: what is done how often, what is checked, and what is told at the end."""

import collections
import os
import random
import sys
import time
import traceback

import evidence
from e2e_case import FAILURES

from soak import actions, faults, invariants, resources
from soak.world import World

ROUNDS_A_SETTLING = 10
# The shell ends, by force or as it should, only in the first rounds of a block: in the others one shell grows old.
ROUNDS_A_BLOCK, RESTLESS_ROUNDS = 60, 20
ACTIONS_A_ROUND = (2, 5)
LATEST_ACTIONS = 20


def quiet(world):
    actions.stay_quiet(world, world.dice.triangular(30, 300, 30))


def short_quiet(world):
    actions.stay_quiet(world, world.dice.uniform(0.5, 2))


RESTARTS = [(1, faults.kill_shell), (1, faults.quit_shell), (1, faults.kill_shell_while_the_server_is_down)]

# What is done, and how often beside the others.
COMMON = [
    (6, actions.open_document), (10, actions.edit_and_save), (3, actions.edit_and_close), (3, actions.close_document),
    (4, actions.reload), (3, actions.release_and_come_back), (3, actions.look_at_tabs), (1, actions.open_table),
    (1, actions.print_document), (2, actions.choose_files), (2, actions.transfer), (1, actions.sign_out_and_in),
    (2, faults.kill_renderer), (2, faults.kill_service), (1, faults.kill_service_while_transferring),
    (1, faults.kill_service_as_it_is_asked),
    (2, faults.server_down_and_back), (1, faults.full_disk), (1, faults.change_clock), (2, short_quiet),
]  # fmt: skip
LONG = COMMON + [(1, quiet)]


class Life:
    """What is known of one shell: what it still has to do once to be warm, and what it took then."""

    def __init__(self, shell, dice):
        self.shell = shell
        self.undone = [action for _, action in COMMON]
        dice.shuffle(self.undone)
        self.rounds = 0
        self.start_usage = None


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
        self.longest_life = None  # rounds, usage at its start and end
        self._latest = collections.deque(maxlen=LATEST_ACTIONS)
        self._life = None

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
        try:
            for _, restart in RESTARTS:
                self._do(restart, world)
            while not self.is_over:
                if self._life is None or self._life.shell is not world.shell:
                    self._life = Life(world.shell, self._dice)
                self._round(world)
            self._settle(world)
            assert watch.longest < world.limit(invariants.LONGEST_HOLD), "the window was held %.1f s" % watch.longest
            status = world.shell.quit(timeout=world.limit(60))
            assert status == 0, "the shell ended with status %s" % status
        except Exception as error:  # whatever it is, it is what the soak is there to find
            self._note_failure(world, error)
        finally:
            watch.end()
            self.longest_hold = max(self.longest_hold, watch.longest)
            self.holds += watch.over_limit
            world.end()

    def _round(self, world):
        self.rounds += 1
        for _ in range(self._dice.randint(*ACTIONS_A_ROUND)):
            if self._life.shell is not world.shell:
                break
            self._do(self._choose(), world)
        self._latest.append("round %d: what has to hold" % self.rounds)
        invariants.check(world)
        self._life.rounds += 1
        if self._life.start_usage is None or self._life.rounds % ROUNDS_A_SETTLING == 0:
            self._settle(world)

    def _do(self, action, world):
        name = action.__name__
        start = time.monotonic()
        self._latest.append("round %d: %s" % (self.rounds, name))
        try:
            action(world)
        except faults.NotPossible as reason:
            self.left_out.add("%s: %s" % (name, reason))
            return
        self.counts[name] += 1
        self._latest[-1] += ", %.1f s" % (time.monotonic() - start)

    def _choose(self):
        """What the shell has not done yet, then by weight."""
        if self._life.undone:
            return self._life.undone.pop()
        is_restless = self.rounds % ROUNDS_A_BLOCK <= RESTLESS_ROUNDS
        table = self._table + (RESTARTS if is_restless else [])
        return self._dice.choices([action for _, action in table], [weight for weight, _ in table])[0]

    def _settle(self, world):
        """Closes all pages, and holds memory and descriptors against those of the same shell when it was warm."""
        life = self._life
        if life.shell is not world.shell or life.undone:
            return
        self._latest.append("round %d: all pages are closed" % self.rounds)
        for page in world.pages():
            world.close(page)
        usage = resources.settled(world)
        if life.start_usage is None:
            life.start_usage, life.rounds = usage, 0
            return
        if self.longest_life is None or life.rounds >= self.longest_life[0]:
            self.longest_life = life.rounds, life.start_usage, usage
        grown = resources.grown(life.start_usage, usage)
        assert not grown, "grown in %d rounds: %s" % (life.rounds, "; ".join(grown))

    def _note_failure(self, world, error):
        text = "".join(traceback.format_exception_only(error)).strip()
        place = traceback.extract_tb(error.__traceback__)[-1]
        title = "seed %d, round %d" % (self.seed, self.rounds)
        self.failures.append("%s: %s" % (title, text))
        print("\n%s FAILED\n%s\n  at %s:%d\nThe latest actions:\n  %s" % (
            title, text, place.filename, place.lineno, "\n  ".join(self._latest)), file=sys.stderr, flush=True)
        directory = os.path.join(FAILURES, "soak-%d-%d" % (self.seed, self.rounds))
        evidence.keep(directory, title, world.shells[-2:], [world.server], [world.display])
