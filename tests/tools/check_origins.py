"""Where notes come from stays true when text is moved: check_origins.py --orlo PROGRAM [--explain PROGRAM] [--count N] [--seed N]

Takes pieces (examples, cases, generated ones, and ones with an error or a warning), moves parts of them at random into include files,
macros, constants and conditions, and runs both. The scores must be the same bytes. What orlo-explain says of the moved piece must be
what it says of the original with every place where the text is now: the same file, line and columns, through the expected calls;
an end that lies in another text than the other is lifted to the innermost call or file that both share.
Without --explain only the scores are compared.
"""

import argparse
import collections
import glob
import json
import os
import random
import re
import subprocess
import sys
import tempfile
from bisect import bisect_right

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [HERE, os.path.join(HERE, ".."), os.path.join(HERE, "..", "fuzz")]
import case_file
import generate_pieces
from moves import Constant, Definition, Include, Layout, Line, Reference, Call, Character, Parameter, Walk, read_program, \
    transform, wrap_in_document
from piece_text import NotUnderstood, PieceText
from pieces import included_files

MAIN = "piece.orlo"
LARGEST_PIECE = 6000  # bytes
PLACES = ("range", "span_range")
OWN_CHECKS = ("files", "ranges", "calls", "macros", "constants", "conditionals")  # parts of a document that moves change
FAULTS_SHOWN = 6
AFTER_ERROR = ("commands", "tempo", "sequences")  # go on behind an error, which ends the line it stands in

# what is put into generated pieces, so that something is wrong with them; "" for a number stands for one of their numbers
WRONG_NUMBERS = ["&", "900", "-3", "zz9", "$nope", "~nope", "9.75", "99999999999", "~[1 +]", "$nope(1)"]
WRONG_ITEMS = ["dv(2)", "rd(1.5)", "dv(200)", "rs(70000)", "7x0", "EX(T 1 [p2 / p3])", "5''6", "RA(2 .5 [1 2])", "SE(T 1 [])",
               "MO(T 1 q 1 2)", "XY", "HO(T", "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26 27 28 29 30 31"]
WRONG_LINES = ["te(20)", "te(0 5 10 999)", "te(x)", "zz", "rs(70000)", "rd(2)", "#const k9_ $m", "~nope", "te(5 1 60 60)", "pf(2)"]


class Fault(Exception):
    pass


# pieces

def read_file(path):
    with open(path, encoding="latin-1", newline="") as file:
        return file.read()


def example_pieces():
    folder = os.path.join(HERE, "..", "..", "examples")
    for path in sorted(glob.glob(os.path.join(folder, "*.orlo"))):
        yield {MAIN: read_file(path)} | {name: read_file(source) for name, source in included_files(path)}


def case_pieces():
    for path in sorted(glob.glob(os.path.join(HERE, "..", "cases", "*", "*.case"))):
        with open(path, "rb") as file:
            _, sections = case_file.parse_case(file.read())
        files = {section.name: section.text().decode("latin-1") for section in sections if section.kind == "file"}
        if "in.orlo" in files and not {"program", "args", "stdin", "env", "dir"} & {section.kind for section in sections}:
            yield {MAIN: files.pop("in.orlo")} | files


def with_wide_characters(text):
    """Comments whose characters are several bytes, and others in UTF-16."""
    return re.sub(r"\np(\d)", lambda match: f"\np{match[1]} /* \u00e9\u2669\U0001d11e */".encode().decode("latin-1"), text, count=1)


def generated_piece(chance):
    text = generate_pieces.make_piece(chance.randrange(10**9))
    return {MAIN: with_wide_characters(text) if chance.random() < .1 else text}


def broken_piece(chance):
    """A generated piece with something wrong in it."""
    while True:
        text = generated_piece(chance)[MAIN]
        try:
            reading = PieceText(text)
        except NotUnderstood:
            continue
        kind = chance.choice(["number", "item", "item", "line", "again"])
        numbers = reading.numbers
        if kind == "number" and numbers:
            begin, end = chance.choice(numbers)
            text = text[:begin] + chance.choice(WRONG_NUMBERS) + text[end:]
        elif kind == "item":
            at = chance.choice(reading.sections)
            text = text[:at] + " " + chance.choice(WRONG_ITEMS) + " " + text[at:]
        elif kind == "line":
            at = chance.choice(sorted(reading.free_lines))
            text = text[:at] + chance.choice(WRONG_LINES) + "\n" + text[at:]
        else:
            text = re.sub(r"\np4", "\np3", text, count=1)
        return {MAIN: text}


