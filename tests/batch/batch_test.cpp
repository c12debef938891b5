// The program as scripts see it: exit status, standard output, error stream, files.
#include "batch_fixture.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace
{
namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

const std::string example = MIRELO_EXAMPLE;

TEST_F(Batch, AnswersHelpAndVersion)
{
  EXPECT_THAT(run("--version").output, StartsWith("mirelo-batch "));
  for (const std::string command : {"", "info", "check", "convert", "export", "measure", "spatial"})
  {
    const Result result = run(command + " --help");
    EXPECT_EQ(result.status, 0) << command;
    EXPECT_THAT(result.output, HasSubstr("Usage")) << command;
  }
}

TEST_F(Batch, BadArgumentsAndInputGiveOneLine)
{
  write(folder / "empty.sdf", "");
  write(folder / "garbage.sdf", std::string(5000, '\xff'));
  write(folder / "nostack.sdf", "SLICE \"1\" \"1.tif\";\nMODEL \"a\";\n");
  fs::create_directories(folder / "folder.sdf");
  const struct
  {
    std::string arguments;
    std::string named; // in the one line of the error stream
  } cases[] = {
      {"", "--help"},
      {"nonsense", "nonsense"},
      {"info", "file is required"},
      {"info missing.sdf", "missing.sdf"},
      {"info missing", "missing.sdf"}, // the suffix is added
      {"info empty.sdf", "empty.sdf"},
      {"info garbage.sdf", "garbage.sdf"},
      {"info nostack.sdf", "nostack.sdf"},
      {"info folder.sdf", "folder.sdf"},
      {"convert garbage.sdf new.sdf", "garbage.sdf"},
      {"export empty.sdf --out surfaces", "empty.sdf"},
      {"export " + example + " --out surfaces --model nobody", "nobody"},
      {"export " + example + " --out surfaces --caps sideways", "sideways"},
      {"measure missing.sdf --sheet models", "missing.sdf"},
      {"measure " + example + " --sheet moods", "moods"},
      {"convert " + example + " nowhere/new.sdf", "nowhere/new.sdf"},
      {"convert " + example + " new.txt", "new.txt"}, // it could not be read back
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.arguments);
    const Result result = run(c.arguments);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.output, IsEmpty());
    EXPECT_THAT(result.errors, StartsWith("mirelo-batch: "));
    EXPECT_THAT(result.errors, HasSubstr(c.named));
    EXPECT_EQ(std::ranges::count(result.errors, '\n'), 1) << result.errors;
  }
  EXPECT_FALSE(fs::exists(folder / "new.sdf"));
}

TEST_F(Batch, CheckTellsItsFindings)
{
  EXPECT_EQ(run("check " + example).status, 0);
  EXPECT_THAT(run("check " + example).output, IsEmpty());
  write(folder / "faults.sdf", "STACK \"a\";\n"
                               "SLICE \"1\" \"1.tif\";\n"
                               "SHIFT 1;\n"
                               "POSEZOOM 50;\n"
                               "RELDEPTH 1,5;\n"
                               "NONSENSE 1;\n"
                               "CALIBRATIONCURVE 0,1 5e-324,2;\n"); // levels that no polynomial can tell apart
  const Result faults = run("check faults.sdf");
  EXPECT_EQ(faults.status, 1);
  EXPECT_EQ(faults.output, "Error on SHIFT: invalid number of arguments.\n"
                           "Error: POSEZOOM is invalid in this context.\n"
                           "Error on RELDEPTH: invalid argument.\n"
                           "Error on NONSENSE: unknown keyword (ignored).\n"
                           "Error on CALIBRATIONCURVE: This matrix has elements that are not finite\n");
  EXPECT_THAT(faults.errors, IsEmpty());
  const Result missing = run("check missing");
  EXPECT_EQ(missing.status, 2);
  EXPECT_EQ(missing.output, "Error: missing.sdf: Cannot open file for reading (No such file or directory)\n");
}

