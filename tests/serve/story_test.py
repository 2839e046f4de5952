#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Programs in Python that work with the store through `vantlectl serve`, beside each other and beside a shell.

Usage: story_test.py VANTLECTL PYTHON_FOLDER SAMPLES_FOLDER
"""
import asyncio
import json
import pathlib
import resource
import socket
import subprocess
import sys
import tempfile
import time
import unittest

VANTLECTL, SAMPLES = sys.argv[1], pathlib.Path(sys.argv[3])
sys.path.insert(0, sys.argv[2])
import vantle  # noqa: E402

DEADLINE = 120  # seconds; only a fault lets it pass
ROUNDS = 25

# A helper of a later version, which tells more than is known here; what is added to it is not to be understood.
LATER_HELPER = """#!/usr/bin/env python3
import json, sys

def tell(**message):
    body = json.dumps(message).encode()
    sys.stdout.buffer.write(b"Content-Length: %d\\r\\n\\r\\n%s" % (len(body), body))
    sys.stdout.buffer.flush()

known = {"name": "Show", "type": "SRT", "stamp": "1", "document": {},
         "videoSettings": 1, "audioSettings": 1, "later": 1}
while line := sys.stdin.buffer.readline():
    sys.stdin.buffer.readline()
    request = json.loads(sys.stdin.buffer.read(int(line.split()[1])))
    match request["method"]:
        case "initialize":
            result = {"capabilities": {"largestRequest": 1000, "later": 1}}
        case "list":
            for number in range(10):
                tell(method="changed", params={"what": "updated", "name": str(number), "type": "SRT", "later": 1})
            tell(method="later")
            result = {"presets": [known], "later": 1}
        case _:
            result = known
    if request["method"] == "remove":
        tell(method="changed", params={})
    tell(id=request["id"], result=result)
    if request["method"] == "rename":
        tell(method="changed", params={})
