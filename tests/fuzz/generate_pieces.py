"""Pieces by a generator that knows the grammar:

    generate_pieces.py --out FOLDER [--count N] [--seed N]     writes N pieces
    generate_pieces.py --orlo PROGRAM [--count N] [--seed N]   runs N pieces, for scores and for MIDI files; all must succeed

Each piece is a valid input that uses much of the language: tempo maps, seeds, deviations, macros, constants, conditions, direct
lines, and blocks with lists, loops, chords and every generator, curve, distribution, input and output type. The same seed gives
the same pieces. They are seeds of the fuzzer besides.
"""

import argparse
import os
import random
import subprocess
import sys
import tempfile

NOTES = ["c4", "d", "ef5", "fs", "g3", "an", "bf", "c5"]
CURVES = ["", "", "f", "e", "l", "s", "c", "v2.5", "v.4"]
DISTRIBUTIONS = ["", "", "f", "l", "h", "t", "g", "x", "b"]
OUTPUTS = ["", "", "(re)", "(re0)", "(re7)", "(in)", "(hz)", "(op)", "(od)", "(tr)", "(bn)", "(bn3)", "(xx)"]
BLANKS = [" ", " ", " ", "  ", "\n", " ; why\n", " /* so */ ", "\t"]


class Piece:
    """What the piece has so far that later text depends on."""

    def __init__(self, seed):
        self.chance = random.Random(seed)
        self.macros, self.constants = [], []
        self.events = 0  # length of the block when it is given in events, else 0
        self.beats = 0
        self.done = []  # p-fields whose section has been written

    def one(self, choices):
        return self.chance.choice(choices)

    def maybe(self, share, text):
        return text if self.chance.random() < share else ""

    def number(self, low, high, decimals=2):
        return f"{self.chance.uniform(low, high):.{self.chance.randint(0, decimals)}f}"


def value(piece, kind):
    if kind == "re":
        return piece.number(-20, 90)
    if kind == "in":
        return str(piece.chance.randint(-5, 99))
    if kind == "db":
        return str(piece.chance.randint(0, 96))
    if kind in ("no", "nox"):
        return piece.one(NOTES + (["g+3", "d-", "as+"] if kind == "nox" else []))
    if kind in ("op", "opx"):
        return f"{piece.chance.randint(4, 10)}.{piece.chance.randint(0, 11):02d}"
    return f"{piece.one([1, 2, 4, 8, 16])}" + piece.maybe(.2, ".")


def above_zero(piece, kind):
    return value(piece, "rh") if kind == "rh" else piece.number(.25, 2.5).rstrip(".0") or "1"


def weights(piece):
    return piece.one([["1"], ["1"], [".5", ".5"], [".25", ".75"], [".2", ".3", ".5"]])


def span(piece, p):
    if p == 2 and not piece.events:
        return piece.one(["T", str(piece.chance.randint(1, piece.beats + 1))])
    if p == 2:  # a part of few events may be none, which leaves p2 blank
        return piece.one(["T", f"-{piece.chance.randint(1, 8)}"])
    return piece.one(["T", "T", f"T*.{piece.chance.randint(1, 9)}", f"-{piece.chance.randint(1, 8)}", piece.number(1, 8)])


def letter(piece, kind, letters):
    """A distribution or curve: always written before notes, whose letters it would win."""
    return (piece.one([each for each in letters if each]) if kind in ("no", "nox") else piece.one(letters))


def a_range(piece, kind, read):
    first = piece.one(["", "low high"])
    if not first:
        return f"[f {read()}]" if kind in ("no", "nox") else read()
    return f"[{letter(piece, kind, DISTRIBUTIONS)} {read()} {read()}]"


def values(piece, read, most=6):
    return "[" + " ".join(read() for _ in range(piece.chance.randint(1, most))) + "]"


def group(piece, read):
    return piece.one(["'", ":"]).join(read() for _ in range(piece.chance.randint(1, 3)))


