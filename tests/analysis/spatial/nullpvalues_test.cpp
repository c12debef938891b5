// Over many patterns: the p-values of patterns of the null model are uniform, those of other patterns are not.
#include "analysis/spatial/spatialdescriptorfunctionb.h"
#include "analysis/spatial/spatialdescriptorfunctionf.h"
#include "analysis/spatial/spatialdescriptorfunctiong.h"
#include "analysis/spatial/spatialdescriptorfunctionh.h"
#include "analysis/spatial/spatialmodelcompleterandomness.h"
#include "analysis/spatial/spatialmodelevaluator.h"
#include "analysis/spatial/spatialmodelhardcore.h"
#include "tests/analysis/spatial/patterns.h"

#include <array>
#include <gtest/gtest.h>

namespace
{
using Randomness = SpatialModelCompleteRandomness<double, unsigned char>;
using Hardcore = SpatialModelHardcore<double, unsigned char>;
using Evaluator = SpatialModelEvaluator<double, unsigned char>;

constexpr int numSamples = 99;
constexpr std::array<char, 4> functionNames = {'B', 'F', 'G', 'H'};

enum class Domain
{
  Disc,
  LShape,
  Ball,
  Torus
};

/// The four functions of patterns in a domain, against the hardcore model or complete randomness.
class DomainAnalysis
{
public:
  DomainAnalysis(Domain domain, int numObjects, double hardcoreDistance, unsigned long seed)
    : _generator(seed), _numObjects(numObjects)
  {
    bound(_randomness, domain);
    bound(model, domain);
    const bool isInSpace = domain == Domain::Ball || domain == Domain::Torus;
    isInSpace ? _b.setTriMesh(mesh(domain)) : _b.setCurve(curve(domain));
    _f.setEvaluationPositions(_randomness.drawSample(100));
    Vector<double> distances(numObjects);
    distances.fill(hardcoreDistance);
    model.setHardcoreDistances(distances);
    _evaluator.setModel(model);
    _evaluator.setNumMonteCarloSamples(numSamples);
    _evaluator.addDescriptor(_b);
    _evaluator.addDescriptor(_f);
    _evaluator.addDescriptor(_g);
    _evaluator.addDescriptor(_h);
  }

  std::array<double, 4> pValues(const Vertices<double>& pattern)
  {
    std::array<double, 4> result = {};
    std::size_t k = 0;
    for (const SpatialEvaluation<double>& evaluation : _evaluator.eval(pattern)) result[k++] = evaluation.pValue;
    return result;
  }
  Vertices<double> randomPattern() { return _randomness.drawSample(_numObjects); }
  /// Groups of five objects, each within a short distance of a random place.
  Vertices<double> clusteredPattern(double reach)
  {
    Vertices<double> pattern = randomPattern();
    for (int i = 0; i < _numObjects; ++i)
      while (i % 5 > 0)
      {
        for (int k = 0; k < pattern.getSpace(); ++k)
          pattern[i][k] = pattern[i / 5 * 5][k] + _generator.uniformLF(-reach, reach);
        if (model.getDomain()->contains(pattern.data(i))) break;
      }
    return pattern;
  }
  double uniform() { return _generator.uniformLF(); }

  Hardcore model;

private:
  static Curve<double> curve(Domain domain)
  {
    if (domain == Domain::Disc) return regularPolygon<double>(5, 100);
    return closedCurve({{-4, 0}, {4, 0}, {4, 2}, {-2, 2}, {-2, 8}, {-4, 8}});
  }
  static TriMesh<double> mesh(Domain domain)
  {
    return domain == Domain::Ball ? sphere<double>(5, 3) : torus(4, 1.5, 30, 16);
  }
  template <class Model> void bound(Model& anyModel, Domain domain)
  {
    anyModel.setRandomGenerator(_generator);
    const bool isInSpace = domain == Domain::Ball || domain == Domain::Torus;
    isInSpace ? anyModel.setTriMesh(mesh(domain)) : anyModel.setBoundary(curve(domain));
  }

