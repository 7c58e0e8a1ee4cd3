"""The MIDI checker's own tests: it must accept a good file, find every fault, and work out a score's notes."""

import os
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "tools"))
import check_midi

HEADER = "4D546864 00000006 0001 0002 01E0"
TEMPO = "00FF580404021808 00FF51030F4240"
END = "00FF2F00"


def track(events, length=None):
    data = bytes.fromhex(events)
    return b"MTrk" + (len(data) if length is None else length).to_bytes(4, "big") + data


def file(notes="00903C7F 8360803C40" + END, tempo=TEMPO + "8B20FF2F00", header=HEADER):
    return bytes.fromhex(header) + track(tempo) + track(notes)


class Reader(unittest.TestCase):
    def refuse(self, data, words):
        with self.assertRaises(check_midi.Fault) as caught:
            check_midi.read_midi(data)
        self.assertIn(words, str(caught.exception))

    def test_good_file(self):
        self.assertEqual(check_midi.read_midi(file()), ([(0, "on", 60, 127), (480, "off", 60, 64)], [1440, 480]))

    def test_overlapping_keys(self):
        events, _ = check_midi.read_midi(file("00903C7F 78903C40 78803C40 78803C40" + END))
        self.assertEqual([event[0] for event in events], [0, 120, 240, 360])

    def test_long_deltas(self):
        events, ends = check_midi.read_midi(file("FFFFFF7F903C7F 818000803C40" + END))
        self.assertEqual([event[0] for event in events], [0xFFFFFFF, 0xFFFFFFF + 0x4000])
        self.assertEqual(ends[1], 0xFFFFFFF + 0x4000)

    def test_cut_off_anywhere(self):
        for length in range(len(file())):
            with self.assertRaises(check_midi.Fault, msg=f"{length} bytes"):
                check_midi.read_midi(file()[:length])

    def test_every_byte_of_header_and_tempo_counts(self):
        good = file()
        tempo_end = len(bytes.fromhex(HEADER)) + 8 + len(bytes.fromhex(TEMPO))
        for at in range(tempo_end):
            with self.assertRaises(check_midi.Fault, msg=f"byte {at}"):
                check_midi.read_midi(good[:at] + bytes([good[at] ^ 1]) + good[at + 1:])

    def test_file_faults(self):
        self.refuse(file() + b"\0", "1 bytes behind the last track")
        self.refuse(file(header=HEADER.replace("0001 0002", "0000 0002")), "format")
        self.refuse(file(header=HEADER.replace("0002", "0003")), "tracks")
        self.refuse(file(tempo="8B20FF2F00"), "track 1")

    def test_track_lengths(self):
        notes = "00903C7F 8360803C40" + END
        start = bytes.fromhex(HEADER) + track(TEMPO + "00FF2F00")
        for wrong in (12, 14):
            with self.assertRaises(check_midi.Fault):
                check_midi.read_midi(start + track(notes, wrong))
        self.refuse(start + track(notes, 12), "it ends inside")
        self.refuse(start + track(notes + "00", 14), "behind its end")

    def test_ends_of_tracks(self):
        self.refuse(file("00903C7F 8360803C40"), "it ends inside a delta")
        self.refuse(file("00903C7F 8360803C40" + END + "00903C7F"), "behind its end")
        self.refuse(file("00903C7F 8360803C40 00FF2F0100"), "behind its end")

    def test_deltas(self):
        self.refuse(file("81808080 00903C7F" + END), "more than four bytes")
        self.refuse(file("8001903C7F" + END), "longer than it need be")

    def test_status_bytes(self):
        self.refuse(file("00903C7F 783C00" + END), "status byte 3C")  # running status
        self.refuse(file("00913C7F" + END), "status byte 91")
        self.refuse(file("00FF0500 00903C7F 78803C40" + END), "something besides notes")

    def test_data_bytes(self):
        for notes in ("00908C7F 78808C40" + END, "00903C80 78803C40" + END, "00903C00 78803C40" + END):
            with self.assertRaises(check_midi.Fault):
                check_midi.read_midi(file(notes))
            check_midi.read_midi(file(notes), high_data=True)

    def test_releases(self):
        self.refuse(file("00903C7F" + END), "never released: [60]")
        self.refuse(file("00903C7F 00903C7F 78803C40" + END), "never released: [60]")
        self.refuse(file("00803C40 00903C7F" + END), "does not sound")
        self.refuse(file("00903C7F 78803D40" + END), "key 61 is released at tick 120")


class Score(unittest.TestCase):
    SCORE = "\n;I-block #1 (i1):\n{}\n\n;I-block #2 (i2):\ni2 0.0 1.0 32767.0 10.0 \n\ne\n"

    def expect(self, lines, octave_up=False):
        return check_midi.expected_notes(self.SCORE.format("\n".join(lines)), octave_up)

    def test_one_note(self):
        self.assertEqual(self.expect(["i1 0.0 1.0 32767.0 60.0 "]), check_midi.read_midi(file()))

    def test_tie_break_and_octave(self):
        found, ends = self.expect(["i1 0.0 1.0 32767.0 48.0 ", "i1 1.0 0.5 16384.0 140.0 "], octave_up=True)
        self.assertEqual(found, [(0, "on", 60, 127), (480, "on", 24, 63), (480, "off", 60, 64), (720, "off", 24, 64)])
        self.assertEqual(ends, [1440, 720])  # 1.5 seconds + the last note's 0.5 + 1

    def test_deltas_are_cut_off(self):
        found, _ = self.expect([f"i1 {0.003 * i:.7f} 1.0 1000.0 60.0 " for i in range(4)])
        self.assertEqual([event[0] for event in found[:4]], [0, 1, 2, 3])

    def test_differences(self):
        good = check_midi.read_midi(file())
        self.assertEqual(check_midi.compare("x", good, good), [])
        for wrong in (file("00903C7E 8360803C40" + END), file("00903C7F 8361803C40" + END),
                      file("00903D7F 8360803D40" + END), file("00903C7F 8360803C40 00903C7F 00803C40" + END),
                      file(tempo=TEMPO + "8B21FF2F00")):
            self.assertNotEqual(check_midi.compare("x", check_midi.read_midi(wrong), good), [])


if __name__ == "__main__":
    unittest.main()
