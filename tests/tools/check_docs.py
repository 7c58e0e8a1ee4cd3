"""The examples on the pages do what the pages show: check_docs.py --orlo PROGRAM PAGE...

An example is a fenced block whose first word says what it is:

  orlo name=N [status=1]    an input; it is kept as N.orlo in the example's own folder
  orlo of=N file=F          a file that the input includes
  csd name=N [status=1]     a Csound document: the text of its score tag is the input, the options there are used
  python of=N file=F        a script beside the input
  orc file=F                the orchestra that the examples of the page are played with
  sh of=N                   what to type: the line that begins with "orlo" says how the input is run
  score of=N                what comes out, without the blanks at the ends of lines
  values of=N p=4 [i=2]     one p-field of all events, or of those of instrument 2, in their order;
                            p=1 is the instrument number
  bytes of=N                what comes out, in hexadecimal
  screen of=N               what stands on the screen behind the banner
  stdout of=N               what stands on the standard output
  roll of=N                 what orlo-view shows of the input, 60 columns and 12 rows
  trace of=N                what option -x has written to the file N.exp
  console of=N              lines that Csound shows when it renders a document, among others, in this order
  session of=N              commands, each behind "$ ", and what each of them prints, beside the input and examples/notes.py
  form                      how something is written, not an example
  sh                        commands that are not examples

A line "..." stands for lines left out, "..." at the end of values for values left out. An input that nothing is shown
of must run without a warning. Links must lead somewhere. With --fill, blocks that are still empty are written: read them before you keep them.
"""

import argparse
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
import run_case

SHOWN = ("score", "values", "bytes", "screen", "stdout", "trace", "roll", "console", "session")
NOTES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../examples/notes.py")
TIME_LIMIT = 60  # seconds
CSOUND_TROUBLE = re.compile(r"sread:|swrite:|twarp:|note deleted|ftable.*illegal|uses \d+ p-fields but is given|error"
                            r"|overall samples out of range:.*[1-9]", re.I)


class Block:
    def __init__(self, page, line_no, info):
        self.page, self.line_no = page, line_no
        words = shlex.split(info)
        self.kind = words[0] if words else ""
        self.keys = dict(word.split("=", 1) for word in words[1:] if "=" in word)
        self.lines = []

    def where(self):
        return f"{self.page}:{self.line_no}"

    def text(self):
        return "".join(line + "\n" for line in self.lines)

    def commands(self):
        return tuple(line[2:] for line in self.lines if line.startswith("$ "))

    def is_empty(self):
        """Nothing that comes out is written there so far."""
        return not [line for line in self.lines if not line.startswith("$ ")]


def read_blocks(page):
    """The fenced blocks of a page, and what is wrong with them."""
    blocks, block, faults = [], None, []
    with open(page, encoding="utf-8") as file:
        for line_no, line in enumerate(file.read().split("\n"), 1):
            if not line.startswith("```"):
                if block:
                    block.lines.append(line)
            elif block:
                blocks.append(block)
                block = None
            else:
                block = Block(page, line_no, line[3:])
    if block:
        faults.append(f"{block.where()}: this block has no end")
    for block in blocks:
        if block.kind not in (*SHOWN, "orlo", "csd", "orc", "python", "sh", "form"):
            faults.append(f"{block.where()}: unknown kind of block '{block.kind}'")
        elif block.kind in ("orlo", "csd") and not {"name", "of"} & set(block.keys):
            faults.append(f"{block.where()}: an input without a name is not tried")
        elif block.kind in SHOWN and "of" not in block.keys:
            faults.append(f"{block.where()}: of which example?")
    return blocks, faults


