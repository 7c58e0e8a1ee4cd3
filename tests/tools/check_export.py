"""Does orlo-export write what the score has: check_export.py --export PROGRAM --explain PROGRAM [--count N] [--seed S] [--judges]

Every piece (the examples, those of tests/export/, and N that are made up: overlapping blocks under tempos that move, deviations,
chords, rests, microtones) is run, and written by orlo-export as a MIDI file, a table and JSON:

- the MIDI file passes a strict reader (lengths, tracks, deltas, status bytes, every note struck before it is released); its notes have
  the starts and ends of the score within a millisecond and the score's last printed digit, and its pitches within a cent, instrument by
  instrument; nothing is left out that orlo-export does not tell;
- the table and the JSON document have the events of the score, in its order, with its p-fields as it prints them.

--judges asks others too, where they are installed: python3-mido, midicsv, Csound's -F, and timidity, which plays it.
"""

import argparse
import contextlib
import csv
import io
import json
import math
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile
from typing import NamedTuple

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.join(HERE, "../..")
sys.path[:0] = [HERE, os.path.join(HERE, "../fuzz"), os.path.join(HERE, "..")]
import check_midi
import explain_pieces
import run_case
from check_midi import Bytes, Fault
from explain_pieces import Piece

NAME, PORT, TEMPO, METER, END = 3, 0x21, 0x51, 0x58, 0x2F
DATA_BYTES = {0x80: 2, 0x90: 2, 0xA0: 2, 0xB0: 2, 0xC0: 1, 0xD0: 1, 0xE0: 2}
HALF_DIGIT = 0.0005  # of a score's times
MILLISECOND = 0.001
CENT = 0.01
LONGEST_PLAYED = 30  # seconds of sound


# ---- a strict reader of MIDI files

class Event(NamedTuple):
    tick: int
    status: int  # 0xFF for a meta event
    kind: int    # of a meta event, or the channel
    data: bytes


def read_track(data, name):
    track, events, tick = Bytes(data, name), [], 0
    while True:
        tick += track.variable_length("a delta")
        status = track.number(1, "a status byte")
        if status == 0xFF:
            kind = track.number(1, "a meta event")
            text = track.take(track.variable_length("a length"), "a meta event")
            events.append(Event(tick, status, kind, text))
            if kind != END:
                continue
            if text or not track.over():
                raise Fault(f"{name}: something stands in or behind its end, at byte {track.at}")
            return events
        if status & 0xF0 not in DATA_BYTES:
            raise Fault(f"{name}: status byte {status:02X} at byte {track.at - 1}")
        values = track.take(DATA_BYTES[status & 0xF0], "a message")
        if max(values) > 127:
            raise Fault(f"{name}: a data byte above 127 before byte {track.at}")
        events.append(Event(tick, status & 0xF0, status & 0x0F, values))


def read_file(data):
    file = Bytes(data, "the file")
    if file.take(4, "its header") != b"MThd" or file.number(4, "its header") != 6:
        raise Fault("the file: it does not begin with a header of 6 bytes")
    kind, count, division = (file.number(2, "its header") for _ in range(3))
    if kind != 1 or division & 0x8000 or division % 960:
        raise Fault(f"the file: format {kind}, {division} ticks")
    tracks = []
    for number in range(1, count + 1):
        if file.take(4, f"the header of track {number}") != b"MTrk":
            raise Fault(f"the file: no track {number} at byte {file.at - 4}")
        tracks.append(read_track(file.take(file.number(4, "a length"), f"track {number}"), f"track {number}"))
    if not file.over():
        raise Fault("the file: bytes behind the last track")
    return division, tracks


class TempoMap:
    def __init__(self, division, conductor):
        self.marks = [(0, 0.0, 500_000 / 1e6 / division)]
        for event in conductor:
            if event.status == 0xFF and event.kind == TEMPO:
                length = int.from_bytes(event.data, "big") / 1e6 / division
                if length <= 0 or len(event.data) != 3:
                    raise Fault(f"track 1: a tempo of {event.data!r}")
                self.marks.append((event.tick, self.seconds(event.tick), length))
        if not any(event.kind == TEMPO and event.tick == 0 for event in conductor):
            raise Fault("track 1: no tempo at its beginning")

    def seconds(self, tick):
        at, second, length = next(mark for mark in reversed(self.marks) if mark[0] <= tick)
        return second + (tick - at) * length


class Note(NamedTuple):
    start: float
    end: float
    pitch: float   # key with the bend
    velocity: int


