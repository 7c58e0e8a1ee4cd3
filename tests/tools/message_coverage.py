"""Every message that can be seen must be seen: message_coverage.py --messages src/diag/messages.cpp --tests tests

Reads the two message tables and looks for each text in the exact screens and logs of the cases, with the words and
the line number that stand before it there. A number that is not seen must be in one of the lists below, and a number
in a list must not be seen, so that the lists stay true. Messages without a number are listed here by their words.
"""

import argparse
import os
import re
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
import run_case

SHORT_ERRORS = {3, 4, 5, 8, 9}  # shown without a line
SHORT_WARNINGS = {1, 2}

# what no input brings about
NEVER_ERRORS = {
    4: "a p-field that is missing at the end of a block is 71, one too many is 44",
    10: "a wrong instrument number is 11",
    31: "input that ends in a block is 5 in a section and the end of input elsewhere",
    33: "input that ends too early has a number for each place",
    56: "an equation that does not begin with a bracket is 57",
    83: "a second macro of one name is 84",
    87: "a wrong number of arguments is 82 or 86",
    89: "a macro body that is too long has a message of its own",
    90: "a macro name that is too long has a message of its own",
    92: "any word after # that is no other directive is read as an #undef, which is 80",
    93: "there is no input type oc",
    94: "there is no input type oc",
    95: "there is no input type oc",
    101: "a wrong constant has a number for each place",
    113: "both callers have seen the word endif before they close a block",
    154: "a wrong curve in a tempo change is 63 or 64",
    200: "everything is implemented",
}
NEVER_WARNINGS = {
    23: "a second macro of one name is error 84",
    25: "a second constant of one name is error 100",
}

# what only a fault of the machine brings about: a unit test shows the text
FAULT_ERRORS = {
    9: "the temporary file has gone between writing and reading",
    32: "no memory",
    102: "no memory for a constant",
}

# what belongs to features that are not built yet: take a number out when its case is written
NOT_BUILT_ERRORS = set()
NOT_BUILT_WARNINGS = set()

# messages without a number, by words of theirs
UNNUMBERED = [
    "Error: No logfile name\n",
    "Error: No macro-expansion file name\n",
    "ERROR: You can't use a filename multiple times!\n",
    "ERROR: Can't open \"",
    "ERROR: Can't write \"",
    "Too many embedded include files! (Max = 12)\n",
    "Include filename must be preceeded by a |.\n",
    "ERROR: Include filename has exceeded maximum\nlength of 255 characters.\n",
    "Bad include file name: \"",
    "ERROR: Bad number of p-fields (3 - 128)\n",
    "Maximum number of beats = 10000.00\n",
    "is blank ... OY!\n",
    "P2 never reaches the end of the i-block!\n",
    "ERROR: Too many tempo changes! (Max = 50)\n",
    "conflicts with previous tempo's end time!",
    ": Fused data changed \"events\" from ",
    "is all rests (check p2=0 and p3 != 400+n OR 1000+n?)! ",
    "(N.B. No I-Block Data Written)",
    ": T evaluated at = ",
    "Old duration = ",
    "There is no macro \"",
    "There is no constant \"",
    "\" expands without end!\n",
    ": Too many expansions! (Max = ",
    "The expanded line has exceeded the maximum number\nof characters allowed (2047).\n",
    "The macro body has exceeded the maximum number\nof characters allowed (2048).\n",
]

STRING = r'"(?:\\.|[^"\\])*"'


def code_without_comments(code):
    return re.sub(rf"({STRING})|//[^\n]*|/\*.*?\*/", lambda match: match[1] or " ", code, flags=re.S)


def text_of(literals):
    """The text of one or several adjacent string literals."""
    text = "".join(literal[1:-1] for literal in re.findall(STRING, literals))
    return re.sub(r"\\(.)", lambda match: {"n": "\n", "t": "\t"}.get(match[1], match[1]), text)


