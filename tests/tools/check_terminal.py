"""What a program shows at a terminal: check_terminal.py --view PROGRAM [--orlo PROGRAM] [--explain PROGRAM]

A file name, an input line, an instrument's name or an option that holds control characters, bidirectional controls or bytes that
are no UTF-8 must not send one of them to a terminal, neither on the standard error nor on the standard output: each is one visible
character there. What goes to a pipe or a file stays as it is. The caret of a message stands under its column. With --orlo the same
is wanted of orlo's own messages.
"""

import argparse
import os
import pty
import re
import subprocess
import sys
import tempfile
import threading

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
import run_case

# a title, a bell, a colour, a line taken back, NUL's neighbours, C1 as UTF-8 and as a byte, directions, a cut character
BAD = b"\x1b]0;x\x07\x1b[31m\r\x08\x01\x7f\xc2\x9b2J\x9b\xe2\x80\xae\xe2\x81\xa6\xd8\x9c\xff\xe2\x82"
UNSAFE = re.compile("[\x00-\x08\x0b-\x1f\x7f-\x9f\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069]")
SAFE = "\u241b]0;x\u2407\u241b[31m\u240d\u2408\u2401\u2421\ufffd2J\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd"

faults = []


def expect(condition, fault):
    if not condition:
        faults.append(fault[:500])


def at_terminal(args, cwd, streams=("stdout", "stderr"), stdin=b""):
    """What a run writes to a terminal, and what it writes to a pipe; the terminal adds a return to each line."""
    here, there = pty.openpty()
    shown = []

    def read():
        try:
            while data := os.read(here, 65536):
                shown.append(data)
        except OSError:  # the other end is closed
            pass

    reader = threading.Thread(target=read)
    reader.start()
    pipes = {name: there if name in streams else subprocess.PIPE for name in ("stdout", "stderr")}
    run = subprocess.run(args, cwd=cwd, input=stdin, env=run_case.environment(), timeout=60, check=False, **pipes)
    os.close(there)
    reader.join()
    os.close(here)
    return b"".join(shown).replace(b"\r\n", b"\n"), (run.stdout or b"") + (run.stderr or b"")


def check_safe(what, shown):
    try:
        text = shown.decode()
    except UnicodeDecodeError as fault:
        expect(False, f"{what}: {fault}")
        return ""
    unsafe = UNSAFE.search(text)
    expect(not unsafe, f"{what}: sends {unsafe and unsafe[0]!r}: {text!r}")
    return text


def check_caret(what, text, marked):
    """The line before a caret has the marked character above it."""
    lines = text.split("\n")
    carets = [i for i, line in enumerate(lines) if re.fullmatch(r"[ \t]*\^", line)]
    expect(carets, f"{what}: no caret: {text!r}")
    for i in carets:
        column = len(lines[i]) - 1
        above = lines[i - 1]
        expect(above[column:].startswith(marked) and re.sub(r"[^\t]", " ", above[:column]) == lines[i][:-1],
               f"{what}: the caret is not under {marked!r}: {lines[i - 1:i + 1]}")


def check_view(view, folder):
    name = os.path.join(os.fsencode(folder), b"bad\n" + BAD + b".sco")
    with open(name, "wb") as file:
        file.write(b'i"' + BAD.replace(b"\r", b"") + b'" 0 1 ' + BAD + b"\nq\x1b[2J\n")
    where = os.path.basename(name)
    for form in "txt", "svg", "html":
        args = [view, "-f", form, "-o", "-", where]
        plain = subprocess.run(args, cwd=folder, env=run_case.environment(), capture_output=True, check=False)
        expect(plain.returncode == 0 and plain.stderr.startswith(where), f"{form}: {plain}")
        error, rest = at_terminal(args, folder, ("stderr",))
        expect(rest == plain.stdout, f"{form}: a pipe gets something else when the messages go to a terminal")
        text = check_safe(f"{form}, messages", error)
        expect(text.startswith("bad\u240a" + SAFE + ".sco:1: "), f"{form}: {text!r}")
        expect(text.count("\n") == plain.stderr.count(b"\n") - plain.stderr.count(b"bad\n"), f"{form}: lines of {text!r}")
        output, rest = at_terminal(args, folder, ("stdout",))
        expect(rest == plain.stderr, f"{form}: messages in a pipe differ when the picture goes to a terminal")
        text = check_safe(f"{form}, picture", output)
        expect(text.count("\n") == plain.stdout.count(b"\n"), f"{form}: lines of the picture")
    for args in ([view, BAD], [view, "-f", BAD, "x"], [view, "a", BAD], [view, "-o", BAD + b"/", where], [view, b"-" + BAD]):
        text = check_safe(args[1:], at_terminal(args, folder)[0])
        expect("orlo-view: " in text and SAFE in text, f"{args}: {text!r}")


