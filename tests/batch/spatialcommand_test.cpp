// The spatial statistics of a stack as scripts see them.
#include "batch_fixture.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace
{
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

const std::string example = MIRELO_EXAMPLE;
const std::string command = "spatial cells.sdf --boundary cell --objects vesicles --functions ";

/// The example with a square around the vesicles of three of its slices.
class SpatialBatch : public Batch
{
protected:
  SpatialBatch()
  {
    run("convert " + example + " cells.sdf");
    std::string text = contents(folder / "cells.sdf") + "MODEL \"cell\";\nPRIMITIVE Polygon;\n";
    for (const char* slice : {"000", "002", "003"})
      text += "MODELITEM \"cell\" \"" + std::string(slice) + "\";\nMODELITEMDATA 20,20 235,20 235,235 20,235;\n";
    write(folder / "cells.sdf", text);
  }
};

TEST_F(SpatialBatch, SpatialPrintsAPValuePerSliceAndFunction)
{
  const Result result = run(command + "GB --samples 19");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, StartsWith("Slice,B-SDI,G-SDI\r\n000,"));
  EXPECT_THAT(result.errors, HasSubstr("assumes independent slices"));
  EXPECT_EQ(run(command + "BG --samples 19", "OMP_NUM_THREADS=1").output, result.output);
  EXPECT_NE(run(command + "BG --samples 19 --seed 7").output, result.output);

  const Result json = run(command + "GB --samples 19 --json");
  const auto rows = nlohmann::json::parse(json.output);
  ASSERT_GE(rows.size(), 4u);
  EXPECT_EQ(rows[0]["slice"], rows[1]["slice"]);
  EXPECT_EQ(rows[0]["function"], "B");
  EXPECT_EQ(rows[1]["function"], "G");
  for (const auto& row : rows)
  {
    EXPECT_EQ(row["grid"][0], 0.0);
    for (const char* curve : {"observed", "average", "lower", "upper"})
      EXPECT_EQ(row[curve].size(), row["grid"].size()) << curve;
  }
  const std::string first = rows[0]["slice"].get<std::string>() + "," + rows[0]["pValue"].dump() + ",";
  EXPECT_THAT(result.output, HasSubstr(first));
}

TEST_F(SpatialBatch, SpatialWritesCurves)
{
  EXPECT_EQ(run(command + "FH --samples 9 --density 1e-9 --out p.csv --curves made/curves").status, 0);
  EXPECT_THAT(contents(folder / "p.csv"), HasSubstr(",NA,"));
  EXPECT_EQ(contents(folder / "made/curves/F.csv"), "slice,grid,observed,average,lower,upper\r\n");
  EXPECT_THAT(contents(folder / "made/curves/H.csv"), HasSubstr("\r\n000,0,0,0,0,0\r\n"));
  for (const std::string output : {"--out p.csv", "--curves made/curves"})
  {
    const Result refused = run(command + "H --samples 9 " + output);
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.errors, HasSubstr("file exists"));
  }
  EXPECT_EQ(run(command + "H --samples 9 --curves made/curves --overwrite").status, 0);
}

TEST_F(SpatialBatch, SpatialSaysWhatIsWrong)
{
  const std::pair<std::string, std::string> cases[] = {
      {command, "functions"},
      {command + "BX", "BX"},
      {command + "G --samples 5", "samples"},
      {command + "G --hardcore -1", "hardcore"},
      {command + "G --precision 0", "precision"},
      {command + "G --precision 1e-12", "precision"},
      {command + "F --density 1e9", "more than 10 million"},
      {"spatial cells.sdf --boundary nobody --objects vesicles --functions G", "nobody"},
      {"spatial cells.sdf --boundary vesicles --objects nucleus --functions G", "not closed curves"},
      {"spatial missing.sdf --boundary a --objects b --functions G", "missing.sdf"},
  };
  for (const auto& [arguments, named] : cases)
  {
    SCOPED_TRACE(arguments);
    const Result result = run(arguments);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.output, IsEmpty());
    EXPECT_THAT(result.errors, HasSubstr(named));
    EXPECT_EQ(std::ranges::count(result.errors, '\n'), 1) << result.errors;
  }
  const Result crowded = run(command + "G --hardcore 40");
  EXPECT_EQ(crowded.status, 2);
  EXPECT_THAT(crowded.errors, HasSubstr("Too many unsuccessful attemps to generate a vertex"));
}
} // namespace
