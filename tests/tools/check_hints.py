#!/usr/bin/python3
"""Tries every hint, which has a chapter in the manual, on its pieces in tests/hints/NAME/:

  shows*.orlo   has the hint, and no other; shows*.txt is what orlo-explain --hints says of it, exactly
  mended*.orlo  what its edits make of it: without any hint, error or warning; left out where the hint has no edits
  near*.orlo    three or more pieces that come near and have no hint at all

What else stands in the folder lies beside the pieces when they are run. A piece whose first line is a comment "; run with: -m" is
run with these options, "; run from: FOLDER" in a folder below.
"""

import argparse
import pathlib
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path[:0] = [str(ROOT / "tests/tools")]
import explain_document

MOST_HINTS = 1000  # that are kept of a piece


class Run:
    """A piece as orlo-explain sees it: its hints, its messages, the text that --hints gives."""

    def __init__(self, explain, folder, name):
        first = (folder / name).read_bytes().split(b"\n", 1)[0].decode("utf-8", "replace")
        options = first.split(":", 1)[1].split() if first.startswith("; run with:") else []
        self.folder, self.piece = folder, name
        if first.startswith("; run from:"):
            self.folder = folder / first.split(":", 1)[1].strip()
            self.folder.mkdir(exist_ok=True)
            self.piece = "../" + name
        self.document = explain_document.Document(self._explain(explain, *options))
        self.text = self._explain(explain, "--hints", *options)
        self.without_events = explain_document.Document(self._explain(explain, "--no-events", *options))

    def _explain(self, explain, *options):
        run = subprocess.run([explain, *options, self.piece], cwd=self.folder, capture_output=True, timeout=60, check=False)
        if run.returncode != 0 or run.stderr:
            raise AssertionError(f"orlo-explain ends with {run.returncode}: {run.stderr.decode()}")
        return run.stdout

    def names(self):
        return [hint["name"] for hint in self.document.fields["hints"]]

    def troubles(self):
        return [message["text"] for message in self.document.diagnostics if message["severity"] != "note"]

    def mended(self):
        """The piece after all edits of all hints, or nothing when there are none."""
        edits = [edit for hint in self.document.fields["hints"] for edit in hint.get("edits", [])]
        if not edits:
            return None
        text = (self.folder / self.piece).read_bytes()
        for begin, end, new in sorted((self._bytes(text, edit) for edit in edits), reverse=True):
            text = text[:begin] + new + text[end:]
        return text

    def _bytes(self, text, edit):
        """An edit of the piece by bytes: where, and what comes there."""
        place = self.document.ranges[edit["range"]]
        if place.file != 0:
            raise AssertionError("an edit of another file")
        starts = [0] + [at + 1 for at, byte in enumerate(text) if byte == 10]
        return starts[place.line] + place.byte, starts[place.end_line] + place.end_byte, explain_document.text(edit["text"])


def check_shown(explain, folder, shown, accept):
    run = Run(explain, folder, shown.name)
    if run.names() != [folder.name]:
        yield f"{shown.name} has the hints {run.names()}"
        return
    plain = [{key: hint[key] for key in ("name", "text", "reason")} for hint in run.document.fields["hints"]]
    if plain != [{key: hint[key] for key in ("name", "text", "reason")} for hint in run.without_events.fields["hints"]]:
        yield f"{shown.name} has other hints without events"
    yield from check_file(shown.with_suffix(".txt"), run.text, accept)
    mended = shown.with_name(shown.name.replace("shows", "mended", 1))
    text = run.mended()
    if text is None:
        if mended.exists():
            yield f"{shown.name} has no edits"
        return
    yield from check_file(mended, text, accept)
    (folder / "after.orlo").write_bytes(text)
    after = Run(explain, folder, "after.orlo")
    if after.names() or after.troubles():
        yield f"{mended.name} has the hints {after.names()}, the messages {after.troubles()}"


def check_near(explain, folder, near):
    names = Run(explain, folder, near.name).names()
    if names:
        yield f"{near.name} has the hints {names}"


def check_file(path, text, accept):
    source = accept / path.name if accept else path
    if accept:
        source.write_bytes(text)
    elif not path.exists() or path.read_bytes() != text:
        yield f"{path.name} should be:\n{text.decode('utf-8', 'replace')}"


def check_hint(explain, source, accept):
    if f"\n### {source.name}\n" not in (ROOT / "docs/manual.md").read_text(encoding="utf-8"):
        yield "has no chapter in the manual"
    with tempfile.TemporaryDirectory() as temporary:
        folder = pathlib.Path(temporary) / source.name
        shutil.copytree(source, folder)
        shown = sorted(folder.glob("shows*.orlo"))
        near = sorted(folder.glob("near*.orlo"))
        if not shown or len(near) < 3:
            yield f"has {len(shown)} pieces that show it and {len(near)} near it"
        for piece in shown:
            yield from check_shown(explain, folder, piece, source if accept else None)
        for piece in near:
            yield from check_near(explain, folder, piece)


def check_bound(explain):
    """As many hints as are kept, and one more: the latter are told to be more, perhaps."""
    for count in (MOST_HINTS - 1, MOST_HINTS, MOST_HINTS + 1):
        with tempfile.TemporaryDirectory() as folder:
            lines = [f"#define a{number} #1#" for number in range(count)]
            (pathlib.Path(folder) / "in.orlo").write_text("\n".join([*lines, "i1 = 3 0 1 {", "p2 1", "p3 1", "}", ""]), encoding="ascii")
            run = Run(explain, pathlib.Path(folder), "in.orlo")
            full = count >= MOST_HINTS
            if len(run.names()) != min(count, MOST_HINTS) or run.document.fields.get("hints_full", False) != full:
                yield f"{count} macros give {len(run.names())} hints, full: {run.document.fields.get('hints_full')}"
            if (b"1000 hints were found, and there may be more.\n" in run.text) != full:
                yield f"{count} macros: --hints ends with {run.text[-200:]}"


def main():
    parser = argparse.ArgumentParser(description="try the hints on their pieces")
    parser.add_argument("--explain", default=ROOT / "build/ci/orlo-explain", type=pathlib.Path)
    parser.add_argument("--accept", action="store_true", help="write what comes out into the pieces' folders")
    parser.add_argument("names", nargs="*")
    options = parser.parse_args()
    explain = options.explain.resolve()
    listed = subprocess.run([explain, "--list-hints"], capture_output=True, check=True, text=True).stdout
    names = options.names or [line.split()[0] for line in listed.splitlines()]
    faults = 0
    for name in names:
        source = ROOT / "tests" / "hints" / name
        for fault in check_hint(explain, source, options.accept) if source.is_dir() else ["has no folder"]:
            faults += 1
            print(f"{name}: {fault}")
    for fault in check_bound(explain) if not options.names else []:
        faults += 1
        print(fault)
    print(f"{len(names)} hints, {faults} faults")
    return 1 if faults or not names else 0


if __name__ == "__main__":
    sys.exit(main())
