"""No fault of a file and no signal may get the better of a run: check_faults.py --orlo PROGRAM [--megabytes N] [NAME...]

Every check runs the program in an empty folder of its own. PROGRAM is the build of orlo that names its temporary files
tmp/0, tmp/1, ... in the working folder (tests/faults), so that a check can see that none is left, and stand in the way.
With --megabytes, a run over a large input that takes more memory than that is a failure. With names, those checks alone.
"""

import argparse
import os
import resource
import select
import signal
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [HERE, os.path.join(HERE, "..")]
from run_case import NO_LEAKS, environment, sanitizer_report
from tried_runs import Failure, PIECE, SCORE, TIME_LIMIT, read, wait_for, write

NOBODY = 65534  # a user without rights
SIGNALS = signal.SIGINT, signal.SIGTERM, signal.SIGHUP

MANY_EVENTS = b"i1 = 3 0 -5000 {\np2 1\np3 1\n}\n"  # a long score
MANY_NOTICES = b"#define m(a) #$a#\n" + 5000 * b"$m( )\n" + PIECE  # a long log
MANY_LINES = 5000 * b"; a line that the trace repeats as it is\n" + PIECE  # a long trace
LONG_WORK = b"i1 = 4 0 -100000 {\np2 1\np3 1\np4 rw(T 1 0 1 .0000001 .5)\n}\n"
GREEDY = b"i1 = 3 0 -1000000000000 {\np2 1\np3 1\n}\n"  # more events than any machine has memory for
NO_MEMORY = b"\nERROR: Line 3: Yikes, out of memory!\np3 1 \n^\n"

orlo, megabytes = None, None
checks = {}  # name: function


class Skip(Exception):
    """Why a check can't be made here."""


def check(function):
    checks[function.__name__.replace("_", "-")] = function
    return function


def start(*args, through=(), prepare=None, env=None, **more):
    """Starts a run, if need be through another command; its screen goes to the file "screen"."""
    def before():
        for number in SIGNALS:
            signal.signal(number, signal.SIG_DFL)  # whatever these checks were started with
        if prepare:
            prepare()
    with open("screen", "wb") as screen:
        return subprocess.Popen([*through, orlo, *args], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=screen,
                                env=environment() | (env or {}), preexec_fn=before, **more)


def end(process):
    """Waits for a run. Returns its status, minus the number of the signal that ended it, and its screen."""
    try:
        status = process.wait(TIME_LIMIT)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()
        raise Failure("still running: killed") from None
    screen = read("screen")
    if sanitizer_report(screen):
        raise Failure("a sanitizer report:\n" + screen.decode(errors="replace"))
    return status, screen


def expect(result, status, *messages):
    """A run that ended with a status and said this at its end, and left no temporary file."""
    if result[0] != status:
        raise Failure(f"status {result[0]}, expected {status}; the screen: {result[1][-500:]!r}")
    ending = b"".join(messages)
    if not result[1].endswith(ending):
        raise Failure(f"the screen ends with {result[1][-500:]!r}, expected {ending!r}")
    found = sorted(os.listdir("tmp")) if os.path.isdir("tmp") else []
    if found:
        raise Failure(f"temporary files: {found}")


def run(*args, **more):
    return end(start(*args, **more))


def seconds_worked(process):
    """Processor time of a run so far."""
    with open(f"/proc/{process.pid}/stat", encoding="ascii") as file:
        return int(file.read().rpartition(")")[2].split()[11]) / os.sysconf("SC_CLK_TCK")


def cant_open(name):
    return f'\nERROR: Can\'t open "{name}".\n\n'.encode()


def cant_write(name):
    return f'\nERROR: Can\'t write "{name}".\n\n'.encode()


def run_as_other(*args):
    """A run by a user who may not read and write everything, as root may."""
    if os.geteuid() != 0:
        return run(*args)
    try:
        os.chown(".", NOBODY, NOBODY)
        return run(*args, user=NOBODY, group=NOBODY, extra_groups=[])
    except OSError as reason:
        raise Skip(f"this is root, and the program can't be run as another user: {reason}") from None


