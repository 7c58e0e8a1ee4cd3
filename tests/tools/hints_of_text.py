"""Whether hints of definitions, seeds, constants and files are true: as in hints_of_time."""

import os
import re

import literals
from explain_document import number, text
from hint_facts import Untrue, differs, edited, is_not
from hints_of_values import nothing_read, same_score


# ---- constants

def called(hint, words):
    """The value of the call that stands at the place; one in brackets may stand in a longer text."""
    document = hint.facts.document
    found = [call for call in document.calls if "value" in call and document.ranges[call["range"]][:3] == hint.place[:3]]
    if not found or not (hint.words or "").startswith(words[:2]):
        raise Untrue(f"no constant stands at {hint.words!r}")
    return number(found[0]["value"])


def three_decimals(_, hint):
    sentence = '"{words}" is written as {written}, not as {real}'
    told = hint.told((sentence, "A constant is always written with three decimals; this one is {percent} % off by that"),
                     (sentence, "A constant is always written with three decimals, so that nothing is left of this one"),
                     (sentence, "A fraction that three decimals round up to a whole is written wrongly"))
    value = called(hint, told["words"])
    yield from is_not("the place", hint.words, told["words"])
    if abs(value) < 2 ** 31:
        yield from is_not("what is written", told["written"], literals.decimals(value))
    if abs(float(told["real"]) - value) > .51e-6 + 1e-9 * abs(value):
        yield f"it is {value}, not {told['real']}"
    if told.get("percent"):
        yield from differs("how far it is off", told["percent"], 100 * abs(float(told["written"]) - value) / abs(value), 2)
    elif "nothing is left" in hint.reason:
        if float(told["written"]) != 0:
            yield "something is left"
    elif not re.search(r"\.\d{4,}$", told["written"]):
        yield "it is written with three decimals"
    if float(told["written"]) == value:
        yield "nothing is lost"


def decimals_in_whole(_, hint):
    told = hint.told(*[('"{words}" is written as {written} where a whole number has to stand', f'The number ends before "{dot}{{zeros}}", {rest}')
                       for dot in (".", "") for rest in ("which is read for itself; a macro is written as it stands",
                                                         "and the rest of the line is read with them", "{rest}")])
    value = called(hint, told["words"])
    yield from is_not("the place", hint.words, told["words"])
    name, whole = told["words"][1:], str(round(value))
    as_macro = [(f"#const {name} {whole}", f"#define {name} #{whole}#"), (told["words"], f"${name}")]
    if edited(hint) not in ([], [(told["words"], whole)], as_macro):
        yield f"{edited(hint)} is edited"
    yield from is_not("what is written", told["written"], literals.decimals(value))
    yield from is_not("what is left", told["zeros"], told["written"].partition(".")[2])


def decimals_in_whole_mended(facts, hint, after):
    same = after.document.score() == facts.document.score() and after.errors() == facts.errors()
    if same and after.document.status == 0 and not facts.piece.midi:
        yield "nothing has changed"


# ---- chance

def same_seed(facts, hint):
    told = hint.told(("This {command} changes nothing", "The seed has just been set to {seed}, and no number was drawn since"),
                     ("{p} draws the same numbers as {other}",
                      "Both sections begin with {command} and draw {draws} numbers for {count} values: where {other} is high or low, so is {p}"),
                     ("{p} draws the same numbers as {other}",
                      "Both sections begin with {command}: where {other} is high or low, so is {p}; {rest}"))
    if not re.fullmatch(r"(?i)rs\s*\(.*", hint.words, re.S) and hint.place.call == -1:
        yield f"{hint.words!r} stands there"
    if told.get("p"):
        yield from same_draws(facts, hint, told)
    else:
        yield from seed_again(facts, hint, told)


def seed_again(facts, hint, told):
    sequences = facts.document.fields["sequences"]
    places = [each for each, sequence in enumerate(sequences) if sequence.get("range") is not None
              and facts.document.ranges[sequence["range"]] == hint.place]
    if not places:
        yield "there is no seed"
        return
    place = places[0]
    yield from is_not("the seed", int(told["seed"]), sequences[place]["seed"])
    yield from is_not("the command", told["command"], f"rs({sequences[place]['seed']})")
    if place == 0 or sequences[place - 1]["seed"] != sequences[place]["seed"]:
        yield "the seed before is another"
    if any(drawn(section, place - 1) for block in facts.document.blocks for section in block.sections):
        yield "numbers were drawn"


def drawn(section, sequence):
    """The draws of a section in a sequence: of each value its first and how many."""
    return [(section.draws[value], section.draw_counts[value]) for run in section.runs if run.sequence == sequence
            for value in range(run.first, run.end) if section.draw_counts[value]]


