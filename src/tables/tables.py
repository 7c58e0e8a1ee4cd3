"""The tables of the program for scripts, as orlo-tables prints them, and what docs/*.tsv say of their rows in words."""

import json
import os
import subprocess

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
BUILDS = ["build", "build/ci", "build/dev", "build/clang", "build/asan", "build/coverage"]


def add_option(parser):
    parser.add_argument("--tables", metavar="PROGRAM", help="orlo-tables; without it, the one that was built last")


def find():
    """The program that was built last."""
    programs = [path for path in (os.path.join(ROOT, build, "orlo-tables") for build in BUILDS) if os.path.isfile(path)]
    if not programs:
        raise SystemExit("there is no orlo-tables: cmake -B build && cmake --build build --target orlo-tables")
    return max(programs, key=os.path.getmtime)


def read(program=None):
    """The tables by name, each a list of rows, each a dictionary."""
    run = subprocess.run([os.path.abspath(program or find())], check=True, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, timeout=60)
    return json.loads(run.stdout)


def words_about(name):
    """The rows of docs/NAME.tsv, lists of columns; the first line names the columns."""
    with open(os.path.join(ROOT, "docs", name + ".tsv"), encoding="utf-8") as file:
        head, *lines = [line.split("\t") for line in file.read().split("\n") if line.strip()]
    for row in lines:
        if len(row) != len(head):
            raise SystemExit(f"{name}.tsv: not {len(head)} columns: {row}")
    return lines
