"""The air between the simulated radios: medium.py CONTROL RADIOS. Carries each frame to every other radio, and loses some.

CONTROL is a file with two numbers, which may change at any time: the share of attempts that fail, and the signal in dBm
that everybody hears. Only frames to one receiver are lost, after as many attempts as their sender had allowed; beacons
and other frames to all are heard, so that the link itself stays. While this runs the kernel hands it every frame
(HWSIM_CMD_REGISTER in the kernel's mac80211_hwsim.h); when it ends the radios hear each other directly again.
"""
import random
import socket
import struct
import sys

GENERIC_NETLINK, CONTROL_FAMILY, GET_FAMILY, FAMILY_ID, FAMILY_NAME = 16, 16, 3, 1, 2
REQUEST, WITH_ANSWER = 1, 5
REGISTER, FRAME, TX_INFO = 1, 2, 3
RECEIVER, TRANSMITTER, BYTES, FLAGS, RX_RATE, SIGNAL, TX_RATES, COOKIE, FREQUENCY = 1, 2, 3, 4, 5, 6, 7, 8, 19
ACKNOWLEDGED = 4
RATES = 4  # a frame's sender names so many rates, and how often each may be tried
FRAMES_BETWEEN_LOOKS = 20


def attribute(kind, value):
    return struct.pack("HH", len(value) + 4, kind) + value + bytes(-len(value) % 4)


def attributes(message, at=20):
    found = {}
    while at + 4 <= len(message):
        length, kind = struct.unpack_from("HH", message, at)
        if length < 4:
            break
        found[kind & 0x3fff] = message[at + 4:at + length]
        at += length + 3 & ~3
    return found


class Medium:
    def __init__(self, control, radios):
        self.control, self.radios = control, radios
        self.socket = socket.socket(socket.AF_NETLINK, socket.SOCK_RAW, GENERIC_NETLINK)
        self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 1 << 20)
        self.socket.bind((0, 0))
        self.send(CONTROL_FAMILY, GET_FAMILY, attribute(FAMILY_NAME, b"MAC80211_HWSIM\0"))
        self.family = struct.unpack("H", attributes(self.socket.recv(65536))[FAMILY_ID][:2])[0]
        self.send(self.family, REGISTER, b"", WITH_ANSWER)
        self.look()

    def send(self, family, command, body, flags=REQUEST):
        self.socket.send(struct.pack("IHHIIBBH", 20 + len(body), family, flags, 1, 0, command, 1, 0) + body)

    def look(self):
        with open(self.control, encoding="ascii") as file:
            words = file.read().split()
        if len(words) == 2:  # it is not just being written
            self.loss, self.signal = float(words[0]), struct.pack("i", int(words[1]))

    def attempts(self, rates, may_fail):
        """The attempts at each rate as the sender is told of them, and whether one of them arrived."""
        told, arrived = b"", False
        for at in range(0, 2 * RATES, 2):
            rate, most = struct.unpack_from("bB", rates, at)
            if rate < 0 or arrived:
                told += struct.pack("bB", -1, 0)
                continue
            tries = 0
            while not arrived and tries < max(most, 1):
                tries += 1
                arrived = not may_fail or random.random() >= self.loss
            told += struct.pack("bB", rate, tries)
        return told, arrived

    def carry(self, message):
        frame = attributes(message)
        sender, content = frame[TRANSMITTER], frame[BYTES]
        is_for_all = content[4] & 1
        told, arrived = self.attempts(frame[TX_RATES], not is_for_all)
        for radio in self.radios if arrived else []:
            if radio != sender:
                self.send(self.family, FRAME, attribute(RECEIVER, radio) + attribute(BYTES, content)
                          + attribute(RX_RATE, bytes(4)) + attribute(SIGNAL, self.signal)
                          + attribute(FREQUENCY, frame[FREQUENCY]))
        flags = struct.unpack("I", frame[FLAGS][:4])[0] | (ACKNOWLEDGED if arrived and not is_for_all else 0)
        self.send(self.family, TX_INFO, attribute(TRANSMITTER, sender) + attribute(FLAGS, struct.pack("I", flags))
                  + attribute(SIGNAL, self.signal) + attribute(TX_RATES, told) + attribute(COOKIE, frame[COOKIE]))

    def run(self):
        count = 0
        while True:
            message = self.socket.recv(65536)
            family, command = struct.unpack_from("H", message, 4)[0], message[16]
            if family == self.family and command == FRAME:
                self.carry(message)
            count += 1
            if count % FRAMES_BETWEEN_LOOKS == 0:
                self.look()


# The second address of each radio is the one by which the medium knows it.
Medium(sys.argv[1], [bytes([0x42, 0, 0, 0, number, 0]) for number in range(int(sys.argv[2]))]).run()
