# Checks that every installed header compiles alone, as the first thing a program includes.
# SPDX-License-Identifier: MIT
import os
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


def check(root):
    headers = [h for h in source.files(root, {".h"}, ("src/hearth",)) if not h.name.endswith("_p.h")]
    with ThreadPoolExecutor(WORKERS) as pool:
        results = pool.map(lambda header: compile_alone(root, header), headers)
        return [finding for findings in results for finding in findings]


if __name__ == "__main__":
    source.report(check(sys.argv[1] if len(sys.argv) > 1 else "."))
