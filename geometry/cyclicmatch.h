#pragma once

#include "geometry/vertices.h"

/// The cyclic shift k for which the sum of the scalar products of vertex (m + k) mod n and the other set's vertex m,
/// formed in the coordinate type (of integers in long long), is largest; the smallest k on a tie. Both sets have the
/// same size, in two or three dimensions. Takes the time of Fourier transforms of n numbers: they give all sums at
/// once, and those that rounding cannot tell from the largest are then formed term by term.
template <class T> int cyclicMatch(const Vertices<T>& vertices, const Vertices<T>& other);
