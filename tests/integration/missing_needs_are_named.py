# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""Configures the plugin alone where something that it needs is missing, and expects a message that names it. The host is in
host_of_another_version.cmake.

    missing_needs_are_named.py ROOT CMAKE COMPILER NINJA QT BUILD

QT is the folder of Qt's CMake package, BUILD a configured build of everything.
"""
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT, CMAKE, COMPILER, NINJA, QT, BUILD = sys.argv[-6:]
del sys.argv[1:]
# Nothing is found by itself.
NOTHING_FOUND = ("-DCMAKE_FIND_USE_CMAKE_SYSTEM_PATH=OFF", "-DCMAKE_FIND_USE_SYSTEM_ENVIRONMENT_PATH=OFF")


class MissingNeeds(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def message(self, *command):
        """What a command that fails prints, in one line."""
        process = subprocess.run([CMAKE, *command], text=True, check=False, stdout=subprocess.PIPE,
                                 stderr=subprocess.STDOUT)
        self.assertNotEqual(process.returncode, 0, process.stdout)
        return " ".join(process.stdout.split())

    def configure(self, *options, compiler=COMPILER):
        return self.message("-S", f"{ROOT}/src/plugins/projectfilecfg", "-B", str(self.folder / "build"), "-G", "Ninja",
                            f"-DCMAKE_CXX_COMPILER={compiler}", f"-DCMAKE_MAKE_PROGRAM={NINJA}", *options)

    def package(self, name, version):
        """The option that leads to a package of another version than any that would do."""
        folder = self.folder / name
        folder.mkdir()
        (folder / f"{name}Config.cmake").touch()
        (folder / f"{name}ConfigVersion.cmake").write_text(
            f"set(PACKAGE_VERSION {version})\nset(PACKAGE_VERSION_COMPATIBLE FALSE)\n", encoding="utf-8")
        return f"-D{name}_DIR={folder}"

    def test_a_qt_that_is_too_old(self):
        message = self.configure(*NOTHING_FOUND, self.package("Qt5", "5.6.3"))
        self.assertIn('"Qt5" that is compatible with requested version "5.9"', message)
        self.assertIn("version: 5.6.3", message)

    def test_no_quazip(self):
        message = self.configure(*NOTHING_FOUND, f"-DQt5_DIR={QT}")
        self.assertIn('"QuaZip-Qt5" (requested version 1.4)', message)

    def wrapper(self, text):
        path = self.folder / "compiler"
        path.write_text(f"#!/bin/sh\n{text}\n", encoding="utf-8")
        path.chmod(0o755)
        return str(path)

    def test_a_compiler_without_cpp17(self):
        old = self.wrapper(f'exec "{COMPILER}" -U__GNUC__ -D__GNUC__=4 -U__GNUC_MINOR__ -D__GNUC_MINOR__=8 "$@"')
        self.assertIn('requires the language dialect "CXX17"', self.configure(compiler=old))

    def test_a_compiler_with_only_part_of_cpp17(self):
        part = self.wrapper(f'for word; do if grep -qs "<filesystem>" "$word"; then exit 1; fi; done; '
                            f'exec "{COMPILER}" "$@"')
        message = self.configure(compiler=part)
        self.assertIn(f"{part} has no <filesystem>", message)

    def test_a_prefix_that_cannot_be_written(self):
        prefix = self.folder / "prefix"
        # In a folder's place a file, since the administrator may write anywhere.
        prefix.touch()
        message = self.message("--install", BUILD, "--prefix", str(prefix), "--component", "desktop")
        self.assertIn(f"cannot create directory: {prefix}", message)


if __name__ == "__main__":
    unittest.main()
