#!/usr/bin/env python3
# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""Preprocesses, with the compile command of each folder of the product, a source that includes one header of a folder above
it, or of the host where it may not know it, and expects that the header is not found. A header that the folder may use must
be found, so that a broken command does not look like a refusal.

    one_way_includes.py COMPILE_COMMANDS PRODUCT_FOLDER
"""
import concurrent.futures
import os
import pathlib
import shlex
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
from compilecommands import compile_commands  # noqa: E402

# Each folder with the folders it may use.
MAY_USE = {
    "files": [],
    "package": ["files"],
    "pictures": ["files", "package"],
    "jobs": ["files", "package", "pictures", "host"],
    "panel": ["files", "package", "pictures", "jobs", "host"],
}


def command_of(folder, commands, product):
    for entry in commands:
        path = pathlib.Path(entry["file"])
        if path.parent == product / folder and path.suffix == ".cpp":
            arguments = shlex.split(entry["command"])
            # Without the precompiled header, which takes longer to load than the rest takes together.
            for option in ("-o", "-c", "-include"):
                if option in arguments:
                    at = arguments.index(option)
                    del arguments[at:at + 2]
            return [word for word in arguments if word != "-Winvalid-pch"] + ["-M"], entry["directory"]
    raise SystemExit("no source of %s in the compile commands" % folder)


def is_found(arguments, directory, header, work):
    source = work / ("%s_%s.cpp" % (os.getpid(), header.replace("/", "_")))
    source = source.with_name(source.stem + "_%x.cpp" % abs(hash((tuple(arguments), header))))
    source.write_text("#include <%s>\n" % header)
    return subprocess.run(arguments + [str(source)], cwd=directory, stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL).returncode == 0


def main():
    commands = compile_commands(sys.argv[1])
    product = pathlib.Path(sys.argv[2]).resolve()
    headers = {folder: sorted(p.name for p in (product / folder).glob("*.h")) for folder in MAY_USE}
    headers["host"] = sorted("host/" + p.name for p in (product / "host").glob("*.h"))
    failures, checked = [], 0
    with tempfile.TemporaryDirectory() as work, \
            concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        work = pathlib.Path(work)
        tasks = []
        for folder, used in MAY_USE.items():
            arguments, directory = command_of(folder, commands, product)
            for other in headers:
                allowed = other == folder or other in used
                # One header proves that an allowed folder is reachable; of a forbidden one, each header counts.
                for header in headers[other][:1] if allowed else headers[other]:
                    task = pool.submit(is_found, arguments, directory, header, work)
                    tasks.append((task, folder, other, header, allowed))
        for task, folder, other, header, allowed in tasks:
            checked += 1
            if task.result() != allowed:
                failures.append("%s %s include %s/%s" % (folder, "cannot" if allowed else "can", other, header))
    print("%d includes tried" % checked)
    if failures or checked < 20:
        raise SystemExit("\n".join(failures) or "too few headers")


main()
