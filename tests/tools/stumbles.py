"""What composers do to their pieces without meaning it, one way for each hint: stumbled() writes some of them into a generated piece.

Most ways write a block, or lines before one, between the blocks of the piece, where its tempos, seeds and deviations are in force;
the others change what is there.
"""

import random
import re

NOTES = ["c4", "d", "e", "f5", "g3", "a", "c5"]
BEATS = ["8", "12", "16", "5.5"]


def a_block(chance, *sections, pfields=None, start=None, length=None):
    """A block with sections of p2, p3 and so on, as texts without their "pN"."""
    start = start or chance.choice(["0", "0", "2", "4.5"])
    head = f"i{chance.randint(50, 90)} = {pfields or len(sections) + 1} {start} {length or chance.choice(BEATS)} {{\n"
    return head + "".join(f"p{p} {words}\n" for p, words in enumerate(sections, 2)) + "}\n"


def number(chance, low, high, decimals=2):
    return f"{chance.uniform(low, high):.{chance.randint(0, decimals)}f}"


def notes(chance, count, among=None):
    return " ".join(chance.choice(among or NOTES) for _ in range(count))


def numbers(chance, count):
    return " ".join(str(40 + each * 3 + chance.randint(0, 2)) for each in range(count))


# ---- time

def late_block(chance):
    first = chance.choice([60, 72, 90])
    lines = chance.choice([f"te(0 8 {first} {first})\nte(8 16 {first * 2} {first * 2})\n", f"te(0 16 {first} {first + 50} f)\n",
                           f"te(0 4 {first} {first})\nte(4 {first // 10} {first // 2} {first} {chance.choice('efs')})\n"])
    other = a_block(chance, chance.choice([".5", "1", "<.5 1>"]), ".9", start="0", length="16")
    beat = chance.choice(["8", "9", "12", "15.5"])
    return lines + chance.choice([other, ""]) + a_block(chance, "1", "1", start=beat, length="4")


def seconds_in_p2(chance):
    generator = chance.choice(["MO({} 1 {} 1 .1)", "MO({} 1 {} .1 .5)", "RA({} 1 [.2 .6])", "SE({} 1 * [.25 .5])"])
    curve = chance.choice(["", "e", "l", "f"])
    return f"te({chance.choice([30, 45, 80, 90, 120, 144])})\n" + a_block(
        chance, generator.format(chance.choice(["T", "6", "8"]), curve), "1", chance.choice(["1", "<1 2>"]),
        length=chance.choice(["12", "20"]))


def late_curve(chance):
    curve = chance.choice("fels")
    return a_block(chance, chance.choice(["1", ".5", "<1 .5>"]), "1",
                   f"{chance.choice(['MO', 'MO', 'MS'])}({chance.choice(['T', '4'])} 1 {curve}* {chance.randint(0, 9)} 100)",
                   start=chance.choice(["4", "8", "30"]))


def cut_span(chance):
    return a_block(chance, chance.choice(["1", ".5"]), "1", chance.choice(["", "", "1 2 "])
                   + f"MO(-{chance.choice([40, 64, 100])} 1 {chance.choice(['', 'e', 's'])} 0 100)", length=chance.choice(["-12", "16"]))


def negative_interval(chance):
    return a_block(chance, chance.choice(["rh <4 -4 8>", "rh <8 -8 4 2>", "<1 -.5>", "1 -1 1 2 1"]), "1", "5")


def backward_starts(chance):
    return a_block(chance, f"dv({chance.choice(['10', '5', '2.5', '20'])}) {chance.choice(['.5', '1', '<1 .5>'])}", "1",
                   length=chance.choice(["-20", "-32"]))


def event_at_end(chance):
    rhythm, beats = chance.choice([("3", "16"), ("12", "4"), ("6", "8"), ("24", "2"), ("3", "12"), ("5", "24"), ("20", "8"), ("12", "8")])
    return a_block(chance, f"rh {rhythm}", ".9", "1", length=beats, start=chance.choice(["0", "4"]))


