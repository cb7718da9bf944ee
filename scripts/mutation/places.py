# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""Finds the places for mistakes in the product's sources. Texts are read as latin-1, so that offsets match the
compiler's; labels are decoded."""
import bisect
import collections
import re

Token = collections.namedtuple("Token", "kind text start end")
Mutant = collections.namedtuple("Mutant", "file start end old new line label kind")

TOKEN = re.compile(r"""
    (?P<space>\s+|//[^\n]*|/\*.*?\*/)
  | (?P<string>(?:u8|[uUL])?"(?:\\.|[^"\\\n])*")
  | (?P<char>'(?:\\.[^']*|[^'\\\n])')
  | (?P<number>(?:0[xX][0-9a-fA-F']+|\d[\d']*\.\d*(?:[eE][-+]?\d+)?|\d[\d']*)[uUlLfF]*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<mark><=|>=|==|!=|&&|\|\||->|::|\+\+|--|\+=|-=|\*=|/=|<<|>>|.)
""", re.VERBOSE | re.DOTALL)

NO_STATEMENT = {"return", "if", "for", "while", "do", "switch", "case", "default", "using", "const", "constexpr",
                "static", "namespace", "struct", "class", "enum", "public", "private", "protected", "template",
                "else", "auto", "typedef", "extern"}
# What these hold shows for nothing but by its effect on the scope it stands in.
GUARDS = re.compile(r"(const\s+)?(QMutexLocker|QSignalBlocker|std::lock_guard<[^>]*>|std::unique_lock<[^>]*>)\s+\w+\(")
# Texts for the log are for people to read: a test that holds each word would be no help.
LOG = {"qDebug", "qInfo", "qWarning", "qCritical", "qFatal", "qCDebug", "qCWarning"}
NO_EFFECT = {"Q_UNUSED", "Q_OBJECT", "Q_DISABLE_COPY", "Q_DISABLE_COPY_MOVE", "Q_DECLARE_TR_FUNCTIONS"}


def without_inactive(text):
    """Blanks directives and code for other platforms; offsets stay."""
    out, active, goes_on = [], [True], False
    for line in text.splitlines(keepends=True):
        word = None if goes_on else re.match(r"\s*#\s*(\w+)\s*(.*)", line)
        if word:
            name, rest = word.groups()
            if name == "ifdef":
                active.append(active[-1] and "Q_OS_WIN" not in rest)
            elif name == "ifndef":
                active.append(active[-1] and "Q_OS_WIN" in rest)
            elif name == "if":
                active.append(active[-1])
            elif name == "else":
                before = active.pop()
                active.append(active[-1] and not before)
            elif name == "endif":
                active.pop()
        keep = active[-1] and not word and not goes_on
        goes_on = bool(word or goes_on) and line.rstrip("\n").endswith("\\")
        out.append(line if keep else re.sub(r"[^\n]", " ", line))
    return "".join(out)


def tokens_of(text):
    return [Token(m.lastgroup, m.group(), m.start(), m.end())
            for m in TOKEN.finditer(text) if m.lastgroup != "space"]


def closing(tokens, start):
    """The index of the bracket that closes the one at `start`."""
    depth = 0
    for i in range(start, len(tokens)):
        if tokens[i].text in "([{":
            depth += 1
        elif tokens[i].text in ")]}":
            depth -= 1
            if depth == 0:
                return i
    raise ValueError("unbalanced brackets")


def opens_block(tokens, i):
    return i > 0 and (tokens[i - 1].text in {")", "else", "do", ";", "}", "const", "override", "noexcept", "try"})


def statement_end(tokens, i):
    """The index of the ";" that ends the statement at `i`; None if the statement cannot be left out."""
    depth = 0
    for j in range(i, len(tokens)):
        text = tokens[j].text
        if text in "([{":
            if text == "{" and depth == 0 and opens_block(tokens, j):
                return None
            depth += 1
        elif text in ")]}":
            depth -= 1
            if depth < 0:
                return None
        elif text == ";" and depth == 0:
            return j
    return None


def in_function(tokens):
    """For each token whether it stands in a function's body."""
    result, stack, since = [], [], 0
    for i, token in enumerate(tokens):
        result.append(bool(stack) and stack[-1])
        if token.text == "{":
            head = {t.text for t in tokens[since:i]}
            inside = bool(stack) and stack[-1]
            stack.append(inside or (opens_block(tokens, i) and
                                    not head & {"namespace", "struct", "class", "enum"}))
            since = i + 1
        elif token.text == "}":
            if stack:
                stack.pop()
            since = i + 1
        elif token.text == ";":
            since = i + 1
    return result


