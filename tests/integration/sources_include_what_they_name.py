#!/usr/bin/env python3
# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""Each source of the product includes the header of each Qt class that it names, itself or through a header that it
includes: whoever builds the product has neither our precompiled headers nor our batches, which would hide what is missing.
Only preprocesses. Where the source names nothing but pointers to a class, a declaration ("class QWidget;") is enough.

    sources_include_what_they_name.py COMPILE_COMMANDS PRODUCT_FOLDER
"""
import concurrent.futures
import os
import pathlib
import re
import shlex
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
from compilecommands import compile_commands  # noqa: E402

COMMENT_OR_TEXT = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"', re.DOTALL)
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[^\n]*', re.MULTILINE)


def preprocess(entry):
    """All files that the source reads without a precompiled header, and the folders of Qt's headers that it may include."""
    words = shlex.split(entry["command"])
    compiler = next(at for at, word in enumerate(words) if word.endswith("++"))
    arguments, rest = [], iter(words[compiler + 1:])
    for word in rest:
        if word in ("-include", "-o", "-MF", "-MT"):
            next(rest)
        elif word not in ("-MD", "-c", "-Winvalid-pch"):
            arguments.append(word)
    listed = subprocess.run([words[compiler], "-M", *arguments], cwd=entry["directory"], stdout=subprocess.PIPE, check=True)
    files = listed.stdout.decode().replace("\\\n", " ").split()[1:]
    folders = [word for word in arguments if re.search(r"/Qt\w+$", word)]
    return [pathlib.Path(file) for file in files], [pathlib.Path(folder) for folder in folders]


def header_of(name, folders):
    """The header that declares a class of Qt; None if there is no such class."""
    forwarding = next((folder / name for folder in folders if (folder / name).is_file()), None)
    return forwarding and re.search(r'#include "(?:.*/)?([^"]+)"', forwarding.read_text()).group(1)


def missing_in(entry, product):
    files, folders = preprocess(entry)
    headers = {file.name for file in files}
    own = {file: INCLUDE.sub("", COMMENT_OR_TEXT.sub("", file.read_text())) for file in files if product in file.parents}
    names = set(re.findall(r"\bQ[A-Z]\w+", "\n".join(own.values())))
    missing = set()
    for name in names:
        if header_of(name, folders) in headers | {None}:
            continue
        declaration = re.compile(r"\b(?:class|struct) %s;" % name)
        needs_header = re.search(r"\b%s\b(?! *[*&;])" % name, own[pathlib.Path(entry["file"])])
        if needs_header or not any(declaration.search(file.read_text(errors="replace")) for file in files):
            missing.add(name)
    return missing, len(names)


def main():
    product = pathlib.Path(sys.argv[2]).resolve()
    commands = [entry for entry in compile_commands(sys.argv[1])
                if product in pathlib.Path(entry["file"]).parents]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = list(pool.map(lambda entry: missing_in(entry, product), commands))
    names = sum(count for _, count in results)
    print("%d sources name Qt's classes %d times" % (len(commands), names))
    failures = ["%s names %s, but includes no header with it" % (os.path.relpath(entry["file"], product), name)
                for entry, (missing, _) in zip(commands, results) for name in sorted(missing)]
    if failures or len(commands) < 50 or names < 300:
        raise SystemExit("\n".join(failures) or "too few sources")


main()
