"""orlo-explain says what orlo does: check_explain.py --orlo PROGRAM --explain PROGRAM [--cases] [--pages] [--count N] [FILE...]

Runs pieces by both programs, those of the behaviour cases, of examples and pages, generated ones (--count) and files, and checks
each document:

  schema       it is valid by docs/explain.schema.json; without the Python module jsonschema that is left out, which is said
  score        put together from the document it is orlo's, byte for byte, also where a run has failed
  diagnostics  those that are not "recovered" are what orlo's screen says, in its order, at its lines and columns
  places       every range lies in its file, the calls of every range lead to the piece, and what is said to be there is there
  values       literal values are what their texts say, repeats repeat, units are converted and rounded, starts and durations follow
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
import literals
import tables
from explain_document import Fault, number, number32, range_indexes, single, text
from explain_pieces import ROOT, add_options, check_all
from literals import divided, same

SCHEMA = os.path.join(ROOT, "docs/explain.schema.json")
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
        self.numbers, led, with_line = {}, [*LED], [*WITH_LINE]
        printed = tables.read(program)
        for kind in ("error", "warning"):
            for row in printed[kind + "s"]:
                self.numbers.setdefault((kind, row["text"].encode("latin-1")), set()).add(row["number"])
                (with_line if row["line"] else led).append(re.escape(row["text"]))
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
    written, caret = shown[0], shown[1].find(b"^")
    plain = re.sub(rb"[\r\xff]", b" ", source.line(root.file, root.line))
    if place.call != -1 or caret < 0 or written.rstrip(b" ") != plain.rstrip(b" ") or root.line != place.line:
        return []
    if not place.byte <= caret + source.first_column(root.line) <= max(place.end_byte, place.byte):
        return [f"{what} is at column {place.byte} to {place.end_byte}, orlo's caret at {caret}"]
    return []


# ---- places

class Source:
    """The text of a piece's files, by the places of a document."""

    def __init__(self, outcome):
        self.piece, self.lines = outcome.piece, []
        for each in outcome.document.fields["files"]:
            name = os.path.normpath(text(each["name"]).decode("utf-8", "surrogateescape"))
            files = {os.path.normpath(key): data for key, data in self.piece.files.items()}
            data = files.get(name) if each["found"] else None
            self.lines.append(data.split(b"\n") if data is not None else None)

    def line(self, file, number_of):
        return self.lines[file][number_of]

    def first_line(self):
        begin, _ = self.piece.extent()
        return (self.piece.files.get(self.piece.main) or b"").count(b"\n", 0, begin)

    def first_column(self, number_of):
        return 0 if number_of != self.first_line() or not self.piece.is_csd() else 0

    def has_long_lines(self):
        """A line that is too long for orlo counts as several."""
        return any(len(line) > 2046 for lines in self.lines if lines for line in lines)

    def text(self, place):
        """What stands in a range, None when its file is not known."""
        lines = self.lines[place.file]
        if lines is None:
            return None
        if place.line == place.end_line:
            return lines[place.line][place.byte:place.end_byte]
        return b"\n".join([lines[place.line][place.byte:], *lines[place.line + 1:place.end_line],
                           lines[place.end_line][:place.end_byte]])

    def words(self, place):
        found = self.text(place)
        return None if found is None else found.decode("latin-1")


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
    document.chain(place.call)
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


def expect(faults, what, found, pattern):
    """What stands in a range must look so; what is not known passes, and what is put together by calls or includes."""
    if found is not None and not re.fullmatch(pattern, found, re.S) and not re.search(r"[$~]|#include", found):
        faults.append(f"{what}: {found[:80]!r} stands there")


def replaced_text(document, place, found):
    """What the line holds in a place: for a constant, an equation or a time its value, else the text."""
    value = document.calls[place.call].get("value") if place.call != -1 else None
    return found if value is None else literals.decimals(number(value))


