"""The servers of a world, in the namespace where they run. Usage: servers.py ROLE FOLDER [ADDRESS].

  internet  TCP 80 and 443 on all addresses: a page on 80, the page of the portal check with TLS on 443, a source and a sink
            of bytes on 5001, an HTTP proxy on 3128, a DNS server, the far end of a tunnel on UDP 5555
  dns       a DNS server
  router    a DNS server, and TCP 80: a page
  portal    the router's DNS server; TCP 80 sends to a log-in page and 443 has another certificate; or what FOLDER/portal says
FOLDER/NAME.dns holds how the DNS server of NAME behaves: ok, silent, servfail, nxdomain, delay MS, address A (of every name),
filter NAME A (of one name), other (answers another question), stranger (answers from another address), huge (4000 bytes).
"""
import os
import socket
import socketserver
import ssl
import struct
import sys
import threading
import time

ZONE = {"google.com": "198.51.100.30", "captive.apple.com": "198.51.100.10"}
ZONE6 = {"google.com": "2001:db8:ffff::30", "captive.apple.com": "2001:db8:ffff::10"}
FAMILIES = [(socket.AF_INET, "0.0.0.0"), (socket.AF_INET6, "::")]


def text_of(path, otherwise):
    try:
        with open(path) as file:
            return file.read().strip() or otherwise
    except OSError:
        return otherwise


def name_in(query):
    labels, at = [], 12
    while at < len(query) and query[at]:
        labels.append(query[at + 1:at + 1 + query[at]].decode("latin1"))
        at += 1 + query[at]
    kind = struct.unpack("!H", query[at + 1:at + 3])[0]
    return ".".join(labels).lower(), kind, query[12:at + 5]


def answer(query, mode, has_ipv6):
    name, kind, question = name_in(query)
    code, address = 0, b""
    if mode.startswith("filter") and mode.split()[1] == name:
        mode = f"address {mode.split()[2]}"
    if kind == 1 and name in ZONE:
        address = socket.inet_aton(mode.split()[1] if mode.startswith("address") else ZONE[name])
    elif kind == 28 and name in ZONE6 and has_ipv6 and not mode.startswith("address"):
        address = socket.inet_pton(socket.AF_INET6, ZONE6[name])
    elif name not in ZONE:
        code = 3
    if mode in ("servfail", "nxdomain"):
        code, address = (2 if mode == "servfail" else 3), b""
    if mode == "other":
        question = b"\x05other\x07example\x00" + question[-4:]
    count = (250 if mode == "huge" else 1) if address else 0
    head = query[:2] + struct.pack("!HHHHH", 0x8180 | code, 1, count, 0, 0)
    record = b"\xc0\x0c" + struct.pack("!HHIH", kind, 1, 60, len(address)) + address
    return head + question + record * count


def serve_dns(folder, name, family, host):
    server = socket.socket(family, socket.SOCK_DGRAM)
    if family == socket.AF_INET6:
        server.setsockopt(socket.IPPROTO_IPV6, socket.IPV6_V6ONLY, 1)
    # The answer leaves from the address that was asked.
    server.setsockopt(socket.IPPROTO_IP, 8, 1) if family == socket.AF_INET else server.setsockopt(41, 49, 1)
    server.bind((host, 53))

    def reply(query, info, peer):
        mode = text_of(f"{folder}/{name}.dns", "ok")
        if mode == "silent" or len(query) < 17:
            return
        if mode.startswith("delay"):
            time.sleep(float(mode.split()[1]) / 1000)
        has_ipv6 = os.path.exists(f"{folder}/ipv6")
        if mode == "stranger":
            socket.socket(family, socket.SOCK_DGRAM).sendto(answer(query, mode, has_ipv6), peer)
        else:
            server.sendmsg([answer(query, mode, has_ipv6)], info, 0, peer)

    while True:
        query, info, _, peer = server.recvmsg(4096, 256)
        if family == socket.AF_INET:  # struct in_pktinfo: the destination becomes the source
            info = [(0, 8, struct.pack("i", 0) + data[8:12] + bytes(4)) for level, kind, data in info if (level, kind) == (0, 8)]
        else:
            info = [(41, 50, data[:16] + bytes(4)) for level, kind, data in info if (level, kind) == (41, 50)]
        threading.Thread(target=reply, args=(query, info, peer), daemon=True).start()


