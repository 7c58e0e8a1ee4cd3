"""The draws that orlo-explain lists give the values again: check_draws.py --orlo PROGRAM --explain PROGRAM [--cases] [--pages]
[--count N] [FILE...]

For every section of a document each value is computed once more, from the seed of its sequence and the places of its draws alone:
the choice of the set, the generator's own draws and those that it refused, and the deviation. It must be the same 32 bits, and take
as many draws as are listed. Then all draws of a run must be accounted for: they are listed once, and between those of the sections
are only those of "?" in equations, which orlo's screen tells. After an error, nothing is asked of what was drawn behind it.

The sequence is that of the GNU C library's rand; the generators are those of the manual, with the program's 32-bit steps.
"""

import argparse
import itertools
import math
import os
import re
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, HERE)
import literals
from check_explain import along, amount_of
from explain_document import Fault, number32, single
from explain_pieces import add_options, check_all
from literals import divided, same

UNIT = single(4.656613e-10)
LN_1000 = single(6.9078)
MOST_WINDOW_DRAWS = 1 << 24
MOST_DRAWS = 1 << 21  # of a sequence, that are made again
RANDOM_STEPS = 32767  # of "?"


class Sequence:
    """The draws of a seed: x[i] = x[i-3] + x[i-31] modulo 2^32, without the lowest bit."""

    def __init__(self, seed):
        word = seed or 1
        word -= 2 ** 32 if word >= 2 ** 31 else 0
        self.words = [word % 2 ** 32]
        for _ in range(30):
            word = int(math.fmod(16807 * word, 2147483647))
            word += 2147483647 if word < 0 else 0
            self.words.append(word)
        self.words += self.words[:3]

    def draw(self, place):
        words = self.words
        while len(words) <= place + 344:
            words.append((words[-3] + words[-31]) & 0xFFFFFFFF)
        return words[place + 344] >> 1


def uniform_of(draw):
    return single(single(float(draw)) * UNIT)


class Draws:
    """The draws of one value, from the first on."""

    def __init__(self, sequence, first):
        self.sequence, self.first, self.next, self.refused = sequence, first, first, []

    def whole(self):
        self.next += 1
        return self.sequence.draw(self.next - 1)

    def uniform(self):
        return uniform_of(self.whole())

    def refuse(self, count):
        """So many draws that were made last came to nothing."""
        self.refused.append((self.next - count, count))

    def above_zero(self):
        while True:
            found = self.uniform()
            if found != 0:
                return found
            self.refuse(1)

    def deviated(self, value, deviation):
        u, amount = self.uniform(), single(deviation * value)
        return single(single(u * amount) + single(-0.5 * amount) + value)


# ---- distributions

def left(draws):
    return min(single(-math.log(draws.above_zero()) / LN_1000), 1.0)


def triangular(draws, spread):
    first = draws.uniform()
    return single(single(single(first + draws.uniform()) * 0.5) * spread)


def gaussian(draws):
    total = 0.0
    for _ in range(12):
        total = single(total + draws.uniform())
    return min(max(single(single(single(total - 6) * single(0.155)) + 0.5), 0.0), 1.0)


def bilateral(draws):
    w = single(2 * draws.uniform())
    while w in (0, 2):
        draws.refuse(1)
        w = single(2 * draws.uniform())
    sign = 1.0
    if w > 1:
        w, sign = single(2 - w), -1.0
    x = single(sign * math.log(w) / 14.0)
    return 1.0 if x > 0.5 else single(max(x, -0.5) + 0.5)


def beta(draws):
    while True:
        u = draws.above_zero()
        v = draws.above_zero()
        x, y = single(math.pow(u, 5.0)), single(math.pow(v, 5.0))
        if single(x + y) <= 1:
            return single(x / single(x + y))
        draws.refuse(2)


SHARES = {"low": left, "high": lambda draws: single(1 - left(draws)), "gaussian": gaussian, "bilateral": bilateral, "beta": beta}


def random_value(draws, given):
    low, high = number32(given["low"]), number32(given["high"])
    spread, kind = single(high - low), given["distribution"]
    if kind == "uniform":
        part = single(single(single(float(draws.whole())) * spread) * UNIT)
    elif kind == "triangular":
        part = triangular(draws, spread)
    else:
        part = single(SHARES[kind](draws) * spread)
    return single(low + part)


