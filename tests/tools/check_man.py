"""Are the man pages clean and complete: check_man.py --orlo PROGRAM --explain PROGRAM --view PROGRAM PAGE...

"mandoc -T lint" must have nothing to say about a page, not even about its style; a page of a program must have every option that
its usage text names. Ends with 77 when mandoc is missing.
"""

import argparse
import os
import re
import shutil
import subprocess
import sys


def lint(mandoc, page):
    run = subprocess.run([mandoc, "-T", "lint", page], check=False, text=True, timeout=60,
                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    faults = run.stdout.splitlines()
    return faults or ([f"{page}: mandoc ended with {run.returncode}"] if run.returncode != 0 else [])


def missing_options(command, page, text):
    usage = subprocess.run(command, check=False, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=60).stdout
    options = re.findall(r"^  -(\w|-[\w-]+)", usage, re.M)
    if not options:
        sys.exit("the usage text has no options")
    return [f"{os.path.basename(page)} lacks option -{option}" for option in options
            if not re.search(rf"^\.It Fl {option}\b", text, re.M)]


def main():
    parser = argparse.ArgumentParser(description="check the man pages")
    parser.add_argument("--orlo", required=True, help="the program")
    parser.add_argument("--explain", required=True, help="the program orlo-explain")
    parser.add_argument("--view", required=True, help="the program orlo-view")
    parser.add_argument("pages", nargs="+", help="orlo.1, orlo-explain.1, orlo-view.1, orlo.5")
    options = parser.parse_args()
    mandoc = shutil.which("mandoc")
    if not mandoc:
        print("skipped: mandoc is not installed")
        return 77

    usage = {"orlo.1": [options.orlo], "orlo-explain.1": [options.explain, "-h"], "orlo-view.1": [options.view, "-h"]}
    faults = []
    for page in options.pages:
        with open(page, encoding="utf-8") as file:
            text = file.read()
        faults += lint(mandoc, page)
        if page.endswith(".1"):
            faults += missing_options(usage[os.path.basename(page)], page, text)
    print("\n".join(faults or [f"{len(options.pages)} pages are clean and complete"]))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
