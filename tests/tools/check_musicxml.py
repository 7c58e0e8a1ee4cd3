"""Is notation right: check_musicxml.py --export PROGRAM [--first N] [--count N] [--reader musescore|lilypond] [--keep FOLDER]
                  or check_musicxml.py --export PROGRAM --limits
                  or check_musicxml.py FILE.musicxml...

Every document is read strictly: elements of a note in the order of the standard; every voice fills every measure; what a note lasts
is what its value, its dots and its tuplet say; tuplets begin, are complete and end; ties begin and end at the same pitch, one where
the other ends; beams begin and end, as many as the value has; every accidental is shown where it is needed, and nowhere else;
chords have each pitch once; all parts have the same measures.

With --export, pieces are made whose notes are known (notation_pieces.py) and written by the program, as MusicXML and as JSON: the
notes must be those that are known, with their names, and each starts where the JSON's seconds lie on the beats.

--reader gives the documents to a program that is not this project's: MuseScore must make a MIDI file with the same notes and
lengths of them, musicxml2ly and LilyPond must engrave them without a word. Ends with 77 when that program is missing.
"""

import argparse
import collections
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree
from fractions import Fraction
from typing import NamedTuple

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import notation_pieces

VALUES = {name: Fraction(1, 2 ** i) * 8 for i, name in enumerate(("breve", "whole", "half", "quarter", "eighth", "16th", "32nd", "64th", "128th"))}
ORDER = ("chord", "pitch", "unpitched", "rest", "duration", "tie", "voice", "type", "dot", "accidental", "time-modification", "beam",
         "notations")  # of a note's elements, as the standard has it
SIGNS = {-2: "flat-flat", -1.5: "three-quarters-flat", -1: "flat", -.5: "quarter-flat", 0: "natural", .5: "quarter-sharp", 1: "sharp",
         1.5: "three-quarters-sharp", 2: "double-sharp"}
SEMITONES = {"C": 0, "D": 2, "E": 4, "F": 5, "G": 7, "A": 9, "B": 11}
NEAR = 0.0045  # quarters that a start may be moved without being said
HALF_ALTER = re.compile(r"invalid alter '-?\d\.5'")  # MuseScore 3 says so of quarter tones, and takes them from their accidentals
MISSING = 77
TIME_LIMIT = 300


class Fault(Exception):
    """What is wrong with a document."""


class Pitch(NamedTuple):
    step: str
    alter: float
    octave: int

    def key(self):
        return 12 * (self.octave + 1) + SEMITONES[self.step] + self.alter


class Written(NamedTuple):
    """A note or rest as one sign."""
    measure: int
    start: Fraction      # from the start of the piece
    length: Fraction
    voice: str
    pitch: object        # None: a rest
    element: object
    chord: bool          # it belongs to the note before it


class Note(NamedTuple):
    """What ties have joined."""
    part: str
    start: Fraction
    length: Fraction
    pitch: Pitch


def require(condition, text):
    if not condition:
        raise Fault(text)


# ---- a strict reader

def number(element, name):
    text = element.findtext(name)
    require(text is not None and re.fullmatch(r"[1-9]\d*", text), f"<{element.tag}> has no <{name}> above 0")
    return int(text)


def pitch_of(element):
    pitch = element.find("pitch")
    if pitch is None:
        if element.find("unpitched") is not None:
            return Pitch("B", 0.0, 4)
        require(element.find("rest") is not None, "a note has neither pitch nor rest")
        return None
    found = Pitch(pitch.findtext("step"), float(pitch.findtext("alter", "0")), int(pitch.findtext("octave")))
    require(found.step in SEMITONES and 0 <= found.octave <= 9 and abs(found.alter) <= 3, f"no pitch is {found}")
    return found


def check_order(element):
    places = [ORDER.index(child.tag) if child.tag in ORDER else -1 for child in element]
    require(-1 not in places, f"a note has <{element[places.index(-1)].tag}>" if -1 in places else "")
    require(places == sorted(places), f"elements of a note are in the order {[child.tag for child in element]}")