def check_texts(outcome, source):
    """What is said to stand somewhere stands there."""
    document, faults = outcome.document, []
    fields, ranges = document.fields, document.ranges

    def words(index):
        return source.words(ranges[index])

    for call in fields["calls"]:
        name = re.escape(text(call["name"]).decode("latin-1")) if "name" in call else ""
        pattern = {"macro": rf"\${name}\b.*", "argument": rf"\$?{name}\b.*", "constant": rf"~{name}",
                   "equation": r"~\[.*\]", "time": r"~@[1-4]?"}[call["kind"]]
        expect(faults, f"{call['kind']} {name}", words(call["range"]), pattern)
        if call["kind"] == "macro" and fields["macros"][call["of"]]["name"] != call["name"]:
            faults.append(f"a call of {name} is of macro {call['of']}")
        if call["kind"] == "constant":
            constant = fields["constants"][call["of"]]
            if constant["name"] != call["name"] or constant["value"] != call["value"]:
                faults.append(f"a reference to {name} is to constant {call['of']}")
    for macro in fields["macros"]:
        name = re.escape(text(macro["name"]).decode("latin-1"))
        expect(faults, f"macro {name}", words(macro["range"]), r"#.*#")
        expect(faults, f"name of macro {name}", words(macro["name_range"]), name)
        if "undefined" in macro:
            expect(faults, f"end of macro {name}", words(macro["undefined"]), name)
    for constant in fields["constants"]:
        found = words(constant["range"])
        value = literals.real(replaced_text(document, ranges[constant["range"]], found).strip(), float) if found else None
        if value is not None and not same(value, number(constant["value"])):
            faults.append(f"constant {constant['name']}: {found!r} is {value}, not {constant['value']}")
    for condition in fields["conditionals"]:
        found = words(condition["range"])
        expect(faults, "condition", found, r"#\s*if.*")
        value = re.fullmatch(r"#\s*if\s*\(\s*([-+\d.]+)\s*\)?.*", found or "", re.S)
        if value and literals.real(value[1]) is not None and (literals.real(value[1]) != 0) != condition["taken"]:
            faults.append(f"condition {found!r} was {'' if condition['taken'] else 'not '}taken")
        if "end" in condition:
            expect(faults, "end of a condition", words(condition["end"]), r"#\s*endif.*")
    for file in fields["files"][1:]:
        expect(faults, "include", words(file["included"]), r"#include.*")
    for sequence in fields["sequences"][1:]:
        found = words(sequence["range"])
        expect(faults, "sequence", found, r"[rR][sS].*")
        seed = re.fullmatch(r"[rR][sS]\s*\(\s*(\d+)\s*\)", found or "")
        if seed and int(seed[1]) != sequence["seed"]:
            faults.append(f"the sequence of {found!r} has seed {sequence['seed']}")
    return faults + check_block_texts(document, words)


def check_command(command, where, words, whole):
    faults, found = [], words(command["range"])
    what, name = f"{where}: command {command['name']}", command["name"]
    generator = name.isupper()
    expect(faults, what, found, rf"(?i:{name}).*" + (r"\)" if whole else ""))
    if whole and generator == (name in ("te", "rs", "rd", "dv", "sr", "pf")):
        faults.append(f"{what} is no command")
    plain = re.fullmatch(rf"(?i:{name})\s*\(([-+\d.\s]*)\)", found or "")
    if plain and not generator:
        values = [literals.real(each) for each in plain[1].split()]
        if name in ("rs", "sr"):
            values = [float(int(each)) for each in plain[1].split()]
        if [number(each) for each in command.get("numbers", [])] != values and None not in values:
            faults.append(f"{what}: {found!r} has numbers {command.get('numbers')}")
    if "span_range" in command:
        span = words(command["span_range"])
        value = literals.real(span) if span is not None else None
        if value is not None and value != number(command["span"]):
            faults.append(f"{what}: the span {span!r} is {command['span']}")
    return faults


