"""Whether hints of starts, intervals and durations are true: each check yields what is false; a promise yields what its fix didn't do."""

import math
import re

from check_explain import amount_of, duration
from explain_document import number32, single
from hint_facts import command_at, differs, is_not, made_by, place_of, seconds_of_beat, timeline

LEAST = .0005  # what is shorter is not seen in a score


# ---- where blocks start

LATE = "Its start is reckoned at the tempo of that beat alone, {tempo}: {beat} * 60 / {tempo} = {start} s; "


RECKONED = ("Block {block} starts {apart} s {side} the time that its start is reckoned from",
            "The equation gives beat {beat}, and there the tempo is {tempo}: {beat} * 60 / {tempo} = {start} s; at tempo {other_tempo} it "
            "would be {there} s")


def reckoned_block(facts, hint, told):
    """A start that was made of seconds at another tempo than the one at that beat."""
    beat, start = (number32(hint.block.fields[key]) for key in ("start", "seconds"))
    equation = re.fullmatch(r"~\[\s*[^-+*/%]+\*\s*([\d.]+)\s*/\s*60\s*\]", hint.words)
    if not equation:
        yield f"{hint.words!r} makes no beat of seconds"
        return
    meant = beat * 60 / float(equation[1])
    for name, figure, value in (("its beat", "beat", beat), ("the tempo", "tempo", facts.tempo_at(hint.block, beat)), ("its start", "start", start),
                                ("the other tempo", "other_tempo", float(equation[1]))):
        yield from differs(name, told[figure], value)
    yield from differs("what was meant", told["there"], meant, 2.7)  # the equation has three decimals
    yield from differs("how far it is", told["apart"], abs(meant - start), 2.7)
    yield from is_not("the side", told["side"], "before" if start < meant else "after")


def late_block(facts, hint):
    told = hint.told(
        RECKONED,
        ("Block {block} starts {apart} s {side} beat {beat} of the tempo map",
         LATE + "through all tempos before it, beat {beat} lies at {there} s"),
        ("Block {block} starts {apart} s {side} beat {beat} of {other}", LATE + "{other} has beat {beat} at {there} s"))
    block, beat = hint.block, number32(hint.block.fields["start"])
    yield from is_not("the block", f"block {told['block']}", facts.call_name(block))
    if told.get("other_tempo"):
        yield from reckoned_block(facts, hint, told)
        return
    yield from differs("its beat", told["beat"], beat)
    tempo, start = facts.tempo_at(block, beat), number32(block.fields["seconds"])
    yield from differs("the tempo", told["tempo"], tempo)
    yield from differs("its start", told["start"], start)
    yield from differs("its start by the tempo", told["start"], beat * 60 / tempo)
    found = seconds_there(facts, block, told.get("other"), beat)
    if found is None:
        yield f"{told['other']} has no beat {beat}"
        return
    there, moved = found
    if abs(float(told["there"]) - there) > moved + .00051:
        yield f"that beat is at {there}, give or take {moved}"
    yield from differs("how far it is", told["apart"], abs(float(told["there"]) - start), 2.7)
    yield from is_not("the side", told["side"], "before" if start < there else "after")
    yield from is_not("the place", hint.place, facts.document.ranges[block.fields["start_range"]])
    if abs(there - start) < .01:
        yield "nobody hears that"


def seconds_there(facts, block, other, beat):
    return (facts.seconds_by_map(block, beat), 0) if other is None else seconds_of_beat(facts.block_called(other), beat)


def late_block_mended(facts, hint, after):
    beat = number32(hint.block.fields["start"])
    told = hint.told(("{text}", "{reason}; {other} has beat {beat} at {there} s"),
                     ("{text}", "{reason}; through all tempos before it, beat {beat} lies at {there} s"))
    there, moved = seconds_there(facts, hint.block, told.get("other"), beat)
    start = number32(after.document.blocks[hint.block.index].fields["seconds"])
    if abs(start - there) > .002 + moved + 1e-5 * there:
        yield f"the block starts at {start}, not at {there}"


# ---- spans

SECONDS = "In p2 a span counts seconds: at {tempo} its intervals as they are read take {seconds} s for {beats} beats, and the span is {span} s"


