"""Resident memory of a program and of everything that it started: shared pages count by their share."""

import glob


def _parents():
    found = {}
    for path in glob.glob("/proc/[0-9]*/stat"):
        try:
            with open(path, encoding="utf-8", errors="replace") as file:
                found[int(path.split("/")[2])] = int(file.read().rpartition(")")[2].split()[1])
        except OSError:
            continue  # it ended meanwhile
    return found


def _names_directory(pid, directory):
    try:
        with open("/proc/%d/cmdline" % pid, "rb") as file:
            return directory.encode() in file.read().split(b"\0")
    except OSError:
        return False


def processes_of(pid, data_dir):
    """The process, those below it, and those that went on alone with the same data directory (the cloud service)."""
    parents = _parents()
    found = {pid} | {each for each in parents if _names_directory(each, data_dir)}
    while True:
        more = {each for each, parent in parents.items() if parent in found} - found
        if not more:
            return found
        found |= more


def proportional_bytes(pids):
    """The sum of the proportional set sizes."""
    kilobytes = 0
    for pid in pids:
        try:
            with open("/proc/%d/smaps_rollup" % pid, encoding="ascii") as file:
                kilobytes += sum(int(line.split()[1]) for line in file if line.startswith("Pss:"))
        except OSError:
            continue
    return kilobytes * 1024