def limit_size(size):
    return lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))


# input

@check
def input_missing():
    expect(run("nowhere", "out.sco"), 1, cant_open("nowhere"))


@check
def input_unreadable():
    write("in.orlo", PIECE)
    os.chmod("in.orlo", 0)
    expect(run_as_other("in.orlo", "out.sco"), 1, cant_open("in.orlo"))


@check
def input_folder():
    os.mkdir("folder")
    expect(run("folder", "out.sco"), 1, b'\nERROR: Can\'t read "folder".\n\n')


@check
def input_empty():
    write("in.orlo", b"")
    expect(run("in.orlo", "out.sco"), 0, b"all i-blocks =    0.00 (secs)\n\n")
    if read("out.sco") != b"\ne\n":
        raise Failure("another score than that of nothing")


@check
def input_all_zero_bytes():
    write("in.orlo", bytes(1000000))
    expect(run("in.orlo", "out.sco"), 0, b"all i-blocks =    0.00 (secs)\n\n")
    if read("out.sco") != b"\ne\n":
        raise Failure("another score than that of nothing")


@check
def input_endless():
    expect(run("/dev/zero", "out.sco", prepare=limit_size(1000000)), 1, b"\nERROR: Can't write temporary file\n\n")


def check_memory():
    peak = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss / 1024
    if megabytes and peak > megabytes:
        raise Failure(f"a run took {peak:.0f} megabytes")


def write_long_line(before, byte, after):
    with open("in.orlo", "wb") as file:
        file.write(before)
        for _ in range(100):
            file.write(byte * 1000000)
        file.write(after)


@check
def input_100_megabytes_on_a_line():
    write_long_line(b"i1 = 3 0 1 { p2 1 p3 ", b" ", b"1 }\n")
    expect(run("in.orlo", "out.sco"), 0, b"all i-blocks =    1.00 (secs)\n\n")
    if read("out.sco") != SCORE:
        raise Failure("another score than that of the piece without the blanks")
    check_memory()


@check
def input_100_megabytes_of_a_letter():
    write_long_line(b"", b"x", b"")
    expect(run("in.orlo", "out.sco"), 1, b"x" * 2047 + b"\n^\n")
    check_memory()


@check
def input_100_megabytes_of_digits():
    write_long_line(b"i1 = 3 0 1 { p2 ", b"1", b"")
    expect(run("in.orlo", "out.sco"), 1, b'\nERROR: Reached end-of-file before "}" was found.\n\n')
    check_memory()


def with_mount(mount):
    """The command that runs another one where something stands in place of a part of /proc."""
    command = ["unshare", "--mount", "sh", "-c", f'{mount} && exec "$0" "$@"']
    try:
        tried = subprocess.run([*command, "true"], capture_output=True, text=True, timeout=TIME_LIMIT, check=False)
    except OSError as reason:
        raise Skip(str(reason)) from None
    if tried.returncode != 0:
        raise Skip(tried.stderr.strip())
    return command


def without_sanitizers():
    with open(orlo, "rb") as file:
        if b"__asan_init" in file.read():
            raise Skip("the sanitizers want memory and a /proc of their own")


@check
def memory_is_limited_to_what_the_system_has():
    """More events than there is memory for end the run with a message, not by the system's hand."""
    without_sanitizers()
    write("in.orlo", GREEDY)
    for lines in b"MemAvailable:   64000 kB\nSwapFree:   0 kB\n", b"MemAvailable:   32000 kB\nSwapFree:   32000 kB\n":
        write("meminfo", b"MemTotal:  100000 kB\n" + lines)
        result = run("in.orlo", "out.sco", through=with_mount("mount --bind meminfo /proc/meminfo"))
        expect(result, 1, NO_MEMORY)
    check_memory()


