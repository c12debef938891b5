#include "geometry/vertices.h"

#include "geometry/coordinates.h"
#include "geometry/shapereader.h"
#include "geometry/textbuffer.h"

#include <algorithm>
#include <array>

namespace
{

/// Sums of scalar products are formed in the coordinate type, those of pixels in a wider one that cannot overflow.
template <class T> using MatchSum = std::conditional_t<std::is_integral_v<T>, long long, T>;

constexpr int numShiftsPerPass = 8; // sums that the inner loop keeps in registers

/// The coordinates of a vertex set axis by axis, each axis long enough for `numLaps` laps and a pass beyond them.
template <class T> std::vector<T> coordinatesByAxis(const Vertices<T>& vertices, int length)
{
  const int size = vertices.getSize();
  const int space = vertices.getSpace();
  std::vector<T> axes(static_cast<std::size_t>(length) * space);
  for (int k = 0; k < space; ++k)
    for (int i = 0; i < length; ++i) axes[static_cast<std::size_t>(k) * length + i] = vertices.data(i % size)[k];
  return axes;
}

/// Adds, for 8 neighbouring shifts at once, the scalar products of the n pairs of vertices in order. Each sum grows
/// vertex by vertex, as if it were formed alone.
template <class T, int space>
void addScalarProducts(const T* a, std::ptrdiff_t strideA, const T* b, int n, MatchSum<T>* sums)
{
  using Sum = MatchSum<T>;
  std::array<Sum, numShiftsPerPass> totals = {};
  for (int m = 0; m < n; ++m)
    for (int shift = 0; shift < numShiftsPerPass; ++shift)
    {
      Sum product = static_cast<Sum>(a[m + shift]) * b[m];
      for (int k = 1; k < space; ++k) product += static_cast<Sum>(a[m + shift + k * strideA]) * b[m + k * n];
      totals[shift] += product;
    }
  std::copy(totals.begin(), totals.end(), sums);
}

/// The shift with the largest sum of scalar products, the first one on a tie.
template <class T, int space> int bestShift(const Vertices<T>& vertices, const Vertices<T>& other)
{
  const int n = vertices.getSize();
  const int length = 2 * n + numShiftsPerPass;
  const std::vector<T> a = coordinatesByAxis(vertices, length);
  const std::vector<T> b = coordinatesByAxis(other, n);
  std::array<MatchSum<T>, numShiftsPerPass> sums;
  MatchSum<T> best = 0;
  int bestIndex = 0;
  for (int shift = 0; shift < n; shift += numShiftsPerPass)
  {
    addScalarProducts<T, space>(a.data() + shift, length, b.data(), n, sums.data());
    for (int s = 0; s < std::min(numShiftsPerPass, n - shift); ++s)
      if (shift + s == 0 || sums[s] > best)
      {
        best = sums[s];
        bestIndex = shift + s;
      }
  }
  return bestIndex;
}

} // namespace

template <class T> void Vertices<T>::reserve(int capacity)
{
  VertexServer<T>& server = this->ownServer();
  if (capacity > server.getCapacity()) server.setCapacity(capacity);
}

template <class T> void Vertices<T>::append(const Vertices<T>& vertices)
{
  if (vertices.getSpace() != this->getSpace())
    throw SizeError("void Vertices<T>::append(const Vertices<T>&)", "The vertices have different dimensions");
  this->ownServer().append(vertices.getServer());
}

template <class T> void Vertices<T>::insert(int i, const Vector<T>& vertex)
{
  const char* const where = "void Vertices<T>::insert(int, const Vector<T>&)";
  requireIndex(i, getNumVertices() + 1, where);
  if (vertex.getSize() != this->getSpace()) throw SizeError(where, "The vertex has another dimension");
  const Vector<T> copy = vertex; // it may be one of these vertices
  VertexServer<T>& server = this->ownServer();
  server.insertSlots(i, 1);
  std::copy(copy.begin(), copy.end(), server.data(i));
}