# ---- generators

class Choice:
    """Which element of a list comes next."""

    def __init__(self, mode, count):
        self.mode, self.count = mode if count > 1 else "any", count
        self.last, self.done = None, set()

    def next(self, draws):
        if self.mode == "all_before_repeating" and len(self.done) == self.count:
            self.done.clear()
        while True:
            element = draws.whole() % self.count
            if self.mode == "all_before_repeating" and element in self.done or self.mode == "never_twice" and element == self.last:
                draws.refuse(1)
                continue
            self.last = element
            self.done.add(element)
            return element


class Walk:
    def __init__(self, given):
        self.low, self.high = number32(given["ranges"][0]["low"]), number32(given["ranges"][0]["high"])
        self.width, self.position = number32(given["window"]), 0.0
        if self.low != self.high:
            self.position = single(single(number32(given["start"]) - self.low) / single(self.high - self.low))

    def window(self):
        half = single(0.5 * self.width)
        low, high = single(self.position - half), single(self.position + half)
        if low < 0:
            return 0.0, self.width
        return (single(1 - self.width), 1.0) if high > 1 else (low, high)

    def step(self, draws):
        before, (low, high) = self.position, self.window()
        if low == high:
            draws.whole()
        else:
            for _ in range(MOST_WINDOW_DRAWS):
                u = draws.uniform()
                if low <= u <= high:
                    self.position = u
                    break
        return single(single(before * single(self.high - self.low)) + self.low)


class Unknown(Exception):
    """A value that can't be computed from the document: what it takes from its event is gone with a rest."""


class Generator:
    """A generator's command, with what its sets remember."""

    def __init__(self, command, section, place_of):
        self.command, self.section, self.place_of, self.name = command, section, place_of, command["name"]
        self.sets, self.span = command["sets"], number32(command["span"])
        self.weights = [number32(each.get("weight", 1)) for each in self.sets]
        self.choices = [self.choice_of(each) for each in self.sets]
        self.walks = [Walk(each) for each in self.sets] if self.name == "RW" else []
        self.elapsed = 0.0
        self.group = []  # values of a group that are still to come

    def choice_of(self, given):
        lists = given.get("lists", [])
        if self.name == "S2":
            return Choice(given.get("choice", "any"), len(lists))
        return Choice(given.get("choice", "any"), len(lists[0])) if self.name == "SE" else None

    def choose_set(self, draws):
        u, total = draws.uniform(), 0.0
        if len(self.sets) <= 1:
            return 0
        for place, weight in enumerate(self.weights):
            total = single(total + weight)
            if u <= total:
                return place
        return len(self.sets) - 1

    def count(self):
        return int(abs(self.span)) if self.span < 0 else self.command["count"]

    def curve(self, given, value, start, end, exponent=None):
        """The value of a curve at the place of a value."""
        letter, by_beat = given["curve"], given.get("by_beat", False)
        exponent = number32(given.get("exponent", 1)) if exponent is None else exponent
        index, count = value - self.command["first"], self.count()
        if self.section.pfield == 2 and self.span >= 0:
            time, total = self.elapsed, self.span
        elif self.section.pfield == 2 or not by_beat:
            if count == 1:
                return start
            if index > count - 1:
                return end
            return self.shape(letter, by_beat, exponent, index / (count - 1), start, end)
        else:
            beat, first, last = self.place_of(value), self.place_of(self.command["first"]), self.last_beat()
            time, total, by_beat = single(beat - first), single(last + first), False
        if time >= total:
            return end
        return start if time <= 0 else self.shape(letter, by_beat, exponent, time / total, start, end)

    @staticmethod
    def shape(letter, by_beat, exponent, x, start, end):
        return 0.0 if by_beat else along(letter, exponent, x, start, end)  # in p2 a curve can't follow the beat

    def last_beat(self):
        """Beat of the last event that the span covers."""
        first = self.place_of(self.command["first"])
        beats, place = self.section.block.beats, self.place_of.event(self.command["first"])
        limit, last = single(first + self.span), first
        for beat in beats[place:]:
            if beat > limit:
                break
            last = beat
        return last

    def make(self, draws, value):
        """The next value and the set that makes it."""
        if self.group:
            return self.group.pop(0), self.chosen
        chosen = self.chosen = self.choose_set(draws)
        given = self.sets[chosen]
        made = getattr(self, "make_" + self.name)(given, chosen, draws, value)
        if self.section.kinds[value] == "in" and self.section.pfield > 2 and self.name != "S2":
            made = literals.rounded(made)
        return made, chosen

    def make_RA(self, given, _, draws, __):
        return random_value(draws, given["ranges"][0])

    def make_RW(self, _, chosen, draws, __):
        return self.walks[chosen].step(draws)

    def make_MO(self, given, _, draws, value):
        start = random_value(draws, given["ranges"][0])
        return self.curve(given, value, start, random_value(draws, given["ranges"][1]))

    def make_SE(self, given, chosen, draws, _):
        return number32(given["lists"][0][self.choices[chosen].next(draws)])

    def make_HO(self, given, *_):
        return number32(given["lists"][0][0])

    def make_MS(self, given, _, draws, value):
        in_p2 = self.section.pfield == 2
        chance = self.curve(given, value, 1.0, 0.0, 1.0 if in_p2 else None)
        from_first = chance >= draws.uniform()
        first, second = given["lists"]
        drawn = draws.whole() % len(first if from_first else second)
        record = [given.get("exponent", 1), *first, *second] if in_p2 else [*first, *second]  # p2 reads one place before
        return number32(record[drawn + (0 if from_first else len(first))])

    def make_S2(self, given, chosen, draws, _):
        groups = given["lists"]
        self.group = [number32(each) for each in groups[self.choices[chosen].next(draws)]]
        return self.group.pop(0)

    def make_EX(self, given, _, __, value):
        event = self.place_of.row(value)
        terms = [self.section.block.events.value[int(each[1:])][event] if isinstance(each, str) and each[0] == "p" else each
                 for each in given["terms"]]
        made = number32(terms[0])
        for operation, term in itertools.zip_longest(terms[1::2], terms[2::2]):
            made = applied(made, operation, number32(term))
        return literals.rounded(made) if given.get("rounded") else made