class Pieces:
    """Pieces by kind, at random."""

    def __init__(self):
        self.kept = {"example": list(example_pieces()), "case": list(case_pieces())}
        self.taken = collections.Counter()

    def choose(self, chance):
        """A kind, a program and the reading of its text."""
        while True:
            kind = chance.choices(["generated", "broken", "case", "example"], [40, 30, 22, 8])[0]
            if kind in self.kept:
                files = chance.choice(self.kept[kind])
            else:
                files = generated_piece(chance) if kind == "generated" else broken_piece(chance)
            if sum(len(text) for text in files.values()) > LARGEST_PIECE or any(len(line) > 500 for line in files[MAIN].split("\n")):
                continue
            program = read_program(MAIN, files)
            if program is None:
                continue
            try:
                reading = PieceText("".join(character.c for character, _ in Walk(program).met))
            except NotUnderstood:
                continue
            self.taken[kind] += 1
            return kind, program, reading


# running

def write_files(folder, files):
    for name, text in files.items():
        path = os.path.join(folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="latin-1", newline="") as file:
            file.write(text)


def run(command, folder):
    return subprocess.run(command, cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                          timeout=120, check=False)


def run_orlo(orlo, folder):
    """Status and score."""
    result = run([orlo, "-s", MAIN, "out.sco"], folder)
    try:
        with open(os.path.join(folder, "out.sco"), "rb") as file:
            return result.returncode, file.read()
    except FileNotFoundError:
        return result.returncode, None


def run_explain(explain, folder, name):
    result = run([explain, name, "-o", "out.json"], folder)
    if result.returncode != 0:
        raise Fault(f"orlo-explain ends with status {result.returncode}: {result.stderr.decode('latin-1')[-500:]}")
    with open(os.path.join(folder, "out.json"), encoding="utf-8") as file:
        data = json.load(file)
    if os.path.realpath(text_of(data["piece"]["folder"]).encode("latin-1")) != os.path.realpath(folder).encode():
        raise Fault(f"its folder is {data['piece']['folder']}")
    return data


# places: (file, begin, end, call), begin and end as bytes of the file; call: None or (kind, name, place of the call)

def column_of(column, count):
    if isinstance(column, dict):
        return [column["from"] + at * column["step"] for at in range(count)]
    return column


class Document:
    """What orlo-explain says, with places instead of ranges."""

    def __init__(self, data, files):
        self.data, self.files = data, files
        self.names = [text_of(file["name"]) for file in data["files"]]
        self.lines = {name: [0] + [at + 1 for at, c in enumerate(text) if c == "\n"] for name, text in files.items()}
        ranges = data["ranges"]
        count = ranges["count"]
        read = {key: column_of(value, count) for key, value in ranges.items() if key != "count"}
        read.setdefault("end_line", read["line"])
        read.setdefault("utf16", read["byte"])
        read.setdefault("end_utf16", read["end_byte"])
        read.setdefault("call", [-1] * count)
        if any(len(column) != count for column in read.values()):
            raise Fault("columns of ranges have other lengths")
        self.ranges, self.count = read, count
        self.known = {}
        self.asked = set()

    def offset(self, name, line, byte, utf16):
        starts = self.lines[name]
        if not 0 <= line < len(starts):
            raise Fault(f"line {line} of {name}, which has {len(starts)}")
        end = starts[line + 1] - 1 if line + 1 < len(starts) else len(self.files[name])
        if not 0 <= byte <= end - starts[line]:
            raise Fault(f"column {byte} of line {line} of {name}, which has {end - starts[line]}")
        before = self.files[name][starts[line]:starts[line] + byte]
        if utf16 != utf16_length(before):
            raise Fault(f"line {line} of {name}: {byte} bytes are {utf16} UTF-16 units")
        return starts[line] + byte

    def place(self, index):
        self.asked.add(index)
        if index not in self.known:
            if not 0 <= index < self.count:
                raise Fault(f"range {index} of {self.count}")
            get = {key: column[index] for key, column in self.ranges.items()}
            name = self.names[get["file"]]
            begin = self.offset(name, get["line"], get["byte"], get["utf16"])
            end = self.offset(name, get["end_line"], get["end_byte"], get["end_utf16"])
            self.known[index] = (name, begin, end, self.call(get["call"]))
        return self.known[index]

    def call(self, index):
        if index == -1:
            return None
        call = self.data["calls"][index]
        return (call["kind"], text_of(call.get("name", "")), self.place(call["range"]))

    def show(self, place):
        if place is None:
            return "nowhere"
        name, begin, end, call = place
        line = bisect_right(self.lines[name], begin) - 1
        text = self.files[name][begin:end]
        through = f" by {call[0]} {call[1]!r} at {self.show(call[2])}" if call else ""
        return f"{name}:{line}:{begin - self.lines[name][line]}-{end - begin} {text[:60]!r}{through}"


