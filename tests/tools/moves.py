"""Moves of a piece's text into include files, macros, constants and conditions."""

from choices import Choices
from piece_text import BLOCK, BLOCK_COMMENT, BODY, DIRECT, GLOBAL, HEADER, is_name_character
from text_tree import Call, Character, Constant, Definition, Include, Line, Parameter, Reference, Text

MOST_INCLUDES = 11
LONGEST_BODY = 700


class Mover(Choices):
    """Moves text of a program. Each move returns whether it found something that it may move."""

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

MOVES = [(Mover.move_to_macro, 5), (Mover.move_to_macro_with_parameters, 5), (Mover.move_to_constant, 4), (Mover.move_to_file, 3),
         (Mover.move_within_line_to_file, 1), (Mover.move_into_condition, 2), (Mover.call_again, 3)]


def transform(mover, chance):
    """Moves text 1 to 5 times. @return the names of the moves that were made"""
    made = []
    wanted = chance.randint(1, 5)
    for _ in range(20):
        if len(made) == wanted:
            break
        move = chance.choices([each for each, _ in MOVES], [weight for _, weight in MOVES])[0]
        if move(mover):
            made.append(move.__name__)
    mover.undefine_some()
    return made
