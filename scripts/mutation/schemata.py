# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""Puts every mistake of a file behind a switch, so that all of them stand in one build:

    a == b            becomes    (mutation_on(7)?(a != b):(a == b))
    f(x);             becomes    {if(mutation_on(8)){}else f(x);}
    const int n = 5;  becomes    const int n = 5;const int n_m9 = 6;    and each use of it (mutation_on(9)?n_m9:n)

libclang finds the ends of expressions. Line numbers stay the same. Switches that the compiler refuses (array sizes, case
labels, template arguments) are removed again, at the place named in its error."""
import collections
import hashlib
import pathlib
import re

import places

Node = collections.namedtuple("Node", "start end kind fixed")        # fixed: the compiler must know the value
Constant = collections.namedtuple("Constant", "file start end name key")
Use = collections.namedtuple("Use", "start end name key fixed")
Guard = collections.namedtuple("Guard", "start end type name arguments")


DECLARES = "declares what is used below"


class Parsed:
    """What libclang knows of one file."""

    def __init__(self):
        self.nodes, self.constants, self.uses, self.guards, self.declarations = [], [], [], [], set()


PRELUDE = 'extern "C" bool mutation_on(int) noexcept;\n'


def parse(path, arguments, texts):
    """The parsed form of each file in `texts` (path: unchanged text) that compiling `path` includes."""
    from clang import cindex
    kinds = cindex.CursorKind
    unit = cindex.Index.create().parse(path, args=arguments, unsaved_files=[
        (name, text.encode("latin-1").decode("utf-8")) for name, text in texts.items()])
    worst = [str(d) for d in unit.diagnostics if d.severity >= cindex.Diagnostic.Error]
    if worst:
        raise RuntimeError("libclang does not understand %s:\n%s" % (path, "\n".join(worst[:5])))
    found = {name: Parsed() for name in texts}

    def key_of(cursor):
        place = cursor.location
        return (place.file.name, place.offset) if place.file else None

    def visit(cursor, parent, fixed, name):
        here = found[name]
        text = texts[name]
        start, end = cursor.extent.start, cursor.extent.end
        if not start.file or start.file.name != name or not end.file or end.file.name != name:
            return
        start, end = start.offset, end.offset
        kind = cursor.kind
        if kind == kinds.VAR_DECL:
            declaration = text[start:end]
            lasting = "constexpr" in declaration or cursor.storage_class == cindex.StorageClass.STATIC or \
                cursor.semantic_parent.kind in (kinds.NAMESPACE, kinds.TRANSLATION_UNIT)
            constant = "constexpr" in declaration or cursor.type.is_const_qualified() or \
                cursor.type.get_array_element_type().is_const_qualified()
            if lasting and constant and re.match(r"\s*;", text[end:]) and declaration.count(cursor.spelling):
                here.constants.append(Constant(name, start, end, cursor.spelling, key_of(cursor)))
                fixed = True
        elif kind in (kinds.ENUM_CONSTANT_DECL, kinds.STATIC_ASSERT, kinds.TEMPLATE_NON_TYPE_PARAMETER):
            fixed = True
        elif kind in (kinds.FUNCTION_DECL, kinds.FUNCTION_TEMPLATE, kinds.CXX_METHOD):
            head = text[start:end].split("{")[0]
            fixed = fixed or "constexpr" in head
        elif kind == kinds.DECL_STMT:
            here.declarations.update((start, end))
            guard = re.match(r"(?:const\s+)?([\w:]+(?:<[^>]*>)?)\s+(\w+)\((.*)\);$", text[start:end], re.DOTALL)
            if guard:
                here.guards.append(Guard(start, end, guard.group(1), guard.group(2), guard.group(3)))
        elif kind == kinds.DECL_REF_EXPR and cursor.referenced is not None and \
                cursor.referenced.kind == kinds.VAR_DECL:
            here.uses.append(Use(start, end, cursor.referenced.spelling, key_of(cursor.referenced), fixed))
        if kind.is_expression() and kind != kinds.INIT_LIST_EXPR and end > start:
            here.nodes.append(Node(start, end, kind.name, fixed))
        for i, child in enumerate(cursor.get_children()):
            visit(child, cursor, fixed or (kind == kinds.CASE_STMT and i == 0), name)

    for cursor in unit.cursor.get_children():
        place = cursor.location.file
        if place and place.name in texts:
            visit(cursor, unit.cursor, False, place.name)
    for parsed in found.values():
        parsed.nodes.sort(key=lambda n: (n.end - n.start, n.start))
    return found


def flat(code):
    """On one line, without comments."""
    out = []
    for match in places.TOKEN.finditer(code):
        out.append(re.sub(r"//[^\n]*|/\*.*?\*/|\s+", " ", match.group(), flags=re.DOTALL)
                   if match.lastgroup == "space" else match.group())
    return "".join(out)


class Wrapper:
    """One place in the text and its variants, by number."""

    def __init__(self, start, end, kind):
        self.start, self.end, self.kind = start, end, kind
        self.variants, self.is_boolean, self.inner = [], False, []


class Switched:
    """The files with switches. `mutants` has a list for each path, `numbers` the number of each mistake."""

    def __init__(self, texts, parsed, mutants, numbers):
        self.texts, self.parsed, self.mutants, self.numbers = texts, parsed, mutants, numbers
        self.refused = collections.defaultdict(set)     # path: {(start, end, kind, number)}
        self.without_place = {}                         # mutant: why
        self.wrappers = {path: {} for path in texts}
        # Constant by key: its variants, number and the declaration's text.
        self.constants, self.variants = {}, {}
        for path in texts:
            for constant in parsed[path].constants:
                self.constants[constant.key] = constant
        for path in texts:
            for mutant in mutants[path]:
                self._place(path, mutant)
        self._follow_constants()

    def _add(self, path, start, end, kind, number, variant, is_boolean=False):
        wrapper = self.wrappers[path].setdefault((start, end, kind), Wrapper(start, end, kind))
        wrapper.variants.append((number, variant))
        wrapper.is_boolean |= is_boolean

    def _place(self, path, mutant):
        text, parsed, number = self.texts[path], self.parsed[path], self.numbers[mutant]
        start, end = mutant.start, mutant.end
        for constant in parsed.constants:
            if constant.start <= start and end <= constant.end:
                code = text[constant.start:start] + mutant.new + text[end:constant.end]
                self.variants.setdefault(constant.key, []).append((number, code))
                return
        if mutant.kind == "statement":
            guard = next((g for g in parsed.guards if g.start == start and g.end == end and not any(
                start <= u.key[1] < end and u.key[0] == path for u in parsed.uses if u.key)), None)
            condition = next((n for n in parsed.nodes if n.start == start and
                              text[n.end:end].strip() == ";"), None)
            before = text[:start].rstrip()
            if guard:
                self._add(path, start, end, "guard", number, guard)
            elif start in parsed.declarations or end in parsed.declarations:
                self.without_place[mutant] = DECLARES
            elif condition and self._in_for_header(text, start):
                self._add(path, condition.start, condition.end, "expression", number, "true", True)
            elif before.endswith("("):
                self.without_place[mutant] = "no statement"
            else:
                self._add(path, start, end, "statement", number, "" if mutant.new == ";" else mutant.new)
            return
        node = next((n for n in parsed.nodes if n.start <= start and end <= n.end and
                     (mutant.kind != "operator" or n.start < start and end < n.end)), None)
        if node is None:
            self.without_place[mutant] = "stands in no expression"
        elif node.fixed:
            self.without_place[mutant] = "must be known to the compiler"
        else:
            self._add(path, node.start, node.end, "expression", number,
                      text[node.start:start] + mutant.new + text[end:node.end],
                      mutant.kind in ("negation", "condition"))

    @staticmethod
    def _in_for_header(text, start):
        head = text[max(text.rfind("{", 0, start), text.rfind("}", 0, start), 0):start]
        return re.search(r"\bfor \([^;{}]*;\s*$", head) is not None

    def _follow_constants(self):
        """A constant computed from a mutated one is mutated too; all uses ask the switch."""
        for _ in range(4):
            for key, constant in self.constants.items():
                have = {number for number, _ in self.variants.get(key, [])}
                for use in self.parsed[constant.file].uses:
                    if use.key == key or not (constant.start <= use.start and use.end <= constant.end):
                        continue
                    for number, _ in self.variants.get(use.key, []):
                        if number not in have:
                            text = self.texts[constant.file]
                            code = (text[constant.start:use.start] + self._renamed(
                                text[use.start:use.end], use.name, number) + text[use.end:constant.end])
                            self.variants.setdefault(key, []).append((number, code))
                            have.add(number)
        used = set()
        for path in self.texts:
            for use in self.parsed[path].uses:
                if use.fixed:
                    continue
                for number, _ in self.variants.get(use.key, []):
                    used.add(number)
                    self._add(path, use.start, use.end, "expression", number,
                              self._renamed(self.texts[path][use.start:use.end], use.name, number))
        for key, variants in self.variants.items():
            constant = self.constants[key]
            for number, code in variants:
                if number in used:
                    at = constant.end + self.texts[constant.file][constant.end:].index(";") + 1
                    self._add(constant.file, at, at, "constant", number,
                              self._renamed(code, constant.name, number) + ";")

    @staticmethod
    def _renamed(code, name, number):
        return re.sub(r"\b%s\b" % re.escape(name), "%s_m%d" % (name, number), code)

    def placed(self):
        """The numbers that have a switch."""
        return {number for path, wrappers in self.wrappers.items() for wrapper in wrappers.values()
                for number, _ in wrapper.variants
                if wrapper.kind != "constant" and (wrapper.start, wrapper.end, wrapper.kind, number)
                not in self.refused[path]}

    def near(self):
        """The base names of the files with a switch for each number."""
        found = collections.defaultdict(set)
        for path, wrappers in self.wrappers.items():
            for wrapper in wrappers.values():
                for number, _ in wrapper.variants:
                    found[number].add(pathlib.Path(path).stem)
        return found

    def refuse(self, path, line, column, emitted):
        """Removes the variant at that place of the emitted text. False if there is none."""
        code, spans = emitted
        begins = [0] + [m.end() for m in re.finditer("\n", code)]
        offset = begins[line - 1] + column - 1
        # The innermost span decides; of those of one wrapper the variant's own.
        hits = [s for s in spans if s[0] <= offset < s[1]]
        if not hits:
            last = begins[line] if line < len(begins) else len(code)
            hits = [s for s in spans if s[0] < last and begins[line - 1] < s[1]]
            if not hits:
                return False
            self.refused[path].update((w.start, w.end, w.kind, n) for _, _, w, number in hits
                                      for n, _ in w.variants if number in (None, n))
            return True
        _, _, wrapper, number = min(hits, key=lambda s: s[1] - s[0])
        self.refused[path].update((wrapper.start, wrapper.end, wrapper.kind, n) for n, _ in wrapper.variants
                                  if number in (None, n))
        return True

    def memory(self):
        """The refused mistakes, for the next run: by label, valid while the file is unchanged."""
        labels = {number: mutant.label for mutant, number in self.numbers.items()}
        return {path: [hashlib.sha256(text.encode("latin-1")).hexdigest(),
                       sorted([*place, labels[number]] for *place, number in self.refused[path])]
                for path, text in self.texts.items()}

    def recall(self, memory):
        numbers = {mutant.label: number for mutant, number in self.numbers.items()}
        for path, text in self.texts.items():
            digest, refused = memory.get(path, ("", []))
            if digest == hashlib.sha256(text.encode("latin-1")).hexdigest():
                self.refused[path].update((*place, numbers[label]) for *place, label in refused if label in numbers)

    def emitted(self, path):
        """The text with its switches, and spans of it: (start, end, wrapper, number or None for all)."""
        text, refused = self.texts[path], self.refused[path]
        order = {"statement": 0, "guard": 0, "constant": 1, "expression": 2}
        root = Wrapper(0, len(text), "root")
        stack = [root]
        for wrapper in sorted(self.wrappers[path].values(), key=lambda w: (w.start, -w.end, order[w.kind])):
            wrapper.inner = []
            while stack[-1] is not root and not (stack[-1].start <= wrapper.start and wrapper.end <= stack[-1].end):
                stack.pop()
            if stack[-1].end < wrapper.end or stack[-1].kind in ("constant", "guard"):
                refused.update((wrapper.start, wrapper.end, wrapper.kind, n) for n, _ in wrapper.variants)
                continue
            stack[-1].inner.append(wrapper)
            stack.append(wrapper)
        out, spans, length = [], [], 0

        def put(piece):
            nonlocal length
            out.append(piece)
            length += len(piece)

        def variant(wrapper, number, code):
            begin = length
            put(code)
            spans.append((begin, length, wrapper, number))

        def rest(wrapper):
            at = wrapper.start
            for inner in wrapper.inner:
                if inner.start < at:
                    # Overlaps with the one before: macros can do that.
                    refused.update((inner.start, inner.end, inner.kind, n) for n, _ in inner.variants)
                    continue
                put(text[at:inner.start])
                emit(inner)
                at = inner.end
            put(text[at:wrapper.end])

        def emit(wrapper):
            variants = [(n, v) for n, v in wrapper.variants
                        if (wrapper.start, wrapper.end, wrapper.kind, n) not in refused]
            if not variants:
                rest(wrapper)
                return
            begin = length
            if wrapper.kind == "expression":
                cast = "bool" if wrapper.is_boolean else ""
                put("(")
                for number, code in variants:
                    variant(wrapper, number, "mutation_on(%d)?%s(%s):" % (number, cast, flat(code)))
                put(cast + "(")
                rest(wrapper)
                put("))")
            elif wrapper.kind == "statement":
                put("{")
                for number, code in variants:
                    variant(wrapper, number, "if(mutation_on(%d)){%s}else " % (number, flat(code)))
                rest(wrapper)
                put("}")
            elif wrapper.kind == "constant":
                for number, code in variants:
                    variant(wrapper, number, flat(code))
            elif wrapper.kind == "guard":
                number, guard = variants[0]
                put("std::optional<%s> %s;if(!mutation_on(%d))%s.emplace(" % (
                    guard.type, guard.name, number, guard.name))
                put(text[guard.start:guard.end].split("(", 1)[1][:-2] + ");")
            spans.append((begin, length, wrapper, None))

        put("#include <optional>\n" if path.endswith(".cpp") else "\n")
        put(PRELUDE)
        rest(root)
        return "".join(out), spans
