"""One end of a tunnel over UDP: near (10.9.0.2, to 198.51.100.40) or far (10.9.0.1). No encryption: this is a lab."""
import fcntl
import os
import select
import socket
import struct
import subprocess
import sys

side = sys.argv[1]
device = os.open("/dev/net/tun", os.O_RDWR)
fcntl.ioctl(device, 0x400454CA, struct.pack("16sH22x", b"vpn", 0x1001))  # TUNSETIFF, IFF_TUN | IFF_NO_PI
own = "10.9.0.2" if side == "near" else "10.9.0.1"
for command in (f"address add {own}/24 dev vpn", "link set vpn mtu 1400 up"):
    subprocess.run(["ip", *command.split()], check=True)
wire = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
wire.bind(("0.0.0.0" if side == "near" else "198.51.100.40", 5555))
peer = ("198.51.100.40", 5555) if side == "near" else None
print("ready", flush=True)
while True:
    for source in select.select([device, wire], [], [])[0]:
        if source == device:
            packet = os.read(device, 2048)
            try:
                if peer:
                    wire.sendto(packet, peer)
            except OSError:
                pass  # no way at the moment
        else:
            packet, peer = wire.recvfrom(2048)
            os.write(device, packet)
