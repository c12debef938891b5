#include "geometry/outputfile.h"
#include "geometry/reconstruction/stackexporter.h"
#include "tests/support/errors.h"
#include "tests/support/manifold.h"
#include "tests/support/stacks.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>

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

  /// Number of facets of an STL text; 0 without the file.
  int numFacets(const std::string& name) const
  {
    const std::string content = text(name);
    int count = 0;
    for (std::size_t at = content.find("facet normal"); at != std::string::npos;
         at = content.find("facet normal", at + 1))
      ++count;
    return count;
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
  EXPECT_EQ(files(), (std::set<std::string>{"specimen-cell.qm", "specimen-cell.stl", "specimen-fibre.qm",
                                            "specimen-fibre.stl"}));

  const std::string cell = text("specimen-cell.stl");
  EXPECT_EQ(cell.substr(0, 11), "solid cell\n");
  EXPECT_NE(cell.find("      vertex -50 50 0\n"), std::string::npos); // pixel (0, 0)
  EXPECT_EQ(cell.substr(cell.size() - 14), "endsolid cell\n");
  EXPECT_EQ(numFacets("specimen-cell.stl"), 2 * 100 * 99); // open at both ends
  EXPECT_EQ(numFacets("specimen-fibre.stl"), 2 * 99 * 99);
  const QuadMesh<float> quadMesh(_folder + "/specimen-fibre.qm");
  EXPECT_TRUE(quadMesh.isOpen());
  EXPECT_EQ(quadMesh.getHeight(99), 4);
}

TEST_F(StackExporterTest, QuadMeshesHaveTheModelsSize)
{
  const struct
  {
    int width, height;
    int numFacets; // 0 when nothing is written
  } cases[] = {
      {4, 3, 16}, {7, 2, 14}, {2, 5, 0}, {5, 1, 0}, {0, 0, 0}, {-3, -3, 0}, {2000000000, 2000000000, 0},
  };
  Model& model = addColumn("cell");
  for (const auto& c : cases)
  {
    SCOPED_TRACE(std::to_string(c.width) + " x " + std::to_string(c.height));
    model.getProperties().setQuadMeshWidth(c.width);
    model.getProperties().setQuadMeshHeight(c.height);
    exportAll();
    EXPECT_EQ(files().size(), c.numFacets > 0 ? 2u : 0u);
    EXPECT_EQ(_exporter.getWarnings().size(), c.numFacets > 0 ? 0u : 1u); // one reason, one line
    EXPECT_EQ(numFacets("specimen-cell.stl"), c.numFacets);
    for (const std::string& name : files()) fs::remove(_folder + "/" + name);
  }
  _exporter.setResampling(false);
  exportAll();
  EXPECT_EQ(files(), (std::set<std::string>{"specimen-cell.stl"}));
  EXPECT_EQ(numFacets("specimen-cell.stl"), 16);
}

TEST_F(StackExporterTest, WritesEveryFormat)
{
  const struct
  {
    SurfaceFormat format;
    const char* filename;
    const char* start;
    std::size_t size; // 0 for text
  } cases[] = {
      {SurfaceFormat::AsciiStl, "s-cell.stl", "solid cell\n", 0},
      {SurfaceFormat::BinaryStl, "s-cell.stl", "Mirelo cell", 84 + 16 * 50},
      {SurfaceFormat::Ply, "s-cell.ply", "ply\n", 0},
      {SurfaceFormat::Obj, "s-cell.obj", "o cell\nv ", 0},
  };
  const Model& model = addColumn("cell");
  const StackReconstruction<float> reconstruction(_stack);
  _exporter.setResampling(false);
  for (const auto& c : cases)
  {
    _exporter.exportModels({&model}, reconstruction, _folder, "s", c.format, true);
    EXPECT_EQ(_exporter.getFilenames(), (std::vector<std::string>{_folder + "/" + c.filename}));
    EXPECT_EQ(text(c.filename).substr(0, std::string(c.start).size()), c.start);
    EXPECT_TRUE(c.size == 0 || text(c.filename).size() == c.size);
  }
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
  EXPECT_EQ(files(), (std::set<std::string>{"cell.qm", "cell.stl", "stack-cell.qm", "stack-cell.stl"}));
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

  for (const char* name : {"specimen-a.stl", "specimen-a.qm", "specimen-b.stl"}) fs::remove(_folder + "/" + name);
  expectError<FileWriteError>("specimen-b.qm : file exists", [&] { exportAll(); });
  EXPECT_EQ(files(), (std::set<std::string>{"specimen-b.qm"}));
  addItem(*_stack.getModel(1), *_stack.getSlice(1), farSquare); // a branching model has no quad mesh to write
  exportAll();
  EXPECT_EQ(files().size(), 4u);
  ASSERT_EQ(_exporter.getWarnings().size(), 1u);
  EXPECT_NE(_exporter.getWarnings()[0].find("specimen-b.qm: left as it is"), std::string::npos);
}

