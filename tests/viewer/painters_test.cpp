// What painters make of their shapes, and of coordinates that cannot be drawn.
#include "geometry/curvestack.h"
#include "geometry/quadmesh.h"
#include "image/image.h"
#include "scene_pictures.h"
#include "tests/support/errors.h"
#include "viewer/painters/curvestackpaintergl.h"
#include "viewer/painters/imageplanepaintergl.h"
#include "viewer/painters/quadmeshpaintergl.h"
#include "viewer/painters/strokefont.h"
#include "viewer/painters/symbolmesh.h"
#include "viewer/painters/verticespaintergl.h"

#include <cmath>
#include <limits>
#include <numbers>

namespace
{
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

Curve<float> squareCurve(float side, float z)
{
  Curve<float> curve(3, 4);
  const float points[4][3] = {{0, 0, z}, {side, 0, z}, {side, side, z}, {0, side, z}};
  for (int i = 0; i < 4; ++i) std::copy(points[i], points[i] + 3, curve.data(i));
  return curve;
}
} // namespace

TEST(SymbolMesh, HasTheVolumeOfItsSolid)
{
  const double r3 = 0.125; // of the ball around it
  const struct
  {
    VertexSymbol symbol;
    double volume;
    int numFaces;
  } cases[] = {
      {VertexSymbol::Cube, 8 / (3 * std::sqrt(3.0)) * r3, 12},
      {VertexSymbol::Diamond, 4.0 / 3 * r3, 8},
      {VertexSymbol::Tetrahedron, 8 / (9 * std::sqrt(3.0)) * r3, 4},
      {VertexSymbol::Dot, 0, 0},
  };
  for (const auto& c : cases)
  {
    const TriMesh<float> mesh = symbolMesh(c.symbol);
    EXPECT_EQ(mesh.getNumTriangles(), c.numFaces);
    EXPECT_NEAR(mesh.volume(), c.volume, 1e-6);
  }
  EXPECT_EQ(symbolLines(VertexSymbol::Cube).ends.size(), 2U * 24); // each edge from both of its faces
  EXPECT_EQ(symbolLines(VertexSymbol::Tetrahedron).ends.size(), 2U * 12);
  EXPECT_TRUE(symbolLines(VertexSymbol::Dot).ends.empty());
  const SymbolLines circles = symbolLines(VertexSymbol::Sphere);
  double length = 0; // of three circles of diameter 1
  for (std::size_t i = 0; i < circles.ends.size(); i += 2)
  {
    const float *p = circles.vertices.data(circles.ends[i]), *q = circles.vertices.data(circles.ends[i + 1]);
    length += std::hypot(p[0] - q[0], p[1] - q[1], p[2] - q[2]);
  }
  EXPECT_NEAR(length, 3 * std::numbers::pi, 0.05);
  const TriMesh<float> sphere = symbolMesh(VertexSymbol::Sphere, 3);
  EXPECT_EQ(sphere.getNumTriangles(), 20 * 64);
  EXPECT_EQ(sphere.getSize(), 10 * 64 + 2); // welded
  EXPECT_NEAR(sphere.volume(), 4.0 / 3 * std::numbers::pi * r3, 0.02 * r3 * 4);
  for (int i = 0; i < sphere.getNumTriangles(); ++i) // seen from outside
  {
    const int* const c = sphere.corners(i);
    const float *p = sphere.data(c[0]), *q = sphere.data(c[1]), *r = sphere.data(c[2]);
    const float x = (q[1] - p[1]) * (r[2] - p[2]) - (q[2] - p[2]) * (r[1] - p[1]);
    const float y = (q[2] - p[2]) * (r[0] - p[0]) - (q[0] - p[0]) * (r[2] - p[2]);
    const float z = (q[0] - p[0]) * (r[1] - p[1]) - (q[1] - p[1]) * (r[0] - p[0]);
    EXPECT_GT(x * p[0] + y * p[1] + z * p[2], 0);
  }
}

TEST(ScaleBar, HasARoundLength)
{
  const struct
  {
    double longest, length;
    const char* text;
  } cases[] = {
      {7.3, 5, "5 µm"}, {1, 1, "1 µm"}, {0.0049, 0.002, "0.002 µm"}, {99999, 50000, "50000 µm"}, {19, 10, "10 µm"}};
  for (const auto& c : cases)
  {
    EXPECT_NEAR(roundLength(c.longest), c.length, 1e-12 * c.length);
    EXPECT_EQ(lengthText(roundLength(c.longest), "µm"), c.text);
  }
  EXPECT_EQ(roundLength(0), 0);
  EXPECT_EQ(roundLength(-3), 0);
  EXPECT_EQ(roundLength(INFINITY), 0);
  ScaleBarPainterGL bar;
  bar.setView(400, 300, 0.1, 1); // 40 long in all
  EXPECT_DOUBLE_EQ(bar.getLength(), 10);
  EXPECT_DOUBLE_EQ(bar.getNumPixels(), 100);
}