def code_as_duration(chance):
    return a_block(chance, chance.choice(["1", ".5", "<1 2>"]),
                   chance.choice(["250", "500", "1000", "<250 500>", "750 300", "350", "200", "1200", "333", "RA(T 1 [300 600])"]), "1")


# ---- letters

def flat_by_b(chance):
    flats = notes(chance, 2, ["bb4", "eb4", "ab3", "Eb5", "db", "gb4", "ees4", "e4b", "as3"])
    return a_block(chance, chance.choice(["1", ".5"]), "1", f"no {notes(chance, 2)} {flats} {chance.choice(['', '<a bb>', 'c4:eb4'])}")


def sharp_by_hash(chance):
    return a_block(chance, "1", "1", f"no {notes(chance, 1)} {notes(chance, 2, ['f#4', 'c#', '#g4', 'd4#', 'F#3'])} {notes(chance, 1)}")


def range_letter(chance):
    low = chance.choice(["b5", "g3", "bf3", "f4", "gf3", "fs4", "b", "gs4"])
    return a_block(chance, "1", "1", "no " + chance.choice(
        [f"RA(T 1 [{low} c6])", f"RA(T .5 [{low} c6] .5 [c4 e5])", f"MO(T 1 f [{low} c6] [c5 d5])", f"RA(T 1 [ {low}, c6 ])"]))


def curve_letter(chance):
    low = chance.choice(["e4", "c4", "ef4", "f3", "cs4", "fs5", "c", "es4"])
    return a_block(chance, "1", "1", "no " + chance.choice(
        [f"MO(T 1 {low} g4)", f"MO(T .5 {low} g4 .5 f c4 d)", f"MS(T 1 {low} g4)", f"MO(-5 1 {low} g4)"]))


def no_rhythm(chance):
    return a_block(chance, "rh " + chance.choice(["4 4.5 4", "0.5 4", "4 0", "4+8 8", "1/4 1/8", "2.5 4 4", "4+8+16 4", "8 0.25 8", "3/4",
                                                  "4.5x2", "<4 1.5>"]), "1", "5")


def no_number(chance):
    return a_block(chance, "1", "1", chance.choice(
        ["(db) 0 3000", "(db) MO(T 1 8000 0)", "(db) <0 500 0>", "(db) HO(-2 0) 900",
         f"{numbers(chance, 1)} EX(-4 1 [p2 + 9 * 99999999999999999999999999999999999999 * 999])"]))


# ---- lists

def left_over(chance):
    length = chance.choice(["-4", "-6", "4"])
    return a_block(chance, chance.choice(["1", "rh 4 4 4 4 2 2 4"]), "1", chance.choice(
        [numbers(chance, 9), "70x0 80", f"RA(-10 1 [60 70]) {numbers(chance, 2)}", f"no {notes(chance, 9)}", "1'2 3'4 5'6 7:8 9 10 11"]),
        length=length)


def unreached_loop(chance):
    return a_block(chance, "1", "1", chance.choice(
        [f"<{numbers(chance, 9)}>", f"{numbers(chance, 6)} <1 2>", "70x0 <80 90>", f"no {notes(chance, 5)} <{notes(chance, 3)}>",
         f"RA(T 1 [1 9]) <{numbers(chance, 2)}>"]), length=chance.choice(["-5", "5"]))


def open_loop(chance):
    return a_block(chance, chance.choice(["1", "rh <4 8 8"]), "1", chance.choice(
        ["<70 80 60", "no < c4 e'g ; then again", "<RA(-3 1 [60 80])", "<70 80x2", "1 2 <", "1 <2"]))


def held_list(chance):
    return a_block(chance, chance.choice([".5", "rh 8 8 4"]), chance.choice([".9", ".8 .5 .5"]), chance.choice(
        [numbers(chance, 3), numbers(chance, 4), f"no {notes(chance, 3)}", "no c4'e g'd5 f4'a", "1 2 3 2"]),
        length=chance.choice(["16", "-20"]))