def check_block_texts(document, words):
    faults = []
    for command in document.fields["commands"]:
        faults += check_command(command, "between blocks", words, document.status == 0)
    for block in document.blocks:
        fields, where = block.fields, f"block {block.index}"
        whole = not (block.has("failed") or block.has("recovered"))
        if "range" in fields and (fields.get("instrument") is not None):
            found = words(fields["range"])
            expect(faults, where, found, "i.*}" if whole else "i.*")
            header = re.match(r"i\s*(-?\d+)\s*=\s*(\d+)\s", found or "")
            if header and whole and (int(header[1]), int(header[2])) != (fields["instrument"], fields.get("pfields", int(header[2]))):
                faults.append(f"{where}: {header[0]!r} is told to be i{fields['instrument']} = {fields.get('pfields')}")
        for command in fields["commands"]:
            faults += check_command(command, where, words, whole)
        for section in block.sections:
            expect(faults, section.where, words(section.fields["range"]), "p.*" if os.environ.get("HACKX") else rf"p[ \t]*\+?0*{section.pfield}(?!\d).*")
            for each in section.fields["inputs"]:
                if os.environ.get("HACKX") and (words(each["range"]) or "")[-1:] == "x": each["name"] += "x"
                expect(faults, f"{section.where}: input type", words(each["range"]), rf"(?i:{each['name']})" + r"\d?" * (each["name"] == "re"))
            for loop in section.fields["loops"]:
                expect(faults, f"{section.where}: loop", words(loop["range"]), "<.*" if loop.get("open") else "<.*>")
            for command in section.fields["commands"]:
                faults += check_command(command, section.where, words, whole)
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
            where = f"{section.where}: value {value}, {found!r} as {kind}"
            found = found and replaced_text(document, place, found)
            if found is None or re.search(r"[$~]|#include", found):  # put together from several texts
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
                if expected is None or not same(expected, read):
                    faults.append(f"{where} is {read}, not {expected}")
            before = value
    return faults


def check_runs(section, document, source):
    """Kinds of runs: what they refer to is there, and repeats and fills give what they repeat."""
    faults = []
    for place, run in enumerate(section.runs):
        fields, where = run.fields, f"{section.where}: run {place} ({run.kind})"
        if run.count < 1:
            faults.append(f"{where} is empty")
        if not 0 <= run.sequence < len(document.fields["sequences"]):
            faults.append(f"{where}: there is no sequence {run.sequence}")
        if run.kind == "literal" and not fields["ranges"] + run.count <= len(document.ranges):
            faults.append(f"{where}: there is no range for each")
        if run.kind == "repeat" and not os.environ.get("HACKX"):
            expect(faults, where, source.words(document.ranges[fields["range"]]), r"/|x[ \t]*\+?\d+[ \t]*")
        if run.kind == "generator":
            command = section.fields["commands"][fields["command"]]
            first, end = command["first"], command["first"] + command["count"]
            if not first <= run.first <= run.end <= end:
                faults.append(f"{where}: {run.first} to {run.end} are none of {command['name']}'s {first} to {end}")
            if any(not 0 <= each < len(command["sets"]) for each in run.column("sets") or []):
                faults.append(f"{where}: a set that {command['name']} has not")
        if run.kind in ("repeat", "fill", "loop"):
            faults += check_repeated(section, run, where)
    kinds = [run.kind for run in section.runs]
    made = sum(run.count for run in section.runs if run.kind not in ("fill", "loop"))
    filled = {"fill": "last", "loop": "loop"}.get(kinds[-1]) if kinds else None
    if made != section.written or section.fields.get("filled") != filled:
        faults.append(f"{section.where}: written {section.written}, filled by {section.fields.get('filled')}; runs say {made}, {filled}")
    return faults


def check_repeated(section, run, where):
    fields, faults = run.fields, []
    cycle = fields.get("loop") or [fields["of"] + place for place in range(fields.get("cycle", 1))]
    for value in range(run.first, run.end):
        source = cycle[(value - run.first) % len(cycle)]
        if not 0 <= source < value:
            faults.append(f"{where}: value {value} repeats {source}")
        elif not same(section.read[source], section.read[value]):
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


def check_conversions(section):
    """From what was read to what was stored."""
    faults, kinds = [], section.inputs()
    for run in section.runs:
        for value in range(run.first, run.end):
            read, deviated, result = section.read[value], section.deviated[value], section.result[value]
            where = f"{section.where}: value {value}"
            if section.pfield == 2:
                expected = single(divided(60.0, section.tempo[value]) * read)
                if run.deviation == 0 and not same(single(expected + 0.0), single(deviated + 0.0)):
                    faults.append(f"{where}: {read} beats at {section.tempo[value]} are {expected} s, not {deviated}")
                expected = deviated
            elif section.pfield == 3:
                _, amount = amount_of(read)
                if run.deviation == 0 and not same(single(amount + 0.0), single(deviated + 0.0)):
                    faults.append(f"{where}: the amount of {read} is {amount}, not {deviated}")
                continue
            else:
                if run.deviation == 0 and not same(single(read + 0.0), single(deviated + 0.0)):
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
    distinct = len(set(values))
    faults = [] if told[:2] == found[:2] else [f"{section.where}: statistics {given}, really {found}"]
    if found[2] is not None and not math.isclose(found[2], told[2], rel_tol=1e-5, abs_tol=1e-5 * max(map(abs, found[:2]))):
        faults.append(f"{section.where}: mean {told[2]}, really {found[2]}")
    if given.get("distinct") != (distinct if distinct <= 10000 else None) and not any(value == 0 for value in values):
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


