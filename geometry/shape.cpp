#include "geometry/shape.h"

#include "geometry/coordinates.h"
#include "geometry/outputfile.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <limits>
#include <numeric>
#include <ostream>
#include <vector>

std::string getShapeTypeName(int shapeType)
{
  static const std::array<const char*, 9> names = {"ClosedCurve",    "OpenCurve",      "ClosedCurveStack",
                                                   "OpenCurveStack", "ClosedQuadMesh", "OpenQuadMesh",
                                                   "Vertices",       "VertexStack",    "TriMesh"};
  return shapeType >= 0 && shapeType < static_cast<int>(names.size()) ? names[shapeType] : "UnkwownShape";
}

template <class T> Vector<Real<T>> Shape<T>::cog() const
{
  if (getNumVertices() == 0) throw SizeError("Vector<T> Shape<T>::cog() const", "This shape has no vertices.");
  Vector<Real<T>> center(this->getSpace());
  for (int k = 0; k < center.getSize(); k += 2) // two sums at a time stay in registers
  {
    const int l = std::min(k + 1, center.getSize() - 1);
    Wide<T> sumK = 0, sumL = 0;
    forEachVertex(
        [&sumK, &sumL, k, l](const T* coordinates)
        {
          sumK += coordinates[k];
          sumL += coordinates[l];
        });
    center[k] = static_cast<Real<T>>(sumK / getNumVertices());
    center[l] = static_cast<Real<T>>(sumL / getNumVertices());
  }
  return center;
}

template <class T> SquareMatrix<Real<T>> Shape<T>::inertia() const
{
  const Vector<Real<T>> center = cog();
  const int space = this->getSpace();
  std::vector<Wide<T>> sums(static_cast<std::size_t>(space) * space, 0);
  forEachVertex(
      [&](const T* coordinates)
      {
        for (int i = 0; i < space; ++i)
          for (int j = 0; j < space; ++j)
            sums[static_cast<std::size_t>(i) * space + j] +=
                (Wide<T>(coordinates[i]) - center[i]) * (Wide<T>(coordinates[j]) - center[j]);
      });
  SquareMatrix<Real<T>> moments(space);
  for (int i = 0; i < space; ++i)
    for (int j = 0; j < space; ++j)
      moments(i, j) = static_cast<Real<T>>(sums[static_cast<std::size_t>(i) * space + j] / getNumVertices());
  return moments;
}

template <class T> BoundingBox<T> Shape<T>::boundingBox() const
{
  BoundingBox<T> box(this->getSpace());
  forEachVertex([&box](const T* coordinates) { box.add(coordinates); });
  return box;
}

template <class T> void Shape<T>::translate(const Vector<T>& shift)
{
  requireSpace(shift, "void Shape<T>::translate(const Vector<T>&)");
  changeEachVertex(
      [&shift](T* coordinates)
      {
        for (int k = 0; k < shift.getSize(); ++k) coordinates[k] += shift[k];
      });
}

template <class T> void Shape<T>::scale(const Vector<T>& factors)
{
  requireSpace(factors, "void Shape<T>::scale(const Vector<T>&)");
  changeEachVertex(
      [&factors](T* coordinates)
      {
        for (int k = 0; k < factors.getSize(); ++k) coordinates[k] *= factors[k];
      });
}

template <class T> void Shape<T>::scale(T factor)
{
  Vector<T> factors(this->getSpace());
  factors.fill(factor);
  scale(factors);
}

template <class T> void Shape<T>::multiply(const Matrix<T>& map)
{
  const int space = this->getSpace();
  if (map.getSize1() != space || map.getSize2() != space)
    throw SizeError("void Shape<T>::multiply(const Matrix<T>&)", "Vertex and matrix dimensions differ");
  Vector<T> vertex(space);
  changeEachVertex(
      [&](T* coordinates)
      {
        std::copy_n(coordinates, space, vertex.data());
        for (int i = 0; i < space; ++i)
          coordinates[i] = std::inner_product(vertex.begin(), vertex.end(), map[i].begin(), T(0));
      });
}

template <class T> Shape<T>& Shape<T>::operator*=(T factor)
{
  scale(factor);
  return *this;
}

