#pragma once

#include "geometry/vertices.h"

#include <vector>

/// Vertex sets of one size and space, the rows of a grid.
template <class T> using VertexRows = std::vector<const Vertices<T>*>;

/// The cyclic shift k for which the sum of the scalar products of vertex (m + k) mod n of each row and vertex m of the
/// same row of the others, formed in the coordinate type (of integers in a wider one), is largest; the smallest k on a
/// tie. All rows have the same size, in two or three dimensions. Takes the time of Fourier transforms of n numbers per
/// row: they give all sums at once, and those that rounding cannot tell from the largest are then formed term by term.
template <class T> int cyclicMatch(const VertexRows<T>& rows, const VertexRows<T>& others);

/// As cyclicMatch(), but the sums are formed in double at least, with each row moved to the origin by its own centre of
/// gravity. That changes no sum's distance to the others, but for rounding: far from the origin, the products of raw
/// coordinates round by more than the shifts differ.
template <class T> int centeredMatch(const VertexRows<T>& rows, const VertexRows<T>& others);

/// The same as the first for single rows.
template <class T> int cyclicMatch(const Vertices<T>& vertices, const Vertices<T>& other)
{
  return cyclicMatch(VertexRows<T>{&vertices}, VertexRows<T>{&other});
}
