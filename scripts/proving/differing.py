# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""What `corvelpro diff` reports of known edits, and that it reports nothing where nothing counts."""
import os

from . import packages
from .tool import Table
from .verifying import flipped

MISSING = "missing"


def plain_step(name):
    return all(c.isascii() and (c.isalnum() or c in "_-") for c in name)


def path_of(steps):
    text = ""
    for step in steps:
        if isinstance(step, int):
            text += f"[{step}]"
        elif plain_step(step):
            text += ("." if text else "") + step
        else:
            text += f'["{step}"]'
    return text


def leaves(value, steps=()):
    """The paths to everything that is no object and no array."""
    if isinstance(value, (dict, list)):
        for key in value if isinstance(value, dict) else range(len(value)):
            yield from leaves(value[key], (*steps, key))
    else:
        yield steps


def at(value, steps):
    for step in steps:
        value = value[step]
    return value


class Edit:
    """Changes a copy of a device, and knows what has to be reported: by entry, the change and its details."""

    def __init__(self, rng, device):
        self.rng, self.before, self.after = rng, device, device.copy()
        self.expected = {}

    def untouched(self, wanted):
        names = [name for name in sorted(self.before.files) if wanted(name) and name not in self.expected]
        return self.rng.choice(names) if names else None

    def add(self):
        name = self.rng.choice(("BKG/BKG_{}.png", "Preset/{}.RPst", "new/{}", "{}.bin")).format(self.rng.randrange(300))
        if name in self.before.files or name in self.expected:
            return
        content = packages.Picture(3, 2, 3, self.rng.randbytes(18)) if name.endswith(".png") else packages.preset(b"new")
        self.after.files[name] = content
        self.expected[name] = ("added",)

    def remove(self):
        name = self.untouched(lambda n: n != self.before.description_name)
        if name:
            del self.after.files[name]
            self.expected[name] = ("removed",)

    def change_bytes(self):
        name = self.untouched(lambda n: isinstance(self.before.files[n], bytes))
        if not name:
            return
        old = self.before.files[name]
        new = bytearray(old)
        for _ in range(self.rng.randrange(3)):
            if new:
                new[self.rng.randrange(len(new))] ^= self.rng.randrange(1, 256)
        new += self.rng.randbytes(self.rng.randrange(1, 9)) if self.rng.random() < 0.5 or bytes(new) == old else b""
        common = min(len(old), len(new))
        differing = [offset for offset in range(common) if old[offset] != new[offset]]
        self.after.files[name] = bytes(new)
        self.expected[name] = ("changed", (differing[0] if differing else common, len(differing), len(old), len(new)))

    def change_pixels(self):
        name = self.untouched(lambda n: isinstance(self.before.files[n], packages.Picture))
        if not name:
            return
        old, new = self.before.files[name], self.after.files[name]
        for _ in range(self.rng.choice((1, 1, 20))):
            new.pixels[self.rng.randrange(len(new.pixels))] ^= self.rng.randrange(1, 256)
        pixels = [max(abs(a - b) for a, b in zip(old.pixels[i:i + old.channels], new.pixels[i:i + old.channels]))
                  for i in range(0, len(old.pixels), old.channels)]
        differing = [difference for difference in pixels if difference]
        if differing:
            self.expected[name] = ("changed", (len(differing), max(differing)))

    def resize(self):
        name = self.untouched(lambda n: isinstance(self.before.files[n], packages.Picture))
        if name:
            old = self.before.files[name]
            self.after.files[name] = packages.Picture(old.width + 1, old.height, old.channels,
                                                      bytes((old.width + 1) * old.height * old.channels))
            self.expected[name] = ("changed", ((old.width, old.height), (old.width + 1, old.height)))

    def describe(self):
        name = self.before.description_name
        old, new = self.before.files[name], self.after.files[name]
        members = self.expected.setdefault(name, ("changed", {}))[1]
        for _ in range(self.rng.randrange(1, 4)):
            kind = self.rng.randrange(4)
            if kind == 0:
                parent, step = self.rng.choice(((), ("settings",))), f"new{self.rng.randrange(99)}"
                members[path_of((*parent, step))] = (MISSING, [1, {"a": True}])
                at(new, parent)[step] = [1, {"a": True}]
            elif kind == 1 and new["slots"] and len(new["slots"]) == len(old["slots"]):
                steps = ("slots", len(new["slots"]) - 1)
                if not any(path.startswith(path_of(steps)) for path in members):
                    members[path_of(steps)] = (at(old, steps), MISSING)
                    new["slots"].pop()
            else:
                steps = self.rng.choice(sorted(leaves(old), key=path_of))
                if any(path_of(steps).startswith(path) or path == path_of(steps) for path in members):
                    continue
                value = self.rng.choice((True, None, "演出", 7, -1.5, "7"))
                if value == at(old, steps) and isinstance(value, type(at(old, steps))):
                    continue
                at(new, steps[:-1])[steps[-1]] = value
                members[path_of(steps)] = (at(old, steps), value)
        if not members:
            del self.expected[name]

    def run(self, count):
        steps = (self.add, self.remove, self.change_bytes, self.change_pixels, self.resize, self.describe)
        for _ in range(count):
            self.rng.choice(steps)()
        for folder in self.after.all_folders() - self.before.all_folders():
            self.expected[folder] = ("added",)
        for folder in self.before.all_folders() - self.after.all_folders():
            self.expected[folder] = ("removed",)


