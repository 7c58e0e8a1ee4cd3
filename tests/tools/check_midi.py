"""Is a MIDI file right: check_midi.py --orlo PROGRAM --piece FILE [--octave-up] [--reader NAME]
                     or check_midi.py [--high-data] FILE.mid...

The second form reads files with a reader of its own, stricter than any player: lengths of chunks, number of tracks,
end of every track, nothing behind the last one, deltas of four bytes at most and no longer than they need be, a
status byte before every event, data bytes below 128 (not with --high-data), every note released.

The first form makes a MIDI file of a piece and reads it. It also makes the score of the same piece and works out from
the notes of its first i-block what the file must hold: every note-on and note-off with its tick, key and velocity.
For that, every line of the piece that begins with p and a number is given seven decimals in the score. --octave-up says
that p5 is written in note names or octave pitches, which a MIDI file takes an octave higher than a score.

--reader reads the piece's file with a program that is not this project's, which must report the same notes:
midicsv, mido (a Python module), or timidity, which plays the file with a sound font: the sound must last as long as
the notes and a little longer, and must not be silent. Ends with 77 when that program or a sound font is missing.
"""

import argparse
import array
import csv
import math
import os
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import wave

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from pieces import notes

ON, OFF = "on", "off"
TICKS = 480  # to a quarter note and to a second: the file's tempo is 60
DECAY = 3  # seconds that a sound may go on behind the last note; timidity takes two
SOUND_FONTS = [path for name in ("TimGM6mb", "FluidR3_GM", "default-GM")
               if os.path.isfile(path := f"/usr/share/sounds/sf2/{name}.sf2")]
TEMPO_TRACK = [(0, "meta", 0x58, bytes([4, 2, 24, 8])), (0, "meta", 0x51, bytes([0x0F, 0x42, 0x40]))]


class Fault(Exception):
    """What is wrong with a file."""


# ---- a strict reader

class Bytes:
    """A part of a file that is read from front to back."""

    def __init__(self, data, name):
        self.data, self.at, self.name = data, 0, name

    def take(self, count, what):
        if self.at + count > len(self.data):
            raise Fault(f"{self.name}: it ends inside {what} at byte {self.at}")
        self.at += count
        return self.data[self.at - count:self.at]

    def number(self, count, what):
        return int.from_bytes(self.take(count, what), "big")

    def variable_length(self, what):
        value = 0
        for place in range(4):
            byte = self.number(1, what)
            if place == 0 and byte == 0x80:
                raise Fault(f"{self.name}: {what} at byte {self.at - 1} is longer than it need be")
            value = value << 7 | byte & 0x7F
            if byte < 0x80:
                return value
        raise Fault(f"{self.name}: {what} of more than four bytes at byte {self.at - 4}")

    def over(self):
        return self.at == len(self.data)


def read_track(data, name, high_data):
    """The events of a track with their ticks and, apart, the tick at which it ends."""
    track, events, tick = Bytes(data, name), [], 0
    while True:
        tick += track.variable_length("a delta")
        status = track.number(1, "a status byte")
        if status == 0xFF:
            kind = track.number(1, "a meta event")
            text = track.take(track.variable_length("a length"), "a meta event")
            if kind != 0x2F:
                events.append((tick, "meta", kind, text))
                continue
            if text or not track.over():
                raise Fault(f"{name}: something stands in or behind its end, at byte {track.at}")
            return events, tick
        if status not in (0x80, 0x90):
            raise Fault(f"{name}: status byte {status:02X} at byte {track.at - 1}")
        key, velocity = track.take(2, "a note")
        if max(key, velocity) > 127 and not high_data:
            raise Fault(f"{name}: a data byte above 127 before byte {track.at}")
        events.append((tick, ON if status == 0x90 else OFF, key, velocity))


def check_notes(events, high_data):
    """Every note is struck before it is released, and in the end all are released."""
    sounding = [0] * 256
    for tick, kind, key, velocity in events:
        if kind == ON and velocity == 0 and not high_data:
            raise Fault(f"track 2: a note-on of velocity 0, which readers take for a note-off, at tick {tick}")
        sounding[key] += 1 if kind == ON else -1
        if sounding[key] < 0:
            raise Fault(f"track 2: key {key} is released at tick {tick} but does not sound")
    if any(sounding):
        raise Fault(f"track 2: keys that are never released: {[key for key in range(256) if sounding[key]]}")


