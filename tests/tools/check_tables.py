"""Has everything that stands in a table of the program what belongs to it: check_tables.py [--tables PROGRAM] --orlo PROGRAM

A word needs a handler in each place where it may stand, a line in docs/keywords.tsv with a chapter of the manual, an item in its
section of orlo.5, and a case. A message needs a row for its number, a line in docs/messages.tsv and a case. A limit needs a line
in docs/limits.tsv, and stands in the header that is told; a curve or distribution needs a letter and a picture in the manual; an
option a place in orlo.1 and in the completion; a directive one in the manual and in orlo.5. Prints what is missing, one a line.
"""

import argparse
import functools
import os
import re
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.normpath(os.path.join(HERE, "../.."))
sys.dont_write_bytecode = True
sys.path[:0] = [HERE, os.path.join(HERE, ".."), os.path.join(ROOT, "src/tables")]
import message_coverage
import run_case
import tables

NO_WORD = {"CMD_DIRECT", "CMD_DIRECTIVE", "CMD_CONSTANT"}   # codes of marks
NO_MESSAGE = {"END_OF_INPUT", "OK", "FULLY_REPORTED", "TEXT_REPORTED"}   # results without a text of their own
REFUSED = {("pf", "GLOBAL")}   # it stands in the table of the global block, and is an error there
NO_COLUMN = {"xx"}             # the output type that leaves its column out
VALUES = {"no": "c4", "op": "8.00"}   # a value in an input type, where 1 is none
SECTIONS = {"generator": "Generators", "setting": "Settings", "input": "Input types", "output": "Output types"}


class Pages:
    """What is written about the tables, and the cases."""

    def __init__(self):
        self.keywords = {row[0]: row for row in tables.words_about("keywords")}
        self.messages = tables.words_about("messages")
        self.limits = tables.words_about("limits")
        self.manual = message_coverage.read(os.path.join(ROOT, "docs/manual.md"))
        self.language = message_coverage.read(os.path.join(ROOT, "docs/man/orlo.5"))
        self.command = message_coverage.read(os.path.join(ROOT, "docs/man/orlo.1"))
        self.completion = message_coverage.read(os.path.join(ROOT, "completions/orlo"))
        folder = os.path.join(ROOT, "tests/cases")
        self.seen = message_coverage.seen_texts(folder)
        self.pieces = pieces_under(folder).lower()
        self.unit_tests = "".join(message_coverage.read(path)
                                  for path in message_coverage.files_under(os.path.join(ROOT, "tests/unit"), ".cpp"))

    def items(self, section):
        """The words of the items of a section of orlo.5."""
        found = re.search(rf"^\.Ss {section}\n(.*?)(?=^\.S[sh] |\Z)", self.language, re.M | re.S)
        return set(re.findall(r"[a-z0-9]+", " ".join(re.findall(r"^\.It (.*)", found[1], re.M)).lower())) if found else set()


def pieces_under(folder):
    """The input files of all cases."""
    pieces = []
    for path in message_coverage.files_under(folder, ".case"):
        _, sections = run_case.parse_case(run_case.read_file(path))
        pieces += [section.text().decode("latin-1") for section in sections if section.kind == "file"]
    return "\f".join(pieces)