def details(difference):
    """What the tool says, in the form of Edit.expected."""
    if difference["change"] != "changed":
        return (difference["change"],)
    if "members" in difference:
        assert difference["omittedMembers"] == 0
        return ("changed", {m["path"]: (m.get("a", MISSING), m.get("b", MISSING)) for m in difference["members"]})
    if "pixels" in difference:
        pixels = difference["pixels"]
        sizes = tuple((pixels[side]["width"], pixels[side]["height"]) for side in "ab")
        return ("changed", (pixels["differing"], pixels["largest"]) if sizes[0] == sizes[1] else sizes)
    found = difference["bytes"]
    return ("changed", (found["firstOffset"], found["differing"], found["sizeA"], found["sizeB"]))


def mirrored(expected):
    words = {"added": "removed", "removed": "added", "changed": "changed"}
    result = {}
    for name, (change, *rest) in expected.items():
        if rest and isinstance(rest[0], dict):
            rest = [{path: (after, before) for path, (before, after) in rest[0].items()}]
        elif rest and len(rest[0]) == 4:
            rest = [(*rest[0][:2], rest[0][3], rest[0][2])]
        elif rest and isinstance(rest[0][0], tuple):
            rest = [rest[0][::-1]]
        result[name] = (words[change], *rest)
    return result


