"""Measure orlo against the least that its work takes:
run.py --orlo PROGRAM --floors PROGRAM --measure PROGRAM [--before PROGRAM] [--rounds N] [--only NAME...]

Makes the inputs, then runs orlo and the floor programs in turn, N rounds, and prints the medians of the CPU time (user and
system time of the process) and of the peak memory, and whether each target is met. Ends with 1 when one is not.
What the floor programs print is compared with what orlo printed, byte for byte. With --before, an earlier orlo runs beside it where
there is no floor to measure by.
"""

import argparse
import array
import collections
import filecmp
import os
import re
import statistics
import subprocess
import sys
import tempfile

import make_inputs

FULL, TENTH = "", ".tenth"
BEFORE = "before"
MOST_BYTES = 44  # an event of five p-fields

# options of orlo, floor programs, and the target: so much of the time of a floor, or of the program before
Work = collections.namedtuple("Work", "name options floors most beside")
WORKS = [
    Work("repeated", ["-s"], ["print", "write"], .20, "print"),
    Work("many", ["-s"], [], None, None),
    Work("drawn", ["-s"], ["print", "write"], .25, "print"),
    *(Work(name, ["-s"], ["print"], {"s2": .25, "ms": .28}.get(name, .20), "print") for name in make_inputs.SECTIONS),
    Work("lines", ["-s"], ["copy"], 2.4, "copy"),
    Work("calls", ["-s"], [], .5, BEFORE),
    *(Work(name, ["-m"], ["trace"], .5, BEFORE) for name in ("midi-apart", "midi-held", "midi-chords")),
]
GROWTH = [("repeated", TENTH, 1.2), ("many", "repeated", 1.1)]  # what an event costs, as against in a run of a tenth of the size

Target = collections.namedtuple("Target", "text value most unit")

TRACE_LINE = re.compile(r"\n *(\S+)\t *(\S+)\t(ON|OFF)\tN: *(\S+)\tV: *(\S+)\t")


class Bench:
    """The programs, the folder they work in, and what has been measured: a list of runs for each (work, kind)."""

    def __init__(self, orlo, floors, measure, before, folder):
        self.orlo, self.floors, self.measure, self.before, self.folder = orlo, floors, measure, before, folder
        self.runs = collections.defaultdict(list)

    def path(self, name):
        return os.path.join(self.folder, name)

    def run(self, command, screen):
        """CPU seconds and peak memory in bytes of a command whose last argument is its result, if it has one, and whose standard
        error goes into a file. What a run before left there is taken away: emptying a large file takes its time too."""
        for path in (command[-1], screen):
            if path.endswith((".out", ".screen")) and os.path.exists(path):
                os.remove(path)
        result = subprocess.run([self.measure, screen, *command], stdout=subprocess.PIPE, text=True, check=False)
        if result.returncode != 0:
            sys.exit(f"{' '.join(command)} ended with {result.returncode}")
        seconds, peak = result.stdout.split()
        return float(seconds), int(peak)

    def run_orlo(self, work, size):
        piece, result, screen = (self.path(work.name + size + end) for end in (".orlo", ".out", ".screen"))
        self.runs[work.name, "orlo" + size].append(self.run([self.orlo, *work.options, piece, result], screen))

    def run_before(self, work):
        piece, result, screen = (self.path(end) for end in (work.name + ".orlo", "before.out", "before.screen"))
        self.runs[work.name, BEFORE].append(self.run([self.before, *work.options, piece, result], screen))

    def run_floor(self, work, floor):
        """Runs a floor program on what orlo read or wrote. Returns what must be equal: orlo's file and the floor's."""
        piece, result, arrays = (self.path(work.name + end) for end in (".orlo", ".out", ".arrays"))
        copy, screen = self.path("floor.out"), self.path("floor.screen")
        names, pair = {
            "print": ([arrays, copy], (result, copy)),
            "write": ([result, copy], (result, copy)),
            "copy": ([piece, copy], (piece, copy)),
            "trace": ([arrays], (self.path(work.name + ".trace"), screen)),
        }[floor]
        self.runs[work.name, floor].append(self.run([self.floors, floor, *names], screen))
        return pair

    def prepare(self, work):
        """Makes the arrays that the floor programs print, from what orlo printed."""
        if "print" in work.floors:
            with open(self.path(work.name + ".out"), encoding="ascii") as score:
                rows = array.array("f", (float(word) for line in score if line.startswith("i1 ")
                                         for word in line.split()[1:]))
            self.write_arrays(work, rows, 4)
        elif "trace" in work.floors:
            with open(self.path(work.name + ".screen"), encoding="ascii", newline="") as file:
                screen = file.read()
            first, *_, last = TRACE_LINE.finditer(screen)
            with open(self.path(work.name + ".trace"), "w", encoding="ascii", newline="") as file:
                file.write(screen[first.start():last.end()])
            rows = array.array("f", (float({"ON": 1, "OFF": 0}.get(word, word)) for match in TRACE_LINE.finditer(screen)
                                     for word in match.groups()))
            self.write_arrays(work, rows, 5)

    def write_arrays(self, work, rows, columns):
        with open(self.path(work.name + ".arrays"), "wb") as file:
            for column in range(columns):
                rows[column::columns].tofile(file)

    def round(self, works):
        for work in works:
            self.run_orlo(work, FULL)
            for floor in work.floors:
                self.run_floor(work, floor)
            if self.before and work.beside == BEFORE:
                self.run_before(work)
            self.run_orlo(work, TENTH)

    def check(self, work):
        """The floor programs print the bytes that orlo printed."""
        for floor in work.floors:
            expected, printed = self.run_floor(work, floor)
            if not filecmp.cmp(expected, printed, shallow=False):
                sys.exit(f"{work.name}: the floor \"{floor}\" did not print what orlo printed: {expected}, {printed}")

    def seconds(self, name, kind="orlo"):
        return statistics.median(seconds for seconds, _ in self.runs[name, kind])

    def bytes(self, name, kind="orlo"):
        return statistics.median(peak for _, peak in self.runs[name, kind])


