"""What cases can't show of orlo-view: check_view.py --orlo PROGRAM --view PROGRAM

Signals, the temporary file, orlo on PATH or missing, pipes that are closed, files that are too large, pictures onto the score
itself, names with characters of the shell, and what happens when files or memory can't be had.
"""

import argparse
import os
import shutil
import signal
import stat
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
import run_case

PIECE = "i1 = 4 0 2 {\np2 1\np3 1\np4(op) no c4 e\n}\n"
SLOW_ORLO = "#!/bin/sh\ntrap '' INT HUP\nsleep 60 &\nchild=$!\ntrap 'kill $child; echo ended >ended; exit 1' TERM\necho >started\nwait\n"
LOUD_ORLO = "#!/bin/sh\nhead -c 1500000 /dev/zero | tr '\\0' x\nexit 3\n"
LARGE_ORLO = "#!/bin/sh\ntruncate -s 1000000000 \"$3\"\n"
FAILING_ORLO = "#!/bin/sh\nexit 3\n"
STUBBORN_ORLO = "#!/bin/sh\ntrap '' TERM\necho $$ >started\nwhile :; do sleep .05; done\n"
KILLED_ORLO = "#!/bin/sh\nkill -KILL $$\n"

faults = []


def expect(condition, fault):
    if not condition:
        faults.append(fault)


def write(path, text, mode=0o644):
    with open(path, "w", encoding="ascii") as file:
        file.write(text)
    os.chmod(path, mode)


class Place:
    """A folder with a copy of orlo-view, a piece, and an empty folder for temporary files."""

    def __init__(self, view, orlo=None):
        self.folder = tempfile.TemporaryDirectory(prefix="orlo-view-check-")
        self.path = self.folder.name
        self.view = os.path.join(self.path, "orlo-view")
        shutil.copy(view, self.view)
        if orlo:
            write(os.path.join(self.path, "orlo"), orlo, 0o755)
        self.temporary = os.path.join(self.path, "temporary")
        os.mkdir(self.temporary)
        write(os.path.join(self.path, "piece.orlo"), PIECE)
        self.env = run_case.environment() | {"TMPDIR": self.temporary}

    def run(self, *args, **options):
        return subprocess.run([self.view, *args], cwd=self.path, env=self.env | options.pop("env", {}), text=True, timeout=60,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False, **options)

    def has(self, name):
        return os.path.exists(os.path.join(self.path, name))

    def left(self):
        return os.listdir(self.temporary)


def wait_until(condition):
    end = time.monotonic() + 30
    while not condition() and time.monotonic() < end:
        time.sleep(0.02)
    return condition()


def check_signals(view):
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        place = Place(view, SLOW_ORLO)
        with subprocess.Popen([place.view, "-f", "txt", "piece.orlo"], cwd=place.path, env=place.env) as run:
            expect(wait_until(lambda: place.has("started")), "orlo beside orlo-view was not started")
            expect(len(place.left()) == 1, f"temporary files: {place.left()}")
            expect(os.stat(os.path.join(place.temporary, place.left()[0])).st_mode & 0o77 == 0, "others may read the temporary file")
            run.send_signal(number)
            status = run.wait(timeout=30)
        expect(status == -number, f"signal {number}: status {status}")
        expect(place.left() == [], f"signal {number}: left over: {place.left()}")
        expect(wait_until(lambda: place.has("ended")), f"signal {number}: orlo goes on")


def check_stubborn_orlo(view):
    """An orlo that does not end when it is asked to is made to."""
    place = Place(view, STUBBORN_ORLO)
    with subprocess.Popen([place.view, "-f", "txt", "piece.orlo"], cwd=place.path, env=place.env) as run:
        expect(wait_until(lambda: place.has("started")), "orlo beside orlo-view was not started")
        run.send_signal(signal.SIGTERM)
        status = run.wait(timeout=30)
    with open(os.path.join(place.path, "started"), encoding="ascii") as file:
        process = int(file.read())
    expect(status == -signal.SIGTERM and not os.path.exists(f"/proc/{process}"), f"an orlo that does not end: {status}")
    expect(place.left() == [], f"an orlo that does not end: left over: {place.left()}")


def check_killed_view(view):
    """Where the system can tell, orlo also ends with an orlo-view that can't clear away any more."""
    if not sys.platform.startswith("linux"):
        return
    place = Place(view, SLOW_ORLO)
    with subprocess.Popen([place.view, "-f", "txt", "piece.orlo"], cwd=place.path, env=place.env) as run:
        expect(wait_until(lambda: place.has("started")), "orlo beside orlo-view was not started")
        run.kill()
    expect(wait_until(lambda: place.has("ended")), "orlo-view is killed: orlo goes on")


