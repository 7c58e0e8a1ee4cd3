"""No broken piece may break the program: break_piece.py --forked PROGRAM --piece FILE [--truncate] [--replace N | --all]

Makes broken variants of a piece, by cutting it off at every byte or by replacing one byte by another, and runs each.
PROGRAM is tests/forked, which runs many variants in one process.
Every run must end by itself within two seconds with status 0 or 1, and say something when it is 1; a signal, another
status or a sanitizer's report is a failure. The first failing variants are kept in a folder that is named at the end.
Files that the piece includes are found by their names, beside the piece, and stay whole.
"""

import argparse
import collections
import concurrent.futures
import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from run_case import cut_banner, environment, read_file, sanitizer_report
from pieces import included_files

REPLACEMENTS = b"{}()<>\"':/;#$~0xpi\0"
TIME_LIMIT = 2  # seconds that a run may take
KEPT = 5  # failing variants that are saved
ENOUGH = 50  # failures after which a job runs no more variants


def all_variants(data, truncate, replace):
    """Variants as (position, byte): the byte that stands there instead, or None where the piece ends there."""
    if truncate:
        yield from ((at, None) for at in range(len(data)))
    if replace:
        yield from ((at, byte) for at in range(len(data)) for byte in REPLACEMENTS if byte != data[at])


def make(data, variant):
    at, byte = variant
    return data[:at] if byte is None else data[:at] + bytes([byte]) + data[at + 1:]


def describe(variant):
    at, byte = variant
    return f"cut off at byte {at}" if byte is None else f"byte {at} replaced by {chr(byte)!r}"


class Runs:
    """Runs of variants, one after the other, in a folder of their own with the files that the piece includes."""

    def __init__(self, options, root):
        self.folder = tempfile.mkdtemp(dir=root)
        for name, source in included_files(options.piece):
            os.makedirs(os.path.dirname(os.path.join(self.folder, name)), exist_ok=True)
            shutil.copy(source, os.path.join(self.folder, name))
        self.process = subprocess.Popen([os.path.abspath(options.forked), str(TIME_LIMIT), "screen", "in.orlo", "out.sco"],
                                        cwd=self.folder, env=environment(), text=True, bufsize=1,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def make(self, text):
        """Runs a variant; returns its status and its screen."""
        with open(os.path.join(self.folder, "in.orlo"), "wb") as file:
            file.write(text)
        self.process.stdin.write("\n")
        return int(self.process.stdout.readline()), read_file(os.path.join(self.folder, "screen"))

    def end(self):
        """Ends the runs; what their last process ended with, leaks among it, is a failure of all."""
        status = self.process.communicate()[0].strip()
        if status not in ("", "0"):
            sys.exit(f"a process ended with {status} after its runs:\n"
                     + read_file(os.path.join(self.folder, "screen")).decode(errors="replace"))


def judge(variant, status, screen):
    """A variant with its status, None where it did not end in time, and with what is wrong, if anything."""
    if status == -signal.SIGALRM:
        return variant, None, f"still running after {TIME_LIMIT} seconds"
    fault = None
    if sanitizer_report(screen):
        fault = "a sanitizer report:\n" + screen.decode(errors="replace")
    elif status not in (0, 1):
        fault = f"ended with {status}:\n" + screen[-2000:].decode(errors="replace")
    elif status == 1 and not cut_banner(screen).strip():
        fault = "failed without a message"
    return variant, status, fault


def try_variants(options, data, variants, root):
    """Runs variants, one after the other; returns the result of each."""
    runs, results, failed = Runs(options, root), [], 0
    for variant in variants:
        results.append(judge(variant, *runs.make(make(data, variant))))
        failed += results[-1][2] is not None
        if failed == ENOUGH:
            break
    runs.end()
    return results


def run_variants(options, data, variants, root):
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        parts = pool.map(lambda part: try_variants(options, data, variants[part::options.jobs], root), range(options.jobs))
        results = [result for part in parts for result in part]
    late = [variant for variant, status, _ in results if status is None]
    if late:  # once more, one at a time: other work may have held them up
        results = [result for result in results if result[1] is not None]
        results += try_variants(options, data, late, root)
    return results


def main():
    parser = argparse.ArgumentParser(description="run broken variants of a piece")
    parser.add_argument("--forked", required=True, help="the program that runs orlo")
    parser.add_argument("--piece", required=True, help="the piece to break")
    parser.add_argument("--truncate", action="store_true", help="cut it off at every byte")
    parser.add_argument("--replace", type=int, metavar="N", help="replace one byte, N variants drawn at random")
    parser.add_argument("--all", action="store_true", help="cut off at, and replace, every byte by every replacement")
    parser.add_argument("--seed", type=int, default=1, help="of the draw (default: 1)")
    parser.add_argument("--jobs", type=int, default=len(os.sched_getaffinity(0)), help="runs at the same time")
    options = parser.parse_args()

    with open(options.piece, "rb") as file:
        data = file.read()
    variants = list(all_variants(data, options.truncate or options.all, options.all))
    if options.replace and not options.all:
        drawn = list(all_variants(data, False, True))
        variants += random.Random(options.seed).sample(drawn, min(options.replace, len(drawn)))
    if not variants:
        parser.error("nothing to do: give --truncate, --replace N or --all")

    memory = "/dev/shm"
    in_memory = os.path.isdir(memory) and os.access(memory, os.W_OK)
    with tempfile.TemporaryDirectory(prefix="orlo-break-", dir=memory if in_memory else None) as root:
        results = run_variants(options, data, variants, root)
    counts = collections.Counter("failed" if fault else status for _, status, fault in results)
    failures = sorted((result for result in results if result[2]), key=lambda result: result[0][0])
    print(f"{len(results)} of {len(variants)} broken variants of {options.piece} run: {counts[0]} ended with status 0, "
          f"{counts[1]} with status 1, {counts['failed']} failed")
    if not failures:
        return 0
    kept = tempfile.mkdtemp(prefix="orlo-broken-")
    for number, (variant, _, fault) in enumerate(failures[:KEPT], 1):
        path = os.path.join(kept, f"{number}.orlo")
        with open(path, "wb") as file:
            file.write(make(data, variant))
        print(f"{path}: {describe(variant)}: {fault}")
    return 1


if __name__ == "__main__":
    sys.exit(main())