def nominal(element):
    """What a note's value and dots say, before its tuplet."""
    name = element.findtext("type")
    require(name in VALUES, f"no value is {name}")
    return VALUES[name] * (2 - Fraction(1, 2 ** len(element.findall("dot"))))


def ratio(element):
    """Of a tuplet: 3 in the time of 2 is 2/3."""
    modification = element.find("time-modification")
    return (1, 1) if modification is None else (number(modification, "actual-notes"), number(modification, "normal-notes"))


class Part:
    """The signs of a part, measure after measure."""

    def __init__(self, name, element):
        self.name, self.signs, self.measures = name, [], []
        self.divisions = self.length = None
        start = Fraction(0)
        for index, measure in enumerate(element.findall("measure")):
            require(measure.get("number") == str(index + 1), f"{name}: measure {index + 1} has the number {measure.get('number')}")
            try:
                self.read(measure, index, start)
            except Fault as fault:
                raise Fault(f"{name}, measure {index + 1}: {fault}") from None
            start += self.length
            self.measures.append(start)

    def attributes(self, element):
        self.divisions = number(element, "divisions")
        time = element.find("time")
        self.length = Fraction(4 * number(time, "beats"), number(time, "beat-type"))
        clef = element.find("clef")
        require(clef.findtext("sign") in ("G", "F", "percussion"), "it has no clef")

    def read(self, measure, index, start):
        at, reached, last, voices = Fraction(0), Fraction(0), None, collections.OrderedDict()
        for element in measure:
            if element.tag == "attributes":
                self.attributes(element)
            elif element.tag == "backup":
                at -= Fraction(number(element, "duration"), self.divisions)
                require(at >= 0, "a step back goes before its start")
            elif element.tag == "note":
                length = Fraction(number(element, "duration"), self.divisions)
                is_chord = element.find("chord") is not None
                check_order(element)
                if is_chord:
                    require(last is not None and last.length == length and last.pitch is not None, "a chord's notes differ in length")
                    sign = last._replace(pitch=pitch_of(element), element=element, chord=True)
                else:
                    sign = Written(index, start + at, length, element.findtext("voice"), pitch_of(element), element, False)
                    voices.setdefault(sign.voice, []).append((at, length))
                    at += length
                reached = max(reached, at)
                self.check_value(sign)
                self.signs.append(sign)
                last = sign
            else:
                require(element.tag in ("direction", "sound", "barline"), f"it has <{element.tag}>")
        require("1" in voices, "the first voice is missing")
        require(len(voices) <= 4, "it has more than four voices")
        for voice, parts in voices.items():
            now = Fraction(0)
            for begin, length in parts:
                require(begin == now, f"voice {voice} has a gap or an overlap at {now}")
                now += length
            require(now == self.length, f"voice {voice} is {now} long, and not {self.length}")

    def check_value(self, sign):
        rest = sign.element.find("rest")
        if rest is not None and rest.get("measure") == "yes":
            require(sign.length == self.length and sign.element.find("type") is None, "a measure's rest does not fill it")
            return
        actual, normal = ratio(sign.element)
        require(nominal(sign.element) * normal / actual == sign.length,
                f"{sign.element.findtext('type')} with {len(sign.element.findall('dot'))} dots, {actual}:{normal}, is not {sign.length}")

    def voices(self):
        found = collections.defaultdict(list)
        for sign in self.signs:
            found[sign.voice].append(sign)
        return found.values()