def targets(bench, works):
    """What a run must reach, for the works that were run."""
    names = [work.name for work in works]
    for work in works:
        if (work.name, work.beside) in bench.runs:
            yield Target(f"{work.name}: time of \"{work.beside}\"",
                         bench.seconds(work.name) / bench.seconds(work.name, work.beside), work.most, "")
    if "repeated" in names:
        yield Target("repeated: peak memory an event", bench.bytes("repeated") / size_of("repeated"), MOST_BYTES, " bytes")
    for name, smaller, most in GROWTH:
        if name in names and (smaller == TENTH or smaller in names):
            less = bench.seconds(name, "orlo" + TENTH) if smaller == TENTH else bench.seconds(smaller)
            yield Target(f"{name}: time of an event in a tenth of the work", bench.seconds(name) / less / 10, most, "")


def size_of(name):
    return make_inputs.INPUTS[name][0]


def print_medians(bench, works):
    print(f"{'work':12} {'program':18} {'size':>9} {'ms':>8} {'us each':>8} {'MiB':>7} {'bytes each':>10} {'floors':>7}")
    for work in works:
        for kind in [kind for kind in ("orlo", *work.floors, BEFORE, "orlo" + TENTH) if (work.name, kind) in bench.runs]:
            size = size_of(work.name) // (10 if kind.endswith(TENTH) else 1)
            seconds, peak = bench.seconds(work.name, kind), bench.bytes(work.name, kind)
            ratio = f"{bench.seconds(work.name) / seconds:7.2f}" if not kind.startswith("orlo") else ""
            print(f"{work.name:12} {kind:18} {size:9} {seconds * 1e3:8.1f} {seconds / size * 1e6:8.3f} "
                  f"{peak / 2**20:7.1f} {peak / size:10.1f} {ratio}".rstrip())


def print_targets(bench, works):
    """Prints the table of targets; true when all are met."""
    print(f"\n{'target':45} {'measured':>9} {'at most':>8}")
    missed = 0
    for target in targets(bench, works):
        met = target.value <= target.most
        missed += not met
        print(f"{target.text:45} {target.value:9.2f} {target.most:8g}{target.unit:7} {'met' if met else 'MISSED'}")
    return missed == 0


def main():
    parser = argparse.ArgumentParser(description="measure orlo against the least that its work takes")
    parser.add_argument("--orlo", required=True, help="the program")
    parser.add_argument("--floors", required=True, help="the floor programs")
    parser.add_argument("--measure", required=True, help="the program that runs the others")
    parser.add_argument("--before", type=os.path.abspath, help="an earlier orlo, for works without a floor")
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--only", nargs="+", metavar="NAME", choices=list(make_inputs.INPUTS), help="some kinds of work alone")
    options = parser.parse_args()

    works = [work for work in WORKS if options.only is None or work.name in options.only]
    with tempfile.TemporaryDirectory(prefix="orlo-bench-") as folder:
        make_inputs.make_inputs(folder)
        bench = Bench(*map(os.path.abspath, (options.orlo, options.floors, options.measure)), options.before,
                      folder)
        for work in works:
            bench.run_orlo(work, FULL)
            bench.prepare(work)
            bench.check(work)
        bench.runs.clear()  # so far everything has run for the first time
        for _ in range(options.rounds):
            bench.round(works)
        print_medians(bench, works)
        return 0 if print_targets(bench, works) else 1


if __name__ == "__main__":
    sys.exit(main())
