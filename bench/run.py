"""Measure orlo against the least that its work takes:
run.py --orlo PROGRAM --explain PROGRAM --floors PROGRAM --measure PROGRAM [--before PROGRAM] [--rounds N] [--only NAME...]

Makes the inputs, then runs orlo and the floor programs in turn, and prints the medians of the CPU time (user and system time of the
process), of the system time in it, and of the peak memory, and whether each target is met. Ends with 1 when one is not.
A target's two programs run side by side: the quicker one before and after the slower one, so that what changes the speed of the
machine changes both. Each such round gives a ratio; N of them are made, more where they are short, and their median counts. Beside
it stand the quartiles, and the ratio of the instructions, where perf or valgrind can count them.
What the floor programs print is compared with what orlo printed, byte for byte. With --before, an earlier orlo runs beside it where
there is no floor to measure by. orlo-explain is measured on some of the pieces: against orlo without single events, and with them
by the second and the byte.
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

import instructions
import make_inputs

FULL, TENTH = "", ".tenth"
ORLO, BEFORE, EXPLAIN, SUMMARY = "orlo", "before", "explain", "summary"
LEAST_SECONDS = 4  # of the rounds of a target together
MOST_ROUNDS = 40
LONG_TO_COUNT = .2  # seconds
MOST_BYTES = 44  # an event of five p-fields

# options of orlo, floor programs, and the target: so much of the time of a floor, or of the program before
Work = collections.namedtuple("Work", "name options floors most beside")
WORKS = [
    Work("repeated", ("-s",), ("print", "write"), .20, "print"),
    Work("many", ("-s",), ("write",), None, None),
    Work("drawn", ("-s",), ("print", "write"), .25, "print"),
    *(Work(name, ("-s",), ("print",), {"s2": .25, "ms": .28}.get(name, .20), "print") for name in make_inputs.SECTIONS),
    Work("lines", ("-s",), ("copy",), 2.4, "copy"),
    Work("calls", ("-s",), (), .5, BEFORE),
    *(Work(name, ("-m",), ("trace",), .5, BEFORE) for name in ("midi-apart", "midi-held", "midi-chords")),
]
EXPLAINED = {"repeated", "drawn"}
SUMMARY_MOST = 1.5           # of the time of orlo
EXPLAIN_SECONDS = 2.5        # a million events
EXPLAIN_BYTES = 2**30 / 1e6  # an event
GROWTH = [("repeated", TENTH, 1.2), ("many", "repeated", 1.1)]  # what an event costs, as against in a run of a tenth of the size

Job = collections.namedtuple("Job", "work size program")  # one of orlo, the orlo before, and the floor programs
Ratio = collections.namedtuple("Ratio", "text above below scale most")  # of two jobs

TRACE_LINE = re.compile(r"\n *(\S+)\t *(\S+)\t(ON|OFF)\tN: *(\S+)\tV: *(\S+)\t")


class Bench:
    """The programs, the folder they work in, and what has been measured: runs of each job, ratios of two."""

    def __init__(self, orlo, explain, floors, measure, before, folder):
        self.orlo, self.explain, self.floors, self.measure = orlo, explain, floors, measure
        self.before, self.folder = before, folder
        self.runs = collections.defaultdict(list)
        self.ratios = collections.defaultdict(list)
        self.speed = {}  # seconds of each job when it ran first
        self.count = instructions.counter()

    def path(self, name):
        return os.path.join(self.folder, name)

    def run(self, command, screen):
        """CPU seconds, peak memory in bytes, and the system's seconds of a command whose last argument is its result, if it has one, and whose standard
        error goes into a file. What a run before left there is taken away: emptying a large file takes its time too."""
        for path in (command[-1], screen):
            if path.endswith((".out", ".screen")) and os.path.exists(path):
                os.remove(path)
        result = subprocess.run([self.measure, screen, *command], stdout=subprocess.PIPE, text=True, check=False)
        if result.returncode != 0:
            sys.exit(f"{' '.join(command)} ended with {result.returncode}")
        own, systems, peak = result.stdout.split()
        return float(own) + float(systems), int(peak), float(systems)

    def files(self, job):
        """The command of a job and what it reads and writes, and its screen."""
        piece, result, arrays, screen = (self.path(job.work.name + job.size + end)
                                         for end in (".orlo", ".out", ".arrays", ".screen"))
        copy, floor_screen = self.path("floor.out"), self.path("floor.screen")
        return {
            ORLO: ([self.orlo, *job.work.options, piece, result], screen),
            EXPLAIN: ([self.explain, piece, "-o", self.path("explain.out")], self.path("explain.screen")),
            SUMMARY: ([self.explain, "--no-events", piece, "-o", self.path("explain.out")], self.path("explain.screen")),
            BEFORE: ([self.before, *job.work.options, piece, self.path("before.out")], self.path("before.screen")),
            "print": ([self.floors, "print", arrays, copy], floor_screen),
            "write": ([self.floors, "write", result, copy], floor_screen),
            "copy": ([self.floors, "copy", piece, copy], floor_screen),
            "trace": ([self.floors, "trace", arrays], floor_screen),
        }[job.program]

    def do(self, job):
        """Runs a job once. Returns its CPU seconds."""
        measured = self.run(*self.files(job))
        self.runs[job].append(measured)
        return measured[0]

    def round(self, ratio):
        """Runs the slower of two jobs once, the quicker one before and after it, more than once where it is much quicker."""
        quick, slow = sorted((ratio.above, ratio.below), key=self.speed.get)
        times = min(4, max(1, round(self.speed[slow] / self.speed[quick] / 4)))
        before = [self.do(quick) for _ in range(times)]
        seconds = {slow: self.do(slow)}
        seconds[quick] = statistics.mean(before + [self.do(quick) for _ in range(times)])
        self.ratios[ratio].append(seconds[ratio.above] / seconds[ratio.below] / ratio.scale)

    def rounds(self, ratio, least):
        """How many rounds a ratio gets."""
        return max(least, min(MOST_ROUNDS, round(LEAST_SECONDS / (self.speed[ratio.above] + self.speed[ratio.below]))))

    def prepare(self, work, size):
        """Makes the arrays that the floor programs print, from what orlo printed."""
        name = work.name + size
        if "print" in work.floors:
            with open(self.path(name + ".out"), encoding="ascii") as score:
                rows = array.array("f", (float(word) for line in score if line.startswith("i1 ")
                                         for word in line.split()[1:]))
            self.write_arrays(name, rows, 4)
        elif "trace" in work.floors:
            with open(self.path(name + ".screen"), encoding="ascii", newline="") as file:
                screen = file.read()
            first, *_, last = TRACE_LINE.finditer(screen)
            with open(self.path(name + ".trace"), "w", encoding="ascii", newline="") as file:
                file.write(screen[first.start():last.end()])
            rows = array.array("f", (float({"ON": 1, "OFF": 0}.get(word, word)) for match in TRACE_LINE.finditer(screen)
                                     for word in match.groups()))
            self.write_arrays(name, rows, 5)

    def write_arrays(self, name, rows, columns):
        with open(self.path(name + ".arrays"), "wb") as file:
            for column in range(columns):
                rows[column::columns].tofile(file)

    def check(self, work):
        """The floor programs print the bytes that orlo printed."""
        for floor in work.floors:
            self.do(Job(work, FULL, floor))
            expected = self.path(work.name + {"copy": ".orlo", "trace": ".trace"}.get(floor, ".out"))
            printed = self.path("floor.screen" if floor == "trace" else "floor.out")
            if not filecmp.cmp(expected, printed, shallow=False):
                sys.exit(f"{work.name}: the floor \"{floor}\" did not print what orlo printed: {expected}, {printed}")

    def seconds(self, job):
        return statistics.median(seconds for seconds, _, _ in self.runs[job])

    def systems_seconds(self, job):
        return statistics.median(systems for _, _, systems in self.runs[job])

    def bytes(self, job):
        return statistics.median(peak for _, peak, _ in self.runs[job])

    def instructions(self, ratio):
        """The ratio of the instructions, in a tenth of the work where the whole takes long; None when they can't be counted."""
        if self.count is None:
            return None
        size = FULL if self.speed[ratio.above] + self.speed[ratio.below] < LONG_TO_COUNT else TENTH
        above, below = (self.count(self.files(job._replace(size=size))[0]) for job in (ratio.above, ratio.below))
        return above / below if above and below else None


