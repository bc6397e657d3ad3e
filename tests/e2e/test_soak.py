"""A short soak, always the same; `./test --soak MINUTES` runs long ones."""

import time
import unittest

from soak import report
from soak.run import Soak

SEED = 1
ROUNDS = 10


class SoakTest(unittest.TestCase):
    def test_everything_holds(self):
        soak = Soak(SEED, rounds=ROUNDS, is_short=True, most_failures=1)
        start = time.monotonic()
        soak.run()
        print(report.text(soak, time.monotonic() - start))
        self.assertEqual(soak.failures, [])


if __name__ == "__main__":
    unittest.main()
