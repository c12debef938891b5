#include "analysis/spatial/stackspatialanalysis.h"

#include "tests/analysis/spatial/patterns.h"
#include "tests/support/canceller.h"
#include "tests/support/errors.h"
#include "tests/support/stacks.h"

#include <gmock/gmock.h>

namespace
{

/// A stack with a boundary model "cell" and objects "spots" (points), "bodies" (curves) and "areas" (regions).
class SpatialStack : public testing::Test
{
protected:
  SpatialStack()
  {
    config.boundary = &cell;
    config.objects = &spots;
    config.numMonteCarloSamples = 19;
    config.evaluationDensity = 0.01;
    config.hasFunctionB = config.hasFunctionF = config.hasFunctionG = config.hasFunctionH = true;
  }

  StackSlice& addSquareSlice()
  {
    StackSlice& slice = addSlice(stack, 200, 200);
    addItem(cell, slice, {{50, 50}, {150, 50}, {150, 150}, {50, 150}});
    return slice;
  }
  void addSpots(StackSlice& slice, int number)
  {
    std::vector<std::vector<int>> pixels;
    for (int i = 0; i < number; ++i)
      pixels.push_back({55 + static_cast<int>(generator.uniformL(90)), 55 + static_cast<int>(generator.uniformL(90))});
    addItem(spots, slice, pixels);
  }