def seconds_in_p2(facts, hint):
    told = hint.told(("{name} covers {covers} beats instead of {wanted}", SECONDS), ("{name} goes only {way} of its way", SECONDS))
    section = hint.section()
    command = command_at(section, hint)
    first, end, span = command["first"], command["first"] + command["count"], number32(command["span"])
    yield from is_not("the generator", told["name"], command["name"])
    yield from is_not("the p-field", section.pfield, 2)
    yield from differs("beats", told["beats"], sum(section.read[first:end]))
    seconds = sum(60 / tempo * read for tempo, read in zip(section.tempo[first:end], section.read[first:end]))
    yield from differs("seconds", told["seconds"], seconds)
    yield from differs("the span", told["span"], span)
    tempos = set(section.tempo[first:end])
    if len(tempos) > 1:
        yield from is_not("the tempo", told["tempo"], "a tempo that moves")
    else:
        tempo = tempos.pop()
        yield from differs("the tempo", told["tempo"].removeprefix("tempo "), tempo)
        if tempo == 60:
            yield "at 60 a second is a beat"
    if told.get("way") is not None:
        way = seconds / span
        yield from differs("the way", told["way"], way, 2)
        if way > .95:
            yield "it reaches its end"
    else:
        yield from differs("what it covers", told["covers"], sum(section.read[first:end]))
        yield from differs("what it was to cover", told["wanted"], span)
        if abs(sum(section.read[first:end]) - span) <= max(section.read[first:end]):
            yield "the last interval alone makes the difference"


def seconds_in_p2_mended(facts, hint, after):
    """Each generator whose span was changed now takes the beats that it was written for, give or take its last interval."""
    section, other = hint.section(), after.document.blocks[hint.block.index].by_pfield[2]
    for command, mended in zip(section.fields["commands"], other.fields["commands"]):
        if "span" not in command or command["span"] == mended["span"]:
            continue
        if not mended.get("count"):
            continue  # the block is full before it
        beats, last = sum(made_by(other, mended)), max(made_by(other, mended))
        if not number32(command["span"]) - last <= beats + .01 * number32(command["span"]) <= number32(command["span"]) * 1.02 + last:
            yield f"{command['name']} takes {beats} beats, not {command['span']}"


def last_made(section, command):
    """The last value of a generator: of starts and durations as it was read, of other p-fields as it is stored."""
    values = section.read if section.pfield < 4 else section.result
    return values[command["first"] + command["count"] - 1]


LAST_VALUE = "; its last value is {value}", ""  # not of notes and decibels


def late_curve(facts, hint):
    told = hint.told(*[("{name} with * goes only {way} of its way",
                        "It covers beats {first} to {last}, and the length of the way is reckoned as {last} + {first} beats" + end)
                       for end in LAST_VALUE])
    section = hint.section()
    command = command_at(section, hint)
    beats = value_beats(hint.block, section)
    first, last = beats[command["first"]], beats[command["first"] + command["count"] - 1]
    yield from is_not("the generator", told["name"], command["name"])
    yield from differs("its first beat", told["first"], first)
    yield from differs("its last beat", told["last"], last)
    yield from differs("its way", told["way"], (last - first) / (last + first), 2)
    if told.get("value"):
        yield from differs("its last value", told["value"], last_made(section, command))
    if not any(each.get("by_beat") for each in command["sets"]):
        yield "no curve of it has a *"


def value_beats(block, section):
    """The beat of each value of a section."""
    beats = [number32(block.fields["start"])]
    for read in block.by_pfield[2].read:
        beats.append(beats[-1] + read)
    if section.count == block.by_pfield[2].count:
        return beats
    known = dict(zip(block.events.origin[section.pfield], block.events.beat))
    return [known.get(value, math.nan) for value in range(section.count)]


def late_curve_mended(_, hint, after):
    section = hint.section()
    other = after.document.blocks[hint.block.index].by_pfield[section.pfield]
    for command, mended in zip(section.fields["commands"], other.fields["commands"]):
        for before, each in zip(command.get("sets", []), mended.get("sets", [])):
            if before.get("by_beat") and each.get("by_beat"):
                continue
            if before.get("by_beat") and len(mended["sets"]) == 1:
                yield from at_end_of_way(other, mended)


def at_end_of_way(section, command):
    """The last value of a motion lies in its last range, if it has two."""
    if command["name"] != "MO" or command["count"] < 2:
        return
    low, high = sorted(number32(command["sets"][0]["ranges"][1][key]) for key in ("low", "high"))
    last = made_by(section, command)[-1]
    if not low - .001 <= last <= high + .001:
        yield f"its last value is {last}, not from {low} to {high}"


