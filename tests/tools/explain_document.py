"""What orlo-explain says of a run, read from its document: columns as lists, texts as bytes, numbers as floats.

The forms are those of docs/explain.schema.json. What does not agree with itself (a column of another length, an index that leads
nowhere) raises Fault.
"""

import bisect
import ctypes
import itertools
import json
from typing import NamedTuple

NUMBERS = {"nan": float("nan"), "inf": float("inf"), "-inf": float("-inf")}


class Fault(Exception):
    """What is wrong with a document."""


def single(value):
    """A number as a 32-bit float holds it."""
    return ctypes.c_float(value).value


def text(value):
    """The bytes of a text."""
    return bytes.fromhex(value["hex"]) if isinstance(value, dict) else value.encode("utf-8")


def leaves(part, path=()):
    """Paths of all numbers, texts and truths of a document."""
    if isinstance(part, dict):
        for key, value in part.items():
            yield from leaves(value, (*path, key))
    elif isinstance(part, list):
        for place, value in enumerate(part):
            yield from leaves(value, (*path, place))
    else:
        yield path


def at(part, path):
    """What stands at a path."""
    for step in path:
        part = part[step]
    return part


def number(value):
    if isinstance(value, str):
        return NUMBERS[value]
    return float(value)


def number32(value):
    """A number of 32 bits; the decimals must be those of such a number."""
    if isinstance(value, str):
        return NUMBERS[value]
    return ctypes.c_float(value).value


def of_length(values, count, what):
    if len(values) != count:
        raise Fault(f"{what} has {len(values)} values, not {count}")
    return values


def integers(column, count, what):
    """The whole numbers of a column."""
    if isinstance(column, dict):
        return [column["from"] + column["step"] * place for place in range(count)]
    return of_length(column, count, what)


def numbers(column, count, what):
    """The numbers of a column, of 32 bits each."""
    if isinstance(column, dict):
        return [number32(column["all"])] * count
    return [number32(value) for value in of_length(column, count, what)]


def texts(column, count, what):
    if isinstance(column, dict):
        return [column["all"]] * count
    return of_length(column, count, what)


class Range(NamedTuple):
    """A place in the text."""
    file: int
    line: int
    byte: int
    utf16: int
    end_line: int
    end_byte: int
    end_utf16: int
    call: int


def read_ranges(columns):
    count = columns["count"]

    def column(name, otherwise=None):
        return integers(columns[name], count, f"ranges.{name}") if name in columns else otherwise

    line, byte, end_byte = column("line"), column("byte"), column("end_byte")
    return [Range(*each) for each in zip(column("file"), line, byte, column("utf16", byte), column("end_line", line), end_byte,
                                         column("end_utf16", end_byte), column("call", [-1] * count))]


class Run:
    """Values of one kind, from first up to end."""

    def __init__(self, fields, first):
        self.fields, self.kind, self.sequence = fields, fields["kind"], fields["sequence"]
        self.first, self.count = first, fields["count"]
        self.end = first + self.count
        self.deviation = number32(fields.get("deviation", 0))
        self.factor = number32(fields.get("factor", 1))

    def column(self, name):
        if name not in self.fields:
            return None
        expand = integers if name == "sets" else numbers
        return expand(self.fields[name], self.count, f"{name} of a run")


class Section:
    """A p-field's section: its columns of values and their runs."""

    def __init__(self, fields, block):
        self.fields, self.block, self.pfield = fields, block, fields["pfield"]
        self.where = f"block {block.index}, p{self.pfield}"
        self.count, self.written = fields["count"], fields["written"]
        values = fields.get("values")
        self.has_values = values is not None
        self.runs, self.read, self.result, self.deviated, self.tempo = [], [], [], [], []
        self.draws, self.draw_counts, self.refused = [], [], []
        if not self.has_values:
            return
        for name in ("read", "result"):
            setattr(self, name, numbers(values[name], self.count, f"{self.where}: {name}"))
        self.deviated = self.column(values, "deviated", self.read)
        self.tempo = self.column(values, "tempo", None)
        self.draws = integers(values["draws"], self.count, f"{self.where}: draws")
        self.draw_counts = integers(values["draw_counts"], self.count, f"{self.where}: draw_counts")
        self.refused = values.get("refused", [])
        first = 0
        for each in values["runs"]:
            self.runs.append(Run(each, first))
            first += each["count"]
        if first != self.count:
            raise Fault(f"{self.where}: the runs are of {first} values, not {self.count}")
        self.starts = [run.first for run in self.runs]

    def column(self, values, name, otherwise):
        return numbers(values[name], self.count, f"{self.where}: {name}") if name in values else otherwise

    def run_of(self, value):
        """The run that a value belongs to; the last of those that begin there."""
        return self.runs[bisect.bisect_right(self.starts, value) - 1]

    def inputs(self):
        """The input type of each value."""
        types, at = [], "re"
        changes = iter([*self.fields["inputs"], {"from": self.count + 1}])
        change = next(changes)
        for value in range(self.count):
            while change["from"] <= value:
                at, change = change["name"], next(changes)
            types.append(at)
        return types


