#!/usr/bin/env python3
"""Writes src/hearth/markup/entities_table.inc from the named character references of Python's html module.

SPDX-License-Identifier: MIT
"""

import html.entities
import pathlib

TABLE = pathlib.Path(__file__).resolve().parent.parent / "src/hearth/markup/entities_table.inc"
HEAD = """\
// Names of character references with their first code point; made by tools/make_entities.py.
// SPDX-License-Identifier: MIT
"""


def rows():
    """Names that end in ";", by lower-cased name, upper case first where only the case differs."""
    names = [(name[:-1], ord(text[0])) for name, text in html.entities.html5.items() if name.endswith(";")]
    return sorted(names, key=lambda row: (row[0].lower(), row[0]))


def main():
    lines = [f'{{"{name}", 0x{code:X}}},\n' for name, code in rows()]
    TABLE.write_text(HEAD + "".join(lines), encoding="ascii", newline="\n")


if __name__ == "__main__":
    main()
