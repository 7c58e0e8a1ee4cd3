"""What the tools know about pieces: the files that a piece includes, and the notes of a score."""

import os
import re
import sys


def included_files(piece):
    """The names that a piece includes, directly or through others, each with the path that it stands for.

    Names are taken from the piece's own folder: that is where the tools run the program.
    """
    folder = os.path.dirname(os.path.abspath(piece))
    names, files = [], [os.path.abspath(piece)]
    while files:
        with open(files.pop(), encoding="latin-1") as file:
            for name in re.findall(r"#include\s*\|([^|]*)\|", file.read()):
                path = os.path.join(folder, name)
                if name not in names and os.path.isfile(path):
                    names.append(name)
                    files.append(path)
    return [(name, os.path.join(folder, name)) for name in names]


def notes(score):
    """The i lines of a score as lists of numbers: instrument, start, duration and so on.

    Every field must be a plain decimal number: what else C can print (nan, inf) passes unnoticed in Csound.
    """
    lines = [line for line in score.splitlines() if line.startswith("i")]
    for line in lines:
        if not re.fullmatch(r"i\d+( +-?\d+(\.\d+)?){2,} ", line):
            sys.exit(f"this line of the score is wrong: {line!r}")
    return [[float(field) for field in line[1:].split()] for line in lines]
