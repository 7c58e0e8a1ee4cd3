"""What is missing for a row of a table is named: test_check_tables.py --orlo PROGRAM [--tables PROGRAM]"""

import argparse
import copy
import os
import sys
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "tools"))
import check_tables
from check_tables import tables

ORLO, PRINTED, PAGES = None, None, None


class MadeUpTables(unittest.TestCase):
    def setUp(self):
        self.printed, self.pages = copy.deepcopy(PRINTED), copy.copy(PAGES)
        self.pages.keywords = dict(PAGES.keywords)

    def missing(self):
        return check_tables.missing(self.printed, self.pages, ORLO)

    def add_word(self, word, code, *places, form=None):
        self.printed["keywords"].append({"word": word, "code": code, "places": list(places)})
        if form:
            self.pages.keywords[word] = [word, form, "a meaning", "RA"]

    def add_item(self, section, word):
        self.pages.language = self.pages.language.replace(f".Ss {section}\n", f".Ss {section}\n.It Ic {word}\n")

    def test_nothing_is_missing(self):
        self.assertEqual([], self.missing())

    def test_a_word_that_is_nowhere(self):
        self.add_word("zz", "CMD_ZZ", "BLOCK")
        self.assertEqual(["word zz: no line in docs/keywords.tsv", "word zz: no item in Settings of docs/man/orlo.5",
                          "word zz: no case uses it as setting", "word zz: no handler as setting, BLOCK"], self.missing())

    def test_a_generator_without_handler(self):
        self.add_word("zz", "CMD_ZZ", "BLOCK", form="ZZ(...)")
        self.assertEqual(["word zz: no item in Generators of docs/man/orlo.5", "word zz: no case uses it as generator",
                          "word zz: no handler as generator, BLOCK"], self.missing())
        self.add_item("Generators", "ZZ")
        self.pages.pieces += "p4 zz(t 1 2)"
        self.assertEqual(["word zz: no handler as generator, BLOCK"], self.missing())

    def test_types_without_handler(self):
        self.add_word("hz", "TYPE_HZ", "BLOCK", "INPUT", form="hz")
        self.add_word("no", "TYPE_NO", "OUTPUT", form="no")
        self.assertEqual(["word hz: no item in Input types of docs/man/orlo.5", "word hz: no handler as input, BLOCK",
                          "word no: no item in Output types of docs/man/orlo.5", "word no: no handler as output, OUTPUT"],
                         [fault for fault in self.missing() if "no case uses it as input" not in fault])

    def test_an_output_type_whose_column_is_left_out(self):
        row = next(row for row in self.printed["keywords"] if row["word"] == "xx")
        self.assertTrue(check_tables.is_handled(ORLO, "xx", "output", "OUTPUT", {}))
        check_tables.NO_COLUMN.remove("xx")
        self.addCleanup(check_tables.NO_COLUMN.add, "xx")
        self.assertEqual([f"word {row['word']}: no handler as output, OUTPUT"], self.missing())

    def test_a_setting_that_the_global_block_refuses(self):
        check_tables.REFUSED.remove(("pf", "GLOBAL"))
        self.addCleanup(check_tables.REFUSED.add, ("pf", "GLOBAL"))
        self.assertEqual(["word pf: no handler as setting, GLOBAL"], self.missing())

    def test_words_of_the_pages_and_codes_alone(self):
        self.pages.keywords["zz"] = ["zz", "zz", "a meaning", "RA"]
        self.pages.keywords["ra"] = ["ra", "RA(...)", "a meaning", "No such chapter"]
        self.printed["codes"].append({"number": 63, "name": "CMD_ZZ"})
        self.assertEqual(["word zz: docs/keywords.tsv knows it, the program does not",
                          "word ra: no chapter No such chapter in docs/manual.md", "code CMD_ZZ: no word"], self.missing())

    def test_a_message(self):
        self.printed["errors"].append({"number": 998, "name": "NEW", "text": "A new error.", "line": True})
        self.printed["error_names"].append({"number": 997, "name": "NEWER"})
        self.pages.messages = [*PAGES.messages, ["warning", "99", "cause", "cure"]]
        self.assertEqual(["error 997 (NEWER): no text in the table", "error 998 (NEW): no line in docs/messages.tsv",
                          "error 998 (NEW) is shown by no case (exact screen or log): 'A new error.'",
                          "warning 99: docs/messages.tsv knows it, the program does not"], self.missing())

    def test_a_message_that_a_case_shows(self):
        self.printed["warnings"].append({"number": 98, "name": "W_NEW", "text": "A new warning.", "line": True})
        self.pages.messages = [*PAGES.messages, ["warning", "98", "cause", "cure"]]
        self.pages.seen += "\nWARNING: Line 3: A new warning.\n"
        self.assertEqual([], self.missing())
        self.pages.messages[-1][2] = "Never shown. It is made up."
        self.assertEqual(["warning 98 (W_NEW) is told not to be seen, but a case shows it"], self.missing())

    def test_a_limit(self):
        self.printed["limits"].append({"name": "MAX_TOYS", "value": 3, "meaning": "toys", "file": "ddf/ddf.h"})
        self.assertEqual(["limit MAX_TOYS: no line in docs/limits.tsv", "limit MAX_TOYS: not in src/ddf/ddf.h"], self.missing())

    def test_a_letter(self):
        self.printed["curves"].append({"letter": "q", "code": 6, "name": "quick"})
        self.printed["distribution_names"].append({"number": 7, "name": "even"})
        self.assertEqual(["curves: no picture of q in docs/manual.md", "distributions: no letter for even"], self.missing())

    def test_an_option_and_a_directive(self):
        self.printed["options"].append({"letter": "q", "value": "", "meaning": "quick"})
        self.printed["directives"].append({"word": "ifndef"})
        self.assertEqual(["option -q: no item in docs/man/orlo.1", "option -q: not in completions/orlo",
                          "directive #ifndef: not in docs/manual.md", "directive #ifndef: not in docs/man/orlo.5"], self.missing())


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    tables.add_option(parser)
    parser.add_argument("--orlo", required=True)
    options, rest = parser.parse_known_args()
    ORLO, PRINTED, PAGES = os.path.abspath(options.orlo), tables.read(options.tables), check_tables.Pages()
    unittest.main(argv=[sys.argv[0], *rest])
