"""Whether hints of lists, headers and MIDI files are true: as in hints_of_time."""

import re

import literals
from explain_document import number32
from explain_texts import bare
from hint_facts import differs, is_not, place_of


# ---- what is left of a section

FULL = [(f"The block has {{events}} event{s}, and by then each of them has its value", "") for s in ("s", "")] \
    + [("The block has 1 event, and by then it has its value", "")] \
    + [(f"The block has {{events}} event{s} by its length", "") for s in ("s", "")] \
    + [(f"The block is {{beats}} beat{s} long, and {{count}} interval{t} {have} used them up", "")
       for s in ("s", "") for t in ("s", "") for have in ("have", "has")] \
    + [(f"The block is {{beats}} beat{s} long, and {{count}} interval{t} {have} used it up", "")
       for s in ("s", "") for t in ("s", "") for have in ("have", "has")]


def full_block(hint, told, section):
    """The figures of why nothing more is read."""
    if told.get("events"):
        yield from is_not("events", int(told["events"]), section.count)
    elif told.get("beats"):
        yield from is_not("the p-field", section.pfield, 2)
        yield from differs("beats", told["beats"], number32(hint.block.fields["beats"]))
        yield from is_not("intervals", int(told["count"]), section.count)
    else:
        yield from is_not("events", 1, section.count)
    if re.search(r"\b1 (events|beats|intervals|values|interval have)\b|\b(?!1 )\d+ (event|beat|interval|value)\b", hint.reason):
        yield "one and many are mixed up"


def left_over(facts, hint):
    told = hint.told(*[('Nothing is read from "{words}" on in {p}', reason) for reason, _ in FULL])
    section = hint.section()
    yield from is_not("the p-field", told["p"], f"p{section.pfield}")
    yield from full_block(hint, told, section)
    if not hint.words.startswith(told["words"].rstrip(".")):
        yield f"{hint.words!r} stands there"
    yield from nothing_read(facts, hint, hint.place)


def nothing_read(facts, hint, place):
    """What stands there can be another number, and anything behind it but the letter p: the score is the same."""
    words = facts.source.words(place)
    if place.call != -1 or re.search("[$~]", words):
        return
    other = re.sub(r"\d", "9", words)
    after = facts.other_text(place, other + " %% ")
    if after.document.score() != facts.document.score() or after.document.status != facts.document.status:
        yield "what stands there is read"


def unreached_loop(facts, hint):
    told = hint.told(*[(sentence, reason + ': nothing is read from "{words}" on') for reason, _ in FULL for sentence in
                       ("The loop of {p} is never reached", "The loop of {p} is longer than the block, and never comes round")])
    section = hint.section()
    yield from is_not("the p-field", told["p"], f"p{section.pfield}")
    yield from full_block(hint, told, section)
    if not hint.words.startswith("<"):
        yield f"{hint.words!r} stands there"
    begun = [loop for loop in section.fields["loops"] if loop["first"] < section.written]
    if "longer" in hint.text and not begun:
        yield "the loop is not longer than the block: none of its values is reached"
    if "never reached" in hint.text and begun and hint.place[:3] == facts.document.ranges[begun[0]["range"]][:3]:
        yield "the loop is reached"
    if hint.place.call != -1:
        return
    place = after_values(facts, hint.place, told["words"], section)
    if place is None:
        yield f"{told['words']!r} stands nowhere"
    else:
        yield from nothing_read(facts, hint, place)


def after_values(facts, place, words, section):
    """Where these words stand first behind the last value that was read."""
    ranges = facts.document.ranges
    ends = [ranges[run.fields["ranges"] + each] for run in section.runs if run.kind == "literal" for each in range(run.count)]
    ends += [ranges[run.fields["range"]] for run in section.runs if run.kind == "repeat"]
    ends += [ranges[command["range"]] for command in section.fields["commands"]]
    begin = facts.root(section.fields["range"])
    at = max([(begin.line, begin.byte), *[(each.end_line, each.end_byte) for each in ends if each.file == place.file and each.call == -1]])
    lines = facts.source.lines[place.file]
    for line in range(at[0], len(lines)):
        column = at[1] if line == at[0] else 0
        near = re.match(rb"[\s,/<>':]*", lines[line][column:]).end() if line == at[0] else 0
        found = re.compile((rb"" if near or line == at[0] and lines[line].startswith(words.encode("latin-1"), column)
                            else rb"(?<![\w.])") + re.escape(words.encode("latin-1"))).search(lines[line], column)
        if found:
            return place._replace(line=line, byte=found.start(), end_line=line, end_byte=found.end())
    return None


