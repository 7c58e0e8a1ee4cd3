"""What of a piece's text may be moved elsewhere: a reading of it that is independent of the program.

Text is Latin-1, so that characters are bytes; it is read as it stands with its include files in place. A piece whose text this reading
does not follow (macros that open or close a block, say) raises NotUnderstood.
"""

import re
from decimal import Decimal

GLOBAL, HEADER, BLOCK, DIRECT, BODY = "ghs>m"  # zones whose text may be moved
COMMENT, BLOCK_COMMENT, DIRECTIVE, CONDITIONAL, REST = "cbdxj"  # and those where it stays, unless whole lines are moved

INPUT_TYPES = {"re", "in", "db", "no", "op", "rh"}
WORDS = INPUT_TYPES | {"dv", "ex", "ho", "mo", "ms", "pf", "ra", "rd", "rs", "rw", "s2", "se"}
NAME = re.compile(r"[A-Za-z][A-Za-z0-9_]*")
NUMBER = re.compile(r"[-+]?(?:\d+\.?\d*|\.\d+)")
NUMBERS = {"in": re.compile(r"-?\d.*"), "db": re.compile(r"-?\d.*"), "op": re.compile(r"-?\d+\..*")}  # ".5" is none of these, "0.5" is
WHOLE_NUMBERS = {"rs", "sr"}  # commands that read no fraction
MOST_DIGITS = 12
LARGEST_CONSTANT = 16000  # with three decimals its digits fit the 24 bits of a float, so that they say the same value


class NotUnderstood(Exception):
    pass


def is_name_character(c):
    return c.isascii() and (c.isalnum() or c == "_")


def as_constant(digits):
    """What the program writes for a constant, None when it can't be one."""
    if digits.startswith("+") or (len(digits) > 1 and digits[0] == "-" and Decimal(digits) == 0):
        return None
    if len(digits) > MOST_DIGITS:
        return None
    value = Decimal(digits)
    if value != round(value, 3) or abs(value) >= LARGEST_CONSTANT:
        return None
    return f"{value:.3f}"


