// Writes a pattern, evaluation positions and the distance functions of both on a grid into a folder, for
// spatialfigures.R, which has an independent package compute the same.
#include "analysis/spatial/cdftools.h"
#include "analysis/spatial/spatialdescriptorfunctionb.h"
#include "analysis/spatial/spatialdescriptorfunctionf.h"
#include "analysis/spatial/spatialdescriptorfunctiong.h"
#include "analysis/spatial/spatialdescriptorfunctionh.h"
#include "analysis/spatial/spatialmodelcompleterandomness.h"
#include "numeric/dataset.h"
#include "numeric/randomgenerator.h"

#include <cmath>
#include <iostream>

namespace
{
/// A contour with bays.
Curve<double> boundary()
{
  constexpr int n = 300;
  Curve<double> curve(2, n);
  for (int i = 0; i < n; ++i)
  {
    const double angle = 2 * M_PI * i / n, radius = 100 + 20 * std::cos(5 * angle);
    curve[i][0] = radius * std::cos(angle);
    curve[i][1] = radius * std::sin(angle);
  }
  return curve;
}

void write(const Vertices<double>& points, const std::string& filename)
{
  DataSet table;
  for (int i = 0; i < points.getSize(); ++i)
  {
    table.setValue<double>("x", i, points[i][0]);
    table.setValue<double>("y", i, points[i][1]);
  }
  table.save(filename, true);
}

void writeFigures(const std::string& folder)
{
  RandomGenerator generator(1);
  SpatialModelCompleteRandomness<double, unsigned char> model;
  model.setRandomGenerator(generator);
  model.setBoundary(boundary());
  const Vertices<double> pattern = model.drawSample(500), positions = model.drawSample(2000);
  SpatialDescriptorFunctionB<double> b;
  SpatialDescriptorFunctionF<double> f;
  b.setCurve(model.getBoundary());
  f.setEvaluationPositions(positions);
  write(model.getBoundary(), folder + "/boundary.txt");
  write(pattern, folder + "/pattern.txt");
  write(positions, folder + "/positions.txt");

  Vector<double> grid(1000);
  grid.setSequence(0, 0.25);
  DataSet table;
  table.setValues<double>("grid", grid);
  const auto addFunction = [&](const std::string& name, const SpatialDescriptor<double>& descriptor)
  {
    Vector<double> values, cdf;
    descriptor.eval(pattern, values, cdf);
    table.setValues<double>(name, CDFTools<double>::cdf(values, grid));
  };
  addFunction("B", b);
  addFunction("F", f);
  addFunction("G", SpatialDescriptorFunctionG<double>());
  addFunction("H", SpatialDescriptorFunctionH<double>());
  table.save(folder + "/functions.txt", true);
}
} // namespace

int main(int argc, char** argv)
{
  try
  {
    if (argc == 2) return writeFigures(argv[1]), 0;
    std::cerr << "usage: spatial_figures FOLDER\n";
  }
  catch (const Exception& error)
  {
    std::cerr << error << "\n";
  }
  return 2;
}
