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
      {"convert missing.sdf nowhere/new.sdf", "nowhere/new.sdf: there is no folder nowhere"}, // before any work
      {"measure missing.sdf --sheet models --out empty.sdf/new.csv", "there is no folder empty.sdf"},
      {"register missing.sdf --out nowhere/new.sdf", "there is no folder nowhere"},
      {"measure " + example + " --sheet items", "--sheet items measures one model"},
      {"measure " + example + " --sheet items --model nucleus --model stain", "--sheet items measures one model"},
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

/// Two slices 2 apart with pixels of 0.5 by 0.25 of 40 by 20, and a model of each kind.
const std::string smallStack = "STACK \"small\"; LengthUnitScale -9; PIXWIDTH 0.5; PIXASPECT 0.5; RELPOSITION 2;\n"
                               "SLICE \"a\" \"gone.tif\"; SliceSize1 20; SliceSize2 40;\n"
                               "SLICE \"b, c\" \"gone.tif\"; SliceSize1 20; SliceSize2 40;\n"
                               "MODEL \"box\"; PRIMITIVE Polygon;\n"
                               "MODELITEM \"box\" \"a\"; MODELITEMDATA 0,0 20,0 20,12 0,12;\n"
                               "MODELITEM \"box\" \"b, c\"; MODELITEMDATA 0,0 20,0 20,12 0,12;\n"
                               "MODEL \"line\"; PRIMITIVE Polyline;\n"
                               "MODELITEM \"line\" \"b, c\"; MODELITEMDATA 0,0 20,0;\n"
                               "MODEL \"dots\"; PRIMITIVE Polypoint;\n"
                               "MODELITEM \"dots\" \"a\"; MODELITEMDATA 20,10 22,6;\n"
                               "MODEL \"stain\"; PRIMITIVE Region;\n"
                               "MODELITEM \"stain\" \"a\"; MODELITEMDATA 20,10,3;\n"
                               "MODEL \"none\"; PRIMITIVE Polygon;\n";

