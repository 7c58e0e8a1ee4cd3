"""orlo-explain says what orlo does: check_explain.py --orlo PROGRAM --explain PROGRAM [--cases] [--pages] [--count N] [FILE...]

Runs pieces by both programs, those of the behaviour cases, of examples and pages, generated ones (--count) and files, and checks
each document:

  schema       it is valid by docs/explain.schema.json; without the Python module jsonschema that is left out, which is said
  score        put together from the document it is orlo's, byte for byte, also where a run has failed
  diagnostics  those that are not "recovered" are what orlo's screen says, in its order, at its lines and columns
  places       every range lies in its file, the calls of every range lead to the piece, and what is said to be there is there
  values       literal values are what their texts say, repeats repeat, units are converted and rounded, starts and durations follow
  notes        those of a MIDI file are those of the events
  events       each p-field is the value of its origin, and is printed as its output type prints it

The rules are those of the manual, with the program's 32-bit steps; nothing here is taken from orlo-explain.
"""

import argparse
import json
import math
import os
import re
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [HERE, os.path.join(HERE, "../../src/tables")]
import check_midi
import literals
import tables
from explain_document import Fault, number, number32, range_indexes, single, text, without_values
from explain_pieces import ROOT, add_options, check_all
from explain_texts import COMPOSED, Source, check_texts, replaced_text
from literals import divided, same

SCHEMA = os.path.join(ROOT, "docs/explain.schema.json")
KINDS = ("literal", "repeat", "generator", "fill", "loop")
LONG_COLUMN = 64  # from here on a column's values are looked at by their kinds

# messages without ERROR: or WARNING:, with what stands before them, and those with it that have no number
UNLED = [
    ("error", "\n", r"Bad include file name: \"[^\n]*\""),
    ("error", "\n", r"Include filename must be preceeded by a \|\."),
    ("error", "\n", r"Too many embedded include files! \(Max = \d+\)"),
    ("warning", "\n\n", r"Oops i-block -?\d+ is all rests(?: \(check p2=0 and p3 != 400\+n OR 1000\+n\?\))?!"),
    ("note", "\n\t", r"P\d+: Fused data changed \"events\" from \d+ to \d+"),
    ("note", "\n\t", r"\(N\.B\. No I-Block Data Written\)"),
]
LED = [
    r"Can't (?:open|read|write) \"[^\n]*\"\.",
    r"Can't (?:open|write|read) temporary file",
    r"Include filename has exceeded maximum\nlength of \d+ characters\.",
    r"Bad number of p-fields \(3 - \d+\)",
    r"Too many tempo changes! \(Max = \d+\)",
    r"P\d+ is blank \.\.\. OY!",
    r"Tempo #\d+ conflicts with previous tempo's end time!",
]
WITH_LINE = [
    r"Maximum number of beats = [ \d.]+",
    r"P2 never reaches the end of the i-block!",
    r"There is no (?:macro|constant) \"[^\n]*\" in your input file!",
    r"Macro \"[^\n]*\" expands without end!",
    r"Too many expansions! \(Max = \d+\)",
    r"The [^\n]* has exceeded the maximum number\nof characters allowed \(\d+\)\.",
    r"The include file \"[^\n]*\" is one that this run writes!",
]


# ---- the schema

def kind_of(value):
    """What the schema can tell apart in one value of a long column."""
    if isinstance(value, dict):
        return tuple((key, each if key == "kind" else kind_of(each)) for key, each in value.items())
    if isinstance(value, list):
        return len(value), *map(kind_of, value[:LONG_COLUMN])
    if isinstance(value, str):
        return value if value in ("nan", "inf", "-inf") else "text"
    return type(value), value >= 0


def thinned(part):
    """A document whose long columns hold one value of each kind, which is all that the schema asks of them."""
    if isinstance(part, dict):
        return {key: thinned(value) for key, value in part.items()}
    if not isinstance(part, list):
        return part
    if len(part) >= LONG_COLUMN:
        part = list({kind_of(value): value for value in part}.values())
    return [thinned(value) for value in part]


class Schema:
    def __init__(self):
        import jsonschema  # pylint: disable=import-outside-toplevel
        with open(SCHEMA, encoding="utf-8") as file:
            schema = json.load(file)
        jsonschema.Draft202012Validator.check_schema(schema)
        self.validator = jsonschema.Draft202012Validator(schema)

    def faults(self, fields):
        return [f"schema: {error.json_path}: {error.message[:200]}" for error in self.validator.iter_errors(thinned(fields))][:5]


def find_schema():
    try:
        return Schema()
    except ImportError:
        print("no jsonschema here: documents are not compared with their schema")
        return None


# ---- the screen

