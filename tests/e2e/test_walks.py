"""Short walks, always the same; `./test --walk MINUTES` goes on with others."""

import unittest

from walks.walk import Walk

STEPS = 60


class WalkCase(unittest.TestCase):
    def walk(self, seed):
        walk = Walk(seed, steps=STEPS)
        self.assertTrue(walk.run(), walk.failure)
        self.assertEqual(walk.steps, STEPS)


class FirstWalkTest(WalkCase):
    def test_everything_holds(self):
        self.walk(1)


class SecondWalkTest(WalkCase):
    def test_everything_holds(self):
        self.walk(2)


class ThirdWalkTest(WalkCase):
    def test_everything_holds(self):
        self.walk(3)


class FourthWalkTest(WalkCase):
    def test_everything_holds(self):
        self.walk(4)


if __name__ == "__main__":
    unittest.main()
