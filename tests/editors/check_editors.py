"""Do the editors colour the language, and find errors: check_editors.py --orlo PROGRAM --explain PROGRAM [--tables PROGRAM] --work FOLDER
CHECK EDITOR

CHECK is
  places    every mark of places.orlo is as it says, and the program accepts that file
  words     every word of the program's tables is coloured as what it is, in either case, in its places and in no other
  examples  no character of an example, or of the manual's, but blanks is without a colour
  errors    an error of the program leads to its line and column, in a piece that includes nothing
  places-of-errors
            with orlo-explain errors lead to their file, line and column, also into include files and macros
  lint      the editor's own tools have nothing to say about its files
  agree     all editors colour examples and places.orlo alike; EDITOR is "all"
EDITOR is textmate, vim or emacs. FOLDER is where the modules of package-lock.json are kept between runs.
Ends with 77 when the editor is missing.
"""

import argparse
import glob
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
EDITORS = os.path.join(ROOT, "editors")
sys.dont_write_bytecode = True
sys.path.insert(0, EDITORS)
from grammar import KINDS, read, tables, words
from make_editors import camel, scope

CSD_TAG = re.compile(r'^<CsScore bin="orlo[^"]*">\n(.*)^</CsScore>$', re.M | re.S)
SAME = {"block-comment": "comment"}   # Emacs has one face for both
faults = []


class Missing(Exception):
    pass


def run(command, env=None, **options):
    made = subprocess.run(command, check=False, text=True, timeout=120, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, env=os.environ | (env or {}), **options)
    return made.returncode, made.stdout


def need(*commands):
    for command in commands:
        if not shutil.which(command):
            raise Missing(f"{command} is not installed")


# what an editor makes of files: lists of lines, a line is a list of kinds, one for each character, None where there is none

def node_modules(work):
    need("node", "npm")
    folder = os.path.join(work, "modules")
    lock = read("tests", "editors", "package-lock.json")
    stamp = os.path.join(folder, "node_modules", ".complete")
    if not os.path.isfile(stamp) or open(stamp, encoding="utf-8").read() != lock:
        os.makedirs(folder, exist_ok=True)
        for name in ("package.json", "package-lock.json"):
            shutil.copy(os.path.join(HERE, name), folder)
        status, output = run(["npm", "ci", "--ignore-scripts", "--no-audit", "--no-fund"], cwd=folder)
        if status != 0:
            raise Missing(f"npm can't bring the modules:\n{output}")
        with open(stamp, "w", encoding="utf-8") as file:
            file.write(lock)
    return os.path.join(folder, "node_modules")


def textmate(files, work):
    grammars = {"source.orlo": os.path.join(EDITORS, "textmate/orlo.tmLanguage.json"),
                "orlo.csd.injection": os.path.join(EDITORS, "textmate/orlo-csd.tmLanguage.json"),
                "source.csound.csd": os.path.join(HERE, "csd.tmLanguage.json"),
                "injectTo": {"source.csound.csd": ["orlo.csd.injection"]}}
    jobs = [["source.csound.csd" if name.endswith(".csd") else "source.orlo", name] for name in files]
    script = os.path.join(HERE, "textmate_kinds.js")
    status, output = run(["node", script, node_modules(work), json.dumps(grammars), json.dumps(jobs)])
    if status != 0:
        sys.exit(f"node ended with {status}:\n{output}")
    return json.loads(output), {scope(kind): kind for kind in KINDS}


def with_result(command, folder, env, cwd=None):
    """Runs an editor that writes JSON into the file $ORLO_KINDS."""
    result = os.path.join(folder, "kinds.json")
    status, output = run(command, env | {"ORLO_KINDS": result, "HOME": folder}, cwd=cwd)
    if status != 0 or not os.path.isfile(result):
        sys.exit(f"{command[0]} ended with {status}:\n{output}")
    with open(result, encoding="utf-8") as file:
        return json.load(file)