def ratios_of(works, before):
    """The ratios that have a target, for the works that are run."""
    by_name = {work.name: work for work in works}
    for work in works:
        if work.beside and (before or work.beside != BEFORE):
            below = Job(work, FULL, work.beside)
            yield Ratio(f"{work.name}: time of \"{work.beside}\"", Job(work, FULL, ORLO), below, 1, work.most)
        if work.name in EXPLAINED:
            above, below = Job(work, FULL, SUMMARY), Job(work, FULL, ORLO)
            yield Ratio(f"{work.name}: orlo-explain --no-events, of orlo", above, below, 1, SUMMARY_MOST)
    for name, smaller, most in GROWTH:
        if name in by_name and (smaller == TENTH or smaller in by_name):
            work = by_name[name]
            below = Job(work, TENTH, ORLO) if smaller == TENTH else Job(by_name[smaller], FULL, ORLO)
            yield Ratio(f"{name}: time of an event in a tenth of the work", Job(work, FULL, ORLO), below, 10, most)


def size_of(name):
    return make_inputs.INPUTS[name][0]


def print_medians(bench):
    print(f"{'work':12} {'program':12} {'runs':>4} {'size':>9} {'ms':>8} {'system':>7} {'us each':>8} {'MiB':>7} {'bytes each':>10}")
    for job in bench.runs:
        size = size_of(job.work.name) // (10 if job.size == TENTH else 1)
        seconds, peak = bench.seconds(job), bench.bytes(job)
        print(f"{job.work.name:12} {job.program:12} {len(bench.runs[job]):4} {size:9} {seconds * 1e3:8.1f} {bench.systems_seconds(job) * 1e3:7.1f} "
              f"{seconds / size * 1e6:8.3f} {peak / 2**20:7.1f} {peak / size:10.1f}")


