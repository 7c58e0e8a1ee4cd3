"""The npm package, built of the sources in a folder of its own: what the checks of it share."""

import fcntl
import hashlib
import os
import shutil
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
TESTS = os.path.dirname(HERE)
ROOT = os.path.dirname(TESTS)
sys.path[:0] = [TESTS, os.path.join(TESTS, "tools")]
from run_case import read_file
from same_everywhere import need, skip

WEB = os.path.join(ROOT, "web")
PROGRAMS = ("orlo", "orlo-explain", "orlo-view")
MADE = ("node_modules", "dist", "build")  # folders that are not sources
QUIET = ["--no-audit", "--no-fund", "--loglevel=error"]


class Failed(Exception):
    """A command that has not done what it should; its text is what it said."""


def run(command, folder, **more):
    """Runs a command that must succeed; returns what it writes."""
    done = subprocess.run(command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **more)
    if done.returncode != 0:
        raise Failed(f"{done.stdout}\n{' '.join(command)}: failed")
    return done.stdout


def sources():
    """Names of the files below web/ that are not made."""
    found = []
    for place, folders, names in os.walk(WEB):
        folders[:] = [name for name in folders if name not in MADE]
        found += [os.path.relpath(os.path.join(place, name), WEB) for name in names]
    return sorted(found)


def state_of(modules):
    """What the package is made of, as one number."""
    state = hashlib.sha256()
    paths = [os.path.join(WEB, name) for name in sources()] + [os.path.join(modules, f"{name}.wasm") for name in PROGRAMS]
    for path in [*paths, os.path.join(ROOT, "LICENSE")]:
        state.update(path.encode() + b"\0" + (read_file(path) if os.path.isfile(path) else b""))
    return state.hexdigest()


def build(folder, modules):
    web = os.path.join(folder, "web")
    for name in MADE[1:]:
        shutil.rmtree(os.path.join(web, "orlo", name), ignore_errors=True)
    for name in sources():
        os.makedirs(os.path.dirname(os.path.join(web, name)), exist_ok=True)
        shutil.copy(os.path.join(WEB, name), os.path.join(web, name))
    shutil.copy(os.path.join(ROOT, "LICENSE"), folder)
    try:
        run(["npm", "ci", "--ignore-scripts", "--prefer-offline", *QUIET], web)
    except Failed as failed:
        skip(f"npm can't bring the modules:\n{failed}")
    run(["npm", "run", "build"], web, env=os.environ | {"ORLO_MODULES": modules})


def built_package(folder, modules):
    """Builds the package, where it is not built of these sources yet; returns its folder. Leaves the test out where that can't be."""
    need("node", "npm")
    if not os.path.isfile(os.path.join(modules, "orlo.wasm")):
        skip(f"there is no module in {modules}: cmake --preset wasm && cmake --build --preset wasm")
    folder = os.path.abspath(folder)
    os.makedirs(folder, exist_ok=True)
    stamp = os.path.join(folder, "state")
    with open(os.path.join(folder, "lock"), "w", encoding="ascii") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)  # tests run side by side
        state = state_of(modules)
        if not os.path.isfile(stamp) or read_file(stamp) != state.encode():
            if os.path.isfile(stamp):
                os.remove(stamp)
            build(folder, modules)
            with open(stamp, "w", encoding="ascii") as file:
                file.write(state)
    return os.path.join(folder, "web", "orlo")


def add_arguments(parser):
    parser.add_argument("--orlo", required=True, help="the program; the others stand beside it")
    parser.add_argument("--work", required=True, help="folder in which the package is built")
    parser.add_argument("--modules", default=os.path.join(ROOT, "build", "wasm"), help="folder of the modules")


def package_of(options):
    return built_package(options.work, os.path.abspath(options.modules))
