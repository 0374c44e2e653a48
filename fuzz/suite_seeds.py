# Makes seeds of a fuzz target out of the public test suites: suite_seeds.py TARGET SUITES FOLDER.
# SPDX-License-Identifier: MIT
#
# Does nothing where the suites are missing or none of them fits the target. Seeds are made for each run and never
# become part of the tree.
import hashlib
import json
import sys
from pathlib import Path


def tree_cases(suites):
    """Every case of the tree-construction files as (text, whether it is a fragment)."""
    for file in sorted((suites / "html5lib-tests/tree-construction").glob("**/*.dat")):
        for case in file.read_bytes().split(b"#data\n")[1:]:
            text, _, rest = case.partition(b"\n#errors")
            yield text, b"#document-fragment" in rest


def tokenizer_cases(suites):
    for file in sorted((suites / "html5lib-tests/tokenizer").glob("*.test")):
        for test in json.loads(file.read_text(encoding="utf-8")).get("tests", []):
            yield test["input"].encode("utf-8", "replace")


def html_seeds(suites):
    for text, _ in tree_cases(suites):
        yield b"0" + text
    for file in sorted((suites / "html5lib-tests/encoding").glob("*.dat")):
        for case in file.read_bytes().split(b"#data\n")[1:]:
            yield b"1" + case.partition(b"\n#encoding")[0]


def html_fragment_seeds(suites):
    for text, is_fragment in tree_cases(suites):
        if is_fragment:
            yield b"i10" + text.replace(b"\n", b" ")


def entities_seeds(suites):
    for text in tokenizer_cases(suites):
        if b"&" in text:
            yield b"0----" + text


def json_seeds(suites):
    for file in sorted((suites / "JSONTestSuite").glob("*/*.json")):
        yield b"0" + file.read_bytes()
        yield b"2" + file.read_bytes()


SEEDS = {"html_fuzz": html_seeds, "html_fragment_fuzz": html_fragment_seeds, "entities_fuzz": entities_seeds,
         "json_fuzz": json_seeds}


def main():
    target, suites, folder = sys.argv[1], Path(sys.argv[2]), Path(sys.argv[3])
    if target not in SEEDS or not suites.is_dir():
        return
    folder.mkdir(parents=True, exist_ok=True)
    for seed in SEEDS[target](suites):
        (folder / hashlib.sha1(seed).hexdigest()).write_bytes(seed)


if __name__ == "__main__":
    main()
