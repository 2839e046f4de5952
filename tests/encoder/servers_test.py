#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""vantlectl check and vantlectl ffmpeg against servers that are in use elsewhere, see servers.py. Ends with 77 where
these are not installed.

    tests/encoder/servers_test.py VANTLECTL
"""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

import servers

VANTLECTL = ""
KEY = "k3y-of-the-show"
PASSPHRASE = "secret-pass-12"
SMALL = {
    "videoSettings": [{"codec": "H.264", "resolution": "640 x 360", "customWidth": 0, "customHeight": 0,
                       "frameRate": 25.0, "bitRate": 600, "profile": "H264_Main_3_0", "pid": 256}],
    "audioSettings": [{"codec": "AAC LC", "audioCodecFormatID": 1633772320, "bitRate": 96, "language": "en",
                       "trackName": "English", "sampleRate": 48000, "bitsPerSample": 16, "isDefault": True,
                       "inputChannels": [0, 1], "pid": 257}],
}


class ServersTest(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory(prefix="vantle-servers-")
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)
        self.preset = self.folder / "preset.json"

    def nginx(self):
        server = servers.Nginx(self.folder, "live", KEY)
        self.addCleanup(server.stop)
        return server

    def write(self, kind, **members):
        self.preset.write_text(json.dumps({"type": kind, **members, **SMALL}))

    def run_tool(self, command, *arguments):
        result = subprocess.run([VANTLECTL, command, str(self.preset), *arguments], stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, timeout=120)
        for secret in (KEY, PASSPHRASE, "another-passphrase"):
            self.assertNotIn(secret, result.stdout + result.stderr)
        return result

    def check(self, *arguments):
        """The exit code, and each step's name, outcome and text."""
        result = self.run_tool("check", "--json", *arguments)
        self.assertEqual(result.stderr, "")
        steps = [json.loads(line) for line in result.stdout.splitlines()]
        return result.returncode, [(step["step"], step["outcome"], step["text"]) for step in steps]

    def encode(self, *arguments):
        return self.run_tool("ffmpeg", "--run", "--duration", "3", *arguments)

    def assert_video(self, file):
        probe = subprocess.run(
            ["ffprobe", "-v", "error", "-count_packets", "-show_entries", "stream=codec_name,nb_read_packets", "-of",
             "json", str(file)], check=True, stdout=subprocess.PIPE)
        streams = {stream["codec_name"]: int(stream["nb_read_packets"]) for stream in json.loads(probe.stdout)["streams"]}
        self.assertEqual(streams.get("h264"), 75)
        self.assertGreater(streams.get("aac", 0), 130)

    def write_rtmp(self, **members):
        self.write("YouTube", **{"streamingURL": "localhost", "streamingProtocol": "RTMP", "portNumber": 1935,
                                 "authenticate": False, "isBackup": False, "streamKey": KEY, "application": "live",
                                 **members})

    def test_rtmp_and_rtmps(self):
        for protocol, port, steps in [("RTMP", "rtmp", []), ("RTMPS", "rtmps", ["TLS"])]:
            with self.subTest(protocol), tempfile.TemporaryDirectory() as folder, \
                    servers.Nginx(pathlib.Path(folder), "live", KEY) as nginx:
                self.write_rtmp(streamingProtocol=protocol, portNumber=getattr(nginx, port))
                authority = ["--ca-file", f"{folder}/ca.pem"]
                code, found = self.check(*authority)
                self.assertEqual(code, 0, found)
                self.assertEqual([name for name, _, _ in found], ["name look-up", "TCP", *steps, "RTMP handshake"])
                if steps:
                    code, found = self.check()
                    self.assertEqual((code, found[-1]), (1, (
                        "TLS", "failed", "the certificate is signed by nobody that this machine trusts")))
                # A check publishes nothing: what the server records is the encoder's alone.
                self.assertEqual(self.encode().returncode, 0)
                self.assert_video(nginx.recorded())

    def test_a_stream_key_that_the_server_refuses(self):
        nginx = self.nginx()
        self.write_rtmp(portNumber=nginx.rtmp)
        self.assertEqual(self.check("streamKey=not-the-key")[0], 0)
        refused = self.encode("streamKey=not-the-key")
        self.assertEqual(refused.returncode, 1)
        self.assertNotIn("not-the-key", refused.stderr)
        self.assertRegex((self.folder / "access.log").read_text(), r"GET /publish\?.*name=not-the-key.* 403 ")
        self.assertEqual(list((self.folder / "recorded").iterdir()), [])

    def test_rtmp_where_tls_is_wanted(self):
        nginx = self.nginx()
        for protocol, port, step in [("RTMP", nginx.rtmps, "RTMP handshake"), ("RTMPS", nginx.rtmp, "TLS"),
                                     ("RTMP", nginx.http, "RTMP handshake")]:
            with self.subTest(f"{protocol} to {port}"):
                self.write_rtmp(streamingProtocol=protocol, portNumber=port)
                code, found = self.check()
                self.assertEqual((code, found[-1][:2]), (1, (step, "failed")))

    def test_srt(self):
        self.write("SRT", streamingURL="localhost", portNumber=9, authenticate=True)
        with servers.SrtLiveTransmit(self.folder, PASSPHRASE, is_for_one=True) as listener:
            here = [f"portNumber={listener.port}", f"streamKey={PASSPHRASE}"]
            # Refused callers do not take its place.
            wrong = self.check(here[0], "streamKey=another-passphrase")
            self.assertEqual(wrong[0], 1)
            self.assertTrue(wrong[1][-1][2].endswith("the listener has another passphrase"), wrong)
            none = self.check(here[0], "authenticate=false")
            self.assertTrue(none[1][-1][2].endswith("asks for a passphrase, and the preset has none"), none)
            self.assertEqual(self.encode(*here).returncode, 0)
            self.assert_video(listener.received())

    def test_a_check_takes_the_place_of_an_srt_listener_that_serves_one(self):
        self.write("SRT", streamingURL="localhost", portNumber=9, authenticate=True)
        with servers.SrtLiveTransmit(self.folder, PASSPHRASE, is_for_one=True) as listener:
            code, found = self.check(f"portNumber={listener.port}", f"streamKey={PASSPHRASE}")
            self.assertEqual((code, found[-1]), (0, (
                "SRT", "ok", "the listener took the connection, encrypted with the passphrase")))
            self.assertEqual(listener.received().stat().st_size, 0)

    def test_hls_by_put(self):
        nginx = self.nginx()
        self.write("HLS")
        for address, steps in [(f"http://localhost:{nginx.http}/show", []),
                               (f"https://localhost:{nginx.https}/safe", ["TLS"])]:
            with self.subTest(address):
                place = ["--output", address]
                code, found = self.check(*place, "--ca-file", str(self.folder / "ca.pem"))
                self.assertEqual(code, 0, found)
                self.assertEqual([name for name, _, _ in found], ["name look-up", "TCP", *steps, "HTTP"])
                self.assertEqual(self.encode(*place).returncode, 0)
                folder = self.folder / "uploaded" / address.rsplit("/", 1)[1]
                self.assertIn("video0/index.m3u8", (folder / "master.m3u8").read_text())
                self.assertTrue((folder / "video0/index.m3u8").read_text().endswith("#EXT-X-ENDLIST\n"))


if __name__ == "__main__":
    VANTLECTL = sys.argv.pop(1)
    if servers.missing():
        print(f"not installed, so not tested: {' '.join(servers.missing())}")
        sys.exit(77)
    unittest.main(verbosity=2)
