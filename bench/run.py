# Runs the measuring programs, engine by engine and round by round, and prints one table a group.
# SPDX-License-Identifier: MIT
import argparse
import contextlib
import json
import os
import shutil
import socket
import statistics
import subprocess
import sys
import time
from dataclasses import dataclass, field
from pathlib import Path

PROJECT = Path(__file__).resolve().parent.parent
# Packages of npm that are read as data, and what of them.
NPM_FOLDER = PROJECT / "build/bench_data"
NPM_PACKAGES = ("@mdn/browser-compat-data", "caniuse-db", "mime-db")


def npm_files(*names):
    return [str(NPM_FOLDER / "node_modules" / name) for name in names]


# What each corpus is read from: the pages of a folder, or files.
CORPORA = {
    "html-py": ["/usr/share/doc/python3.11/html/library"],
    "html-pg": ["/usr/share/doc/postgresql-doc-15/html"],
    "xml": ["/usr/share/mime/packages/freedesktop.org.xml", "/usr/share/xml/iso-codes/iso_639-3.xml",
            "/usr/share/xml/iso-codes/iso_3166-2.xml"],
    "json": npm_files("@mdn/browser-compat-data/data.json", "caniuse-db/fulldata-json/data-2.0.json", "mime-db/db.json"),
}
ENGINES = {
    "html": ("hearth", "libxml2", "gumbo"),
    "xml": ("hearth", "libxml2", "pugixml"),
    "json": ("hearth", "rapidjson", "nlohmann"),
    "http": ("hearth", "libcurl"),
}
OURS = "hearth"

