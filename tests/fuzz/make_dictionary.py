"""The fuzzer's dictionary: make_dictionary.py [--tables PROGRAM] (--write FILE | --check FILE)

The words come from the program's keyword table, each in the forms in which it stands in a piece, which docs/keywords.tsv tells;
directives, operators and the fixed parts of the language are listed here. --check fails when the file is not what would be written.
"""

import argparse
import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../src/tables"))
import tables

DIRECTIVES = ["#define ", "#undef ", "#const ", "#if(", "#if(0)\\x0A", "#if(1)\\x0A", "#endif\\x0A", "#include |part|",
              "#include |piece|", "#define a#", "#define a(b'c)#", "$a", "$a(", "$a(1'2)", "$b", "$down(1'2)",
              "#const a 1\\x0A", "~a", "~half", "~[", "~[2*@1]", "~[?*2]", "~@1", "~@2", "~@3", "~@4", "@1", "@2"]
BLOCKS = ["i1=3 0 4{", "i1=5 0 -8{", "i1=128 0 1{", "i-1", "=", "{", "}", "p2", "p3", "p4", "p5", "p128",
          "p2 1\\x0Ap3 1\\x0A", "p2 .5\\x0Ap3 1\\x0Ap4 80\\x0Ap5 60\\x0A"]
OPERATORS = ["<", ">", "'", ":", "/", "//", "x0", "x3", "z", ",", ".", "-", "+", "*", "%", "(", ")", "[", "]", ";", "/*",
             "*/", "\\x0A", "\\xFF", "\\x00", "\\x09", "\\x0D"]
VALUES = ["0", "1", "-1", ".5", "0.00000000001", "32767", "32768", "65536", "4294967296", "18446744073709551616",
          "99999999999999999999999999999999999999999", "100.5", "201", "301", "401", "1001", "4.", "8..,16", "c4", "bf",
          "r", "8.09", "-8.09"]
SPANS = ["(T ", "(T*.5 ", "(-4 ", "(2 ", "T*", "1 [1 2]", "1 * [1 2 3]", "1 x [1 2 3]", "1 [1 2] .1 1", "1 [p2 + p3]",
         ".5 1 .5 2", "1 e 1 2", "1 v2 1 2", "1 l* 1 2", "1 s [1 2] [3 4]", "1 c* [g 1 2] 3", "[f", "[l", "[h", "[t",
         "[g", "[x", "[b"]
FLAGS = ["m\\x0A", "s\\x0A", "t\\x0A", "x\\x0A", "l\\x0A", "m5\\x0A", "12\\x0A", "250000\\x0A"]


def forms(word, form, places):
    """A keyword as it stands in a piece; form is how it is written in the manual."""
    if form == f"{word.upper()}(...)":
        return [word, f"{word}(T ", f"{word}(T 1 ["]
    if form.startswith(f"{word}("):
        return [f"{word}("]
    spellings = [word] + {"no": ["nox"], "op": ["opx"], "re": ["re7"], "bn": ["bn6"]}.get(word, [])
    result = [f"{spelling} " for spelling in spellings if "BLOCK" in places]
    return result + [f"({spelling})" for spelling in spellings if "OUTPUT" in places]


def make(keywords):
    written = {word: form for word, form, *_ in tables.words_about("keywords")}
    words = [form for row in keywords for form in forms(row["word"], written.get(row["word"], ""), row["places"])]
    words += ["te(60)", "te(1 2 60 90)", "te(0 4 60 120 e)"]
    groups = {"keywords": words, "directives": DIRECTIVES, "blocks": BLOCKS, "operators": OPERATORS, "values": VALUES,
              "generators": SPANS, "command lines": FLAGS}
    lines = ["# made by make_dictionary.py"]
    for name, entries in groups.items():
        lines += ["", f"# {name}"] + [f'"{entry}"' for entry in dict.fromkeys(entries)]
    return "\n".join(lines) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    tables.add_option(parser)
    action = parser.add_mutually_exclusive_group(required=True)
    action.add_argument("--write", metavar="FILE")
    action.add_argument("--check", metavar="FILE")
    options = parser.parse_args()
    dictionary = make(tables.read(options.tables)["keywords"])
    if options.write:
        with open(options.write, "w", encoding="ascii") as file:
            file.write(dictionary)
        return
    with open(options.check, encoding="ascii") as file:
        if file.read() != dictionary:
            sys.exit(f"{options.check} is not up to date: run make_dictionary.py --write")


if __name__ == "__main__":
    main()
