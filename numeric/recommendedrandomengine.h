#pragma once

#include "numeric/randomengine.h"

#include <array>
#include <cstdint>

/// The generator in use: xoshiro256** with its state filled by splitmix64.
/// Source: Blackman and Vigna, "Scrambled linear pseudorandom number generators", 2021.
class RecommendedRandomEngine : public RandomEngine
{
public:
  explicit RecommendedRandomEngine(unsigned long seed = 0);

  void init(unsigned long seed) override;
  unsigned long uniformL() override;
  unsigned long long uniformLL() override;
  double uniformLF() override;

private:
  std::uint64_t next();

  std::array<std::uint64_t, 4> _state;
};
