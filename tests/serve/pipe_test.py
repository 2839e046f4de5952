#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""What `vantlectl serve` makes of clients that send nonsense, send too much, do not read or go away.

Usage: pipe_test.py VANTLECTL SAMPLES_FOLDER
"""
import json
import os
import pathlib
import select
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest

VANTLECTL, SAMPLES = sys.argv[1], pathlib.Path(sys.argv[2])
DEADLINE = 120  # seconds; only a fault lets it pass
MANY = 100_000


def framed(body):
    return b"Content-Length: %d\r\n\r\n%s" % (len(body), body)


def request(number, method, **params):
    return framed(json.dumps({"jsonrpc": "2.0", "id": number, "method": method, "params": params}).encode())


CANCEL = framed(b'{"jsonrpc":"2.0","method":"$/cancelRequest","params":{"id":2}}')
AFTER = request(9, "get", name="Show")

# What is sent, the answers' ids and kinds of errors ("" for none), and the exit code.
INPUTS = [
    ("nothing", b"", [], 0),
    ("requests", request(1, "list") + request("a", "fields", kind="SRT"), [(1, ""), ("a", "")], 0),
    ("no JSON", framed(b"{"), [(None, "parseError")], 0),
    ("no UTF-8", framed(b'{"id":1,"method":"\xff"}'), [(None, "parseError")], 0),
    ("an empty body", framed(b""), [(None, "parseError")], 0),
    ("deep nesting", framed(b"[" * 1_000_000), [(None, "parseError")], 0),
    ("a batch", framed(b'[{"jsonrpc":"2.0","id":1,"method":"list"}]'), [(None, "invalidRequest")], 0),
    ("no object", framed(b"7"), [(None, "parseError")], 0),
    ("another version", framed(b'{"id":1,"method":"list"}'), [(1, "invalidRequest")], 0),
    ("half an id", framed(b'{"jsonrpc":"2.0","id":1.5,"method":"list"}'), [(None, "invalidRequest")], 0),
    ("the largest id", framed(b'{"jsonrpc":"2.0","id":9223372036854775807,"method":"list"}'),
     [(2**63 - 1, "")], 0),
    ("an id that a double does not hold", framed(b'{"jsonrpc":"2.0","id":-9007199254740993,"method":"list"}'),
     [(-(2**53) - 1, "")], 0),
    ("an id beyond 64 bits", framed(b'{"jsonrpc":"2.0","id":9223372036854775808,"method":"list"}'),
     [(None, "invalidRequest")], 0),
    ("no method", framed(b'{"jsonrpc":"2.0","id":1}'), [(1, "invalidRequest")], 0),
    ("parameters by position", framed(b'{"jsonrpc":"2.0","id":1,"method":"get","params":["Show"]}'),
     [(1, "invalidParams")], 0),
    ("a parameter of another type", request(1, "get", name=7), [(1, "invalidParams")], 0),
    ("a lone surrogate", framed(b'{"jsonrpc":"2.0","id":1,"method":"add","params":{"kind":"SRT","name":"\\ud800"}}'),
     [(1, "invalidParams")], 0),
    ("an unknown method", request(1, "explode"), [(1, "methodNotFound")], 0),
    ("an unknown notification", framed(b'{"jsonrpc":"2.0","method":"explode"}'), [], 0),
    ("a cancelled request", request(1, "list") + request(2, "remove", name="Show") + CANCEL,
     [(1, ""), (2, "requestCancelled")], 0),
    ("what was answered is not cancelled", request(1, "list") + CANCEL, [(1, "")], 0),
    ("one of 100 MB", framed(b" " * 100_000_000), [(None, "invalidRequest")], 0),
    ("shutdown", request(1, "shutdown") + request(2, "list"), [(1, ""), (2, "ending")], 0),
    ("a header without a length", request(1, "list") + b"X: 1\r\n\r\n", [(1, ""), (None, "parseError")], 1),
    ("the end of a message is missing", request(1, "list") + b"Content-Length: 9\r\n\r\n{", [(1, "")], 1),
]


class Pipe(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.data = pathlib.Path(scratch.name)
        self.folder = self.data / "Orvalle" / "Streaming Presets"
        self.folder.mkdir(parents=True)
        self.put("Show")

    def put(self, name):
        (self.folder / f"{name}.json").write_bytes((SAMPLES / "Venue Uplink.json").read_bytes())

    def start(self):
        helper = subprocess.Popen([VANTLECTL, "serve", "--data-dir", self.data], stdin=subprocess.PIPE,
                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.addCleanup(helper.stderr.close)
        self.addCleanup(helper.stdout.close)
        self.addCleanup(helper.kill)
        return helper

    def messages(self, output):
        found = []
        at = 0
        while at < len(output):
            begin = output.index(b"\r\n\r\n", at) + 4
            at = begin + int(output[at:begin].removeprefix(b"Content-Length: "))
            found.append(json.loads(output[begin:at]))
        return found

    def answers(self, output):
        return [(m["id"], m.get("error", {}).get("data", {}).get("kind", "")) for m in self.messages(output)
                if "id" in m]

    def test_every_input_has_its_answers(self):
        for what, sent, answers, code in INPUTS:
            with self.subTest(what):
                goes_on = code == 0 and what != "shutdown"
                helper = self.start()
                output, complaints = helper.communicate(sent + (AFTER if goes_on else b""), timeout=DEADLINE)
                self.assertEqual(self.answers(output), answers + ([(9, "")] if goes_on else []))
                self.assertEqual(helper.returncode, code, complaints)
                self.assertEqual(complaints != b"", code == 1, complaints)
        self.assertEqual([path.name for path in self.folder.iterdir()], ["Show.json"])

    def test_what_was_asked_for_is_done_when_the_input_ends(self):
        helper = self.start()
        for number in range(50):
            helper.stdin.write(request(number, "set", name="Show", assignments=[f"portNumber={1000 + number}"]))
        helper.stdin.close()
        helper.stdin = None
        self.assertEqual(helper.wait(DEADLINE), 0)  # nobody has read an answer yet
        self.assertEqual(json.loads((self.folder / "Show.json").read_bytes())["portNumber"], 1049)
        self.assertEqual(self.answers(helper.stdout.read()), [(number, "") for number in range(50)])

    def test_a_check_does_not_keep_the_helper_of_a_client_that_has_gone(self):
        with socket.create_server(("127.0.0.1", 0)) as server:  # that says nothing
            helper = self.start()
            address = f"rtmp://127.0.0.1:{server.getsockname()[1]}/live/key"
            check = request(1, "check", name="Show", output=address, limit=3600)
            output, complaints = helper.communicate(check + AFTER, timeout=DEADLINE)
            self.assertEqual(self.answers(output), [(9, ""), (1, "ending")])
            self.assertEqual((helper.returncode, complaints), (0, b""))

    def wait_for_stall(self, helper):
        """Until the helper has written all that its client's pipe holds, and sleeps."""
        end = time.monotonic() + DEADLINE
        idle_since = time.monotonic()
        used = None
        while time.monotonic() < idle_since + 0.5:
            self.assertLess(time.monotonic(), end)
            now = pathlib.Path(f"/proc/{helper.pid}/stat").read_text().rsplit(")")[1].split()[11:13]
            if now != used:
                idle_since, used = time.monotonic(), now
            select.select([], [], [], 0.02)

    def test_a_client_that_does_not_read_holds_up_nothing_and_loses_nothing(self):
        helper = self.start()
        writer = threading.Thread(target=lambda: [helper.stdin.write(request(n, "list")) for n in range(MANY)]
                                  + [helper.stdin.close()])
        writer.start()
        self.wait_for_stall(helper)
        self.assertTrue(writer.is_alive())  # the helper takes no more than it can answer
        for number in range(50):
            self.put(f"New {number}")
        self.wait_for_stall(helper)
        peak = next(line for line in pathlib.Path(f"/proc/{helper.pid}/status").read_text().splitlines()
                    if line.startswith("VmHWM"))
        output = helper.stdout.read()
        writer.join()
        helper.stdin = None
        self.assertEqual(helper.wait(DEADLINE), 0)
        self.assertEqual(self.answers(output), [(number, "") for number in range(MANY)])
        changes = [m["params"]["name"] for m in self.messages(output) if m.get("method") == "changed"]
        self.assertEqual(sorted(changes), sorted(f"New {number}" for number in range(50)))
        print(f"{MANY} requests, unread at first: {peak.split()[1]} KiB at most")
        if not os.environ.get("ASAN_OPTIONS"):  # which keeps what is freed
            self.assertLess(int(peak.split()[1]), 200_000)

    def test_a_client_that_never_reads_cannot_keep_the_helper(self):
        helper = self.start()
        for number in range(3000):
            helper.stdin.write(request(number, "fields", kind="HLS"))
            helper.stdin.flush()
            if not select.select([], [helper.stdin], [], 5)[1]:
                break
        self.assertLess(number, 2999)
        helper.send_signal(signal.SIGTERM)
        self.assertEqual(helper.wait(DEADLINE), 1)
        self.assertIn(b"nobody reads the output", helper.stderr.read())
        helper.stdin.close()

    def test_a_client_that_goes_away_ends_the_helper(self):
        helper = self.start()
        helper.stdout.close()
        helper.stdin.write(request(1, "set", name="Show", assignments=["portNumber=7"]))
        helper.stdin.close()
        self.assertEqual(helper.wait(DEADLINE), 1)
        self.assertEqual(json.loads((self.folder / "Show.json").read_bytes())["portNumber"], 7)

    def test_complaints_that_nobody_reads_hold_up_nothing(self):
        name = "N" * 200
        self.put(name)
        helper = self.start()
        for number in range(500):  # each says that it was saved: more than a pipe holds
            helper.stdin.write(request(number, "set", name=name, assignments=[f"portNumber={number}"]))
        helper.stdin.close()
        helper.stdin = None
        output = helper.stdout.read()
        self.assertEqual(helper.wait(DEADLINE), 0)
        self.assertEqual(self.answers(output), [(number, "") for number in range(500)])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