class Screen:
    """What orlo's screen says: its messages, found by their texts."""

    def __init__(self, program):
        self.numbers, self.lined, led, with_line = {}, set(), [*LED], [*WITH_LINE]  # lined: texts with a line and a caret
        printed = tables.read(program)
        for kind in ("error", "warning"):
            for row in printed[kind + "s"]:
                self.numbers.setdefault((kind, row["text"].encode("latin-1")), set()).add(row["number"])
                (with_line if row["line"] else led).append(re.escape(row["text"]))
                if row["line"]:
                    self.lined.add(row["text"].encode("latin-1"))
        # begins with plain letters, so that a long screen is looked through quickly
        forms = [rf"(?P<lead>ERROR|WARNING): (?:Line (?P<line>\d+): (?P<lined>{'|'.join(with_line)})(?=\n)"
                 rf"|(?P<plain>{'|'.join(led)}))"]
        forms += [f"(?P<unled{place}>{pattern})" for place, (_, _, pattern) in enumerate(UNLED)]
        self.pattern = re.compile("|".join(forms).encode("latin-1"))

    def messages(self, screen):
        """Messages as (severity, numbers that it may have, text, line number or None, line and caret or None)."""
        found, rest = [], []
        at = 0
        for match in self.pattern.finditer(screen):
            unled = next((place for place in range(len(UNLED)) if match[f"unled{place}"]), None)
            lead = "\n" if unled is None else UNLED[unled][1]
            if not screen.endswith(lead.encode(), 0, match.start()):
                continue
            rest.append(screen[at:match.start()])
            at = match.end()
            if unled is None:
                severity, words = match["lead"].decode().lower(), match["lined"] or match["plain"]
                number_of = self.numbers.get((severity, words), {None})
                shown = screen[at + 1:at + 9999].split(b"\n", 2)[:2] if match["lined"] else None
                found.append((severity, number_of, words, int(match["line"] or 0) or None, shown))
            else:
                found.append((UNLED[unled][0], {None}, match[0], None, None))
        rest.append(screen[at:])
        left = re.search(rb"(?:^|\n)(ERROR|WARNING): [^\n]*", b"\0".join(rest))
        if left:
            raise Fault(f"orlo's screen says what no form fits: {left[0]!r}")
        return found


def check_diagnostics(outcome, screen, source):
    document, faults = outcome.document, []
    said = screen.messages(outcome.screen)
    told = [each for each in document.diagnostics if not each.get("recovered")]
    recovered = [each.get("recovered", False) for each in document.diagnostics]
    for each in document.diagnostics:
        if each.get("number") not in screen.numbers.get((each["severity"], text(each["text"])), {None}):
            faults.append(f"diagnostics: {each} is no message of orlo")
    if recovered != sorted(recovered):
        faults.append("diagnostics: what was recovered stands before what orlo says")
    if any(recovered) and document.status == 0:
        faults.append("diagnostics: recovered without a failure")
    for place in range(max(len(said), len(told))):
        if place >= len(said) or place >= len(told):
            faults.append(f"diagnostics: orlo says {[each[2] for each in said[place:]]}, the document "
                          f"{[text(each['text']) for each in told[place:]]} from #{place} on")
            break
        severity, numbers, words, line, shown = said[place]
        one = told[place]
        got = one["severity"], one.get("number"), text(one["text"])
        if got[0] != severity or got[1] not in numbers or got[2] != words:
            faults.append(f"diagnostics: #{place} is {got}, orlo says {severity, numbers, words}")
        elif line is not None:
            faults += check_message_place(outcome, one, line, shown, source)
    return faults


def check_spans(outcome, source):
    """What "T" came to: orlo says it for each."""
    if outcome.status != 0:
        return []
    said = re.findall(rb"\n\tLine \d+: T evaluated at = +(-?[\d.]+)", outcome.screen)
    commands = [each for block in outcome.document.blocks for section in block.sections for each in section.fields["commands"]
                if "span" in each and (source.words(outcome.document.ranges[each["span_range"]]) or "T").startswith("T")]
    told = [f"{number32(each['span']):.2f}".encode() for each in commands]
    return [] if told == said else [f"spans: T came to {said}, told are {told}"]


GENERATED = re.compile(rb"\n(\d+) events generated in block #(\d+) \(i(-?\d+)\)\.\n"
                       rb"Total i-block duration: +(\S+) \(secs\), +(\S+) \(beats\)\nCumulative i-block duration: +(\S+) \(secs\)")


def check_generated(outcome):
    """What orlo says of each block that it has written."""
    said = [[each.decode() for each in match] for match in GENERATED.findall(outcome.screen)]
    blocks = [block for block in outcome.document.blocks if block.has("duration")]
    told = []
    for block in blocks:
        times = [f"{number(block.fields[key]):.2f}".replace("nan", "-nan") for key in ("duration", "last_beat", "end")]
        count = block.events.count * (2 if outcome.piece.midi else 1)  # notes begin and end there
        told.append([str(count), str(block.fields.get("number", 1)), str(block.fields["instrument"]), *times])
    return [] if told == said else [f"blocks: orlo says {said}, told are {told}"]


