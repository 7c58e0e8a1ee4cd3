"""Run behaviour cases: run_case.py --orlo PROGRAM CASE...

A case is a plain ASCII file: a line "# " with the sentence it shows, more "# " lines if need be, then sections.
A section begins with a line "--- NAME [WORDS]" and runs to the next such line or the end of the file.

  --- program NAME      the program, in the folder of --orlo (default: the one that --orlo names)
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

import argparse
import difflib
import os
import re
import shlex
import subprocess
import sys
import tempfile

TIME_LIMIT = 10  # seconds that a run may take

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


class CaseError(Exception):
    """A fault in the case file itself."""


class Section:
    def __init__(self, line_no, kind, name, words):
        self.line_no, self.kind, self.name, self.words = line_no, kind, name, words
        self.lines = []

    def text(self):
        """The section's bytes, as the case means them."""
        text = b"".join(self.lines)
        if "noeol" in self.words:
            text = text.removesuffix(b"\n")
        if "hex" in self.words:
            return hex_bytes(text, self)
        return unescape(text, self) if "escaped" in self.words else text

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
    bad = re.search(rb"[^\t\n -~]", data)
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


def cut_banner(text):
    """Text behind the banner; all of it where there is none."""
    return re.sub(rb"\A.*?^Output\t= [^\n]*\n(?:(?:Log \t|MExp\t)= [^\n]*\n)*", b"", text, count=1, flags=re.S | re.M)


def hide_date(text):
    date = rb"[A-Z][a-z]{2} [ \d]\d \d{4}, \d\d:\d\d:\d\d"
    return re.sub(rb"(\nOrlo \([^,\n]*), " + date + rb"\)", rb"\1, DATE, TIME)", text, count=1)


def sanitizer_report(text):
    """True when a sanitizer has spoken."""
    return b"Sanitizer" in text or b": runtime error: " in text


def environment():
    """The environment for a run of the program, also one that is built with sanitizers."""
    return {name: value for name, value in os.environ.items() if name != "COLUMNS"} | {
        "LC_ALL": "C",
        "ASAN_OPTIONS": "detect_leaks=1:exitcode=99:allocator_may_return_null=1:detect_stack_use_after_return=1",
        "UBSAN_OPTIONS": "print_stacktrace=1:halt_on_error=1:exitcode=99",
    }


def visible(line):
    """A line with every character that does not print made visible."""
    names = {9: "\\t", 10: "\\n", 13: "\\r", 0: "\\0", 92: "\\\\"}
    return "".join(names.get(c) or (chr(c) if 32 <= c < 127 else f"\\x{c:02x}") for c in line)


def difference(what, expected, got):
    """How two texts differ, or an empty list."""
    if expected == got:
        return []
    at = len(os.path.commonprefix([expected, got]))
    line_no = expected.count(b"\n", 0, at) + 1
    column = at - (expected.rfind(b"\n", 0, at) + 1) + 1
    one = [f"'{visible(text[at:at + 1])}'" if at < len(text) else "the end" for text in (expected, got)]
    report = [f"{what} differs at byte {at} (line {line_no}, column {column}): expected {one[0]}, got {one[1]}"]
    pair = [[visible(line) for line in text.splitlines(keepends=True)] for text in (expected[:20000], got[:20000])]
    diff = list(difflib.unified_diff(*pair, lineterm="", n=3))[2:]
    report += ["  - expected   + got"] + [f"  {line}" for line in diff[:60]]
    if len(diff) > 60:
        report.append(f"  ... {len(diff) - 60} more lines")
    return report


def read_file(path):
    with open(path, "rb") as file:
        return file.read()


def prepare(sections, folder):
    for section in sections:
        if section.kind == "dir":
            os.makedirs(os.path.join(folder, section.name), exist_ok=True)
        elif section.kind == "file":
            path = os.path.join(folder, section.name)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "wb") as file:
                file.write(section.text())


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


def parse_environment(sections):
    lines = b"".join(section.text() for section in sections if section.kind == "env").decode().splitlines()
    if not all("=" in line for line in lines):
        raise CaseError("env: a line is not NAME=VALUE")
    return environment() | dict(line.split("=", 1) for line in lines)


def parse_program(sections, orlo):
    names = [section.name for section in sections if section.kind == "program"]
    if len(names) > 1:
        raise CaseError("one program at a time")
    return os.path.join(os.path.dirname(orlo), names[0]) if names else orlo


def check_screen(section, screen):
    if "has" in section.words:
        return [f"screen lacks: {visible(phrase)}" for phrase in section.phrases() if phrase not in screen]
    if "lacks" in section.words:
        return [f"screen has: {visible(phrase)}" for phrase in section.phrases() if phrase in screen]
    if "whole" in section.words:
        return difference("screen", section.text(), hide_date(screen))
    return difference("screen", section.text(), cut_banner(screen))


def check_file(section, folder):
    path = os.path.join(folder, section.name)
    if section.kind == "missing":
        return [f"{section.name} exists"] if os.path.lexists(path) else []
    if not os.path.isfile(path):
        return [f"{section.name} was not written"]
    got = read_file(path)
    return difference(section.name, section.text(), cut_banner(got) if section.kind == "log" else got)


def run_case(orlo, path, seconds):
    """Runs one case; returns its title and the list of what is wrong."""
    title, sections = parse_case(read_file(path))
    args, status, env = parse_args(sections), parse_status(sections), parse_environment(sections)
    program = parse_program(sections, orlo)
    given = b"".join(section.text() for section in sections if section.kind == "stdin")
    expected_out = b"".join(section.text() for section in sections if section.kind == "stdout")
    faults = []
    with tempfile.TemporaryDirectory(prefix="orlo-case-") as folder:
        prepare(sections, folder)
        try:
            run = subprocess.run([program, *args], cwd=folder, env=env, input=given, capture_output=True, timeout=seconds, check=False)
        except subprocess.TimeoutExpired:
            return title, [f"still running after {seconds} seconds: killed"]
        if sanitizer_report(run.stderr):
            return title, ["a sanitizer report:", run.stderr.decode(errors="replace")]
        if run.returncode < 0:
            faults.append(f"ended by signal {-run.returncode}")
        elif run.returncode != status:
            faults.append(f"exit status {run.returncode}, expected {status}")
        for section in sections:
            if section.kind == "screen":
                faults += check_screen(section, run.stderr)
            elif section.kind in ("out", "log", "missing"):
                faults += check_file(section, folder)
        faults += difference("stdout", expected_out, run.stdout)
        shown = any(section.kind == "screen" and not section.words & {"has", "lacks"} for section in sections)
        if faults and not shown:
            faults += ["the screen was:"] + [f"  {visible(line)}" for line in run.stderr.splitlines(True)[-20:]]
    return title, faults


def main():
    parser = argparse.ArgumentParser(description="run behaviour cases of orlo")
    parser.add_argument("--orlo", required=True, help="the program")
    parser.add_argument("--seconds", type=int, default=TIME_LIMIT, help="time that a run may take")
    parser.add_argument("--stop-at-first", action="store_true", help="run no more cases behind one that fails")
    parser.add_argument("cases", nargs="+", metavar="CASE")
    options = parser.parse_args()
    orlo = os.path.abspath(options.orlo)
    failed = 0
    for path in options.cases:
        try:
            title, faults = run_case(orlo, path, options.seconds)
        except CaseError as fault:
            title, faults = "a fault in the case file", [str(fault)]
        print(f"{'FAIL' if faults else 'ok'}: {path}: {title}")
        for fault in faults:
            print(f"  {fault}")
        failed += bool(faults)
        if failed and options.stop_at_first:
            break
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
