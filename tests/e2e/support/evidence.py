"""What a failed test leaves behind to be looked at: logs, notifications and pictures of its shells."""

import json
import os
import shutil
import sys

from helio_shell import RpcError, ShellEnded

PATIENCE = 5.0


def keep(directory, title, shells, servers=(), displays=()):
    """Fills the directory, which is made anew, and says where it is."""
    shutil.rmtree(directory, ignore_errors=True)
    os.makedirs(directory)
    for number, display in enumerate(displays):
        _try(display.save_picture, os.path.join(directory, "display-%d.png" % number))
    for number, shell in enumerate(shells):
        keep_shell(os.path.join(directory, "shell-%d" % number), shell)
    for number, server in enumerate(servers):
        for path in (server.log_path, server.access_log):
            _try(shutil.copy, path, os.path.join(directory, "server-%d-%s" % (number, os.path.basename(path))))
    print("%s: its logs and pictures are in %s" % (title, directory), file=sys.stderr, flush=True)


def keep_shell(directory, shell):
    os.makedirs(directory)
    _try(shutil.copy, shell.stderr_path, directory)
    _try(shutil.copy, os.path.join(shell.data_dir, "shell.log"), directory)
    with open(os.path.join(directory, "notifications.jsonl"), "w", encoding="utf-8") as file:
        for each in shell.notifications():
            file.write("%.3f %s %s\n" % (each.at, each.method, json.dumps(each.params, ensure_ascii=False)))
    if not shell.is_running:
        return
    state = _try(shell.call, "shell.state", timeout=PATIENCE)
    for window in state["windows"] if state else ():
        for page in window["pages"]:
            picture = os.path.join(directory, "page-%d.png" % page)
            _try(shell.call, "page.screenshot", timeout=PATIENCE, page=page, file=picture)
            with open(os.path.join(directory, "pages.jsonl"), "a", encoding="utf-8") as file:
                file.write(json.dumps(_try(shell.call, "page.state", timeout=PATIENCE, page=page)) + "\n")


def _try(action, *arguments, **options):
    """Evidence is kept as far as it can be had."""
    try:
        return action(*arguments, **options)
    except (OSError, RpcError, ShellEnded, TimeoutError, ValueError):
        return None