def applied(value, operation, term):
    if operation == "+":
        return single(value + term)
    if operation == "-":
        return single(value - term)
    if operation == "*":
        return single(value * term)
    return single(divided(value, term)) if operation == "/" else literals.modulo(value, term)


class Places:
    """The events of a section's values."""

    def __init__(self, section):
        self.section, self.rows = section, {}
        events = section.block.events
        if events:
            for event, origin in enumerate(events.origin[section.pfield]):
                self.rows.setdefault(origin, event)

    def row(self, value):
        """The event that a value went to, by its place among those that were written."""
        if value not in self.rows:
            raise Unknown
        return self.rows[value]

    def event(self, value):
        """The p2 value of a value's event."""
        return self.section.block.events.origin[2][self.row(value)]

    def __call__(self, value):
        return self.section.block.events.beat[self.row(value)]


# ---- sections

class Replay:
    """One document's draws."""

    def __init__(self, document):
        self.document, self.faults, self.taken, self.unknown, self.values = document, [], {}, 0, 0
        self.sequences = [Sequence(each["seed"]) for each in document.fields["sequences"]]
        self.rd = {0.0}
        for commands in [document.fields["commands"]] + [each.fields["commands"] for each in document.blocks]:
            self.note_deviations(commands)
        for block in document.blocks:
            self.block(block)

    def note_deviations(self, commands):
        self.rd |= {number32(each["numbers"][0]) for each in commands if each["name"] == "rd" and each.get("numbers")}

    def block(self, block):
        for section in block.sections:
            self.note_deviations(section.fields["commands"])
        if 2 in block.by_pfield and block.by_pfield[2].has_values:
            block.beats = beats_of(block)
        for section in block.sections:
            if section.has_values:
                self.section(section)

    def section(self, section):
        section.kinds = section.inputs()
        places = Places(section)
        generators = [Generator(each, section, places) if each["name"].isupper() and each.get("count") else None
                      for each in section.fields["commands"]]
        refused = {}
        for value, first, count in section.refused:
            refused.setdefault(value, []).append((first, count))
        for run in section.runs:
            self.run(section, run, generators, refused)
        if refused:
            self.faults.append(f"{section.where}: draws were refused for no value: {refused}")

    def run(self, section, run, generators, refused):
        deviations = self.deviations(section, run)
        sets, columns = run.column("sets"), [run.column(name) for name in ("positions", "window_low", "window_high")]
        generator = generators[run.fields["command"]] if run.kind == "generator" else None
        for value in range(run.first, run.end):
            where = f"{section.where}: value {value} ({generator.name if generator else run.kind})"
            self.values += 1
            first, count = section.draws[value], section.draw_counts[value]
            self.taken.setdefault(run.sequence, []).append((first, first + count, where))
            if first + count > MOST_DRAWS:
                self.unknown += 1
                refused.pop(value, None)
                continue
            draws = Draws(self.sequences[run.sequence], first)
            if count == 0 and run.kind in ("repeat", "fill") and section.pfield > 3:
                self.repeated_chord(section, run, value, where)
                continue
            read, made = section.read[value], None
            if generator:
                made = self.generated(generator, draws, value, where, count - deviation_draws(section))
                if generator.name == "RW" and made:
                    self.check_walk(generator, made[1], [column[value - run.first] if column else None for column in columns], where)
                if made and sets and sets[value - run.first] != made[1]:
                    self.faults.append(f"{where}: set {sets[value - run.first]}, the draws choose {made[1]}")
                if made and made[0] is not None and not same(made[0], read):
                    self.faults.append(f"{where} is {read}, the draws make {made[0]}")
            self.check_refused(draws, refused.pop(value, []), where, generator, count)
            self.deviate(section, value, draws, deviations, where)
            if draws.next - first != count:
                self.faults.append(f"{where}: {count} draws are listed, {draws.next - first} are taken")
            if generator and section.pfield == 2:
                generator.elapsed = single(generator.elapsed + abs(seconds_of(section, value)))
            if len(self.faults) > 20:
                raise Fault("; ".join(self.faults[:5]))

    def generated(self, generator, draws, value, where, count):
        try:
            if not generator.group:
                generator.walk_before = [(walk.position, *walk.window()) for walk in generator.walks]
            return generator.make(draws, value)
        except Unknown:
            self.unknown += 1
            draws.next = draws.first + count
            return None, generator.chosen
        except (ValueError, OverflowError, ZeroDivisionError) as fault:
            self.faults.append(f"{where}: {type(fault).__name__}: {fault}")
            draws.next = draws.first + count
            return None

    def check_walk(self, generator, chosen, told, where):
        for name, found, expected in zip(("position", "window_low", "window_high"), told, generator.walk_before[chosen]):
            if found is None or not same(found, expected):
                self.faults.append(f"{where}: {name} {found}, the draws make {expected}")

    def check_refused(self, draws, told, where, generator, count):
        if generator and generator.name == "RW":
            spare = count - deviation_draws(generator.section) - 2  # those that met no window
            found = [(draws.first + 1, spare)] if spare > 0 else []
        else:
            found = draws.refused
        if single_draws(found) != single_draws(told):
            self.faults.append(f"{where}: refused draws {told}, really {found}")

    def deviations(self, section, run):
        """Pairs of deviations, "rd" and "dv", whose sum is that of a run."""
        names = {0.0} | {number32(each["numbers"][0]) for each in section.fields["commands"]
                         if each["name"] == "dv" and each.get("numbers")}
        pairs = [(rd, dv) for rd in sorted(self.rd) for dv in sorted(names) if single(rd + dv) == run.deviation]
        if not pairs:
            raise Fault(f"{section.where}: no deviations make {run.deviation}")
        return pairs

    def deviate(self, section, value, draws, deviations, where):
        """The deviation of a value, by each pair that may have been in force; those that don't fit are struck out."""
        before, start = deviation_base(section, value), draws.next
        kept = []
        for rd, dv in deviations:
            draws.next = start
            if section.pfield == 3:
                found = draws.deviated(draws.deviated(before, rd), dv)
            else:
                found = draws.deviated(before, single(rd + dv))
            if same(found, section.deviated[value]):
                kept.append((rd, dv))
        if kept:
            deviations[:] = kept
        else:
            self.faults.append(f"{where}: {before} was made {section.deviated[value]}, the draws make {found}")

    def repeated_chord(self, section, run, value, where):
        cycle = run.fields.get("cycle", 1)
        source = run.fields["of"] + (value - run.first) % cycle
        if not same(section.result[source], section.result[value]):
            self.faults.append(f"{where}: {section.result[value]} repeats {section.result[source]}")


