// Files of random statements, right and wrong, as people and other programs write them.
#include "tests/support/stackfiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>

namespace
{
using K = StackKeyword;
using Arguments = std::vector<const char*>;

/// Arguments of every keyword, most of them fine.
const std::map<K, Arguments>& argumentsOf()
{
  static const std::map<K, Arguments> table = {
      {K::Annotation, {"\"a\tb\"", "\"__NL____SC____HA__\"", "\"\"", "a b"}},
      {K::BeginCap, {"true", "false", "True"}},
      {K::Brilliancy, {"3.14159", "-0.001", "1e99"}},
      {K::CalibrationCurve,
       {"", "1,2", "0,0.1 255,1e22", "1,2 3,4 5,-6e-7 9,9", "1,2 3", "1,nan", "Linear 1", "0,1 5e-324,2"}},
      {K::Color, {"1 2 3", "300 -1 0", "1 2"}},
      {K::EcoRendering, {"true", "false"}},
      {K::EndCap, {"true", "false"}},
      {K::FileFormatVersion, {"1.05", "1.02", "7"}},
      {K::FilledIn, {"true", "false", "1"}},
      {K::Fit, {"Linear", "Polynomial2", "Polynomial3", "Polynomial4", "Unknown"}},
      {K::Hidden3D, {"true", "false"}},
      {K::Image, {"2 2 \"t.tif\"", "1 1 \"u/t.tif\"", "3 1 \"t.tif\""}},
      {K::ImagesPath, {"\".\"", "\"\"", "\"./q/\"", "\"/\"", "\"../r\""}},
      {K::InvertZAxis, {"true", "false"}},
      {K::AbsoluteImagesPathPolicy, {"true", "false", "false", "false"}},
      {K::LastSegmentedSlice, {"\"a\"", "\"__NL__\""}},
      {K::LastRegisteredSlice, {"\"b c\"", "a"}},
      {K::LengthUnitScale, {"-6", "-9", "-2", "25"}},
      {K::Model, {"\"m\"", "\"n\"", "\"o p\"", "\"unended"}},
      {K::ModelItem, {"\"m\" \"a\"", "\"n\" \"a\"", "\"m\" \"b\"", "\"m\" \"nowhere\""}},
      {K::ModelItemData, {"", "1,2 3,4", "1,2,3 1,4,1", "5,-5", "1,2,0"}},
      {K::MeshNormalSmoothing, {"3", "-3", "3.5"}},
      {K::PixelAspect, {"0.3333", "2", "0"}},
      {K::PixelHeight, {"3.333", "1e-9"}},
      {K::PixelWidth, {"0.0001", "12.345", "-1"}},
      {K::PointSize, {"2", "0.004"}},
      {K::Pose, {"\"p\"", "\"q\"", ""}},
      {K::PoseRotation, {"0.9 -0.9 1e5", "1 2 3", "1 2 1e20"}},
      {K::PoseShift, {"1 2", "1 2.5"}},
      {K::PoseZoom, {"50"}},
      {K::AmbientLight, {"5"}},
      {K::DiffuseLight, {"-6"}},
      {K::SpecularLight, {"7"}},
      {K::Position, {"-0.001", "1.005", "nan"}},
      {K::Primitive, {"Polygon", "Polyline", "Polypoint", "Region", "polygon"}},
      {K::RelPosition, {"0.004", "-1.5", "2.675", "inf"}},
      {K::RenderingMode, {"Dot", "TriangularSurface", "Blob"}},
      {K::Resampling, {"10 20", "0 -1"}},
      {K::Rotate, {"359.999", "-0.001", "12.345"}},
      {K::Sample, {"\"dark\"", "\"light  2\"", "\"a\tb\"  c", "__NL__"}},
      {K::SampleCoords, {"1 2 3 4", "-1 -2 1 1", "0 0 0 1", "1 2 3"}},
      {K::SampleValue, {"0.1", "+1e-300", "nan", "1e999"}},
      {K::Shift, {"0 7", "-3 0", "1"}},
      {K::Slice, {"\"a\" \"b/../c.tif\"", "\"a\" 2 2", "\"b\" \"d/\"", "\"c\" \"/\"", "\"c\" \"..\"", "\"x\" 0 1"}},
      {K::SliceSize1, {"5", "0"}},
      {K::SliceSize2, {"6", "-6"}},
      {K::Stack, {"\"again\"", "again"}},
      {K::StackSlice, {"\"p\" \"./p.lsm\" 3", "\"q\" \"q.VM\" 0", "\"r\" \"r.tif\" 9", "\"r\" \"r.tif\" -1"}},
      {K::StandardImage, {"\"i\" \"i.tif\"", "\"j\" \"s/j.tif\"", "\"k\" \"\"", "\"i\"", "\"__DQ__\" \"__NL__\""}},
      {K::Thickness, {"0.004", "3"}},
      {K::Transparency, {"128.999", "x"}},
      {K::TriangulationTag, {"None", "Begin", "End", "begin"}},
      {K::MeshVertexSmoothing, {"1"}},
      {K::VertexSymbol, {"Cube", "Tetrahedron", "Circle"}},
  };
  return table;
}

/// Makes files of random statements and remembers how often each spelling occurred.
class Soup
{
public:
  explicit Soup(unsigned seed) : _random(seed) {}

