"""Whether V8 takes the editor's script from a code cache when a document is opened again, by mode."""

import os

from modes import MODES
from v8_log import V8Log

OPENS = 4
SCRIPT = "/editor-w."


def logged(mode_class, log):
    """The mode, in a shell whose V8 keeps a log."""

    class Logged(mode_class):
        def environment(self):
            return {**super().environment(), **log.environment()}

    return Logged


def measure_code_cache(letters, programs, server, package, directory, failures):
    """{letter: {"label", "fromCache": whether each opening took the script from a code cache} or with "problem"}"""
    results = {}
    for mode_class in (each for each in MODES if each.letter in letters):
        folder = os.path.join(directory, "v8-" + mode_class.letter)
        os.makedirs(folder)
        log = V8Log(folder)
        mode, found = None, []
        results[mode_class.letter] = {"label": mode_class.label}
        try:
            mode = logged(mode_class, log)(programs, server, package)
            mode.warm_up(1)
            for _ in range(OPENS):
                log.clear()
                mode.open()
                scripts = log.scripts(SCRIPT)
                found.append(bool(scripts) and all(script.from_cache for script in scripts))
            results[mode_class.letter]["fromCache"] = found
        except failures as failure:
            results[mode_class.letter]["problem"] = str(failure).splitlines()[0][:200]
        finally:
            if mode:
                mode.quit()
    return results
