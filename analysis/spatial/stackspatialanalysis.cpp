#include "analysis/spatial/stackspatialanalysis.h"

#include "analysis/spatial/spatialdescriptorfunctionb.h"
#include "analysis/spatial/spatialdescriptorfunctionf.h"
#include "analysis/spatial/spatialdescriptorfunctiong.h"
#include "analysis/spatial/spatialdescriptorfunctionh.h"
#include "analysis/spatial/spatialmodelcompleterandomness.h"
#include "analysis/spatial/spatialmodelevaluator.h"
#include "analysis/spatial/spatialmodelhardcore.h"
#include "geometry/reconstruction/modelitemgeometry.h"
#include "geometry/reconstruction/stackreconstruction.h"
#include "model/stack.h"
#include "numeric/exception.h"
#include "numeric/randomgenerator.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

/// The domain and the objects of a slice.
struct StackSpatialAnalysis::SliceInput
{
  const StackSlice* slice = nullptr;
  Curve<double> boundary;
  std::shared_ptr<const SpatialBoundary<double>> index;
  Vertices<double> objects{2};
  int numPositions = 0;
  unsigned long positionsSeed = 0;
  unsigned long simulationSeed = 0;
};

namespace
{
constexpr double unavailable = std::numeric_limits<double>::quiet_NaN();

std::string functionsOf(const StackSpatialAnalysisConfig& config)
{
  std::string functions;
  if (config.hasFunctionB) functions += 'B';
  if (config.hasFunctionF) functions += 'F';
  if (config.hasFunctionG) functions += 'G';
  if (config.hasFunctionH) functions += 'H';
  return functions;
}

std::string counted(long number, const std::string& noun)
{
  return std::to_string(number) + " " + noun + (number == 1 ? "" : "s");
}

void requireUsable(const StackSpatialAnalysisConfig& config, const char* where)
{
  const auto isAmount = [](double x) { return x >= 0 && std::isfinite(x); };
  if (!config.boundary || !config.objects) throw UsageError(where, "There is no boundary model or no object model");
  if (config.boundary->getGeometry() != MPrimitive::Polygon)
    throw UsageError(where, "The items of the boundary model " + config.boundary->getName() + " are not closed curves");
  if (functionsOf(config).empty()) throw UsageError(where, "There is no function to evaluate");
  if (config.numMonteCarloSamples < 1) throw UsageError(where, "There must be a Monte Carlo sample");
  if (!isAmount(config.hardcoreDistance)) throw UsageError(where, "The hardcore distance is negative or not finite");
  if (!isAmount(config.evaluationDensity)) throw UsageError(where, "The evaluation density is negative or not finite");
  if (config.precision && !(*config.precision > 0 && std::isfinite(*config.precision)))
    throw UsageError(where, "The precision is not a positive number");
}

std::vector<const ModelItem*> itemsOf(const Model& model, const StackSlice& slice)
{
  std::vector<const ModelItem*> items;
  for (const ModelItem* item : slice.getItems())
    if (item->getModel() == &model) items.push_back(item);
  return items;
}

/// An item's vertices in pixels of its slice's image. What lies inside what is decided there, where it is exact: in
/// space, rounding would decide on points that lie on the boundary.
Vertices<double> pixelsOf(const ModelItem& item)
{
  const Vertices<int>& vertices = item.getVertices();
  Vertices<double> pixels(2, vertices.getSize());
  for (int i = 0; i < vertices.getSize(); ++i) std::copy_n(vertices.data(i), 2, pixels.data(i));
  return pixels;
}

/// The positions of the objects that an item stands for, in pixels; an item without vertices has one that is not
/// finite.
Vertices<double> objectsOf(const ModelItem& item)
{
  if (item.getModel()->getGeometry() == MPrimitive::Polypoint) return pixelsOf(item);
  const std::array<double, 2> mean = meanPixelOf(item);
  Vertices<double> object(2, 1);
  std::copy_n(mean.data(), 2, object.data());
  return object;
}

/// Pixels of a slice's image in reconstructed x and y.
Vertices<double> inSpace(const Vertices<double>& pixels, const Vector<double>& map)
{
  Vertices<double> vertices(2, pixels.getSize());
  for (int i = 0; i < pixels.getSize(); ++i)
  {
    const double u = pixels.data(i)[0], v = pixels.data(i)[1];
    vertices.data(i)[0] = map[0] * u + map[1] * v + map[2];
    vertices.data(i)[1] = map[3] * u + map[4] * v + map[5];
  }
  return vertices;
}
} // namespace

