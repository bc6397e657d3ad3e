"""python3 -m soak: the soak of ./test --soak."""

import sys
import time

from long_run import parse_arguments
from soak import report
from soak.run import Soak


def main():
    arguments = parse_arguments("soak", __doc__)
    seed = arguments.seed
    print("Soak of %g minutes with seed %d" % (arguments.minutes, seed), flush=True)
    soak = Soak(seed, seconds=arguments.minutes * 60, patience=arguments.patience)
    start = time.monotonic()
    is_good = soak.run()
    print(report.text(soak, time.monotonic() - start))
    return 0 if is_good else 1


if __name__ == "__main__":
    sys.exit(main())
