"""What users of the npm package get: check_package.py --orlo PROGRAM --work FOLDER

Packs the package, installs the tarball without a network into an empty folder, and compares there what the command lines do with
what the native programs do: by npx and directly, from another working folder, by relative and absolute names, with errors, devices,
streams, a pipe that is closed, a signal, and when Csound calls orlo. Then the README's program is run, and programs in TypeScript are
checked against the types.
Ends with status 77 where npm or the modules are missing.
"""

import argparse
import json
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, HERE)
from web_package import PROGRAMS, QUIET, ROOT, Failed, add_arguments, package_of, run
from run_case import difference, environment, hide_date, read_file
from tried_runs import PIECE, write

SECONDS = 60
LARGE = b"i1 = 3 0 9000 {\np2 .001\np3 1\n}\n"  # nine million events
# a module that has a start, and nothing but a trap in it
TRAPPING = bytes.fromhex("0061736d01000000 01040160 0000 03020100 070a01 06 5f7374617274 0000 0a050103 00000b")
EXAMPLES = os.path.join(ROOT, "examples")

IN_NODE = """
import { run, runSync, load, text, type Result, type NodeRun } from 'orlo';
const given: NodeRun = { program: 'orlo', args: ['in.orlo', 'out.sco'], folder: '.', signal: AbortSignal.timeout(1000) };
const result: Result = await run(given);
await load('orlo-explain');
const score: Uint8Array | undefined = runSync({ program: 'orlo', files: { 'in.orlo': '' } }).files['out.sco'];
// @ts-expect-error there is no such program
await run({ program: 'other' });
console.log(text(result.screen), score?.length, result.removed.length, result.status);
"""
IN_PAGE = """
import { run, type Run } from 'orlo';
const given: Run = { program: 'orlo-explain', files: { 'in.orlo': new Uint8Array(3) }, stdin: '', env: { COLUMNS: '80' } };
// @ts-expect-error a page has no folders
await run({ ...given, folder: '.' });
console.log((await run(given)).output.length);
"""


class Checks:
    """Runs with both, and what differs."""

    def __init__(self, native, site):
        self.native, self.site = native, site
        self.made, self.report = 0, []

    def command(self, which, program, by_npx):
        if which == "native":
            return [os.path.join(self.native, program)]
        return ["npx", "--offline", "--loglevel=error", program] if by_npx else [os.path.join(self.site, "node_modules", ".bin", program)]

    def outcome(self, which, program, args, folder, by_npx, given):
        """All that a run leaves behind below the parent of its folder; before it the files are as they were."""
        done = subprocess.run([*self.command(which, program, by_npx), *args], cwd=folder, env=environment(), input=given,
                              capture_output=True, timeout=SECONDS, check=False)
        found = {"status": str(done.returncode).encode(), "screen": hide_date(done.stderr), "stdout": done.stdout}
        for place, folders, names in os.walk(os.path.dirname(folder)):
            folders[:] = [name for name in folders if name != "node_modules"]
            found |= {os.path.join(place, name): hide_date(read_file(os.path.join(place, name))) for name in names}
        return found

    def same(self, program, *args, by_npx=False, given=b"", earlier=None):
        """A run in a folder of its own below the site: pieces beside it and above it, perhaps an earlier output."""
        found = []
        for which in ("native", "module"):
            folder = os.path.join(self.site, "pieces", "own")
            shutil.rmtree(os.path.dirname(folder), ignore_errors=True)
            os.makedirs(os.path.join(folder, "sub"))
            shutil.copy(os.path.join(EXAMPLES, "quartet.orlo"), folder)
            shutil.copy(os.path.join(EXAMPLES, "quartet-tempo.inc"), folder)
            shutil.copy(os.path.join(EXAMPLES, "first.orlo"), os.path.dirname(folder))
            write(os.path.join(folder, "sub", "piece.orlo"), PIECE)
            write(os.path.join(folder, "wrong.orlo"), b"i1 = 3 0 1 {\np2 x\n}\n")
            os.symlink("sub/piece.orlo", os.path.join(folder, "link.orlo"))
            for name, text in (earlier or {}).items():
                write(os.path.join(folder, name), text)
            found.append(self.outcome(which, program, [arg.replace("HERE", folder) for arg in args], folder, by_npx, given))
        native, module = found
        self.made += 1
        report = [line for name in sorted(native.keys() & module.keys()) for line in difference(name, native[name], module[name])]
        report += [f"only one of the two has: {name}" for name in sorted(native.keys() ^ module.keys())]
        if report:
            self.report.append("\n  ".join([" ".join([program, *args]), *report]))

    def must(self, what, condition):
        self.made += 1
        if not condition:
            self.report.append(what)


