"""The check of origins finds what is wrong with a document: test_check_origins.py --orlo PROGRAM --explain PROGRAM

Documents of moved pieces that are right are changed, one number, text or truth at a time: a shifted column, another file, another call
or none, another value. The check must find each. What it can't find stands in UNSEEN, with the reason.
"""

import argparse
import fnmatch
import json
import os
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [os.path.join(HERE, "tools")]
import check_origins
from explain_document import Document, Fault, at, integers, leaves
from origins import Comparison, Places

OPTIONS = None
LEAVES = 100  # of a kind that are changed in a document
MOST_RANGES = 120  # of a document

UNSEEN = {
    "piece.*": "what the program was given",
    "calls.*.value": "of an equation: it has no definition to agree with",
}

# moves that must be among those of the documents
MOVES = {"move_to_macro", "move_to_macro_with_parameters", "move_to_constant", "move_to_file", "move_within_line_to_file",
         "move_into_condition", "call_again"}


def another(value):
    if isinstance(value, bool):
        return not value
    return value + 1 if isinstance(value, (int, float)) else value + "x"


def is_unseen(path):
    name = ".".join(str(step) for step in path)
    return any(fnmatch.fnmatchcase(name, pattern) for pattern in UNSEEN)


class Moved:
    """A moved piece, where its text is, and its document."""

    def __init__(self, pieces, number, root):
        self.transformation = check_origins.Transformation(pieces, number, os.path.join(root, str(number)))
        original, new = self.transformation.documents(OPTIONS.explain)
        self.image = self.transformation.image(original)
        self.files, self.fields = new.files, new.data
        ranges = self.fields["ranges"]
        for name in ranges:
            if name != "count":
                ranges[name] = integers(ranges[name], ranges["count"], name)

    def is_plain(self):
        """Nothing of it is left out of the comparison; hints have checks of their own."""
        whole = not self.transformation.joins_lines and not self.transformation.midi and self.fields["status"] == 0 and not self.fields["hints"]
        return whole and self.fields["calls"] and self.fields["ranges"]["count"] <= MOST_RANGES

    def faults(self):
        try:
            document = Document(json.dumps(self.fields).encode())
            return Comparison(Places(document, self.files), self.image, self.transformation.joins_lines).check()
        except (Fault, LookupError, ValueError, TypeError) as fault:
            return [f"{type(fault).__name__}: {fault}"]

    def unnoticed(self, path):
        """The path of a leaf whose change is not found."""
        holder = at(self.fields, path[:-1])
        value = holder[path[-1]]
        holder[path[-1]] = another(value)
        found = self.faults()
        holder[path[-1]] = value
        return [] if found else [(".".join(str(step) for step in path), value)]


class Changes(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        pieces, wanted, number = check_origins.Pieces(), set(MOVES), 0
        cls.moved = []
        while wanted:  # ends when each move has been seen
            number += 1
            moved = Moved(pieces, number, cls.folder.name)
            new = wanted & set(moved.transformation.moves)
            if new and moved.is_plain():
                wanted -= new
                cls.moved.append(moved)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def expect_noticed(self, chosen):
        for moved in self.moved:
            self.assertEqual(moved.faults(), [])
            paths = [path for path in leaves(moved.fields) if not is_unseen(path) and chosen(path)]
            missed = [fault for path in paths[::len(paths) // LEAVES + 1] for fault in moved.unnoticed(path)]
            self.assertEqual(missed, [], moved.transformation.moves)

    def test_columns_of_ranges(self):
        self.expect_noticed(lambda path: path[:2] in (("ranges", "byte"), ("ranges", "end_byte")))

    def test_the_rest_of_ranges(self):
        self.expect_noticed(lambda path: path[0] == "ranges" and path[1] not in ("byte", "end_byte"))

    def test_calls(self):
        self.expect_noticed(lambda path: path[0] == "calls")

    def test_the_rest(self):
        self.expect_noticed(lambda path: path[0] not in ("ranges", "calls"))

    def test_what_is_missing(self):
        for moved in self.moved:
            for name in ("diagnostics", "macros", "constants", "conditionals", "blocks", "files", "tempo", "commands"):
                if moved.fields[name]:
                    last = moved.fields[name].pop()
                    self.assertNotEqual(moved.faults(), [], name)
                    moved.fields[name].append(last)

    def test_calls_lead_elsewhere(self):
        for moved in self.moved:
            calls = moved.fields["ranges"].get("call", [])
            for index, call in enumerate(calls):
                if call != -1:
                    calls[index] = -1
                    self.assertNotEqual(moved.faults(), [], f"range {index} without its call")
                    calls[index] = call


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--orlo", required=True, type=os.path.abspath)
    parser.add_argument("--explain", required=True, type=os.path.abspath)
    OPTIONS, rest = parser.parse_known_args()
    unittest.main(argv=[sys.argv[0], *rest])
