"""Where places of a piece are when its text has been moved, and whether what orlo-explain says of the moved piece agrees."""

import collections
from bisect import bisect_right

from explain_document import Fault, text as document_text
from text_tree import Call, Character, Constant, Definition, Include, Line, Parameter, Reference, Layout, Walk

PLACES = ("range", "span_range", "pfields_range", "start_range", "length_range")
OWN_CHECKS = ("files", "ranges", "calls", "macros", "constants", "conditionals", "hints")  # parts of a document that moves change
OF_TIME = ("late-block", "late-curve", "cut-span", "negative-interval")  # hints that are of what sounds, however it is written
AFTER_ERROR = ("commands", "tempo", "sequences")  # go on behind an error, which ends the line it stands in


class Places:
    """A document of orlo-explain with the files that it speaks of. A place is (file, begin, end, call), begin and end as bytes of the
    file; a call None or (kind, name, place of the call)."""

    def __init__(self, document, files):
        self.document, self.data, self.files = document, document.fields, files
        self.names = [text_of(file["name"]) for file in self.data["files"]]
        self.lines = {name: [0] + [at + 1 for at, c in enumerate(text) if c == "\n"] for name, text in files.items()}
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
            if not 0 <= index < len(self.document.ranges):
                raise Fault(f"there is no range {index}")
            found = self.document.ranges[index]
            if not 0 <= found.file < len(self.names):
                raise Fault(f"there is no file {found.file}")
            name = self.names[found.file]
            begin = self.offset(name, found.line, found.byte, found.utf16)
            end = self.offset(name, found.end_line, found.end_byte, found.end_utf16)
            chain = self.document.chain(found.call)
            self.known[index] = (name, begin, end, self.call(chain[0] if chain else None))
        return self.known[index]

    def call(self, index):
        if index is None:
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
    return document_text(text).decode("latin-1")


def utf16_length(text):
    """Of bytes; one that belongs to no UTF-8 character is a unit."""
    if text.isascii():
        return len(text)
    return len(text.encode("latin-1").decode("utf-8", "surrogateescape").encode("utf-16-le", "surrogatepass")) // 2


