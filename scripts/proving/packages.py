# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""Generated devices, and the packages made of them: as the plugin writes them, or as another zip program might."""
import hashlib
import json
import os
import random
import string
import struct
import subprocess
import zipfile
import zlib

CHUNK = 10 * 1024 * 1024
UTF8_NAME = 0x800
DESCRIPTOR = 8
LOCAL = struct.Struct("<4s5H3I2H")
CENTRAL = struct.Struct("<4s6H3I5H2I")
END = struct.Struct("<4s4H2IH")


class Picture:
    """8 bits for each of 3 or 4 channels."""

    def __init__(self, width, height, channels, pixels):
        self.width, self.height, self.channels, self.pixels = width, height, channels, bytearray(pixels)

    def copy(self):
        return Picture(self.width, self.height, self.channels, self.pixels)

    def png(self, level=6):
        def chunk(kind, data):
            return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

        row = self.width * self.channels
        rows = b"".join(b"\0" + self.pixels[at:at + row] for at in range(0, len(self.pixels), row))
        colours = {3: 2, 4: 6}[self.channels]
        header = struct.pack(">IIBBBBB", self.width, self.height, 8, colours, 0, 0, 0)
        return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows, level)) +
                chunk(b"IEND", b""))


class Device:
    """A device's directory: files by name (bytes, pictures, and the description as an object) and empty folders."""

    def __init__(self, description_name):
        self.description_name = description_name
        self.files = {}
        self.folders = {"Preset/"}

    def copy(self):
        other = Device(self.description_name)
        other.folders = set(self.folders)
        for name, content in self.files.items():
            other.files[name] = content.copy() if isinstance(content, Picture) else content
            if name == self.description_name:
                other.files[name] = json.loads(json.dumps(content))
        return other

    def bytes_of(self, name, level=6, indent=4):
        content = self.files[name]
        if isinstance(content, Picture):
            return content.png(level)
        return content if isinstance(content, bytes) else json.dumps(content, indent=indent).encode()

    def all_folders(self):
        folders = set(self.folders)
        for name in [*self.files, *self.folders]:
            parts = name.split("/")[:-1]
            folders.update("/".join(parts[:count + 1]) + "/" for count in range(len(parts)))
        return folders

    def entries(self):
        """As the plugin orders them."""
        def below(prefix):
            def inside(name):
                return name.startswith(prefix) and name != prefix

            for folder in sorted((f for f in self.all_folders() if inside(f) and f.count("/") == prefix.count("/") + 1),
                                 key=str.lower):
                yield folder
                yield from below(folder)
            yield from sorted((f for f in self.files if inside(f) and f.count("/") == prefix.count("/")), key=str.lower)

        return list(below(""))

    def write_to(self, folder):
        for name in self.all_folders():
            (folder / name).mkdir(parents=True, exist_ok=True)
        for name in self.files:
            (folder / name).write_bytes(self.bytes_of(name))


def preset(content):
    return struct.pack(">I", len(content)) + content


