#pragma once

#include "numeric/progresssubject.h"

#include <algorithm>
#include <atomic>
#include <omp.h>

/// Calls body(first, last) for consecutive ranges of `grain` of the n rows, planes or whatever the subject's step
/// counts, on all OpenMP threads, until the subject is cancelled. The calling thread tells, after each range of its
/// own, how many all threads have done by then: every range on one thread, only some of them on several. The body must
/// not throw.
template <class Body> void forEachRange(ProgressSubject& subject, long n, long grain, const Body& body)
{
  std::atomic<long> numDone = 0;
  const long numRanges = (n + grain - 1) / grain;
#pragma omp parallel for schedule(static) if (numRanges > 1)
  for (long range = 0; range < numRanges; ++range)
  {
    if (subject.isCancelled()) continue;
    const long first = range * grain, last = std::min(n, first + grain);
    body(first, last);
    const long done = numDone += last - first;
    if (omp_get_thread_num() == 0) subject.progress(done);
  }
}