@check
def memory_is_limited_to_what_a_made_up_group_leaves():
    """A control group of version 2, where nothing but its files is made: the limit is that of an ancestor, less what it holds."""
    without_sanitizers()
    write("in.orlo", GREEDY)
    folder = os.path.realpath("groups")
    os.makedirs("groups/one/two")
    write("groups/one/memory.max", b"%d\n" % (200 << 20))
    write("groups/one/memory.current", b"%d\n" % (190 << 20))
    write("groups/one/memory.stat", b"anon 0\nactive_file %d\ninactive_file %d\n" % (10 << 20, 20 << 20))
    write("mountinfo", b"25 23 0:23 / %s rw - cgroup2 cgroup2 rw\n" % folder.encode())
    write("cgroup", b"0::/one/two\n")
    mount = "mount --bind mountinfo /proc/$$/mountinfo && mount --bind cgroup /proc/$$/cgroup"
    expect(run("in.orlo", "out.sco", through=with_mount(mount)), 1, NO_MEMORY)
    check_memory()


def make_group(mebibytes):
    """A control group in that of this process, by which the system itself limits memory; returns its folder."""
    with open("/proc/self/cgroup", encoding="utf-8") as lines:
        groups = {controllers: path for _, controllers, path in (line.rstrip("\n").split(":", 2) for line in lines)}
    kinds = ("memory", "/sys/fs/cgroup/memory", "memory.limit_in_bytes"), ("", "/sys/fs/cgroup", "memory.max")
    for controllers, hierarchy, limit in kinds:
        if controllers not in groups:
            continue
        folder = f"{hierarchy}{groups[controllers]}/orlo-{os.getpid()}"
        try:
            os.mkdir(folder)
        except OSError:
            continue
        if os.path.exists(f"{folder}/{limit}"):
            write(f"{folder}/{limit}", b"%d" % (mebibytes << 20))
            return folder
        os.rmdir(folder)
    raise Skip("no control group that limits memory can be made here")


@check
def memory_is_limited_to_what_the_group_leaves():
    """Where the system would end it in a group of 200 MiB, a run ends with a message; pages of files that were read are no loss."""
    without_sanitizers()
    write("in.orlo", GREEDY)
    with open("read", "wb") as file:
        for _ in range(180):
            file.write(bytes(1 << 20))
        file.flush()
        os.fsync(file.fileno())
        os.posix_fadvise(file.fileno(), 0, 0, os.POSIX_FADV_DONTNEED)  # so that it is the group that reads it
    folder = make_group(200)
    through = ["sh", "-c", f'echo $$ > {folder}/cgroup.procs && cat read read > /dev/null && exec "$0" "$@"']
    try:
        expect(run("in.orlo", "out.sco", through=through), 1, NO_MEMORY)
        write("in.orlo", b"i1 = 3 0 -1000000 {\np2 1\np3 1\n}\n")
        status, _ = run("in.orlo", "out.sco", through=through)
        expect((status, b""), 0)  # 80 megabytes are left
    finally:
        os.rmdir(folder)


@check
def memory_limit_that_is_set_stays():
    """A lower limit than the one that the program sets itself is kept; a higher one is lowered to what the system has left."""
    without_sanitizers()
    mebibyte = 1 << 20
    write("meminfo", b"MemAvailable: %d kB\n" % (160 << 10))
    for given, least, most in (100, 100, 100), (1000, 150, 170):
        def limit(given=given):
            resource.setrlimit(resource.RLIMIT_DATA, (given * mebibyte, resource.RLIM_INFINITY))
        process, writer = start_reading(through=with_mount("mount --bind meminfo /proc/meminfo"), prepare=limit)
        with open(f"/proc/{process.pid}/limits", encoding="ascii") as lines:
            told = next(int(line.split()[3]) for line in lines if line.startswith("Max data size"))
        finish_input(writer)
        expect(end(process), 0)
        os.remove("pipe")
        if not least * mebibyte <= told <= most * mebibyte:
            raise Failure(f"limit of {told} bytes where {given} MiB were set and 160 MiB are left")


