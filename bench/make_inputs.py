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

# random lengths and pitches, amplitudes that move
DRAWN = """rs(1)
i1 = 5 0 -{events} {{
p2 .001
p3 ra(T 1 [.5 1.5])
p4 mo(T 1 1000 30000)
p5 ra(T 1 [36 84])
}}
"""

NOTES = """i1 = 5 0 -{notes} {{
p2 .01
p3 {length}
p4 20000
p5 60
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


def notes(length):
    return lambda count: [NOTES.format(notes=count, length=length)]


# name: (size of the full input, what makes its text)
INPUTS = {
    "repeated": (2_000_000, lambda events: [REPEATED.format(events=events)]),
    "drawn": (2_000_000, lambda events: [DRAWN.format(events=events)]),
    "lines": (1_000_000, literal_lines),
    "calls": (200_000, calls),
    "midi-apart": (200_000, notes(".5")),  # half of the time to the next note
    "midi-held": (200_000, notes("4000")),  # 3000 seconds, which is beyond the last note's start
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
