# SPDX-License-Identifier: MIT
"""A real OBS under a virtual screen, in a home of its own."""

import base64
import contextlib
import hashlib
import json
import os
import pathlib
import secrets
import signal
import socket
import subprocess
import time

import websocket

SETTINGS = """[General]
FirstRun=true
[Basic]
ConfigOnNewProfile=false
[BasicWindow]
PreviewEnabled=false
[OBSWebSocket]
FirstLoad=false
ServerEnabled=true
ServerPort={port}
AlertsEnabled=false
AuthRequired=true
ServerPassword={password}
"""


def wait(condition, seconds, what):
    deadline = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > deadline:
            raise TimeoutError(what)
        time.sleep(0.05)


def is_open(port):
    with contextlib.suppress(OSError), socket.create_connection(("127.0.0.1", port), timeout=1):
        return True
    return False


class Screen:
    """Xvfb on a display number that it picks itself."""

    def __init__(self):
        reading, writing = os.pipe()
        self._process = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", "1400x900x24", "+extension", "GLX", "-nolisten", "tcp"],
            pass_fds=[writing], stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as number:
            self.display = ":" + number.readline().strip()

    def stop(self):
        self._process.terminate()
        self._process.wait()


class Obs:
    """Runs until it is stopped. Its password holds what its file escapes, and is new each time: OBS listens to the
    whole network."""

    password = r"scratch=se\cret;" + secrets.token_hex(12)

    def __init__(self, home, display, port):
        self.home = home
        self.port = port
        self.configuration = home / ".config/obs-studio"
        self.configuration.mkdir(parents=True, exist_ok=True)
        if not (self.configuration / "global.ini").exists():
            escaped = self.password.replace("\\", "\\\\")
            (self.configuration / "global.ini").write_text(SETTINGS.format(port=port, password=escaped))
        runtime = home / "runtime"
        runtime.mkdir(mode=0o700, exist_ok=True)
        self._log = (home / "obs.log").open("ab")
        # Software GL; the dead address keeps a message bus from being launched.
        self._process = subprocess.Popen(
            ["obs", "--minimize-to-tray", "--multi"], cwd=home, stdin=subprocess.DEVNULL, stdout=self._log,
            stderr=self._log,
            env={"PATH": os.environ["PATH"], "HOME": str(home), "XDG_CONFIG_HOME": str(home / ".config"),
                 "XDG_RUNTIME_DIR": str(runtime), "DISPLAY": display, "LIBGL_ALWAYS_SOFTWARE": "1",
                 "LANG": "C.UTF-8", "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nonexistent"})
        wait(lambda: self._process.poll() is not None or is_open(port), 60, "OBS does not open its port")
        if self._process.poll() is not None:
            raise RuntimeError(f"OBS ended at once: {self.log()[-2000:]}")

    def log(self):
        return pathlib.Path(self._log.name).read_text(errors="replace")

    def profile(self, name):
        """The files of a profile, by the name that is in them."""
        for file in self.configuration.glob("basic/profiles/*/basic.ini"):
            if f"Name={name}\n" in file.read_text(encoding="utf-8-sig"):
                return file.parent
        raise KeyError(name)

    def stop(self):
        # Its exit status tells nothing: it crashes at the end after an SRT stream.
        self._process.send_signal(signal.SIGINT)
        try:
            self._process.wait(timeout=10)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
        self._log.close()


class Conversation:
    """Requests that the program under test does not make."""

    def __init__(self, port):
        self._socket = websocket.create_connection(f"ws://127.0.0.1:{port}", timeout=30)
        hello = json.loads(self._socket.recv())["d"]["authentication"]
        secret = self._digest(Obs.password + hello["salt"])
        self._send(1, rpcVersion=1, eventSubscriptions=0, authentication=self._digest(secret + hello["challenge"]))
        self._socket.recv()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._socket.close()

    def request(self, name, **data):
        self._send(6, requestType=name, requestId=name, requestData=data)
        answer = json.loads(self._socket.recv())["d"]
        if not answer["requestStatus"]["result"]:
            raise RuntimeError(f"{name}: {answer['requestStatus']}")
        return answer.get("responseData")

    def set_parameter(self, category, name, value):
        self.request("SetProfileParameter", parameterCategory=category, parameterName=name, parameterValue=value)

    def _send(self, operation, **data):
        self._socket.send(json.dumps({"op": operation, "d": data}))

    @staticmethod
    def _digest(text):
        return base64.b64encode(hashlib.sha256(text.encode()).digest()).decode()
