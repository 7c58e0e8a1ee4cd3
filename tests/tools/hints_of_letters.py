"""Whether hints of letters, rhythms and what is no number are true: as in hints_of_time."""

import math
import re

import literals
from explain_document import number32, text
from explain_texts import DISTRIBUTIONS
from hint_facts import differs, edited, is_not, place_of

NOTE = r"[a-gA-G][sfn]*\d*"
OTHERS = (", and so are {others} others", ", and so is another", "")


def with_others(sentence, reason):
    """Forms of a sentence about one, two or many."""
    return [(sentence + end, reason) for end in OTHERS]


def count_of(hint, told):
    return 2 if "so is another" in hint.text else 1 + int(told.get("others") or 0)


def literal_at(facts, section, place):
    """The literal value that begins at a place."""
    for run in section.runs if section.has_values else ():
        if run.kind == "literal":
            for value in range(run.first, run.end):
                other = facts.document.ranges[run.fields["ranges"] + value - run.first]
                if (other.file, other.line, other.byte) == place:
                    return value
    return None


def same_pitch(facts, words, value):
    """Whether a value is that of a note's text, whose octave may stand before it."""
    pitch, whole = literals.note(words, facts.piece.midi)
    return pitch == value if whole else (value - pitch) % 12 == 0


# ---- letters

FLAT = r"([a-gA-G])(?:[bB]([\d$]\w*)?|(\d+)[bB]|[eE]?[sS]([\d$]\w*)?)"  # "eb4", "e4b", "ees4"
TAKEN = "A flat is written with f, and before a note that begins with {first} stands a letter, such as f"


def flat_of(words):
    """What a flat by b or es should be; None when it is none."""
    flat = re.fullmatch(FLAT, words)
    return flat and flat[1] + "f" + (flat[2] or flat[3] or flat[4] or "")


def flat_by_b(facts, hint):
    reason = "Notes need no blank between them, and a flat is written with f: {flat}"
    of_type = "The type {kind} stands before decibels, and a flat is written with f: {flat}"
    told = hint.told(*with_others('"{words}" is read as two notes, {first} and {second}', reason),
                     *with_others('"{words}" is read as the letter {first} of a {what}, and {second}', TAKEN),
                     *with_others('"{words}" is read as the input type {kind}, and the value {value}', of_type),
                     *with_others('"{words}" is read as the input type {kind}', of_type))
    words = told["words"]
    yield from is_not("the place", hint.words, words)
    if flat_of(words) is None:
        yield f"{words!r} is no flat by b"
    if told.get("flat"):
        yield from is_not("the flat", told["flat"], flat_of(words))
    for before, now in edited(hint):
        yield from is_not(f"what {before} becomes", now.removeprefix("f "), flat_of(before))
    if told.get("kind"):
        yield from read_as_type(facts, hint, told)
        return
    yield from is_not("the two", told["first"] + told["second"], words)
    section = hint.section()
    first = literal_at(facts, section, (hint.place.file, hint.place.line, hint.place.byte))
    second = literal_at(facts, section, (hint.place.file, hint.place.line, hint.place.byte + len(told["first"])))
    if first is not None and not told.get("what") and "$" not in words:
        if second is None and section.written > first + 1 or not same_pitch(facts, told["first"], section.read[first]):
            yield "these two notes are not among the values"
        elif second is not None and not same_pitch(facts, told["second"], section.read[second]):
            yield f"{told['second']} is {section.read[second]}"
    if hint.edits:
        yield from is_not("how many", count_of(hint, told), len(hint.edits))


def read_as_type(facts, hint, told):
    yield from is_not("the type", told["kind"] + (told.get("value") or ""), told["words"].lower())
    place = hint.place
    if not any(facts.document.ranges[each["range"]][:3] == place[:3] and each["name"] == told["kind"]
               for each in hint.section().fields["inputs"]):
        yield "no input type stands there"


