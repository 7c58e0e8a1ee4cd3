"""What orlo-explain says to stand somewhere in the text stands there: the Source of a document's places, and check_texts."""

import os
import re

import literals
from explain_document import number, number32, text
from literals import same

SETTINGS = ("te", "rs", "rd", "dv", "sr", "pf")
COMPOSED = re.compile(r"[$~]|#include")  # what a text that is put together by calls or includes holds
CHOICES = {"*": "all_before_repeating", "x": "never_twice"}
DISTRIBUTIONS = {"b": "beta", "f": "uniform", "": "uniform", "g": "gaussian", "h": "high", "l": "low", "t": "triangular",
                 "x": "bilateral"}
SEPARATORS = {"rh": r"[\[\]'/:()]"}  # elsewhere commas separate, too


class Source:
    """The text of a piece's files, by the places of a document."""

    def __init__(self, outcome):
        self.piece, self.lines = outcome.piece, []
        files = {os.path.normpath(key): data for key, data in self.piece.files.items()}
        for each in outcome.document.fields["files"]:
            name = os.path.normpath(text(each["name"]).decode("utf-8", "surrogateescape"))
            data = files.get(name) if each["found"] else None
            self.lines.append(data.split(b"\n") if data is not None else None)

    def line(self, file, number_of):
        return self.lines[file][number_of]

    def first_line(self):
        """The line of the piece's file in which the text that is run begins."""
        begin, _ = self.piece.extent()
        return (self.piece.files.get(self.piece.main) or b"").count(b"\n", 0, begin)

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


def bare(found):
    """A text without its comments; None when one of them is not closed in it."""
    kept, depth, at = [], 0, 0
    while at < len(found):
        two = found[at:at + 2]
        if two == "/*" or two == "*/" and depth:
            depth += 1 if two == "/*" else -1
            at += 2
            kept.append(" ")
            continue
        if not depth and found[at] == ";":
            at = found.find("\n", at)
            if at < 0:
                break
        kept.append(" " if depth else found[at])
        at += 1
    return None if depth else "".join(kept)


def replaced_text(document, place, found):
    """What the line holds in a place: for a constant, an equation or a time its value, else the text."""
    value = document.calls[place.call].get("value") if place.call != -1 else None
    return found if value is None else literals.decimals(number(value))


def closed(found):
    """Whether a text is a name with its parentheses, the first of which closes at its end."""
    depth = 0
    for at, c in enumerate(found):
        depth += (c == "(") - (c == ")")
        if c == ")" and depth == 0:
            return at == len(found) - 1
    return False


def inside(place, outer):
    return place.file == outer.file and (outer.line, outer.byte) <= (place.line, place.byte) \
        and (place.end_line, place.end_byte) <= (outer.end_line, outer.end_byte)


