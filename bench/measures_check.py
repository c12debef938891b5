#!/usr/bin/env python3
"""Computes the cells of `mirelo-batch measure` a second time and compares them.

    bench/measures_check.py path/to/mirelo-batch examples/specimen/specimen.sdf ...

Made stacks are measured after those that are named. Vertices come from the text of the stack file, calibration,
alignment and depth of the slices from `info`. The area of a surface is that of the triangles that `export` writes in
single precision. Prints the largest relative difference of each column (of positions relative to the largest
coordinate) and fails when one is more than rounding or a text, a count or an "NA" differs. Needs numpy.
"""
import argparse
import csv
import io
import json
import math
import os
import re
import subprocess
import sys
import tempfile

import numpy as np

UNITS = {-9: "nm", -6: "\u00b5m", -3: "mm", 0: "m"}
TOLERANCES = {"Area of surface": 2e-5}  # triangles in single precision
TOLERANCE = 1e-11
NA = math.nan


class Item:
    def __init__(self, model, slice_index, data):
        self.model, self.slice, self.data = model, slice_index, data


class Stack:
    """The models and items of a stack file, and where its slices lie."""

    def __init__(self, batch, filename):
        self.filename = filename
        self.info = json.loads(run(batch, "info", filename, "--json"))
        self.slices = self.info["slices"]
        self.unit = UNITS[self.info["lengthUnitScale"]]
        self.read_models(filename)
        self.compute_depths()
        self.compute_maps()

    def read_models(self, filename):
        self.models, self.items = {}, []
        places = {s["name"]: k for k, s in enumerate(self.slices)}
        for keyword, *arguments in statements(filename):
            if keyword == "MODEL":
                current = arguments[0]
                self.models[current] = "Polygon"
            elif keyword == "PRIMITIVE":
                self.models[current] = arguments[0]
            elif keyword == "MODELITEM":
                self.items.append(Item(arguments[0], places[arguments[1]], np.zeros((0, 2))))
            elif keyword == "MODELITEMDATA":
                self.items[-1].data = np.array([[int(n) for n in a.split(",")] for a in arguments], dtype=float)
        self.items.sort(key=lambda item: item.slice)  # stable: the order of the file within a slice

    def compute_depths(self):
        """Depths, kept in single precision as the file states them; a first slice that is relative lies at 0."""
        depths, sums = [], []
        for k, s in enumerate(self.slices):
            if not s["relative"]:
                sums.append(float(np.float32(s["absolutePosition"])))
            else:
                sums.append(sums[-1] + float(np.float32(s["relativePosition"])) if k > 0 else 0)
            depths.append(np.float32(sums[-1]))
        self.relative = [np.float32(s["relativePosition"]) for s in self.slices]
        for k, s in enumerate(self.slices):
            if not s["relative"]:
                self.relative[k] = depths[k] - depths[k - 1] if k > 0 else np.float32(0)
        sign = -1 if self.info["invertZAxis"] else 1
        self.z = [sign * float(depth) for depth in depths]

    def compute_maps(self):
        theta, shift = 0.0, np.zeros(2)
        self.maps = []
        for s in self.slices:
            pw, ph = float(np.float32(s["pixelWidth"])), float(np.float32(s["pixelHeight"]))
            hs, vs = s["shift"]
            width, height = s["imageSize"]
            co, si = math.cos(theta), math.sin(theta)
            shift = shift + [co * pw * hs + si * ph * vs, si * pw * hs - co * ph * vs]
            theta -= float(np.float32(s["rotation"])) * math.pi / 180
            co, si = math.cos(theta), math.sin(theta)
            turn = np.array([[pw * co, ph * si], [pw * si, -ph * co]])
            self.maps.append((turn, shift - turn @ [width * 0.5, height * 0.5]))

    def pixel_area(self, k):
        return abs(np.linalg.det(self.maps[k][0]))

    def pixels(self, item):
        if self.models[item.model] != "Region":
            return item.data[:, :2]
        runs = [np.column_stack((np.full(int(n), x), y + np.arange(n))) for x, y, n in item.data]
        return np.concatenate(runs) if runs else np.zeros((0, 2))

    def points(self, item):
        turn, shift = self.maps[item.slice]
        return self.pixels(item) @ turn.T + shift

    def of_model(self, name):
        return [item for item in self.items if item.model == name]


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def statements(filename):
    """Keyword and arguments of each statement of a stack file without escapes but for the quote."""
    with open(filename, encoding="utf-8") as file:
        text = "".join(line for line in file if not line.startswith("#"))
    for statement in text.split(";"):
        words = [(a or b).replace("__DQ__", '"') for a, b in re.findall(r'"([^"]*)"|([^\s"]+)', statement)]
        if words:
            yield words


