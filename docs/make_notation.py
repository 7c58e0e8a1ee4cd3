"""Makes the pictures of notation, docs/img/notation-*.png: make_notation.py --export PROGRAM

MuseScore engraves what orlo-export writes. Its pictures differ from one version to the next, so nothing compares them: look at them.
"""

import argparse
import os
import shutil
import subprocess
import sys
import tempfile

DOCS = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(DOCS)
PIECES = ("examples/quartet.orlo", "tests/export/notation/tuplets.orlo", "tests/export/notation/voices.orlo",
          "tests/export/notation/microtones.orlo")


def engrave(program, piece, folder):
    name = os.path.splitext(os.path.basename(piece))[0]
    score, picture = os.path.join(folder, name + ".musicxml"), os.path.join(folder, name + ".png")
    subprocess.run([program, os.path.basename(piece), "--map", "own", "-o", score], check=True,
                   cwd=os.path.join(ROOT, os.path.dirname(piece)))
    subprocess.run(["musescore3", "-r", "100", "-T", "25", "-o", picture, score], check=True, capture_output=True,
                   env=dict(os.environ, QT_QPA_PLATFORM="offscreen"))
    shutil.copy(picture.replace(".png", "-1.png"), os.path.join(DOCS, "img", f"notation-{name}.png"))  # the first page


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("--export", required=True, type=os.path.abspath)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        for piece in PIECES:
            engrave(options.export, piece, folder)


if __name__ == "__main__":
    sys.exit(main())