class Server(socketserver.ThreadingTCPServer):
    allow_reuse_address = daemon_threads = True
    request_queue_size = 64

    def __init__(self, family, host, port, handle):
        self.address_family, self.handle = family, handle
        super().__init__((host, port), None, bind_and_activate=False)
        if family == socket.AF_INET6:
            self.socket.setsockopt(socket.IPPROTO_IPV6, socket.IPV6_V6ONLY, 1)
        self.server_bind()
        self.server_activate()

    def finish_request(self, request, client_address):
        try:
            request.settimeout(20)
            self.handle(request)
        except OSError:
            pass


def request_on(connection):
    data = b""
    while b"\r\n\r\n" not in data and len(data) < 65536:
        more = connection.recv(65536)
        if not more:
            break
        data += more
    return data


def page(body, status="200 OK", more=""):
    return (f"HTTP/1.1 {status}\r\nContent-Type: text/html\r\nContent-Length: {len(body)}\r\nConnection: close\r\n{more}\r\n"
            + body).encode()


def http(connection):
    if b"hotspot-detect" in request_on(connection):
        connection.sendall(page("<HTML><BODY>Success</BODY></HTML>"))
    else:
        connection.sendall(page("", "301 Moved Permanently", "Location: https://1.1.1.1/\r\n"))


def tls(folder, certificate, handle):
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(f"{folder}/{certificate}.pem")

    def secured(connection):
        if certificate == "stranger" and text_of(f"{folder}/portal", "") == "mute":
            time.sleep(30)
        handle(context.wrap_socket(connection, server_side=True))
    return secured


def portal(folder):
    def handle(connection):
        kind = text_of(f"{folder}/portal", "redirect")
        if kind in ("silent", "mute"):
            time.sleep(30)
        elif request_on(connection) and kind == "redirect":
            connection.sendall(page("", "302 Found", "Location: http://login.hotel.example/\r\n"))
        elif kind == "page":
            connection.sendall(page("<html>Welcome, please log in</html>"))
        else:
            connection.sendall(page("log in", "511 Network Authentication Required"))
    return handle


def bytes_both_ways(connection):
    wants = connection.recv(1)
    while wants == b"d":
        connection.sendall(bytes(65536))
    while wants == b"u" and connection.recv(65536):
        pass


def proxy(connection):
    """CONNECT and plain requests."""
    request = request_on(connection)
    method, target = request.split(b" ")[:2]
    host = target.decode().split("//")[-1].split("/")[0]
    name, _, port = host.partition(":")
    with socket.create_connection((ZONE.get(name, name), int(port or 80)), timeout=10) as far:
        if method == b"CONNECT":
            connection.sendall(b"HTTP/1.1 200 OK\r\n\r\n")
        else:
            far.sendall(request)

        def carry(source, sink):
            try:
                while data := source.recv(65536):
                    sink.sendall(data)
                sink.shutdown(socket.SHUT_WR)
            except OSError:
                pass
        back = threading.Thread(target=carry, args=(far, connection), daemon=True)
        back.start()
        carry(connection, far)
        back.join(20)


def main():
    role, folder, *rest = sys.argv[1:]
    name = rest[0] if rest else role.replace("portal", "router")
    threads = []

    def start(run, *arguments):
        threads.append(threading.Thread(target=run, args=arguments, daemon=True))

    def listen(port, handle):
        for family, host in FAMILIES:
            start(Server(family, host, port, handle).serve_forever)

    for family, host in FAMILIES:
        start(serve_dns, folder, name, family, host)
    if role == "internet":
        listen(80, http)
        listen(443, tls(folder, "web", http))
        listen(5001, bytes_both_ways)
        listen(3128, proxy)
    if role == "router":
        listen(80, http)
    if role == "portal":
        listen(80, portal(folder))
        listen(443, tls(folder, "stranger", portal(folder)))
    for thread in threads:
        thread.start()
    print("ready", flush=True)
    threading.Event().wait()


if __name__ == "__main__":
    main()