def check_failures(document, screen):
    """Where a block has failed, an error stands; what follows is only looked at."""
    told = [each for each in document.diagnostics if each["severity"] == "error" and "range" in each]
    errors = [document.root(each["range"]) for each in told]
    lined = [document.root(each["range"]) for each in told if text(each["text"]) in screen.lined]
    blocks, faults = document.blocks, []
    looked_at = [block.has("recovered") for block in blocks]
    if looked_at != sorted(looked_at) or any(looked_at) and document.status == 0:
        faults.append(f"blocks that were only looked at: {looked_at}")
    for block, after in zip(blocks, [*blocks[1:], None]):
        if "range" not in block.fields:
            continue
        begin, end = (document.root(each.fields["range"]) if each else None for each in (block, after))
        found = any((begin.file, begin.line, begin.byte) <= (each.file, each.line, each.byte)
                    and (end is None or (each.file, each.line, each.byte) < (end.file, end.line, end.byte)) for each in errors)
        if block.has("failed") and errors and not found and len(document.fields["files"]) == 1:
            faults.append(f"block {block.index} has failed without an error")
        if not block.has("failed") and any(
                (begin.file, begin.line, begin.byte) <= (each.file, each.line, each.byte) < (begin.file, begin.end_line, begin.end_byte)
                for each in lined):
            faults.append(f"block {block.index} has not failed, but there is an error in it")
        if not block.has("failed") and block.events is None and not (block.has("recovered") or block.has("skipped")) \
                and document.status == 1 and not document.fields["piece"]["midi"]:
            faults.append(f"block {block.index} has neither failed nor events")
        elif block.has("failed") and block is not blocks[-1] and not after.has("recovered"):
            faults.append(f"block {block.index + 1} comes after an error, but is not told to be only looked at")
    return faults


def check_message_place(outcome, diagnostic, line, shown, source):
    """Whether a message stands in the line that orlo names, and where its caret is; what includes move is not looked at."""
    document = outcome.document
    what = f"diagnostics: {text(diagnostic['text'])!r}"
    if "range" not in diagnostic:
        return [f"{what} has no place, orlo shows one"]
    if len(document.fields["files"]) > 1:
        return []
    place, root = document.ranges[diagnostic["range"]], document.root(diagnostic["range"])
    expected = line - 1 + source.first_line()
    if source.has_long_lines():
        return []
    if root.line != expected:
        return [f"{what} is in line {root.line}, orlo says {expected}"]
    written, caret, faults = shown[0], shown[1].find(b"^"), []
    plain = re.sub(rb"[\r\xff]", b" ", source.line(root.file, root.line))
    if place.line != place.end_line:
        faults = [f"{what} stands on several lines"]
    if place.call != -1 or caret < 0 or written.rstrip(b" ") != plain.rstrip(b" ") or root.line != place.line:
        return faults
    if text(diagnostic["text"]).startswith(b"There is no macro") and place.end_byte <= caret:
        return faults  # orlo's caret stands behind the outermost call
    if not place.byte <= caret <= max(place.end_byte, place.byte):
        return [*faults, f"{what} is at column {place.byte} to {place.end_byte}, orlo's caret at {caret}"]
    return faults


# ---- places

def utf16_units(line, column):
    """Columns in UTF-16 units; None where the line is no UTF-8."""
    try:
        return len(line[:column].decode("utf-8").encode("utf-16-le")) // 2
    except UnicodeDecodeError:
        return None


def check_range(document, index, source):
    place, faults = document.ranges[index], []
    if not 0 <= place.file < len(source.lines):
        return [f"range {index}: there is no file {place.file}"]
    document.root_call(place.call)
    if (place.line, place.byte) > (place.end_line, place.end_byte) or min(place.line, place.byte) < 0:
        faults.append(f"range {index}: {place} ends before it begins")
    lines = source.lines[place.file]
    if lines is None:
        return [*faults, f"range {index}: {place} lies in a file that was not read"]
    for line, column, units in ((place.line, place.byte, place.utf16), (place.end_line, place.end_byte, place.end_utf16)):
        if line >= len(lines) or column > len(lines[line]):
            faults.append(f"range {index}: {place} lies outside its file")
        elif utf16_units(lines[line], column) not in (units, None):
            faults.append(f"range {index}: {place}: column {column} is {utf16_units(lines[line], column)} UTF-16 units")
    return faults


def check_places(outcome, source):
    document, faults = outcome.document, []
    for index in range(len(document.ranges)):
        faults += check_range(document, index, source)
    for key, index in range_indexes(document.fields):
        if not 0 <= index < len(document.ranges):
            faults.append(f"{key}: there is no range {index}")
    return faults


# ---- values

def check_literals(section, document, source, midi):
    """Literal values are what their texts say."""
    faults, kinds, octave, before = [], section.inputs(), None, None
    for run in section.runs:
        if run.kind != "literal":
            octave = octave if run.kind != "generator" else None  # its notes may have changed the octave
            continue
        for value in range(run.first, run.end):
            place = document.ranges[run.fields["ranges"] + value - run.first]
            found, read, kind = source.words(place), section.read[value], kinds[value]
            if place.line != place.end_line and "#include" not in found:
                faults.append(f"{section.where}: value {value} stands on several lines")
            where = f"{section.where}: value {value}, {found!r} as {kind}"
            call = document.calls[place.call] if place.call != -1 else {}
            if "value" in call:
                of = document.fields["constants"][call["of"]] if call["kind"] == "constant" else call
                if document.ranges[of["range"]][:-1] != place[:-1]:
                    faults.append(f"{section.where}: value {value} stands at {place}, but came from {document.ranges[of['range']]}")
            found = found and replaced_text(document, place, found)
            if found is None or COMPOSED.search(found):  # put together from several texts
                octave = None
                continue
            if found in ("z", "Z"):
                if before is not None and value == before + 1 and not same(section.read[before], read):
                    faults.append(f"{where} is {read}, after {section.read[before]}")
            elif kind in ("no", "nox"):
                expected, whole = literals.note(found, midi)
                if expected is None or whole and expected != read:
                    faults.append(f"{where} is {read}, not {expected}")
                elif not whole and ((read - expected) % 12 != 0 or octave is not None and (read - expected) / 12 != octave):
                    faults.append(f"{where} is {read}")
                elif found not in ("r", "R"):
                    octave = (read - (literals.note(re.sub(r"\d", "", found), midi)[0])) / 12
            else:
                expected = literals.value_of(found, kind, midi)
                if found != source.words(place):  # what stands before it may have taken its first digits
                    parts = [literals.value_of(found[at:], kind, midi) for at in range(len(found))]
                    expected = next((part for part in parts if part is not None and same(part, read)), expected)
                if expected is None or not same(expected, read):
                    faults.append(f"{where} is {read}, not {expected}")
            before = value
    return faults