void StackSpatialAnalysis::run(const Stack& stack, const Config& config)
{
  constexpr const char* where = "void StackSpatialAnalysis::run(const Stack&, const Config&)";
  requireUsable(config, where);
  _config = config;
  _results.clear();
  _messages.clear();
  const ProgressStep whole(*this, "Spatial analysis", 1);
  const std::vector<SliceInput> inputs = readSlices(stack);
  if (inputs.empty())
    throw UsageError(where, "No slice has an item of the boundary model " + config.boundary->getName() +
                                " and an object of the model " + config.objects->getName() + " inside it");
  const ProgressStep step(*this, "Spatial analysis", static_cast<long>(inputs.size()));
  for (const SliceInput& input : inputs)
  {
    _results.push_back(analyse(input));
    progress(static_cast<long>(_results.size()));
  }
}

/// Reads all slices first, so that one that cannot be analysed is told before the others are.
std::vector<StackSpatialAnalysis::SliceInput> StackSpatialAnalysis::readSlices(const Stack& stack)
{
  const StackReconstruction<double> reconstruction(stack);
  RandomGenerator seeds(_config.seed);
  std::vector<SliceInput> inputs;
  for (int i = 0; i < stack.getNumSlices(); ++i)
  {
    throwIfCancelled("std::vector<StackSpatialAnalysis::SliceInput> StackSpatialAnalysis::readSlices(const Stack&)");
    const unsigned long positionsSeed = drawSeed(seeds), simulationSeed = drawSeed(seeds);
    std::optional<SliceInput> input = readSlice(reconstruction, *stack.getSlice(i));
    if (!input) continue;
    input->positionsSeed = positionsSeed;
    input->simulationSeed = simulationSeed;
    inputs.push_back(std::move(*input));
  }
  return inputs;
}

std::optional<StackSpatialAnalysis::SliceInput>
StackSpatialAnalysis::readSlice(const StackReconstruction<double>& reconstruction, const StackSlice& slice)
{
  const std::vector<const ModelItem*> boundaries = itemsOf(*_config.boundary, slice);
  const std::vector<const ModelItem*> items = itemsOf(*_config.objects, slice);
  SliceInput input;
  input.slice = &slice;
  Vertices<double> objects(2);
  for (const ModelItem* item : items) objects.append(objectsOf(*item));
  const int numObjects = objects.getSize();
  if (boundaries.empty() && numObjects > 0)
    note(slice, "no item of the boundary model; " + counted(numObjects, "object") + " left out");
  if (boundaries.empty() || numObjects == 0) return std::nullopt;
  if (boundaries.size() > 1)
    note(slice, counted(static_cast<long>(boundaries.size()) - 1, "further item") + " of the boundary model unused");
  try
  {
    const Vector<double>& map = reconstruction.getMap(slice.getIndex());
    const Vertices<double> boundary = pixelsOf(*boundaries.front());
    input.objects = inSpace(insideOf(boundary, objects, slice), map);
    input.boundary = Curve<double>(inSpace(boundary, map));
    input.index = makeBoundary(input.boundary);
    countPositions(input);
  }
  catch (Exception& error)
  {
    error.setWhat(slice.getName() + ": " + error.getWhat());
    throw;
  }
  if (input.objects.getSize() == 0) return std::nullopt;
  return input;
}

Vertices<double> StackSpatialAnalysis::insideOf(const Vertices<double>& boundary, const Vertices<double>& objects,
                                                const StackSlice& slice)
{
  const auto domain = makeBoundary(Curve<double>(boundary));
  Vertices<double> inside(2);
  for (int i = 0; i < objects.getSize(); ++i)
    if (domain->contains(objects.data(i))) inside.append(objects[i]);
  if (const int numOutside = objects.getSize() - inside.getSize(); numOutside > 0)
    note(slice, counted(numOutside, "object") + " outside the boundary left out");
  return inside;
}

void StackSpatialAnalysis::countPositions(SliceInput& input)
{
  if (!_config.hasFunctionF || input.objects.getSize() == 0) return;
  const double numPositions = std::floor(input.index->content() * _config.evaluationDensity);
  if (!(numPositions <= maxNumPositions))
  {
    char number[32];
    std::snprintf(number, sizeof number, "%.0f", numPositions);
    throw UsageError("void StackSpatialAnalysis::countPositions(SliceInput&)",
                     "The evaluation density asks for " + std::string(number) + " positions, more than 10 million");
  }
  input.numPositions = static_cast<int>(numPositions);
  if (input.numPositions == 0) note(*input.slice, "no evaluation position for function F");
}

/// The distance functions of a slice.
class StackSpatialAnalysis::SliceFunctions
{
public:
  /// \throw Cancelled  the analysis was
  SliceFunctions(const SliceInput& input, ProgressSubject& analysis)
  {
    RandomGenerator generator(input.positionsSeed);
    SpatialModelCompleteRandomness<double, PixelType> randomness;
    randomness.setOuter(&analysis);
    randomness.setBoundary(input.boundary, input.index);
    _f.setEvaluationPositions(randomness.drawSample(input.numPositions, generator));
    _b.setBoundary(input.index);
  }

