"""Run behaviour cases: run_case.py --orlo PROGRAM [CASE | FOLDER]...

Runs the cases that are named and those of the folders, all of them when none is named, several at a time. What a case can
say is told in case_file.py. Each case is reported by its name, what fails with how it differs. Ends with 1 when a case fails
or when there is none.

A case's name is its folder and its file without the ending: iblock/empty. --filter takes part of a name or a pattern
(*, ?, [...]). --program takes a command line instead of a program, "wine64 build/orlo.exe"; its last word is the program's
file. --exclude names a file of cases that are not run: lines "NAME REASON", a pattern may stand for the name, "#" starts a
comment. --accept writes what came out into the cases instead of what was expected: screens, logs, standard output and
files, and only where nothing else is wrong. Look at the difference before you keep it.
"""

import argparse
import concurrent.futures
import difflib
import fnmatch
import glob
import os
import re
import shlex
import signal
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, HERE)
from case_file import CaseError, parse_args, parse_case, parse_command, parse_status, parse_variables, prepare, with_texts

TIME_LIMIT = 60  # seconds that a run may take: only one that hangs takes so long, also on a machine with other work


def cut_banner(text):
    """Text behind the banner; all of it where there is none."""
    return re.sub(rb"\A.*?^Output\t= [^\n]*\n(?:(?:Log \t|MExp\t)= [^\n]*\n)*", b"", text, count=1, flags=re.S | re.M)


def hide_date(text):
    date = rb"[A-Z][a-z]{2} [ \d]\d \d{4}, \d\d:\d\d:\d\d"
    return re.sub(rb"(\nOrlo \([^,\n]*), " + date + rb"\)", rb"\1, DATE, TIME)", text, count=1)


def sanitizer_report(text):
    """True when a sanitizer has spoken."""
    return b"Sanitizer" in text or b": runtime error: " in text


NO_LEAKS = {"ASAN_OPTIONS": "detect_leaks=0:exitcode=99"}  # the search for leaks opens files, and is a process of its own for a while


def environment():
    """The environment for a run of the program, also one that is built with sanitizers."""
    return {name: value for name, value in os.environ.items() if name != "COLUMNS"} | {
        "LC_ALL": "C",
        "ASAN_OPTIONS": "detect_leaks=1:exitcode=99:allocator_may_return_null=1:detect_stack_use_after_return=1",
        "UBSAN_OPTIONS": "print_stacktrace=1:halt_on_error=1:exitcode=99",
    }


def visible(line):
    """A line with every character that does not print made visible."""
    names = {9: "\\t", 10: "\\n", 13: "\\r", 0: "\\0", 92: "\\\\"}
    return "".join(names.get(c) or (chr(c) if 32 <= c < 127 else f"\\x{c:02x}") for c in line)


def difference(what, expected, got):
    """How two texts differ, or an empty list."""
    if expected == got:
        return []
    at = len(os.path.commonprefix([expected, got]))
    line_no = expected.count(b"\n", 0, at) + 1
    column = at - (expected.rfind(b"\n", 0, at) + 1) + 1
    one = [f"'{visible(text[at:at + 1])}'" if at < len(text) else "the end" for text in (expected, got)]
    report = [f"{what} differs at byte {at} (line {line_no}, column {column}): expected {one[0]}, got {one[1]}"]
    pair = [[visible(line) for line in text.splitlines(keepends=True)] for text in (expected[:20000], got[:20000])]
    diff = list(difflib.unified_diff(*pair, lineterm="", n=3))[2:]
    report += ["  - expected   + got"] + [f"  {line}" for line in diff[:60]]
    if len(diff) > 60:
        report.append(f"  ... {len(diff) - 60} more lines")
    return report


def read_file(path):
    with open(path, "rb") as file:
        return file.read()


