#include "analysis/spatial/cdftools.h"
#include "analysis/spatial/spatialdescriptorfunctionb.h"
#include "analysis/spatial/spatialdescriptorfunctionf.h"
#include "analysis/spatial/spatialdescriptorfunctiong.h"
#include "analysis/spatial/spatialdescriptorfunctionh.h"
#include "analysis/spatial/spatialmodelcompleterandomness.h"
#include "analysis/spatial/spatialmodelevaluator.h"
#include "analysis/spatial/spatialmodelhardcore.h"
#include "tests/analysis/spatial/patterns.h"
#include "tests/support/canceller.h"
#include "tests/support/errors.h"
#include "tests/support/threads.h"

#include <gtest/gtest.h>

namespace
{
using Randomness = SpatialModelCompleteRandomness<double, unsigned char>;
using Evaluator = SpatialModelEvaluator<double, unsigned char>;

/// Two objects at a distance.
Vertices<double> pairAt(double distance)
{
  return patternOf({{0, 0}, {distance, 0}});
}

TEST(Evaluator, ComparesByHand)
{
  ShapeSet<double> simulated;
  for (const double distance : {1.0, 2.0, 3.0}) simulated.append(pairAt(distance));
  SpatialModelEvaluatorBase<double> evaluator;
  const SpatialDescriptorFunctionH<double> h;
  expectError<UsageError>("no precision", [&] { evaluator.eval(pairAt(1), h, simulated); });
  evaluator.setPrecision(0.5);
  double pValue = 0;
  DataSet dataSet;
  // On the grid 0, 0.5, ... 3 the average is 0, 0, 1/3, 1/3, 2/3, 2/3, 1. The deviations are 2/3, 1/3 (or -1/3), -2/3.
  EXPECT_EQ(evaluator.eval(pairAt(0.9), h, simulated, &pValue, &dataSet), 2.5) << "2/3 like that of the first";
  EXPECT_EQ(pValue, 1 - 2.5 / 4);
  EXPECT_EQ(dataSet.getNames(), (std::vector<std::string>{"grid", "observed", "average", "lower", "upper"}));
  EXPECT_EQ(dataSet.getValues<double>("grid"), Vector<double>({0, 0.5, 1, 1.5, 2, 2.5, 3}));
  EXPECT_EQ(dataSet.getValues<double>("observed"), Vector<double>({0, 0, 1, 1, 1, 1, 1}));
  EXPECT_NEAR(dataSet.getValue<double>("average", 4), 2.0 / 3, 1e-15);
  EXPECT_EQ(dataSet.getValues<double>("lower"), Vector<double>({0, 0, 0, 0, 0, 0, 1}));
  EXPECT_EQ(dataSet.getValues<double>("upper"), Vector<double>({0, 0, 1, 1, 1, 1, 1}));
  EXPECT_EQ(evaluator.eval(pairAt(0.4), h, simulated, &pValue), 3) << "0 1 1 ...: 1 above the average";
  EXPECT_EQ(pValue, 0.25);
  EXPECT_EQ(evaluator.eval(pairAt(9), h, simulated, &pValue, &dataSet), 0);
  EXPECT_EQ(pValue, 1);
  EXPECT_EQ(dataSet.getNumRows(), 19);
}

TEST(Evaluator, ASingleObjectTellsNothing)
{
  RandomGenerator generator(1);
  Randomness model;
  model.setRandomGenerator(generator);
  model.setBoundary(regularPolygon<double>(10, 52));
  Evaluator evaluator;
  evaluator.setModel(model);
  double pValue = 0;
  DataSet dataSet;
  EXPECT_EQ(evaluator.eval(patternOf({{1, 1}}), SpatialDescriptorFunctionG<double>(), &pValue, &dataSet), 49.5);
  EXPECT_EQ(pValue, 1 - 49.5 / 100);
  EXPECT_EQ(dataSet.getValues<double>("observed"), Vector<double>({1}));
}

/// All four functions of 200 objects in a disc.
struct DiscAnalysis
{
  explicit DiscAnalysis(unsigned long seed) : generator(seed)
  {
    model.setRandomGenerator(generator);
    model.setBoundary(regularPolygon<double>(10, 52));
    b.setCurve(model.getBoundary());
    f.setEvaluationPositions(model.drawSample(300));
    evaluator.setModel(model);
    evaluator.setNumMonteCarloSamples(50);
    for (const SpatialDescriptor<double>* descriptor :
         {static_cast<SpatialDescriptor<double>*>(&b), static_cast<SpatialDescriptor<double>*>(&f),
          static_cast<SpatialDescriptor<double>*>(&g), static_cast<SpatialDescriptor<double>*>(&h)})
      evaluator.addDescriptor(*descriptor);
  }