def check_runs(section, document, source):
    """Kinds of runs: what they refer to is there, and repeats and fills give what they repeat."""
    faults, made_by = [], [0] * len(section.fields["commands"])
    for place, run in enumerate(section.runs):
        fields, where = run.fields, f"{section.where}: run {place} ({run.kind})"
        if run.count < 1 or run.kind not in KINDS:
            faults.append(f"{where} is empty, or of no kind")
        if not 0 <= run.sequence < len(document.fields["sequences"]):
            faults.append(f"{where}: there is no sequence {run.sequence}")
        if run.kind == "literal" and not fields["ranges"] + run.count <= len(document.ranges):
            faults.append(f"{where}: there is no range for each")
        if run.kind == "repeat":
            found = source.words(document.ranges[fields["range"]])
            if found is not None and not re.fullmatch(r"/|x[ \t]*\+?\d+", found) and not COMPOSED.search(found):
                faults.append(f"{where}: {found!r} stands there")
        if run.kind == "generator":
            command = section.fields["commands"][fields["command"]]
            first, end = command["first"], command["first"] + command["count"]
            if not first <= run.first <= run.end <= end:
                faults.append(f"{where}: {run.first} to {run.end} are none of {command['name']}'s {first} to {end}")
            made_by[fields["command"]] += run.count
            if any(not 0 <= each < len(command["sets"]) for each in run.column("sets") or []):
                faults.append(f"{where}: a set that {command['name']} has not")
        if run.kind in ("repeat", "fill", "loop"):
            faults += check_repeated(section, run, where)
    for command, count in zip(section.fields["commands"], made_by):
        if command.get("count", 0) != count:
            faults.append(f"{section.where}: {command['name']} has made {command['count']} values, its runs hold {count}")
    kinds = [run.kind for run in section.runs]
    made = sum(run.count for run in section.runs if run.kind not in ("fill", "loop"))
    filled = {"fill": "last", "loop": "loop"}.get(kinds[-1]) if kinds else None
    if made != section.written or section.fields.get("filled") != filled:
        faults.append(f"{section.where}: written {section.written}, filled by {section.fields.get('filled')}; "
                      f"runs say {made}, {filled}")
    return faults


def check_repeated(section, run, where):
    fields, faults, kinds = run.fields, [], section.inputs()
    cycle = fields.get("loop") or [fields["of"] + place for place in range(fields.get("cycle", 1))]
    for value in range(run.first, run.end):
        source = cycle[(value - run.first) % len(cycle)]
        if not 0 <= source < value:
            faults.append(f"{where}: value {value} repeats {source}")
        elif not same(section.read[source], section.read[value]) and not (
                kinds[source] == "in" and same(literals.rounded(section.read[source]), section.read[value])):  # S2 rounds its last
            faults.append(f"{where}: value {value} is {section.read[value]}, but repeats {source}, {section.read[source]}")
    return faults[:3]


def amount_of(value):
    """Code and amount of a duration."""
    size = abs(value)
    code = 0 if size < 200 else 200 if size < 300 else 300 if size < 400 else 400 if size < 1000 else 1000
    amount = single(size - code)
    return code, -amount if value < 0 else amount


def duration(code, amount, span, tempo):
    if code == 0:
        return single(amount * span)
    if code == 200:
        return single(amount + span)
    if code == 300:
        return single(span - amount)
    return single(single(divided(60.0, tempo)) * amount) if code == 400 else amount


def undeviated(value):
    """What a deviation of 0 makes of a value: infinity times 0 is none."""
    return value + 0.0 if math.isfinite(value) else math.nan


def check_conversions(section):
    """From what was read to what was stored."""
    faults, kinds = [], section.inputs()
    for run in section.runs:
        for value in range(run.first, run.end):
            read, deviated, result = section.read[value], section.deviated[value], section.result[value]
            where = f"{section.where}: value {value}"
            if section.pfield == 2:
                expected = single(divided(60.0, section.tempo[value]) * read)
                if run.deviation == 0 and not same(undeviated(expected), single(deviated + 0.0)):
                    faults.append(f"{where}: {read} beats at {section.tempo[value]} are {expected} s, not {deviated}")
                expected = deviated
            elif section.pfield == 3:
                _, amount = amount_of(read)
                if run.deviation == 0 and not same(undeviated(amount), single(deviated + 0.0)):
                    faults.append(f"{where}: the amount of {read} is {amount}, not {deviated}")
                continue
            else:
                if run.deviation == 0 and not same(undeviated(read), single(deviated + 0.0)):
                    faults.append(f"{where}: {read} became {deviated} without a deviation")
                expected = literals.rounded(deviated) if kinds[value] in ("no", "op") else deviated
                expected = single(expected * run.factor)
            if not same(expected, result):
                faults.append(f"{where}: {deviated} was stored as {result}, not {expected}")
    return faults