def number_plus(text, delta):
    digits = re.match(r"0[xX][0-9a-fA-F']+|\d[\d']*", text).group()
    suffix = text[len(digits):]
    plain = digits.replace("'", "")
    if plain[:2].lower() == "0x":
        return "0x%X%s" % (int(plain, 16) + delta, suffix) if int(plain, 16) + delta >= 0 else None
    if len(plain) > 1 and plain[0] == "0":
        return "0%o%s" % (int(plain, 8) + delta, suffix)
    value = int(plain) + delta
    return "%d%s" % (value, suffix) if value >= 0 else "(-1)"


def char_plus(text):
    if text == r"'\0'":
        return r"'\1'"
    match = re.match(r"'\\x([0-9a-fA-F]{2})'$", text)
    return "'\\x%02X'" % ((int(match.group(1), 16) + 1) % 256) if match else None


def function_at(text, offset):
    """The name of the function around the offset: definitions begin in the first column."""
    names = re.findall(r"^[A-Za-z][^\n;]*?([\w~]+)\([^\n]*$", text[:offset], re.MULTILINE)
    return names[-1] if names else ""


def mutants_of(name, text):
    """The possible mistakes in the file, in order."""
    lines = [0] + [m.end() for m in re.finditer("\n", text)]
    tokens = tokens_of(without_inactive(text))
    inside = in_function(tokens)
    found, seen = [], collections.Counter()
    stripped = [line.strip() for line in text.splitlines()]

    def add(kind, start, end, new):
        line = bisect.bisect_right(lines, start)
        line_start, old = lines[line - 1], text[start:end]
        line_end = text.find("\n", max(start, end - 1))
        context = text[line_start:start] + "{{" + old + " => " + new + "}}" + text[end:line_end]
        # A line that says it all, or one of its function. So a label outlives changes elsewhere in the file.
        where = ""
        if stripped.count(text[line_start:text.find("\n", line_start)].strip()) > 1:
            where = function_at(text, start) + ": "
        label = name + ": " + where + " ".join(context.split())
        seen[label] += 1
        if seen[label] > 1:
            label += " (%d)" % seen[label]
        label = label.encode("latin-1").decode("utf-8", "replace")
        found.append(Mutant(name, start, end, old, new, line, label, kind))

    def spaced(token):
        return text[token.start - 1].isspace() and text[token.end].isspace()

    turned = {"==": ["!="], "!=": ["=="], "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"],
              "&&": ["||"], "||": ["&&"]}
    since = 0
    for i, token in enumerate(tokens):
        before = tokens[i - 1].text if i else ""
        if before in (";", "{", "}"):
            since = i
        if token.text in turned and spaced(token):
            for new in turned[token.text]:
                add("operator", token.start, token.end, new)
        elif token.text == "!":
            add("negation", token.start, token.end, "")
        elif token.text in ("true", "false"):
            add("literal", token.start, token.end, "false" if token.text == "true" else "true")
        elif token.text == "?":
            add("operator", token.start, token.end, "|| true ?")
            add("operator", token.start, token.end, "&& false ?")
        elif token.kind == "number" and "." not in token.text:
            for delta in (1, -1):
                new = number_plus(token.text, delta)
                if new:
                    add("literal", token.start, token.end, new)
        elif token.kind == "char" and char_plus(token.text):
            add("literal", token.start, token.end, char_plus(token.text))
        elif token.kind == "string":
            # Of texts in several pieces the first.
            if before != "extern" and (not i or tokens[i - 1].kind != "string") and \
                    not any(t.text in LOG for t in tokens[since:i]):
                add("literal", token.start, token.end, token.text[:-1] + '~"')
        elif token.text in ("if", "while") and tokens[i + 1].text == "(":
            end = closing(tokens, i + 1)
            condition = tokens[i + 2:end]
            # The others have an operator that is turned.
            if not any(t.text in turned and spaced(t) or t.text in ("!", ";", "=") for t in condition):
                start, stop = tokens[i + 2].start, tokens[end].start
                add("condition", start, stop, "!(" + text[start:stop] + ")")

        # Statements.
        starts = before in (";", "{", "}", "else") or (
            before == ")" and inside[i] and any(
                t.text in ("if", "for", "while") and tokens[j + 1].text == "(" and closing(tokens, j + 1) == i - 1
                for j, t in enumerate(tokens[:i])))
        if not inside[i] or not starts or token.text in NO_EFFECT:
            continue
        if [t.text for t in tokens[i:i + 3]] == ["return", "fail", "("]:
            end = statement_end(tokens, i)
            add("statement", token.start, tokens[end].end, "return false;")
        elif token.text not in NO_STATEMENT or GUARDS.match(text, token.start) or (
                token.text == "return" and tokens[i + 1].text == ";"):
            end = statement_end(tokens, i)
            if end is not None and end > i and token.text not in "{};":
                add("statement", token.start, tokens[end].end, ";")
    return found
