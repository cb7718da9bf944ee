# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""What `corvelpro verify` finds in damaged packages, and that it finds nothing in good ones."""
from pathlib import Path

from . import packages
from .tool import Table

BATCH = 50


def base_packages(tool, folder, seed, count):
    """Packages of some 20 to 100 KB: written by the plugin's code where the tool can, otherwise in the same form."""
    result = []
    for number in range(count):
        rng = packages.seeded(seed, f"base {number}")
        device = packages.generated(rng)
        while not device.files.keys() & {n for n in device.files if n.endswith(".png")}:
            device = packages.generated(rng)
        result.append(package_of(tool, folder / f"base{number}", device))
    return result


def package_of(tool, folder, device):
    if not tool.has("create"):
        return packages.sealed(packages.archive_of(device))
    folder.mkdir()
    device.write_to(folder)
    path = folder.with_suffix(".corvelpro")
    result = tool.plain("create", folder, path, "--name", "Project", "--comment", "a comment")
    assert result.returncode == 0, result.stderr
    return path.read_bytes()


def flipped(package, at, bit):
    damaged = bytearray(package)
    damaged[at] ^= 1 << bit
    return bytes(damaged)


def content_offsets(package):
    return [at for _, begin, end in packages.contents(package)[0] for at in range(begin, end)]


def header_offsets(package):
    found, comment = packages.contents(package)
    inside = set(content_offsets(package))
    return [at for at in range(comment) if at not in inside]


def flips(bases, rng, count, offsets_of):
    offsets = [offsets_of(base) for base in bases]
    for _ in range(count):
        number = rng.randrange(len(bases))
        at, bit = rng.choice(offsets[number]), rng.randrange(8)
        yield f"package {number}, byte {at}, bit {bit}", flipped(bases[number], at, bit)


def zeroed_blocks(bases, rng, count):
    offsets = [content_offsets(base) for base in bases]
    known = [set(own) for own in offsets]
    while count:
        number = rng.randrange(len(bases))
        begin, size = rng.choice(offsets[number]), rng.choice((16, 512, 4096))
        inside = [at for at in range(begin, begin + size) if at in known[number]]
        damaged = bytearray(bases[number])
        for at in inside:
            damaged[at] = 0
        if damaged != bases[number]:
            count -= 1
            yield f"package {number}, {len(inside)} bytes from {begin}", bytes(damaged)


def truncations(bases, rng, count):
    for _ in range(count):
        number = rng.randrange(len(bases))
        size = rng.randrange(len(bases[number]))
        yield f"package {number}, cut to {size}", bases[number][:size]


class Proof:
    def __init__(self, tool, reader, folder):
        self.tool, self.reader, self.folder = tool, reader, Path(folder)
        self.table = Table("corvelpro verify: damages found")
        self.compared = self.agreed = 0
        self.disagreements = []

    def run(self, paths, labels):
        """Those of the labels that verify calls sound. Compares check with the independent reader by the way."""
        sound = [label for label, verdict in zip(labels, self.tool.verdicts("verify", paths)) if verdict == "sound"]
        for label, path, verdict in zip(labels, paths, self.tool.verdicts("check", paths)):
            expected = self.reader.look(str(path), False)["verdict"]
            self.compared += 1
            self.agreed += verdict == expected
            if verdict != expected:
                self.disagreements.append(f"{label}: check says {verdict}, the reader {expected}")
        return sound

    def batches(self, cases):
        """The same for (label, bytes), in files of their own; also how many there were."""
        sound, count, batch = [], 0, []

        def finish():
            paths = []
            for number, (_, data) in enumerate(batch):
                paths.append(self.folder / f"{number}.corvelpro")
                paths[-1].write_bytes(data)
            sound.extend(self.run(paths, [label for label, _ in batch]) if batch else [])
            for path in paths:
                path.unlink()
            batch.clear()

        for case in cases:
            count += 1
            batch.append(case)
            if len(batch) == BATCH:
                finish()
        finish()
        return count, sound

    def damages(self, kind, cases, share=1.0):
        made, sound = self.batches(cases)
        self.table.row(kind, made, made - len(sound), share, sound)

    def good(self, kind, cases):
        cases = list(cases)
        made, sound = self.batches(cases)
        self.table.row(kind, made, len(sound), 1.0, sorted({label for label, _ in cases} - set(sound)))


def good_packages(tool, folder, seed, count):
    for number in range(count):
        rng = packages.seeded(seed, f"good {number}")
        device = packages.generated(rng, rng.choice((4, 40, 120)))
        if number == 0:
            device = packages.Device("10.0.0.1.json")
            device.files = {"10.0.0.1.json": {}}
        label = f"good package {number} of seed {seed}"
        if number % 2:
            yield label, package_of(tool, folder / f"good{number}", device)
        else:
            order = device.entries()
            rng.shuffle(order)
            yield label, packages.sealed(packages.archive_of(device, order, rng.randrange(1, 10)),
                                         "演出" * rng.randrange(20), "line\n" * rng.randrange(99))


def packages_by(program, folder, seed, count):
    for number in range(count):
        device = packages.generated(packages.seeded(seed, f"{program} {number}"))
        archive = packages.archive_by(program, device, folder / f"{program}{number}")
        yield f"package {number} by {program}", packages.sealed(archive)


def prove(tool, reader, folder, seed, quick, large):
    share = 20 if quick else 1
    rng = packages.seeded(seed, "damages")
    bases = base_packages(tool, folder, seed, 12 // min(share, 4))
    proof = Proof(tool, reader, folder)
    proof.damages("bit flips in the content of entries", flips(bases, rng, 3000 // share, content_offsets))
    proof.damages("zeroed blocks in the content of entries", zeroed_blocks(bases, rng, 100 // share))
    proof.damages("truncations", truncations(bases, rng, 100 // share))
    proof.damages("bit flips in headers, descriptors, directory, end record",
                  flips(bases, rng, 600 if quick else 3000, header_offsets), 0.95)
    proof.good("good packages called sound", good_packages(tool, folder, seed, 500 // share))
    for program in packages.OTHER_PROGRAMS:
        proof.good(f"packages by {program} called sound", packages_by(program, folder, seed, 40 // share))
    if large:
        gib, most = 1 << 30, 0xFFFFFFFE
        path = folder / "large.corvelpro"
        room = most - packages.write_zeros(path, [2, gib, gib, gib, 0], False)
        cases = [("the largest archive there can be", [2, gib, gib, gib, room], False),
                 ("4 GiB of content in a few megabytes", [2, gib, gib, gib, gib - 2], True)]
        sound = 0
        for label, entry_sizes, deflated in cases:
            size = packages.write_zeros(path, entry_sizes, deflated)
            assert deflated or size == most
            sound += len(proof.run([path], [label]))
            path.unlink()
        proof.table.row("good packages near 4 GiB called sound", len(cases), sound)
    proof.table.row("check agrees with the independent reader", proof.compared, proof.agreed, 1.0, proof.disagreements)
    return proof.table.passed