def same_draws(facts, hint, told):
    if hint.block.has("recovered"):
        return  # its draws are not told
    first, second = (hint.block.by_pfield[int(told[key][1:])] for key in ("other", "p"))
    seeds = [facts.document.fields["sequences"][section.runs[0].sequence]["seed"] for section in (first, second)]
    yield from is_not("the seeds", *seeds)
    yield from is_not("the command", told["command"], f"rs({seeds[0]})")
    draws = [drawn(section, section.runs[0].sequence) for section in (first, second)]
    if draws[0] != draws[1]:
        yield "they draw otherwise"
    yield from is_not("how many are drawn", int(told["draws"]), sum(count for _, count in draws[1]))
    yield from is_not("values", int(told["count"]), second.count)


def same_seed_mended(facts, hint, after):
    if "changes nothing" in hint.text:
        yield from same_score(facts, hint, after)
        return
    if hint.block.has("recovered"):
        return
    pfields = [int(each) for each in re.findall(r"\bp(\d+)", hint.text)]
    first, second = (after.document.blocks[hint.block.index].by_pfield[p] for p in pfields[:2])
    seeds = [after.document.fields["sequences"][section.runs[0].sequence]["seed"] for section in (first, second)]
    if seeds[0] == seeds[1]:
        yield "the seeds are the same"


# ---- definitions

def defined(facts, hint, kind, name):
    found = [(of, each) for of, each in enumerate(facts.document.fields[kind]) if text(each["name"]).decode("latin-1") == name]
    if not found:
        raise Untrue(f"there is no {name} among {kind}")
    return found[-1]


def unused(facts, kind, mark, of, name):
    """Faults when something uses a definition: a call that was made, or its name anywhere but in bodies."""
    if any(call["kind"] == kind and call.get("of") == of for call in facts.document.calls):
        yield f"{mark}{name} is called"
    if facts.document.fields[kind + "s"][of].get("uses"):
        yield f"{mark}{name} is used"


def unused_macro(facts, hint):
    told = hint.told(*[("Macro {name} is never called", f"Nothing that is used calls ${{name}}; its body has {{length}} character{s}")
                       for s in ("s", "")], ("Macro {name} is never called", "Nothing that is used calls ${name}; its body is empty"))
    of, macro = defined(facts, hint, "macros", told["name"])
    yield from unused(facts, "macro", "$", of, told["name"])
    yield from is_not("the place", hint.words, told["name"])
    if told.get("length"):
        yield from is_not("its length", int(told["length"]), len(text(macro["body"])))


def unused_constant(facts, hint):
    told = hint.told(("Constant {name} is never used", "Nothing that is used needs ~{name}; its value is {value}"))
    of, constant = defined(facts, hint, "constants", told["name"])
    yield from unused(facts, "constant", "~", of, told["name"])
    yield from is_not("the place", hint.words, told["name"])
    yield from differs("its value", told["value"], number(constant["value"]))


def hidden_macro(facts, hint):
    told = hint.told(("${name} in macro {outer} is its parameter, and not macro {name}",
                      'A parameter hides the macro of its name, whose body is "{body}"'))
    _, macro = defined(facts, hint, "macros", told["name"])
    _, outer = defined(facts, hint, "macros", told["outer"])
    if told["name"] not in [text(each).decode("latin-1") for each in outer["parameters"]]:
        yield f"{told['outer']} has no parameter {told['name']}"
    body = " ".join(text(macro["body"]).decode("latin-1").split())
    if not body.startswith(told["body"].removesuffix("...").strip()):
        yield f"the body of {told['name']} is {body!r}"
    yield from is_not("the place", hint.words, "$" + told["name"])
    if "$" + told["name"] not in text(outer["body"]).decode("latin-1"):
        yield f"{told['outer']} doesn't call it"


# ---- files

def text_after_block(facts, hint):
    told = hint.told(('"{words}" is not read', 'What stands behind the "}" of {block} on its line is dropped'))
    if not hint.words.startswith(told["words"].removesuffix("...").rstrip()):
        yield f"{hint.words!r} stands there"
    block = hint.block or facts.block_called(told["block"])
    yield from is_not("the block", told["block"], facts.call_name(block))
    end = facts.document.ranges[block.fields["range"]]
    if (end.file, end.end_line) != (hint.place.file, hint.place.line) or end.end_byte > hint.place.byte:
        yield "it doesn't stand behind that block"
    if facts.document.status == 0:
        yield from nothing_read(facts, hint, hint.place)
    elif any(each["severity"] == "error" and "range" in each and not each.get("recovered")
             and facts.covers(hint.place, facts.document.ranges[each["range"]]) for each in facts.document.diagnostics):
        yield "an error says that it is read"


def text_after_block_mended(facts, hint, after):
    def read(part):
        fields = part.document.fields
        return len(fields["blocks"]), len(fields["commands"]), len(fields["macros"]), len(fields["constants"]), part.document.score()

    if hint.edits[0]["text"] == "" and facts.document.status == 0 and after.document.score() != facts.document.score():
        yield "the score is another"
    if hint.edits[0]["text"] != "" and not facts.piece.midi and read(after) == read(facts):
        yield "it is still not read"