def generated(rng, size=40):
    """A device; `size` is about that of its pictures in pixels."""
    number = rng.randrange(1, 250)
    device = Device(f"10.0.{rng.randrange(4)}.{number}.json")
    materials = []
    for folder, channels in (("BKG", 3), ("LOGO", 4)):
        for key in rng.sample(range(256), rng.randrange(4)):
            width, height = rng.randrange(1, 2 * size), rng.randrange(1, 2 * size)
            noise = rng.randbytes(width * height * channels)
            plain = bytes(width * height * channels)
            pixels = rng.choice((noise, plain, noise[:len(noise) // 2] + plain[len(noise) // 2:]))
            device.files[f"{folder}/{folder}_{key}.png"] = Picture(width, height, channels, pixels)
            materials.append({"type": folder == "LOGO", "keyNo": key, "width": width, "height": height})
    for key in rng.sample(range(65536), rng.randrange(6)):
        device.files[f"Preset/{key}.RPst"] = preset(rng.randbytes(rng.randrange(300)))
    for index in range(rng.randrange(3)):
        name = rng.choice(("notes", "演出", "a b", ".hidden")) + f"{index}"
        device.files[rng.choice(("", "other/", "other/深/")) + name] = rng.choice((b"", b"text " * rng.randrange(900)))
    device.files[device.description_name] = {
        "ip": device.description_name[:-5],
        "id": number,
        "name": "".join(rng.choices(string.ascii_letters + " äöü演出", k=12)),
        "modelId": 1600,
        "network": {"gateway": "10.0.0.1", "mac": "02:00:00:00:00:%02x" % number},
        "slots": [{"pos": pos, "type": rng.randrange(6), "serial": str(rng.random())} for pos in range(rng.randrange(6))],
        "settings": {"gamma": rng.random(), "on": rng.random() < 0.5, "texts": ["a", "b"], "x.y": None},
        "materials": materials,
    }
    return device


def checksum(archive, size=None):
    """Of the archive without a comment; `archive` is bytes, or a function that reads (offset, count)."""
    read = archive if callable(archive) else lambda offset, count: archive[offset:offset + count]
    digests = ""
    for start in range(0, len(archive) if size is None else size, CHUNK):
        digests += hashlib.md5(read(start, CHUNK).split(b"\0", 1)[0]).hexdigest()
    return hashlib.md5(digests.encode()).hexdigest()


def record(archive_checksum, name, comment):
    values = {"Checksum": archive_checksum, "comment": comment, "projectName": name}
    return (json.dumps(values, indent=4, ensure_ascii=False) + "\n").encode()


def sealed(archive, name="Project", comment="a comment"):
    """An archive without a comment as a package."""
    text = record(checksum(archive), name, comment)
    return archive[:-2] + struct.pack("<H", len(text)) + text


def local_header(name, method, flags, crc, packed, size, date):
    version = 63 if flags & UTF8_NAME else 20
    return LOCAL.pack(b"PK\3\4", version, flags, method, 0, date, crc, packed, size, len(name), 0) + name


def central_header(name, method, flags, crc, packed, size, date, offset):
    version = 63 if flags & UTF8_NAME else 20
    mode = 0o40755 if name.endswith(b"/") else 0o100644
    return CENTRAL.pack(b"PK\1\2", 0x31E, version, flags, method, 0, date, crc, packed, size, len(name), 0, 0, 0, 0,
                        mode << 16, offset) + name


def archive_of(device, order=None, level=6, indent=4, date=0x5842):
    """As the plugin writes it; the rest is what does not count for a device."""
    archive, directory = b"", b""
    entries = order or device.entries()
    for name in entries:
        raw = name.encode()
        content = b"" if name.endswith("/") else device.bytes_of(name, level, indent)
        method = 0 if name.endswith("/") or name.lower().endswith(".png") else 8
        packer = zlib.compressobj(level, zlib.DEFLATED, -15)
        packed = packer.compress(content) + packer.flush() if method else content
        flags = DESCRIPTOR | (0 if name.isascii() else UTF8_NAME)
        numbers = (zlib.crc32(content), len(packed), len(content))
        directory += central_header(raw, method, flags, *numbers, date, len(archive))
        archive += local_header(raw, method, flags, *numbers, date) + packed + struct.pack("<4s3I", b"PK\7\x08", *numbers)
    end = END.pack(b"PK\5\6", 0, 0, len(entries), len(entries), len(directory), len(archive), 0)
    return archive + directory + end


OTHER_PROGRAMS = ("zip", "7z", "zipfile")


def archive_by(program, device, folder):
    """The same by another program, which reads the new folder. zipfile leaves out the entries of folders."""
    folder.mkdir()
    device.write_to(folder)
    archive = folder.with_suffix(".zip")
    environment = {**os.environ, "LC_ALL": "C.UTF-8"}
    if program == "zip":
        subprocess.run(["zip", "-qr", archive, "."], cwd=folder, check=True, env=environment)
    elif program == "7z":
        subprocess.run(["7z", "a", "-tzip", "-bso0", "-bsp0", archive, "."], cwd=folder, check=True, env=environment)
    else:
        with zipfile.ZipFile(archive, "w", zipfile.ZIP_DEFLATED) as target:
            for name in device.files:
                target.write(folder / name, name)
    return archive.read_bytes()


def contents(package):
    """(name, begin, end) of the packed content of each entry, and where the comment begins."""
    end = package.rfind(b"PK\5\6")
    _, _, _, _, count, _, at, length = END.unpack_from(package, end)
    found = []
    for _ in range(count):
        header = CENTRAL.unpack_from(package, at)
        name = package[at + CENTRAL.size:at + CENTRAL.size + header[10]]
        local = LOCAL.unpack_from(package, header[16])
        begin = header[16] + LOCAL.size + local[9] + local[10]
        found.append((name.decode(), begin, begin + header[8]))
        at += CENTRAL.size + sum(header[10:13])
    return found, len(package) - length


def write_zeros(path, sizes, deflated):
    """A package of entries that are all zeros, of these sizes, as a sparse file."""
    directory, crcs, packs = b"", {}, {}
    with open(path, "w+b") as file:
        for index, size in enumerate(sizes):
            if size not in crcs:
                crcs[size], packs[size] = pack_zeros(size, deflated)
            name = b"other/%d.bin" % index if index else b"10.0.0.1.json"
            data = b"{}" if not index else packs[size]
            method = 8 if index and deflated else 0
            numbers = (zlib.crc32(data) if not index else crcs[size], len(data) if data is not None else size, size)
            directory += central_header(name, method, 0, *numbers, 0x5842, file.tell())
            file.write(local_header(name, method, 0, *numbers, 0x5842))
            file.seek(size, 1) if data is None else file.write(data)
        start = file.tell()
        file.write(directory + END.pack(b"PK\5\6", 0, 0, len(sizes), len(sizes), len(directory), start, 0))
        total = file.tell()

        def read(offset, count):
            file.seek(offset)
            return file.read(min(count, total - offset))

        text = record(checksum(read, total), "large", "zeros")
        file.seek(total - 2)
        file.write(struct.pack("<H", len(text)) + text)
    return total


def pack_zeros(size, deflated):
    block = bytes(1 << 24)
    crc, packer, packed = 0, zlib.compressobj(1, zlib.DEFLATED, -15), []
    for start in range(0, size, len(block)):
        part = block[:min(len(block), size - start)]
        crc = zlib.crc32(part, crc)
        if deflated:
            packed.append(packer.compress(part))
    return crc, b"".join(packed) + packer.flush() if deflated else None


def seeded(seed, what):
    return random.Random(f"{seed} {what}")
