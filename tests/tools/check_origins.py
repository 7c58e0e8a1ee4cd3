"""Where notes come from stays true when text is moved: check_origins.py --orlo PROGRAM --explain PROGRAM [--count N] [--seed N]
[--first N] [--keep FOLDER]

Takes pieces (examples, those of pages, cases, generated ones, and generated ones with an error or a warning), moves parts of them at
random into include files, macros, constants and conditions, and runs both. The scores must be the same bytes. What orlo-explain says
of the moved piece must be what it says of the original, with every place where the text is now: the same file, line and columns,
through the expected calls. When the ends of a range lie in different texts, both are lifted to the innermost call or file that they
share. Some of the moved pieces are run as Csound documents or for a MIDI file.
"""

import argparse
import collections
import hashlib
import os
import random
import re
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [HERE]
import explain_pieces
import generate_pieces
from explain_document import Document, Fault, text as document_text
from explain_pieces import Piece
from moves import Mover, transform
from origins import Comparison, Image, Places
from piece_text import NotUnderstood, PieceText
from text_tree import Layout, Walk, read_program, wrap_in_document

MAIN = "piece.orlo"

# what is met first, and whether, depends on how much there is of what moves add
LIMITS = [b"expands without end!", b"The expanded line has exceeded", b"Too many expansions!", b"There are no macros to undefine."]
UNREAD_CONDITION = re.compile(r"#if\((?!\s*\d)")  # perhaps: one that is not read goes by the one before it
LARGEST_PIECE = 6000  # bytes
LONGEST_LINE = 500
SHARES = {"generated": 38, "broken": 30, "case": 20, "page": 6, "example": 6}
FAULTS_SHOWN = 6

# what is put into generated pieces, so that something is wrong with them: instead of a number, into a section, between blocks
WRONG_NUMBERS = ["&", "900", "-3", "zz9", "$nope", "~nope", "9.75", "99999999999", "~[1 +]", "$nope(1)"]
WRONG_ITEMS = ["dv(2)", "rd(1.5)", "dv(200)", "rs(70000)", "7x0", "EX(T 1 [p2 / p3])", "5''6", "RA(2 .5 [1 2])", "SE(T 1 [])",
               "MO(T 1 q 1 2)", "XY", " ".join(str(number) for number in range(1, 32))]
WRONG_LINES = ["te(20)", "te(0 5 10 999)", "te(x)", "zz", "rs(70000)", "rd(2)", "#const k9_ $m", "~nope", "te(5 1 60 60)", "pf(2)"]


# pieces: files by name, the piece is MAIN

def files_of(pieces):
    """Those of pieces of orlo, with their texts as Latin-1, so that characters are bytes."""
    for piece in pieces:
        files = {name: data.decode("latin-1") for name, data in piece.files.items() if data is not None}
        if piece.main in files and not piece.midi and not piece.is_csd():
            yield {MAIN: files.pop(piece.main)} | files


def with_wide_characters(text):
    """With a comment whose characters are several bytes, and not as many UTF-16 units."""
    comment = "/* \u00e9\u2669\U0001d11e */".encode().decode("latin-1")
    return re.sub(r"\np(\d)", lambda match: f"\np{match[1]} {comment} ", text, count=1)


def generated_piece(chance):
    text = generate_pieces.make_piece(chance.randrange(10**9))
    return {MAIN: with_wide_characters(text) if chance.random() < .1 else text}


def broken_piece(chance):
    """A generated piece with something wrong in it."""
    text = generated_piece(chance)[MAIN]
    reading = PieceText(text)
    kind = chance.choice(["number", "item", "item", "line", "again"])
    if kind == "number" and reading.numbers:
        begin, end = chance.choice(reading.numbers)
        text = text[:begin] + chance.choice(WRONG_NUMBERS) + text[end:]
    elif kind == "line":
        at = chance.choice(sorted(reading.free_lines))
        text = text[:at] + chance.choice(WRONG_LINES) + "\n" + text[at:]
    elif kind == "again":
        text = re.sub(r"\np4", "\np3", text, count=1)
    else:
        at = chance.choice(reading.sections)
        text = text[:at] + " " + chance.choice(WRONG_ITEMS) + " " + text[at:]
    return {MAIN: text}


class Pieces:
    """Pieces by kind, at random."""

    def __init__(self):
        self.kept = {"example": list(files_of(explain_pieces.example_pieces())), "case": list(files_of(explain_pieces.case_pieces())),
                     "page": list(files_of(explain_pieces.page_pieces()))}
        self.texts = {kind: [hashlib.sha256(repr(files).encode()).digest() for files in all_files]
                      for kind, all_files in self.kept.items()}

    def kept_piece(self, kind, drawn):
        """One of a kind; a piece that is added to the tests takes the place of few others."""
        prefix = f"{drawn}\n".encode()
        return self.kept[kind][min(range(len(self.kept[kind])), key=lambda at: hashlib.sha256(prefix + self.texts[kind][at]).digest())]

    def choose(self, chance):
        """A kind, a program, and the reading of its text. Pieces that the reading does not follow are left out."""
        while True:
            kind = chance.choices(list(SHARES), list(SHARES.values()))[0]
            if kind in self.kept:
                files = self.kept_piece(kind, chance.random())
            else:
                files = generated_piece(chance) if kind == "generated" else broken_piece(chance)
            if len(files[MAIN]) > LARGEST_PIECE or any(len(line) > LONGEST_LINE for line in files[MAIN].split("\n")):
                continue
            program = read_program(MAIN, files)
            if program is None:
                continue
            try:
                return kind, program, PieceText("".join(character.c for character, _ in Walk(program).met))
            except NotUnderstood:
                continue


