"""Does Csound call the program by itself: render_csd.py --orlo PROGRAM --csd FILE [--error]

Renders a Csound document whose score tag names orlo, as a user would: "csound NAME.csd", from an empty folder, orlo on
the PATH. Csound must end well and complain of nothing, show what the program says, and write a sound file that is as long
as the score that the program makes of the same text, and not silent.

With --error the document gets a mistake first: then the program's message must reach the console with its line, the
line's number counted from the score tag, and the caret; Csound must end with a failure and write no sound.
Ends with 77 when Csound is missing.
"""

import argparse
import os
import re
import shutil
import subprocess
import sys
import tempfile

TOOLS = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [TOOLS, os.path.dirname(TOOLS)]
from pieces import notes
from render_with_csound import COMPLAINTS, TIME_LIMIT, measure
from run_case import environment

SCORE = re.compile(r'^<CsScore bin="orlo">\n(.*)^</CsScore>$', re.M | re.S)
MISTAKE = "  p5 (op) no  c4 e q g\n"
MESSAGE = "ERROR: Line {line}: Value out of bounds or syntax error."


def score_of(csd):
    found = SCORE.search(csd)
    if not found:
        sys.exit("the document has no score tag that names orlo")
    return found[1]


def with_mistake(csd):
    """The document with the last p5 section's first line replaced, and the number of that line in the score tag."""
    lines = score_of(csd).splitlines(keepends=True)
    at = max((n for n, line in enumerate(lines) if re.match(r"\s*p5\b", line)), default=None)
    if at is None:
        sys.exit("the document has no p5")
    score = "".join(lines[:at] + [MISTAKE] + lines[at + 1:])
    return SCORE.sub(lambda found: found[0].replace(found[1], score), csd), at + 1


def render(csound, orlo, csd, name, folder):
    """Renders a document; returns Csound's status, its messages, and the name of the sound file, which may be missing."""
    bin_folder, work = os.path.join(folder, "bin"), os.path.join(folder, "work")
    for path in (bin_folder, work):
        os.mkdir(path)
    os.symlink(orlo, os.path.join(bin_folder, "orlo"))
    with open(os.path.join(work, name + ".csd"), "w", encoding="utf-8") as file:
        file.write(csd)
    env = environment() | {"PATH": bin_folder + os.pathsep + os.environ["PATH"], "TMPDIR": folder}
    run = subprocess.run([csound, name + ".csd"], cwd=work, env=env, check=False,
                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=TIME_LIMIT)
    messages = re.sub(r"\x1b\[[\d;]*m", "", run.stdout.decode(errors="replace"))
    return run.returncode, messages, os.path.join(work, name + ".wav")


def end_of_score(orlo, text, folder):
    """When the last note of a piece ends, in seconds."""
    piece, score = os.path.join(folder, "piece.orlo"), os.path.join(folder, "piece.sco")
    with open(piece, "w", encoding="utf-8") as file:
        file.write(text)
    subprocess.run([orlo, "-s", piece, score], check=True, env=environment(),
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=60)
    with open(score, encoding="ascii") as file:
        return max((start + duration for _, start, duration, *_ in notes(file.read())), default=0)


def check_sound(status, messages, sound, end):
    complaints = dict.fromkeys(line for line in messages.splitlines() if COMPLAINTS.search(line))  # each of them once
    faults = [f"Csound: {line}" for line in complaints]
    if status != 0:
        faults.append(f"Csound ended with {status}")
    if "Global cumulative duration of all i-blocks" not in messages:
        faults.append("the console does not show what orlo says")
    if not os.path.isfile(sound):
        return faults + [f"no sound file was written; the console:\n{messages}"]
    length, loudest = measure(sound)
    if abs(length - end) > 0.1:
        faults.append(f"the sound lasts {length:.3f} seconds, the score {end:.3f}")
    if end == 0:
        faults.append("the score has no notes")
    if loudest < 0.01:
        faults.append(f"the sound is silent: its greatest amplitude is {loudest:.5f}")
    print(f"score {end:.3f} s, sound {length:.3f} s, greatest amplitude {loudest:.3f}")
    return faults


def check_failure(status, messages, sound, line):
    """The message, the line and the caret below its mistake must stand on the console, in this order."""
    shown = [MESSAGE.format(line=line), MISTAKE.rstrip("\n"), " " * MISTAKE.index("q") + "^"]
    console = [text.rstrip() for text in messages.splitlines()]
    faults = []
    if not any(console[at:at + 3] == shown for at in range(len(console))):
        faults.append("the console does not show this:\n" + "\n".join(shown))
    if "External generation failed" not in messages:
        faults.append("Csound does not say that the external generation failed")
    if status == 0:
        faults.append("Csound ended with 0")
    if os.path.exists(sound):
        faults.append("Csound wrote a sound file")
    if faults:
        faults.append(f"the console:\n{messages}")
    return faults


def main():
    parser = argparse.ArgumentParser(description="render a Csound document that calls orlo")
    parser.add_argument("--orlo", required=True, help="the program")
    parser.add_argument("--csd", required=True, help="the document")
    parser.add_argument("--error", action="store_true", help="put a mistake in and look for it on the console")
    options = parser.parse_args()
    csound = shutil.which("csound")
    if not csound:
        print("skipped: csound is not installed")
        return 77
    orlo = os.path.abspath(options.orlo)
    name = os.path.splitext(os.path.basename(options.csd))[0]
    with open(options.csd, encoding="utf-8") as file:
        csd = file.read()

    with tempfile.TemporaryDirectory(prefix="orlo-csd-", dir="/tmp") as folder:  # Csound's command breaks on blanks here
        if options.error:
            csd, line = with_mistake(csd)
            faults = check_failure(*render(csound, orlo, csd, name, folder), line)
        else:
            end = end_of_score(orlo, score_of(csd), folder)
            faults = check_sound(*render(csound, orlo, csd, name, folder), end)
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
