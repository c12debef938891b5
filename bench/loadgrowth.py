#!/usr/bin/env python3
"""How the times and the memory of a user's steps grow with the number of slices.

    xvfb-run -a bench/loadgrowth.py build/release/bench/load_stack [SLICES SLICES ...]     100 and 1000 unless given

Runs load_stack for each number of slices and prints its figures side by side. "growth" is the ratio of the last figure to
the first one over the ratio of the numbers of slices: 1 is linear, what does not depend on the number is far below.
"""

import re
import subprocess
import sys


def figures(program, slices):
    """Of each step the milliseconds (the median of many) and the peak of the memory after it in megabytes."""
    output = subprocess.run([program, str(slices)], check=True, capture_output=True, text=True).stdout
    found = {}
    for line in output.splitlines():
        match = re.match(r"([^:]+): (?:median )?([\d.e+]+) ms.* peak (\d+) MB", line)
        if match:
            found[match[1] + " [ms]"] = float(match[2])
            found["peak memory after it [MB]" + " " * len(found)] = float(match[3])
    return found


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    numbers = [int(argument) for argument in sys.argv[2:]] or [100, 1000]
    columns = [figures(sys.argv[1], number) for number in numbers]
    print(f"{'':36}" + "".join(f"{number:>10}" for number in numbers) + "    growth")
    for step in columns[0]:
        growth = columns[-1][step] / columns[0][step] / (numbers[-1] / numbers[0])
        print(f"{step.strip():36}" + "".join(f"{column[step]:10.4g}" for column in columns) + f"{growth:10.2f}")


if __name__ == "__main__":
    main()