def notes_of(track, tempo, name):
    """The notes of a track, by the order of their starts; each pair of channel and key sounds once at a time."""
    sounding, bends, ranges, selected, notes = {}, {}, {}, {}, []
    for event in track:
        channel = event.kind
        if event.status == 0xB0:
            number, value = event.data
            if number in (100, 101):
                selected.setdefault(channel, {})[number] = value
            elif number == 6 and selected.get(channel) == {100: 0, 101: 0}:
                ranges[channel] = value
        elif event.status == 0xE0:
            if any(key[0] == channel for key in sounding):
                raise Fault(f"{name}: a bend at tick {event.tick} while a note sounds on channel {channel + 1}")
            bends[channel] = (event.data[0] | event.data[1] << 7) - 8192
        elif event.status == 0x90 and event.data[1] > 0:
            key = channel, event.data[0]
            if key in sounding:
                raise Fault(f"{name}: key {key} is struck at tick {event.tick} while it sounds")
            bend = bends.get(channel, 0) / 8192 * ranges.get(channel, 2)
            sounding[key] = event.tick, event.data[0] + bend, event.data[1]
        elif event.status in (0x80, 0x90):
            key = channel, event.data[0]
            if key not in sounding:
                raise Fault(f"{name}: key {key} is released at tick {event.tick} but does not sound")
            begin, pitch, velocity = sounding.pop(key)
            if event.tick <= begin:
                raise Fault(f"{name}: a note without a length at tick {begin}")
            notes.append(Note(tempo.seconds(begin), tempo.seconds(event.tick), pitch, velocity))
    if sounding:
        raise Fault(f"{name}: keys that are never released: {sorted(sounding)}")
    return sorted(notes)


def read_notes(data):
    """The notes of each track by its name."""
    division, (conductor, *tracks) = read_file(data)
    tempo, found = TempoMap(division, conductor), {}
    for number, track in enumerate(tracks, 2):
        if track[0].kind != NAME:
            raise Fault(f"track {number}: its name does not come first")
        found[track[0].data.decode()] = notes_of(track, tempo, f"track {number}")
    return found


# ---- what the score has

def score_events(score):
    """The events of a score as orlo prints them: instrument and p-fields as texts."""
    return [line.split() for line in re.sub(rb"^i(-?\d+) ", rb"\1 ", score, flags=re.M).decode("latin-1").splitlines()
            if re.match(r"-?\d+ ", line)]


def table_faults(score, table):
    rows = list(csv.reader(io.StringIO(table, newline="")))
    events, faults = score_events(score), []
    if len(rows) != len(events) + 1:
        return [f"the table has {len(rows) - 1} events, the score {len(events)}"]
    for number, (event, row) in enumerate(zip(events, rows[1:])):
        times = [float(row[1]), float(row[2])]
        fields = [cell for cell in row[8:] if cell]
        if row[0] != event[0] or any(abs(a - float(b)) > HALF_DIGIT + 1e-6 * abs(a) for a, b in zip(times, event[1:3])):
            faults.append(f"the table's event {number} is {row}, the score has {event}")
        elif fields != event[3:]:
            faults.append(f"the table's event {number} has the p-fields {fields}, the score {event[3:]}")
    return faults[:3]


def json_faults(table, document):
    rows = list(csv.DictReader(io.StringIO(table, newline="")))
    events = json.loads(document)["events"]
    if len(rows) != len(events):
        return [f"JSON has {len(events)} events, the table {len(rows)}"]
    for number, (row, event) in enumerate(zip(rows, events)):
        for key, cell in row.items():
            told = event.get(key)
            if cell == "" and told is not None or cell != "" and told is None:
                return [f"JSON's event {number} has {key} {told}, the table {cell!r}"]
            if cell != "" and not (str(told) == cell or isinstance(told, (int, float)) and float(cell) == float(told)):
                return [f"JSON's event {number} has {key} {told}, the table {cell!r}"]
    return []


def expected_notes(document):
    """Starts, ends and pitches of each instrument, from the document of orlo-explain."""
    found = {}
    for block in document.blocks:
        if block.events is None or block.fields.get("number") is None:
            continue
        pitch = next((section.pfield for section in block.sections if section.pfield > 3 and is_pitch(section)), None)
        for place in range(block.events.count):
            start, length = block.events.value[2][place], block.events.value[3][place]
            key = block.events.value[pitch][place] + 12 if pitch else 60.0
            found.setdefault(f"i{block.fields['instrument']}", []).append((start, start + length, key))
    return {name: sorted(notes) for name, notes in found.items()}


