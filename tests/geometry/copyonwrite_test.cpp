#include "geometry/quadmesh.h"
#include "tests/support/curves.h"
#include "tests/support/shapetext.h"

#include <gtest/gtest.h>

namespace
{
const Vector<int> second = {1};
const Vector<double> three = {1, 2, 3};
const SquareMatrix<double> quarterTurn = {{0, -1, 0}, {1, 0, 0}, {0, 0, 1}};

template <class AnyShape> struct Writer
{
  const char* name;
  void (*write)(AnyShape&);
};

/// Runs the writers, each on a copy that shares its vertices: the original must stay as it is, the copy must not.
template <class AnyShape>
void expectPrivateChanges(const AnyShape& original, const std::vector<Writer<AnyShape>>& writers)
{
  const std::string text = textOf(original);
  for (const Writer<AnyShape>& writer : writers)
  {
    SCOPED_TRACE(writer.name);
    AnyShape copy = original;
    for (int b = 0; b < original.getNumBlocks(); ++b)
      ASSERT_EQ(std::as_const(copy).getBlock(b).data(), original.getBlock(b).data());
    writer.write(copy);
    EXPECT_EQ(textOf(original), text);
    EXPECT_NE(textOf(copy), text);
  }
}

Curve<double> quadrangle()
{
  return closedCurve({{0, 0, 0}, {4, 0, 0}, {5, 3, 0}, {0, 2, 1}});
}

/// The operations of every shape.
template <class AnyShape> std::vector<Writer<AnyShape>> writersOfShapes()
{
  using S = AnyShape;
  return {{"vertexIterator", [](S& s) { (*s.vertexIterator())[0] = 9; }},
          {"append", [](S& s) { s.append(quadrangle()); }},
          {"translate", [](S& s) { s.translate(three); }},
          {"scale by axis", [](S& s) { s.scale(three); }},
          {"scale", [](S& s) { s.scale(2); }},
          {"multiply", [](S& s) { s.multiply(quarterTurn); }},
          {"product", [](S& s) { s *= 3; }},
          {"quotient", [](S& s) { s /= 3; }},
          {"center", [](S& s) { s.center(); }},
          {"sum", [](S& s) { s += S(s); }},
          {"difference", [](S& s) { s -= S(s); }},
          {"fromVector", [](S& s) { s.fromVector(s.toVector() * 2.); }},
          {"transform",
           [](S& s) {
             s.transform(RigidTransform<double>{quarterTurn, three});
           }},
          {"applyPAT", [](S& s) { s.applyPAT(); }}};
}
} // namespace

TEST(CopyOnWrite, OfCurves)
{
  using C = Curve<double>;
  expectPrivateChanges(quadrangle(), writersOfShapes<C>());
  expectPrivateChanges<C>(quadrangle(), {{"element", [](C& c) { c[0][0] = 9; }},
                                         {"element by index vector", [](C& c) { c[second][0] = 9; }},
                                         {"data", [](C& c) { c.data()[1] = 9; }},
                                         {"edgeIterator", [](C& c) { (*c.edgeIterator()).getEndVertex()[0] = 9; }},
                                         {"setSize", [](C& c) { c.setSize(1); }},
                                         {"clear", [](C& c) { c.clear(); }},
                                         {"append vertex", [](C& c) { c.Vertices<double>::append(three); }},
                                         {"insert", [](C& c) { c.insert(1, three); }},
                                         {"remove", [](C& c) { c.remove(0); }},
                                         {"remove range", [](C& c) { c.remove(1, 2); }},
                                         {"reverse", [](C& c) { c.reverse(); }},
                                         {"setClockwise", [](C& c) { c.setClockwise(true, 0, 1); }},
                                         {"setOrigin", [](C& c) { c.setOrigin(2); }},
                                         {"join", [](C& c) { c.join(quadrangle()); }},
                                         {"square", [](C& c) { c.square(1); }},
                                         {"resample", [](C& c) { quadrangle().resample(7).resample(c); }},
                                         {"assign",
                                          [](C& c) {
                                            c.assign(closedCurve({{1, 1}}));
                                          }},
                                         {"assignment", [](C& c) {
                                            c = closedCurve({{1, 1}});
                                          }}});
}

TEST(CopyOnWrite, OfStacksAndQuadMeshes)
{
  using S = CurveStack<double>;
  using Q = QuadMesh<double>;
  S stack;
  stack.append(quadrangle());
  stack.append(ellipse(5., 3., 2., 4));
  Q mesh(stack);
  mesh.buildVertexColors({{0, 1, 2, 3}, {4, 5, 6, 7}}, Colormap::cold2Hot(8));
  expectPrivateChanges(stack, writersOfShapes<S>());
  expectPrivateChanges(mesh, writersOfShapes<Q>());
  expectPrivateChanges<S>(stack, {{"vertex of a level", [](S& s) { s[1][2][0] = 9; }},
                                  {"edgeIterator", [](S& s) { (*s.edgeIterator()).getBeginVertex()[0] = 9; }},
                                  {"prepend", [](S& s) { s.prepend(quadrangle()); }},
                                  {"remove", [](S& s) { s.remove(0); }},
                                  {"clear", [](S& s) { s.clear(); }},
                                  {"setOpen", [](S& s) { s.setOpen(true); }},
                                  {"interpolate", [](S& s) { s.interpolate(Q(3, 4, 4)); }},
                                  {"assign", [](S& s) { s.assign(S(3, true)); }}});
  expectPrivateChanges<Q>(mesh,
                          {{"match",
                            [](Q& q)
                            {
                              Q turned = q;
                              turned[0].setOrigin(1);
                              turned[1].setOrigin(1);
                              q.match(turned);
                            }},
                           {"buildVertexColors", [](Q& q) { q.buildVertexColors(Matrix<double>(2, 4), Colormap(1)); }},
                           {"buildCaps", [](Q& q) { q.buildCaps(); }},
                           {"extendToCaps",
                            [](Q& q)
                            {
                              q.buildEndCap();
                              q.extendToCaps();
                            }},
                           {"resample", [](Q& q) { S(q).resample(q); }},
                           {"assign", [](Q& q) { q.assign(Q(3, 4, 2)); }}});
}

TEST(CopyOnWrite, OfTriangleMeshes)
{
  using M = TriMesh<double>;
  M mesh(quadrangle());
  mesh.addTriangle(0, 1, 3);
  mesh.addTriangle(1, 2, 3);
  mesh.computeNormals();
  expectPrivateChanges(mesh, writersOfShapes<M>());
  expectPrivateChanges<M>(mesh, {{"addTriangle", [](M& m) { m.addTriangle(0, 2, 3); }},
                                 {"setTriangles", [](M& m) { m.setTriangles({}); }},
                                 {"removeTriangle", [](M& m) { m.removeTriangle(0); }},
                                 {"flip", [](M& m) { m.flip(); }},
                                 {"remove", [](M& m) { m.remove(2); }},
                                 {"clear", [](M& m) { m.clear(); }},
                                 {"setNormal", [](M& m) { m.setNormal(1, three); }},
                                 {"computeNormals",
                                  [](M& m)
                                  {
                                    m.translate(three);
                                    m[0][2] = 9;
                                    m.computeNormals();
                                  }},
                                 {"smoothNormals", [](M& m) { m.smoothNormals(1); }},
                                 {"cube", [](M& m) { m.cube(); }},
                                 {"assign", [](M& m) { m.assign(M(3)); }}});
  M cube; // without a border
  cube.cube();
  expectPrivateChanges<M>(cube, {{"smooth", [](M& m) { m.smooth(1); }}});
}
