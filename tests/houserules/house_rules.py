# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""Tests scripts/check-house-rules, whose path is the argument, with sources of a few lines."""
import os
import subprocess
import sys
import tempfile
import unittest

CHECKER = os.path.abspath(sys.argv.pop())


TERMS = "// SPDX-FileCopyrightText: Velmora\n// SPDX-License-Identifier: LicenseRef-Commercial-Usage\n\n"


def findings(source, path="src/plugins/a.cpp", terms=TERMS):
    """The findings in `source` behind `terms`, each without the file's name; lines count from the source's first."""
    with tempfile.TemporaryDirectory() as folder:
        os.makedirs(os.path.join(folder, os.path.dirname(path)))
        with open(os.path.join(folder, path), "w", encoding="utf-8") as file:
            file.write(terms + source)
        run = subprocess.run([sys.executable, "-B", CHECKER, path], cwd=folder, text=True, stdout=subprocess.PIPE,
                             check=False)
    lines = run.stdout.splitlines()
    assert run.returncode == (1 if lines else 0), run
    numbered = (line.split(":", 2)[1:] for line in lines)
    return [f"{int(number) - terms.count(chr(10))}:{message}" for number, message in numbered]


def record(*members):
    return "struct Entry\n{\n" + "".join(f"    {member}\n" for member in members) + "};\n"


class HouseRules(unittest.TestCase):
    def check(self, source, *expected, path="src/plugins/a.cpp"):
        self.assertEqual(findings(source, path), list(expected))

    def test_members_have_the_prefix_of_their_type(self):
        self.check(record("QString strName;", "bool m_bOpen = false;", "qint64 nSize = 0;", "QWidget *m_pParent;",
                          "std::atomic<bool> m_bCancel{false};", "const QList<int> listSizes;", "QMutex m_mutex;",
                          "std::shared_ptr<Model::Device> m_pDevice;", "static constexpr int step = 4;",
                          "QString name() const;"))
        for member, prefix in (("QString m_name;", "str"), ("std::atomic<bool> m_isOver{false};", "b"),
                               ("const qint64 m_size = 0;", "n"), ("QWidget *const m_parent;", "p"),
                               ("std::unique_ptr<QFile> m_file;", "p"), ("QVector<Entry> m_entries;", "list")):
            name = member.split(";")[0].split(" =")[0].split("{")[0].replace("*const ", "").split()[-1].lstrip("*")
            self.check(record(member), f"3: the prefix of \"{name}\" is \"{prefix}\"")
        self.check(record("quint64 m_last = 0; // guarded"), "3: the prefix of \"m_last\" is \"n\"")
        self.check(record("QString name;"), path="tests/a.cpp")

    def test_a_source_begins_with_its_terms(self):
        finding = "1: a source begins with its two SPDX lines and an empty one"
        self.assertEqual(findings("int i;\n", terms=""), [finding])
        self.assertEqual(findings(TERMS.replace("Velmora", "Nobody") + "int i;\n", terms=""), [finding])

    def test_a_test_program_has_at_most_800_lines(self):
        own = 800 - TERMS.count("\n")
        self.check("int i;\n" * own, path="tests/a.cpp")
        self.check("int i;\n" * (own + 1), "798: a test program has at most 800 lines", path="tests/a.cpp")
        self.check("int i;\n" * (own + 1))

    def test_locals_are_no_members(self):
        self.check("void f()\n{\n    QString name;\n    bool isOpen = false;\n}\n")

    def test_enumerations_are_scoped(self):
        self.check("enum class Outcome { Taken, NoRoom };\nenum LoadResultCode : int {\n    LoadSuccess = 0\n};\n")
        self.check("enum Outcome { Taken, NoRoom };\n", "1: an enumeration is an enum class, a constant constexpr")
        self.check("    enum { Capacity = 256 };\n", "1: an enumeration is an enum class, a constant constexpr")
        self.check("enum Kind { Warning };\n", path="devhost/libs/a.h")

    def test_what_one_file_uses_is_in_an_anonymous_namespace(self):
        self.check("static_assert(true);\nstatic void initResources()\n{\n    Q_INIT_RESOURCE(site);\n}\n")
        self.check("static void f()\n{}\n",
                   "1: what only this file uses stands in an anonymous namespace, without static")

    def test_constants_of_literal_types_are_constexpr(self):
        self.check("constexpr int step = 4;\nconst QString name = QStringLiteral(\"a\");\nconst int count = countOf(name);\n")
        self.check("const int step = 4;\n", "1: a constant of a literal type is constexpr")
        self.check("    static const qint64 step = 4;\n", "1: a constant of a literal type is constexpr")

    def test_braces_stand_around_more_than_a_line(self):
        self.check("    if (a)\n        b();\n    else\n        c(\"{\",\n          d);\n"
                   "    for (;;) {\n        if (a)\n            b();\n    }\n"
                   "    if (a) {\n        b();\n    } else {\n        b();\n        c();\n    }\n"
                   "    while (isTrue(a,\n                  b))\n        c();\n\n")
        self.check("    if (a) {\n        b();\n    }\n\n", "1: no braces around a single line")
        self.check("    for (;;)\n        if (a)\n            b();\n\n",
                   "1: braces around a body of several lines, in each branch")
        self.check("    if (a)\n        b();\n    else {\n        b();\n        c();\n    }\n\n",
                   "1: braces around a body of several lines, in each branch")


if __name__ == "__main__":
    unittest.main()