TEST_F(StackExporterTest, RefusesTargetsThatCannotBeWrittenBeforeItWritesOne)
{
  using Block = std::function<void(const std::string&)>; // puts something in the place of a file
  const Block folder = [](const std::string& path) { fs::create_directories(path); };
  const Block pipe = [](const std::string& path) { mkfifo(path.c_str(), 0600); };
  const Block linkIntoNoFolder = [](const std::string& path) { fs::create_symlink("missing/folder", path); };
  const Block nothing = [](const std::string&) {};
  const struct
  {
    std::string name, suffix;
    Block block;
    std::vector<bool> overwrite; // without, what exists is refused for that
  } cases[] = {
      {"b", ".stl", folder, {true}},
      {"b", ".stl", pipe, {true}},
      {"b", ".qm", folder, {true}},
      {"b", ".qm", pipe, {true}},
      {"b", ".stl", linkIntoNoFolder, {false, true}},
      {"b", ".qm", linkIntoNoFolder, {false, true}},
      {std::string(300, 'b'), ".stl", nothing, {false, true}},
  };
  addColumn("a");
  Model& second = addColumn("b");
  for (const auto& c : cases)
    for (const bool overwrite : c.overwrite)
    {
      SCOPED_TRACE(c.name + c.suffix);
      second.setName(c.name);
      const std::string path = _folder + "/specimen-" + c.name + c.suffix;
      c.block(path);
      const std::set<std::string> before = files();
      expectError<FileWriteError>("Cannot open file for writing", [&] { exportAll(overwrite); });
      EXPECT_EQ(files(), before);
      std::error_code tooLong;
      fs::remove_all(path, tooLong);
    }
}

TEST_F(StackExporterTest, ASurfaceAndItsQuadMeshAreWrittenTogetherOrNotAtAll)
{
  addColumn("a");
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit = {};
  getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit before = limit;
  limit.rlim_cur = 1000000; // room for a quad mesh of 10,000 vertices, but not for its 20,000 facets
  setrlimit(RLIMIT_FSIZE, &limit);
  EXPECT_THROW(exportAll(), FileWriteError);
  setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_TRUE(files().empty());
  EXPECT_TRUE(_exporter.getFilenames().empty());

  // Something takes the surface's place at the last moment.
  OutputFile surface(_folder + "/a.stl", true, ""), quadMesh(_folder + "/a.qm", true, "");
  fs::create_directories(_folder + "/a.stl");
  EXPECT_THROW(surface.commitWith(quadMesh), FileWriteError);
  EXPECT_EQ(files().count("a.qm"), 0u);
}