def vim_command(script):
    need("vim")
    plain = ["vim", "-Nu", "NONE", "-i", "NONE", "-n", "-es"]
    if run([*plain, "--cmd", "if !has('syntax') || !exists('*hlget') | cquit | endif | qall!"])[0] != 0:
        raise Missing("this vim has no syntax colouring, or is older than 8.2.3578")
    return [*plain, "--cmd", f"set runtimepath^={EDITORS}/vim | filetype plugin on | syntax on", "-S", os.path.join(HERE, script)]


def vim(files, _):
    with tempfile.TemporaryDirectory(prefix="orlo-vim-") as folder:
        found = with_result(vim_command("vim_kinds.vim"), folder, {"ORLO_JOBS": json.dumps(files)})
    return found, {camel(kind): kind for kind in KINDS}


def emacs_command(function):
    need("emacs")
    return ["emacs", "-Q", "--batch", "-L", os.path.join(EDITORS, "emacs"), "-l", os.path.join(HERE, "emacs_kinds.el"),
            "-f", function]


def emacs(files, _):
    with tempfile.TemporaryDirectory(prefix="orlo-emacs-") as folder:
        found = with_result(emacs_command("orlo-test-kinds"), folder, {"ORLO_JOBS": json.dumps(files)})
    names = {f"orlo-{kind}": kind for kind in KINDS} | {"font-lock-comment-face": "comment"}
    return found, names


READERS = {"textmate": textmate, "vim": vim, "emacs": emacs}


def kinds(editor, files, work):
    found, names = READERS[editor](files, work)
    lines_of = {}
    for name, lines in zip(files, found):
        with open(name, encoding="ascii") as file:
            texts = file.read().split("\n")
        lines_of[name] = []
        for text, runs in zip(texts, lines):
            line = [None] * len(text)
            for start, end, what in runs:
                line[start:end] = [names.get(what, what if name.endswith(".csd") else None)] * (end - start)
            lines_of[name].append(line)
        if len(lines) < len(texts) - 1:
            sys.exit(f"{editor}: {name} has {len(texts)} lines, {len(lines)} came back")
    return lines_of


def same(kind):
    return SAME.get(kind, kind)


# checks

def marks(text):
    """What a marked file says: (line, start, end, kind), lines from 0."""
    said, lines, above = [], text.split("\n"), 0
    for number, line in enumerate(lines):
        mark = re.fullmatch(r"; ?<- ([a-z-]+)|;( *)(\^+) ([a-z-]+)", line)
        if not mark:
            above = number
        elif mark[1]:
            said.append((above, 0, 1, mark[1]))
        else:
            start = 1 + len(mark[2])
            said.append((above, start, start + len(mark[3]), mark[4]))
    return said


def check_places(editor, options):
    path = os.path.join(HERE, "places.orlo")
    text = read("tests", "editors", "places.orlo")
    found = kinds(editor, [path], options.work)[path]
    said = marks(text)
    for line, start, end, kind in said:
        if kind not in KINDS:
            faults.append(f"places.orlo has a mark for {kind}, which is no kind")
        for column in range(start, end):
            what = found[line][column] if column < len(found[line]) else "nothing there"
            if same(what) != same(kind):
                faults.append(f"places.orlo:{line + 1}:{column + 1}: {kind} is coloured as {what}: {text.splitlines()[line]}")
                break
    missing = set(KINDS) - {kind for _, _, _, kind in said}
    if missing:
        faults.append(f"places.orlo has no mark for {sorted(missing)}")
    with tempfile.TemporaryDirectory(prefix="orlo-places-") as folder:
        status, output = run([options.orlo, path, os.path.join(folder, "score")], cwd=HERE)
    if status != 0:
        faults.append(f"the program does not accept places.orlo:\n{output}")
    return f"{len(said)} marks"


