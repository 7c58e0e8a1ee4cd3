"""Pieces on which the document of orlo-explain is checked, and what orlo and orlo-explain make of one.

A piece is run twice, each time in a folder of its own with nothing but its files: by orlo, which writes its score beside that
folder, and by orlo-explain. A Csound document is run by orlo as Csound would have it done: the text of its score tag.
"""

import glob
import os
import re
import subprocess
import sys
import tempfile
from typing import NamedTuple

HERE = os.path.dirname(os.path.abspath(__file__))
TESTS, ROOT = os.path.join(HERE, ".."), os.path.join(HERE, "../..")
sys.path[:0] = [TESTS, HERE, os.path.join(TESTS, "fuzz")]
import case_file
import check_docs
import generate_pieces
import run_case
from explain_document import Document, Fault
from pieces import included_files

PAGES = ("docs/tutorial.md", "docs/manual.md", "README.md", "examples/README.md")
TIME_LIMIT = 120  # seconds
SCORE_TAG = re.compile(rb'<CsScore bin="(?:\S*/)?orlo\b[^"]*">\n(.*?)^</CsScore>', re.S | re.M)


class Piece(NamedTuple):
    name: str
    main: str     # the name by which the piece is given
    files: dict   # names and contents, None for a folder
    midi: bool = False

    def is_csd(self):
        return self.main.endswith(".csd")

    def extent(self):
        """Where the text that is run stands in the piece's file."""
        data = self.files.get(self.main) or b""
        match = SCORE_TAG.search(data) if self.is_csd() else None
        return match.span(1) if match else (0, len(data))


class Outcome(NamedTuple):
    """What came of a piece."""
    piece: Piece
    status: int
    screen: bytes     # behind the banner
    score: bytes      # None when no file was written
    document: Document
    data: bytes       # of the document
    summary: Document # what is said without events
    messages: bytes   # in the form of compilers


def case_pieces(places=(os.path.join(TESTS, "cases"),)):
    for path in run_case.find_cases(places):
        _, sections = case_file.parse_case(run_case.read_file(path))
        args = case_file.parse_args(sections)
        if len(args) < 2 or args[-2].startswith("-"):
            continue  # no piece is named
        files = {section.name: None if section.kind == "dir" else section.text()
                 for section in sections if section.kind in ("dir", "file")}
        yield Piece(run_case.case_name(path), args[-2], files, any(word.startswith("-m") for word in args[:-2]))


def file_piece(path, midi=False):
    files = {os.path.basename(path): run_case.read_file(path)}
    files |= {name: run_case.read_file(included) for name, included in included_files(path)}
    return Piece(os.path.basename(path) + (" -m" if midi else ""), os.path.basename(path), files, midi)


def example_pieces():
    for path in sorted(glob.glob(os.path.join(ROOT, "examples/*.orlo"))):
        yield file_piece(path)
        yield file_piece(path, True)
    for path in sorted(glob.glob(os.path.join(ROOT, "examples/csd/*.csd"))):
        yield file_piece(path)


def page_pieces():
    for page in PAGES:
        blocks, _ = check_docs.read_blocks(os.path.join(ROOT, page))
        examples, _ = check_docs.collect(blocks)
        for name, example in examples.items():
            files = {file: text.encode("latin-1") for file, text in example.files.items()}
            main = f"{name}.{example.block.kind}"
            files[main] = example.block.text().encode("latin-1")
            midi = any(block.kind == "bytes" for block in example.shown)
            yield Piece(f"{page}: {name}", main, files, midi)


def generated_pieces(count, seed=1):
    """Pieces that nobody has written, each fourth as MIDI."""
    for place in range(count):
        text = generate_pieces.make_piece(seed * 1_000_003 + place)
        yield Piece(f"generated {place}", "in.orlo", {"in.orlo": text.encode("ascii")}, place % 4 == 3)


def write_files(piece, folder):
    for name, data in piece.files.items():
        path = os.path.join(folder, name)
        os.makedirs(path if data is None else os.path.dirname(path), exist_ok=True)
        if data is not None:
            with open(path, "wb") as file:
                file.write(data)