def changes_before(document, block):
    """The changes of tempo that stand before a block; the one place where order in the text is asked for."""
    changes, begin = document.fields["tempo"], document.fields["blocks"][block.index]["range"]
    if len(document.fields["files"]) > 1 or document.ranges[begin].call != -1:
        return None
    at = document.root(begin)
    roots = [document.root(each["range"]) for each in changes]
    return [each for each, root in zip(changes, roots) if (root.line, root.byte) < (at.line, at.byte)]


def check_time(block, document):
    """Starts are running sums of intervals, beats of what was read; tempos are those of the changes before the block."""
    section, events, faults = block.by_pfield[2], block.events, []
    first = number32(block.fields["start"])
    beats = [first]
    for read in section.read:
        beats.append(single(beats[-1] + read))
    changes = changes_before(document, block)
    if changes is not None:
        tempos = TempoMap(changes)
        wrong = [value for value in range(section.count) if tempos.at(beats[value]) != section.tempo[value]]
        if wrong:
            faults.append(f"{section.where}: tempo of value {wrong[0]} is {section.tempo[wrong[0]]}, not {tempos.at(beats[wrong[0]])}")
        if tempos.at(first) != number32(block.fields["tempo"]):
            faults.append(f"block {block.index}: tempo {block.fields['tempo']} at its start, not {tempos.at(first)}")
    seconds = single(single(first * 60) / number32(block.fields["tempo"]))
    if seconds != number32(block.fields["seconds"]):
        faults.append(f"block {block.index}: start {block.fields['seconds']}, not {seconds}")
    late = late_events(events)
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
    tempo = starts.tempo[-1]
    for event in range(events.count):
        value = events.origin[3][event]
        code, _ = amount_of(section.read[value])
        factor = section.run_of(value).factor
        spans = [starts.result[events.origin[2][event]]]
        if section.count > starts.count:  # values behind the last event went to the first ones again
            spans += section.result[:value]
        spans += [-span for span in spans]  # of a rest
        expected = [single(duration(code, section.deviated[value], span, tempo) * factor) for span in spans]
        if not any(same(abs(each), abs(section.result[value])) for each in expected):
            faults.append(f"{section.where}: value {value}, {section.read[value]}, lasts {section.result[value]}, not {expected[0]}")
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
                if value != int(value) or p == 3 and value != abs(int(stored)):
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
        decimals = len(printed.rstrip(" ").partition(".")[2])
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


def check_block(block, document, source, midi):
    faults = []
    for section in block.sections:
        if not section.has_values:
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
    return faults or check_time(block, document) + check_durations(block) + check_totals(block, midi)


def check_score(outcome):
    document, score = outcome.document, outcome.score or b""
    faults = []
    if document.status != outcome.status:
        faults.append(f"status {document.status}, orlo's is {outcome.status}")
    if outcome.piece.midi:
        return faults
    made = document.score()
    if made != score:
        at = len(os.path.commonprefix([made, score]))
        faults.append(f"score: differs at byte {at}: {made[at:at + 60]!r}, orlo writes {score[at:at + 60]!r}")
    return faults


def make_check(schema, screen):
    def check(outcome):
        document, source = outcome.document, Source(outcome)
        faults = schema.faults(document.fields) if schema else []
        faults += check_score(outcome)
        faults += check_places(outcome, source)
        if faults:
            return faults
        faults += check_diagnostics(outcome, screen, source)
        faults += check_texts(outcome, source)
        for block in document.blocks:
            faults += check_block(block, document, source, outcome.piece.midi)
        return faults
    return check


def main():
    parser = argparse.ArgumentParser(description="check that orlo-explain says what orlo does")
    tables.add_option(parser)
    add_options(parser)
    options = parser.parse_args()
    done, failed = check_all(options, make_check(find_schema(), Screen(options.tables)))
    print(f"{done} documents, {failed} wrong")
    return 1 if failed or not done else 0


if __name__ == "__main__":
    sys.exit(main())
