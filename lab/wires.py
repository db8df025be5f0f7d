"""The cables of a world: carries Ethernet frames between pairs of interfaces and spoils them as it is told.

Usage: wires.py CONTROL SEED LINK..., in a namespace that holds the interfaces LINK.near and LINK.far of each link. "Up" is
from near to far. CONTROL is a FIFO; each line of it is LINK KEY=VALUE..., or LINK clear:
  loss=PERCENT delay=MS jitter=MS rate=KBIT queue=MS  of every frame in both directions; loss.up and so on for one
  drop=PROTO[/PORT][@HOST][>BYTES][:up|:down]         such frames are lost; PROTO is tcp, udp, icmp or any; may be repeated
"""
import ctypes
import fcntl
import heapq
import ipaddress
import os
import random
import re
import select
import socket
import struct
import sys
import time

SIOCETHTOOL = 0x8946
# Checksums, segmentation and their receiving counterpart are left to the endpoints: the frames are real.
OFFLOADS = (0x17, 0x1F, 0x24, 0x2C)  # ETHTOOL_STXCSUM, STSO, SGSO, SGRO
PROTOCOLS = {"icmp": (1, 58), "tcp": (6,), "udp": (17,)}
RULE = re.compile(r"(any|tcp|udp|icmp)(?:/(\d+))?(?:@([0-9a-fA-F.:]+?))?(?:>(\d+))?(?::(up|down))?$")
LONGEST_QUEUE = 2000  # frames


def switch_offloads_off(name):
    with socket.socket() as any_socket:
        for command in OFFLOADS:
            value = ctypes.create_string_buffer(struct.pack("II", command, 0))
            request = struct.pack("16sP", name.encode(), ctypes.addressof(value))
            try:
                fcntl.ioctl(any_socket, SIOCETHTOOL, request + bytes(16))
            except OSError:
                pass  # this one is fixed


def header(frame):
    """Protocol, ports, addresses of a frame; absent for what is not IP."""
    kind = frame[12:14]
    if kind == b"\x08\x00":
        ip, protocol, addresses = frame[14:], frame[23], (frame[26:30], frame[30:34])
        payload = ip[(ip[0] & 15) * 4:]
    elif kind == b"\x86\xdd":
        protocol, addresses, payload = frame[20], (frame[22:38], frame[38:54]), frame[54:]
    else:
        return None
    ports = struct.unpack("!HH", payload[:4]) if protocol in (6, 17) and len(payload) >= 4 else ()
    return protocol, ports, addresses


class Rule:
    def __init__(self, text):
        found = RULE.match(text)
        if not found:
            raise ValueError(f"no rule: {text}")
        protocol, port, host, size, self.way = found.groups()
        self.protocols = PROTOCOLS.get(protocol)
        self.port = int(port) if port else None
        self.host = ipaddress.ip_address(host).packed if host else None
        self.size = int(size) if size else 0

    def takes(self, frame, way):
        if (self.way and self.way != way) or len(frame) <= self.size:
            return False
        found = header(frame)
        if not found:
            return False
        protocol, ports, addresses = found
        return ((not self.protocols or protocol in self.protocols) and (self.port is None or self.port in ports)
                and (self.host is None or self.host in addresses))


class Way:
    """One direction of a link."""

    def __init__(self, name, way, source, target):
        self.name, self.way, self.source, self.target = name, way, source, target
        self.clear()

    def clear(self):
        self.loss = self.delay = self.jitter = self.rate = 0.0
        self.queue = 1000.0
        self.rules = []
        self.free_at = 0.0  # when what was sent so far has left
        self.last_due = 0.0

    def due(self, frame, now, chance):
        """When the frame arrives; absent if it is lost."""
        if chance.random() * 100 < self.loss or any(rule.takes(frame, self.way) for rule in self.rules):
            return None
        if self.rate:
            begin = max(now, self.free_at)
            if (begin - now) * 1000 > self.queue:
                return None
            now = self.free_at = begin + len(frame) * 8 / (self.rate * 1000)
        # A cable keeps the order.
        self.last_due = max(self.last_due, now + (self.delay + chance.random() * self.jitter) / 1000)
        return self.last_due


def obey(line, ways):
    link, *words = line.split()
    for way in (each for each in ways if each.name == link):
        for word in words:
            if word == "clear":
                way.clear()
                continue
            key, value = word.split("=", 1)
            key, _, only = key.partition(".")
            if only and only != way.way:
                continue
            if key == "drop":
                way.rules.append(Rule(value))
            else:
                setattr(way, key, float(value))


def main():
    control, seed, *links = sys.argv[1:]
    chance = random.Random(seed)
    ways = []
    for link in links:
        ends = []
        for end in ("near", "far"):
            switch_offloads_off(f"{link}.{end}")
            packet = socket.socket(socket.AF_PACKET, socket.SOCK_RAW, socket.htons(3))  # ETH_P_ALL
            packet.bind((f"{link}.{end}", 0))
            packet.setblocking(False)
            ends.append(packet)
        ways += [Way(link, "up", *ends), Way(link, "down", *reversed(ends))]
    by_source = {way.source.fileno(): way for way in ways}
    commands = os.open(control, os.O_RDWR | os.O_NONBLOCK)
    poll = select.poll()
    for descriptor in [*by_source, commands]:
        poll.register(descriptor, select.POLLIN)
    waiting, number, rest = [], 0, b""
    print("ready", flush=True)
    while True:
        left = max(0.0, waiting[0][0] - time.monotonic()) * 1000 if waiting else 1000
        for descriptor, _ in poll.poll(left):
            if descriptor == commands:
                *lines, rest = (rest + os.read(commands, 65536)).split(b"\n")
                for line in lines:
                    obey(line.decode(), ways)
                continue
            way = by_source[descriptor]
            for _ in range(64):
                try:
                    frame, address = way.source.recvfrom(65536)
                except BlockingIOError:
                    break
                if address[2] == socket.PACKET_OUTGOING:
                    continue
                due = way.due(frame, time.monotonic(), chance)
                if due is not None and len(waiting) < LONGEST_QUEUE:
                    number += 1
                    heapq.heappush(waiting, (due, number, way, frame))
        while waiting and waiting[0][0] <= time.monotonic():
            _, _, way, frame = heapq.heappop(waiting)
            try:
                way.target.send(frame)
            except OSError:
                pass  # the far end is down


if __name__ == "__main__":
    main()
