"""Writes the files of the editors from the one description in grammar.py: make_editors.py [--tables PROGRAM] [--check]

  textmate/orlo.tmLanguage.json           the language, and in vscode/syntaxes/ again
  textmate/orlo-csd.tmLanguage.json       the same inside <CsScore bin="orlo ..."> of a Csound document
  vscode/package.json                     from templates/package.json.in
  vim/syntax/orlo.vim                     from templates/orlo.vim.in
  emacs/orlo-mode.el                      from templates/orlo-mode.el.in

With --check nothing is written, and a file that differs is a fault.
"""

import argparse
import json
import os
import re
import sys

try:
    from re import _parser as sre_parse
except ImportError:   # before Python 3.11
    import sre_parse

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, HERE)
from grammar import KINDS, either_case, grammar, read, tables

CSOUND_SCOPES = ["source.csound.csd", "source.csound-document"]   # what grammars of Csound documents call them


def class_of(items, special, newline):
    """A character class; special escapes one character, newline is what a negated class must refuse besides."""
    negated = items and str(items[0][0]) == "NEGATE"
    parts, plain = [], []
    for op, value in items[1:] if negated else items:
        if str(op) == "RANGE":
            parts.append(f"{chr(value[0])}-{chr(value[1])}")
        else:
            plain.append(chr(value))
    # "]" comes first, "-" last, "^" not first: right in every dialect that has no escapes in classes
    first = "]" if "]" in plain else ""
    last = "".join(c for c in "^-" if c in plain)
    middle = "".join(parts) + "".join(c for c in plain if c not in "]^-")
    if not negated and last == "^" and not first + middle:
        return special("^")
    return "[" + ("^" if negated else "") + first + special(middle) + (newline if negated else "") + last + "]"


def translate(pattern, dialect):
    """A pattern in Vim's or in Emacs' dialect."""
    def one(op, value):
        op = str(op)
        if op == "LITERAL":
            return dialect["literal"](chr(value))
        if op == "ANY":
            return "."
        if op == "AT":
            return "$"
        if op == "NOT_LITERAL":
            return class_of([("NEGATE", None), ("LITERAL", value)], dialect["in_class"], dialect["newline"])
        if op == "IN":
            return class_of(value, dialect["in_class"], dialect["newline"])
        if op == "BRANCH":
            return dialect["open"] + "\\|".join(sequence(branch) for branch in value[1]) + "\\)"
        if op == "SUBPATTERN":
            inner = sequence(value[3])
            return inner if len(value[3]) == 1 and str(value[3][0][0]) == "BRANCH" else dialect["open"] + inner + "\\)"
        if op == "MAX_REPEAT":
            low, high, what = value
            many = dialect["repeats"][(low, 1 if high == 1 else 2)]
            return sequence(what) + many
        raise SystemExit(f"no translation for {op} in {pattern}")

    def sequence(parts):
        return "".join(one(op, value) for op, value in parts)

    return sequence(sre_parse.parse(pattern))


ASCII = frozenset(map(chr, range(128)))


def class_members(items):
    members = set()
    for op, value in items:
        if str(op) == "RANGE":
            members |= {chr(code) for code in range(value[0], value[1] + 1)}
        elif str(op) == "LITERAL":
            members.add(chr(value))
    return ASCII - members if items and str(items[0][0]) == "NEGATE" else members


def beginnings(parts):
    """The characters that a pattern can begin with, and whether it can be empty."""
    found = set()
    for op, value in parts:
        op, empty = str(op), False
        if op == "LITERAL":
            found.add(chr(value))
        elif op == "ANY":
            found |= ASCII
        elif op == "NOT_LITERAL":
            found |= ASCII - {chr(value)}
        elif op == "IN":
            found |= class_members(value)
        else:
            inner = [value[2] if op == "MAX_REPEAT" else value[3]] if op != "BRANCH" else value[1]
            each = [beginnings(one) for one in inner]
            found = found.union(*(one[0] for one in each))
            empty = any(one[1] for one in each) or op == "MAX_REPEAT" and value[0] == 0
        if not empty:
            return found, False
    return found, True


VIM = {"literal": lambda c: "\\" + c if c in r'.*[]^$~\/"' else c, "in_class": lambda text: text.replace("\\", "\\\\"),
       "newline": "", "open": r"\%(", "repeats": {(0, 1): r"\=", (0, 2): "*", (1, 2): r"\+"}}
