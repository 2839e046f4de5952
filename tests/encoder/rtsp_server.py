# SPDX-License-Identifier: MIT
"""An RTSP server for one recording: takes what a sender announces, keeps it, and plays it to whoever asks.

Only interleaved transport (RTSP over TCP), so that nothing gets lost on the way.
"""

import re
import socketserver
import threading


class RtspServer:
    def __init__(self):
        self.description = b""
        self.packets = bytearray()
        self.recorded = threading.Event()
        server = self

        class Session(socketserver.StreamRequestHandler):
            def handle(self):
                server._serve(self.rfile, self.wfile)

        self._server = socketserver.ThreadingTCPServer(("127.0.0.1", 0), Session)
        self._server.daemon_threads = True
        self.port = self._server.server_address[1]
        threading.Thread(target=self._server.serve_forever, daemon=True).start()

    def close(self):
        self._server.shutdown()
        self._server.server_close()

    def _serve(self, incoming, outgoing):
        is_sender = False
        while first := incoming.read(1):
            if first == b"$":  # a packet: channel and length, then so many bytes
                head = incoming.read(3)
                self.packets += first + head + incoming.read(int.from_bytes(head[1:], "big"))
                continue
            request = (first + incoming.readline()).decode()
            headers = {}
            while line := incoming.readline().strip().decode():
                name, _, value = line.partition(":")
                headers[name.lower()] = value.strip()
            body = incoming.read(int(headers.get("content-length", 0)))
            method, url = request.split()[:2]
            is_sender = is_sender or method == "ANNOUNCE"
            status, fields, content = self._answer(method, url, headers, body)
            lines = [f"RTSP/1.0 {status}", f"CSeq: {headers['cseq']}", "Session: 1", *fields]
            if content:
                lines.append(f"Content-Length: {len(content)}")
            outgoing.write("\r\n".join(lines + ["", ""]).encode() + content)
            if method == "PLAY":
                outgoing.write(self.packets)
                return  # the end of the connection is the end of the stream
            if method == "TEARDOWN":
                break
        if is_sender:
            self.recorded.set()

    def _answer(self, method, url, headers, body):
        if method == "OPTIONS":
            return "200 OK", ["Public: ANNOUNCE, DESCRIBE, SETUP, RECORD, PLAY, TEARDOWN"], b""
        if method == "ANNOUNCE":
            self.description = body
        if method == "DESCRIBE":
            return "200 OK", ["Content-Type: application/sdp", f"Content-Base: {url}/"], self.description
        if method == "SETUP":
            if not re.match("RTP/AVP/TCP", headers["transport"]):
                return "461 Unsupported Transport", [], b""
            return "200 OK", [f"Transport: {headers['transport']}"], b""
        return "200 OK", [], b""