def check_statistics(section):
    if "statistics" not in section.fields:
        return []
    given, values = section.fields["statistics"], [value for value in section.result if value == value]
    if not values:
        return []
    found = min(values), max(values), sum(values) / len(values) if all(map(math.isfinite, values)) else None
    told = number32(given["least"]), number32(given["greatest"]), number(given["mean"])
    distinct = len(set(values)) + any(same(value, 0.0) for value in values) * any(same(value, -0.0) for value in values)
    faults = [] if told[:2] == found[:2] else [f"{section.where}: statistics {given}, really {found}"]
    if found[2] is not None and not math.isclose(found[2], told[2], rel_tol=1e-5, abs_tol=1e-5 * max(map(abs, found[:2]))):
        faults.append(f"{section.where}: mean {told[2]}, really {found[2]}")
    if given.get("distinct") != (distinct if distinct <= 10000 else None) and given.get("distinct") != len(set(values)):
        faults.append(f"{section.where}: {given.get('distinct')} distinct values, really {distinct}")
    return faults


# ---- time

SHAPES = {
    "f": lambda x, _: x, "e": lambda x, _: x * x, "l": lambda x, _: math.pow(x, 0.5), "v": math.pow,
    "s": lambda x, _: math.sin(x * 1.5707963267948966), "c": lambda x, _: 2 * x - math.sin(x * 1.5707963267948966),
}


def along(letter, exponent, x, start, end):
    return single(start + (end - start) * SHAPES[letter](x, exponent))


class TempoMap:
    """Tempo at a beat, from the changes as they are written; each change holds from where it stands in the text on."""

    def __init__(self, changes):
        self.segments = [(0.0, 0.0, 60.0, 60.0, "e", 0.0)]
        for each in changes:
            segment = (*(number32(each[key]) for key in ("start", "end", "from", "to")), each["curve"],
                       number32(each.get("exponent", 1)))
            if segment[0] == 0:
                self.segments[0] = segment
            else:
                self.segments.append(segment)

    def at(self, beat):
        place = 0
        while place + 1 < len(self.segments) and self.segments[place][0] <= beat and self.segments[place + 1][0] <= beat:
            place += 1
        start, end, low, high, letter, exponent = self.segments[place]
        time, total = single(beat - start), single(end - start)
        if time >= total:
            return high
        return low if time <= 0 else along(letter, exponent, time / total, low, high)


def order_of(document, place):
    """A key by which places come in the order in which they are read: through include files and calls to the piece."""
    if place.call != -1:
        place = document.ranges[document.calls[document.root_call(place.call)]["range"]]
    outer = document.fields["files"][place.file].get("included")
    before = () if outer is None else order_of(document, document.ranges[outer])
    return *before, (place.line, place.byte)


def changes_before(document, block):
    """The changes of tempo that are read before a block."""
    at = order_of(document, document.ranges[document.fields["blocks"][block.index]["range"]])
    return [each for each in document.fields["tempo"] if order_of(document, document.ranges[each["range"]]) < at]


def check_time(block, document):
    """Starts are running sums of intervals, beats of what was read; tempos are those of the changes before the block."""
    section, events, faults = block.by_pfield[2], block.events, []
    first = number32(block.fields["start"])
    beats = [first]
    for read in section.read:
        beats.append(single(beats[-1] + read))
    tempos = TempoMap(changes_before(document, block))
    wrong = [value for value in range(section.count) if tempos.at(beats[value]) != section.tempo[value]]
    if wrong:
        faults.append(f"{section.where}: tempo of value {wrong[0]} is {section.tempo[wrong[0]]}, not {tempos.at(beats[wrong[0]])}")
    seconds = number32(block.fields["seconds"])
    late = late_events(events)
    for event in range(1, events.count):
        same_start = event not in late and events.origin[2][event] == events.origin[2][event - 1]
        if same_start and events.beat[event] != events.beat[event - 1]:
            faults.append(f"{section.where}: event {event} is at beat {events.beat[event]}, the one before it elsewhere")
    told = {events.origin[2][event]: (events.value[2][event], events.beat[event])
            for event in range(events.count) if event not in late}
    return faults + follow_starts(section, seconds, beats, told)


def follow_starts(section, start, beats, told):
    """Each start comes from the one before it, or is that of a chord."""
    last, beat = 0.0, beats[0]
    for value in range(section.count):
        size = abs(section.result[value])
        next_start = single(start + last) if value else start
        found = told.get(value)
        member = value > 0 and found == (start, beat) and found != (next_start, beats[value])
        if member:
            last = max(last, size)
        else:
            if found is not None and not (same(found[0], next_start) and same(found[1], beats[value])):
                return [f"{section.where}: value {value} starts at {found}, not at {next_start, beats[value]}"]
            start, last, beat = next_start, size, beats[value]
    return []


# ---- events

