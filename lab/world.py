"""One world: namespaces client - router - provider - internet, joined by cables that can be spoiled, and what happens in it.

Runs as the first process of its own network, mount and PID namespaces, so that everything ends with it.
"""
import os
import random
import re
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
LINKS = ("lan", "line", "core")
INTERNET = ("1.1.1.1", "8.8.8.8", "9.9.9.9", "198.51.100.10", "198.51.100.20", "198.51.100.30", "198.51.100.40", "198.51.100.53")
INTERNET6 = ("2606:4700:4700::1111", "2620:fe::fe", "2001:db8:ffff::10", "2001:db8:ffff::30")
CERTIFICATES = """
openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 -subj /CN=Lab -keyout ca.key -out ca.pem
openssl req -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -subj /CN=captive.apple.com -keyout web.key -out web.csr
printf subjectAltName=DNS:captive.apple.com >web.ext
openssl x509 -req -days 2 -in web.csr -CA ca.pem -CAkey ca.key -CAcreateserial -extfile web.ext -out web.crt
cat web.crt web.key >web.pem
openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 -subj /CN=hotel -keyout s.key -out s.crt
cat s.crt s.key >stranger.pem
mkdir -p certs && cp ca.pem certs/ && openssl rehash certs
"""


def read_scenario(path):
    """A list of values for each key, in order."""
    keys = {}
    with open(path) as file:
        for line in file:
            line = line.split(" #")[0].strip()
            if line and not line.startswith("#"):
                key, _, value = line.partition(":")
                keys.setdefault(key.strip(), []).append(value.strip())
    return keys


