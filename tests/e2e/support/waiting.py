"""Waiting for what cannot tell by itself that it is there: a file, a process, a server's log, a page's document."""

import time

# How often it is looked at.
LOOK_EVERY = 0.03


class WaitedInVain(AssertionError):
    """What was waited for did not come; the text says what that was."""


def until(is_done, what, timeout):
    """Waits until `is_done()` is true, and returns its value. `what` is a text, or makes one when it did not come."""
    deadline = time.monotonic() + timeout
    while not (value := is_done()):
        if time.monotonic() > deadline:
            raise WaitedInVain("waited %d s in vain: %s" % (timeout, what() if callable(what) else what))
        time.sleep(LOOK_EVERY)
    return value