def read_midi(data, high_data=False):
    """The notes of a file as (tick, on or off, key, velocity), and the ticks at which its tracks end."""
    file = Bytes(data, "the file")
    if file.take(4, "its header") != b"MThd" or file.number(4, "its header") != 6:
        raise Fault("the file: it does not begin with a header of 6 bytes")
    header = [file.number(2, "its header") for _ in range(3)]
    if header != [1, 2, TICKS]:
        raise Fault(f"the file: format, tracks and ticks are {header}, expected [1, 2, {TICKS}]")
    tracks = []
    for number in range(1, header[1] + 1):
        if file.take(4, f"the header of track {number}") != b"MTrk":
            raise Fault(f"the file: no track {number} at byte {file.at - 4}")
        length = file.number(4, f"the header of track {number}")
        tracks.append(read_track(file.take(length, f"track {number}"), f"track {number}", high_data))
    if not file.over():
        raise Fault(f"the file: {len(data) - file.at} bytes behind the last track")
    (tempo, first_end), (events, second_end) = tracks
    if tempo != TEMPO_TRACK:
        raise Fault(f"track 1: {tempo}")
    if any(event[1] == "meta" for event in events):
        raise Fault("track 2: something besides notes")
    check_notes(events, high_data)
    return events, [first_end, second_end]


# ---- what a file must hold, from the score of the same block

def float32(value):
    return struct.unpack("f", struct.pack("f", value))[0]


def ticks(seconds):
    return max(0, int(float32(float32(seconds) * TICKS)))


def expected_notes(score, octave_up):
    """What read_midi must give for the first i-block of a score."""
    block = score.split("\n;I-block #")[1]
    events = []  # (tick, on or off, start, duration, key, velocity) in the order of the file
    for note in notes(block):
        if len(note) < 5:
            raise Fault("the score's notes have no p4 and p5")
        start, duration, amplitude, pitch = map(float32, note[1:5])
        key = int(math.fmod(pitch + 12 if octave_up else pitch, 128))
        events.append((ON, start, duration, key, int(float32(amplitude * 0.003875850703452))))
    at = 0
    while at < len(events):  # every note puts its release behind all that starts before its end or there
        kind, start, duration, key, _ = events[at]
        if kind == ON:
            end, place = float32(start + duration), at + 1
            while place < len(events) and events[place][1] <= end:
                place += 1
            events.insert(place, (OFF, end, duration, key, 64))
        at += 1
    tick = previous = 0
    found = []
    for kind, start, _, key, velocity in events:
        tick += ticks(start - previous)
        previous = start
        found.append((tick, kind, key, velocity))
    return found, [ticks(float32(events[-1][1] + events[-1][2]) + 1), tick]


