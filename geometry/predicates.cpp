#include "geometry/predicates.h"

#include <array>

namespace
{

/// A number as the exact sum of two: the rounded one and its error.
template <class R> struct TwoParts
{
  R value;
  R error;
};

template <class R> TwoParts<R> twoSum(R a, R b)
{
  const R sum = a + b, bPart = sum - a, aPart = sum - bPart;
  return {sum, (a - aPart) + (b - bPart)};
}

template <class R> TwoParts<R> twoDifference(R a, R b)
{
  return twoSum(a, -b);
}

template <class R> TwoParts<R> twoProduct(R a, R b)
{
  const R product = a * b;
  return {product, std::fma(a, b, -product)};
}

/// A sum without rounding: components that do not overlap, in order of increasing magnitude.
template <class R> class Expansion
{
public:
  void add(R number)
  {
    int kept = 0;
    for (int i = 0; i < _size; ++i)
    {
      const TwoParts<R> sum = twoSum(number, _components[static_cast<std::size_t>(i)]);
      if (sum.error != 0) _components[static_cast<std::size_t>(kept++)] = sum.error;
      number = sum.value;
    }
    if (number != 0) _components[static_cast<std::size_t>(kept++)] = number;
    _size = kept;
  }
  void add(const TwoParts<R>& number)
  {
    add(number.error);
    add(number.value);
  }

  int sign() const
  {
    if (_size == 0) return 0;
    const R largest = _components[static_cast<std::size_t>(_size - 1)];
    return largest > 0 ? 1 : largest < 0 ? -1 : 0;
  }

private:
  static constexpr std::size_t capacity = 6 * 8 * 4; // of a 3 x 3 determinant of differences
  std::array<R, capacity> _components;
  int _size = 0;
};

/// Adds the product of two differences; sign is 1 or -1.
template <class R> void addProduct(Expansion<R>& sum, const TwoParts<R>& a, const TwoParts<R>& b, R sign)
{
  for (const R x : {a.value, a.error})
    for (const R y : {b.value, b.error}) sum.add(twoProduct(sign * x, y));
}

template <class R>
void addProduct(Expansion<R>& sum, const TwoParts<R>& a, const TwoParts<R>& b, const TwoParts<R>& c, R sign)
{
  for (const R x : {a.value, a.error})
    for (const R y : {b.value, b.error})
    {
      const TwoParts<R> xy = twoProduct(sign * x, y);
      for (const R z : {c.value, c.error})
      {
        sum.add(twoProduct(xy.value, z));
        sum.add(twoProduct(xy.error, z));
      }
    }
}

/// Sign of a * b - c * d.
template <class R> int compareProducts(R a, R b, R c, R d)
{
  const TwoParts<R> ab = twoProduct(a, b), cd = twoProduct(c, d);
  if (ab.value != cd.value) return ab.value > cd.value ? 1 : ab.value < cd.value ? -1 : 0;
  return ab.error > cd.error ? 1 : ab.error < cd.error ? -1 : 0;
}

template <class R> int exactOrientationOf(const PlanePoint<R>& a, const PlanePoint<R>& b, const PlanePoint<R>& c)
{
  const TwoParts<R> ax = twoDifference(a.x, c.x), ay = twoDifference(a.y, c.y);
  const TwoParts<R> bx = twoDifference(b.x, c.x), by = twoDifference(b.y, c.y);
  if (!std::isfinite(ax.value + ay.value + bx.value + by.value)) return 0;
  if (ax.error == 0 && ay.error == 0 && bx.error == 0 && by.error == 0)
    return compareProducts(ax.value, by.value, ay.value, bx.value);
  Expansion<R> determinant;
  addProduct(determinant, ax, by, R(1));
  addProduct(determinant, ay, bx, R(-1));
  return determinant.sign();
}

template <class R>
int exactOrientationOf(const Vector3d<R>& a, const Vector3d<R>& b, const Vector3d<R>& c, const Vector3d<R>& d)
{
  std::array<TwoParts<R>, 3> u, v, w;
  R sum = 0;
  for (std::size_t k = 0; k < 3; ++k)
  {
    u[k] = twoDifference(a[k], d[k]);
    v[k] = twoDifference(b[k], d[k]);
    w[k] = twoDifference(c[k], d[k]);
    sum += u[k].value + v[k].value + w[k].value;
  }
  if (!std::isfinite(sum)) return 0;
  Expansion<R> determinant;
  for (std::size_t k = 0; k < 3; ++k)
  {
    const std::size_t l = (k + 1) % 3, m = (k + 2) % 3;
    addProduct(determinant, u[k], v[l], w[m], R(1));
    addProduct(determinant, u[k], v[m], w[l], R(-1));
  }
  return determinant.sign();
}

template <class R>
int orientationOf(const Vector3d<R>& a, const Vector3d<R>& b, const Vector3d<R>& c, const Vector3d<R>& d)
{
  constexpr R epsilon = std::numeric_limits<R>::epsilon() / 2;
  constexpr R errorBound = (7 + 56 * epsilon) * epsilon;
  const Vector3d<R> u = difference<R>(a.data(), d.data()), v = difference<R>(b.data(), d.data()),
                    w = difference<R>(c.data(), d.data());
  R determinant = 0, permanent = 0;
  for (std::size_t k = 0; k < 3; ++k)
  {
    const std::size_t l = (k + 1) % 3, m = (k + 2) % 3;
    const R vw = v[k] * w[l], wv = v[l] * w[k];
    determinant += u[m] * (vw - wv);
    permanent += std::abs(u[m]) * (std::abs(vw) + std::abs(wv));
  }
  if (determinant > errorBound * permanent) return 1;
  if (-determinant > errorBound * permanent) return -1;
  return exactOrientationOf(a, b, c, d);
}

} // namespace

int exactOrientation(const PlanePoint<double>& a, const PlanePoint<double>& b, const PlanePoint<double>& c)
{
  return exactOrientationOf(a, b, c);
}

int exactOrientation(const PlanePoint<long double>& a, const PlanePoint<long double>& b,
                     const PlanePoint<long double>& c)
{
  return exactOrientationOf(a, b, c);
}

int orientation(const Vector3d<double>& a, const Vector3d<double>& b, const Vector3d<double>& c,
                const Vector3d<double>& d)
{
  return orientationOf(a, b, c, d);
}

int orientation(const Vector3d<long double>& a, const Vector3d<long double>& b, const Vector3d<long double>& c,
                const Vector3d<long double>& d)
{
  return orientationOf(a, b, c, d);
}