def is_pitch(section):
    inputs = {each["name"].rstrip("x") for each in section.fields["inputs"]}
    output = section.fields["output"]
    if output in ("hz", "op", "od", "bn"):
        return True
    return output != "db" and bool(inputs & {"no", "op"})


def in_keys(pitch):
    """A pitch moved by octaves to the nearest that has a key."""
    if not math.isfinite(pitch):
        return 60.0
    while pitch < -0.5:
        pitch += 12
    while pitch >= 127.5:
        pitch -= 12
    return pitch


def note_faults(found, expected, said):
    """Every note of the one is a note of the other; what orlo-export has told to be otherwise is let pass."""
    if set(found) != {name for name in expected}:
        return [f"tracks are {sorted(found)}, instruments {sorted(expected)}"]
    lenient = "cut where" in said or "left out, for" in said or "out of tune" in said
    faults = []
    for name, notes in expected.items():
        wanted = sorted((start, end, in_keys(pitch)) for start, end, pitch in notes)
        got = [(note.start, note.end, note.pitch) for note in found[name]]
        if len(wanted) != len(got) and not lenient:
            faults.append(f"{name} has {len(got)} notes, not {len(wanted)}")
        elif not lenient:
            faults += matching_faults(name, wanted, got)
    return faults[:3]


def matching_faults(name, wanted, got):
    """Notes are paired by their starts; those that start together by their pitches."""
    tolerance = MILLISECOND + HALF_DIGIT
    left = list(got)
    for start, end, pitch in wanted:
        near = [note for note in left if abs(note[0] - start) <= tolerance]
        best = min(near, key=lambda note: (abs(note[2] - pitch), abs(note[1] - end)), default=None)
        if best is None or abs(best[2] - pitch) > CENT:
            return [f"{name}: no note at {start:.4f} s with pitch {pitch:.3f}, but {near}"]
        # one tick is the shortest note
        if abs(best[1] - end) > tolerance + (0.004 if end - start < 0.004 else 0):
            return [f"{name}: the note at {start:.4f} s ends at {best[1]:.4f} s, not {end:.4f} s"]
        left.remove(best)
    return []


# ---- pieces

def a_block(chance, number):
    length = chance.choice([4, 6, 8, 12])
    start = chance.choice([0, 0, 0, 2, 4, 3.5])
    rhythm = chance.choice(["rh <4 8 8 4>", "rh <3 6>", "rh 5", "rh <4. 8 2>", "RA(T 1 [.2 .6])", "<.5 .25 .25>", "rh <7 28>", "rh <8,16 16 4>"])
    pitch = chance.choice(["(op) no <c4'e'g d f4'a r>", "(op) nox <c4 c+ d- ef4>", "(hz) no RA(T 1 [c3 c5])", "(op) no S2(T 1 * [c4'e d f'a'c5])",
                           "(od) nox RA(T 1 [c4 c5])", "no <bf3 ef4 g af>", "(op) opx <8.005 8.013 8.0271>"])
    loud = chance.choice(["db RA(T 1 [60 80])", "(db) db <70 74 66>", "MO(T 1 1000 20000)", "12000"])
    length3 = chance.choice([".9", "<1 -1 .5>", "2.5", "1000.2", "401", "dv(.2) 1"])
    deviation = chance.choice(["", "", "dv(.1) "])
    return (f"i{number} = 6 {start} {length} {{\np2 {deviation}{rhythm}\np3 {length3}\np4 {loud}\np5 {pitch}\np6 RA(T 1 [0 1])\n}}\n")


def musical_piece(seed):
    """Blocks that overlap, under a tempo that moves."""
    chance = random.Random(seed)
    tempos = [chance.choice([24, 60, 72, 90, 132, 200]) for _ in range(3)]
    head = chance.choice([f"te({tempos[0]})\n", f"te(0 8 {tempos[0]} {tempos[1]} {chance.choice('flesc')})\n",
                          f"te(0 4 {tempos[0]} {tempos[0]})\nte(4 10 {tempos[1]} {tempos[2]} l)\n", ""])
    deviation = chance.choice(["", "rd(.02)\n"])
    return f"{head}rs({seed % 1000})\n{deviation}" + "".join(a_block(chance, chance.randint(1, 3)) for _ in range(chance.randint(1, 4)))


def all_pieces(options):
    yield from (piece for piece in explain_pieces.example_pieces() if not piece.midi)
    for number in range(options.count):
        seed = options.seed * 1_000_003 + number
        yield Piece(f"made up {seed}", "in.orlo", {"in.orlo": musical_piece(seed).encode()})


