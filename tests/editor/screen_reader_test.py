#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The editor as a screen reader and a person at the keyboard have it: a real X server, a window manager, real keys,
and AT-SPI. Prints the tree of a ladder as it is read aloud.

Usage: screen_reader_test.py VANTLE SAMPLES_FOLDER

Exits with 77, and says why, where one of the programs or modules that it needs is missing.
"""
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

NEEDED = ["Xvfb", "openbox", "xdotool", "dbus-run-session"]
DEADLINE = 60  # seconds; only a fault lets it pass


def skip(reason):
    print(f"skipped: {reason}")
    sys.exit(77)


missing = [program for program in NEEDED if not shutil.which(program)]
if missing:
    skip(f"no {', '.join(missing)}")
try:
    import pyatspi
    from gi.repository import GLib
except (ImportError, ValueError) as error:
    skip(str(error))
if not pathlib.Path("/usr/libexec/at-spi-bus-launcher").exists():
    skip("no at-spi2-core")

if "VANTLE_OWN_BUS" not in os.environ:
    os.environ["VANTLE_OWN_BUS"] = "1"
    # No services of a desktop, and nothing that an earlier session left behind.
    os.environ.pop("AT_SPI_BUS_ADDRESS", None)
    os.execvp("dbus-run-session", ["dbus-run-session", "--", sys.executable, *sys.argv])

vantle, samples = sys.argv[1], pathlib.Path(sys.argv[2])
scratch = tempfile.TemporaryDirectory()
home = pathlib.Path(scratch.name)
children = []


def start(*command, **options):
    child = subprocess.Popen(command, stderr=subprocess.DEVNULL, **options)
    children.append(child)
    return child


def wait_for(condition, what):
    """What the condition answers, once it is true; events of the accessibility bus are handled meanwhile."""
    end = time.monotonic() + DEADLINE
    while time.monotonic() < end:
        while GLib.MainContext.default().iteration(False):
            pass
        try:
            answer = condition()
        except Exception:  # an object that just went
            answer = None
        if answer:
            return answer
        GLib.timeout_add(100, lambda: False)
        GLib.MainContext.default().iteration(True)
    raise SystemExit(f"never came: {what}")


def start_display():
    reading, writing = os.pipe()
    start("Xvfb", "-displayfd", str(writing), "-screen", "0", "1600x1200x24", "-nolisten", "tcp", pass_fds=[writing])
    os.close(writing)
    os.environ["DISPLAY"] = ":" + os.read(reading, 16).decode().strip()
    os.environ.update(
        QT_QPA_PLATFORM="xcb",
        QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
        XDG_CONFIG_HOME=str(home / "config"),
        XDG_RUNTIME_DIR=str(home),
        LC_ALL="C.UTF-8",
    )
    start("openbox", "--sm-disable")


def walk(item, depth=0):
    yield item, depth
    for child in item:
        if child:
            yield from walk(child, depth + 1)


def shown(item):
    return item.getState().contains(pyatspi.STATE_SHOWING)


def find(root, role, name):
    for item, _ in walk(root):
        if item.name == name and item.getRoleName() == role and shown(item):
            return item
    return None


def application(pid):
    for app in pyatspi.Registry.getDesktop(0):
        if app and app.get_process_id() == pid:
            return app
    return None


def keys(*names):
    subprocess.run(["xdotool", "key", "--clearmodifiers", *names], check=True)


def come_back(app):
    """The user's way back to the editor's window, when it is the only one."""
    subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--class", "vantle", "windowactivate"], check=True)
    wait_for(lambda: any(w.getState().contains(pyatspi.STATE_ACTIVE) for w in app), "its activation")


def read_file(name):
    return json.loads((presets / f"{name}.json").read_text())


announced = []


def on_focus(event):
    if event.detail1 and event.source.getRoleName() in ("list item", "text"):
        announced.append(event.source.name)


def check(condition, what):
    if not condition:
        raise SystemExit(f"FAILED: {what}")
    print(f"ok: {what}")


def spoken_tree(form):
    """Names with their roles, as a reader walks them; what is only there to hold others is passed over."""
    lines = []
    for item, depth in walk(form):
        if not shown(item) or not item.name or item.getRoleName() in ("label", "filler"):
            continue
        state = item.getState()
        labels = [relation.getTarget(0).name for relation in item.getRelationSet()
                  if relation.getRelationType() == pyatspi.RELATION_LABELLED_BY]
        text = f"{item.getRoleName()} {(labels or [item.name])[0]!r}"
        if item.getRoleName() == "combo box":
            text += f" = {item.name!r}"
        if state.contains(pyatspi.STATE_CHECKED):
            text += " on"
        if item.getRoleName() == "text":
            text += f" = {item.queryText().getText(0, -1)!r}"
        parent, inside = item.parent, False
        while parent and not inside:
            inside = parent.getRoleName() == "combo box"
            parent = parent.parent
        if not inside:
            lines.append("  " * depth + text)
    outermost = min(len(line) - len(line.lstrip()) for line in lines)
    return [line[outermost:] for line in lines]


try:
    start_display()
    presets = home / "data/Orvalle/Streaming Presets"
    presets.mkdir(parents=True)
    for name in ("Evening Show Ladder", "Remote Contribution", "Venue Uplink"):
        shutil.copy(samples / f"{name}.json", presets)
    # The window manager has to be there, or no window gets the focus.
    wait_for(lambda: subprocess.run(["xdotool", "getwindowfocus"], capture_output=True).returncode == 0, "openbox")
    pyatspi.Registry.registerEventListener(on_focus, "object:state-changed:focused")
    editor = start(vantle, "--data-dir", str(home / "data"), "--select", "Evening Show Ladder", "--size", "1300x1150")
    app = wait_for(lambda: application(editor.pid), "the editor on the accessibility bus")
    wait_for(lambda: find(app, "panel", "Source Channels"), "the form of the selected preset")
    rows = wait_for(lambda: find(app, "list", "Presets"), "the list")

    # Arrow keys announce the row.
    wait_for(lambda: rows.queryComponent().grabFocus() or rows.getState().contains(pyatspi.STATE_FOCUSED), "the focus")
    announced.clear()
    keys("Down")
    wait_for(lambda: "Remote Contribution" in announced, "the row that Down leads to")
    keys("Up")
    wait_for(lambda: "Evening Show Ladder" in announced[1:], "the row that Up leads to")
    print(f"ok: the arrow keys announce {announced}")

    # Groups carry the names of their headers.
    ladder = read_file("Evening Show Ladder")
    headers = wait_for(lambda: [i.name for i, _ in walk(app)
                                if i.getRoleName() == "panel" and i.name.startswith("Video") and shown(i)],
                       "the groups")
    check(len(headers) >= min(5, len(ladder["videoSettings"])) and len(set(headers)) > 1, f"groups are named: {headers}")

    # Toggle and set-text reach the file, which is saved when another application takes the focus.
    group = wait_for(lambda: find(app, "panel", headers[0]), "the first rendition")
    wait_for(lambda: find(group, "text", "Bitrate (kb/s)"), "its bit rate").queryEditableText().setTextContents("1234")
    channels = wait_for(lambda: find(app, "panel", "Source Channels"), "the channels")
    toggle = find(channels, "check box", "5")
    toggle.queryAction().doAction(0)
    wait_for(lambda: toggle.getState().contains(pyatspi.STATE_CHECKED), "the channel")
    other = start(vantle, "--data-dir", str(home / "other"))
    wait_for(lambda: read_file("Evening Show Ladder")["videoSettings"][0]["bitRate"] == 1234, "the bit rate in the file")
    check(4 in read_file("Evening Show Ladder")["audioSettings"][0]["inputChannels"],
          "what was set is in the file when another application takes the focus")
    other.terminate()
    other.wait()

    # A name that is being edited stays in edit meanwhile.
    come_back(app)
    wait_for(lambda: rows.queryComponent().grabFocus() or rows.getState().contains(pyatspi.STATE_FOCUSED), "the focus")
    keys("F2")
    wait_for(lambda: announced[-1:] == ["Name"], "the name field")
    keys("X")
    other = start(vantle, "--data-dir", str(home / "other"))
    active = wait_for(lambda: application(other.pid), "the other application")
    wait_for(lambda: any(w.getState().contains(pyatspi.STATE_ACTIVE) for w in active), "its focus")
    check((presets / "Evening Show Ladder.json").exists(), "a name that is being edited is not given yet")
    other.terminate()
    other.wait()
    come_back(app)
    keys("Y", "Return")
    wait_for((presets / "XY.json").exists, "the renamed file")
    check(not (presets / "X.json").exists(), "the edit went on when the user came back")

    print("\nAs it is read aloud:")
    print("\n".join(spoken_tree(app)))
finally:
    for child in reversed(children):
        child.terminate()
        child.wait()
