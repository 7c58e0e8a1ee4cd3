"""The same bytes everywhere: same_everywhere.py --orlo PROGRAM --folder FOLDER VARIANT

Runs every case, every example as a score and as a MIDI file, and random pieces, with the program and with a variant of it, and
compares all that comes out: status, screen, standard output and every file of the run. Only the banner's date may differ, and the
name of the folder in a document. That the program itself does what the cases say is tested elsewhere.

Variants, which are built in FOLDER/VARIANT:
  COMPILER-O0, COMPILER-O2, COMPILER-O3    by another compiler, with another optimisation
  sanitizers                               with AddressSanitizer and UndefinedBehaviorSanitizer
  aarch64                                  for 64-bit Arm, run by an emulator
  no-fma                                   the program itself, with the mathematical functions that the C library has for
                                           processors which can't multiply and add in one step: their last bit differs
  static                                   one file each, without libraries; orlo-explain, orlo-view and orlo-tables, too
  libc++                                   by the C++ library of macOS and BSD; the others, too
  wine                                     for Windows; orlo-explain, too. What can't be the same there is told in not-on-windows
Ends with status 77 where a variant can't be had.
"""

import argparse
import contextlib
import glob
import multiprocessing
import os
import re
import shutil
import subprocess
import sys
import tempfile

TESTS = os.path.abspath(os.path.join(os.path.dirname(__file__), ".."))
ROOT = os.path.dirname(TESTS)

sys.path[:0] = [TESTS, os.path.join(TESTS, "fuzz")]
from case_file import command_beside, parse_args, parse_case, parse_command, prepare
from run_case import difference, environment, hide_date, leave_out, read_exclusions, read_file
from generate_pieces import make_piece
from pieces import included_files

SKIPPED = 77
RANDOM = "generated piece "  # and its seed
SHOWN = 10  # runs whose differences are printed
ARM_LIBRARIES = "/usr/aarch64-linux-gnu"
NO_FMA = {"GLIBC_TUNABLES": "glibc.cpu.hwcaps=-FMA,-FMA4,-AVX2"}
SINES = "import math; print([math.sin(i / 1000) for i in range(10000)])"
RANDOM_PIECES = 400
WAYS = {  # in which a piece is run, or none is: program and arguments
    "score": ("orlo", ["-t", "-l", "run.log", "-x", "trace.txt", "in.orlo", "out"]),
    "midi": ("orlo", ["-m", "-l", "run.log", "-x", "trace.txt", "in.orlo", "out"]),
    "document": ("orlo-explain", ["-o", "out.json", "in.orlo"]),
    "page": ("orlo-view", ["-o", "out.html", "in.orlo"]),
    "tables": ("orlo-tables", []),
}
STRICT = "-DORLO_WERROR=ON"
COMPANIONS = "orlo-explain", "orlo-view", "orlo-tables"
WINE, WINE_SERVER = "/usr/lib/wine/wine64", "/usr/lib/wine/wineserver64"  # the first of them asks for packages as wine
NOT_STARTED = b"wine: failed to map the shared user data"  # once in some thousand times: the system has put something there
NOT_ON_WINDOWS = os.path.join(TESTS, "not-on-windows")

reference, other = None, None  # of a worker


class Program:
    """A way to run the program."""

    def __init__(self, command, seconds=60, variables=None, companions=(), exclusions=None):
        self.command = command  # what stands before the arguments
        self.seconds = seconds  # that a run may take
        self.variables = variables or {}
        self.companions = companions  # that stand beside it
        self.exclusions = exclusions  # file with the cases that are not run


def skip(reason):
    print(f"skipped: {reason}")
    sys.exit(SKIPPED)


def need(*commands):
    for command in commands:
        if not shutil.which(command):
            skip(f"{command} is missing")


def build(folder, compiler, flags, *settings, companions=()):
    """Builds the program; returns its path."""
    need(compiler)
    configure = ["cmake", "-S", ROOT, "-B", folder, "-DCMAKE_BUILD_TYPE=Release", "-DORLO_TESTS=OFF",
                 f"-DCMAKE_CXX_COMPILER={compiler}", f"-DCMAKE_CXX_FLAGS_RELEASE={flags}", *settings]
    make = ["cmake", "--build", folder, "--parallel", str(os.cpu_count()), "--target", "orlo", *companions]
    for command in (configure, make):
        run = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        if run.returncode != 0:
            sys.exit(f"{run.stdout}\n{' '.join(command)}: failed")
    return os.path.join(folder, "orlo")


