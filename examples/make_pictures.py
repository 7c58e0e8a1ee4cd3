#!/usr/bin/env python3
"""Draws every example: examples/make_pictures.py [--orlo-view PROGRAM] [--check]

img/NAME.svg is what orlo-view draws of NAME.orlo; orlo stands beside it. The pieces' seeds are fixed, so the same programs
give the same pictures. With --check nothing is written, and a picture that differs is said, and so is one that is too large or
that README.md does not show.
"""

import argparse
import os
import pathlib
import subprocess
import sys

EXAMPLES = pathlib.Path(__file__).resolve().parent
LARGEST = 150_000  # bytes


def picture(program, piece):
    """A piece's picture, as bytes. Include files are found from the examples' folder."""
    run = subprocess.run([program, "-f", "svg", "-o", "-", piece.name], cwd=EXAMPLES, stdin=subprocess.DEVNULL,
                         capture_output=True, timeout=60, check=False)
    if run.returncode != 0:
        sys.exit(f"{piece}: orlo-view ends with status {run.returncode}\n{run.stderr.decode(errors='replace')}")
    return run.stdout


def faults_of(wanted, there):
    """What is wrong with the pictures that are there."""
    readme = (EXAMPLES / "README.md").read_text(encoding="utf-8")
    for path, drawn in wanted.items():
        if path not in there or path.read_bytes() != drawn:
            yield f"{path}: out of date, run examples/make_pictures.py"
        if len(drawn) > LARGEST:
            yield f"{path}: {len(drawn)} bytes, more than {LARGEST}"
        if f"(img/{path.name})" not in readme:
            yield f"{path}: README.md does not show it"
    for path in sorted(there - wanted.keys()):
        yield f"{path}: there is no piece {path.stem}.orlo any more"


def main():
    parser = argparse.ArgumentParser(description="draw every example")
    parser.add_argument("--orlo-view", default=EXAMPLES.parent / "build" / "orlo-view", help="the program (build/orlo-view)")
    parser.add_argument("--check", action="store_true", help="write nothing, say what is out of date")
    options = parser.parse_args()

    program = os.path.abspath(options.orlo_view)
    folder = EXAMPLES / "img"
    wanted = {folder / f"{piece.stem}.svg": picture(program, piece) for piece in sorted(EXAMPLES.glob("*.orlo"))}
    there = set(folder.glob("*.svg"))
    if options.check:
        faults = list(faults_of(wanted, there))
        for fault in faults:
            print(fault)
        print(f"{len(wanted)} pictures, {len(faults)} faults")
        return 1 if faults or not wanted else 0
    folder.mkdir(exist_ok=True)
    for path, drawn in wanted.items():
        path.write_bytes(drawn)
    for path in there - wanted.keys():
        path.unlink()
    print(f"{len(wanted)} pictures written")
    return 0


if __name__ == "__main__":
    sys.exit(main())