def single_draws(spans):
    return [place for first, count in spans for place in range(first, first + count)]


def deviation_draws(section):
    return 2 if section.pfield == 3 else 1


def seconds_of(section, value):
    return single(divided(60.0, section.tempo[value]) * section.read[value])


def deviation_base(section, value):
    """What is deviated: of p2 seconds, of p3 the amount without its code."""
    if section.pfield == 2:
        return seconds_of(section, value)
    return amount_of(section.read[value])[1] if section.pfield == 3 else section.read[value]


def beats_of(block):
    """The beat of each event that p2 made."""
    beats, beat = [], single(float(number32(block.fields["start"])))
    told = dict(zip(block.events.origin[2], block.events.beat)) if block.events else {}
    for value, read in enumerate(block.by_pfield[2].read):
        beats.append(told.get(value, beat))
        beat = single(beat + read)
    return beats


# ---- what was drawn between

def notices(screen):
    """What "?" came to, in the order of orlo's screen, to two decimals."""
    return [found.decode() for found in re.findall(rb"\n\tLine \d+: '\?' evaluated at = +([\d.]+)", screen)]


def as_notice(draw):
    return f"{single(float(draw % RANDOM_STEPS)) / RANDOM_STEPS:.2f}"


def sure_blocks(document):
    """The blocks before the first error."""
    return list(itertools.takewhile(lambda block: not (block.has("failed") or block.has("recovered")), document.blocks))


