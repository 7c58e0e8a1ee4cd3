"""A small input takes little time, memory and disk: check_resources.py --orlo PROGRAM [--all] [--seed N] [FAMILY...]

Runs pieces of less than 10,000 bytes, valid ones by tests/fuzz/generate_pieces.py, the same with something broken or blown up in
them, and nasty ones by the families below, for scores and MIDI files, with log and trace and without. No run may take more than 5 s
of a processor, 1 GB of memory or 100 MB of output, the screen among it, unless the piece belongs to a class of CLASSES: then no more
than the formula of the class says. What may take much is run with one set of options, all else with every. Limits of the system hold
back what gets out of hand.

Without --all there are fewer pieces, and none that a class lets take much. With it, every class must have been needed. With
families, their pieces alone.
"""

import argparse
import concurrent.futures
import os
import random
import re
import resource
import signal
import subprocess
import sys
import tempfile
import threading

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "fuzz"))
import generate_pieces

LONGEST = 9999  # bytes of a piece
MEBIBYTE = 1 << 20
MOST = {"seconds": 5, "megabytes": 1000, "output": 100}  # of a run without a class; the last two in 1,000,000 bytes
CUT_OFF = {"seconds": 10, "megabytes": 4000, "output": 200}  # what the system allows; of output for each file
OPTIONS = (), ("-x", "trace", "-l", "log"), ("-m",)
NUMBER = r"(?:\d+\.?\d*|\.\d+)"


# what a piece writes, read from its text as far as the formulas need it

class Block:
    """An i-block: number of p-fields, events as they are written, its sections by number."""

    def __init__(self, fields, length, body):
        self.fields = min(int(fields), 128)
        self.sections = {}
        for number, text in re.findall(r"p\s*(\d{1,3})((?:(?!p\s*\d)[^}])*)", body, flags=re.I):
            self.sections[int(number)] = self.sections.get(int(number), "") + text
        self.events = self.count(float(length))

    def count(self, length):
        """Events of the length, or of the beats at the smallest intervals, times the members of the chords."""
        events = -length
        if length >= 0:
            intervals = self.sections.get(2, "")
            numbers = [value for value in map(float, re.findall(NUMBER, intervals)) if value > 0] or [1]
            smallest = 4 / max(numbers) if "rh" in intervals.lower() else min(numbers)
            events = min(length, 10000) / smallest * len(numbers)
        for number, text in self.sections.items():
            if number > 3:
                events *= 1 + text.count(":") + text.count("'")
        return events


def blocks(text):
    header = rf"i\s*[-+]?\d+\s*=[\s,/]*(\d+)[\s,/]+[^\s,/]+[\s,/]+(-?{NUMBER})"
    parts = re.split(header, text, flags=re.I)
    return [Block(*parts[i:i + 3]) for i in range(1, len(parts), 3)]


def copies(options):
    return 2 if "-l" in options else 1  # of the screen


# classes: what their pieces cost, of which the limits know nothing. Each takes a text and the options of the run.

def cost_of_events(text, options):
    """events that are written as such (i1 = 3 0 -N; beats of tiny intervals; chords in chords): N * (p-fields + 3) * 2 us,
    N * (80 + 8 * p-fields) bytes, N * p-fields * 50 bytes of output; with -m all is doubled"""
    midi = 2 if "-m" in options else 1
    written = blocks(text)
    return {"seconds": midi * sum(block.events * (block.fields + 3) for block in written) * 2e-6,
            "megabytes": midi * max((block.events * (80 + 8 * block.fields) for block in written), default=0) / 1e6,
            "output": midi * sum(block.events * block.fields * 50 for block in written) / 1e6 * copies(options)}


def cost_of_walks(text, _):
    """steps of RW in a narrow window W: N * min(2^24, 2 / W) * 1 ns"""
    seconds = 0
    for block in blocks(text):
        for section in block.sections.values():
            for walk in re.findall(r"rw\s*\(([^)]*)", section, flags=re.I):
                windows = [value for value in map(float, re.findall(NUMBER, walk)) if value > 0]
                seconds += block.events * min(1 << 24, 2 / min(windows, default=1)) * 1e-9
    return {"seconds": seconds}