def check_tuplets(signs):
    """Signs of one voice, no chord members."""
    begin, spent, kind = None, Fraction(0), None
    for sign in signs:
        marks = [mark.get("type") for mark in sign.element.findall("notations/tuplet")]
        if "start" in marks:
            require(begin is None, "a tuplet begins within another one")
            begin, spent, kind = sign, Fraction(0), ratio(sign.element)
        require((begin is None) == (ratio(sign.element) == (1, 1)), f"a tuplet's bracket and its notes differ at {sign.start}")
        if begin is None:
            continue
        require(ratio(sign.element) == kind and kind in ((3, 2), (5, 4), (6, 4), (7, 4)), f"{ratio(sign.element)} stands in {kind}")
        require(sign.start == begin.start + spent and sign.measure == begin.measure, "a tuplet has a gap")
        spent += sign.length
        if "stop" in marks:
            whole = spent / kind[1]  # the value of which it has so many
            require(whole in VALUES.values(), f"a tuplet at {begin.start} is {spent} long, which is no {kind[1]} of a value")
            begin = None
    require(begin is None, "a tuplet does not end")


def check_beams(signs):
    open_levels = set()
    for sign in signs:
        beams = {int(beam.get("number")): beam.text for beam in sign.element.findall("beam")}
        name = sign.element.findtext("type")
        flags = 0 if sign.pitch is None or name is None or VALUES[name] >= 1 else VALUES[name].denominator.bit_length() - 1
        require(not beams or sorted(beams) == list(range(1, flags + 1)), f"beams {beams} for {name}")
        for level in range(1, 6):
            text = beams.get(level)
            require((level in open_levels) == (text in ("continue", "end")), f"beam {level} at {sign.start} is {text}")
            if text == "begin":
                open_levels.add(level)
            elif text == "end":
                open_levels.discard(level)
    require(not open_levels, "a beam does not end")


def check_accidentals(part):
    by_measure = collections.defaultdict(list)
    for sign in part.signs:
        if sign.pitch is not None and sign.element.find("unpitched") is None:
            by_measure[sign.measure].append(sign)
    for signs in by_measure.values():
        in_force = collections.defaultdict(float)
        for sign in sorted(signs, key=lambda sign: (sign.start, int(sign.voice))):
            shown, place = sign.element.findtext("accidental"), (sign.pitch.step, sign.pitch.octave)
            if any(tie.get("type") == "stop" for tie in sign.element.findall("tie")):
                require(shown is None, "a tied note has an accidental")
                continue
            if abs(in_force[place] - sign.pitch.alter) < 1e-6:
                require(shown is None, f"{sign.pitch} at {sign.start} has an accidental that is in force")
            elif sign.pitch.alter in SIGNS:
                require(shown == SIGNS[sign.pitch.alter], f"{sign.pitch} at {sign.start} has the accidental {shown}")
            else:
                base, way = round(sign.pitch.alter), "up" if sign.pitch.alter > round(sign.pitch.alter) else "down"
                require(shown == f"{SIGNS[max(-1, min(base, 1))]}-{way}", f"{sign.pitch} at {sign.start} has the accidental {shown}")
            in_force[place] = sign.pitch.alter


def untied(part):
    """Notes with their whole lengths."""
    notes, open_ties = [], {}
    for sign in part.signs:
        if sign.pitch is None:
            continue
        ties = {tie.get("type") for tie in sign.element.findall("tie")}
        require(ties == {tied.get("type") for tied in sign.element.findall("notations/tied")}, "ties sound but are not written")
        place = (sign.voice, sign.pitch)
        if "stop" in ties:
            note = open_ties.pop(place, None)
            require(note is not None and note.start + note.length == sign.start, f"a tie ends at {sign.start} that has not begun")
            note = note._replace(length=note.length + sign.length)
        else:
            note = Note(part.name, sign.start, sign.length, sign.pitch)
        require(place not in open_ties, f"a tie at {sign.start} goes on beside a note of its pitch")
        if "start" in ties:
            open_ties[place] = note
        else:
            notes.append(note)
    require(not open_ties, "a tie does not end")
    return notes