TEST(StrokeFont, DrawsEveryCharacterOfALengthInItsPlace)
{
  for (const std::string& unit : LengthUnit::availableSymbols())
    for (const std::string& character : {unit, std::string("0123456789.-+e"), std::string("XYZ")})
      EXPECT_FALSE(StrokeFont::strokes(character).empty()) << character;
  EXPECT_EQ(StrokeFont::width("12"), 2 * StrokeFont::width("1") + StrokeFont::width("12") - 2 * StrokeFont::width("1"));
  EXPECT_GT(StrokeFont::width("µm"), StrokeFont::width("m"));
  EXPECT_EQ(StrokeFont::width("µm"), StrokeFont::width("nm")); // two bytes, one character
  EXPECT_TRUE(StrokeFont::strokes("").empty());
}

TEST_F(ScenePictures, CurvesAreClosedOrOpenAndKeepTheirColours)
{
  CurveStack<float> stack;
  stack.append(squareCurve(10, 0));
  const auto draws = [&](bool isOpen)
  {
    stack.setOpen(isOpen);
    CurveStackPainterGL painter(stack, {{{0, 0, 255}, 3}});
    scene.removePainters();
    scene.addPainter(painter);
    scene.updateBoundingBox();
    const Picture picture = draw(200, 200);
    const auto at = [&](double x, double y)
    {
      const auto place = scene.camera().project({x, y, 0}, 200, 200);
      return picture.at(static_cast<int>(place[0]), 199 - static_cast<int>(place[1]));
    };
    scene.removePainters();
    EXPECT_EQ(at(5, 0), (Rgb{0, 0, 255}));
    EXPECT_EQ(at(5, 5), (Rgb{0, 0, 0}));
    return at(0, 5) == Rgb{0, 0, 255}; // the closing edge
  };
  EXPECT_TRUE(draws(false));
  EXPECT_FALSE(draws(true));
  expectError<SizeError>("There is not one style for each curve", [&] { CurveStackPainterGL(stack, {}); });
}

TEST_F(ScenePictures, WhatIsNotFiniteIsLeftOut)
{
  Curve<float> curve = squareCurve(10, 0);
  curve.data(2)[1] = notANumber;
  CurveStackPainterGL lines(curve, {{0, 255, 0}, 1});
  EXPECT_EQ(lines.boundingBox().getMaximum()[1], 10);
  VertexStack<float> points;
  points.append(curve);
  VerticesPainterGL symbols(points, {{VertexSymbol::Cube, true, 1, {255, 0, 0}}});
  EXPECT_FLOAT_EQ(symbols.boundingBox().getMaximum()[0], 10.5F);
  auto mesh = std::make_shared<TriMesh<float>>(3);
  mesh->cube();
  mesh->Vertices<float>::append(Vector<float>{notANumber, 0, 0});
  mesh->addTriangle(0, 1, 8);
  mesh->removeTriangle(3);
  TriMeshPainterGL surface(mesh);
  EXPECT_EQ(surface.boundingBox().getMaximum()[0], 1);
  TriMeshPainterGL empty(std::make_shared<TriMesh<float>>(3));
  EXPECT_TRUE(empty.boundingBox().isEmpty());
  for (PainterGL<float>* painter : std::initializer_list<PainterGL<float>*>{&lines, &symbols, &surface, &empty})
    scene.addPainter(*painter);
  scene.updateBoundingBox();
  EXPECT_GT(draw(100, 100).numColored(), 0);
  scene.removePainters();
}

TEST_F(ScenePictures, QuadMeshesShowColoursCapsAndTheirGrid)
{
  CurveStack<float> rows;
  for (const float z : {0.F, 5.F}) rows.append(squareCurve(10, z));
  for (int i = 0; i < 2; ++i) rows.level(i).reverse(); // clockwise, so that it is seen from outside
  QuadMesh<float> mesh(rows);
  Matrix<double> values(2, 4);
  values.setZeros();
  for (int j = 0; j < 4; ++j) values(1, j) = 1;
  Colormap map(2);
  map.setColor(1, {0, 0, 255});
  map.setColor(0, {255, 0, 0});
  const auto middle = [&](const QuadMesh<float>& m, MeshStyle style, float opacity = 255)
  {
    QuadMeshPainterGL painter(m, style);
    painter.setMaterial({{0, 255, 0}, opacity, 0});
    scene.removePainters();
    scene.addPainter(painter);
    scene.updateBoundingBox();
    const Rgb color = draw(100, 100).at(50, 50);
    scene.removePainters();
    return color;
  };
  EXPECT_EQ(middle(mesh, MeshStyle::Surface), (Rgb{0, 0, 0})); // one looks through the tube
  EXPECT_EQ(middle(mesh, MeshStyle::Lines), (Rgb{0, 0, 0}));   // the grid has no diagonals
  mesh.buildCaps();
  EXPECT_EQ(middle(mesh, MeshStyle::Surface), (Rgb{0, 255, 0}));
  EXPECT_NE(middle(mesh, MeshStyle::Lines), (Rgb{0, 0, 0})); // the edge between the two triangles of a cap
  mesh.buildVertexColors(values.toType<float>(), map);
  EXPECT_EQ(middle(mesh, MeshStyle::Surface), (Rgb{0, 0, 255})); // the upper row's colour
  const Rgb blended = middle(mesh, MeshStyle::Surface, 127.5F);  // half of it over a quarter of the lower one's
  EXPECT_NEAR(blended[0], 64, 2);
  EXPECT_NEAR(blended[1], 0, 2);
  EXPECT_NEAR(blended[2], 128, 2);
}

