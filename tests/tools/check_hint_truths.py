"""What hints say is true, and their fixes do what they say.

    check_hint_truths.py --orlo PROGRAM --explain PROGRAM [--cases] [--pages] [--count N --seed N] [FILE...]
    check_hint_truths.py --orlo PROGRAM --explain PROGRAM --folder tests/hints/newcomers

Each hint of a piece is judged by the raw data of its document: the figures of its sentences are recomputed, what stands at its
place is read, its condition is tried. Then its edits are made, and the piece is run again: the hint is gone, no other hint, error
or warning has come, and the score is what the fix promises. A hint whose name has no check is a fault.

Generated pieces (--count) come twice: as they are, and after a composer has stumbled in them (stumbles.py). An example or a piece
of a page has no hint, unless it stands in ABOUT. --folder compares the hints of its pieces with its expected.txt.
"""

import argparse
import collections
import os
import pathlib
import re
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [HERE, os.path.join(HERE, "../../src/tables")]
import explain_pieces
import hints_of_letters
import hints_of_text
import hints_of_time
import hints_of_values
import run_case
import stumbles
from explain_document import Document, Fault, text
from hint_facts import Facts, Untrue, mended

TRUTHS = hints_of_time.TRUTHS | hints_of_letters.TRUTHS | hints_of_values.TRUTHS | hints_of_text.TRUTHS
PLAIN = re.compile(r"(?:README|docs/tutorial|docs/manual|examples/README)\.md: |\w+\.(?:orlo|csd)(?: -m)?$")
ERRORS = (Fault, Untrue, KeyError, IndexError, ValueError, TypeError, ArithmeticError)
ABOUT = {  # pieces that may show hints, and why
    "docs/manual.md: toolate": ("left-over", "what comes too late is passed over"),
    "docs/manual.md: xconst": ("decimals-in-whole", "a constant behind x"),
    "docs/manual.md: loop": ("values-after-loop", "what stands behind a loop comes once"),
    "docs/manual.md: seeds": ("same-seed", "sections with the same seed"),
    "docs/manual.md: sections": ("flat-by-b late-block", "the chapter of hints shows what they look like"),
    "docs/manual.md: blockstart": ("late-block", "the start of a block after a change of tempo"),
    "docs/manual.md: constants": ("three-decimals", "a third is written as 0.333"),
}
IN_PARTS = ("flat-by-b", "sharp-by-hash", "range-letter", "curve-letter", "no-rhythm", "left-over", "three-decimals",
            "decimals-in-whole", "unused-macro", "unused-constant", "text-after-block", "same-seed", "code-as-duration", "cut-span",
            "held-list", "hidden-macro", "values-after-loop", "open-loop")  # a block may have several, each of its own place
READS_MORE = ("text-after-block", "carriage-returns")  # text that was not read has hints and warnings of its own
MORE = (*READS_MORE, "held-list", "late-block")  # other events follow, and other values of chance
AFTER = {  # hints that may come of a fix, and why
    "flat-by-b": ("held-list", "the list is shorter by the notes that were none"),
    "late-block": ("event-at-end", "beats are reckoned from the start of the block"),
}


class Tally:
    """How often each hint came, was true, and had a fix that did what it says."""

    def __init__(self):
        self.came, self.true, self.fixed, self.fixes = (collections.Counter() for _ in range(4))
        self.unprovoked = []  # hints on generated pieces as they are

    def print_table(self):
        print(f"{'hint':20}{'came':>6}{'true':>6}{'fixes':>7}{'worked':>8}")
        for name in TRUTHS:
            print(f"{name:20}{self.came[name]:6}{self.true[name]:6}{self.fixes[name]:7}{self.fixed[name]:8}")