def mean(points):
    return points.mean(axis=0) if len(points) else np.full(points.shape[1], NA)


def enclosed(points):
    x, y = points.T - (points[:1].T if len(points) else 0)
    return abs(np.sum(x * np.roll(y, -1) - np.roll(x, -1) * y)) / 2


def length(points, is_closed):
    steps = np.diff(np.concatenate((points, points[:1] if is_closed else points[:0])), axis=0)
    return np.sum(np.hypot(steps[:, 0], steps[:, 1]))


def item_area(stack, item):
    if stack.models[item.model] == "Region":
        return len(stack.pixels(item)) * stack.pixel_area(item.slice)
    return enclosed(stack.points(item))


def num_components(pixels):
    """Parts of a region that connect through the sides of pixels."""
    left, count = {tuple(p) for p in pixels.astype(int)}, 0
    while left:
        count, front = count + 1, [left.pop()]
        while front:
            x, y = front.pop()
            for neighbour in ((x + 1, y), (x - 1, y), (x, y + 1), (x, y - 1)):
                if neighbour in left:
                    left.remove(neighbour)
                    front.append(neighbour)
    return count


def heights(stack, items):
    """The height of each curve that has an extent."""
    result = []
    for item in items:
        geometry, points = stack.models[item.model], stack.points(item)
        if geometry == "Region":
            result += [stack.z[item.slice]] * num_components(stack.pixels(item))
        elif len(points) >= (3 if geometry == "Polygon" else 2) and length(points, geometry == "Polygon") > 0:
            result.append(stack.z[item.slice])
    return result


def surface_area(stack, name, surfaces):
    levels = heights(stack, stack.of_model(name))
    if any(a == b for a, b in zip(levels, levels[1:])):
        return NA
    if len(levels) < 2:
        return 0.0
    with open(os.path.join(surfaces, f"{stack.info['name']}-{name}.obj"), encoding="utf-8") as file:
        rows = [line.split() for line in file]
    vertices = np.array([row[1:4] for row in rows if row and row[0] == "v"], dtype=float)
    faces = np.array([[n.split("/")[0] for n in row[1:4]] for row in rows if row and row[0] == "f"], dtype=int) - 1
    a, b, c = (vertices[faces[:, i]] for i in range(3))
    return np.sum(np.linalg.norm(np.cross(b - a, c - a), axis=1)) / 2


def volume(stack, items):
    areas = np.zeros(len(stack.slices))
    for item in items:
        areas[item.slice] += item_area(stack, item)
    total = z_before = area_before = 0.0
    last = None
    for k, area in enumerate(areas):
        if area > 0:
            total += abs(stack.z[k] - z_before) * area_before
            z_before, area_before, last = stack.z[k], area, k
    return total if last is None else total + area_before * abs(float(stack.relative[last]))


def model_sheet(stack, surfaces):
    u = stack.unit
    header = ["Model", "Primitive", "Vertices"] + [f"Average{c} [{u}]" for c in "XYZ"]
    yield header + ["Contours", f"Area [{u}^2]", f"Volume [{u}^3]"]
    for name, geometry in stack.models.items():
        items = stack.of_model(name)
        points = [np.column_stack((p, np.full(len(p), stack.z[i.slice]))) for i in items for p in [stack.points(i)]]
        points = np.concatenate(points) if points else np.zeros((0, 3))
        is_surface = geometry != "Polypoint"
        yield [name, geometry, len(points), *mean(points), len(items) if is_surface else NA,
               surface_area(stack, name, surfaces) if is_surface else NA,
               volume(stack, items) if geometry in ("Polygon", "Region") else NA]


def slice_sheet(stack):
    yield ["Slice"] + list(stack.models)
    for k, s in enumerate(stack.slices):
        counts = dict.fromkeys(stack.models, 0)
        for item in stack.items:
            if item.slice == k:
                counts[item.model] += len(item.data) if stack.models[item.model] == "Polypoint" else 1
        yield [s["name"]] + list(counts.values())


