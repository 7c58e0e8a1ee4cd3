"""A piece and its include files as a tree of texts.

A text is a list of items: characters, and what stands for text that is elsewhere. Reading the tree the way that orlo reads files (Walk)
gives the characters of the original in their order, each with the steps that lead to it; writing it (Layout) gives each item a place
in a file.
"""

import re


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
        self.visits = []  # the steps to what is replaced by other text, with itself
        self.walk(program.main, (), None)

    def walk(self, text, path, arguments):
        for item in text.items:
            if id(item) not in self.first:
                self.first[id(item)] = len(self.met)
                self.path_of[id(item)] = path
                self.order.append(item)
            self.text_of[id(item)] = text
            if isinstance(item, (Call, Parameter, Reference)):
                self.visits.append(path + (item,))
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
