"""The checks of orlo-explain's documents find what is wrong:

    test_check_explain.py --orlo PROGRAM --explain PROGRAM --tables PROGRAM

Every number, text and truth in the documents of some pieces is made another, one at a time: a check must find it. What none can
find stands in UNSEEN, with the reason.
"""

import argparse
import fnmatch
import json
import os
import sys
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [os.path.join(HERE, "tools"), os.path.join(HERE, "../src/tables")]
import check_draws
import check_explain
import explain_pieces
import tables
from explain_document import Document, Fault, at, is_range_name, leaves

OPTIONS = None

# what no check can know to be wrong, by its path, or by the path of what stands in a range, with the reason
UNSEEN = {
    "*: program": "a name",
    "rich: diagnostics.*.range*": "orlo shows no line of it, or another piece of the line",
    "failing: diagnostics.*.range*": "of messages that orlo does not come to",
    "rich: *.runs.*.of": "the values that are repeated are equal",
    "rich: blocks.0.events.pfields.*.origin.*": "chords that are repeated are equal",
    "rich: *.ranges.1.distribution": "of a single value",
    "hinted: hints.*.range": "what is wrong is what is edited",
    "hinted: tempo.0.range": "the command stands there",
    "hinted: *.ranges.*.distribution": "of single values",
    "failing: *.draws.*": "behind an error, without a deviation",
    "failing: commands.0.range*": "a command that is not finished",
    "failing: blocks.1.sections.0.range end_line": "a section behind an error",
    "failing: blocks.2.failed": "of a block that orlo does not come to",
    "failing: blocks.2.sections.0.*": "of it too: its values are not kept",
}

RICH = r"""te(0 8 60 120 e)
rs(7)
rd(.05)
#const k 2.5
#define m(a) #$a 3#
#include |more.inc|
> f1 0 1024 10 1
i1 = 6 1 8 {
p2 rh 4 8. re RA(3 .5 [.25 1] .5 [l .5 1]) <.5 .25>
p3 dv(.1) 1 400.5 x3
p4 no c4 d' e5 RW(3 1 [c2 c6] .2 c4) SE(-2 .5 x[c d e] .5 [r f])
p5 0 $m(4) ~k ~[? * 2] MO(T 1 e [1 2] [l 5 6])
p6 (in) pf(2) < 1 2' 3 >
}
#if(0)
> never
#endif
#if(1)
rs(9)
#endif
i-2 = 3 0 1 { p2 1 }
i3 = 7 0 -12 {
p2 MS(-6 1 [.5 1] [.25 .75]) HO(-3 .5) SE(-3 1 * [.5 1 .75])
p3 300.1 201 .5 EX(-3 1 [p2 * .1 + 1])
p4 (hz) op RA(-6 1 [g 7.00 9.00]) MO(-6 .5 [t 7.00 8.00] 9.00 .5 [b 7.00 8.00] [x 8.00 9.00])
p5 S2(-4 .5 x[1'2 3 4'5'6] .5 7) MS(6 1 s* [1 2 3] [7 8])
p6 (re4) EX(T 1 i[p4 + p5 * 2])
p7 db 60 / / 72 RA(3 1 [h 60 90])
}
"""
FAILING = "i1 = 4 0 2 {\np2 1\np3 1\np4 1 2 3\n}\ni2 = 3 0 2 {\np2 1\np3 x\n}\nte(1 2)\ni3 = 3 0 1 {\np2 q\n}\n"

HINTED = "te(90)\ni1 = 4 0 8 {\np2 MO(T 1 1 .1)\np3 1\np4 MO(-100 1 0 100)\n}\n"

NOTES = "i1 = 5 0 4 {\np2 1\np3 .5 1\np4 9000 10000\np5 no c4 e5\n}\n"

PIECES = [
    explain_pieces.Piece("rich", "in.orlo", {"in.orlo": RICH.encode(), "more.inc": b"te(60)\n"}),
    explain_pieces.Piece("failing", "in.orlo", {"in.orlo": FAILING.encode()}),
    explain_pieces.Piece("hinted", "in.orlo", {"in.orlo": HINTED.encode()}),
    explain_pieces.Piece("notes", "in.orlo", {"in.orlo": NOTES.encode()}, True),
]


def owners_of_ranges(fields):
    """The paths of the indexes that lead to each range."""
    owners = {}
    for place in leaves(fields):
        part = at(fields, place)
        if is_range_name(str(place[-1])) or place[-2:-1] == ("uses",):
            owners.setdefault(part, ".".join(map(str, place)))
        elif place[-1] == "ranges":
            owners.setdefault(part, ".".join(map(str, place)))
    return owners


def name_of(path, owners):
    """A leaf by its path, a range by the path of what stands there."""
    if path[0] == "ranges" and len(path) == 3:
        before = [index for index in owners if index <= path[2]]
        index = max(before, default=0)
        return f"{owners.get(index)}" + f"+{path[2] - index}" * (index != path[2]) + f" {path[1]}"
    return ".".join(map(str, path))


