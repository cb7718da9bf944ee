# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""Runs the command-line tool, and keeps the table of what was made and found."""
import json
import subprocess


class Tool:
    def __init__(self, program):
        self.program = str(program)

    def has(self, command):
        return self.plain(command, "--help").returncode == 0

    def plain(self, *arguments):
        return subprocess.run([self.program, *map(str, arguments)], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              check=False)

    def json(self, command, *arguments):
        """What it prints, and its exit code. A crash or a text that is no JSON ends the run."""
        result = self.plain(command, "--json", *arguments)
        try:
            return json.loads(result.stdout), result.returncode
        except ValueError as error:
            raise SystemExit(f"{command} {arguments} ended with {result.returncode} and printed no JSON: {error}\n"
                             f"{result.stderr.decode()}") from error

    def verdicts(self, command, paths):
        files = self.json(command, *paths)[0]["files"]
        assert len(files) == len(paths)
        return [file["verdict"] for file in files]


class Table:
    """Rows of something that was made a number of times and has to be found so many times at least."""

    def __init__(self, title):
        self.passed = True
        print(f"\n{title}\n\n| {'kind':58} | made | found | at least | |\n|{'-' * 60}|------|-------|----------|-|")

    def row(self, kind, made, found, share=1.0, misses=()):
        needed = made * share
        good = found >= needed and made > 0
        self.passed = self.passed and good
        print(f"| {kind:58} | {made:4} | {found:5} | {needed:8.0f} | {'' if good else 'MISSED'} |", flush=True)
        for miss in list(misses)[:5]:
            print(f"    not found: {miss}", flush=True)