def check_passed_on(view, folder):
    """Messages of orlo that orlo-view shows."""
    own = os.path.join(folder, "orlo-view")
    os.symlink(view, own)
    messages = (b"\nInput\t= \"" + BAD + b"\"\n\nERROR: Line 2: x\n\tp4 \xc3\xa9" + BAD + b" here\n\t" + b" " * (5 + len(BAD)) + b" ^\nnone ^\n\nend")
    with open(os.path.join(folder, "said"), "wb") as file:
        file.write(messages)
    program = os.path.join(folder, "path")
    os.mkdir(program)
    with open(os.path.join(program, "orlo"), "w", encoding="ascii") as file:
        file.write(f"#!/bin/sh\ncat '{folder}/said' >&2\nexit 1\n")
    os.chmod(os.path.join(program, "orlo"), 0o755)
    with open(os.path.join(folder, "x.orlo"), "wb") as file:
        file.write(b"i1 = 1 0 1 {\n}\n")
    copy = os.path.join(program, "orlo-view")
    with open(view, "rb") as source, open(copy, "wb") as target:
        target.write(source.read())
    os.chmod(copy, 0o755)
    args = [copy, "x.orlo"]
    plain = subprocess.run(args, cwd=folder, env=run_case.environment(), capture_output=True, check=False)
    expect(plain.stderr.startswith(messages), f"messages in a pipe: {plain.stderr!r}")
    text = check_safe("messages of orlo", at_terminal(args, folder)[0])
    expect(SAFE in text and "\nend" in text and text.count("\n") == plain.stderr.count(b"\n"), f"messages of orlo: {text!r}")
    check_caret("messages of orlo", text, "here")


def check_orlo(orlo, folder):
    def write(name, data):
        with open(os.path.join(folder, name), "wb") as file:
            file.write(data)

    safe_line = BAD.replace(b"\r", b"")
    write("line.orlo", b"i1 = 1 0 1 {\np4 n\xc3\xb6 \t" + safe_line + b" here\n}\n")
    write("include.orlo", b'#include |' + safe_line + b'|\n')
    for args in (["line.orlo", "out.sco"], ["include.orlo", "out.sco"], [BAD, "out.sco"], ["line.orlo", BAD + b"/x"]):
        plain = subprocess.run([orlo, *args], cwd=folder, env=run_case.environment(), capture_output=True, check=False)
        text = check_safe(args, at_terminal([orlo, *args], folder)[0])
        expect(text.count("\n") == plain.stderr.count(b"\n"), f"orlo {args}: lines of {text!r}")
        if args[0] == "line.orlo" and args[1] == "out.sco":
            lines = plain.stderr.split(b"\n")
            caret = next(i for i, line in enumerate(lines) if line.strip() == b"^")
            marked = lines[caret - 1][len(lines[caret]) - 1:len(lines[caret])].decode()
            check_caret("orlo", text, marked)
    write("copied.orlo", b"> f1 0 8 " + safe_line + b"\n" + b"i1 = 3 0 1 {\np2 1\np3 1\n}\n")
    written = ["/dev/stdout", "copied.orlo", "out.sco"]  # trace, log and score that are a terminal
    for args in (["-x", *written], ["-l", *written], [written[1], written[0]]):
        text = check_safe(args, at_terminal([orlo, *args], folder, ("stdout",))[0])
        in_line = SAFE.replace("\u240d", "")[:-3] + " \ufffd\ufffd"  # a line of the input has no 0xFF
        expect(in_line in text or "-l" in args, f"orlo {args}: {text!r}")
    expect("out.sco" in text or "i1 " in text, f"orlo: no score at the terminal: {text!r}")


def check_explain(explain, folder):
    name = b"bad\n" + BAD + b".orlo"
    text = b"#include |" + BAD.replace(b"\r", b"") + b"|\n"
    with open(os.path.join(os.fsencode(folder), name), "wb") as file:
        file.write(text)
    gcc = [explain, "--format=gcc", name]
    plain = subprocess.run(gcc, cwd=folder, env=run_case.environment(), capture_output=True, check=False)
    expect(plain.returncode == 0 and plain.stdout.count(b"\n") == 3 and plain.stdout.startswith(b"bad " + BAD + b".orlo:1:1: "),
           f"messages in a pipe: {plain}")
    shown = check_safe("messages of a piece", at_terminal(gcc, folder, ("stdout",))[0])
    expect(shown.startswith("bad " + SAFE + ".orlo:1:1: error: ") and shown.count("\n") == 3, f"messages of a piece: {shown!r}")
    shown = check_safe("hints of a piece", at_terminal([explain, "--hints", name], folder, ("stdout",))[0])
    expect(shown.startswith("bad ") and ".orlo:1:29: no-utf8\n" in shown, f"hints of a piece: {shown!r}")
    document = [explain, name]
    plain = subprocess.run(document, cwd=folder, env=run_case.environment(), capture_output=True, check=False)
    shown = check_safe("document", at_terminal(document, folder, ("stdout",))[0])
    expect(shown.encode() == plain.stdout and plain.returncode == 0, f"document: {shown!r}, in a pipe {plain}")
    for args in ([b"--format=" + BAD], ["a", BAD], ["-o", BAD + b"/x", name], ["--format=gcc", "-o", name, name],
                 [b"-" + BAD]):
        shown = check_safe(args, at_terminal([explain, *args], folder, ("stderr",))[0])
        expect("orlo-explain: " in shown and SAFE in shown, f"{args}: {shown!r}")


def main():
    parser = argparse.ArgumentParser(description="check that nothing commands the terminal")
    parser.add_argument("--view", required=True, help="the program orlo-view")
    parser.add_argument("--orlo", help="the program orlo, whose own messages are checked, too")
    parser.add_argument("--explain", help="the program orlo-explain")
    options = parser.parse_args()
    for check, program in ((check_view, options.view), (check_passed_on, options.view), (check_orlo, options.orlo),
                           (check_explain, options.explain)):
        if program:
            with tempfile.TemporaryDirectory(prefix="orlo-terminal-") as folder:
                check(os.path.abspath(program), folder)
    print("\n".join(faults or ["nothing commands the terminal"]))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