def run_program(command, folder):
    run = subprocess.run(command, cwd=folder, env=run_case.environment(), stdin=subprocess.DEVNULL, capture_output=True,
                         timeout=TIME_LIMIT, check=False)
    if run_case.sanitizer_report(run.stderr) or run.returncode < 0:
        raise Fault(f"{os.path.basename(command[0])} ended with {run.returncode}: {run.stderr.decode(errors='replace')}")
    return run


def explain(program, piece, folder, out, *options):
    """The document that orlo-explain writes of a piece, as bytes."""
    run = run_program([program, *options, *["-m"] * piece.midi, piece.main, "-o", out], folder)
    if run.returncode != 0 or not os.path.isfile(out):
        raise Fault(f"orlo-explain ended with {run.returncode} and wrote no document: {run.stderr.decode(errors='replace')}")
    if run.stdout or run.stderr:
        raise Fault(f"orlo-explain said: {(run.stdout + run.stderr).decode(errors='replace')}")
    return run_case.read_file(out)


def outcome(programs, piece):
    """What comes of a piece by orlo and by orlo-explain."""
    orlo, explainer = programs
    with tempfile.TemporaryDirectory(prefix="orlo-explain-") as top:
        folders = [os.path.join(top, name) for name in ("orlo", "explain")]
        for folder in folders:
            os.mkdir(folder)
            write_files(piece, folder)
        score, name = os.path.join(top, "score"), piece.main
        if piece.is_csd():
            name = piece.main + ".orlo"
            begin, end = piece.extent()
            write_files(Piece("", "", {name: piece.files[piece.main][begin:end]}), folders[0])
        run = run_program([orlo, *["-m"] * piece.midi, name, score], folders[0])
        written = run_case.read_file(score) if os.path.isfile(score) else None
        data = explain(explainer, piece, folders[1], os.path.join(top, "explain.json"))
        summary = explain(explainer, piece, folders[1], os.path.join(top, "summary.json"), "--no-events")
        messages = explain(explainer, piece, folders[1], os.path.join(top, "messages"), "--format=gcc")
    return Outcome(piece, run.returncode, run_case.cut_banner(run.stderr), written, Document(data), data, Document(summary), messages)


def add_options(parser):
    parser.add_argument("--orlo", required=True, help="the program")
    parser.add_argument("--explain", required=True, help="orlo-explain")
    parser.add_argument("--cases", action="store_true", help="take the behaviour cases")
    parser.add_argument("--pages", action="store_true", help="take the examples and the pieces of the pages")
    parser.add_argument("--count", type=int, default=0, help="take so many generated pieces")
    parser.add_argument("--seed", type=int, default=1, help="of the generated pieces")
    parser.add_argument("--filter", default="*", metavar="PATTERN", help="take the pieces whose names match")
    parser.add_argument("--share", default="0/1", metavar="N/M", help="take each M-th piece from the N-th on")
    parser.add_argument("files", nargs="*", metavar="FILE", help="a piece or a case")


def chosen_pieces(options):
    if options.cases:
        yield from case_pieces()
    if options.pages:
        yield from example_pieces()
        yield from page_pieces()
    yield from generated_pieces(options.count, options.seed)
    for path in options.files:
        if path.endswith(".case"):
            yield from case_pieces([path])
        else:
            yield file_piece(path)


def check_all(options, check):
    """Runs the pieces that are chosen; each time check gives the list of what is wrong. The exit status."""
    programs = [os.path.abspath(options.orlo), os.path.abspath(options.explain)]
    first, step = map(int, options.share.split("/"))
    done, failed = 0, 0
    for place, piece in enumerate(chosen_pieces(options)):
        if place % step != first or not run_case.is_meant(piece.name, options.filter):
            continue
        try:
            faults = check(outcome(programs, piece))
        except (Fault, KeyError, IndexError, ValueError, TypeError, ArithmeticError, subprocess.TimeoutExpired) as fault:
            faults = [f"{type(fault).__name__}: {fault}"]
        done += 1
        if faults:
            failed += 1
            print(f"FAIL: {piece.name}", *faults[:10], sep="\n  ", flush=True)
    return done, failed
