# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""Reads compile_commands.json."""
import json
import pathlib
import re


def compile_commands(path):
    """The entries of the file at `path`, with one for each source where several are compiled as one. "unit" is the file
    that the compiler is given: the source, or the one that includes them."""
    entries = []
    for entry in json.loads(pathlib.Path(path).read_text(encoding="utf-8")):
        batch = pathlib.Path(entry["file"])
        if not re.match(r"unity_\d+_cxx\.cxx$", batch.name):
            entries.append({**entry, "unit": entry["file"]})
            continue
        for source in re.findall(r'^#include "(.*\.cpp)"$', batch.read_text(encoding="utf-8"), re.MULTILINE):
            entries.append({**entry, "file": source, "unit": str(batch),
                            "command": entry["command"].replace(str(batch), source)})
    return entries
