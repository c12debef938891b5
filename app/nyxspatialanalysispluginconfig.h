#pragma once

#include "analysis/spatial/stackspatialanalysis.h"

/// What the user wants a spatial analysis to compare. It is kept from one analysis to the next.
struct NYXSpatialAnalysisPluginConfig : StackSpatialAnalysisConfig
{
  static constexpr int minNumMonteCarloSamples = 9;
  static constexpr int maxNumMonteCarloSamples = 9999;
  static constexpr int maxSeed = 2147483647;

  /// As it was used last, with the models of this stack that have the names of those, and without the lengths of
  /// another unit; defaults for the rest.
  static NYXSpatialAnalysisPluginConfig load(const Stack& stack);
  void save(const Stack& stack) const;
};