def walk(piece, kind):
    if kind in ("no", "nox"):
        return f"[c2 c6] .{piece.chance.randint(1, 9)} c4"
    if kind in ("op", "opx"):
        return f"[6.00 9.00] .{piece.chance.randint(1, 9)} 8.00"
    return f"[1 20] .{piece.chance.randint(1, 9)} {piece.chance.randint(1, 16)}" if kind != "rh" else "[1 16] .5 4"


def equation(piece):
    terms = [f"p{piece.one(piece.done)}"]
    for _ in range(piece.chance.randint(1, 4)):
        terms += [piece.one("+-*%"), piece.one([f"p{piece.one(piece.done)}", piece.number(-5, 5)])]
    if piece.chance.random() < .3:
        terms += ["/", str(piece.chance.randint(1, 9))]
    return piece.maybe(.3, "i ") + "[" + " ".join(terms) + "]"


def generator(piece, p, kind, first):
    def read():
        return above_zero(piece, kind) if p < 4 else value(piece, kind)

    names = ["RA", "RW", "MO", "SE", "HO"] + (["MS"] if p > 2 else []) + (["S2"] if p > 3 else [])
    if p > 3 and first:  # what is behind a full block is passed over, up to the next p-field
        names.append("EX")
    name = piece.one(names)
    if name == "HO":
        return f"HO({span(piece, p)} {read()})"
    sets = []
    for weight in weights(piece):
        data = {
            "RA": lambda: a_range(piece, kind, read),
            "RW": lambda: walk(piece, kind),
            "MO": lambda: f"{letter(piece, kind, CURVES)} {a_range(piece, kind, read)} {a_range(piece, kind, read)}",
            "MS": lambda: f"{letter(piece, kind, CURVES)} {values(piece, read)} {values(piece, read)}",
            "SE": lambda: piece.maybe(.5, piece.one(["* ", "x "])) + values(piece, read),
            "S2": lambda: piece.maybe(.5, piece.one(["* ", "x "])) + values(piece, lambda: group(piece, read), 4),
            "EX": lambda: equation(piece),
        }[name]()
        sets.append(f"{weight} {data}")
    name = piece.one([name, name.lower()])
    return f"{name}({span(piece, p)} {' '.join(sets)})"


def a_list(piece, p, kind):
    """Values with repeats, chords and one loop; each begins with a plain value."""
    def read():
        return above_zero(piece, kind) if p < 4 else value(piece, kind)

    items = [read()]
    for _ in range(piece.chance.randint(0, 6)):
        item = read()
        if p > 3 and piece.chance.random() < .2:
            item += piece.one(["'", ":"]) + read()
        elif piece.chance.random() < .2:
            item += piece.one([f"x{piece.chance.randint(1, 5)}", " //", " / / /"])
        items.append(item)
    if p > 2 and kind != "in" and piece.chance.random() < .1:
        items.append("z")
    if p > 2 and piece.chance.random() < .3:
        items[-1:] = ["<" + items[-1].split(" ")[0] + " " + read() + ">"]
    return items


def setting(piece, p):
    choices = [f"dv(.{piece.chance.randint(1, 9)})", f"rs({piece.chance.randint(0, 999)})"]
    if p > 2:
        choices.append(f"pf({piece.number(.5, 3)})")
    return piece.one(choices)


def section(piece, p):
    kinds = {2: ["re", "rh"], 3: ["re"]}.get(p, ["re", "re", "in", "db", "no", "nox", "op", "opx", "rh"])
    kind = piece.one(kinds)
    items = [piece.maybe(.2, setting(piece, p) + " ") + (kind if kind != "re" or piece.chance.random() < .3 else "")]
    if p == 3 and piece.chance.random() < .3:
        items.append(piece.one(["400.5", "1001", "300.01", "200.5 .5"]))
    for _ in range(piece.chance.randint(1, 2)):
        items += [generator(piece, p, kind, len(items) == 1)] if piece.chance.random() < .6 else a_list(piece, p, kind)
    if p > 3 and piece.macros and piece.chance.random() < .2:
        items += ["re", "$" + piece.one(piece.macros)]
    if p > 3 and piece.constants and piece.chance.random() < .2:
        items += ["re", piece.one([f"~{piece.one(piece.constants)}", f"~[{piece.one(piece.constants)} * 2 + 1]"])]
    # a comment directly behind a slash or a rhythm would be read as a further slash
    text = "".join(item + (" " if kind == "rh" or "/" in item else piece.one(BLANKS)) for item in items if item)
    output = piece.one(OUTPUTS[:5] if p < 4 else OUTPUTS)
    return f"p{p} {output} {text}".rstrip() + "\n"


