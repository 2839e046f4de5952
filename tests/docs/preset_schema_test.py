#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The schema of preset files against the samples, against what vantlectl writes, and against spoiled documents.

Usage: preset_schema_test.py SCHEMA SAMPLES_FOLDER VANTLECTL
"""
import copy
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

import jsonschema

SCHEMA, SAMPLES, VANTLECTL = sys.argv[1], pathlib.Path(sys.argv[2]), sys.argv[3]
KINDS = ["HLS", "YouTube", "RTMP", "Wowza", "Facebook", "SRT"]
GONE = object()

# Sample, place, value that takes its place, whether Vantle reads the file all the same.
SPOILED = [
    ("YouTube Premiere", "type", GONE, False),
    ("YouTube Premiere", "type", 2, False),
    ("YouTube Premiere", "type", "youtube", True),
    ("YouTube Premiere", "streamKey", GONE, False),
    ("YouTube Premiere", "isBackup", 0, False),
    ("YouTube Premiere", "application", None, False),
    ("YouTube Premiere", "streamingProtocol", "HTTP", True),
    ("YouTube Premiere", "streamingProtocol", GONE, False),
    ("YouTube Premiere", "portNumber", "443", False),
    ("YouTube Premiere", "portNumber", 443.5, False),
    ("YouTube Premiere", "portNumber", 2**63, False),
    ("YouTube Premiere", "authenticate", True, False),
    ("Facebook Q&A", "streamKey", GONE, False),
    ("Venue Uplink", "streamingURL", GONE, False),
    ("Wowza Town Hall", "streamingURL", 7, False),
    ("Remote Contribution", "portNumber", GONE, False),
    ("Remote Contribution", "authenticate", "no", False),
    ("Evening Show Ladder", "id", 7, True),
    ("Evening Show Ladder", "videoSettings", {}, False),
    ("Evening Show Ladder", "audioSettings", GONE, False),
    ("Evening Show Ladder", "videoSettings.0", "H.264", False),
    ("Evening Show Ladder", "videoSettings.0.codec", "VP9", False),
    ("Evening Show Ladder", "videoSettings.0.resolution", "1920x1080", False),
    ("Evening Show Ladder", "videoSettings.0.customWidth", GONE, False),
    ("Evening Show Ladder", "videoSettings.0.frameRate", "30", False),
    ("Evening Show Ladder", "videoSettings.0.bitRate", True, False),
    ("Evening Show Ladder", "videoSettings.0.profile", None, False),
    ("Evening Show Ladder", "videoSettings.0.pid", "256", False),
    ("Evening Show Ladder", "audioSettings.0.codec", "Opus", False),
    ("Evening Show Ladder", "audioSettings.0.isDefault", 1, False),
    ("Evening Show Ladder", "audioSettings.0.inputChannels", [0, 0.5], False),
    ("Evening Show Ladder", "audioSettings.0.language", GONE, False),
]

# The same for changes that are fine.
HARMLESS = [
    ("YouTube Premiere", "x-note", "ours", True),
    ("YouTube Premiere", "portNumber", 443.0, True),
    ("Evening Show Ladder", "id", GONE, True),
    ("Evening Show Ladder", "streamKey", 7, True),
    ("Evening Show Ladder", "videoSettings", [], True),
    ("Evening Show Ladder", "videoSettings.0.pid", None, True),
    ("Evening Show Ladder", "audioSettings.0.audioCodecFormatID", GONE, True),
    ("Evening Show Ladder", "audioSettings.0.sampleRate", -1, True),
]


def read(path):
    return json.loads(path.read_text(encoding="utf-8"))


def changed(sample, place, value):
    document = copy.deepcopy(read(SAMPLES / f"{sample}.json"))
    *parents, last = [int(key) if key.isdigit() else key for key in place.split(".")]
    target = document
    for key in parents:
        target = target[key]
    if value is GONE:
        del target[last]
    else:
        target[last] = value
    return document


class PresetSchema(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        schema = read(pathlib.Path(SCHEMA))
        jsonschema.Draft202012Validator.check_schema(schema)
        cls.validator = jsonschema.Draft202012Validator(schema)

    def is_read(self, document):
        with tempfile.NamedTemporaryFile("w", suffix=".json", encoding="utf-8") as file:
            json.dump(document, file)
            file.flush()
            done = subprocess.run([VANTLECTL, "validate", file.name], capture_output=True, check=False)
        self.assertIn(done.returncode, (0, 1), done.stderr)
        return done.returncode == 0

    def test_is_what_the_program_prints(self):
        printed = subprocess.run([VANTLECTL, "schema"], capture_output=True, check=True).stdout
        self.assertEqual(printed.decode(), pathlib.Path(SCHEMA).read_text(encoding="utf-8"))

    def test_takes_the_samples(self):
        kinds = set()
        for sample in SAMPLES.glob("*.json"):
            with self.subTest(sample.name):
                self.validator.validate(read(sample))
                kinds.add(read(sample)["type"])
        self.assertEqual(kinds, set(KINDS))

    def test_takes_what_is_written(self):
        with tempfile.TemporaryDirectory() as folder:
            for kind in KINDS:
                subprocess.run([VANTLECTL, "add", kind, "--name", kind, "--data-dir", folder],
                               capture_output=True, check=True)
                written = pathlib.Path(folder, "Orvalle", "Streaming Presets", f"{kind}.json")
                with self.subTest(kind):
                    self.validator.validate(read(written))

    def test_tells_good_from_bad(self):
        for cases, is_valid in ((SPOILED, False), (HARMLESS, True)):
            for sample, place, value, is_read in cases:
                with self.subTest(sample=sample, place=place, value=value):
                    document = changed(sample, place, value)
                    self.assertEqual(self.validator.is_valid(document), is_valid)
                    self.assertEqual(self.is_read(document), is_read)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
