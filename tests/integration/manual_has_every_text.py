#!/usr/bin/env python3
# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""Compares the operator's manual with the product's texts. Spans in `back quotes` on a page quote the
screen exactly, with an ellipsis for each value that the product fills in:

- each text of the product is on the page of its language, and no other text is quoted;
- both pages have the same sections, rows, points and pictures, and these name the same texts;
- each picture and each link has an existing target.

    manual_has_every_text.py REPOSITORY
"""
import functools
import pathlib
import re
import sys
import xml.etree.ElementTree

ENGLISH, CHINESE = "docs/manual.md", "docs/manual.zh.md"
PRODUCT = "src/plugins/projectfilecfg/translations/projectfilecfg_%s.ts"
HOST = "devhost/app/translations/devhost_zh_CN.ts"

# A span opens and closes with the same number of back quotes; one blank at each end is only a separator.
SPAN = re.compile(r"(?<!`)(`+)(?!`)(.+?)(?<!`)\1(?!`)")
VALUE = re.compile(r"%\d")
LINK = re.compile(r"(!?)\[[^\]]*\]\(([^)\s]+)\)")
BLOCK = re.compile(r"(#+) |(\|)(?![-|: ]+$)|\s*(-|\d+\.) |(!)\[")


def texts_of(path):
    """Each source text with its translation, as spelled in the manual."""
    def written(message, kind):
        return VALUE.sub("…", message.findtext(kind))

    messages = xml.etree.ElementTree.parse(path).iter("message")
    return [(written(message, "source"), written(message, "translation")) for message in messages]


@functools.lru_cache(maxsize=None)
def spans_of(text):
    spans = (match.group(2) for match in SPAN.finditer(text))
    return [s[1:-1] if s[0] == s[-1] == " " and s.strip() else s for s in spans]


def without_fences(page):
    return re.sub(r"^```.*?^```$", "", page, flags=re.M | re.S)


@functools.lru_cache(maxsize=None)
def blocks_of(page):
    """Headings, table rows, list items and pictures, each with the text up to the next one."""
    blocks = []
    for line in without_fences(page).splitlines():
        begin = BLOCK.match(line)
        if begin:
            kind = next(group for group in begin.groups() if group)
            blocks.append(["1." if kind[0].isdigit() else kind, line])
        elif blocks:
            blocks[-1][1] += "\n" + line
    return blocks


def anchors_of(page):
    headings = re.findall(r"^#+ (.+)$", without_fences(page), flags=re.M)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def wrong_texts(name, page, texts, others):
    marked = set(spans_of(without_fences(page)))
    return (["%s lacks `%s`" % (name, text) for text in sorted(texts - marked)] +
            ["%s marks `%s`, which is no text of the product" % (name, text)
             for text in sorted(marked - texts - others)])


def differences(english, chinese, translations):
    one, other = blocks_of(english), blocks_of(chinese)
    found = []
    for (kind, block), (other_kind, other_block) in zip(one, other):
        where = "%s\n  %s" % (block.splitlines()[0][:100], other_block.splitlines()[0][:100])
        if kind != other_kind:
            return found + ["the pages part here:\n  " + where]
        spans, other_spans = set(spans_of(block)), set(spans_of(other_block))
        counterparts = set().union(*(translations.get(span, set()) for span in spans))
        if other_spans - counterparts or any(not translations.get(span, set()) & other_spans for span in spans):
            found.append("other texts here than there:\n  " + where)
    if len(one) != len(other):
        found.append("%s has %d blocks, %s %d" % (ENGLISH, len(one), CHINESE, len(other)))
    return found


def is_png(path):
    with path.open("rb") as file:
        return file.read(4) == b"\x89PNG"


@functools.lru_cache(maxsize=None)
def dead_links(name, page, root):
    found = []
    for is_picture, target in LINK.findall(without_fences(page)):
        path, _, anchor = target.partition("#")
        file = (root / name).parent / path if path else root / name
        if not file.is_file() or (is_picture and not is_png(file)):
            found.append("%s leads to %s, which is not there" % (name, target))
        elif anchor and anchor not in anchors_of(page if not path else file.read_text(encoding="utf-8")):
            found.append("%s leads to %s, which has no such heading" % (name, target))
    return found


def what_is_wrong(pages, root, languages, host):
    translations = {}
    for source, translation in languages[CHINESE] + host:
        translations.setdefault(source, set()).add(translation)
    found = []
    for name, page in pages.items():
        others = {translation if name == CHINESE else source for source, translation in host}
        found += wrong_texts(name, page, {translation for _, translation in languages[name]}, others)
        found += dead_links(name, page, root)
    return found + differences(pages[ENGLISH], pages[CHINESE], translations)


def damaged(pages):
    """The pages with one defect each: in a block, a text in a block, or a link."""
    for name, page in pages.items():
        blocks = [block for _, block in blocks_of(page)]
        for at, block in enumerate(blocks):
            yield "without " + block, {**pages, name: "\n".join(blocks[:at] + blocks[at + 1:])}
            for span in {match.group() for match in SPAN.finditer(block)}:
                for other in ("", span[:-1] + "x`"):
                    changed = blocks[:at] + [block.replace(span, other)] + blocks[at + 1:]
                    what = "%s instead of %s in %s" % (other or "nothing", span, block)
                    yield what, {**pages, name: "\n".join(changed)}
        for _, target in LINK.findall(page):
            yield "another link than " + target, {**pages, name: page.replace("(%s)" % target, "(%s.gone)" % target)}


def main():
    root = pathlib.Path(sys.argv[1])
    languages = {ENGLISH: texts_of(root / (PRODUCT % "en")), CHINESE: texts_of(root / (PRODUCT % "zh_CN"))}
    host = texts_of(root / HOST)
    pages = {name: (root / name).read_text(encoding="utf-8") for name in languages}
    found = what_is_wrong(pages, root, languages, host)
    readme = (root / "README.md").read_text(encoding="utf-8")
    found += ["README.md does not lead to " + name for name in pages if "(%s)" % name not in readme]
    if found:
        raise SystemExit("\n".join(found))

    # A check that finds nothing would pass as well.
    tried = 0
    for what, wrong in damaged(pages):
        tried += 1
        if not what_is_wrong(wrong, root, languages, host):
            raise SystemExit("overlooked: " + what)
    print("%d texts, %d blocks, %d mistakes noticed"
          % (sum(map(len, languages.values())), sum(len(blocks_of(page)) for page in pages.values()), tried))
    if tried < 200:
        raise SystemExit("too few mistakes tried")


main()
