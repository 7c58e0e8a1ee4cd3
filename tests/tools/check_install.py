"""Is everything installed, and does it work there: check_install.py --cmake CMAKE --build FOLDER --version VERSION

Installs into a temporary prefix and looks at what is there from another folder: the program and its version, an example
and one with include files, the man pages, the completion in a real bash, the MIME type, what Vim and Emacs make of a piece. What needs a
program that is missing (mandoc, bash, xmllint, vim, emacs) is left out.
"""

import argparse
import glob
import json
import os
import shutil
import subprocess
import sys
import tempfile

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../..")
FILES = ["bin/orlo", "bin/orlo-view", "share/man/man1/orlo-view.1", "share/bash-completion/completions/orlo-view",
         "bin/orlo-explain", "share/man/man1/orlo-explain.1", "share/bash-completion/completions/orlo-explain",
         "bin/orlo-export", "share/man/man1/orlo-export.1", "share/bash-completion/completions/orlo-export",
         "share/doc/orlo/explain.schema.json",
         "share/man/man1/orlo.1", "share/man/man5/orlo.5", "share/bash-completion/completions/orlo",
         "share/mime/packages/orlo.xml", "share/doc/orlo/LICENSE",
         "share/vim/vimfiles/syntax/orlo.vim", "share/vim/vimfiles/ftdetect/orlo.vim", "share/vim/vimfiles/ftplugin/orlo.vim",
         "share/vim/vimfiles/compiler/orlo.vim", "share/emacs/site-lisp/orlo-mode.el",
         "share/orlo/editors/README.md", "share/orlo/editors/orlo.tmLanguage.json", "share/orlo/editors/orlo-csd.tmLanguage.json",
         "share/orlo/editors/vscode/package.json", "share/orlo/editors/vscode/syntaxes/orlo.tmLanguage.json"]
NOTES = "share/doc/orlo/examples/notes.py"  # reads what orlo-explain writes
COMPLETIONS = [  # what is typed, what is offered
    (["orlo", "-"], ["-l", "-m", "-s", "-t", "-x"]),
    (["orlo", "-s", ""], ["folder", "piece.orlo"]),
    (["orlo", "-l", ""], ["document.csd", "folder", "old.mid", "old.sco", "piece.orlo"]),
    (["orlo", "piece.orlo", ""], ["folder", "old.sco"]),
    (["orlo", "-l", "run.log", "piece.orlo", "o"], ["old.sco"]),
    (["orlo", "-m", "piece.orlo", ""], ["folder", "old.mid"]),
    (["orlo", "piece.orlo", "n"], []),
    (["orlo", "piece.orlo", "old.sco", ""], []),
    (["orlo-view", "-"], ["--help", "--version", "-f", "-h", "-i", "-o", "-p", "-r", "-V", "-w"]),
    (["orlo-view", "-f", ""], ["html", "svg", "txt"]),
    (["orlo-view", "-i", "m"], ["midi"]),
    (["orlo-view", "-o", "p"], ["piece.orlo"]),
    (["orlo-view", "-w", ""], []),
    (["orlo-view", "-p", "n"], ["none"]),
    (["orlo-view", "-f", "txt", ""], ["folder", "old.mid", "old.sco", "piece.orlo"]),
    (["orlo-view", "n"], []),
    (["orlo-view", "old.sco", ""], []),
    (["orlo-explain", "-"], ["--format=gcc", "--format=json", "--help", "--hints", "--list-hints", "--no-events", "--version", "-h", "-m",
                             "-o", "-V"]),
    (["orlo-explain", "--f"], ["--format=gcc", "--format=json"]),
    (["orlo-explain", "--format", "="], ["gcc", "json"]),
(["orlo-explain", "--format", "=", ""], ["gcc", "json"]),
    (["orlo-explain", "--format", "=", "g"], ["gcc"]),
    (["orlo-explain", "--format", "=", "gcc", ""], ["document.csd", "folder", "piece.orlo"]),
    (["orlo-explain", "-m", ""], ["document.csd", "folder", "piece.orlo"]),
    (["orlo-explain", "-o", "o"], ["old.mid", "old.sco"]),
    (["orlo-explain", "o"], ["old.mid", "old.sco"]),
    (["orlo-explain", "piece.orlo", ""], []),
    (["orlo-explain", "piece.orlo", "-o", "p"], ["piece.orlo"]),
    (["orlo-export", "--m"], ["--map", "--meter", "--mpe"]),
    (["orlo-export", "-f", ""], ["csv", "json", "mid", "musicxml"]),
    (["orlo-export", "--map", "n"], ["none"]),
    (["orlo-export", "--by", ""], ["block"]),
    (["orlo-export", "--meter", ""], []),
    (["orlo-export", "--meter", "3/4", ""], ["document.csd", "folder", "old.sco", "piece.orlo"]),
    (["orlo-export", "piece.orlo", ""], []),
    (["orlo-export", "piece.orlo", "-o", "o"], ["old.mid", "old.sco"]),
]