template <class T> void Vertices<T>::remove(int first, int last)
{
  const char* const where = "void Vertices<T>::remove(int, int)";
  requireIndex(last, getNumVertices(), where);
  requireIndex(first, last + 1, where);
  this->ownServer().remove(first, last - first + 1);
}

template <class T> void Vertices<T>::reverse()
{
  const int space = this->getSpace();
  const int n = getNumVertices();
  VertexServer<T>& server = this->ownServer();
  for (int i = 0; i < n / 2; ++i) std::swap_ranges(server.data(i), server.data(i) + space, server.data(n - 1 - i));
}

template <class T> void Vertices<T>::setOrigin(int k)
{
  if (k == 0) return;
  requireIndex(k, getNumVertices(), "void Vertices<T>::setOrigin(int)");
  VertexServer<T>& server = this->ownServer();
  std::rotate(server.data(), server.data(k), server.data(server.getSize()));
}

template <class T> int Vertices<T>::findMatch(const Vertices<T>& other) const
{
  if (getNumVertices() != other.getNumVertices() || this->getSpace() != other.getSpace())
    throw SizeError("int Vertices<T>::findMatch(const Vertices<T>&) const", "Size mismatch");
  switch (this->getSpace())
  {
  case 1:
    return bestShift<T, 1>(*this, other);
  case 2:
    return bestShift<T, 2>(*this, other);
  case 3:
    return bestShift<T, 3>(*this, other);
  default:
    throw SizeError("int Vertices<T>::findMatch(const Vertices<T>&) const", "Vertices have one to three coordinates");
  }
}

template <class T> void Vertices<T>::closestPoints(const Vertices<T>& other, int& i, int& j) const
{
  if (getNumVertices() == 0 || other.getNumVertices() == 0 || this->getSpace() != other.getSpace())
    throw SizeError("void Vertices<T>::closestPoints(const Vertices<T>&, int&, int&) const",
                    "A vertex set is empty or the dimensions differ");
  i = j = 0;
  const int space = this->getSpace();
  Real<T> shortest = squaredDistance(data(0), other.data(0), space);
  for (int a = 0; a < getNumVertices(); ++a)
    for (int b = 0; b < other.getNumVertices(); ++b)
    {
      const Real<T> candidate = squaredDistance(data(a), other.data(b), space);
      if (!(candidate < shortest)) continue;
      shortest = candidate;
      i = a;
      j = b;
    }
}

template <class T> void Vertices<T>::read(std::istream& stream)
{
  ShapeReader reader(stream);
  const int shapeType = reader.readHeader("shape type");
  if (!isReadable(shapeType)) reader.fail("the shape type is not that of this shape");
  this->assign(readVertices(reader));
  setShapeType(shapeType);
}

template <class T> Vertices<T> Vertices<T>::readVertices(ShapeReader& reader)
{
  const int space = reader.readSpace();
  const int size = reader.readHeader("number of vertices");
  Vertices<T> vertices(space);
  Vector<T> vertex(space);
  for (int i = 0; i < size; ++i) // storage grows with the text read, whatever number it claims
  {
    reader.readLine(vertex.data(), space);
    vertices.append(vertex);
  }
  return vertices;
}

template <class T> void Vertices<T>::write(std::ostream& stream) const
{
  TextBuffer text(stream);
  const int space = this->getSpace();
  text << "# " << static_cast<int>(this->getShapeType()) << "\n# " << space << "\n# " << getNumVertices() << '\n';
  for (int i = 0; i < getNumVertices(); ++i) writeLine(text, data(i), space);
  text.flush();
}

template <class T> void Vertices<T>::requireIndex(int i, int size, const char* where) const
{
  if (i < 0 || i >= size) throw RangeError(where, "There is no vertex " + std::to_string(i));
}

GEOMETRY_INSTANTIATE(Vertices)