def text_of(text):
    return text.encode().decode("latin-1") if isinstance(text, str) else bytes.fromhex(text["hex"]).decode("latin-1")


def utf16_length(text):
    """Of bytes; one that belongs to no UTF-8 character is a unit."""
    if text.isascii():
        return len(text)
    return len(text.encode("latin-1").decode("utf-8", "surrogateescape").encode("utf-16-le", "surrogatepass")) // 2


# what is expected

class Image:
    """Where places of the original are in the moved piece."""

    def __init__(self, original, before):
        """before: the walk and the layout of the original"""
        self.original = original
        walk, layout = before
        self.anchors = {}
        for offset, (character, _) in enumerate(walk.met):
            file, begin, _ = layout.place[id(character)]
            self.anchors[file, begin] = offset
        for item in walk.order:
            if isinstance(item, Include):
                file, begin, end = layout.place[id(item)]
                for at in range(begin, end):
                    self.anchors[file, at] = item

    def move_to(self, program):
        self.program, self.walk, self.layout = program, Walk(program), Layout(program)
        self.places = {}

    def steps(self, file, at):
        """An item of the moved piece, and the steps to it."""
        anchor = self.anchors[file, at]
        if isinstance(anchor, Include):
            return anchor, self.walk.path_of[id(anchor)]
        return self.walk.met[anchor]

    def place(self, place):
        if place not in self.places:
            self.places[place] = self.find(*place)
        return self.places[place]

    def find(self, file, begin, end, call):
        behind = (file, begin) not in self.anchors  # the end of a file
        first, first_path = self.steps(file, begin - behind)
        last, last_path = self.steps(file, max(begin - behind, end - 1))
        shared = 0
        while shared < min(len(first_path), len(last_path)) and first_path[shared] is last_path[shared]:
            shared += 1
        path = first_path[:shared]
        if path and isinstance(path[-1], Reference) and len(first_path) == len(last_path) == shared:
            where = self.layout.place[id(path[-1].constant)]  # each character of the number comes from all of its text
        else:
            begins = self.layout.place[id(first_path[shared] if len(first_path) > shared else first)]
            ends = self.layout.place[id(last_path[shared] if len(last_path) > shared else last)]
            where = (begins[0], begins[1], ends[2])
        if behind:
            where = (where[0], where[2], where[2])
        elif begin == end:
            where = (where[0], where[1], where[1])
        return (*where, self.call_of(path[self.steps_before(call):], call))

    def steps_before(self, call):
        """How many of the steps to a text have led to a call of the original already, if the text stands where it is called."""
        if call is None or call[0] in ("macro", "constant"):
            return 0
        around = call[2][3] if call[0] == "argument" else call
        return len(self.steps(*around[2][:2])[1])

    def call_of(self, path, call):
        """The call that steps lead to, through one of the original."""
        node = (call[0], call[1], self.place(call[2])) if call else None
        for step in path:
            if not isinstance(step, Include):
                node = (step.kind, step.name, (*self.layout.place[id(step)], node))
        return node

    def item(self, item):
        """The place of something that was added."""
        return (*self.layout.place[id(item)], None)


