"""The same commit gives the same bytes: check_reproducible.py [--keep FOLDER] [ARTEFACT...]

Clones the repository into two folders, builds in each of them what is given to others (the programs, the modules, the programs for
Windows, the packages), at another time and with another number of jobs, and compares every file. What can't be built here is left
out with a word. Ends with status 77 where nothing can be compared.
"""

import argparse
import glob
import hashlib
import os
import shutil
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SKIPPED = 77
FOLDERS = ("one", "another place/of a longer name")

# commands that have to be there, the build (commands in the clone), and what comes out of it
NATIVE = ["cmake -S . -B build/native -DCMAKE_BUILD_TYPE=Release -DORLO_TESTS=OFF", "cmake --build build/native --parallel {jobs}"]
ARTEFACTS = {
    "programs": (["g++"], NATIVE, ["build/native/orlo", "build/native/orlo-explain", "build/native/orlo-view"]),
    "packages": (["g++", "dpkg-deb"], [*NATIVE, "cpack --config build/native/CPackConfig.cmake -G DEB -B build/packages",
                                       "cpack --config build/native/CPackSourceConfig.cmake -B build/packages"],
                 ["build/packages/*.deb", "build/packages/*.tar.gz"]),
    "modules": (["clang++", "wasm-ld", "wasm-opt"], ["cmake --preset wasm", "cmake --build --preset wasm --parallel {jobs}"],
                ["build/wasm/*.wasm"]),
    "npm": (["clang++", "wasm-ld", "wasm-opt", "npm"],
            ["cmake --preset wasm", "cmake --build --preset wasm --parallel {jobs}", "cd web && npm ci --ignore-scripts --prefer-offline",
             "cd web && npm run build", "cd web && npm pack --workspace orlo --pack-destination .."], ["*.tgz"]),
    "windows": (["x86_64-w64-mingw32-g++"], ["cmake --preset windows", "cmake --build --preset windows --parallel {jobs}"],
                ["build/windows/*.exe"]),
}


def environment():
    """That of the caller without what settles dates and compilers."""
    return {name: value for name, value in os.environ.items() if name not in ("SOURCE_DATE_EPOCH", "CMAKE_CXX_COMPILER_LAUNCHER")}


def build(folder, commands, jobs):
    for command in commands:
        run = subprocess.run(command.format(jobs=jobs), shell=True, cwd=folder, env=environment(), stdout=subprocess.PIPE,
                             stderr=subprocess.STDOUT, text=True, check=False)
        if run.returncode != 0:
            sys.exit(f"{run.stdout}\n{command}: failed")


def digests(folder, patterns):
    found = {}
    for pattern in patterns:
        for path in sorted(glob.glob(os.path.join(folder, pattern))):
            with open(path, "rb") as file:
                found[os.path.relpath(path, folder)] = hashlib.sha256(file.read()).hexdigest()
    return found


def compare(name, folders):
    """How many files of an artefact differ, and how many there are."""
    _, commands, patterns = ARTEFACTS[name]
    found = []
    for jobs, folder in enumerate(folders, 1):
        build(folder, commands, jobs)
        found.append(digests(folder, patterns))
    if not found[0] or set(found[0]) != set(found[1]):
        sys.exit(f"{name}: {sorted(found[0])} and {sorted(found[1])} were built")
    different = [path for path in found[0] if found[0][path] != found[1][path]]
    for path in different:
        print(f"{name}: {path} differs")
    return len(different), len(found[0])


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("artefacts", nargs="*", metavar="ARTEFACT", help=f"{', '.join(ARTEFACTS)} (default: all)")
    parser.add_argument("--keep", help="a folder in which the clones stay")
    options = parser.parse_args()
    if not shutil.which("git") or not os.path.exists(os.path.join(ROOT, ".git")):
        print("skipped: there is no commit")
        return SKIPPED
    compared = differing = 0
    with tempfile.TemporaryDirectory() as temporary:
        folders = [os.path.join(options.keep or temporary, folder) for folder in FOLDERS]
        for folder in folders:
            subprocess.run(["git", "clone", "--quiet", ROOT, folder], check=True)
        for name in options.artefacts or ARTEFACTS:
            missing = [command for command in ARTEFACTS[name][0] if not shutil.which(command)]
            if missing:
                print(f"{name}: left out, there is no {missing[0]}")
                continue
            different, count = compare(name, folders)
            differing += different
            compared += count
    print(f"{compared} files compared, {differing} differ")
    return SKIPPED if compared == 0 else 1 if differing else 0


if __name__ == "__main__":
    sys.exit(main())