TEST_F(StackExporterTest, RemovesTheQuadMeshOfTheSurfaceThatItReplaces)
{
  addColumn("a");
  addColumn("b");
  exportAll();
  _exporter.setResampling(false);
  fs::remove(_folder + "/specimen-a.stl");
  fs::create_directories(_folder + "/specimen-a.stl/blocked");
  EXPECT_THROW(exportAll(true), FileWriteError);
  EXPECT_TRUE(fs::exists(_folder + "/specimen-a.qm")); // nothing was replaced
  fs::remove_all(_folder + "/specimen-a.stl");
  exportAll(true);
  EXPECT_EQ(files(), (std::set<std::string>{"specimen-a.stl", "specimen-b.stl"}));
  EXPECT_TRUE(_exporter.getWarnings().empty());
}

TEST_F(StackExporterTest, KeepsModelsOfOneNameApart)
{
  addColumn("cell");
  addColumn("cell-2");
  addColumn("cell");
  _exporter.setResampling(false);
  exportAll();
  EXPECT_EQ(files(), (std::set<std::string>{"specimen-cell.stl", "specimen-cell-2.stl", "specimen-cell-3.stl"}));
  addColumn("in/out");
  expectError<ValueError>("in/out", [&] { exportAll(true); });
}

TEST_F(StackExporterTest, FilenamesDoNotDependOnTheModelsThatAreExported)
{
  const std::vector<std::string> names = {"cell", "cell", "cell-2", "cell", "cell-2", "cell"};
  const std::vector<std::string> basenames = {"cell", "cell-3", "cell-2", "cell-4", "cell-2-2", "cell-5"};
  addColumn("cell", MPrimitive::Polypoint); // takes no name
  for (const std::string& name : names) addColumn(name);
  addColumn("in/out"); // is an error only when it is exported itself
  addColumn("points/in/out", MPrimitive::Polypoint);
  StackReconstruction<float> reconstruction(_stack);
  _exporter.setResampling(false);
  std::vector<const Model*> models;
  for (int i = 0; i < 7; ++i)
  {
    models.push_back(_stack.getModel(i));
    _exporter.export2AsciiSTL(*models.back(), reconstruction, _folder, "", true);
    std::vector<std::string> expected;
    if (i > 0) expected.push_back(_folder + "/" + basenames[static_cast<std::size_t>(i) - 1] + ".stl");
    EXPECT_EQ(_exporter.getFilenames(), expected) << i;
  }
  models.push_back(_stack.getModel(8));
  const std::set<std::string> before = files();
  _exporter.exportModels(models, reconstruction, _folder, "", SurfaceFormat::AsciiStl, true);
  EXPECT_EQ(files(), before);
}

TEST_F(StackExporterTest, JoinsBranchesAsTheyWereDrawn)
{
  Model& vessel = addColumn("vessel");
  addItem(vessel, *_stack.getSlice(1), farSquare);
  exportAll();
  EXPECT_EQ(files(), (std::set<std::string>{"specimen-vessel.stl"}));
  EXPECT_TRUE(_exporter.getWarnings().empty());
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
    for (const bool isResampling : {false, true})
    {
      ModelSurface<float> surface(reconstruction);
      surface.setCaps({false, true, true});
      surface.setResampling(isResampling);
      surface.apply(model);
      EXPECT_TRUE(isClosedManifold(surface.getTriMesh()));
      EXPECT_NEAR(signedVolume(surface.getTriMesh()), 400, 1e-3);
    }
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
  model.getProperties().setQuadMeshWidth(4);
  model.getProperties().setQuadMeshHeight(3);
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    model.getProperties().setBeginCapFlag(c.beginFlag);
    model.getProperties().setEndCapFlag(c.endFlag);
    model.getItem(0)->setTriangulationTag(c.firstTag);
    const StackReconstruction<float> reconstruction(_stack);
    for (const bool isResampling : {false, true})
    {
      ModelSurface<float> surface(reconstruction);
      surface.setCaps(c.caps);
      surface.setResampling(isResampling);
      surface.apply(model);
      EXPECT_EQ(surface.getTriMesh().getNumTriangles(), c.numTriangles);
      EXPECT_EQ(surface.getQuadMesh().isEmpty(), !isResampling);
      EXPECT_TRUE(surface.getWarnings().empty());
    }
  }
}

