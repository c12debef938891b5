#include "numeric/recommendedrandomengine.h"

#include <bit>

namespace
{
/// Source: Steele, Lea and Flood, "Fast splittable pseudorandom number generators", 2014.
std::uint64_t splitmix64(std::uint64_t& state)
{
  state += 0x9e3779b97f4a7c15;
  std::uint64_t z = state;
  z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9;
  z = (z ^ (z >> 27)) * 0x94d049bb133111eb;
  return z ^ (z >> 31);
}
} // namespace

RecommendedRandomEngine::RecommendedRandomEngine(unsigned long seed)
{
  init(seed);
}

void RecommendedRandomEngine::init(unsigned long seed)
{
  std::uint64_t state = seed;
  for (std::uint64_t& word : _state) word = splitmix64(state);
}

unsigned long RecommendedRandomEngine::uniformL()
{
  return next() >> 32;
}

unsigned long long RecommendedRandomEngine::uniformLL()
{
  return next();
}

double RecommendedRandomEngine::uniformLF()
{
  return static_cast<double>(next() >> 11) * 0x1p-53;
}

std::uint64_t RecommendedRandomEngine::next()
{
  const std::uint64_t result = std::rotl(_state[1] * 5, 7) * 9;
  const std::uint64_t shifted = _state[1] << 17;
  _state[2] ^= _state[0];
  _state[3] ^= _state[1];
  _state[1] ^= _state[2];
  _state[0] ^= _state[3];
  _state[2] ^= shifted;
  _state[3] = std::rotl(_state[3], 45);
  return result;
}