@check
def memory_of_unknown_size():
    """Where the system doesn't tell what it has, a run goes on without a limit."""
    without_sanitizers()
    write("in.orlo", PIECE)
    mounts = "mount -t tmpfs none /proc", "mount --bind in.orlo /proc/meminfo", "mount --bind in.orlo /proc/$$/statm"
    for mount in mounts:
        expect(run("in.orlo", "out.sco", through=with_mount(mount)), 0)
        if read("out.sco") != SCORE:
            raise Failure(f"another score behind: {mount}")
        os.remove("out.sco")


@check
def input_comments_a_million_deep():
    write("in.orlo", 1000000 * b"/*\n" + 1000000 * b"*/\n" + PIECE)
    expect(run("in.orlo", "out.sco"), 0, b"all i-blocks =    1.00 (secs)\n\n")


# include files

@check
def include_missing():
    write("in.orlo", b"#include |nowhere|\n")
    expect(run("in.orlo", "out.sco"), 1, b'\nBad include file name: "nowhere"\n\n')


@check
def include_folder():
    os.mkdir("folder")
    write("in.orlo", PIECE + b"#include |folder|\n")
    expect(run("in.orlo", "out.sco"), 1, b'\nBad include file name: "folder"\n\n')


@check
def include_input():
    write("in.orlo", PIECE + b"#include |in.orlo|\n")
    expect(run("in.orlo", "out.sco"), 1, b"\nToo many embedded include files! (Max = 12)\n")


@check
def include_temporary_file():
    """A file that grows while it is read ends with the room for its copy."""
    write("in.orlo", MANY_LINES + b"#include |tmp/0|\n")
    expect(run("in.orlo", "out.sco", prepare=limit_size(1000000)), 1, b"\nERROR: Can't write temporary file\n\n")


@check
def include_endless():
    write("in.orlo", PIECE + b"#include |/dev/zero|\n")
    expect(run("in.orlo", "out.sco", prepare=limit_size(1000000)), 1, b"\nERROR: Can't write temporary file\n\n")


# output, trace and log

def places():
    """The three files that a run writes: arguments with a name for one of them, and a piece that makes it long."""
    return {"output": (lambda name: ("-s", "in.orlo", name), MANY_EVENTS),
            "trace": (lambda name: ("-s", "-x", name, "in.orlo", "out.sco"), MANY_LINES),
            "log": (lambda name: ("-l", name, "in.orlo", "out.sco"), MANY_NOTICES)}


def for_each_place(function):
    """A check for each of the three files."""
    for place, (arguments, piece) in places().items():
        checks[f"{place}-{function.__name__.replace('_', '-')}"] = \
            lambda place=place, arguments=arguments, piece=piece: function(place, arguments, piece)


@for_each_place
def in_missing_folder(_, arguments, __):
    write("in.orlo", PIECE)
    expect(run(*arguments("nowhere/file")), 1, cant_open("nowhere/file"))


@for_each_place
def is_folder(_, arguments, __):
    write("in.orlo", PIECE)
    os.mkdir("folder")
    expect(run(*arguments("folder")), 1, cant_open("folder"))


@for_each_place
def on_full_device(_, arguments, piece):
    for text in PIECE, piece:  # lost when the file is closed, and before
        write("in.orlo", text)
        expect(run(*arguments("/dev/full")), 1, b"(secs)\n" + cant_write("/dev/full"))


@for_each_place
def has_reached_its_limit(_, arguments, piece):
    write("in.orlo", piece)
    # a limit that the temporary file keeps to, which is as long as the piece; the screen is no file, as the limit holds for all
    limited = subprocess.run([orlo, *arguments("file")], stderr=subprocess.PIPE, timeout=TIME_LIMIT, check=False,
                             env=environment(), preexec_fn=limit_size(len(piece) + 1000))
    expect((limited.returncode, limited.stderr), 1, cant_write("file"))


@for_each_place
def to_closed_pipe(_, arguments, piece):
    write("in.orlo", piece)
    os.mkfifo("pipe")
    reader = os.open("pipe", os.O_RDONLY | os.O_NONBLOCK)
    process = start(*arguments("pipe"))
    wait_for("the first bytes", lambda: select.select([reader], [], [], 0)[0])
    os.close(reader)
    expect(end(process), 1, cant_write("pipe"))


