"""What the words of the language are, and where each may stand: the one description that all editors get.

The words come from the program's own tables, which orlo-tables prints; their forms from docs/keywords.tsv.

A rule is a match or a region. Both have a pattern, what must stand behind it ("ahead") and before it ("behind"), and
the kind that the text is coloured as. A region goes on to its end, and has a context: the rules that hold inside. Rules
that stand at one place are tried in the order in which they are written here. A pattern never reaches beyond its line.
"""

import os
import re
import sys
from dataclasses import dataclass, field

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
sys.path.insert(0, os.path.join(ROOT, "src", "tables"))
import tables

# kind: TextMate scope, Vim group that it looks like, Emacs face that it looks like
KINDS = {
    "comment": ("comment.line.semicolon", "Comment", "font-lock-comment-face"),
    "block-comment": ("comment.block", "Comment", "font-lock-comment-face"),
    "ignored": ("comment.line.ignored", "Comment", "font-lock-comment-face"),
    "directive": ("keyword.control.directive", "PreProc", "font-lock-preprocessor-face"),
    "file": ("string.quoted.other.file", "String", "font-lock-string-face"),
    "macro-mark": ("punctuation.definition.macro", "PreProc", "font-lock-preprocessor-face"),
    "macro-name": ("entity.name.function.macro", "Macro", "font-lock-function-name-face"),
    "macro-call": ("entity.name.function.macro.call", "Macro", "font-lock-function-name-face"),
    "macro-text": ("string.unquoted.macro", "String", "font-lock-string-face"),
    "parameter": ("variable.parameter", "Identifier", "font-lock-variable-name-face"),
    "constant": ("variable.other.constant", "Identifier", "font-lock-variable-name-face"),
    "score-line": ("string.unquoted.score", "String", "font-lock-string-face"),
    "block": ("storage.type.block", "Statement", "font-lock-keyword-face"),
    "pfield": ("entity.name.tag.pfield", "Label", "font-lock-keyword-face"),
    "output-type": ("storage.type.output", "StorageClass", "font-lock-type-face"),
    "input-type": ("storage.type.input", "Type", "font-lock-type-face"),
    "generator": ("support.function.generator", "Function", "font-lock-builtin-face"),
    "setting": ("keyword.other.setting", "Statement", "font-lock-keyword-face"),
    "span": ("constant.language.span", "Constant", "font-lock-constant-face"),
    "curve": ("constant.language.curve", "Constant", "font-lock-constant-face"),
    "distribution": ("constant.language.distribution", "Constant", "font-lock-constant-face"),
    "choice": ("constant.language.choice", "Constant", "font-lock-constant-face"),
    "note": ("constant.other.note", "Character", "font-lock-string-face"),
    "rest": ("constant.language.rest", "Constant", "font-lock-constant-face"),
    "last-value": ("constant.language.last", "Constant", "font-lock-constant-face"),
    "rhythm": ("constant.numeric.rhythm", "Number", "default"),
    "number": ("constant.numeric", "Number", "default"),
    "term": ("variable.language.term", "Constant", "font-lock-constant-face"),
    "operator": ("keyword.operator", "Operator", "default"),
    "repeat": ("keyword.operator.repeat", "Operator", "font-lock-builtin-face"),
    "chord": ("keyword.operator.chord", "Operator", "font-lock-builtin-face"),
    "loop": ("keyword.operator.loop", "Operator", "font-lock-builtin-face"),
    "separator": ("punctuation.separator", "Delimiter", "default"),
    "bracket": ("punctuation.section", "Delimiter", "default"),
}

# what stands behind a directive, in the names of the contexts below; a directive of the program that is missing here is a fault
DIRECTIVES = {"define": "define", "undef": "undef", "const": "const", "if": "condition", "endif": None, "include": "include"}


def read(*names):
    with open(os.path.join(ROOT, *names), encoding="utf-8") as file:
        return file.read()


