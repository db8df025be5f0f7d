"""The web of the small internet: web.py PKI PORTAL. Port 443 of the web's address under a test
authority, and port 80 of all. While the file PORTAL exists every page sends to a login page."""
import http.server
import os
import ssl
import sys
import threading

WEB = '198.51.100.2'


class Answers(http.server.BaseHTTPRequestHandler):
    protocol_version = 'HTTP/1.1'

    def do_GET(self):  # pylint: disable=invalid-name  # the names that http.server wants
        if os.path.exists(sys.argv[2]):
            self._answer(302, b'', Location=f'http://{WEB}/login')
        elif self.path == '/hotspot-detect.html':
            self._answer(200, b'<HTML><BODY>Success</BODY></HTML>')
        else:
            self._answer(404, b'')

    def _answer(self, status, body, **headers):
        self.send_response(status)
        for name, value in (headers | {'Content-Length': len(body)}).items():
            self.send_header(name, str(value))
        self.end_headers()
        self.wfile.write(body)


context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
context.load_cert_chain(f'{sys.argv[1]}/web.pem', f'{sys.argv[1]}/web.key')
plain = http.server.ThreadingHTTPServer(('', 80), Answers)
secure = http.server.ThreadingHTTPServer((WEB, 443), Answers)
secure.socket = context.wrap_socket(secure.socket, server_side=True, do_handshake_on_connect=False)
threading.Thread(target=plain.serve_forever, daemon=True).start()
secure.serve_forever()