def flat_by_b_mended(facts, hint, after):
    if "$" not in hint.words:
        yield from is_written(facts, hint, after, flat_of(hint.words))


def is_written(facts, hint, after, words, skipped=0):
    """A value of the mended section is that of these words, at the hint's place."""
    block = after.document.blocks[hint.block.index]
    if hint.section().pfield not in block.by_pfield:
        yield "the section is gone"
        return
    section = block.by_pfield[hint.section().pfield]
    value = literal_at(after, section, (hint.place.file, hint.place.line, hint.place.byte + skipped))
    if value is not None and not same_pitch(after, words, section.read[value]):
        yield f"{words} is {section.read[value]}"
    if value is None and after.document.status == 0 and not section.fields["commands"] and hint.place.call == -1:
        yield f"{words} is no value"


SHARP = r"#?([a-gA-G])#?(\d*)#?"


def sharp_by_hash(facts, hint):
    reason = "A sharp is written with s, and # is passed over: {sharp}"
    told = hint.told(*with_others('"{words}" is no note', "A sharp is written with s, and # is no part of a note: {sharp}"),
                     ('The # of "{words}" ends the macro {macro}', "A body stands between two #, and a sharp is written with s: {sharp}"),
                     *with_others('"{words}" is read as the note {read}', reason))
    words = told["words"]
    yield from is_not("the place", hint.words, words)
    note = re.fullmatch(SHARP, words)
    if not note or "#" not in words:
        yield f"{words!r} is no sharp by #"
        return
    yield from is_not("the sharp", told["sharp"].removeprefix("f "), note[1] + "s" + note[2])
    for before, now in edited(hint):
        sharp = re.fullmatch(SHARP, before)
        yield from is_not(f"what {before} becomes", now.removeprefix("f "), sharp and sharp[1] + "s" + sharp[2])
    if told.get("macro"):
        yield from ends_macro(facts, hint, told)
        return
    section, block = hint.section(), hint.block
    first = literal_at(facts, section, (hint.place.file, hint.place.line, hint.place.byte + words.startswith("#")))
    if told.get("read"):
        yield from is_not("the note", told["read"], words.replace("#", ""))
        if first is not None and not same_pitch(facts, told["read"], section.read[first]):
            yield f"{told['read']} is {section.read[first]}"
    elif not block.has("failed") and not block.has("recovered"):
        yield "there is no error"


def ends_macro(facts, hint, told):
    """The body of the macro really ends at the # of the note."""
    found = [each for each in facts.document.fields["macros"] if text(each["name"]).decode("latin-1") == told["macro"]]
    if not found:
        yield f"there is no macro {told['macro']}"
        return
    end = facts.document.ranges[found[-1]["range"]]
    yield from is_not("the end of the body", (end.end_line, end.end_byte),
                      (hint.place.line, hint.place.byte + told["words"].index("#") + 1))


def sharp_by_hash_mended(facts, hint, after):
    if hint.block is None:
        return
    note = re.fullmatch(SHARP, hint.words)
    if note:
        yield from is_written(facts, hint, after, note[1] + "s" + note[2])


def letter_of(facts, hint, kind, letters):
    thing = "A range" if kind == "a distribution" else "A motion"
    told = hint.told((f'"{{words}}" is read as the letter {{letter}} of {kind}, and {{rest}}',
                      f"{thing} may begin with the letter of {kind}, and the letters win over notes: write one before the note, "
                      "such as {better}"))
    yield from is_not("the place", hint.words, told["words"])
    yield from is_not("the letter", told["letter"], told["words"][:1])
    yield from is_not("the rest", told["rest"], told["words"][1:])
    if told["letter"].lower() not in letters or not re.fullmatch(NOTE, told["words"]):
        yield f"{told['letter']} is no letter of {kind}"
    sets, failed = sets_around(facts, hint), hint.block.has("failed") or hint.block.has("recovered")
    if not sets and not failed and hint.place.call == -1:
        yield "no set of a generator is there"
    for each in sets:
        yield from read_so(facts, each, told, kind, failed)


