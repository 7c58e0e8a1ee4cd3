"""Chooses the inputs to keep: keep_corpus.py --control FILE --out FOLDER [--files N] [--bytes N]

FILE is the control file that the fuzzer leaves behind a merge: it lists the inputs and what each of them reaches. The input that
reaches most of what is still missing is taken first, of equal ones the smallest, until nothing is missing or the room is used up.
"""

import argparse
import hashlib
import os


def read_control(path):
    """The inputs, each with its set of features."""
    with open(path, encoding="utf-8") as file:
        lines = file.read().splitlines()
    names = lines[2:2 + int(lines[0])]
    for line in lines[2 + len(names):]:
        kind, *numbers = line.split()
        if kind == "FT":
            yield names[int(numbers[0])], set(numbers[1:])


def choose(inputs, files, size):
    """Greedy cover of all features; an input's gain only shrinks, so most gains need not be counted again."""
    missing = set().union(*inputs.values())
    lengths = {name: os.path.getsize(name) for name in inputs}
    gains = {name: len(features) for name, features in inputs.items()}
    while missing and gains and files > 0:
        best, most = None, 0
        for name in sorted(gains, key=lambda name: (-gains[name], lengths[name])):
            if gains[name] < most:
                break
            gains[name] = len(inputs[name] & missing)
            if gains[name] > most or gains[name] == most > 0 and lengths[name] < lengths[best]:
                best, most = name, gains[name]
        if best is None:
            break
        missing -= inputs[best]
        del gains[best]
        if lengths[best] <= size:
            size -= lengths[best]
            files -= 1
            yield best
    print(f"{len(missing)} features are left out")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--control", required=True)
    parser.add_argument("--out", required=True)
    parser.add_argument("--files", type=int, default=300)
    parser.add_argument("--bytes", type=int, default=300000)
    options = parser.parse_args()
    os.makedirs(options.out, exist_ok=True)
    total = 0
    for name in choose(dict(read_control(options.control)), options.files, options.bytes):
        with open(name, "rb") as file:
            data = file.read()
        with open(os.path.join(options.out, hashlib.sha1(data).hexdigest()), "wb") as file:
            file.write(data)
        total += 1
    print(f"{total} inputs kept")


if __name__ == "__main__":
    main()
