"""No fault of a file may get the better of orlo-explain: check_explain_files.py --explain PROGRAM [--sanitized] [NAME...]

Every check runs the program in an empty folder of its own. PROGRAM is the build of orlo-explain that names its temporary files
tmp/0, tmp/1, ... in the working folder (tests/faults): that of the combined input, and that of the document. None may be left, and
the document of yesterday stays wherever there is no new one. With names, those checks alone.
"""

import argparse
import json
import os
import resource
import select
import signal
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [HERE, os.path.join(HERE, "..")]
import check_run_files
from run_case import NO_LEAKS, environment, sanitizer_report
from tried_runs import Failure, PIECE, TIME_LIMIT, must, read, wait_for, write

SIGNALS = signal.SIGINT, signal.SIGTERM, signal.SIGHUP

WRONG = b"i1 = 3 0 1 {\np2 1\np3 y\n}\n"
WRONG_TOLD = b"in.orlo:3:4: error: Data is out of bounds.\n"
MANY_EVENTS = b"i1 = 4 0 -20000 {\np2 1\np3 1\np4 RA(T 1 [0 1])\n}\n"  # a long document
MANY_ERRORS = b"#define wrong #y#\n" + 100 * b"i1 = 3 0 1 {\np2 1\np3 $wrong\n}\n"  # as many messages as there can be
ENDLESS = b"i1 = 4 0 3000 {\np2 .01\np3 1\np4 RA(T 1 [0 1])\n}\n" * 200
YESTERDAY = b"of yesterday\n"
MOST_CSD = 1 << 26  # bytes of a Csound document

explain, sanitized = None, False
checks = {}  # name: function


def check(function):
    checks[function.__name__.replace("_", "-")] = function
    return function


def start(*args, prepare=None, **more):
    def before():
        for number in SIGNALS:
            signal.signal(number, signal.SIG_DFL)  # whatever these checks were started with
        if prepare:
            prepare()
    streams = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE} | more
    return subprocess.Popen([explain, *args], env=environment(), preexec_fn=before, **streams)


def end(process):
    """Waits for a run. Returns its status, standard output and screen."""
    try:
        out, screen = process.communicate(timeout=TIME_LIMIT)
    except subprocess.TimeoutExpired:
        process.kill()
        process.communicate()
        raise Failure("still running: killed") from None
    if screen and sanitizer_report(screen):
        raise Failure("a sanitizer report:\n" + screen.decode(errors="replace"))
    must(not os.path.isdir("tmp") or os.listdir("tmp") == [], "temporary files are left")
    return process.returncode, out, screen


def run(*args, **more):
    return end(start(*args, **more))


def expect(result, status, screen, out=b""):
    must(result == (status, out, screen), f"{result[0]}, {result[1][-300:]!r}, {result[2][-300:]!r} instead of {status}, {out!r}, {screen!r}")


def expect_document(text, status, *texts):
    """A document whose run has a status, and whose errors are these."""
    document = json.loads(text)
    errors = [message["text"] for message in document["diagnostics"] if message["severity"] == "error"]
    must(document["status"] == status and errors == list(texts), f"status {document['status']}, errors {errors}")


def cant_write(name, reason):
    return f"orlo-explain: can't write {name}: {reason}\n".encode()


def limit(what, most):
    return lambda: resource.setrlimit(what, (most, most))


# what is written

@check
def output_on_full_device():
    for piece in PIECE, MANY_EVENTS:  # lost when the file is closed, and before
        write("in.orlo", piece)
        expect(run("-o", "/dev/full", "in.orlo"), 1, cant_write("/dev/full", "No space left on device"))
    write("in.orlo", WRONG)
    expect(run("--format=gcc", "-o", "/dev/full", "in.orlo"), 1, cant_write("/dev/full", "No space left on device"))


@check
def standard_output_on_full_device():
    write("in.orlo", WRONG)
    for args in ["in.orlo"], ["--format=gcc", "in.orlo"], ["--help"], ["--version"]:
        with open("/dev/full", "wb") as full:
            status, _, screen = run(*args, stdout=full)
        must((status, screen) == (1, cant_write("the standard output", "No space left on device")), f"{args}: {status} {screen}")