def open_loop(facts, hint):
    told = hint.told(*[("The loop of {p} has no end",
                        f"A < stands before {{count}} value{s}, and no > follows; the end of the section counts as its end")
                       for s in ("s", "")])
    section = hint.section()
    yield from is_not("the p-field", told["p"], f"p{section.pfield}")
    yield from is_not("the place", hint.words[:1], "<")
    loops = [loop for loop in section.fields["loops"] if loop.get("open")]
    yield from is_not("open loops", len(loops), 1)
    yield from is_not("its values", int(told["count"]), section.written - loops[0]["first"])
    whole = bare(facts.words(section.fields["range"]) or "")
    if hint.place.call == -1 and whole is not None and ">" in whole.rpartition("<")[2]:
        yield "a > follows"


def same_score(facts, hint, after):
    if after.document.score() != facts.document.score():
        yield "the score is another"


def held_list(facts, hint):
    told = hint.told(*[(f"The list of {{p}} ends early, and its last {{what}} goes on for {{held}} event{s}",
                        f"It is enough for {{enough}} event{t}, and there are {{all}}; between < and > it would come round")
                       for s in ("s", "") for t in ("s", "")])
    section = hint.section()
    yield from is_not("the p-field", told["p"], f"p{section.pfield}")
    yield from is_not("what it is enough for", int(told["enough"]), section.written)
    yield from is_not("events", int(told["all"]), section.count)
    yield from is_not("held events", int(told["held"]), section.count - section.written)
    last = section.runs[-1]
    cycle = last.fields.get("cycle", 1)
    yield from is_not("the place", hint.place[:3], place_of(facts, section, 0))
    yield from is_not("what fills it", section.fields.get("filled"), "last")
    yield from is_not("what goes on", told["what"], "interval" if section.pfield == 2 else "chord" if cycle > 1 else "value")
    held = section.read[section.written - cycle:]
    if any(not literals.same(each, held[place % cycle]) for place, each in enumerate(held)):
        yield "the values behind it are not the same"
    if section.written < 3 or section.count < 2 * section.written:
        yield "it is long enough"
    literal = [run for run in section.runs if run.kind in ("literal", "repeat")]
    if sum(run.count for run in literal) != section.written:
        yield "it is no list"


def comes_round(hint, after):
    section = hint.section()
    other = after.document.blocks[hint.block.index].by_pfield[section.pfield]
    yield from is_not("what fills it", other.fields.get("filled"), "loop")
    loop = other.fields["loops"][0] if other.fields["loops"] else {"first": 0, "count": 1}
    yield from is_not("the values that come round", loop["first"] + loop["count"], other.written)
    if other.read[:section.written] != section.read[:section.written]:
        yield "the values that were written are others"
    values = other.read[loop["first"]:other.written]
    if any(each != values[place % len(values)] for place, each in enumerate(other.read[loop["first"]:])):
        yield "it does not come round"


def held_list_mended(_, hint, after):
    yield from comes_round(hint, after)


ONCE = [f"{s} once behind it{why}" for s in ("s", "") for why in ("", ", where its last value is repeated")]


def values_after_loop(facts, hint):
    told = hint.told(*[("What stands behind the loop of {p} comes only once",
                        f"The loop has {{loop}} value{s}, and {{once}} come{t}; then the loop alone goes on for {{more}} "
                        f"event{u}") for s in ("s", "") for t in ONCE for u in ("s", "")])
    section = hint.section()
    loop = section.fields["loops"][-1]
    yield from is_not("the p-field", told["p"], f"p{section.pfield}")
    yield from is_not("values of the loop", int(told["loop"]), loop["count"])
    yield from is_not("values behind it", int(told["once"]), section.written - loop["first"] - loop["count"])
    yield from is_not("events that are left", int(told["more"]), section.count - section.written)
    yield from is_not("what fills it", section.fields.get("filled"), "loop")
    yield from is_not("the place", hint.words[:1], "<")
    if section.written == loop["first"] + loop["count"]:
        yield "nothing stands behind it"


def values_after_loop_mended(_, hint, after):
    yield from comes_round(hint, after)


# ---- headers and MIDI files

def listed(pfields):
    """P-fields as they are listed: of many the first six and the last."""
    names = [f"p{each}" for each in pfields]
    if len(names) > 8:
        return ", ".join(names[:6]) + " ... and " + names[-1]
    if len(names) < 2:
        return names[0] if names else "none"
    return ", ".join(names[:-1]) + " and " + names[-1]


def missing_pfields(facts, hint):
    told = hint.told(("Block {block} has no section for {missing}",
                      "Its header says that it has {count} p-fields, p1 counted; what it has is {there}"),
                     ("Block {block} has no section for {missing}",
                      "Its header says that it has {count} p-fields, p1 counted; what it has are {there}"))
    block = hint.block
    yield from is_not("the block", f"block {told['block']}", facts.call_name(block))
    yield from is_not("p-fields", int(told["count"]), block.fields["pfields"])
    there = sorted(block.by_pfield)
    yield from is_not("those that are there", told["there"], listed(there))
    yield from is_not("the missing ones", told["missing"], listed([p for p in range(2, block.fields["pfields"] + 1) if p not in there]))
    yield from is_not("the place", hint.place, facts.document.ranges[block.fields["pfields_range"]])


