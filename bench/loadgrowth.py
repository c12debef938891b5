#!/usr/bin/env python3
"""How the times and the memory of a user's steps grow with the number of slices.

    xvfb-run -a bench/loadgrowth.py build/release/bench/load_stack [--most GROWTH] [SLICES SLICES ...]

Runs load_stack for each number of slices, 100 and 1000 unless given, and prints its figures side by side. "growth" is the
ratio of the last figure to the first one over the ratio of the numbers of slices: 1 is linear, what does not depend on the
number is far below. Fails when a growth is above the most that is allowed.
"""

import argparse
import re
import subprocess
import sys


def figures(program, slices):
    """Of each step the milliseconds (the median of many) and the peak of the memory after it in megabytes."""
    output = subprocess.run([program, str(slices)], check=True, capture_output=True, text=True).stdout
    found = []
    for line in output.splitlines():
        match = re.match(r"([^:]+): (?:median )?([\d.e+]+) ms.* peak (\d+) MB", line)
        if match:
            found.append((match[1] + " [ms]", float(match[2])))
            found.append(("peak memory after it [MB]", float(match[3])))
    return found


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("slices", nargs="*", type=int, default=[100, 1000])
    parser.add_argument("--most", type=float, default=float("inf"))
    arguments = parser.parse_args()
    numbers = arguments.slices
    columns = [figures(arguments.program, number) for number in numbers]
    greatest = 0
    print(f"{'':36}" + "".join(f"{number:>10}" for number in numbers) + "    growth")
    for steps in zip(*columns):
        values = [value for _, value in steps]
        growth = values[-1] / values[0] / (numbers[-1] / numbers[0])
        greatest = max(greatest, growth)
        print(f"{steps[0][0]:36}" + "".join(f"{value:10.4g}" for value in values) + f"{growth:10.2f}")
    if greatest > arguments.most:
        sys.exit(f"a growth of {greatest:.2f} is more than {arguments.most}")


if __name__ == "__main__":
    main()