def check_ignored_child(view):
    """A caller that ignores its children's ends does not hide that orlo has failed."""
    place = Place(view, FAILING_ORLO)
    done = place.run("-f", "txt", "piece.orlo", preexec_fn=lambda: signal.signal(signal.SIGCHLD, signal.SIG_IGN))
    expect(done.returncode == 1 and "made no score" in done.stderr, f"children's ends are ignored: {done}")


def check_ignored_signal(view):
    place = Place(view, "#!/bin/sh\necho started >started\nwhile [ ! -e go ]; do sleep .05; done\necho 'i1 0 1' >\"$3\"\n")
    with subprocess.Popen(["sh", "-c", "trap '' HUP; exec ./orlo-view -f txt piece.orlo"], cwd=place.path, env=place.env,
                          stdout=subprocess.PIPE, text=True) as run:
        expect(wait_until(lambda: place.has("started")), "orlo was not started")
        run.send_signal(signal.SIGHUP)
        write(os.path.join(place.path, "go"), "")
        shown = run.communicate(timeout=30)[0]
    expect(run.returncode == 0 and "1 event" in shown, f"a signal that is ignored: {run.returncode} {shown}")


def check_programs(view, orlo):
    place = Place(view)
    done = place.run("-f", "txt", "piece.orlo", env={"PATH": os.path.dirname(orlo)})
    expect(done.returncode == 0 and "2 events" in done.stdout, f"orlo on PATH: {done}")
    done = place.run("-f", "txt", "piece.orlo", env={"PATH": place.temporary})
    expect(done.returncode == 1 and "can't run orlo" in done.stderr, f"no orlo: {done}")
    expect(place.left() == [], f"no orlo: left over: {place.left()}")
    short, long = place.run("-V"), place.run("--version")
    expect(short.returncode == 0 and short.stdout.startswith("orlo-view ") and short.stdout == long.stdout, f"version: {short} {long}")
    loud = Place(view, LOUD_ORLO)
    done = loud.run("-f", "txt", "piece.orlo")
    expect(done.returncode == 1 and done.stderr.count("x") == 1_000_000 and done.stdout == "",
           f"loud orlo: {done.returncode} {len(done.stderr)}")
    killed = Place(view, KILLED_ORLO)
    done = killed.run("-f", "txt", "piece.orlo")
    expect(done.returncode == 1 and "ended by signal 9" in done.stderr, f"killed orlo: {done}")
    expect(killed.left() == [], f"killed orlo: left over: {killed.left()}")


def check_pipes(view):
    place = Place(view)
    write(os.path.join(place.path, "a.sco"), "i1 0 1\n")
    done = subprocess.run(["sh", "-c", "./orlo-view -h >&-; echo $?"], cwd=place.path, env=place.env, text=True, capture_output=True, check=False)
    expect(done.stdout == "1\n" and "can't write the standard output" in done.stderr, f"closed output: {done}")
    done = subprocess.run(["bash", "-c", "trap '' PIPE; (sleep .2; ./orlo-view -f txt a.sco; echo $? >status) | true; wait; cat status"],
                          cwd=place.path, env=place.env, text=True, capture_output=True, check=False)
    expect(done.stdout == "1\n" and "Broken pipe" in done.stderr, f"broken pipe: {done}")
    os.mkfifo(os.path.join(place.path, "fifo"))
    with subprocess.Popen(["sh", "-c", "cat piece.orlo >fifo"], cwd=place.path):
        done = place.run("-f", "txt", "fifo")
    expect(done.returncode == 1 and "can't be read twice" in done.stderr, f"named pipe: {done}")
    text = "i1 0 1 8.00\n" * 20000
    done = place.run("-f", "txt", "-", input=text)
    expect("20000 events" in done.stdout, f"long standard input: {done.stderr}")


def check_mode(view):
    """Who may read and write a file that is made is left to the umask."""
    place = Place(view)
    write(os.path.join(place.path, "a.sco"), "i1 0 1\n")
    for mask, mode in (0, 0o666), (0o027, 0o640):
        place.run("-f", "svg", "-o", f"{mask}.svg", "a.sco", umask=mask)
        made = stat.S_IMODE(os.stat(os.path.join(place.path, f"{mask}.svg")).st_mode)
        expect(made == mode, f"umask {mask:o}: mode {made:o}")