def read(data):
    """All notes of a document. Raises Fault."""
    root = ElementTree.fromstring(data)
    require(root.tag == "score-partwise" and root.get("version") == "4.0", "it is no partwise score of version 4.0")
    names = {part.get("id"): part.findtext("part-name") for part in root.findall("part-list/score-part")}
    elements = root.findall("part")
    require(list(names) == [part.get("id") for part in elements], "its list has other parts than there are")
    parts, notes = [], []
    for element in elements:
        part = Part(names[element.get("id")], element)
        parts.append(part)
        try:
            for signs in part.voices():
                heads = [sign for sign in signs if not sign.chord]
                check_tuplets(heads)
                check_beams(heads)
                chords = collections.Counter((sign.start, sign.pitch) for sign in signs)
                require(max(chords.values()) == 1, f"a chord has a pitch twice: {chords.most_common(1)}")
            check_accidentals(part)
            notes += untied(part)
        except Fault as fault:
            raise Fault(f"{part.name}: {fault}") from None
    require(len({tuple(part.measures) for part in parts}) == 1, "its parts have other measures")
    return notes


# ---- pieces

def instrument(name):
    return name.split(" (")[0]  # staves of an instrument


def as_known(note):
    return notation_pieces.Known(instrument(note.part), note.start, note.length, note.pitch.step,
                                 Fraction(note.pitch.alter), note.pitch.octave)


def check_known(piece, notes):
    found, known = collections.Counter(map(as_known, notes)), collections.Counter(piece.notes)
    lost, more = sorted((known - found).elements()), sorted((found - known).elements())
    require(not lost and not more, f"missing: {[tuple(map(str, note)) for note in lost[:4]]}, too many: {[tuple(map(str, note)) for note in more[:4]]}")


def beats_of(document, block):
    """A function from seconds to beats: those of a block."""
    events = [event for event in document["events"] if event.get("block") == block]
    points = [(0.0, 0.0)]
    for event in events:
        if event["beat"] > points[-1][0] and event["start"] > points[-1][1]:
            points.append((event["beat"], event["start"]))
    slope = next((event["duration"] / event["beats"] for event in reversed(events) if event["beat"] >= points[-1][0]), 1.0)
    points.append((points[-1][0] + 1, points[-1][1] + slope))

    def beat(second):
        at = max([i for i in range(len(points) - 1) if points[i][1] <= second], default=0)
        (beat_0, second_0), (beat_1, second_1) = points[at], points[at + 1]
        return beat_0 + (second - second_0) * (beat_1 - beat_0) / (second_1 - second_0)
    return beat


def check_against_events(piece, notes, document, said):
    """Starts and pitches against what the program says of the events."""
    own = "--map" in piece.arguments
    block = re.search(r"the beats are those of block (\d+)", said)
    require(own or block, "it is not said whose beats were taken")
    beat = (lambda event: event["beat"]) if own else (lambda event, on=beats_of(document, int(block[1])): on(event["start"]))
    doubled = re.search(r"(\d+) notes? written once", said)
    require(len(notes) + (int(doubled[1]) if doubled else 0) == len(document["events"]), "there are other notes than events")
    most = 2 / piece.grid + NEAR if piece.grid else NEAR
    left = collections.defaultdict(list)
    for note in notes:
        left[instrument(note.part), round(note.pitch.key() * 100)].append(float(note.start))
    for event in document["events"]:
        pitch = event["p5"]  # octave.pitch-class
        key = 12 * (int(pitch) - 3) + round((pitch % 1) * 10000) / 100
        starts = left["i" + event["instrument"], round(key * 100)]
        nearest = min(starts, key=lambda start: abs(start - beat(event)), default=None)
        require(nearest is not None and abs(nearest - beat(event)) <= most, f"no note is {event}, beat {beat(event)}: {nearest}")


def run(program, piece, folder, ending):
    source, out = os.path.join(folder, piece.name + ".orlo"), os.path.join(folder, piece.name + ending)
    with open(source, "w", encoding="utf-8") as file:
        file.write(piece.text)
    done = subprocess.run([program, source, "-o", out, *piece.arguments], capture_output=True, text=True, timeout=TIME_LIMIT)
    require(done.returncode == 0, f"the program ends with {done.returncode}: {done.stderr}")
    with open(out, "rb") as file:
        return file.read(), done.stderr


