#!/usr/bin/env python3
# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""Reads packages as docs/package-format.md describes them, without the plugin's code: reader.py check|info FILE...

Prints JSON; info also lists the entries. Exit code 1: one of the files is no package.
"""
import codecs
import hashlib
import json
import math
import os
import re
import struct
import sys

CHUNK = 10 * 1024 * 1024


def need(condition, reason):
    if not condition:
        raise ValueError(reason)


codecs.register_error("one by one", lambda e: ("\ufffd" * (e.end - e.start), e.end))
codecs.register_error("percent", lambda e: ("".join(f"{MARK}{b:02X}" for b in e.object[e.start:e.end]), e.end))


class Package:
    def __init__(self, path):
        need(os.path.isfile(path), "not a plain file")
        self.file = open(path, "rb")
        self.size = os.fstat(self.file.fileno()).st_size
        tail = self.at(max(0, self.size - 0xFFFF), 0xFFFF)
        end = self.size - len(tail) + tail.rfind(b"PK\5\6")
        need(b"PK\5\6" in tail and end > 0, "no end record")
        locator = tail[tail.rfind(b"PK\6\7"):][:20] if b"PK\6\7" in tail else b""
        if len(locator) == 20 and locator[4:8] == bytes(4) and locator[16:] == b"\1\0\0\0":
            need(self.at(struct.unpack("<Q", locator[8:16])[0], 4) != b"PK\6\6", "64-bit archive")
        disk, start, here, self.count, size, offset, length = struct.unpack("<HHHHIIH", self.exactly(end + 4, 18))
        need(disk == start == 0 and here == self.count, "several disks")
        need(size + offset <= end, "the directory is not in front of the end record")
        self.directory = end - size
        self.comment = end + 22, length

    def text(self):
        """The comment's."""
        bytes_ = self.exactly(*self.comment).split(b"\0")[0]
        return bytes_.decode("utf-8", "one by one").removeprefix("\ufeff")

    def at(self, offset, size):
        self.file.seek(min(offset, self.size))
        return self.file.read(size)

    def exactly(self, offset, size):
        data = self.at(offset, size)
        need(len(data) == size, "the file ends early")
        return data

    def checksum(self):
        digests = ""
        length = self.size - len(self.text().encode())
        for start in range(0, length, CHUNK):
            digests += hashlib.md5(self.at(start, min(CHUNK, length - start)).split(b"\0", 1)[0]).hexdigest()
        return hashlib.md5(digests.encode()).hexdigest()

    def record(self):
        def number(digits):
            need(math.isfinite(float(digits)), "a number out of range")

        depth = [0]
        for bracket in re.findall(r"[][{}]", re.sub(r'(?s)"(?:\\.|[^"\\])*"', "", self.text())):
            depth.append(depth[-1] + (1 if bracket in "[{" else -1))
        need(max(depth) <= 1024, "nested too deeply")
        sys.setrecursionlimit(5000)
        hooks = dict.fromkeys(("parse_float", "parse_int", "parse_constant"), number)
        found = json.JSONDecoder(strict=False, **hooks).decode(self.text())
        need(isinstance(found, dict) and len(found) >= 3, "the comment is no record")
        return {key: plain(found.get(key)) for key in ("Checksum", "comment", "projectName")}

    def check(self):
        record = self.record()
        need(record["Checksum"] == self.checksum(), "the checksum is another one")
        return record

    def entries(self):
        """(name, size) of each entry; none if the directory is damaged."""
        names, sizes, packed, at = [], [], 0, self.directory
        try:
            need(0 < self.count < 0xFFFF, "a number of entries that cannot be")
            for _ in range(self.count):
                header = struct.unpack("<4s6H3I5H2I", self.exactly(at, 46))
                need(header[0] == b"PK\1\2", "no header")
                names.append(self.exactly(at + 46, header[10]))
                numbers = wide([header[9], header[8], header[16]], self.at(at + 46 + header[10], header[11]))
                sizes.append(numbers[0])
                packed += numbers[1]
                at += 46 + sum(header[10:13])
            need(sum(map(len, names)) <= 1 << 24 and sum(sizes) <= 1 << 32 and packed <= self.size, "too much")
            return list(zip(listed(names), sizes))
        except ValueError:
            return []


def wide(numbers, extra):
    """The sizes and the offset, from the 64-bit field where they are all ones."""
    while len(extra) >= 4:
        kind, length = struct.unpack("<HH", extra[:4])
        field, extra = extra[4:4 + length], extra[4 + length:]
        for index, value in enumerate(numbers if kind == 1 else []):
            if value == 0xFFFFFFFF:
                need(len(field) >= 8, "too short a field")
                numbers[index], field = struct.unpack("<Q", field[:8])[0], field[8:]
    return numbers


def plain(text):
    return text.split("\0")[0].encode("utf-8", "replace").decode() if isinstance(text, str) else ""


def listed(names):
    global MARK
    MARK = "%"
    if all(b"\xef\xbb\xbf" not in n and n == n.decode("utf-8", "ignore").encode() for n in names):
        return [n.decode() for n in names]
    while any(MARK.encode() in n for n in names) and len(MARK) <= 16:
        MARK += "%"
    need(len(MARK) <= 16, "too many percent signs")
    texts = [n.decode("utf-8", "percent").replace("\ufeff", f"{MARK}EF{MARK}BB{MARK}BF") for n in names]
    need(sum(len(t.encode("utf-16-le")) for t in texts) <= 1 << 25, "names too long")
    return texts


def look(path, is_listing):
    result = {"file": path, "verdict": "not valid"}
    try:
        package = Package(path)
        if is_listing:
            result["entries"] = [{"name": name, "size": size} for name, size in package.entries()]
        result["record"] = package.check()
        result["verdict"] = "valid"
    except ValueError as reason:
        result["reason"] = str(reason)
    return result


if __name__ == "__main__":
    results = [look(path, sys.argv[1] == "info") for path in sys.argv[2:]]
    print(json.dumps({"files": results}))
    sys.exit(any(result["verdict"] != "valid" for result in results))