def check_onto_itself(view):
    place = Place(view)
    path = os.path.join(place.path, "a $(x)'\";.sco")
    write(path, "i1 0 1\n")
    for redirected in ("- -o \"$1\" <\"$1\"", "- <\"$1\" >>\"$1\"", "\"$1\" >>\"$1\""):
        done = subprocess.run(["sh", "-c", "./orlo-view -f txt " + redirected, "sh", path], cwd=place.path, env=place.env, text=True,
                              capture_output=True, check=False)
        expect(done.returncode == 1 and "would be overwritten" in done.stderr, f"{redirected}: {done}")
    with open(path, encoding="ascii") as file:
        expect(file.read() == "i1 0 1\n", "the score was changed")
    piece = os.path.join(place.path, "a $(x)'\";.orlo")
    os.rename(os.path.join(place.path, "piece.orlo"), piece)
    write(os.path.join(place.path, "orlo"), "#!/bin/sh\ncat \"$2\" >/dev/null && echo 'i1 0 1' >\"$3\"\n", 0o755)
    done = place.run("-f", "txt", piece)
    expect(done.returncode == 0 and "1 event" in done.stdout, f"a name with characters of the shell: {done}")


def check_want(view):
    """No more files can be opened, no more memory can be had."""
    place = Place(view)
    done = subprocess.run(["bash", "-c", "ulimit -n 4; exec ./orlo-view -f txt piece.orlo"], cwd=place.path, env=place.env, text=True,
                          capture_output=True, check=False)
    expect(done.returncode == 1 and "can't run orlo: Too many open files" in done.stderr, f"no more files: {done}")
    expect(place.left() == [], f"no more files: left over: {place.left()}")
    with open(view, "rb") as file:
        if b"__asan_init" in file.read():  # its own memory would be refused
            return
    with open(os.path.join(place.path, "large.sco"), "wb") as file:
        file.truncate(1 << 30)
    done = subprocess.run(["bash", "-c", "ulimit -v 600000; exec ./orlo-view -f txt large.sco"], cwd=place.path, env=place.env,
                          text=True, capture_output=True, check=False)
    expect(done.returncode == 1 and "not enough memory" in done.stderr, f"no more memory: {done}")
    write(os.path.join(place.path, "meminfo"), "MemAvailable: 64000 kB\n")
    mount = ["unshare", "--mount", "sh", "-c", 'mount --bind meminfo /proc/meminfo && exec "$0" "$@"']
    try:
        subprocess.run([*mount, "true"], cwd=place.path, capture_output=True, check=True)
    except (OSError, subprocess.CalledProcessError):
        return  # that takes rights
    done = subprocess.run([*mount, "./orlo-view", "-f", "txt", "large.sco"], cwd=place.path, env=place.env, text=True,
                          capture_output=True, check=False)
    expect(done.returncode == 1 and done.stderr == "orlo-view: not enough memory\n", f"more than the system has: {done}")


def check_want_for_score(view):
    """No more memory can be had for the score that orlo has made."""
    with open(view, "rb") as file:
        if b"__asan_init" in file.read():
            return
    place = Place(view, LARGE_ORLO)
    done = subprocess.run(["bash", "-c", "ulimit -v 600000; exec ./orlo-view -f txt piece.orlo"], cwd=place.path, env=place.env,
                          text=True, capture_output=True, check=False)
    expect(done.returncode == 1 and "not enough memory" in done.stderr, f"no more memory for a score: {done}")
    expect(place.left() == [], f"no more memory for a score: left over: {place.left()}")


def check_size(view):
    place = Place(view)
    path = os.path.join(place.path, "large.sco")
    with open(path, "wb") as file:
        file.truncate((1 << 30) + 1)
    done = place.run("-f", "txt", "large.sco")
    expect(done.returncode == 1 and "more than 1073741824 bytes" in done.stderr, f"too large: {done}")


def main():
    parser = argparse.ArgumentParser(description="check what cases can't show of orlo-view")
    parser.add_argument("--orlo", required=True, help="the program orlo")
    parser.add_argument("--view", required=True, help="the program orlo-view")
    options = parser.parse_args()
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, signal.SIG_DFL)  # what this test's caller ignores its children would ignore, too
    check_signals(options.view)
    check_stubborn_orlo(options.view)
    check_killed_view(options.view)
    check_ignored_child(options.view)
    check_ignored_signal(options.view)
    check_programs(options.view, os.path.abspath(options.orlo))
    check_pipes(options.view)
    check_mode(options.view)
    check_onto_itself(options.view)
    check_want(options.view)
    check_want_for_score(options.view)
    check_size(options.view)
    print("\n".join(faults or ["signals, programs, pipes and sizes are as they should be"]))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
