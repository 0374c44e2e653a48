# Checks that every installed header compiles alone, as the first thing a program includes, and that hearth.h leads to
# each of them.
# SPDX-License-Identifier: MIT
import os
import re
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import source

FLAGS = ("-std=c++20", "-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Werror")
WORKERS = 2


def compile_alone(root, header):
    name = header.relative_to(Path(root) / "src")
    command = [os.environ.get("CXX", "g++"), *FLAGS, f"-I{Path(root) / 'src'}", "-x", "c++", "-"]
    done = subprocess.run(command, input=f"#include <{name}>\n", capture_output=True, text=True, check=False)
    if done.returncode == 0:
        return []
    errors = [line for line in done.stderr.splitlines() if "error" in line]
    return [f"{header}:1: does not compile alone: {errors[0] if errors else done.stderr.strip()}"]


def reached_from(header, folder, seen):
    """The headers of the library that a header includes, itself included, also by way of others."""
    if header in seen or not header.is_file():
        return seen
    seen.add(header)
    for name in re.findall(r"^#include <(hearth/.*)>", header.read_text(encoding="utf-8"), re.MULTILINE):
        reached_from(folder / name, folder, seen)
    return seen


def check_reached(root, headers):
    folder = Path(root) / "src"
    whole = folder / "hearth" / "hearth.h"
    reached = reached_from(whole, folder, set()) if whole.is_file() else headers
    return [f"{header}:1: hearth.h does not lead to this header" for header in headers if header not in reached]


def check(root):
    headers = [h for h in source.files(root, {".h"}, ("src/hearth",)) if not h.name.endswith("_p.h")]
    unreached = check_reached(root, headers)
    with ThreadPoolExecutor(WORKERS) as pool:
        results = pool.map(lambda header: compile_alone(root, header), headers)
        return unreached + [finding for findings in results for finding in findings]


if __name__ == "__main__":
    source.report(check(sys.argv[1] if len(sys.argv) > 1 else "."))