TEST_F(Batch, ConvertIsIdempotentAndKeepsExistingFiles)
{
  ASSERT_EQ(run("convert " + example + " once.sdf").status, 0);
  ASSERT_EQ(run("convert once.sdf twice.sdf").status, 0);
  EXPECT_EQ(contents(folder / "once.sdf"), contents(folder / "twice.sdf"));
  EXPECT_THAT(contents(folder / "once.sdf"), HasSubstr("specimen")); // the path to the images leads back to them

  write(folder / "precious.sdf", "precious");
  const Result refused = run("convert once.sdf precious.sdf");
  EXPECT_EQ(refused.status, 2);
  EXPECT_THAT(refused.errors, HasSubstr("precious.sdf"));
  EXPECT_EQ(contents(folder / "precious.sdf"), "precious");

  // A disk that is full after one block: the error, the old file, and nothing left beside it.
  const Result full = run("convert once.sdf precious.sdf --overwrite", "ulimit -f 1;");
  EXPECT_EQ(full.status, 2);
  EXPECT_EQ(contents(folder / "precious.sdf"), "precious");
  int numFiles = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator(folder)) ++numFiles;
  EXPECT_EQ(numFiles, 5) << "once, twice, precious, out, err";

  ASSERT_EQ(run("convert once.sdf precious.sdf --overwrite").status, 0);
  EXPECT_EQ(contents(folder / "precious.sdf"), contents(folder / "once.sdf"));
}

TEST_F(Batch, AResultThatCannotBeWrittenIsAnError)
{
  const std::string command = MIRELO_BATCH " info " + example + " >/dev/full 2>" + (folder / "err").string();
  const int status = std::system(command.c_str());
  EXPECT_EQ(WEXITSTATUS(status), 2);
  EXPECT_THAT(contents(folder / "err"), HasSubstr("standard output"));
}

TEST_F(Batch, InfoDescribesTheStack)
{
  const auto info = nlohmann::json::parse(run("info " + example + " --json").output);
  EXPECT_EQ(info["name"], "specimen");
  EXPECT_EQ(info["lengthUnitScale"], -6);
  EXPECT_EQ(info["defaultRelativePosition"], 1.2);
  EXPECT_EQ(info["slices"].size(), 28u);
  const auto& slice = info["slices"][2];
  EXPECT_EQ(slice["source"], nlohmann::json({{"kind", "file"}, {"file", "slice-002.tif"}}));
  EXPECT_EQ(slice["imageSize"], nlohmann::json({256, 256}));
  EXPECT_EQ(slice["pixelWidth"], 0.25);
  EXPECT_EQ(slice["absolutePosition"], 2.4);
  EXPECT_EQ(info["models"][0]["primitive"], "Polygon");
  EXPECT_EQ(info["models"][0]["items"][0]["data"].size(), 64u);
  EXPECT_EQ(info["models"][2]["items"][0]["tag"], "Begin");
  EXPECT_EQ(info["poses"][0]["rotation"], nlohmann::json({-60, 0, 25}));
  EXPECT_EQ(info["fatal"], false);
}

TEST_F(Batch, ReadsPlanesOfAMultiPageFile)
{
  write(folder / "planes.sdf", "STACK \"planes\"; RELPOSITION 2;\n"
                               "StackSlice \"a\" \"gone.tif\" 0; SliceSize1 20; SliceSize2 30;\n"
                               "StackSlice \"b\" \"gone.tif\" 1; SliceSize1 20; SliceSize2 30;\n");
  const auto info = nlohmann::json::parse(run("info planes.sdf --json").output);
  EXPECT_EQ(info["slices"][1]["source"], nlohmann::json({{"kind", "tiff-plane"}, {"file", "gone.tif"}, {"plane", 1}}));
  EXPECT_EQ(info["slices"][1]["imageSize"], nlohmann::json({30, 20}));
}

