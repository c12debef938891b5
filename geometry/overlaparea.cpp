#include "geometry/overlaparea.h"

#include <algorithm>
#include <vector>

namespace
{
/// An edge that rises from y0 to y1.
struct RisingEdge
{
  double x0, y0, x1, y1;

  double xAt(double y) const { return x0 + (y - y0) / (y1 - y0) * (x1 - x0); }
};

template <class T> std::vector<RisingEdge> risingEdges(const Curve<T>& curve)
{
  std::vector<RisingEdge> edges;
  const int size = curve.getSize();
  for (int i = 0, previous = size - 1; i < size; previous = i++)
  {
    const T *p = curve.data(previous), *q = curve.data(i);
    if (p[1] == q[1]) continue;
    if (p[1] > q[1]) std::swap(p, q);
    edges.push_back(
        {static_cast<double>(p[0]), static_cast<double>(p[1]), static_cast<double>(q[0]), static_cast<double>(q[1])});
  }
  return edges;
}

/// Adds the height at which two edges cross, if they do.
void addCrossing(const RisingEdge& a, const RisingEdge& b, std::vector<double>& heights)
{
  const double low = std::max(a.y0, b.y0), high = std::min(a.y1, b.y1);
  if (low >= high) return;
  const double below = a.xAt(low) - b.xAt(low), above = a.xAt(high) - b.xAt(high);
  if ((below < 0) != (above < 0) && below != above) heights.push_back(low + (high - low) * below / (below - above));
}

/// Where the edges meet a horizontal line, in ascending order.
std::vector<double> crossings(const std::vector<RisingEdge>& edges, double y)
{
  std::vector<double> result;
  for (const RisingEdge& edge : edges)
    if (edge.y0 < y && y < edge.y1) result.push_back(edge.xAt(y));
  std::sort(result.begin(), result.end());
  return result;
}

/// Length of the common part of two sets of intervals, given by their ends in ascending order.
double commonLength(const std::vector<double>& a, const std::vector<double>& b)
{
  double length = 0;
  for (std::size_t i = 0, j = 0; i + 1 < a.size() && j + 1 < b.size();)
  {
    length += std::max(0.0, std::min(a[i + 1], b[j + 1]) - std::max(a[i], b[j]));
    a[i + 1] < b[j + 1] ? i += 2 : j += 2;
  }
  return length;
}
} // namespace

// Between the heights of all vertices and crossings the common length is linear, so that its middle gives the area.
template <class T> double overlapArea(const Curve<T>& a, const Curve<T>& b)
{
  const std::vector<RisingEdge> edgesA = risingEdges(a), edgesB = risingEdges(b);
  std::vector<RisingEdge> edges = edgesA;
  edges.insert(edges.end(), edgesB.begin(), edgesB.end());
  std::vector<double> heights;
  for (const RisingEdge& edge : edges) heights.insert(heights.end(), {edge.y0, edge.y1});
  for (std::size_t i = 0; i < edges.size(); ++i)
    for (std::size_t j = 0; j < i; ++j) addCrossing(edges[i], edges[j], heights);
  std::sort(heights.begin(), heights.end());
  double area = 0;
  for (std::size_t i = 0; i + 1 < heights.size(); ++i)
  {
    const double middle = heights[i] / 2 + heights[i + 1] / 2;
    if (heights[i] < middle && middle < heights[i + 1])
      area += (heights[i + 1] - heights[i]) * commonLength(crossings(edgesA, middle), crossings(edgesB, middle));
  }
  return area;
}

template double overlapArea<float>(const Curve<float>&, const Curve<float>&);
template double overlapArea<double>(const Curve<double>&, const Curve<double>&);
template double overlapArea<long double>(const Curve<long double>&, const Curve<long double>&);
