// Meshes in the file formats of other programs.
#include "geometry/coordinates.h"
#include "geometry/textbuffer.h"
#include "geometry/trimesh.h"
#include "geometry/vectors3d.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace
{
static_assert(std::endian::native == std::endian::little, "binary meshes are written in the processor's byte order");

/// Coordinates as binary formats hold them.
template <class T> using Stored = std::conditional_t<std::is_same_v<T, long double>, double, T>;

/// Products of float coordinates neither overflow nor vanish in double.
template <class T> Vector3d<Wide<T>> facetNormal(const T* a, const T* b, const T* c)
{
  using R = Wide<T>;
  return normalized(crossProduct(difference<R>(b, a), difference<R>(c, a)));
}

/// The name on one line.
std::string lineOf(std::string name)
{
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return c < ' '; }, ' ');
  return name;
}

template <class Number> void addThree(TextBuffer& text, std::string_view label, const Number* numbers)
{
  text << label;
  for (int k = 0; k < 3; ++k) (text << ' ').addSixDigits(numbers[k]);
  text << '\n';
}

/// The facet lines of one triangle.
template <class T> void addFacet(TextBuffer& text, const T* a, const T* b, const T* c)
{
  addThree(text, "  facet normal", facetNormal(a, b, c).data());
  text << "    outer loop\n";
  for (const T* corner : {a, b, c}) addThree(text, "      vertex", corner);
  text << "    endloop\n  endfacet\n";
}

/// The bytes of numbers, converted to type Number.
template <class Number, class T> void addBytes(TextBuffer& text, const T* numbers, int count)
{
  for (int k = 0; k < count; ++k)
  {
    const Number number = static_cast<Number>(numbers[k]);
    text << std::string_view(reinterpret_cast<const char*>(&number), sizeof number);
  }
}

/// A property line for each of the names, given as one text of letters or words.
void addProperties(TextBuffer& text, std::string_view type, std::initializer_list<std::string_view> names)
{
  for (const std::string_view name : names) text << "property " << type << ' ' << name << '\n';
}

template <class T> std::string_view plyTypeName()
{
  if constexpr (std::is_integral_v<T>) return "int";
  return std::is_same_v<T, float> ? "float" : "double";
}

template <class T> void addPlyHeader(TextBuffer& text, const TriMesh<T>& mesh)
{
  const std::string_view type = plyTypeName<T>();
  text << "ply\nformat binary_little_endian 1.0\n";
  if (!mesh.getName().empty()) text << "comment " << lineOf(mesh.getName()) << '\n';
  text << "element vertex " << mesh.getSize() << '\n';
  addProperties(text, type, {"x", "y", "z"});
  if (mesh.hasNormals()) addProperties(text, type, {"nx", "ny", "nz"});
  if (mesh.hasVertexColors()) addProperties(text, "uchar", {"red", "green", "blue"});
  text << "element face " << mesh.getNumTriangles() << "\nproperty list uchar int vertex_indices\nend_header\n";
}
} // namespace

template <class T> void TriMesh<T>::export2AsciiSTL(std::ostream& stream) const
{
  const char* const where = "void TriMesh<T>::export2AsciiSTL(std::ostream&) const";
  requireSpace3(where);
  requireConsistency(where);
  TextBuffer text(stream);
  const std::string name = lineOf(this->getName());
  text << "solid " << name << '\n';
  forEachTriangle([&text](const T* a, const T* b, const T* c) { addFacet(text, a, b, c); });
  text << "endsolid " << name << '\n';
  text.flush();
}

template <class T> void TriMesh<T>::export2BinarySTL(std::ostream& stream) const
{
  const char* const where = "void TriMesh<T>::export2BinarySTL(std::ostream&) const";
  requireSpace3(where);
  requireConsistency(where);
  TextBuffer text(stream);
  std::string header = "Mirelo " + lineOf(this->getName()); // "solid" would announce the text form
  header.resize(80, ' ');
  text << header;
  addBytes<std::uint32_t>(text, &_numTriangles, 1);
  const int attributes = 0;
  forEachTriangle(
      [&text, &attributes](const T* a, const T* b, const T* c)
      {
        addBytes<float>(text, facetNormal(a, b, c).data(), 3);
        for (const T* corner : {a, b, c}) addBytes<float>(text, corner, 3);
        addBytes<std::uint16_t>(text, &attributes, 1);
      });
  text.flush();
}

template <class T> void TriMesh<T>::export2PLY(std::ostream& stream) const
{
  const char* const where = "void TriMesh<T>::export2PLY(std::ostream&) const";
  requireSpace3(where);
  requireConsistency(where);
  TextBuffer text(stream);
  addPlyHeader(text, *this);
  for (int i = 0; i < this->getSize(); ++i)
  {
    addBytes<Stored<T>>(text, this->data(i), 3);
    if (hasNormals()) addBytes<Stored<T>>(text, _normals.data(i), 3);
    for (int k = 0; hasVertexColors() && k < 3; ++k) text << static_cast<char>(std::clamp(_colors->data(i)[k], 0, 255));
  }
  for (int i = 0; i < getNumTriangleSlots(); ++i)
  {
    if (!hasTriangle(i)) continue;
    text << '\3';
    addBytes<std::int32_t>(text, corners(i), 3);
  }
  text.flush();
}

template <class T> void TriMesh<T>::export2OBJ(std::ostream& stream) const
{
  const char* const where = "void TriMesh<T>::export2OBJ(std::ostream&) const";
  requireSpace3(where);
  requireConsistency(where);
  TextBuffer text(stream);
  if (!this->getName().empty()) text << "o " << lineOf(this->getName()) << '\n';
  for (int i = 0; i < this->getSize(); ++i)
  {
    text << "v ";
    addNumbers(text, this->data(i), 3);
    for (int k = 0; hasVertexColors() && k < 3; ++k)
      (text << ' ').addSixDigits(std::clamp(_colors->data(i)[k], 0, 255) / 255.);
    text << '\n';
  }
  for (int i = 0; hasNormals() && i < this->getSize(); ++i)
  {
    text << "vn ";
    writeLine(text, _normals.data(i), 3);
  }
  for (int i = 0; i < getNumTriangleSlots(); ++i)
  {
    if (!hasTriangle(i)) continue;
    text << 'f';
    for (int k = 0; k < 3; ++k)
    {
      text << ' ' << corners(i)[k] + 1; // counted from 1
      if (hasNormals()) text << "//" << corners(i)[k] + 1;
    }
    text << '\n';
  }
  text.flush();
}

GEOMETRY_INSTANTIATE(TriMesh)
