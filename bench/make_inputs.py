"""Make the inputs of the benchmark: make_inputs.py FOLDER

Writes one input for each kind of work, NAME.orlo, and one of a tenth of its size, NAME.tenth.orlo. run.py makes its inputs
with this file too.
"""

import os
import sys

# literal values, repeated by the fill up to the end of the block
REPEATED = """i1 = 5 0 -{events} {{
p2 .001
p3 .5
p4 1000
p5 60
}}
"""

# random lengths, amplitudes that move, pitches from either of two sets
DRAWN = """rs(1)
i1 = 5 0 -{events} {{
p2 .001
p3 ra(T 1 [.5 1.5])
p4 mo(T 1 1000 30000)
p5 ra(T .5 [36 60] .5 [60 84])
}}
"""

# literal values but for one section, by a generator
SECTION = """rs(1)
i1 = 5 0 -{events} {{
p2 .001
p3 .5
p4 1000
p5 {section}
}}
"""

SECTIONS = {
    "ra": "ra(T 1 [36 84])",
    "mo": "mo(T 1 36 84)",
    "se": "se(T 1 [36 40 43 48])",
    "ex": "ex(T 1 [p4 / 100 + 7])",
    "ho": "ho(T 60)",
    "s2": "s2(T 1 [36 40 43 48])",
    "ms": "ms(T 1 [36 40] [60 64])",
}

NOTES = """i1 = 5 0 -{notes} {{
p2 .01
p3 {length}
p4 20000
p5 {pitch}
}}
"""


def literal_lines(lines):
    """A value a line: ten bytes with the line end, shared out among the four p-fields."""
    events = lines // 4
    yield f"i1 = 5 0 -{events} {{\n"
    for name, step, start in (("p2", 1, 125), ("p3", 7, 500), ("p4", 11, 1000), ("p5", 13, 36)):
        yield f"{name}\n"
        for i in range(events):
            value = start + i * step % 997
            yield f"{value / 1000:9.5f}\n" if name == "p2" else f"{value:9.3f}\n"
    yield "}\n"


def calls(lines):
    """A macro call a line, then a reference to a constant a line: half of the lines each."""
    events = lines // 2
    yield f"#define STEP #.01#\n#const LENGTH .5\ni1 = 5 0 -{events} {{\np2\n"
    for _ in range(events):
        yield "$STEP\n"
    yield "p3\n"
    for _ in range(events):
        yield "~LENGTH\n"
    yield "p4 1000\np5 60\n}\n"


def notes(length, pitch="60"):
    return lambda count: [NOTES.format(notes=count, length=length, pitch=pitch)]


def chords(count):
    """Chords of three notes."""
    yield from notes(".5", "s2(T 1 [60'64'67])")(count // 3)


def section(name):
    return lambda events: [SECTION.format(events=events, section=SECTIONS[name])]


def repeated(events):
    return [REPEATED.format(events=events)]


# name: (size of the full input, what makes its text)
INPUTS = {
    "repeated": (2_000_000, repeated),
    "many": (20_000_000, repeated),
    "drawn": (2_000_000, lambda events: [DRAWN.format(events=events)]),
    **{name: (1_000_000, section(name)) for name in SECTIONS},
    "lines": (1_000_000, literal_lines),
    "calls": (200_000, calls),
    "midi-apart": (200_000, notes(".5")),  # half of the time to the next note
    "midi-held": (200_000, notes("4000")),  # 3000 seconds, which is beyond the last note's start
    "midi-chords": (200_000, chords),
}


def make_inputs(folder):
    for name, (size, make) in INPUTS.items():
        for path, count in ((f"{name}.orlo", size), (f"{name}.tenth.orlo", size // 10)):
            with open(os.path.join(folder, path), "w", encoding="ascii") as file:
                file.writelines(make(count))


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    os.makedirs(sys.argv[1], exist_ok=True)
    make_inputs(sys.argv[1])