@check
def output_has_reached_its_limit():
    write("in.orlo", MANY_EVENTS)
    for yesterday in True, False:
        if yesterday:
            write("out", YESTERDAY)
        expect(run("-o", "out", "in.orlo", prepare=limit(resource.RLIMIT_FSIZE, 65536)), 1, cant_write("out", "File too large"))
        must(read("out") == YESTERDAY if yesterday else not os.path.exists("out"), "another file than that of yesterday")
        if yesterday:
            os.remove("out")


@check
def standard_output_is_closed():
    write("in.orlo", WRONG)
    for args in ["in.orlo"], ["--format=gcc", "in.orlo"], ["--help"], ["--version"], ["-o", "-", "in.orlo"]:
        for closed in (1,), (0, 1):
            status, _, screen = run(*args, prepare=lambda closed=closed: [os.close(number) for number in closed])
            must((status, screen) == (1, cant_write("the standard output", "it is closed")), f"{args}: {status} {screen}")


@check
def streams_that_are_not_needed_are_closed():
    write("in.orlo", WRONG)
    for closed in (0,), (1,), (2,), (0, 2), (0, 1, 2):
        status, _, _ = run("--format=gcc", "-o", "out", "in.orlo", prepare=lambda closed=closed: [os.close(n) for n in closed])
        must(status == 0 and read("out") == WRONG_TOLD, f"{closed} closed: {status}, {read('out')!r}")


@check
def pipe_is_closed():
    for args, piece in (["in.orlo"], MANY_EVENTS), (["--format=gcc", "in.orlo"], MANY_ERRORS):
        write("in.orlo", piece)
        reader, writer = os.pipe()
        os.close(reader)  # before the first byte: what a pipe can hold would be written all the same
        with os.fdopen(writer, "wb") as closed:
            status, _, screen = run(*args, stdout=closed)
        must((status, screen) == (1, cant_write("the standard output", "Broken pipe")), f"{args}: {status} {screen}")
        must(os.listdir("tmp") == [], "temporary files are left")


@check
def output_is_a_pipe():
    write("in.orlo", WRONG)
    os.mkfifo("pipe")
    with subprocess.Popen(["cat", "pipe"], stdout=subprocess.PIPE) as reader:
        expect(run("--format=gcc", "-o", "pipe", "in.orlo"), 0, b"")
        must(reader.communicate(timeout=TIME_LIMIT)[0] == WRONG_TOLD, "something else comes through the pipe")


@check
def an_earlier_document_is_replaced_as_a_whole():
    write("in.orlo", PIECE)
    write("out", YESTERDAY * 10000)
    expect(run("-o", "out", "in.orlo"), 0, b"")
    expect_document(read("out"), 0)


@check
def documents_without_a_run():
    """A command line that makes no sense leaves what is there."""
    write("in.orlo", PIECE)
    write("out", YESTERDAY)
    for args in ["-o", "out", "--wrong", "in.orlo"], ["-o", "out"], ["-o", "out", "in.orlo", "in.orlo"]:
        must(run(*args)[0] == 2 and read("out") == YESTERDAY, f"{args}")


# what is read

@check
def input_missing_or_no_file():
    os.mkdir("folder")
    for name, text in ("none", "Can't open \"none\"."), ("folder", "Can't read \"folder\"."):
        status, out, screen = run(name)
        must((status, screen) == (0, b""), f"{name}: {status} {screen}")
        expect_document(out, 1, text)
        expect(run("--format=gcc", name), 0, b"", f"{name}: error: {text}\n".encode())


@check
def input_is_a_pipe():
    os.mkfifo("in.orlo")
    with subprocess.Popen(["sh", "-c", "cat wrong > in.orlo"]) as writer:
        write("wrong", WRONG)
        expect(run("--format=gcc", "in.orlo"), 0, b"", WRONG_TOLD)
        writer.wait(TIME_LIMIT)


@check
def csd_is_a_pipe():
    os.mkfifo("in.csd")  # nobody writes to it
    expect(run("in.csd"), 1, b"orlo-explain: in.csd: a Csound document is read twice, and has to be a file\n")