def block(piece, number):
    fields = piece.one([3, 4, 5, 5, 6, 8])
    piece.events = piece.one([0, piece.chance.randint(1, 30)])
    piece.beats = piece.chance.randint(1, 12)
    piece.done = []
    text = f"i{number} = {fields} {piece.chance.randint(0, 6)} {-piece.events if piece.events else piece.beats} {{\n"
    order = list(range(3, fields + 1))
    piece.chance.shuffle(order)
    for p in [2, *order]:
        text += section(piece, p)
        piece.done.append(p)
    return text + "}\n"


def tempo(piece):
    start = piece.chance.randint(0, 6)
    segment = f"{start} {start + piece.chance.randint(1, 8)} {piece.number(30, 90, 1)} {piece.number(91, 240, 1)}"
    return piece.one([f"te({piece.number(30, 240)})", f"te({segment} {piece.one(CURVES)})"])


def global_lines(piece):
    lines = [piece.maybe(.6, tempo(piece)), piece.maybe(.5, f"rs({piece.chance.randint(0, 65535)})"),
             piece.maybe(.2, f"rd(.0{piece.chance.randint(1, 9)})"), piece.maybe(.2, "sr(48000)"),
             piece.maybe(.3, ">f1 0 1024 10 1 ; a table")]
    if piece.chance.random() < .4:
        name = f"m{len(piece.macros)}"
        lines.append(piece.one([f"#define {name} #1 2 3#", f"#define {name}(a, b) #$a $b $a#"]))
        piece.macros.append(name + ("(4' 5)" if "(a" in lines[-1] else " "))
    if piece.chance.random() < .4:
        name = f"k{len(piece.constants)}"
        lines.append(f"#const {name} " + piece.one(["5", "2.5", "~[2 * 3 + 1]"]))
        piece.constants.append(name + " ")
    if piece.chance.random() < .2:
        lines.append(f"#if({piece.one('01')})\nrs(3)\n#endif")
    piece.chance.shuffle(lines)
    return "".join(line + "\n" for line in lines if line)


def make_piece(seed):
    piece = Piece(seed)
    text = ""
    for number in range(1, piece.chance.randint(1, 4) + 1):
        text += global_lines(piece) + block(piece, number)
    return text


def write_pieces(folder, count, seed):
    os.makedirs(folder, exist_ok=True)
    paths = [os.path.join(folder, f"generated-{number:05d}.orlo") for number in range(count)]
    for number, path in enumerate(paths):
        with open(path, "w", encoding="ascii") as file:
            file.write(make_piece(seed * 1_000_003 + number))
    return paths


def run_pieces(orlo, paths):
    """Runs each piece twice; the number of runs that failed."""
    failed = 0
    for path in paths:
        for options in ["-s"], ["-s", "-m"]:
            result = subprocess.run([orlo, *options, path, path + ".out"], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                                    timeout=60, check=False)
            if result.returncode != 0:
                failed += 1
                with open(path, encoding="ascii") as file:
                    print(f"{os.path.basename(path)} {options}: status {result.returncode}", file.read(),
                          result.stderr.decode(errors="replace"), sep="\n")
    return failed


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--out", help="folder to write the pieces into")
    parser.add_argument("--orlo", help="program to run the pieces with")
    parser.add_argument("--count", type=int, default=1000)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    if options.out:
        write_pieces(options.out, options.count, options.seed)
    if not options.orlo:
        return 0
    with tempfile.TemporaryDirectory(prefix="orlo-generated-") as folder:
        failed = run_pieces(os.path.abspath(options.orlo), write_pieces(folder, options.count, options.seed))
    print(f"{2 * options.count} runs, {failed} failed")
    return 1 if failed or not options.count else 0


if __name__ == "__main__":
    sys.exit(main())
