"""Prints a piece drawn at random: random_piece.py SEED

For tests that want many numbers: the pieces use every generator, distribution, curve and output type, deviations, factors, and
tempo maps of up to eight segments. They are right: the program reads each to its end. The same seed gives the same piece.
"""

import random
import sys

DISTRIBUTIONS = ["", "f ", "l ", "h ", "t ", "g ", "x ", "b "]
CURVES = ["", "f ", "e ", "l ", "s ", "c ", "v.3 ", "v2.7 ", "v7 "]
WEIGHTS = [["1"], ["1"], [".3", ".7"], [".25", ".25", ".5"], [".1", ".2", ".3", ".4"]]
PITCH_TYPES = ["op", "hz", "od", "tr", "bn", "bn0", "bn6", "re6", "xx"]
NUMBER_TYPES = ["re", "re0", "re5", "re7", "in"]


class Writer:
    def __init__(self, seed):
        self.random = random.Random(seed)
        self.midi = self.chance(0.25)

    def chance(self, share):
        return self.random.random() < share

    def pick(self, *items):
        return self.random.choice(items)

    def number(self, low, high):
        return f"{self.random.uniform(low, high):.{self.random.randint(0, 3)}f}"

    def value(self, kind):
        if kind == "pitch":
            return self.pick(*"cdefgab") + str(self.random.randint(1, 7))
        if kind == "beats":
            return f"{self.random.uniform(0.02, 1.5):.3f}"
        return self.number(1, 32000) if kind == "amplitude" else self.number(0, 100)

    def values(self, kind):
        return "[" + " ".join(self.value(kind) for _ in range(self.random.randint(2, 6))) + "]"

    def letter(self, letters, kind):
        """A letter of a list, or none; notes that begin with such a letter need one before them."""
        return self.pick(*letters[1 if kind == "pitch" else 0:])

    def a_range(self, kind):
        return f"[{self.letter(DISTRIBUTIONS, kind)}{self.value(kind)} {self.value(kind)}]"

    def motion(self, kind, in_beats):
        curve = self.letter(CURVES, kind)
        if curve and in_beats and self.chance(0.3):
            curve = curve.strip() + "* "
        return curve + " ".join(self.value(kind) if self.chance(0.7) else self.a_range(kind) for _ in range(2))

    def walk(self, kind):
        first = self.value(kind)
        return f"[{first} {self.value(kind)}] {self.random.random():.2f} {first}"

    def groups(self, kind):
        groups = ["'".join(self.value(kind) for _ in range(self.random.randint(1, 3))) for _ in range(self.random.randint(2, 4))]
        return "[" + " ".join(groups) + "]"

    def equation(self, fields):
        items = [f"p{self.pick(*fields)}"]
        for _ in range(self.random.randint(1, 5)):
            if self.chance(0.5):
                items += [self.pick("+", "-", "*", "/", "%"), self.number(0.6, 9)]
            else:
                items += [self.pick("+", "-", "*", "%"), f"p{self.pick(*fields)}"]  # a p-field may be 0
        return f"{self.pick('', 'i ')}[{' '.join(items)}]"

    def data(self, name, kind, in_beats, fields):
        if name == "RA":
            return self.a_range(kind) if self.chance(0.85) else self.value(kind)
        if name == "RW":
            return self.walk(kind)
        if name == "MO":
            return self.motion(kind, in_beats)
        if name == "MS":
            return f"{self.letter(CURVES, kind)}{self.values(kind)} {self.values(kind)}"
        if name == "EX":
            return self.equation(fields)
        return self.pick("", "* ", "x ") + (self.values(kind) if name == "SE" else self.groups(kind))

    def generator(self, kind, span, names, in_beats=False, fields=()):
        name = self.pick(*names)
        if name == "HO":
            return f"HO({span} {self.value(kind)})"
        sets = [f"{weight} {self.data(name, kind, in_beats, fields)}" for weight in self.pick(*WEIGHTS)]
        return f"{name}({span} {'  '.join(sets)})"

    def starts(self, counted, length):
        deviation = f"dv({self.random.uniform(0, 0.3):.2f}) " if self.chance(0.4) else ""
        if self.chance(0.5):
            return f"p2 {deviation}rh " + " ".join(self.pick("2", "4.", "4", "8.", "8", "16") for _ in range(4))
        span = self.pick("T", f"-{length // 2 + 1}") if counted else self.pick("T", "T*.5")
        generators = [self.generator("beats", span, ["RA", "RW", "MO", "SE"]) for _ in range(self.pick(1, 2))]
        return f"p2 {deviation}{' '.join(generators)}"

    def durations(self):
        if self.chance(0.5):
            return f"p3 RA(T 1 [{self.pick(*DISTRIBUTIONS)}.1 1.5])"
        return f"p3 {self.random.uniform(0.2, 1.4):.2f} {self.pick('1.5', '201.5', '301', '400.7', '1000.333')} 1"

    def field(self, p, counted, length):
        """The section of a p-field from p4 up."""
        pitched = p == 5 if self.midi else self.chance(0.5)
        kind = "pitch" if pitched else "amplitude" if self.midi or self.chance(0.2) else "number"
        output = self.pick(*PITCH_TYPES) if pitched else "db" if kind == "amplitude" else self.pick(*NUMBER_TYPES)
        deviation = f"dv({self.random.uniform(0, 0.5):.2f}) " if self.chance(0.3) else ""
        factor = f"pf({self.random.uniform(0.1, 3):.2f}) " if self.chance(0.2) else ""
        notes = self.pick("no ", "nox ") if pitched else ""
        span = self.pick("T", "T*.5", "T*.3", f"-{max(1, length // 2)}" if counted else self.number(1, length))
        names = ["RA", "RA", "RW", "MO", "MO", "SE", "MS", "MS", "S2", "HO"] + ([] if pitched else ["EX", "EX"])
        generators = [self.generator(kind, span, names, not counted, range(2, p)) for _ in range(self.pick(1, 1, 2))]
        return f"p{p} ({output}) {deviation}{factor}{notes}{' '.join(generators)}"

    def block(self, number):
        counted, length = self.chance(0.5), self.random.randint(5, 60)
        fields = 5 if self.midi else self.random.randint(4, 9)
        lines = [f"i{number} = {fields} {self.number(0, 20)} {'-' if counted else ''}{length} {{",
                 self.starts(counted, length), self.durations()]
        return lines + [self.field(p, counted, length) for p in range(4, fields + 1)] + ["}"]

    def tempo_map(self):
        lines, beat = [], 0.0
        for _ in range(self.pick(0, 1, 2, 4, 8)):
            end = beat + self.random.uniform(0.5, 20)
            tempos = f"{self.number(20, 300)} {self.number(20, 300)}"
            lines.append(f"te({beat:.2f} {end:.2f} {tempos} {self.pick(*CURVES).strip()})")
            beat = end + self.random.uniform(0.01, 5)
        return lines

    def piece(self):
        lines = [f"rs({self.random.randint(1, 60000)})"]
        if self.chance(0.4):
            lines.append(f"rd({self.random.uniform(0, 0.3):.2f})")
        if self.chance(0.3):
            lines.append(f"sr({self.pick(22050, 44100, 48000, 96000)})")
        lines += self.tempo_map()
        for number in range(1, 2 if self.midi else self.random.randint(2, 5)):
            lines += self.block(number)
        return "\n".join(lines) + "\n"


def random_piece(seed):
    """A piece, and whether it can be a MIDI file: p4 is an amplitude and p5 a pitch."""
    writer = Writer(seed)
    return writer.piece(), writer.midi


if __name__ == "__main__":
    sys.stdout.write(random_piece(int(sys.argv[1]))[0])
