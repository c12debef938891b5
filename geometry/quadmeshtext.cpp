#include "geometry/quadmesh.h"
#include "geometry/shapereader.h"
#include "geometry/textbuffer.h"

namespace
{
/// Reads lines of three colour components.
QuadMesh<int> readColors(ShapeReader& reader, int width, int height)
{
  QuadMesh<int> colors(3, width, height);
  for (int i = 0; i < height; ++i)
    for (int j = 0; j < width; ++j)
    {
      int* const color = colors.level(i).data(j);
      reader.readLine(color, 3);
      for (int k = 0; k < 3; ++k)
        if (color[k] < 0 || color[k] > 255) reader.fail("a colour is not between 0 and 255");
    }
  return colors;
}
} // namespace

template <class T> void QuadMesh<T>::write(std::ostream& stream) const
{
  requireGrid("void QuadMesh<T>::write(std::ostream&) const");
  const int space = this->getSpace(), width = getWidth(), height = width > 0 ? getHeight() : 0;
  TextBuffer text(stream);
  text << "# " << static_cast<int>(getShapeType()) << "\n# " << space << "\n# " << this->getNumVertices() << '\n';
  for (int i = 0; i < height; ++i)
    for (int j = 0; j < width; ++j) writeLine(text, this->level(i).data(j), space);
  text << "# " << height << "\n# " << static_cast<int>(hasBeginCap()) << "\n# " << static_cast<int>(hasEndCap())
       << "\n# " << static_cast<int>(hasVertexColors()) << '\n';
  for (int i = 0; hasVertexColors() && i < height; ++i)
    for (int j = 0; j < width; ++j) writeLine(text, _colors->level(i).data(j), 3);
  text.flush();
}

template <class T> void QuadMesh<T>::read(std::istream& stream)
{
  ShapeReader reader(stream);
  const int shapeType = reader.readHeader("shape type");
  if (!isReadable(shapeType)) reader.fail("the shape type is not that of a quad mesh");
  const Vertices<T> vertices = Vertices<T>::readVertices(reader);
  const int space = vertices.getSpace(), numVertices = vertices.getSize();
  const int height = reader.readHeader("number of rows");
  if (height == 0 ? numVertices > 0 : numVertices == 0 || numVertices % height != 0)
    reader.fail(std::to_string(numVertices) + " vertices do not make up " + std::to_string(height) + " rows");

  QuadMesh<T> mesh(space, shapeType == OpenQuadMeshShape);
  const int width = height > 0 ? numVertices / height : 0;
  for (int i = 0; i < height; ++i)
  {
    Vertices<T> row(space, width);
    std::copy_n(vertices.data(i * width), static_cast<std::ptrdiff_t>(width) * space, row.data());
    mesh.append(row);
  }
  mesh._beginCap = reader.readHeader("flag of the begin cap") != 0;
  mesh._endCap = reader.readHeader("flag of the end cap") != 0;
  if (reader.readHeader("flag of the colours") != 0)
    mesh._colors = std::make_shared<const QuadMesh<int>>(readColors(reader, width, height));
  mesh.setName(this->getName());
  *this = mesh;
}

GEOMETRY_INSTANTIATE(QuadMesh)
