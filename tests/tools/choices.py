"""What of a tree of texts may be moved elsewhere, by rules of the language that are named where they stand."""

from piece_text import BLOCK, BLOCK_COMMENT, BODY, COMMENT, DIRECT, GLOBAL, HEADER, is_name_character
from text_tree import Call, Character, Constant, Definition, Include, Layout, Line, Parameter, Reference, Walk

LONGEST_LINE = 1000  # before and after expansion; the program takes twice as much


class Choices:
    """A program, the reading of its text, and what there is in it to choose from."""

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
            if name not in self.names:
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
            end = self.chance.choice(behind[:self.chance.choice([1, 3, 10, 40, 200])])
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
