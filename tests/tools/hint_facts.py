"""What a hint says, and the raw data of a document by which it is judged: nothing here is taken from how orlo-explain finds hints."""

import re
import types

from check_explain import TempoMap, changes_before
from explain_document import number32, text
from explain_texts import Source


THOUSANDS = re.compile(r"\d{1,3}(,\d{3})+")


class Untrue(Exception):
    """What a hint says in a form that nobody has checked."""


def form(template):
    """A pattern of a template's sentence: "{x}" stands for any text, the same text where it comes again; it may begin small."""
    known, parts = set(), []
    initial = template[0] if template[0].isalpha() else ""
    template = template[len(initial):]
    for place, part in enumerate(re.split(r"\{(\w+)\}", template)):
        if place % 2 == 0:
            parts.append(re.escape(part))
        else:
            parts.append(f"(?P={part})" if part in known else f"(?P<{part}>.+?)")
            known.add(part)
    return re.compile((f"(?i:{initial})" if initial else "") + "".join(parts), re.S)


def differs(what, told, real, digits=3):
    """A fault when a printed figure isn't the real one, by its printed decimals; zeros behind them are not printed."""
    try:
        figure = float(told)
    except ValueError:
        yield f"{what} is told to be {told!r}"
        return
    if figure != real and not abs(figure - real) <= .51 * 10 ** -digits + 2e-6 * abs(real):
        yield f"{what} is told to be {told}, but is {real}"


def is_not(what, told, real):
    if told != real:
        yield f"{what} is told to be {told!r}, but is {real!r}"


class Hint:
    def __init__(self, fields, facts):
        self.fields, self.name, self.facts = fields, fields["name"], facts
        self.text, self.reason = text(fields["text"]).decode("latin-1"), text(fields["reason"]).decode("latin-1")
        self.place = facts.document.ranges[fields["range"]] if "range" in fields else None
        self.words = facts.source.words(self.place) if self.place else None
        self.block = facts.document.blocks[fields["block"]] if "block" in fields else None
        self.edits = fields.get("edits", [])

    def told(self, *forms):
        """What stands for the names in the first pair of forms that text and reason have."""
        for sentence, reason in forms:
            first, second = form(sentence).fullmatch(self.text), form(reason).fullmatch(self.reason)
            if first and second:
                shared = first.groupdict().keys() & second.groupdict().keys()
                if all(first[key] == second[key] for key in shared):
                    told = first.groupdict() | second.groupdict()
                    return {key: words.replace(",", "") if words and THOUSANDS.fullmatch(words) else words
                            for key, words in told.items()}
        raise Untrue(f"not known: {self.text!r}, {self.reason!r}")

    def section(self):
        """The section that the place belongs to: the last one of the block that begins before it."""
        root = self.facts.root(self.fields["range"])
        begun = [each for each in self.block.sections if self.facts.begin(each) <= (root.file, root.line, root.byte)]
        if not begun:
            raise Untrue(f"{self.name} stands in no section")
        return max(begun, key=self.facts.begin)

    def __str__(self):
        return f"{self.name} ({self.words!r}): {self.text}. {self.reason}"


class Facts:
    """A piece with its document; run makes facts of another piece."""

    def __init__(self, piece, document, run):
        self.piece, self.document, self.run = piece, document, run
        self.source = Source(types.SimpleNamespace(piece=piece, document=document))
        self.hints = [Hint(each, self) for each in document.fields["hints"]]

    def root(self, index):
        return self.document.root(index)

    def begin(self, section):
        root = self.root(section.fields["range"])
        return root.file, root.line, root.byte

    @staticmethod
    def covers(outer, place):
        return outer.file == place.file and (outer.line, outer.byte) <= (place.line, place.byte) \
            and (place.end_line, place.end_byte) <= (outer.end_line, outer.end_byte)

    def words(self, index):
        return self.source.words(self.document.ranges[index])

    def call_name(self, block):
        """A block as it is called in a sentence: by its number, or by the one that it would have had."""
        before = sum(each.has("number") or each.has("recovered") or each.has("failed") for each in self.document.blocks[:block.index])
        return f"block {block.fields.get('number', before + 1)} (i{block.fields['instrument']})"

    def block_called(self, name):
        found = [block for block in self.document.blocks if "instrument" in block.fields and self.call_name(block) == name.lower()]
        if not found:
            raise Untrue(f"there is no {name}")
        return found[0]

    def tempo_at(self, block, beat):
        return TempoMap(changes_before(self.document, block)).at(beat)

    def seconds_by_map(self, block, beat, steps=4000):
        """When a beat comes by all tempos before it: the integral of the tempo map, from one change to the next."""
        tempos, seconds = TempoMap(changes_before(self.document, block)), 0
        edges = sorted({0, beat, *(edge for segment in tempos.segments for edge in segment[:2] if 0 < edge < beat)})
        for low, high in zip(edges, edges[1:]):
            width = (high - low) / steps
            seconds += sum(60 / tempos.at(low + (step + .5) * width) for step in range(steps)) * width
        return seconds

    def errors(self):
        """Texts of errors and warnings."""
        return sorted(text(each["text"]).decode("latin-1") for each in self.document.diagnostics if each["severity"] != "note")

    def other_text(self, place, words):
        """The piece with something else in a place, run again."""
        return self.run(replaced(self, [(place, words.encode("latin-1"))]))