def word_lines(program):
    """Lines that hold one word each, and the kind that it must have: (line, column, word, kind), in a block or between blocks."""
    vocabulary = words(program)
    section, between = [], []
    for word in vocabulary.outputs:
        section += [(f"p4 ({form}) 1", 4, form, "output-type") for form in (word, word.upper())]
    for word in vocabulary.inputs:
        section += [(f"p4 {form} 1", 3, form, "input-type") for form in (word, word.upper())]
        section += [(f"p4 no c4 {form} 1", 9, form, "input-type") for form in (word, word.upper())]
    for word in vocabulary.generators:
        section += [(f"p4 {before}{form}(T 1 2)", 3 + len(before), form, "generator")
                    for form in (word, word.upper()) for before in ("", "no ", "rh ", "1 ")]
    for word in vocabulary.settings["BLOCK"]:
        section += [(f"p4 {before}{form}(2) 1", 3 + len(before), form, "setting") for form in (word, word.upper())
                    for before in ("", "no ", "rh ")]
    for word in vocabulary.settings["GLOBAL"]:
        between += [(f"{form}(2)", 0, form, "setting") for form in (word, word.upper())]
    for letter in vocabulary.curves:
        section += [(f"p4 {before}{name}(T 1 {form} 1 2)", 10 + len(before), form, "curve")
                    for form in (letter, letter.upper()) for before in ("", "no ", "rh ") for name in ("MO", "MS")]
        between += [(f"te(0 1 60 60 {form})", 13, form, "curve") for form in (letter, letter.upper())]
    for letter in vocabulary.distributions:
        section += [(f"p4 {before}{name}(T 1 [{form} 1 2] 3)", 11 + len(before), form, "distribution")
                    for form in (letter, letter.upper()) for before in ("", "no ", "rh ") for name in ("RA", "MO")]
    body = {"define": " a #b#", "undef": " a", "const": " a 1", "if": "(1)", "include": " |a|"}
    between += [(f"#{word}{body.get(word, '')}", 0, "#" + word, "directive") for word in vocabulary.directives]
    for word in set(vocabulary.outputs) - set(vocabulary.inputs):
        section.append((f"p4 {word} 1", 3, word, None))
    for word in set(vocabulary.inputs) - set(vocabulary.outputs):
        section.append((f"p4 ({word}) 1", 4, word, None))
    return section, between, vocabulary


def check_words(editor, options):
    section, between, vocabulary = word_lines(options.tables)
    every = {word for word, *_ in tables.words_about("keywords")}
    tried = {word.lower() for _, _, word, kind in section + between if kind}
    faults.extend(f"{word} is not tried" for word in sorted(every - tried))
    lines = [entry[0] for entry in between] + ["i1 = 4 0 4 {", "p2 1"] + [entry[0] for entry in section] + ["}", "rs(1)"]
    expected = list(enumerate(between)) + list(enumerate(section, len(between) + 2))
    with tempfile.TemporaryDirectory(prefix="orlo-words-") as folder:
        path = os.path.join(folder, "words.orlo")
        with open(path, "w", encoding="ascii") as file:
            file.write("\n".join(lines) + "\n")
        found = kinds(editor, [path], options.work)[path]
    for number, (line, column, word, kind) in expected:
        what = set(found[number][column:column + len(word)])
        if what != {kind} and not (kind is None and what.isdisjoint({"input-type", "output-type"})):
            faults.append(f"{line!r}: {word} is coloured as {what}, and not as {kind}")
    if found[len(lines) - 1][0] != "setting":
        faults.append("the block does not end at its brace")
    if len(tried) < 25 + len(vocabulary.curves) + len(vocabulary.directives):
        faults.append(f"only {len(tried)} words are tried")
    return f"{len(tried)} words at {len(expected)} places"