def static(folder):
    orlo = build(folder, "g++", "-O3", "-DCMAKE_EXE_LINKER_FLAGS=-static", STRICT, companions=COMPANIONS)
    for name in "orlo", *COMPANIONS:
        if b"/ld-linux" in read_file(os.path.join(folder, name)):
            sys.exit(f"{name} needs libraries")
    return Program([orlo], companions=COMPANIONS)


def libcxx(folder):
    need("clang++")
    if subprocess.run(["clang++", "-stdlib=libc++", "-E", "-x", "c++", "-", "-o", os.devnull], input="#include <version>", text=True,
                      stderr=subprocess.DEVNULL, check=False).returncode:
        skip("libc++ is missing")
    flags = "-DCMAKE_CXX_FLAGS=-stdlib=libc++"
    return Program([build(folder, "clang++", "-O3", flags, STRICT, companions=COMPANIONS)], companions=COMPANIONS)


def wine(folder):
    need("x86_64-w64-mingw32-g++-posix", WINE)
    companions = COMPANIONS[:1]
    toolchain = os.path.join(ROOT, "cmake", "mingw.cmake")
    orlo = build(folder, "x86_64-w64-mingw32-g++-posix", "-O3", f"-DCMAKE_TOOLCHAIN_FILE={toolchain}", STRICT,
                 companions=companions)
    variables = {"WINEPREFIX": os.path.join(folder, "wine"), "WINEDEBUG": "err+all,fixme-all", "WINEDLLOVERRIDES": "mscoree,mshtml=",
                 "LC_ALL": "C.UTF-8"}  # of the names of files
    return Program([WINE, f"{orlo}.exe"], variables=variables, companions=companions, exclusions=NOT_ON_WINDOWS)


OWN = {"static": static, "libc++": libcxx, "wine": wine}


@contextlib.contextmanager
def wine_server(program):
    """Has one server of Wine for all runs, where they need one, which makes its folder first."""
    if WINE not in program.command:
        yield
        return
    variables = os.environ | program.variables
    os.makedirs(program.variables["WINEPREFIX"], exist_ok=True)
    try:
        subprocess.run([WINE_SERVER, "-p"], env=variables, stdin=subprocess.DEVNULL, check=True)
        subprocess.run(program.command, env=variables, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL, check=False)
        yield
    finally:
        subprocess.run([WINE_SERVER, "-k"], env=variables, check=False)


def variant(name, orlo, folder):
    """The program in another shape."""
    optimised = re.fullmatch(r"(.+)-(O[023])", name)
    if optimised:
        return Program([build(folder, optimised[1], f"-{optimised[2]}")])
    if name == "sanitizers":
        return Program([build(folder, "g++", "-O1", "-DORLO_SANITIZE=ON")])
    if name == "aarch64":
        need("aarch64-linux-gnu-g++", "qemu-aarch64")
        arm = build(folder, "aarch64-linux-gnu-g++", "-O3", "-DCMAKE_SYSTEM_NAME=Linux", "-DCMAKE_SYSTEM_PROCESSOR=aarch64")
        return Program(["qemu-aarch64", "-L", ARM_LIBRARIES, arm], seconds=300)
    if name in OWN:
        return OWN[name](folder)
    if name == "no-fma":
        sines = [subprocess.check_output([sys.executable, "-I", "-S", "-c", SINES], env=os.environ | variables)
                 for variables in ({}, NO_FMA)]
        if sines[0] == sines[1]:
            skip("this C library has no other functions for this processor")
        return Program([orlo], variables=NO_FMA)
    return sys.exit(f"no variant has the name '{name}'")


def prepare_example(path, folder):
    for name, source in [("in.orlo", path), *included_files(path)]:
        os.makedirs(os.path.join(folder, os.path.dirname(name)), exist_ok=True)
        shutil.copy(source, os.path.join(folder, name))


def prepare_piece(name, folder):
    if name.startswith(RANDOM):
        with open(os.path.join(folder, "in.orlo"), "w", encoding="ascii") as file:
            file.write(make_piece(int(name.removeprefix(RANDOM))))
    else:
        prepare_example(name, folder)


