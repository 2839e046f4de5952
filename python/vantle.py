# SPDX-License-Identifier: MIT
"""Streaming presets for programs in Python: a client of ``vantlectl serve``.

The store runs in a helper process, so nothing of it is in the program. One coroutine starts it::

    async with vantle.open_store() as store:
        for entry in await store.presets():
            print(entry.name, entry.type)
        preset = await store.get("Evening Show")
        await store.set("Evening Show", "portNumber=1936", stamp=preset.stamp)
        async for change in store.changes():
            ...

All methods belong to the event loop on which the store was opened. What the helper refuses is raised as
:class:`VantleError` or one of its subclasses; a request whose task is cancelled is called off at the helper, too.
"""
from __future__ import annotations

import asyncio
import contextlib
import dataclasses
import json
import os
import weakref
from collections.abc import AsyncIterator, Mapping
from dataclasses import dataclass, field
from typing import Any, TypeVar

__all__ = [
    "Advice", "Change", "Checked", "Closed", "Conflict", "Entry", "Failure", "Imported", "Loaded", "NotFound", "Overflow",
    "Plan", "Preset", "Stamped", "Step", "Store", "VantleError", "open_store",
]

PROTOCOL = 1
MOST_EVENTS = 4096  # that wait for one reader of changes()

_Record = TypeVar("_Record")


def _record(kind: type[_Record], members: Mapping[str, Any]) -> _Record:
    """Of the members that are known here: a later helper may tell more."""
    known = {field.name for field in dataclasses.fields(kind)}
    return kind(**{name: value for name, value in members.items() if name in known})


class VantleError(Exception):
    """A request was refused. ``kind`` is the word for ``code``; docs/serve.md has both, and what ``data`` hold."""

    def __init__(self, code: int, message: str, data: Mapping[str, Any]) -> None:
        super().__init__(message)
        self.code = code
        self.kind: str = data.get("kind", "")
        self.data = data


class NotFound(VantleError):
    """There is no preset of the name."""


class Conflict(VantleError):
    """Others have changed or removed the preset since the stamp was taken. Nothing of the request was done."""

    @property
    def present(self) -> Preset | None:
        """The preset as it is now, or None when it is gone."""
        present = self.data.get("present")
        return _record(Preset, present) if present else None


class Closed(VantleError):
    """The helper has ended, or was never there."""

    def __init__(self, message: str = "the helper has ended") -> None:
        super().__init__(0, message, {"kind": "closed"})


@dataclass(frozen=True)
class Entry:
    """A preset in the list, with the numbers of its renditions and tracks."""

    name: str
    type: str
    videoSettings: int
    audioSettings: int


@dataclass(frozen=True)
class Preset:
    """A preset. The document is that of its file, with secrets masked unless they were asked for."""

    name: str
    type: str
    stamp: str
    document: dict[str, Any] = field(repr=False)  # may hold secrets


@dataclass(frozen=True)
class Stamped:
    """A preset after a change: its name, what stands for its content, and which values were limited."""

    name: str
    stamp: str
    type: str = ""
    notes: tuple[str, ...] = ()


@dataclass(frozen=True)
class Imported:
    """What became of files: (path, name) of those that are presets now, (path, reason) of the others."""

    imported: list[tuple[str, str]]
    refused: list[tuple[str, str]]


@dataclass(frozen=True)
class Advice:
    """One piece of advice; severity is "error", "warning" or "note"."""

    severity: str
    place: str
    text: str
    source: str


@dataclass(frozen=True)
class Plan:
    """ffmpeg's arguments, its own name first, with masks in the place of secrets."""

    arguments: list[str]
    notes: list[str]
    secrets: dict[int, str] = field(default_factory=dict, repr=False)

    def command(self) -> list[str]:
        """The arguments as they are to be run; not to be shown. Needs a plan with secrets."""
        return [self.secrets.get(index, text) for index, text in enumerate(self.arguments)]


@dataclass(frozen=True)
class Step:
    """One step of a check; outcome is "ok" or "failed", and the first that failed is the last one."""

    step: str
    outcome: str
    milliseconds: int
    text: str


@dataclass(frozen=True)
class Checked:
    """What a check found, and which of the assigned values were limited."""

    is_good: bool
    steps: list[Step]
    notes: list[str]


@dataclass(frozen=True)
class Loaded:
    """The folder has been read for the first time."""

    presets: int


@dataclass(frozen=True)
class Change:
    """A change of the list, whoever made it. ``what`` is "added", "updated", "removed" or "renamed"."""

    what: str
    name: str
    type: str
    renamed_from: str | None = None


@dataclass(frozen=True)
class Failure:
    """Something that could not be done with a file: "start", "load", "save" or "deletion"; or the end of that."""

    operation: str
    name: str
    path: str
    reason: str
    has_ended: bool


@dataclass(frozen=True)
class Overflow:
    """Events were left out, since too many waited to be read: ``presets()`` has what is there now."""


Event = Loaded | Change | Failure | Overflow

_ERRORS: dict[int, type[VantleError]] = {1: NotFound, 2: Conflict}