def values_after_loop(chance):
    return a_block(chance, ".5", "1", chance.choice(
        ["<70 80>x4", f"<{numbers(chance, 3)}> {numbers(chance, 2)}", "no <a3 e4 c> bf3 f4 d", "no <a3 e4> <f c4>", "1 <2 3> 4"]),
        length=chance.choice(["16", "-20"]))


# ---- headers and MIDI files

def missing_pfields(chance):
    sections = ["1", "1", "70", "no c4"][:chance.randint(2, 4)]
    return a_block(chance, *sections, pfields=len(sections) + 1 + chance.choice([1, 1, 2, 15]))


def midi_velocity(chance):
    return a_block(chance, "1", ".9", chance.choice(
        ["90 80 84", "RA(T 1 [60 96])", "MO(T 1 20000 40000)", "20000 -500", "db 96 30 in 40000", "200"]), "no c4 e g")


def midi_key(chance):
    return a_block(chance, "1", ".9", "db 80", chance.choice(["440 220", "<-20 10>", "no c4 g9 a9", "RA(T 1 [100 200])"]))


def midi_blocks(chance):
    return a_block(chance, "1", chance.choice([".9", "-1"]), "db 80", "no c4") + "".join(
        a_block(chance, "1", "1", "1", "60") for _ in range(chance.randint(0, 2)))


# ---- chance, constants, macros

def same_seed(chance):
    seed = chance.randint(0, 99)
    command = f"rs({seed})"
    return chance.choice([
        f"{command}\n{command}\n" + a_block(chance, "1", "1"),
        f"{command}\n" + a_block(chance, f"{command} 1", "1", "RA(T 1 [1 9])"),
        a_block(chance, "1", "1", f"{command} RA(T 1 [1 9])", f"{command} RA(T 1 [20 90])"),
        a_block(chance, "1", "1", f"{command} SE(T 1 [1 2 3])", "4", f"{command} SE(T 1 [4 5 6])")])


def three_decimals(chance):
    value = chance.choice([number(chance, .001, .9) + "4567", "0.3333", "2.9996", "440.12345", "~[1 / 3]", "~[2 / 7 * 9]"])
    if value[0] == "~":
        return a_block(chance, "1", "1", value + " 2")
    name = f"kk{chance.randint(0, 9999)}"
    return f"#const {name} {value}\n" + a_block(chance, "1", "1", f"~{name} 2")


def decimals_in_whole(chance):
    name = f"kw{chance.randint(0, 9999)}"
    block = chance.choice([
        a_block(chance, "1", "1", f"7x~{name} 8"), a_block(chance, "1", "1", f"<1 2x~{name}>"),
        a_block(chance, "1", "1", pfields=f"~{name}"), a_block(chance, "1", "1", length=f"-~{name}"),
        re.sub(r"^i\d+", f"i~{name}", a_block(chance, "1", "1"))])
    return f"#const {name} 3\n" + block


def unused_macro(chance):
    return f"#define unused{chance.randint(0, 9999)} #{chance.choice(['', 'c4 e g', '1'])}#\n"


def unused_constant(chance):
    return f"#const never{chance.randint(0, 9999)} {number(chance, 0, 9)}\n"


def hidden_macro(chance):
    name = f"o{chance.randint(0, 999)}"
    return f"#define {name} #4#\n#define h{name}({name}) #c${name} e g#\n" \
        + a_block(chance, "1", "1", chance.choice([f"no $h{name}(5) c$o{name[1:]}", f"no $h{name}(3)"]))


# ---- what changes the piece that is there

def text_after_block(text, chance):
    ends = [match.end() for match in re.finditer(r"^\}", text, re.M)]
    at = chance.choice(ends[:-1] or ends)
    words = chance.choice([" te(90)", " i99 = 3 0 4 { p2 1 p3 1 }", " rs(5)", " words", " }"] if ends[:-1] else [" te(90)"])
    return text[:at] + words + text[at:]