def cut_span(facts, hint):
    told = hint.told(*[("{name} is cut off after {count} of its {wanted} events",
                        "The block has {events} " + noun + ", {before} of them before this" + end)
                       for noun in ("events", "event") for end in LAST_VALUE])
    section = hint.section()
    command = command_at(section, hint)
    yield from is_not("the generator", told["name"], command["name"])
    yield from is_not("how many it made", int(told["count"]), command["count"])
    yield from is_not("how many it was to make", int(told["wanted"]), -command["span"])
    yield from is_not("events of the block", int(told["events"]), section.count)
    yield from is_not("events before it", int(told["before"]), command["first"])
    if told.get("value"):
        yield from differs("its last value", told["value"], last_made(section, command))
    if not command["count"] < -command["span"]:
        yield "it is not cut off"


def cut_span_mended(_, hint, after):
    section = hint.section()
    command = command_at(section, hint)
    other = after.document.blocks[hint.block.index].by_pfield[section.pfield]
    mended = other.fields["commands"][section.fields["commands"].index(command)]
    yield from is_not("how many it makes", mended["count"], command["count"])
    if len(mended["sets"]) == 1:
        yield from at_end_of_way(other, mended)


# ---- intervals

def negative_interval(facts, hint):
    told = hint.told(("{count} interval{s} below 0 in a block of {beats} beat{s2}",
                      "Such an interval makes a rest, but it counts backwards, so that the block {what}; write it without the minus, "
                      "and a negative p3 or the note r"),
                     ("{count} interval below 0 in a block of {beats} beats",
                      "Such an interval makes a rest, but it counts backwards, so that the block {what}; write it without the minus, "
                      "and a negative p3 or the note r"))
    section, block = hint.block.by_pfield[2], hint.block
    below = [value for value, read in enumerate(section.read) if read < 0]
    yield from is_not("the count", int(told["count"]), len(below))
    yield from differs("the beats", told["beats"], number32(block.fields["beats"]))
    if below:
        yield from is_not("the place", hint.place[:3], place_of(facts, section, below[0]))
    failed = block.has("failed")
    yield from is_not("what came of it", told["what"], "does not come to its end" if failed else "became longer")
    if not failed and not timeline(block)[0][-1] - timeline(block)[0][0] > number32(block.fields["beats"]):
        yield "the block is no longer"


def backward_starts(facts, hint):
    told = hint.told(*[(f"Deviation turns {{turned}} interval{s} of p2 below 0, and so into {rests}",
                        "A deviation of {deviation} makes intervals {percent} per cent longer or shorter, and of {count} "
                        f"interval{many} the one that is furthest back has {{furthest}} s")
                       for s, rests in (("s", "rests"), ("", "a rest"), ("", "rests")) for many in ("s", "")])
    section = hint.block.by_pfield[2]
    turned = [(run.deviation, section.result[value]) for run in section.runs for value in range(run.first, run.end)
              if section.read[value] > 0 > section.result[value]]
    yield from is_not("the count", int(told["turned"]), len(turned))
    yield from is_not("the intervals", int(told["count"]), section.count)
    if int(told["turned"]) == 1 and "into rests" in hint.text:
        yield "one and many are mixed up"
    yield from differs("the furthest", told["furthest"], min(result for _, result in turned) if turned else 0)
    if not any(not list(differs("", told["deviation"], deviation)) for deviation, _ in turned):
        yield f"no deviation is {told['deviation']}"
    yield from differs("per cent", told["percent"], 50 * float(told["deviation"]))
    begin = facts.document.ranges[section.fields["range"]]
    if not re.match(r"(?i)(dv|rd)\s*\(", hint.words) and hint.place != begin:
        yield f"{hint.words!r} stands there"


def backward_starts_mended(_, hint, after):
    section = after.document.blocks[hint.block.index].by_pfield[2]
    if any(read > 0 > result for read, result in zip(section.read, section.result)):
        yield "intervals are still turned"


