# Runs the measuring programs, engine by engine and round by round, and prints one table a group.
# SPDX-License-Identifier: MIT
import argparse
import json
import os
import statistics
import subprocess
import sys
from dataclasses import dataclass, field
from pathlib import Path

CORPORA = {
    "html-py": "/usr/share/doc/python3.11/html/library",
    "html-pg": "/usr/share/doc/postgresql-doc-15/html",
}
HTML_ENGINES = ("hearth", "libxml2", "gumbo")
OURS = "hearth"

# Done at the first figure, going to the second; the factor by which we are better than that peer. For memory it is
# our share of what the peer takes, and less is better.
GOALS = {
    "text to tree, warm": {"libxml2": (6, 9), "gumbo": (15, 22)},
    "text to tree, cold": {"libxml2": (6, 9), "gumbo": (15, 22)},
    "heap a byte of source": {"libxml2": (0.7, 0.6)},
    "tree destroyed": {"libxml2": (2, 4)},
    "small fragment": {"libxml2": (6, 8)},
    "tree to text": {"libxml2": (4, 6)},
    "UTF-8 to UTF-16, ASCII": {"icu": (6, 10)},
    "UTF-16 to UTF-8, ASCII": {"icu": (6, 10)},
    "UTF-8 to UTF-16, mixed": {"icu": (1, 1)},
    "UTF-16 to UTF-8, mixed": {"icu": (1, 1)},
    "name found": {"std": (1.3, 1.3), "abseil": (1, 1)},
    "name missed": {"std": (1.4, 1.4), "abseil": (1, 1)},
    "name inserted": {"std": (2.5, 2.5), "abseil": (1.4, 1.4)},
    "pieces appended": {"std": (1, 1)},
    "pieces assembled": {"std": (1, 1)},
}
# Ratios nearer to 1 than this are noise on a shared machine, so a goal of par is reached within it.
NOISE = 1.15

# Peers that give memory back after each document would measure the kernel; all programs run with the same setting.
ENVIRONMENT = dict(os.environ, GLIBC_TUNABLES="glibc.malloc.mmap_threshold=33554432:glibc.malloc.trim_threshold=1099511627776")


@dataclass
class Row:
    name: str
    unit: str
    rounds: dict = field(default_factory=dict)  # engine: one figure a round
    twice: float = 0  # what twice the input costs us, 0 where it was not measured
    less_is_better: bool = False
    is_share: bool = False  # the ratio is our share of the peer's figure

    def add(self, engine, value):
        self.rounds.setdefault(engine, []).append(value)

    def figure(self, engine):
        """The best round: on a shared machine disturbances make a time longer, and nothing makes it shorter."""
        best = min if self.less_is_better else max
        return best(self.rounds[engine])

    def ratio(self, peer):
        ours, theirs = self.figure(OURS), self.figure(peer)
        if self.is_share:
            return ours / theirs
        return theirs / ours if self.less_is_better else ours / theirs

    def spread(self):
        values = self.rounds[OURS]
        return (max(values) - min(values)) / self.figure(OURS)

    def goal(self, peer):
        """The goal and whether it is reached: "+" at the first figure, "++" at the second."""
        if peer not in GOALS.get(self.name, {}):
            return ""
        first, second = GOALS[self.name][peer]
        ratio = self.ratio(peer)
        if self.is_share:
            mark = "++" if ratio <= second else "+" if ratio <= first else "no"
            return f"<= {first:g} {mark}"
        slack = NOISE if first == 1 else 1
        mark = "++" if ratio * slack >= second and second > first else "+" if ratio * slack >= first else "no"
        return f">= {first:g} {mark}"


class Runner:
    def __init__(self, build, rounds):
        self.build = build
        self.rounds = rounds

    def has(self, program):
        return (self.build / program).exists()

    def start(self, program, *arguments):
        """What a program printed, None if it failed."""
        done = subprocess.run([self.build / program, *arguments], env=ENVIRONMENT, capture_output=True, text=True)
        if done.returncode != 0:
            print(f"run.py: {program} {' '.join(arguments)}: {done.stderr.strip()}", file=sys.stderr)
            return None
        return done.stdout

    def read(self, program, *arguments):
        printed = self.start(program, *arguments)
        return {} if printed is None else {key: float(value) for key, value in pairs(printed)}


def pairs(printed):
    return (line.split("=", 1) for line in printed.splitlines() if "=" in line)


def show(title, rows, note=""):
    """Our figure, then each peer's with the ratio and the goal, the spread of ours, the cost of twice the input."""
    rows = [row for row in rows if OURS in row.rounds]
    if not rows:
        return
    peers = list(dict.fromkeys(engine for row in rows for engine in row.rounds if engine != OURS))
    lines = [["row", "unit", OURS]]
    for peer in peers:
        lines[0] += [peer, "ratio", "goal"]
    lines[0] += ["spread", "twice"]
    for row in rows:
        line = [row.name, row.unit, f"{row.figure(OURS):.4g}"]
        for peer in peers:
            known = peer in row.rounds
            line += [f"{row.figure(peer):.4g}", f"{row.ratio(peer):.2f}", row.goal(peer)] if known else [""] * 3
        lines.append(line + [f"{row.spread():.0%}", f"{row.twice:.2f}" if row.twice else ""])
    print(f"\n== {title}")
    widths = [max(len(line[i]) for line in lines) for i in range(len(lines[0]))]
    for line in lines:
        cells = [cell.ljust(width) if i < 2 else cell.rjust(width) for i, (cell, width) in enumerate(zip(line, widths))]
        print("  ".join(cells).rstrip())
    if note:
        print(note)
    sys.stdout.flush()