  Stack stack;
  Model& cell = addModel(stack, "cell", MPrimitive::Polygon);
  Model& spots = addModel(stack, "spots", MPrimitive::Polypoint);
  Model& bodies = addModel(stack, "bodies", MPrimitive::Polygon);
  RandomGenerator generator{1};
  StackSpatialAnalysisConfig config;
  StackSpatialAnalysis analysis;
};

TEST_F(SpatialStack, HasARowPerSlice)
{
  addSpots(addSquareSlice(), 30);
  addSlice(stack, 200, 200);              // neither
  addSquareSlice();                       // no object
  addSpots(addSlice(stack, 200, 200), 2); // no boundary
  StackSlice& last = addSquareSlice();
  addItem(cell, last, {{0, 0}, {9, 0}, {9, 9}});
  addItem(spots, last, {{60, 60}, {100, 100}, {50, 50}}); // the last one on the boundary
  addItem(spots, last, {{10, 10}});
  analysis.run(stack, config);
  ASSERT_EQ(analysis.getResults().size(), 2u);
  EXPECT_EQ(analysis.getResults()[1].numObjects, 3);
  EXPECT_THAT(analysis.getMessages(), testing::ElementsAre("slice 3: no item of the boundary model; 2 objects left out",
                                                           "slice 4: 1 further item of the boundary model unused",
                                                           "slice 4: 1 object outside the boundary left out"));
  const DataSet table = analysis.resultTable();
  EXPECT_EQ(table.getNames(), (std::vector<std::string>{"Slice", "B-SDI", "F-SDI", "G-SDI", "H-SDI"}));
  EXPECT_EQ(table.getValues<std::string>("Slice"), Vector<std::string>({"slice 0", "slice 4"}));
  for (const char* name : {"B-SDI", "F-SDI", "G-SDI", "H-SDI"})
    for (const double pValue : table.getValues<double>(name))
    {
      EXPECT_GE(pValue, 0.05);
      EXPECT_LE(pValue, 1);
      EXPECT_NEAR(pValue * 40, std::round(pValue * 40), 1e-9) << "halves of 20";
    }
  const SpatialEvaluation<double>& h = *analysis.getResults()[1].functions[3].evaluation;
  EXPECT_NEAR(h.grid[1], std::sqrt(20000.0) / 1000, 1e-6) << "a thousandth of the diagonal";
  EXPECT_EQ(h.observed[h.grid.getSize() - 1], 1);
  EXPECT_NEAR(h.observed[101], 1.0 / 3, 1e-12) << "up to 14.28: of 14.14, 56.6 and 70.7";
}

TEST_F(SpatialStack, DependsOnTheSeedAlone)
{
  addSpots(addSquareSlice(), 30);
  addSpots(addSquareSlice(), 40);
  analysis.run(stack, config);
  const double g = analysis.resultTable().getValue<double>("G-SDI", 1);
  const Vector<double> curve = analysis.getResults()[1].functions[2].evaluation->average;
  config.hasFunctionB = config.hasFunctionF = config.hasFunctionH = false;
  analysis.run(stack, config);
  EXPECT_EQ(analysis.resultTable().getValue<double>("G-SDI", 1), g) << "also without the other functions";
  EXPECT_EQ(analysis.getResults()[1].functions[0].evaluation->average, curve);
  config.seed = 2;
  analysis.run(stack, config);
  EXPECT_NE(analysis.getResults()[1].functions[0].evaluation->average, curve);
}

TEST_F(SpatialStack, WhatLiesOnTheBoundaryCountsHoweverTheSliceIsTurned)
{
  const std::vector<std::vector<int>> corners = {{30, 30}, {132, 64}, {116, 166}, {24, 120}};
  std::vector<std::vector<int>> onIt;
  for (std::size_t i = 0; i < corners.size(); ++i)
    onIt.push_back(
        {(corners[i][0] + corners[(i + 1) % 4][0]) / 2, (corners[i][1] + corners[(i + 1) % 4][1]) / 2}); // exactly
  Model& line = addModel(stack, "line", MPrimitive::Polygon);
  for (int k = 0; k < 12; ++k)
  {
    StackSlice& slice = addSlice(stack, 200, 200, Registration(k, -2 * k, 3.7F * static_cast<float>(k)));
    setPixelSize(slice, 0.0645F, 0.0645F);
    addItem(cell, slice, corners);
    addItem(spots, slice, onIt);
    if (k == 7) addItem(line, slice, {{30, 30}, {132, 64}, {81, 47}});
  }
  config.hasFunctionB = config.hasFunctionF = config.hasFunctionH = false;
  analysis.run(stack, config);
  EXPECT_THAT(analysis.getMessages(), testing::IsEmpty());
  for (const auto& result : analysis.getResults()) EXPECT_EQ(result.numObjects, 4);
  config.boundary = &line;
  expectError<UsageError>("slice 7: The boundary encloses no area", [&] { analysis.run(stack, config); });
}

TEST_F(SpatialStack, ObjectsLieAtReconstructedCentres)
{
  StackSlice& slice = addSquareSlice();
  setPixelSize(slice, 2, 3);
  addItem(bodies, slice, {{60, 60}, {80, 60}, {70, 90}});    // centre (70, 70)
  addItem(bodies, slice, {{90, 80}, {110, 80}, {100, 110}}); // centre (100, 90)
  config.objects = &bodies;
  config.precision = 1;
  analysis.run(stack, config);
  const SpatialEvaluation<double>& h = *analysis.getResults()[0].functions[3].evaluation;
  EXPECT_EQ(h.observed[84], 0) << "60 by 60: 84.85";
  EXPECT_EQ(h.observed[85], 1);
}

TEST_F(SpatialStack, FWithoutPositionsIsNotAvailable)
{
  addSpots(addSquareSlice(), 5);
  config.evaluationDensity = 1e-5; // of 10000 pixels: none
  analysis.run(stack, config);
  EXPECT_TRUE(std::isnan(analysis.resultTable().getValue<double>("F-SDI", 0)));
  EXPECT_FALSE(std::isnan(analysis.resultTable().getValue<double>("G-SDI", 0)));
  EXPECT_TRUE(std::isnan(analysis.combinations()[1].pValue));
  EXPECT_THAT(analysis.getMessages(), testing::ElementsAre("slice 0: no evaluation position for function F"));
}

TEST_F(SpatialStack, RefusesWhatCannotBeAnalysed)
{
  const auto refuses = [this](const std::string& text)
  { expectError<UsageError>(text, [this] { analysis.run(stack, config); }); };
  refuses("No slice has an item");
  StackSlice& slice = addSquareSlice();
  addSpots(slice, 5);
  config.evaluationDensity = 2000;
  refuses("slice 0: The evaluation density asks for 20000000 positions");
  config.evaluationDensity = 0;
  config.hardcoreDistance = 51;
  refuses("slice 0: Too many unsuccessful attemps to generate a vertex");
  config.hardcoreDistance = 0;
  config.boundary = &spots;
  refuses("not closed curves");
  config.boundary = &cell;
  StackSlice& flat = addSlice(stack, 200, 200);
  addItem(cell, flat, {{0, 0}, {50, 50}, {100, 100}});
  addSpots(flat, 1);
  refuses("slice 1: The boundary encloses no area");
  config.hasFunctionB = config.hasFunctionF = config.hasFunctionG = config.hasFunctionH = false;
  refuses("no function");
}

TEST_F(SpatialStack, CanBeCancelled)
{
  for (int i = 0; i < 4; ++i) addSpots(addSquareSlice(), 30);
  config.numMonteCarloSamples = 999;
  const Canceller canceller(analysis, 0.3);
  EXPECT_THROW(analysis.run(stack, config), Cancelled);
  EXPECT_TRUE(canceller.isFinished());
}

TEST(FisherCombination, AgreesWithTheTablesOfChiSquared)
{
  EXPECT_TRUE(std::isnan(combinedPValue({})));
  EXPECT_NEAR(combinedPValue({0.3}), 0.3, 1e-15);
  EXPECT_EQ(combinedPValue({1, 1, 1}), 1);
  // -2 ln(p q) = 9.4877 and 18.307: the 5 % points of chi squared with 4 and 10 degrees of freedom.
  EXPECT_NEAR(combinedPValue({std::exp(-9.48773 / 4), std::exp(-9.48773 / 4)}), 0.05, 1e-6);
  const double each = std::exp(-18.30704 / 10);
  EXPECT_NEAR(combinedPValue({each, each, each, each, each}), 0.05, 1e-6);
  // Ramanujan: the sum of n^k exp(-n) / k! for k < n is 1/2 - 1 / (3 sqrt(2 pi n)) but for terms of smaller order.
  const int n = 2000;
  EXPECT_NEAR(combinedPValue(std::vector<double>(n, std::exp(-1.0))),
              0.5 - 1 / (3 * std::sqrt(2 * std::numbers::pi * n)), 1e-5);
}
} // namespace
