#include "geometry/reconstruction/stackexporter.h"
#include "tests/support/errors.h"
#include "tests/support/manifold.h"
#include "tests/support/stacks.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

namespace
{

namespace fs = std::filesystem;

const std::vector<std::vector<int>> square = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
const std::vector<std::vector<int>> reversedSquare = {{0, 10}, {10, 10}, {10, 0}, {0, 0}};
const std::vector<std::vector<int>> farSquare = {{50, 0}, {60, 0}, {60, 10}, {50, 10}};

class StackExporterTest : public testing::Test
{
protected:
  StackExporterTest()
  {
    fs::remove_all(_folder);
    fs::create_directories(_folder);
    _stack.setName("specimen");
    _stack.setDefaultRelativePosition(2);
    for (int i = 0; i < 3; ++i) addSlice(_stack, 100, 100);
  }
  ~StackExporterTest() override { fs::remove_all(_folder); }

  /// A model with one square on each slice.
  Model& addColumn(const std::string& name, MPrimitive geometry = MPrimitive::Polygon)
  {
    Model& model = addModel(_stack, name, geometry);
    for (int i = 0; i < _stack.getNumSlices(); ++i) addItem(model, *_stack.getSlice(i), square);
    return model;
  }

  std::set<std::string> files() const
  {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(_folder)) names.insert(entry.path().filename().string());
    return names;
  }

  std::string text(const std::string& name) const
  {
    std::ostringstream content;
    content << std::ifstream(_folder + "/" + name).rdbuf();
    return content.str();
  }

  void exportAll(bool overwrite = false) { _exporter.export2AsciiSTL(_stack, _folder, overwrite); }

  std::string _folder =
      testing::TempDir() + "mirelo_export_" + testing::UnitTest::GetInstance()->current_test_info()->name();
  Stack _stack;
  StackExporter _exporter;
};

TEST_F(StackExporterTest, WithoutTwoContoursToJoinNothingIsWritten)
{
  Model& lines = addModel(_stack, "lines", MPrimitive::Polygon);
  for (int i = 0; i < 3; ++i) addItem(lines, *_stack.getSlice(i), {{0, 0}, {8, 8}});
  Model& flat = addModel(_stack, "flat", MPrimitive::Polygon);
  addItem(flat, *_stack.getSlice(0), square);
  addItem(flat, *_stack.getSlice(0), farSquare);
  exportAll();
  EXPECT_TRUE(files().empty());
  EXPECT_EQ(_exporter.getWarnings().size(), 2u);
}

} // namespace

TEST_F(StackExporterTest, WritesOneFilePerSurface)
{
  addColumn("cell");
  addColumn("fibre", MPrimitive::Polyline);
  addColumn("points", MPrimitive::Polypoint);
  addItem(addModel(_stack, "single", MPrimitive::Polygon), *_stack.getSlice(0), square);
  addModel(_stack, "empty", MPrimitive::Polygon);
  exportAll();
  EXPECT_EQ(files(), (std::set<std::string>{"specimen-cell.stl", "specimen-fibre.stl"}));

  const std::string cell = text("specimen-cell.stl");
  EXPECT_EQ(cell.substr(0, 11), "solid cell\n");
  EXPECT_NE(cell.find("      vertex -50 50 0\n"), std::string::npos); // pixel (0, 0)
  EXPECT_EQ(cell.substr(cell.size() - 14), "endsolid cell\n");
  std::size_t numFacets = 0;
  for (std::size_t at = cell.find("facet normal"); at != std::string::npos; at = cell.find("facet normal", at + 1))
    ++numFacets;
  EXPECT_EQ(numFacets, 16u); // open at both ends
}

TEST_F(StackExporterTest, LeavesOutSeparatorsOfEmptyNames)
{
  Model& model = addColumn("cell");
  StackReconstruction<float> reconstruction(_stack);
  const fs::path before = fs::current_path();
  fs::current_path(_folder);
  _exporter.export2AsciiSTL(model, reconstruction, "", "", false);
  fs::current_path(before);
  _exporter.export2AsciiSTL(model, reconstruction, _folder, "stack", false);
  EXPECT_EQ(files(), (std::set<std::string>{"cell.stl", "stack-cell.stl"}));
}