def example_files(folder):
    """The examples, the orlo text of the Csound documents and of the manual and the tutorial."""
    files = sorted(glob.glob(os.path.join(ROOT, "examples", "*.orlo")) + glob.glob(os.path.join(ROOT, "examples", "*.inc")))
    for path in sorted(glob.glob(os.path.join(ROOT, "examples", "csd", "*.csd"))):
        with open(path, encoding="ascii") as file:
            text = CSD_TAG.search(file.read())
        name = os.path.join(folder, os.path.basename(path)[:-4] + "-csd.orlo")
        with open(name, "w", encoding="ascii") as file:
            file.write(text[1])
        files.append(name)
    for page in ("manual", "tutorial"):
        blocks = re.findall(r"^```orlo(?: [^\n]*)?\n(.*?)^```", read("docs", page + ".md"), re.M | re.S)
        if not blocks:
            sys.exit(f"{page}.md has no blocks")
        name = os.path.join(folder, page + ".orlo")
        with open(name, "w", encoding="ascii") as file:
            file.write("\n".join(blocks))
        files.append(name)
    # a file of includes is no .orlo file for an editor that goes by names
    for index, path in enumerate(files):
        if path.endswith(".inc"):
            files[index] = shutil.copy(path, os.path.join(folder, os.path.basename(path) + ".orlo"))
    return files


def uncoloured(path, found):
    with open(path, encoding="ascii") as file:
        for number, (text, line) in enumerate(zip(file.read().split("\n"), found)):
            for column, (character, kind) in enumerate(zip(text, line)):
                if not character.isspace() and kind is None:
                    yield f"{os.path.basename(path)}:{number + 1}:{column + 1}: no colour for {character!r}: {text}"


def check_documents(options):
    """In a Csound document the score tag's text is coloured as it is in a file, and what stands around it as without it."""
    files = sorted(glob.glob(os.path.join(ROOT, "examples", "csd", "*.csd")))
    found = kinds("textmate", files, options.work)
    with tempfile.TemporaryDirectory(prefix="orlo-document-") as folder:
        path = os.path.join(folder, "open.csd")
        with open(path, "w", encoding="ascii") as file:
            file.write('<CsoundSynthesizer>\n<CsScore bin="orlo -s -l run.log">\nte(90)\ni1 = 4 0 4 {\np2 RA(T 1 [1 /* open\n'
                       '</CsScore>\n<CsOptions>\nte(90)\n</CsOptions>\n<CsScore bin="other">\nte(90)\n</CsScore>\n')
        open_end = kinds("textmate", [path], options.work)[path]
        expect = [(1, 1, "entity.name.tag.csound"), (1, 14, "support.function.program.orlo"), (1, 19, "constant.other.option.orlo"),
                  (1, 22, "constant.other.option.orlo"), (2, 0, "setting"), (4, 0, "pfield"), (5, 2, "entity.name.tag.csound"),
                  (7, 0, "source.csound.csd"), (10, 0, "source.csound.csd"), (11, 2, "entity.name.tag.csound")]
        faults.extend(f"open.csd:{line + 1}:{column + 1} is {open_end[line][column]}, and not {kind}"
                      for line, column, kind in expect if open_end[line][column] != kind)
    for path in files:
        with open(path, encoding="ascii") as file:
            text = file.read()
        inside = CSD_TAG.search(text)
        first, last = text[:inside.start(1)].count("\n"), text[:inside.end(1)].count("\n")
        for number in range(first, last):
            for column, kind in enumerate(found[path][number]):
                if kind not in KINDS and not text.split("\n")[number][column].isspace():
                    faults.append(f"{os.path.basename(path)}:{number + 1}:{column + 1} is {kind}: {text.splitlines()[number]}")
        if "source.csound.csd" not in sum(found[path][:first - 1], []):
            faults.append(f"{os.path.basename(path)}: the grammar of the document has coloured nothing")
    return f" and {len(files)} documents"


def check_examples(editor, options):
    with tempfile.TemporaryDirectory(prefix="orlo-examples-") as folder:
        files = example_files(folder)
        found = kinds(editor, files, options.work)
        for path in files:
            faults.extend(uncoloured(path, found[path]))
    return f"{len(files)} files" + (check_documents(options) if editor == "textmate" else "")


