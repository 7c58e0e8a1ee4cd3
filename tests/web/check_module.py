"""The same bytes as WebAssembly: check_module.py --orlo PROGRAM --work FOLDER [--pieces N] [--jobs N]

Runs every case, every example, as a score, as a MIDI file, explained and drawn, and generated pieces: with the programs beside
PROGRAM, and with the npm package, where one process of Node works them all off. Compares all that comes out: status, screen,
standard output and every file of the run. Only the banner's date may differ, where the folder is that a run works in, and how the
score is called that orlo-view has made. That the programs do what the cases say is tested elsewhere.
What is left out is printed with its reason; what a module can't have is in LEFT_OUT.
Ends with status 77 where Node or the modules are missing.
"""

import argparse
import base64
import collections
import glob
import json
import multiprocessing
import os
import re
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, HERE)
from web_package import PROGRAMS, ROOT, TESTS, add_arguments, package_of
from case_file import parse_args, parse_case, parse_command, parse_variables, prepare
from run_case import difference, environment, find_cases, hide_date, leave_out, read_file
from same_everywhere import RANDOM, SHOWN, WAYS, prepare_piece

WORKING_FOLDER = b"/piece"  # of a module whose files are in memory
PIECES = 1500
SECONDS = 60  # that a run may take

# patterns of cases, and what a run on files in memory has not
LEFT_OUT = {
    "driver/output-full": "no devices",
    "faults/*full-device*": "no devices",
    "faults/trace-fails-in-log": "no devices",
    "faults/error-before-full-log": "no devices",
    "faults/include-null-device": "no devices",
    "score/disk-full": "no devices",
    "explain/out-full": "no devices",
    "explain/out-device": "no devices",
    "view/out-full": "no devices",
    "view/out-device": "no devices",
    "view/orlo-tmpdir*": "the host says where temporary files are",
}
OF_ITSELF = "signals, links, FIFOs, sizes of memory and closed streams are in no case: other checks of the native programs have them"

programs_folder = None  # of a worker


def encoded(data):
    return base64.b64encode(data).decode("ascii")


def contents(folder):
    """All files below a folder, by name, and the folders that are empty, whose names end with a slash."""
    found = {}
    for place, folders, names in os.walk(folder):
        for name in names:
            path = os.path.join(place, name)
            found[os.path.relpath(path, folder)] = read_file(path)
        if not folders and not names and place != folder:
            found[os.path.relpath(place, folder) + "/"] = b""
    return found


def prepare_run(run, folder):
    """Makes the files of a run; returns command, variables of the environment and standard input."""
    what, way = run
    if way is not None:
        prepare_piece(what, folder)
        program, args = WAYS[way]
        return [program, *args], {}, b""
    _, sections = parse_case(read_file(what))
    prepare(sections, folder)
    given = b"".join(section.text() for section in sections if section.kind == "stdin")
    return [*parse_command(sections, ["orlo"]), *parse_args(sections)], parse_variables(sections), given


def as_task(run):
    """A run as the package is told it."""
    with tempfile.TemporaryDirectory(prefix="orlo-module-") as folder:
        [program, *args], variables, given = prepare_run(run, folder)
        files = {name: encoded(data) for name, data in contents(folder).items()}
    return {"program": os.path.basename(program), "args": args, "files": files, "env": variables, "stdin": encoded(given)}


def native_outcome(run):
    """All that a run of the native program leaves behind, by name."""
    with tempfile.TemporaryDirectory(prefix="orlo-module-") as folder:
        [program, *args], variables, given = prepare_run(run, folder)
        done = subprocess.run([os.path.join(programs_folder, program), *args], cwd=folder, env=environment() | variables,
                              input=given, capture_output=True, timeout=SECONDS, check=False)
        left = {name: data for name, data in contents(folder).items() if not name.endswith("/")}
        found = {"status": str(done.returncode).encode(), "screen": done.stderr, "stdout": done.stdout} | left
        return {name: without_chance(data.replace(os.fsencode(folder), WORKING_FOLDER)) for name, data in found.items()}