TEST_F(StackExporterTest, ChecksEveryTargetBeforeItWritesOne)
{
  addColumn("a");
  addColumn("b");
  const std::string existing = _folder + "/specimen-b.stl";
  std::ofstream(existing) << "kept";
  try
  {
    exportAll();
    ADD_FAILURE() << "nothing was thrown";
  }
  catch (const FileWriteError& error)
  {
    EXPECT_EQ(error.getWhere(), "void StackExporter::export2AsciiSTL(...)");
    EXPECT_EQ(error.getWhat(), existing + " : file exists");
  }
  EXPECT_EQ(files(), (std::set<std::string>{"specimen-b.stl"}));
  EXPECT_EQ(text("specimen-b.stl"), "kept");
  exportAll(true);
  EXPECT_EQ(text("specimen-b.stl").substr(0, 8), "solid b\n");
}

TEST_F(StackExporterTest, KeepsModelsOfOneNameApart)
{
  addColumn("cell");
  addColumn("cell-2");
  addColumn("cell");
  exportAll();
  EXPECT_EQ(files(), (std::set<std::string>{"specimen-cell.stl", "specimen-cell-2.stl", "specimen-cell-3.stl"}));
  addColumn("in/out");
  expectError<ValueError>("in/out", [&] { exportAll(true); });
}

TEST_F(StackExporterTest, JoinsBranchesAndTellsOfModelsThatItLeavesOut)
{
  Model& vessel = addColumn("vessel");
  addItem(vessel, *_stack.getSlice(1), farSquare);
  addColumn("regions", MPrimitive::Region);
  exportAll();
  EXPECT_EQ(files(), (std::set<std::string>{"specimen-vessel.stl"}));
  ASSERT_EQ(_exporter.getWarnings().size(), 1u);
  EXPECT_NE(_exporter.getWarnings()[0].find("\"regions\""), std::string::npos);
}

TEST_F(StackExporterTest, LeavesNothingBehindWhenAFolderIsMissing)
{
  addColumn("cell");
  EXPECT_THROW(_exporter.export2AsciiSTL(_stack, _folder + "/missing", false), FileWriteError);
  EXPECT_TRUE(files().empty());
}

TEST_F(StackExporterTest, SurfacesFaceOutHoweverTheContoursAreDrawn)
{
  Model& model = addModel(_stack, "cell", MPrimitive::Polygon);
  addItem(model, *_stack.getSlice(0), square);
  addItem(model, *_stack.getSlice(1), reversedSquare);
  addItem(model, *_stack.getSlice(2), square);
  for (const bool invertZ : {false, true})
  {
    _stack.setInvertZAxis(invertZ);
    const StackReconstruction<float> reconstruction(_stack);
    ModelSurface<float> surface(reconstruction);
    surface.setCaps({false, true, true});
    surface.apply(model);
    EXPECT_TRUE(isClosedManifold(surface.getTriMesh()));
    EXPECT_DOUBLE_EQ(signedVolume(surface.getTriMesh()), 400);
  }
}

TEST_F(StackExporterTest, CapsFollowTagsAndTheModelsFlagsWhenAskedTo)
{
  using Tag = CurveStackTriangulationContourTag;
  const struct
  {
    const char* name;
    SurfaceCaps caps;
    bool beginFlag, endFlag;
    Tag firstTag;
    int numTriangles; // 16 without caps, 2 more for each
  } cases[] = {
      {"nothing asked", {}, true, true, Tag::Begin, 16},
      {"tag", {true, false, false}, false, false, Tag::Begin, 18},
      {"begin flag", {true, false, false}, true, false, Tag::None, 18},
      {"both flags and a tag", {true, false, false}, true, true, Tag::Begin, 20},
      {"first and last", {false, true, true}, false, false, Tag::None, 20},
  };
  Model& model = addColumn("cell");
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    model.getProperties().setBeginCapFlag(c.beginFlag);
    model.getProperties().setEndCapFlag(c.endFlag);
    model.getItem(0)->setTriangulationTag(c.firstTag);
    const StackReconstruction<float> reconstruction(_stack);
    ModelSurface<float> surface(reconstruction);
    surface.setCaps(c.caps);
    surface.apply(model);
    EXPECT_EQ(surface.getTriMesh().getNumTriangles(), c.numTriangles);
  }
}

TEST_F(StackExporterTest, NamesTheContoursThatItLeavesOut)
{
  Model& model = addColumn("cell");
  addItem(model, *_stack.getSlice(0), {{5, 5}, {6, 6}});
  addItem(model, *_stack.getSlice(2), {{5, 5}, {5, 5}, {5, 5}});
  exportAll();
  EXPECT_EQ(_exporter.getWarnings(),
            (std::vector<std::string>{"Model \"cell\": contours without extent are left out, on "
                                      "slice \"slice 0\", \"slice 2\""}));
  EXPECT_EQ(files().size(), 1u);
}
