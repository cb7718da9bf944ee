# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""What it takes to compile the product's sources in another way than the build does."""
import pathlib
import re
import shlex

from compilecommands import compile_commands

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PRODUCT = ROOT / "src/plugins/projectfilecfg"


def flags_of(command):
    """The flags of a compile command that define macros and name folders of headers."""
    words = iter(shlex.split(command))
    flags = []
    for word in words:
        if word in ("-isystem", "-I", "-D"):
            flags += [word, next(words)]
        elif re.match(r"-[ID].", word):
            flags.append(word)
    return flags


def sources_and_flags(build):
    """The product's sources in a configured build folder, and the flags with which each of them finds its headers."""
    commands = compile_commands(pathlib.Path(build, "compile_commands.json"))
    flags = {entry["file"]: flags_of(entry["command"]) for entry in commands
             if PRODUCT in pathlib.Path(entry["file"]).parents}
    if not flags:
        raise SystemExit(f"{build} has no source of the product")
    return sorted(flags), max(flags.values(), key=len)


def include_qt_headers(paths):
    """The text of a header that includes what the files include of Qt."""
    pattern = re.compile(r"^#include (<Q\w+>)", re.MULTILINE)
    included = {header for path in paths for header in pattern.findall(pathlib.Path(path).read_text(encoding="utf-8"))}
    return "".join(f"#include {header}\n" for header in sorted(included))