def check_agree(_, options):
    with tempfile.TemporaryDirectory(prefix="orlo-agree-") as folder:
        files = example_files(folder) + [os.path.join(HERE, "places.orlo")]
        found, count = {}, 0
        for editor in READERS:
            try:
                found[editor] = kinds(editor, files, options.work)
            except Missing as missing:
                print(f"without {editor}: {missing}")
        if len(found) < 2:
            raise Missing("there are no two editors to compare")
        (first, *others) = found
        for path in files:
            with open(path, encoding="ascii") as file:
                texts = file.read().split("\n")
            for editor in others:
                for number, (one, other) in enumerate(zip(found[first][path], found[editor][path])):
                    count += len(one)
                    differ = [column for column, (a, b) in enumerate(zip(one, other))
                              if same(a) != same(b) and not texts[number][column].isspace()]
                    if differ:
                        column = differ[0]
                        faults.append(f"{os.path.basename(path)}:{number + 1}:{column + 1}: {first} {one[column]}, {editor} "
                                      f"{other[column]}: {texts[number]}")
    return f"{', '.join(found)}: {count} characters"


# a warning in line 4, an error in line 5
FAULTY = "te(90)\ni1 = 4 0 4 { ; a block\n\tp2 1\n\tp3 rd(2) 1\n\tp4 RA(T .5 [1 2]) 3\n}\n"


# a warning in line 5, an error in the macro's body in the include file, one in the argument of a call
INCLUDING = ("#include |some notes.inc|\n#define run(n) #c4 $n g#\ni1 = 4 0 4 { ; a block\n\tp2 1\n\tp3 rd(2) 1\n\tp4 no $theme\n}\n"
             "i2 = 4 0 4 {\n\tp2 1\n\tp3 1\n\tp4 no /* a tune */ $run(q)\n}\n")
INCLUDED = "; phrases\n#define theme #d4\n\te h4#\n"
PLACES = [("a piece.orlo", 5, 9, "w"), ("some notes.inc", 3, 4, "e"), ("a piece.orlo", 6, 8, "n"),
          ("a piece.orlo", 11, 26, "e"), ("a piece.orlo", 2, 20, "n"), ("a piece.orlo", 11, 21, "n")]


def task_output(task, piece, env):
    """What a task of VS Code prints, as the README has it."""
    folder, name = os.path.split(piece)
    for variable, value in (("file", piece), ("fileDirname", folder), ("fileBasename", name),
                            ("fileBasenameNoExtension", os.path.splitext(name)[0])):
        task = task.replace("${" + variable + "}", value)
    return run(["sh", "-c", task], env)[1]


def matches(matcher, output):
    """[file, line, column, letter of the severity] of what a problem matcher finds, without a column where it has none."""
    return [[os.path.basename(hit[matcher["file"]]), int(hit[matcher["line"]]),
             *([int(hit[matcher["column"]])] if "column" in matcher else []), hit[matcher["severity"]][0]]
            for hit in re.finditer(matcher["regexp"], output, re.M)]


def documented_tasks():
    """The tasks.json of the README."""
    return [task for text in re.findall(r"\n\n((?:    .*\n)+)", read("editors", "README.md")) if '"tasks"' in text
            for task in json.loads(text)["tasks"]]


def found_errors(editor, folder, text, programs):
    """What an editor makes of the errors of a piece when the programs are where commands are looked for: [file, line, column, kind]."""
    piece = os.path.join(folder, "a piece.orlo")
    with open(piece, "w", encoding="ascii") as file:
        file.write(text)
    os.mkdir(os.path.join(folder, "bin"))
    for program in programs:
        os.symlink(program, os.path.join(folder, "bin", os.path.basename(program)))
    env = {"ORLO_PIECE": piece, "PATH": os.path.join(folder, "bin") + os.pathsep + os.environ["PATH"], "TMPDIR": folder}
    if editor == "textmate":
        (task,) = [task for task in documented_tasks() if ("orlo-explain" in task["command"]) == (len(programs) > 1)]
        matcher = task["problemMatcher"]
        if matcher == "$orlo":
            matcher = {"pattern": json.loads(read("editors", "vscode", "package.json"))["contributes"]["problemPatterns"][0]}
        found = matches(matcher["pattern"], task_output(task["command"], piece, env))
    elif editor == "vim":
        found = [entry[:4] for entry in with_result(vim_command("vim_errors.vim"), folder, env, folder)]
    else:
        found = [entry[:4] for entry in with_result(emacs_command("orlo-test-errors"), folder, env, folder)]
    if not os.path.isfile(os.path.join(folder, "a piece.sco")):
        faults.append("the score is not beside the piece")
    return found


