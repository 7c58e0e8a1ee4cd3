"""Seeds for the fuzzer: make_corpus.py --out FOLDER (FILE | FOLDER)...

Takes every case (*.case) and piece (*.orlo) below what is given. A seed is a command line (see fuzz_orlo.cpp) and a piece; each
piece is taken for a score and for a MIDI file. Included files become the one that the fuzz target offers.
"""

import argparse
import hashlib
import os
import re
import shlex
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from run_case import CaseError, parse_case

LONGEST = 4096  # bytes that the fuzzer takes of an input


def find_files(paths):
    for path in paths:
        if os.path.isdir(path):
            for folder, folders, names in os.walk(path):
                folders.sort()
                yield from (os.path.join(folder, name) for name in sorted(names))
        elif os.path.exists(path):
            yield path


def read_case(data):
    """Flags and pieces of a case; its included files are pieces of their own."""
    _, sections = parse_case(data)
    args = next((section.line() for section in sections if section.kind == "args"), "")
    flags = "".join(word[1] for word in shlex.split(args) if re.match("-[mstxl]", word))
    return flags, [section.text() for section in sections if section.kind == "file"]


def read_seeds(path):
    with open(path, "rb") as file:
        data = file.read()
    flags, pieces = "", []
    if path.endswith(".case"):
        flags, pieces = read_case(data)
    elif path.endswith(".orlo"):
        pieces = [data]
    for piece in pieces:
        piece = re.sub(rb"(#include\s*)\|[^|]*\|", rb"\1|part|", piece)
        for line in {flags, flags.replace("m", "") + "m"}:
            yield (line.encode() + b"\n" + piece)[:LONGEST]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--out", required=True)
    parser.add_argument("paths", nargs="+")
    options = parser.parse_args()
    os.makedirs(options.out, exist_ok=True)
    seeds = set()
    for path in find_files(options.paths):
        try:
            seeds.update(read_seeds(path))
        except (CaseError, UnicodeDecodeError) as error:
            print(f"{path}: left out: {error}", file=sys.stderr)
    for seed in seeds:
        with open(os.path.join(options.out, hashlib.sha1(seed).hexdigest()), "wb") as file:
            file.write(seed)
    print(f"{len(seeds)} seeds")


if __name__ == "__main__":
    main()