@check
def csd_is_as_large_as_it_may_be():
    document = b'<CsoundSynthesizer>\n<CsScore bin="orlo">\n' + WRONG + b"</CsScore>\n"
    write("in.csd", document + (MOST_CSD - len(document)) * b" ")
    expect(run("--format=gcc", "in.csd"), 0, b"", b"in.csd:5:4: error: Data is out of bounds.\n")
    write("in.csd", document + (MOST_CSD + 1 - len(document)) * b" ")
    expect(run("--format=gcc", "in.csd"), 1, f"orlo-explain: in.csd: it has more than {MOST_CSD} bytes\n".encode())


@check
def include_is_endless():
    write("in.orlo", b"#include |/dev/zero|\n")
    status, out, _ = run("--no-events", "in.orlo", prepare=limit(resource.RLIMIT_FSIZE, 1000000))
    must(status == 1 or json.loads(out)["status"] == 1, f"status {status}")


@check
def names_with_line_ends():
    write("two\nlines.orlo", b"#include |one\\nfile|\n" + WRONG)
    status, out, _ = run("--format=gcc", "two\nlines.orlo")
    must(status == 0 and out.count(b"\n") == 1 and out.startswith(b"two lines.orlo:1:1: error: "), f"{out!r}")
    write("two\nlines.orlo", WRONG)
    expect(run("--format=gcc", "two\nlines.orlo"), 0, b"", WRONG_TOLD.replace(b"in.orlo", b"two lines.orlo"))
    status, out, _ = run("two\nlines.orlo")
    must(json.loads(out)["piece"]["name"] == "two\nlines.orlo", "the document has another name")


@check
def names_that_are_no_utf8():
    write(b"\xff.orlo", WRONG)
    expect(run("--format=gcc", b"\xff.orlo"), 0, b"", WRONG_TOLD.replace(b"in", b"\xff"))
    status, out, _ = run(b"\xff.orlo")
    must(status == 0 and json.loads(out)["piece"]["name"] == {"hex": b"\xff.orlo".hex()}, f"{out[:200]!r}")


def for_each_spelling(function):
    """A check for every way to name a file otherwise."""
    for spelling in check_run_files.SPELLINGS:
        name = f"{function.__name__.replace('_', '-')}-{spelling.replace(' ', '-')}"
        checks[name] = lambda spelling=spelling: function(check_run_files.SPELLINGS[spelling])


@for_each_spelling
def input_is_not_written_over(spell):
    for text, file in (PIECE, "in.orlo"), (b"te(60)\n#include |part|\n", "part"), (b"#include |part|\n?", "part"):
        write("part", PIECE)
        write("in.orlo", text)
        out = spell(file)
        before = check_run_files.snapshot()
        for form in "json", "gcc":
            expect(run(f"--format={form}", "-o", out, "in.orlo"), 1,
                   f"orlo-explain: {out} would be overwritten: name another file with -o\n".encode())
        must(check_run_files.snapshot() == before, "files have changed")
        if out != file and os.path.lexists(out) and not os.path.isabs(out) and os.sep not in out:
            os.remove(out)
        for link in "chain", "folder":
            if os.path.islink(link):
                os.remove(link)


# files and memory that can't be had

@check
def too_few_open_files():
    write("in.orlo", b"#include |part|\n" + WRONG)
    write("part", b"")
    os.environ |= NO_LEAKS
    told = "Can't open temporary file", "Bad include file name: \"part\"", "Data is out of bounds."
    for number, text in enumerate(told, 4):  # three standard streams, the input, what follows
        status, _, screen = run("-o", "out", "in.orlo", prepare=limit(resource.RLIMIT_NOFILE, number))
        must((status, screen) == (0, b""), f"{number} files: {status} {screen}")
        expect_document(read("out"), 1, text)


@check
def temporary_folder_missing():
    write("in.orlo", PIECE)
    os.rmdir("tmp")
    status, out, screen = run("in.orlo")
    must((status, screen) == (0, b""), f"{status} {screen}")
    expect_document(out, 1, "Can't open temporary file")
    write("out", YESTERDAY)
    expect(run("-o", "out", "in.orlo"), 1, cant_write("out", "No such file or directory"))
    must(read("out") == YESTERDAY, "another file than that of yesterday")


