#pragma once

#include "numeric/randomengine.h"

#include <memory>

/// Draws uniform numbers from a random engine, by default a RecommendedRandomEngine of seed 0.
/// Not for use by several threads at a time: give each its own generator and seed.
class RandomGenerator
{
public:
  explicit RandomGenerator(unsigned long seed = 0);
  explicit RandomGenerator(std::unique_ptr<RandomEngine> engine) : _engine(std::move(engine)) {}

  /// Starts the sequence that belongs to the seed.
  void init(unsigned long seed) { _engine->init(seed); }

  /// An integer of 0..n-1, all equally likely. \throw ValueError  n = 0
  unsigned long uniformL(unsigned long n);
  /// An integer of first..last, all equally likely. \throw ValueError  last < first
  long long uniformLL(long long first, long long last);
  /// A number in [0, 1).
  double uniformLF() { return _engine->uniformLF(); }
  /// A number between a and b: a + (b - a) u, u in [0, 1).
  double uniformLF(double a, double b) { return a + (b - a) * uniformLF(); }

private:
  unsigned long long below(unsigned long long n);

  std::unique_ptr<RandomEngine> _engine;
};
