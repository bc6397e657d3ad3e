"""python3 -m walks: the walks of ./test --walk."""

import sys
import time

from long_run import parse_arguments
from walks.walk import Walk

STEPS_A_WALK = 100


def main():
    arguments = parse_arguments("walks", __doc__)
    seed = arguments.seed
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
