"""What goes wrong: each function is one fault and the way back from it, with the world as its argument."""

import os
import signal

from soak.actions import a_document, open_document, transfer


def kill_renderer(world):
    page = a_document(world)
    world.wait_until_safe(page, [world.type_word(page)])
    since = world.shell.mark()
    world.shell.call("browser.crash", page=page)
    world.ready(page, since)


def kill_service(world):
    pid = world.service
    if pid:
        os.kill(pid, signal.SIGKILL)
    page = a_document(world)
    world.wait_until_safe(page, [world.type_word(page)])


def kill_service_while_transferring(world):
    def kill(page):
        world.until_page(page, "window.reports.length > 0", 60)
        os.kill(world.until(lambda: world.service, "the cloud service runs", 30), signal.SIGKILL)
    transfer(world, kill)


def kill_service_as_it_is_asked(world):
    """It may not have noted the transfer yet."""
    def kill(_):
        pid = world.service
        if pid:
            os.kill(pid, signal.SIGKILL)
    transfer(world, kill)


def come_back(world):
    """A new shell on the same data directory; what the old one showed is opened again."""
    world.start_shell()
    if world.shell.call("shell.state")["recoverable"]:
        world.shell.call("dialog.answer", dialog="recover", value=True)
        world.until(world.pages, "the documents of the killed shell are back", 30)
        for page in list(world.documents()):
            world.bring_back(page)


def kill_shell(world):
    page = a_document(world)
    words = [world.type_word(page)]
    if world.dice.random() < 0.7:
        world.wait_until_safe(page, words)
    world.shell.kill()
    come_back(world)


def quit_shell(world):
    for page in list(world.documents()):
        world.bring_back(page)
        world.wait_until_safe(page, [])
    status = world.shell.quit(timeout=world.limit(60))
    assert status == 0, "the shell ended with status %s: %s" % (status, world.shell.errors())
    come_back(world)


def server_down_and_back(world):
    page = a_document(world)
    world.wait_until_safe(page, [])
    world.server.kill()
    words = [world.type_word(page) for _ in range(world.dice.randint(1, 3))]
    world.wait_until_safe(page, words)
    world.server.start()
    world.wait_until_safe(page, words, 120, wanted=("saved",))


def kill_shell_while_the_server_is_down(world):
    page = a_document(world)
    world.wait_until_safe(page, [])
    world.server.kill()
    world.wait_until_safe(page, [world.type_word(page)])
    world.shell.kill()
    if world.dice.random() < 0.5:
        world.server.start()
        come_back(world)
    else:
        come_back(world)
        world.server.start()


def full_disk(world):
    """The server's disk is full for a while, or that of the local packages: nothing that was called safe goes."""
    disks = [disk for disk in (world.server_disk, world.local_disk) if disk.can_be_full]
    if not disks:
        raise NotPossible("no file system of its own can be mounted here")
    disk = world.dice.choice(disks)
    page = a_document(world)
    world.wait_until_safe(page, [])
    disk.fill()
    try:
        words = [world.type_word(page)]
        try:
            world.wait_until_safe(page, words, 5)
        except AssertionError:
            pass  # the page says that it is not safe, which is right
    finally:
        disk.empty()
    world.wait_until_safe(page, words, 120)


def change_clock(world):
    """The documents server finds itself at another time, and then back."""
    if not world.clock.can_be_set:
        raise NotPossible("libfaketime is not installed")
    page = a_document(world)
    world.clock.set(world.dice.choice((-1, 1)) * world.dice.choice((60, 3600, 86400, 400 * 86400)))
    try:
        world.wait_until_safe(page, [world.type_word(page)])
        open_document(world)
    finally:
        world.clock.set(0)
    page = a_document(world)
    world.wait_until_safe(page, [world.type_word(page)])


class NotPossible(Exception):
    """This machine does not let the fault happen."""