class Comparison:
    """A document of a moved piece against that of the original."""

    def __init__(self, moved, image):
        self.moved, self.original, self.image = moved, image.original, image
        self.faults = []
        self.counts = collections.Counter()

    def fault(self, where, text):
        self.faults.append(f"{where}: {text}")

    def check_place(self, where, index, original_index):
        found, expected = self.moved.place(index), self.image.place(self.original.place(original_index))
        self.counts["places"] += 1
        self.counts["places in calls"] += found[3] is not None
        self.counts["places in include files"] += found[0] != self.image.program.main.name
        self.expect_place(where, found, expected)

    def expect_place(self, where, found, expected):
        if found != expected:
            self.fault(where, f"{self.moved.show(found)}\n      instead of {self.moved.show(expected)}")

    def equal(self, where, found, expected):
        if found != expected:
            self.fault(where, f"{str(found)[:200]} instead of {str(expected)[:200]}")

    def check(self):
        new, old = self.moved.data, self.original.data
        self.equal("keys", sorted(new), sorted(old))
        for key in old:
            if key == "piece":
                self.equal(key, new[key]["kind"], "csd" if self.image.program.before else "orlo")
            elif key not in OWN_CHECKS and not (self.image.joins_lines and self.has_error() and key in AFTER_ERROR):
                self.compare(key, self.known(new[key]), self.known(old[key]))
        self.check_files()
        self.check_macros()
        self.check_constants()
        self.check_conditionals()
        self.check_calls()
        for block in new["blocks"]:
            events = block.get("events", {"count": 0, "pfields": []})
            self.counts["events"] += events["count"]
            self.counts["p-fields"] += events["count"] * len(events["pfields"])
        self.counts["diagnostics"] += len(new["diagnostics"])
        self.counts["ranges that nothing asks for"] += self.moved.count - len(self.moved.asked)
        return self.faults

    def known(self, part):
        """Without what was found by looking further after an error when lines have become one: that goes on with the next line."""
        if self.image.joins_lines and isinstance(part, list):
            return [each for each in part if not (isinstance(each, dict) and "recovered" in each)]
        return part

    def compare(self, where, new, old):
        if isinstance(old, dict) and isinstance(new, dict):
            self.equal(f"{where}, keys", sorted(new), sorted(old))
            for key in old:
                if key not in new:
                    continue
                if key in PLACES:
                    self.check_place(f"{where}.{key}", new[key], old[key])
                elif key == "ranges" and isinstance(old[key], int):
                    for at in range(min(old["count"], new["count"])):
                        self.check_place(f"{where}, value {at}", new[key] + at, old[key] + at)
                else:
                    self.compare(f"{where}.{key}", new[key], old[key])
        elif isinstance(old, list) and isinstance(new, list) and old and isinstance(old[0], (dict, list)):
            self.equal(f"{where}, length", len(new), len(old))
            for at, (one, other) in enumerate(zip(new, old)):
                self.compare(f"{where}[{at}]", one, other)
        else:
            self.equal(where, new, old)

    def optional_place(self, document, record, key):
        return document.place(record[key]) if key in record else None

    def check_files(self):
        includes = [item for item in self.image.walk.order if isinstance(item, Include)]
        main = self.image.program.main.name
        expected = [(main, None)] + [(include.file.name, (*self.image.layout.place[id(include)], None)) for include in includes]
        found = [(text_of(file["name"]), self.optional_place(self.moved, file, "included")) for file in self.moved.data["files"]]
        self.equal("files", found, expected)
        for file in self.moved.data["files"]:
            name = text_of(file["name"])
            around = self.image.program.before + self.image.program.behind if name == main else ""
            bytes_read = len(self.moved.files[name]) - len(around)
            self.equal(f"bytes of {name}", file.get("bytes"), bytes_read)

    def has_error(self):
        return any(each["severity"] == "error" for each in self.original.data["diagnostics"])

    def check_macros(self):
        items = {item.name: item for item in self.image.walk.order if isinstance(item, Definition)}
        undefined = {item.undefines.name: item for item in self.image.walk.order if isinstance(item, Line) and item.undefines}
        of_piece = iter(self.original.data["macros"])
        seen = 0
        for macro in self.moved.data["macros"]:
            name, place = text_of(macro["name"]), self.moved.place(macro["range"])
            where = f"macro {name}"
            if name in items:
                seen += 1
                item = items[name]
                self.expect_place(where, place, self.image.item(item))
                self.expect_place(where, self.moved.place(macro["name_range"]), (*self.image.layout.name_place[id(item)], None))
                self.equal(where, macro["parameters"], item.parameters)
                if name in undefined and ("undefined" in macro or not self.has_error()):
                    file, begin, end = self.image.layout.place[id(undefined[name])]
                    expected = (file, begin + len("#undef "), end - 1, None)
                    self.expect_place(where, self.optional_place(self.moved, macro, "undefined"), expected)
                elif name not in undefined:
                    self.equal(where, "undefined" in macro, False)
            else:
                old = next(of_piece, None)
                if old is None:
                    self.fault(where, "is none of the piece")
                    continue
                self.compare_definition(where, macro, old, ("range", "name_range", "undefined"), ("name", "parameters"))
            text = self.moved.files[place[0]][place[1]:place[2]]
            self.equal(where, text_of(macro["body"]), text.split("#", 2)[-1][:-1].replace("\n", " \n"))
        self.equal("macros of the piece", next(of_piece, None), None)
        if not self.has_error():
            self.equal("macros", seen, len(items))

    def compare_definition(self, where, new, old, places, values):
        for key in places:
            self.equal(f"{where}, {key}", key in new, key in old)
            if key in new and key in old:
                self.check_place(f"{where}.{key}", new[key], old[key])
        for key in values:
            self.equal(where, new[key], old[key])

    def check_constants(self):
        items = {item.name: item for item in self.image.walk.order if isinstance(item, Constant)}
        of_piece = iter(self.original.data["constants"])
        seen = 0
        for constant in self.moved.data["constants"]:
            name = text_of(constant["name"])
            where = f"constant {name}"
            if name in items:
                seen += 1
                item = items[name]
                self.expect_place(where, self.moved.place(constant["range"]), self.image.item(item))
                self.equal(where, constant["value"], float("".join(each.c for each in item.value.items)))
            else:
                old = next(of_piece, None)
                if old is None:
                    self.fault(where, "is none of the piece")
                    continue
                self.compare_definition(where, constant, old, ("range",), ("name", "value"))
        self.equal("constants of the piece", next(of_piece, None), None)
        if not self.has_error():
            self.equal("constants", seen, len(items))

    def expected_conditions(self):
        """Place, whether taken, and place of the end, in the order in which they are met."""
        opened, closed, order = [], {}, []
        old = {self.original.place(each["range"])[:2]: each for each in self.original.data["conditionals"]}
        ends = {self.original.place(each["end"])[:2] for each in self.original.data["conditionals"] if "end" in each}
        at = {self.image.anchors[place]: place for place in [*old, *ends]}
        for item in self.image.walk.order:
            if isinstance(item, Line) and not item.undefines:
                file, begin, _ = self.image.layout.place[id(item)]
                begin += len(item.text) - len(item.text.lstrip())
                place = (file, begin, begin + len(item.text.strip()), None)
                if item.text.lstrip().startswith("#if"):
                    opened.append(place)
                    order.append((place, True))
                else:
                    closed[opened.pop()] = place
            elif isinstance(item, Character) and item.original:
                known = at.get(self.image.walk.first[id(item)])
                if known in old:
                    place = self.image.place(self.original.place(old[known]["range"]))
                    opened.append(place)
                    order.append((place, old[known]["taken"]))
                elif known in ends:
                    original = next(each for each in self.original.data["conditionals"]
                                    if "end" in each and self.original.place(each["end"])[:2] == known)
                    closed[opened.pop()] = self.image.place(self.original.place(original["end"]))
        return [(place, taken, closed.get(place)) for place, taken in order]

    def check_conditionals(self):
        expected = self.expected_conditions()
        found = [(self.moved.place(each["range"]), each["taken"], self.optional_place(self.moved, each, "end"))
                 for each in self.moved.data["conditionals"]]
        if self.has_error():
            self.equal("conditions", [each for each in found if each[:2] not in [other[:2] for other in expected]], [])
        else:
            self.equal("conditions", found, expected)

    def check_calls(self):
        """Each call is one of the original or one that was made, and says what it stands for."""
        known = {self.image.place(self.original.place(call["range"]))[:3] for call in self.original.data["calls"]}
        made = {(item.kind, item.name, *self.image.layout.place[id(item)]) for item in self.image.walk.order
                if isinstance(item, (Call, Parameter, Reference))}
        for number, call in enumerate(self.moved.data["calls"]):
            where = f"call {number}"
            place = self.moved.place(call["range"])
            if place[:3] not in known and (call["kind"], text_of(call.get("name", "")), *place[:3]) not in made:
                self.fault(where, f"is none of the piece: {self.moved.show(place)}")
            if call["kind"] in ("macro", "constant"):
                self.equal(where, self.moved.data[call["kind"] + "s"][call["of"]]["name"], call["name"])
            if call["kind"] == "constant":
                self.equal(where, call["value"], self.moved.data["constants"][call["of"]]["value"])
            self.counts["calls"] += 1


