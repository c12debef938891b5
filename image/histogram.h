#pragma once

#include "image/elementtypes.h"
#include "numeric/vector.h"

#include <cstddef>

/// Numbers of the n elements in `count` bins; bin k covers [origin + k width, origin + (k + 1) width). Elements beyond
/// either end are counted in the end bins, NaN in the last one; with a mask (or nullptr) only those whose mask element
/// is not 0 count. Integers are binned as real numbers, so that bins from -0.5 on in steps of 1 hold one grey level
/// each. Runs on all OpenMP threads. \throw ValueError  count < 1
template <class T>
Vector<long> histogramOf(const T* elements, const T* mask, std::size_t n, Real<T> origin, Real<T> width, int count);