EMACS = {"literal": lambda c: "\\" + c if c in r".*+?[]^$\\" else c, "in_class": lambda text: text,
         "newline": "\n", "open": r"\(?:", "repeats": {(0, 1): "?", (0, 2): "*", (1, 2): "+"}}


def camel(kind):
    return "orlo" + "".join(part.capitalize() for part in kind.split("-"))


# TextMate

def scope(kind):
    return KINDS[kind][0] + ".orlo"


def oniguruma(pattern, ahead="", behind=""):
    return (f"(?<={behind})" if behind else "") + pattern + (f"(?={ahead})" if ahead else "")


def textmate_rule(rule):
    if not rule.context:
        return {"name": scope(rule.kind), "match": oniguruma(rule.pattern, rule.ahead, rule.behind)}
    made = {"begin": oniguruma(rule.pattern, rule.ahead, rule.behind), "beginCaptures": {"0": {"name": scope(rule.kind)}},
            "end": "|".join(oniguruma(*end) for end in rule.ends), "endCaptures": {"0": {"name": scope(rule.end_kind)}}}
    if rule.content:
        made["contentName"] = scope(rule.content)
    return made | {"patterns": [{"include": "#in-" + rule.context}]}


def textmate(made):
    repository = {f"in-{name}": {"patterns": [{"include": "#" + rule} for rule in rules]} for name, rules in made.contexts.items()}
    repository |= {name: textmate_rule(rule) for name, rule in made.rules.items()}
    return {"$schema": "https://raw.githubusercontent.com/martinring/tmlanguage/master/tmlanguage.json", "name": "orlo",
            "scopeName": "source.orlo", "fileTypes": ["orlo"], "patterns": [{"include": "#in-top"}], "repository": repository}


def injection(vocabulary):
    """The grammar that finds orlo's text in a Csound document. Its lines end at the closing tag, whatever is still open."""
    option = "|".join(f"-{letter}" + (r"\s*[^\s\"]+" if name else "") for letter, name in vocabulary.options.items())
    return {
        "name": "orlo in a Csound document", "scopeName": "orlo.csd.injection",
        "injectionSelector": ", ".join(f"L:{name} - comment - source.orlo" for name in CSOUND_SCOPES),
        "patterns": [{
            "begin": r'^[ \t]*(<)(CsScore)[ \t]+(bin)(=)(")([^"\s]*orlo)\b([^"]*)(")[ \t]*(>)',
            "beginCaptures": {
                "1": {"name": "punctuation.definition.tag.begin.csound"}, "2": {"name": "entity.name.tag.csound"},
                "3": {"name": "entity.other.attribute-name.csound"}, "4": {"name": "punctuation.separator.key-value.csound"},
                "5": {"name": "punctuation.definition.string.begin.csound"}, "6": {"name": "support.function.program.orlo"},
                "7": {"patterns": [{"match": rf"(?<=\s)(?:{option})(?=\s|$)", "name": "constant.other.option.orlo"}]},
                "8": {"name": "punctuation.definition.string.end.csound"}, "9": {"name": "punctuation.definition.tag.end.csound"}},
            "while": r"^(?!</CsScore>)",
            "contentName": "source.orlo",
            "patterns": [{"include": "source.orlo"}]}]}


# Vim

def vim(pattern, ahead="", behind=""):
    behind = rf"\%({translate(behind, VIM)}\)\@1<=" if behind else ""
    return '"' + behind + translate(pattern, VIM) + (rf"\%({translate(ahead, VIM)}\)\@=" if ahead else "") + '"'


def vim_group(name):
    return "orlo_" + name


def vim_rule(rule, top):
    group, contained = vim_group(rule.name), "" if top else " contained"
    if not rule.context:
        return f"syntax match {group} {vim(rule.pattern, rule.ahead, rule.behind)}{contained}"
    end_group = f" matchgroup={camel(rule.end_kind)}" if rule.end_kind != rule.kind else ""
    ends = "".join(f" end={vim(*end)}" for end in rule.ends)
    alone = " excludenl" if any("$" in end[0] for end in rule.ends) else ""   # leaves the end of the line to what is around it
    return (f"syntax region {group}{alone} matchgroup={camel(rule.kind)} start={vim(rule.pattern, rule.ahead, rule.behind)}"
            f"{end_group}{ends} contains=@orlo_in_{rule.context}{contained}")


