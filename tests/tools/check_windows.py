"""What a Windows program does with files, which cases can't show: check_windows.py --folder FOLDER

The program of same_everywhere.py's variant wine, which is in FOLDER/wine, is run by Wine: one file by several spellings is refused,
names are in UTF-8, devices are nobody's files, and an earlier file, or one for the time being, is as it should be when a run fails
or is ended by Ctrl-C. Ends with status 77 where the program can't be had.
"""

import argparse
import glob
import os
import signal
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [HERE, os.path.join(HERE, "..")]
from case_file import command_beside
from run_case import environment
from same_everywhere import NOT_STARTED, wine, wine_server
from tried_runs import Failure, PIECE, SCORE, TIME_LIMIT, must, read, wait_for, write

CLASH = b"\nERROR: You can't use a filename multiple times!\n\n"
LONG_PIECE = (b"i1 = 5 0 10000 {\np2 rh 32\np3 .9\np4(db) db 70 76\np5 no c4 e g\n}\n") * 400  # some seconds
BROKEN_PIECE = b"i1 = 3 0 1 {\np2 xx\n}\n"
CTRL_C = signal.SIGINT  # which Wine makes of it

program = None


def start(name, *args):
    return subprocess.Popen([*command_beside(program.command, name), *args], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                            stderr=open("screen", "wb"), env=environment() | program.variables)


def run(*args, name="orlo"):
    """A run in the working folder. Returns status and screen."""
    with start(name, *args) as process:
        status = process.wait(TIME_LIMIT)
    screen = read("screen")
    os.remove("screen")
    return run(*args, name=name) if NOT_STARTED in screen else (status, screen)


def temporary_files():
    prefix = program.variables["WINEPREFIX"]
    return [path for folder in ("users/*/Temp", "windows/temp") for path in glob.glob(os.path.join(prefix, "drive_c", folder, "file*"))]


def files():
    return {name: read(name) for name in os.listdir(".") if os.path.isfile(name)}


# what is tried, each in a folder of its own with the file in.orlo

def spelled_otherwise(name, spelling):
    """Two outputs of one name, new ones and then where there is one; and the input as an output."""
    def refused(*args):
        before = files()
        must(run(*args) == (1, CLASH), f"{args} is not refused")
        must(files() == before, f"{args} has changed files")

    refused("-l", spelling(name), "in.orlo", name)
    write(name, b"before")
    refused("-l", spelling(name), "in.orlo", name)
    os.rename("in.orlo", name)
    refused(name, spelling(name))


def neighbours():
    must(run("-l", "OUT.log", "-x", "out", "in.orlo", "out.sco")[0] == 0, "names that differ are refused")
    must(read("out.sco") == SCORE, "the score is another")


def devices():
    must(run("-l", "nul", "-x", "NUL.txt", "in.orlo", "Nul")[0] == 0, "a device is taken for a file")
    must(run("-o", "nul", "in.orlo", name="orlo-explain")[0] == 0, "a document can't go to a device")
    must(list(files()) == ["in.orlo"], "a device has become a file")


def names_in_utf8():
    os.rename("in.orlo", "Stück.orlo")
    status, screen = run("-l", "Протокол", "Stück.orlo", "夏 ♪.sco")
    must(status == 0 and "Stück.orlo".encode() in screen, "a name is lost")
    must(read("夏 ♪.sco") == SCORE and os.path.isfile("Протокол"), "a file has another name")


def failing_run():
    write("in.orlo", BROKEN_PIECE)
    write("out.sco", b"before")
    must(run("in.orlo", "out.sco")[0] == 1, "the fault is not found")
    must(read("out.sco") == b"before", "the earlier score is gone")


def document():
    write("out.json", b"before")
    must(run("-o", "out.json", "in.orlo", name="orlo-explain")[0] == 0, "the run failed")
    must(read("out.json").startswith(b"{"), "the document does not replace the earlier one")
    must(run("-o", "IN.orlo", "in.orlo", name="orlo-explain")[0] == 1 and read("in.orlo") == PIECE, "the piece is written over")
    os.chmod("out.json", 0o444)
    before = files()
    must(run("-o", "out.json", "in.orlo", name="orlo-explain")[0] == 1, "a protected file is replaced")
    must(files() == before, "a file is left")


def ctrl_c(name, *args):
    write("in.orlo", LONG_PIECE)
    write("out", b"before")
    with start(name, *args) as process:
        wait_for("the temporary file", temporary_files)
        time.sleep(0.2)
        must(process.poll() is None, "the run is over too soon")
        process.send_signal(CTRL_C)
        process.wait(TIME_LIMIT)
    return read("screen")


def score_and_ctrl_c():
    must(b"events generated" in ctrl_c("orlo", "in.orlo", "new"), "what was to be shown is lost")


def document_and_ctrl_c():
    ctrl_c("orlo-explain", "-o", "out", "in.orlo")
    must(read("out") == b"before" and sorted(files()) == ["in.orlo", "out", "screen"], "an earlier document is gone, or a part is left")


SPELLINGS = {
    "in capitals": str.upper,
    "with a backslash": lambda name: ".\\" + name,
    "with a dot at its end": lambda name: name + ".",
    "with a blank at its end": lambda name: name + " ",
    "with a drive": lambda name: "Z:" + os.path.abspath(name).replace("/", "\\"),
    "from the drive's folder": lambda name: "Z:" + name,
}
CHECKS = {
    **{f"a file that is named again {how}": lambda spelling=spelling: spelled_otherwise("out.sco", spelling)
       for how, spelling in SPELLINGS.items()},
    "letters beyond A to Z in capitals": lambda: spelled_otherwise("ausgäbe.sco", str.upper),
    "names that are nearly the same": neighbours,
    "devices": devices,
    "names in UTF-8": names_in_utf8,
    "a run that fails": failing_run,
    "a document": document,
    "Ctrl-C and a score": score_and_ctrl_c,
    "Ctrl-C and a document": document_and_ctrl_c,
}


def main():
    global program
    parser = argparse.ArgumentParser(description="check what the program for Windows does with files")
    parser.add_argument("--folder", required=True, help="where variants are built")
    program = wine(os.path.abspath(os.path.join(parser.parse_args().folder, "wine")))
    failed = 0
    with wine_server(program):
        for name, check in CHECKS.items():
            with tempfile.TemporaryDirectory(prefix="orlo-windows-") as folder:
                os.chdir(folder)
                write("in.orlo", PIECE)
                try:
                    check()
                    must(not temporary_files(), "a temporary file is left")
                    print(f"ok: {name}")
                except (Failure, subprocess.TimeoutExpired) as fault:
                    failed += 1
                    print(f"FAIL: {name}: {fault}")
                os.chdir("/")
    print(f"{len(CHECKS)} checks, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