@check
def everything_on_full_device():
    for link in "trace", "log":
        os.symlink("/dev/full", link)
    write("in.orlo", PIECE)
    expect(run("-x", "trace", "-l", "log", "in.orlo", "/dev/full"), 1,
           cant_write("/dev/full"), cant_write("trace"), cant_write("log"))


@check
def error_comes_before_full_log():
    for link in "trace", "log":
        os.symlink("/dev/full", link)
    write("in.orlo", b"?\n")
    expect(run("-x", "trace", "-l", "log", "in.orlo", "out.sco"), 1,
           b"\n\nERROR: Line 1: Invalid G-block command or character.\n? \n^\n")


@check
def midi_file_on_full_device():
    write("in.orlo", b"i1 = 5 0 1 {\np2 1\np3 1\np4 1000\np5 60\n}\n")
    expect(run("-m", "in.orlo", "/dev/full"), 1, b"(secs)\n" + cant_write("/dev/full"))


@check
def screen_is_full():
    write("in.orlo", PIECE)
    with open("/dev/full", "wb") as full:
        status = subprocess.run([orlo, "in.orlo", "out.sco"], stderr=full, timeout=TIME_LIMIT, check=False).returncode
    expect((status, b""), 0)
    if read("out.sco") != SCORE:
        raise Failure("another score")


@check
def full_block_is_reported_a_hundred_thousand_times():
    """Each step of a count span in p2 that finds the block full is reported, up to a limit."""
    for steps, warnings in (100000, 99999), (100001, 100000), (100002, 100000):
        write("in.orlo", b"i1 = 3 0 1 {\np2 ra(-%d 1 1)\np3 1\n}\n" % steps)
        status, screen = run("in.orlo", "out.sco")
        expect((status, b""), 0)
        if screen.count(b"DDF data truncated") != warnings:
            raise Failure(f"{screen.count(b'DDF data truncated')} warnings of {steps} steps")


@check
def screen_is_closed():
    """What is meant for the screen reaches no file that was opened in its place."""
    write("in.orlo", PIECE)
    for closed in (2,), (1, 2), (0, 2), (0, 1, 2):
        status, _ = run("-x", "trace", "in.orlo", "out.sco", prepare=lambda closed=closed: [os.close(n) for n in closed])
        expect((status, b""), 0)
        if read("out.sco") != SCORE or read("trace") != PIECE.replace(b"\n", b" \n"):
            raise Failure(f"another score or trace where {closed} are closed")


@check
def too_few_open_files():
    write("in.orlo", b"#include |part|\n" + PIECE)
    write("part", b"")
    args = "-x", "trace", "-l", "log", "in.orlo", "out.sco"
    messages = [cant_open("out.sco"), cant_open("trace"), b"\nERROR: Can't open temporary file\n\n", cant_open("log"),
                b'\nBad include file name: "part"\n\n']
    for number, message in enumerate(messages, 4):  # three standard streams, the input, what follows
        def few(number=number):
            resource.setrlimit(resource.RLIMIT_NOFILE, (number, number))
        expect(run(*args, prepare=few, env=NO_LEAKS), 1, message)
    expect(run(*args), 0)


# the temporary file

@check
def temporary_folder_missing():
    write("in.orlo", PIECE)
    os.rmdir("tmp")
    expect(run("in.orlo", "out.sco"), 1, b"\nERROR: Can't open temporary file\n\n")


@check
def temporary_folder_not_writable():
    write("in.orlo", PIECE)
    os.chmod("tmp", 0o500)
    expect(run_as_other("in.orlo", "out.sco"), 1, b"\nERROR: Can't open temporary file\n\n")


@check
def temporary_file_has_reached_its_limit():
    write("in.orlo", MANY_LINES)
    expect(run("in.orlo", "out.sco", prepare=limit_size(65536)), 1, b"\nERROR: Can't write temporary file\n\n")


