#include "image/activecontour/pentadiagonalsystem.h"

#include <cstddef>

void PentadiagonalSystem::factorise(int numVertices, bool isClosed, double a, double b)
{
  _numVertices = numVertices;
  _bandSize = isClosed ? numVertices - 2 : numVertices;
  const Diagonals matrix = assembled(isClosed, a, b);
  factoriseBand(matrix);
  if (isClosed) eliminateBorder(matrix);
}

PentadiagonalSystem::Diagonals PentadiagonalSystem::assembled(bool isClosed, double a, double b) const
{
  const std::size_t n = static_cast<std::size_t>(_numVertices);
  if (isClosed)
    return {std::vector<double>(n, 1 + 2 * a + 6 * b), std::vector<double>(n, -a - 4 * b), std::vector<double>(n, b)};
  Diagonals matrix{std::vector<double>(n, 1), std::vector<double>(n, 0), std::vector<double>(n, 0)};
  for (std::size_t i = 0; i + 1 < n; ++i) // (1, -1)'(1, -1)
  {
    matrix.d[i] += a;
    matrix.d[i + 1] += a;
    matrix.e[i] -= a;
  }
  for (std::size_t i = 0; i + 2 < n; ++i) // (1, -2, 1)'(1, -2, 1)
  {
    matrix.d[i] += b;
    matrix.d[i + 1] += 4 * b;
    matrix.d[i + 2] += b;
    matrix.e[i] -= 2 * b;
    matrix.e[i + 1] -= 2 * b;
    matrix.f[i] += b;
  }
  return matrix;
}

void PentadiagonalSystem::factoriseBand(const Diagonals& matrix)
{
  const std::size_t n = static_cast<std::size_t>(_bandSize);
  _inverseD.resize(n);
  _l1.resize(n);
  _l2.resize(n);
  double before1 = 0, before2 = 0; // elements of D
  for (std::size_t i = 0; i < n; ++i)
  {
    const double l1 = i > 0 ? _l1[i - 1] : 0;
    const double l2 = i > 1 ? _l2[i - 2] : 0;
    const double d = matrix.d[i] - l1 * l1 * before1 - l2 * l2 * before2;
    _l1[i] = i + 1 < n ? (matrix.e[i] - (i > 0 ? _l2[i - 1] : 0) * l1 * before1) / d : 0;
    _l2[i] = i + 2 < n ? matrix.f[i] / d : 0;
    _inverseD[i] = 1 / d;
    before2 = before1;
    before1 = d;
  }
}

void PentadiagonalSystem::solveBand(double* points) const
{
  double* const end = points + 2 * static_cast<std::ptrdiff_t>(_bandSize);
  std::size_t i = 0;
  for (double* p = points; p != end; ++i, p += 2) // L z = r
    for (int k = 0; k < 2; ++k)
    {
      if (i > 0) p[k] -= _l1[i - 1] * p[k - 2];
      if (i > 1) p[k] -= _l2[i - 2] * p[k - 4];
    }
  for (double* p = end; p != points;) // L' x = z / D
  {
    p -= 2;
    --i;
    for (int k = 0; k < 2; ++k)
    {
      p[k] *= _inverseD[i];
      if (p + 2 != end) p[k] -= _l1[i] * p[k + 2];
      if (p + 2 != end && p + 4 != end) p[k] -= _l2[i] * p[k + 4];
    }
  }
}

/// The product of a column of the border with the coordinates of the band. The last but one vertex is beside the
/// band's last one and second beside the first, the last one the other way round.
double PentadiagonalSystem::borderProduct(const double* points, int border, int coordinate) const
{
  const auto at = [&](int i) { return points[2 * static_cast<std::ptrdiff_t>(i) + coordinate]; };
  if (border == 0) return _f * at(_bandSize - 2) + _e * at(_bandSize - 1) + _f * at(0);
  return _f * at(_bandSize - 1) + _e * at(0) + _f * at(1);
}

void PentadiagonalSystem::eliminateBorder(const Diagonals& matrix)
{
  const std::size_t m = static_cast<std::size_t>(_bandSize);
  _e = matrix.e[0];
  _f = matrix.f[0];
  _w.assign(2 * m, 0);
  _w[2 * (m - 2)] = _w[2 * 0] = _w[2 * (m - 1) + 1] = _w[2 * 1 + 1] = _f;
  _w[2 * (m - 1)] = _w[2 * 0 + 1] = _e;
  solveBand(_w.data());
  const double s00 = matrix.d[0] - borderProduct(_w.data(), 0, 0);
  const double s01 = matrix.e[0] - borderProduct(_w.data(), 0, 1);
  const double s11 = matrix.d[0] - borderProduct(_w.data(), 1, 1);
  const double determinant = s00 * s11 - s01 * s01;
  _inverseSchur = {s11 / determinant, -s01 / determinant, s00 / determinant};
}

void PentadiagonalSystem::solve(double* points) const
{
  solveBand(points);
  if (_bandSize == _numVertices) return;
  double* const border = points + 2 * static_cast<std::ptrdiff_t>(_bandSize);
  for (int k = 0; k < 2; ++k)
  {
    const double r0 = border[k] - borderProduct(points, 0, k);
    const double r1 = border[k + 2] - borderProduct(points, 1, k);
    border[k] = _inverseSchur[0] * r0 + _inverseSchur[1] * r1;
    border[k + 2] = _inverseSchur[1] * r0 + _inverseSchur[2] * r1;
  }
  const double* w = _w.data();
  for (double* p = points; p != border; p += 2, w += 2)
    for (int k = 0; k < 2; ++k) p[k] -= w[0] * border[k] + w[1] * border[k + 2];
}