def missing_pfields_mended(facts, hint, after):
    block = after.document.blocks[hint.block.index]
    yield from is_not("its p-fields", block.fields["pfields"], max(block.by_pfield))
    if block.has("failed"):
        yield "it still fails"


def velocity(value):
    return int(value * 127 / 32767)


def midi_velocity(facts, hint):
    least, most = "p4 is an amplitude from 0 to 32767, and goes down to {low}", "p4 is an amplitude up to 32767, and goes up to {high}"
    silent = "p4 is an amplitude up to 32767, which becomes a velocity up to 127; {values} below 258, which would be 1"
    told = hint.told(("All velocities are 0: the file is silent", silent),
                     ("Velocities go up to {top}, and the highest is 127", most),
                     ("Velocities go down to {bottom}, and the lowest is 0", least))
    values = hint.block.events.value[4]
    yield from is_not("the place", hint.place, facts.document.ranges[hint.block.by_pfield[4].fields["range"]])
    if not facts.piece.midi:
        yield "this is no MIDI file"
    if told.get("values"):
        low, _, high = told["values"].removesuffix(" is").removesuffix(" are").partition(" to ")
        yield from differs("the least", low, min(values))
        yield from differs("the greatest", high or low, max(values))
        if any(velocity(value) != 0 for value in values):
            yield "some are not 0"
    elif told.get("top"):
        yield from is_not("the velocity", int(told["top"]), velocity(max(values)))
        yield from differs("the amplitude", told["high"], max(values))
    else:
        yield from is_not("the velocity", int(told["bottom"]), velocity(min(values)))
        yield from differs("the amplitude", told["low"], min(values))


def midi_velocity_mended(_, hint, after):
    """The numbers that were written are the velocities now."""
    before, now = hint.block.events.value[4], after.document.blocks[hint.block.index].events.value[4]
    if any(abs(velocity(new) - old) > 1 for old, new in zip(before, now)):
        yield f"velocities are {[velocity(each) for each in now[:9]]}, written was {before[:9]}"


def midi_key(facts, hint):
    told = hint.told(("Keys go up to {top}, and the highest is 127",
                      "p5 is in semitones, with 60 for middle C, and keys above 127 start again from 0"),
                     ("Keys go down to {bottom}, and the lowest is 0",
                      "p5 is in semitones, with 60 for middle C, and a key below 0 is written as it comes"))
    values = hint.block.events.value[5]
    yield from is_not("the place", hint.place, facts.document.ranges[hint.block.by_pfield[5].fields["range"]])
    if told.get("top"):
        yield from is_not("the key", int(told["top"]), int(max(values)))
        if int(max(values)) <= 127:
            yield "no key is above 127"
    else:
        yield from is_not("the key", int(told["bottom"]), int(min(values)))
        if int(min(values)) >= 0:
            yield "no key is below 0"


def midi_blocks(facts, hint):
    first = "A MIDI file is made of the first block alone, {block}; what follows is not read, and is counted by its headers"
    told = hint.told(*[(f"{{count}} block{s} left out of the MIDI file{empty}", first)
                       for s in ("s are", " is") for empty in ("", ", which is empty")])
    block, _, why = told["block"].partition(", which ")
    yield from is_not("the block", block, facts.call_name(facts.document.blocks[0]))
    yield from is_not("why", why, "is muted" if facts.document.blocks[0].has("skipped") else
                      "has no notes" if "empty" in hint.text else "")
    notes = facts.document.blocks[0].events.count if facts.document.blocks[0].events else 0
    yield from is_not("empty", "empty" in hint.text, notes == 0)
    if not re.match(r"i", hint.words):
        yield f"{hint.words!r} stands there"
    end = facts.document.ranges[facts.document.blocks[0].fields["range"]]
    lines = facts.source.lines[end.file]
    rest = bare(b"\n".join([lines[end.end_line][end.end_byte:], *lines[end.end_line + 1:]]).decode("latin-1"))
    if rest is not None and "#" not in rest:
        yield from is_not("the count", int(told["count"]), len(re.findall(r"^[ \t]*i\s*\S+\s*=", rest, re.M)))
    if len(facts.document.blocks) > 1:
        yield "more than one block is read"


TRUTHS = {
    "left-over": (left_over, None),
    "unreached-loop": (unreached_loop, None),
    "open-loop": (open_loop, same_score),
    "held-list": (held_list, held_list_mended),
    "values-after-loop": (values_after_loop, values_after_loop_mended),
    "missing-p-fields": (missing_pfields, missing_pfields_mended),
    "midi-velocity": (midi_velocity, midi_velocity_mended),
    "midi-key": (midi_key, None),
    "midi-blocks": (midi_blocks, None),
}
