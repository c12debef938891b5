#include "geometry/quadmesh.h"
#include "tests/support/curves.h"
#include "tests/support/errors.h"
#include "tests/support/shapetext.h"

#include <gtest/gtest.h>
#include <memory>
#include <random>

namespace
{
/// A whole text and a shape that it can be read into.
struct ValidText
{
  std::shared_ptr<Shape<float>> shape;
  std::string text;
};

std::vector<ValidText> validTexts()
{
  const std::string flatTriangle = "# 3\n# 3\n0 0 0\n0.1 0 0\n0 4 0\n";
  const std::string grid = "# 3\n# 6\n0 0 0\n0 2 0\n2 0 0\n0 0 1\n0 2 1\n2 0 1\n# 2\n";
  return {{std::make_shared<Vertices<float>>(2), "# 6\n# 1\n# 2\n5\n-7\n"},
          {std::make_shared<Curve<float>>(2), "# 1\n# 3\n# 3\n0 0.1 1e-30\n1 2.5 -3e+20\nnan inf -inf\n"},
          {std::make_shared<Curve<float>>(3), "# 0\n# 2\n# 0\n"},
          {std::make_shared<VertexStack<float>>(3), "# 7\n# 1\n# 2\n# 6\n# 1\n# 1\n1\n# 6\n# 1\n# 0\n"},
          {std::make_shared<CurveStack<float>>(2), "# 3\n# 3\n# 2\n# 1\n# 3\n# 1\n7 8 9\n# 1\n# 3\n# 1\n1 2 3\n"},
          {std::make_shared<QuadMesh<float>>(2),
           "# 4\n" + grid + "# 0\n# 1\n# 1\n0 0 0\n0 9 0\n0 0 9\n255 0 0\n1 1 1\n2 2 2\n"},
          {std::make_shared<QuadMesh<float>>(3, 5, 5), "# 5\n" + grid + "# 0\n# 0\n# 0\n"},
          {std::make_shared<QuadMesh<float>>(3, 5, 5), "# 4\n# 2\n# 0\n# 0\n# 0\n# 0\n# 0\n"},
          {std::make_shared<TriMesh<float>>(2), "# 8\n" + flatTriangle + "# 1\n2 1 0\n# 1\n0 0 -1\n0 0 -1\n0 1 0\n"},
          {std::make_shared<TriMesh<float>>(3), "# 8\n" + flatTriangle + "# 0\n# 0\n"}};
}
} // namespace

TEST(ShapeText, IsWrittenAsItWasRead)
{
  for (const ValidText& valid : validTexts())
  {
    readText(*valid.shape, valid.text);
    EXPECT_EQ(textOf(*valid.shape), valid.text);
  }
  CurveStack<float> stack(2);
  readText(stack, validTexts()[4].text);
  EXPECT_EQ(stack[0][0], (Vector<float>{7, 8, 9}));
  EXPECT_TRUE(stack.isOpen() && stack[1].isOpen());
  readText(stack, "# 2\n# 3\n# 1\n# 1\n# 3\n# 1\n1 2 3\n"); // an open level in a closed stack
  EXPECT_TRUE(stack.isClosed() && stack[0].isClosed());
  TriMesh<float> mesh;
  readText(mesh, validTexts()[8].text);
  mesh.addTriangle(0, 1, 2);
  mesh.removeTriangle(0);
  EXPECT_NE(textOf(mesh).find("# 1\n0 1 2\n# 1\n"), std::string::npos); // present triangles only
  EXPECT_EQ(textOf(QuadMesh<float>(2, 0, 5)), validTexts()[7].text);
}

