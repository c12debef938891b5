#include "geometry/shapereader.h"
#include "geometry/textbuffer.h"
#include "geometry/trimesh.h"

template <class T> void TriMesh<T>::write(std::ostream& stream) const
{
  requireConsistency("void TriMesh<T>::write(std::ostream&) const");
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
