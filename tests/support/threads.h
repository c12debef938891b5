#pragma once

#include <omp.h>

/// Sets the number of OpenMP threads for a scope.
class NumThreads
{
public:
  explicit NumThreads(int n) : _before(omp_get_max_threads()) { omp_set_num_threads(n); }
  NumThreads(const NumThreads&) = delete;
  NumThreads& operator=(const NumThreads&) = delete;
  ~NumThreads() { omp_set_num_threads(_before); }

private:
  int _before;
};
