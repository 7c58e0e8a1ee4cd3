"""Pieces whose notation is known: what they sound like, and which note must stand where with which length.

The known notes come from the rhythm that a piece is made of, not from anything that a program says of it.
"""

import random
from fractions import Fraction
from typing import NamedTuple

SEMITONES = {"c": 0, "d": 2, "e": 4, "f": 5, "g": 7, "a": 9, "b": 11}
ALTERS = {"": 0, "s": 1, "f": -1, "n": 0, "+": Fraction(1, 2), "-": Fraction(-1, 2), "s+": Fraction(3, 2), "f-": Fraction(-3, 2),
          "ff": -2, "ss": 2}
METERS = ("4/4", "3/4", "2/4", "6/8", "5/4", "7/8", "12/8", "2/2", "5/8", "9/8", "6/4", "3/8")


class Known(NamedTuple):
    """A note as it must be written; beats are quarters."""
    instrument: str
    start: Fraction
    length: Fraction
    step: str     # with its signs, as MusicXML has them: step and alter
    alter: Fraction
    octave: int


class Piece(NamedTuple):
    name: str
    text: str
    arguments: list
    notes: list          # of Known; None: only the seconds are known
    meter: str
    grid: int            # 0: none
    tempo: int           # quarters a minute where it is even, else 0


# ---- rhythm: intervals in quarters, and how "rh" has them

def value(fraction):
    """A length as a note value of orlo: 4 over it, with dots and ties where it takes them."""
    rest, parts = Fraction(fraction), []
    for quarters in (4, 2, 1, Fraction(1, 2), Fraction(1, 4), Fraction(1, 8), Fraction(1, 16), Fraction(1, 32)):
        while rest >= quarters:
            parts.append(quarters)
            rest -= quarters
    if rest == 0:
        return ",".join(str(Fraction(4) / part) for part in parts)
    number = 4 / Fraction(fraction)
    if number.denominator == 1:
        return str(number)
    whole = Fraction(fraction) * number.numerator  # as a sum of equal values: 2/5 of a quarter twice
    count = Fraction(fraction) / Fraction(4, number.numerator)
    assert count.denominator == 1 and whole, fraction
    return ",".join([str(number.numerator)] * count.numerator)


def plain_beat(random_):
    return random_.choice([[1], [1], [Fraction(1, 2)] * 2, [Fraction(3, 4), Fraction(1, 4)], [Fraction(1, 4)] * 4,
                           [Fraction(1, 4), Fraction(1, 2), Fraction(1, 4)], [Fraction(1, 2), Fraction(1, 4), Fraction(1, 4)],
                           [Fraction(1, 8)] * 2 + [Fraction(3, 4)]])


def tuplet_beat(random_):
    """A quarter or a half in 3, 5, 6 or 7; some of its parts together."""
    count, length = random_.choice([(3, 1), (3, 1), (3, 2), (5, 1), (6, 1), (7, 1), (5, 2), (7, 2), (3, Fraction(1, 2))])
    parts = [Fraction(length, count)] * count if isinstance(length, int) else [length / count] * count
    if random_.random() < 0.4:
        at = random_.randrange(count - 1)
        parts[at:at + 2] = [parts[at] + parts[at + 1]]
    return parts + ([length] if length == Fraction(1, 2) else [])


def rhythm(random_, quarters, tuplets, long=True):
    """Intervals that fill so many quarters from a beat on, whole beats each."""
    intervals, at = [], Fraction(0)
    while at < quarters:
        if tuplets and random_.random() < 0.4 and at + 2 <= quarters:
            part = tuplet_beat(random_)
        elif long and random_.random() < 0.3:
            part = [random_.choice([2, 3, Fraction(3, 2), 4, Fraction(5, 2), Fraction(9, 4), 7])]
        else:
            part = plain_beat(random_)
        at = Fraction(at + sum(part))
        intervals += [Fraction(each) for each in part]
        # tuplets begin with a beat, two quarters long ones with every second one
        if at.denominator != 1 or at % 2:
            step = (-at) % 1 or 1
            if tuplets:
                intervals.append(Fraction(step))
                at += step
    return intervals


# ---- pitches

def chord(random_, low, names, size):
    """Names with octaves that ascend, and are not the same key twice."""
    octave = low + random_.randrange(2)
    found = {}
    while len(found) < size:
        name = random_.choice(names)
        this = octave + (1 if random_.random() < 0.4 else 0)
        found.setdefault((SEMITONES[name[0]] + ALTERS[name[1:]] + 12 * this), (name, this))
    return [found[key] for key in sorted(found)]


