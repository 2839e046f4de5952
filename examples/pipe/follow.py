#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Follows the presets of a folder, and changes one: a host in Python.

Usage: follow.py [--data-dir DIR] [--program VANTLECTL] [NAME FIELD=VALUE...]

Prints the list whenever it changes, until it is interrupted.
"""
import argparse
import asyncio
import signal

import vantle


async def print_list(store: vantle.Store) -> None:
    print("presets:", ", ".join(entry.name for entry in await store.presets()), flush=True)


async def edit(store: vantle.Store, name: str, assignments: list[str]) -> None:
    preset = await store.get(name)
    while True:
        try:
            changed = await store.set(name, *assignments, stamp=preset.stamp)
            print("changed:", changed.name, *changed.notes, flush=True)
            return
        except vantle.Conflict as conflict:  # a program with a user would ask
            if not conflict.present:
                raise
            preset = conflict.present


async def follow(options: argparse.Namespace) -> None:
    async with vantle.open_store(options.data_dir, program=options.program) as store:
        events = store.changes()
        await print_list(store)
        if options.name:
            await edit(store, options.name, options.assignments)
        async for event in events:
            match event:
                case vantle.Failure(has_ended=False):
                    print(f"{event.operation} {event.name}: {event.reason}", flush=True)
                case vantle.Change() | vantle.Overflow():
                    await print_list(store)


async def main() -> int:
    parser = argparse.ArgumentParser(description="Follows the presets of a folder, and changes one.")
    parser.add_argument("--data-dir")
    parser.add_argument("--program", default="vantlectl")
    parser.add_argument("name", nargs="?")
    parser.add_argument("assignments", nargs="*")
    task = asyncio.ensure_future(follow(parser.parse_args()))
    for number in (signal.SIGINT, signal.SIGTERM):
        asyncio.get_running_loop().add_signal_handler(number, task.cancel)
    try:
        await task
    except asyncio.CancelledError:
        return 0
    except vantle.VantleError as error:
        print(f"follow.py: {error}")
        return 1
    return 0


if __name__ == "__main__":
    raise SystemExit(asyncio.run(main()))