def item_sheet(stack, name):
    geometry, u = stack.models[name], stack.unit
    if geometry == "Polypoint":
        yield ["Slice", f"X [{u}]", f"Y [{u}]", f"Z [{u}]"]
    else:
        area = [f"Area [{u}^2]"] if geometry != "Polyline" else []
        yield ["Slice", "Vertices", f"Length [{u}]"] + area + [f"AverageX [{u}]", f"AverageY [{u}]", f"Z [{u}]"]
    for item in stack.of_model(name):
        place, z, points = stack.slices[item.slice]["name"], stack.z[item.slice], stack.points(item)
        if geometry == "Polypoint":
            yield from ([place, x, y, z] for x, y in points)
            continue
        sizes = [NA if geometry == "Region" else length(points, geometry == "Polygon")]
        if geometry != "Polyline":
            sizes.append(item_area(stack, item))
        yield [place, len(points), *sizes, *mean(points), z]


def fail(*what):
    sys.exit(" ".join(str(w) for w in what))


def flat(row):
    """The cells of a row of JSON, for the order of the columns."""
    for key, value in row.items():
        if isinstance(value, dict):
            yield from value.values()
        elif key == "average":
            yield from value if value is not None else [None] * (3 if "model" in row else 2)
        else:
            yield value


def difference(cell, value, column, where):
    """|difference| of a cell of text and a number."""
    if isinstance(value, str) or (isinstance(value, float) and math.isnan(value)):
        if cell != (value if isinstance(value, str) else "NA"):
            fail(where, column, cell, "instead of", value)
        return 0.0
    if isinstance(value, int) and cell != str(value):
        fail(where, column, cell, "instead of", value)
    return abs(float(cell) - value) if cell != "NA" else fail(where, column, "NA instead of", value)


def compare(batch, stack, sheet, expected, differences, *options):
    expected = [list(row) for row in expected]
    command = [batch, "measure", stack.filename, "--sheet", sheet, *options]
    table = list(csv.reader(io.StringIO(run(*command), newline="")))
    rows = json.loads(run(*command, "--json"))
    where = f"{stack.filename}, {sheet} {options}:"
    if table[0] != expected[0] or len(table) != len(expected) or len(rows) != len(table) - 1:
        fail(where, "the header or the number of rows differs", table[0], expected[0], len(table), len(expected))
    extent = max([1e-300] + [abs(v) for row in expected[1:] for name, v in zip(expected[0], row)
                             if is_position(name) and not math.isnan(v)])
    for cells, row, values in zip(table[1:], rows, expected[1:]):
        as_text = ["NA" if v is None else v if isinstance(v, str) else float(v) for v in flat(row)]
        present = [c if isinstance(v, str) else float(c) for c, v in zip(cells, as_text)]
        if sheet == "models":  # columns that a geometry does not have are null
            as_text = (as_text + ["NA"] * 3)[:len(cells)]
        if [str(a) for a in as_text] != [str(p) for p in present] + cells[len(present):]:
            fail(where, "JSON and CSV differ", as_text, cells)
        for column, cell, value in zip(expected[0], cells, values):
            key = column_key(sheet, column)
            scale = extent if is_position(column) else abs(value) if isinstance(value, float) and value else 1
            differences[key] = max(differences.get(key, 0), difference(cell, value, column, where) / scale)


def is_position(column):
    return re.match(r"(Average)?[XYZ] \[", column) is not None


def column_key(sheet, column):
    if sheet == "slices":
        return "slices: " + ("Slice" if column == "Slice" else "counts")
    name = column.split(" [")[0]
    return "models: Area of surface" if (sheet, name) == ("models", "Area") else f"{sheet}: {name}"


def check(batch, filename):
    stack = Stack(batch, filename)
    differences = {}
    with tempfile.TemporaryDirectory() as surfaces:
        run(batch, "export", filename, "--out", surfaces, "--format", "obj", "--triangulate")
        compare(batch, stack, "models", model_sheet(stack, surfaces), differences)
    compare(batch, stack, "slices", slice_sheet(stack), differences)
    for name in stack.models:
        compare(batch, stack, "items", item_sheet(stack, name), differences, "--model", name)
    print(f"{filename}: {len(stack.slices)} slices, {len(stack.items)} items, {stack.unit}")
    for key, value in differences.items():
        print(f"  {key:28} {value:.1e}")
        if not value <= TOLERANCES.get(key.split(": ")[1], TOLERANCE):
            fail(key, "differs")


