# Checks that every include stays on its own floor or goes down.
# SPDX-License-Identifier: MIT
import re
import sys
from pathlib import Path

import source

# What stands directly below each floor; the script library is the roof and stands on everything.
BELOW = {
    "runtime": (),
    "foundation": ("runtime",),
    "markup": ("foundation",),
    "xml": ("markup",),
    "styling": ("markup",),
    "canvas": ("styling",),
    "gif": ("canvas",),
    "platform": ("foundation",),
    "templates": ("xml",),
    "script": ("xml",),
    "script/library": ("script", "gif", "templates", "platform"),
}
# Headers above the floors, which every floor may include.
COMMON = {"export.h", "version.h"}
INCLUDE = re.compile(r'^\s*#\s*include\s*(?:<hearth/([^>]+)>|"([^"]+)")')


def reachable(floor):
    found = {floor}
    for lower in BELOW[floor]:
        found |= reachable(lower)
    return found


def floor_of(path):
    """The floor of a path below src/hearth; None for a file that stands on none."""
    if path.parts[:2] == ("script", "library"):
        return "script/library"
    return path.parts[0] if len(path.parts) > 1 else None


def resolve(path, angled, quoted):
    """The included file as a path below src/hearth; None for a file of somebody else."""
    if angled:
        return Path(angled)
    if quoted.startswith("hearth/"):
        return Path(quoted).relative_to("hearth")
    parts = []
    for part in (path.parent / quoted).parts:
        parts = parts[:-1] if part == ".." else parts + [part]
    return Path(*parts) if parts else None


def check_file(house, file):
    path = file.relative_to(house)
    floor = floor_of(path)
    if floor is None:
        return []
    if floor not in BELOW:
        return [f"{file}:1: the folder {floor} is none of the floors"]
    allowed = reachable(floor)
    findings = []
    for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        target = match and resolve(path, match[1], match[2])
        if target is None or str(target) in COMMON:
            continue
        other = floor_of(target)
        if other not in allowed:
            findings.append(f"{file}:{number}: {floor} includes {target}, which is not on its floor or below")
    return findings


def check(root):
    house = Path(root) / "src" / "hearth"
    suffixes = {".h", ".cpp", ".inc"}
    return [f for file in source.files(root, suffixes, ("src/hearth",)) for f in check_file(house, file)]


if __name__ == "__main__":
    source.report(check(sys.argv[1] if len(sys.argv) > 1 else "."))
