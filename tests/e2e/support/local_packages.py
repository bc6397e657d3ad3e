"""Front-end packages on this machine, and host files of shells that serve documents from them."""

import os
import re
import shutil

from helio_shell import merged

# Plug-ins by the document kinds that the demo can edit.
PLUGINS = {"w": "quillword", "s": "quillvs"}
PACKAGES = {"w": "word", "s": "vs"}

ADD_ON_GROUP = "60"
PREREQUEST_ITEM = "57911"
ACCELERATE_ITEM = "53613"
PRELOADING_ITEM = "59743"
OFFLINE_EDITING_ITEM = "60708"
DELAYED_LOAD_ITEM = "59777"
PROXY_RESET_ITEM = "60994"
VERSION_CHECK_ITEM = "62377"


def switches(preloading=False, version_check=False, delay_ms=None, proxy_reset=False, offline_editing=None, **accelerate):
    """Items of the configuration centre that turn the local packages on; `offline_editing` None: as the shell has it."""
    items = {
        ACCELERATE_ITEM: {"DOPMasterSwitch": True, "wordDOPSwitch": True, "vsDOPSwitch": True, **accelerate},
        PRELOADING_ITEM: {"enabled": preloading},
        PROXY_RESET_ITEM: {"enabled": proxy_reset},
        VERSION_CHECK_ITEM: {"enabled": version_check},
    }
    if delay_ms is not None:
        items[DELAYED_LOAD_ITEM] = {"enabled": True, "delay_interval": delay_ms}
    if offline_editing is not None:
        names = ("DOPOfflineEditMasterSwitch", "wordDOPSwitch", "vsDOPSwitch")
        items[OFFLINE_EDITING_ITEM] = {name: offline_editing for name in names}
    return {"configCentre": {ADD_ON_GROUP: items}}


def plugin_members(paths, **extra):
    """Members of a host file that name the packages: {"w": directory}."""
    plugins = {PLUGINS[office_type]: {"path": path} for office_type, path in paths.items()}
    return merged({"plugins": plugins}, extra)


def installed_packages(build):
    """The packages that the build made, by document kind."""
    return {kind: os.path.join(build, "webapp", "packages", plugin) for kind, plugin in PLUGINS.items()}


def copy_package(source, directory, version):
    """A copy of a package that says it is another version. Returns its directory."""
    target = os.path.join(directory, os.path.basename(source) + "-" + version)
    shutil.copytree(source, target)
    with open(os.path.join(target, "version"), "w", encoding="utf-8") as file:
        file.write(version)
    pages = os.path.join(target, "dist_langs", "zh-CN")
    for name in os.listdir(pages):
        path = os.path.join(pages, name)
        with open(path, encoding="utf-8") as file:
            text = file.read()
        with open(path, "w", encoding="utf-8") as file:
            file.write(re.sub(r'data-front-version="[^"]*"', 'data-front-version="%s"' % version, text))
    return target