def sets_around(facts, hint):
    """The sets of generators in which the hint stands."""
    return [each for section in hint.block.sections for command in section.fields["commands"] for each in command.get("sets", [])
            if each["range"] is not None and facts.covers(facts.document.ranges[each["range"]], hint.place)]


def read_so(facts, given, told, kind, failed):
    """The set was really read with this letter, and with what stands behind it as a value."""
    found = [each["distribution"] for each in given.get("ranges", [])] if kind == "a distribution" else [given.get("curve", "").lower()]
    letter = told["letter"].lower()
    if (DISTRIBUTIONS[letter] if kind == "a distribution" else letter) not in found and not failed:
        yield f"the set has {found}"
    values = [number32(each[key]) for each in given.get("ranges", []) for key in ("low", "high")] \
        + [number32(each) for row in given.get("lists", []) for each in row]
    if not failed and not any(same_pitch(facts, told["rest"], value) for value in values):
        yield f"{told['rest']} is not among {values}"


def range_letter(facts, hint):
    yield from letter_of(facts, hint, "a distribution", DISTRIBUTIONS)


def curve_letter(facts, hint):
    yield from letter_of(facts, hint, "a curve", "ceflsv")


def letter_mended(facts, hint, after):
    """The note is read as a note: it is among the values of a set."""
    values = [number32(each[key]) for section in after.document.blocks[hint.block.index].sections
              for command in section.fields["commands"] for given in command.get("sets", [])
              for each in given.get("ranges", []) for key in ("low", "high")]
    values += [number32(each) for section in after.document.blocks[hint.block.index].sections
               for command in section.fields["commands"] for given in command.get("sets", [])
               for row in given.get("lists", []) for each in row]
    if values and not any(same_pitch(after, hint.words, value) for value in values):
        yield f"{hint.words} is not among {values}"


# ---- numbers

BEATS = [(f"{{a}} beat{s}", f"{{b}} beat{t}") for s in ("s", "") for t in ("s", "")]
DOT = "Rhythms are whole numbers, and a point behind one is a dot: "
TWO = '"{words}" is read as two rhythms, "{first}" and "{second}"'


def no_rhythm(facts, hint):
    forms = [("0 is no rhythm", "Rhythms are whole numbers from 1 up; 4 beats divided by 0 make an interval without end"),
             ("0 is no rhythm", "Rhythms are whole numbers from 1 up; 4 beats divided by 0 make {no} value")]
    forms.append(('"{words}" is read as two rhythms, the first of which is 0', forms[0][1]))
    for a, b in BEATS:
        forms += [(TWO, DOT + f"{{first}} is {a}, and {{second}} is {b}"),
                  (TWO, DOT + f"0 is none, and makes the interval infinite, and {{second}} is {b}"),
                  (TWO, f"The + is the sign of a number: {{first}} is {a}, and {{second}} is {b}; a comma without blanks ties"),
                  (TWO, f"A slash parts values: {{first}} is {a}, and {{second}} is {b}")]
    told = hint.told(*[each for pair in forms for each in with_others(*pair)])
    section = hint.section()
    for before, now in edited(hint):
        if now != {"+": ",", "/": ""}.get(before[-1], f"re {before} rh") or before[-1] == "/" and not re.fullmatch(r"\d+/", before):
            yield f"{before} becomes {now}"
    if told.get("words") is None:
        if not re.fullmatch(r"[-+]?0+\.*", hint.words) or not any(math.isinf(read) or read != read for read in section.read) \
                and section.has_values:
            yield f"{hint.words!r} stands there"
        return
    words = told["words"]
    yield from is_not("the place", hint.words[:len(words)], words)
    if told.get("first") is None:
        if not re.match(r"0+\.", words):
            yield f"{words} doesn't begin with 0"
        return
    yield from is_not("the two", told["first"] + ("/" if "/" in words else "") + told["second"], words)
    for key, part in (("a", "first"), ("b", "second")):
        if told.get(key):
            yield from differs(told[part], told[key], literals.rhythm(told[part]))
    first = literal_at(facts, section, (hint.place.file, hint.place.line, hint.place.byte))
    if first is not None:
        yield from rhythm_read(section.read[first], told["first"])


