"""Change one place of the program at a time and see whether the tests notice:

    mutate.py [--count N] [--seed N] [--jobs N] [--under FOLDER] [--results FILE] [--again FILE] [--sanitize]

A change replaces one operator (arithmetic, comparison, logical, shift), constant (number, character, truth value, name of an error)
or condition (negated, always true, never true), or leaves out a "break" or "continue". Comments, texts, the tables of message
texts, preprocessor lines and static_asserts are left alone. Places are drawn at random, the same ones for the same seed and source.

Each change is made in a copy of the tree, where only what it touches is built again. Then the suite runs until something fails:
unit tests, cases (those of the file's subject first), slow unit tests, and the other tests that need nothing but the program. A run
that takes too long is noticed as well. A change that does not compile, or that yields the same machine code (which proves that it
changes nothing), is not counted and the next one is drawn. Prints the changes that nothing noticed; --results keeps all of them, one
JSON object a line, and --again tries those that such a file calls unnoticed once more. With --sanitize the changed program is built with
AddressSanitizer and UndefinedBehaviorSanitizer, which takes longer: for what is still unnoticed. Changes that are listed in
tests/mutation-survivors.md, with the reason why they change nothing, are not counted either.
"""

import argparse
import bisect
import concurrent.futures
import glob
import hashlib
import json
import os
import queue
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "src/tables"))
import tables

NOT_COPIED = ["build"]  # nor what is hidden

sanitize = False

BUILD_LIMIT = 600  # seconds
UNIT_LIMIT = 60
CASE_LIMIT = 10  # for one case
CASES_LIMIT = 600
MORE_LIMIT = 300
SLOW_TEST = 0.5  # a unit test that takes longer comes last
MEMORY_LIMIT = 4 << 30
FILE_LIMIT = 2 << 30  # the checks of orlo-view's files want one of 1 GB
MORE_TESTS = "^(ddf[.]distributions|seed[.].*|midi[.][^.]*|midi[.].*[.]mido|docs[.]examples|faults[.].*" \
             "|view[.](files|terminal|pictures)|signals[.]some|explain[.](score|draws)[.]pages|explain[.]origins)$"

# where the cases of a source file are, the likeliest first; the order changes only how soon a change is noticed
AREAS = {
    "ddf/random_range": "ra", "ddf/random_walk": "rw", "ddf/motion": "mo", "ddf/mask": "ms", "ddf/selection": "se",
    "ddf/held_value": "ho", "ddf/expression": "ex", "ddf/second_order": "s2", "ddf/": "ddf ra rw mo ms se ho ex s2",
    "driver/": "driver include messages", "diag/": "messages driver", "input/include_pass": "include",
    "input/macro": "macros", "input/comment": "macros", "input/conditionals": "conditionals", "input/constants": "constants",
    "input/equations": "constants", "input/": "reader", "lang/data_list": "data", "lang/global_block": "global",
    "lang/tempo_command": "tempo", "lang/settings": "global iblock", "lang/": "iblock reader data",
    "events/tempo_map": "tempo", "events/timing": "timing", "events/": "events timing", "output/midi": "midi",
    "output/": "score midi", "view/": "view", "score/": "view", "explain/": "explain", "gather/": "explain",
}

NOT_CODE = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|^[ \t]*#(?:[^\n\\]|\\.)*|\bstatic_assert\s*\([^;]*;', re.S | re.M)

BINARY = {
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"], "<<": [">>"], ">>": ["<<"], "&": ["|"], "|": ["&"], "^": ["&"],
    "&&": ["||"], "||": ["&&"], "==": ["!="], "!=": ["=="], "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="],
    ">=": [">", "<"], "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "%=": ["*="], "&=": ["|="], "|=": ["&="],
    "<<=": [">>="], ">>=": ["<<="],
}
# clang-format puts blanks on both sides of a binary operator and on one side of "&" and "*" in a declaration
OPERATOR = re.compile(r"(?<=[ ])(" + "|".join(re.escape(op) for op in sorted(BINARY, key=len, reverse=True)) + r")(?=[ \n])")
STEP = re.compile(r"\+\+|--")
UNARY = re.compile(r"(?<=[(\[ ])[!-](?=[\w(:*])")
NUMBER = re.compile(r"(?<![\w.'])(0[xX][0-9A-Fa-f']+|\d[\d']*\.?\d*(?:[eE][-+]?\d+)?)([fFuUlLzZ]*)(?![\w.])")
CHARACTER = re.compile(r"'(\\[0abtnvfr\\'\"]|[^\\'])'")
WORD = re.compile(r"\b(?:true|false)\b")
JUMP = re.compile(r"\b(?:break|continue);")
CONDITION = re.compile(r"\b(if|while) \(")


