#include "geometry/cyclicmatch.h"

#include "numeric/fouriertransform.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

namespace
{
/// Sums of scalar products are formed in the coordinate type, those of pixels in one that cannot overflow and is exact
/// below 2^64.
template <class T> using MatchSum = std::conditional_t<std::is_integral_v<T>, long double, T>;

/// Sum of a function of numbers, in four parts, so that no addition waits for the one before.
template <class T, class F> double sumOf(const T* values, std::ptrdiff_t count, F function)
{
  double sums[4] = {};
  std::ptrdiff_t i = 0;
  for (; i + 4 <= count; i += 4)
    for (int k = 0; k < 4; ++k) sums[k] += function(static_cast<double>(values[i + k]));
  for (; i < count; ++i) sums[0] += function(static_cast<double>(values[i]));
  return sums[0] + sums[1] + sums[2] + sums[3];
}

/// One coordinate of all vertices, with the mean taken off.
template <class T> Vector<double> centeredCoordinates(const Vertices<T>& vertices, int axis)
{
  const int n = vertices.getSize(), space = vertices.getSpace();
  const T* const data = vertices.data() + axis;
  Vector<double> coordinates(n);
  double* const values = coordinates.data();
  for (std::ptrdiff_t i = 0; i < n; ++i) values[i] = static_cast<double>(data[space * i]);
  const double mean = sumOf(values, n, [](double value) { return value; }) / n;
  for (int i = 0; i < n; ++i) values[i] -= mean;
  return coordinates;
}

template <class T> bool isConstant(const Vertices<T>& vertices, int axis)
{
  const int n = vertices.getSize(), space = vertices.getSpace();
  const T* const data = vertices.data() + axis;
  for (std::ptrdiff_t i = 1; i < n; ++i)
    if (data[space * i] != data[0]) return false;
  return true;
}

/// Root of the sum of the squared coordinates.
template <class T> double magnitude(const Vertices<T>& vertices)
{
  const std::ptrdiff_t count = std::ptrdiff_t{vertices.getSize()} * vertices.getSpace();
  return std::sqrt(sumOf(vertices.data(), count, [](double value) { return value * value; }));
}

/// Adds, for each shift, the sum of the products of two coordinates, seen as complex numbers.
void addCorrelation(Vector<double> aRe, Vector<double> aIm, Vector<double> bRe, Vector<double> bIm,
                    std::vector<double>& sums)
{
  FourierTransform<double>::computeForward(aRe, aIm);
  FourierTransform<double>::computeForward(bRe, bIm);
  const int n = aRe.getSize();
  for (int i = 0; i < n; ++i)
  {
    const double re = aRe[i] * bRe[i] + aIm[i] * bIm[i], im = aIm[i] * bRe[i] - aRe[i] * bIm[i];
    aRe[i] = re;
    aIm[i] = im;
  }
  FourierTransform<double>::computeBackward(aRe, aIm);
  for (int i = 0; i < n; ++i) sums[static_cast<std::size_t>(i)] += aRe[i] / n;
}

/// All sums but for rounding and for what is the same in all of them.
template <class T> std::vector<double> approximateSums(const Vertices<T>& vertices, const Vertices<T>& other)
{
  const int n = vertices.getSize();
  std::vector<double> sums(static_cast<std::size_t>(n), 0.0);
  addCorrelation(centeredCoordinates(vertices, 0), centeredCoordinates(vertices, 1), centeredCoordinates(other, 0),
                 centeredCoordinates(other, 1), sums);
  if (vertices.getSpace() == 2 || isConstant(vertices, 2) || isConstant(other, 2)) return sums;
  Vector<double> zeros;
  zeros.setZeros(n);
  addCorrelation(centeredCoordinates(vertices, 2), zeros, centeredCoordinates(other, 2), zeros, sums);
  return sums;
}

/// The sum for one shift, which grows pair by pair.
template <class T> MatchSum<T> matchSum(const Vertices<T>& vertices, const Vertices<T>& other, int shift)
{
  using Sum = MatchSum<T>;
  const int n = vertices.getSize(), space = vertices.getSpace();
  const T *const data = vertices.data(), *const otherData = other.data();
  Sum sum = 0;
  for (std::ptrdiff_t m = 0, i = shift; m < n; ++m, i = i + 1 < n ? i + 1 : 0)
  {
    const T *a = data + space * i, *b = otherData + space * m;
    const Sum planar = Sum(a[0]) * Sum(b[0]) + Sum(a[1]) * Sum(b[1]);
    sum += space == 2 ? planar : planar + Sum(a[2]) * Sum(b[2]);
  }
  return sum;
}

/// The square root of the sum of the squared coordinates of all rows.
template <class T> double magnitude(const VertexRows<T>& rows)
{
  double sum = 0;
  for (const Vertices<T>* row : rows) sum += std::pow(magnitude(*row), 2);
  return std::sqrt(sum);
}

template <class T> std::vector<double> approximateSums(const VertexRows<T>& rows, const VertexRows<T>& others)
{
  std::vector<double> sums = approximateSums(*rows[0], *others[0]);
  for (std::size_t r = 1; r < rows.size(); ++r)
    std::ranges::transform(sums, approximateSums(*rows[r], *others[r]), sums.begin(), std::plus<>());
  return sums;
}

template <class T> MatchSum<T> matchSum(const VertexRows<T>& rows, const VertexRows<T>& others, int shift)
{
  MatchSum<T> sum = 0;
  for (std::size_t r = 0; r < rows.size(); ++r) sum += matchSum(*rows[r], *others[r], shift);
  return sum;
}

/// The rows in double or in their own wider type, each about its centre of gravity.
template <class T> auto centeredRows(const VertexRows<T>& rows)
{
  using Wide = std::conditional_t<std::is_same_v<T, long double>, long double, double>;
  std::vector<Vertices<Wide>> centered;
  centered.reserve(rows.size());
  for (const Vertices<T>* row : rows)
  {
    Vertices<Wide>& copy = centered.emplace_back(row->getSpace(), row->getSize());
    std::copy_n(row->data(), static_cast<std::ptrdiff_t>(row->getSize()) * row->getSpace(), copy.data());
    copy.center();
  }
  return centered;
}

template <class T> VertexRows<T> rowsOf(const std::vector<Vertices<T>>& vertices)
{
  VertexRows<T> rows;
  rows.reserve(vertices.size());
  for (const Vertices<T>& row : vertices) rows.push_back(&row);
  return rows;
}
} // namespace