def check_durations(block):
    """Each duration is what its code makes of its amount, the interval and the tempo."""
    starts, section, events, faults = block.by_pfield[2], block.by_pfield[3], block.events, []
    tempo, late = starts.tempo[-1], late_events(events)
    for event in range(events.count):
        if event in late:
            continue
        value = events.origin[3][event]
        code, _ = amount_of(section.read[value])
        factor = section.run_of(value).factor
        spans = [starts.result[events.origin[2][event]]]
        if section.count > starts.count:  # values behind the last event went to the first ones again
            spans += section.result[:value]
        spans += [-span for span in spans]  # of a rest
        expected = [single(duration(code, section.deviated[value], span, tempo) * factor) for span in spans]
        if not any(same(abs(each), abs(section.result[value])) for each in expected):
            faults.append(f"{section.where}: value {value}, {section.read[value]}, lasts {section.result[value]}, "
                          f"not {expected[0]}")
    return faults


def late_events(events):
    """Events that a chord has made behind the block's last one: they start and last whole seconds, and come of no interval."""
    starts, late = {}, set()
    for event, (origin, start) in enumerate(zip(events.origin[2], events.value[2])):
        if starts.setdefault(origin, start) != start:
            late.add(event)
    return late


def check_event_values(block, midi):
    """Each p-field is the value of its origin, and printed so."""
    events, faults, late = block.events, [], late_events(block.events)
    for p, origins in events.origin.items():
        section = block.by_pfield[p]
        for event, origin in enumerate(origins):
            if not 0 <= origin < section.count:
                return [f"{section.where}: event {event} comes of value {origin} of {section.count}"]
            value, stored = events.value[p][event], section.result[origin]
            if p < 4 and event in late:
                if not (value == int(value) and p == 2 or p == 3 and value in (abs(int(stored)), abs(stored))):
                    faults.append(f"{section.where}: event {event} has {value}, which is not whole seconds of {stored}")
                continue
            if p == 3 and not same(abs(value), abs(stored)) or p > 3 and not same(value, stored):
                faults.append(f"{section.where}: event {event} has {value}, its origin {origin} {stored}")
            if p == 3 and not (value > 0 or value != value):
                faults.append(f"{section.where}: event {event} lasts {value}")
        if p in events.printed:
            faults += check_printed(section, events, p)
        elif not midi:
            faults.append(f"{section.where}: nothing is printed")
    return faults


def check_printed(section, events, p):
    output, faults, known = section.fields["output"], [], {}
    columns = events.printed[p]
    for value, printed in zip(events.value[p], columns):
        decimals = len(printed.rstrip(" ").partition(".")[2]) if math.isfinite(value) else section.fields.get("digits", 3)
        if math.isfinite(value):
            known.setdefault("decimals", decimals)
        if math.isfinite(value) and output == "re" and decimals != known["decimals"]:
            faults.append(f"{section.where}: {printed!r} has {decimals} decimals, others {known['decimals']}")
        try:
            expected = literals.printed(value, output, p, decimals)
        except (OverflowError, ValueError):
            continue
        if expected is not None and expected != printed:
            faults.append(f"{section.where}: {value} is printed as {printed!r}, not {expected!r}")
    return faults


def check_origins(block):
    """Events follow each other as the values of each section do; what is missing was of rests."""
    events, faults, late = block.events, [], late_events(block.events)
    for p, origins in events.origin.items():
        section = block.by_pfield[p]
        kept = [origin for event, origin in enumerate(origins) if event not in late]
        if p == 2:
            if kept != sorted(kept) or section.count - len(set(kept)) > events.rests:
                faults.append(f"{section.where}: origins {kept[:20]} of {section.count} values, {events.rests} rests")
            continue
        copies = {}
        for event, origin in enumerate(origins):
            if event not in late and section.count <= block.by_pfield[2].count \
                    and copies.setdefault(origin, events.origin[2][event]) != events.origin[2][event]:
                faults.append(f"{section.where}: event {event} has the value {origin} of another event")
        falls = sum(after < before for before, after in zip(kept, kept[1:]))
        if falls > 1:  # once where values behind the last event went to the first ones
            faults.append(f"{section.where}: origins {kept[:20]}")
        if not falls and max(kept, default=0) - min(kept, default=0) + 1 - len(set(kept)) > events.rests:
            faults.append(f"{section.where}: origins {kept[:20]} leave out more than {events.rests} rests")
    last = block.sections[-1]
    wrapped = any(after < before for before, after in zip(events.origin[last.pfield], events.origin[last.pfield][1:]))
    if last.pfield > 3 and not late and not wrapped and events.count + events.rests != last.count:
        faults.append(f"{last.where}: {last.count} values, {events.count} events and {events.rests} rests")
    return faults


def check_beats(block, document):
    """Durations in beats, by the tempo of each event's beat."""
    events, tempos = block.events, TempoMap(changes_before(document, block))
    for event in range(events.count):
        expected = events.value[3][event] * tempos.at(events.beat[event]) / 60
        if math.isfinite(expected) and not math.isclose(expected, events.beats[event], rel_tol=1e-6, abs_tol=1e-40):
            return [f"block {block.index}: event {event} lasts {events.beats[event]} beats, not {expected}"]
    return []


def check_totals(block, midi):
    """Duration, end and last beat of a block, from its events."""
    fields, events = block.fields, block.events
    if midi or events.count == 0:
        return []
    ends = [start + length for start, length in zip(events.value[2], events.value[3])]
    ends = [end for end in ends if end == end]
    found = {"end": max(ends, default=math.nan), "last_beat": single(events.beat[-1] - events.beat[0])}
    found["duration"] = found["end"] - events.value[2][0]
    return [f"block {block.index}: {key} {fields.get(key)}, really {value}" for key, value in found.items()
            if math.isfinite(value) and not math.isclose(number(fields.get(key, math.nan)), value, rel_tol=1e-6, abs_tol=1e-9)]