class Example:
    """An input with its files, the command that runs it, and what is shown of it."""

    def __init__(self, block):
        self.name, self.block = block.keys["name"], block
        self.files, self.shown, self.command = {}, [], None
        self.got = None

    def source(self):
        """Text of the input and the options of the document, if it is one."""
        if self.block.kind == "orlo":
            return self.block.text(), []
        match = re.search(r'<CsScore bin="(?:\S*/)?orlo\b([^"]*)">\n(.*?)^</CsScore>', self.block.text(), re.S | re.M)
        if not match:
            raise ValueError(f"{self.block.where()}: no score tag with orlo")
        return match[2], shlex.split(match[1])

    def arguments(self):
        if self.command:
            line = next(line for line in self.command.lines if re.match(r"orlo\b", line))
            return shlex.split(line.split("&&")[0])[1:]
        options = self.source()[1]
        if any(block.kind == "trace" for block in self.shown):
            options = [*options, "-x", f"{self.name}.exp"]
        return [*options, f"{self.name}.orlo", f"{self.name}.sco"]


def slug(heading):
    """The anchor that a heading gets."""
    return re.sub(r"[^\w\- ]", "", heading.strip().lower()).replace(" ", "-")


def check_links(page):
    """Links of a page that lead nowhere."""
    with open(page, encoding="utf-8") as file:
        text = re.sub(r"^```.*?^```", "", file.read(), flags=re.S | re.M)
    anchors = {slug(heading) for heading in re.findall(r"^#+ (.*)", text, re.M)} | set(re.findall(r'<a id="(\w+)">', text))
    faults = []
    for link in re.findall(r"\]\(([^)\s]+)\)", re.sub(r"`[^`\n]*`", "", text)):
        name, _, anchor = link.partition("#")
        if name and not os.path.exists(os.path.join(os.path.dirname(page), name)):
            faults.append(f"{page}: no file {name}")
        elif not name and anchor not in anchors:
            faults.append(f"{page}: no heading #{anchor}")
    return faults


def collect(blocks):
    """Examples by name, and what is wrong with their parts."""
    examples, faults = {}, []
    for block in blocks:
        if block.kind in ("orlo", "csd") and "name" in block.keys:
            if block.keys["name"] in examples:
                faults.append(f"{block.where()}: a second example '{block.keys['name']}'")
            examples[block.keys["name"]] = Example(block)
        elif "of" in block.keys:
            example = examples.get(block.keys["of"])
            if not example:
                faults.append(f"{block.where()}: no example '{block.keys['of']}' before it")
            elif block.kind in ("orlo", "python"):
                example.files[block.keys["file"]] = block.text()
            elif block.kind == "sh":
                example.command = block
            else:
                example.shown.append(block)
    return examples, faults


def lacks_tool(block):
    """Whether a session wants a program that is not here."""
    return block.kind == "session" and re.search(r"\bjq\b", block.text()) and not shutil.which("jq")


def session(commands, folder, orlo):
    """Commands and what they print, one after the other."""
    environment = run_case.environment() | {
        "PATH": os.pathsep.join([os.path.dirname(orlo), os.path.dirname(sys.executable), os.environ.get("PATH", "")])}
    shown = []
    for command in commands:
        done = subprocess.run(["sh", "-c", command], cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=TIME_LIMIT, check=False)
        shown += [f"$ {command}", *trimmed(run_case.cut_banner(done.stdout).decode("latin-1"))]
    return "\n".join(shown)