class Place:
    def __init__(self, path, at, before, instead):
        self.path, self.at, self.before, self.instead = path, at, before, instead
        self.after = instead[0]


def blank_out(text):
    """The text with everything that is no code replaced by blanks of the same length."""
    def blanks(match):
        return re.sub(r"[^\n]", " ", match[0])
    # characters go by in the same scan, so that '"' begins no text
    return re.sub(r"(" + CHARACTER.pattern + r")|" + NOT_CODE.pattern, lambda m: m[0] if m[1] else blanks(m),
                  text, flags=re.S | re.M)


def closing(code, at):
    """Index of the parenthesis that closes the one at a place."""
    depth = 0
    for i in range(at, len(code)):
        if code[i] in "([{":
            depth += 1
        elif code[i] in ")]}":
            depth -= 1
            if depth == 0:
                return i
    return -1


def other_numbers(digits, suffix):
    if re.search(r"[.]|[eE]", digits) and not digits.lower().startswith("0x"):
        value = float(digits)
        changed = [value + 1.0, 0.0 if value else 2.0]
        return [repr(number) + suffix for number in changed]
    octal = re.fullmatch(r"0[0-7]+", digits)
    value = int(digits, 8) if octal else int(digits.replace("'", ""), 0)
    return [f"{number}{suffix}" for number in (value + 1, value - 1) if number >= 0]


def other_characters(written):
    character = written[1:-1]
    if character.startswith("\\"):
        return ["'\\1'"] if character == "\\0" else ["' '" if character != "\\n" else "'\\r'"]
    following = chr(ord(character) + 1)
    return ["'" + ("\\" + following if following in "\\'" else following) + "'"]


def places_of(path, text, errors):
    """Every place of a file that can be changed."""
    code = blank_out(text)
    masked = CHARACTER.sub(lambda m: " " * len(m[0]), code)  # operators and numbers stand outside of characters
    places = []
    for match in OPERATOR.finditer(masked):
        places.append((match.start(), match[0], BINARY[match[0]]))
    for match in STEP.finditer(masked):
        places.append((match.start(), match[0], ["--" if match[0] == "++" else "++"]))
    for match in UNARY.finditer(masked):
        places.append((match.start(), match[0], [""]))
    for match in NUMBER.finditer(masked):
        places.append((match.start(), match[0], other_numbers(match[1], match[2])))
    for match in CHARACTER.finditer(code):
        places.append((match.start(), match[0], other_characters(match[0])))
    for match in WORD.finditer(masked):
        places.append((match.start(), match[0], ["false" if match[0] == "true" else "true"]))
    for match in JUMP.finditer(masked):
        places.append((match.start(), match[0], [";"]))
    for match in CONDITION.finditer(masked):
        start, end = match.end(), closing(masked, match.end() - 1)
        if "constexpr" in masked[match.start() - 10:match.start()] or end < 0:
            continue
        start += len(masked[start:end]) - len(masked[start:end].split(";")[-1].lstrip())  # behind "if (int x = ...; "
        condition = text[start:end]
        places.append((start, condition, [f"!({condition})", f"(({condition}) || true)", f"(({condition}) && false)"]))
    if not path.endswith("messages.h"):
        for match in re.finditer(r"\b(?:" + "|".join(errors) + r")\b", masked):
            at = errors.index(match[0])
            places.append((match.start(), match[0], [errors[(at + 1) % len(errors)]]))
    return [Place(path, *place) for place in places]