class Checker:
    def __init__(self, explain):
        self.explain, self.tally = os.path.abspath(explain), Tally()

    def run(self, piece):
        """Facts of a piece, by orlo-explain alone."""
        with tempfile.TemporaryDirectory(prefix="orlo-hints-") as top:
            folder = os.path.join(top, "explain")
            os.mkdir(folder)
            explain_pieces.write_files(piece, folder)
            data = explain_pieces.explain(self.explain, piece, folder, os.path.join(top, "explain.json"))
        return Facts(piece, Document(data), self.run)

    def check(self, facts):
        return [f"{hint}\n    {fault}" for hint in facts.hints for fault in self.check_hint(facts, hint)]

    def check_hint(self, facts, hint):
        self.tally.came[hint.name] += 1
        if hint.name not in TRUTHS:
            return [f"nothing checks {hint.name}"]
        truth, promise = TRUTHS[hint.name]
        faults = attempt(truth, facts, hint)
        self.tally.true[hint.name] += not faults
        if not hint.edits:
            return faults
        self.tally.fixes[hint.name] += 1
        failed = attempt(self.check_fix, facts, hint, promise)
        self.tally.fixed[hint.name] += not failed
        return faults + [f"fix: {fault}" for fault in failed]

    def check_fix(self, facts, hint, promise):
        after = self.run(mended(facts, hint))
        before, now = ([(each.name, each.block and each.block.index, each.words) for each in part.hints] for part in (facts, after))
        here = hint.name, hint.block and hint.block.index, hint.words
        if now.count(here) >= before.count(here) or hint.name not in IN_PARTS and here[:2] in [each[:2] for each in now]:
            yield "the hint is still there"
        new = {name for name, _, _ in now} - {name for name, _, _ in before} - set(AFTER.get(hint.name, ("",))[0].split())
        known = facts.document.status == 0 and hint.name not in READS_MORE  # behind an error hints were not looked for
        if new and known and not begins_to_sound(hint, after):
            yield f"it brings {', '.join(sorted(new))}"
        worse = severities(after, "error") - severities(facts, "error")
        if worse and facts.document.status == 0:  # behind one error may be another
            yield f"it brings errors: {dict(worse)}"
        worse = severities(after, "warning") - severities(facts, "warning")
        if worse and facts.document.status == 0 and hint.name not in MORE \
                and severities(after, "warning").total() > severities(facts, "warning").total():
            yield f"it brings warnings: {dict(worse)}"
        if promise:
            yield from promise(facts, hint, after)


def severities(facts, severity):
    """The messages of a severity, by their texts."""
    return collections.Counter(text(each["text"]).decode("latin-1") for each in facts.document.diagnostics
                               if each["severity"] == severity and not each.get("recovered"))


def begins_to_sound(hint, after):
    """A block that had no events has some now, and hints of them are new."""
    if hint.block is None or hint.block.events is None:
        return False
    return hint.block.events.count == 0 < after.document.blocks[hint.block.index].events.count


def attempt(check, *arguments):
    """The faults of a check; one that can't be made has failed."""
    faults = []
    try:
        for fault in check(*arguments):
            faults.append(fault)
    except ERRORS as error:
        faults.append(f"{type(error).__name__}: {error}")
    return faults


def check_place(facts):
    """An example or a piece of a page shows what it is about, and nothing else."""
    if not PLAIN.match(facts.piece.name):
        return []
    names, allowed = {hint.name for hint in facts.hints}, set(ABOUT.get(facts.piece.name, ("",))[0].split())
    if facts.piece.name.endswith(" -m"):  # examples are written for Csound
        names = {name for name in names if not name.startswith("midi-")}
    return [f"a piece of a page has the hint {name}" for name in sorted(names - allowed)] \
        + [f"a piece that is about {name} has no such hint" for name in sorted(allowed - names)]


def check_pieces(checker, pieces, options, kept=None):
    """Runs pieces by orlo-explain alone; how many were run, and how many of them failed. Hints that came are added to kept."""
    first, step = map(int, options.share.split("/"))
    done, failed = 0, 0
    for place, piece in enumerate(pieces):
        if place % step != first or not run_case.is_meant(piece.name, options.filter):
            continue
        try:
            facts = checker.run(piece)
            faults = checker.check(facts)
            if kept is not None:
                kept += [(piece.name, hint) for hint in facts.hints]
        except (*ERRORS, subprocess.TimeoutExpired) as fault:
            faults = [f"{type(fault).__name__}: {fault}"]
        done += 1
        if faults:
            failed += 1
            print(f"FAIL: {piece.name}", *faults[:10], sep="\n  ", flush=True)
    return done, failed