def event_at_end(facts, hint):
    told = hint.told(*[("Block {block} has an event at its very end, at beat {end}",
                        f"{{count}} interval{s} do{es} not fill its {{beats}} beat{s2} exactly: {{left}} of a beat is left, "
                        "and one more event begins there")
                       for s, es in (("s", ""), ("", "es")) for s2 in ("s", "")])
    block, section = hint.block, hint.block.by_pfield[2]
    yield from is_not("the block", f"block {told['block']}", facts.call_name(block))
    beats = number32(block.fields["beats"])
    yield from differs("its length", told["beats"], beats)
    yield from differs("its end", told["end"], number32(block.fields["start"]) + beats)
    yield from is_not("the intervals", int(told["count"]), section.count - 1)
    done = start = number32(block.fields["start"])
    for read in section.read[:-1]:
        done = single(done + read)
    left = single(start + beats) - done
    if not 0 < left < .001:
        yield f"{left} beats are left"
    yield from differs("what is left", told["left"], left, 7)
    yield from is_not("the place", hint.place, facts.document.ranges[block.fields["length_range"]])


def event_at_end_mended(_, hint, after):
    count = hint.block.by_pfield[2].count
    yield from is_not("events", after.document.blocks[hint.block.index].by_pfield[2].count, count - 1)


# ---- durations

CODES = {200: "From 200 to below 300 it is the interval plus p3 - 200 seconds: {amount} s",
         300: "From 300 to below 400 it is the interval minus p3 - 300 seconds: {amount} s less than the interval has",
         400: "From 400 to below 1000 it is p3 - 400 beats: {amount} beats",
         1000: "From 1000 up it is p3 - 1000 seconds: {amount} s"}
OF_CODE = "; 1000.5 is half a second"
ENDS = ("p3 of {value} is a code, which makes an event last {lasts} s", "p3 of {value} is a code, and leaves nothing of an event")


def code_as_duration(facts, hint):
    told = hint.told(*[(end, line + OF_CODE) for end in ENDS for line in
                       [*CODES.values(), CODES[400].replace(" beats}", "}").replace("{amount} beats", "{amount} beat")]])
    section, starts = hint.block.by_pfield[3], hint.block.by_pfield[2]
    values = [place for place, read in enumerate(section.read) if not list(differs("", told["value"], read))]
    if not values:
        yield f"no value of p3 is {told['value']}"
        return
    code, amount = amount_of(section.read[values[0]])
    if hint.place[:3] not in [place_of(facts, section, value) for value in values]:
        yield f"{told['value']} isn't made by what stands there"
    yield from is_not("the code", hint.reason.split(" it is")[0].lower(), CODES[code].split(" it is")[0].lower())
    if not any(number_seen(hint, section, value, starts, code, told) for value in values):
        yield f"no event with {told['value']} lasts {told.get('lasts', 'nothing')}; amount {amount}"


def number_seen(hint, section, value, starts, code, told):
    """Whether a value's event lasts what is told, by the rule of its code."""
    origins = dict(zip(hint.block.events.origin[3], hint.block.events.origin[2]))
    place = origins.get(value, min(value, starts.count - 1))
    _, amount = amount_of(section.read[value])
    interval = starts.result[place]
    lasts = duration(code, section.deviated[value], interval, starts.tempo[-1]) * section.run_of(value).factor
    figure = lasts if code in (200,) else section.deviated[value] if code in (400, 1000) else amount
    if list(differs("", told["amount"], figure)) and list(differs("", told["amount"], abs(amount))):
        return False
    return lasts <= LEAST * 2 if told.get("lasts") is None else not list(differs("", told["lasts"], lasts))


def code_as_duration_mended(facts, hint, after):
    """Values that were changed are now seconds: a thousandth of the number that was written, or what stands behind the 1000."""
    before, section = hint.block.by_pfield[3], after.document.blocks[hint.block.index].by_pfield[3]
    for read, other, result, deviated in zip(before.read, section.read, section.result, section.deviated):
        if read != other and list(before.deviated) == [amount_of(each)[1] for each in before.read]:
            yield from differs("seconds", f"{deviated:.6f}", read / 1000)
            if abs(abs(result) - abs(deviated)) > 1e-3 and not any(run.factor != 1 for run in section.runs):
                yield f"it lasts {result} s"


TRUTHS = {
    "late-block": (late_block, late_block_mended),
    "seconds-in-p2": (seconds_in_p2, seconds_in_p2_mended),
    "late-curve": (late_curve, late_curve_mended),
    "cut-span": (cut_span, cut_span_mended),
    "negative-interval": (negative_interval, None),
    "backward-starts": (backward_starts, backward_starts_mended),
    "event-at-end": (event_at_end, event_at_end_mended),
    "code-as-duration": (code_as_duration, code_as_duration_mended),
}
