#pragma once

/// A source of uniformly distributed random numbers; the same seed gives the same numbers on every machine.
class RandomEngine
{
public:
  virtual ~RandomEngine() = default;

  virtual void init(unsigned long seed) = 0;
  /// 32 random bits.
  virtual unsigned long uniformL() = 0;
  /// 64 random bits.
  virtual unsigned long long uniformLL() = 0;
  /// A number in [0, 1), a multiple of 2^-53.
  virtual double uniformLF() = 0;
};