def run_orlo(orlo, folder, arguments, out):
    """Runs the program in the piece's own folder, where its include files are."""
    run = subprocess.run([orlo, *arguments, out], cwd=folder, check=False, timeout=60,
                         stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    if run.returncode != 0:
        sys.exit(f"orlo ended with {run.returncode}:\n{run.stderr.decode(errors='replace')}")
    with open(out, "rb") as file:
        return file.read()


def make_both(orlo, piece, folder):
    """A piece's MIDI file and its score, the score's numbers with seven decimals."""
    home, name = os.path.split(os.path.abspath(piece))
    midi = run_orlo(orlo, home, ["-m", name], os.path.join(folder, "piece.mid"))
    precise = os.path.join(folder, "precise.orlo")
    with open(piece, encoding="latin-1") as file:
        text = re.sub(r"^([ \t]*p\d+)(?!\d)[ \t]*(\([^)]*\))?", r"\1 (re7) ", file.read(), flags=re.M)
    with open(precise, "w", encoding="latin-1") as file:
        file.write(text)
    return midi, run_orlo(orlo, home, [precise], os.path.join(folder, "piece.sco")).decode("ascii")


# ---- readers that are not this project's

def read_with_midicsv(path):
    run = subprocess.run(["midicsv", path], capture_output=True, text=True, check=False, timeout=60)
    if run.returncode != 0 or run.stderr:
        raise Fault(f"midicsv ended with {run.returncode}: {run.stderr}")
    names = {"Note_on_c": ON, "Note_off_c": OFF}
    rows = [[field.strip() for field in row] for row in csv.reader(run.stdout.splitlines())]
    return ([(int(row[1]), names[row[2]], int(row[4]), int(row[5])) for row in rows if row[2] in names],
            [int(row[1]) for row in rows if row[2] == "End_track"])


def read_with_mido(path):
    import mido  # pylint: disable=import-outside-toplevel
    file = mido.MidiFile(path)
    if (file.type, file.ticks_per_beat, len(file.tracks)) != (1, TICKS, 2):
        raise Fault(f"mido: type {file.type}, {file.ticks_per_beat} ticks, {len(file.tracks)} tracks")
    names = {"note_on": ON, "note_off": OFF}
    events, ends = [], []
    for track in file.tracks:
        tick = 0
        for message in track:
            tick += message.time
            if message.type in names:
                events.append((tick, names[message.type], message.note, message.velocity))
        ends.append(tick)
    return events, ends


def play_with_timidity(path, last, folder):
    """What is wrong with the sound of a file whose last note ends at a tick."""
    sound, settings = os.path.join(folder, "piece.wav"), os.path.join(folder, "timidity.cfg")
    with open(settings, "w", encoding="utf-8") as file:
        file.write(f"soundfont {SOUND_FONTS[0]}\n")
    run = subprocess.run(["timidity", "-c", settings, "-Ow", "-s", "22050", "--output-mono", "-o", sound, path],
                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False, timeout=300)
    if not os.path.isfile(sound):
        return [f"timidity made no sound file:\n{run.stdout.decode(errors='replace')}"]
    with wave.open(sound) as file:
        rate, samples = file.getframerate(), array.array("h", file.readframes(file.getnframes()))
    if sys.byteorder == "big":
        samples.byteswap()
    length, end = len(samples) / rate, last / TICKS
    at_end = samples[max(0, int((end - 0.5) * rate)):int(end * rate)]
    loudest = [max(map(abs, part), default=0) / 32768 for part in (samples, at_end)]
    print(f"timidity: {length:.3f} s, the last note ends at {end:.3f} s; "
          f"greatest amplitude {loudest[0]:.3f}, in the last half second of it {loudest[1]:.3f}")
    faults = []
    if not end <= length <= end + DECAY:
        faults.append(f"the sound lasts {length:.3f} seconds, expected {end:.3f} and {DECAY} more at most")
    if loudest[0] < 0.01 or loudest[1] < 0.0001:
        faults.append("the sound, or its end, is silent")
    return faults


def is_here(reader):
    if reader != "mido":
        return shutil.which(reader) is not None and (reader != "timidity" or bool(SOUND_FONTS))
    try:
        import mido  # pylint: disable=import-outside-toplevel,unused-import
    except ImportError:
        return False
    return True


def compare(who, found, expected):
    """What differs between the notes found and those expected."""
    faults = []
    for one, other in zip(found[0], expected[0]):
        if one != other:
            faults.append(f"{who}: first note that differs: {one}, expected {other}")
            break
    if len(found[0]) != len(expected[0]):
        faults.append(f"{who}: {len(found[0])} note-ons and note-offs, expected {len(expected[0])}")
    if found[1] != expected[1]:
        faults.append(f"{who}: the tracks end at {found[1]}, expected {expected[1]}")
    return faults


def check_piece(options, folder):
    midi, score = make_both(os.path.abspath(options.orlo), options.piece, folder)
    path = os.path.join(folder, "piece.mid")
    expected = expected_notes(score, options.octave_up)
    found = read_midi(midi)
    print(f"{len(found[0])} note-ons and note-offs, {max(found[1]) / TICKS:.3f} s")
    faults = compare("the file", found, expected)
    if options.reader == "midicsv":
        faults += compare("midicsv", read_with_midicsv(path), expected)
    elif options.reader == "mido":
        faults += compare("mido", read_with_mido(path), expected)
    elif options.reader == "timidity":
        faults += play_with_timidity(path, expected[0][-1][0], folder)
    return faults


def main():
    parser = argparse.ArgumentParser(description="judge MIDI files")
    parser.add_argument("--orlo", help="the program")
    parser.add_argument("--piece", help="the piece that a file is made of")
    parser.add_argument("--octave-up", action="store_true", help="the piece's p5 is in note names or octave pitches")
    parser.add_argument("--reader", choices=("midicsv", "mido", "timidity"), help="another program that reads the file")
    parser.add_argument("--high-data", action="store_true", help="allow data bytes above 127 and velocity 0")
    parser.add_argument("files", nargs="*", metavar="FILE.mid")
    options = parser.parse_args()
    if bool(options.piece) == bool(options.files) or bool(options.piece) != bool(options.orlo):
        parser.error("give either --orlo and --piece or files")
    if options.reader and not is_here(options.reader):
        print(f"skipped: {options.reader}{' or a sound font' * (options.reader == 'timidity')} is not installed")
        return 77

    faults = []
    try:
        if options.piece:
            with tempfile.TemporaryDirectory(prefix="orlo-midi-") as folder:
                faults = check_piece(options, folder)
        for name in options.files:
            with open(name, "rb") as file:
                events, _ = read_midi(file.read(), options.high_data)
            print(f"{name}: {len(events)} note-ons and note-offs")
    except Fault as fault:
        faults.append(str(fault))
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