def draw_places(tree, seed, under):
    """Every place of the source below a folder in a random order, each with one change."""
    root = tree.folder
    errors = [row["name"] for row in tables.read(os.path.join(tree.build, "orlo-tables"))["error_names"]]
    places = []
    for path in sorted(glob.glob("src/**/*.*", root_dir=root, recursive=True)):
        if path.endswith((".cpp", ".h")) and path.startswith(under) and not path.startswith("src/tables/"):  # which no part of orlo is
            with open(os.path.join(root, path), encoding="utf-8") as file:
                places += places_of(path, file.read(), errors)
    chance = random.Random(seed)
    chance.shuffle(places)
    for place in places:
        place.after = chance.choice(place.instead)
    return places


def limit_resources():
    if not sanitize:  # sanitizers reserve addresses for all of the memory
        resource.setrlimit(resource.RLIMIT_AS, (MEMORY_LIMIT, MEMORY_LIMIT))
    resource.setrlimit(resource.RLIMIT_FSIZE, (FILE_LIMIT, FILE_LIMIT))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def run(command, seconds, folder, limited=True, **more):
    """Exit status and output of a command; None as status when it took too long."""
    with subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          start_new_session=True, preexec_fn=limit_resources if limited else None, **more) as process:
        try:
            output, _ = process.communicate(timeout=seconds)
            return process.returncode, output.decode(errors="replace")
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.communicate()
            return None, "took too long"


class Tree:
    """A copy of the tree with a build of its own."""

    def __init__(self, folder):
        self.folder, self.build = folder, os.path.join(folder, "build")
        self.scratch = os.path.join(folder, "scratch")  # temporary files of the tests
        os.makedirs(self.scratch)
        for name in os.listdir(ROOT):
            if name.startswith(".") or name in NOT_COPIED:
                continue
            source = os.path.join(ROOT, name)
            if os.path.isdir(source):
                shutil.copytree(source, os.path.join(folder, name), ignore=shutil.ignore_patterns("__pycache__"))
            else:
                shutil.copy2(source, folder)
        self.environment = os.environ | {"CCACHE_DIR": os.path.join(folder, "ccache"), "TMPDIR": self.scratch}
        options = ["-DCMAKE_BUILD_TYPE=Release", "-DCMAKE_CXX_FLAGS_RELEASE=-O1 -w", "-DORLO_TESTS=ON"]
        if sanitize:
            options.append("-DORLO_SANITIZE=ON")
        if shutil.which("ninja"):
            options.append("-GNinja")
        if shutil.which("ccache"):
            options.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
        status, output = run(["cmake", "-S", folder, "-B", self.build, *options], BUILD_LIMIT, folder, limited=False)
        if status != 0:
            sys.exit(f"{output}\ncan't configure")
        if not self.make() or not self.make("orlo-tables"):
            sys.exit("the tree can't be built as it is")
        self.code = self.machine_code()

    def make(self, *targets):
        command = ["cmake", "--build", self.build, "--target",
                   *(targets or ("orlo", "orlo-view", "orlo-explain", "orlo_unit", "fault_orlo", "fault_explain", "memory_faults",
                                "explain_memory_faults"))]
        return run(command, BUILD_LIMIT, self.folder, limited=False, env=self.environment)[0] == 0

    def machine_code(self):
        digests = {}
        for path in sorted(glob.glob(os.path.join(self.build, "src/**/*.o"), recursive=True)):
            with open(path, "rb") as file:
                digests[path] = hashlib.sha256(file.read()).hexdigest()
        # the build date is in one of them
        return {path: digest for path, digest in digests.items() if not path.endswith("/options.cpp.o")}

    def unit(self, *arguments):
        return run([os.path.join(self.build, "tests/unit/orlo_unit"), "--gtest_brief=1", *arguments], UNIT_LIMIT, self.scratch,
                   env=self.environment)

    def cases(self, paths):
        command = [sys.executable, "-I", "-S", "tests/run_case.py", "--stop-at-first", "--seconds", str(CASE_LIMIT)]
        return run([*command, "--orlo", os.path.join(self.build, "orlo"), *paths], CASES_LIMIT, self.folder,
                   env=self.environment)

    def more(self):
        return run(["ctest", "--test-dir", self.build, "-R", MORE_TESTS, "--stop-on-failure", "--output-on-failure"],
                   MORE_LIMIT, self.folder, env=self.environment)