def print_target(text, value, most, spread="", counted=None):
    """Prints a line of the table of targets; true when it is met."""
    shown = "" if counted is None else f"{counted:.2f}"
    print(f"{text:45} {value:9.2f} {spread:>11} {shown:>12} {most:8g} {'met' if value <= most else 'MISSED'}", flush=True)
    return value <= most


def print_growth(bench, ratio):
    """Beside the target: how much of the growth is the program's own time, and how that of a program grows that writes the bytes."""
    def own(job):
        return bench.seconds(job) - bench.systems_seconds(job)

    jobs = ratio.above, ratio.below
    print(f"  {'its own time, without the system':43} {own(jobs[0]) / own(jobs[1]) / ratio.scale:9.2f}")
    floors = [job._replace(program="write") for job in jobs]
    if all(floor in bench.runs for floor in floors):
        print(f"  {'a program that writes its bytes':43} {bench.seconds(floors[0]) / bench.seconds(floors[1]) / ratio.scale:9.2f}")


def print_targets(bench, works):
    """Prints the table of targets; true when all are met."""
    print(f"\n{'target':45} {'measured':>9} {'quartiles':>11} {'instructions':>12} {'at most':>8}")
    met = True
    for ratio, values in bench.ratios.items():
        low, _, high = statistics.quantiles(values) if len(values) > 1 else 3 * values
        counted = bench.instructions(ratio) if ratio.scale == 1 else None
        met &= print_target(ratio.text, statistics.median(values), ratio.most, f"{low:.2f}-{high:.2f}", counted)
        if ratio.scale != 1:
            print_growth(bench, ratio)
    for work in works:
        if work.name == "repeated":
            peak = bench.bytes(Job(work, FULL, ORLO))
            met &= print_target("repeated: bytes of peak memory an event", peak / size_of(work.name), MOST_BYTES)
        if work.name in EXPLAINED:
            job, size = Job(work, FULL, EXPLAIN), size_of(work.name)
            met &= print_target(f"{work.name}: orlo-explain, s for 1M events", bench.seconds(job) / size * 1e6, EXPLAIN_SECONDS)
            met &= print_target(f"{work.name}: orlo-explain, bytes an event", bench.bytes(job) / size, EXPLAIN_BYTES)
    return met


def measure(bench, works, least):
    """Runs all works for the first time, which does not count, then the rounds."""
    for work in works:
        for size in (FULL, TENTH):
            bench.do(Job(work, size, ORLO))
            bench.prepare(work, size)
        bench.check(work)
    ratios = list(ratios_of(works, bench.before))
    for ratio in ratios:
        for job in (ratio.above, ratio.below):
            if job not in bench.runs:
                bench.do(job)
    bench.speed = {job: bench.seconds(job) for job in bench.runs}
    bench.runs.clear()
    rounds = {ratio: bench.rounds(ratio, least) for ratio in ratios}
    for number in range(max(rounds.values(), default=0)):
        for ratio in ratios:
            if number < rounds[ratio]:
                bench.round(ratio)
        for work in works:
            for floor in (floor for floor in work.floors if floor != work.beside and number < least):
                bench.do(Job(work, FULL, floor))
            if number < least and work.name in EXPLAINED:
                bench.do(Job(work, FULL, EXPLAIN))


def main():
    parser = argparse.ArgumentParser(description="measure orlo against the least that its work takes")
    parser.add_argument("--orlo", required=True, help="the program")
    parser.add_argument("--explain", required=True, help="the program that explains")
    parser.add_argument("--floors", required=True, help="the floor programs")
    parser.add_argument("--measure", required=True, help="the program that runs the others")
    parser.add_argument("--before", type=os.path.abspath, help="an earlier orlo, for works without a floor")
    parser.add_argument("--rounds", type=int, default=5, help="the least of each target")
    parser.add_argument("--only", nargs="+", metavar="NAME", choices=list(make_inputs.INPUTS), help="some kinds of work alone")
    options = parser.parse_args()

    works = [work for work in WORKS if options.only is None or work.name in options.only]
    with tempfile.TemporaryDirectory(prefix="orlo-bench-") as folder:
        make_inputs.make_inputs(folder)
        bench = Bench(*map(os.path.abspath, (options.orlo, options.explain, options.floors, options.measure)), options.before, folder)
        measure(bench, works, options.rounds)
        print_medians(bench)
        return 0 if print_targets(bench, works) else 1


if __name__ == "__main__":
    sys.exit(main())
