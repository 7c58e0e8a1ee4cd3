"""A run never destroys the user's own files: check_run_files.py --orlo PROGRAM

Two tables are gone through. The first: every pair of the files of a run, named the same file by every spelling; each is refused, and
every file is byte for byte as before. The second: every way to fail before there is anything new to write, with good files of
yesterday in place; each leaves them. Then what must still work: pipes, devices, files that are one another's neighbours.
"""

import argparse
import itertools
import os
import resource
import signal
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [HERE, os.path.join(HERE, "..")]
from run_case import environment, sanitizer_report
from tried_runs import Failure, PIECE, SCORE, TIME_LIMIT, must, read, wait_for, write

CLASH = b"\nERROR: You can't use a filename multiple times!\n\n"

orlo = None


def run(*args, prepare=None, env=None):
    """A run in the working folder. Returns status and screen."""
    result = subprocess.run([orlo, *args], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                            env=environment() | (env or {}), preexec_fn=prepare, timeout=TIME_LIMIT)
    if sanitizer_report(result.stderr):
        raise Failure("a sanitizer report:\n" + result.stderr.decode(errors="replace"))
    return result.returncode, result.stderr


def snapshot():
    """Contents of the regular files below the working folder, by name."""
    return {os.path.join(folder, name): read(os.path.join(folder, name)) for folder, _, names in os.walk(".")
            for name in names if os.path.isfile(os.path.join(folder, name))}


# the first table

def symbolic(name):
    os.symlink(name, "symbolic")
    return "symbolic"


def symbolic_chain(name):
    os.symlink(name, "chain")
    os.symlink(os.path.abspath("chain"), "symbolic")
    return "symbolic"


def hard(name):
    os.link(name, "hard")
    return "hard"


def folder_link(name):
    os.symlink(os.getcwd(), "folder")
    return "folder/" + name


# by which a name is spelled otherwise; those after the line need a file that exists
SPELLINGS = {
    "the name itself": lambda name: name,
    "relative": lambda name: "./" + name,
    "through the folder above": lambda name: f"../{os.path.basename(os.getcwd())}/{name}",
    "absolute": os.path.abspath,
    "doubled slash": lambda name: ".//" + name,
    "symbolic link": symbolic,
    "chain of symbolic links": symbolic_chain,
    "folder link": folder_link,
    "hard link": hard,
}
NEED_THE_FILE = {"hard link"}

ROLES = {"input": [], "output": [], "log": ["-l"], "trace": ["-x"]}


def arguments(names):
    """The command line of a run whose files have these names, by role; log and trace only when they are named."""
    options = [word for role in ("log", "trace") if role in names for word in (*ROLES[role], names[role])]
    return [*options, names["input"], names["output"]]


def pair_is_refused(first, second, spelling, exists):
    """first has the name "file", second the same by another spelling."""
    names = {"input": "piece", "output": "score"}
    write("piece", PIECE)
    if exists:
        write("file", PIECE)
    names[first] = "file"
    names[second] = SPELLINGS[spelling]("file")
    before = snapshot()
    status, screen = run(*arguments(names))
    must(status == 1 and screen == CLASH, f"status {status}, screen {screen!r}")
    must(snapshot() == before, "files have changed")


def include_is_refused(output, spelling):
    """An included file that is the run's output, log or trace by another name."""
    names = {"input": "piece", "output": "score"}
    write("part", b"; a precious part\n")
    for yesterday in ("score", "log", "trace"):
        write(yesterday, b"of yesterday\n")
    write("piece", b"te(60)\n  #include |part| ; and more\n" + PIECE)
    names[output] = SPELLINGS[spelling]("part")
    before = snapshot()
    status, screen = run(*arguments(names))
    ending = (b'\n\nERROR: Line 2: The include file "part" is one that this run writes!\n  #include |part| ; and more\n  ^\n')
    must(status == 1 and screen.endswith(ending), f"status {status}, screen {screen!r}")
    must(snapshot() == before, "files have changed")


# the second table: what is done beforehand, the arguments, the end of the screen; log and trace are asked for by all

def include_missing():
    write("piece", b"#include |nowhere|\n" + PIECE)
    return b'\nBad include file name: "nowhere"\n\n'


def include_without_bar():
    write("piece", b"#include nowhere\n" + PIECE)
    return b"\n\nInclude filename must be preceeded by a |.\n"


def error_before_the_first_block():
    write("piece", b"te(0)\n" + PIECE)
    return b""


