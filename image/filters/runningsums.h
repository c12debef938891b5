#pragma once

#include "image/filters/separablefilter.h"

/// Replaces integers by sums over the 2 radius + 1 slices around each slice, after a filter within the slices, times
/// `scale` and rounded to the nearest. The slices next to each other beyond both ends are the outermost ones.
///
/// Each sum comes from the one before: what a linear filter makes of the slice that enters minus the one that leaves is
/// added. Besides the image, up to as many slices of it are kept as leave later, and few of type A, whatever the
/// radius. Exists for A = double and all integers, A = int for those below 32 bits.
template <class T, class A> void sumAcrossSlices(const SliceView<T>& image, const LineFilter<A>& alongColumns,
                                                 const LineFilter<A>& acrossLines, int radius, Real<A> scale,
                                                 ProgressSubject& subject);