class Proof:
    def __init__(self, tool, folder):
        self.tool, self.folder = tool, folder
        self.table = Table("corvelpro diff: edits found")

    def written(self, name, data):
        path = self.folder / name
        path.write_bytes(data)
        return path

    def says(self, a, b, *options):
        """The verdict, and the differences by entry; its exit code has to agree."""
        result, code = self.tool.json("diff", a, b, *options)
        assert {"equal": 0, "different": 1, "unknown": 2}[result["result"]] == code
        return result["result"], {difference["entry"]: details(difference) for difference in result["differences"]}

    def equal(self, kind, pairs):
        """Every pair (label, a, b, options) has to be equal, in both directions."""
        made, misses = 0, []
        for label, a, b, *options in pairs:
            made += 1
            for one, other in ((a, b), (b, a)):
                verdict, found = self.says(one, other, *options)
                if verdict != "equal" or found:
                    misses.append(f"{label}: {verdict} {found}")
                    break
        self.table.row(kind, made, made - len(misses), 1.0, misses)

    def edits(self, seed, count):
        exact = symmetric = 0
        misses, asymmetries = [], []
        for number in range(count):
            rng = packages.seeded(seed, f"pair {number}")
            edit = Edit(rng, packages.generated(rng, 20))
            # One in ten differs only in what does not count.
            edit.run(rng.randrange(1, 6) if number % 10 else 0)
            a = self.written("a.corvelpro", packages.sealed(packages.archive_of(edit.before)))
            order = edit.after.entries()
            rng.shuffle(order)
            archive = packages.archive_of(edit.after, order, rng.randrange(1, 10), rng.choice((None, 2)), 0x5900 + number)
            b = self.written("b.corvelpro", packages.sealed(archive, "another name", ""))
            for one, other, expected in ((a, b, edit.expected), (b, a, mirrored(edit.expected))):
                verdict, found = self.says(one, other)
                good = found == expected and verdict == ("different" if expected else "equal")
                if one == a:
                    exact += good
                else:
                    symmetric += good
                if not good:
                    (misses if one == a else asymmetries).append(
                        f"pair {number} of seed {seed}: {verdict}; expected {expected}, found {found}")
        self.table.row("pairs with known edits: exactly those", count, exact, 1.0, misses)
        self.table.row("the same in the other direction", count, symmetric, 1.0, asymmetries)

    def devices(self, seed, what, count):
        for number in range(count):
            rng = packages.seeded(seed, f"{what} {number}")
            yield f"{what} {number} of seed {seed}", packages.generated(rng), self.folder / f"{what}{number}"

    def same(self, seed, count):
        for label, device, path in self.devices(seed, "same", count):
            a = self.written(path.name, packages.sealed(packages.archive_of(device)))
            yield label, a, a

    def directories(self, seed, count):
        for label, device, path in self.devices(seed, "directory", count):
            path.mkdir()
            device.write_to(path)
            yield label, self.written(path.name + ".corvelpro", packages.sealed(packages.archive_of(device))), path

    def repacked(self, seed, count, program):
        for label, device, path in self.devices(seed, program, count):
            archive = packages.archive_by(program, device, path)
            if program == "zipfile":
                # It leaves out empty folders.
                device = device.copy()
                device.folders = set()
            a = self.written(path.name + ".corvelpro", packages.sealed(packages.archive_of(device)))
            yield label, a, self.written(path.name + "-again.corvelpro", packages.sealed(archive))

    def saved_twice(self, seed, count):
        for label, device, path in self.devices(seed, "save", count):
            path.mkdir()
            device.write_to(path)
            saves = []
            for save in (1, 2):
                saves.append(self.folder / f"{path.name}-{save}.corvelpro")
                for file in path.rglob("*"):
                    os.utime(file, (1000000000 * save, 1000000000 * save))
                result = self.tool.plain("create", path, saves[-1], "--name", f"save {save}")
                assert result.returncode == 0, result.stderr
            yield label, *saves

    def spares(self, seed, count):
        for label, device, path in self.devices(seed, "spare", count):
            spare = device.copy()
            spare.description_name = "10.9.9.9.json"
            description = spare.files.pop(device.description_name)
            description.update(ip="10.9.9.9", id=251)
            description["network"]["mac"] = "02:00:00:00:00:ff"
            spare.files[spare.description_name] = description
            a = self.written(path.name + "-a", packages.sealed(packages.archive_of(device)))
            b = self.written(path.name + "-b", packages.sealed(packages.archive_of(spare)))
            yield label, a, b, "--ignore", "ip", "--ignore", "id", "--ignore", "network.mac"

    def unreadable(self, seed, count):
        found, misses = 0, []
        for label, device, path in self.devices(seed, "unreadable", count):
            rng = packages.seeded(seed, label)
            good = packages.sealed(packages.archive_of(device))
            # Only what the CRC covers: not the last bits of a deflated content, nor the content of an empty file.
            contents = [(begin, end - 1) for name, begin, end in packages.contents(good)[0]
                        if end - begin > 1 and device.bytes_of(name)]
            begin, end = rng.choice(contents)
            a = self.written(path.name + "-a", good)
            b = self.written(path.name + "-b", flipped(good, rng.randrange(begin, end), rng.randrange(8)))
            verdicts = {self.says(a, b)[0], self.says(b, a)[0], self.says(b, b)[0]}
            found += verdicts == {"unknown"}
            if verdicts != {"unknown"}:
                misses.append(f"{label}: {verdicts}")
        self.table.row("an unreadable entry is an error", count, found, 1.0, misses)


def prove(tool, folder, seed, quick):
    share = 10 if quick else 1
    proof = Proof(tool, folder)
    proof.edits(seed, 200 // share)
    proof.equal("a package and itself: equal", proof.same(seed, 50 // share))
    proof.equal("a package and its device's directory: equal", proof.directories(seed, 50 // share))
    for program in packages.OTHER_PROGRAMS:
        proof.equal(f"a package and what {program} makes of it: equal", proof.repacked(seed, 30 // share, program))
    if tool.has("create"):
        proof.equal("two saves of one device: equal", proof.saved_twice(seed, 50 // share))
    proof.equal("a spare, address, id and MAC ignored: equal", proof.spares(seed, 50 // share))
    proof.unreadable(seed, 100 // share)
    return proof.table.passed