def check_start(block, document):
    """A block's start in seconds, by the tempo of its beat."""
    fields = block.fields
    if "seconds" not in fields:
        return [f"block {block.index} has values but no start in seconds"] if 2 in block.by_pfield else []
    start, tempo, seconds = (number32(fields[key]) for key in ("start", "tempo", "seconds"))
    if not same(single(single(start * 60) / tempo), seconds):
        return [f"block {block.index}: start {seconds}, not {single(single(start * 60) / tempo)}"]
    expected = TempoMap(changes_before(document, block)).at(start)
    return [] if expected == tempo else [f"block {block.index}: tempo {tempo} at its start, not {expected}"]


def written_number(words):
    """The number that is written, and nothing else; not a number for something else."""
    number_text = re.sub(rb"^- +", b"-", words)  # of events
    return single(float(number_text)) if re.fullmatch(rb"[-+]?[\d.]+", number_text) else float("nan")


def check_header(block, document, source):
    """The numbers of a header stand where it says; those that come through a call are not read."""
    fields, faults = block.fields, []
    length = -fields["events_wanted"] if "events_wanted" in fields else fields.get("beats")
    for key, expected in (("pfields", fields.get("pfields")), ("start", fields.get("start")), ("length", length)):
        if expected is None:
            continue
        place = document.ranges[fields[f"{key}_range"]]
        if place.call == -1 and written_number(source.text(place)) != number32(expected):
            faults.append(f"block {block.index}: {key} is {expected}, written {source.text(place)}")
    return faults


def check_block(block, document, source, midi):
    faults = check_start(block, document) + check_header(block, document, source)
    for section in block.sections:
        if not section.has_values:
            if (section.count or section.written) and not block.has("recovered"):
                faults.append(f"{section.where}: {section.count} values, which are not there")
            continue
        faults += check_runs(section, document, source)
        faults += check_literals(section, document, source, midi)
        faults += check_conversions(section) + check_statistics(section)
    if block.has("skipped") and (block.sections or block.events):
        faults.append(f"block {block.index}: skipped, but not empty")
    if block.events is None or block.events.count == 0:
        return faults
    if block.has("recovered") or block.has("failed"):
        faults.append(f"block {block.index}: events after an error")
    if sorted(block.events.origin) != list(range(2, block.fields["pfields"] + 1)):
        faults.append(f"block {block.index}: events have p-fields {sorted(block.events.origin)}")
        return faults
    faults += check_event_values(block, midi)
    faults += check_origins(block)
    return faults or check_time(block, document) + check_beats(block, document) + check_durations(block) + check_totals(block, midi)


def check_score(outcome):
    document, score = outcome.document, outcome.score or b""
    faults = []
    if document.status != outcome.status:
        faults.append(f"status {document.status}, orlo's is {outcome.status}")
    if outcome.piece.midi:
        return faults
    for before, each in zip(document.fields["score"], document.fields["score"][1:]):
        if isinstance(each, dict) and "block" in each:
            fields = document.blocks[each["block"]].fields
            if fields.get("number") is None and document.blocks[each["block"]].events.count == 0:
                continue
            if not text(before).endswith(f"\n;I-block #{fields.get('number')} (i{fields['instrument']}):".encode()):
                faults.append(f"score: block {each['block']} is not #{fields.get('number')} in {text(before)!r}")
    made = document.score()
    if made != score:
        at = len(os.path.commonprefix([made, score]))
        faults.append(f"score: differs at byte {at}: {made[at:at + 60]!r}, orlo writes {score[at:at + 60]!r}")
    return faults


def check_midi_notes(outcome):
    """The notes of a MIDI file are those of the events, by their keys and velocities; files that no reader takes are left out."""
    if not outcome.piece.midi or outcome.status or not outcome.score:
        return []
    try:
        found, _ = check_midi.read_midi(outcome.score, high_data=True)
    except check_midi.Fault:
        return []
    notes = sorted((key, velocity) for _, kind, key, velocity in found if kind == check_midi.ON)
    events = [block.events for block in outcome.document.blocks if block.events]
    told = [(pitch, loudness) for each in events for pitch, loudness in zip(each.value.get(5, []), each.value.get(4, []))]
    if not all(0 <= value < 2 ** 31 for each in told for value in each) or len(told) < sum(each.count for each in events):
        return []
    told = sorted((int(pitch) % 128, int(single(loudness * single(0.003875850703452))) % 256) for pitch, loudness in told)
    return [] if told == notes else [f"midi: the notes are {notes[:5]}..., told are {told[:5]}..."]


def check_summary(outcome):
    """Without events all the rest is the same, and single values are asked for nowhere."""
    whole, summary = without_values(outcome.document), without_values(outcome.summary)
    faults = [f"without events: {key} is {str(summary.get(key))[:300]}, with them {str(whole.get(key))[:300]}"
              for key in whole.keys() | summary.keys() if whole.get(key) != summary.get(key)]
    if any("events" in block or any("values" in section for section in block["sections"]) for block in outcome.summary.fields["blocks"]):
        faults.append("without events: there are events or values")
    return faults


