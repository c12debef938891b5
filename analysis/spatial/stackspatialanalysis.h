#pragma once

#include "analysis/spatial/spatialmodelevaluatorbase.h"
#include "numeric/dataset.h"
#include "numeric/progresssubject.h"

#include <optional>
#include <string>
#include <vector>

class Model;
class ModelItem;
class Stack;
class StackSlice;
template <class C, class P> class SpatialModelEvaluator;
template <class T> class StackReconstruction;

/// What a spatial analysis compares, and with what. Lengths are in the stack's length unit.
struct StackSpatialAnalysisConfig
{
  const Model* boundary = nullptr; ///< closed curves; the first one of a slice bounds its domain
  const Model* objects = nullptr;  ///< each point of point items, the isobarycentre of other items
  int numMonteCarloSamples = 99;
  double hardcoreDistance = 0;     ///< of each object, from the border; two objects keep twice that distance
  double evaluationDensity = 1;    ///< of the positions for function F, per unit of area
  std::optional<double> precision; ///< of the distances; by default a thousandth of the diagonal of the boundary's box
  unsigned long seed = 1;
  bool hasFunctionB = false;
  bool hasFunctionF = false;
  bool hasFunctionG = false;
  bool hasFunctionH = false;
};

/// Compares the objects on each slice of a stack with random patterns inside the slice's boundary, in reconstructed x
/// and y. The same configuration gives the same results, whatever the number of threads and the other functions.
class StackSpatialAnalysis : public virtual ProgressSubject
{
public:
  using Config = StackSpatialAnalysisConfig;

  /// More F positions than this are refused.
  static constexpr double maxNumPositions = 10000000;

  /// A function of a slice. There is no evaluation where there is nothing to evaluate it on: F without positions.
  struct FunctionResult
  {
    char function; ///< 'B', 'F', 'G' or 'H'
    std::optional<SpatialEvaluation<double>> evaluation;
  };
  struct SliceResult
  {
    const StackSlice* slice;
    int numObjects;
    std::vector<FunctionResult> functions;
  };
  /// Fisher's combinations over the slices, which assume that the slices are independent; NaN without p-values.
  struct Combination
  {
    char function;
    double pValue;             ///< of the p-values
    double complementaryValue; ///< of 1 + 1 / (N + 1) - p
  };

  /// Analyses every slice that has a boundary and objects in it. Stack, models and their slices are borrowed.
  /// \throw UsageError  the configuration is not usable, or no slice has both \throw FileError  an image's size is not
  /// known \throw Exception  of a slice, with its name \throw Cancelled  this step was
  void run(const Stack& stack, const Config& config);

  /// In stack order.
  const std::vector<SliceResult>& getResults() const { return _results; }
  /// What was left out, a line each.
  const std::vector<std::string>& getMessages() const { return _messages; }
  /// One row per slice: "Slice", and "B-SDI", "F-SDI", "G-SDI" and "H-SDI" with the p-values of the functions that were
  /// asked for, NaN where there is none.
  DataSet resultTable() const;
  /// One for each function that was asked for.
  std::vector<Combination> combinations() const;

private:
  using PixelType = unsigned char; // of masks, which are not used
  struct SliceInput;
  class SliceFunctions;

  std::vector<SliceInput> readSlices(const Stack& stack);
  std::optional<SliceInput> readSlice(const StackReconstruction<double>& reconstruction, const StackSlice& slice);
  Vertices<double> insideOf(const Vertices<double>& boundary, const Vertices<double>& objects, const StackSlice& slice);
  void countPositions(SliceInput& input);
  SliceResult analyse(const SliceInput& input);
  std::vector<SpatialEvaluation<double>> simulate(const SliceInput& input,
                                                  SpatialModelEvaluator<double, PixelType>& evaluator);
  void note(const StackSlice& slice, const std::string& text);

  Config _config;
  std::vector<SliceResult> _results;
  std::vector<std::string> _messages;
};

/// Fisher's combination of independent p-values: the probability of a product as small or smaller when all of them are
/// uniform; NaN without p-values. Source: R. A. Fisher, "Statistical methods for research workers", 4th ed., 1932.
double combinedPValue(const std::vector<double>& pValues);