TEST_F(Batch, ExportWritesSurfacesOnce)
{
  const std::string arguments =
      "export " + example + " --out surfaces --model nucleus --caps first --caps last --triangulate";
  ASSERT_EQ(run(arguments).status, 0);
  const std::string stl = contents(folder / "surfaces/specimen-nucleus.stl");
  EXPECT_THAT(stl, StartsWith("solid nucleus\n  facet normal "));
  // 19 gaps of 64 + 64 triangles, two caps of 62.
  const long numFacets = 19 * 128 + 2 * 62;
  EXPECT_EQ(std::ranges::count(stl, '\n'), 2 + 7 * numFacets);
  const Result again = run(arguments);
  EXPECT_EQ(again.status, 2);
  EXPECT_THAT(again.errors, HasSubstr("surfaces/specimen-nucleus.stl : file exists"));
  EXPECT_EQ(run(arguments + " --overwrite").status, 0);
  EXPECT_EQ(run("export " + example + " --out new/deep/er --model nobody").status, 2);
  EXPECT_FALSE(fs::exists(folder / "new"));
}

TEST_F(Batch, ExportResamplesOntoTheModelsQuadMeshAndWritesEveryFormat)
{
  const struct
  {
    std::string format, suffix, start;
  } cases[] = {
      {"stl", ".stl", "solid nucleus"},
      {"stl-binary", ".stl", "Mirelo nucleus"},
      {"ply", ".ply", "ply"},
      {"obj", ".obj", "o nucleus"},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.format);
    const Result result =
        run("export " + example + " --out " + c.format + " --model nucleus --caps all --format " + c.format);
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, IsEmpty());
    EXPECT_THAT(contents(folder / c.format / ("specimen-nucleus" + c.suffix)), StartsWith(c.start));
    EXPECT_THAT(contents(folder / c.format / "specimen-nucleus.qm"), StartsWith("# 4\n# 3\n# 10000\n"));
  }
  // The surface is refused as long as the quad mesh beside it exists.
  fs::remove(folder / "ply" / "specimen-nucleus.ply");
  const Result refused = run("export " + example + " --out ply --model nucleus --format ply");
  EXPECT_EQ(refused.status, 2);
  EXPECT_THAT(refused.errors, HasSubstr("specimen-nucleus.qm : file exists"));
  EXPECT_FALSE(fs::exists(folder / "ply" / "specimen-nucleus.ply"));
  EXPECT_EQ(run("export " + example + " --out ply --model nucleus --format vrml").status, 2);
}

TEST_F(Batch, MeasuresAreTheSameInBothForms)
{
  const Result csv = run("measure " + example + " --sheet models");
  const auto rows = nlohmann::json::parse(run("measure " + example + " --sheet models --json").output);
  ASSERT_EQ(rows.size(), 5u);
  std::istringstream lines(csv.output);
  std::string line;
  std::getline(lines, line);
  EXPECT_EQ(line, "Model,Primitive,Vertices,AverageX [\u00b5m],AverageY [\u00b5m],AverageZ [\u00b5m],Contours,Area "
                  "[\u00b5m^2],Volume [\u00b5m^3]\r");
  for (const auto& row : rows)
  {
    std::getline(lines, line);
    EXPECT_THAT(line, StartsWith(row["model"].get<std::string>() + "," + row["primitive"].get<std::string>() + ","));
    EXPECT_THAT(line, HasSubstr("," + (row["volume"].is_null() ? "NA" : row["volume"].dump()) + "\r"));
  }
  EXPECT_TRUE(rows[1]["area"].is_null()) << "the vessel branches";
  EXPECT_GT(rows[1]["volume"], 0);
  EXPECT_TRUE(rows[3]["contours"].is_null()) << "points have none";
  EXPECT_EQ(rows[3]["vertices"], 72);

  ASSERT_EQ(run("measure " + example + " --sheet models --out table.csv").status, 0);
  EXPECT_EQ(contents(folder / "table.csv"), csv.output);
  EXPECT_EQ(run("measure " + example + " --sheet models --out table.csv").status, 2);
}
} // namespace
