"""Measure orlo as a WebAssembly module: modules.py --orlo PROGRAM --measure PROGRAM --package FOLDER [--rounds N]

Prints the size of every module, and the time of a run of 200,000 events against the native program: the two take turns, and the
median of their ratios counts. The module runs in Node on files in memory, each time in a fresh instance; the first run, which is
compiled while it runs, is told apart. Ends with 1 when a target is missed.
"""

import argparse
import os
import statistics
import subprocess
import sys
import tempfile

import make_inputs
from run import print_target

HERE = os.path.dirname(os.path.abspath(__file__))
EVENTS = 200_000
MODULES = ("orlo.wasm", "orlo-explain.wasm", "orlo-view.wasm")
MOST_KILOBYTES = 180  # of orlo.wasm
MOST_RATIO = 1.7      # of the time of the native program
MOST_SMALL = 2.0      # milliseconds of the shortest run


class Module:
    """The package in one process of Node."""

    def __init__(self, package, piece):
        self.node = subprocess.Popen(["node", os.path.join(HERE, "modules.mjs"), package, piece], stdin=subprocess.PIPE,
                                     stdout=subprocess.PIPE, text=True)

    def ask(self, what):
        self.node.stdin.write(what + "\n")
        self.node.stdin.flush()
        answer = self.node.stdout.readline().split()
        if not answer:
            sys.exit("the module's process has ended")
        return [float(number) for number in answer]


def native_milliseconds(options, piece, out):
    run = subprocess.run([options.measure, out + ".screen", options.orlo, "-s", piece, out], capture_output=True, text=True, check=True)
    own, systems, _ = run.stdout.split()
    return (float(own) + float(systems)) * 1e3


def main():
    parser = argparse.ArgumentParser(description="measure orlo as a WebAssembly module")
    parser.add_argument("--orlo", required=True, help="the native program")
    parser.add_argument("--measure", required=True, help="the program that runs others")
    parser.add_argument("--package", required=True, type=os.path.abspath, help="the npm package, built")
    parser.add_argument("--rounds", type=int, default=25)
    options = parser.parse_args()
    if not os.path.exists(os.path.join(options.package, "dist", MODULES[0])):
        print("the package is not built: cd web && npm ci --ignore-scripts && npm run build")
        return 0

    with tempfile.TemporaryDirectory(prefix="orlo-bench-") as folder:
        piece, out = os.path.join(folder, "in.orlo"), os.path.join(folder, "out.sco")
        with open(piece, "w", encoding="ascii") as file:
            file.writelines(make_inputs.INPUTS["drawn"][1](EVENTS))
        module = Module(options.package, piece)
        print(f"\n{'module':20} {'bytes':>8} {'brotli':>8}")
        sizes = {name: module.ask("size " + name) for name in MODULES if os.path.exists(os.path.join(options.package, "dist", name))}
        for name, (raw, brotli) in sizes.items():
            print(f"{name:20} {raw:8.0f} {brotli:8.0f}")
        first = module.ask("run")[0]
        small = [module.ask("small")[0] for _ in range(options.rounds)]
        pairs = [(module.ask("run")[0], native_milliseconds(options, piece, out)) for _ in range(options.rounds)]
    ratios = [mine / native for mine, native in pairs]
    print(f"\n{EVENTS} events: native {statistics.median(native for _, native in pairs):.1f} ms, module "
          f"{statistics.median(mine for mine, _ in pairs):.1f} ms, its first run {first:.1f} ms\n")
    low, _, high = statistics.quantiles(ratios)
    met = [print_target("orlo.wasm: kilobytes", sizes[MODULES[0]][0] / 1e3, MOST_KILOBYTES),
           print_target(f"{EVENTS} events: time of the native program", statistics.median(ratios), MOST_RATIO, f"{low:.2f}-{high:.2f}"),
           print_target("the shortest run, with its instance: ms", statistics.median(small), MOST_SMALL)]
    return 0 if all(met) else 1


if __name__ == "__main__":
    sys.exit(main())
