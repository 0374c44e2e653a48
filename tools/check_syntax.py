# Shows the sources of a configured build to clang++, warnings as errors, without compiling them.
# SPDX-License-Identifier: MIT
import argparse
import json
import os
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path


def syntax_command(entry):
    """The command of the build with another compiler, and nothing made."""
    words = shlex.split(entry["command"])
    first = next(i for i, word in enumerate(words) if word.startswith("-"))
    kept = words[first:]
    output = kept.index("-o")
    del kept[output:output + 2]
    return ["clang++", "-fsyntax-only", "-Werror", *(word for word in kept if word != "-c")]


def look_at(entry):
    done = subprocess.run(syntax_command(entry), cwd=entry["directory"], capture_output=True, text=True, check=False)
    crashed = done.returncode != 0 and "error:" not in done.stderr
    return done.returncode, done.stderr + (f"{entry['file']}: clang++ itself failed\n" if crashed else "")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=Path, help="folder with compile_commands.json")
    parser.add_argument("files", nargs="*", help="only these sources")
    arguments = parser.parse_args()
    entries = json.loads((arguments.build / "compile_commands.json").read_text(encoding="utf-8"))
    if arguments.files:
        wanted = {str(Path(file).resolve()) for file in arguments.files}
        entries = [entry for entry in entries if entry["file"] in wanted]
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        results = list(pool.map(look_at, entries))
    for _, text in results:
        sys.stderr.write(text)
    print(f"clang++ has seen {len(entries)} sources")
    sys.exit(1 if any(status for status, _ in results) else 0)


if __name__ == "__main__":
    main()
