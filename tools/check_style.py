# Checks what every source shows: its head, its guard, no macros, no opened namespaces in headers, no unfinished notes.
# SPDX-License-Identifier: MIT
import re
import sys

import source

SENTENCE = re.compile(r"^// \S.*")
LICENSE = "// SPDX-License-Identifier: MIT"
HEAD_LINES = 8
MACRO = re.compile(r"^[ \t]*#[ \t]*define[ \t]+(\w+)", re.MULTILINE)
# The export macro, switches of the build, and what platform headers ask for.
ALLOWED_MACRO = re.compile(r"HT_API|HEARTH_[A-Z0-9_]+|NOMINMAX|WIN32_LEAN_AND_MEAN|_[A-Z][A-Z0-9_]*")
USING = re.compile(r"\busing\s+namespace\b")
# Joined here, so that this file does not hold the words it looks for.
UNFINISHED = re.compile(r"\b(" + "|".join(("TO" + "DO", "X" + "XX", "st" + "ub(?:bed|s)?")) + r")\b", re.IGNORECASE)


def line_of(text, position):
    return text.count("\n", 0, position) + 1


def check_head(lines):
    if not lines or not SENTENCE.match(lines[0]):
        yield 1, "the first line is not a comment that says what the file holds"
        return
    head = lines[:HEAD_LINES]
    if LICENSE not in head or not all(line.startswith("//") for line in head[:head.index(LICENSE)]):
        yield 1, f"the head comment lacks the line '{LICENSE}'"


def check_text(name, text):
    yield from check_head(text.splitlines())
    code, comments = source.split(text)
    if name.endswith(".h"):
        if not re.search(r"^#pragma once$", code, re.MULTILINE):
            yield 1, "a header without '#pragma once'"
        for match in USING.finditer(code):
            yield line_of(code, match.start()), "a header opens a namespace for everybody who includes it"
    for match in MACRO.finditer(code):
        if not ALLOWED_MACRO.fullmatch(match[1]):
            yield line_of(code, match.start()), f"the macro {match[1]}: use a constant, a function or a template"
    for line, comment in comments:
        word = UNFINISHED.search(comment)
        if word:
            yield line + comment.count("\n", 0, word.start()), f"the word '{word[0]}' in a comment: finish it or say FIXME and why"


def check(root):
    findings = []
    for file in source.files(root, {".h", ".cpp", ".inc"}):
        for line, message in check_text(file.name, file.read_text(encoding="utf-8")):
            findings.append(f"{file}:{line}: {message}")
    return findings


if __name__ == "__main__":
    source.report(check(sys.argv[1] if len(sys.argv) > 1 else "."))