TEST_F(StackExporterTest, TellsOfTagsThatAQuadMeshCannotFollow)
{
  Model& model = addColumn("cell");
  model.getItem(1)->setTriangulationTag(CurveStackTriangulationContourTag::Begin);
  exportAll();
  EXPECT_EQ(_exporter.getWarnings().size(), 1u);
  _exporter.setResampling(false);
  exportAll(true);
  EXPECT_TRUE(_exporter.getWarnings().empty());
  EXPECT_EQ(numFacets("specimen-cell.stl"), 8); // nothing joins the first two contours
}

TEST_F(StackExporterTest, RegionsAreClosedAlongTheirPixels)
{
  Model& model = addModel(_stack, "region", MPrimitive::Region);
  // 4 by 3 pixels, the middle one missing on the second slice: the hole is not on the outer boundary.
  for (int i = 0; i < 3; ++i)
  {
    RLEItemSet region({RLEItem(5, 7, 3), RLEItem(6, 7, 3), RLEItem(7, 7, 3), RLEItem(8, 7, 3)});
    if (i == 1) region.remove(6, 8);
    ModelItem::create(model, *_stack.getSlice(i)).setRLEItemSet(region);
  }
  const StackReconstruction<double> reconstruction(_stack);
  for (const bool isResampling : {false, true})
  {
    ModelSurface<double> surface(reconstruction);
    surface.setCaps({false, true, true});
    model.getProperties().setQuadMeshWidth(14); // the perimeter in pixels
    surface.setResampling(isResampling);
    surface.apply(model);
    EXPECT_TRUE(isClosedManifold(surface.getTriMesh()));
    EXPECT_NEAR(signedVolume(surface.getTriMesh()), 12 * 4, 1e-9);
  }
  exportAll();
  EXPECT_EQ(files(), (std::set<std::string>{"specimen-region.qm", "specimen-region.stl"}));
}

TEST_F(StackExporterTest, TellsOfContoursThatMayNotBeMeant)
{
  Model& model = addColumn("cell");
  addItem(model, *_stack.getSlice(0), {{0, 0}, {8, 8}, {8, 0}, {0, 8}});
  _stack.getSlice(1)->setAbsolutePosition(-7);
  exportAll();
  std::vector<std::string> texts;
  for (const std::string& line : _exporter.getWarnings()) texts.push_back(line.substr(0, line.find(", on slice")));
  EXPECT_THAT(texts, testing::IsSupersetOf({"Model \"cell\": the slices do not lie one above the other in their order",
                                            "Model \"cell\": contours touch or cross themselves"}));
}

TEST_F(StackExporterTest, TellsOfContoursThatTouchThemselvesHoweverTheyAreTurned)
{
  Model& model = addModel(_stack, "spike", MPrimitive::Polygon);
  for (int i = 0; i < _stack.getNumSlices(); ++i)
  {
    _stack.getSlice(i)->setRegistration(Registration(1, 0, 7.3F * static_cast<float>(i + 1)));
    // The last edge goes back along the one before.
    addItem(model, *_stack.getSlice(i), {{0, 0}, {90, 30}, {90, 90}, {30, 70}, {60, 80}, {0, 60}});
    addItem(model, *_stack.getSlice(i), {{100, 0}, {103, 1}, {106, 2}});
  }
  exportAll();
  const std::vector<std::string>& warnings = _exporter.getWarnings();
  const auto isOfTouching = [](const std::string& line)
  { return line.find("\"spike\": contours touch or cross themselves") != std::string::npos; };
  const auto found = std::ranges::find_if(warnings, isOfTouching);
  ASSERT_NE(found, warnings.end());
  for (int i = 0; i < _stack.getNumSlices(); ++i)
    EXPECT_THAT(*found, testing::HasSubstr("\"" + _stack.getSlice(i)->getName() + "\"")) << i;
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
  EXPECT_EQ(files().size(), 2u);
}