def check_piece(program, piece, folder):
    data, said = run(program, piece, folder, ".musicxml")
    notes = read(data)
    if piece.notes is not None:
        check_known(piece, notes)
    events, _ = run(program, piece, folder, ".json")
    check_against_events(piece, notes, json.loads(events), said)
    return notes


# ---- other readers

def bare(path):
    """A copy without what makes notes shorter than they are written."""
    with open(path, encoding="utf-8") as file:
        text = re.sub(r"<articulations>.*?</articulations>", "", file.read())
    copy = path.replace(".musicxml", "-bare.musicxml")
    with open(copy, "w", encoding="utf-8") as file:
        file.write(text)
    return copy


def midi_notes(path):
    """Notes of a MIDI file by midicsv: start, length and key in quarters."""
    lines = subprocess.run(["midicsv", path], capture_output=True, text=True, check=True).stdout.splitlines()
    rows = [[cell.strip() for cell in line.split(",")] for line in lines]
    ticks, sounding, notes = int(rows[0][5]), collections.defaultdict(list), []
    for row in rows:
        if row[2] == "Note_on_c":
            place = (row[0], row[3], row[4])
            if row[5] != "0":
                sounding[place].append(int(row[1]))
            elif sounding[place]:
                start = sounding[place].pop(0)
                notes.append((Fraction(start, ticks), Fraction(int(row[1]) + 1 - start, ticks), int(row[4])))
    return notes, Fraction(2, ticks)


def played(pitch):
    """The key by which MuseScore plays a pitch: between keys that of its letter."""
    return round(pitch.key() - (0 if pitch.alter == int(pitch.alter) else pitch.alter))


def collisions(notes):
    """Notes of a part that strike a key while it sounds: no MIDI file tells how long those are."""
    found = set()
    notes = sorted(notes, key=lambda note: note.start)
    for i, first in enumerate(notes):
        for second in notes[i + 1:]:
            if second.start >= first.start + first.length:
                break
            if instrument(first.part) == instrument(second.part) and played(first.pitch) == played(second.pitch):
                found |= {first, second}
    return found


def check_musescore(path, notes):
    out = path.replace(".musicxml", ".mid")
    environment = dict(os.environ, QT_QPA_PLATFORM="offscreen")
    done = subprocess.run(["musescore3", "-o", out, bare(path)], capture_output=True, text=True, timeout=TIME_LIMIT, env=environment)
    require(os.path.exists(out), f"MuseScore writes nothing: {done.stderr}")
    errors = [line for line in done.stderr.splitlines() if "rror" in line and not HALF_ALTER.search(line)]
    require(not errors, f"MuseScore says: {errors[:4]}")
    heard, tolerance = midi_notes(out)
    odd = collisions(notes)
    left = collections.defaultdict(list)
    for start, length, key in heard:
        left[key].append((start, length))
    for note in sorted(notes, key=lambda note: note in odd):
        key = played(note.pitch)
        match = next((each for each in left[key] if abs(each[0] - note.start) <= tolerance and
                      (note in odd or abs(each[1] - note.length) <= tolerance)), None)
        require(match is not None or note in odd, f"MuseScore does not play {note}: {left[key]}")
        if match:
            left[key].remove(match)
    more = [(key, each) for key in left for each in left[key]]
    require(len(more) <= len(odd), f"MuseScore plays more: {more[:4]}")


def check_lilypond(path, notes):
    del notes
    base = path.removesuffix(".musicxml")
    made = subprocess.run(["musicxml2ly", "--loglevel=WARN", "-o", base + ".ly", path], capture_output=True, text=True, timeout=TIME_LIMIT)
    require(made.returncode == 0 and not made.stderr.strip(), f"musicxml2ly says: {made.stderr}")
    done = subprocess.run(["lilypond", "--loglevel=WARN", "--svg", "-o", base, base + ".ly"], capture_output=True, text=True, timeout=TIME_LIMIT)
    require(done.returncode == 0 and not done.stderr.strip(), f"LilyPond says: {done.stderr}")


