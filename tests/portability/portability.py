# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""Tests scripts/check-qt-version and scripts/check-syntax with sources of a few lines.

    portability.py BUILD

BUILD is what scripts/check-portability has configured.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

BUILD = os.path.abspath(sys.argv.pop())
SCRIPTS = pathlib.Path(__file__).resolve().parent.parent.parent / "scripts"

# Each line with the version that it needs at least, if that is newer than Qt 5.9.
USES = r'''
bool method(const QString &name) { return name.isUpper(); }                                             // 5.12
bool insideAMacro(const QString &name) { Q_ASSERT(name.isUpper()); return true; }                       // 5.12
quint32 newClass() { return QRandomGenerator::global()->generate(); }                                   // 5.10
QString functionsThatShareADescription() { return qEnvironmentVariable("HOME"); }                       // 5.10
QStringList enumeration(const QString &name) { return name.split(QLatin1Char('/'), Qt::SkipEmptyParts); } // 5.14
int value() { return int(Qt::MarkdownText); }                                                           // 5.14
struct Pinned { Q_DISABLE_COPY_MOVE(Pinned) };                                                          // 5.13
QSet<int> constructor(const QVector<int> &all) { return QSet<int>(all.begin(), all.end()); }            // 5.14
auto address() { return &QString::isUpper; }                                                            // 5.12
int implicitConversion(const QString &name) { return [](QStringView view) { return int(view.size()); }(name); } // 5.10
template <typename T> auto inTemplates(T) { return QString().chopped(1); }                              // 5.10
QStringList olderOverloads(const QString &name) { return name.arg(name, name).split(QLatin1Char('/')); }
QString older() { return QStringLiteral("isUpper") + QString::number(1).trimmed().toUpper(); }
bool hidden(QObject *object) { return qobject_cast<QTimer *>(object) != nullptr; }
'''
HEADERS = "".join(f"#include <{name}>\n" for name in (
    "QObject", "QRandomGenerator", "QSet", "QString", "QStringList", "QStringView", "QTimer", "QVector"))


def run(script, source, *arguments):
    """(exit code, output) of a script on a source."""
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder, "planted.cpp")
        path.write_text(source, encoding="utf-8")
        process = subprocess.run([SCRIPTS / script, BUILD, *arguments, path], text=True, check=False,
                                 stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return process.returncode, process.stdout


class QtVersion(unittest.TestCase):
    def test_finds_each_newer_use_and_no_older_one(self):
        code, output = run("check-qt-version", HEADERS + USES)
        found = {}
        for line, since in re.findall(r"planted\.cpp:(\d+): .* since Qt ([\d.]+)$", output, re.MULTILINE):
            found[int(line)] = max(found.get(int(line), ""), since)
        lines = (HEADERS + USES).split("\n")
        expected = {number: line.rpartition("// ")[2] for number, line in enumerate(lines, 1) if "// " in line}
        self.assertEqual(found, expected, output)
        self.assertEqual(code, 1)
        self.assertEqual(len(re.findall("in no documentation", output)), 0, output)

    def test_accepts_what_is_old(self):
        self.assertEqual(run("check-qt-version", "#include <QString>\nQString name() { return QString(); }\n"), (0, ""))

    def test_a_source_that_cannot_be_read_is_a_failure(self):
        code, output = run("check-qt-version", "#include <QtGlobal>\nint one() { return nothing; }\n")
        self.assertEqual(code, 1)
        self.assertIn("cannot be read", output)


class Syntax(unittest.TestCase):
    def check(self, compiler, source, is_right):
        code, output = run("check-syntax", source, compiler)
        self.assertEqual(code, 0 if is_right else 1, output)
        self.assertIn(f"{int(is_right)} of 1 sources", output)

    def test_the_branch_for_windows_is_compiled(self):
        compiler = "x86_64-w64-mingw32-g++-posix -std=c++17"
        self.check(compiler, "#include <QtGlobal>\n#ifndef Q_OS_WIN\n#error\n#endif\nint one() { return 1; }\n", True)
        self.check(compiler, "#include <QtGlobal>\n#ifdef Q_OS_WIN\nint one() { return _nothing; }\n#endif\n", False)
        self.check(compiler, "#include <QtGlobal>\n#include <sys/ioctl.h>\n", False)

    def test_what_cpp20_took_away_is_refused(self):
        source = "#include <QtGlobal>\nconst char *text() { return u8\"text\"; }\n"
        self.check("g++ -std=c++20 -fPIC", source, False)
        self.check("g++ -std=c++17 -fPIC", source, True)

    def test_a_warning_is_an_error(self):
        self.check("g++ -std=c++20 -fPIC", "#include <QtGlobal>\nint one(int two) { return 1; }\n", False)


if __name__ == "__main__":
    unittest.main()