  RandomGenerator generator;
  Randomness model;
  SpatialDescriptorFunctionB<double> b;
  SpatialDescriptorFunctionF<double> f;
  SpatialDescriptorFunctionG<double> g;
  SpatialDescriptorFunctionH<double> h;
  Evaluator evaluator;
};

TEST(Evaluator, TheNumberOfThreadsDoesNotMatter)
{
  std::vector<std::vector<SpatialEvaluation<double>>> results;
  for (const int numThreads : {1, 2, 5})
  {
    const NumThreads threads(numThreads);
    DiscAnalysis analysis(7);
    results.push_back(analysis.evaluator.eval(analysis.model.drawSample(200)));
  }
  for (const auto& result : results)
    for (std::size_t k = 0; k < 4; ++k)
    {
      const SpatialEvaluation<double>&evaluation = result[k], &first = results[0][k];
      EXPECT_EQ(evaluation.rank, first.rank);
      EXPECT_EQ(evaluation.grid, first.grid);
      EXPECT_EQ(evaluation.observed, first.observed);
      EXPECT_EQ(evaluation.average, first.average);
      EXPECT_EQ(evaluation.lower, first.lower);
      EXPECT_EQ(evaluation.upper, first.upper);
    }
  EXPECT_NEAR(results[0][3].grid[1], std::sqrt(800.0) / 1000, 1e-12) << "a thousandth of the diagonal";
}

TEST(Evaluator, AgreesWithTheDefinitionOnStoredPatterns)
{
  DiscAnalysis analysis(8);
  const Vertices<double> observed = analysis.model.drawSample(200);
  RandomGenerator same(9), again(9);
  analysis.model.setRandomGenerator(same);
  const auto evaluations = analysis.evaluator.eval(observed);
  analysis.model.setRandomGenerator(again);
  const ShapeSet<double> simulated = analysis.model.drawSamples(50, 200);
  const SpatialDescriptor<double>* const descriptors[] = {&analysis.b, &analysis.f, &analysis.g, &analysis.h};
  for (std::size_t k = 0; k < 4; ++k)
  {
    const Vector<double>& grid = evaluations[k].grid;
    Vector<double> values, cdf;
    Matrix<double> all;
    descriptors[k]->eval(observed, values, cdf);
    descriptors[k]->eval(simulated, all);
    EXPECT_EQ(evaluations[k].observed, CDFTools<double>::cdf(values, grid));
    Matrix<double> cdfs(50, grid.getSize());
    double largest = values[values.getSize() - 1];
    for (int i = 0; i < 50; ++i)
    {
      cdfs.setRow(i, CDFTools<double>::cdf(all[i], grid));
      largest = std::max(largest, all(i, all.getSize2() - 1));
    }
    EXPECT_EQ(evaluations[k].average, CDFTools<double>::average(cdfs));
    EXPECT_EQ(evaluations[k].lower, CDFTools<double>::percentile(cdfs, 2.5));
    EXPECT_EQ(evaluations[k].upper, CDFTools<double>::percentile(cdfs, 97.5));
    EXPECT_EQ(evaluations[k].rank, CDFTools<double>::rank(evaluations[k].observed, evaluations[k].average, cdfs));
    EXPECT_LE(grid[grid.getSize() - 1], largest);
    EXPECT_GT(grid.getSize() * grid[1], largest);
  }
}

TEST(Evaluator, CanBeCancelledAndPassesErrorsOn)
{
  DiscAnalysis analysis(10);
  const Vertices<double> observed = analysis.model.drawSample(200);
  analysis.evaluator.setNumMonteCarloSamples(9999);
  {
    const Canceller canceller(analysis.evaluator, 0.01);
    EXPECT_THROW(analysis.evaluator.eval(observed), Cancelled);
    EXPECT_TRUE(canceller.isFinished());
  }
  analysis.evaluator.setNumMonteCarloSamples(9);
  EXPECT_EQ(analysis.evaluator.eval(observed).size(), 4u) << "a cancelled evaluation can be run again";

  SpatialModelHardcore<double, unsigned char> crowded;
  crowded.setRandomGenerator(analysis.generator);
  crowded.setBoundary(analysis.model.getBoundary());
  Vector<double> distances(200);
  distances.fill(1);
  crowded.setHardcoreDistances(distances);
  analysis.evaluator.setModel(crowded);
  expectError<UsageError>("Too many unsuccessful attemps", [&] { analysis.evaluator.eval(observed); });
  analysis.evaluator.setModel(analysis.model);
  analysis.evaluator.setPrecision(1e-9);
  expectError<ValueError>("times the precision", [&] { analysis.evaluator.eval(observed); });
  analysis.evaluator.setPrecision(1e-3);
  analysis.evaluator.setNumMonteCarloSamples(9999);
  expectError<UsageError>("The precision is too small", [&] { analysis.evaluator.eval(observed); });
}
} // namespace
