"""Unit tests of tools/check_musicxml.py: it takes a right document, and finds each of the faults that are put into it."""

import os
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "tools"))
import check_musicxml
from notation_pieces import Piece


def note(pitch="<pitch><step>C</step><octave>4</octave></pitch>", duration=2, value="quarter", ties="", notations="", more="", extra="",
         chord=""):
    return (f"<note>{chord}{pitch}<duration>{duration}</duration>{ties}<voice>1</voice><type>{value}</type>{extra}{more}"
            f"{'<notations>' + notations + '</notations>' if notations else ''}</note>")


def pitch(step, octave=4, alter=None):
    return f"<pitch><step>{step}</step>{'' if alter is None else f'<alter>{alter}</alter>'}<octave>{octave}</octave></pitch>"


TIED = [note(ties='<tie type="start"/>', notations='<tied type="start"/>'),
        note(ties='<tie type="stop"/>', notations='<tied type="stop"/>')]
RATIO = "<time-modification><actual-notes>3</actual-notes><normal-notes>2</normal-notes></time-modification>"
TRIPLET = [note(duration=4, more=RATIO, value="half", notations='<tuplet type="start"/>'),
           note(duration=4, more=RATIO, value="half"), note(duration=4, more=RATIO, value="half", notations='<tuplet type="stop"/>')]
BEAMED = [note(duration=1, value="eighth", more='<beam number="1">begin</beam>'),
          note(duration=1, value="eighth", more='<beam number="1">end</beam>')]


def document(*measures, divisions=2, beats=4):
    attributes = (f"<attributes><divisions>{divisions}</divisions><time><beats>{beats}</beats><beat-type>4</beat-type></time>"
                  "<clef><sign>G</sign></clef></attributes>")
    bars = "".join(f'<measure number="{i + 1}">{attributes if i == 0 else ""}{"".join(notes)}</measure>' for i, notes in enumerate(measures))
    return ('<score-partwise version="4.0"><part-list><score-part id="P1"><part-name>i1</part-name></score-part></part-list>'
            f'<part id="P1">{bars}</part></score-partwise>')


class Documents(unittest.TestCase):
    def fails(self, text, *measures, **options):
        with self.assertRaisesRegex(check_musicxml.Fault, text):
            check_musicxml.read(document(*measures, **options))

    def test_right_ones(self):
        self.assertEqual(len(check_musicxml.read(document([note()] * 4))), 4)
        self.assertEqual([note.length for note in check_musicxml.read(document(TIED * 2))], [2, 2])
        self.assertEqual(len(check_musicxml.read(document(TRIPLET, divisions=3))), 3)
        self.assertEqual(len(check_musicxml.read(document(BEAMED + [note()] * 3))), 5)

    def test_measures(self):
        self.fails("voice 1 is 3 long", [note()] * 3)
        self.fails("voice 1 is 5 long", [note()] * 5)
        self.fails("the first voice is missing", [])
        second = "".join(note() for _ in range(3)).replace("<voice>1", "<voice>2")
        self.fails("voice 2 is 3 long", [note()] * 4 + ["<backup><duration>8</duration></backup>", second])
        self.fails("goes before", [note()] * 4 + ["<backup><duration>9</duration></backup>"])

    def test_values(self):
        self.fails("eighth with 0 dots", [note(value="eighth")] + [note()] * 3)
        self.fails("quarter with 1 dots", [note(extra="<dot/>")] + [note()] * 3)
        self.fails("no value", [note(value="third")] + [note()] * 3)
        self.fails("order", [note(more='<beam number="1">begin</beam>' + RATIO)] + [note()] * 3)

    def test_chords(self):
        self.fails("differ in length", [note(), note(pitch("E"), chord="<chord/>", duration=1)] + [note()] * 3)
        self.fails("pitch twice", [note(), note(chord="<chord/>")] + [note()] * 3)
        self.fails("no pitch is", [note(pitch("H"))] * 4)

    def test_ties(self):
        self.fails("does not end", [note()] * 3 + TIED[:1])
        self.fails("has not begun", [note()] * 3 + TIED[1:])
        self.fails("not begun", [TIED[0], note(pitch("D"), ties='<tie type="stop"/>', notations='<tied type="stop"/>'), note(), note()])
        self.fails("goes on beside", [TIED[0], note(), note(), note()])
        self.fails("not written", [note(ties='<tie type="start"/>'), TIED[1], note(), note()])

    def test_tuplets(self):
        self.fails("bracket", [TRIPLET[1]] * 3, divisions=3)
        self.fails("does not end", TRIPLET[:2] + TRIPLET[1:2], divisions=3)
        self.fails("which is no 2", [TRIPLET[0], TRIPLET[2], note(duration=4, value="half", more=RATIO, notations='<tuplet type="start"/><tuplet type="stop"/>')],
                   divisions=3)
        self.fails("begins within", TRIPLET[:1] * 3, divisions=3)

    def test_beams(self):
        self.fails("beam 1", [BEAMED[1], BEAMED[0]] + [note()] * 3)
        self.fails("does not end", [note()] * 3 + [note(duration=1, value="eighth"), BEAMED[0]])
        self.fails("beams", [note(more='<beam number="1">begin</beam>')] + [note()] * 3)

    def test_accidentals(self):
        sharp = "<accidental>sharp</accidental>"
        self.fails("has the accidental None", [note(pitch("C", alter=1))] + [note()] * 3)
        self.fails("in force", [note(pitch("C", alter=1), extra=sharp)] * 2 + [note(pitch("D"))] * 2)
        self.fails("has the accidental None", [note(pitch("C", alter=1), extra=sharp)] + [note()] * 3)
        self.fails("quarter-flat|has the accidental", [note(pitch("C", alter=.5), extra="<accidental>quarter-flat</accidental>")] + [note(pitch("D"))] * 3)
        self.assertEqual(len(check_musicxml.read(document([note(pitch("C", alter=1), extra=sharp)] + [note(pitch("D"))] * 3))), 4)


class Known(unittest.TestCase):
    def test_other_notes(self):
        notes = check_musicxml.read(document([note()] * 4))
        known = [check_musicxml.as_known(each) for each in notes]
        piece = Piece("x", "", [], known, "4/4", 0, 60)
        check_musicxml.check_known(piece, notes)
        for wrong in (known[1:], known + known[:1], [known[0]._replace(start=known[0].start + 1)] + known[1:],
                      [known[0]._replace(length=2 * known[0].length)] + known[1:], [known[0]._replace(alter=1)] + known[1:]):
            with self.assertRaises(check_musicxml.Fault):
                check_musicxml.check_known(piece._replace(notes=wrong), notes)

    def test_events_elsewhere(self):
        notes = check_musicxml.read(document([note()] * 4))
        piece = Piece("x", "", [], None, "4/4", 0, 60)
        events = [{"instrument": "1", "start": i, "duration": 1, "beat": i, "beats": 1, "block": 1, "p5": 8.0} for i in range(4)]
        said = "the beats are those of block 1"
        check_musicxml.check_against_events(piece, notes, {"events": events}, said)
        for wrong in (events[1:], [dict(events[0], p5=8.01)] + events[1:], events[:3] + [dict(events[3], start=3.5, beat=3.5)]):
            with self.assertRaises(check_musicxml.Fault):
                check_musicxml.check_against_events(piece, notes, {"events": wrong}, said)


if __name__ == "__main__":
    unittest.main()
