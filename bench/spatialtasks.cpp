#include "analysis/spatial/distancesort.h"
#include "analysis/spatial/spatialdescriptorfunctionb.h"
#include "analysis/spatial/spatialdescriptorfunctionf.h"
#include "analysis/spatial/spatialdescriptorfunctiong.h"
#include "analysis/spatial/spatialdescriptorfunctionh.h"
#include "analysis/spatial/spatialmodelcompleterandomness.h"
#include "analysis/spatial/spatialmodelevaluator.h"
#include "analysis/spatial/spatialmodelhardcore.h"
#include "bench/timedtask.h"
#include "image/voxelmatrix.h"
#include "numeric/randomgenerator.h"

#include <cstdio>
#include <memory>

namespace
{
using Randomness = SpatialModelCompleteRandomness<double, unsigned char>;
using Hardcore = SpatialModelHardcore<double, unsigned char>;
using Evaluator = SpatialModelEvaluator<double, unsigned char>;

/// Points from a file: one per row, their coordinates in the columns.
Vertices<double> readPoints(const std::string& folder, const std::string& input)
{
  const VoxelMatrix<double> volume(folder + "/" + input + ".vm");
  const PixelMatrix<double>& rows = volume[0];
  Vertices<double> points(rows.getSize2(), rows.getSize1());
  std::copy_n(rows.data(), rows.getNumElements(), points.data());
  return points;
}

TriMesh<double> readMesh(const std::string& folder, const std::string& input)
{
  TriMesh<double> mesh(readPoints(folder, input + "_verts"));
  const VoxelMatrix<int> corners(folder + "/" + input + "_tris.vm");
  for (int i = 0; i < corners[0].getSize1(); ++i)
    mesh.addTriangle(corners[0](i, 0), corners[0](i, 1), corners[0](i, 2));
  return mesh;
}

std::string formatted(const char* format, double value)
{
  char text[80];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

/// A descriptor whose distances can be had as they arise, in no order: all that other programs give.
template <class Descriptor> struct Unsorted : Descriptor
{
  using Descriptor::distances;
};
using UnsortedB = Unsorted<SpatialDescriptorFunctionB<double>>;
using UnsortedF = Unsorted<SpatialDescriptorFunctionF<double>>;
using UnsortedG = Unsorted<SpatialDescriptorFunctionG<double>>;
using UnsortedH = Unsorted<SpatialDescriptorFunctionH<double>>;

/// The distances of a descriptor that `make` makes anew in each run, with its search structures.
template <class Make>
TimedWork distancesWork(const Vertices<double>& pattern, double amount, const char* unit, const Make& make)
{
  auto values = std::make_shared<Vector<double>>();
  const auto run = [=]
  {
    *values = Vector<double>();
    make().distances(pattern, *values);
  };
  return {run, amount, unit, [=] { return formatted("mean=%.6g", values->mean()); }};
}

TimedTask nearestOthersTask(const std::string& input)
{
  const auto prepare = [](const std::string& folder, const std::string& name)
  {
    const Vertices<double> points = readPoints(folder, name);
    return distancesWork(points, points.getSize() / 1e6, "Mpoint", [] { return UnsortedG(); });
  };
  return {"nn_G", input, {1, 2}, prepare};
}

TimedTask nearestPointsTask(const std::string& input, const std::string& queries)
{
  const auto prepare = [queries](const std::string& folder, const std::string& name)
  {
    const Vertices<double> positions = readPoints(folder, queries);
    const auto make = [positions]
    {
      UnsortedF f;
      f.setEvaluationPositions(positions);
      return f;
    };
    return distancesWork(readPoints(folder, name), positions.getSize() / 1e6, "Mquery", make);
  };
  return {"nn_F", input, {1, 2}, prepare};
}

TimedTask pairsTask(const std::string& input)
{
  const auto prepare = [](const std::string& folder, const std::string& name)
  {
    const Vertices<double> points = readPoints(folder, name);
    const double n = points.getSize();
    auto values = std::make_shared<Vector<double>>();
    const auto run = [=]
    {
      *values = Vector<double>();
      UnsortedH().distances(points, *values);
      sortDistances({values->data(), static_cast<std::size_t>(values->getSize())});
    };
    return TimedWork{run, n * (n - 1) / 2e6, "Mpair", [=] { return formatted("max=%.6g", values->max()); }};
  };
  return {"pairs_H", input, {1, 2}, prepare};
}

TimedTask borderTask(const std::string& points, const std::string& boundary)
{
  const auto prepare = [=](const std::string& folder, const std::string&)
  {
    const Vertices<double> pattern = readPoints(folder, points);
    const Curve<double> curve(readPoints(folder, boundary));
    const auto make = [curve]
    {
      UnsortedB b;
      b.setCurve(curve);
      return b;
    };
    return distancesWork(pattern, pattern.getSize() / 1e6, "Mpoint", make);
  };
  return {"border_B2", points + " x " + boundary, {1}, prepare};
}

TimedTask surfaceTask(const std::string& points, const std::string& boundary)
{
  const auto prepare = [=](const std::string& folder, const std::string&)
  {
    const Vertices<double> pattern = readPoints(folder, points);
    const TriMesh<double> mesh = readMesh(folder, boundary);
    const auto make = [mesh]
    {
      UnsortedB b;
      b.setTriMesh(mesh);
      return b;
    };
    return distancesWork(pattern, pattern.getSize() / 1e6, "Mpoint", make);
  };
  return {"border_B3", points + " x " + boundary, {1}, prepare};
}

/// A model in the plane with what it borrows.
template <class Model> struct BoundedModel
{
  explicit BoundedModel(const Curve<double>& curve)
  {
    model.setRandomGenerator(generator);
    model.setBoundary(curve);
  }
  RandomGenerator generator{1};
  Model model;
};

/// Samples, the index of the boundary made anew in each run.
template <class Model, class Configure>
TimedTask sampleTask(const char* task, const std::string& boundary, int numObjects, const Configure& configure)
{
  const auto prepare = [=](const std::string& folder, const std::string&)
  {
    const Curve<double> curve(readPoints(folder, boundary));
    const auto run = [=]
    {
      BoundedModel<Model> bounded(curve);
      configure(bounded.model);
      bounded.model.drawSample(numObjects);
    };
    return TimedWork{run, numObjects / 1e6, "Mpoint", [=] { return "n=" + std::to_string(numObjects); }};
  };
  return {task, boundary + " " + std::to_string(numObjects), {1}, prepare};
}

/// The envelope of G among 99 simulations, or of all functions among 999, F on the given density.
TimedTask envelopeTask(const char* task, const std::string& input, int numSamples, double density)
{
  const auto prepare = [=](const std::string& folder, const std::string& name)
  {
    const Vertices<double> points = readPoints(folder, name);
    const Curve<double> curve(readPoints(folder, "boundary2d_500"));
    auto pValues = std::make_shared<std::string>();
    const auto run = [=]
    {
      BoundedModel<Randomness> bounded(curve);
      SpatialDescriptorFunctionB<double> b;
      SpatialDescriptorFunctionF<double> f;
      const SpatialDescriptorFunctionG<double> g;
      const SpatialDescriptorFunctionH<double> h;
      Evaluator evaluator;
      evaluator.setModel(bounded.model);
      evaluator.setNumMonteCarloSamples(numSamples);
      evaluator.addDescriptor(g);
      if (density > 0)
      {
        b.setCurve(curve);
        const double area = std::abs(curve.twiceArea(0, 1)) / 2;
        f.setEvaluationPositions(bounded.model.drawSample(static_cast<int>(area * density)));
        for (const SpatialDescriptor<double>* descriptor :
             {static_cast<const SpatialDescriptor<double>*>(&b), static_cast<const SpatialDescriptor<double>*>(&f),
              static_cast<const SpatialDescriptor<double>*>(&h)})
          evaluator.addDescriptor(*descriptor);
      }
      pValues->clear();
      for (const auto& evaluation : evaluator.eval(points)) *pValues += formatted("p=%.4g ", evaluation.pValue);
    };
    return TimedWork{run, static_cast<double>(numSamples), "simulation", [=] { return *pValues; }};
  };
  return {task, input, {1, 2}, prepare};
}
} // namespace

std::vector<TimedTask> spatialTasks()
{
  constexpr double density = 0.005;
  std::vector<TimedTask> tasks;
  for (const char* input : {"points2d_10000", "points3d_10000"})
  {
    tasks.push_back(nearestOthersTask(input));
    tasks.push_back(pairsTask(input));
  }
  tasks.push_back(nearestPointsTask("points2d_10000", "eval2d_100000"));
  tasks.push_back(nearestPointsTask("points3d_10000", "eval3d_100000"));
  for (const char* boundary : {"boundary2d_500", "poly_star_5000"})
    tasks.push_back(borderTask("points2d_10000", boundary));
  tasks.push_back(surfaceTask("points3d_10000", "mesh3d"));
  tasks.push_back(sampleTask<Randomness>("csr_sample", "boundary2d_500", 10000, [](Randomness&) {}));
  const auto setDistances = [](Hardcore& model)
  {
    constexpr double hardcoreDistance = 15;
    Vector<double> distances(1000);
    distances.fill(hardcoreDistance); // half of what keeps two objects apart, here 30
    model.setHardcoreDistances(distances);
  };
  tasks.push_back(sampleTask<Hardcore>("hardcore_sample", "boundary2d_500", 1000, setDistances));
  tasks.push_back(envelopeTask("envelope_G99", "points2d_1000", 99, 0));
  tasks.push_back(envelopeTask("envelope_BFGH999", "points2d_1000", 999, density));
  return tasks;
}
