"""Draws the shapes of distributions and curves from the program's own values: make_shapes.py --orlo PROGRAM [--tables PROGRAM] [--check]

Writes img/dist-LETTER.svg, a histogram of 20,000 values of RA(T 1 [LETTER 0 1]), and img/curve-LETTER.svg, the 101
values of MO(-101 1 LETTER 0 1), beside itself. The seed is fixed, so the same program gives the same pictures. With
--check nothing is written, and a picture that differs is a fault.
"""

import argparse
import os
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "../src/tables"))
import tables

EXPONENTS = {"v": "3"}   # of the curves that have one
DRAWS, BINS, STEPS = 20_000, 50, 101
WIDTH, HEIGHT, MARGIN = 200, 100, 12


def values(orlo, events, generator):
    """The values that a generator gives in p4, from 0 to 1."""
    source = f"rs(1)\ni1 = 4 0 -{events} {{\np2 1\np3 1\np4 (re7) {generator}\n}}\n"
    with tempfile.TemporaryDirectory(prefix="orlo-shapes-") as folder:
        with open(os.path.join(folder, "in.orlo"), "w", encoding="ascii") as file:
            file.write(source)
        subprocess.run([orlo, "-s", "in.orlo", "out.sco"], cwd=folder, check=True, timeout=60,
                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        with open(os.path.join(folder, "out.sco"), encoding="ascii") as file:
            return [float(line.split()[3]) for line in file if line.startswith("i")]


def frame(title, body):
    width, height = WIDTH + 2 * MARGIN, HEIGHT + 2 * MARGIN
    bottom = MARGIN + HEIGHT
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" viewBox="0 0 {width} {height}">\n'
            f'<title>{title}</title>\n<rect width="{width}" height="{height}" fill="#fff"/>\n{body}\n'
            f'<path d="M{MARGIN} {bottom}H{MARGIN + WIDTH}" stroke="#444"/>\n</svg>\n')


def histogram(title, numbers):
    counts = [0] * BINS
    for number in numbers:
        counts[min(int(number * BINS), BINS - 1)] += 1
    most, bar = max(counts), WIDTH // BINS
    path = "".join(f"M{MARGIN + i * bar} {MARGIN + HEIGHT}v-{round(HEIGHT * count / most)}h{bar - 1}V{MARGIN + HEIGHT}z"
                   for i, count in enumerate(counts) if round(HEIGHT * count / most))
    return frame(title, f'<path d="{path}" fill="#369"/>')


def plot(title, numbers):
    points = " ".join(f"{MARGIN + round(WIDTH * i / (len(numbers) - 1))},{MARGIN + round(HEIGHT * (1 - number), 1):g}"
                      for i, number in enumerate(numbers))
    return frame(title, f'<polyline points="{points}" fill="none" stroke="#369" stroke-width="2"/>')


def pictures(orlo, printed):
    """The pictures by name."""
    drawn = {}
    for letter in (row["letter"] for row in printed["distributions"]):
        drawn[f"dist-{letter}"] = histogram(f"distribution {letter}", values(orlo, DRAWS, f"RA(T 1 [{letter} 0 1])"))
    for letter in (row["letter"] + EXPONENTS.get(row["letter"], "") for row in printed["curves"]):
        drawn[f"curve-{letter}"] = plot(f"curve {letter}", values(orlo, STEPS, f"MO(T 1 {letter} 0 1)"))
    return drawn


def main():
    parser = argparse.ArgumentParser(description="draw the shapes of distributions and curves")
    parser.add_argument("--orlo", required=True, help="the program")
    tables.add_option(parser)
    parser.add_argument("--check", action="store_true", help="write nothing, compare")
    options = parser.parse_args()

    faults = []
    folder = os.path.join(HERE, "img")
    drawn = pictures(os.path.abspath(options.orlo), tables.read(options.tables))
    for name, picture in drawn.items():
        path = os.path.join(folder, f"{name}.svg")
        if not options.check:
            os.makedirs(folder, exist_ok=True)
            with open(path, "w", encoding="ascii", newline="\n") as file:
                file.write(picture)
            continue
        try:
            with open(path, encoding="ascii", newline="") as file:
                if file.read() != picture:
                    faults.append(f"{path} is not what the program draws: run make_shapes.py")
        except OSError as fault:
            faults.append(f"{path}: {fault.strerror}")
    for fault in faults:
        print(fault)
    print(f"{len(drawn)} pictures, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
