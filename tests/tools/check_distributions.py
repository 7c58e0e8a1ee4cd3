"""The seven distributions of RA look like their formulas: check_distributions.py --orlo PROGRAM

For each range letter the program writes a block of 100,000 events whose p4 is RA(T 1 [LETTER 0 1]) with seven digits.
Of a formula's quantile for q, a share of q of the values must lie below it. That share has the standard deviation
sqrt(q * (1 - q) / N), the mean of the values that of the distribution divided by sqrt(N). Both may be off by 4.5 of
their standard deviations: seven distributions with eight such numbers each pass by chance but for one seed in
2,600. The seed is fixed, so a program that passes goes on passing until its draws change.

The outer quantiles are those for 0.05 and 0.95: closer to the ends seven digits do not tell beta values apart.
"""

import argparse
import bisect
import math
import os
import subprocess
import sys
import tempfile

EVENTS = 100_000
SEED = 1
TOLERANCE = 4.5  # standard deviations
SHARES = (0.05, 0.1, 0.25, 0.5, 0.75, 0.9, 0.95)

RATE = 6.9078           # of the exponential distribution, whose values above 1 count as 1
GAUSS_WIDTH = 0.155     # standard deviation of the sum of 12 draws, before it is cut to 0..1
BILATERAL_RATE = 14.0   # on each side of the middle
BETA_SHAPE = 0.2        # of both ends


def solve(share, function):
    """Where a function that rises from 0 to 1 over 0..1 takes a value."""
    low, high = 0.0, 1.0
    for _ in range(60):
        middle = (low + high) / 2
        low, high = (middle, high) if function(middle) < share else (low, middle)
    return (low + high) / 2


def exponential(share):
    return min(-math.log(1 - share) / RATE, 1.0)


def triangular(share):
    return math.sqrt(share / 2) if share < 0.5 else 1 - math.sqrt((1 - share) / 2)


def sum_of_twelve(total):
    """Probability that twelve uniform draws add up to no more than a total."""
    terms = ((-1) ** k * math.comb(12, k) * (total - k) ** 12 for k in range(math.floor(total) + 1))
    return math.fsum(terms) / math.factorial(12)


def gaussian(share):
    return solve(share, lambda value: sum_of_twelve((value - 0.5) / GAUSS_WIDTH + 6))


def bilateral(share):
    offset = math.log(2 * min(share, 1 - share)) / BILATERAL_RATE
    return 0.5 + (offset if share < 0.5 else -offset)


def beta_below_middle(value, steps=200):
    """Probability of no more than a value up to 0.5, not yet divided by the total.

    With x = y ** (1 / shape) the density's pole at 0 goes away: what is left is smooth, for Simpson's rule.
    """
    end = value ** BETA_SHAPE
    weights = [1] + [4 if i % 2 else 2 for i in range(1, steps)] + [1]
    heights = ((1 - (end * i / steps) ** (1 / BETA_SHAPE)) ** (BETA_SHAPE - 1) for i in range(steps + 1))
    return math.fsum(w * h for w, h in zip(weights, heights)) * end / steps / 3


def beta(share):
    half = beta_below_middle(0.5)
    below = solve(min(share, 1 - share), lambda value: beta_below_middle(min(value, 0.5)) / half / 2)
    return below if share < 0.5 else 1 - below


def exponential_moments():
    mean = (1 - math.exp(-RATE)) / RATE
    square = 2 / RATE ** 2 * (1 - math.exp(-RATE) * (1 + RATE))
    return mean, square - mean ** 2


LOW_MEAN, LOW_VARIANCE = exponential_moments()

# letter: name, quantile for a share, mean, variance
DISTRIBUTIONS = {
    "f": ("uniform", lambda share: share, 0.5, 1 / 12),
    "l": ("exponential, low", exponential, LOW_MEAN, LOW_VARIANCE),
    "h": ("exponential, high", lambda share: 1 - exponential(1 - share), 1 - LOW_MEAN, LOW_VARIANCE),
    "t": ("triangular", triangular, 0.5, 1 / 24),
    "g": ("gaussian", gaussian, 0.5, GAUSS_WIDTH ** 2),
    "x": ("bilateral", bilateral, 0.5, 2 / BILATERAL_RATE ** 2),
    "b": ("beta", beta, 0.5, 1 / (4 * (2 * BETA_SHAPE + 1))),
}


def draw(orlo, letter):
    """The values of p4, in rising order."""
    with tempfile.TemporaryDirectory() as folder:
        with open(os.path.join(folder, "in.orlo"), "w", encoding="ascii") as file:
            file.write(f"rs({SEED})\ni1 = 4 0 -{EVENTS} {{\np2 .001\np3 1\np4 (re7) RA(T 1 [{letter} 0 1])\n}}\n")
        run = subprocess.run([orlo, "-s", "in.orlo", "out.sco"], cwd=folder, capture_output=True, check=False)
        if run.returncode != 0:
            sys.exit(f"{letter}: the program ended with status {run.returncode}: {run.stderr.decode('latin-1')}")
        with open(os.path.join(folder, "out.sco"), encoding="ascii") as file:
            values = sorted(float(line.split()[3]) for line in file if line.startswith("i1 "))
    if len(values) != EVENTS:
        sys.exit(f"{letter}: {len(values)} events in the score instead of {EVENTS}")
    return values


def check(orlo, letter):
    """Print one line about a distribution; False when it is not what its formula says."""
    name, quantile, mean, variance = DISTRIBUTIONS[letter]
    values = draw(orlo, letter)
    inside = 0 <= values[0] and values[-1] <= 1
    drawn = math.fsum(values) / EVENTS
    off = [abs(drawn - mean) / math.sqrt(variance / EVENTS)]
    for share in SHARES:
        below = bisect.bisect_right(values, quantile(share)) / EVENTS
        off.append(abs(below - share) / math.sqrt(share * (1 - share) / EVENTS))
    good = inside and max(off) <= TOLERANCE
    print(f"{'ok' if good else 'FAIL'}: {letter} {name}: {values[0]:.7f} to {values[-1]:.7f}, mean {drawn:.5f} "
          f"({mean:.5f} by the formula, {off[0]:.1f} deviations off), "
          f"quantiles at most {max(off[1:]):.1f} deviations off")
    return good


def main():
    parser = argparse.ArgumentParser(description="compare the distributions of RA with their formulas")
    parser.add_argument("--orlo", required=True, help="the program to test")
    orlo = os.path.abspath(parser.parse_args().orlo)
    return 0 if all([check(orlo, letter) for letter in DISTRIBUTIONS]) else 1


if __name__ == "__main__":
    sys.exit(main())
