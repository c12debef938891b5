#include "geometry/shapereader.h"
#include "geometry/textbuffer.h"
#include "geometry/trimesh.h"
#include "geometry/vectors3d.h"

namespace
{

/// Products of float coordinates neither overflow nor vanish in double.
template <class T> using Wide = std::conditional_t<std::is_same_v<T, long double>, long double, double>;

template <class Number> void addThree(TextBuffer& text, std::string_view label, const Number* numbers)
{
  text << label;
  for (int k = 0; k < 3; ++k) (text << ' ').addSixDigits(numbers[k]);
  text << '\n';
}

/// The facet lines of one triangle.
template <class T> void addFacet(TextBuffer& text, const T* a, const T* b, const T* c)
{
  using R = Wide<T>;
  const Vector3d<R> normal = normalized(crossProduct(difference<R>(b, a), difference<R>(c, a)));
  addThree(text, "  facet normal", normal.data());
  text << "    outer loop\n";
  for (const T* corner : {a, b, c}) addThree(text, "      vertex", corner);
  text << "    endloop\n  endfacet\n";
}

} // namespace

template <class T> void TriMesh<T>::export2AsciiSTL(std::ostream& stream) const
{
  const char* const where = "void TriMesh<T>::export2AsciiSTL(std::ostream&) const";
  requireSpace3(where);
  requireConsistency(where);
  TextBuffer text(stream);
  text << "solid " << this->getName() << '\n';
  forEachTriangle([&text](const T* a, const T* b, const T* c) { addFacet(text, a, b, c); });
  text << "endsolid " << this->getName() << '\n';
  text.flush();
}

template <class T> void TriMesh<T>::write(std::ostream& stream) const
{
  Vertices<T>::write(stream);
  TextBuffer text(stream);
  text << "# " << _numTriangles << '\n';
  for (int i = 0; i < getNumTriangleSlots(); ++i)
    if (hasTriangle(i)) writeLine(text, corners(i), 3);
  text << (hasNormals() ? "# 1\n" : "# 0\n");
  for (int i = 0; hasNormals() && i < this->getSize(); ++i) writeLine(text, _normals.data(i), this->getSpace());
  text.flush();
}

template <class T> void TriMesh<T>::read(std::istream& stream)
{
  ShapeReader reader(stream);
  if (!isReadable(reader.readHeader("shape type"))) reader.fail("the shape type is not that of a triangle mesh");
  TriMesh<T> mesh(Vertices<T>::readVertices(reader));
  const int numTriangles = reader.readHeader("number of triangles");
  for (int i = 0; i < numTriangles; ++i)
  {
    int triangle[3];
    reader.readLine(triangle, 3);
    for (const int index : triangle)
      if (index < 0 || index >= mesh.getSize()) reader.fail("there is no vertex " + std::to_string(index));
    mesh.addTriangle(triangle[0], triangle[1], triangle[2]);
  }
  if (reader.readHeader("normals flag") != 0)
  {
    Vertices<T> normals(mesh.getSpace(), mesh.getSize());
    for (int i = 0; i < normals.getSize(); ++i) reader.readLine(normals.data(i), mesh.getSpace());
    mesh._normals = normals;
  }
  mesh.setName(this->getName());
  *this = mesh;
}

GEOMETRY_INSTANTIATE(TriMesh)
