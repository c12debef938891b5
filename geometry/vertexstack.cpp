#include "geometry/vertexstack.h"

#include "geometry/shapereader.h"

#include <ostream>

template <class T> VertexStack<T>::VertexStack(const VertexStack<T>& stack) : Shape<T>(stack)
{
  _levels.reserve(stack._levels.size());
  for (const auto& level : stack._levels) _levels.emplace_back(level->clone());
}

template <class T> VertexStack<T>& VertexStack<T>::operator=(const VertexStack<T>& stack)
{
  VertexStack<T> copy(stack);
  Shape<T>::operator=(copy);
  _levels.swap(copy._levels);
  return *this;
}

template <class T> void VertexStack<T>::detach()
{
  for (const auto& level : _levels) level->detach();
}

template <class T> int VertexStack<T>::getNumVertices() const
{
  int sum = 0;
  for (const auto& level : _levels) sum += level->getSize();
  return sum;
}

template <class T> void VertexStack<T>::insert(int i, const Vertices<T>& vertices)
{
  const char* const where = "void VertexStack<T>::insert(int, const Vertices<T>&)";
  if (i < 0 || i > getNumLevels()) throw RangeError(where, "There is no level " + std::to_string(i));
  if (vertices.getSpace() != this->getSpace()) throw SizeError(where, "The vertices have another dimension");
  _levels.insert(_levels.begin() + i, createLevel(vertices));
}

template <class T> void VertexStack<T>::remove(int i)
{
  if (i < 0 || i >= getNumLevels())
    throw RangeError("void VertexStack<T>::remove(int)", "There is no level " + std::to_string(i));
  _levels.erase(_levels.begin() + i);
}

template <class T> void VertexStack<T>::read(std::istream& stream)
{
  ShapeReader reader(stream);
  const int shapeType = reader.readHeader("shape type");
  if (!isReadable(shapeType)) reader.fail("the shape type is not that of this shape");
  const int space = reader.readSpace();
  const int numLevels = reader.readHeader("number of levels");
  std::vector<std::unique_ptr<Vertices<T>>> levels;
  for (int i = 0; i < numLevels; ++i)
  {
    levels.push_back(createLevel(Vertices<T>(space)));
    levels.back()->read(stream);
    if (levels.back()->getSpace() != space) reader.fail("a level has another space dimension");
  }
  VertexClient<T>::assign(Vertices<T>(space));
  _levels.swap(levels);
  setShapeType(shapeType);
}

template <class T> void VertexStack<T>::write(std::ostream& stream) const
{
  stream << "# " << this->getShapeType() << "\n# " << this->getSpace() << "\n# " << getNumLevels() << '\n';
  for (const auto& level : _levels) level->write(stream);
}

template <class T> std::unique_ptr<Vertices<T>> VertexStack<T>::createLevel(const Vertices<T>& vertices) const
{
  return std::make_unique<Vertices<T>>(vertices);
}

GEOMETRY_INSTANTIATE(VertexStack)