def error_in_the_first_block():
    write("piece", b"i1 = 3 0 1 {\np2 wrong\n")
    return b""


def out_of_memory():
    write("piece", b"i1 = 3 0 -900000000 {\np2 1\np3 1\n}\n")
    return b""


def temporary_file_too_large():
    write("piece", b"; a long comment\n" * 10000 + PIECE)
    return b"\nERROR: Can't write temporary file\n\n"


def log_in_a_missing_folder():
    return b'\nERROR: Can\'t open "nowhere/log".\n\n'


def limit(what, most):
    return lambda: resource.setrlimit(what, (most, most))


# name: preparation, name of the log, what limits the process, whether the log of yesterday gives way to one that says what happened
FAILURES = {
    "include missing": (include_missing, "log", None, True),
    "include without a bar": (include_without_bar, "log", None, True),
    "error before the first block": (error_before_the_first_block, "log", None, True),
    "error in the first block": (error_in_the_first_block, "log", None, True),
    "out of memory": (out_of_memory, "log", limit(resource.RLIMIT_DATA, 64 << 20), True),
    "temporary file too large": (temporary_file_too_large, "log", limit(resource.RLIMIT_FSIZE, 65536), True),
    "log can't be opened": (log_in_a_missing_folder, "nowhere/log", None, False),
}
SANITIZED_OUT = {"out of memory"}  # sanitizers take memory of their own


def failure_leaves_yesterday(name):
    prepare_files, log, prepare, logged = FAILURES[name]
    for file in ("score", "log", "trace"):
        write(file, b"of yesterday, and longer than what the run says of itself\n" * 100)
    write("piece", PIECE)
    os.mkdir("tmp")
    ending = prepare_files()
    yesterday = snapshot()
    status, screen = run("-l", log, "-x", "trace", "piece", "score", prepare=prepare, env={"TMPDIR": "tmp"})
    must(status == 1 and screen.endswith(ending), f"status {status}, screen {screen!r}")
    now = snapshot()
    must(now["./score"] == yesterday["./score"], "the score of yesterday is gone")
    if logged:
        must(now["./log"] == screen, f"the log is {now['./log']!r}, the screen {screen!r}")
    else:
        must(now["./log"] == yesterday["./log"], "the log of yesterday is gone")
    if not now["./trace"].startswith(yesterday["./trace"]):  # it begins with the first line that is read
        must(b"yesterday" not in now["./trace"], "the trace holds something of yesterday")
    must(os.listdir("tmp") == [], f"temporary files: {os.listdir('tmp')}")


def signal_leaves_yesterday(number):
    """A signal while the input is still being read, from a pipe."""
    for file in ("score", "log", "trace"):
        write(file, b"of yesterday\n")
    os.mkdir("tmp")
    os.mkfifo("piece")
    yesterday = snapshot()
    process = subprocess.Popen([orlo, "-l", "log", "-x", "trace", "piece", "score"], stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=environment() | {"TMPDIR": "tmp"},
                               preexec_fn=lambda: signal.signal(number, signal.SIG_DFL))
    with open("piece", "wb") as writer:
        writer.write(PIECE)
        writer.flush()
        wait_for("a temporary file", lambda: os.listdir("tmp"))
        process.send_signal(number)
        must(process.wait(TIME_LIMIT) == -number, f"ended with {process.returncode}")
    must(snapshot() == yesterday, "files of yesterday have changed")
    must(os.listdir("tmp") == [], "the temporary file is left")


# what must go on working

def longer_files_of_yesterday_are_replaced():
    write("piece", PIECE)
    for file in ("score", "log", "trace"):
        write(file, b"of yesterday\n" * 1000)
    status, screen = run("-l", "log", "-x", "trace", "piece", "score")
    must(status == 0 and read("score") == SCORE, f"status {status}, score {read('score')!r}")
    must(read("trace") == b"".join(line + b" \n" for line in PIECE.splitlines()), f"trace {read('trace')!r}")
    must(read("log") + b"\n" == screen, f"log {read('log')!r}")


def empty_piece_leaves_nothing_of_yesterday():
    write("piece", b"")
    for file in ("score", "trace"):
        write(file, b"of yesterday\n")
    status, _ = run("-x", "trace", "piece", "score")
    must(status == 0 and read("score") == b"\ne\n" and read("trace") == b"", "something of yesterday is left")