def module_outcome(task, answer):
    """The same of a run of the module; the files that it has left alone are those that it was given."""
    if "fault" in answer:
        return {"fault": answer["fault"].encode()}
    given = {name: data for name, data in task["files"].items() if not name.endswith("/") and name not in answer["removed"]}
    files = {name: base64.b64decode(data) for name, data in (given | answer["files"]).items()}
    found = {"status": str(answer["status"]).encode()} | files
    found |= {stream: base64.b64decode(answer[stream]) for stream in ("screen", "stdout")}
    return {name: without_chance(data) for name, data in found.items()}


def without_chance(data):
    """What is the same in every run."""
    return re.sub(rb"/(tmp|\.orlo-temporary)/orlo-view-(score-)?\w{6}", b"/tmp/SCORE", hide_date(data))


def start_worker(folder):
    global programs_folder
    programs_folder = folder


def all_runs(pieces, programs):
    """What is run, and how many cases are left out for which reason."""
    runs, left_out = [], collections.Counter()
    for path in leave_out(find_cases([os.path.join(TESTS, folder) for folder in ("cases", "explain", "view")]), LEFT_OUT):
        _, sections = parse_case(read_file(path))
        [program] = parse_command(sections, ["orlo"])
        if program in programs:
            runs.append((path, None))
        else:
            left_out[f"there is no module of {program}"] += 1
    examples = sorted(glob.glob(os.path.join(ROOT, "examples", "*.orlo")))
    if not examples:
        sys.exit("there are no examples")
    runs += [(piece, way) for piece in examples for way in WAYS if WAYS[way][0] in programs]
    runs += [(f"{RANDOM}{seed}", "score") for seed in range(pieces)]
    return runs, left_out


def title(run):
    what, way = run
    name = what if what.startswith(RANDOM) else os.path.relpath(what, ROOT)
    return f"{name}{f', as {way}' if way else ''}"


def differences(native, module):
    report = []
    for name in sorted(native.keys() | module.keys()):
        if name in native and name in module:
            report += difference(name, native[name], module[name])
        elif name == "fault":
            report.append(f"the module failed: {module[name].decode()}")
        elif "fault" not in module:
            report.append(f"only the {'program' if name in native else 'module'} has: {name}")
    return report


def parse_options():
    parser = argparse.ArgumentParser(description="compare the programs with their modules")
    add_arguments(parser)
    parser.add_argument("--pieces", type=int, default=PIECES, help="generated pieces")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="native runs at the same time")
    return parser.parse_args()


def main():
    options = parse_options()
    package = package_of(options)
    programs = [name for name in PROGRAMS if os.path.isfile(os.path.join(package, "dist", f"{name}.wasm"))]
    runs, left_out = all_runs(options.pieces, programs)
    for reason, count in left_out.items():
        print(f"left out: {count} cases: {reason}")
    print(f"left out: {OF_ITSELF}")

    differing = 0
    folder = os.path.dirname(os.path.abspath(options.orlo))
    with tempfile.TemporaryDirectory(prefix="orlo-module-") as work, \
            multiprocessing.Pool(options.jobs, start_worker, (folder,)) as pool:
        tasks, answers = os.path.join(work, "tasks"), os.path.join(work, "answers")
        with open(tasks, "w", encoding="ascii") as file:
            for task in pool.imap(as_task, runs, chunksize=16):
                file.write(json.dumps(task) + "\n")
        natives = pool.imap(native_outcome, runs, chunksize=16)
        start = time.monotonic()
        subprocess.run(["node", os.path.join(HERE, "work_off.mjs"), package, tasks, answers], check=True)
        seconds = time.monotonic() - start
        with open(tasks, encoding="ascii") as one, open(answers, encoding="ascii") as two:
            for run, task, answer, native in zip(runs, one, two, natives, strict=True):
                report = differences(native, module_outcome(json.loads(task), json.loads(answer)))
                if run[0].startswith(RANDOM) and native["status"] != b"0":
                    report.append("the piece has a fault")
                if report:
                    differing += 1
                    if differing <= SHOWN:
                        print("\n  ".join([f"{title(run)}:", *report]))
    print(f"{len(runs)} runs in {seconds:.1f} seconds of one process of Node, {differing} of them differ")
    return 1 if differing else 0


if __name__ == "__main__":
    sys.exit(main())