def cost_of_full_blocks(text, options):
    """steps of a generator of p2 in a block that is full, each with its warning: min(N, 100,000) * 2 * (length of the line + 40)
    bytes"""
    line = max(map(len, text.split("\n")))
    spans = [span for block in blocks(text) for span in re.findall(r"\(\s*-(\d+)", block.sections.get(2, ""))]
    steps = sum(min(int(span), 100000) for span in spans)
    return {"output": steps * 2 * (min(line, 2047) + 40) / 1e6 * copies(options)}


def cost_of_expansions(text, options):
    """expansions with their notices: (1,000,000 + 10 * length of the piece) * (40 + length of the longest name) bytes"""
    if not set("$~") & set(text):
        return {}
    name = max(map(len, re.findall(r"\w+", text)), default=0)
    return {"output": (1000000 + 10 * len(text)) * (40 + name) / 1e6 * copies(options)}


CLASSES = {
    "events": cost_of_events,
    "walks": cost_of_walks,
    "full blocks": cost_of_full_blocks,
    "expansions": cost_of_expansions,
}


# nasty pieces: each family makes one from a source of chance

FAMILIES = []


def family(function):
    FAMILIES.append(function)
    return function


def size(chance, digits):
    """A number of up to so many digits, small ones as likely as large ones."""
    return int(10 ** chance.uniform(0, digits))


def block(events, *sections, fields=4, number=1):
    return f"i{number} = {fields} 0 {events} {{\n" + "\n".join(sections) + "\n}\n"


