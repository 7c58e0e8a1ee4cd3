"""What an event costs: memory.py --orlo PROGRAM [--events N] [--limit BYTES]

Runs a block of N events with four literal p-fields, then one of 2N events, and prints the time and the peak memory of
each per event; what a run with one event takes is not counted. With --limit, ends with 1 when an event takes more
bytes than that in the first run, and leaves the second run out: memory does not depend on what else the machine does.
"""

import argparse
import os
import subprocess
import sys
import tempfile
import time

PIECE = """i1 = 5 0 -{events} {{
p2 .001
p3 .5
p4 1000
p5 60
}}
"""


def run(orlo, events, folder):
    """Seconds and peak memory in bytes of a run that makes so many events."""
    piece, score = os.path.join(folder, "in.orlo"), os.path.join(folder, "out.sco")
    with open(piece, "w", encoding="ascii") as file:
        file.write(PIECE.format(events=events))
    start = time.perf_counter()
    child = subprocess.Popen([orlo, "-s", piece, score], stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(child.pid, 0)
    seconds = time.perf_counter() - start
    if status != 0:
        sys.exit(f"a run of {events} events ended with {os.waitstatus_to_exitcode(status)}")
    with open(score, encoding="ascii") as file:
        written = sum(line.startswith("i1 ") for line in file)
    if written != events:
        sys.exit(f"a run of {events} events wrote {written}")
    return seconds, usage.ru_maxrss * 1024


def main():
    parser = argparse.ArgumentParser(description="measure what an event costs")
    parser.add_argument("--orlo", required=True, help="the program")
    parser.add_argument("--events", type=int, default=1_000_000)
    parser.add_argument("--limit", type=float, help="bytes that an event may take")
    options = parser.parse_args()

    orlo, cost = os.path.abspath(options.orlo), {}
    with tempfile.TemporaryDirectory(prefix="orlo-bench-") as folder:
        base_seconds, base = run(orlo, 1, folder)
        for events in [options.events] if options.limit else [options.events, 2 * options.events]:
            seconds, memory = run(orlo, events, folder)
            cost[events] = (memory - base) / events
            print(f"{events} events: {seconds:.2f} s, {(seconds - base_seconds) / events * 1e6:.3f} us an event; "
                  f"{memory / 2**20:.1f} MiB, {cost[events]:.1f} bytes an event")
    if options.limit and cost[options.events] > options.limit:
        print(f"more than {options.limit:g} bytes an event")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