def expect_errors(found, expected):
    if found != expected:
        faults.append(f"found {found}, and not {expected}")
    return f"{len(found)} messages"


def check_errors(editor, options):
    if shutil.which("orlo-explain"):
        raise Missing("orlo-explain is installed here")
    expected = {"textmate": [["a piece.orlo", 4, "W"], ["a piece.orlo", 5, "E"]],
                "vim": [["a piece.orlo", 4, 9, "W"], ["a piece.orlo", 5, 19, "E"]],
                "emacs": [["a piece.orlo", 4, 9, 1], ["a piece.orlo", 5, 19, 2]]}
    with tempfile.TemporaryDirectory(prefix="orlo-errors-") as folder:
        return expect_errors(found_errors(editor, folder, FAULTY, [options.orlo]), expected[editor])


def check_places_of_errors(editor, options):
    kinds_of = {"emacs": {"e": 2, "w": 1, "n": 0}}.get(editor, {kind: kind for kind in "ewn"})
    expected = [[*place, kinds_of[kind]] for *place, kind in PLACES]
    with tempfile.TemporaryDirectory(prefix="orlo-errors-") as folder:
        with open(os.path.join(folder, "some notes.inc"), "w", encoding="ascii") as file:
            file.write(INCLUDED)
        done = expect_errors(found_errors(editor, folder, INCLUDING, [options.orlo, options.explain]), expected)
        if editor == "vim":
            document = os.path.join(folder, "a document.csd")
            with open(document, "w", encoding="ascii") as file:
                file.write(f'<CsoundSynthesizer>\n<CsScore bin="orlo">\n{FAULTY}</CsScore>\n</CsoundSynthesizer>\n')
            env = {"ORLO_PIECE": document, "PATH": os.path.join(folder, "bin") + os.pathsep + os.environ["PATH"]}
            found = [entry[:4] for entry in with_result(vim_command("vim_errors.vim"), folder, env, folder)]
            done += " and " + expect_errors(found, [["a document.csd", 6, 9, "w"], ["a document.csd", 7, 19, "e"]])
            if os.path.exists(os.path.join(folder, "a document.sco")):
                faults.append("a score is beside the document")
        return done


def plain_snippet(body):
    """The text of a snippet as it is inserted."""
    text = "\n".join([body] if isinstance(body, str) else body)
    return re.sub(r"\$\{\d+[:|]([^},|]*)[^}]*\}|\$0", lambda hole: hole[1] or "", text)


def lint_snippets(folder, options):
    """What the snippets insert is accepted by the program, in a block or between blocks."""
    snippets = json.loads(read("editors", "vscode", "snippets", "orlo.json"))
    with open(os.path.join(folder, "name.inc"), "w", encoding="ascii") as file:
        file.write("rs(1)\n")
    for name, entry in snippets.items():
        text = plain_snippet(entry["body"])
        note = "no " if "c4" in text else ""
        if entry["prefix"].isupper() and name != "equation":
            text = f"i1 = 4 0 -8 {{\np2 1\np3 1\np4 {note}{text}\n}}"
        elif name == "equation":
            text = f"i1 = 5 0 -8 {{\np2 1\np3 1\np4 1\np5 {text}\n}}"
        with open(os.path.join(folder, "snippet.orlo"), "w", encoding="ascii") as file:
            file.write(text + "\n")
        status, output = run([options.orlo, "snippet.orlo", "snippet.sco"], cwd=folder)
        if status != 0:
            faults.append(f"snippet {name}:\n{text}\n{output}")
    return len(snippets)


