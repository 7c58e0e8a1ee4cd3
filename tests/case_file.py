"""The text of a behaviour case: reading it, and writing expected texts anew.

A case is a plain ASCII file: a line "# " with the sentence it shows, more "# " lines if need be, then sections.
A section begins with a line "--- NAME [WORDS]" and runs to the next such line or the end of the file.

  --- program NAME      the program, in the folder of the one under test (default: that one itself)
  --- args              the arguments, quoted as in a shell (default: in.orlo out.sco)
  --- file NAME         a file made in the case's own empty folder before the run
  --- dir NAME          an empty folder made there
  --- env               lines NAME=VALUE for the environment
  --- stdin             the standard input (default: empty)
  --- status            the exit status (default: 0)
  --- screen            exact standard error without the banner
  --- screen whole      exact standard error, date and time of the banner replaced by DATE and TIME
  --- screen has        each line must occur in standard error
  --- screen lacks      no line may occur in standard error
  --- stdout            exact standard output (default: empty)
  --- out NAME          exact contents of a file after the run
  --- out NAME hex      the same as hexadecimal bytes; ";" starts a comment
  --- log NAME          exact contents of a log without the banner
  --- missing NAME      a file that must not exist after the run

Words after file, stdin, screen, stdout, out and log: "escaped" reads \\n \\t \\r \\0 \\\\ and \\xNN as bytes, "noeol" leaves
out the section's last line end. A file may be "hex", too. Everything else is literal, trailing blanks included.
"""

import os
import re
import shlex

# section: (takes a name, words that may follow)
SECTIONS = {
    "program": (True, set()),
    "args": (False, set()),
    "file": (True, {"hex", "escaped", "noeol"}),
    "dir": (True, set()),
    "env": (False, set()),
    "stdin": (False, {"escaped", "noeol"}),
    "status": (False, set()),
    "screen": (False, {"whole", "has", "lacks", "escaped", "noeol"}),
    "stdout": (False, {"escaped", "noeol"}),
    "out": (True, {"hex", "escaped", "noeol"}),
    "log": (True, {"escaped", "noeol"}),
    "missing": (True, set()),
}
CHECKS = ("screen", "out", "log", "stdout")
ESCAPES = {b"n": b"\n", b"t": b"\t", b"r": b"\r", b"0": b"\0", b"\\": b"\\"}
UNPRINTABLE = re.compile(rb"[^\t\n -~]")
HEX_BYTES = 16  # on a line that is written


class CaseError(Exception):
    """A fault in the case file itself."""


class Section:
    def __init__(self, line_no, kind, name, words):
        self.line_no, self.kind, self.name, self.words = line_no, kind, name, words
        self.lines = []

    def meaning(self, text):
        """The bytes that lines of this section stand for."""
        if "hex" in self.words:
            return hex_bytes(text, self)
        return unescape(text, self) if "escaped" in self.words else text

    def text(self):
        """The section's bytes, as the case means them."""
        text = b"".join(self.lines)
        return self.meaning(text.removesuffix(b"\n") if "noeol" in self.words else text)

    def line(self):
        """The one line of a section that has one line."""
        lines = [line.strip() for line in self.lines if line.strip()]
        if len(lines) != 1:
            raise CaseError(f"line {self.line_no}: '{self.kind}' takes exactly one line")
        return lines[0].decode()

    def phrases(self):
        """The lines of a section that lists phrases."""
        phrases = [line.removesuffix(b"\n") for line in self.lines if line.strip()]
        if not phrases:
            raise CaseError(f"line {self.line_no}: nothing stands in this section")
        return [unescape(phrase, self) for phrase in phrases] if "escaped" in self.words else phrases


def unescape(text, section):
    def byte(match):
        code = match[1]
        if len(code) == 3:
            return bytes([int(code[1:], 16)])
        if code not in ESCAPES:
            raise CaseError(f"line {section.line_no}: unknown escape '\\{code.decode()}' in this section")
        return ESCAPES[code]
    return re.sub(rb"\\(x[0-9A-Fa-f]{2}|.|\Z)", byte, text, flags=re.S)


def hex_bytes(text, section):
    digits = re.sub(rb";[^\n]*|\s", b"", text).decode()
    try:
        return bytes.fromhex(digits)
    except ValueError:
        raise CaseError(f"line {section.line_no}: not pairs of hexadecimal digits") from None


def parse_heading(line, line_no):
    parts = line.split()[1:]
    kind, rest = (parts[0], parts[1:]) if parts else ("", [])
    if kind not in SECTIONS:
        raise CaseError(f"line {line_no}: unknown section '{kind}'")
    named, allowed = SECTIONS[kind]
    name = None
    if named:
        if not rest:
            raise CaseError(f"line {line_no}: '{kind}' needs a name")
        name, rest = rest[0], rest[1:]
        if name.startswith("/") or ".." in name.split("/"):
            raise CaseError(f"line {line_no}: '{name}' lies outside the case's folder")
    for word in rest:
        if word not in allowed:
            raise CaseError(f"line {line_no}: '{kind}' does not know the word '{word}'")
    if len({"whole", "has", "lacks"} & set(rest)) > 1 or {"hex", "escaped"} <= set(rest):
        raise CaseError(f"line {line_no}: these words exclude each other")
    return Section(line_no, kind, name, set(rest))