@dataclass
class Words:
    """The words of the language by kind. Lower case, though either case may be written."""
    generators: list
    settings: dict     # place -> words
    inputs: list
    outputs: list
    suffixes: dict     # word -> what may follow it directly, a pattern
    curves: str
    distributions: str
    directives: list
    options: dict      # letter -> whether a file name follows


def words(program=None):
    """Reads the words from the program's tables; ends the run if the forms are not those of the same words."""
    printed = tables.read(program)
    table = {row["word"]: (row["code"], row["places"]) for row in printed["keywords"]}
    forms = {word: form for word, form, *_ in tables.words_about("keywords")}
    if set(forms) != set(table):
        raise SystemExit(f"the program's words and keywords.tsv differ in {sorted(set(forms) ^ set(table))}")

    def chosen(condition):
        return [word for word, (code, places) in table.items() if condition(word, code, places)]

    def suffix(form):
        return "x?" if re.search(r"\b..x\b", form) else "[0-7]?" if re.search(r"\b..N", form) else ""

    settings = {place: chosen(lambda word, code, places, at=place: at in places and re.fullmatch(word + r"\(.*\)", forms[word]))
                for place in ("GLOBAL", "BLOCK")}
    directives = [row["word"] for row in printed["directives"]]
    if set(directives) != set(DIRECTIVES):
        raise SystemExit(f"directives of the program and of grammar.py differ: {sorted(set(directives) ^ set(DIRECTIVES))}")
    return Words(
        generators=chosen(lambda word, code, places: forms[word] == word.upper() + "(...)"),
        settings=settings,
        inputs=chosen(lambda word, code, places: code.startswith("TYPE_") and "BLOCK" in places),
        outputs=chosen(lambda word, code, places: code.startswith("TYPE_") and "OUTPUT" in places),
        suffixes={word: suffix(form) for word, form in forms.items()},
        curves="".join(row["letter"] for row in printed["curves"]),
        distributions="".join(row["letter"] for row in sorted(printed["distributions"], key=lambda row: row["code"])),
        directives=directives,
        options={row["letter"]: bool(row["value"]) for row in printed["options"]},
    )


@dataclass
class Rule:
    name: str
    kind: str            # of the text that the pattern matches
    pattern: str
    ahead: str = ""      # must stand behind the text
    behind: str = ""     # must stand before it; one character
    ends: list = field(default_factory=list)   # of a region: (pattern, ahead)
    end_kind: str = ""
    content: str = ""    # kind of what no rule matches inside
    context: str = ""    # the rules inside


NUMBER = r"[-+]?(?:[0-9]+\.?[0-9]*|\.[0-9]+)"
UNSIGNED = r"(?:[0-9]+\.?[0-9]*|\.[0-9]+)"
NAME = r"[A-Za-z][A-Za-z0-9_]*"
NOTE = r"[A-Ga-g][-sfn+]*[0-9]?"
NO_WORD = r"[^A-Za-z0-9_]|$"
NEXT_SECTION = r"p[0-9$]"
MODES = ("number", "note", "rhythm")   # how the values of a list are written


def either_case(word):
    """A pattern for a word in either case."""
    return "".join(f"[{c.upper()}{c}]" if c.isalpha() else c for c in word)


def any_of(alternatives):
    return "(?:" + "|".join(alternatives) + ")" if len(alternatives) > 1 else alternatives[0]


def letters(which):
    return "[" + which.lower() + which.upper() + "]"


def with_suffix(vocabulary, word):
    return either_case(word) + vocabulary.suffixes[word]