class Image:
    """Where places of the original are in the moved piece."""

    def __init__(self, original, walk, layout, program):
        """original: its places, walk and layout; program: what it was moved to."""
        self.original = original
        self.anchors = {}
        for offset, (character, _) in enumerate(walk.met):
            file, begin, _ = layout.place[id(character)]
            self.anchors[file, begin] = offset
        for item in walk.order:
            if isinstance(item, Include):
                file, begin, end = layout.place[id(item)]
                for at in range(begin, end):
                    self.anchors[file, at] = item
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

    def __init__(self, moved, image, joins_lines):
        self.moved, self.original, self.image = moved, image.original, image
        self.joins_lines = joins_lines
        self.faults = []
        self.counts = collections.Counter()

    def fault(self, where, text):
        self.faults.append(f"{where}: {text}")

    def check_place(self, where, index, original_index):
        original = self.original.place(original_index)
        found = self.moved.place(index)
        if self.is_end_of_body(original):
            return
        expected = self.image.place(original)
        self.counts["places"] += 1
        self.counts["places in calls"] += found[3] is not None
        self.counts["places in include files"] += found[0] != self.image.program.main.name
        self.expect_place(where, found, expected)

    @staticmethod
    def is_end_of_body(place):
        """Reading ended with a body there; a moved call is read on behind the body where it stands."""
        _, begin, end, call = place
        return begin == end and call is not None

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
            elif key in OWN_CHECKS or (key in AFTER_ERROR and self.may_end_earlier()) or (key == "blocks" and self.ends_earlier(new)):
                continue
            else:
                self.compare(key, self.known(new[key]), self.known(old[key]))
        self.check_files()
        self.check_macros()
        self.check_constants()
        self.check_conditionals()
        self.check_calls()
        self.check_hints()
        for block in new["blocks"]:
            events = block.get("events", {"count": 0, "pfields": []})
            self.counts["events"] += events["count"]
            self.counts["p-fields"] += events["count"] * len(events["pfields"])
        self.counts["diagnostics"] += len(new["diagnostics"])
        unasked = [] if self.may_end_earlier() else set(range(len(self.moved.document.ranges))) - self.moved.asked
        for index in sorted(unasked):
            self.fault("ranges", f"nothing asks for {self.moved.show(self.moved.place(index))}")
        return self.faults

    def known(self, part):
        """Without what was found by looking further after an error when lines have become one: that goes on with the next line."""
        if self.joins_lines and isinstance(part, list):
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
            self.equal(f"whether {name} was found", file["found"], True)
            around = self.image.program.before + self.image.program.behind if name == main else ""
            bytes_read = len(self.moved.files[name]) - len(around)
            self.equal(f"bytes of {name}", file.get("bytes"), bytes_read)

    def has_error(self):
        return any(each["severity"] == "error" for each in self.original.data["diagnostics"])

    def may_end_earlier(self):
        """An error ends its line, in which there may be more now."""
        return self.joins_lines and self.has_error()

    def ends_earlier(self, new):
        """Whether sections of the block with the error stand behind it in its line now."""
        sections = [sum(len(block["sections"]) for block in data["blocks"]) for data in (new, self.original.data)]
        return self.may_end_earlier() and sections[0] < sections[1]

    def is_read_whole(self):
        """Behind an error, and behind the first block for a MIDI file, definitions may not be read."""
        return not self.has_error() and not self.original.data["piece"]["midi"]

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
                if name in undefined and ("undefined" in macro or self.is_read_whole()):
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
        if self.is_read_whole():
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
                self.check_uses(where, constant, item)
            else:
                old = next(of_piece, None)
                if old is None:
                    self.fault(where, "is none of the piece")
                    continue
                self.compare_definition(where, constant, old, ("range",), ("name", "value"))
                self.equal(f"{where}, uses", len(constant.get("uses", [])), len(old.get("uses", [])))
                for use, old_use in zip(constant.get("uses", []), old.get("uses", [])):
                    self.check_place(f"{where}, use", use, old_use)
        self.equal("constants of the piece", next(of_piece, None), None)
        if self.is_read_whole():
            self.equal("constants", seen, len(items))

    def check_uses(self, where, constant, item):
        """The names in references."""
        expected = []
        for path in self.image.walk.visits:
            if isinstance(path[-1], Reference) and path[-1].constant is item:
                file, begin, end = self.image.layout.place[id(path[-1])]
                expected.append((file, begin + 1, end, self.image.call_of(path[:-1], None)))
        found = [self.moved.place(use) for use in constant.get("uses", [])]
        if not self.is_read_whole():  # what was read is some of them, in their order
            rest = iter(expected)
            expected = found if all(use in rest for use in found) else expected
        self.equal(f"{where}, uses", found, expected)

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
        if self.is_read_whole():
            self.equal("conditions", found, expected)
            return
        for condition in found:
            known = [each for each in expected if each[:2] == condition[:2] and condition[2] in (None, each[2])]
            self.equal("condition", condition[:2], known[0][:2] if known else None)

    def expected_calls(self):
        """Those of the original, and those that were made: from bodies of the original by any of its calls."""
        known = {self.image.call_of((), self.original.call(number)) for number in range(len(self.original.data["calls"]))}
        through = [None] + [call for call in map(self.original.call, range(len(self.original.data["calls"]))) if call[0] == "macro"]
        return known | {self.image.call_of(path, call) for path in set(self.image.walk.visits) for call in through}

    def check_hints(self):
        """Those of time are the same; all have places."""
        for hint in self.moved.data["hints"]:
            for each in (hint, *hint.get("edits", [])):
                if "range" in each:
                    self.moved.place(each["range"])
        if self.has_error():
            return
        new, old = ([each for each in data["hints"] if each["name"] in OF_TIME] for data in (self.moved.data, self.original.data))
        self.equal("hints of time", sorted(each["text"] for each in new), sorted(each["text"] for each in old))

    def check_calls(self):
        """Each call is one of those that are expected, and says what it stands for."""
        expected = self.expected_calls()
        for number, call in enumerate(self.moved.data["calls"]):
            where = f"call {number}"
            found = self.moved.call(number)
            if found not in expected:
                self.fault(where, f"is none of the piece: {found[0]} {found[1]} at {self.moved.show(found[2])}")
            if call["kind"] in ("macro", "constant"):
                self.equal(where, self.moved.data[call["kind"] + "s"][call["of"]]["name"], call["name"])
            if call["kind"] == "constant":
                self.equal(where, call["value"], self.moved.data["constants"][call["of"]]["value"])
            self.counts["calls"] += 1