  RandomGenerator _generator;
  int _numObjects;
  Randomness _randomness;
  SpatialDescriptorFunctionB<double> _b;
  SpatialDescriptorFunctionF<double> _f;
  SpatialDescriptorFunctionG<double> _g;
  SpatialDescriptorFunctionH<double> _h;
  Evaluator _evaluator;
};

/// The p-values are discrete; less a uniform number times their step they are continuous.
void expectUniformPValues(Domain domain, double hardcoreDistance, int numPatterns, unsigned long seed)
{
  DomainAnalysis analysis(domain, 20, hardcoreDistance, seed);
  std::array<std::vector<double>, 4> values;
  for (int i = 0; i < numPatterns; ++i)
  {
    const std::array<double, 4> pValues = analysis.pValues(analysis.model.drawSample(20));
    for (std::size_t k = 0; k < 4; ++k) values[k].push_back(pValues[k] - analysis.uniform() / (numSamples + 1));
  }
  for (std::size_t k = 0; k < 4; ++k)
  {
    std::sort(values[k].begin(), values[k].end());
    const double distance = kolmogorovDistance(values[k], [](double p) { return std::clamp(p, 0.0, 1.0); });
    EXPECT_LT(distance, kolmogorovLimit(values[k].size())) << functionNames[k];
    testing::Test::RecordProperty(std::string("distance") + functionNames[k], std::to_string(distance));
    std::printf("%c: Kolmogorov distance %.4f, limit %.4f\n", functionNames[k], distance,
                kolmogorovLimit(values[k].size()));
  }
}

struct NullCase
{
  const char* name;
  Domain domain;
  double hardcoreDistance;
};
void PrintTo(const NullCase& nullCase, std::ostream* stream)
{
  *stream << nullCase.name;
}
constexpr NullCase nullCases[] = {{"Disc", Domain::Disc, 0},           {"LShape", Domain::LShape, 0},
                                  {"Ball", Domain::Ball, 0},           {"Torus", Domain::Torus, 0},
                                  {"HardcoreDisc", Domain::Disc, 0.3}, {"HardcoreTorus", Domain::Torus, 0.3}};

class NullPValues : public testing::TestWithParam<NullCase>
{
};

TEST_P(NullPValues, AreUniformOver150Patterns)
{
  expectUniformPValues(GetParam().domain, GetParam().hardcoreDistance, 150, 21);
}

/// Takes many minutes, as its name says.
TEST_P(NullPValues, LongAreUniformOver1000Patterns)
{
  expectUniformPValues(GetParam().domain, GetParam().hardcoreDistance, 1000, 22);
}

INSTANTIATE_TEST_SUITE_P(AllDomains, NullPValues, testing::ValuesIn(nullCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST(Power, ClusteredAndRegularPatternsAreFound)
{
  constexpr int numPatterns = 40;
  for (const Domain domain : {Domain::Disc, Domain::Ball})
  {
    DomainAnalysis randomness(domain, 40, 0, 23), regular(domain, 40, domain == Domain::Disc ? 0.45 : 0.9, 24);
    int numClusteredFound = 0, numRegularFound = 0;
    for (int i = 0; i < numPatterns; ++i)
    {
      numClusteredFound += randomness.pValues(randomness.clusteredPattern(0.5))[2] <= 0.025;
      numRegularFound += randomness.pValues(regular.model.drawSample(40))[2] >= 0.975;
    }
    std::printf("clustered %d, regular %d of %d found by G at 2.5 %%\n", numClusteredFound, numRegularFound,
                numPatterns);
    EXPECT_GE(numClusteredFound, numPatterns * 9 / 10);
    EXPECT_GE(numRegularFound, numPatterns * 9 / 10);
  }
}
} // namespace
