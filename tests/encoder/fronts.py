# SPDX-License-Identifier: MIT
"""Servers of one purpose each, on the loopback: one takes uploads, one puts TLS before a receiver without it."""

import contextlib
import http.server
import socket
import ssl
import subprocess
import threading


def start(target):
    threading.Thread(target=target, daemon=True).start()


class UploadServer:
    """Keeps below a folder what is PUT, whole or in chunks, and deletes what is to be DELETEd."""

    def __init__(self, folder):
        class Request(http.server.BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"

            def do_PUT(self):
                file = folder / self.path.lstrip("/")
                file.parent.mkdir(parents=True, exist_ok=True)
                file.write_bytes(self._body())
                self._answer(201)

            def do_DELETE(self):
                (folder / self.path.lstrip("/")).unlink()
                self._answer(204)

            def _body(self):
                if "Transfer-Encoding" not in self.headers:
                    return self.rfile.read(int(self.headers["Content-Length"]))
                body = b""
                while size := int(self.rfile.readline(), 16):
                    body += self.rfile.read(size)
                    self.rfile.readline()
                self.rfile.readline()
                return body

            def _answer(self, status):
                self.send_response(status)
                self.send_header("Content-Length", "0")
                self.end_headers()

            def log_message(self, *_):
                pass

        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Request)
        self.port = server.server_address[1]
        start(server.serve_forever)


class TlsFront:
    """Takes one connection with TLS, under a certificate of its own, and hands it on to a port without."""

    def __init__(self, folder, port):
        certificate = str(folder / "front.pem")
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-subj", "/CN=localhost",
                        "-keyout", certificate, "-out", certificate], check=True, stderr=subprocess.DEVNULL)
        self._context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        self._context.load_cert_chain(certificate)
        self._listener = socket.create_server(("127.0.0.1", 0))
        self._behind = port
        self.port = self._listener.getsockname()[1]
        start(self._serve)

    def _serve(self):
        with self._context.wrap_socket(self._listener.accept()[0], server_side=True) as outside, \
                socket.create_connection(("127.0.0.1", self._behind)) as inside:
            start(lambda: self._pump(inside, outside))
            self._pump(outside, inside)

    @staticmethod
    def _pump(source, target):
        # Either side may go first.
        with contextlib.suppress(OSError):
            while data := source.recv(1 << 16):
                target.sendall(data)
        with contextlib.suppress(OSError):
            target.shutdown(socket.SHUT_RDWR)
