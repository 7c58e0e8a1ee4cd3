"""Compare what the tests do not run with the list of reasons: coverage_rest.py COVERAGE LIST

COVERAGE is gcovr's JSON report, LIST has a line "- FILE: `CODE`: REASON" for each line of code that is not run or not taken both
ways: one for each, also where the same code stands in several lines of a file. Prints the shares and what is not listed; fails below
99 % of the lines or 95 % of the branches, or when something is not listed.
"""

import collections
import json
import os
import re
import sys

LINES, BRANCHES = 99.0, 95.0
ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        report = json.load(file)
    with open(sys.argv[2], encoding="utf-8") as file:
        listed = collections.Counter((match[1], match[2]) for match in re.finditer(r"^- (\S+): `(.*?)`: \S", file.read(), re.M))
    counts = {"lines": [0, 0], "branches": [0, 0]}
    rest = []
    for source in sorted(report["files"], key=lambda each: each["file"]):
        with open(os.path.join(ROOT, source["file"]), encoding="ascii") as file:
            text = file.read().splitlines()
        for line in source["lines"]:
            if line.get("gcovr/noncode"):
                continue
            branches = line["branches"]
            taken = sum(branch["count"] > 0 for branch in branches)
            counts["lines"][0] += line["count"] > 0
            counts["lines"][1] += 1
            counts["branches"][0] += taken
            counts["branches"][1] += len(branches)
            if line["count"] > 0 and taken == len(branches):
                continue
            code = text[line["line_number"] - 1].strip()
            if listed[source["file"], code] > 0:
                listed[source["file"], code] -= 1
                continue
            what = f"{taken} of {len(branches)} branches taken" if line["count"] > 0 else "not run"
            rest.append(f"{source['file']}:{line['line_number']}: {what}: {code}")
    for place in rest:
        print(f"not in {sys.argv[2]}: {place}")
    for name, code in sorted(listed.elements()):
        print(f"in {sys.argv[2]} and run all the same, or gone: {name}: {code}")
    shares = {}
    for what, (run, total) in counts.items():
        shares[what] = 100.0 * run / total
        print(f"{what}: {shares[what]:.2f} % ({run} of {total})")
    return 0 if not rest and shares["lines"] >= LINES and shares["branches"] >= BRANCHES else 1


if __name__ == "__main__":
    sys.exit(main())
