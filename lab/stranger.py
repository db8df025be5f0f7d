"""Somebody who means no good, in the namespace where it runs. Usage: stranger.py KIND CLIENT

  errors   forges three ICMP errors about every datagram that the client sends to 1.1.1.1, from an address of nobody
  routes   changes a default route that is not used several hundred times a second
"""
import os
import socket
import struct
import subprocess
import sys
import time

KINDS = ((3, 1), (11, 0), (3, 3), (3, 13), (3, 4))  # ICMP type and code: unreachable, expired, port, forbidden, too large


def checksum(data):
    total = sum(struct.unpack(f"!{len(data) // 2}H", data))
    total = (total & 0xffff) + (total >> 16)
    return ~(total + (total >> 16)) & 0xffff


def header(source, to, protocol, length):
    head = struct.pack("!BBHHHBBH", 0x45, 0, length, 1, 0, 64, protocol, 0) + socket.inet_aton(source) + socket.inet_aton(to)
    return head[:10] + struct.pack("!H", checksum(head)) + head[12:]


def forge_errors(client):
    heard = socket.socket(socket.AF_PACKET, socket.SOCK_DGRAM, socket.htons(0x0800))
    raw = socket.socket(socket.AF_INET, socket.SOCK_RAW, socket.IPPROTO_RAW)
    outer, count = header("10.9.8.7", client, 1, 56), 0
    while True:
        packet = heard.recv(2048)
        if packet[9] != 17 or packet[12:20] != socket.inet_aton(client) + socket.inet_aton("1.1.1.1"):
            continue
        count += 1
        message = struct.pack("!BBHHH", *KINDS[count % len(KINDS)], 0, 0, 576) + packet[:28].ljust(28, b"\0")
        message = message[:2] + struct.pack("!H", checksum(message)) + message[4:]
        for _ in range(3):
            raw.sendto(outer + message, (client, 0))


def change_routes():
    batch = "route add default dev eth0 metric 9000\nroute del default dev eth0 metric 9000\n" * 100
    while True:
        subprocess.run(["ip", "-batch", "-"], input=batch, text=True, check=True)
        time.sleep(0.2)


if __name__ == "__main__":
    print("ready", flush=True)
    os.dup2(2, 1)
    forge_errors(sys.argv[2]) if sys.argv[1] == "errors" else change_routes()