# the check

class Transformation:
    """A piece and what it was moved to."""

    def __init__(self, pieces, seed):
        self.seed = seed
        while True:
            chance = random.Random(seed)
            self.kind, self.program, self.reading = pieces.choose(chance)
            self.before = Walk(self.program), Layout(self.program)
            self.moves, self.mover = transform(self.program, self.reading, chance)
            if self.moves and self.mover.lines_are_short():
                break
            seed += 10**12  # a line became too long, or nothing of the piece may be moved
        self.after = Layout(self.program).files
        self.in_document = chance.random() < .1 and self.after[MAIN].endswith("\n")

    def check_text(self):
        """The moved text comes to the text of the original."""
        if [character.c for character, _ in Walk(self.program).met] != list(self.reading.text):
            raise AssertionError("the check itself has lost text")

    def compare_scores(self, orlo, folders):
        for folder, files in zip(folders, (self.before[1].files, self.after)):
            write_files(folder, files)
        old, new = (run_orlo(orlo, folder) for folder in folders)
        return [] if old == new else [f"orlo: status {new[0]} and another score instead of status {old[0]} and its score"]

    def documents(self, explain, folders):
        """The documents of the original and of the moved piece."""
        old = Document(run_explain(explain, folders[0], MAIN), self.before[1].files)
        files = self.after
        if self.in_document:
            wrap_in_document(self.program)
            files = Layout(self.program).files
            write_files(folders[1], files)
        return old, Document(run_explain(explain, folders[1], self.program.main.name), files)

    def comparison(self, old, new):
        image = Image(old, self.before)
        image.move_to(self.program)
        image.joins_lines = self.mover.joins_lines
        return Comparison(new, image)