def include_elsewhere(facts, hint):
    told = hint.told(('"{name}" lies in the folder "{folder}", and not in the one where orlo is run',
                      "Names of include files count from the folder in which the program is run, and not from that of the piece"))
    files = {os.path.normpath(name) for name in facts.piece.files}
    if os.path.normpath(os.path.join(told["folder"], told["name"])) not in files:
        yield "it doesn't lie there"
    if os.path.normpath(told["name"]) in files:
        yield "it is found"
    missing = [each for each in facts.document.fields["files"] if text(each["name"]).decode() == told["name"] and not each["found"]]
    if not any(facts.document.ranges[each["included"]] == hint.place for each in missing):
        yield "nobody has looked for it there"


def byte_order_mark(facts, hint):
    told = hint.told(("The file begins with a byte order mark",
                      "Editors hide its three bytes {bytes}, and no text of a piece begins with them"))
    yield from is_not("the bytes", told["bytes"], "EF BB BF")
    yield from is_not("how the file begins", data_of(facts, hint.place)[:3], b"\xef\xbb\xbf")
    yield from is_not("the place", hint.place[1:3], (0, 0))


def byte_order_mark_mended(facts, hint, after):
    yield from is_not("the file", data_of(after, hint.place), data_of(facts, hint.place)[3:])


def data_of(facts, place):
    return facts.piece.files[text(facts.document.fields["files"][place.file]["name"]).decode()]


def no_utf8(facts, hint):
    forms = [(f"{{count}} byte{s} of the file {are} no UTF-8", reason) for s, are in (("s", "are"), ("", "is"))
             for reason in ("The first is the byte {byte}, which is {letter} in Latin-1", "The first is the byte {byte}")]
    told = hint.told(*forms, ("The file is written in UTF-{bits}",
                              "A piece is read byte by byte, and every other byte of this one says nothing: save it as UTF-8"))
    data = data_of(facts, hint.place)
    if told.get("bits"):
        yield from is_not("the encoding", (told["bits"], hint.place[1:3]), ("16", (0, 0)))
        if data[:2] not in (b"\xff\xfe", b"\xfe\xff") and data.count(0) < len(data) / 3:
            yield "it is not"
        return
    wrong = [ord(each) - 0xdc00 for each in data.decode("utf-8", "surrogateescape") if 0xdc80 <= ord(each) <= 0xdcff]
    yield from is_not("how many", int(told["count"]), len(wrong))
    yield from is_not("the first", told["byte"], f"{wrong[0]:02X}")
    if told.get("letter"):
        yield from is_not("its letter", told["letter"].encode("latin-1").decode("utf-8"), chr(wrong[0]))
    line = facts.source.lines[hint.place.file][hint.place.line]
    yield from is_not("the place", line[hint.place.byte], wrong[0])


def carriage_returns(facts, hint):
    told = hint.told(*[(f"The file has {{count}} line end{s} of old Macs, which end{e} no line",
                        "A carriage return is a blank when no line feed follows it: a comment goes on behind it, and so does a line on "
                        "which a block has ended") for s, e in (("s", ""), ("", ""), ("", "s"))])
    data = data_of(facts, hint.place)
    yield from is_not("how many", int(told["count"]), len(re.findall(rb"\r(?!\n)", data)))
    begin = sum(len(line) + 1 for line in data.split(b"\n")[:hint.place.line]) + hint.place.byte
    yield from is_not("the place", begin, re.search(rb"\r(?!\n)", data).start())


def carriage_returns_mended(facts, hint, after):
    yield from is_not("the file", data_of(after, hint.place), re.sub(rb"\r(?!\n)", b"\n", data_of(facts, hint.place)))


def utf8_mended(facts, hint, after):
    """Each byte that was no UTF-8 is its letter in Latin-1 now."""
    words = data_of(facts, hint.place).decode("utf-8", "surrogateescape")
    meant = "".join(chr(ord(each) - 0xdc00) if 0xdc80 <= ord(each) <= 0xdcff else each for each in words)
    yield from is_not("the file", data_of(after, hint.place), meant.encode("utf-8"))


TRUTHS = {
    "three-decimals": (three_decimals, None),
    "decimals-in-whole": (decimals_in_whole, decimals_in_whole_mended),
    "same-seed": (same_seed, same_seed_mended),
    "unused-macro": (unused_macro, same_score),
    "unused-constant": (unused_constant, same_score),
    "hidden-macro": (hidden_macro, same_score),
    "text-after-block": (text_after_block, text_after_block_mended),
    "include-elsewhere": (include_elsewhere, None),
    "byte-order-mark": (byte_order_mark, byte_order_mark_mended),
    "no-utf8": (no_utf8, utf8_mended),
    "carriage-returns": (carriage_returns, carriage_returns_mended),
}