TEST_F(Batch, MeasuresEverySheetInBothForms)
{
  write(folder / "small.sdf", smallStack);
  const struct
  {
    std::string sheet, csv, json;
  } cases[] = {
      {"models",
       "Model,Primitive,Vertices,AverageX [nm],AverageY [nm],AverageZ [nm],Contours,Area [nm^2],Volume [nm^3]\r\n"
       "box,Polygon,8,-5,1,1,2,52,120\r\nline,Polyline,2,-5,2.5,2,1,0,NA\r\ndots,Polypoint,2,0.5,0.5,0,NA,NA,NA\r\n"
       "stain,Region,3,0,-0.25,0,1,0,0.75\r\nnone,Polygon,0,NA,NA,NA,0,0,0\r\n",
       R"([{"model":"box","primitive":"Polygon","vertices":8,"average":[-5.0,1.0,1.0],"contours":2,"area":52.0,)"
       R"("volume":120.0},{"model":"line","primitive":"Polyline","vertices":2,"average":[-5.0,2.5,2.0],"contours":1,)"
       R"("area":0.0,"volume":null},{"model":"dots","primitive":"Polypoint","vertices":2,"average":[0.5,0.5,0.0],)"
       R"("contours":null,"area":null,"volume":null},{"model":"stain","primitive":"Region","vertices":3,)"
       R"("average":[0.0,-0.25,0.0],"contours":1,"area":0.0,"volume":0.75},{"model":"none","primitive":"Polygon",)"
       R"("vertices":0,"average":null,"contours":0,"area":0.0,"volume":0.0}])"},
      {"slices", "Slice,box,line,dots,stain,none\r\na,1,0,2,1,0\r\n\"b, c\",1,1,0,0,0\r\n",
       R"([{"slice":"a","counts":{"box":1,"line":0,"dots":2,"stain":1,"none":0}},)"
       R"({"slice":"b, c","counts":{"box":1,"line":1,"dots":0,"stain":0,"none":0}}])"},
      {"slices --model line", "Slice,line\r\na,0\r\n\"b, c\",1\r\n",
       R"([{"slice":"a","counts":{"line":0}},{"slice":"b, c","counts":{"line":1}}])"},
      {"items --model box",
       "Slice,Vertices,Length [nm],Area [nm^2],AverageX [nm],AverageY [nm],Z [nm]\r\n"
       "a,4,26,30,-5,1,0\r\n\"b, c\",4,26,30,-5,1,2\r\n",
       R"([{"slice":"a","vertices":4,"length":26.0,"area":30.0,"average":[-5.0,1.0],"z":0.0},)"
       R"({"slice":"b, c","vertices":4,"length":26.0,"area":30.0,"average":[-5.0,1.0],"z":2.0}])"},
      {"items --model line",
       "Slice,Vertices,Length [nm],AverageX [nm],AverageY [nm],Z [nm]\r\n\"b, c\",2,10,-5,2.5,2\r\n",
       R"([{"slice":"b, c","vertices":2,"length":10.0,"average":[-5.0,2.5],"z":2.0}])"},
      {"items --model dots", "Slice,X [nm],Y [nm],Z [nm]\r\na,0,0,0\r\na,1,1,0\r\n",
       R"([{"slice":"a","x":0.0,"y":0.0,"z":0.0},{"slice":"a","x":1.0,"y":1.0,"z":0.0}])"},
      {"items --model stain",
       "Slice,Vertices,Length [nm],Area [nm^2],AverageX [nm],AverageY [nm],Z [nm]\r\na,3,NA,0.375,0,-0.25,0\r\n",
       R"([{"slice":"a","vertices":3,"length":null,"area":0.375,"average":[0.0,-0.25],"z":0.0}])"},
      {"items --model none", "Slice,Vertices,Length [nm],Area [nm^2],AverageX [nm],AverageY [nm],Z [nm]\r\n", "[]"},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.sheet);
    const std::string command = "measure small.sdf --sheet " + c.sheet;
    EXPECT_EQ(run(command).output, c.csv);
    EXPECT_EQ(run(command).errors, "");
    EXPECT_EQ(nlohmann::json::parse(run(command + " --json").output), nlohmann::json::parse(c.json));
  }
}

TEST_F(Batch, CountsOfModelsOfOneNameAreAdded)
{
  write(folder / "twins.sdf",
        "STACK \"twins\"; SLICE \"a\" \"gone.tif\"; SliceSize1 20; SliceSize2 40;\n"
        "MODEL \"m\"; MODELITEM \"m\" \"a\"; MODELITEMDATA 0,0 20,0 20,12;\n"
        "MODEL \"m\"; PRIMITIVE Polypoint; MODELITEM \"m\" \"a\"; MODELITEMDATA 0,0 20,0 20,12;\n");
  EXPECT_EQ(run("measure twins.sdf --sheet slices").output, "Slice,m,m\r\na,1,3\r\n");
  const auto rows = nlohmann::json::parse(run("measure twins.sdf --sheet slices --json").output);
  EXPECT_EQ(rows, nlohmann::json::parse(R"([{"slice":"a","counts":{"m":4}}])"));
}

TEST_F(Batch, MeasuresGoToAFileThatIsNew)
{
  const std::string command = "measure " + example + " --sheet models";
  const Result table = run(command);
  EXPECT_THAT(table.output, HasSubstr("vessel,Polygon,1216,"));
  EXPECT_THAT(table.output, HasSubstr(",38,NA,")) << "the vessel branches";
  ASSERT_EQ(run(command + " --out table.csv").status, 0);
  EXPECT_EQ(contents(folder / "table.csv"), table.output);
  EXPECT_EQ(run(command + " --out table.csv").status, 2);
  EXPECT_EQ(run(command + " --out table.csv --overwrite").status, 0);
}
} // namespace
