"""The web of the small internet: web.py PKI PORTAL. Port 443 of the web's address under a test
authority, and port 80 of all. While the file PORTAL exists every page sends to a login page."""
import http.server
import os
import ssl
import sys
import threading
import urllib.parse

WEB = '10.9.2.2'
PIECE = bytes(65536)
MOST = 50_000_000


class Answers(http.server.BaseHTTPRequestHandler):
    protocol_version = 'HTTP/1.1'

    def do_GET(self):  # pylint: disable=invalid-name  # the names that http.server wants
        url = urllib.parse.urlsplit(self.path)
        if os.path.exists(sys.argv[2]):
            self._answer(302, b'', Location=f'http://{WEB}/login')
        elif url.path == '/hotspot-detect.html':
            self._answer(200, b'<HTML><BODY>Success</BODY></HTML>')
        elif url.path == '/__down':
            wanted = min(int(urllib.parse.parse_qs(url.query)['bytes'][0]), MOST)
            self._answer(200, None, Content_Length=wanted)
            for start in range(0, wanted, len(PIECE)):
                self.wfile.write(PIECE[:wanted - start])
        else:
            self._answer(404, b'')

    def do_POST(self):  # pylint: disable=invalid-name
        left = min(int(self.headers['Content-Length']), MOST)
        while left > 0:
            left -= len(self.rfile.read(min(left, len(PIECE))))
        self._answer(200, b'')

    def _answer(self, status, body, **headers):
        self.send_response(status)
        if body is not None:
            headers['Content_Length'] = len(body)
        for name, value in headers.items():
            self.send_header(name.replace('_', '-'), str(value))
        self.end_headers()
        self.wfile.write(body or b'')


def main():
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(f'{sys.argv[1]}/web.pem', f'{sys.argv[1]}/web.key')
    plain = http.server.ThreadingHTTPServer(('', 80), Answers)
    secure = http.server.ThreadingHTTPServer((WEB, 443), Answers)
    secure.socket = context.wrap_socket(secure.socket, server_side=True,
                                        do_handshake_on_connect=False)
    threading.Thread(target=plain.serve_forever, daemon=True).start()
    secure.serve_forever()


main()