def timeline(block):
    """Beats and seconds at which the intervals of a block begin, and their end."""
    section = block.by_pfield[2]
    beats, seconds = [number32(block.fields["start"])], [number32(block.fields["seconds"])]
    for read, result in zip(section.read, section.result):
        beats.append(beats[-1] + abs(read))
        seconds.append(seconds[-1] + abs(result))
    return beats, seconds


def seconds_of_beat(block, beat):
    """When a block has a beat, by its intervals, and how far deviation has moved that; None where it has none."""
    beats, seconds = timeline(block)
    section = block.by_pfield[2]
    for place in range(section.count):
        if beats[place] <= beat <= beats[place + 1] and beats[place] < beats[place + 1]:
            share = (beat - beats[place]) / (beats[place + 1] - beats[place])
            length = seconds[place + 1] - seconds[place]
            moved = abs(length - abs(section.read[place]) * 60 / section.tempo[place]) * share
            return seconds[place] + share * length, moved if section.run_of(place).deviation else 0
    return None


def command_at(section, hint):
    """The generator that a hint stands at."""
    for command in section.fields["commands"]:
        if "span" not in command:
            continue
        if any(hint.facts.document.ranges[command[key]][:3] == hint.place[:3] for key in ("range", "span_range") if key in command):
            return command
    raise Untrue(f"{hint.name} stands at no generator")


def place_of(facts, section, value):
    """Where what made a value stands: file, line and byte."""
    run = section.run_of(value)
    if run.kind == "literal":
        index = run.fields["ranges"] + value - run.first
    elif run.kind == "generator":
        index = section.fields["commands"][run.fields["command"]]["range"]
    elif "range" in run.fields:
        index = run.fields["range"]
    else:
        return place_of(facts, section, run.fields["of"])
    return facts.document.ranges[index][:3]


def edited(hint):
    """Of each edit what goes and what comes."""
    return [(hint.facts.words(each["range"]), text(each["text"]).decode("latin-1")) for each in hint.edits]


def made_by(section, command):
    return section.read[command["first"]:command["first"] + command["count"]]


def replaced(facts, edits):
    """The piece with texts in places: all in one file."""
    files = {place.file for place, _ in edits}
    if len(files) != 1:
        raise Untrue("edits of several files")
    name = text(facts.document.fields["files"][files.pop()]["name"]).decode("utf-8", "surrogateescape")
    data = facts.piece.files[name]
    starts = [0] + [at + 1 for at, byte in enumerate(data) if byte == 10]
    lines = data.split(b"\n")
    if any(place.end_byte > len(lines[place.end_line]) for place, _ in edits):
        raise Untrue("an edit behind the end of a line")
    spans = sorted((starts[place.line] + place.byte, starts[place.end_line] + place.end_byte, words) for place, words in edits)
    if any(first[1] > second[0] for first, second in zip(spans, spans[1:])):
        raise Untrue("edits overlap")
    for begin, end, words in reversed(spans):
        data = data[:begin] + words + data[end:]
    return facts.piece._replace(files=facts.piece.files | {name: data})


def mended(facts, hint):
    """The piece after all edits of one hint."""
    return replaced(facts, [(facts.document.ranges[each["range"]], text(each["text"])) for each in hint.edits])
