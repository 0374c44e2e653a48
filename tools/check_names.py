# Runs clang-tidy over the library and the command as a build compiles them: names, and a few mistakes that compilers
# let pass. A finding in a header is told once, however many sources include it.
# SPDX-License-Identifier: MIT
import argparse
import json
import os
import re
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

PROJECT = Path(__file__).resolve().parent.parent
FINDING = re.compile(r"^(\S+?:\d+:\d+): (?:fatal )?(?:error|warning): (.*)$")
COUNTED = re.compile(r"^\d+ warnings?( and \d+ errors?)? generated\.$|^\d+ warnings? treated as error")


def look_at(build, file):
    done = subprocess.run(["clang-tidy", "-p", build, "--quiet", "--warnings-as-errors=*", file], capture_output=True,
                          text=True, check=False)
    return file, done


def findings(results):
    """The lines that name a place, each once; what failed without such a line, whole."""
    lines = set()
    for file, done in results:
        found = [match for line in done.stdout.splitlines() if (match := FINDING.match(line))]
        lines.update(f"{os.path.relpath(match[1], PROJECT)}: {match[2]}" for match in found)
        if done.returncode != 0 and not found:
            said = [line for line in (done.stdout + done.stderr).splitlines() if not COUNTED.match(line)]
            lines.add("\n".join([f"{os.path.relpath(file, PROJECT)}: clang-tidy failed:", *said]))
    return sorted(lines)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=Path, help="folder with compile_commands.json")
    parser.add_argument("files", nargs="*", help="only these sources")
    arguments = parser.parse_args()
    entries = json.loads((arguments.build / "compile_commands.json").read_text(encoding="utf-8"))
    files = {entry["file"] for entry in entries if Path(entry["file"]).relative_to(PROJECT).parts[0] in ("src", "cli")}
    if arguments.files:
        files &= {str(Path(file).resolve()) for file in arguments.files}
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        lines = findings(pool.map(lambda file: look_at(arguments.build, file), sorted(files)))
    print("\n".join([*lines, f"clang-tidy has seen {len(files)} sources and found {len(lines)} mistakes"]))
    sys.exit(1 if lines else 0)


if __name__ == "__main__":
    main()
