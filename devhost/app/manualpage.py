#!/usr/bin/env python3
# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""Writes the manual page of the development host from what the program says about itself.

    manualpage.py DEVHOST PAGE.1.gz
"""
import gzip
import os
import re
import subprocess
import sys
import textwrap

# When the options last changed.
DATE = "2026-11-22"


def roff(text):
    escaped = text.replace("\\", "\\(rs").replace("-", "\\-").replace("–", "\\(en")
    return re.sub(r"^([.'])", r"\\&\1", textwrap.fill(escaped, 76, break_on_hyphens=False), flags=re.MULTILINE)


def items(section):
    """(term, text) of a list in the help, where a text goes on below its beginning."""
    for item in re.findall(r"^  (\S.*(?:\n {6,}\S.*)*)", section, re.MULTILINE):
        term, text = re.split(r" {2,}", item, maxsplit=1)
        yield term, " ".join(text.split())


def page(version, text):
    """From "devhost 2.0.0" and the help: a line on usage, the purpose, and lists under "Options:" and "Arguments:"."""
    usage, purpose, rest = re.match(r"Usage: \S*?(devhost[^\n]*)\n(.*?)\n\n(.*)", text, re.DOTALL).groups()
    purpose = " ".join(purpose.split())
    lines = [".TH DEVHOST 1 %s \"%s\" \"User Commands\"" % (DATE, version),
             ".SH NAME", "devhost \\- " + roff(purpose.partition(": ")[2].rstrip(".")),
             ".SH SYNOPSIS", ".B " + roff(usage), ".SH DESCRIPTION", roff(purpose)]
    for title, section in re.findall(r"^(\w+):\n((?:  .*\n)+)", rest, re.MULTILINE):
        lines.append(".SH " + title.upper())
        for term, meaning in items(section):
            lines += [".TP", ".B " + roff(term), roff(meaning)]
    return "\n".join(lines) + "\n"


def main():
    program, target = sys.argv[1:]
    said = [subprocess.run([program, option], check=True, stdout=subprocess.PIPE, encoding="utf-8",
                           env=dict(os.environ, LC_ALL="C.UTF-8")).stdout for option in ("--version", "--help")]
    with open(target, "wb") as file, gzip.GzipFile("", "wb", 9, file, mtime=0) as packed:
        packed.write(page(said[0].strip(), said[1]).encode("utf-8"))


main()
