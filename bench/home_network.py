"""A healthy network as people have it: a router that is the internet too, and a way to it that takes its time.

Answers that come in no time would be unlike any network: whoever asks then finds them there before going to sleep, and
is spared the waking up.
"""
import collections
import fcntl
import multiprocessing
import os
import select
import socket
import struct
import subprocess
import sys
import tempfile
import threading
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, f"{HERE}/../lab")
import servers  # noqa: E402
import world  # noqa: E402

ROUTER = "192.0.2.1"
INTERNET = "1.1.1.1"
NEAR = "near"  # this end of the way
ELSEWHERE = "198.51.100.9"  # every name's address
ONE_WAY = 0.005  # seconds
TUNSETIFF, IFF_TAP, IFF_NO_PI = 0x400454CA, 0x0002, 0x1000
LARGEST_FRAME = 2048


def open_tap(name):
    device = os.open("/dev/net/tun", os.O_RDWR)
    fcntl.ioctl(device, TUNSETIFF, struct.pack("16sH", name.encode(), IFF_TAP | IFF_NO_PI))
    return device


def carry(ends):
    """What goes in at one end comes out at the other, later."""
    under_way = collections.deque()
    while True:
        patience = max(0, under_way[0][0] - time.monotonic()) if under_way else None
        for end in select.select(ends, [], [], patience)[0]:
            frame = os.read(end, LARGEST_FRAME)
            under_way.append((time.monotonic() + ONE_WAY, ends[1 - ends.index(end)], frame))
        while under_way and under_way[0][0] <= time.monotonic():
            _, end, frame = under_way.popleft()
            try:
                os.write(end, frame)
            except OSError:
                pass  # that end is down


def look_up():
    """A resolver that knows one IPv4 address for every name, and no other record (RFC 1035)."""
    names = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    names.bind(("", 53))
    while True:
        query, asker = names.recvfrom(512)
        question = query[12:query.index(0, 12) + 5]
        found = question.endswith(bytes([0, 1, 0, 1]))
        record = struct.pack(">3HIH4B", 0xc00c, 1, 1, 60, 4, *socket.inet_aton(ELSEWHERE)) if found else b""
        names.sendto(query[:2] + struct.pack(">5H", 0x8180, 1, found, 0, 0) + question + record, asker)


def serve_pages(certificates):
    """The page that a check for a portal wants, with a certificate that is trusted inside."""
    with socket.create_server((ELSEWHERE, 443), backlog=64) as listener:
        answer_page = servers.tls(certificates, "web", servers.http)
        while True:
            connection = listener.accept()[0]
            connection.settimeout(5)
            try:
                answer_page(connection)
            except OSError:
                pass
            connection.close()


def answer(certificates):
    for service, arguments in ((look_up, ()), (serve_pages, (certificates,))):
        threading.Thread(target=service, args=arguments, daemon=True).start()
    with socket.create_server(("", 80), backlog=64) as listener:
        while True:
            listener.accept()[0].close()


def answer_inside(namespace, certificates):
    """In a process of its own, in the network namespace of that path."""
    command = f"import sys; sys.path.insert(0, {HERE!r}); import home_network; home_network.answer({certificates!r})"
    return subprocess.Popen(["nsenter", f"--net={namespace}", "/usr/bin/python3", "-c", command])


class HomeNetwork:
    """Made in the network and mount namespace of the caller, which are the caller's own."""

    def __init__(self):
        self.resolver = tempfile.NamedTemporaryFile("w", prefix="resolv.")
        self.resolver.write(f"nameserver {ROUTER}\n")
        self.resolver.flush()
        subprocess.run(["mount", "--bind", self.resolver.name, os.path.realpath("/etc/resolv.conf")], check=True)
        self.certificates = tempfile.TemporaryDirectory()
        subprocess.run(["sh", "-ec", world.CERTIFICATES], cwd=self.certificates.name, check=True, capture_output=True)
        subprocess.run(["mount", "--bind", f"{self.certificates.name}/certs", "/etc/ssl/certs"], check=True)
        peer = subprocess.Popen(["unshare", "--net", "sh", "-c", "echo; exec sleep infinity"], stdout=subprocess.PIPE)
        peer.stdout.readline()
        namespace = f"/proc/{peer.pid}/ns/net"
        ends = [open_tap(NEAR), open_tap("far")]
        inside = ["nsenter", f"--net={namespace}"]
        for command in (["ip", "link", "set", "lo", "up"],
                        ["ip", "link", "set", "far", "netns", str(peer.pid)],
                        [*inside, "ip", "address", "add", f"{ROUTER}/24", "dev", "far"],
                        [*inside, "ip", "address", "add", f"{INTERNET}/32", "dev", "lo"],
                        [*inside, "ip", "address", "add", f"{ELSEWHERE}/32", "dev", "lo"],
                        [*inside, "ip", "link", "set", "lo", "up"], [*inside, "ip", "link", "set", "far", "up"],
                        ["ip", "address", "add", "192.0.2.2/24", "dev", NEAR], ["ip", "link", "set", NEAR, "up"],
                        ["ip", "route", "add", "default", "via", ROUTER]):
            subprocess.run(command, check=True)
        carrier = multiprocessing.get_context("fork").Process(target=carry, args=(ends,), daemon=True)
        carrier.start()
        self.processes = [carrier, answer_inside(namespace, self.certificates.name), peer]

    def cut(self):
        subprocess.run(["ip", "link", "set", NEAR, "down"], check=True)

    def end(self):
        for process in self.processes:
            process.kill()
