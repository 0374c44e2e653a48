# Checks that no file and no function outgrows the house; --list shows the largest of both.
# SPDX-License-Identifier: MIT
import re
import sys
from bisect import bisect_right
from pathlib import Path

import source

FILE_LIMIT = 650
FUNCTION_LIMIT = 80
# Directly above a function: a flat switch or state table may be longer, and says why.
EXCEPTION = re.compile(r"^\s*//+ A flat table: ")

PARENTHESES = re.compile(r"\([^()]*\)")
ANGLES = re.compile(r"<[^<>]*>")
BEFORE_FUNCTION = re.compile(r"\s*(?:(?:public|protected|private)\s*:\s*)?")
TYPE = re.compile(r"\b(namespace|class|struct|union|enum|extern)\b")
MEMBER_INITIALIZER = re.compile(r"\)[^:]*(?<!:):(?!:).*[\w>]\s*$", re.DOTALL)


def without_directives(code):
    return re.sub(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", lambda m: "\n" * m[0].count("\n"), code, flags=re.MULTILINE)


def collapse(head):
    """The head of a block with the contents of its parentheses and template brackets taken out."""
    head = re.sub(r"\boperator\s*(\(\)|[^\s\w(]+)", "operator", head)
    head = re.sub(r"->\*?", " ", head)
    before = None
    while before != head:
        before, head = head, PARENTHESES.sub("\x01", head)
    head = head.replace("\x01", "()")
    before = None
    while before != head:
        before, head = head, ANGLES.sub(" ", head)
    return head


def kind(head):
    """What the brace behind this text opens, outside of functions."""
    plain = collapse(head)
    if MEMBER_INITIALIZER.search(plain):
        return "initializer"
    if "=" in plain:
        return "other"
    if "()" in plain:
        return "function"
    return "scope" if TYPE.search(plain) else "other"


def matching(code, start):
    depth = 0
    for match in re.compile(r"[{}]").finditer(code, start):
        depth += 1 if match[0] == "{" else -1
        if depth == 0:
            return match.start()
    return len(code) - 1


def functions(text):
    """Every function with a body as (first line, lines, head)."""
    code = without_directives(source.split(text)[0])
    starts = [0] + [m.end() for m in re.finditer("\n", code)]
    found = []
    head = at = 0
    while at < len(code):
        mark = code[at]
        if mark in ";}":
            head = at + 1
        elif mark == "{":
            what = kind(code[head:at])
            if what == "scope":
                head = at + 1
            else:
                end = matching(code, at)
                if what == "function":
                    first = head + BEFORE_FUNCTION.match(code[head:at]).end()
                    line = bisect_right(starts, first)
                    found.append((line, bisect_right(starts, end) - line + 1, " ".join(code[first:at].split())))
                at = end
                head = head if what == "initializer" else at + 1
        at += 1
    return found


def excepted(lines, first):
    above = first - 2
    while above >= 0 and lines[above].lstrip().startswith("//"):
        if EXCEPTION.match(lines[above]):
            return True
        above -= 1
    return False


def measure(root):
    """Files as (lines, file), functions as (lines, file, first line, head, excepted)."""
    sizes, bodies = [], []
    for file in source.files(root, {".h", ".cpp"}):
        text = file.read_text(encoding="utf-8")
        lines = text.splitlines()
        sizes.append((len(lines), file))
        bodies += [(size, file, first, head, excepted(lines, first)) for first, size, head in functions(text)]
    return sizes, bodies


def check(root):
    sizes, bodies = measure(root)
    findings = [f"{file}:{size}: file of {size} lines, the limit is {FILE_LIMIT}: split it by concept"
                for size, file in sizes if size > FILE_LIMIT]
    findings += [f"{file}:{first}: function of {size} lines, the limit is {FUNCTION_LIMIT}: {head[:60]}"
                 for size, file, first, head, allowed in bodies if size > FUNCTION_LIMIT and not allowed]
    return findings


def show_largest(root, count=15):
    sizes, bodies = measure(root)
    for size, file in sorted(sizes, reverse=True)[:count]:
        print(f"{size:5} {file}")
    for size, file, first, head, _ in sorted(bodies, reverse=True)[:count]:
        print(f"{size:5} {file}:{first}: {head[:70]}")


if __name__ == "__main__":
    arguments = [a for a in sys.argv[1:] if a != "--list"]
    where = Path(arguments[0] if arguments else ".")
    if "--list" in sys.argv:
        show_largest(where)
    source.report(check(where))
