#include "geometry/curveprocessing/douglaspeuckercurvedecimation.h"
#include "geometry/curvestacktriangulation2.h"
#include "geometry/optimaltriangulation.h"
#include "geometry/polygontriangulation.h"
#include "geometry/quadmesh.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <numbers>
#include <sstream>

namespace
{

/// A wobbling clockwise contour, another one at each height.
template <class T> Curve<T> contour(int numVertices, int level)
{
  Curve<T> curve(3, numVertices);
  T* const points = curve.data();
  for (std::ptrdiff_t i = 0; i < numVertices; ++i)
  {
    const double angle = -2 * std::numbers::pi * static_cast<double>(i) / numVertices;
    const double radius = 100 + 10 * std::sin(5 * angle + 0.1 * level) + 3 * std::cos(17 * angle);
    points[3 * i] = static_cast<T>(radius * std::cos(angle + 0.01 * level));
    points[3 * i + 1] = static_cast<T>(radius * std::sin(angle + 0.01 * level));
    points[3 * i + 2] = static_cast<T>(level);
  }
  return curve;
}

template <class T> CurveStack<T> contourStack(int numLevels, int numVertices)
{
  CurveStack<T> stack;
  for (int i = 0; i < numLevels; ++i) stack.append(contour<T>(numVertices, i));
  return stack;
}

template <class T> TriMesh<T> surface(int numLevels, int numVertices)
{
  CurveStackTriangulation2<T> triangulation;
  triangulation.apply(contourStack<T>(numLevels, numVertices));
  return triangulation.getTriMesh();
}

template <class T> void stitchContours(benchmark::State& state)
{
  const int numLevels = static_cast<int>(state.range(0)), numVertices = static_cast<int>(state.range(1));
  const CurveStack<T> stack = contourStack<T>(numLevels, numVertices);
  CurveStackTriangulation2<T> triangulation;
  for (auto _ : state) triangulation.apply(stack);
  state.SetItemsProcessed(state.iterations() * numLevels * numVertices);
}
BENCHMARK(stitchContours<float>)->Args({1000, 1000})->Args({1000, 100})->Unit(benchmark::kMillisecond);
BENCHMARK(stitchContours<double>)->Args({1000, 1000})->Unit(benchmark::kMillisecond);

void resampleOntoQuadMesh(benchmark::State& state)
{
  const int numLevels = static_cast<int>(state.range(0)), numVertices = static_cast<int>(state.range(1));
  const CurveStack<float> stack = contourStack<float>(numLevels, numVertices);
  QuadMesh<float> mesh(3, numVertices, numLevels);
  for (auto _ : state)
  {
    stack.resample(mesh);
    benchmark::DoNotOptimize(mesh.toTriMesh(false).getNumTriangles());
  }
  state.SetItemsProcessed(state.iterations() * numLevels * numVertices);
}
BENCHMARK(resampleOntoQuadMesh)->Args({1000, 1000})->Args({1000, 100})->Unit(benchmark::kMillisecond);

/// A zigzag whose teeth shrink divides into the most unequal pieces, a wobbling contour into halves.
void decimateByDouglasPeucker(benchmark::State& state)
{
  const int numVertices = static_cast<int>(state.range(0));
  Curve<double> curve = contour<double>(numVertices, 0);
  if (state.range(1) != 0)
    for (int i = 0; i < numVertices; ++i)
    {
      curve.data(i)[0] = i;
      curve.data(i)[1] = (i % 2 == 0 ? 1 : -1) * (3. * numVertices - i);
    }
  Curve<double> out;
  for (auto _ : state) DouglasPeuckerCurveDecimation<double>(1e-3).apply(curve, out);
  state.SetItemsProcessed(state.iterations() * numVertices);
}
BENCHMARK(decimateByDouglasPeucker)
    ->ArgNames({"vertices", "zigzag"})
    ->ArgsProduct({{1000, 10000, 100000, 1000000}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

void stitchTwoContoursOptimally(benchmark::State& state)
{
  const int numVertices = static_cast<int>(state.range(0));
  const Curve<double> a = contour<double>(numVertices, 0), b = contour<double>(numVertices, 1);
  for (auto _ : state) benchmark::DoNotOptimize(computeOptimalTriangulationCode(a, b).startA);
  state.SetItemsProcessed(state.iterations() * 2 * numVertices);
}
BENCHMARK(stitchTwoContoursOptimally)->Arg(1000)->Unit(benchmark::kMillisecond);

void triangulatePolygon(benchmark::State& state)
{
  Curve<double> polygon = contour<double>(static_cast<int>(state.range(0)), 0);
  polygon.reverse();
  PolygonTriangulation<double> triangulation;
  for (auto _ : state) triangulation.apply(polygon, 0, 1);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(triangulatePolygon)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);

void testPolygonForCrossings(benchmark::State& state)
{
  const Curve<double> polygon = contour<double>(static_cast<int>(state.range(0)), 0);
  for (auto _ : state) benchmark::DoNotOptimize(polygon.selfIntersects());
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(testPolygonForCrossings)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

void findPointsInside(benchmark::State& state)
{
  const TriMesh<double> mesh = surface<double>(100, 1000);
  std::int64_t count = 0;
  for (auto _ : state)
  {
    const double angle = 0.1 * static_cast<double>(count % 1000), radius = 0.1 * static_cast<double>(count % 1301);
    const Vector<double> point = {radius * std::cos(angle), radius * std::sin(angle), static_cast<double>(count % 97)};
    benchmark::DoNotOptimize(mesh.contains(point));
    ++count;
  }
  state.SetItemsProcessed(count);
}
BENCHMARK(findPointsInside);

void measureAreaAndVolume(benchmark::State& state)
{
  const TriMesh<double> mesh = surface<double>(100, 1000);
  for (auto _ : state) benchmark::DoNotOptimize(mesh.area() + mesh.volume());
  state.SetItemsProcessed(state.iterations() * mesh.getNumTriangles());
}
BENCHMARK(measureAreaAndVolume)->Unit(benchmark::kMillisecond);

void computeVertexNormals(benchmark::State& state)
{
  TriMesh<float> mesh = surface<float>(100, 1000);
  for (auto _ : state) mesh.computeNormals();
  state.SetItemsProcessed(state.iterations() * mesh.getNumTriangles());
}
BENCHMARK(computeVertexNormals)->Unit(benchmark::kMillisecond);

void writeAsciiStl(benchmark::State& state)
{
  const TriMesh<float> mesh = surface<float>(100, 1000);
  std::int64_t numBytes = 0;
  for (auto _ : state)
  {
    std::ostringstream text;
    mesh.export2AsciiSTL(text);
    numBytes += static_cast<std::int64_t>(text.tellp());
  }
  state.SetBytesProcessed(numBytes);
}
BENCHMARK(writeAsciiStl)->Unit(benchmark::kMillisecond);

} // namespace