faults = []


def run(command, **options):
    return subprocess.run(command, check=False, text=True, timeout=120,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options)


def expect(condition, fault):
    if not condition:
        faults.append(fault)


def check_files(prefix):
    documents = [os.path.basename(path) for path in glob.glob(os.path.join(ROOT, "docs/*.md"))]
    examples = [os.path.relpath(path, os.path.join(ROOT, "examples")) for kind in ("*.orlo", "*.orc", "*.inc", "*.md", "csd/*.csd")
                for path in glob.glob(os.path.join(ROOT, "examples", kind))]
    expect(documents, "the project has no manual")
    expect(len(examples) > 20, "the project has no examples")
    for name in [*FILES, NOTES] + [f"share/doc/orlo/{name}" for name in documents] + [f"share/doc/orlo/examples/{name}" for name in examples]:
        expect(os.path.isfile(os.path.join(prefix, name)), f"not installed: {name}")
    there = [os.path.relpath(os.path.join(folder, name), prefix) for folder, _, names in os.walk(prefix) for name in names]
    for name in there:
        expect(name == NOTES or not name.endswith((".py", ".pyc", ".a", ".h", ".case")), f"installed, and no use there: {name}")


def check_program(prefix, version, work):
    program = os.path.join(prefix, "bin/orlo")
    expect(f"\nOrlo ({version}, " in run([program]).stdout, f"the program is not version {version}")
    examples = os.path.join(prefix, "share/doc/orlo/examples")
    made = run([program, os.path.join(examples, "first.orlo"), "first.sco"], cwd=work)
    expect(made.returncode == 0, f"first.orlo: status {made.returncode}\n{made.stdout}")
    expect(os.path.isfile(os.path.join(work, "first.sco")), "first.orlo: no score")
    view = os.path.join(prefix, "bin/orlo-view")
    shown = run([view, "--version"])
    expect(shown.stdout == f"orlo-view {version}\n", f"orlo-view: {shown.stdout}")
    shown = run([view, "-f", "txt", os.path.join(examples, "first.orlo")], cwd=work)  # with the orlo beside it
    expect(shown.returncode == 0 and "11 events" in shown.stdout, f"orlo-view first.orlo: {shown.stdout}")
    explain = os.path.join(prefix, "bin/orlo-explain")
    shown = run([explain, "--version"])
    expect(shown.stdout == f"orlo-explain {version}\n", f"orlo-explain: {shown.stdout}")
    shown = run([explain, "--no-events", "quartet.orlo"], cwd=examples)
    expect(shown.returncode == 0 and json.loads(shown.stdout)["status"] == 0, f"orlo-explain quartet.orlo: {shown.stdout}")
    export = os.path.join(prefix, "bin/orlo-export")
    shown = run([export, "--version"])
    expect(shown.stdout == f"orlo-export {version}\n", f"orlo-export: {shown.stdout}")
    made = run([export, "quartet.orlo", "-o", os.path.join(work, "quartet.mid")], cwd=examples)
    expect(made.returncode == 0, f"orlo-export quartet.orlo: {made.stdout}")
    made = run([program, "quartet.orlo", os.path.join(work, "quartet.sco")], cwd=examples)
    expect(made.returncode == 0, f"quartet.orlo: status {made.returncode}\n{made.stdout}")


