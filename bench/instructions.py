"""How many instructions a program executes, which does not depend on what else the machine does: by perf where the machine lets
it count, else by valgrind."""

import os
import re
import shutil
import subprocess
import tempfile


def run(command, **options):
    return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False, **options).returncode == 0


def count_by(tool, pattern, command):
    """Runs a command under a tool that puts its result into a file of its own; None when either fails."""
    with tempfile.NamedTemporaryFile("r", encoding="utf-8", errors="replace", prefix="orlo-bench-") as result:
        whole = run([word.replace("RESULT", result.name) for word in tool] + command)
        found = re.search(pattern, result.read())
    return int(found.group(1)) if whole and found else None


def by_perf(command):
    return count_by(["perf", "stat", "-x,", "-e", "instructions:u", "-o", "RESULT"], r"(?m)^(\d+),", command)


def by_valgrind(command):
    tool = ["valgrind", "--tool=callgrind", f"--callgrind-out-file={os.devnull}", "--log-file=RESULT"]
    return count_by(tool, r"Collected : (\d+)", command)


def counter():
    """What counts the instructions of a command, None when nothing can."""
    for name, count in (("perf", by_perf), ("valgrind", by_valgrind)):
        if shutil.which(name) and count([shutil.which("true")]):
            return count
    return None