def new_files_of_a_failed_run_are_empty():
    write("piece", b"wrong\n")
    status, screen = run("-l", "log", "-x", "trace", "piece", "score")
    must(status == 1 and read("score") == b"" and read("log") == screen, "as a run without earlier files leaves them")


def devices_and_pipes_are_written_to():
    write("piece", PIECE)
    must(run("-l", "/dev/null", "-x", "/dev/./null", "piece", "/dev//null")[0] == 0, "three names of a device")
    os.mkfifo("pipe")
    with subprocess.Popen(["cat", "pipe"], stdout=subprocess.PIPE) as reader:
        must(run("piece", "pipe")[0] == 0, "a pipe as the score")
        must(reader.communicate(timeout=TIME_LIMIT)[0] == SCORE, "the score through a pipe")


def links_to_new_files_are_followed():
    write("piece", PIECE)
    os.symlink("target", "score")
    must(run("piece", "score")[0] == 0 and read("target") == SCORE, "a link to a file that is not there yet")


def neighbours_are_no_clash():
    write("piece", PIECE)
    os.mkdir("below")
    status, screen = run("-l", "below/score", "-x", "./trace", "piece", "score")
    must(status == 0, f"status {status}, screen {screen!r}")


def missing_input_is_told_first():
    status, screen = run("piece", "./piece")
    must(status == 1 and screen == b'\nERROR: Can\'t open "piece".\n\n' and os.listdir(".") == [], f"screen {screen!r}")


def temporary_file_is_the_users_alone():
    os.mkdir("tmp")
    os.mkfifo("piece")
    process = subprocess.Popen([orlo, "piece", "score"], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL, env=environment() | {"TMPDIR": "tmp"}, preexec_fn=lambda: os.umask(0))
    with open("piece", "wb") as writer:
        wait_for("a temporary file", lambda: os.listdir("tmp"))
        mode = os.stat(os.path.join("tmp", os.listdir("tmp")[0])).st_mode & 0o7777
        writer.write(PIECE)
    must(process.wait(TIME_LIMIT) == 0 and mode == 0o600, f"status {process.returncode}, mode {mode:o}")
    must(read("score") == SCORE and os.listdir("tmp") == [], "the score, and nothing left")


def folder_that_cannot_hold_it_is_passed_over():
    write("piece", PIECE)
    for folder in ("nowhere", "", "piece", "x" * 5000):
        must(run("piece", "score", env={"TMPDIR": folder})[0] == 0, f"TMPDIR={folder}")


OTHERS = [longer_files_of_yesterday_are_replaced, empty_piece_leaves_nothing_of_yesterday, new_files_of_a_failed_run_are_empty,
          devices_and_pipes_are_written_to, links_to_new_files_are_followed, neighbours_are_no_clash, missing_input_is_told_first,
          temporary_file_is_the_users_alone, folder_that_cannot_hold_it_is_passed_over]


def rows(sanitized):
    for first, second in itertools.permutations(ROLES, 2):
        for spelling in SPELLINGS:
            yield f"{first} is {second}, {spelling}", lambda a=first, b=second, s=spelling: pair_is_refused(a, b, s, True)
            if spelling not in NEED_THE_FILE and "input" not in (first, second):
                yield (f"{first} is {second} and new, {spelling}",
                       lambda a=first, b=second, s=spelling: pair_is_refused(a, b, s, False))
    for output, spelling in itertools.product(("output", "log", "trace"), SPELLINGS):
        yield f"include is {output}, {spelling}", lambda o=output, s=spelling: include_is_refused(o, s)
    for name in FAILURES:
        if not (sanitized and name in SANITIZED_OUT):
            yield name, lambda n=name: failure_leaves_yesterday(n)
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        yield f"ended by {number.name}", lambda n=number: signal_leaves_yesterday(n)
    for function in OTHERS:
        yield function.__name__.replace("_", " "), function


def main():
    global orlo
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--orlo", required=True)
    parser.add_argument("--sanitized", action="store_true", help="the program is built with sanitizers")
    args = parser.parse_args()
    orlo = os.path.abspath(args.orlo)
    count = failed = 0
    home = os.getcwd()
    for name, function in rows(args.sanitized):
        count += 1
        with tempfile.TemporaryDirectory() as folder:
            os.chdir(folder)
            try:
                function()
            except (Failure, subprocess.TimeoutExpired) as reason:
                failed += 1
                print(f"{name}: {reason}")
            os.chdir(home)
    print(f"{count} rows, {failed} failed")
    return 1 if failed or not count else 0


if __name__ == "__main__":
    sys.exit(main())