template <class T> Shape<T>& Shape<T>::operator/=(T factor)
{
  if (std::is_integral_v<T> && factor == T(0))
    throw MathError("Shape<T>& Shape<T>::operator/=(T)", "Division of integer coordinates by zero");
  const int space = this->getSpace();
  changeEachVertex(
      [factor, space](T* coordinates)
      {
        for (int k = 0; k < space; ++k) coordinates[k] /= factor;
      });
  return *this;
}

template <class T> void Shape<T>::center()
{
  const Vector<Real<T>> center = cog();
  Vector<T> shift(center.getSize());
  for (int k = 0; k < shift.getSize(); ++k) shift[k] = toCoordinate<T>(-center[k]);
  translate(shift);
}

template <class T> Shape<T>& Shape<T>::operator+=(const Shape<T>& other)
{
  requireSameLayout(other, "Shape<T>& Shape<T>::operator+=(const Shape<T>&)");
  const Vector<T> summands = other.toVector(); // the other may be this shape
  const T* summand = summands.data();
  changeEachVertex(
      [&summand, space = this->getSpace()](T* coordinates)
      {
        for (int k = 0; k < space; ++k) coordinates[k] += *summand++;
      });
  return *this;
}

template <class T> Shape<T>& Shape<T>::operator-=(const Shape<T>& other)
{
  requireSameLayout(other, "Shape<T>& Shape<T>::operator-=(const Shape<T>&)");
  const Vector<T> subtrahends = other.toVector();
  const T* subtrahend = subtrahends.data();
  changeEachVertex(
      [&subtrahend, space = this->getSpace()](T* coordinates)
      {
        for (int k = 0; k < space; ++k) coordinates[k] -= *subtrahend++;
      });
  return *this;
}

template <class T> Vector<T> Shape<T>::toVector() const
{
  const int space = this->getSpace();
  if (getNumVertices() > std::numeric_limits<int>::max() / space)
    throw SizeError("Vector<T> Shape<T>::toVector() const", "There are too many coordinates");
  Vector<T> all(getNumVertices() * space);
  T* next = all.data();
  forEachVertex([&next, space](const T* coordinates) { next = std::copy_n(coordinates, space, next); });
  return all;
}

template <class T> void Shape<T>::fromVector(const Vector<T>& coordinates)
{
  const int space = this->getSpace();
  if (coordinates.getSize() % space != 0 || coordinates.getSize() / space != getNumVertices())
    throw SizeError("void Shape<T>::fromVector(const Vector<T>&)", "The coordinates are not those of as many vertices");
  const Vector<T> copy = coordinates; // it may be one of the vertices
  const T* next = copy.data();
  changeEachVertex(
      [&next, space](T* vertex)
      {
        std::copy_n(next, space, vertex);
        next += space;
      });
}

template <class T> void Shape<T>::print(const std::string& title, std::ostream& stream) const
{
  stream << title << '\n'
         << "  Type = " << getShapeTypeName(getShapeType()) << '\n'
         << "  Name = " << _name << '\n'
         << "  Number of vertices = " << getNumVertices() << '\n';
  const int space = this->getSpace();
  forEachVertex(
      [&stream, space](const T* coordinates)
      {
        for (int k = 0; k < space; ++k) stream << (k == 0 ? "  " : " ") << coordinates[k];
        stream << '\n';
      });
}

template <class T> void Shape<T>::load(const std::string& path)
{
  const std::string where = "void Shape<T>::load(const std::string&)";
  std::ifstream stream(path, std::ios::binary);
  if (!stream) throw FileReadError(where, path + " : cannot be opened", path);
  try
  {
    read(stream);
  }
  catch (FileFormatError& error)
  {
    error.setFilename(path);
    error.setWhat(path + " : " + error.getWhat());
    error.addWhere(where);
    throw;
  }
}

template <class T> void Shape<T>::save(const std::string& path, bool overwrite) const
{
  OutputFile file(path, overwrite, "void Shape<T>::save(const std::string&, bool) const");
  write(file.stream());
  file.commit();
}

template <class T> void Shape<T>::requireSpace(const Vector<T>& vector, const char* where) const
{
  if (vector.getSize() != this->getSpace()) throw SizeError(where, "Vertex and vector dimensions differ");
}

template <class T> void Shape<T>::requireSameLayout(const Shape<T>& other, const char* where) const
{
  if (other.getSpace() != this->getSpace()) throw SizeError(where, "The shapes have different dimensions");
  if (other.getNumVertices() != getNumVertices()) throw SizeError(where, "Size mismatch");
}

GEOMETRY_INSTANTIATE(Shape)
