"""What made the notes of a piece: notes.py DOCUMENT [SECONDS]

DOCUMENT has been written by orlo-explain. With SECONDS only the notes that sound there are shown.
"""

import json
import os
import sys


def column(values, count):
    """A column in full: it is written out, or by the rule that it follows."""
    if isinstance(values, list):
        return values
    if "all" in values:
        return [values["all"]] * count
    return [values["from"] + values["step"] * n for n in range(count)]


class Piece:
    def __init__(self, name):
        with open(name, encoding="utf-8") as file:
            self.run = json.load(file)
        places, count = self.run["ranges"], self.run["ranges"]["count"]
        last = {"end_line": "line", "call": None}  # what stands for a column that is left out
        self.places = [column(places[key] if key in places else places.get(last[key], {"all": -1}), count)
                       for key in ("file", "line", "byte", "end_line", "end_byte", "call")]
        self.lines = {}

    def text(self, place):
        """A place as FILE:LINE:COLUMN: TEXT, then the calls through which it came."""
        file, line, byte, end_line, end_byte, call = (values[place] for values in self.places)
        name = self.run["files"][file]["name"]
        if name not in self.lines:
            with open(os.path.join(self.run["piece"]["folder"], name), encoding="latin-1") as source:
                self.lines[name] = source.read().split("\n")
        shown = self.lines[name][line][byte:end_byte if end_line == line else None]
        called = "  <-  " + self.text(self.run["calls"][call]["range"]) if call >= 0 else ""
        return f"{name}:{line + 1}:{byte + 1}: {shown}{called}"

    def origin(self, section, value):
        """What made a value of a section: kind, place, and its draws where chance has had a say."""
        at = value
        for run in section["values"]["runs"]:
            if at < run["count"]:
                break
            at -= run["count"]
        kind, chance = run["kind"], run.get("deviation", 0) != 0
        if kind == "literal":
            place = run["ranges"] + at
        elif kind == "repeat":
            place = run["range"]
        elif kind == "generator":
            command = section["commands"][run["command"]]
            place, kind = command["range"], command["name"]
            chance = chance or kind not in ("EX", "HO")
            if len(command["sets"]) > 1:
                kind += f" set {column(run['sets'], run['count'])[at] + 1}"
        else:  # the section's end is filled with values that it had before
            before = run["loop"][at % len(run["loop"])] if "loop" in run else run["of"] + at % run.get("cycle", 1)
            was, place, _ = self.origin(section, before)
            kind = f"{kind} of {was}"
        first = column(section["values"]["draws"], section["count"])[value]
        count = column(section["values"]["draw_counts"], section["count"])[value]
        seed = self.run["sequences"][run["sequence"]]["seed"]
        draws = f"draw {first}" if count == 1 else f"draws {first} to {first + count - 1}"
        return kind, place, f"{draws} of rs({seed})" if chance else ""

    def notes(self):
        """Block, start, end and p-fields of every note; a p-field is its number, its text in the score, and its origin."""
        for block in self.run["blocks"]:
            events = block.get("events", {"count": 0, "pfields": []})
            sections = {section["pfield"]: section for section in block["sections"]}
            count = events["count"]
            fields = [(number, column(field["value"], count), column(field.get("printed", field["value"]), count),
                       column(field["origin"], count)) for number, field in enumerate(events["pfields"], 2)]
            for n in range(count):
                start, length = fields[0][1][n], fields[1][1][n]
                yield block, start, start + length, [(number, str(printed[n]).strip(), self.origin(sections[number], origin[n]))
                                                     for number, _, printed, origin in fields]


def main():
    piece = Piece(sys.argv[1])
    for block, start, end, fields in piece.notes():
        if len(sys.argv) < 3 or start <= float(sys.argv[2]) < end:
            of = f" of block #{block['number']}" if "number" in block else ""  # a MIDI file has no numbers
            print(f"i{block['instrument']}{of}, {start:.3f} to {end:.3f} s")
            for number, printed, (kind, place, draws) in fields:
                print(f"  p{number} = {printed:6} {kind}, {piece.text(place)}{', ' if draws else ''}{draws}")


if __name__ == "__main__":
    main()
