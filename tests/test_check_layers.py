"""The check of the floors fails where it should: it is given made-up sources."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

TOOLS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "tools")
sys.path.insert(0, TOOLS)
import check_layers


def check(sources, look=lambda root: list(check_layers.faults(pathlib.Path(root)))):
    """What is found in a tree of files, each of which includes some names."""
    with tempfile.TemporaryDirectory(prefix="orlo-layers-") as root:
        for path, names in sources.items():
            os.makedirs(os.path.dirname(os.path.join(root, path)), exist_ok=True)
            with open(os.path.join(root, path), "w", encoding="ascii") as file:
                file.write("".join(f'#include "{name}"\n' for name in names) + "#include <cstdio>\n")
        return look(root)


def status_and_complaints(root):
    result = subprocess.run([sys.executable, "-I", os.path.join(TOOLS, "check_layers.py"), root],
                            capture_output=True, text=True, check=False)
    return result.returncode, result.stderr.splitlines()


class Layers(unittest.TestCase):
    def passes(self, path, *names):
        self.assertEqual(check({path: names}), [])

    def fails(self, path, name):
        self.assertEqual(check({path: ["base/numerics.h", name]}), [f'{path}: may not include "{name}"'])

    def test_what_lies_beneath_may_be_included(self):
        self.passes("base/random.cpp", "base/random.h")
        self.passes("events/block.cpp", "events/block.h", "base/clock.h", "platform/output_files.h", "diag/report.h", "input/scanners.h")
        self.passes("driver/run.cpp", "driver/run.h", "lang/iblock.h", "ddf/ddf.h", "words/values.h", "output/midi_file.h")
        self.passes("output/midi_file.cpp", "output/midi_file.h", "events/block.h", "base/numerics.h")
        self.passes("view/main.cpp", "view/view.h", "base/numerics.h", "platform/ending_signals.h")
        self.passes("tables/main.cpp", "driver/options.h", "output/midi_numbers.h")
        self.passes("gather/collector.cpp", "gather/collector.h", "driver/run.h", "words/keywords.h", "platform/whole_file.h")

    def test_what_stands_above_may_not(self):
        floors = "base", "platform", "diag", "input", "events", "words", "ddf", "lang", "driver"
        for height, floor in enumerate(floors):
            for above in floors[height + 1:]:
                self.fails(f"{floor}/room.cpp", f"{above}/room.h")
                self.fails(f"{floor}/room.h", f"{above}/room.h")

    def test_output_stands_above_events_and_beneath_the_driver(self):
        for folder in "words", "ddf", "lang", "driver":
            self.fails("output/room.cpp", f"{folder}/room.h")
        for folder in "base", "platform", "diag", "input", "events", "words", "ddf", "lang":
            self.fails(f"{folder}/room.cpp", "output/room.h")

    def test_what_looks_at_scores_knows_the_ground_alone(self):
        for folder in "diag", "events", "output", "driver", "tables":
            self.fails("view/room.cpp", f"{folder}/room.h")

    def test_nobody_knows_the_companions_and_they_do_not_know_each_other(self):
        companions = "explain", "tables", "view"
        for folder in "base", "platform", "diag", "driver", "output", *companions:
            for companion in companions:
                if folder != companion:
                    self.fails(f"{folder}/room.cpp", f"{companion}/room.h")

    def test_a_system_is_known_to_its_own_folder_alone(self):
        self.passes("platform/posix/files.cpp", "platform/files.h", "platform/posix/names.h", "base/numerics.h")
        for path in "platform/files.cpp", "platform/wasi/files.cpp", "input/room.cpp", "view/room.cpp":
            self.fails(path, "platform/posix/names.h")

    def test_a_folder_without_a_place_is_a_fault(self):
        self.fails("driver/room.cpp", "attic/room.h")
        self.fails("driver/room.cpp", "room.h")
        self.assertEqual(check({"attic/room.cpp": ["base/numerics.h"]}), ['attic/room.cpp: may not include "base/numerics.h"'])

    def test_every_fault_is_told_in_every_file(self):
        tree = {"base/a.cpp": ["diag/x.h", "base/x.h", "input/x.h"], "base/deep/b.h": ["lang/x.h"]}
        status, complaints = check(tree, status_and_complaints)
        self.assertEqual((status, len(complaints)), (1, 3))

    def test_without_a_fault_it_ends_well(self):
        self.assertEqual(check({"base/a.cpp": ["base/a.h"]}, status_and_complaints), (0, []))

    def test_no_sources_are_a_fault(self):
        self.assertEqual(check({"readme.h": []}, status_and_complaints)[0], 1)


if __name__ == "__main__":
    unittest.main()