READERS = {"musescore": (check_musescore, ("musescore3", "midicsv")), "lilypond": (check_lilypond, ("musicxml2ly", "lilypond"))}


def check_pieces(options, folder):
    check, tools = READERS.get(options.reader, (None, ()))
    for tool in tools:
        if not shutil.which(tool):
            print(f"{tool} is missing")
            return MISSING
    faults = count = 0
    for seed in range(options.first, options.first + options.count):
        piece = notation_pieces.piece(seed)
        try:
            notes = check_piece(options.export, piece, folder)
            count += len(notes)
            if check:
                check(os.path.join(folder, piece.name + ".musicxml"), notes)
        except Fault as fault:
            faults += 1
            print(f"{piece.name}: {fault}")
    print(f"{options.count} pieces, {count} notes, {faults} faults")
    return 1 if faults else 0


# ---- limits

def in_score(lines):
    return "".join(f"i{line}\n" for line in lines) + "e\n"


LIMITS = [  # what is just held, what is not, and what is said of that
    ([(1, 0, 1), (1, 39999, 1)], [(1, 0, 1), (1, 40000, 1)], "10,000 are the most"),
    ([(1, i % 8, 100 + i) for i in range(64)], [(1, i % 8, 100 + i) for i in range(65)], "more than 64 voices"),
    ([(i, 0, 4) for i in range(1, 200)] + [(1, 3996, 4)], [(i, 0, 4) for i in range(1, 202)] + [(1, 3996, 4)], "measures of all staves"),
    ([(1, 0, 4000)] * 1998, [(1, 0, 4000)] * 1999, "2,000,000 written notes"),
]


def check_limits(program):
    """At each limit a score is written and right, one past it it is refused."""
    faults = 0
    with tempfile.TemporaryDirectory() as folder:
        source, out = os.path.join(folder, "in.sco"), os.path.join(folder, "out.musicxml")
        for held, refused, text in LIMITS:
            for events, right in ((held, True), (refused, False)):
                with open(source, "w", encoding="utf-8") as file:
                    file.write(in_score(f"{instrument} {start} {length}" for instrument, start, length in events))
                done = subprocess.run([program, source, "-o", out], capture_output=True, text=True, timeout=TIME_LIMIT)
                good = done.returncode == 0 if right else done.returncode == 1 and text in done.stderr and not os.path.exists(out)
                if good and right:
                    with open(out, "rb") as file:
                        read(file.read())
                    os.remove(out)
                if not good:
                    faults += 1
                    print(f"{text}, {'at' if right else 'past'} the limit: {done.returncode} {done.stderr}")
    print(f"{len(LIMITS)} limits, {faults} faults")
    return 1 if faults else 0


def check_files(names):
    status = 0
    for name in names:
        with open(name, "rb") as file:
            try:
                print(f"{name}: {len(read(file.read()))} notes")
            except (Fault, ElementTree.ParseError) as fault:
                print(f"{name}: {fault}")
                status = 1
    return status


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("--export")
    parser.add_argument("--first", type=int, default=0)
    parser.add_argument("--count", type=int, default=33)
    parser.add_argument("--reader", choices=sorted(READERS))
    parser.add_argument("--keep")
    parser.add_argument("--limits", action="store_true")
    parser.add_argument("files", nargs="*")
    options = parser.parse_args()
    if not options.export:
        return check_files(options.files)
    if options.limits:
        return check_limits(options.export)
    if options.keep:
        os.makedirs(options.keep, exist_ok=True)
        return check_pieces(options, options.keep)
    with tempfile.TemporaryDirectory() as folder:
        return check_pieces(options, folder)


if __name__ == "__main__":
    sys.exit(main())