"""


class Mirror:
    """The list as a program knows it from what it is told."""

    def __init__(self, store):
        self.names = set()
        self.told = []
        self._events = store.changes()

    async def start(self, store):
        self.names = {entry.name for entry in await store.presets()}
        self._task = asyncio.create_task(self._follow())

    async def _follow(self):
        async for event in self._events:
            self.told.append(event)
            if isinstance(event, vantle.Change):
                self.names -= {event.renamed_from} | ({event.name} if event.what == "removed" else set())
                self.names |= set() if event.what == "removed" else {event.name}

    async def wait_for(self, condition):
        async with asyncio.timeout(DEADLINE):
            while not condition(self):
                await asyncio.sleep(0.01)


class Story(unittest.IsolatedAsyncioTestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.data = pathlib.Path(scratch.name)
        self.folder = self.data / "Orvalle" / "Streaming Presets"

    def open(self):
        return vantle.open_store(self.data, program=VANTLECTL)

    def put(self, sample, name=None):
        self.folder.mkdir(parents=True, exist_ok=True)
        (self.folder / f"{name or sample}.json").write_bytes((SAMPLES / f"{sample}.json").read_bytes())

    def document(self, name):
        return json.loads((self.folder / f"{name}.json").read_bytes())

    async def shell(self, script):
        process = await asyncio.create_subprocess_exec("sh", "-euc", script, cwd=self.folder)
        self.assertEqual(await process.wait(), 0)

    async def refused(self, request, kind):
        with self.assertRaises(vantle.VantleError) as caught:
            await request
        self.assertEqual(caught.exception.kind, kind, caught.exception)
        return caught.exception

    async def test_one_program_does_everything(self):
        async with self.open() as store:
            files = [SAMPLES / f"{name}.json" for name in ("Venue Uplink", "YouTube Premiere")]
            result = await store.import_files(*files, self.data / "none.json")
            self.assertEqual([name for _, name in result.imported], ["Venue Uplink", "YouTube Premiere"])
            self.assertEqual(result.refused, [(str(self.data / "none.json"), "No such file or directory")])
            self.assertEqual((await store.add("SRT")).name, "SRT Preset")
            self.assertEqual((await store.add("SRT", " Link ")).name, "Link")
            self.assertEqual((await store.duplicate("Venue Uplink")).name, "Venue Uplink copy")
            self.assertEqual((await store.rename("Venue Uplink copy", "Spare")).name, "Spare")
            await store.remove("SRT Preset")
            self.assertEqual([entry.name for entry in await store.presets()],
                             ["Link", "Spare", "Venue Uplink", "YouTube Premiere"])
            self.assertEqual([entry.name for entry in await store.presets("SRT")], ["Link"])
            self.assertEqual({path.stem for path in self.folder.iterdir()},
                             {"Link", "Spare", "Venue Uplink", "YouTube Premiere"})

            await store.set("YouTube Premiere", "streamKey=abcd-1234", "videoSettings.0.bitRate=4000")
            masked = await store.get("YouTube Premiere")
            self.assertEqual(masked.document["streamKey"], "********")
            masked.document["portNumber"] = 4443  # whoever edits what is shown keeps what is not
            await store.set("YouTube Premiere", document=masked.document, stamp=masked.stamp)
            revealed = await store.get("YouTube Premiere", reveal=True)
            self.assertEqual((revealed.document["streamKey"], revealed.document["portNumber"]), ("abcd-1234", 4443))
            self.assertEqual(revealed.document, self.document("YouTube Premiere"))

            # A bit rate is limited by the profile that is there in the end, and who asked for more is told.
            rate, profile = "videoSettings.0.bitRate=60000", "videoSettings.0.profile=H264_Main_"
            note = "videoSettings.0.bitRate: limited to 20000 by the profile"
            raised = await store.set("Venue Uplink", rate, profile + "5_0")
            self.assertEqual((raised.notes, self.document("Venue Uplink")["videoSettings"][0]["bitRate"]), ((), 60000))
            self.assertIn(note, (await store.plan("Venue Uplink", rate, profile + "4_0")).notes)
            self.assertEqual((await store.set("Venue Uplink", rate, profile + "4_0")).notes, (note,))

            shown = await store.plan("YouTube Premiere")
            self.assertNotIn("abcd-1234", "".join(shown.arguments))
            plan = await store.plan("YouTube Premiere", reveal=True)
            self.assertEqual(plan.arguments, shown.arguments)
            self.assertTrue(plan.command()[-1].endswith("/abcd-1234"))
            await store.export("YouTube Premiere", self.data / "copy.json")
            self.assertEqual(json.loads((self.data / "copy.json").read_bytes())["streamKey"], "")
            self.assertIn("portNumber", {piece.place for piece in await store.advice("YouTube Premiere")})
            self.assertIn("audioSettings.0.language", {known["field"] for known in await store.fields("SRT")})

    async def test_what_is_refused_changes_nothing(self):
        self.put("Venue Uplink")
        self.put("YouTube Premiere")
        async with self.open() as store:
            before = await store.get("Venue Uplink", reveal=True)
            document = before.document
            stamp = before.stamp
            for request, kind in [
                (store.get("None"), "notFound"),
                (store.remove("None"), "notFound"),
                (store.add("DVD"), "invalidParams"),
                (store.add("SRT", "Venue Uplink"), "invalidName"),
                (store.add("SRT", ".hidden"), "invalidName"),
                (store.add("SRT", "turned \u202e round"), "invalidName"),
                (store.import_document("a\x85b", document), "invalidName"),
                (store.rename("Venue Uplink", "a/b"), "invalidName"),
                (store.rename("Venue Uplink", "a\nb"), "invalidName"),
                (store.rename("Venue Uplink", "YouTube Premiere"), "invalidName"),
                (store.set("Venue Uplink", "portNumber=1936", "portNumber=many"), "invalidValue"),
                (store.set("Venue Uplink", "portNumber"), "invalidValue"),
                (store.set("Venue Uplink", "portNumber=1", "streamingURL=a\nb"), "invalidValue"),
                (store.set("Venue Uplink", "portNumber=1", stamp="old"), "conflict"),
                (store.set("Venue Uplink", document=document), "invalidParams"),
                (store.set("Venue Uplink", document=document, stamp="old"), "conflict"),
                (store.set("Venue Uplink", document={}, stamp=stamp), "invalidDocument"),
                (store.set("Venue Uplink", document=document | {"streamingURL": "a\x1bb"}, stamp=stamp), "invalidValue"),
                (store.set("Venue Uplink", document=document | {"authenticationPassword": "x********"}, stamp=stamp),
                 "invalidValue"),
                (store.set("Venue Uplink", document=self.document("YouTube Premiere") | {"type": "SRT"}, stamp=stamp),
                 "invalidValue"),
                (store.rename("Venue Uplink", "Other", stamp="old"), "conflict"),
                (store.remove("Venue Uplink", stamp="old"), "conflict"),
                (store.import_document("YouTube Premiere", document), "invalidName"),
                (store.export("Venue Uplink", "/dev/stdout"), "fileFailed"),
                (store.plan("Venue Uplink", "videoSettings.0.resolution=custom"), "notPlanned"),
                (store.call("list", kinds="SRT"), "invalidParams"),
                (store.call("initialize", protocol=2), "invalidParams"),
                (store.call("explode"), "methodNotFound"),
            ]:
                with self.subTest(request=request.__qualname__, kind=kind):
                    await self.refused(request, kind)
            self.assertEqual(await store.get("Venue Uplink", reveal=True), before)
            self.assertEqual(self.document("Venue Uplink"), document)
            self.assertEqual(len(await store.presets()), 2)

    async def edit(self, store, path, value_of):
        """Counts a field up, each time from what the program has last seen; how often others were faster."""
        conflicts = 0
        preset = await store.get("Show", reveal=True)
        for _ in range(ROUNDS):
            while True:
                try:
                    await store.set("Show", f"{path}={value_of(preset.document) + 1}", stamp=preset.stamp)
                    break
                except vantle.Conflict as conflict:
                    conflicts += 1
                    self.assertIsNotNone(conflict.present)
                    preset = conflict.present
            preset = await store.get("Show")
        return conflicts

    async def test_no_change_is_lost_and_every_conflict_told(self):
        self.put("Venue Uplink", "Show")
        before = self.document("Show")
        async with self.open() as one, self.open() as other:
            mirrors = [Mirror(one), Mirror(other)]
            for mirror, store in zip(mirrors, (one, other)):
                await mirror.start(store)
            conflicts = await asyncio.gather(
                self.edit(one, "portNumber", lambda document: document["portNumber"]),
                self.edit(other, "videoSettings.0.bitRate", lambda document: document["videoSettings"][0]["bitRate"]),
                # The folder's lock is what the store's processes take turns by; a script can, too.
                self.shell(f"""for round in $(seq {ROUNDS}); do
                    flock . sed -i 's/"authenticationLogin": *"[^"]*"/"authenticationLogin": "'$round'"/' Show.json
                    cp Show.json "File $round.json"; mv "File $round.json" "Moved $round.json"
                    [ $((round % 2)) = 0 ] || rm "Moved $round.json"
                done"""))
            print("conflicts told:", conflicts[:2])
            after = self.document("Show")
            self.assertEqual(after["portNumber"], before["portNumber"] + ROUNDS)
            self.assertEqual(after["videoSettings"][0]["bitRate"], before["videoSettings"][0]["bitRate"] + ROUNDS)
            self.assertEqual(after["authenticationLogin"], str(ROUNDS))
            names = {path.stem for path in self.folder.glob("*.json")}
            self.assertEqual(len(names), 1 + ROUNDS // 2)
            for mirror, store in zip(mirrors, (one, other)):
                await mirror.wait_for(lambda mirror: mirror.names == names)
                self.assertEqual({entry.name for entry in await store.presets()}, names)
                async with asyncio.timeout(DEADLINE):  # the last change of the other is on its way
                    while (await store.get("Show", reveal=True)).document != after:
                        await asyncio.sleep(0.01)

    async def test_a_burst_is_told_once_for_each_preset(self):
        self.put("Venue Uplink", "Show")
        async with self.open() as store:
            mirror = Mirror(store)
            await mirror.start(store)
            for port in range(1000, 1020):
                await store.set("Show", f"portNumber={port}")
            await store.add("SRT", "Last")
            await mirror.wait_for(lambda mirror: "Last" in mirror.names)
            updates = [event for event in mirror.told if isinstance(event, vantle.Change) and event.name == "Show"]
            self.assertTrue(updates and all(event.what == "updated" for event in updates))
            self.assertLess(len(updates), 20)
            self.put("YouTube Premiere", "Show")  # another kind, in the place of the same preset
            await mirror.wait_for(lambda mirror: mirror.told[-1] == vantle.Change("updated", "Show", "YouTube"))

    async def test_what_cannot_be_saved_is_told_and_undone(self):
        self.put("Venue Uplink", "Show")
        async with self.open() as store:
            mirror = Mirror(store)
            await mirror.start(store)
            before = await store.get("Show", reveal=True)
            process = store._process.pid
            limits = resource.prlimit(process, resource.RLIMIT_FSIZE, (0, resource.RLIM_INFINITY))
            for request in (store.set("Show", "portNumber=1"), store.add("SRT"), store.duplicate("Show"),
                            store.import_document("Other", before.document)):
                error = await self.refused(request, "notSaved")
                self.assertEqual(str(error), "File too large")
            self.assertEqual([entry.name for entry in await store.presets()], ["Show"])
            self.assertEqual(await store.get("Show", reveal=True), before)
            await mirror.wait_for(lambda mirror: any(
                isinstance(event, vantle.Failure) and event.name == "Show" for event in mirror.told))
            resource.prlimit(process, resource.RLIMIT_FSIZE, limits)
            await store.set("Show", "portNumber=2", stamp=before.stamp)
            await mirror.wait_for(lambda mirror: any(
                isinstance(event, vantle.Failure) and event.name == "Show" and event.has_ended for event in mirror.told))
        self.assertEqual(self.document("Show")["portNumber"], 2)

    async def test_a_server_is_checked_while_other_requests_go_on(self):
        self.put("Venue Uplink", "Show")
        with socket.create_server(("127.0.0.1", 0)) as server:  # that says nothing
            address = f"rtmp://127.0.0.1:{server.getsockname()[1]}/live/key"
            async with self.open() as store:
                check = asyncio.create_task(store.check("Show", output=address, limit=DEADLINE))
                self.assertEqual(len(await store.presets()), 1)
                self.assertFalse(check.done())
                others = [asyncio.create_task(store.check("Show", output=address, limit=DEADLINE)) for _ in range(8)]
                await self.refused(others[-1], "tooMany")
                for task in (check, *others[:-1]):
                    task.cancel()
                await asyncio.gather(check, *others, return_exceptions=True)
                checked = await store.check("Show", "videoSettings.0.bitRate=999999", output=address, limit=0.1)
                self.assertEqual(checked.notes, ["videoSettings.0.bitRate: limited to 20000 by the profile"])
                self.assertFalse(checked.is_good)
                self.assertEqual([(step.step, step.outcome) for step in checked.steps],
                                 [("name look-up", "ok"), ("TCP", "ok"), ("RTMP handshake", "failed")])

    async def test_a_store_that_cannot_be_opened_says_why(self):
        self.folder.parent.mkdir(parents=True)
        self.folder.write_text("in the way")
        async with self.open() as store:
            error = await self.refused(store.presets(), "unavailable")
            self.assertTrue(str(error).endswith("Not a directory"), error)
        with self.assertRaises(vantle.Closed):
            async with vantle.open_store(self.data, program=self.data / "none"):
                pass

    async def test_a_helper_that_dies_ends_what_waits(self):
        async with self.open() as store:
            await store.presets()
            store._process.kill()
            with self.assertRaises(vantle.Closed):
                while True:
                    await store.presets()

    def open_later(self):
        program = self.data / "later"
        program.write_text(LATER_HELPER)
        program.chmod(0o700)
        return vantle.open_store(program=program)

    async def test_what_a_later_helper_tells_besides_is_passed_over(self):
        async with self.open_later() as store:
            self.assertEqual(await store.presets(), [vantle.Entry("Show", "SRT", 1, 1)])
            self.assertEqual(await store.get("Show"), vantle.Preset("Show", "SRT", "1", {}))
            self.assertEqual(await store.add("SRT"), vantle.Stamped("Show", "1", "SRT"))

    async def test_a_reader_that_falls_behind_is_told_so(self):
        self.addCleanup(setattr, vantle, "MOST_EVENTS", vantle.MOST_EVENTS)
        vantle.MOST_EVENTS = 4
        async with self.open_later() as store:
            events = store.changes()
            await store.presets()
        self.assertEqual([getattr(event, "name", event) async for event in events], [vantle.Overflow(), "9"])

    async def test_a_message_that_is_not_understood_is_raised_once(self):
        for method in ("remove", "rename"):  # by the request that waits, and by the end of the session
            with self.subTest(method), self.assertRaises(KeyError) as caught:
                async with self.open_later() as store:
                    events = store.changes()
                    await store.call(method)
                    self.assertEqual([event async for event in events], [])
            self.assertEqual(caught.exception.args, ("what",))
            with self.assertRaises(vantle.Closed):
                await store.presets()
            self.assertEqual(await store.close(), 0)

    def test_ten_thousand_presets_are_listed_about_as_fast_as_by_the_command(self):
        document = (SAMPLES / "Venue Uplink.json").read_bytes()
        self.folder.mkdir(parents=True)
        for number in range(10_000):
            (self.folder / f"Preset {number}.json").write_bytes(document)
        body = b'{"jsonrpc":"2.0","id":1,"method":"list"}'
        request = b"Content-Length: %d\r\n\r\n%s" % (len(body), body)

        def seconds(*command, given=b""):
            start = time.monotonic()
            run = subprocess.run([VANTLECTL, *command, "--data-dir", self.data], input=given, capture_output=True)
            self.assertEqual(run.returncode, 0)
            self.assertEqual(run.stdout.count(b"Preset "), 10_000)
            return time.monotonic() - start

        pairs = [(seconds("list"), seconds("serve", given=request)) for _ in range(3)]
        listed, served = (min(times) for times in zip(*pairs))
        print(f"10,000 presets: list {listed:.2f} s, serve {served:.2f} s, ratio {served / listed:.2f}")
        self.assertLess(served / listed, 1.5)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
