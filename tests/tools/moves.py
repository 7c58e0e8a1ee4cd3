"""Pieces whose text is moved into include files, macros, constants and conditions, and where every character of it is then.

A program is a tree of texts. A text is a list of items: characters, and what stands for text that is elsewhere. Reading the tree the
way that orlo reads files (walk) gives the characters of the original in their order, each with the steps that lead to it; writing it
(lay_out) gives each item a place in a file. What may be moved is judged by rules that are named where they stand.
"""

import re

from piece_text import BLOCK, BLOCK_COMMENT, BODY, COMMENT, DIRECT, GLOBAL, HEADER, is_name_character

MOST_INCLUDES = 11
LONGEST_BODY = 700
LONGEST_LINE = 1000  # before and after expansion; the program takes twice as much


class Item:
    pass


class Character(Item):
    def __init__(self, c, original=True):
        self.c, self.original = c, original


class Text:
    def __init__(self, kind, items, name=""):
        self.kind, self.items, self.name = kind, items, name  # kind: file, body, argument, value
        self.owners = []  # what stands for it
        self.begins_line = True  # of a file: its directive has a line of its own

    def index(self, item):
        return next(at for at, each in enumerate(self.items) if each is item)


class Definition(Item):
    """A macro where it is defined."""

    def __init__(self, name, body, parameters, style):
        self.name, self.body, self.parameters, self.style = name, body, parameters, style


class Call(Item):
    kind = "macro"

    def __init__(self, definition, arguments):
        self.definition, self.arguments = definition, arguments
        self.name = definition.name
        for number, argument in enumerate(arguments):
            argument.owners = [(self, number)]


class Parameter(Item):
    """A reference to a parameter in a body."""
    kind = "argument"

    def __init__(self, definition, number):
        self.definition, self.number = definition, number
        self.name = definition.parameters[number]


class Constant(Item):
    """A constant where it is defined."""

    def __init__(self, name, value):
        self.name, self.value = name, value


class Reference(Item):
    kind = "constant"

    def __init__(self, constant):
        self.constant, self.name = constant, constant.name


class Include(Item):
    def __init__(self, file, written=None):
        self.file, self.written = file, written or f"#include |{file.name}|"
        file.owners = [self]


class Line(Item):
    """A directive that only stands there."""

    def __init__(self, text, undefines=None):
        self.text, self.undefines = text, undefines


class Walk:
    """The characters of the original as they are met, each with the steps that lead to it, and what comes first."""

    def __init__(self, program):
        self.met, self.first, self.order = [], {}, []
        self.text_of, self.path_of = {}, {}
        self.walk(program.main, (), None)

    def walk(self, text, path, arguments):
        for item in text.items:
            if id(item) not in self.first:
                self.first[id(item)] = len(self.met)
                self.path_of[id(item)] = path
                self.order.append(item)
            self.text_of[id(item)] = text
            if isinstance(item, Character):
                if item.original:
                    self.met.append((item, path))
            elif isinstance(item, Call):
                self.walk(item.definition.body, path + (item,), item.arguments)
            elif isinstance(item, Parameter):
                self.walk(arguments[item.number], path + (item,), None)
            elif isinstance(item, Reference):
                self.walk(item.constant.value, path + (item,), None)
            elif isinstance(item, Include):
                self.walk(item.file, path + (item,), None)