TONAL = ["c", "d", "e", "f", "g", "a", "b", "cs", "ef", "fs", "bf", "af", "ds", "gs"]
MICRO = TONAL + ["c+", "d-", "fs+", "b-", "e-", "g+"]


class Block:
    def __init__(self, instrument, start, intervals, rests, pitches):
        self.instrument, self.start, self.intervals, self.rests, self.pitches = instrument, start, intervals, rests, pitches

    def text(self, sounding="1", input_type="no", output="op"):
        events = sum(1 for _ in self.intervals)
        lines = [f"i{self.instrument} = 5 {self.start} -{events} {{", "  p2 rh"]
        lines += ["    " + " ".join(value(each) for each in self.intervals[i:i + 8]) for i in range(0, events, 8)]
        lines += [f"  p3 {sounding}", "  p4 70", f"  p5 ({output}) {input_type}"]
        words = ["r" if rest else "'".join(f"{name}{octave}" for name, octave in notes)
                 for rest, notes in zip(self.rests, self.pitches)]
        lines += ["    " + " ".join(words[i:i + 8]) for i in range(0, events, 8)]
        return "\n".join(lines + ["}", ""])

    def known(self, length=lambda interval: interval):
        at, notes = Fraction(self.start), []
        for interval, rest, pitches in zip(self.intervals, self.rests, self.pitches):
            if not rest:
                notes += [Known(f"i{self.instrument}", at, Fraction(length(interval)), name[0].upper(), Fraction(ALTERS[name[1:]]), octave)
                          for name, octave in pitches]
            at += interval
        return notes


def block(random_, instrument, start, quarters, *, tuplets=False, rests=0.0, chords=0.0, names=TONAL, low=3, long=True):
    intervals = rhythm(random_, quarters, tuplets, long)
    silent = [i > 0 and random_.random() < rests for i in range(len(intervals))]
    pitches = [chord(random_, low, names, random_.choice([2, 3, 4]) if random_.random() < chords else 1) for _ in intervals]
    return Block(instrument, start, intervals, silent, pitches)


def piece(seed):
    """One of eleven kinds."""
    random_ = random.Random(seed)
    kind = ("plain", "tuplets", "chords", "rests", "voices", "microtones", "accelerando", "random", "sounding", "all", "own")[seed % 11]
    meter = random_.choice(METERS)
    tempo = random_.choice([60, 72, 90, 120, 132])
    arguments, grid, notes, head, even = ["--meter", meter], 0, [], f"te({tempo})\n", True
    quarters = random_.randrange(8, 33)
    if kind == "voices":
        blocks = [block(random_, 1, 2 * i, quarters, low=1 + i, rests=0.1, tuplets=i == 0, chords=0.2) for i in range(random_.choice([2, 3, 4, 6]))]
    elif kind == "accelerando":
        head, even = f"te(0 {quarters // 2} {tempo} {tempo * 2} l)\n", False
        blocks = [block(random_, 1, 0, quarters, tuplets=seed % 2 == 1, chords=0.2)]
    elif kind == "own":
        head, even = f"te(0 {quarters // 2} {tempo} {tempo * 2} l)\n", False
        arguments += ["--map", "own"]
        blocks = [block(random_, i + 1, 0, quarters, rests=0.1, low=i + 2, tuplets=i == 1) for i in range(3)]
    elif kind == "all":
        blocks = [block(random_, i % 3 + 1, 4 * i, quarters, tuplets=True, rests=0.15, chords=0.3, names=MICRO, low=i % 3 + 2) for i in range(6)]
    else:
        blocks = [block(random_, i + 1, 0, quarters, low=random_.choice([1, 2, 3, 4, 5]),
                        tuplets=kind == "tuplets", chords=0.5 if kind == "chords" else 0.0, rests=0.3 if kind == "rests" else 0.0,
                        names=MICRO if kind == "microtones" else TONAL) for i in range(random_.choice([1, 2, 3]))]
    sounding, length = random_.choice([".9", "1", ".4"]), lambda interval: interval
    if kind == "sounding":
        sounding, length = ".5", lambda interval: interval / 2
        arguments.append("--sounding")
        for each in blocks:
            each.intervals = [Fraction(max(1, round(interval))) for interval in each.intervals]
    if kind == "random":
        grid = random_.choice([16, 8, 32])
        arguments += ["--grid", str(grid)]
        head += "rd(.2)\n"
    text = head + "".join(each.text(sounding, "nox" if kind in ("microtones", "all") else "no") for each in blocks)
    for each in blocks:
        notes += each.known(length)
    return Piece(f"{seed}-{kind}", text, arguments, None if kind == "random" else notes, meter, grid, tempo if even else 0)