class PieceText:
    """zone: of each character. unit: a number, the same for neighbours that must stay together. lines: where a line begins in which a
    directive of its own may stand. free_lines: those of them between the blocks. numbers: (begin, end) that may become constants.
    brackets: whether a character is within [ ]. parameter: whether it refers to a parameter of the macro whose body it stands in."""

    def __init__(self, text):
        if re.search(r"[^\t\n -~\x80-\xfe]", text):
            raise NotUnderstood("a character that is none of a text")
        self.text, self.at = text, 0
        self.zone = [GLOBAL] * len(text)
        self.unit = [0] * len(text)
        self.brackets = [False] * len(text)
        self.parameter = [False] * len(text)
        self.lines, self.free_lines, self.numbers = set(), set(), []
        self.sections = []  # where the items of a section begin
        self.names = set(re.findall(NAME, text))
        self.conditions = set(re.findall(r"#if\(\s*\$(\w+)", text))  # macros whose body is read as a value, calls in it are not
        self.parametric, self.bodies = {}, {}
        self.units = 0
        self.where, self.depth, self.bracket_depth, self.type, self.command = GLOBAL, 0, 0, None, ""
        self.read()

    # marks

    def mark(self, end, zone):
        end = min(end, len(self.text))
        self.zone[self.at:end] = [zone] * (end - self.at)
        self.at = end

    def one_unit(self, end, zone):
        self.units += 1
        self.unit[self.at:end] = [self.units] * (end - self.at)
        self.mark(end, zone)

    def line_end(self, start=None):
        end = self.text.find("\n", self.at if start is None else start)
        return len(self.text) if end < 0 else end

    def follows(self, pattern):
        return re.compile(pattern).match(self.text, self.at)

    # reading

    def read(self):
        while self.at < len(self.text):
            if self.at == 0 or self.text[self.at - 1] == "\n":
                self.begin_line()
                if self.follows(r"[ \t]*#if\("):
                    self.read_conditional()
                    continue
            self.read_item()
        if self.where not in (GLOBAL, REST, DIRECT) or self.depth:
            raise NotUnderstood("it ends within a block")

    def begin_line(self):
        if self.where in (REST, DIRECT):
            self.where = GLOBAL
        if self.where == GLOBAL and not self.depth:
            self.free_lines.add(self.at)
        if self.where in (GLOBAL, BLOCK) and not self.bracket_depth and not (self.where == GLOBAL and self.depth):
            self.lines.add(self.at)

    def read_item(self):
        c = self.text[self.at]
        if self.where == REST:
            if "/*" in self.text[self.at:self.line_end()]:
                raise NotUnderstood("a comment behind a block")
            self.mark(self.line_end() + 1, REST)
        elif c == ";":
            self.mark(self.line_end(), COMMENT)
        elif self.text.startswith("/*", self.at):
            self.read_block_comment()
        elif c == "$":
            self.read_call()
        elif c == "~":
            self.read_reference()
        elif self.where == DIRECT:
            self.mark(self.at + 1, DIRECT)
        elif c == "#":
            self.read_directive()
        elif c in " \t\n":
            self.brackets[self.at] = self.bracket_depth > 0
            self.mark(self.at + 1, self.where)
        else:
            {GLOBAL: self.read_global, HEADER: self.read_header, BLOCK: self.read_in_block}[self.where](c)

    def read_block_comment(self):
        depth, end = 0, self.at
        while True:
            mark = re.compile(r"/\*|\*/").search(self.text, end)
            if not mark:
                raise NotUnderstood("a comment without an end")
            depth += 1 if mark[0] == "/*" else -1
            end = mark.end()
            if depth == 0:
                break
        if "#" in self.text[self.at:end] or "$" in self.text[self.at:end] or "/*/" in self.text[self.at:end]:
            raise NotUnderstood("a comment that is not plain")
        self.one_unit(end, BLOCK_COMMENT)

    def balanced(self, start):
        depth, end = 0, start
        while end < len(self.text):
            depth += {"(": 1, ")": -1}.get(self.text[end], 0)
            end += 1
            if depth == 0:
                return end
        raise NotUnderstood("an open parenthesis")

    def read_call(self):
        name = NAME.match(self.text, self.at + 1)
        if not name:
            raise NotUnderstood("a $ without a name")
        end = name.end()
        if self.text[end:end + 1] == "(":
            end = self.balanced(end)
        elif self.parametric.get(name[0]):
            raise NotUnderstood("a call whose arguments stand apart")
        if self.where == GLOBAL and not self.depth and name[0] in self.parametric:
            raise NotUnderstood("a macro between blocks")
        self.type = None
        self.one_unit(end, self.where)

    def read_reference(self):
        following = self.text[self.at + 1:self.at + 2]
        if following == "[":
            end = self.text.find("]", self.at) + 1
        elif following == "@":
            end = self.at + 3
        else:
            name = NAME.match(self.text, self.at + 1)
            end = name.end() if name else 0
        if end <= 0 or "\n" in self.text[self.at:end]:
            raise NotUnderstood("a ~ without a name")
        self.one_unit(end, self.where)

    def read_directive(self):
        if self.where != GLOBAL or self.depth:
            raise NotUnderstood("a directive in a block")
        define = self.follows(r"#define[ \t]+([A-Za-z]\w*)(\([^)\n]*\))?\s*#")
        if not define:
            if self.follows("#define|#in|#if|#endif"):
                raise NotUnderstood("an unusual directive")
            self.mark(self.line_end(), DIRECTIVE)
            return
        parameters = set(re.findall(NAME, define[2] or ""))
        self.parametric[define[1]] = bool(define[2])
        self.mark(define.end(), DIRECTIVE)
        begin = self.at
        self.read_body(define[1], parameters)
        if define[1] in self.conditions:
            self.zone[begin:self.at] = [DIRECTIVE] * (self.at - begin)
        self.mark(self.at + 1, DIRECTIVE)

    def read_body(self, name, parameters):
        start = self.at
        while self.text[self.at:self.at + 1] != "#":
            if self.at >= len(self.text):
                raise NotUnderstood("a macro without an end")
            call = self.follows(r"\$([A-Za-z]\w*)")
            if call:
                begin, end = self.at, call.end()
                if self.text[end:end + 1] == "(" and call[1] not in parameters:
                    end = self.balanced(end)
                self.one_unit(end, BODY)
                if call[1] in parameters or any(f"${name}" in self.text[begin:end] for name in parameters):
                    self.parameter[begin:end] = [True] * (end - begin)
            elif self.text[self.at] == "~":
                self.where = BODY
                self.read_reference()
                self.where = GLOBAL
            elif self.text[self.at] in ";{}" or self.text.startswith("/*", self.at):
                raise NotUnderstood("a macro with a comment or a brace")
            else:
                self.mark(self.at + 1, BODY)
        self.bodies[name] = self.text[start:self.at]
        if re.search(r"(?<![A-Za-z])p\d", self.text[start:self.at]) and "[" not in self.text[start:self.at]:
            raise NotUnderstood("a macro with a section")

    def read_conditional(self):
        """Its lines as a whole: whether they are read is not known here."""
        begin, depth = self.at, 0
        while self.at < len(self.text):
            end = self.line_end() + 1
            line = self.text[self.at:end]
            depth += 1 if re.match(r"[ \t]*#if\(", line) else -1 if re.match(r"[ \t]*#endif", line) else 0
            self.mark(end, CONDITIONAL)
            if depth == 0:
                break
        lines = re.sub(r";.*", "", self.text[begin:self.at])
        if depth or lines.count("{") != lines.count("}") or "/*" in lines or (self.where == BLOCK and "p" in lines):
            raise NotUnderstood("a condition that is not plain")
        self.names_of_definitions(lines)
        for value in re.findall(r"#if\(([^)\n]*)", lines):
            if not re.match(r"\s*[\d~]", self.bodies.get(value.strip()[1:], "") if value.strip().startswith("$") else value):
                raise NotUnderstood("a condition that goes by the one before")

    def names_of_definitions(self, lines):
        for define in re.finditer(r"#define[ \t]+([A-Za-z]\w*)(\(?)", lines):
            self.parametric[define[1]] = bool(define[2])

    def read_global(self, c):
        command = self.follows("(te|rs|rd|sr)(?=[ \t(])")
        if self.depth:
            self.read_argument(c)
        elif c == ">":
            if re.search(r"/\*|#", self.text[self.at:self.line_end()]):
                raise NotUnderstood("a comment or directive in a direct line")
            self.mark(self.at + 1, DIRECTIVE)
            self.where = DIRECT
        elif c == "i":
            self.where, self.header_numbers = HEADER, 0
            self.mark(self.at + 1, HEADER)
        elif command:
            self.command = command[1]
            self.mark(command.end(), GLOBAL)
            if self.follows(r"[ \t]*\("):
                return
            raise NotUnderstood("a command without parentheses")
        elif c == "(":
            self.depth = 1
            self.mark(self.at + 1, GLOBAL)
        else:
            self.mark(self.at + 1, GLOBAL)  # an error

    def read_argument(self, c):
        number = NUMBER.match(self.text, self.at)
        if number and self.stands_alone(number):
            self.offer(number, self.command not in WHOLE_NUMBERS)
            self.mark(number.end(), GLOBAL)
            return
        self.depth += {"(": 1, ")": -1}.get(c, 0)
        self.mark(self.at + 1, GLOBAL)

    def stands_alone(self, number):
        before, behind = self.text[:number.start()][-1:], self.text[number.end():number.end() + 1]
        return not (before and (before in "._$~" or before.isalnum())) and not (behind and (behind in "._(" or behind.isalnum()))

    def offer(self, number, allowed):
        if allowed and as_constant(number[0]) is not None:
            self.numbers.append((number.start(), number.end()))

    def read_header(self, c):
        number = NUMBER.match(self.text, self.at)
        if number:
            self.header_numbers += 1
            self.offer(number, self.header_numbers > 2 and not number[0].startswith("-") and self.stands_alone(number))
            self.mark(number.end(), HEADER)
            return
        if c == "{":
            self.where, self.depth, self.type = BLOCK, 0, None
        if c == "}" or c == "p":
            raise NotUnderstood("a header without a {")
        self.mark(self.at + 1, HEADER)

    def read_in_block(self, c):
        section = self.follows(r"p\d+[ \t]*(\([^)\n$~]*\))?")
        number = NUMBER.match(self.text, self.at)
        if c == "}":
            if self.depth:
                raise NotUnderstood("an open parenthesis")
            self.mark(self.at + 1, BLOCK)
            self.where = REST
            if self.text[self.at:self.at + 1] == "\n":
                self.mark(self.at + 1, REST)
        elif section and not self.bracket_depth and not self.depth:
            self.type = "re"
            self.mark(section.end(), BLOCK)
            self.sections.append(self.at)
        elif number and self.stands_alone(number):
            listed = self.type == "re" or (self.type == "no" and self.depth) or (self.type in NUMBERS and NUMBERS[self.type].fullmatch(number[0]))
            self.offer(number, listed and not (self.depth and self.command in WHOLE_NUMBERS))
            self.step(number.end())
        elif number:
            self.step(number.end())
        elif c.isalpha():
            self.read_word()
        else:
            self.depth += {"(": 1, ")": -1}.get(c, 0)
            self.bracket_depth += {"[": 1, "]": -1}.get(c, 0)
            if self.depth < 0 or self.bracket_depth < 0:
                raise NotUnderstood("a stray parenthesis")
            self.step(self.at + 1)

    def step(self, end):
        self.brackets[self.at:end] = [self.bracket_depth > 0] * (end - self.at)
        self.mark(end, BLOCK)

    def read_word(self):
        word = self.text[self.at:self.at + 2].lower()
        if word in INPUT_TYPES and not self.depth:
            self.type = word
            self.step(self.at + 2)
            if word in ("no", "op") and self.follows("x"):
                self.step(self.at + 1)
        elif word in WORDS and re.compile(r"..\s*\(").match(self.text, self.at):
            self.command = word
            self.step(self.at + 2)
        else:
            self.step(self.at + 1)