class Suite:
    """What the tests of the unchanged tree do: which unit tests are slow, and which fail already."""

    def __init__(self, tree):
        report = os.path.join(tree.scratch, "unit.json")
        tree.unit(f"--gtest_output=json:{report}")
        with open(report, encoding="utf-8") as file:
            tests = [(f"{suite['name']}.{test['name']}", float(test["time"].rstrip("s")), bool(test.get("failures")))
                     for suite in json.load(file)["testsuites"] for test in suite["testsuite"]]
        failing = [name for name, _, failed in tests if failed]
        slow = [name for name, seconds, failed in tests if seconds > SLOW_TEST and not failed]
        if failing:
            print(f"left out, fails without a change: {', '.join(failing)}", flush=True)
        self.quick = "--gtest_filter=-" + ":".join(slow + failing)
        self.slow = "--gtest_filter=" + ":".join(slow) if slow else None
        self.all_cases = sorted(case for pattern in ("tests/cases/*/*.case", "tests/view/*.case", "tests/explain/*.case")
                                for case in glob.glob(pattern, root_dir=tree.folder))
        self.noticed_by = {}  # source file: cases that have noticed a change in it
        while True:
            status, output = tree.cases(self.all_cases)
            if status == 0:
                break
            broken = re.findall(r"^FAIL: (\S+):", output, re.M)
            if not broken:
                sys.exit(f"the cases do not run: {output[-2000:]}")
            print(f"left out, fails without a change: {broken[0]}", flush=True)
            self.all_cases.remove(broken[0])
        self.has_more = tree.more()[0] == 0
        if not self.has_more:
            print("the tests that need nothing but the program are left out: one fails without a change", flush=True)

    def ordered_cases(self, path):
        first = list(self.noticed_by.get(path, []))
        areas = " ".join(areas for beginning, areas in AREAS.items() if path.startswith("src/" + beginning)).split()
        rank = {area: number for number, area in reversed(list(enumerate(areas)))}
        rest = sorted((case for case in self.all_cases if case not in first),
                      key=lambda case: rank.get(case.split("/")[-2], len(rank)))
        return first + rest

    def notice(self, tree, path):
        """What notices the change that a tree has; an empty text for nothing."""
        status, output = tree.unit("--gtest_fail_fast", self.quick)
        if status != 0:
            failed = re.findall(r"^\[  FAILED  \] (\S+?),? ", output, re.M)
            return f"unit test {failed[0]}" if failed else f"unit tests: {'time' if status is None else status}"
        status, output = tree.cases(self.ordered_cases(path))
        if status != 0:
            failed = re.findall(r"^FAIL: (\S+):", output, re.M)
            if failed:
                self.noticed_by[path] = [failed[0], *self.noticed_by.get(path, [])][:20]
            return failed[0] if failed else "cases: time"
        if self.slow is not None and tree.unit("--gtest_fail_fast", self.slow)[0] != 0:
            return "a slow unit test"
        if self.has_more:
            status, output = tree.more()
            if status != 0:
                failed = re.findall(r"\d+ - (\S+) \(", output)
                return failed[0] if failed else "other tests"
        return ""


def try_change(trees, suite, change):
    """What became of a change, as a record."""
    tree = trees.get()
    try:
        started = time.monotonic()
        path = os.path.join(tree.folder, change.path)
        with open(path, encoding="utf-8") as file:
            text = file.read()
        line_no = text.count("\n", 0, change.at) + 1
        changed = text[:change.at] + change.after + text[change.at + len(change.before):]
        record = {"file": change.path, "line": line_no, "before": change.before, "after": change.after,
                  "column": change.at - (text.rfind("\n", 0, change.at) + 1) + 1, "text": text.splitlines()[line_no - 1].strip()}
        with open(path, "w", encoding="utf-8") as file:
            file.write(changed)
        if not tree.make():
            record["result"] = "not compiled"
        elif change.path.find("options") < 0 and tree.machine_code() == tree.code:
            record["result"] = "same machine code"
        else:
            record["by"] = suite.notice(tree, change.path)
            record["result"] = "noticed" if record["by"] else "unnoticed"
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        record["seconds"] = round(time.monotonic() - started, 1)
        return record
    finally:
        trees.put(tree)


