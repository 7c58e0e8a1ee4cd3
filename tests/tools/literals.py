"""What the texts of values mean, and how values are converted: the arithmetic of the language with its 32-bit and 64-bit steps."""

import math
import re
import struct

from explain_document import single

INT_MIN = -2 ** 31
CLASSES = {"c": 0, "d": 2, "e": 4, "f": 5, "g": 7, "a": 9, "b": 11}
BITS = struct.Struct("<f")


def same(a, b):
    """The same 32 bits; all that is no number is the same."""
    return a == b and math.copysign(1, a) == math.copysign(1, b) or a != a and b != b


def divided(a, b):
    if b == 0:
        return math.nan if a == 0 or a != a else math.copysign(math.inf, a) * math.copysign(1, b)
    return a / b


def real(text, narrow=single):
    """A number as it is read, digit by digit; narrow keeps each step in its width."""
    match = re.fullmatch(r"([+-]?)[ \t]*(\d*)(?:\.(\d*))?", text)
    if not match or text.strip(" \t+-") == "":
        return None
    sign, whole, fraction = match[1], match[2], match[3] or ""
    total = 0.0
    for digit in whole + fraction:
        total = narrow(narrow(total * 10) + int(digit))
    divisor = 10 ** len(fraction) % 2 ** 32
    divisor -= 2 ** 32 if divisor >= 2 ** 31 else 0
    if total != 0 or divisor != 0:
        total = narrow(divided(total, narrow(float(divisor))))
    return -total if sign == "-" else total


def whole(text):
    match = re.fullmatch(r"([+-]?)[ \t]*(\d+)", text)
    return int(match[1] + match[2]) if match else None


def to_int32(value):
    return int(value) if -2147483649 < value < 2147483648 else INT_MIN


def rounded(value):
    """To the nearest whole number, upwards from the middle."""
    if math.isinf(value) or value != value:
        return value
    up, down = float(math.ceil(value)), float(math.floor(value))
    nearest = down if single(value - down) < single(up - value) else up
    return math.copysign(nearest, value) if nearest == 0 else nearest


def decibels(text):
    value = real(text)
    return None if value is None else float(to_int32(math.exp(to_int32(value) * 0.11512925)))


def rhythm(text):
    if not re.fullmatch(r"[+-]?[ \t]*\d+\.*(,[+-]?[ \t]*\d+\.*)*", text):
        return None
    first, _, tied = text.partition(",")
    number = whole(first.rstrip("."))
    added = beats = single(divided(4.0, abs(number)))
    for _ in range(first.count(".")):
        added = single(added * 0.5)
        beats = single(beats + added)
    if tied:
        beats = single(beats + rhythm(tied))
    return -beats if number < 0 else beats


def octave_pitch(text, midi):
    match = re.fullmatch(r"([+-]?[ \t]*\d+)(\.\d*)", text)
    if not match:
        return None
    octave = whole(match[1])
    pitch = single(single(abs(octave) * 12 - 48) + single(100 * real(match[2])))
    if midi:
        return single(pitch + 12)
    return -pitch if octave < 0 else pitch


def note(text, midi):
    """A note's pitch and True, or its pitch class and False where no octave is written; a rest is -1."""
    if text in ("r", "R"):
        return -1.0, True
    match = re.fullmatch(r"([a-gA-G])([sfn+-]*)(\d*)", text)
    if not match:
        return None, False
    steps = {"s": 1, "f": -1, "n": 0, "+": .5, "-": -.5}
    pitch = CLASSES[match[1].lower()] + sum(steps[mark] for mark in match[2])
    if not match[3]:
        return pitch, False
    return (int(match[3]) + midi) * 12 + pitch, True


def value_of(text, kind, midi):
    """The value of a text in an input type, None when it is none; notes by themselves."""
    if kind == "re":
        return real(text)
    if kind == "in":
        value = real(text)
        return None if value is None else rounded(value)
    if kind == "rh":
        return rhythm(text)
    if kind == "db":
        return decibels(text)
    if kind in ("op", "opx"):
        return octave_pitch(text, midi)
    return None


def decimals(value):
    """What stands in the line for a constant: three decimals."""
    sign, value = ("-", -value) if value < 0 else ("", value)
    rest = 1000 * (value - single(float(int(value))))
    down, up = math.floor(rest), math.ceil(rest)
    return f"{sign}{int(value)}.{down if rest - down < up - rest else up:03d}"


def modulo(x, m):
    """The language's remainder, for the sizes that occur."""
    if m == 0:
        return 0.0
    m = abs(m)
    if not math.isfinite(x):
        return math.nan
    return single(math.fmod(x, m)) if abs(x / m) > 2 ** 22 else single(x - single(m * float(int(single(x / m)))))


# ---- what is printed

def round_int(value):
    """The whole number nearest to a value, upwards from the middle."""
    if not math.isfinite(value):
        return INT_MIN
    up, down = to_int32(math.ceil(value)), to_int32(math.floor(value))
    return up if single(single(float(up)) - value) <= single(value - single(float(down))) else down


def as_text(value, width, decimals):
    if value != value:
        return "-nan".rjust(width) + " "
    return f"{value:{width}.{decimals}f} "


def octave(pitch):
    return single(float(int(to_int32(pitch) / 12)))


def hertz(pitch):
    octaves = single(octave(pitch) + single(modulo(pitch, 12.0) / 12))
    try:
        return single(math.pow(2.0, octaves) * 16.35159783)
    except OverflowError:
        return math.inf


def amplitude_db(value):
    if value < 0:
        return math.nan
    return -math.inf if value == 0 else single(math.log(value) / 0.11512925)


def printed(value, output, pfield, decimals):
    """What an output type prints of a value; None where it can't be told from the value alone."""
    if pfield < 4:
        return as_text(value, decimals + (5 if pfield == 2 else 3), decimals)
    if output == "re":
        return as_text(value, decimals + 6, decimals)
    if output == "in":
        return f"{round_int(value):5d} "
    if output == "db":
        return as_text(amplitude_db(round_int(value)), 4, 1)
    if output == "hz":
        return as_text(hertz(value), 11, 5)
    if output == "op":
        return as_text(single(single(octave(value) + 4) + single(modulo(value, 12.0) / 100)), 6, 3)
    if output == "od":
        return as_text(single(single(octave(value) + 4) + single(modulo(value, 12.0) / 12)), 4, 2)
    if output == "tr":
        return as_text(single(math.pow(1.059463094359, value)), 8, 6)
    return "" if output == "xx" else None