def sure_ends(document):
    """The last draw of each sequence that a block before the first error has taken."""
    ends = {}
    for block in sure_blocks(document):
        for section in block.sections:
            for run in section.runs:
                last = run.end - 1
                ends[run.sequence] = max(ends.get(run.sequence, 0), section.draws[last] + section.draw_counts[last])
    return ends


def check_gaps(replay, screen):
    """All draws are listed once; what is not listed was drawn by "?"."""
    said, faults, at = notices(screen), [], 0
    ends = sure_ends(replay.document)
    for sequence in range(len(replay.sequences)):
        spans, next_draw, gaps = sorted(replay.taken.get(sequence, [])), 0, []
        for first, end, where in spans:
            if first < next_draw and end > first:
                faults.append(f"{where}: draw {first} is listed twice")
            if first <= min(ends.get(sequence, 0), MOST_DRAWS):
                gaps += range(next_draw, first)
            next_draw = max(next_draw, end)
        drawn = [as_notice(replay.sequences[sequence].draw(place)) for place in gaps]
        # behind the last value of a sequence there may have been some
        skipped = next((skip for skip in range(len(said) - at + 1) if said[at + skip:at + skip + len(drawn)] == drawn), None)
        if skipped is None or skipped and sequence == 0 and drawn:
            faults.append(f"sequence {sequence}: draws {gaps[:10]} are not listed; \"?\" has drawn {said[at:at + 10]}, they are {drawn[:10]}")
        else:
            at += skipped + len(drawn)
    return faults


TOTALS = {"values": 0, "unknown": 0}


def check(outcome):
    replay = Replay(outcome.document)
    TOTALS["values"] += replay.values
    TOTALS["unknown"] += replay.unknown
    return replay.faults or check_gaps(replay, outcome.screen)


def main():
    parser = argparse.ArgumentParser(description="check that draws give their values again")
    add_options(parser)
    options = parser.parse_args()
    done, failed = check_all(options, check)
    print(f"{done} documents, {failed} wrong; {TOTALS['values']} values made again, {TOTALS['unknown']} of rests and behind millions of draws left out")
    return 1 if failed or not done or not TOTALS["values"] else 0


if __name__ == "__main__":
    sys.exit(main())
