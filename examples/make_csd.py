#!/usr/bin/env python3
"""Makes a Csound document of every example that has an orchestra: examples/make_csd.py [--check]

examples/csd/NAME.csd holds examples/NAME.orc and, in the score tag that has Csound call orlo, examples/NAME.orlo with the
files that it includes put in place. So it can be rendered from any folder by one command: csound NAME.csd.
With --check nothing is written: the documents are compared with what would be, and what differs is said.
"""

import argparse
import pathlib
import re
import sys

EXAMPLES = pathlib.Path(__file__).resolve().parent
CSD = """\
<CsoundSynthesizer>
<CsOptions>
-d -W -s -o {name}.wav
</CsOptions>
<CsInstruments>
{orchestra}</CsInstruments>
<CsScore bin="orlo">
{piece}</CsScore>
</CsoundSynthesizer>
"""


def with_includes(path):
    """The text of a piece, its include files in the place of their names."""
    text = path.read_text(encoding="utf-8")
    return re.sub(r"^#include\s*\|([^|]*)\|\n",
                  lambda found: with_includes(path.parent / found[1]), text, flags=re.M)


def main():
    parser = argparse.ArgumentParser(description="make a Csound document of every example")
    parser.add_argument("--check", action="store_true", help="write nothing, say what is out of date")
    options = parser.parse_args()

    wanted = {}
    for orchestra in sorted(EXAMPLES.glob("*.orc")):
        piece = with_includes(orchestra.with_suffix(".orlo"))
        wanted[EXAMPLES / "csd" / f"{orchestra.stem}.csd"] = CSD.format(
            name=orchestra.stem, orchestra=orchestra.read_text(encoding="utf-8"), piece=piece)
    there = set((EXAMPLES / "csd").glob("*.csd"))

    differ = [path for path, text in wanted.items() if path not in there or path.read_text(encoding="utf-8") != text]
    extra = sorted(there - wanted.keys())
    if options.check:
        for path in differ:
            print(f"{path}: out of date, run examples/make_csd.py")
        for path in extra:
            print(f"{path}: there is no orchestra {path.stem}.orc any more")
        if not wanted:
            print("no examples found")
        return 1 if differ or extra or not wanted else 0
    (EXAMPLES / "csd").mkdir(exist_ok=True)
    for path in differ:
        path.write_text(wanted[path], encoding="utf-8")
        print(f"{path}: written")
    for path in extra:
        path.unlink()
        print(f"{path}: removed")
    return 0


if __name__ == "__main__":
    sys.exit(main())
