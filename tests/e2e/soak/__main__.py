"""python3 -m soak: the soak of ./test --soak."""

import argparse
import random
import sys
import time

from soak import report
from soak.run import Soak


def parse_arguments():
    parser = argparse.ArgumentParser(prog="soak", description=__doc__)
    parser.add_argument("--minutes", type=float, required=True)
    parser.add_argument("--seed", type=int, default=None, help="decides all that is done; one of its own without it")
    parser.add_argument("--patience", type=float, default=1.0, help="stretches every limit, for builds that are slow")
    return parser.parse_args()


def main():
    arguments = parse_arguments()
    seed = arguments.seed if arguments.seed is not None else random.SystemRandom().randrange(10**6)
    print("Soak of %g minutes with seed %d" % (arguments.minutes, seed), flush=True)
    soak = Soak(seed, seconds=arguments.minutes * 60, patience=arguments.patience)
    start = time.monotonic()
    is_good = soak.run()
    print(report.text(soak, time.monotonic() - start))
    return 0 if is_good else 1


if __name__ == "__main__":
    sys.exit(main())
