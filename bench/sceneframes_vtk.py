"""The scene of scene_frames drawn by VTK (Debian package python3-vtk9), under the same software renderer:

    xvfb-run -a /usr/bin/python3 bench/sceneframes_vtk.py build/release/bench/scene_frames [SAMPLES]

Runs both, one after the other and once more, and prints the ratio of the medians.
"""
import math
import re
import statistics
import subprocess
import sys
import time

import vtk

WIDTH, HEIGHT, COUNT, TRIANGLES, FRAMES = 800, 600, 1000, 1000, 40


def ball(rings, center, radius):
    columns = 2 * rings
    points, cells = vtk.vtkPoints(), vtk.vtkCellArray()

    def add(x, y, z):
        points.InsertNextPoint(*(c + radius * v for c, v in zip(center, (x, y, z))))

    def triangle(*corners):
        cells.InsertNextCell(3)
        for corner in corners:
            cells.InsertCellPoint(corner)

    def at(i, j):
        return 1 + (i - 1) * columns + j % columns

    add(0, 0, -1)
    for i in range(1, rings + 1):
        for j in range(columns):
            u, v = math.pi * (i / (rings + 1) - 0.5), 2 * math.pi * j / columns
            add(math.cos(u) * math.cos(v), math.cos(u) * math.sin(v), math.sin(u))
    add(0, 0, 1)
    last = 1 + rings * columns
    for j in range(columns):
        triangle(0, at(1, j + 1), at(1, j))
        for i in range(1, rings):
            triangle(at(i, j), at(i, j + 1), at(i + 1, j + 1))
            triangle(at(i, j), at(i + 1, j + 1), at(i + 1, j))
        triangle(last, at(rings, j), at(rings, j + 1))
    mesh = vtk.vtkPolyData()
    mesh.SetPoints(points)
    mesh.SetPolys(cells)
    normals = vtk.vtkPolyDataNormals()
    normals.SetInputData(mesh)
    normals.SplittingOff()
    normals.ConsistencyOff()
    normals.Update()
    return normals.GetOutput()


def vtk_median(samples):
    renderer, window = vtk.vtkRenderer(), vtk.vtkRenderWindow()
    window.SetOffScreenRendering(1)
    window.SetMultiSamples(samples)
    window.SetSize(WIDTH, HEIGHT)
    window.AddRenderer(renderer)
    side, rings = math.ceil(COUNT ** (1 / 3)), round(math.sqrt(TRIANGLES / 4))
    for n in range(COUNT):
        mapper, actor = vtk.vtkPolyDataMapper(), vtk.vtkActor()
        mapper.SetInputData(ball(rings, (n % side, n // side % side, n // side // side), 0.4))
        actor.SetMapper(mapper)
        properties = actor.GetProperty()
        properties.SetColor(200 / 255, 120 / 255, 60 / 255)
        properties.SetSpecular(1)
        properties.SetSpecularPower(32)
        renderer.AddActor(actor)
    renderer.RemoveAllLights()
    light = vtk.vtkLight()
    light.SetLightTypeToHeadlight()
    renderer.AddLight(light)
    bounds = renderer.ComputeVisiblePropBounds()
    size = math.dist(bounds[0::2], bounds[1::2]) / 2
    camera = renderer.GetActiveCamera()
    camera.ParallelProjectionOn()
    renderer.ResetCamera()
    camera.SetParallelScale(size * HEIGHT / WIDTH)  # scene_frames draws in a square as wide as its picture
    camera.Elevation(20)
    times = []
    for _ in range(FRAMES + 1):
        camera.Azimuth(9)
        renderer.ResetCameraClippingRange()
        start = time.perf_counter()
        window.Render()
        window.WaitForCompletion()
        times.append(1000 * (time.perf_counter() - start))
    return statistics.median(times[1:])


def our_median(program, samples):
    text = subprocess.run([program, str(COUNT), str(TRIANGLES), str(samples)], check=True, capture_output=True, text=True).stdout
    return float(re.search(r"median ([\d.]+)", text)[1])


def main():
    samples = int(sys.argv[2]) if len(sys.argv) > 2 else 0
    for _ in range(2):
        ours, theirs = our_median(sys.argv[1], samples), vtk_median(samples)
        print(f"{samples} samples: scene_frames {ours:.1f} ms, VTK {theirs:.1f} ms, ratio {ours / theirs:.2f}")


main()