class Result:
    """What a case's run has shown."""

    def __init__(self, path):
        self.path, self.title = path, "a fault in the case file"
        self.faults = []  # what no other text in the case would mend
        self.texts = []   # sections whose text is another, with what came out and how it differs
        self.screen = []  # shown of a case that fails
        self.accepted = False

    def failed(self):
        return bool(self.faults or self.texts)

    def compare(self, section, what, got):
        report = difference(what, section.text(), got)
        if report:
            self.texts.append((section, got, report))

    def report(self):
        verdict = "FAIL" if self.failed() else "accepted" if self.accepted else "ok"
        differences = [line for _, _, report in self.texts for line in report]
        return "\n  ".join([f"{verdict}: {self.path}: {self.title}", *self.faults, *differences, *self.screen])


def check_screen(result, section, screen):
    if "has" in section.words:
        result.faults += [f"screen lacks: {visible(phrase)}" for phrase in section.phrases() if phrase not in screen]
    elif "lacks" in section.words:
        result.faults += [f"screen has: {visible(phrase)}" for phrase in section.phrases() if phrase in screen]
    else:
        result.compare(section, "screen", hide_date(screen) if "whole" in section.words else cut_banner(screen))


def check_file(result, section, folder):
    path = os.path.join(folder, section.name)
    if section.kind == "missing":
        result.faults += [f"{section.name} exists"] if os.path.lexists(path) else []
    elif not os.path.isfile(path):
        result.faults.append(f"{section.name} was not written")
    else:
        got = read_file(path)
        result.compare(section, section.name, cut_banner(got) if section.kind == "log" else got)


def check_sections(result, sections, run, folder):
    for section in sections:
        if section.kind == "screen":
            check_screen(result, section, run.stderr)
        elif section.kind == "stdout":
            result.compare(section, "stdout", run.stdout)
        elif section.kind in ("out", "log", "missing"):
            check_file(result, section, folder)
    if not any(section.kind == "stdout" for section in sections):
        result.faults += difference("stdout", b"", run.stdout)


def run_program(command, folder, variables, given, seconds):
    """Runs a program; None when it is still running after some seconds. What it has started is killed with it."""
    with subprocess.Popen(command, cwd=folder, env=environment() | variables, start_new_session=True,
                          stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE) as process:
        try:
            out, screen = process.communicate(given, seconds)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            return None
        return subprocess.CompletedProcess(command, process.returncode, out, screen)


def run_case(command, path, seconds):
    result = Result(path)
    result.title, sections = parse_case(read_file(path))
    args, status, variables = parse_args(sections), parse_status(sections), parse_variables(sections)
    program = parse_command(sections, command)
    given = b"".join(section.text() for section in sections if section.kind == "stdin")
    with tempfile.TemporaryDirectory(prefix="orlo-case-") as folder:
        prepare(sections, folder)
        run = run_program([*program, *args], folder, variables, given, seconds)
        if run is None:
            result.faults = [f"still running after {seconds} seconds: killed"]
            return result
        if sanitizer_report(run.stderr):
            result.faults = ["a sanitizer report:", run.stderr.decode(errors="replace")]
            return result
        if run.returncode < 0:
            result.faults.append(f"ended by signal {-run.returncode}")
        elif run.returncode != status:
            result.faults.append(f"exit status {run.returncode}, expected {status}")
        check_sections(result, sections, run, folder)
    shown = any(section.kind == "screen" and not section.words & {"has", "lacks"} for section in sections)
    if result.failed() and not shown:
        result.screen = ["the screen was:"] + [f"  {visible(line)}" for line in run.stderr.splitlines(True)[-20:]]
    return result


def accept(path, texts):
    """Writes what came out into a case."""
    data = with_texts(read_file(path), [(section, got) for section, got, _ in texts])
    parse_case(data)
    with open(path, "wb") as file:
        file.write(data)


def judge(command, path, options):
    """Runs one case, and with --accept once more after its texts are written."""
    try:
        result = run_case(command, path, options.seconds)
        if options.accept and result.texts and not result.faults:
            accept(path, result.texts)
            result = run_case(command, path, options.seconds)
            result.accepted = True
    except (CaseError, OSError) as fault:
        result = Result(path)
        result.faults = [str(fault)]
    return result