WORDS = [("literal", "repeat", "generator", "fill", "loop"), ("error", "warning", "note"), ("uniform", "low"), ("re", "in"),
         ("f", "e", "l", "s", "c"), ("any", "all_before_repeating", "never_twice"), ("macro", "argument", "constant", "equation")]


def changed(value):
    """Another value of the same kind."""
    if isinstance(value, str):
        words = next((words for words in WORDS if value in words), (value, value + "x"))
        return words[(words.index(value) + 1) % len(words)]
    return value + 1 if isinstance(value, int) else value * 1.0078125 + 0.0078125


def with_change(fields, path):
    """A copy of a document with one leaf made another."""
    copy = json.loads(json.dumps(fields))
    part = at(copy, path[:-1])
    if part[path[-1]] is True:  # what is not so is left out
        del part[path[-1]]
    else:
        part[path[-1]] = changed(part[path[-1]])
    return json.dumps(copy).encode()


class Mutations(unittest.TestCase):
    def setUp(self):
        screen = check_explain.Screen(OPTIONS.tables)
        self.checks = [check_draws.check, check_explain.make_check(None, screen)]

    def is_found(self, outcome, path):
        try:
            document = Document(with_change(outcome.document.fields, path))
            return any(check(outcome._replace(document=document)) for check in self.checks)
        except (Fault, KeyError, IndexError, ValueError, TypeError, ArithmeticError, AttributeError):
            return True

    def unseen(self, outcome):
        """Paths of leaves that can be anything."""
        fields = outcome.document.fields
        paths, owners = list(leaves(fields)), owners_of_ranges(fields)
        self.assertGreater(len(paths), 100)
        names = [name_of(path, owners) for path in paths if not self.is_found(outcome, path)]
        return [f"{outcome.piece.name}: {name}" for name in names]

    def test_every_leaf(self):
        unseen, used = [], set()
        for piece in PIECES:
            outcome = explain_pieces.outcome([OPTIONS.orlo, OPTIONS.explain], piece)
            for check in self.checks:
                self.assertEqual(check(outcome), [])
            for name in self.unseen(outcome):
                patterns = [pattern for pattern in UNSEEN if fnmatch.fnmatchcase(name, pattern)]
                used.update(patterns)
                unseen += [] if patterns else [name]
        if unseen:
            self.fail("what can be anything:\n" + "\n".join(unseen))
        self.assertEqual(sorted(set(UNSEEN) - used), [])


    def test_every_leaf_without_events(self):
        outcome = explain_pieces.outcome([OPTIONS.orlo, OPTIONS.explain], PIECES[0])
        self.assertEqual(check_explain.check_summary(outcome), [])
        fields = outcome.summary.fields
        for path in leaves(fields):
            if path[0] == "score":  # the same in both, which the scores show
                continue
            try:
                summary = Document(with_change(fields, path))
                self.assertTrue(check_explain.check_summary(outcome._replace(summary=summary)), path)
            except (Fault, KeyError, IndexError, ValueError, TypeError):
                continue  # seen when it was read
        self.assertTrue(check_explain.check_summary(outcome._replace(summary=outcome.document)))


class Screens(unittest.TestCase):
    def setUp(self):
        self.screen = check_explain.Screen(OPTIONS.tables)

    def test_forms(self):
        found = self.screen.messages(b"\n\nERROR: Line 3: Bad i-number.\nix \n ^\n\nWARNING: P3 Duration < 0! (Event turned into rest...)"
                                     b"\n\tP4: Fused data changed \"events\" from 2 to 3\n\nERROR: P2 is blank ... OY!\n\n")
        self.assertEqual([(each[0], sorted(each[1], key=str), each[3]) for each in found],
                         [("error", [11], 3), ("warning", [1], None), ("note", [None], None), ("error", [None], None)])
        self.assertEqual(found[0][4], [b"ix ", b" ^"])

    def test_unknown_message(self):
        with self.assertRaises(Fault):
            self.screen.messages(b"\n\nERROR: Line 3: Bad luck.\nix \n ^\n")


class Drawing(unittest.TestCase):
    def test_known_sequence(self):
        sequence = check_draws.Sequence(1)
        self.assertEqual([sequence.draw(place) for place in range(3)], [1804289383, 846930886, 1681692777])
        self.assertEqual(sequence.draw(999), check_draws.Sequence(0).draw(999))


def main():
    global OPTIONS  # pylint: disable=global-statement
    parser = argparse.ArgumentParser(description="the checks of documents find what is wrong")
    parser.add_argument("--orlo", required=True)
    parser.add_argument("--explain", required=True)
    tables.add_option(parser)
    OPTIONS, rest = parser.parse_known_args()
    OPTIONS.orlo, OPTIONS.explain = os.path.abspath(OPTIONS.orlo), os.path.abspath(OPTIONS.explain)
    unittest.main(argv=[sys.argv[0], *rest])


if __name__ == "__main__":
    main()
