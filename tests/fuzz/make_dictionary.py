"""The fuzzer's dictionary: make_dictionary.py --keywords src/lang/keywords.cpp (--write FILE | --check FILE)

The words come from the program's keyword table, each in the forms in which it stands in a piece; directives, operators
and the fixed parts of the language are listed here. --check fails when the file is not what would be written.
"""

import argparse
import re
import sys

GENERATORS = {"ex", "ho", "mo", "ms", "ra", "rw", "s2", "se"}
SETTINGS = {"dv", "pf", "rd", "rs", "sr", "te"}

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


def read_keywords(path):
    """The table's words, each with the places where it may stand."""
    with open(path, encoding="utf-8") as file:
        entries = re.findall(r"\{'(.)', '(.)', [A-Z0-9_]+, ([A-Z| ]+)\}", file.read())
    return [(a + b, set(re.findall("[A-Z]+", places))) for a, b, places in entries]


def forms(word, places):
    """A keyword as it stands in a piece."""
    if word in GENERATORS:
        return [word, f"{word}(T ", f"{word}(T 1 ["]
    if word in SETTINGS:
        return [f"{word}("]
    spellings = [word] + {"no": ["nox"], "op": ["opx"], "re": ["re7"], "bn": ["bn6"]}.get(word, [])
    result = [f"{spelling} " for spelling in spellings if "BLOCK" in places]
    return result + [f"({spelling})" for spelling in spellings if "OUTPUT" in places]


def make(keywords):
    words = [form for word, places in keywords for form in forms(word, places)]
    words += ["te(60)", "te(1 2 60 90)", "te(0 4 60 120 e)"]
    groups = {"keywords": words, "directives": DIRECTIVES, "blocks": BLOCKS, "operators": OPERATORS, "values": VALUES,
              "generators": SPANS, "command lines": FLAGS}
    lines = ["# made by make_dictionary.py"]
    for name, entries in groups.items():
        lines += ["", f"# {name}"] + [f'"{entry}"' for entry in dict.fromkeys(entries)]
    return "\n".join(lines) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--keywords", required=True)
    action = parser.add_mutually_exclusive_group(required=True)
    action.add_argument("--write", metavar="FILE")
    action.add_argument("--check", metavar="FILE")
    options = parser.parse_args()
    keywords = read_keywords(options.keywords)
    if len(keywords) < 20:
        sys.exit(f"{options.keywords}: the keyword table is not where it was")
    unused = (GENERATORS | SETTINGS) - {word for word, _ in keywords}
    if unused:
        sys.exit(f"no keywords any more: {' '.join(sorted(unused))}")
    dictionary = make(keywords)
    if options.write:
        with open(options.write, "w", encoding="ascii") as file:
            file.write(dictionary)
        return
    with open(options.check, encoding="ascii") as file:
        if file.read() != dictionary:
            sys.exit(f"{options.check} is not up to date: run make_dictionary.py --write")


if __name__ == "__main__":
    main()