def _event(method: str, params: dict[str, Any]) -> Event | None:
    if method == "loaded":
        return Loaded(params["presets"])
    if method == "changed":
        return Change(params["what"], params["name"], params["type"], params.get("from"))
    if method in ("failed", "recovered"):
        return Failure(params["operation"], params.get("name", ""), params.get("path", ""), params.get("reason", ""),
                       method == "recovered")
    return None  # of a later version


class Store:
    """A session with the helper; :func:`open_store` makes one."""

    def __init__(self, process: asyncio.subprocess.Process) -> None:
        self._process = process
        self._waiting: dict[int, asyncio.Future[Any]] = {}
        self._followers: weakref.WeakSet[asyncio.Queue[Event | None]] = weakref.WeakSet()
        self._next_id = 1
        self._largest = 16 << 20
        self._has_ended = False
        self._fault: Exception | None = None
        self._reader = asyncio.create_task(self._read())
        self.capabilities: dict[str, Any] = {}

    async def presets(self, kind: str | None = None) -> list[Entry]:
        """The presets, sorted by name; those of one kind ("RTMP") if it is given."""
        result = await self.call("list", kind=kind)
        return [_record(Entry, entry) for entry in result["presets"]]

    async def get(self, name: str, *, reveal: bool = False) -> Preset:
        """A preset's document. Stream key and password are masked unless revealed."""
        return _record(Preset, await self.call("get", name=name, reveal=reveal))

    async def set(self, name: str, *assignments: str, document: Mapping[str, Any] | None = None,
                  stamp: str | None = None) -> Stamped:
        """Changes a preset, and has it on disk: by assignments such as "portNumber=1936", all or none, or by a whole
        document. Raises Conflict when it is not the stamp's any more; a document needs a stamp, and masks in it
        stand for the secrets that are there."""
        changes = assignments if assignments or document is None else None
        result = await self.call("set", name=name, assignments=changes, document=document, stamp=stamp)
        return Stamped(result["name"], result["stamp"], notes=tuple(result["notes"]))

    async def add(self, kind: str, name: str | None = None) -> Stamped:
        """Adds a preset with its kind's defaults, named "KIND Preset" if no name is given."""
        return _record(Stamped, await self.call("add", kind=kind, name=name))

    async def duplicate(self, name: str) -> Stamped:
        """Adds a copy of a preset's renditions and tracks."""
        return _record(Stamped, await self.call("duplicate", name=name))

    async def rename(self, name: str, to: str, *, stamp: str | None = None) -> Stamped:
        """Renames a preset and its file."""
        return _record(Stamped, await self.call("rename", name=name, to=to, stamp=stamp))

    async def remove(self, name: str, *, stamp: str | None = None) -> None:
        """Deletes a preset and its file."""
        await self.call("remove", name=name, stamp=stamp)

    async def import_files(self, *paths: str | os.PathLike[str]) -> Imported:
        """Adds presets from files, named after them."""
        result = await self.call("import", paths=[os.path.abspath(os.fspath(path)) for path in paths])
        return Imported([(entry["path"], entry["name"]) for entry in result["imported"]],
                        [(entry["path"], entry["reason"]) for entry in result["refused"]])

    async def import_document(self, name: str, document: Mapping[str, Any]) -> str:
        """Adds a preset with this document. Its name, without the blanks around it."""
        result = await self.call("import", name=name, document=document)
        return result["imported"][0]["name"]

    async def export(self, name: str, path: str | os.PathLike[str], *, with_secrets: bool = False) -> None:
        """Writes a preset to a file; without stream key and password unless they are wanted."""
        await self.call("export", name=name, path=os.path.abspath(os.fspath(path)), withSecrets=with_secrets)

    async def advice(self, name: str | None = None, *, document: Mapping[str, Any] | None = None) -> list[Advice]:
        """What speaks against going on air with a preset, or with a document."""
        result = await self.call("advice", name=name, document=document)
        return [_record(Advice, piece) for piece in result["advice"]]

    async def plan(self, name: str, *assignments: str, reveal: bool = False, **options: Any) -> Plan:
        """ffmpeg's arguments. Options: input, inputChannels, output, duration (seconds), fast."""
        result = await self.call("plan", name=name, assignments=list(assignments), reveal=reveal, **options)
        return Plan(result["arguments"], result["notes"],
                    {secret["argument"]: secret["text"] for secret in result.get("secrets", [])})

    async def check(self, name: str, *assignments: str, **options: Any) -> Checked:
        """Asks the preset's server whether it is there. Options: output, authorityFile, limit (seconds a step)."""
        result = await self.call("check", name=name, assignments=list(assignments), **options)
        return Checked(result["isGood"], [_record(Step, step) for step in result["steps"]], result["notes"])

    async def fields(self, kind: str) -> list[dict[str, Any]]:
        """What can be set in presets of a kind."""
        return (await self.call("fields", kind=kind))["fields"]

    def changes(self) -> AsyncIterator[Event]:
        """What happens from this call on, until the helper ends. Of a reader that falls behind by MOST_EVENTS, those
        that wait are given up, and it gets an Overflow in their place."""
        queue: asyncio.Queue[Event | None] = asyncio.Queue()
        if self._has_ended:
            queue.put_nowait(None)
        self._followers.add(queue)  # for as long as somebody has the iterator
        return self._events(queue)

    @staticmethod
    async def _events(queue: asyncio.Queue[Event | None]) -> AsyncIterator[Event]:
        while event := await queue.get():
            yield event

    async def call(self, method: str, /, **params: Any) -> Any:
        """A request by its name; parameters that are None are left out."""
        if self._has_ended:
            raise self._end()
        number, self._next_id = self._next_id, self._next_id + 1
        answer: asyncio.Future[Any] = asyncio.get_running_loop().create_future()
        self._waiting[number] = answer
        given = {key: value for key, value in params.items() if value is not None}
        try:
            await self._send({"jsonrpc": "2.0", "id": number, "method": method, "params": given})
            return await answer
        except asyncio.CancelledError:
            if number in self._waiting and not self._has_ended:
                self._write({"jsonrpc": "2.0", "method": "$/cancelRequest", "params": {"id": number}})
            raise
        finally:
            self._waiting.pop(number, None)

    async def close(self) -> int:
        """Ends the helper, once all is saved; its exit code, 0 when all went well. Raises what went wrong with a
        message of the helper's, unless a request has."""
        assert self._process.stdin and self._process.stdout
        self._process.stdin.close()
        await self._reader
        while await self._process.stdout.read(1 << 16):
            pass  # what follows on a message that was not understood
        code = await self._process.wait()
        if self._fault:
            raise self._end()
        return code

    def _end(self) -> Exception:
        """Why nothing more comes: what went wrong here, once, and else that the helper has ended."""
        fault, self._fault = self._fault, None
        return fault or Closed()

    def _write(self, message: Mapping[str, Any]) -> None:
        assert self._process.stdin
        body = json.dumps(message, ensure_ascii=False, separators=(",", ":")).encode()
        if len(body) > self._largest:
            raise ValueError(f"a request of {len(body)} bytes; the largest may have {self._largest}")
        self._process.stdin.write(b"Content-Length: %d\r\n\r\n" % len(body) + body)

    async def _send(self, message: Mapping[str, Any]) -> None:
        assert self._process.stdin
        self._write(message)
        try:
            await self._process.stdin.drain()
        except (BrokenPipeError, ConnectionResetError) as error:
            raise Closed() from error

    async def _read(self) -> None:
        try:
            while message := await self._message():
                self._take(message)
        except Exception as fault:  # not understood: nothing that follows can be, either
            self._fault = fault
        finally:
            self._has_ended = True
            for answer in self._waiting.values():
                if not answer.done():
                    answer.set_exception(self._end())
            for queue in tuple(self._followers):
                queue.put_nowait(None)

    async def _message(self) -> dict[str, Any] | None:
        assert self._process.stdout
        try:
            header = await self._process.stdout.readuntil(b"\r\n\r\n")
            length = next(int(line.split(b":")[1]) for line in header.splitlines()
                          if line.lower().startswith(b"content-length:"))
            return json.loads(await self._process.stdout.readexactly(length))
        except asyncio.IncompleteReadError:
            return None

    @staticmethod
    def _put(queue: asyncio.Queue[Event | None], event: Event) -> None:
        if queue.qsize() >= MOST_EVENTS:
            while not queue.empty():
                queue.get_nowait()
            event = Overflow()
        queue.put_nowait(event)

    def _take(self, message: dict[str, Any]) -> None:
        if "method" in message:
            event = _event(message["method"], message.get("params", {}))
            for queue in tuple(self._followers) if event else ():
                self._put(queue, event)
            return
        answer = self._waiting.get(message["id"])
        if answer is None or answer.done():
            return
        if "error" in message:
            error = message["error"]
            kind = _ERRORS.get(error["code"], VantleError)
            answer.set_exception(kind(error["code"], error["message"], error.get("data", {})))
        else:
            answer.set_result(message["result"])


@contextlib.asynccontextmanager
async def open_store(data_dir: str | os.PathLike[str] | None = None, *,
                     program: str | os.PathLike[str] = "vantlectl") -> AsyncIterator[Store]:
    """Starts the helper on the machine's presets, or on those below another data directory, and ends it with the
    block. What it complains of goes to this program's standard error. Raises Closed when it can't be started."""
    command = [os.fspath(program), "serve"]
    if data_dir is not None:
        command += ["--data-dir", os.fspath(data_dir)]
    try:
        process = await asyncio.create_subprocess_exec(*command, stdin=asyncio.subprocess.PIPE,
                                                       stdout=asyncio.subprocess.PIPE)
    except OSError as error:
        raise Closed(f"can't run {command[0]}: {error.strerror}") from error
    store = Store(process)
    try:
        answer = await store.call("initialize", protocol=PROTOCOL, client="vantle.py")
        store.capabilities = answer["capabilities"]
        store._largest = answer["capabilities"]["largestRequest"]
        yield store
    finally:
        await store.close()