def to_fill(text, chance):
    """The text so often that the piece is as long as it may be, or not quite."""
    return text * max(1, chance.randint(LONGEST // 2, LONGEST) // max(1, len(text)))


@family
def many_events(chance):
    fields = chance.choice([3, 4, 8, 128])
    return block(-size(chance, 13), "p2 1", "p3 1", *(f"p{p} {p}" for p in range(4, fields + 1)), fields=fields)


@family
def many_blocks(chance):
    return to_fill(block(-size(chance, 4), "p2 1", "p3 .5", "p4 1"), chance)


@family
def tiny_intervals(chance):
    interval = f".{'0' * chance.randint(0, 8)}{chance.randint(1, 9)}"
    start = chance.choice([interval, f"ra(T 1 [0 {interval}])", f"mo(T 1 {interval} 1)", f"rh {size(chance, 9)}", f"0 {interval}",
                           f"<0 0 {interval}>", f"ho(T {interval})", f"ra(10000 1 [0 {interval}])", f"-1 {interval}"])
    return block(chance.randint(1, 10000), f"p2 {start}", "p3 1", "p4 1")


@family
def repeats(chance):
    times = chance.choice(["x0", f"x{size(chance, 19)}", "/" * 1000, "x" + "9" * 50, "x0 x0 x0", " / / /" * 100])
    value = chance.choice(["1", "0", "<1", "1:2:3", "-1", "1'2"])
    return block(chance.choice([-size(chance, 7), 100]), f"p2 {chance.choice(['1', '1 ' + times, '0 ' + times])}", "p3 1",
                 f"p4 {value} {times}{'>' if '<' in value else ''}")


@family
def chords(chance):
    fields = chance.randint(4, 40)
    members = [":".join("1" * chance.randint(1, 4)) for _ in range(4, fields + 1)]
    wrap = chance.choice(["<{}>", "{}", "{} x0", "s2(T 1 [{}])"])
    return block(-chance.choice([1, 2, 100]), "p2 1", "p3 1", *(f"p{p} {wrap.format(m)}" for p, m in enumerate(members, 4)),
                 fields=fields)


@family
def loops(chance):
    values = chance.choice(["1 ", "1:2 ", "1 x5 ", "0 ", "1 / "])
    inner = to_fill(values, chance)[:chance.randint(10, 9000)]
    return block(-size(chance, 6), "p2 1", "p3 1", "p4 " + chance.choice([f"<{inner}>", f"<{inner}> <{inner[:400]}> 5", f"< <{inner}"]))


@family
def groups(chance):
    group = ":".join("1" * chance.randint(1, 40))
    count = chance.randint(1, 130)
    sets = " ".join([group] * count)[:8000]
    return block(-size(chance, 6), "p2 1", "p3 1", f"p4 s2(T 1 {chance.choice(['', '* ', 'x '])}[{sets}])")


@family
def walks(chance):
    window = f".{'0' * chance.randint(0, 12)}{chance.randint(1, 9)}"
    sets = chance.randint(1, 100)
    walk = " ".join(f"{1 / sets:.7f} [{chance.choice(['0 1', '-5 3', '.1 .1'])}] {window} .1" for _ in range(sets))
    return block(-size(chance, 4), "p2 1", "p3 1", f"p4 rw(T {walk if sets > 1 else f'1 [0 1] {window} .1'})")


@family
def choices(chance):
    values = to_fill("1 ", chance)[:chance.randint(2, 8000)]
    name = chance.choice(["se(T 1 {}[{}])", "ms(T 1 {}[{}] [2])", "ms(T 1 {}[2] [{}])", "s2(T 1 {}[{}])"])
    return block(-size(chance, 6), "p2 1", "p3 1", "p4 " + name.format(chance.choice(["", "* ", "x ", "v2* "]), values))


@family
def moves(chance):
    curve = chance.choice(["f", "e", "l", "s", "c", "v2", f"v{size(chance, 30)}", f"v.{'0' * 30}1", "v2*", "*"])
    ends = chance.choice(["1 2", "0 " + "9" * 38, "[1 2] [3 4]", "-" + "9" * 30 + " 1"])
    return block(chance.choice([-size(chance, 6), 100]), "p2 1", "p3 1", f"p4 mo({chance.choice(['T', '50', '-7'])} 1 {curve} {ends})")


@family
def spans(chance):
    span = chance.choice(["T", "T*.0000001", "T*9", "0", "-0", f"-{size(chance, 19)}", f"{size(chance, 19)}", f".{'0' * 40}1"])
    name = chance.choice(["ho({} 1)", "ra({} 1 [1 2])", "mo({} 1 1 2)", "se({} 1 [1 0])", "s2({} 1 [1:2])", "rw({} 1 [0 1] .1 .5)"])
    text = " ".join([name.format(span)] * chance.randint(1, 200))
    where = chance.choice(["p2 {}\np3 1\np4 1", "p2 1\np3 {}\np4 1", "p2 1\np3 1\np4 {}"])
    return block(chance.choice([-size(chance, 6), chance.randint(0, 10000)]), where.format(text))


@family
def full_blocks(chance):
    warned = f"p2 ra(-{size(chance, 6)} 1 1)" + " " * chance.randint(0, 1900)
    return block(chance.choice([1, -1, -10]), warned * chance.randint(1, 4), "p3 1", "p4 1")


@family
def durations(chance):
    code = chance.choice(["0", "-1", "301.5", "401", "1000", "1001.5", "9" * 30, "399", "200", "z"])
    return block(-size(chance, 6), "p2 " + chance.choice(["1", "0", "ra(T 1 [-1 1])"]), f"p3 {code}", "p4 1")


@family
def midi(chance):
    value = chance.choice(["ra(T 1 [0 127])", "60", "9" * 30, "-" + "9" * 30, "ho(T .5)"])
    return block(-size(chance, 6), "p2 " + chance.choice(["1", ".0000001", "9999999", "ra(T 1 [-9 9])"]),
                 "p3 " + chance.choice(["1", "ra(T 1 [0 1000])", "1099", "99999999999"]), f"p4 {value}", f"p5 {value}", fields=5)


@family
def wide_numbers(chance):
    output = chance.choice(["re7", "in", "hz", "bn7", "od", "tr", "xx", "op"])
    value = chance.choice(["9" * 38, "9" * 400, "." + "9" * 400, "-" + "9" * 38, "." + "0" * 60 + "1"])
    return block(-size(chance, 5), "p2 1", "p3 1", *(f"p{p}({output}) {value}" for p in range(4, 12)), fields=11)


@family
def rhythms(chance):
    mark = chance.choice([".", ",", ",4", "/", ".,"])
    return block(-size(chance, 4), "p2 rh 4" + mark * chance.randint(1, 4000), "p3 1", "p4 " + chance.choice(["1", "no c4" + "+" * 900]))


@family
def expressions(chance):
    terms = "".join(chance.choice("+-*%/") + chance.choice(["p2", "p3", "0", ".0000001", "9" * 30]) for _ in range(chance.randint(1, 42)))
    return block(-size(chance, 6), "p2 1", "p3 1", f"p4 ex(T 1 [p2{terms}])")


@family
def all_fields(chance):
    generator = chance.choice(["ra(T 1 [x 0 1])", "rw(T 1 [0 1] .01 .5)", "mo(T 1 e 1 9)", "se(T 1 x [1 2 3])", "1 2 3"])
    return block(-size(chance, 4), "p2 1", "p3 1", *(f"p{p} {generator}" for p in range(4, 129)), fields=128)


@family
def tempo_lists(chance):
    count = chance.randint(1, 60)
    lines = "".join(f"te({i} {i + chance.choice([0, 1, 5000])} {chance.randint(1, 4000)} {chance.randint(1, 4000)} "
                    f"{chance.choice(['', 'v9', 'e', 'v.01'])})\n" for i in range(count))
    return lines + block(chance.choice([-size(chance, 6), 10000]), "p2 1", "p3 401", "p4 1")


@family
def macros_in_macros(chance):
    parameter = chance.choice(["", "(x)"])
    call = "(1)" if parameter else ""
    name = chance.choice(["m", "a_long_name", "n" * chance.randint(1, 250)])
    depth, times = chance.randint(1, 12), chance.randint(1, 12)
    text = f"#define {name}0{parameter} #{chance.choice(['', '1', '$x' if parameter else ' '])}#\n"
    for level in range(1, depth):
        text += f"#define {name}{level}{parameter} #" + f"${name}{level - 1}{call}" * times + "#\n"
    return (text + to_fill(chance.choice(["> ", ""]) + f"${name}{depth - 1}{call}\n", chance))[:LONGEST]


@family
def long_names(chance):
    name = "n" * chance.randint(10, 600)
    calls = f"${name}" * (1000 // len(name))
    text = f"#define {name} ##\n#define a #{calls}#\n#define b #" + "$a" * chance.randint(1, 200) + "#\n"
    return (text + to_fill("$b\n", chance))[:LONGEST]


@family
def macro_bodies(chance):
    body = chance.choice(["1 ", "$e", "/", "#", "'", "~[?+?+?] "]) * chance.randint(1, 1000)
    return (f"#define e ##\n#define a(x) #{body[:2000]}#\n#define b(x) #" + "$a(1)" * chance.randint(1, 30) + "#\n" +
            to_fill(chance.choice(["$b(1)\n", "$a(1)\n", "> $a(1)$b(2)\n"]), chance))[:LONGEST]


@family
def macros_without_end(chance):
    return chance.choice(["#define a #$a$a#\n$a\n", "#define a(x) #$a($x$x)#\n$a(1)\n", "#define a(x) #$x#\n$a($a)\n",
                          "#define a #$b#\n#define b #$a #\n" + "$a\n" * 9, "#define a(x) #$b($x1)#\n#define b(x) #$a($x2)#\n$a(1)\n"])


@family
def definitions(chance):
    return "".join(f"#define m{i}({','.join(f'p{j}' for j in range(chance.randint(1, 130)))}) #{i}#\n" for i in range(300))[:LONGEST]


@family
def constants(chance):
    name = "k" * chance.choice([1, 10, 2000])
    equation = "[" + chance.choice(["?", name, "1", "@1"]) + "+?" * chance.randint(1, 29) + "]"
    line = chance.choice(["> ", ""]) + ("~" + chance.choice([name, equation]) + " ") * chance.randint(1, 20) + "\n"
    return (f"#const {name} {chance.choice(['5', '9' * 300, '-.001'])}\n" + to_fill(line, chance))[:LONGEST]


@family
def conditions(chance):
    opening = chance.choice(["#if(1)\n", "#if(0)\n", "#if(~[?])\n", "#if($a)\n"])
    depth = chance.randint(1, 600)
    return ("#define a #1#\n" + opening * depth + "rs(1)\n" + "#endif\n" * chance.choice([depth, depth - 1, depth + 1, 0]))[:LONGEST]


@family
def comments(chance):
    depth = chance.randint(1, 2400)
    return "/*" * depth + chance.choice(["", "\n", "\n" * 400]) + "*/" * chance.choice([depth, depth - 1, 0])


@family
def includes(chance):
    names = chance.choice([["in.orlo"], ["/dev/null"], ["in.orlo", "/dev/null"], ["."], ["x" * 300], ["nowhere"]])
    lines = "".join(f"#include |{chance.choice(names)}|\n" for _ in range(chance.randint(1, 300)))
    return lines[:LONGEST - 100] + block(-1, "p2 1", "p3 1", "p4 1")


@family
def long_lines(chance):
    part = chance.choice([" ", "1 ", "x", "> ", "/*", "*/", "//", "i1", "p", "#", "$", "~", "\t", "\0", "\xff", "(", "{", "9", "te(60) "])
    before = chance.choice(["", "> ", "i1 = 4 0 -9 {\np2 1\np3 1\np4 ", "#define a #", "/*", "#if(0)\n"])
    return (before + part * chance.randint(100, LONGEST))[:LONGEST]


@family
def direct_lines(chance):
    return to_fill("> " + "f1 0 1024 10 1 " * chance.randint(1, 100) + "\n", chance)


@family
def settings(chance):
    value = chance.choice(["99.99", ".0000001", "0", "1", "9" * 30])
    lines = to_fill(chance.choice([f"rd({value})\n", "rs(7)\n", f"sr({value})\n"]), chance)[:chance.randint(10, 5000)]
    return lines + block(-size(chance, 6), f"p2 dv({value}) 1", f"p3 pf({value}) 1", f"p4 dv({value}) 1")


@family
def noise(chance):
    words = ["i1", "=", "3", "0", "-9", "{", "}", "p2", "p3", "p4", "ra(", "T", "1", "[", "]", ")", "<", ">", "x0", "/", ":", "'", "\n",
             "$a", "~k", "#define a #1#", "#if(1)", "#endif", "/*", "*/", ";", "te(", "rs(", "z", "no", "c4", "rh", "4.", "ho(", "ex("]
    return " ".join(chance.choice(words) for _ in range(chance.randint(1, 2500)))[:LONGEST]


# pieces that a generator makes, and what becomes of them

PARTS = ["x0", "x999999999", "-1000000000", ".0000001", "T", "*", "<", ">", ":", "'", "/*", "*/", "#if(1)", "$", "~", "{", "}", "9" * 40,
         "-", "0", "\0", "\xff", "\n", ";", "#", "(", ")", "[", "]", "z", "x", "/"]


def mutated(text, chance):
    for _ in range(chance.randint(1, 6)):
        at, other = sorted((chance.randint(0, len(text)), chance.randint(0, len(text))))
        way = chance.randint(0, 4)
        if way == 0:
            text = text[:at] + chance.choice(PARTS) + text[at:]
        elif way == 1:
            text = text[:at] + chance.choice(PARTS) + text[at + 1:]
        elif way == 2:
            text = text[:at] + text[at:other] * chance.randint(2, 9) + text[other:]
        elif way == 3:
            text = text[:at] + text[min(other, at + 40):]
        else:
            numbers = list(re.finditer(NUMBER, text)) or [re.match("", text)]
            number = chance.choice(numbers)
            text = text[:number.start()] + str(size(chance, 12)) + text[number.end():]
        text = text[:LONGEST]
    return text


def generated(number, seed):
    text = generate_pieces.make_piece(seed * 1_000_003 + number)
    return text if number % 2 == 0 else mutated(text, random.Random(f"mutated {seed} {number}"))


def make_pieces(options):
    """Names and texts: 2,000 generated and 500 nasty ones, or some of them."""
    chosen = [make for make in FAMILIES if make.__name__ in options.families] or FAMILIES
    if not options.families:
        for number in range(2000 if options.all else 120):
            yield f"generated {number}", generated(number, options.seed)
    for number in range(500 if options.all else 90):
        make = chosen[number % len(chosen)]
        yield f"{make.__name__} {number}", make(random.Random(f"{make.__name__} {options.seed} {number}"))


# runs

def hold_back():
    for what, most in ((resource.RLIMIT_CPU, CUT_OFF["seconds"]), (resource.RLIMIT_AS, CUT_OFF["megabytes"] * MEBIBYTE),
                       (resource.RLIMIT_FSIZE, CUT_OFF["output"] * 1000000)):
        resource.setrlimit(what, (most, most))


def run(orlo, text, options):
    """Status, as Popen has it, and what the run took."""
    with tempfile.TemporaryDirectory(prefix="orlo-resources-") as folder:
        with open(os.path.join(folder, "in.orlo"), "wb") as file:
            file.write(text.encode("latin-1"))
        with open(os.path.join(folder, "screen"), "wb") as screen:
            process = subprocess.Popen([orlo, *options, "in.orlo", "out"], cwd=folder, stdin=subprocess.DEVNULL, stdout=screen,
                                       stderr=screen, preexec_fn=hold_back)
            guard = threading.Timer(60 * CUT_OFF["seconds"], process.kill)  # who sleeps takes no time of a processor
            guard.start()
            _, status, usage = os.wait4(process.pid, 0)
            guard.cancel()
        process.returncode = os.waitstatus_to_exitcode(status)
        output = sum(entry.stat().st_size for entry in os.scandir(folder) if entry.name != "in.orlo")
    return process.returncode, {"seconds": usage.ru_utime + usage.ru_stime, "megabytes": usage.ru_maxrss / 1000,
                                "output": output / 1e6}


def costs(text, options):
    """What the formulas of the classes say: {class: {kind: cost}}."""
    return {name: cost(text, options) for name, cost in CLASSES.items()}


def is_heavy(text, options):
    return any(value > MOST[kind] for cost in costs(text, options).values() for kind, value in cost.items())


def judge(text, options, status, taken):
    """Faults of a run, and the classes that it needed."""
    faults, needed = [], set()
    allowed = costs(text, options)
    for kind, value in taken.items():
        if value <= MOST[kind]:
            continue
        fitting = {name for name, cost in allowed.items() if cost.get(kind, 0) >= value}
        needed |= fitting
        if not fitting:
            said = ", ".join(f"{name} {cost[kind]:.3g}" for name, cost in allowed.items() if kind in cost)
            faults.append(f"{value:.3g} {kind}, {MOST[kind]} at most, by the classes {said}")
    cut_off = status in (-signal.SIGXCPU, -signal.SIGKILL) and taken["seconds"] > MOST["seconds"]  # which was judged above
    if status not in (0, 1) and not cut_off:
        faults.append(f"status {status}")
    return faults, needed


def check(orlo, name, text, all_of_them):
    """Runs a piece with all options; what is wrong, which classes were needed, how many runs there were."""
    told, needed, runs = [], set(), 0
    heavy = any(is_heavy(text, options) for options in OPTIONS)
    if heavy and not all_of_them:
        return told, needed, runs
    for options in [OPTIONS[len(text) % len(OPTIONS)]] if heavy else OPTIONS:
        status, taken = run(orlo, text, options)
        faults, classes = judge(text, options, status, taken)
        told += [f"{name}, options {' '.join(options) or 'none'}: {fault}" for fault in faults]
        needed |= classes
        runs += 1
    return told, needed, runs


def keep(folder, name, text):
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name.replace(" ", "-") + ".orlo"), "wb") as file:
        file.write(text.encode("latin-1"))


def tell(faults):
    """Prints them; how many they are."""
    count = 0
    for count, fault in enumerate(faults, 1):
        print(fault, flush=True)
    return count


def main():
    parser = argparse.ArgumentParser(description="check that small inputs take little time, memory and disk")
    parser.add_argument("--orlo", required=True)
    parser.add_argument("--all", action="store_true", help="thousands of pieces, also those that may take much; minutes")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("families", nargs="*", metavar="FAMILY", choices=[[], *(make.__name__ for make in FAMILIES)])
    parser.add_argument("--keep", metavar="FOLDER", help="where pieces with faults are kept")
    options = parser.parse_args()
    orlo = os.path.abspath(options.orlo)

    pieces = list(make_pieces(options))
    faults = tell(f"{name} has {len(text)} bytes" for name, text in pieces if len(text) > LONGEST)
    needed, runs = set(), 0
    with concurrent.futures.ThreadPoolExecutor(2) as two:
        for (name, text), (told, classes, done) in zip(pieces, two.map(lambda piece: check(orlo, *piece, options.all), pieces)):
            faults += tell(told)
            needed |= classes
            runs += done
            if told and options.keep:
                keep(options.keep, name, text)
    if options.all and not options.families:
        faults += tell(f"no piece needs the class {name}: take it out" for name in sorted(set(CLASSES) - needed))
    print(f"{len(pieces)} pieces, {runs} runs: {faults} faults")
    return 1 if faults or runs < len(pieces) // 2 else 0


if __name__ == "__main__":
    sys.exit(main())