def run(example, orlo):
    """Runs the input and keeps what comes out, by kind of block."""
    with tempfile.TemporaryDirectory(prefix="orlo-docs-") as folder:
        document = {f"{example.name}.csd": example.block.text()} if example.block.kind == "csd" else {}
        for name, text in {f"{example.name}.orlo": example.source()[0], **document, **example.files}.items():
            with open(os.path.join(folder, name), "w", encoding="latin-1", newline="") as file:
                file.write(text)
        args = example.arguments()
        done = subprocess.run([orlo, *args], cwd=folder, env=run_case.environment(), stdin=subprocess.DEVNULL,
                              capture_output=True, timeout=TIME_LIMIT, check=False)
        screen = run_case.cut_banner(done.stderr)

        def contents(name):
            path = os.path.join(folder, name)
            return run_case.read_file(path) if os.path.exists(path) else b""

        def roll():
            view = os.path.join(os.path.dirname(orlo), "orlo-view")
            shown = subprocess.run([view, "-f", "txt", "-w", "60", "-r", "12", f"{example.name}.orlo"], cwd=folder,
                                   env=run_case.environment(), capture_output=True, timeout=TIME_LIMIT, check=False)
            return shown.stdout + shown.stderr

        sessions = [block.commands() for block in example.shown if block.kind == "session"]
        if sessions:
            shutil.copy(NOTES, folder)

        output = contents(args[-1])
        example.got = {
            "status": done.returncode,
            "score": output.decode("latin-1"),
            "bytes": "\n".join(output[i:i + 16].hex(" ") for i in range(0, len(output), 16)),
            "screen": screen.decode("latin-1"),
            "stdout": done.stdout.decode("latin-1"),
            "trace": contents(f"{example.name}.exp").decode("latin-1"),
            "roll": roll().decode("latin-1") if any(block.kind == "roll" for block in example.shown) else "",
            "session": {commands: session(commands, folder, orlo) for commands in sessions},
        }


def render(example, orchestras, orlo, csound):
    """What Csound shows when it performs an example without sound, with the program on its path, and its status."""
    with tempfile.TemporaryDirectory(prefix="orlo-docs-") as folder:
        path = os.path.join(folder, "bin")
        os.mkdir(path)
        os.symlink(orlo, os.path.join(path, "orlo"))
        document = example.block.kind == "csd"
        played = {f"{example.name}.csd": example.block.text()} if document else {f"{example.name}.sco": example.got["score"]}
        for name, text in {**orchestras, **example.files, **played}.items():
            with open(os.path.join(folder, name), "w", encoding="latin-1") as file:
                file.write(text)
        files = [*played] if document else [*orchestras, *played]
        environment = run_case.environment() | {"PATH": path + os.pathsep + os.environ.get("PATH", ""), "TMPDIR": folder}
        done = subprocess.run([csound, "-n", "-d", *files], cwd=folder, env=environment,
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=TIME_LIMIT, check=False)
        return re.sub(r"\x1b\[[\d;]*m", "", (done.stdout + done.stderr).decode("latin-1")), done.returncode


def trimmed(text):
    """Lines without blanks at their ends, without empty lines at both ends."""
    lines = [line.rstrip() for line in text.split("\n")]
    while lines and not lines[0]:
        del lines[0]
    while lines and not lines[-1]:
        del lines[-1]
    return lines


def column(score, number, instrument):
    """One p-field of the events of a score, as it stands there."""
    events = [line[1:].split() for line in score.split("\n") if line.startswith("i")]
    return [event[number - 1] for event in events if instrument is None or event[0] == instrument]


def output_of(block, example):
    """The lines that a block should show."""
    if block.kind == "values":
        return column(example.got["score"], int(block.keys["p"]), block.keys.get("i"))
    if block.kind == "session":
        return trimmed(example.got["session"][block.commands()])
    return trimmed(example.got[block.kind])


def agrees(shown, got):
    """True when lines are the same, with "..." for one or several lines left out."""
    pattern = [[]]
    for line in shown:
        if line.strip() == "...":
            pattern.append([])
        else:
            pattern[-1].append(line.rstrip())
    first, *middle = pattern
    if not middle:
        return first == got
    if got[:len(first)] != first:
        return False
    at, last = len(first), middle.pop()
    for part in middle:
        at += 1
        while at < len(got) and got[at:at + len(part)] != part:
            at += 1
        if at >= len(got):
            return False
        at += len(part)
    return len(got) - len(last) > at and (not last or got[-len(last):] == last)


def in_order(shown, text):
    """The first shown line that does not follow the ones before it in a text, or nothing."""
    lines, at = trimmed(text), 0
    for line in trimmed("\n".join(shown)):
        if line == "...":
            continue
        while at < len(lines) and lines[at] != line:
            at += 1
        if at == len(lines):
            return line
        at += 1
    return None


