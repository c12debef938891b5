#include "geometry/vertices.h"

#include "geometry/cyclicmatch.h"
#include "geometry/kdtree.h"
#include "geometry/shapereader.h"
#include "geometry/textbuffer.h"

#include <algorithm>
#include <vector>

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
  const std::vector<T> coordinates(vertex.begin(), vertex.end()); // it may be one of these vertices
  VertexServer<T>& server = this->ownServer();
  server.insertSlots(i, 1);
  std::copy(coordinates.begin(), coordinates.end(), server.data(i));
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
  const char* const where = "int Vertices<T>::findMatch(const Vertices<T>&) const";
  const int space = this->getSpace();
  if (getNumVertices() != other.getNumVertices() || space != other.getSpace()) throw SizeError(where, "Size mismatch");
  if (space != 2 && space != 3) throw SizeError(where, "The vertices are not in two or three dimensions");
  return cyclicMatch(*this, other);
}

template <class T> void Vertices<T>::closestPoints(const Vertices<T>& other, int& i, int& j) const
{
  if (getNumVertices() == 0 || other.getNumVertices() == 0 || this->getSpace() != other.getSpace())
    throw SizeError("void Vertices<T>::closestPoints(const Vertices<T>&, int&, int&) const",
                    "A vertex set is empty or the dimensions differ");
  i = j = 0;
  const std::vector<Neighbour<Real<T>>> neighbours =
      KdTree<Real<T>>(this->getSpace(), other.realCoordinates()).nearest(this->realCoordinates());
  const auto closest =
      std::min_element(neighbours.begin(), neighbours.end(),
                       [](const auto& a, const auto& b) { return a.squaredDistance < b.squaredDistance; });
  if (closest->index < 0) return;
  i = static_cast<int>(closest - neighbours.begin());
  j = closest->index;
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