def packed(package, folder):
    """The tarball, and the names of what is in it."""
    name = run(["npm", "pack", "--silent", "--ignore-scripts", "--pack-destination", folder], package).split()[-1]
    tarball = os.path.join(folder, name)
    listed = run(["tar", "tzf", tarball], folder).split()
    return tarball, sorted(each.removeprefix("package/") for each in listed)


def check_names(checks, names):
    expected = {"LICENSE", "README.md", "package.json", *(f"bin/{name}.js" for name in PROGRAMS), "dist/index.d.ts",
                "dist/index.js", "dist/worker.js", "dist/node/index.js", "dist/node/index.d.ts",
                *(f"dist/{name}.wasm" for name in PROGRAMS)}
    checks.must(f"the package lacks {sorted(expected - set(names))}", expected <= set(names))
    strange = [name for name in names if name not in expected and not
               (name.startswith("dist/") and name.endswith((".js", ".d.ts", ".wasm")))]
    checks.must(f"the package has {strange}", not strange)


def check_command_lines(checks):
    for name in ("quartet.orlo", "../first.orlo", "HERE/quartet.orlo", "sub/../sub/piece.orlo"):
        checks.same("orlo", name, "out.sco", by_npx=True)
        checks.same("orlo-explain", name, by_npx=True)
    checks.same("orlo", "-m", "-l", "run.log", "-x", "HERE/sub/trace", "../first.orlo", "../out.mid")
    checks.same("orlo", by_npx=True)
    checks.same("orlo", "-q")
    checks.same("orlo", "wrong.orlo", "out.sco", by_npx=True, earlier={"out.sco": b"earlier"})
    checks.same("orlo", "missing.orlo", "out.sco")
    checks.same("orlo", "quartet.orlo", "no/out.sco")
    checks.same("orlo", "quartet.orlo", "sub")
    checks.same("orlo", "sub", "out.sco")
    checks.same("orlo", "quartet.orlo/", "out.sco")
    checks.same("orlo", "link.orlo", "sub/piece.orlo")
    checks.same("orlo", "quartet.orlo", "/dev/full")
    checks.same("orlo", "quartet.orlo", "/dev/null")
    checks.same("orlo", "/dev/stdin", "/dev/stdout", given=PIECE)
    checks.same("orlo", "quartet.orlo", "out.sco", earlier={"out.sco": b"earlier" * 10000})
    checks.same("orlo-view", "quartet.orlo", by_npx=True)
    checks.same("orlo-view", "-o", "-", "../first.orlo", earlier={"first.html": b"earlier"})
    checks.same("orlo-view", "-f", "txt", "-", given=b"i1 0 1 8.00\n")
    checks.same("orlo-view", "missing.orlo")
    checks.same("orlo-explain", "--format=gcc", "wrong.orlo", by_npx=True)
    checks.same("orlo-explain", "-o", "out.json", "../first.orlo", earlier={"out.json": b"earlier"})
    checks.same("orlo-explain", "-o", "link.orlo", "../first.orlo")
    checks.same("orlo-explain", "-o", "/dev/full", "quartet.orlo")
    checks.same("orlo-explain", "-o", "no/out.json", "quartet.orlo")


def check_streams(checks, folder):
    """What is written to files that others write to, to pipes that nobody reads, and when a signal ends the program."""
    write(os.path.join(folder, "large.orlo"), LARGE)
    shutil.copy(os.path.join(EXAMPLES, "quartet.orlo"), folder)
    shutil.copy(os.path.join(EXAMPLES, "quartet-tempo.inc"), folder)
    shared, quiet = [], []
    for which in ("native", "module"):
        [program], [explain] = checks.command(which, "orlo", False), checks.command(which, "orlo-explain", False)
        with open(os.path.join(folder, "shared"), "wb") as file:
            for _ in range(2):
                subprocess.run([program, "-s", "quartet.orlo", "out.sco"], cwd=folder, stderr=file, check=True)
        runs = read_file(os.path.join(folder, "shared")).partition(b"\n\nOrlo")
        shared.append(hide_date(runs[0]) + runs[1] + hide_date(b"\nOrlo" + runs[2]))
        with subprocess.Popen([explain, "quartet.orlo"], cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.PIPE) as process:
            process.stdout.close()
            quiet.append((process.stderr.read(), process.wait()))
        with subprocess.Popen([program, "large.orlo", "out.sco"], cwd=folder, stderr=subprocess.PIPE) as process:
            process.stderr.readline()  # the program is at work
            process.send_signal(signal.SIGINT)
            process.stderr.read()
            checks.must(f"{which}: a signal ends it by {process.wait()}", process.returncode == -signal.SIGINT)
    checks.must(f"the screens of two runs in one file: {shared}", shared[0] == shared[1] and shared[0].count(b"Input") == 2)
    checks.must(f"a pipe that is closed: {quiet}", quiet[0] == quiet[1])


