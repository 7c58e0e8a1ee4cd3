"""The checks of hints find what is false: test_check_hint_truths.py --orlo PROGRAM --explain PROGRAM

In documents of pieces that show hints each figure of a sentence, each place, each block and each edit is made another by a little, one
at a time. The check must find it. What it can't find stands in UNSEEN, with the reason.
"""

import argparse
import copy
import fnmatch
import json
import os
import re
import sys
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [os.path.join(HERE, "tools"), os.path.join(HERE, "../src/tables")]
import check_hint_truths
import explain_pieces
from check_hint_truths import Checker
from explain_document import Document, integers
from hint_facts import Facts

OPTIONS = None
UNSEEN = {
    "open-loop: edit place": "a blank before a mark, or in a comment",
    "held-list: edit place": "a blank before a mark",
    "values-after-loop: edit place": "a blank before a mark",
    "midi-velocity: edit place": "a blank before a setting",
}
FIGURE = re.compile(r"\d+(?:\.\d+)?")


def other_figure(figure):
    """The figure, two units of its last decimal more; one more of a whole number."""
    decimals = len(figure.partition(".")[2])
    return f"{float(figure) + 2 * 10 ** -decimals:.{decimals}f}" if decimals else str(int(figure) + 1)


def sentences(hint):
    """Each text of a hint with one of its figures made another."""
    for key in ("text", "reason"):
        if isinstance(hint[key], str):
            for match in FIGURE.finditer(hint[key]):
                other = hint[key][:match.start()] + other_figure(match[0]) + hint[key][match.end():]
                yield f"{key} {match[0]}", {key: other}


class Shown:
    """A piece that shows hints, with columns of its ranges as lists."""

    def __init__(self, checker, piece):
        self.checker, self.piece = checker, piece
        self.fields = checker.run(piece).document.fields
        ranges = self.fields["ranges"]
        for name in ranges:
            if name != "count":
                ranges[name] = integers(ranges[name], ranges["count"], name)
        self.whole = [each for each in self.faults() if each]

    def faults(self, fields=None):
        document = Document(json.dumps(fields or self.fields).encode())
        return self.checker.check(Facts(self.piece, document, self.checker.run))

    def moved(self, index, columns):
        """The fields with one range more, as another one but a byte further on."""
        fields = copy.deepcopy(self.fields)
        ranges = fields["ranges"]
        for name in ranges:
            if name != "count":
                ranges[name].append(ranges[name][index] + (name in columns))
        ranges["count"] += 1
        return fields

    def changes(self):
        """All changes: what was changed, and the fields."""
        for place, hint in enumerate(self.fields["hints"]):
            for what, change in sentences(hint):
                fields = copy.deepcopy(self.fields)
                fields["hints"][place] |= change
                yield f"{hint['name']}: {what}", fields
            if "range" in hint:
                for what, columns in (("begin", ("byte", "utf16")), ("line", ("line", "end_line"))):
                    fields = self.moved(hint["range"], columns)
                    fields["hints"][place]["range"] = fields["ranges"]["count"] - 1
                    yield f"{hint['name']}: {what}", fields
            if len(self.fields["blocks"]) > 1 and "block" in hint:
                fields = copy.deepcopy(self.fields)
                fields["hints"][place]["block"] = (hint["block"] + 1) % len(fields["blocks"])
                yield f"{hint['name']}: block", fields
            for number in range(len(hint.get("edits", []))):
                yield from self.edits(hint, place, number)

    def edits(self, hint, place, number):
        edit = hint["edits"][number]
        fields = self.moved(edit["range"], ("byte", "utf16", "end_byte", "end_utf16"))
        fields["hints"][place]["edits"][number]["range"] = fields["ranges"]["count"] - 1
        yield f"{hint['name']}: edit place", fields
        fields = copy.deepcopy(self.fields)
        fields["hints"][place]["edits"][number]["text"] = "" if edit["text"] else "7"
        yield f"{hint['name']}: edit text", fields


def unnoticed(shown):
    for what, fields in shown.changes():
        if any(fnmatch.fnmatchcase(what, pattern) for pattern in UNSEEN):
            continue
        try:
            found = shown.faults(fields)
        except check_hint_truths.ERRORS:
            found = True
        if not found:
            yield what


class Checks(unittest.TestCase):
    def test_false_hints_are_found(self):
        checker = Checker(OPTIONS.explain)
        names = set()
        for piece in check_hint_truths.shown_pieces(os.path.join(explain_pieces.TESTS, "hints")):
            shown = Shown(checker, piece)
            names |= {hint["name"] for hint in shown.fields["hints"]}
            with self.subTest(piece=piece.name):
                self.assertEqual(shown.whole, [])
                self.assertEqual(list(unnoticed(shown)), [])
        self.assertEqual(names, set(check_hint_truths.TRUTHS))

    def test_hint_without_check_is_found(self):
        checker = Checker(OPTIONS.explain)
        piece = next(iter(check_hint_truths.shown_pieces(os.path.join(explain_pieces.TESTS, "hints"))))
        shown = Shown(checker, piece)
        shown.fields["hints"][0]["name"] = "new-hint"
        self.assertIn("nothing checks new-hint", shown.faults()[0])

    def test_hint_on_a_page_is_found(self):
        piece = explain_pieces.Piece("first.orlo", "in.orlo", {"in.orlo": b"#const never 3\ni1 = 3 0 1 { p2 1 p3 1 }\n"})
        facts = Checker(OPTIONS.explain).run(piece)
        self.assertEqual(check_hint_truths.check_place(facts), ["a piece of a page has the hint unused-constant"])


def main():
    global OPTIONS
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--orlo", required=True)
    parser.add_argument("--explain", required=True)
    OPTIONS, rest = parser.parse_known_args()
    unittest.main(argv=[sys.argv[0], *rest])


if __name__ == "__main__":
    main()
