#include "numeric/randomgenerator.h"

#include "numeric/exception.h"
#include "numeric/recommendedrandomengine.h"

RandomGenerator::RandomGenerator(unsigned long seed) : _engine(std::make_unique<RecommendedRandomEngine>(seed)) {}

unsigned long RandomGenerator::uniformL(unsigned long n)
{
  if (n == 0)
    throw ValueError("unsigned long RandomGenerator::uniformL(unsigned long)", "There is nothing to draw from");
  return below(n);
}

long long RandomGenerator::uniformLL(long long first, long long last)
{
  if (last < first)
    throw ValueError("long long RandomGenerator::uniformLL(long long, long long)", "There is nothing to draw from");
  const auto start = static_cast<unsigned long long>(first);
  const unsigned long long count = static_cast<unsigned long long>(last) - start + 1; // 0 stands for all 2^64
  return static_cast<long long>(start + (count == 0 ? _engine->uniformLL() : below(count)));
}

/// Draws below the largest multiple of n are kept, so that every remainder is equally likely.
unsigned long long RandomGenerator::below(unsigned long long n)
{
  const unsigned long long remainder = (0 - n) % n; // of 2^64
  unsigned long long draw;
  do draw = _engine->uniformLL();
  while (draw < remainder);
  return draw % n;
}