# Done at the first figure, going to the second; the factor by which we are better than that peer. For memory it is
# our share of what the peer takes, and less is better.
GOALS = {
    "HTML to tree, warm": {"libxml2": (6, 9), "gumbo": (15, 22)},
    "HTML to tree, cold": {"libxml2": (6, 9), "gumbo": (15, 22)},
    "XML to tree, warm": {"libxml2": (3, 4), "pugixml": (0.35, 0.5)},
    "XML to tree, cold": {"libxml2": (3, 4), "pugixml": (0.35, 0.5)},
    "JSON to tree, warm": {"rapidjson": (0.7, 0.9), "nlohmann": (4, 5)},
    "JSON to tree, cold": {"rapidjson": (0.7, 0.9), "nlohmann": (4, 5)},
    "heap a byte of HTML": {"libxml2": (0.7, 0.6)},
    "HTML tree destroyed": {"libxml2": (2, 4)},
    "small fragment": {"libxml2": (6, 8)},
    "HTML tree to text": {"libxml2": (4, 6)},
    "UTF-8 to UTF-16, ASCII": {"icu": (6, 10)},
    "UTF-16 to UTF-8, ASCII": {"icu": (6, 10)},
    "UTF-8 to UTF-16, mixed": {"icu": (1, 1)},
    "UTF-16 to UTF-8, mixed": {"icu": (1, 1)},
    "name found": {"std": (1.3, 1.3), "abseil": (1, 1)},
    "name missed": {"std": (1.4, 1.4), "abseil": (1, 1)},
    "name inserted": {"std": (2.5, 2.5), "abseil": (1.4, 1.4)},
    "GET of 1 KB": {"libcurl": (1, 1)},
    "GET of 100 MB": {"libcurl": (1, 1)},
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


def measure_trees(runner, corpus):
    """A parser of trees: one process for each engine, mode and round."""
    kind = corpus.split("-")[0]
    name = kind.upper()
    sources = CORPORA[corpus]
    rates = {
        ("warm", "seconds"): Row(f"{name} to tree, warm", "MB/s"),
        ("cold", "seconds"): Row(f"{name} to tree, cold", "MB/s"),
        ("warm", "destroy"): Row(f"{name} tree destroyed", "MB/s"),
        ("cold", "destroy"): Row(f"{name} tree destroyed, cold", "MB/s"),
        ("print", "seconds"): Row(f"{name} tree to text", "MB/s"),
        ("print", "utf8"): Row(f"{name} tree to UTF-8", "MB/s"),
    }
    heap = Row(f"heap a byte of {name}", "bytes", less_is_better=True, is_share=True)
    fragment = Row("small fragment", "us", less_is_better=True)
    counts = {}
    growth = []
    for _ in range(runner.rounds):
        for engine in ENGINES[kind]:
            program = f"bench_{kind}_{engine}"
            if not runner.has(program):
                continue
            found = {mode: runner.read(program, mode, *sources) for mode in ("warm", "cold", "print")}
            for (mode, key), row in rates.items():
                if key in found[mode] and found[mode].get("printed", 1):
                    row.add(engine, found[mode]["bytes"] / found[mode][key] / 1e6)
            cold = found["cold"]
            if cold:
                heap.add(engine, cold["heap"] / cold["bytes"])
                counts[engine] = f"{engine} {cold['nodes']:,.0f} nodes, {cold['units']:,.0f} units of text"
            if kind == "html":
                fragment.add(engine, runner.read(program, "fragment", *sources)["seconds"] * 1e6)
            if engine == OURS:
                found = runner.read(program, "growth", *sources)
                growth += [found["seconds2"] / found["seconds"]] if found else []
    rows = [*rates.values(), heap, fragment]
    rows[0].twice = statistics.median(growth) if growth else 0
    show(f"{name}, {corpus}", rows, "\n".join(counts.values()))


def fetch_npm():
    """Once; the corpora that are not there are left out."""
    if all((NPM_FOLDER / "node_modules" / package).is_dir() for package in NPM_PACKAGES):
        return
    NPM_FOLDER.mkdir(parents=True, exist_ok=True)
    done = subprocess.run(["npm", "install", "--prefix", NPM_FOLDER, "--ignore-scripts", "--no-audit", "--no-fund",
                           "--loglevel=error", *NPM_PACKAGES], stdout=subprocess.DEVNULL)
    if done.returncode != 0:
        print("run.py: npm could not fetch the JSON files", file=sys.stderr)


def measure_json(runner):
    fetch_npm()
    measure_trees(runner, "json")


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


# The server of the HTTP rows, with nothing of the system's own configuration.
NGINX_FOLDER = PROJECT / "build/bench_data/nginx"
NGINX_FILES = {"small": 1 << 10, "large": 100 << 20}
NGINX_CONF = """
daemon off;
worker_processes 1;
{user}
pid nginx.pid;
error_log stderr error;
events {{ worker_connections 64; }}
http {{
    access_log off;
    sendfile on;
    keepalive_requests 1000000000;
    client_body_temp_path temporary;
    proxy_temp_path temporary;
    fastcgi_temp_path temporary;
    uwsgi_temp_path temporary;
    scgi_temp_path temporary;
    server {{
        listen 127.0.0.1:{port};
        root {folder};
    }}
}}
"""


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def answers(port):
    with contextlib.suppress(OSError), socket.create_connection(("127.0.0.1", port), timeout=1):
        return True
    return False


@contextlib.contextmanager
def nginx():
    """The address of a server of files, stopped at the end; None where there is none."""
    program = shutil.which("nginx", path=os.environ.get("PATH", "") + ":/usr/sbin")
    if program is None:
        print("run.py: no nginx here, so HTTP is not measured", file=sys.stderr)
        yield None
        return
    NGINX_FOLDER.mkdir(parents=True, exist_ok=True)
    for name, size in NGINX_FILES.items():
        file = NGINX_FOLDER / name
        if not file.exists() or file.stat().st_size != size:
            file.write_bytes(os.urandom(1 << 10) * (size >> 10))
    port = free_port()
    configuration = NGINX_FOLDER / "nginx.conf"
    # Started by root it would read the files as somebody who may not come here.
    user = "user root;" if os.getuid() == 0 else ""
    configuration.write_text(NGINX_CONF.format(user=user, port=port, folder=NGINX_FOLDER))
    server = subprocess.Popen([program, "-p", NGINX_FOLDER, "-c", configuration, "-e", "stderr"])
    try:
        deadline = time.monotonic() + 10
        while server.poll() is None and not answers(port) and time.monotonic() < deadline:
            time.sleep(0.02)
        yield f"http://127.0.0.1:{port}" if server.poll() is None and answers(port) else None
    finally:
        server.terminate()
        server.wait()


def measure_http(runner):
    """One process for each client, body and round, all from the same server."""
    rows = {
        "small": Row("GET of 1 KB", "1/s"),
        "large": Row("GET of 100 MB", "MB/s"),
        "small processor": Row("GET of 1 KB, processor", "us", less_is_better=True),
        "large processor": Row("GET of 100 MB, processor", "ms", less_is_better=True),
    }
    with nginx() as address:
        for _ in range(runner.rounds if address else 0):
            for size in NGINX_FILES:
                for engine in ENGINES["http"]:
                    if not runner.has(f"bench_http_{engine}"):
                        continue
                    found = runner.read(f"bench_http_{engine}", size, f"{address}/{size}")
                    if size == "small" and found:
                        rows["small"].add(engine, found["requests"] / found["seconds"])
                        rows["small processor"].add(engine, found["processor"] / found["requests"] * 1e6)
                    elif found:
                        rows["large"].add(engine, found["bytes"] / found["seconds"] / 1e6)
                        rows["large processor"].add(engine, found["processor"] * 1e3)
    show("HTTP over the loopback", list(rows.values()))


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
    "html-py": lambda runner: measure_trees(runner, "html-py"),
    "html-pg": lambda runner: measure_trees(runner, "html-pg"),
    "xml": lambda runner: measure_trees(runner, "xml"),
    "json": measure_json,
    "text": lambda runner: measure_micro(runner, "text_micro", "UTF-8 and UTF-16", "GB/s", lambda n: n / 1e9),
    "dictionary": lambda runner: measure_micro(runner, "dictionary_micro", "dictionary of tag and attribute names", "ns",
                                               lambda n: 1e9 / n, less_is_better=True),
    "fast_string": lambda runner: measure_micro(runner, "fast_string_micro", "text put together", "Munits/s",
                                                lambda n: n / 1e6),
    "http": measure_http,
    "hostile": measure_growth,
}


def main():
    parser = argparse.ArgumentParser(description="Measures against other libraries; prints one table a group.")
    parser.add_argument("filter", nargs="?", default="", help="part of a group's name: " + ", ".join(GROUPS))
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--build", type=Path, default=PROJECT / "build/release/bench")
    arguments = parser.parse_args()
    wanted = [name for name in GROUPS if arguments.filter in name]
    if not wanted:
        parser.error(f"no group has '{arguments.filter}' in its name: {', '.join(GROUPS)}")
    for name in wanted:
        GROUPS[name](Runner(arguments.build, arguments.rounds))


if __name__ == "__main__":
    main()