class Grammar:
    """Rules in the order of their precedence, and contexts: names of rules, in the same order."""

    def __init__(self, vocabulary):
        self.rules, self.contexts = {}, {}
        self.vocabulary = vocabulary
        self.make_rules()
        self.make_contexts()

    def match(self, name, kind, pattern, ahead="", behind=""):
        self.rules[name] = Rule(name, kind, pattern, ahead, behind)

    def region(self, name, kind, pattern, ends, context, ahead="", end_kind="", content=""):
        self.rules[name] = Rule(name, kind, pattern, ahead, "", ends, end_kind or kind, content, context)

    def context(self, name, *rules):
        """Rules may be given in any order."""
        order = list(self.rules)
        self.contexts[name] = sorted({rule for rule in rules if rule}, key=order.index)

    def make_rules(self):
        self.comments_and_directives()
        self.macros_and_constants()
        self.blocks()
        self.words_of_sections()
        self.generators()
        self.values()

    def comments_and_directives(self):
        match, region = self.match, self.region
        match("comment", "comment", r";.*")
        region("block_comment", "block-comment", r"/\*", [(r"\*/", "")], "block_comment", content="block-comment")
        match("comment_in_line", "block-comment", r"/\*[^*]*\*/")   # in a score line
        region("direct", "score-line", ">", [("$", "")], "direct", content="score-line")
        command = any_of([either_case(word) + r"\(" for word in self.vocabulary.settings["GLOBAL"]])
        ends = {"define": [("", "#")], "const": [("", f"[#>]|{command}"), ("$", "")], "undef": [("", "[#>]"), ("$", "")],
                "condition": [(r"\)", ""), ("$", "")], "include": [("", r"[^ \t|]"), ("$", "")]}
        for word in self.vocabulary.directives:
            if DIRECTIVES[word]:
                region(word, "directive", "#" + word, ends.get(DIRECTIVES[word], [("$", "")]), DIRECTIVES[word],
                       ahead=r"[ \t(|$~]|$", end_kind="bracket" if word == "if" else "directive")
            else:
                match(word, "directive", "#" + word)
        region("file", "file", r"\|", [(r"\|", ""), ("$", "")], "file", content="file")
        region("macro_body", "macro-mark", "#", [("#", "")], "macro_body", content="macro-text")

    def macros_and_constants(self):
        match, region = self.match, self.region
        region("call", "macro-call", rf"\${NAME}\(", [(r"\)", "")], "arguments", content="macro-text")
        match("macro", "macro-call", rf"\${NAME}")
        region("equation", "constant", r"~\[", [(r"\]", ""), ("$", "")], "equation")
        match("constant", "constant", rf"~(?:{NAME}|@[1-4])")
        match("constant_of_macro", "constant", "~", ahead=r"\$")
        region("parameters", "bracket", r"\(", [(r"\)", ""), ("", "#")], "parameters")
        match("macro_name", "macro-name", NAME)
        match("parameter", "parameter", NAME)
        match("constant_name", "constant", NAME)
        match("term", "term", r"\?|@[12]")

    def blocks(self):
        match, region = self.match, self.region
        match("ignored", "ignored", r".+", behind=r"\}")
        region("instrument", "block", "i", [(r"\}", "")], "header", ahead=r"[ \t]*(?:[-0-9$~]|$)", end_kind="bracket")
        region("braces", "bracket", r"\{", [("", r"\}")], "block")
        match("equals", "operator", "=")
        match("sign", "operator", "[-+]", ahead="[$~]")
        match("any_block", "block", "i", ahead="[-0-9$]")
        match("stray_brace", "bracket", "[{}]")   # of a block whose header is in a macro
        for name, pattern, ahead in (("section", "p[0-9]+", ""), ("section_of_macro", "p", r"\$")):
            region(name, "pfield", pattern, [("", rf"{NEXT_SECTION}|\}}")], "section_number", ahead=ahead)
        match("pfield", "pfield", "[pP][0-9]+")
        region("output", "bracket", r"\(", [(r"\)", ""), ("", r"\}")], "output")

    def words_of_sections(self):
        vocabulary = self.vocabulary
        inputs = [with_suffix(vocabulary, word) for word in vocabulary.inputs]
        ends = [("", any_of([NEXT_SECTION, r"\}", *(either_case(word) for word in vocabulary.inputs)]))]
        listed = {"no": "note", "rh": "rhythm"}
        for word, mode in listed.items():
            self.region(f"{mode}s", "input-type", with_suffix(vocabulary, word), ends, f"section_{mode}")
        plain = [with_suffix(vocabulary, word) for word in vocabulary.inputs if word not in listed]
        self.match("input_type", "input-type", any_of(plain))
        self.match("output_type", "output-type", any_of([with_suffix(vocabulary, word) for word in vocabulary.outputs]))
        self.match("any_type", "input-type", any_of(inputs), ahead=NO_WORD)
        for name, place, block_only in (("setting", "GLOBAL", False), ("setting_of_section", "BLOCK", False),
                                        ("setting_of_block", "GLOBAL", True)):
            chosen = [word for word in vocabulary.settings[place] if word != "te" and (not block_only or word in ("rs", "rd"))]
            self.region(name, "setting", any_of([either_case(word) for word in chosen]), [(r"\)", ""), ("", r"\}")], "setting",
                        ahead=r"[ \t]*(?:[($]|$)", end_kind="bracket")
        self.region("tempo", "setting", either_case("te"), [(r"\)", "")], "tempo", ahead=r"[ \t]*(?:[($]|$)", end_kind="bracket")
        every = sorted(set(vocabulary.settings["GLOBAL"] + vocabulary.settings["BLOCK"]))
        self.match("any_setting", "setting", any_of([either_case(word) for word in every]), ahead=r"[ \t]*\(")
        self.match("any_generator", "generator", any_of([either_case(word) for word in vocabulary.generators]), ahead=r"[ \t]*\(")

    def generators(self):
        curve, distribution = letters(self.vocabulary.curves), letters(self.vocabulary.distributions)
        for word in self.vocabulary.generators:
            for mode in MODES:
                self.region(f"{word}_{mode}", "generator", either_case(word), [(r"\)", ""), ("", r"\}")], f"{word}_{mode}",
                            ahead=r"[ \t]*(?:\(|$)", end_kind="bracket")
        for name, pattern in (("weight_and_curve", NUMBER), ("constant_and_curve", f"~{NAME}")):
            self.region(name, "number" if pattern == NUMBER else "constant", pattern, [(curve, ""), ("$", "")], "to_curve",
                        ahead=rf"[ \t,/]+{curve}", end_kind="curve")
        self.match("curve", "curve", curve)
        for mode in MODES:
            self.region(f"range_{mode}", "bracket", r"\[", [(r"\]", ""), ("", r"[})]")], f"range_{mode}",
                        ahead=rf"[ \t]*{distribution}")
            self.region(f"distribution_{mode}", "distribution", distribution, [("", r"[\])}]")], f"values_{mode}")
            self.region(f"brackets_{mode}", "bracket", r"\[", [(r"\]", ""), ("", r"[})]")], f"values_{mode}")
        self.region("ex_brackets", "bracket", r"\[", [(r"\]", ""), ("", r"[})]")], "ex_equation")
        self.match("fraction", "operator", r"\*", behind="T")
        self.match("choice", "choice", r"[x*]")
        self.match("rounding", "choice", "[iIfF]")
        self.match("span", "span", "T")
        self.match("star", "operator", r"\*")

    def values(self):
        match = self.match
        match("rest", "rest", "[rR]")
        match("any_rest", "rest", "[rR]", ahead=NO_WORD)
        match("note", "note", NOTE)
        match("any_note", "note", NOTE, ahead=NO_WORD)
        match("last_value", "last-value", "[zZ]")
        match("tie", "chord", ",", ahead="[-+0-9]", behind="[0-9.]")
        match("rhythm", "rhythm", r"[-+]?[0-9]+\.*")
        match("repeat", "repeat", "x[0-9]*")
        match("any_repeat", "repeat", "x[0-9]*", ahead=NO_WORD)
        match("number", "number", NUMBER)
        match("unsigned", "number", UNSIGNED)
        match("any_word", "macro-text", NAME)
        match("operator", "operator", r"[-+*/%]")
        match("slashes", "repeat", "//+")
        match("argument_separator", "separator", "'")
        match("chord", "chord", "[':]")
        match("loop", "loop", "[<>]")
        match("separator", "separator", "[,/]")
        match("parenthesis", "bracket", r"\(")
        match("any_bracket", "bracket", r"[\]\[(){}]")
        match("any_operator", "operator", "[-+*=%?@]")

    def make_contexts(self):
        context = self.context
        comments, calls = ["comment", "block_comment"], ["call", "macro", "equation", "constant", "constant_of_macro"]
        lines = ["if", "endif", "include"]
        context("block_comment", "block_comment")
        context("file")
        context("top", *comments, *calls, *self.vocabulary.directives, "direct", "macro_body", "setting", "tempo", "instrument",
                "section", "section_of_macro", "stray_brace", "ignored")
        context("direct", "comment", "comment_in_line", *calls)
        context("define", *comments, "parameters", "macro_name")
        context("parameters", *comments, "parameter", "separator", "argument_separator")
        context("undef", "macro_name")
        context("const", *comments, *calls, "constant_name", "number")
        context("condition", *comments, *calls, "parenthesis", "number")
        context("include", "file")
        flat = [*calls, "any_block", "any_type", "any_setting", "any_generator", "pfield", "any_rest", "any_note",
                "any_repeat", "span",
                "number", "any_word", "slashes", "loop", "separator", "any_operator"]
        context("macro_body", *comments, *flat, "chord", "any_bracket")
        context("arguments", *flat, "argument_separator", "chord", "any_bracket")
        context("equation", *calls, "constant_name", "term", "unsigned", "operator")
        context("header", *comments, *lines, *calls, "equals", "sign", "number", "separator", "braces")
        context("block", *comments, *lines, *calls, "setting_of_block", "section", "section_of_macro")
        context("output", *calls, "output_type")
        context("setting", *comments, *lines, *calls, "parenthesis", "number", "separator")
        context("tempo", *comments, *lines, *calls, "parenthesis", "number", "curve", "separator")
        context("to_curve", "separator")
        self.lists([*comments, *lines, *calls, "sign"])

    def lists(self, common):
        context = self.context
        written = {"number": ["number"], "note": ["rest", "note"], "rhythm": ["rhythm", "tie"]}
        marks = ["last_value", "slashes", "repeat", "chord", "loop", "separator"]
        for mode in MODES:
            generators = [f"{word}_{mode}" for word in self.vocabulary.generators]
            types = ["output", "notes", "rhythms", "input_type"] if mode == "number" else []
            context(f"section_{mode}", *common, *types, "setting_of_section", *generators, *written[mode], *marks)
            values = [*common, *written[mode], "last_value", "separator", "chord"]
            context(f"values_{mode}", *values)
            context(f"range_{mode}", f"distribution_{mode}")
            inside = [*common, "parenthesis", "span", "fraction", "number", "last_value", "star", "separator",
                      *(written[mode] if mode == "note" else [])]
            # on a line of its own a curve is taken for a note, where there are notes
            curve = ["weight_and_curve", "constant_and_curve", *(["curve"] if mode != "note" else [])]
            own = {"ra": [f"range_{mode}"], "mo": [f"range_{mode}", *curve], "ms": curve, "se": ["choice"],
                   "s2": ["choice", "chord"]}
            for word in self.vocabulary.generators:
                if word == "ex":
                    context(f"ex_{mode}", *common, "parenthesis", "span", "fraction", "rounding", "number", "pfield", "separator",
                            "ex_brackets")
                else:
                    context(f"{word}_{mode}", *inside, f"brackets_{mode}", *own.get(word, []))
        context("ex_equation", *common, "pfield", "unsigned", "operator")


def grammar(program=None):
    made = Grammar(words(program))
    for name, rules in made.contexts.items():
        for rule in rules:
            if made.rules[rule].context and made.rules[rule].context not in made.contexts:
                raise SystemExit(f"context {name}: rule {rule} wants {made.rules[rule].context}")
    return made