def keep(transformation, folders, kept, number):
    """Leaves the pieces of a fault in a folder."""
    for folder, name in zip(folders, ("before", "after")):
        target = os.path.join(kept, f"{number}-{name}")
        os.makedirs(target, exist_ok=True)
        for file in glob.glob(os.path.join(folder, "**"), recursive=True):
            if os.path.isfile(file):
                path = os.path.join(target, os.path.relpath(file, folder))
                os.makedirs(os.path.dirname(path), exist_ok=True)
                with open(file, "rb") as source, open(path, "wb") as copy:
                    copy.write(source.read())


def check_one(options, pieces, number, counts):
    """The faults of a transformation."""
    transformation = Transformation(pieces, options.seed * 1_000_003 + number)
    transformation.check_text()
    counts.update(transformation.moves)
    counts[f"pieces: {transformation.kind}"] += 1
    with tempfile.TemporaryDirectory() as root:
        folders = [os.path.join(root, name) for name in ("before", "after")]
        faults = transformation.compare_scores(options.orlo, folders)
        if not faults and options.explain:
            try:
                comparison = transformation.comparison(*transformation.documents(options.explain, folders))
                faults = comparison.check()
                counts.update(comparison.counts)
            except Fault as fault:
                faults = [str(fault)]
        if faults and options.keep:
            keep(transformation, folders, options.keep, number)
    return [f"transformation {number} ({transformation.kind}: {', '.join(transformation.moves)})"] + faults if faults else []


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--orlo", required=True, type=os.path.abspath)
    parser.add_argument("--explain", type=os.path.abspath)
    parser.add_argument("--count", type=int, default=150)
    parser.add_argument("--first", type=int, default=0, help="number of the first transformation")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--keep", help="a folder for pieces with a fault")
    options = parser.parse_args()

    pieces, counts, wrong = Pieces(), collections.Counter(), 0
    for number in range(options.first, options.first + options.count):
        faults = check_one(options, pieces, number, counts)
        wrong += bool(faults)
        for line in faults[:1 + FAULTS_SHOWN]:
            print(line if line is faults[0] else "    " + line)
    print(f"{options.count} transformations, {wrong} wrong")
    for name, count in sorted(counts.items()):
        print(f"  {name}: {count}")
    return 1 if wrong or options.count < 1 else 0


if __name__ == "__main__":
    sys.exit(main())