def rhythm_read(read, words):
    if words.rstrip(".") == "0":
        if math.isfinite(read):
            yield f"{words} is {read}"
    elif read != literals.rhythm(words):
        yield f"{words} is {read}, not {literals.rhythm(words)}"


def no_rhythm_mended(facts, hint, after):
    """The value that was meant is there: a number of beats, a tied rhythm, or the rhythm behind the slash."""
    section = hint.section()
    other = after.document.blocks[hint.block.index].by_pfield.get(section.pfield)
    if other is None or hint.place.call != -1:
        return
    words = hint.words
    if "." in words and "+" not in words and "/" not in words:
        wanted, skipped = literals.real(words), 3
    elif "+" in words:
        parts = [literals.rhythm(part) for part in words.split("+")]
        wanted, skipped = sum(parts), 0
    else:
        wanted, skipped = literals.rhythm(words.split("/")[1]), 0
    value = literal_at(after, other, (hint.place.file, hint.place.line, hint.place.byte + skipped))
    if value is None:
        if after.document.status == 0:
            yield "no value stands there"
    elif "+" in words:
        if other.read[value] < wanted:
            yield f"the value is {other.read[value]}, not {wanted}"
    else:
        yield from differs("the value", f"{wanted:.4f}", other.read[value])


NUMBERS = ("{count} of its {all} values is", "{count} of its {all} values are", "Its only value is", "All of its {all} values are",
           "Both of its values are")


def no_number(facts, hint):
    forms = []
    for each in NUMBERS:
        forms += [("{p} is written in decibels, and an amplitude of 0 has none", each + " written as -inf or nan"),
                  ("{p} is written in decibels, and an amplitude below 0 has none", each + " written as -inf or nan"),
                  ("{p} has values that are no number", each + " infinite or no number at all, which the score shows as inf or nan"),
                  ("{p} has a value that is no number", each + " infinite or no number at all, which the score shows as inf or nan")]
    told = hint.told(*forms)
    section = hint.section()
    yield from is_not("the p-field", told["p"], f"p{section.pfield}")
    decibels = "decibels" in hint.text
    if decibels:
        yield from is_not("the output type", section.fields["output"], "db")
        none = [value for value in section.result if not literals.round_int(value) > 0]
    else:
        none = [value for value in section.result if not math.isfinite(value)]
    yield from is_not("values without number", int(told.get("count") or told.get("all") or len(section.result)), len(none))
    yield from is_not("all values", int(told.get("all") or len(section.result)), len(section.result))
    if not none:
        yield "all values are numbers"
        return
    value = next(place for place, each in enumerate(section.result) if not math.isfinite(each) or decibels and literals.round_int(each) <= 0)
    yield from is_not("the place", hint.place[:3], place_of(facts, section, value))
    if any(change != ("0", "1") for change in edited(hint)):
        yield f"{edited(hint)} is edited"
    if decibels and "amplitude of 0" in hint.text and not any(literals.round_int(value) == 0 for value in none):
        yield "no amplitude is 0"


def no_number_mended(facts, hint, after):
    pfield = hint.section().pfield
    events = after.document.blocks[hint.block.index].events
    if pfield in events.printed and any(re.search("inf|nan", each) for each in events.printed[pfield]):
        yield f"p{pfield} still has no numbers"


TRUTHS = {
    "flat-by-b": (flat_by_b, flat_by_b_mended),
    "sharp-by-hash": (sharp_by_hash, sharp_by_hash_mended),
    "range-letter": (range_letter, letter_mended),
    "curve-letter": (curve_letter, letter_mended),
    "no-rhythm": (no_rhythm, no_rhythm_mended),
    "no-number": (no_number, no_number_mended),
}
