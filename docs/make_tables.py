"""Writes the tables of the manual from the tables of the program: make_tables.py [--tables PROGRAM] [--check]

Between the lines "<!-- table NAME -->" and "<!-- end of table -->" of manual.md stands

  limits     limits.tsv, in which {NAME} and {NAME - 1} stand for a limit of the program and for one less
  keywords   the two-letter words of the program with their places, and their meanings from keywords.tsv
  errors     the program's errors with cause and cure from messages.tsv
  warnings   its warnings, likewise
  notices    the messages without a number, as messages.tsv has them; tests/tools/message_coverage.py looks for them in the cases

With --check nothing is written, and a table that differs is a fault. A word, a message or a limit without a line in its data
file is a fault, and so is a line about one that the program does not have.
"""

import argparse
import os
import re
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "../src/tables"))
import tables

PLACES = {"BLOCK": "section", "OUTPUT": "output type", "GLOBAL": "global"}


def read(*names):
    with open(os.path.join(*names), encoding="utf-8") as file:
        return file.read()


def cell(text):
    return re.sub(r"([*_~|])", r"\\\1", text).replace("<", "&lt;").replace(">", "&gt;")


def code(text):
    """Program text in a cell of a table, its lines one below the other."""
    lines = [line for line in text.split("\n") if line.strip()]
    return "<br>".join(f"`` {line.strip()} ``" if "`" in line else f"`{line.strip()}`" for line in lines).replace("|", "\\|")


def limits(printed):
    values = {row["name"]: row["value"] for row in printed["limits"]}
    told, faults = set(), []

    def value(match):
        told.add(match[1])
        if match[1] not in values:
            faults.append(f"limits.tsv: no limit {match[1]}")
        return str(values.get(match[1], 0) - (1 if match[2] else 0))

    lines = ["| what | limit | otherwise |", "|---|---|---|"]
    for row in tables.words_about("limits"):
        lines.append(re.sub(r"\{(\w+)( - 1)?\}", value, f"| {row[0]} | {row[1]} | {row[2]} |").replace("|  |", "| |"))
    return lines, faults + [f"limits.tsv: nothing about {name}" for name in values if name not in told]


def keywords(printed):
    meanings = {row[0]: row for row in tables.words_about("keywords")}
    found = {row["word"]: row["places"] for row in printed["keywords"]}
    faults = [f"keywords.tsv: no keyword {word}" for word in set(meanings) - set(found)]
    lines = ["| word | may stand | meaning | more |", "|---|---|---|---|"]
    for word, places in found.items():
        if word not in meanings:
            faults.append(f"keywords.tsv: nothing about {word}")
            continue
        _, form, meaning, link = meanings[word]
        where = ", ".join(PLACES[place] for place in places if place in PLACES)
        lines.append(f"| {code(form)} | {where} | {cell(meaning)} | [{link}](#{link.lower().replace(' ', '-')}) |")
    return lines, faults


def messages(printed, table):
    texts = {row["number"]: row["text"] for row in printed[table]}
    notes = {int(row[1]): row for row in tables.words_about("messages") if row[0] == table[:-1]}
    faults = [f"messages.tsv: no {table[:-1]} {number}" for number in sorted(set(notes) - set(texts))]
    lines = ["| no. | text | cause | cure |", "|---|---|---|---|"]
    for number, text in texts.items():
        if number not in notes:
            faults.append(f"messages.tsv: nothing about {table[:-1]} {number}: {text}")
            continue
        _, _, cause, cure = notes[number]
        lines.append(f'| <a id="{table[0]}{number}"></a>{number} | {code(text)} | {cell(cause)} | {cell(cure)} |')
    return lines, faults


def notices():
    rows = [row for row in tables.words_about("messages") if row[0] == "notice"]
    return ["| text | cause | cure |", "|---|---|---|",
            *(f"| {code(text)} | {cell(cause)} | {cell(cure)} |" for _, text, cause, cure in rows)], []


def build(page, printed):
    """The page with its tables as they should be, and what is wrong with the data."""
    makers = {"limits": lambda: limits(printed), "keywords": lambda: keywords(printed),
              "errors": lambda: messages(printed, "errors"), "warnings": lambda: messages(printed, "warnings"), "notices": notices}
    faults = []

    def table(match):
        name = match[1]
        lines, bad = makers[name]()
        faults.extend(bad)
        return f"<!-- table {name} -->\n" + "\n".join(lines) + "\n<!-- end of table -->"

    built, count = re.subn(r"<!-- table (\w+) -->\n.*?<!-- end of table -->", table, page, flags=re.S)
    if count != len(makers):
        faults.append(f"manual.md has {count} tables, not {len(makers)}")
    return built, faults


def main():
    parser = argparse.ArgumentParser(description="write the tables of the manual")
    tables.add_option(parser)
    parser.add_argument("--check", action="store_true", help="write nothing, compare")
    options = parser.parse_args()

    page = read(HERE, "manual.md")
    built, faults = build(page, tables.read(options.tables))
    if options.check and built != page:
        faults.append("manual.md: its tables are not those of the program: run make_tables.py")
    if not options.check and not faults:
        with open(os.path.join(HERE, "manual.md"), "w", encoding="utf-8") as file:
            file.write(built)
    for fault in faults:
        print(fault)
    print(f"5 tables, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
