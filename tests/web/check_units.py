"""The npm package's own tests: check_units.py --orlo PROGRAM --work FOLDER"""

import argparse
import os
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, HERE)
from web_package import Failed, add_arguments, package_of, run


def main():
    parser = argparse.ArgumentParser(description="run the npm package's own tests")
    add_arguments(parser)
    try:
        print(run(["npm", "test"], package_of(parser.parse_args())))
    except Failed as failed:
        print(failed)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