def lint_textmate(folder, options):
    """What package.json names is there and is JSON, no rule of the grammar is missing or unused, the snippets are right."""
    extension = os.path.join(EDITORS, "vscode")
    contributes = json.loads(read("editors", "vscode", "package.json"))["contributes"]
    named = [entry["path"] for part in ("grammars", "snippets") for entry in contributes[part]]
    named += [entry["configuration"] for entry in contributes["languages"]]
    for name in named:
        with open(os.path.join(extension, name), encoding="utf-8") as file:
            json.load(file)
    grammar = json.loads(read("editors", "textmate", "orlo.tmLanguage.json"))
    included, repository = set(re.findall(r'"include": "#([^"]+)"', json.dumps(grammar))), set(grammar["repository"])
    faults.extend(f"no rule {name}" for name in sorted(included - repository))
    faults.extend(f"rule {name} is nowhere included" for name in sorted(repository - included))
    return f"{len(named)} files, {len(repository)} rules, {lint_snippets(folder, options)} snippets"


def lint_vim(folder, _):
    """Vim says nothing when it reads the files, and takes back what it has set."""
    script = os.path.join(folder, "lint.vim")
    with open(script, "w", encoding="ascii") as file:
        file.write("edit piece.orlo\nlet s:said = execute('messages')\nlet s:is = [&filetype, &commentstring, &makeprg]\n"
                   "compiler orlo\nlet s:is += [&makeprg]\nset filetype=text\nlet s:is += [&commentstring]\n"
                   "call writefile([json_encode([s:said, v:errmsg] + s:is)], $ORLO_KINDS)\nqall!\n")
    said, error, filetype, comment, _, make, after = with_result(vim_command(script), folder, {}, folder)
    faults.extend(f"Vim says {text}" for text in (said.strip(), error) if text)
    if (filetype, comment) != ("orlo", "; %s") or not re.match(r"\(?orlo", make) or after == comment:
        faults.append(f"filetype {filetype}, commentstring {comment}, makeprg {make}, and commentstring {after} afterwards")
    return "3 files"


def lint_emacs(folder, _):
    """The byte compiler and checkdoc have nothing to say."""
    need("emacs")
    source = shutil.copy(os.path.join(EDITORS, "emacs", "orlo-mode.el"), folder)
    compiled = run(["emacs", "-Q", "--batch", "--eval", "(setq byte-compile-error-on-warn t)", "-f", "batch-byte-compile", source])
    if compiled[0] != 0 or compiled[1].strip() or not os.path.isfile(source + "c"):
        faults.append(f"the byte compiler says:\n{compiled[1]}")
    _, output = run(["emacs", "-Q", "--batch", "--eval", "(setq checkdoc-spellcheck-documentation-flag nil)",
                     "--eval", f'(checkdoc-file "{source}")'])
    if output.strip():
        faults.append(f"checkdoc says:\n{output}")
    return "1 file"


def check_lint(editor, options):
    with tempfile.TemporaryDirectory(prefix="orlo-lint-") as folder:
        return {"textmate": lint_textmate, "vim": lint_vim, "emacs": lint_emacs}[editor](folder, options)


CHECKS = {"places": check_places, "words": check_words, "examples": check_examples, "errors": check_errors,
          "places-of-errors": check_places_of_errors, "lint": check_lint, "agree": check_agree}


def main():
    parser = argparse.ArgumentParser(description="try what editors make of the language")
    parser.add_argument("--orlo", required=True, help="the program")
    parser.add_argument("--explain", required=True, help="the program orlo-explain")
    tables.add_option(parser)
    parser.add_argument("--work", required=True, help="folder for node modules")
    parser.add_argument("check", choices=CHECKS)
    parser.add_argument("editor", choices=[*READERS, "all"])
    options = parser.parse_args()
    options.orlo, options.explain = os.path.abspath(options.orlo), os.path.abspath(options.explain)
    try:
        done = CHECKS[options.check](options.editor, options)
    except Missing as missing:
        print(f"skipped: {missing}")
        return 77
    print("\n".join(faults[:40] + [f"{len(faults)} faults"] if faults else [f"{options.editor}: {done}"]))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