  /// nullptr for F without positions.
  const SpatialDescriptor<double>* get(char function) const
  {
    if (function == 'B') return &_b;
    if (function == 'F') return _f.getEvaluationPositions().getSize() > 0 ? &_f : nullptr;
    if (function == 'G') return &_g;
    return &_h;
  }

private:
  SpatialDescriptorFunctionB<double> _b;
  SpatialDescriptorFunctionF<double> _f;
  SpatialDescriptorFunctionG<double> _g;
  SpatialDescriptorFunctionH<double> _h;
};

StackSpatialAnalysis::SliceResult StackSpatialAnalysis::analyse(const SliceInput& input)
{
  const SliceFunctions functions(input, *this);
  SpatialModelEvaluator<double, PixelType> evaluator;
  for (const char function : functionsOf(_config))
    if (const auto* descriptor = functions.get(function)) evaluator.addDescriptor(*descriptor);
  const std::vector<SpatialEvaluation<double>> evaluations = simulate(input, evaluator);
  SliceResult result = {input.slice, input.objects.getSize(), {}};
  auto evaluation = evaluations.begin();
  for (const char function : functionsOf(_config))
  {
    result.functions.push_back({function, std::nullopt});
    if (functions.get(function)) result.functions.back().evaluation = *evaluation++;
  }
  return result;
}

std::vector<SpatialEvaluation<double>>
StackSpatialAnalysis::simulate(const SliceInput& input, SpatialModelEvaluator<double, PixelType>& evaluator)
{
  if (evaluator.getNumDescriptors() == 0) return {};
  RandomGenerator generator(input.simulationSeed);
  SpatialModelHardcore<double, PixelType> model;
  model.setRandomGenerator(generator);
  model.setBoundary(input.boundary, input.index);
  Vector<double> distances(input.objects.getSize());
  distances.fill(_config.hardcoreDistance);
  model.setHardcoreDistances(distances);
  evaluator.setModel(model);
  evaluator.setNumMonteCarloSamples(_config.numMonteCarloSamples);
  if (_config.precision) evaluator.setPrecision(*_config.precision);
  evaluator.setStepName("Processing slice: " + input.slice->getName());
  evaluator.setOuter(this);
  try
  {
    return evaluator.eval(input.objects);
  }
  catch (const Cancelled&)
  {
    throw;
  }
  catch (Exception& error)
  {
    error.setWhat(input.slice->getName() + ": " + error.getWhat());
    throw;
  }
}

void StackSpatialAnalysis::note(const StackSlice& slice, const std::string& text)
{
  _messages.push_back(slice.getName() + ": " + text);
}

DataSet StackSpatialAnalysis::resultTable() const
{
  DataSet table;
  for (std::size_t row = 0; row < _results.size(); ++row)
  {
    const int i = static_cast<int>(row);
    table.setValue<std::string>("Slice", i, _results[row].slice->getName());
    for (const FunctionResult& result : _results[row].functions)
      table.setValue<double>(std::string(1, result.function) + "-SDI", i,
                             result.evaluation ? result.evaluation->pValue : unavailable);
  }
  return table;
}

std::vector<StackSpatialAnalysis::Combination> StackSpatialAnalysis::combinations() const
{
  const std::string functions = functionsOf(_config);
  std::vector<Combination> combinations;
  for (std::size_t k = 0; k < functions.size(); ++k)
  {
    std::vector<double> pValues, complements;
    for (const SliceResult& result : _results)
      if (const auto& evaluation = result.functions[k].evaluation)
      {
        pValues.push_back(evaluation->pValue);
        complements.push_back(1 + 1.0 / (_config.numMonteCarloSamples + 1) - evaluation->pValue);
      }
    combinations.push_back({functions[k], combinedPValue(pValues), combinedPValue(complements)});
  }
  return combinations;
}

/// With n values, -2 ln of their product follows chi squared with 2 n degrees of freedom, whose upper tail at 2 x is
/// that of a Poisson distribution of mean x: the sum of exp(-x) x^k / k! for k < n.
double combinedPValue(const std::vector<double>& pValues)
{
  if (pValues.empty()) return unavailable;
  double x = 0;
  for (const double pValue : pValues) x -= std::log(pValue);
  double sum = 0;
  if (!(x > 0)) return 1; // 0^0 counts as 1
  for (std::size_t k = 0; k < pValues.size(); ++k)
  {
    const auto n = static_cast<double>(k);
    sum += std::exp(-x + n * std::log(x) - std::lgamma(n + 1));
  }
  return std::min(sum, 1.0);
}
