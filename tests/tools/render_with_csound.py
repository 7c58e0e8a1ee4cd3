"""Does the real Csound play it: render_with_csound.py --orlo PROGRAM --piece FILE --orchestra FILE

Makes the score of a piece, has Csound play it into a sound file, and checks four things: Csound complains of nothing
(its exit status says nothing about a score); the notes played are the notes written, by instrument, start and
duration; the sound file is as long as the score, within a tolerance; it is not silent. Each instrument gets a line
that prints its note when it starts, so an orchestra needs no help of its own. Ends with 77 when Csound is missing.
"""

import argparse
import array
import os
import re
import shutil
import subprocess
import sys
import tempfile
import wave

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from pieces import notes

COMPLAINTS = re.compile(
    r"sread:|swrite:|twarp:|note deleted|ftable.*illegal|uses \d+ p-fields but is given|WARNING|INIT ERROR|PERF ERROR"
    r"|(?<!\d )\berrors?\b|[1-9]\d* errors? in performance|overall samples out of range:.*[1-9]", re.I)
TIME_LIMIT = 300  # seconds for Csound


def run_orlo(orlo, piece, score):
    """Runs the program in the piece's own folder, where its include files are."""
    folder, name = os.path.split(os.path.abspath(piece))
    run = subprocess.run([orlo, name, score], cwd=folder, stderr=subprocess.PIPE, text=True, check=False, timeout=60)
    if run.returncode != 0:
        sys.exit(f"orlo ended with {run.returncode}:\n{run.stderr}")
    with open(score, encoding="ascii") as file:
        return file.read()


def with_counters(orchestra):
    """The orchestra with a line in every instrument that prints each note as it starts."""
    counter = 'prints "ORLO-NOTE %.6f %.6f %.6f%n", p1, p2, p3'
    text, count = re.subn(r"^([ \t]*instr\b[^;\n]*)(.*)$", rf"\1\2\n{counter}", orchestra, flags=re.M)
    if count == 0:
        sys.exit("the orchestra has no instrument")
    return text


def play(csound, orchestra, score, folder):
    """Plays a score into a sound file; returns Csound's messages and the file's name."""
    orc, sco, sound = (os.path.join(folder, name) for name in ("piece.orc", "piece.sco", "piece.wav"))
    for path, text in ((orc, with_counters(orchestra)), (sco, score)):
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
    run = subprocess.run([csound, "-d", "-m7", "-W", "-s", "-o", sound, orc, sco], cwd=folder, check=False,
                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=TIME_LIMIT)
    messages = re.sub(r"\x1b\[[\d;]*m", "", run.stdout.decode(errors="replace"))
    if not os.path.isfile(sound):
        sys.exit(f"Csound wrote no sound file:\n{messages}")
    return messages, sound


def measure(sound):
    """Length in seconds and greatest amplitude (1 is full scale) of a 16-bit sound file."""
    with wave.open(sound) as file:
        if file.getsampwidth() != 2:
            sys.exit("the sound file does not have 16 bits")
        samples = array.array("h", file.readframes(file.getnframes()))
        if sys.byteorder == "big":
            samples.byteswap()
        return file.getnframes() / file.getframerate(), max(map(abs, samples), default=0) / 32768


def compare_notes(written, played):
    """What differs between the notes written and the notes played, each (instrument, start, duration)."""
    faults = []
    if len(written) != len(played):
        faults.append(f"{len(written)} notes written, {len(played)} played")
    for one, other in zip(sorted(written), sorted(played)):
        if any(abs(a - b) > 0.001 for a, b in zip(one, other)):
            faults.append(f"first note that differs: written {one}, played {other}")
            break
    return faults


def main():
    parser = argparse.ArgumentParser(description="play a piece with Csound and judge what comes out")
    parser.add_argument("--orlo", required=True, help="the program")
    parser.add_argument("--piece", required=True, help="the piece")
    parser.add_argument("--orchestra", required=True, help="the Csound orchestra")
    parser.add_argument("--tolerance", type=float, default=0.1, help="seconds the lengths may differ (default: 0.1)")
    options = parser.parse_args()
    csound = shutil.which("csound")
    if not csound:
        print("skipped: csound is not installed")
        return 77

    with tempfile.TemporaryDirectory(prefix="orlo-render-") as folder:
        score = run_orlo(os.path.abspath(options.orlo), options.piece, os.path.join(folder, "made.sco"))
        with open(options.orchestra, encoding="utf-8") as file:
            messages, sound = play(csound, file.read(), score, folder)
        length, loudest = measure(sound)

    faults = [f"Csound: {line}" for line in messages.splitlines()
              if not line.startswith("ORLO-NOTE") and COMPLAINTS.search(line)]
    written = [tuple(note[:3]) for note in notes(score)]
    played = [tuple(map(float, numbers.split())) for numbers in re.findall(r"ORLO-NOTE ([-\d. ]+)", messages)]
    faults += compare_notes(written, played)
    end = max((start + duration for _, start, duration in written), default=0)
    if not written:
        faults.append("the score has no notes")
    if abs(length - end) > options.tolerance:
        faults.append(f"the sound lasts {length:.3f} seconds, the score {end:.3f}")
    if loudest < 0.01:
        faults.append(f"the sound is silent: its greatest amplitude is {loudest:.5f}")
    for fault in faults:
        print(fault)
    print(f"{len(written)} notes written, {len(played)} played; score {end:.3f} s, sound {length:.3f} s, "
          f"greatest amplitude {loudest:.3f}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
