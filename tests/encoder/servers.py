# SPDX-License-Identifier: MIT
"""Servers that are in use elsewhere, as private processes on free ports of the loopback: nginx with its RTMP, stream and
DAV modules, and srt-live-transmit. Each works in a folder of the caller's and ends with stop()."""

import pathlib
import shutil
import socket
import subprocess
import time

MODULES = pathlib.Path("/usr/lib/nginx/modules")
WANTED = {
    "nginx": lambda: shutil.which("nginx", path="/usr/sbin:/usr/bin"),
    "libnginx-mod-rtmp": lambda: (MODULES / "ngx_rtmp_module.so").exists(),
    "libnginx-mod-stream": lambda: (MODULES / "ngx_stream_module.so").exists(),
    "srt-tools": lambda: shutil.which("srt-live-transmit"),
}


class Failure(Exception):
    pass


def missing():
    """The packages that are not installed."""
    return [package for package, is_there in WANTED.items() if not is_there()]


def free_port(kind=socket.SOCK_STREAM):
    with socket.socket(socket.AF_INET, kind) as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def is_listening(port, table):
    """Asks the kernel, because a trial connection would be the one that the receiver takes."""
    state = {"tcp": "0A", "udp": "07"}[table]
    for line in pathlib.Path(f"/proc/net/{table}").read_text().splitlines()[1:]:
        fields = line.split()
        if int(fields[1].split(":")[1], 16) == port and fields[3] == state:
            return True
    return False


def wait_until(condition, seconds, what):
    deadline = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > deadline:
            raise Failure(what)
        time.sleep(0.01)


class Process:
    """A server that listens on ports until it is stopped."""

    def __init__(self, command, ports, table, log, output=None):
        self._log = log
        with open(log, "ab") as messages, open(output or log, "ab") as out:
            self.process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=out, stderr=messages)
        try:
            wait_until(lambda: self.process.poll() is not None or all(is_listening(port, table) for port in ports),
                       30, f"{command[0]} does not listen")
            if self.process.poll() is not None:
                raise Failure(f"{command[0]} ended:\n{self.log()}")
        except Failure:
            self.stop()
            raise

    def log(self):
        return self._log.read_text(errors="replace")

    def stop(self):
        if self.process.poll() is None:
            self.process.terminate()
            try:
                self.process.wait(timeout=20)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()


def make_certificate(folder):
    """Of an authority of its own, for localhost and 127.0.0.1: folder/ca.pem, server.pem and server.key."""
    subprocess.run(
        ["sh", "-ec", """
openssl req -x509 -newkey rsa:2048 -nodes -subj "/CN=Test authority" -days 2 -keyout ca.key -out ca.pem
openssl req -newkey rsa:2048 -nodes -subj /CN=localhost -keyout server.key -out server.csr
printf 'subjectAltName=DNS:localhost,IP:127.0.0.1' >names
openssl x509 -req -in server.csr -CA ca.pem -CAkey ca.key -CAcreateserial -days 2 -extfile names -out server.pem
"""], cwd=folder, check=True, stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL, stdout=subprocess.DEVNULL)


# One process, since workers would be another user, who may not write into the folder. Whoever publishes is asked for by a request of the RTMP module to the HTTP part, which knows one stream key.
CONFIGURATION = """
daemon off;
master_process off;
pid {folder}/nginx.pid;
error_log {folder}/error.log notice;
load_module {modules}/ngx_rtmp_module.so;
load_module {modules}/ngx_stream_module.so;
events {{ worker_connections 128; }}
rtmp {{
    server {{
        listen 127.0.0.1:{rtmp};
        chunk_size 4096;
        application {application} {{
            live on;
            notify_method get;
            on_publish http://127.0.0.1:{http}/publish;
            on_record_done http://127.0.0.1:{http}/recorded;
            record all;
            record_path {folder}/recorded;
            record_unique off;
        }}
    }}
}}
stream {{
    server {{
        listen 127.0.0.1:{rtmps} ssl;
        ssl_certificate {folder}/server.pem;
        ssl_certificate_key {folder}/server.key;
        proxy_pass 127.0.0.1:{rtmp};
    }}
}}
http {{
    access_log {folder}/access.log;
    client_body_temp_path {folder}/body;
    proxy_temp_path {folder}/proxy;
    fastcgi_temp_path {folder}/fastcgi;
    uwsgi_temp_path {folder}/uwsgi;
    scgi_temp_path {folder}/scgi;
    client_max_body_size 0;
    server {{
        listen 127.0.0.1:{http};
        listen 127.0.0.1:{https} ssl;
        ssl_certificate {folder}/server.pem;
        ssl_certificate_key {folder}/server.key;
        root {folder}/uploaded;
        dav_methods PUT DELETE;
        create_full_put_path on;
        location = /publish {{
            if ($arg_name != "{key}") {{ return 403; }}
            return 204;
        }}
        location = /recorded {{ return 204; }}
    }}
}}
"""


class Nginx(Process):
    """RTMP and RTMPS for one stream key, and HTTP and HTTPS that take uploads, with ports of these names. What is
    published is recorded below folder/recorded, what is uploaded is below folder/uploaded."""

    def __init__(self, folder, application, key):
        for name in ["recorded", "uploaded"]:
            (folder / name).mkdir()
        make_certificate(folder)
        self.folder = folder
        self.rtmp, self.rtmps, self.http, self.https = (free_port() for _ in range(4))
        configuration = folder / "nginx.conf"
        configuration.write_text(CONFIGURATION.format(
            folder=folder, modules=MODULES, application=application, key=key, rtmp=self.rtmp, rtmps=self.rtmps,
            http=self.http, https=self.https))
        super().__init__([WANTED["nginx"](), "-p", str(folder), "-e", str(folder / "error.log"), "-c",
                          str(configuration)], [self.rtmp, self.rtmps, self.http, self.https], "tcp",
                         folder / "nginx.log")

    def log(self):
        return super().log() + (self.folder / "error.log").read_text(errors="replace")

    def recorded(self):
        """The one stream that was published, when its file is complete."""
        wait_until(lambda: "GET /recorded?" in (self.folder / "access.log").read_text(), 30,
                   f"nginx has recorded nothing:\n{self.log()}")
        return next((self.folder / "recorded").glob("*.flv"))


class SrtLiveTransmit(Process):
    """Takes SRT callers with a passphrase, one alone or one after the other, and writes what comes to a file."""

    def __init__(self, folder, passphrase, is_for_one):
        self.port = free_port(socket.SOCK_DGRAM)
        self.file = folder / "srt.ts"
        command = ["srt-live-transmit", "-loglevel:error", f"-autoreconnect:{'no' if is_for_one else 'yes'}",
                   f"srt://127.0.0.1:{self.port}?mode=listener&passphrase={passphrase}", "file://con"]
        super().__init__(command, [self.port], "udp", folder / "srt.log", self.file)

    def received(self):
        """What the one caller has sent, when it has gone."""
        wait_until(lambda: self.process.poll() is not None, 30, "srt-live-transmit does not end")
        return self.file
