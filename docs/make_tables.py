"""Writes the tables of the manual from the tables of the program: make_tables.py [--check]

Between the lines "<!-- table NAME -->" and "<!-- end of table -->" of manual.md stands

  keywords   the two-letter words of src/lang/keywords.cpp with their places, and their meanings from keywords.tsv
  errors     the errors of src/diag/messages.cpp with cause and cure from messages.tsv
  warnings   the warnings there, likewise
  notices    the messages without a number, whose texts must stand in the source

With --check nothing is written, and a table that differs is a fault. A word or a message without a line in its data
file is a fault, and so is a line about one that the program does not have.
"""

import argparse
import os
import re
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
SOURCE = os.path.join(HERE, "..", "src")
STRING = r'"(?:\\.|[^"\\])*"'
PLACES = {"BLOCK": "section", "OUTPUT": "output type", "GLOBAL": "global"}
SHORT = {"errors": {3, 4, 5, 8, 9}, "warnings": {1, 2}}


def read(*names):
    with open(os.path.join(*names), encoding="utf-8") as file:
        return file.read()


def text_of(literals):
    """The text of adjacent string literals."""
    text = "".join(literal[1:-1] for literal in re.findall(STRING, literals))
    return re.sub(r"\\(.)", lambda match: {"n": "\n", "t": "\t"}.get(match[1], match[1]), text)


def data(name, columns):
    """Rows of a data file: tabs between columns, the first line says what they are."""
    rows = [line.split("\t") for line in read(HERE, name).split("\n")[1:] if line.strip()]
    for row in rows:
        if len(row) != columns or not all(part.strip() for part in row):
            sys.exit(f"{name}: not {columns} columns: {row}")
    return rows


def cell(text):
    return re.sub(r"([*_~|])", r"\\\1", text).replace("<", "&lt;").replace(">", "&gt;")


def code(text):
    """Program text in a cell of a table, its lines one below the other."""
    lines = [line for line in text.split("\n") if line.strip()]
    return "<br>".join(f"`` {line.strip()} ``" if "`" in line else f"`{line.strip()}`" for line in lines).replace("|", "\\|")


def keywords():
    found = re.findall(r"\{'(.)', '(.)', (\w+), ([A-Z |]+)\}", read(SOURCE, "lang", "keywords.cpp"))
    meanings = {row[0]: row for row in data("keywords.tsv", 4)}
    faults = [f"keywords.tsv: no keyword {word}" for word in set(meanings) - {a + b for a, b, _, _ in found}]
    lines = ["| word | may stand | meaning | more |", "|---|---|---|---|"]
    for a, b, _, places in found:
        if a + b not in meanings:
            faults.append(f"keywords.tsv: nothing about {a + b}")
            continue
        _, form, meaning, link = meanings[a + b]
        where = ", ".join(PLACES[place] for place in places.replace(" ", "").split("|"))
        lines.append(f"| {code(form)} | {where} | {cell(meaning)} | [{link}](#{link.lower().replace(' ', '-')}) |")
    return lines, faults


def messages(table):
    source = read(SOURCE, "diag", "messages.cpp")
    body = re.search(rf"constexpr Message {table}\[\] = \{{(.*?)\n\}};", source, re.S)[1]
    texts = {int(number): text_of(literals) for number, literals in re.findall(rf"\{{(\d+), ((?:{STRING}\s*)+)\}}", body)}
    notes = {int(row[1]): row for row in data("messages.tsv", 4) if row[0] == table[:-1]}
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
    source = ""
    for folder, _, names in sorted(os.walk(SOURCE)):
        for name in sorted(names):
            if name.endswith(".cpp"):
                source += text_of(read(folder, name)) + "\n"
    source = re.sub(r"%[a-z]", "%", source)
    lines, faults = ["| text | cause | cure |", "|---|---|---|"], []
    for kind, text, cause, cure in data("messages.tsv", 4):
        if kind != "notice":
            continue
        wanted = text.replace("\\n", "\n")
        if re.sub(r"%[a-z]", "%", wanted) not in source:
            faults.append(f"messages.tsv: the program has no text {text!r}")
        lines.append(f"| {code(wanted)} | {cell(cause)} | {cell(cure)} |")
    return lines, faults


def build(page):
    """The page with its tables as they should be, and what is wrong with the data."""
    faults = []

    def table(match):
        name = match[1]
        lines, bad = (keywords() if name == "keywords" else notices() if name == "notices" else messages(name))
        faults.extend(bad)
        return f"<!-- table {name} -->\n" + "\n".join(lines) + "\n<!-- end of table -->"

    built, count = re.subn(r"<!-- table (\w+) -->\n.*?<!-- end of table -->", table, page, flags=re.S)
    if count != 4:
        faults.append(f"manual.md has {count} tables, not 4")
    return built, faults


def main():
    parser = argparse.ArgumentParser(description="write the tables of the manual")
    parser.add_argument("--check", action="store_true", help="write nothing, compare")
    options = parser.parse_args()

    page = read(HERE, "manual.md")
    built, faults = build(page)
    if options.check and built != page:
        faults.append("manual.md: its tables are not those of the program: run make_tables.py")
    if not options.check and not faults:
        with open(os.path.join(HERE, "manual.md"), "w", encoding="utf-8") as file:
            file.write(built)
    for fault in faults:
        print(fault)
    print(f"4 tables, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