def in_bytes(change):
    change.of_bytes = True
    return change


@in_bytes
def byte_order_mark(data, _):
    return b"\xef\xbb\xbf" + data


@in_bytes
def no_utf8(data, chance):
    return data + chance.choice([b"; caf\xe9\n", b"; \xe4\xf6\xfc\n", b"; \x93quoted\x94\n"])


@in_bytes
def carriage_returns(data, chance):
    """Somebody has put a line in on an old Mac."""
    line = chance.choice([b"; a waltz\rsr(44100)\r", b"sr(44100)\r", b"sr(44100) ; of the sound\rrd(0)\n"])
    return line + data


STUMBLES = {
    "late-block": late_block, "seconds-in-p2": seconds_in_p2, "late-curve": late_curve, "cut-span": cut_span,
    "negative-interval": negative_interval, "backward-starts": backward_starts, "event-at-end": event_at_end,
    "code-as-duration": code_as_duration, "flat-by-b": flat_by_b, "sharp-by-hash": sharp_by_hash, "range-letter": range_letter,
    "curve-letter": curve_letter, "no-rhythm": no_rhythm, "no-number": no_number, "left-over": left_over,
    "unreached-loop": unreached_loop, "open-loop": open_loop, "held-list": held_list, "values-after-loop": values_after_loop,
    "missing-p-fields": missing_pfields, "midi-velocity": midi_velocity, "midi-key": midi_key, "midi-blocks": midi_blocks,
    "same-seed": same_seed, "three-decimals": three_decimals, "decimals-in-whole": decimals_in_whole, "unused-macro": unused_macro,
    "unused-constant": unused_constant, "hidden-macro": hidden_macro,
}
CHANGES = {"text-after-block": text_after_block, "byte-order-mark": byte_order_mark, "no-utf8": no_utf8,
           "carriage-returns": carriage_returns}
OF_MIDI = ("midi-velocity", "midi-key", "midi-blocks")


def include_elsewhere(piece, chance):
    """The piece lies in a folder, with what it includes, and is run from above it."""
    name = f"part{chance.randint(0, 9)}.inc"
    inside = b"#include |" + name.encode() + b"|\n" + piece.files[piece.main]
    return piece._replace(main="music/" + piece.main, files={"music": None, "music/" + piece.main: inside, "music/" + name: b"; nothing\n"})


def places(text):
    """Where a block may come: before each other one's lines, and at the end."""
    return [0, *[match.end() for match in re.finditer(r"^\}\n", text, re.M)]]


def stumble(piece, name, chance):
    """The piece with one stumble more."""
    if name == "include-elsewhere":
        return include_elsewhere(piece, chance)
    data = piece.files[piece.main]
    if name in CHANGES:
        change = CHANGES[name]
        data = change(data, chance) if hasattr(change, "of_bytes") else change(data.decode("latin-1"), chance).encode("latin-1")
    else:
        text = data.decode("latin-1")
        at = 0 if piece.midi or name in OF_MIDI else chance.choice(places(text))
        data = (text[:at] + STUMBLES[name](chance) + text[at:]).encode("latin-1")
    return piece._replace(midi=piece.midi or name in OF_MIDI, files=piece.files | {piece.main: data})


def stumbled(piece, seed):
    """A piece in which somebody has stumbled, once to three times; the ways come in turn."""
    chance = random.Random(seed)
    names = [*STUMBLES, *CHANGES]
    chosen = [names[seed % len(names)], *chance.sample(names, chance.randint(0, 2))]
    if chance.random() < .05:
        chosen.append("include-elsewhere")
    for name in chosen:
        piece = stumble(piece, name, chance)
    return piece._replace(name=f"{piece.name} with {', '.join(chosen)}")
