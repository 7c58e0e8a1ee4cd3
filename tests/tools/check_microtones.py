"""Are bends in tune: check_microtones.py --export PROGRAM

A scale of 31 tones is written as a MIDI file, played by Csound through a patch that follows bends over the usual two semitones, and
measured in the sound, against the same patch without a bend. Also with --mpe. Ends with 77 when Csound is missing.
"""

import argparse
import array
import math
import os
import shutil
import subprocess
import sys
import tempfile
import wave

TONES = 31
CENTS = 2.0
RATE = 44100
ORCHESTRA = """<CsoundSynthesizer>
<CsInstruments>
sr = 44100
ksmps = 1
nchnls = 1
0dbfs = 1
massign 0, 1
instr 1
  kcps cpsmidib {range}
  out linenr(oscili(.1, kcps), .005, .01, .01)
endin
</CsInstruments>
<CsScore>
f0 {length}
e
</CsScore>
</CsoundSynthesizer>
"""


def scale(bent):
    """A note a second, up through an octave; or as often the first of them."""
    pitches = " ".join(f"{8 + (tone * 12 / TONES if bent else 0) / 100:.7f}" for tone in range(TONES + 1))
    return f"i1 = 5 0 -{TONES + 1} {{\np2 1\np3 .9\np4 (db) db 70\np5 (op) opx {pitches}\n}}\n"


def run(command, folder):
    done = subprocess.run(command, cwd=folder, capture_output=True, timeout=300, check=False)
    if done.returncode != 0:
        sys.exit(f"{os.path.basename(command[0])} ended with {done.returncode}: {done.stderr.decode(errors='replace')[-1000:]}")


def played(export, piece, options, bend_range):
    """The sound of a piece as numbers."""
    with tempfile.TemporaryDirectory(prefix="orlo-microtones-") as folder:
        for name, text in (("in.orlo", piece), ("play.csd", ORCHESTRA.format(range=bend_range, length=TONES + 2))):
            with open(os.path.join(folder, name), "w", encoding="ascii") as file:
                file.write(text)
        run([export, "in.orlo", "-o", "in.mid", *options], folder)
        run(["csound", "-d", "-m0", "-W", "-o", "out.wav", "-F", "in.mid", "play.csd"], folder)
        with wave.open(os.path.join(folder, "out.wav")) as file:
            assert file.getframerate() == RATE and file.getsampwidth() == 2, file.getparams()
            return array.array("h", file.readframes(file.getnframes()))


def frequency(sound, begin, end):
    """By the times between upward zeros, of which the first and the last are found between two samples."""
    zeros = [at + sound[at] / (sound[at] - sound[at + 1]) for at in range(round(begin * RATE), round(end * RATE))
             if sound[at] < 0 <= sound[at + 1]]
    return (len(zeros) - 1) / (zeros[-1] - zeros[0]) * RATE if len(zeros) > 10 else math.nan


def main():
    parser = argparse.ArgumentParser(description="check that bends are in tune")
    parser.add_argument("--export", required=True, type=os.path.abspath)
    options = parser.parse_args()
    if not shutil.which("csound"):
        print("no csound here")
        return 77
    faults = 0
    for arguments, bend_range in ([], 2), (["--mpe"], 48):
        bent, plain = (played(options.export, scale(each), arguments, bend_range) for each in (True, False))
        worst = 0.0
        for tone in range(TONES + 1):
            heard, unbent = (frequency(sound, tone + .1, tone + .8) for sound in (bent, plain))
            off = 1200 * math.log2(heard / unbent) - 1200 * tone / TONES
            worst = max(worst, abs(off)) if math.isfinite(off) else math.inf
            if not abs(off) <= CENTS:
                faults += 1
                print(f"{arguments}: tone {tone} is {off:.2f} cents off")
        print(f"{' '.join(arguments) or 'bends'}: {TONES + 1} tones, {worst:.3f} cents off at most")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
