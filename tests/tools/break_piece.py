"""No broken piece may break the program: break_piece.py --orlo PROGRAM --piece FILE [--truncate] [--replace N | --all]

Makes broken variants of a piece, by cutting it off at every byte or by replacing one byte by another, and runs each.
Every run must end by itself within two seconds with status 0 or 1, and say something when it is 1; a signal, another
status or a sanitizer's report is a failure. The first failing variants are kept in a folder that is named at the end.
Files that the piece includes are found by their names, beside the piece, and stay whole.
"""

import argparse
import collections
import multiprocessing
import os
import random
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from run_case import cut_banner, environment, sanitizer_report
from pieces import included_files

REPLACEMENTS = b"{}()<>\"':/;#$~0xpi\0"
TIME_LIMIT = 2  # seconds that a run may take
KEPT = 5  # failing variants that are saved
ENOUGH = 50  # failures after which no more variants are run

orlo, piece = None, None  # of a worker


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


def start_worker(program, path, data, root):
    """Gives a worker a folder of its own, with the files that the piece includes."""
    global orlo, piece
    orlo, piece = program, data
    folder = tempfile.mkdtemp(dir=root)
    for name, source in included_files(path):
        os.makedirs(os.path.join(folder, os.path.dirname(name)), exist_ok=True)
        shutil.copy(source, os.path.join(folder, name))
    os.chdir(folder)
    os.environ.update(environment())


def try_variant(variant):
    """Runs one variant; returns it with its status and with what is wrong, if anything."""
    with open("in.orlo", "wb") as file:
        file.write(make(piece, variant))
    try:
        run = subprocess.run([orlo, "in.orlo", "out.sco"], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                             stderr=subprocess.PIPE, timeout=TIME_LIMIT, close_fds=False, check=False)
    except subprocess.TimeoutExpired:
        return variant, None, f"still running after {TIME_LIMIT} seconds"
    fault = None
    if sanitizer_report(run.stderr):
        fault = "a sanitizer report:\n" + run.stderr.decode(errors="replace")
    elif run.returncode not in (0, 1):
        fault = f"ended with {run.returncode}:\n" + run.stderr[-2000:].decode(errors="replace")
    elif run.returncode == 1 and not cut_banner(run.stderr).strip():
        fault = "failed without a message"
    return variant, run.returncode, fault


def run_variants(options, data, variants, root):
    """Runs the variants; returns the result of each."""
    setup = os.path.abspath(options.orlo), options.piece, data, root
    results, failed = [], 0
    with multiprocessing.Pool(options.jobs, start_worker, setup) as pool:
        for result in pool.imap_unordered(try_variant, variants, chunksize=32):
            results.append(result)
            failed += result[2] is not None
            if failed == ENOUGH:
                break
    late = [variant for variant, status, _ in results if status is None]
    if late:  # once more, one at a time: other work may have held them up
        results = [result for result in results if result[1] is not None]
        with multiprocessing.Pool(1, start_worker, setup) as pool:
            results += pool.map(try_variant, late)
    return results


def main():
    parser = argparse.ArgumentParser(description="run broken variants of a piece")
    parser.add_argument("--orlo", required=True, help="the program")
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
