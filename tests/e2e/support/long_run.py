"""What the programs that run for as long as they are told have in common: their arguments."""

import argparse
import random


def parse_arguments(name, description):
    """Minutes, seed (one of its own when none is given) and patience."""
    parser = argparse.ArgumentParser(prog=name, description=description)
    parser.add_argument("--minutes", type=float, required=True)
    parser.add_argument("--seed", type=int, default=None, help="decides all that is done; one of its own without it")
    parser.add_argument("--patience", type=float, default=1.0, help="stretches every limit, for builds that are slow")
    arguments = parser.parse_args()
    if arguments.seed is None:
        arguments.seed = random.SystemRandom().randrange(10**6)
    return arguments
