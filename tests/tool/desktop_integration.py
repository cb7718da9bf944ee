#!/usr/bin/env python3
# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""Installs what file managers need to know about project files into a prefix of its own and asks the desktop's own tools:
which type has which file, what belongs to it, what opens it; and has the thumbnailer's command line draw a picture.

    desktop_integration.py --build DIR --tool CORVELPRO --cmake CMAKE   installs from a build
    desktop_integration.py --installed PREFIX                          asks about what is installed there

Exits with 1 at the first answer that is wrong. Uses nothing of the system's or the user's types but the system's list of
common ones. Needs the Debian packages desktop-file-utils, libglib2.0-bin, shared-mime-info and xdg-utils.
"""
import argparse
import configparser
import os
import pathlib
import shlex
import shutil
import struct
import subprocess
import sys
import tempfile
import xml.etree.ElementTree
import zipfile
import zlib

TYPE = "application/vnd.velmora.corvelpro+zip"
ZIP = "application/zip"
COMMON_TYPES = pathlib.Path("/usr/share/mime/packages/freedesktop.org.xml")
AWKWARD_NAMES = ("show.corvelpro", "SHOW.CORVELPRO", "Show 1.CorvelPro", "演出 'a' \"b\" $HOME %i.corvelpro",
                 "two.names.zip.corvelpro")


class Desktop:
    """The share folder of a prefix, as the only one that there is."""

    def __init__(self, share, home, program_folder):
        self.share = share
        self.environment = {
            "HOME": str(home), "XDG_DATA_HOME": str(home / "data"), "XDG_CONFIG_HOME": str(home / "config"),
            "XDG_DATA_DIRS": str(share), "XDG_CONFIG_DIRS": str(home / "none"), "XDG_CURRENT_DESKTOP": "GNOME",
            "GIO_USE_VFS": "local", "LC_ALL": "C.UTF-8",
            "PATH": os.pathsep.join([str(program_folder), os.environ["PATH"]])}

    def run(self, *command):
        """What it prints on both channels. It must end well."""
        done = subprocess.run(list(map(str, command)), env=self.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, encoding="utf-8", timeout=120)
        require(done.returncode == 0, "%s ended with %d: %s" % (command[0], done.returncode, done.stdout))
        return done.stdout.strip()

    def type_of(self, file):
        return self.run("xdg-mime", "query", "filetype", file)


def require(condition, failure):
    if not condition:
        raise SystemExit("FAILED: " + failure)


def expect(what, found, expected):
    require(found == expected, "%s: %r instead of %r" % (what, found, expected))
    print("%s: %s" % (what, found))


def entry(path, section):
    """A section of a .desktop or .thumbnailer file."""
    parser = configparser.RawConfigParser(delimiters="=", strict=True)
    parser.optionxform = str
    parser.read_string(path.read_text(encoding="utf-8"))
    return dict(parser.items(section))


def png(width, height):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    rows = (b"\0" + b"\x20\x80\xf0" * width) * height
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


def png_size(path):
    head = path.read_bytes()[:24]
    require(head.startswith(b"\x89PNG"), "%s is no PNG" % path)
    return struct.unpack(">II", head[16:24])


def make_package(tool, folder):
    device = folder / "device"
    (device / "BKG").mkdir(parents=True)
    (device / "10.0.0.1.json").write_text("{}")
    (device / "BKG/BKG_1.png").write_bytes(png(640, 360))
    package = folder / "package.corvelpro"
    subprocess.run([tool, "create", device, package, "--quiet"], check=True, timeout=120)
    return package


def check_types(desktop, package, folder):
    for name in AWKWARD_NAMES:
        file = folder / name
        shutil.copyfile(package, file)
        expect(name, desktop.type_of(file), TYPE)
    for name in ("plain.zip", "PLAIN.ZIP", "no extension"):
        file = folder / name
        with zipfile.ZipFile(file, "w") as archive:
            archive.writestr("BKG/BKG_1.png", "x")
        expect(name, desktop.type_of(file), ZIP)
    # Content alone does not identify a project file: it is that of any zip archive.
    shutil.copyfile(package, folder / "renamed.zip")
    expect("renamed.zip", desktop.type_of(folder / "renamed.zip"), ZIP)
    subclasses = (desktop.share / "mime/subclasses").read_text().splitlines()
    require("%s %s" % (TYPE, ZIP) in subclasses, "the type is no sub-class of zip")


def check_icon(desktop):
    definition = xml.etree.ElementTree.parse(desktop.share / "mime" / (TYPE + ".xml"))
    icon = definition.find("{*}icon").get("name")
    file = desktop.share / "icons/hicolor/scalable/mimetypes" / (icon + ".svg")
    xml.etree.ElementTree.parse(file)
    # The name that a file manager looks for where the type names none.
    expect("icon", icon, TYPE.replace("/", "-"))


def check_thumbnailer(desktop, package, folder):
    (file,) = (desktop.share / "thumbnailers").glob("*.thumbnailer")
    thumbnailer = entry(file, "Thumbnailer Entry")
    expect("thumbnailer's type", thumbnailer["MimeType"], TYPE + ";")
    require(shutil.which(thumbnailer["TryExec"], path=desktop.environment["PATH"]),
            "there is no " + thumbnailer["TryExec"])
    picture = folder / "a picture.png"
    for name in AWKWARD_NAMES:
        # As file managers do: each word by itself, into a file that is there already.
        picture.write_bytes(b"")
        values = {"%i": str(folder / name), "%o": str(picture), "%s": "128"}
        desktop.run(*[values.get(word, word) for word in shlex.split(thumbnailer["Exec"])])
        expect("thumbnail of " + name, png_size(picture), (128, 72))


def check_application(desktop):
    file = desktop.share / "applications/devhost.desktop"
    expect("desktop-file-validate", desktop.run("desktop-file-validate", file), "")
    desktop.run("update-desktop-database", file.parent)
    expect("opened by", desktop.run("xdg-mime", "query", "default", TYPE), file.name)
    expect("zip files opened by", desktop.run("xdg-mime", "query", "default", ZIP), "")


def main():
    parser = argparse.ArgumentParser()
    for option in ("--build", "--tool", "--cmake", "--installed"):
        parser.add_argument(option, type=pathlib.Path)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as name:
        work = pathlib.Path(name)
        prefix = arguments.installed or work / "prefix"
        tool = arguments.tool or prefix / "bin/corvelpro"
        home, files, share = work / "home", work / "files", work / "share"
        for folder in (home, files):
            folder.mkdir()
        if arguments.build:
            subprocess.run([arguments.cmake, "--install", arguments.build, "--prefix", prefix, "--component", "desktop"],
                           check=True, stdout=subprocess.DEVNULL)
            (prefix / "share/applications").mkdir()
            shutil.copy(pathlib.Path(__file__).resolve().parents[2] / "devhost/app/devhost.desktop",
                        prefix / "share/applications")
        # A copy, since what the desktop's tools make of it does not belong to the packages.
        shutil.copytree(prefix / "share", share)
        desktop = Desktop(share, home, tool.parent.resolve())
        shutil.copy(COMMON_TYPES, share / "mime/packages")
        expect("update-mime-database", desktop.run("update-mime-database", share / "mime"), "")

        package = make_package(tool, work)
        check_types(desktop, package, files)
        check_icon(desktop)
        check_thumbnailer(desktop, package, files)
        check_application(desktop)


main()
