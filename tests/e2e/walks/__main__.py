"""python3 -m walks: the walks of ./test --walk."""

import argparse
import random
import sys
import time

from walks.walk import Walk

STEPS_A_WALK = 100


def parse_arguments():
    parser = argparse.ArgumentParser(prog="walks", description=__doc__)
    parser.add_argument("--minutes", type=float, required=True)
    parser.add_argument("--seed", type=int, default=None, help="of the first walk; one of its own without it")
    parser.add_argument("--patience", type=float, default=1.0, help="stretches every limit, for builds that are slow")
    return parser.parse_args()


def main():
    arguments = parse_arguments()
    seed = arguments.seed if arguments.seed is not None else random.SystemRandom().randrange(10**6)
    end = time.monotonic() + arguments.minutes * 60
    steps = 0
    failed = []
    while time.monotonic() < end:
        walk = Walk(seed, steps=STEPS_A_WALK, until=end, patience=arguments.patience)
        if not walk.run():
            failed.append(seed)
        steps += walk.steps
        print("Walk with seed %d: %d steps, %s" % (seed, walk.steps, "FAILED" if seed in failed else "good"), flush=True)
        seed += 1
    print("%d steps; failed seeds: %s" % (steps, failed or "none"))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