  std::string text(int numStatements)
  {
    std::string result = below(3) == 0 ? "\xEF\xBB\xBF" : "";
    if (below(8) > 0) result += "STACK \"s\"; SLICE \"a\" \"a.tif\"; MODEL \"m\"; MODELITEM \"m\" \"a\";\n";
    for (int i = 0; i < numStatements; ++i)
      result += statement() + oneOf({";", ";\n", ";\r\n", " ;;\n\n", "\n;# end\n"});
    return result + oneOf({"", "", "POSEZOOM 5"});
  }

  const std::map<std::string, int>& numOccurrences() const { return _numOccurrences; }

private:
  int below(int limit) { return static_cast<int>(_random() % static_cast<unsigned>(limit)); }
  std::string oneOf(const Arguments& texts)
  {
    return texts[static_cast<std::size_t>(below(static_cast<int>(texts.size())))];
  }
  const Arguments& arguments(K keyword) { return argumentsOf().at(keyword); }
  K keyword() { return static_cast<K>(below(StackIO::numKeywords)); }

  std::string statement()
  {
    if (below(100) == 0) return oneOf({"NONSENSE 1", "stack \"s\"", "\"\""});
    const K wanted = keyword();
    const auto& spellings = StackIO::getSpellings(wanted);
    const std::string spelling(spellings[static_cast<std::size_t>(below(static_cast<int>(spellings.size())))]);
    ++_numOccurrences[spelling];
    const std::string text = oneOf(arguments(below(30) == 0 ? keyword() : wanted));
    return oneOf({"", "\n", "# comment;\n", "\t"}) + spelling + oneOf({" ", "\t", "\r\n", "  # comment\n"}) + text;
  }

  std::mt19937 _random;
  std::map<std::string, int> _numOccurrences;
};

/// What a line of the log is about, without the keyword and the like.
const char* const logLines[] = {": invalid number of arguments.",
                                " is invalid in this context.",
                                ": invalid argument.",
                                ": unknown keyword (ignored).",
                                "This matrix has elements that are not finite",
                                "newer than this program",
                                "There is already a slice named",
                                "There is already a model named"};

std::string subjectOf(const std::string& line)
{
  const std::size_t start = line.starts_with("Error on ") ? 9 : line.starts_with("Error: ") ? 7 : line.size();
  return line.substr(start, line.find_first_of(" :", start) - start);
}
} // namespace

TEST(StackFileSoup, IsAFixedPointOnceItWasReadAndWritten)
{
  const TemporaryFolder folder;
  std::map<std::string, int> numGood; // statements of a spelling that were executed
  std::set<std::string> linesSeen;
  for (unsigned seed = 0; seed < 60; ++seed)
  {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Soup soup(seed);
    const std::string text = soup.text(300);
    Stack first, second;
    StackReader reader;
    reader.read(first, folder.write("in.sdf", text));
    EXPECT_EQ(reader.getNumFatalErrors(), 0);
    for (const auto& [spelling, count] : soup.numOccurrences()) numGood[spelling] += count;
    for (const std::string& line : reader.getLog())
    {
      --numGood[subjectOf(line)];
      for (const char* const known : logLines)
        if (line.find(known) != std::string::npos) linesSeen.insert(known);
    }
    if (!reader.hasReadStack()) continue;
    const std::string once = textOf(first, folder);
    reader.read(second, folder.file("out.sdf"));
    ASSERT_THAT(reader.getLog(),
                testing::Each(testing::AnyOf(testing::StartsWith("There is already a"), saysThatACalibrationFailed())));
    ASSERT_EQ(textOf(second, folder), once) << text;
  }
  for (int keyword = 0; keyword < StackIO::numKeywords; ++keyword)
    for (const std::string_view spelling : StackIO::getSpellings(static_cast<K>(keyword)))
      EXPECT_GT(numGood[std::string(spelling)], 0) << spelling;
  for (const char* const line : logLines) EXPECT_TRUE(linesSeen.contains(line)) << line;
}

TEST(StackFileSoup, OfGarbageFillsTheLogOnlySoFar)
{
  std::string text = "STACK \"s\";";
  for (int i = 0; i < 10005; ++i) text += "x;";
  const ReadStack read(text);
  ASSERT_EQ(read.log().size(), 10001u);
  EXPECT_EQ(read.log()[9999], "Error on x: unknown keyword (ignored).");
  EXPECT_EQ(read.log()[10000], "More messages were left out.");
}