@check
def memory_is_limited():
    """Exhausted memory ends the program with a message, or the run that it looks at, which the document tells."""
    if sanitized:
        return  # sanitizers take memory of their own
    for piece in MANY_EVENTS.replace(b"20000", b"2000000"), b"i1 = 3 0 -1000000000000 {\np2 1\np3 1\n}\n", b"$" + b"m" * 50000000:
        write("in.orlo", piece)
        write("out", YESTERDAY)
        result = run("-o", "out", "in.orlo", prepare=limit(resource.RLIMIT_DATA, 64 << 20))
        if result[0] == 0:
            expect_document(read("out"), 1, "Yikes, out of memory!")
        else:
            expect(result, 1, b"orlo-explain: not enough memory\n")
            must(read("out") == YESTERDAY, "another file than that of yesterday")


# signals

def for_each_signal(function):
    for number in SIGNALS:
        checks[f"{signal.Signals(number).name.lower()}-{function.__name__.replace('_', '-')}"] = \
            lambda number=number: function(number)


def expect_end_by(number, process):
    process.send_signal(number)
    status, _, _ = end(process)
    must(status == -number, f"ended with {status}")
    must(not os.path.exists("out") or read("out") == YESTERDAY, "another file than that of yesterday")


@for_each_signal
def while_reading(number):
    os.mkfifo("in.orlo")
    write("out", YESTERDAY)
    process = start("-o", "out", "in.orlo")
    writer = os.open("in.orlo", os.O_WRONLY)
    wait_for("the temporary file", lambda: os.listdir("tmp"))
    expect_end_by(number, process)
    os.close(writer)


@for_each_signal
def while_working(number):
    write("in.orlo", ENDLESS)
    process = start("-o", "out", "in.orlo")
    wait_for("the temporary file", lambda: os.listdir("tmp"))
    expect_end_by(number, process)


@for_each_signal
def while_writing_to_a_pipe(number):
    write("in.orlo", MANY_EVENTS)
    os.mkfifo("pipe")
    reader = os.open("pipe", os.O_RDONLY | os.O_NONBLOCK)
    process = start("-o", "pipe", "in.orlo")
    wait_for("the first bytes", lambda: select.select([reader], [], [], 0)[0])
    expect_end_by(number, process)  # the pipe holds less than the document
    os.close(reader)


@for_each_signal
def while_writing_a_file(number):
    write("in.orlo", MANY_EVENTS * 20)
    write("out", YESTERDAY)
    process = start("-o", "out", "in.orlo")
    wait_for("the document", lambda: "1" in os.listdir("tmp"))
    expect_end_by(number, process)


@for_each_signal
def ignored_from_the_start(number):
    os.mkfifo("in.orlo")
    process = start("--format=gcc", "in.orlo", prepare=lambda: signal.signal(number, signal.SIG_IGN))
    with open("in.orlo", "wb") as writer:
        wait_for("the temporary file", lambda: os.listdir("tmp"))
        process.send_signal(number)
        writer.write(WRONG)
    expect(end(process), 0, b"", WRONG_TOLD)


def make(name):
    """Makes one check in a folder of its own; returns what is wrong."""
    here = os.getcwd()
    with tempfile.TemporaryDirectory(prefix="orlo-explain-") as folder:
        os.chdir(folder)
        os.mkdir("tmp")
        try:
            checks[name]()
        except (Failure, OSError, ValueError) as fault:
            return f"{name}: {fault}"
        finally:
            os.chdir(here)
    return ""


def main():
    global explain, sanitized
    parser = argparse.ArgumentParser(description="check what orlo-explain does when files fail and signals come")
    parser.add_argument("--explain", required=True, help="the program that keeps its temporary files in tmp/")
    parser.add_argument("--sanitized", action="store_true", help="the program is built with sanitizers")
    parser.add_argument("names", nargs="*", metavar="NAME", help="checks to make (default: all)")
    options = parser.parse_args()
    explain, sanitized = os.path.abspath(options.explain), options.sanitized
    unknown = set(options.names) - set(checks)
    if unknown:
        parser.error(f"no such check: {', '.join(sorted(unknown))}")
    names = options.names or list(checks)
    faults = [fault for fault in map(make, names) if fault]
    print("\n".join(faults))
    print(f"{len(names)} checks, {len(faults)} failed")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
