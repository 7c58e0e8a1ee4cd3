"""What the checks of runs under faults share: a piece, its score, files in the working folder, waiting."""

import time

TIME_LIMIT = 60  # seconds that a run may take

PIECE = b"i1 = 3 0 1 {\np2 1\np3 1\n}\n"
SCORE = b"\n;I-block #1 (i1):\ni1    0.000  1.000 \n\ne\n"


class Failure(Exception):
    """What a check finds wrong."""


def must(condition, text):
    if not condition:
        raise Failure(text)


def write(name, data):
    with open(name, "wb") as file:
        file.write(data)


def read(name):
    with open(name, "rb") as file:
        return file.read()


def wait_for(what, happened):
    last = time.monotonic() + TIME_LIMIT
    while not happened():
        must(time.monotonic() < last, f"waited in vain for {what}")
        time.sleep(0.005)
