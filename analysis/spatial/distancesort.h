#pragma once

#include <span>

/// Sorts distances in increasing order: numbers that are not negative and not NaN, usually spread over their range.
///
/// They are dealt by their values into many buckets, and each bucket again, until few are left in each: in linear time,
/// unless most of them crowd in few places.
void sortDistances(std::span<float> distances);
void sortDistances(std::span<double> distances);
void sortDistances(std::span<long double> distances);
