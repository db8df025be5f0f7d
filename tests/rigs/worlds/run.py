#!/usr/bin/env python3
"""Runs netvane and netvane-report in networks as there are, each in namespaces of its own, all at once: what they take for
the router, and what they say of it. Usage: run.py NETVANE NETVANE-REPORT. Ends with 77 where the system gives no namespaces."""
import os
import re
import socket
import subprocess
import sys
import tempfile
import time

SECONDS = 28  # rounds of probes every three seconds; at least eight of them are over by then
FIRST, SECOND, FALLBACK, INTERNET = "10.77.1.1", "10.77.2.1", "192.168.1.1", "1.1.1.1"
DEFAULT = f"route add default via {FIRST} metric 600"
OTHER = f"route replace default via {SECOND} metric 50"
TUNNEL = ["tuntap add dev vpn mode tun", "address add 10.8.0.2/24 dev vpn", "link set vpn up",
          "route add default via 10.8.0.1 metric 50"]

# What port 80 of the first router does; what is set up; what happens while the programs run; the gateways that are told;
# the most packet loss of the router in the end, absent without a probe of it; the most lines about its failures.
WORLDS = {
    "port 80 open": ("accepts", [DEFAULT], [], [FIRST], 0, 0),
    "port 80 closed": ("refuses", [DEFAULT], [], [FIRST], 0, 0),
    "port 80 silent": ("drops", [DEFAULT], [], [FIRST], 50, 1),
    "no router": ("absent", [DEFAULT], [], [FIRST], 100, 2),
    "late route": ("accepts", [], [DEFAULT], [FALLBACK, FIRST], 0, 1),
    "another route": ("refuses", [DEFAULT], [OTHER, "link set near1 down"], [FIRST, SECOND], 0, 0),
    "cable unplugged": ("accepts", [DEFAULT, f"route add default via {SECOND} metric 700"], ["link set near1 down"],
                        [FIRST, SECOND], 0, 0),
    "tunnel": ("accepts", [DEFAULT], TUNNEL, [FIRST], 0, 0),
    "no IPv4": ("accepts", ["address flush dev near1", "address flush dev near2"], [], [FALLBACK], None, 1),
}


def ip(*commands):
    for command in commands:
        subprocess.run(["ip", *command.split()], check=True)


def be_router(mode, address):  # and the internet
    print(flush=True)
    input()  # until its end of the cable is there
    ip("link set lo up", "link set far up", f"address add {INTERNET}/32 dev lo")
    if mode != "absent":
        ip(f"address add {address}/24 dev far")
    listeners = [socket.create_server((host, 80)) for host in ([INTERNET, address] if mode == "accepts" else [INTERNET])]
    if mode == "drops":  # its queue is full
        full = socket.create_server((address, 80), backlog=0)
        waiting = socket.create_connection((address, 80))
    print(flush=True)
    while True:
        listeners[-1].accept()


def add_router(number, address, mode):
    router = subprocess.Popen(["unshare", "--net", sys.executable, __file__, "--router", mode, address], text=True,
                              bufsize=1, stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    router.stdout.readline()
    near = f"near{number}"
    ip(f"link add {near} type veth peer name far netns {router.pid}", f"address add {address}2/24 dev {near}",
       f"link set {near} up")
    print(file=router.stdin)
    router.stdout.readline()


def play(name, netvane, report):
    mode, before, meanwhile, gateways, most_loss, most_lines = WORLDS[name]
    ip("link set lo up")
    add_router(1, FIRST, mode)
    add_router(2, SECOND, "refuses")
    ip(*before)
    with tempfile.TemporaryDirectory() as folder:
        environment = {"PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8", "QT_QPA_PLATFORM": "offscreen", "HOME": folder,
                       "XDG_RUNTIME_DIR": folder, "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/nowhere"}
        environment |= {key: value for key, value in os.environ.items() if key.endswith("SAN_OPTIONS")}
        program, reporter = (subprocess.Popen(words, env=environment, text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                             for words in ([netvane], [report, "--seconds", str(SECONDS)]))
        time.sleep(5)  # by then there is something of before
        ip(*meanwhile)
        text = reporter.communicate(timeout=SECONDS + 20)[0]
        program.terminate()
        lines = program.communicate(timeout=20)[1].splitlines()
    told = [line.split()[-1] for line in lines if line.startswith("Netvane: Default gateway: ")]
    found = re.search(r"## Router Performance\n- Ping: (\S+).*\n.*\n- Packet Loss: ([^\s%]+)", text)
    ping, loss = found.groups() if found else ("N/A", "N/A")
    failures = [line for line in lines if re.match(f"PingService: .*({FIRST}|{SECOND}|{FALLBACK})", line)]
    # A quarter of a second is what an answer seems to take that nobody timed.
    wrong = [what for what, is_so in (
        (f"gateways {told}", told != gateways),
        ("packet loss", loss != "N/A" if most_loss is None else loss == "N/A" or float(loss) > most_loss),
        ("ping", most_loss not in (None, 100) and (ping == "N/A" or float(ping) > 200)),
        (f"lines {failures}", len(failures) > most_lines),
        (f"status {program.returncode}", program.returncode != 0)) if is_so]
    print("FAIL" if wrong else "ok  ", f"{name}: ping {ping}, loss {loss}", *wrong)
    return 1 if wrong else 0


def main():
    if sys.argv[1] == "--router":
        be_router(*sys.argv[2:])
    if sys.argv[1] == "--world":
        return play(*sys.argv[2:])
    # With the first process of a world all others of it end.
    unshare = ["unshare", "--net", "--mount", "--pid", "--fork", "--kill-child", "--mount-proc"]
    unshare += [] if os.geteuid() == 0 else ["--map-root-user"]
    if subprocess.run([*unshare, "true"], capture_output=True).returncode != 0:
        print("no namespaces to be had here")
        return 77
    worlds = [subprocess.Popen([*unshare, sys.executable, __file__, "--world", name, *sys.argv[1:]]) for name in WORLDS]
    return max([world.wait() for world in worlds])


if __name__ == "__main__":
    sys.exit(main())
