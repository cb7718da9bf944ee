# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""Finds a second place of the version.

    version_has_one_place.py ROOT VERSION

VERSION is the build's. In the sources, scripts and pages below ROOT it may stand in version.cmake alone, and in CHANGELOG.md,
whose newest release must have it.
"""
import pathlib
import re
import sys

ROOT, VERSION = pathlib.Path(sys.argv[1]), sys.argv[2]
PLACES = ("src/plugins/projectfilecfg/version.cmake", "CHANGELOG.md")
FOLDERS = (".ci", "benchmarks", "cmake", "devhost", "docs", "fuzz", "scripts", "src", "tests")
# Each with lines in which the same number means something else.
OTHER_VERSIONS = (
    # The plugins that depend on the product, and those on which it depends, ask for these.
    (r"(src/plugins/projectfilecfg/projectfilecfg\.json\.in|tests/integration/plugin_metadata\.json)",
     r'"CompatVersion": |"Name": "(core|navigationbar|settingcfg)", "Version": '),
    (r"docs/integrating\.md", r'`core` |`CompatVersion`|needs plugin "core"|find_package\(Host '),
    (r"src/plugins/projectfilecfg/host/host\.cmake", r"find_package\(Host "),
    (r"tests/integration/tst_pluginlifecycle\.cpp", r'needs plugin \\"core\\"'),
    # The host that the development host stands in for has a version of its own, as have the tests' plugins.
    (r"devhost/plugins/\w+/\w+\.json", r'"(Compat)?Version": '),
    (r"tests/devhost/fixtures/.*", r'\\"(Compat)?Version\\": '),
)


def files():
    yield from (path for path in ROOT.iterdir() if path.is_file())
    for folder in FOLDERS:
        yield from (path for path in (ROOT / folder).rglob("*") if path.is_file())


def findings():
    number = re.compile(rf"(?<![\d.]){re.escape(VERSION)}(?![\d.]*\d)")
    for path in files():
        name = path.relative_to(ROOT).as_posix()
        try:
            lines = path.read_text(encoding="utf-8").split("\n")
        except UnicodeDecodeError:
            continue
        for line_number, line in enumerate(lines, 1):
            means_another = any(re.fullmatch(files, name) and re.search(text, line) for files, text in OTHER_VERSIONS)
            if number.search(line) and name not in PLACES and not means_another:
                yield f"{name}:{line_number}: the version has a second place: {line.strip()}"
    changelog = (ROOT / "CHANGELOG.md").read_text(encoding="utf-8")
    newest = re.search(r"^## \[(\d[^\]]*)\] - \d{4}-\d\d-\d\d$", changelog, re.MULTILINE)
    if not newest or newest.group(1) != VERSION:
        yield f"CHANGELOG.md: the newest release is {newest.group(1) if newest else 'missing'}, not {VERSION}"


found = list(findings())
print("\n".join(found))
sys.exit(1 if found else 0)