def ring(random, center, radius, number):
    """A contour with an irregular radius, so that no two ways to join it to the next are equally good."""
    angles = np.sort(random.uniform(0, 2 * math.pi, number))
    radii = radius * random.uniform(0.7, 1.1, number)
    return np.rint(np.column_stack((np.cos(angles), np.sin(angles))) * radii[:, None] + center).astype(int)


def data(rows):
    return "MODELITEMDATA " + " ".join(",".join(str(int(n)) for n in row) for row in rows) + ";\n"


def item(model, k, rows):
    data = " ".join(",".join(str(int(n)) for n in row) for row in rows)
    return f'MODELITEM "{model}" "{k}";\nMODELITEMDATA {data};\n'


def made_items(random, k):
    """Items of each geometry on slice k; some slices have none, one or several of them."""
    center = 40 * np.array([math.cos(k / 9), math.sin(k / 7)])
    if k % 5 != 3:
        yield item("simple", k, ring(random, center + 100, 60 + k % 17, 30 + k % 4)[::1 if k % 2 else -1])
        yield item("a, __DQ__line__DQ__", k, ring(random, -center, 90, 12))
    for part in range(k % 4):
        yield item("branching", k, ring(random, center + 3000 * part, 500, 9))
    yield item("points", k, random.integers(-100000, 100000, (k % 6 + 1, 2)))
    if k % 3 == 0:
        yield item("parts", k, [(x, 5 * part - 10, 3) for part in range(1 + k % 2) for x in range(-7, 9 + k % 7)])
    if k % 7 < 3:
        yield item("stain", k, [(x, -abs(x - 20) // 2, 31 + x) for x in range(40)])
    if k == 2:
        yield item("crossing", k, [(0, 0), (7, 7), (7, 0), (0, 7), (-9, 3)])
    if k == 4:
        yield item("without extent", k, [(3, 3)])


def made_stack(random, name, header, num_slices, slice_statements):
    text = f'FileFormatVersion 1.05;\nSTACK "{name}";\n{header}'
    for k in range(num_slices):
        turn = f"ROTATE {random.uniform(-180, 180):.2f};\nSHIFT {' '.join(map(str, random.integers(-900, 900, 2)))};\n"
        size = f"SliceSize1 {301 + 2 * k};\nSliceSize2 {512 - k};\n"
        text += f'SLICE "{k}" "missing-{k}.tif";\n' + size + turn + slice_statements(k)
    geometries = {"simple": "Polygon", "branching": "Polygon", "crossing": "Polygon", "without extent": "Polygon",
                  "nothing": "Polygon", "a, __DQ__line__DQ__": "Polyline", "no line": "Polyline", "points": "Polypoint",
                  "no point": "Polypoint", "parts": "Region", "stain": "Region", "no region": "Region"}
    for model, geometry in geometries.items():
        text += f'MODEL "{model}";\nPRIMITIVE {geometry};\n'
    return text + "".join(text for k in range(num_slices) for text in made_items(random, k))


def made_stacks():
    """Many slices of varying pixels, most at absolute depths, upside down; some very small; some at one height."""
    def varying(k):
        depth = f"POSITION {-5000 + 70.25 * k};\n" if k % 10 < 8 else f"RELPOSITION {33.125 + k};\n"
        return f"PIXWIDTH {64.5 + k % 3};\nPIXASPECT {0.37 + k % 2};\n" + depth

    def downwards(k):
        return f"POSITION {-1e-6 * k * k:.9f};\n" if k % 3 == 2 else ""

    random = np.random.default_rng(12)
    yield made_stack(random, "varying", "LengthUnitScale -9;\nInvertZAxis true;\n", 200, varying)
    small = "LengthUnitScale -3;\nPIXASPECT 2.5;\nPIXWIDTH 0.00025;\nRELPOSITION 0.0013;\n"
    yield made_stack(random, "small", small, 12, downwards)
    yield made_stack(random, "level", "InvertZAxis true;\nRELPOSITION 0;\nLengthUnitScale 0;\n", 6, lambda k: "")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("batch", help="the program mirelo-batch")
    parser.add_argument("stacks", nargs="*", help="stack files")
    arguments = parser.parse_args()
    for filename in arguments.stacks:
        check(arguments.batch, filename)
    with tempfile.TemporaryDirectory() as folder:
        for k, text in enumerate(made_stacks()):
            filename = os.path.join(folder, f"made-{k}.sdf")
            with open(filename, "w", encoding="utf-8") as file:
                file.write(text)
            check(arguments.batch, filename)


if __name__ == "__main__":
    main()