def sh(command):
    done = subprocess.run(["sh", "-ec", command], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    if done.returncode != 0:
        sys.exit(f"{command}: {done.stderr}")


class World:
    def __init__(self, scenario, seed, folder):
        self.keys, self.folder = scenario, folder
        self.chance = random.Random(seed)
        self.seed, self.net = seed, self.chance.randint(2, 250)
        self.features = set(" ".join(scenario.get("with", [])).split())
        self.children = []

    def build(self):
        f, n = self.folder, self.net
        sh(f"mount -t tmpfs none /run; mkdir /run/netns; mkdir -p {f}/home; mkfifo {f}/wires")
        for name in ("client", "router", "provider", "internet", "wires"):
            sh(f"ip netns add {name}; ip -n {name} link set lo up")
        for name in ("router", "provider", "internet"):
            sh(f"ip netns exec {name} sysctl -qw net.ipv4.ip_forward=1 net.ipv6.conf.all.forwarding=1")
        ends = {"lan": ("client eth0", "router lan"), "line": ("router wan", "provider cust"),
                "core": ("provider out", "internet in0")}
        for link in LINKS:
            for end, place in zip(("near", "far"), ends[link]):
                space, name = place.split()
                sh(f"ip link add {name} netns {space} type veth peer name {link}.{end} netns wires;"
                   f"ip -n wires link set dev {link}.{end} up promisc on;"
                   f"ip netns exec wires sysctl -qw net/ipv6/conf/{link}.{end}/disable_ipv6=1;"
                   f"ip netns exec {space} sysctl -qw net.ipv6.conf.{name}.accept_ra=0 net.ipv6.conf.{name}.accept_dad=0;"
                   f"ip -n {space} link set dev {name} up; ip netns exec {space} {sys.executable} -c "
                   f"'import sys; sys.path.insert(0, \"{HERE}\"); import wires; wires.switch_offloads_off(\"{name}\")'")
        client = f"192.168.{n}"
        sh(f"""ip -n client address add {client}.23/24 dev eth0; ip -n client route add default via {client}.1 metric 100
               ip -n router address add {client}.1/24 dev lan; ip -n router address add 100.64.7.2/24 dev wan
               ip -n router route add default via 100.64.7.1
               ip -n provider address add 100.64.7.1/24 dev cust; ip -n provider address add 203.0.113.1/24 dev out
               ip -n provider route add {client}.0/24 via 100.64.7.2; ip -n provider route add default via 203.0.113.2
               ip -n internet address add 203.0.113.2/24 dev in0; ip -n internet route add default via 203.0.113.1""")
        for address in INTERNET:
            sh(f"ip -n internet address add {address}/32 dev lo")
        if "ipv6" in self.features:
            self.add_ipv6()
        servers = self.keys.get("nameservers", ["router"])[0].split()
        with open(f"{f}/resolv.conf", "w") as file:
            for server in servers:
                file.write(f"nameserver {self.fill(server)}\n")
        sh(f"mount --bind {f}/resolv.conf /etc/resolv.conf; mount --bind {os.path.dirname(f)}/certs /etc/ssl/certs")

    def add_ipv6(self):
        open(f"{self.folder}/ipv6", "w").close()
        sh("""ip -n client address add 2001:db8:1::23/64 dev eth0; ip -n client route add default via 2001:db8:1::1
              ip -n router address add 2001:db8:1::1/64 dev lan; ip -n router address add 2001:db8:2::2/64 dev wan
              ip -n router route add default via 2001:db8:2::1
              ip -n provider address add 2001:db8:2::1/64 dev cust; ip -n provider address add 2001:db8:3::1/64 dev out
              ip -n provider route add 2001:db8:1::/64 via 2001:db8:2::2; ip -n provider route add default via 2001:db8:3::2
              ip -n internet address add 2001:db8:3::2/64 dev in0; ip -n internet route add default via 2001:db8:3::1""")
        for address in INTERNET6:
            sh(f"ip -n internet address add {address}/128 dev lo")

    def fill(self, text):
        """Names for addresses, and a value of a range {FROM-TO} by chance."""
        text = re.sub(r"\{(\d+)-(\d+)\}", lambda found: str(self.chance.randint(int(found[1]), int(found[2]))), text)
        names = {"router": f"192.168.{self.net}.1", "provider": "100.64.7.1", "public": "9.9.9.9"}
        text = names.get(text, text)
        return text.replace("{router}", names["router"]).replace("{net}", f"192.168.{self.net}")

    def spawn(self, space, *command):
        child = subprocess.Popen(["ip", "netns", "exec", space, *command], stdout=subprocess.PIPE, text=True)
        self.children.append(child)
        return child

    def start_servers(self):
        f = self.folder
        sh(f"cp {os.path.dirname(f)}/*.pem {f}/")
        started = [self.spawn("wires", sys.executable, f"{HERE}/wires.py", f"{f}/wires", str(self.seed), *LINKS),
                   self.spawn("internet", sys.executable, f"{HERE}/servers.py", "internet", f),
                   self.spawn("provider", sys.executable, f"{HERE}/servers.py", "dns", f, "provider"),
                   self.spawn("router", sys.executable, f"{HERE}/servers.py",
                              "dns" if "closed-80" in self.features else "router", f, "router")]
        self.router = started[-1]
        for child in started:
            child.stdout.readline()

    def act(self, line):
        """One line of a scenario: `PLACE COMMAND`, where PLACE is a namespace, wire, dns, portal, load, stranger or tunnel."""
        place, _, command = self.fill(line).partition(" ")
        if place == "wire":
            with open(f"{self.folder}/wires", "w") as control:
                control.write(command + "\n")
        elif place == "dns":
            name, _, mode = command.partition(" ")
            with open(f"{self.folder}/{name}.dns", "w") as file:
                file.write(mode)
        elif place == "portal":
            with open(f"{self.folder}/portal", "w") as file:
                file.write(command)
            for address in ("1.1.1.1", "198.51.100.10", "198.51.100.30", "8.8.8.8", "9.9.9.9"):
                sh(f"ip -n router address add {address}/32 dev lo")
            self.router.kill()
            self.router.wait()
            self.spawn("router", sys.executable, f"{HERE}/servers.py", "portal", self.folder).stdout.readline()
        elif place == "load":
            use = "s.recv(65536)" if command == "download" else "s.sendall(bytes(65536)) is None"
            code = ("import socket, threading\ndef use():\n    s = socket.create_connection(('198.51.100.20', 5001))\n"
                    f"    s.sendall(b'{command[0]}')\n    while {use}: pass\n"
                    "for _ in range(8): threading.Thread(target=use).start()")
            self.load = self.spawn("client", sys.executable, "-c", code)
        elif place == "stranger":
            space = "router" if command == "errors" else "client"
            self.spawn(space, sys.executable, f"{HERE}/stranger.py", command, f"192.168.{self.net}.23").stdout.readline()
        elif place == "unload":
            self.load.kill()
        elif place == "tunnel":
            self.spawn("internet", sys.executable, f"{HERE}/tunnel.py", "far").stdout.readline()
            self.spawn("client", sys.executable, f"{HERE}/tunnel.py", "near").stdout.readline()
            sh(f"ip -n client route add 198.51.100.40 via 192.168.{self.net}.1")
            for route in command.split():
                sh(f"ip -n client route add {route} dev vpn metric 10")
        elif place == "sh":
            sh(command)
        else:
            sh(f"ip netns exec {place} {command}")

    def end(self):
        for child in self.children:
            child.kill()


class Subject:
    """The program that is tried; its lines with the times when they came."""

    def __init__(self, world, words):
        f = world.folder
        environment = {"PATH": os.environ["PATH"], "HOME": f"{f}/home", "XDG_RUNTIME_DIR": f, "LC_ALL": "C.UTF-8",
                       "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/nowhere", "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nowhere"}
        for setting in world.keys.get("environment", []):
            name, _, value = setting.partition("=")
            environment[name] = world.fill(value)
        self.lines = open(f"{f}/lines", "wb+")
        stamp = ("import sys, time\nfor line in sys.stdin:\n    print(time.monotonic(), line, end='', flush=True)")
        stamper = subprocess.Popen([sys.executable, "-c", stamp], stdin=subprocess.PIPE, stdout=self.lines)
        self.process = subprocess.Popen(["ip", "netns", "exec", "client", *words], env=environment, stdout=stamper.stdin,
                                        stderr=open(f"{f}/errors", "w"))

    def read(self):
        self.process.terminate()
        try:
            self.process.wait(10)
        except subprocess.TimeoutExpired:
            self.process.kill()
        time.sleep(0.3)
        self.lines.seek(0)
        return [line.split(" ", 1) for line in self.lines.read().decode(errors="replace").splitlines()]