def check_broken_modules(checks, site):
    """A module that is missing, and one that traps."""
    module = os.path.join(site, "node_modules", "orlo", "dist", "orlo.wasm")
    os.rename(module, module + ".away")
    for what, status, text in ((b"", 126, "cmake --build --preset wasm"), (TRAPPING, 134, "orlo: ended by a fault of its own")):
        if what:
            write(module, what)
        done = subprocess.run(checks.command("module", "orlo", False), stderr=subprocess.PIPE, text=True, check=False)
        checks.must(f"a broken module: {done.returncode}, {done.stderr}", done.returncode == status and text in done.stderr)
    os.rename(module + ".away", module)


def check_csound(checks, site):
    if not shutil.which("csound"):
        print("left out: csound is not here")
        return
    path = os.path.join(site, "node_modules", ".bin")
    with open(os.path.join(EXAMPLES, "csd", "first.csd"), encoding="ascii") as file:
        document = file.read()
    for name, command in (("path", "orlo"), ("npx", "npx --offline orlo")):
        with open(os.path.join(site, f"{name}.csd"), "w", encoding="ascii") as file:
            file.write(document.replace('bin="orlo"', f'bin="{command}"'))
        wave = os.path.join(site, f"{name}.wav")
        done = subprocess.run(["csound", "-d", "-W", "-o", wave, f"{name}.csd"], cwd=site, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, env=os.environ | {"PATH": f"{path}:{os.environ['PATH']}"}, check=False)
        checks.must(f"csound, by {name}: {done.stdout.decode(errors='replace')}",
                    done.returncode == 0 and os.path.isfile(wave) and os.path.getsize(wave) > 100_000)


def check_readme(checks, package, site):
    """The first program of the README writes the score of its piece."""
    text = read_file(os.path.join(package, "README.md")).decode("utf-8")
    program = re.search(r"^```js\n(.*?)^```", text, re.M | re.S)[1]
    done = subprocess.run(["node", "--input-type=module", "-e", program], cwd=site, capture_output=True, check=False)
    checks.must(f"the program of the README: {done.stdout} {done.stderr}",
                done.returncode == 0 and done.stdout.startswith(b"\n;I-block #1 (i1):\ni1    0.000  1.000"))


def check_version(checks, package):
    """The package has the version of the programs."""
    with open(os.path.join(package, "package.json"), encoding="utf-8") as file:
        version = json.load(file)["version"]
    usage = subprocess.run(checks.command("native", "orlo", False), stderr=subprocess.PIPE, check=False).stderr
    checks.must(f"the package's version is {version}", f"\nOrlo ({version}, ".encode() in usage)


def check_types(checks, package, site):
    compiler = os.path.join(package, "..", "node_modules", ".bin", "tsc")
    common = ["--noEmit", "--strict", "--target", "ES2022", "--lib", "ES2022,DOM"]
    ways = {"node.mts": (IN_NODE, ["--module", "NodeNext"]),
            "page.mts": (IN_PAGE, ["--module", "ESNext", "--moduleResolution", "bundler", "--customConditions", "browser"])}
    for name, (text, options) in ways.items():
        write(os.path.join(site, name), text.encode())
        done = subprocess.run([compiler, *common, *options, name], cwd=site, stdout=subprocess.PIPE, text=True, check=False)
        checks.must(f"{name}: {done.stdout}", done.returncode == 0)


def main():
    parser = argparse.ArgumentParser(description="check the npm package as users get it")
    add_arguments(parser)
    options = parser.parse_args()
    package = package_of(options)
    try:
        with tempfile.TemporaryDirectory(prefix="orlo-package-") as folder:
            tarball, names = packed(package, folder)
            site = os.path.join(folder, "site")
            os.makedirs(site)
            run(["npm", "install", "--offline", *QUIET, tarball], site)
            checks = Checks(os.path.dirname(os.path.abspath(options.orlo)), site)
            check_names(checks, names)
            check_command_lines(checks)
            check_streams(checks, folder)
            check_broken_modules(checks, site)
            check_csound(checks, site)
            check_readme(checks, package, site)
            check_version(checks, package)
            check_types(checks, package, site)
    except Failed as failed:
        print(failed)
        return 1
    print("\n".join([*checks.report, f"{checks.made} checks, {len(checks.report)} failed"]))
    return 1 if checks.report else 0


if __name__ == "__main__":
    sys.exit(main())
