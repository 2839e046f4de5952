# SPDX-License-Identifier: MIT
"""Where encoded streams arrive: a folder, or a receiver that listens on the loopback."""

import dataclasses
import pathlib
import re
import socket
import subprocess
import time
import typing

import fronts
import rtsp_server
import servers
from servers import Failure, free_port, is_listening


@dataclasses.dataclass
class Container:
    """What arrived, and what its kind of container can tell."""
    name: str
    files: list
    identifiers: bool = False
    languages: bool = False
    default: typing.Optional[typing.Callable] = None  # of a stream: whether it is marked


class Listener:
    """An ffmpeg that listens on a port until its sender ends."""

    def __init__(self, arguments, port, table):
        self._process = subprocess.Popen(
            ["ffmpeg", "-v", "error", "-nostdin", "-y", *arguments],
            stdin=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
        deadline = time.monotonic() + 30
        while not is_listening(port, table):
            if self._process.poll() is not None or time.monotonic() > deadline:
                self.stop()
                raise Failure("the receiver does not listen: " + self._process.stderr.read())
            time.sleep(0.01)

    def stop(self):
        self._process.kill()
        self._process.wait()

    def receive(self, send):
        """Runs what sends, and waits until the receiver has written everything."""
        try:
            send()
            self._process.communicate(timeout=60)
        except subprocess.TimeoutExpired as error:
            raise Failure("the receiver does not end") from error
        finally:
            self.stop()


def hls_folder(folder, preset, encode):
    encode("--output", str(folder / "out"))
    return hls(folder, preset)


def hls_upload(folder, preset, encode):
    encode("--output", f"http://127.0.0.1:{fronts.UploadServer(folder).port}/out")
    return hls(folder, preset)


def hls_to_nginx(folder, preset, encode):
    with servers.Nginx(folder, "live", "key") as nginx:
        encode("--output", f"http://127.0.0.1:{nginx.http}/out")
        return hls(folder / "uploaded", preset, " to nginx")


def hls(folder, preset, where=""):
    out = folder / "out"
    master = (out / "master.m3u8").read_text()
    marked = {re.search(r'URI="(\w+)/', line)[1]: "DEFAULT=YES" in line
              for line in master.splitlines() if line.startswith("#EXT-X-MEDIA")}
    files = []
    for kind, key in [("video", "videoSettings"), ("audio", "audioSettings")]:
        for index in range(len(preset[key])):
            segments = sorted((out / f"{kind}{index}").glob("*.mp4")) + sorted((out / f"{kind}{index}").glob("segment_*"))
            whole = folder / f"{kind}{index}{segments[-1].suffix}"
            whole.write_bytes(b"".join(segment.read_bytes() for segment in segments))
            files.append(whole)
            if kind == "video" and f"{kind}{index}/index.m3u8" not in master:
                raise Failure(f"{kind}{index} is not in the master playlist")
    is_transport_stream = files[0].suffix == ".ts"
    return Container(("HLS" if is_transport_stream else "HLS, MP4 fragments") + where, files, is_transport_stream, True,
                     lambda stream: marked[pathlib.Path(stream["path"]).stem])


def rtmp_path(preset):
    """Of the address, and the whole one with application and key: the services' presets bring these, while the others
    have both in their address."""
    path = preset["streamingURL"].partition("/")[2]
    return path, f"{preset['application']}/{preset['streamKey']}" if "streamKey" in preset else path


def rtmp_to_nginx(folder, preset, encode):
    path, keys = rtmp_path(preset)
    application, key = keys.rsplit("/", 1)
    with servers.Nginx(folder, application, key.partition("?")[0]) as nginx:
        port = nginx.rtmps if preset["streamingProtocol"] == "RTMPS" else nginx.rtmp
        encode(f"portNumber={port}", f"streamingURL=127.0.0.1/{path}".rstrip("/"))
        return Container(f"{preset['streamingProtocol']} to nginx", [nginx.recorded()])


def rtmp(folder, preset, encode):
    port = free_port(socket.SOCK_STREAM)
    path, keys = rtmp_path(preset)
    file = folder / "out.flv"
    listener = Listener(["-listen", "1", "-i", f"rtmp://127.0.0.1:{port}/{keys}", "-c", "copy", str(file)], port, "tcp")
    front = fronts.TlsFront(folder, port) if preset["streamingProtocol"] == "RTMPS" else None
    listener.receive(lambda: encode(f"portNumber={front.port if front else port}",
                                    f"streamingURL=127.0.0.1/{path}".rstrip("/")))
    return Container(preset["streamingProtocol"], [file])


def srt(key):
    def receive(folder, preset, encode):
        port = free_port(socket.SOCK_DGRAM)
        file = folder / "out.ts"
        # As raw data: remuxing would give new packet identifiers.
        listener = Listener(["-f", "data", "-passphrase", key, "-mode", "listener", "-i", f"srt://127.0.0.1:{port}",
                             "-map", "0", "-c", "copy", "-f", "data", str(file)], port, "udp")
        listener.receive(lambda: encode("streamingURL=127.0.0.1", f"portNumber={port}", f"streamKey={key}"))
        return Container("SRT", [file], identifiers=True, languages=True)
    return receive


def srt_to_live_transmit(key):
    def receive(folder, preset, encode):
        with servers.SrtLiveTransmit(folder, key, is_for_one=True) as listener:
            encode("streamingURL=127.0.0.1", f"portNumber={listener.port}", f"streamKey={key}")
            return Container("SRT to srt-live-transmit", [listener.received()], identifiers=True, languages=True)
    return receive


def rtsp(folder, preset, encode):
    server = rtsp_server.RtspServer()
    path = preset["streamingURL"].partition("/")[2]
    encode("streamingProtocol=RTSP TCP", f"streamingURL=127.0.0.1:{server.port}/{path}")
    if not server.recorded.wait(timeout=30):
        raise Failure("nothing was recorded")
    return Container("RTSP", [f"rtsp://127.0.0.1:{server.port}/{path}"])


def for_preset(preset, stream_key, is_upload, has_servers):
    """With servers of others where there are any, else with those of this folder."""
    if preset["type"] == "HLS":
        return (hls_to_nginx if has_servers else hls_upload) if is_upload else hls_folder
    if preset["type"] == "SRT":
        return (srt_to_live_transmit if has_servers else srt)(stream_key)
    if preset["streamingProtocol"].startswith("RTSP"):
        return rtsp
    return rtmp_to_nginx if has_servers else rtmp
