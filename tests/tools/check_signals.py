"""Signals at random moments: check_signals.py --folder FOLDER [--orlo N] [--view N] [--explain N] [--seed N]

FOLDER is that of the programs. Each of N runs of orlo, of orlo-view with an orlo that has no end, and of orlo-explain, gets an ending
signal while it starts, or a little later. Every run must end by that signal and leave neither a temporary file nor a process. Some
runs of orlo-explain are short, so that the signal comes while the document is written, or too late: there is the document of
yesterday then, or all of the new one.
"""

import argparse
import concurrent.futures
import os
import random
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
import run_case

SIGNALS = signal.SIGINT, signal.SIGTERM, signal.SIGHUP
START = 0.005  # seconds in which three of four signals come
LATER = 0.060  # the others come up to here
LONG = 10  # seconds after which a signal counts as ignored

# a piece that takes minutes; the pipe that is the other input has no end
BUSY = ["pipe.orlo", "endless.orlo"]
ENDLESS = "i1 = 4 0 3000 {\np2 .01\np3 1\np4 RA(T 1 [0 1])\n}\n" * 200
SHORT = "i1 = 4 0 -3000 {\np2 .01\np3 1\np4 RA(T 1 [0 1])\n}\n"
YESTERDAY = b"of yesterday\n"


class Place:
    """A folder with inputs that keep orlo busy, a copy of each program, and an empty folder for temporary files."""

    def __init__(self, programs):
        self.folder = tempfile.TemporaryDirectory(prefix="orlo-signals-")
        self.path = self.folder.name
        self.programs = {name: shutil.copy(os.path.join(programs, name), self.path) for name in ("orlo", "orlo-view", "orlo-explain")}
        for name, text in ("endless.orlo", ENDLESS), ("short.orlo", SHORT):
            with open(os.path.join(self.path, name), "w", encoding="ascii") as file:
                file.write(text)
        self.document = subprocess.run([self.programs["orlo-explain"], "short.orlo"], cwd=self.path, capture_output=True,
                                       check=True).stdout
        os.mkfifo(os.path.join(self.path, "pipe.orlo"))
        self.pipe = os.open(os.path.join(self.path, "pipe.orlo"), os.O_RDWR)  # so that nobody waits for a writer

    def close(self):
        os.close(self.pipe)
        self.folder.cleanup()


def is_closed(reader):
    """Has every process ended that could write into the pipe?"""
    ready, _, _ = select.select([reader], [], [], 0)
    return bool(ready)


def read(path):
    with open(path, "rb") as file:
        return file.read()


def wrong_end(place, program, name, status, number, out):
    """What is wrong with how a run has ended and with what it has written."""
    if program != "orlo-explain":
        return f"status {status}" if status != -number else ""
    got = read(out)
    if status == 0 and name == "short.orlo":
        return "" if got == place.document else "status 0 without the document"
    if status != -number:
        return f"status {status}"
    # a signal may come when the document has its name already
    complete = name == "short.orlo" and got == place.document
    return "" if got == YESTERDAY or complete else f"{len(got)} bytes are left in place of the document"


def one_run(place, program, number, moment, name):
    """What is wrong with a run that gets a signal at a moment; empty when nothing is."""
    temporary = tempfile.mkdtemp(dir=place.path)
    reader, writer = os.pipe()
    out = os.path.join(temporary, "score")
    if program == "orlo-explain":
        with open(out, "wb") as file:
            file.write(YESTERDAY)
    args = {"orlo": ["-s", name, out], "orlo-view": ["-i", "orlo", "-o", "picture.svg", name], "orlo-explain": ["-o", out, name]}[program]
    variables = run_case.environment() | run_case.NO_LEAKS | {"TMPDIR": temporary}
    with subprocess.Popen([place.programs[program], *args], cwd=place.path, env=variables,
                          stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, pass_fds=[writer]) as run:
        os.close(writer)
        end = time.perf_counter() + moment
        while time.perf_counter() < end:
            pass
        run.send_signal(number)
        fault = ""
        try:
            status = run.wait(timeout=LONG)
        except subprocess.TimeoutExpired:
            run.kill()
            status = run.wait()
            fault = "ignored"
    fault = fault or wrong_end(place, program, name, status, number, out)
    if not is_closed(reader):
        fault += " a process is left"
    os.close(reader)
    left = [file for file in os.listdir(temporary) if file != "score"]  # a score may have been begun
    if left:
        fault += f" files are left: {left}"
    shutil.rmtree(temporary)
    return fault and f"{program} {name}, {signal.Signals(number).name} after {1000 * moment:.2f} ms: {fault}"


def moments(count, choice, names):
    for i in range(count):
        moment = choice.uniform(0, START) if i % 4 else choice.uniform(START, LATER)
        yield choice.choice(SIGNALS), moment, choice.choice(names)


def main():
    parser = argparse.ArgumentParser(description="send signals at random moments")
    parser.add_argument("--folder", required=True, help="folder of the programs")
    parser.add_argument("--orlo", type=int, default=0, metavar="N", help="runs of orlo")
    parser.add_argument("--view", type=int, default=0, metavar="N", help="runs of orlo-view")
    parser.add_argument("--explain", type=int, default=0, metavar="N", help="runs of orlo-explain")
    parser.add_argument("--seed", type=int, default=random.randrange(1 << 32), help="of the moments")
    options = parser.parse_args()
    for number in SIGNALS:
        signal.signal(number, signal.SIG_DFL)  # what this test's caller ignores its children would ignore, too
    choice = random.Random(options.seed)
    place = Place(options.folder)
    runs = [("orlo", *moment) for moment in moments(options.orlo, choice, BUSY)]
    runs += [("orlo-view", *moment) for moment in moments(options.view, choice, BUSY)]
    runs += [("orlo-explain", *moment) for moment in moments(options.explain, choice, [*BUSY, "short.orlo", "short.orlo"])]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        faults = [fault for fault in pool.map(lambda run: one_run(place, *run), runs) if fault]
    place.close()
    print("\n".join(faults[:20]))
    print(f"seed {options.seed}: {options.orlo} signals to orlo, {options.view} to orlo-view, "
          f"{options.explain} to orlo-explain: {len(faults)} not as they should be")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