def vim_files(made):
    top = made.contexts["top"]
    items = [vim_rule(rule, name in top) for name, rule in reversed(made.rules.items())]   # the last one comes first for Vim
    clusters = [f"syntax cluster orlo_in_{name} contains=" + (",".join(vim_group(rule) for rule in rules) or "NONE")
                for name, rules in made.contexts.items()]
    links = [f"highlight default link {vim_group(name)} {camel(rule.content or rule.kind)}"
             for name, rule in made.rules.items() if rule.content or not rule.context]
    links += [f"highlight default link {camel(kind)} {look}" for kind, (_, look, _) in KINDS.items()]
    return {"ITEMS": "\n".join(items), "CLUSTERS": "\n".join(clusters), "LINKS": "\n".join(links)}


# Emacs

def lisp(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n") + '"'


def emacs(pattern, ahead=""):
    """The text that is coloured is the first group."""
    return lisp(rf"\({translate(pattern, EMACS)}\)" + (rf"\(?:{translate(ahead, EMACS)}\)" if ahead else ""))


def face(kind):
    return "font-lock-comment-face" if kind in ("comment", "block-comment") else f"orlo-{kind}"


def emacs_rule(rule):
    first, _ = beginnings(sre_parse.parse(rule.pattern))
    parts = [rule.name, face(rule.kind), emacs(rule.pattern, rule.ahead),
             lisp(translate(rule.behind, EMACS)) if rule.behind else "nil",
             lisp("".join(sorted(first))) if len(first) < 100 else "nil"]
    if rule.context:
        ends = " ".join(emacs(*end) for end in rule.ends)
        parts += [rule.context, f"({ends})", face(rule.end_kind), face(rule.content) if rule.content else "nil"]
    return "    (" + " ".join(parts) + ")"


def emacs_files(made):
    rules = "\n".join(emacs_rule(rule) for rule in made.rules.values())
    contexts = "\n".join(f"    ({name}{''.join(' ' + rule for rule in rules)})" for name, rules in made.contexts.items())
    faces = "\n\n".join(f"(defface orlo-{kind} '((t :inherit {look}))\n  \"Face for {kind.replace('-', ' ')} text in orlo.\")"
                        for kind, (_, _, look) in KINDS.items() if "font-lock" not in face(kind))
    return {"RULES": rules.lstrip(), "CONTEXTS": contexts.lstrip(), "FACES": faces}


def filled(template, values):
    """A template with @NAME@ replaced."""
    text = re.sub(r"@([A-Z]+)@", lambda name: values[name[1]], read("editors", "templates", template + ".in"))
    return text


def files(program):
    made = grammar(program)
    version = re.search(r"project\(orlo\s+VERSION ([\d.]+)", read("CMakeLists.txt"))[1]
    values = vim_files(made) | emacs_files(made) | {"VERSION": version, "SCOPES": json.dumps(CSOUND_SCOPES)}
    language = json.dumps(textmate(made), indent=1, ensure_ascii=False) + "\n"
    document = json.dumps(injection(made.vocabulary), indent=1, ensure_ascii=False) + "\n"
    return {"textmate/orlo.tmLanguage.json": language, "textmate/orlo-csd.tmLanguage.json": document,
            "vscode/syntaxes/orlo.tmLanguage.json": language, "vscode/syntaxes/orlo-csd.tmLanguage.json": document,
            "vscode/package.json": filled("package.json", values),
            "vim/syntax/orlo.vim": filled("orlo.vim", values), "emacs/orlo-mode.el": filled("orlo-mode.el", values)}


def main():
    parser = argparse.ArgumentParser(description="write the files of the editors")
    tables.add_option(parser)
    parser.add_argument("--check", action="store_true", help="write nothing, compare")
    options = parser.parse_args()
    different = []
    for name, text in files(options.tables).items():
        path = os.path.join(HERE, name)
        if not options.check:
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "w", encoding="utf-8") as file:
                file.write(text)
        elif not os.path.isfile(path) or read("editors", name) != text:
            different.append(name)
    for name in different:
        print(f"editors/{name} is not what the tables say: run editors/make_editors.py")
    return 1 if different else 0


if __name__ == "__main__":
    sys.exit(main())