def stumbled_pieces(options):
    for place, piece in enumerate(explain_pieces.generated_pieces(options.count, options.seed)):
        yield stumbles.stumbled(piece, options.seed * 1_000_003 + place)


def shown_pieces(folder):
    """The pieces that show hints, as check_hints.py runs them."""
    for path in sorted(pathlib.Path(folder).glob("*/shows*.orlo")):
        files = {each.name: each.read_bytes() for each in sorted(path.parent.iterdir()) if each.is_file() and each.suffix != ".txt"}
        first = files[path.name].split(b"\n", 1)[0].decode("latin-1")
        midi = first.startswith("; run with:") and "-m" in first
        up = "../" if first.startswith("; run from:") else ""
        beside = {up + name: data for name, data in files.items()}
        yield explain_pieces.Piece(f"{path.parent.name}/{path.name}", up + path.name, beside, midi)


def check_outcome(checker, options):
    def check(outcome):
        facts = Facts(outcome.piece, outcome.document, checker.run)
        return checker.check(facts) + (check_place(facts) if options.pages else [])

    return check


# ---- a folder of pieces

def expected_of(folder):
    """Lines of expected.txt: a piece, its options in brackets, and the names of its hints."""
    with open(os.path.join(folder, "expected.txt"), encoding="ascii") as file:
        for line in file:
            name, _, hints = line.partition(":")
            main, _, option = name.partition(" ")
            yield main, option == "-m", hints.split()


def check_folder(checker, folder):
    faults, pieces = [], sorted(each for each in os.listdir(folder) if each.endswith(".orlo"))
    expected = list(expected_of(folder))
    if [main for main, _, _ in expected] != pieces:
        faults.append(f"expected.txt is not of {pieces}")
    files = {}
    for each in sorted(os.listdir(folder)):
        with open(os.path.join(folder, each), "rb") as file:
            files[each] = file.read()
    for main, midi, names in expected:
        facts = checker.run(explain_pieces.Piece(main, main, files, midi))
        found = [hint.name for hint in facts.hints]
        if found != names:
            faults.append(f"{main}: {' '.join(found)}")
        faults += checker.check(facts)
    for fault in faults:
        print(f"FAIL: {fault}")
    print(f"{len(expected)} pieces, {len(faults)} faults")
    return len(faults)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    explain_pieces.add_options(parser)
    parser.add_argument("--folder", help="compare the hints of its pieces with its expected.txt")
    parser.add_argument("--unprovoked", action="store_true", help="show the hints of generated pieces as they are")
    options = parser.parse_args()
    checker = Checker(options.explain)
    if options.folder:
        return 1 if check_folder(checker, options.folder) else 0
    written = argparse.Namespace(**vars(options) | {"count": 0})
    sums = [explain_pieces.check_all(written, check_outcome(checker, options)),
            check_pieces(checker, explain_pieces.generated_pieces(options.count, options.seed), options, checker.tally.unprovoked),
            check_pieces(checker, stumbled_pieces(options), options)]
    if options.pages:
        sums.append(check_pieces(checker, shown_pieces(os.path.join(explain_pieces.TESTS, "hints")), options))
    done, failed = map(sum, zip(*sums))
    for name, hint in checker.tally.unprovoked if options.unprovoked else []:
        print(f"{name}: {hint}")
    checker.tally.print_table()
    rare = [name for name in TRUTHS if checker.tally.came[name] < 5] if options.count >= 500 else []
    for name in rare:
        print(f"FAIL: {name} came {checker.tally.came[name]} times")
    print(f"{done} pieces, {failed} failed")
    return 1 if failed or rare or not done else 0


if __name__ == "__main__":
    sys.exit(main())