class Layout:
    """The files of a program, and the place of each item: file, begin and end."""

    def __init__(self, program):
        self.files, self.place, self.name_place, self.body = {}, {}, {}, {}
        self.write_file(program.main, program.before, program.behind)

    def write_file(self, file, before="", behind=""):
        out = [before, len(before)]
        self.write(file.items, file.name, out)
        out.append(behind)
        self.files[file.name] = "".join(piece for piece in out if isinstance(piece, str))

    def put(self, out, text):
        out.insert(-1, text)
        out[-1] += len(text)

    def write(self, items, file, out):
        for item in items:
            begin = out[-1]
            end = None
            if isinstance(item, Character):
                self.put(out, item.c)
            elif isinstance(item, Call):
                self.put(out, "$" + item.name)
                self.write_arguments(item, file, out)
            elif isinstance(item, (Parameter, Reference)):
                self.put(out, ("$" if isinstance(item, Parameter) else "~") + item.name)
            elif isinstance(item, Include):
                self.put(out, item.written)
                self.write_file(item.file)
            elif isinstance(item, Definition):
                end = self.write_definition(item, file, out)
            elif isinstance(item, Constant):
                self.put(out, f"#const {item.name} ")
                begin = out[-1]
                self.write(item.value.items, file, out)
                end = out[-1]
                self.put(out, "\n")
            else:
                self.put(out, item.text)
            self.place[id(item)] = (file, begin, out[-1] if end is None else end)

    def write_arguments(self, call, file, out):
        for number, argument in enumerate(call.arguments):
            self.put(out, "'" if number else "(")
            self.write(argument.items, file, out)
        if call.arguments:
            self.put(out, ")")

    def write_definition(self, item, file, out):
        between, separator, parted = item.style
        begin = out[-1] + len("#define" + parted)
        self.name_place[id(item)] = (file, begin, begin + len(item.name))
        self.put(out, "#define" + parted + item.name)
        if item.parameters:
            self.put(out, "(" + separator.join(item.parameters) + ")")
        self.put(out, between + "#")
        begin = out[-1]
        self.write(item.body.items, file, out)
        end = out[-1]
        self.put(out, "#")
        self.body[id(item)] = "".join(each for each in out[:-1])[begin:end]
        self.put(out, "\n")
        return end + 1


class Program:
    """A piece, and the files that it includes."""

    def __init__(self, main):
        self.main = main
        self.before = self.behind = ""  # of the document around the piece
        self.includes = 0
        self.definitions, self.constants = [], []


def read_program(name, files):
    """A program from its files by name; None when it includes one of them twice, or one that isn't there."""
    used = set()

    def read(file_name):
        used.add(file_name)
        text = files[file_name]
        items, at = [], 0
        for match in re.finditer(r"^(?:[^;>\n]*?)(#include\s*\|([^|\n]*)\|)", text, re.M):
            items += [Character(c) for c in text[at:match.start(1)]]
            if match[2] in used or match[2] not in files:
                raise LookupError(match[2])
            items.append(Include(read(match[2]), match[1]))
            program.includes += 1
            at = match.end()
        items += [Character(c) for c in text[at:]]
        return Text("file", items, name=file_name)

    program = Program(None)
    try:
        program.main = read(name)
    except LookupError:
        return None
    return program


def wrap_in_document(program):
    """Makes the piece the score of a Csound document."""
    program.main.name = "piece.csd"
    program.before = '<CsoundSynthesizer>\n<CsInstruments>\ninstr 1\nendin\n</CsInstruments>\n<CsScore bin="orlo -s">\n'
    program.behind = "</CsScore>\n</CsoundSynthesizer>\n"