class Texts:
    def __init__(self, document, source, midi):
        self.document, self.source, self.midi, self.faults = document, source, midi, []
        self.fields, self.ranges = document.fields, document.ranges

    def fault(self, words):
        self.faults.append(words)

    def words(self, index):
        return self.source.words(self.ranges[index])

    def plain(self, index):
        """What stands in a range, without comments; None where that is not known or put together by calls."""
        found = self.words(index)
        found = bare(found) if found is not None else None
        return None if found is None or COMPOSED.search(found) else found

    def expect(self, what, index, pattern):
        """What stands in a line must look so; what is not known passes, and what is put together."""
        found = self.words(index)
        if found is not None and not re.fullmatch(pattern, found) and ("\n" in found or not COMPOSED.search(found)):
            self.fault(f"{what}: {found[:80]!r} stands there")

    def demand(self, what, index, pattern):
        """As expect, also of what is put together."""
        found = self.words(index)
        if found is not None and not re.fullmatch(pattern, found, re.S):
            self.fault(f"{what}: {found[:80]!r} stands there")

    # ---- calls and definitions

    def call(self, index, call):
        name = text(call["name"]).decode("latin-1") if "name" in call else ""
        whole = re.escape(name)
        pattern = {"macro": rf"\${whole}(?!\w).*|\$.*[$~].*", "argument": rf"\${whole}|\$.*[$~].*", "equation": r"~\[[^\]]*\]|~.*\$.*",
                   "constant": rf"~{whole}|~.*\$.*", "time": r"~@|~.*\$.*"}[call["kind"]]
        self.demand(f"{call['kind']} {name}", call["range"], pattern)
        found = self.words(call["range"])
        if call["kind"] == "macro" and self.fields["macros"][call["of"]]["parameters"] and self.document.status == 0 and "$" not in found[1:] \
                and not closed(found):
            self.fault(f"call {index} of {name}: {found!r} stands there")
        if call["kind"] in ("macro", "constant"):
            of = self.fields[call["kind"] + "s"][call["of"]]
            if of["name"] != call["name"] or call["kind"] == "constant" and of["value"] != call["value"]:
                self.fault(f"call {index} of {name} is of {call['kind']} {call['of']}")

    def brought(self, index, place):
        """A range that came through a call lies in what the call stands for."""
        call = self.document.calls[place.call]
        outer = self.ranges[call["range"]]
        if call["kind"] in ("macro", "constant"):
            outer = self.ranges[self.fields[call["kind"] + "s"][call["of"]]["range"]]
        elif call["kind"] == "argument":
            if outer.call == -1:
                self.fault(f"range {index}: its argument is of no call")
                return
            through = self.document.chain(outer.call)  # an argument may be handed on from call to call
            outers = [self.ranges[self.document.calls[each]["range"]] for each in through]
            outer = next((each for each in outers if inside(place, each)), outers[0])
        if not inside(place, outer):
            self.fault(f"range {index}: {place} is not in what its {call['kind']} stands for, {outer}")

    def definitions(self):
        for of, macro in enumerate(self.fields["macros"]):
            for index in (macro["range"], macro["name_range"]):
                chain = [self.document.calls[each] for each in self.document.chain(self.ranges[index].call)]
                if any(each["kind"] == "macro" and each["of"] == of for each in chain):
                    self.fault(f"macro {of} stands in itself")
            name, found = text(macro["name"]).decode("latin-1"), self.words(macro["range"])
            self.demand(f"macro {name}", macro["range"], r"#.*#")
            self.demand(f"name of macro {name}", macro["name_range"], re.escape(name))
            parameters = r"[\s,'#]+".join(re.escape(text(each).decode("latin-1")) for each in macro["parameters"])
            body = text(macro["body"]).decode("latin-1")
            if found is not None and bare(found) == found and "\\" not in found and "#if" not in found:
                form = rf"#\s*def\w*\s+{re.escape(name)}\s*" + (rf"\(\s*{parameters}\s*\)\s*" if parameters else "") + r"#(.*)#"
                match = re.fullmatch(form, found, re.S)
                if not match or not self.same_body(match[1], body):
                    self.fault(f"macro {name} with {macro['parameters']} and {body!r}: {found!r} stands there")
            if "undefined" in macro:
                self.demand(f"end of macro {name}", macro["undefined"], re.escape(name))
        for constant in self.fields["constants"]:
            self.constant(constant)

    @staticmethod
    def same_body(found, body):
        return re.sub(r"[\s\xff]+", "", found) == re.sub(r"\s+", "", body)

    def constant(self, constant):
        place, found, name = self.ranges[constant["range"]], self.words(constant["range"]), text(constant["name"]).decode("latin-1")
        value = literals.real(replaced_text(self.document, place, found).strip(), float) if found else None
        if found and not COMPOSED.search(found) and (value is None or not same(value, number(constant["value"]))):
            self.fault(f"constant {name}: {found!r} is {value}, not {constant['value']}")
        for use in constant.get("uses", []):
            self.expect(f"use of constant {name}", use, re.escape(name))

    def conditions(self):
        for condition in self.fields["conditionals"]:
            found = self.words(condition["range"])
            self.expect("condition", condition["range"], r"#[ \t]*if[^\n]*")
            value = re.fullmatch(r"#\s*if\s*\(\s*([-+\d.]+)\s*\)", found or "", re.S)
            if value and literals.real(value[1]) is not None and (literals.real(value[1]) != 0) != condition["taken"]:
                self.fault(f"condition {found!r} was {'' if condition['taken'] else 'not '}taken")
            if "end" in condition:
                self.expect("end of a condition", condition["end"], r"#[ \t]*end\w*[ \t\r]*")

    def files(self):
        for place, file in enumerate(self.fields["files"]):
            lines = self.source.lines[place]
            if place:
                name = re.sub(r"\n", "", text(file["name"]).decode("latin-1"))
                found = self.words(file["included"])
                if found is not None and not re.fullmatch(rf"#include\s*\|{re.escape(name)}\|?", found.replace("\n", "")):
                    self.fault(f"include of {name}: {found!r} stands there")
            if lines is not None and "bytes" in file:
                size = len(b"\n".join(lines))
                if place == 0:
                    begin, end = self.source.piece.extent()
                    size = end - begin
                if file["bytes"] != size and not (self.document.status and file["bytes"] < size):  # an error may end the reading
                    self.fault(f"file {place} has {size} bytes, not {file['bytes']}")

    def sequences(self):
        if self.fields["sequences"][0] != {"seed": 1}:
            self.fault("the first sequence is not that of seed 1")
        for sequence in self.fields["sequences"][1:]:
            found = self.plain(sequence["range"])
            seed = re.match(r"[rR][sS]\s*\(\s*\+?(\d+)", found or "")
            if found is not None and (found[:2].lower() != "rs" or self.document.status == 0 and not closed(found)):
                self.fault(f"sequence: {found!r} stands there")
            if seed and int(seed[1]) != sequence["seed"]:
                self.fault(f"the sequence of {found!r} has seed {sequence['seed']}")

    # ---- commands

    def commands(self, commands, where, whole, kinds=()):
        before = None
        for command in commands:
            self.command(command, f"{where}: command {command['name']}", whole, kinds)
            place = self.ranges[command["range"]]
            if before and place.call == before.call == -1 and place.file == before.file \
                    and (before.end_line, before.end_byte) > (place.line, place.byte):
                self.fault(f"{where}: command {command['name']} begins before the one before it ends")
            before = place

    def command(self, command, what, whole, kinds):
        name, found = command["name"], self.words(command["range"])
        if found is not None and found[:2].lower() != name.lower() and found[:1] != "$":
            self.fault(f"{what}: {found[:80]!r} stands there")
        found = self.plain(command["range"])
        if whole and name.isupper() == (name in SETTINGS):
            self.fault(f"{what} is no command")
        if found is None:
            return
        if found[:2].lower() != name.lower() or whole and not closed(found):
            self.fault(f"{what}: {found[:80]!r} stands there")
            return
        if not name.isupper():
            self.setting(command, what, found)
            return
        if "span_range" in command:
            self.span(command, what)
        kind = kinds[command["first"]] if command.get("first", 0) < len(kinds) and command.get("count") else None
        outer = self.ranges[command["range"]]
        before = outer.line, outer.byte
        for each in command.get("sets", []):
            place = self.ranges[each["range"]]
            if place.call == outer.call and (not inside(place, outer) or (place.line, place.byte) < before):
                self.fault(f"{what}: a set stands outside of it, or in another one")
            before = (place.end_line, place.end_byte) if place.call == outer.call else before
            if kind and whole:
                self.set(each, name, kind, what)

    def setting(self, command, what, found):
        given = re.fullmatch(r"\w\w\s*\(([-+\d.\s]*)([a-z]?)([\d.\s]*)\)?", found, re.I)
        if not given:
            return
        values = [literals.real(each) for each in re.findall(r"[-+]?[\d.]+", given[1])]
        if command["name"] in ("rs", "sr"):
            values = [float(int(each)) for each in given[1].split()]
        told = [number(each) if command["name"] == "sr" else number32(each) for each in command.get("numbers", [])]
        if None not in values and told[:len(values)] != values:
            self.fault(f"{what}: {found!r} has numbers {command.get('numbers')}")

    def span(self, command, what):
        found, told = self.words(command["span_range"]), number32(command["span"])
        self.expect(f"{what}: span", command["span_range"], r"T(\*[\d.]+)?|[-+]?[ \t]*[\d.]+")
        value = literals.real(found) if found else None
        if value is not None and value != told:
            self.fault(f"{what}: the span {found!r} is {told}")

    def tempo(self):
        written = [each for each in self.fields["commands"] if each["name"] == "te"]
        for change, command in zip(self.fields["tempo"], written):
            told = [number32(change[key]) for key in ("start", "end", "from", "to")]
            numbers = [number32(each) for each in command.get("numbers", [])]
            expected = [0.0, 1000.0, *numbers * 2] if len(numbers) == 1 else numbers[:4]
            found = self.plain(change["range"])
            letter = re.search(r"(?<=[\s\d.])([a-z])[\d.\s]*\)$", (found or "").lower())
            curve = letter[1] if letter else "f" if len(numbers) == 1 else "e"
            if told != expected or found is not None and change["curve"] != curve:
                self.fault(f"tempo {change} is not what {numbers}, {curve} say")
            if self.ranges[change["range"]] != self.ranges[command["range"]]:
                self.fault(f"tempo {change} does not stand where its command does")
        if len(written) < len(self.fields["tempo"]):
            self.fault("more changes of tempo than commands")

    # ---- sets of generators

    def set(self, given, name, kind, what):
        found = self.plain(given["range"])
        if found is None:
            return
        if not re.fullmatch(r"[-+.\w]|[-+.\w].*[-+.\w%s]" % (r"\]" if name in ("RA", "MO") else ""), found, re.S):
            self.fault(f"{what}: a set is {found!r}")
        if name == "EX":
            self.equation(given, found, what)
            return
        tokens = re.sub(SEPARATORS.get(kind, r"[\[\]'/:,()]"), " ", re.sub(r"([*x])(?=[^\s\d])", r"\1 ", found)).split()
        if name == "HO":
            tokens.insert(0, "1")
        if number32(given.get("weight", 1)) != literals.real(tokens[0]):
            self.fault(f"{what}: the weight of {found!r} is {given.get('weight')}")
        marks = [each for each in tokens[1:2] if each in CHOICES]
        if name in ("SE", "S2") and given.get("choice", "any") != (CHOICES[marks[0]] if marks else "any"):
            self.fault(f"{what}: the choice of {found!r} is {given.get('choice')}")
        if name in ("MO", "MS"):
            mark = re.match(r"[-+]?[\d.]+[\s,/]*([ceflsv]?)[\d.]*\s*(\*?)", found, re.I)
            curve = (mark[1] or "f").lower(), bool(mark[2])
            if kind not in ("no", "nox") and (given["curve"], bool(given.get("by_beat"))) != curve:
                self.fault(f"{what}: the curve of {found!r} is told to be {given['curve']}")
        letters = re.findall(r"\[[\s,/]*([bfghltx]?)", found, re.I)
        if name in ("RA", "MO") and len(letters) == len(given["ranges"]):
            told = [each["distribution"] for each in given["ranges"]]
            if told != [DISTRIBUTIONS[each.lower()] for each in letters]:
                self.fault(f"{what}: the distributions of {found!r} are told to be {told}")
        if name == "RW" and given["ranges"][0]["distribution"] != "uniform":
            self.fault(f"{what}: a walk has no distribution")
        if name in ("SE", "S2", "HO") and kind in ("no", "nox"):
            written = sorted((literals.note(each, self.midi)[0] or 0) % 12 for each in tokens[2 if marks else 1:])
            if written != sorted(number32(each) % 12 for each in [each for values in given["lists"] for each in values]):
                self.fault(f"{what}: {found!r} has {written}, told is {given['lists']}")
        values = self.values_in(tokens[1:], kind, name)
        if values is not None and values != self.values_of(given):
            self.fault(f"{what}: {found!r} has {sorted(values)}, told are {sorted(self.values_of(given))}")

    def values_in(self, tokens, kind, name):
        """Values that are written in a set, None when that can't be told without its grammar."""
        if kind in ("no", "nox"):
            return None
        values = set()
        for place, token in enumerate(tokens):
            match = re.fullmatch(r"([a-z]?\*?)([-+\d.,]*)", token, re.I)
            if not match or match[1].lower() in ("z", "v", "v*"):
                return None
            if match[2]:
                real = name == "RW" and place == 2  # the window
                value = literals.value_of(match[2], "re" if real else kind, self.midi)
                if value is None:
                    return None
                values.add(value)
        return values

    @staticmethod
    def values_of(given):
        values = {number32(each) for values in given.get("lists", []) for each in values}
        values |= {number32(each[key]) for each in given.get("ranges", []) for key in ("low", "high")}
        return values | {number32(given[key]) for key in ("window", "start") if key in given}

    def equation(self, given, found, what):
        """The terms of an equation, and what it computes from."""
        weight, rest = re.fullmatch(r"\s*([\d.]+)(.*)", found, re.S).groups()
        rest = re.sub(r"^[\s,/]*([ifIF](?=[\s\[pP])[\s,/]*)?", "", rest).strip("[] \t\n")
        terms = [f"p{int(each[1:])}" if each[0] in "pP" else each if each in "+-*/%" else literals.real(each)
                 for each in re.findall(r"[pP]\d+|(?:(?<=[-+*/%])|(?<=[-+*/%] )|(?<=^))[-+]?[\d.]+|[-+*/%]", rest)]
        told = [each if isinstance(each, str) and each not in ("nan", "inf", "-inf") else number32(each) for each in given["terms"]]
        if len(terms) == len(told) and terms != told or number32(given["weight"]) != literals.real(weight):
            self.fault(f"{what}: {found!r} has {terms}, told are {given['weight']}, {told}")
        pfields = sorted({int(each[1:]) for each in told if isinstance(each, str) and each[0] == "p"})
        if sorted(set(given.get("pfields", []))) != pfields:
            self.fault(f"{what}: {found!r} is told to compute from {given.get('pfields')}")
        if bool(given.get("rounded")) != bool(re.match(r"\s*[\d.]+[\s,/]*[iI]", found)):
            self.fault(f"{what}: {found!r} is {'' if given.get('rounded') else 'not '}told to be rounded")

    # ---- blocks and sections

    def header(self, block, where, whole):
        fields, found = block.fields, self.words(block.fields["range"])
        if found is None or "instrument" not in fields:
            return
        if not re.fullmatch(r"(i|\$).*" + r"(\}|\$[^\n}]*)" * whole, found, re.S) \
                or whole and "#if" not in found and (bare(found) or "}").count("}") > 1:
            self.fault(f"{where}: {found[:80]!r} stands there")
        head = bare(found.partition("{")[0])
        if head is None or COMPOSED.search(head):
            return
        found = head + "{"
        instrument = re.match(r"i\s*(-?\d+)", found)
        if instrument and (int(instrument[1]) != fields["instrument"] or (int(instrument[1]) < 0) != block.has("skipped")):
            self.fault(f"{where}: {instrument[0]!r} is told to be {fields['instrument']}")
        header = re.match(r"i\s*\d+\s*=\s*(\d+)[\s,/]+([\d.]+)[\s,/]+(-?)\s*([\d.]+)[\s,/]*\{", found)
        if header and "pfields" in fields:
            length = fields.get("events_wanted") if header[3] else number32(fields.get("beats", -1))
            expected = int(header[1]), literals.real(header[2]), int(header[4]) if header[3] else literals.real(header[4])
            if expected[1:] != (None, None) and (fields["pfields"], number32(fields["start"]), length) != expected \
                    and not (header[3] and expected[2] == 0):
                self.fault(f"{where}: {header[0]!r} is told to be {fields['pfields'], fields['start'], length}")

    def section(self, section, whole):
        fields, kinds = section.fields, section.inputs() if section.has_values else ()
        self.demand(section.where, fields["range"], rf"(p[ \t]*\+?0*{section.pfield}(?!\d)|\$).*")
        found = self.plain(fields["range"])
        if found is not None:
            rest = re.sub(r"\(.*?\)", "", found[1:], flags=re.S)
            if whole and ("}" in found or re.search(r"(?<!\w)p\d", rest)) or found.strip() != found:
                self.fault(f"{section.where}: {found[:200]!r} stands there")
            output = re.match(r"p[ \t]*\+?\d+\s*\(\s*([a-z]{2})(\d*)", found, re.I)
            known = whole or not re.match(r"p[ \t]*\+?\d+\s*\(", found)
            if known and fields["output"] != (output[1].lower() if output else "re"):
                self.fault(f"{section.where}: the output type is told to be {fields['output']}")
            if whole and fields.get("digits") != (int(output[2]) if output and output[2] else None):
                self.fault(f"{section.where}: {fields.get('digits')} digits are told of {found[:20]!r}")
        for each in fields["inputs"]:
            self.expect(f"{section.where}: input type", each["range"], rf"(?i:{each['name']})" + r"\d?" * (each["name"] == "re"))
        for loop in fields["loops"]:
            found = self.plain(loop["range"])
            if found is not None and not re.fullmatch("<[^<>]*" if loop.get("open") else "<[^<>]*>", found):
                self.fault(f"{section.where}: a loop is {found!r}")
        self.commands(fields["commands"], section.where, whole, kinds)
        self.order(section)
        if any(loop["first"] + loop["count"] > section.written for loop in fields["loops"]):
            self.fault(f"{section.where}: a loop of values that the text has not made")

    def order(self, section):
        """Literal values stand in the order of their numbers, and so do what they are in or behind."""
        fields = section.fields
        found = [(value, self.ranges[run.fields["ranges"] + value - run.first]) for run in section.runs if run.kind == "literal"
                 for value in range(run.first, run.end)]
        found += [(each["first"], self.ranges[each["range"]]) for each in fields["commands"] if each.get("count")]
        for value, place in found:
            if place.call != -1:
                continue
            for loop in fields["loops"]:
                outer = self.ranges[loop["range"]]
                behind = (place.line, place.byte) > (outer.line, outer.byte)
                within = behind if loop.get("open") else inside(place, outer)  # the range of an open one ends with its "<"
                if outer.call == -1 and outer.file == place.file \
                        and within != (loop["first"] <= value < loop["first"] + loop["count"]):
                    self.fault(f"{section.where}: value {value} and the loop of {loop['first']}, {loop['count']} values")
            for each in fields["inputs"]:
                mark = self.ranges[each["range"]]
                if mark.call == -1 and mark.file == place.file \
                        and ((mark.line, mark.byte) < (place.line, place.byte)) != (value >= each["from"]):
                    self.fault(f"{section.where}: value {value} and {each['name']} from {each['from']} on")

    def piece(self):
        piece, told = self.source.piece, self.fields["piece"]
        kind = "csd" if piece.is_csd() else "orlo"
        if self.fields["format"] != 1 or (text(told["name"]).decode(), told["kind"], told["midi"]) != (piece.main, kind, piece.midi) \
                or os.path.basename(text(told["folder"])) != b"explain":
            self.fault(f"the piece is told to be {told}")

    def all(self):
        self.piece()
        for index, call in enumerate(self.fields["calls"]):
            self.call(index, call)
        for index, place in enumerate(self.ranges):
            if place.call != -1:
                self.brought(index, place)
        self.definitions()
        self.conditions()
        self.files()
        self.sequences()
        self.commands(self.fields["commands"], "between blocks", self.document.status == 0)
        if self.document.status == 0:
            self.tempo()
        for block in self.document.blocks:
            whole = not (block.has("failed") or block.has("recovered"))
            if "range" in block.fields:
                self.header(block, f"block {block.index}", whole)
            self.commands(block.fields["commands"], f"block {block.index}", whole)
            for section in block.sections:
                self.section(section, whole)
        return self.faults


def check_texts(outcome, source):
    """What is said to stand somewhere stands there."""
    return Texts(outcome.document, source, outcome.piece.midi).all()