@functools.cache
def run(orlo, piece):
    """Exit status, screen and score."""
    with tempfile.TemporaryDirectory(prefix="orlo-tables-") as folder:
        with open(os.path.join(folder, "in.orlo"), "w", encoding="ascii") as file:
            file.write(piece)
        made = subprocess.run([orlo, "in.orlo", "out.sco"], cwd=folder, check=False, stdin=subprocess.DEVNULL, timeout=60,
                              stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        score = message_coverage.read(os.path.join(folder, "out.sco")) if made.returncode == 0 else ""
        return made.returncode, made.stderr.decode("latin-1"), score


def section(text):
    return f"i1 = 4 0 1 {{\np2 1\np3 1\np4{text}\n}}\n"


def kinds_of(row, form):
    """What a word is, with the place where it is that."""
    word, places, is_type = row["word"], row["places"], row["code"].startswith("TYPE_")
    if form == f"{word.upper()}(...)":
        return [("generator", "BLOCK")]
    kinds = [("setting", place) for place in ("BLOCK", "GLOBAL") if place in places and not is_type]
    kinds += [("input", "BLOCK")] if is_type and {"BLOCK", "INPUT"} <= set(places) else []
    return kinds + ([("output", "OUTPUT")] if "OUTPUT" in places else [])


def is_handled(orlo, word, kind, place, texts):
    """Whether the program does something with a word: a mark behind a command is then an error of the command."""
    if kind == "generator":
        return texts["BAD_DDF_FORMAT"] in run(orlo, section(f" {word}!"))[1]
    if kind == "setting":
        return (word, place) in REFUSED or texts["BAD_COMMAND_FORMAT"] in run(orlo, section(f" {word}!") if place == "BLOCK"
                                                                               else f"{word}!\n")[1]
    if kind == "input":
        return run(orlo, section(f" {word} {VALUES.get(word, '1')}"))[0] == 0
    lines = [line.split() for line in run(orlo, section(f"({word}) 60"))[2].splitlines() if line.startswith("i")]
    return bool(lines) and len(lines[0]) == (3 if word in NO_COLUMN else 4)


def in_case(pages, word, kind):
    pattern = {"generator": rf"\b{word}\s*\(", "setting": rf"\b{word}\s*\(", "input": rf"(?<![a-z0-9]){word}[x0-7]?(?![a-z0-9])",
               "output": rf"\(\s*{word}[0-7]?\s*\)"}[kind]
    return re.search(pattern, pages.pieces) is not None


def missing_of_words(printed, pages, orlo):
    texts = {row["name"]: row["text"] for row in printed["errors"]}
    words = {row["word"] for row in printed["keywords"]}
    faults = [f"word {word}: docs/keywords.tsv knows it, the program does not" for word in sorted(set(pages.keywords) - words)]
    for row in printed["keywords"]:
        word = row["word"]
        if word not in pages.keywords:
            faults.append(f"word {word}: no line in docs/keywords.tsv")
        _, form, _, chapter = pages.keywords.get(word, ("", "", "", ""))
        if chapter and not re.search(rf"^##+ {re.escape(chapter)}$", pages.manual, re.M):
            faults.append(f"word {word}: no chapter {chapter} in docs/manual.md")
        for kind, place in kinds_of(row, form):
            if word not in pages.items(SECTIONS[kind]):
                faults.append(f"word {word}: no item in {SECTIONS[kind]} of docs/man/orlo.5")
            if not in_case(pages, word, kind):
                faults.append(f"word {word}: no case uses it as {kind}")
            if not is_handled(orlo, word, kind, place, texts):
                faults.append(f"word {word}: no handler as {kind}, {place}")
    used = {row["code"] for row in printed["keywords"]} | NO_WORD
    return faults + [f"code {row['name']}: no word" for row in printed["codes"] if row["name"] not in used]


def missing_of_messages(printed, pages):
    faults = []
    for kind in ("error", "warning"):
        rows = printed[kind + "s"]
        have = {row["number"] for row in rows}
        notes = {int(row[1]): row for row in pages.messages if row[0] == kind}
        faults += [f"{kind} {row['number']} ({row['name']}): no text in the table" for row in printed[kind + "_names"]
                   if row["number"] not in have and row["name"] not in NO_MESSAGE]
        faults += [f"{kind} {row['number']} ({row['name']}): no line in docs/messages.tsv" for row in rows if row["number"] not in notes]
        faults += [f"{kind} {number}: docs/messages.tsv knows it, the program does not" for number in sorted(set(notes) - have)]
        never = {number for number, row in notes.items() if row[2].startswith("Never shown") and number in have}
        faults += message_coverage.judge(kind, rows, never, pages.seen, pages.unit_tests)
    return faults


def missing_of_limits(printed, pages):
    told = "\n".join("\t".join(row) for row in pages.limits)
    faults = []
    for row in printed["limits"]:
        if not re.search(rf"\{{{row['name']}\b", told):
            faults.append(f"limit {row['name']}: no line in docs/limits.tsv")
        path = os.path.join(ROOT, "src", row["file"])
        if not os.path.isfile(path) or not re.search(rf"\b{row['name']}\b", message_coverage.read(path)):
            faults.append(f"limit {row['name']}: not in src/{row['file']}")
    return faults


def missing_of_letters(printed, pages):
    faults = []
    for table, names, picture in (("curves", "curve_names", "curve"), ("distributions", "distribution_names", "dist")):
        have = {row["name"] for row in printed[table]}
        faults += [f"{table}: no letter for {row['name']}" for row in printed[names] if row["name"] not in have]
        faults += [f"{table}: no picture of {row['letter']} in docs/manual.md" for row in printed[table]
                   if not re.search(rf"\(img/{picture}-{row['letter']}\d*\.svg\)", pages.manual)]
    return faults


def missing_of_options(printed, pages):
    faults = []
    for row in printed["options"]:
        if not re.search(rf"^\.It Fl {row['letter']}\b", pages.command, re.M):
            faults.append(f"option -{row['letter']}: no item in docs/man/orlo.1")
        if not re.search(rf"(?<!\w)-{row['letter']}(?!\w)", pages.completion):
            faults.append(f"option -{row['letter']}: not in completions/orlo")
    for row in printed["directives"]:
        faults += [f"directive #{row['word']}: not in {name}" for name, text in (("docs/manual.md", pages.manual),
                                                                                 ("docs/man/orlo.5", pages.language))
                   if not re.search(rf"#{row['word']}\b", text)]
    return faults


def missing(printed, pages, orlo):
    """Everything that is missing."""
    return [*missing_of_words(printed, pages, orlo), *missing_of_messages(printed, pages), *missing_of_limits(printed, pages),
            *missing_of_letters(printed, pages), *missing_of_options(printed, pages)]


def main():
    parser = argparse.ArgumentParser(description="name what is missing for a row of a table")
    tables.add_option(parser)
    parser.add_argument("--orlo", required=True, help="the program")
    options = parser.parse_args()
    printed = tables.read(options.tables)
    faults = missing(printed, Pages(), os.path.abspath(options.orlo))
    print("\n".join(faults or [", ".join(f"{len(rows)} {name}" for name, rows in printed.items() if not name.endswith("_names"))]))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