def case_name(path):
    folder, file = os.path.split(os.path.abspath(path))
    return f"{os.path.basename(folder)}/{file.removesuffix('.case')}"


def find_cases(places):
    cases = []
    for place in places:
        inside = glob.glob(os.path.join(glob.escape(place), "**", "*.case"), recursive=True)
        if os.path.isdir(place) and not inside:
            sys.exit(f"there is no case in {place}")
        cases += sorted(inside) or [place]
    return cases


def is_meant(name, pattern):
    return fnmatch.fnmatchcase(name, pattern) if set("*?[") & set(pattern) else pattern in name


def read_exclusions(path):
    """Patterns of names and the reasons."""
    with open(path, encoding="ascii") as file:
        lines = [line.partition("#")[0].split(maxsplit=1) for line in file]
    for line in lines:
        if len(line) == 1:
            sys.exit(f"{path}: no reason is given for {line[0]}")
    return dict(line for line in lines if line)


def leave_out(cases, exclusions):
    """The cases that no exclusion names; one that names none is a fault where cases of its folder are run."""
    kept, used = [], set()
    for path in cases:
        patterns = [pattern for pattern in exclusions if fnmatch.fnmatchcase(case_name(path), pattern)]
        used.update(patterns)
        if patterns:
            print(f"left out: {path}: {exclusions[patterns[0]].strip()}")
        else:
            kept.append(path)
    folders = {os.path.dirname(case_name(path)) for path in cases}
    stale = [pattern for pattern in exclusions if pattern not in used and os.path.dirname(pattern) in folders]
    if stale:
        sys.exit(f"no case has the name {', '.join(stale)}")
    return kept


def chosen_cases(options):
    cases = find_cases(options.cases)
    found = len(cases)
    if options.exclude:
        cases = leave_out(cases, read_exclusions(options.exclude))
    cases = [path for path in cases if is_meant(case_name(path), options.filter)]
    if not cases:
        sys.exit(f"none of {found} cases is to be run")
    return cases


def run_all(command, cases, options):
    """Runs cases and reports each; counts those that ran and those that failed."""
    done, failed = 0, 0
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        try:
            for result in pool.map(lambda path: judge(command, path, options), cases):
                print(result.report(), flush=True)
                done += 1
                failed += result.failed()
                if failed and options.stop_at_first:
                    break
        finally:
            pool.shutdown(cancel_futures=True)
    return done, failed


def whole_paths(command):
    """A command whose words that name files hold in every folder."""
    return [os.path.abspath(word) if os.path.isfile(word) else word for word in command]


def parse_options():
    parser = argparse.ArgumentParser(description="run behaviour cases of orlo")
    program = parser.add_mutually_exclusive_group(required=True)
    program.add_argument("--orlo", metavar="FILE", help="the program")
    program.add_argument("--program", metavar="COMMAND", help="the program as a command line")
    program.add_argument("--list", action="store_true", help="show the cases' names and run nothing")
    parser.add_argument("--filter", default="*", metavar="PATTERN", help="run the cases whose names match")
    parser.add_argument("--exclude", metavar="FILE", help="cases to leave out")
    parser.add_argument("--accept", action="store_true", help="write what comes out into the cases that fail")
    parser.add_argument("--seconds", type=int, default=TIME_LIMIT, help="time that a run may take")
    parser.add_argument("--jobs", type=int, default=len(os.sched_getaffinity(0)), help="runs at the same time")
    parser.add_argument("--stop-at-first", action="store_true", help="run no more cases after one that fails")
    parser.add_argument("cases", nargs="*", metavar="CASE", help="a case or a folder",
                        default=[os.path.join(HERE, folder) for folder in ("cases", "view", "explain")])
    return parser.parse_args()


def main():
    options = parse_options()
    cases = chosen_cases(options)
    if options.list:
        print("\n".join(case_name(path) for path in cases))
        return 0
    command = whole_paths(shlex.split(options.program)) if options.program else [os.path.abspath(options.orlo)]
    done, failed = run_all(command, cases, options)
    print(f"{done} of {len(cases)} cases run, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