TEST(ShapeText, NamesTheLineThatIsWrong)
{
  Curve<double> curve = closedCurve({{1, 2}});
  CurveStack<double> stack;
  QuadMesh<double> grid(3, 2, 2);
  TriMesh<double> mesh;
  mesh.cube();
  const struct
  {
    Shape<double>& shape;
    const char* text;
    const char* message;
  } cases[] = {
      {curve, "", "Line 1: the text ends too early"},
      {curve, "# 6\n# 2\n# 1\n0 0\n", "Line 1: the shape type"},
      {curve, "# 0\n# 2\n# 2000000000\n0 0\n", "Line 5: the text ends too early"},
      {curve, "# 0\n# 2\n# -1\n", "Line 3: expected \"# \" and the number of vertices"},
      {curve, "# 0\n# 2\n# 99999999999\n", "Line 3"},
      {curve, "# 0\n# 9\n# 1\n", "Line 2: the space dimension"},
      {curve, "# 0\n# 2\n# 1\n0 x\n", "Line 4: expected 2 numbers"},
      {curve, "# 0\n# 2\n# 1\n0 0 0\n", "Line 4: expected 2 numbers and nothing else"},
      {stack, "# 2\n# 3\n# 1\n# 0\n# 2\n# 0\n", "another space dimension"},
      {stack, "# 2\n# 3\n# 2000000000\n# 0\n# 3\n# 0\n", "too early"},
      {grid, "# 2\n# 3\n# 0\n# 0\n", "shape type"},
      {grid, "# 4\n# 3\n# 2000000000\n0 0 0\n", "Line 5"},
      {grid, "# 4\n# 1\n# 3\n0\n1\n2\n# 2\n# 0\n# 0\n# 0\n", "do not make up 2 rows"},
      {grid, "# 4\n# 1\n# 0\n# 2000000000\n# 0\n# 0\n# 0\n", "do not make up"},
      {grid, "# 4\n# 1\n# 1\n0\n# 0\n# 0\n# 0\n# 0\n", "do not make up 0 rows"},
      {grid, "# 4\n# 1\n# 1\n0\n# 1\n# 0\n# 0\n# 1\n0 256 0\n", "colour"},
      {grid, "# 4\n# 1\n# 1\n0\n# 1\n# 0\n", "too early"},
      {mesh, "# 8\n# 3\n# 1\n0 0 0\n# 1\n0 0 1\n# 0\n", "Line 6: there is no vertex 1"},
      {mesh, "# 8\n# 3\n# 1\n0 0 0\n# 2000000000\n0 0 0\n", "Line 7: the text ends too early"},
      {mesh, "# 8\n# 3\n# 1\n0 0 0\n# 0\n", "Line 6: the text ends too early"},
      {mesh, "# 8\n# 3\n# 1\n0 0 0\n# 0\n# 1\n0 0\n", "Line 7: expected 3 numbers"},
      {mesh, "# 0\n# 3\n# 0\n", "Line 1: the shape type"},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.text);
    const std::string before = textOf(c.shape);
    expectError<FileFormatError>(c.message, [&] { readText(c.shape, c.text); });
    EXPECT_EQ(textOf(c.shape), before);
  }
}

TEST(ShapeText, WhenDamagedIsReadOrRefused)
{
  const std::string characters = "# \n0123456789.-e";
  std::mt19937 engine(11);
  int numRefused = 0;
  for (const ValidText& valid : validTexts())
    for (int k = 0; k < 500; ++k)
    {
      std::string damaged = valid.text.substr(0, k % 3 == 0 ? engine() % valid.text.size() : valid.text.size());
      for (unsigned changes = engine() % 4; changes > 0 && !damaged.empty(); --changes)
        damaged[engine() % damaged.size()] = characters[engine() % characters.size()];
      try
      {
        readText(*valid.shape, damaged);
        EXPECT_LE(valid.shape->getNumVertices(), 12);
      }
      catch (const FileFormatError&)
      {
        ++numRefused;
      }
      const std::string text = textOf(*valid.shape);
      readText(*valid.shape, text);
      EXPECT_EQ(textOf(*valid.shape), text);
    }
  EXPECT_GT(numRefused, 1500);
}