class Transformation:
    """A piece and what it was moved to, in a folder of its own each."""

    def __init__(self, pieces, seed, root):
        chance = random.Random(seed)
        while True:  # ends with a piece of which something may be moved, without a line that is too long then
            self.kind, self.program, self.reading = pieces.choose(chance)
            self.before = Walk(self.program), Layout(self.program)
            mover = Mover(self.program, self.reading, chance)
            self.moves = transform(mover, chance)
            if self.moves and mover.lines_are_short() and not self.changes_condition():
                break
        if [character.c for character, _ in Walk(self.program).met] != list(self.reading.text):
            raise AssertionError("the check itself has lost text")
        self.joins_lines = mover.joins_lines
        self.midi = chance.random() < .1
        self.ends_at_limit = False
        files = Layout(self.program).files
        self.as_document = not self.midi and chance.random() < .1 and files[MAIN].endswith("\n")
        self.folders = [os.path.join(root, name) for name in ("before", "after")]
        self.pieces = [self.write(folder, MAIN, each) for folder, each in zip(self.folders, (self.before[1].files, files))]

    def changes_condition(self):
        return "move_into_condition" in self.moves and UNREAD_CONDITION.search(self.reading.text) is not None

    def write(self, folder, main, files):
        piece = Piece(folder, main, {name: text.encode("latin-1") for name, text in files.items()}, self.midi)
        explain_pieces.write_files(piece, folder)
        return piece

    def score(self, orlo, piece):
        """Status and score."""
        out = piece.name + ".sco"
        run = explain_pieces.run_program([orlo, "-s", *["-m"] * self.midi, piece.main, out], piece.name)
        self.ends_at_limit |= any(limit in run.stderr for limit in LIMITS)
        if not os.path.exists(out):
            return run.returncode, None
        with open(out, "rb") as file:
            return run.returncode, file.read()

    def compare_scores(self, orlo):
        old, new = (self.score(orlo, piece) for piece in self.pieces)
        return [] if old == new or self.ends_at_limit else [f"orlo: status {new[0]} and another score instead of status {old[0]} and its score"]

    def places(self, explain, piece):
        document = Document(explain_pieces.explain(explain, piece, piece.name, piece.name + ".json"))
        folder = document_text(document.fields["piece"]["folder"])
        if os.path.realpath(folder) != os.path.realpath(piece.name).encode():
            raise Fault(f"its folder is {folder}")
        return Places(document, {name: data.decode("latin-1") for name, data in piece.files.items()})

    def documents(self, explain):
        """What orlo-explain says of the original and of the moved piece."""
        if self.as_document:
            wrap_in_document(self.program)
            self.pieces[1] = self.write(self.folders[1], self.program.main.name, Layout(self.program).files)
        return [self.places(explain, piece) for piece in self.pieces]

    def image(self, original):
        """Where the places of the original are now."""
        return Image(original, *self.before, self.program)


def check_one(options, pieces, number, counts):
    """The faults of a transformation."""
    with tempfile.TemporaryDirectory() as root:
        if options.keep:
            root = os.path.join(options.keep, str(number))
        transformation = Transformation(pieces, options.seed * 1_000_003 + number, root)
        counts.update(transformation.moves)
        counts[f"pieces: {transformation.kind}"] += 1
        try:
            faults = transformation.compare_scores(options.orlo)
            if transformation.ends_at_limit:
                counts["ended at a limit"] += 1
            elif not faults:
                original, moved = transformation.documents(options.explain)
                comparison = Comparison(moved, transformation.image(original), transformation.joins_lines)
                faults = comparison.check()
                counts.update(comparison.counts)
        except Fault as fault:
            faults = [str(fault)]
    return [f"transformation {number} ({transformation.kind}: {', '.join(transformation.moves)})"] + faults if faults else []


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--orlo", required=True, type=os.path.abspath)
    parser.add_argument("--explain", required=True, type=os.path.abspath)
    parser.add_argument("--count", type=int, default=150, help="transformations")
    parser.add_argument("--first", type=int, default=0, help="number of the first transformation")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--keep", help="a folder in which the pieces stay")
    options = parser.parse_args()

    pieces, counts, wrong = Pieces(), collections.Counter(), 0
    for number in range(options.first, options.first + options.count):
        faults = check_one(options, pieces, number, counts)
        wrong += bool(faults)
        for line in faults[:1 + FAULTS_SHOWN]:
            print(line if line is faults[0] else "    " + line, flush=True)
    print(f"{options.count} transformations, {wrong} wrong")
    for name, count in sorted(counts.items()):
        print(f"  {name}: {count}")
    return 1 if wrong or options.count < 1 else 0


if __name__ == "__main__":
    sys.exit(main())
