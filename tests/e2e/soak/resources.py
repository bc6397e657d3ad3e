"""Memory and descriptors of every process of the world, by what the process is for."""

import collections
import os
import re
import time

from processes import children, command_line

# In KiB. `own` is what the process made itself, the heap and shared buffers: it does not depend on who else runs, as `pss`
# and `rss` do with their shares of libraries.
Usage = collections.namedtuple("Usage", "processes own pss rss descriptors")

# Growth up to this is none: caches of a process are larger than a few pages, and a descriptor more may be a timer.
GROWTH = 1.15
SMALL_OWN = 8 << 10
FEW_DESCRIPTORS = 4

# Longer than the shell waits, after the last page went, before it gives memory back.
QUIET_SECONDS = 4


def role(pid):
    arguments = command_line(pid)
    if not arguments:
        return None
    name = os.path.basename(arguments[0])
    kinds = [each.split("=")[1] for each in " ".join(arguments).split() if each.startswith("--type=")]
    return "%s (%s)" % (name, kinds[0]) if kinds else name


def members(world):
    """The processes of the world, by role."""
    of = children()
    open_pids, found = [world.shell.pid], []
    while open_pids:
        pid = open_pids.pop()
        found.append(pid)
        open_pids += of.get(pid, ())
    found += [pid for pid in (world.service, world.server.pid) if pid and pid not in found]
    by_role = collections.defaultdict(list)
    for pid in found:
        if name := role(pid):
            by_role[name].append(pid)
    return by_role


def sizes(pid):
    with open("/proc/%d/smaps_rollup" % pid, encoding="ascii") as file:
        text = file.read()
    anonymous, shared, pss, rss = (int(re.search(r"^%s:\s+(\d+)" % name, text, re.M).group(1))
                                   for name in ("Pss_Anon", "Pss_Shmem", "Pss", "Rss"))
    return anonymous + shared, pss, rss


def measure(world):
    """{role: Usage}; a process that ends meanwhile is left out."""
    result = {}
    for name, pids in members(world).items():
        total = [0] * len(Usage._fields)
        for pid in pids:
            try:
                one = (1, *sizes(pid), len(os.listdir("/proc/%d/fd" % pid)))
            except (OSError, AttributeError):
                continue
            total = [a + b for a, b in zip(total, one)]
        result[name] = Usage(*total)
    return result


def settled(world):
    """The usage once nothing changes any more: for some seconds the same processes, and all but the same memory."""
    latest, since = measure(world), time.monotonic()

    def is_quiet():
        nonlocal latest, since
        now = measure(world)
        total = sum(each.own for each in now.values())
        change = abs(total - sum(each.own for each in latest.values()))
        if change > total / 100 or {name: each.processes for name, each in now.items()} != \
                {name: each.processes for name, each in latest.items()}:
            latest, since = now, time.monotonic()
        return time.monotonic() - since >= world.limit(QUIET_SECONDS)
    world.until(is_quiet, "processes and memory settle", 60)
    return measure(world)


def grown(start, end):
    """What of `end` is above `start` by more than growth allows, as texts."""
    found = []
    for name, now in end.items():
        before = start.get(name)
        if before is None:
            continue
        if now.processes > before.processes:
            found.append("%s: %d processes, were %d" % (name, now.processes, before.processes))
        if now.own > before.own * GROWTH + SMALL_OWN:
            found.append("%s: %.1f MiB of memory, were %.1f" % (name, now.own / 1024, before.own / 1024))
        if now.descriptors > before.descriptors * GROWTH + FEW_DESCRIPTORS:
            found.append("%s: %d descriptors, were %d" % (name, now.descriptors, before.descriptors))
    return found