# ---- a piece

def run(command, folder, **keywords):
    done = subprocess.run(command, cwd=folder, env=run_case.environment(), stdin=subprocess.DEVNULL, capture_output=True, timeout=120,
                          check=False, **keywords)
    if done.returncode < 0 or run_case.sanitizer_report(done.stderr):
        raise Fault(f"{os.path.basename(command[0])} ended with {done.returncode}: {done.stderr.decode(errors='replace')[-2000:]}")
    return done


def exported(options, piece, folder, ending, *arguments):
    done = run([options.export, piece.main, "-o", f"out.{ending}", *arguments], folder)
    if done.returncode != 0:
        raise Fault(f"orlo-export ended with {done.returncode}: {done.stderr.decode()}")
    with open(os.path.join(folder, f"out.{ending}"), "rb") as file:
        return file.read(), done.stderr.decode()


def judge(folder, notes, faults):
    """What others say of the MIDI file, whose notes are known."""
    path = os.path.join(folder, "out.mid")
    try:
        import mido  # pylint: disable=import-outside-toplevel
        mido.MidiFile(path)
    except ImportError:
        pass
    except (EOFError, OSError, ValueError, KeyError, IndexError) as trouble:
        faults.append(f"mido: {trouble}")
    if shutil.which("midicsv"):
        told = run(["midicsv", path], folder)
        if told.returncode != 0 or told.stderr:
            faults.append(f"midicsv: {told.stderr.decode()[:200]}")
    end = max(note.end for track in notes.values() for note in track)
    if check_midi.is_here("timidity") and end < LONGEST_PLAYED:
        with contextlib.redirect_stdout(io.StringIO()):
            played = check_midi.play_with_timidity(path, end * check_midi.TICKS, folder)
        faults += [fault for fault in played if "no sound file" in fault]  # long notes may fade before they end
    if shutil.which("csound"):
        with open(os.path.join(folder, "judge.csd"), "w", encoding="ascii") as file:
            file.write("<CsoundSynthesizer>\n<CsInstruments>\nmassign 0, 1\ninstr 1\nendin\n</CsInstruments>\n<CsScore>\nf0 .1\ne\n</CsScore>\n"
                       "</CsoundSynthesizer>\n")
        told = run(["csound", "-n", "-d", "-m7", "-F", "out.mid", "judge.csd"], folder)
        if told.returncode != 0 or b"error" in told.stderr.lower().replace(b"0 errors", b""):
            faults.append(f"csound: {told.stderr.decode(errors='replace')[-300:]}")


def check(options, piece):
    with tempfile.TemporaryDirectory(prefix="orlo-export-") as folder:
        explain_pieces.write_files(piece, folder)
        document = explain_pieces.Document(run([options.explain, piece.main], folder).stdout)
        if document.status != 0 or not any(block.events and block.events.count for block in document.blocks):
            done = run([options.export, piece.main, "-o", "out.mid"], folder)
            there = os.path.exists(os.path.join(folder, "out.mid"))
            return ["a piece without events is written"] if done.returncode != 1 or there or not done.stderr else []
        score = document.score()
        midi, said = exported(options, piece, folder, "mid")
        table = exported(options, piece, folder, "csv")[0].decode()
        faults = table_faults(score, table) + json_faults(table, exported(options, piece, folder, "json")[0])
        faults += note_faults(read_notes(midi), expected_notes(document), said)
        if options.judges:
            judge(folder, read_notes(midi), faults)
        mpe, told = exported(options, piece, folder, "mid", "--mpe")
        return faults + [f"--mpe: {fault}" for fault in note_faults(read_notes(mpe), expected_notes(document), told)]


def main():
    parser = argparse.ArgumentParser(description="check what orlo-export writes")
    for program in ("export", "explain"):
        parser.add_argument(f"--{program}", default=os.path.join(ROOT, f"build/ci/orlo-{program}"), type=os.path.abspath)
    parser.add_argument("--count", type=int, default=30)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--judges", action="store_true")
    options = parser.parse_args()
    done = failed = 0
    for piece in all_pieces(options):
        try:
            faults = check(options, piece)
        except (Fault, subprocess.TimeoutExpired) as fault:
            faults = [str(fault)]
        done += 1
        failed += bool(faults)
        for fault in faults:
            print(f"{piece.name}: {fault}")
    print(f"{done} pieces, {failed} wrong")
    return 1 if failed or not done else 0


if __name__ == "__main__":
    sys.exit(main())