def check_hints(outcome, source):
    """What is said of hints in the form of compilers, and that edits can be made."""
    document, said, faults = outcome.document, outcome.messages.split(b"\n"), []
    for hint in document.fields["hints"]:
        lines = [b"warning: %s [%s]" % (text(hint["text"]).replace(b"\n", b" "), hint["name"].encode())]
        places = [hint.get("range")] * 2 + [edit["range"] for edit in hint.get("edits", [])]
        lines += [b"note: " + text(hint["reason"]).replace(b"\n", b" ")] + [fix_of(edit, document, source) for edit in hint.get("edits", [])]
        for place, line in zip(places, lines):
            expected = place_of(document, place) + line
            if expected not in said:
                faults.append(f"hints: {expected} is not said")
        shown = source.text(document.ranges[hint["range"]]) if "range" in hint else b""
        if shown != shown.strip():
            faults.append(f"hints: {hint['name']} is about {shown}")
        if not 0 <= hint.get("block", 0) < max(len(document.blocks), 1):
            faults.append(f"hints: there is no block {hint['block']}")
        elif "block" in hint and "range" in hint and not lies_in_block(document, hint):
            faults.append(f"hints: {hint['name']} is not about block {hint['block']}")
        edits = [document.ranges[edit["range"]] for edit in hint.get("edits", [])]
        if any(a.file != b.file or (a.end_line, a.end_byte) > (b.line, b.byte) for a, b in zip(edits, edits[1:])):
            faults.append(f"hints: edits of {hint['name']} lie in two files or over each other")
    if sum(line.endswith(b"]") and b": warning: " in line for line in said) < len(document.fields["hints"]):
        faults.append("hints: there are more than are said")
    return faults


def lies_in_block(document, hint):
    """Whether a hint stands behind the beginning of its block and before the next one; of what came through calls or from another
    file that is not asked."""
    place, after = document.ranges[hint["range"]], []
    for block in document.blocks[hint["block"]:hint["block"] + 2]:
        begin = document.ranges[block.fields["range"]] if "range" in block.fields else None
        if begin is None or begin.file != place.file or begin.call != -1 or place.call != -1:
            return True
        after.append((place.line, place.byte) >= (begin.line, begin.byte))
    return after[0] and not any(after[1:])


def in_one_line(words):
    return re.sub(rb"[\n\r\t]", b" ", words)


def place_of(document, index):
    """A place as compilers write it."""
    if index is None:
        return text(document.fields["files"][0]["name"]) + b": "
    place = document.ranges[index]
    return b"%s:%d:%d: " % (text(document.fields["files"][place.file]["name"]), place.line + 1, place.byte + 1)


def shown_gone(gone):
    """What an edit takes away: as much of it as is shown, characters that can't be seen by their numbers."""
    if len(gone) <= 4 and not any(32 <= byte < 127 or byte in b"\n\t" for byte in gone):
        return (b"the byte " if len(gone) == 1 else b"the bytes ") + b" ".join(b"%02X" % byte for byte in gone)
    label = (b"the line " if gone.count(b"\n") == 1 else b"the lines ") if gone.endswith(b"\n") else b""
    gone = gone[:-1] if label else gone
    return label + b'"%s"' % in_one_line(gone if len(gone) <= 60 else gone[:40] + b" ... " + gone[-15:])


def neighbour(place, source):
    """The word that follows a place directly, or else the one before it."""
    line = source.line(place.file, place.line)
    word = re.match(rb"[^ \t\r\n]{0,20}", line[place.byte:])[0]
    if word:
        return b' before "%s"' % word
    word = re.search(rb"[^ \t\r\n]{0,20}$", line[:place.byte])[0]
    return b' behind "%s"' % word if word else b""


def fix_of(edit, document, source):
    """An edit in words."""
    gone, new = source.text(document.ranges[edit["range"]]), text(edit["text"])
    if new == b"\n" and gone in (b"", b"\r"):
        return b"note: begin a new line here"
    if not gone:
        return b'note: put in "%s"' % in_one_line(new) + neighbour(document.ranges[edit["range"]], source)
    if not new:
        return b"note: take out " + shown_gone(gone)
    return b'note: write "%s" in place of ' % in_one_line(new) + shown_gone(gone)


def make_check(schema, screen):
    def check(outcome):
        document, source = outcome.document, Source(outcome)
        faults = schema.faults(document.fields) if schema else []
        faults += check_score(outcome)
        faults += check_places(outcome, source) + check_midi_notes(outcome)
        if faults:
            return faults
        faults += check_diagnostics(outcome, screen, source) + check_failures(document, screen)
        faults += check_hints(outcome, source)
        faults += check_texts(outcome, source) + check_spans(outcome, source) + check_generated(outcome)
        for block in document.blocks:
            faults += check_block(block, document, source, outcome.piece.midi)
        return faults
    return check


def main():
    parser = argparse.ArgumentParser(description="check that orlo-explain says what orlo does")
    tables.add_option(parser)
    add_options(parser)
    options = parser.parse_args()
    check = make_check(find_schema(), Screen(options.tables))
    done, failed = check_all(options, lambda outcome: check(outcome) or check_summary(outcome))
    print(f"{done} documents, {failed} wrong")
    return 1 if failed or not done else 0


if __name__ == "__main__":
    sys.exit(main())