def start_reading(*args, **more):
    """A run that reads its input from a pipe and has made its temporary file; returns it with the pipe's other end."""
    os.mkfifo("pipe")
    process = start("pipe", "out.sco", *args, **more)
    writer = os.open("pipe", os.O_WRONLY)
    wait_for("the temporary file", lambda: os.listdir("tmp"))
    return process, writer


def finish_input(writer):
    os.write(writer, PIECE)
    os.close(writer)


@check
def temporary_file_vanishes():
    process, writer = start_reading()
    os.remove("tmp/0")
    finish_input(writer)
    expect(end(process), 1, b"\nERROR: Ouch! Can't open the temporary file (huh?).\n\n")


@check
def temporary_file_cannot_be_read():
    process, writer = start_reading()
    os.remove("tmp/0")
    os.mkdir("tmp/0")  # can be opened but not read
    finish_input(writer)
    result = end(process)
    if os.path.isdir("tmp/0"):
        os.rmdir("tmp/0")
    expect(result, 1, b"\nERROR: Can't read temporary file\n\n")


# signals

def expect_end_by(number, process):
    process.send_signal(number)
    expect(end(process), -number)


def for_each_signal(function):
    for number in SIGNALS:
        checks[f"{signal.Signals(number).name.lower()}-{function.__name__.replace('_', '-')}"] = \
            lambda number=number: function(number)


@for_each_signal
def while_reading(number):
    process, writer = start_reading()
    expect_end_by(number, process)
    os.close(writer)


@for_each_signal
def while_working(number):
    write("in.orlo", LONG_WORK)
    process = start("in.orlo", "out.sco")
    wait_for("the generator", lambda: seconds_worked(process) > 0.2)  # what it says is not on the screen yet
    expect_end_by(number, process)
    if b"T evaluated at" not in read("screen"):
        raise Failure("what was said before the signal is not on the screen")


@for_each_signal
def while_writing(number):
    write("in.orlo", MANY_EVENTS)
    os.mkfifo("score")
    reader = os.open("score", os.O_RDONLY | os.O_NONBLOCK)
    process = start("in.orlo", "score")
    wait_for("the first bytes", lambda: select.select([reader], [], [], 0)[0])
    expect_end_by(number, process)  # the pipe holds less than the score
    os.close(reader)


@for_each_signal
def ignored_from_the_start(number):
    process, writer = start_reading(prepare=lambda: signal.signal(number, signal.SIG_IGN))
    process.send_signal(number)
    finish_input(writer)
    expect(end(process), 0, b"all i-blocks =    1.00 (secs)\n\n")
    if read("out.sco") != SCORE:
        raise Failure("another score")


def make(name):
    """Makes one check in a folder of its own; returns how it went."""
    here = os.getcwd()
    with tempfile.TemporaryDirectory(prefix="orlo-fault-") as folder:
        os.chdir(folder)
        os.mkdir("tmp")
        try:
            checks[name]()
        except Skip as reason:
            return f"skipped: {name}: {reason}"
        except Failure as fault:
            return f"FAIL: {name}: {fault}"
        finally:
            os.chdir(here)
    return f"ok: {name}"


def main():
    global orlo, megabytes
    parser = argparse.ArgumentParser(description="check what orlo does when files fail and signals come")
    parser.add_argument("--orlo", required=True, help="the program that keeps its temporary files in tmp/")
    parser.add_argument("--megabytes", type=int, help="memory that a large input may take")
    parser.add_argument("names", nargs="*", metavar="NAME", help="checks to make (default: all)")
    options = parser.parse_args()
    orlo, megabytes = os.path.abspath(options.orlo), options.megabytes
    unknown = set(options.names) - set(checks)
    if unknown:
        parser.error(f"no such check: {', '.join(sorted(unknown))}")
    results = []
    for name in options.names or checks:
        results.append(make(name))
        print(results[-1], flush=True)
    failed = sum(result.startswith("FAIL") for result in results)
    print(f"{len(results)} checks, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