def all_runs(program):
    """What is run: pairs of a case or piece and the way a piece is run."""
    folders = ["cases/*", *(name.removeprefix("orlo-") for name in program.companions)]
    cases = sorted(case for folder in folders for case in glob.glob(os.path.join(TESTS, folder, "*.case")))
    pieces = sorted(glob.glob(os.path.join(ROOT, "examples", "*.orlo")))
    if not cases or not pieces:
        sys.exit("there are no cases or no examples")
    if program.exclusions:
        cases = leave_out(cases, read_exclusions(program.exclusions))
    drawn = [(f"{RANDOM}{seed}", "score") for seed in range(RANDOM_PIECES)]
    ways = [way for way, (name, args) in WAYS.items() if args and name in ("orlo", *program.companions)]
    tables = [(pieces[0], "tables")] if "orlo-tables" in program.companions else []
    return [(piece, way) for piece in pieces for way in ways] + tables + drawn + [(case, None) for case in cases]


def hide_places(text):
    """Text without what differs from run to run."""
    text = re.sub(rb"/orlo-view-\w{6}", b"/orlo-view-XXXXXX", hide_date(text))
    return re.sub(rb'("folder": ?)"[^"]*"', rb"\1FOLDER", text, count=1)


def outcome(program, path, way):
    """All that a run leaves behind, by name. Its streams are files: a program for Windows waits for ever for some pipes."""
    with tempfile.TemporaryDirectory(prefix="orlo-same-") as folder, tempfile.TemporaryFile() as screen, \
         tempfile.TemporaryFile() as stdout:
        if way is None:
            _, sections = parse_case(read_file(path))
            prepare(sections, folder)
            command, args = parse_command(sections, program.command), parse_args(sections)
        else:
            prepare_piece(path, folder)
            name, args = WAYS[way]
            command = command_beside(program.command, name)
        try:
            run = subprocess.run([*command, *args], cwd=folder, env=environment() | program.variables,
                                 stdin=subprocess.DEVNULL, stdout=stdout, stderr=screen, timeout=program.seconds, check=False)
        except subprocess.TimeoutExpired:
            return {"status": f"still running after {program.seconds} seconds".encode()}
        result = {"status": str(run.returncode).encode()}
        for name, stream in ("screen", screen), ("stdout", stdout):
            stream.seek(0)
            result[name] = hide_places(stream.read())
        for place, _, names in os.walk(folder):
            for name in names:
                file = os.path.join(place, name)
                result[os.path.relpath(file, folder)] = hide_places(read_file(file))
    return result


def start_worker(*programs):
    global reference, other
    reference, other = programs


def compare(run):
    """Makes a run with both programs; returns it with how they differ."""
    one, two = (outcome(program, *run) for program in (reference, other))
    if NOT_STARTED in two.get("screen", b""):
        two = outcome(other, *run)
    report = ["the piece has a fault"] if run[0].startswith(RANDOM) and one["status"] != b"0" else []
    for name in sorted(one.keys() | two.keys()):
        if name in one and name in two:
            report += difference(name, one[name], two[name])
        else:
            report.append(f"only one of the two has: {name}")
    return run, report


def main():
    parser = argparse.ArgumentParser(description="compare the program with a variant of itself")
    parser.add_argument("--orlo", required=True, help="the program")
    parser.add_argument("--folder", required=True, help="where variants are built")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="runs at the same time")
    parser.add_argument("variant")
    options = parser.parse_args()
    orlo = os.path.abspath(options.orlo)
    programs = Program([orlo]), variant(options.variant, orlo, os.path.abspath(os.path.join(options.folder, options.variant)))

    runs, differing = all_runs(programs[1]), 0
    with wine_server(programs[1]), multiprocessing.Pool(options.jobs, start_worker, programs) as pool:
        for (path, way), report in pool.imap(compare, runs, chunksize=16):
            if report:
                differing += 1
                if differing <= SHOWN:
                    name = path if path.startswith(RANDOM) else os.path.relpath(path, ROOT)
                    print("\n  ".join([f"{name}{f', as {way}' if way else ''}:", *report]))
    print(f"{options.variant}: {len(runs)} runs, {differing} of them differ")
    return 1 if differing else 0


if __name__ == "__main__":
    sys.exit(main())