def read_tables(path):
    """The error and the warning table as {number: text}."""
    with open(path, encoding="utf-8") as file:
        code = code_without_comments(file.read())
    tables = {"error": {}, "warning": {}}
    table = None
    for word, number, literals in re.findall(
            rf"\b(\w+)\s*(?:\[[^]]*\])?\s*(?:=|\{{\s*\{{)|\{{\s*(\d+)\s*,\s*((?:{STRING}\s*)+),?\s*\}}", code):
        if word:
            table = next((name for name in tables if name in word.lower()), table)
        elif table:
            if int(number) in tables[table]:
                sys.exit(f"{path}: {table} {number} stands twice")
            tables[table][int(number)] = text_of(literals)
    for name, texts in tables.items():
        if not texts:
            sys.exit(f"{path}: found no table of {name}s")
    return tables["error"], tables["warning"]


def files_under(folder, ending):
    for where, _, names in sorted(os.walk(folder)):
        yield from (os.path.join(where, name) for name in sorted(names) if name.endswith(ending))


def read(path):
    with open(path, encoding="utf-8", errors="replace") as file:
        return file.read()


def seen_texts(folder):
    """All exact screens, logs and standard outputs of the cases."""
    texts = []
    for path in files_under(folder, ".case"):
        try:
            _, sections = run_case.parse_case(run_case.read_file(path))
        except run_case.CaseError as fault:
            sys.exit(f"{path}: {fault}")
        texts += [section.text().decode("latin-1") for section in sections
                  if section.kind in ("screen", "log", "stdout") and not section.words & {"has", "lacks"}]
    return "\f".join(texts)


def is_seen(word, number, text, short, seen):
    """True when a message stands on a screen in its full form."""
    if number in short:
        return f"\n{word}: {text}" in seen
    return re.search(rf"\n{word}: Line \d+: {re.escape(text)}\n", seen) is not None


def judge(word, texts, short, seen, never, fault, not_built, unit_tests):
    """What is wrong with the messages of one table."""
    faults = []
    for number in sorted({*never, *fault, *not_built} - set(texts)):
        faults.append(f"{word} {number} is in a list but not in the table")
    for number, text in texts.items():
        shown = is_seen(word, number, text, short, seen)
        lists = [name for name, numbers in (("never seen", never), ("needs a fault", fault), ("not built", not_built))
                 if number in numbers]
        if len(lists) > 1:
            faults.append(f"{word} {number} is in two lists: {', '.join(lists)}")
        elif lists and shown:
            faults.append(f"{word} {number} is in the list '{lists[0]}', but a case shows it: take it out")
        elif not lists and not shown:
            faults.append(f"{word} {number} is shown by no case (exact screen or log): {text!r}")
        if number in fault and text not in unit_tests:
            faults.append(f"{word} {number} is shown by no unit test: {text!r}")
    return faults


def main():
    parser = argparse.ArgumentParser(description="check that every message is seen in a case")
    parser.add_argument("--messages", required=True, help="source file with the two tables")
    parser.add_argument("--tests", required=True, help="folder with cases/ and unit/")
    options = parser.parse_args()

    errors, warnings = read_tables(options.messages)
    seen = seen_texts(os.path.join(options.tests, "cases"))
    unit_files = files_under(os.path.join(options.tests, "unit"), ".cpp")
    unit_tests = "".join(text_of(code_without_comments(read(path))) for path in unit_files)

    faults = judge("ERROR", errors, SHORT_ERRORS, seen, NEVER_ERRORS, FAULT_ERRORS, NOT_BUILT_ERRORS, unit_tests)
    faults += judge("WARNING", warnings, SHORT_WARNINGS, seen, NEVER_WARNINGS, {}, NOT_BUILT_WARNINGS, "")
    faults += [f"no case shows the message {words!r}" for words in UNNUMBERED if words not in seen]
    for fault in faults:
        print(fault)
    expected = len(errors) + len(warnings) - sum(map(len, (NEVER_ERRORS, NEVER_WARNINGS, FAULT_ERRORS, NOT_BUILT_ERRORS,
                                                           NOT_BUILT_WARNINGS)))
    print(f"{len(errors)} errors and {len(warnings)} warnings in the tables, {expected} of them due in cases, "
          f"{len(UNNUMBERED)} messages without a number: {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
