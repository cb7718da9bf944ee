# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""Builds the copy of the tree, records which test function reaches which mistake, and runs the tests on each."""
import collections
import hashlib
import json
import os
import pathlib
import queue
import re
import resource
import shlex
import shutil
import subprocess
import threading
import time

import schemata

# In the copy no test waits a full minute for an event that a mistake keeps from coming, and long programs run a share.
PATIENCE = 8000
SHARE = {"DISTURB_EVERY": "12", "RANDOM_SEQUENCES": "10"}


# Functions that Qt Test runs around the chosen test functions.
FRAME = {"initTestCase", "cleanupTestCase"}


class Failure(Exception):
    pass


def command(arguments, **options):
    outcome = subprocess.run(arguments, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **options)
    if outcome.returncode != 0:
        raise Failure("%s\n%s" % (shlex.join(map(str, arguments)), outcome.stdout[-4000:]))
    return outcome.stdout


def write_if_changed(path, content):
    if path.exists() and path.read_bytes() == content:
        return
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content)


class Tree:
    """A copy whose product sources contain the switches."""

    def __init__(self, root, product, work, jobs):
        self.source, self.build, self.jobs = work / "tree", work / "build", jobs
        self.product = self.source / product
        self.runtime = work / "libmutation.so"
        names = command(["git", "-C", root, "ls-files", "-z", "-co", "--exclude-standard"]).split("\0")
        names = [name for name in sorted(filter(None, names)) if (root / name).is_file()]
        digest, digest_of_tests = hashlib.sha256(), hashlib.sha256()
        wanted = set()
        for name in names:
            content = (root / name).read_bytes()
            # Neither documents nor the list of unnoticeable mistakes affect the tests.
            if not name.startswith(("docs/", "benchmarks/", "scripts/", "tests/mutation/", ".")) and "/" in name:
                part = digest_of_tests if name.startswith("tests/") else digest
                part.update(name.encode() + b"\0" + hashlib.sha256(content).digest())
            wanted.add(name)
            if name.endswith(("testmain.h", "stage.h", "stage.cpp")):
                content = re.sub(rb"(constexpr int \w*[pP]atience = )\d+;", rb"\g<1>%d;" % PATIENCE, content)
            # The product's sources are written by switch().
            if name.startswith(product + "/") and name.endswith((".cpp", ".h")) and (self.source / name).exists():
                continue
            write_if_changed(self.source / name, content)
            (self.source / name).chmod((root / name).stat().st_mode)
        for path in self.source.rglob("*"):
            if path.is_file() and str(path.relative_to(self.source)) not in wanted:
                path.unlink()
        # Of the product and the host, and of the tests.
        self.fingerprint, self.fingerprint_of_tests = digest.hexdigest(), digest_of_tests.hexdigest()
        command(["g++", "-O2", "-shared", "-fPIC", "-o", self.runtime, root / "scripts/mutation/switch.cpp", "-ldl"])
        command(["cmake", "-S", self.source, "-B", self.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=",
                 "-DCMAKE_CXX_FLAGS=-O0 -w -fpermissive -Wno-narrowing -fmax-errors=0 "
                 "-fdiagnostics-column-unit=byte", "-DCMAKE_BUILD_RPATH=" + str(work),
                 "-DCMAKE_CXX_STANDARD_LIBRARIES=-Wl,--no-as-needed " + str(self.runtime),
                 "-DPROJECTFILECFG_BUILD_BENCHMARKS=OFF", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON"])
        self.commands, self.objects = {}, {}
        for entry in json.loads((self.build / "compile_commands.json").read_text()):
            path = pathlib.Path(entry["file"])
            if self.product in path.parents and "widgetless" not in entry["command"]:
                arguments = shlex.split(entry["command"])
                self.objects[path] = arguments[arguments.index("-o") + 1]
                self.commands[path] = arguments
        if not self.commands:
            raise Failure("the build knows no source of the product")

    def parser_arguments(self, path):
        arguments = self.commands[path]
        keep = [a for a in arguments[1:] if a.startswith(("-I", "-D", "-std=", "-f"))
                and not a.startswith(("-fdiagnostics", "-fmax", "-fpermissive"))]
        for i, a in enumerate(arguments):
            if a == "-isystem":
                keep += [a, arguments[i + 1]]
        resources = sorted(pathlib.Path("/usr/lib").glob("llvm-*/lib/clang/*/include"))
        return keep + (["-isystem", str(resources[-1])] if resources else [])

    def switch(self, switched):
        """Writes the sources with their switches, and removes those that do not compile."""
        def write(path):
            write_if_changed(pathlib.Path(path), switched.emitted(path)[0].encode("latin-1"))

        memory = self.build.parent / "refused.json"
        if memory.exists():
            switched.recall(json.loads(memory.read_text()))
        for path in switched.texts:
            write(path)
        place = re.compile(r"^([^:\s]+):(\d+):(\d+): +(error|required from)", re.MULTILINE)
        # The tests include some of the product's headers: they are built once those are final.
        steps = [sorted(set(self.objects.values())), ["all"]]
        for attempt in range(40):
            outcome = subprocess.run(["ninja", "-C", self.build, "-j", str(self.jobs), "-k", "0", *steps[0]],
                                     stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
            if outcome.returncode == 0:
                steps.pop(0)
                memory.write_text(json.dumps(switched.memory()))
                if not steps:
                    return
                continue
            places = {(os.path.normpath(self.build / m.group(1)), int(m.group(2)), int(m.group(3)))
                      for m in place.finditer(outcome.stdout)}
            places = {p for p in places if p[0] in switched.texts}
            # All by the text that the compiler saw.
            before = {path: switched.emitted(path) for path, _, _ in places}
            done = [switched.refuse(path, line, column, before[path]) for path, line, column in sorted(places)]
            if not any(done):
                break
            for path in {path for path, _, _ in places}:
                write(path)
        errors = [line for line in outcome.stdout.splitlines() if "error" in line or "undefined" in line]
        raise Failure("the copy cannot be built:\n" + "\n".join(errors[:20] or outcome.stdout[-3000:].splitlines()))

    def programs(self):
        """The tests that may reach the product: (name, command, environment)."""
        listed = json.loads(command(["ctest", "--test-dir", self.build, "--show-only=json-v1"]))
        found = []
        for test in listed["tests"]:
            arguments = test.get("command")
            # Other programs, such as the host itself, have no test functions to select.
            if not arguments or not pathlib.Path(arguments[0]).name.startswith("tst_") or \
                    pathlib.Path(arguments[0]).parent != self.build / "bin":
                continue
            content = pathlib.Path(arguments[0]).read_bytes()
            if b"mutation_on" not in content and str(self.build / "plugins").encode() not in content:
                continue
            environment = {}
            for entry in test["properties"]:
                if entry["name"] == "ENVIRONMENT":
                    environment = dict(pair.split("=", 1) for pair in entry["value"])
            environment.update({k: v for k, v in SHARE.items() if k in environment})
            found.append((test["name"], arguments, environment))
        return found


class Worker:
    """Runs test functions, one program at a time, in a folder of its own."""

    def __init__(self, temporary):
        self.temporary = temporary
        self.environment = dict(os.environ, LC_ALL="C.UTF-8", TMPDIR=str(temporary))
        # Mutants run with root privileges could damage anything: the rest of the system is mounted read-only.
        self.fence = [] if os.getuid() != 0 else [
            "unshare", "--mount", "--propagation", "private", "sh", "-ec",
            'mount --bind "$0" "$0"; mount -o remount,bind,ro /; mount -o remount,bind,ro /dev; cd "$0"; exec "$@"',
            str(temporary)]
        if self.fence and subprocess.run([*self.fence, "true"]).returncode != 0:
            raise Failure("nothing keeps an administrator's mistakes from the system here: run it as another user")

    def clean(self):
        for left in self.temporary.iterdir():
            if left.is_dir() and not left.is_symlink():
                command(["chmod", "-R", "u+rwX", left])
                shutil.rmtree(left, ignore_errors=True)
            else:
                left.unlink()

    def run(self, program, functions, environment, cpu, wall, go_on=False):
        """(reason of the failure or None, {function: seconds}, [failed functions])"""
        _, arguments, own = program

        def restrict():
            os.setsid()
            resource.setrlimit(resource.RLIMIT_FSIZE, (8 << 30, 8 << 30))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
            resource.setrlimit(resource.RLIMIT_CPU, (int(cpu), int(cpu) + 5))

        process = subprocess.Popen([*self.fence, *arguments, *functions], cwd=self.temporary,
                                   env={**self.environment, **own, **environment}, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                   preexec_fn=restrict, text=True, errors="replace")
        late = threading.Event()

        def end():
            late.set()
            kill_group(process)

        timer = threading.Timer(wall, end)
        timer.start()
        times, failed, since = collections.Counter(), [], time.monotonic()
        try:
            for line in process.stdout:
                if line.startswith("Unknown test"):
                    raise Failure("%s: %s" % (arguments[0], line))
                match = re.match(r"(PASS|SKIP|FAIL!|XPASS|XFAIL|QFATAL)\s*: \w+::(\w+)\((.*)", line)
                if not match:
                    continue
                verdict, function, row = match.groups()
                # On a failure more text follows the row. A row's name may contain brackets, too: compare with the known
                # rows.
                end = row.rfind(")") if verdict == "PASS" else row.find(")")
                if verdict != "PASS" and functions:
                    end = next((len(f) - len(function) - 1 for f in functions
                                if (row + ")").startswith(f[len(function) + 1:] + ")")
                                and f.startswith(function + ":")), end)
                test = choosable(function + (":" + row[:end] if end > 0 else ""))
                now = time.monotonic()
                times[test] += now - since
                since = now
                if verdict in ("FAIL!", "XPASS", "QFATAL"):
                    failed.append(test)
                    if not go_on:
                        kill_group(process)
            process.wait()
        finally:
            timer.cancel()
            kill_group(process)
        if failed:
            return failed[0], times, failed
        if late.is_set() or process.returncode == -24:
            return "(runs too long)", times, failed
        return None if process.returncode == 0 else "(ends with %d)" % process.returncode, times, failed


def choosable(test):
    """"function:row", or the function alone where Qt Test cannot select the row: two colons divide class and function."""
    return test.split(":")[0] if "::" in test else test


def kill_group(process):
    """Kills the program with its children: it leads a process group of its own."""
    try:
        os.killpg(process.pid, 9)
    except ProcessLookupError:
        pass


NAME_SIZE, RECORDS = 256, 8000      # as switch.cpp has it


def trace(program, worker, count):
    """Runs the program without a mistake: [(test, seconds, numbers that it reaches)], how long that took, and the
    tests that failed. A test is a function, or one row of it."""
    worker.clean()
    listed = command([*program[1], "-functions"], env={**worker.environment, **program[2]})
    functions = re.findall(r"^(\w+)\(\)$", listed, re.MULTILINE)
    file, size = worker.temporary / "trace", NAME_SIZE + count + 1
    began, times, failed, rest = time.monotonic(), collections.Counter(), [], functions
    everywhere, reached = set(), collections.defaultdict(set)
    while rest:
        worker.clean()
        with open(file, "wb") as out:
            out.truncate(RECORDS * size)
        reason, seen, red = worker.run(program, () if rest is functions else rest, {
            "MUTATION_TRACE": str(file), "MUTATION_COUNT": str(count + 1), "MUTATION_TESTS": str(RECORDS)},
            cpu=3600, wall=3600, go_on=True)
        with open(file, "rb") as content:
            for number in range(RECORDS):
                record = content.read(size)
                name = choosable(record[:NAME_SIZE].rstrip(b"\0").decode("utf-8", "replace"))
                if number and not name:
                    break
                numbers = {m.start() for m in re.finditer(b"\1", record[NAME_SIZE:])}
                # Code reached outside every test may affect each of them.
                if not number or name in FRAME:
                    everywhere |= numbers
                else:
                    reached[name] |= numbers
        times.update(seen)
        failed += red
        done = {test.split(":")[0] for test in seen}
        rest = [function for function in rest if function not in done | FRAME]
        if not reason or not rest:
            break
        # The first test without a result crashed the program.
        failed.append("%s %s" % (rest[0], reason))
        rest = rest[1:]
    file.unlink()
    result = [(test, round(seconds, 3), sorted(everywhere | reached[test])) for test, seconds in times.items()
              if test not in failed and test not in FRAME]
    return result, time.monotonic() - began, failed


class Campaign:
    """Judges mistakes by the functions that reach them: the likeliest and quickest first."""

    def __init__(self, programs, reach, workers, effort, near):
        self.programs = {program[0]: program for program in programs}
        self.effort, self.near = effort, near
        self.idle = queue.Queue()
        for worker in workers:
            self.idle.put(worker)
        self.by_number = collections.defaultdict(list)
        self.seconds = {}
        for name, functions in reach.items():
            for function, seconds, numbers in functions:
                self.seconds[name, function] = seconds
                for number in numbers:
                    self.by_number[number].append((name, function))
        self.kills = collections.Counter()
        self.lock = threading.Lock()

    def learn(self, mutant, where, killer):
        """The test that noticed a mistake is asked early about those near it."""
        name, test = killer.split(" ", 1)
        if " and so on (" in test:
            return
        with self.lock:
            self.kills[where, (name, test)] += 1
            self.kills[where, (name, test.split(":")[0])] += 1
            self.kills[mutant.file, (name, test)] += 1
            self.kills[mutant.file, name] += 1
            self.kills[mutant.file] += 1

    def judge(self, mutant, number, where):
        """(verdict, detail, seconds): killed or survived."""
        tests = self.by_number[number]
        if not tests:
            return "survived", "no test reaches it", 0
        with self.lock:
            def worth(test):
                function = (test[0], test[1].split(":")[0])
                kills = 20 * self.kills[where, test] + 2 * self.kills[mutant.file, test] + \
                    4 * (self.kills[where, function] > 0) + \
                    10 * self.kills[mutant.file, test[0]] / (1 + self.kills[mutant.file])
                return (1 + kills) / (0.05 + self.seconds[test])
            worths, rows = {}, collections.Counter()
            for test in sorted(tests, key=worth, reverse=True):
                # A second row of a function tells less than another function.
                function = (test[0], test[1].split(":")[0])
                rows[function] += 1
                worths[test] = worth(test) / rows[function]
            # However long they take, those of the near programs come first.
            order = sorted(tests, key=lambda test: (test[0] in self.near[number], worths[test]), reverse=True)
        worker, spent, passed_over = self.idle.get(), 0.0, 0
        began, asked, share = time.monotonic(), 0.0, 1.0
        try:
            while order:
                name = order[0][0]
                batch, expected = [], 0.0
                for test in list(order):
                    if test[0] == name and (not batch or expected + self.seconds[test] <= share):
                        batch.append(test)
                        expected += self.seconds[test]
                        order.remove(test)
                # Limited by the tests' sequential time without a mistake, so that a busy machine does not run fewer of
                # them.
                if asked and asked + expected > self.effort:
                    passed_over += len(batch)
                    continue
                asked += expected + 0.2
                worker.clean()
                reason, _, _ = worker.run(self.programs[name], [function for _, function in batch],
                                          {"MUTATION_MADE": str(number)}, 15 + 4 * expected, 25 + 8 * expected)
                spent = time.monotonic() - began
                share = min(2 * share, 16, max(self.effort - asked, 0.1))
                if reason:
                    by = reason if not reason.startswith("(") else batch[0][1] + " and so on " + reason
                    self.learn(mutant, where, name + " " + by)
                    return "killed", name + " " + by, spent
            detail = "after %.0f s of tests; %d not asked" % (asked, passed_over) if passed_over else ""
            return "survived", detail, spent
        finally:
            self.idle.put(worker)
