# Reads C++ sources for the house checks: which files there are, and their code apart from their comments.
# SPDX-License-Identifier: MIT
import re
import sys
from pathlib import Path

FOLDERS = ("src", "cli", "tests", "bench", "fuzz", "examples")

TOKEN = re.compile(
    r'(?P<comment>//[^\n]*|/\*.*?\*/)'
    r'|(?P<raw>R"(?P<fence>[^\s()\\]{0,16})\(.*?\)(?P=fence)")'
    r'|(?P<string>"(?:[^"\\\n]|\\.)*")'
    r"|(?P<number>\b\d[\w']*)"
    r"|(?P<char>'(?:[^'\\\n]|\\.)+')",
    re.DOTALL)


def files(root, suffixes, folders=FOLDERS):
    """All files below the folders of the project with one of the suffixes, in order of their names."""
    root = Path(root)
    found = (p for folder in folders for p in (root / folder).rglob("*") if p.suffix in suffixes)
    return sorted(found)


def blank(text):
    """Same length in lines, nothing else left."""
    return " " + "\n" * text.count("\n")


def split(text):
    """The text with its comments, strings and characters blanked, and the comments as (line, text) pairs."""
    comments = []

    def replace(match):
        if match["comment"]:
            comments.append((text.count("\n", 0, match.start()) + 1, match["comment"]))
            return blank(match["comment"])
        if match["number"]:
            return match["number"]
        return '""' + "\n" * match[0].count("\n")

    return TOKEN.sub(replace, text), comments


def report(findings):
    """Prints the findings, one a line as file:line: message; the exit status says if there were any."""
    for finding in findings:
        print(finding)
    sys.exit(1 if findings else 0)