class Events:
    """The events that a block has written, p-fields from p2 up."""

    def __init__(self, fields, where):
        self.count, self.rests = fields["count"], fields["rests"]
        self.beat = numbers(fields["beat"], self.count, f"{where}: beat")
        self.beats = numbers(fields["beats"], self.count, f"{where}: beats")
        self.value, self.printed, self.origin = {}, {}, {}
        for p, each in enumerate(fields["pfields"], 2):
            self.value[p] = numbers(each["value"], self.count, f"{where}: values of p{p}")
            self.origin[p] = integers(each["origin"], self.count, f"{where}: origins of p{p}")
            if "printed" in each:
                self.printed[p] = texts(each["printed"], self.count, f"{where}: printed p{p}")


class Block:
    def __init__(self, fields, index):
        self.fields, self.index = fields, index
        self.sections = [Section(each, self) for each in fields["sections"]]
        self.by_pfield = {section.pfield: section for section in self.sections}
        self.events = Events(fields["events"], f"block {index}") if "events" in fields else None

    def has(self, name):
        return name in self.fields


def only_once(pairs):
    """An object of JSON in which no key stands twice."""
    found = dict(pairs)
    if len(found) != len(pairs):
        raise Fault(f"a key stands twice in {sorted(found)}")
    return found


def no_constant(name):
    raise Fault(f"{name} is no JSON")


class Document:
    def __init__(self, data):
        self.fields = json.loads(data.decode("utf-8"), object_pairs_hook=only_once, parse_constant=no_constant)
        self.status, self.diagnostics = self.fields["status"], self.fields["diagnostics"]
        self.ranges = read_ranges(self.fields["ranges"])
        self.calls = self.fields["calls"]
        self.roots = {}  # of calls, as they become known
        self.blocks = [Block(each, index) for index, each in enumerate(self.fields["blocks"])]

    def chain(self, call, most=100):
        """The calls that a call came through, itself first, so many at most."""
        chain = []
        while call != -1 and len(chain) < most:
            if not 0 <= call < len(self.calls):
                raise Fault(f"there is no call {call}")
            if call in chain:
                raise Fault(f"call {call} comes through itself")
            chain.append(call)
            call = self.ranges[self.calls[call]["range"]].call
        return chain

    def root_call(self, call):
        """The call that stands in a file and brought in another one, through those between them; -1 for none."""
        path = []
        while call != -1 and call not in self.roots:
            if not 0 <= call < len(self.calls):
                raise Fault(f"there is no call {call}")
            self.roots[call] = None  # not known yet
            path.append(call)
            call = self.ranges[self.calls[call]["range"]].call
        found = self.roots[call] if call != -1 else path[-1] if path else -1
        if found is None:
            raise Fault(f"call {call} comes through itself")
        for each in path:
            self.roots[each] = found
        return found

    def root(self, index):
        """The place in a file that belongs to no call, through which a range came into the piece."""
        place = self.ranges[index]
        call = self.root_call(place.call)
        return place if call == -1 else self.ranges[self.calls[call]["range"]]

    def score(self):
        """The score, put together."""
        return b"".join(part for each in self.fields["score"] for part in self.score_parts(each))

    def score_parts(self, part):
        if not (isinstance(part, dict) and "block" in part):
            return [text(part)]
        block = self.blocks[part["block"]]
        head = f"\ni{block.fields['instrument']} "
        columns = [block.events.printed[p] for p in sorted(block.events.printed)]
        return ["".join([head, *fields]).encode("utf-8") for fields in zip(*columns)]


def range_indexes(fields):
    """Every index of a range in a part of a document, with the key that holds it; those of literals with the ranges after it."""
    if isinstance(fields, list):
        for each in fields:
            if isinstance(each, (dict, list)):
                yield from range_indexes(each)
    elif isinstance(fields, dict):
        for key, value in fields.items():
            if is_range(fields, key):
                yield key, value
            elif key == "ranges" and isinstance(value, int):
                yield from zip(itertools.repeat(key), range(value, value + fields["count"]))
            elif isinstance(value, (dict, list)) and key not in ("values", "events", "lists"):
                yield from range_indexes(value)
            elif key == "values":
                yield from range_indexes(value["runs"])


def is_range_name(key):
    """Whether a key of this name holds the index of a range wherever it stands."""
    return key in ("range", "included", "undefined") or key.endswith("_range")


def is_range(fields, key):
    """Whether a key holds the index of a range. "end" is one of a condition, and a time of a block or of a change of tempo."""
    return (is_range_name(key) or key == "end" and "taken" in fields) and isinstance(fields[key], int)


def without_values(document):
    """The parts of a document that are the same without events, with ranges in the places of their indexes."""
    def part(fields):
        if isinstance(fields, list):
            return [part(each) for each in fields]
        if not isinstance(fields, dict):
            return fields
        kept = {key: value for key, value in fields.items() if key not in ("values", "events")}
        return {key: tuple(document.ranges[value]) if is_range(fields, key) else
                [tuple(document.ranges[use]) for use in value] if key == "uses" else part(value) for key, value in kept.items()}

    return part({key: value for key, value in document.fields.items() if key not in ("ranges", "score")})