/// On screens of twice the density, and in snapshots of a multiple of the window's size.
TEST_F(ScenePictures, LinesAndDotsGrowWithThePicture)
{
  CurveStack<float> square;
  square.append(squareCurve(10, 0));
  VertexStack<float> points;
  points.append(squareCurve(10, 0));
  CurveStackPainterGL lines(square, {{{0, 0, 255}, 3}});
  VerticesPainterGL dots(points, {{VertexSymbol::Dot, true, 8, {255, 255, 255}}});
  VerticesPainterGL edges(points, {{VertexSymbol::Cube, false, 4, {255, 255, 255}}});
  for (PainterGL<float>* painter : std::initializer_list<PainterGL<float>*>{&lines, &dots, &edges})
  {
    scene.addPainter(*painter);
    scene.updateBoundingBox();
    const int once = draw(200, 200, 0, 1).numColored(), twice = draw(400, 400, 0, 2).numColored();
    EXPECT_NEAR(twice, 4 * once, 0.2 * twice);
    scene.removePainters();
  }
}

TEST_F(ScenePictures, SymbolsAreFilledOrNotAndDotsKeepTheirSize)
{
  VertexStack<float> points;
  for (const float x : {0.F, 20.F})
  {
    Vertices<float> point(3, 1);
    point.data()[0] = x;
    points.append(point);
  }
  const auto numColored = [&](VertexSymbol symbol, bool isFilled, float size, float zoom)
  {
    const SymbolStyleGL style = {symbol, isFilled, size, {255, 255, 255}};
    VerticesPainterGL painter(points, {style, style});
    scene.removePainters();
    scene.addPainter(painter);
    scene.updateBoundingBox();
    scene.camera().setZoom(zoom);
    scene.setDirty();
    const int count = draw(300, 300).numColored();
    scene.removePainters();
    return count;
  };
  EXPECT_GT(numColored(VertexSymbol::Cube, true, 6, 1), 2 * numColored(VertexSymbol::Cube, false, 6, 1));
  EXPECT_GT(numColored(VertexSymbol::Sphere, true, 6, 1), 2 * numColored(VertexSymbol::Sphere, false, 6, 1));
  const int dots = numColored(VertexSymbol::Dot, true, 9, 0.5F);
  EXPECT_NEAR(dots, 2 * std::numbers::pi / 4 * 81, 16);
  EXPECT_NEAR(numColored(VertexSymbol::Dot, true, 9, 0.25F), dots, 2);
  EXPECT_NEAR(numColored(VertexSymbol::Sphere, true, 6, 0.5F) * 4, numColored(VertexSymbol::Sphere, true, 6, 1), 150);
}

TEST_F(ScenePictures, ImagesLieOnTheirPlanes)
{
  Image image(4, 2, 24);
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 4; ++j)
    {
      const Rgb color = i == 0 && j == 3 ? Rgb{255, 0, 0} : Rgb{0, 0, 255}; // red at the upper right
      for (int k = 0; k < 3; ++k)
        image.getLine(i)[3 * j + k] = static_cast<unsigned char>(color[static_cast<std::size_t>(k)]);
    }
  ImagePlanePainterGL painter(image, {{{0, 2, 0}, {4, 2, 0}, {4, 0, 0}, {0, 0, 0}}});
  scene.addPainter(painter);
  scene.updateBoundingBox();
  const Picture picture = draw(200, 200);
  const auto at = [&](double x, double y)
  {
    const auto place = scene.camera().project({x, y, 0}, 200, 200);
    return picture.at(static_cast<int>(place[0]), 199 - static_cast<int>(place[1]));
  };
  EXPECT_EQ(at(3.8, 1.8), (Rgb{255, 0, 0}));
  EXPECT_EQ(at(0.2, 1.8), (Rgb{0, 0, 255}));
  EXPECT_EQ(at(3.8, 0.2), (Rgb{0, 0, 255}));
  scene.removePainters();
}
