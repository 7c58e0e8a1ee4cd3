#!/usr/bin/env python3
"""A piece's seed makes its score: the same seed gives the same bytes, another seed gives others.

usage: check_seed.py --orlo PATH --piece FILE
The piece must hold one "rs(NUMBER)".
"""

import argparse
import os
import re
import subprocess
import sys
import tempfile

from pieces import included_files


def score_of(orlo, folder, text):
    """The score that the program makes of a text, as bytes."""
    with open(os.path.join(folder, "in.orlo"), "w", encoding="latin-1") as file:
        file.write(text)
    run = subprocess.run([orlo, "in.orlo", "out.sco"], cwd=folder, capture_output=True, timeout=60, check=False)
    if run.returncode != 0:
        sys.exit(f"the piece ends with status {run.returncode}:\n{run.stderr.decode('latin-1')}")
    with open(os.path.join(folder, "out.sco"), "rb") as file:
        return file.read()


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--orlo", required=True)
    parser.add_argument("--piece", required=True)
    options = parser.parse_args()
    orlo = os.path.abspath(options.orlo)

    with open(options.piece, encoding="latin-1") as file:
        text = file.read()
    seeds = re.findall(r"\brs\((\d+)\)", text)
    if len(seeds) != 1:
        sys.exit(f"one seed expected, {len(seeds)} found")
    other = re.sub(r"\brs\(\d+\)", f"rs({int(seeds[0]) + 1})", text)

    with tempfile.TemporaryDirectory() as folder:
        for name, path in included_files(options.piece):
            os.symlink(path, os.path.join(folder, name))
        first, again, changed = (score_of(orlo, folder, piece) for piece in (text, text, other))
    if first != again:
        sys.exit("the same seed gave two scores")
    if first == changed:
        sys.exit("another seed gave the same score")
    print(f"seed {seeds[0]}: {len(first)} bytes twice, and others with seed {int(seeds[0]) + 1}")


if __name__ == "__main__":
    main()