class Mover:
    """Moves text of a program. Each move returns whether it found something that it may move."""

    def __init__(self, program, reading, chance):
        self.program, self.reading, self.chance = program, reading, chance
        self.names = set(reading.names)
        self.joins_lines = False  # whether lines of the original have become one
        self.look()

    def look(self):
        """The program as it is now."""
        self.now = Walk(self.program)
        self.offsets = {}
        for offset, (character, _) in enumerate(self.now.met):
            self.offsets.setdefault(id(character), offset)

    def new_name(self, start):
        while True:
            name = start + self.chance.choice(["", "_", "X"]) + str(self.chance.randint(0, 9999))
            name += self.chance.choice(["", "", "b", "_2"])
            if name not in self.names and not any(name in other or other in name for other in self.names if len(other) > 2):
                self.names.add(name)
                return name

    # what is known of an item

    def offset(self, item):
        return self.offsets.get(id(item))

    def zone(self, item):
        offset = self.offset(item)
        return None if offset is None else self.reading.zone[offset]

    def written(self, item):
        """The first character of an item in its file."""
        if isinstance(item, Character):
            return item.c
        return {"macro": "$", "argument": "$", "constant": "~"}.get(getattr(item, "kind", ""), "#")

    def first_read(self, item, arguments):
        """The first character that an item comes to, empty for none."""
        if isinstance(item, Character):
            return item.c
        inner = {Call: lambda: item.definition.body, Parameter: lambda: arguments[item.number],
                 Reference: lambda: item.constant.value, Include: lambda: item.file}.get(type(item))
        if inner is None:
            return "#"
        for each in inner().items:
            first = self.first_read(each, item.arguments if isinstance(item, Call) else None)
            if first:
                return first
        return ""

    def following(self, text, index, seen=()):
        """The characters that may follow a place in a text, before and after the calls there are replaced."""
        if index < len(text.items):
            item = text.items[index]
            found = {self.written(item)}
            if isinstance(item, Parameter):  # what its arguments begin with, at every call
                calls = [owner for owner in item.definition.body.owners if isinstance(owner, Call)]
                firsts = {self.first_read(item, call.arguments) for call in calls}
            else:
                firsts = {self.first_read(item, None)}
            if "" in firsts:
                found |= self.following(text, index + 1, seen)
            return found | firsts - {""}
        found = set()
        for owner in text.owners:
            if id(owner) in seen:
                continue
            if isinstance(owner, tuple):  # an argument: behind the references to it
                call, number = owner
                for at, item in enumerate(call.definition.body.items):
                    if isinstance(item, Parameter) and item.number == number:
                        found |= self.following(call.definition.body, at + 1, seen + (id(owner),))
            elif id(owner) in self.now.text_of:
                around = self.now.text_of[id(owner)]
                found |= self.following(around, around.index(owner) + 1, seen + (id(owner),))
        return found

    def may_follow_name(self, text, index):
        """A name ends at what is no part of it, and a "(" behind it would be swallowed."""
        return not any(is_name_character(c) or c == "(" for c in self.following(text, index))

    # slices

    def is_cut(self, left, right):
        """Whether text may be parted between two items: what is a unit stays together."""
        if not isinstance(left, Character) or not isinstance(right, Character):
            return True
        first, second = self.offset(left), self.offset(right)
        if first is None or second is None or second != first + 1:
            return True
        units = self.reading.unit
        if left.c + right.c in ("/*", "*/"):
            return False
        return units[first] == 0 or units[first] != units[second]

    def is_token_end(self, left, right):
        if not isinstance(left, Character) or not isinstance(right, Character):
            return True
        return not (is_name_character(left.c) or left.c in ".-+") or not (is_name_character(right.c) or right.c in ".")

    def cut_points(self, text, begin, end):
        """Where slices may begin or end; most often at tokens."""
        fine = self.chance.random() < .2
        points = []
        for at in range(begin, end + 1):
            left = text.items[at - 1] if at > 0 else None
            right = text.items[at] if at < len(text.items) else None
            if left is None or right is None or (self.is_cut(left, right) and (fine or self.is_token_end(left, right))):
                points.append(at)
        return points

    def may_move(self, items, zones):
        """Whether items may go into another text: no comments that end with their line, no directives, no references to the
        parameters of the text they stand in."""
        for item in items:
            if isinstance(item, Character):
                offset = self.offset(item)
                if offset is None or self.reading.zone[offset] not in zones or self.reading.parameter[offset] or item.c == "#":
                    return False
            elif not isinstance(item, (Call, Reference)):
                return False
        return True

    def may_share_line(self, items):
        """Whether lines may become one: not behind a "/" or ",", which mean something else with a value or slash in their line; not
        in brackets; nothing that takes the rest of its line."""
        last = ""
        for item in items:
            if isinstance(item, Character) and item.c == "\n":
                offset = self.offset(item)
                if last in "/," or self.reading.brackets[offset] or self.reading.zone[offset] not in (GLOBAL, HEADER, BLOCK):
                    return False
            elif not isinstance(item, Character) or item.c not in " \t":
                last = item.c if isinstance(item, Character) else "$"
        return True

    def read_text(self, items):
        """What items come to."""
        out = []
        for item in items:
            if isinstance(item, Character):
                out.append(item.c)
            elif isinstance(item, Call):
                out.append(self.read_text(self.with_arguments(item)))
            elif isinstance(item, Reference):
                out.append(self.read_text(item.constant.value.items))
            elif isinstance(item, Include):
                out.append(self.read_text(item.file.items))
        return "".join(out)

    def with_arguments(self, call):
        items = []
        for item in call.definition.body.items:
            items += call.arguments[item.number].items if isinstance(item, Parameter) else [item]
        return items

    def texts(self, kinds):
        found, seen = [], set()
        for item in self.now.order:
            text = self.now.text_of[id(item)]
            if id(text) not in seen and text.kind in kinds:
                seen.add(id(text))
                found.append(text)
        return found

    def choose_slice(self, kinds, zones, longest, newlines=False):
        """A text and the bounds of a part of it, None when the first choices may not be moved."""
        candidates = [item for item in self.now.order if isinstance(item, Character) and self.zone(item) in zones and item.c not in " \n"
                      and self.now.text_of[id(item)].kind in kinds]
        for _ in range(40):
            if not candidates:
                return None
            item = self.chance.choice(candidates)
            text = self.now.text_of[id(item)]
            index = text.index(item)
            points = self.cut_points(text, max(0, index - 60), min(len(text.items), index + longest))
            before, behind = [p for p in points if p <= index], [p for p in points if p > index]
            if not before or not behind:
                continue
            begin = before[-1]
            end = self.chance.choice(behind[:self.chance.choice([1, 2, 5, 15, 60])])
            items = text.items[begin:end]
            end -= 1 if isinstance(items[-1], Character) and items[-1].c == "\n" else 0
            items = text.items[begin:end]
            if not items or not self.may_move(items, zones):
                continue
            if any(isinstance(each, Character) and each.c == "\n" for each in items):
                if not newlines or text.kind != "file" or not self.may_share_line(items):
                    continue
                if self.in_direct_line(items) or self.hides_command(text, begin, items):
                    continue
            return text, begin, end
        return None

    def in_direct_line(self, items):
        return any(self.zone(item) == DIRECT for item in items)

    def hides_command(self, text, begin, items):
        """Whether lines between the blocks would become one with a comment in it: a command behind one is an error."""
        at = begin
        while at > 0 and not self.begins_line(text, at):
            at -= 1
        line = text.items[at:begin] + items
        between_blocks = any(isinstance(item, Character) and item.c == "\n" and self.zone(item) == GLOBAL for item in items)
        return between_blocks and any(self.zone(item) in (BLOCK_COMMENT, COMMENT) for item in line)

    # places for definitions

    def free_places(self, item):
        """Where a definition may stand that is used by an item: between blocks, at a line's beginning, before it."""
        limit = self.now.first[id(item)]
        return [place for place in self.line_starts() if place[2] <= limit and place[2] in self.reading.free_lines]

    def line_starts(self):
        """(text, index, offset of the original) of the lines that begin in files."""
        found = []
        for text in self.texts({"file"}):
            for at, item in enumerate(text.items):
                if self.begins_line(text, at):
                    found.append((text, at, self.now.first[id(item)]))
        return found

    def begins_line(self, text, at):
        if at == 0:
            return text.begins_line
        before = text.items[at - 1]
        return isinstance(before, (Definition, Constant, Line)) or (isinstance(before, Character) and before.c == "\n")

    def define(self, item, definition):
        """Puts a definition before an item that uses it."""
        places = self.free_places(item)
        if not places:
            return False
        text, at, _ = self.chance.choice(places)
        text.items.insert(at, definition)
        return True

    # moves

    def move_to_macro(self):
        return self.make_macro(with_parameters=False)

    def move_to_macro_with_parameters(self):
        return self.make_macro(with_parameters=True)

    def make_macro(self, with_parameters):
        chosen = self.choose_slice({"file", "body"} if with_parameters else {"file", "body", "argument"},
                                   (GLOBAL, HEADER, BLOCK, BLOCK_COMMENT, DIRECT, BODY), LONGEST_BODY, newlines=True)
        if not chosen:
            return False
        text, begin, end = chosen
        items = text.items[begin:end]
        if not with_parameters and not self.may_follow_name(text, end):
            return False
        if not self.free_places(items[0]):
            return False
        body = Text("body", list(items))
        definition = Definition(self.new_name(self.chance.choice(["m", "phrase", "Q"])), body, [], self.style())
        arguments = self.take_arguments(definition) if with_parameters else []
        if with_parameters and not arguments:
            return False
        if self.begins_with_in(body):
            return False  # "#in" is taken for the beginning of an include directive
        call = Call(definition, arguments)
        body.owners = [call]
        text.items[begin:end] = [call]
        self.joins_lines |= self.has_newline(items)
        self.look()
        self.define(call, definition)
        self.break_lines(definition)
        self.program.definitions.append(definition)
        self.look()
        return True

    def begins_with_in(self, body):
        written = "".join(self.written(item) for item in body.items[:2])
        return written == "in"

    def style(self):
        """What stands before the body, between parameters, and before the name."""
        return (self.chance.choice([" ", " ", "", "\n", " /* so */ "]), self.chance.choice([", ", "'", " ", ","]),
                self.chance.choice([" ", " ", "  "]))

    def take_arguments(self, definition):
        """Takes parts out of a body as arguments; the same part may be taken twice."""
        body = definition.body
        arguments = []
        pools = [["a", "b", "c", "d"], ["x1", "y_2", "Low", "w"], [self.new_name("q") for _ in range(4)]]
        pool = self.chance.choice([each for each in pools if not self.names & set(each)] or pools[-1:])
        for _ in range(self.chance.randint(1, 3)):
            taken = self.take_argument(definition, len(arguments), pool)
            if taken is not None:
                arguments.append(taken)
        if arguments and self.chance.random() < .15:  # one that is not used, and empty
            definition.parameters.append(pool[len(arguments)])
            arguments.append(Text("argument", []))
        if len(arguments) > 1 and self.chance.random() < .5:
            self.shuffle(definition, arguments)
        return arguments

    def shuffle(self, definition, arguments):
        order = list(range(len(arguments)))
        self.chance.shuffle(order)
        arguments[:] = [arguments[at] for at in order]
        definition.parameters = [definition.parameters[at] for at in order]
        for item in definition.body.items:
            if isinstance(item, Parameter):
                item.number = order.index(item.number)

    def take_argument(self, definition, number, pool):
        body = definition.body
        for _ in range(12):
            points = [at for at in self.cut_points(body, 0, len(body.items))]
            begin = self.chance.choice(points)
            behind = [at for at in points if at > begin]
            if not behind:
                continue
            end = self.chance.choice(behind[:self.chance.choice([1, 2, 4])])
            items = body.items[begin:end]
            if not self.may_be_argument(items) or not self.ends_parameter(body, end):
                continue
            definition.parameters.append(pool[number])
            body.items[begin:end] = [Parameter(definition, number)]
            argument = Text("argument", items)
            self.take_again(definition, number, items)
            return argument
        return None

    def may_be_argument(self, items):
        """Apostrophes part arguments and the first ")" ends them; a parameter of the body is unknown in an argument; comments stay."""
        for item in items:
            if isinstance(item, Character):
                if item.c in "'#()\n;" or self.zone(item) == BLOCK_COMMENT:
                    return False
            elif isinstance(item, Parameter) or (isinstance(item, Call) and item.arguments):
                return False
        return bool(items)

    def ends_parameter(self, body, end):
        """What follows a parameter in the body does not belong to its name. Behind the body's end anything may come: there the body
        has taken the place of the call already."""
        if end == len(body.items):
            return True
        following = body.items[end]
        c = self.written(following)
        return not is_name_character(c) and c != "("

    def take_again(self, definition, number, items):
        """Further places of a body with the same characters become the same parameter."""
        body = definition.body
        if not all(isinstance(item, Character) for item in items) or self.chance.random() < .4:
            return
        wanted = [item.c for item in items]
        at = 0
        while at + len(wanted) <= len(body.items):
            part = body.items[at:at + len(wanted)]
            end = at + len(wanted)
            if ([each.c if isinstance(each, Character) else None for each in part] == wanted and self.may_be_argument(part)
                    and self.ends_parameter(body, end) and self.is_cut_at(body, at) and self.is_cut_at(body, end)):
                body.items[at:end] = [Parameter(definition, number)]
            at += 1

    def is_cut_at(self, text, at):
        return at in (0, len(text.items)) or self.is_cut(text.items[at - 1], text.items[at])

    def break_lines(self, definition):
        """At times a definition spans several lines: a line end behind a blank of its body adds a blank and a line end to the text,
        which mean nothing where blanks stand, but in a direct line, in brackets, and behind a "/" or ","."""
        if self.chance.random() < .6:
            return
        items = definition.body.items
        last = "/"
        at = 0
        while at < len(items):
            item = items[at]
            blank = isinstance(item, Character) and item.c == " " and item.original
            if blank and last not in "/," and self.chance.random() < .3:
                offset = self.offset(item)
                if self.reading.zone[offset] in (GLOBAL, HEADER, BLOCK) and not self.reading.brackets[offset] \
                        and not self.reading.unit[offset]:
                    items.insert(at + 1, Character("\n", original=False))
                    at += 1
            elif not blank:
                last = item.c if isinstance(item, Character) else "/"  # what a call ends with is not looked at
            at += 1

    def move_to_constant(self):
        numbers = list(self.reading.numbers)
        self.chance.shuffle(numbers)
        for begin, end in numbers[:60]:
            found = self.characters(begin, end)
            if not found:
                continue
            text, at = found
            items = text.items[at:at + end - begin]
            if not self.may_follow_name(text, at + len(items)) or not self.free_places(items[0]):
                continue
            constant = Constant(self.new_name(self.chance.choice(["k", "Level", "c_"])), Text("value", items))
            reference = Reference(constant)
            constant.value.owners = [reference]
            text.items[at:at + len(items)] = [reference]
            self.look()
            self.define(reference, constant)
            self.program.constants.append(constant)
            self.look()
            self.refer_again(constant)
            return True
        return False

    def characters(self, begin, end):
        """The text and index where characters of the original stand side by side."""
        if begin >= len(self.now.met):
            return None
        first = self.now.met[begin][0]
        if self.offset(first) != begin:
            return None  # one that is shared
        text = self.now.text_of[id(first)]
        at = text.index(first)
        items = text.items[at:at + end - begin]
        if [self.offset(item) for item in items] != list(range(begin, end)):
            return None
        if text.kind == "value" or any(self.is_shared(item) for item in items):
            return None
        return text, at

    def is_shared(self, item):
        return sum(1 for character, _ in self.now.met if character is item) > 1

    def refer_again(self, constant):
        """The same number later in the piece becomes a reference to the same constant."""
        if self.chance.random() < .5:
            return
        digits = "".join(item.c for item in constant.value.items)
        defined = self.now.first[id(constant)]
        for begin, end in self.reading.numbers:
            if begin < defined or self.reading.text[begin:end] != digits or self.chance.random() < .5:
                continue
            found = self.characters(begin, end)
            if found and self.may_follow_name(found[0], found[1] + end - begin):
                text, at = found
                reference = Reference(constant)
                constant.value.owners.append(reference)
                text.items[at:at + end - begin] = [reference]
                self.look()

    def call_again(self):
        """Text that is the same as a macro's becomes a further call of it."""
        definitions = [each for each in self.program.definitions if each.body.owners]
        self.chance.shuffle(definitions)
        for definition in definitions[:6]:
            if not all(isinstance(item, (Character, Parameter)) for item in definition.body.items):
                continue
            if self.call_elsewhere(definition):
                return True
        return False

    def call_elsewhere(self, definition):
        body = definition.body.items
        if not any(isinstance(item, Character) for item in body) or any(isinstance(i, Character) and not i.original for i in body):
            return False
        defined = self.now.first[id(definition)]
        zones = {self.zone(item) for item in body if isinstance(item, Character)}
        for text in self.texts({"file"}):
            for at, item in enumerate(text.items):
                if self.now.first[id(item)] < defined or (isinstance(item, Character) and self.zone(item) not in zones):
                    continue
                taken = self.match(definition, text, at)
                if taken is None or self.chance.random() < .3:
                    continue
                arguments, end = taken
                items = text.items[at:end]
                plain = self.may_move(items, tuple(zones)) and self.is_cut_at(text, at) and self.is_cut_at(text, end)
                if not plain or not self.may_follow_name(text, end) or not all(self.may_be_argument(each) for each in arguments):
                    continue
                if any(self.is_shared(each) for each in items) or (self.has_newline(items) and not self.may_share_line(items)):
                    continue
                call = Call(definition, [Text("argument", each) for each in arguments])
                definition.body.owners.append(call)
                text.items[at:end] = [call]
                self.look()
                return True
        return False

    def has_newline(self, items):
        return any(isinstance(item, Character) and item.c == "\n" for item in items)

    def match(self, definition, text, at):
        """The arguments with which a macro comes to the text at a place, each a single token, and where that ends."""
        arguments = [None] * len(definition.parameters)
        for item in definition.body.items:
            if isinstance(item, Character):
                if at == len(text.items) or not isinstance(text.items[at], Character) or text.items[at].c != item.c:
                    return None
                at += 1
                continue
            known = arguments[item.number]
            if known is None:
                end = at
                while end < len(text.items) and isinstance(text.items[end], Character) and \
                        (is_name_character(text.items[end].c) or text.items[end].c == "."):
                    end += 1
                known = arguments[item.number] = text.items[at:end]
                if not known:
                    return None
            elif [each.c for each in known] != [getattr(each, "c", None) for each in text.items[at:at + len(known)]]:
                return None
            at += len(known)
        if None in arguments:
            return None  # one that is not used
        return arguments, at

    def choose_lines(self):
        """Whole lines of a file: (text, begin, end)."""
        for _ in range(20):
            text = self.chance.choice(self.texts({"file"}))
            starts = [at for at in range(len(text.items)) if self.begins_line(text, at)
                      and self.now.first[id(text.items[at])] in self.reading.lines]
            if len(text.items) and self.begins_line(text, len(text.items)) and text is self.program.main:
                starts.append(len(text.items))
            if len(starts) < 2:
                continue
            first = self.chance.randrange(len(starts) - 1)
            last = min(len(starts) - 1, first + self.chance.choice([1, 1, 2, 3, 5, 9, 30]))
            return text, starts[first], starts[last]
        return None

    def move_to_file(self):
        chosen = self.choose_lines()
        if not chosen or self.program.includes == MOST_INCLUDES:
            return False
        text, begin, end = chosen
        items = text.items[begin:end]
        file = Text("file", items, name=self.new_file_name())
        include = Include(file)
        last = items[-1]
        if isinstance(last, Character) and len(items) > 1 and self.chance.random() < .5:
            items.pop()  # the directive's line end serves for it
            text.items[begin:end] = [include, last]
        else:
            text.items[begin:end] = [include, Character("\n", original=False)]
        self.program.includes += 1
        self.look()
        return True

    def new_file_name(self):
        return self.chance.choice(["", "", "parts/"]) + self.new_name("part") + self.chance.choice([".inc", ".orlo", ""])

    def move_within_line_to_file(self):
        """A part of a line; not behind a ">" or ";" of its line, where no directive is looked for."""
        chosen = self.choose_slice({"file"}, (HEADER, BLOCK, BLOCK_COMMENT), 200)
        if not chosen or self.program.includes == MOST_INCLUDES:
            return False
        text, begin, end = chosen
        at = begin
        while at > 0 and not self.begins_line(text, at):
            at -= 1
        written = "".join(self.written_whole(item) for item in text.items[at:begin])
        if any(c in ">;" for c in written) or (at == 0 and not text.begins_line):
            return False
        file = Text("file", text.items[begin:end], name=self.new_file_name())
        file.begins_line = False
        text.items[begin:end] = [Include(file)]
        self.program.includes += 1
        self.look()
        return True

    def written_whole(self, item):
        if isinstance(item, Call):
            return "$" + "".join(self.written_whole(each) for argument in item.arguments for each in argument.items)
        return self.written(item)

    def move_into_condition(self):
        chosen = self.choose_lines()
        if not chosen:
            return False
        text, begin, end = chosen
        if self.now.first[id(text.items[begin])] not in self.reading.lines:
            return False
        condition = self.chance.choice(["1", "1", "2.5", "0.001", "10"])
        text.items.insert(end, Line("#endif" + self.chance.choice(["\n", "\n", "  \n"])))
        text.items.insert(begin, Line(self.chance.choice(["", "", "  "]) + f"#if({condition})\n"))
        self.look()
        return True

    def undefine_some(self):
        """Ends some macros between blocks behind their last call."""
        for definition in self.program.definitions:
            if self.chance.random() < .8:
                continue
            last = max((offset for offset, (_, path) in enumerate(self.now.met)
                        if any(isinstance(step, Call) and step.definition is definition for step in path)), default=None)
            if last is None or any(isinstance(owner, Call) and self.in_definition(owner) for owner in definition.body.owners):
                continue
            places = [place for place in self.line_starts() if place[2] > last and place[2] in self.reading.free_lines]
            if places:
                text, at, _ = self.chance.choice(places)
                text.items.insert(at, Line(f"#undef {definition.name}\n", definition))
                self.look()

    def in_definition(self, item):
        return self.now.text_of[id(item)].kind != "file" or self.zone_of_first(item) == BODY

    def zone_of_first(self, item):
        first = self.now.first[id(item)]
        return self.reading.zone[first] if first < len(self.reading.zone) else None

    def lines_are_short(self):
        """Whether no line is too long, as it is written or expanded."""
        files = Layout(self.program).files
        if any(len(line) > LONGEST_LINE for text in files.values() for line in text.split("\n")):
            return False
        if any(len(Layout(self.program).body[id(each)]) > LONGEST_LINE for each in self.program.definitions):
            return False
        return all(self.expanded_length(text) <= LONGEST_LINE for text in self.texts({"file"}))

    def expanded_length(self, text):
        longest = length = 0
        for item in text.items:
            if isinstance(item, (Call, Reference)):
                length += len(self.read_text([item])) + 4
            elif isinstance(item, Include):
                length += len(self.read_text(item.file.items).split("\n")[-1])
            elif isinstance(item, Character):
                length = 0 if item.c == "\n" else length + 1
            else:
                length = 0
            longest = max(longest, length)
        return longest


MOVES = [(Mover.move_to_macro, 5), (Mover.move_to_macro_with_parameters, 5), (Mover.move_to_constant, 4), (Mover.move_to_file, 3),
         (Mover.move_within_line_to_file, 1), (Mover.move_into_condition, 2), (Mover.call_again, 3)]


def transform(program, reading, chance):
    """Moves text 1 to 5 times. @return how often each move was made"""
    mover = Mover(program, reading, chance)
    made = []
    wanted = chance.randint(1, 5)
    for _ in range(20):
        if len(made) == wanted:
            break
        move = chance.choices([each for each, _ in MOVES], [weight for _, weight in MOVES])[0]
        if move(mover):
            made.append(move.__name__)
    mover.undefine_some()
    return made, mover