def find_again(results, root):
    """The unnoticed changes of an earlier run, where the line still stands."""
    changes = []
    with open(results, encoding="utf-8") as file:
        records = [json.loads(line) for line in file]
    for record in records:
        if record["result"] != "unnoticed":
            continue
        with open(os.path.join(root, record["file"]), encoding="utf-8") as file:
            text = file.read()
        starts = [0] + [match.end() for match in re.finditer("\n", text)]
        same = [start for start in starts if text[start:].split("\n", 1)[0].strip() == record["text"]]
        if not same:
            print(f"gone: {record['file']}:{record['line']}: {record['text']}")
            continue
        start = min(same, key=lambda start: abs(bisect.bisect(starts, start) - record["line"]))
        changes.append(Place(record["file"], start + record["column"] - 1, record["before"], [record["after"]]))
    return changes


def read_list():
    """Changes that are known to change nothing: file, code, before, after."""
    with open(os.path.join(ROOT, "tests", "mutation-survivors.md"), encoding="utf-8") as file:
        return set(re.findall(r"^- (\S+): `(.*)`: `(.*)` -> `(.*)`: \S", file.read(), re.M))


def key(record):
    return record["file"], record["text"], record["before"], record["after"]


def show(record):
    line = f"{record['file']}:{record['line']}:{record['column']}: {record['result']}: {record['before']} -> {record['after']}"
    if record["result"] == "unnoticed":
        line += f"\n    {record['text']}"
    elif record.get("by"):
        line += f" [{record['by']}]"
    return line


def main():
    parser = argparse.ArgumentParser(description="see whether the tests notice changes of the program")
    parser.add_argument("--count", type=int, default=300, help="changes that compile and change the machine code")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=2, help="changes tried at a time")
    parser.add_argument("--under", default="src/", metavar="FOLDER", help="change this part of the source alone")
    parser.add_argument("--results", help="file for all results")
    parser.add_argument("--again", metavar="FILE", help="try the unnoticed changes of an earlier run's results")
    parser.add_argument("--sanitize", action="store_true", help="build with sanitizers")
    options = parser.parse_args()
    global sanitize
    sanitize = options.sanitize

    listed = read_list()
    with tempfile.TemporaryDirectory(prefix="orlo-mutate-") as folder:
        trees = queue.Queue()
        for number in range(options.jobs):
            trees.put(Tree(os.path.join(folder, str(number))))
        first = trees.get()
        suite = Suite(first)
        trees.put(first)
        changes = find_again(options.again, first.folder) if options.again else draw_places(first, options.seed, options.under)
        print(f"{len(changes)} places", flush=True)
        counted, skipped, records = 0, 0, []
        wanted = len(changes) if options.again else options.count
        with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
            coming, left = [], iter(changes)
            while counted < wanted:
                while len(coming) < options.jobs + 1 and (change := next(left, None)) is not None:
                    coming.append(pool.submit(try_change, trees, suite, change))
                if not coming:
                    break
                record = coming.pop(0).result()
                if record["result"] == "unnoticed" and key(record) in listed:
                    record["result"] = "listed"
                records.append(record)
                print(f"{counted} {show(record)} ({record['seconds']} s)", flush=True)
                if options.results:
                    with open(options.results, "w", encoding="utf-8") as file:
                        file.writelines(json.dumps(each) + "\n" for each in records)
                if record["result"] in ("noticed", "unnoticed"):
                    counted += 1
                else:
                    skipped += 1
            for future in coming:
                future.cancel()

    unnoticed = [record for record in records if record["result"] == "unnoticed"]
    print(f"\nnot noticed ({len(unnoticed)}):")
    for record in sorted(unnoticed, key=lambda record: (record["file"], record["line"])):
        print(show(record))
    share = 100.0 * (counted - len(unnoticed)) / counted if counted else 0.0
    print(f"\n{counted} changes, {counted - len(unnoticed)} noticed ({share:.1f} %); "
          f"{skipped} more did not compile, gave the same machine code or are listed")
    return 0 if share >= 95.0 else 1


if __name__ == "__main__":
    sys.exit(main())
