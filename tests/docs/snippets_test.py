#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Every piece of code in a guide stands, line for line, in the file that the comment above it names, every link
leads somewhere, and every `Suite.Case` is a test.

Usage: snippets_test.py PROJECT_FOLDER GUIDE...
"""
import pathlib
import re
import sys

project = pathlib.Path(sys.argv[1])
tests = "".join(source.read_text(encoding="utf-8") for source in (project / "tests").rglob("*.cpp"))
faults = []
for guide in sys.argv[2:]:
    text = (project / guide).read_text(encoding="utf-8")
    snippets = re.findall(r"(?:<!-- from (\S+) -->\n)?```(?:cpp|cmake)\n(.*?)```", text, re.DOTALL)
    for source, code in snippets:
        if not source or code not in (project / source).read_text(encoding="utf-8"):
            faults.append(f"{guide}: not in {source or 'any file that it names'}:\n{code}")
    for link in re.findall(r"\]\((?!https?:)([^)#]+)", text):
        if not (project / guide).parent.joinpath(link).exists():
            faults.append(f"{guide}: nothing is at {link}")
    proofs = re.findall(r"`([A-Z]\w+)\.([A-Z]\w+)`", text)
    faults += [f"{guide}: there is no test {suite}.{case}" for suite, case in proofs if f"({suite}, {case})" not in tests]
    print(f"{guide}: {len(snippets)} snippets, {len(proofs)} tests")
sys.exit("\n".join(faults) or 0)