# --- groups -----------------------------------------------------------------------------------------------------


def measure_html(runner, corpus):
    folder = CORPORA[corpus]
    engines = [engine for engine in HTML_ENGINES if runner.has(f"bench_html_{engine}")]
    warm = Row("text to tree, warm", "MB/s")
    cold = Row("text to tree, cold", "MB/s")
    heap = Row("heap a byte of source", "bytes", less_is_better=True, is_share=True)
    destroyed = Row("tree destroyed", "MB/s")
    destroyed_cold = Row("tree destroyed, cold", "MB/s")
    printed = Row("tree to text", "MB/s")
    utf8 = Row("tree to UTF-8", "MB/s")
    fragment = Row("small fragment", "us", less_is_better=True)
    counts = {}
    growth = []
    for _ in range(runner.rounds):
        for engine in engines:
            def rate(row, found, key):
                if key in found:
                    row.add(engine, found["bytes"] / found[key] / 1e6)
            program = f"bench_html_{engine}"
            found = runner.read(program, folder, "warm")
            rate(warm, found, "seconds")
            rate(destroyed, found, "destroy")
            found = runner.read(program, folder, "cold")
            rate(cold, found, "seconds")
            rate(destroyed_cold, found, "destroy")
            if found:
                heap.add(engine, found["heap"] / found["bytes"])
                counts[engine] = f"{engine} {found['nodes']:,.0f} nodes, {found['units']:,.0f} units of text"
            found = runner.read(program, folder, "print")
            if found.get("printed"):
                rate(printed, found, "seconds")
                rate(utf8, found, "utf8")
            found = runner.read(program, folder, "fragment")
            if found:
                fragment.add(engine, found["seconds"] * 1e6)
            if engine == OURS:
                found = runner.read(program, folder, "growth")
                growth += [found["seconds2"] / found["seconds"]] if found else []
    warm.twice = statistics.median(growth) if growth else 0
    rows = [warm, cold, heap, destroyed, destroyed_cold, fragment, printed, utf8]
    show(f"HTML, {corpus}", rows, "\n".join(counts.values()))


def measure_micro(runner, program, title, unit, convert, less_is_better=False):
    """Rows named row/engine/size in Google Benchmark's JSON; the smaller size is the figure, both tell the growth."""
    rows, sizes = {}, {}
    for _ in range(runner.rounds):
        printed = runner.start(program, "--benchmark_format=json", "--benchmark_min_time=0.1")
        for result in json.loads(printed or "{}").get("benchmarks", []):
            name, engine, size = result["name"].split("/")
            sizes.setdefault((name, engine), {}).setdefault(int(size), []).append(result)
    for (name, engine), results in sizes.items():
        row = rows.setdefault(name, Row(name, unit, less_is_better=less_is_better))
        small, large = (results[size] for size in sorted(results))
        row.rounds[engine] = [convert(result["items_per_second"]) for result in small]
        if engine == OURS:
            row.twice = shortest(large) / shortest(small)
    show(title, list(rows.values()))


def shortest(results):
    return min(result["cpu_time"] for result in results)


def measure_growth(runner):
    """Each hostile input against itself at twice its size."""
    rows, factors = {}, {}
    for _ in range(min(runner.rounds, 3)):
        for key, value in pairs(runner.start("bench_html_growth") or ""):
            if key == "row":
                row = rows.setdefault(value, Row(value, "ms", less_is_better=True))
                growth = factors.setdefault(value, [])
            elif key == "seconds":
                row.add(OURS, float(value) * 1000)
            elif key == "seconds2":
                growth.append(float(value) * 1000 / row.rounds[OURS][-1])
                row.twice = statistics.median(growth)
    show("hostile HTML", list(rows.values()))


GROUPS = {
    "html-py": lambda runner: measure_html(runner, "html-py"),
    "html-pg": lambda runner: measure_html(runner, "html-pg"),
    "text": lambda runner: measure_micro(runner, "text_micro", "UTF-8 and UTF-16", "GB/s", lambda n: n / 1e9),
    "dictionary": lambda runner: measure_micro(runner, "dictionary_micro", "dictionary of tag and attribute names", "ns",
                                               lambda n: 1e9 / n, less_is_better=True),
    "fast_string": lambda runner: measure_micro(runner, "fast_string_micro", "text put together", "Munits/s",
                                                lambda n: n / 1e6),
    "hostile": measure_growth,
}


def main():
    parser = argparse.ArgumentParser(description="Measures against other libraries; prints one table a group.")
    parser.add_argument("filter", nargs="?", default="", help="part of a group's name: " + ", ".join(GROUPS))
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--build", type=Path, default=Path(__file__).resolve().parent.parent / "build/release/bench")
    arguments = parser.parse_args()
    wanted = [name for name in GROUPS if arguments.filter in name]
    if not wanted:
        parser.error(f"no group has '{arguments.filter}' in its name: {', '.join(GROUPS)}")
    for name in wanted:
        GROUPS[name](Runner(arguments.build, arguments.rounds))


if __name__ == "__main__":
    main()