def check_pages(prefix):
    if not shutil.which("mandoc"):
        return
    for name in ("orlo.1", "orlo-explain.1", "orlo-export.1", "orlo-view.1", "orlo.5"):
        page = run(["mandoc", "-T", "lint", os.path.join(prefix, f"share/man/man{name[-1]}/{name}")])
        expect(page.returncode == 0, f"{name}: {page.stdout}")


def check_completion(prefix, work):
    if not shutil.which("bash"):
        return
    os.mkdir(os.path.join(work, "folder"))
    for name in ("piece.orlo", "document.csd", "old.sco", "old.mid"):
        with open(os.path.join(work, name), "w", encoding="ascii"):
            pass
    script = 'source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); "_${1//-/_}"; printf "%s\\n" "${COMPREPLY[@]}"'
    for words, offered in COMPLETIONS:
        reply = run(["bash", "--norc", "-c", script, os.path.join(prefix, "share/bash-completion/completions", words[0]), *words], cwd=work)
        expect(sorted(filter(None, reply.stdout.split("\n"))) == sorted(offered), f"completion of {words}: {reply.stdout.split()}")


def check_mime(prefix):
    file = os.path.join(prefix, "share/mime/packages/orlo.xml")
    if shutil.which("xmllint"):
        for path, value in (("//*[local-name()='mime-type']/@type", "text/x-orlo"),
                            ("//*[local-name()='glob']/@pattern", "*.orlo"),
                            ("//*[local-name()='sub-class-of']/@type", "text/plain")):
            found = run(["xmllint", "--nonet", "--xpath", f"string({path})", file])
            expect(found.stdout.strip() == value, f"MIME type: {found.stdout.strip()} instead of {value}")
    if shutil.which("update-mime-database"):
        made = run(["update-mime-database", os.path.join(prefix, "share/mime")])
        expect(made.returncode == 0, f"MIME type: {made.stdout}")
        with open(os.path.join(prefix, "share/mime/globs"), encoding="utf-8") as globs:
            expect("text/x-orlo:*.orlo" in globs.read(), "MIME type: *.orlo is not known after the database has been updated")


def check_editors(prefix, work):
    piece = os.path.join(work, "piece.orlo")
    if shutil.which("vim"):
        vim = ["vim", "-Nu", "NONE", "-i", "NONE", "-n", "-es", "--cmd", f"set rtp^={prefix}/share/vim/vimfiles",
               "--cmd", "filetype plugin on | syntax on", piece, "-c", "if b:current_syntax !=# 'orlo' | cquit | endif | qall!"]
        made = run(vim, stdin=subprocess.DEVNULL)
        expect(made.returncode == 0, f"Vim does not know a piece: {made.stdout}")
    if shutil.which("emacs"):
        made = run(["emacs", "-Q", "--batch", "-L", f"{prefix}/share/emacs/site-lisp", "-l", "orlo-mode", piece,
                    "--eval", "(princ major-mode)"])
        expect(made.stdout.strip().endswith("orlo-mode"), f"Emacs does not know a piece: {made.stdout}")


def main():
    parser = argparse.ArgumentParser(description="install into a temporary prefix and try it there")
    parser.add_argument("--cmake", required=True, help="the cmake that has configured the build folder")
    parser.add_argument("--build", required=True, help="the build folder")
    parser.add_argument("--version", required=True, help="the project's version")
    options = parser.parse_args()

    with tempfile.TemporaryDirectory(prefix="orlo-install-") as folder:
        prefix, work = os.path.join(folder, "prefix"), os.path.join(folder, "a folder")
        os.mkdir(work)
        installed = run([options.cmake, "--install", options.build, "--prefix", prefix])
        if installed.returncode != 0:
            sys.exit(f"cmake --install ended with {installed.returncode}:\n{installed.stdout}")
        check_files(prefix)
        check_program(prefix, options.version, work)
        check_pages(prefix)
        shutil.rmtree(work)
        os.mkdir(work)
        check_completion(prefix, work)
        check_editors(prefix, work)
        check_mime(prefix)
    print("\n".join(faults or ["installed, and works from another folder"]))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
