"""Every message that can be seen must be seen: message_coverage.py [--tables PROGRAM] --tests tests

Looks for each text of the two message tables in the exact screens and logs of the cases, with the words and the line number
that stand before it there, and for the messages without a number, which docs/messages.tsv calls notices. What is not seen must
be told there to be "Never shown", with the reason, or be in the list below, and what is so must not be seen.
"""

import argparse
import os
import re
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [os.path.join(HERE, ".."), os.path.join(HERE, "../../src/tables")]
import run_case
import tables

# what only a fault of the machine brings about: a unit test shows the text
FAULTS = {
    "error": {
        9: "the temporary file has gone between writing and reading",
        32: "no memory",
        102: "no memory for a constant",
    },
    "warning": {},
}

# forms of notices that must all be seen: what stands for their %s, and their further lines
FORMS = [
    "Error: No logfile name\n",
    "Error: No macro-expansion file name\n",
    "ERROR: Include filename has exceeded maximum\nlength of 255 characters.\n",
    "The expanded line has exceeded the maximum number\nof characters allowed (2047).\n",
    "The macro body has exceeded the maximum number\nof characters allowed (2048).\n",
]


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


def as_literal(text):
    """A text as it stands in a C++ source."""
    return text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n")


def is_seen(kind, row, seen):
    """True when a message stands on a screen in its full form."""
    if not row["line"]:
        return f"\n{kind.upper()}: {row['text']}" in seen
    return re.search(rf"\n{kind.upper()}: Line \d+: {re.escape(row['text'])}\n", seen) is not None


def judge(kind, rows, never, seen, unit_tests):
    """What is wrong with the messages of one table; never are the numbers of which messages.tsv says so."""
    faults = []
    for number in sorted((set(never) | set(FAULTS[kind])) - {row["number"] for row in rows}):
        faults.append(f"{kind} {number} is told to be special but is not in the table")
    for row in rows:
        name, number, shown = f"{kind} {row['number']} ({row['name']})", row["number"], is_seen(kind, row, seen)
        if number in never and number in FAULTS[kind]:
            faults.append(f"{name} is never shown by messages.tsv, and by a fault of the machine here")
        elif shown and (number in never or number in FAULTS[kind]):
            faults.append(f"{name} is told not to be seen, but a case shows it")
        elif not shown and number not in never and number not in FAULTS[kind]:
            faults.append(f"{name} is shown by no case (exact screen or log): {row['text']!r}")
        if number in FAULTS[kind] and as_literal(row["text"]) not in unit_tests:
            faults.append(f"{name} is shown by no unit test: {row['text']!r}")
    return faults


def judge_notice(text, cause, seen):
    pattern = re.escape(text).replace("%d", "-?[0-9]+").replace("%f", " *-?[0-9.]+").replace("%s", "[^\n]+")
    shown = re.search(pattern, seen) is not None
    if shown == cause.startswith("Never shown"):
        return [f"a case shows the message {text!r}, of which messages.tsv says otherwise" if shown
                else f"no case shows the message {text!r}"]
    return []


def main():
    parser = argparse.ArgumentParser(description="check that every message is seen in a case")
    tables.add_option(parser)
    parser.add_argument("--tests", required=True, help="folder with cases/ and unit/")
    options = parser.parse_args()

    printed, notes = tables.read(options.tables), tables.words_about("messages")
    seen = seen_texts(os.path.join(options.tests, "cases"))
    unit_tests = "".join(read(path) for path in files_under(os.path.join(options.tests, "unit"), ".cpp"))

    faults, due = [], 0
    for kind in ("error", "warning"):
        rows = printed[kind + "s"]
        never = {int(row[1]) for row in notes if row[0] == kind and row[2].startswith("Never shown")}
        due += len(rows) - len(never) - len(FAULTS[kind])
        faults += judge(kind, rows, never, seen, unit_tests)
    notices = [row for row in notes if row[0] == "notice"]
    for _, text, cause, _ in notices:
        faults += judge_notice(text, cause, seen)
    faults += [f"no case shows the message {words!r}" for words in FORMS if words not in seen]
    for fault in faults:
        print(fault)
    print(f"{len(printed['errors'])} errors and {len(printed['warnings'])} warnings in the tables, {due} of them due in cases, "
          f"{len(notices)} messages without a number: {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