def check(example):
    """What is wrong with what the pages show of one example."""
    faults, status = [], int(example.block.keys.get("status", "0"))
    if example.got["status"] != status:
        faults.append(f"{example.block.where()}: exit status {example.got['status']}, not {status}\n{example.got['screen']}")
    if not example.shown and re.search("WARNING|ERROR", example.got["screen"]):
        faults.append(f"{example.block.where()}: nothing is shown of it, but it says:\n{example.got['screen']}")
    for block in example.shown:
        if block.kind == "console" or lacks_tool(block):
            continue
        got = output_of(block, example)
        shown = block.text().split() if block.kind == "values" else trimmed(block.text())
        if not agrees(shown, got):
            text = " ".join(got) if block.kind == "values" else "\n".join(got)
            faults.append(f"{block.where()}: '{example.name}' really gives\n{text[:4000]}")
    return faults


def check_console(example, orchestras, orlo, csound):
    """What is wrong with what Csound shows."""
    text, status = render(example, orchestras, orlo, csound)
    faults, failed = [], example.block.keys.get("status", "0") != "0"
    if failed != (status != 0):
        faults.append(f"{example.block.where()}: Csound ends with {status}\n{text}")
    trouble = CSOUND_TROUBLE.search(text.replace("0 errors in performance", ""))
    if not failed and trouble:
        faults.append(f"{example.block.where()}: Csound says '{trouble[0]}'\n{text}")
    for block in example.shown:
        missing = in_order(block.lines, text) if block.kind == "console" else None
        if missing:
            faults.append(f"{block.where()}: Csound does not show '{missing}'; it shows\n{text}")
    return faults


def fill(page, blocks, examples):
    """Writes what is shown into the blocks of a page that are still empty."""
    with open(page, encoding="utf-8") as file:
        lines = file.read().split("\n")
    for block in reversed([block for block in blocks if block.page == page and block.kind in SHOWN and block.is_empty()]):
        if block.kind == "console" or lacks_tool(block):
            continue
        got = output_of(block, examples[block.keys["of"]])
        lines[block.line_no:block.line_no + len(block.lines)] = [" ".join(got)] if block.kind == "values" else got
    with open(page, "w", encoding="utf-8") as file:
        file.write("\n".join(lines))


def main():
    parser = argparse.ArgumentParser(description="check the examples on the pages")
    parser.add_argument("--orlo", required=True, help="the program")
    parser.add_argument("--csound", action="store_true", help="have Csound perform the documents and what is typed with csound")
    parser.add_argument("--fill", action="store_true", help="write the outputs into the blocks that are empty")
    parser.add_argument("pages", nargs="+", metavar="PAGE")
    options = parser.parse_args()
    orlo = os.path.abspath(options.orlo)

    count, faults = 0, []
    for page in options.pages:
        blocks, bad = read_blocks(page)
        examples, worse = collect(blocks)
        faults += bad + worse + check_links(page)
        if options.csound:
            csound = shutil.which("csound")
            if not csound:
                print("no csound here")
                return 77
            orchestras = {block.keys["file"]: block.text() for block in blocks if block.kind == "orc"}
            for example in examples.values():
                if example.block.kind == "csd" or example.command and "csound" in example.command.text():
                    count += 1
                    run(example, orlo)
                    faults += check_console(example, orchestras, orlo, csound)
            continue
        for example in examples.values():
            run(example, orlo)
        if options.fill:
            fill(page, blocks, examples)
            blocks, _ = read_blocks(page)
            filled, _ = collect(blocks)
            for name, example in filled.items():
                example.got = examples[name].got
            examples = filled
        count += len(examples)
        for example in examples.values():
            faults += check(example)
    for fault in faults:
        print(fault)
    print(f"{count} examples, {len(faults)} faults")
    return 1 if faults or not count else 0


if __name__ == "__main__":
    sys.exit(main())
