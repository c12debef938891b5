// Shape files: vertices, curves, stacks, quad meshes and triangle meshes. Whatever is read can be measured, and must be
// written and read again to the same text.
#include "fuzz/fuzzedfile.h"
#include "geometry/quadmesh.h"

#include <cstdio>
#include <sstream>
#include <utility>

namespace
{
template <class AnyShape> std::string textOf(const AnyShape& shape)
{
  std::ostringstream stream;
  shape.write(stream);
  return stream.str();
}

template <class AnyShape> void requireRoundTrip(const AnyShape& shape)
{
  const std::string once = textOf(shape);
  std::istringstream stream(once);
  AnyShape copy;
  copy.read(stream); // must not fail
  const std::string twice = textOf(copy);
  if (once == twice) return;
  std::fprintf(stderr, "once:\n%s\ntwice:\n%s\n", once.c_str(), twice.c_str());
  std::abort();
}

template <class T> void use(const Shape<T>& shape)
{
  attempt([&] { shape.principalAxes(); });
  shape.boundingBox();
  shape.nearestNeighbors();
}

template <class T> void use(const Curve<T>& curve)
{
  use(static_cast<const Shape<T>&>(curve));
  attempt([&] { curve.selfIntersects(); });
  attempt([&] { curve.normals(); });
  attempt([&] { curve.resample(5).findMatch(curve.resample(5)); });
  attempt([&] { Curve<T>(curve).setClockwise(true, 0, 1); }); // needs two coordinates
}

template <class T> void use(const CurveStack<T>& stack)
{
  use(static_cast<const Shape<T>&>(stack));
  for (int i = 0; i < stack.getNumCurves(); ++i)
    if (stack[i].isOpen() != stack.isOpen()) std::abort();
  stack.isBranching();
  attempt(
      [&]
      {
        QuadMesh<T> mesh(stack.getSpace(), 4, 3);
        stack.resample(mesh);
        stack.resamplingError(mesh);
      });
}

template <class T> void use(const TriMesh<T>& mesh)
{
  use(static_cast<const Shape<T>&>(mesh));
  mesh.area();
  attempt([&] { mesh.volume(); });
  attempt([&] { mesh.contains(Vector<T>{1, 2, 3}); });
  attempt([&] { TriMesh<T>(mesh).computeNormals(); });
  attempt([&] { TriMesh<T>(mesh).smooth(2); });
  std::ostringstream stream;
  attempt([&] { mesh.export2PLY(stream); });
}

template <class T> void use(const QuadMesh<T>& mesh)
{
  use(static_cast<const CurveStack<T>&>(mesh));
  attempt([&] { mesh.findMatch(mesh); });
  attempt([&] { use(mesh.toTriMesh(true)); });
}

template <class AnyShape> void readFrom(const std::string& text, const FuzzedFile& file)
{
  AnyShape shape;
  std::istringstream stream(text);
  bool isRead = false;
  attempt(
      [&]
      {
        shape.read(stream);
        isRead = true;
      });
  if (isRead)
  {
    requireRoundTrip(shape);
    use(std::as_const(shape));
  }
  attempt([&] { AnyShape().load(file.getName()); });
}

template <class T> void readAll(const std::string& text, const FuzzedFile& file)
{
  readFrom<Vertices<T>>(text, file);
  readFrom<Curve<T>>(text, file);
  readFrom<VertexStack<T>>(text, file);
  readFrom<CurveStack<T>>(text, file);
  readFrom<QuadMesh<T>>(text, file);
  readFrom<TriMesh<T>>(text, file);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
  const std::string text(bytes, bytes + size);
  const FuzzedFile file(bytes, size);
  readAll<int>(text, file);
  readAll<double>(text, file);
  return 0;
}