def parse_case(data):
    """The title and the sections of a case."""
    bad = UNPRINTABLE.search(data)
    if bad:
        line_no = data.count(b"\n", 0, bad.start()) + 1
        raise CaseError(f"line {line_no}: byte 0x{bad[0][0]:02x}: write it as \\x{bad[0][0]:02x}, escaped")
    if not data.endswith(b"\n"):
        raise CaseError("the last line has no line end")
    lines = data.splitlines(keepends=True)
    if not re.match(rb"# \S", lines[0]):
        raise CaseError("line 1 must be '# ' and the sentence that the case shows")
    sections = []
    for line_no, line in enumerate(lines, 1):
        if line.startswith(b"--- "):
            sections.append(parse_heading(line.decode(), line_no))
        elif sections:
            sections[-1].lines.append(line)
        elif not line.startswith(b"#") and line.strip():
            raise CaseError(f"line {line_no}: text before the first section")
    check_sections(sections)
    return lines[0][2:].decode().strip(), sections


def check_sections(sections):
    seen = set()
    for section in sections:
        if not section.words & {"has", "lacks"}:
            if (section.kind, section.name) in seen:
                raise CaseError(f"line {section.line_no}: this section stands twice")
            seen.add((section.kind, section.name))
        if section.kind in ("program", "dir", "missing") and b"".join(section.lines).strip():
            raise CaseError(f"line {section.line_no}: '{section.kind}' holds no text")
        section.text()  # a fault in it is found here
    if not any(section.kind in CHECKS for section in sections):
        raise CaseError("the case checks nothing: no screen, out, log or stdout section")


def single(sections, kind, default):
    found = [section for section in sections if section.kind == kind]
    return found[0].line() if found else default


def parse_args(sections):
    try:
        return shlex.split(single(sections, "args", "in.orlo out.sco"))
    except ValueError as fault:
        raise CaseError(f"args: {fault}") from None


def parse_status(sections):
    status = single(sections, "status", "0")
    if not re.fullmatch(r"\d{1,3}", status):
        raise CaseError(f"status: '{status}' is no exit status")
    return int(status)


def parse_variables(sections):
    lines = b"".join(section.text() for section in sections if section.kind == "env").decode().splitlines()
    if not all("=" in line for line in lines):
        raise CaseError("env: a line is not NAME=VALUE")
    return dict(line.split("=", 1) for line in lines)


def command_beside(command, name):
    """The command of a program in the folder of the one that a command runs: its file is the last word."""
    *before, own = command
    return [*before, os.path.join(os.path.dirname(own), name + os.path.splitext(own)[1])]


def parse_command(sections, command):
    """The command of the case's program; command is that of the program under test, its file the last word."""
    names = [section.name for section in sections if section.kind == "program"]
    if len(names) > 1:
        raise CaseError("one program at a time")
    return command_beside(command, names[0]) if names else command


def prepare(sections, folder):
    for section in sections:
        if section.kind == "dir":
            os.makedirs(os.path.join(folder, section.name), exist_ok=True)
        elif section.kind == "file":
            path = os.path.join(folder, section.name)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "wb") as file:
                file.write(section.text())


def words_for(section, text):
    """The words that a section's heading needs for a text."""
    words = section.words - {"noeol"}
    if "hex" in words:
        return words
    if UNPRINTABLE.search(text) or re.search(rb"^--- ", text, re.M):
        words.add("escaped")
    return words | {"noeol"} if text and not text.endswith(b"\n") else words


def escape(text):
    text = re.sub(rb"\\", rb"\\\\", text).replace(b"\r", b"\\r")
    text = UNPRINTABLE.sub(lambda byte: b"\\x%02x" % byte[0][0], text)
    return re.sub(rb"^--- ", rb"\\x2d-- ", text, flags=re.M)


def written(text, words):
    """Lines that stand for a text."""
    if "hex" in words:
        return [text[at:at + HEX_BYTES].hex(" ").encode() + b"\n" for at in range(0, len(text), HEX_BYTES)]
    return [escape(text) if "escaped" in words else text]


def section_for(section, text):
    """A section's lines with another text. Its first and its last lines stay as they are written, as far as they hold."""
    words = words_for(section, text)
    rest = text + b"\n" if "noeol" in words else text
    old = list(section.lines) if words ^ section.words <= {"noeol"} else []
    first, last = [], []
    while old and rest.startswith(section.meaning(old[0])):
        rest = rest.removeprefix(section.meaning(old[0]))
        first.append(old.pop(0))
    while old and rest.endswith(section.meaning(old[-1])):
        rest = rest.removesuffix(section.meaning(old[-1]))
        last.insert(0, old.pop())
    heading = " ".join(["---", section.kind, *filter(None, [section.name]), *sorted(words)])
    return [heading.encode() + b"\n", *first, *written(rest, words), *last]


def with_texts(data, texts):
    """A case's file with other texts: pairs of a section of it and the section's bytes."""
    lines = data.splitlines(keepends=True)
    for section, text in sorted(texts, key=lambda pair: pair[0].line_no, reverse=True):
        start = section.line_no - 1
        lines[start:start + 1 + len(section.lines)] = section_for(section, text)
    return b"".join(lines)
