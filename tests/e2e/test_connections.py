"""What processes hold of each other: descriptors, and connections that were idle for long."""

import collections
import os
import signal
import time
import unittest

from e2e_case import BUILD, TABLE_DOCUMENT, TEXT_DOCUMENT
from local_packages import installed_packages
from package_case import PackageCase, service_process

CLOSE_ON_EXEC = 0o2000000
ESTABLISHED = "01"
LISTENING = "0A"

Socket = collections.namedtuple("Socket", "local remote state")  # ports; the state as the kernel writes it


def children_of(pid):
    """Every process below this one, as (process, program); also those that were started to be on their own."""
    result = []
    for number in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open("/proc/%s/stat" % number, encoding="utf-8", errors="replace") as file:
                stat = file.read()
            with open("/proc/%s/cmdline" % number, encoding="utf-8", errors="replace") as file:
                arguments = file.read().split("\0")
        except OSError:
            continue
        session = int(stat.rsplit(")", 1)[1].split()[3])
        if session == pid and int(number) != pid:
            result.append((int(number), os.path.basename(arguments[0])))
    return result


def descriptors(pid):
    """Number to what it leads to."""
    result = {}
    for number in os.listdir("/proc/%d/fd" % pid):
        try:
            result[int(number)] = os.readlink("/proc/%d/fd/%s" % (pid, number))
        except OSError:
            pass  # closed meanwhile
    return result


def closes_on_exec(pid, number):
    with open("/proc/%d/fdinfo/%d" % (pid, number), encoding="ascii") as file:
        flags = next(line.split()[1] for line in file if line.startswith("flags:"))
    return bool(int(flags, 8) & CLOSE_ON_EXEC)


def tcp_sockets():
    """"socket:[inode]" to what it is, of this machine's IPv4 connections."""
    result = {}
    with open("/proc/net/tcp", encoding="ascii") as file:
        for line in list(file)[1:]:
            fields = line.split()
            ports = [int(address.split(":")[1], 16) for address in fields[1:3]]
            result["socket:[%s]" % fields[9]] = Socket(*ports, fields[3])
    return result


class ConnectionsTest(PackageCase):
    def start(self, **settings):
        """A shell with a document open, which has started the service."""
        shell = self.start_with(installed_packages(BUILD), {"settings": {"requestGateway/" + name: value
                                                                         for name, value in settings.items()}})
        return shell, self.open_text(shell), self.service_of(shell)

    def service_of(self, shell):
        deadline = time.monotonic() + 20
        while not (process := service_process(shell.data_dir)):
            self.assertLess(time.monotonic(), deadline, "the cloud service runs")
            time.sleep(0.05)
        return process

    def restart_service(self, shell, service):
        """Has the service started again while the browser's connections are open. Returns the new process."""
        os.kill(service, signal.SIGKILL)
        self.open_promptly(shell, TABLE_DOCUMENT)
        return self.service_of(shell)

    def open_promptly(self, shell, path):
        began = time.monotonic()
        page = self.open_text(shell, path)
        self.assertLess(time.monotonic() - began, 12, "opened " + path)
        return page

    def listening_port(self, shell):
        sockets = tcp_sockets()
        ports = {sockets[target].local for target in descriptors(shell.pid).values()
                 if target in sockets and sockets[target].state == LISTENING}
        self.assertEqual(len(ports), 1, "the gateway's is the only one")
        return ports.pop()

    def gateway_sockets(self, shell):
        """The shell's own connections, without the browser's: number to what it is."""
        port = self.listening_port(shell)
        server = (self.server.http_port, self.server.https_port)
        sockets = tcp_sockets()
        return {number: sockets[target] for number, target in descriptors(shell.pid).items()
                if target in sockets and (sockets[target].local == port or sockets[target].remote in server)}

    def test_child_processes_hold_nothing_of_the_shell(self):
        shell, _, service = self.start()
        service = self.restart_service(shell, service)
        own = descriptors(shell.pid)
        gateway = self.gateway_sockets(shell)
        self.assertGreater(len(gateway), 2, "the port, browser's connections and the server's")
        for number, socket in gateway.items():
            self.assertTrue(closes_on_exec(shell.pid, number), "%d: %s" % (number, socket))

        held = descriptors(service)
        self.assertEqual([held[number] for number in (0, 1, 2)], ["/dev/null"] * 3)
        connections = {target for target in own.values() if target.startswith(("socket:", "pipe:"))}
        self.assertEqual(connections & set(held.values()), set())
        for target in held.values():
            if target.startswith("/") and target != "/dev/null":
                self.assertIn("vltcloudsvr", os.path.basename(target))

        gateway_targets = {own[number] for number in gateway if number in own}
        children = children_of(shell.pid)
        self.assertIn("QtWebEngineProcess", [program for _, program in children])
        for pid, program in children:
            self.assertEqual(gateway_targets & set(descriptors(pid).values()), set(), program)

    def test_port_and_output_end_with_the_shell(self):
        shell, _, service = self.start()
        port = self.listening_port(shell)
        os.kill(service, signal.SIGSTOP)  # it does not notice that its client leaves
        self.addCleanup(os.kill, service, signal.SIGKILL)
        self.assertEqual(shell.quit(), 0)
        self.assertTrue(os.path.exists("/proc/%d" % service))
        self.assertTrue(shell.output_has_ended)
        self.assertFalse([each for each in tcp_sockets().values() if each.local == port and each.state == LISTENING])

    def test_documents_and_tabs_open_after_a_quiet_time(self):
        shell, page, service = self.start(idleMs=1000, farewellMs=300, serverIdleMs=1000)
        self.restart_service(shell, service)
        for path in (TABLE_DOCUMENT, TEXT_DOCUMENT):
            self.wait_until_quiet(shell)
            other = self.open_promptly(shell, path)
            self.wait_until_quiet(shell)
            began = time.monotonic()
            self.assertEqual(shell.evaluate(page, "return (await fetch('/', {cache: 'no-store'})).status"), 200)
            self.assertLess(time.monotonic() - began, 5, "a page that was open")
            shell.call("page.close", page=other)

    def wait_until_quiet(self, shell):
        """Waits until the gateway has ended every connection that nothing is under way on."""
        port = self.listening_port(shell)
        deadline = time.monotonic() + 30
        while open_ones := [each for each in self.gateway_sockets(shell).values()
                            if each.local == port and each.state == ESTABLISHED]:
            self.assertLess(time.monotonic(), deadline, open_ones)
            time.sleep(0.1)


if __name__ == "__main__":
    unittest.main()