template <class T> int cyclicMatch(const VertexRows<T>& rows, const VertexRows<T>& others)
{
  const int n = rows.empty() ? 0 : rows[0]->getSize();
  if (n < 2) return 0;
  const std::vector<double> sums = approximateSums(rows, others);
  // What the additions in the coordinate type, and the transforms, can be wrong by at the most.
  const double numAdditions = n + static_cast<double>(rows.size() - 1);
  const double unit = std::max<double>(std::numeric_limits<MatchSum<T>>::epsilon(), 0x1p-52);
  const double rounding = 8 * numAdditions * unit * magnitude(rows) * magnitude(others);
  const double largest = *std::max_element(sums.begin(), sums.end());
  int best = -1;
  MatchSum<T> bestSum = 0;
  for (int k = 0; k < n; ++k)
  {
    if (sums[static_cast<std::size_t>(k)] < largest - 2 * rounding) continue; // NaN is never passed over
    const MatchSum<T> sum = matchSum(rows, others, k);
    if (best >= 0 && !(sum > bestSum)) continue;
    best = k;
    bestSum = sum;
  }
  return best;
}

template <class T> int centeredMatch(const VertexRows<T>& rows, const VertexRows<T>& others)
{
  if (rows.empty() || rows[0]->getSize() < 2) return 0;
  if constexpr (std::is_integral_v<T>)
    return cyclicMatch(rows, others); // the sums of integers are exact wherever they lie
  else
    return cyclicMatch(rowsOf(centeredRows(rows)), rowsOf(centeredRows(others)));
}

template int cyclicMatch<int>(const VertexRows<int>&, const VertexRows<int>&);
template int cyclicMatch<float>(const VertexRows<float>&, const VertexRows<float>&);
template int cyclicMatch<double>(const VertexRows<double>&, const VertexRows<double>&);
template int cyclicMatch<long double>(const VertexRows<long double>&, const VertexRows<long double>&);

template int centeredMatch<int>(const VertexRows<int>&, const VertexRows<int>&);
template int centeredMatch<float>(const VertexRows<float>&, const VertexRows<float>&);
template int centeredMatch<double>(const VertexRows<double>&, const VertexRows<double>&);
template int centeredMatch<long double>(const VertexRows<long double>&, const VertexRows<long double>&);
