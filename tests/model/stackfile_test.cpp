#include "image/imagesourcefile.h"
#include "image/imagesourcefilemosaic.h"
#include "tests/support/stackfiles.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
std::string fileOf(const StackSlice& slice)
{
  return static_cast<const ImageSourceFile&>(*slice.getImageSource()).getFilename();
}

const KeptStatements& keeperOf(const Stack& stack, std::string_view name)
{
  if (name == "standard image") return *stack.getStandardImage(0);
  if (name == "slice") return *stack.getSlice(0);
  if (name == "model") return *stack.getModel(0);
  if (name == "pose") return *stack.getPose(0);
  return stack;
}
} // namespace

TEST(StackFileLog, SaysWhatIsWrongWithAStatement)
{
  const struct
  {
    const char* statement;
    const char* line;
  } cases[] = {
      {"SHIFT 1", "Error on SHIFT: invalid number of arguments."},
      {"COLOR 1 2 3 4", "Error on COLOR: invalid number of arguments."},
      {"ImagesPath", "Error on ImagesPath: invalid number of arguments."},
      {"POSEZOOM 50", "Error: POSEZOOM is invalid in this context."},
      {"IMAGE 1 1 \"a.tif\"", "Error: IMAGE is invalid in this context."},
      {"NONSENSE 1", "Error on NONSENSE: unknown keyword (ignored)."},
      {"shift 1 2", "Error on shift: unknown keyword (ignored)."},
      {"SHIFT 1 2.5", "Error on SHIFT: invalid argument."},
      {"SHIFT 1 99999999999", "Error on SHIFT: invalid argument."},
      {"ROTATE nan", "Error on ROTATE: invalid argument."},
      {"ROTATE 12x", "Error on ROTATE: invalid argument."},
      {"DEPTH 1e99", "Error on DEPTH: invalid argument."}, // the spelling of the file
      {"ASPECT 0", "Error on ASPECT: invalid argument."},
      {"PIXWIDTH -1", "Error on PIXWIDTH: invalid argument."},
      {"FILLEDIN True", "Error on FILLEDIN: invalid argument."},
      {"PRIMITIVE Sphere", "Error on PRIMITIVE: invalid argument."},
      {"PRIMITIVE Region", "Error: PRIMITIVE is invalid in this context."}, // there are items
      {"TriangulationTag begin", "Error on TriangulationTag: invalid argument."},
      {"MODELITEM \"m\" \"b\"", "Error on MODELITEM: invalid argument."},
      {"MODELITEMDATA 1,2 3", "Error on MODELITEMDATA: invalid argument."},
      {"MODELITEMDATA 1,2,3", "Error on MODELITEMDATA: invalid argument."},
      {"MODELITEMDATA 1,2;MODELITEMDATA ,", "Error on MODELITEMDATA: invalid argument."},
      {"MODELITEMDATA ,,,,,,,,", "Error on MODELITEMDATA: invalid argument."},
      {"MODELITEMDATA 1,2 3,4; MODELITEMDATA 1,23,4", "Error on MODELITEMDATA: invalid argument."},
      {"MODEL \"unended", "Error on MODEL: invalid argument."},
      {"MODEL \"a__NL__b\"", "Error on MODEL: invalid argument."},
      {"StackSlice \"p\" \"p.tif\" -1", "Error on StackSlice: invalid argument."},
      {"SLICE \"h\" 2147483647 2147483647", "Error on SLICE: invalid argument."},
      {"SLICE \"h\" 10001 1", "Error on SLICE: invalid argument."},
      {"SLICE \"h\" 101 10000", "Error on SLICE: invalid argument."},
      {"SLICE \"h\" 100 10000; NONSENSE", "Error on NONSENSE: unknown keyword (ignored)."},
      {"LengthUnitScale 400", "Error on LengthUnitScale: invalid argument."},
      {"MODEL \"r\"; PRIMITIVE Region; MODELITEM \"r\" \"a\"; MODELITEMDATA 0,0,2147483647 1,0,2147483647",
       "Error on MODELITEMDATA: invalid argument."}, // more positions than can be counted
  };
  for (const auto& c : cases)
  {
    ReadStack read(smallStack + std::string(c.statement) + ";\n");
    EXPECT_THAT(read.log(), ElementsAre(c.line)) << c.statement;
    EXPECT_EQ(read.reader.getNumFatalErrors(), 0);
    EXPECT_TRUE(read.reader.hasReadStack());
  }
}

TEST(StackFileLog, ShowsNoControlCharacters)
{
  EXPECT_THAT(ReadStack("\x1B[2J\x7F\x01\xC3\xA4 1;").log(),
              ElementsAre("Error on ?[2J??\xC3\xA4: unknown keyword (ignored)."));
}

TEST(StackFileLog, TellsOfANewerFormatAndOfDuplicates)
{
  ReadStack read("FileFormatVersion 9.5; STACK \"s\"; SLICE \"a\" \"\"; SLICE \"b\" \"\"; SLICE \"a\" \"\";"
                 "MODEL \"a\"; MODEL \"a\";");
  EXPECT_THAT(read.log(), ElementsAre(testing::HasSubstr("version 9.5"), testing::HasSubstr("slice named \"a\""),
                                      testing::HasSubstr("model named \"a\"")));
  EXPECT_EQ(read.reader.getNumFatalErrors(), 0);
  EXPECT_EQ(read.stack.getNumSlices(), 3);
  EXPECT_EQ(read.reader.getFileFormatVersion(), 9.5f);
  read.reader.read(read.stack, read.folder.write("next.sdf", "STACK \"s\"; FileFormatVersion 1.05;"));
  EXPECT_THAT(read.log(), IsEmpty());
  EXPECT_EQ(read.reader.getFileFormatVersion(), 1.05f);
}

TEST(StackFileLog, CanBeCancelledInTheMidstOfGarbage)
{
  const TemporaryFolder folder;
  for (const char* statement : {"x;", ";", "STACK;"})
  {
    std::string text;
    while (text.size() < 1000000) text += statement;
    Stack stack;
    StackReader reader;
    class Stopper : public ProgressObserver
    {
    public:
      explicit Stopper(ProgressSubject& subject) : _subject(subject) { subject.addObserver(*this); }
      void started(const std::string&) override {}
      void progressed(double) override { _subject.cancel(); }
      void finished() override {}

    private:
      ProgressSubject& _subject;
    } stopper(reader);
    EXPECT_THROW(reader.read(stack, folder.write("garbage.sdf", text)), Cancelled) << statement;
  }
}

TEST(StackFileLog, TakesNoMemoryForCommas)
{
  const ReadStack sound(smallStack + std::string("MODELITEMDATA 1,2 3,4;")); // whatever is allocated once
  std::string text = smallStack + std::string("MODELITEMDATA ");
  constexpr std::size_t numCommas = 10000000;
  text.append(numCommas, ',') += ";";
  rusage before = {}, after = {};
  getrusage(RUSAGE_SELF, &before);
  EXPECT_THAT(ReadStack(text).log(), ElementsAre("Error on MODELITEMDATA: invalid argument."));
  getrusage(RUSAGE_SELF, &after);
  EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 200000); // kilobytes: the text and its copies take less
}

TEST(StackFileLog, NamesFilesThatCannotBeRead)
{
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder.file("folder.sdf"));
  Stack stack;
  stack.setName("kept");
  for (const char* name : {"missing", "folder.sdf"})
  {
    StackReader reader;
    reader.read(stack, folder.file(name));
    ASSERT_EQ(reader.getLog().size(), 1u);
    EXPECT_THAT(reader.getLog()[0], testing::StartsWith("Error: " + folder.file(name)));
    EXPECT_EQ(reader.getNumFatalErrors(), 1);
    EXPECT_FALSE(reader.hasReadStack());
  }
  EXPECT_EQ(stack.getName(), "kept");
  EXPECT_FALSE(ReadStack("").reader.hasReadStack());
  EXPECT_FALSE(ReadStack(std::string(5000, '\0')).reader.hasReadStack());
}

TEST(StackFileLog, TellsOfAFileWhoseReadingFails)
{
  // The kernel tells no speed of the loopback device: its file can be opened and not read.
  const std::string unreadable = "/sys/class/net/lo/speed";
  if (!std::filesystem::exists(unreadable) || std::ifstream(unreadable).get() >= 0) GTEST_SKIP() << "no such file here";
  const TemporaryFolder folder;
  std::filesystem::create_symlink(unreadable, folder.file("link.sdf"));
  Stack stack;
  stack.setName("old");
  StackReader reader;
  reader.read(stack, folder.file("link.sdf"));
  EXPECT_THAT(reader.getLog(),
              ElementsAre("Error: " + folder.file("link.sdf") + ": Cannot read file (Invalid argument)"));
  EXPECT_EQ(reader.getNumFatalErrors(), 1);
  EXPECT_FALSE(reader.hasReadStack());
  EXPECT_EQ(stack.getName(), "");
}

TEST(StackFileContext, NeedsAStackFirst)
{
  ReadStack read("FileFormatVersion 1.05; SLICE \"a\" \"a.tif\"; STACK \"s\"; RELPOSITION 5;");
  EXPECT_THAT(read.log(), ElementsAre("Error: SLICE is invalid in this context."));
  EXPECT_EQ(read.stack.getDefaultRelativePosition(), 5);
}

TEST(StackFileContext, AnObjectThatFailedToOpenTakesItsStatementsAlong)
{
  ReadStack read(smallStack + std::string("MODELITEMDATA 1,1;SLICE \"b\"; RELPOSITION 9; Annotation \"x\"; SHIFT 1 1;\n"
                                          "MODELITEM \"m\" \"b\"; COLOR 1 2 3; MODELITEMDATA 9,9;"));
  EXPECT_EQ(read.log().size(), 7u);
  EXPECT_EQ(read.stack.getDefaultRelativePosition(), 0);
  EXPECT_EQ(read.stack.getAnnotation(), "");
  EXPECT_TRUE(read.stack.getSlice(0)->getRegistration().isNull());
  ASSERT_EQ(read.stack.getModel(0)->getNumItems(), 1);
  EXPECT_EQ(read.stack.getModel(0)->getItem(0)->getVertices()[0], (Vector<int>{1, 1}));
  EXPECT_FALSE(read.stack.getModel(0)->getItemProperties().definesColor());
}

TEST(StackFileContext, PropertiesGoToTheItemOrItsModel)
{
  ReadStack read("STACK \"s\"; SLICE \"a\" \"\"; MODEL \"m\"; COLOR 256 -1 3; HIDDEN3D true; MODELITEM \"m\" \"a\";"
                 "POINTSIZE 2; MODELITEMDATA 1,1; MODELITEMDATA 2,2 3,3; MODEL \"n\"; MODELITEM \"n\" \"a\";");
  EXPECT_THAT(read.log(), IsEmpty());
  const Model& model = *read.stack.getModel(0);
  EXPECT_THAT(model.getItemProperties().getColor(), ElementsAre(0, 255, 3));
  EXPECT_FALSE(model.getItemProperties().getRenderingVisibility());
  EXPECT_FALSE(model.getItemProperties().definesPointSize());
  EXPECT_TRUE(model.getItem(0)->getProperties().definesPointSize());
  EXPECT_EQ(model.getItem(0)->getSize(), 2); // data that comes again replaces
  EXPECT_FALSE(model.getProperties().hasBeginCapFlag());
  EXPECT_EQ(read.stack.getModel(1)->getNumItems(), 1);
  EXPECT_EQ(read.stack.getSlice(0)->getNumItems(), 2);
}

TEST(StackFileLexing, ReadsWhatPeopleWrite)
{
  const struct
  {
    const char* name;
    const char* text;
  } cases[] = {
      {"plain", "POINTSIZE 2;\nSHIFT 3 -4;\n"},
      {"carriage returns and tabs", "POINTSIZE\t2;\r\nSHIFT 3\t-4;\r\n"},
      {"one line", "POINTSIZE 2;SHIFT 3 -4;;; ;"},
      {"many lines", "POINTSIZE\n2\n;SHIFT\n\n3\n-4;"},
      {"comments", "# POINTSIZE 9;\nPOINTSIZE 2 # not 9;\n;SHIFT 3 #\n-4; # end"},
      {"quotes and signs", "\"POINTSIZE\" \"2\"; SHIFT +3 \"-4\";"},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    ReadStack read(smallStack + std::string(c.text));
    EXPECT_THAT(read.log(), IsEmpty());
    EXPECT_EQ(read.stack.getModel(0)->getItem(0)->getProperties().getPointSize(), 2);
    EXPECT_EQ(read.stack.getSlice(0)->getRegistration(), Registration(3, -4, 0));
  }
}

TEST(StackFileLexing, TakesTheCharacterBeforeAHashAway)
{
  ReadStack read(
      "\xEF\xBB\xBF# first line\nSTACK \"s\"; RELPOSITION 12# the 2 is lost\n; LengthUnitScale -9;# so is the ;\n;");
  EXPECT_THAT(read.log(), IsEmpty());
  EXPECT_EQ(read.stack.getDefaultRelativePosition(), 1);
  EXPECT_EQ(read.stack.getLengthUnit().getScale(), -9);
}

TEST(StackFileLexing, LogsAStatementWithoutEnd)
{
  ReadStack read("STACK \"s\"; RELPOSITION 5; RELPOSITION 6");
  EXPECT_THAT(read.log(), ElementsAre("Error on RELPOSITION: invalid argument."));
  EXPECT_EQ(read.stack.getDefaultRelativePosition(), 5);
}

TEST(StackFileLexing, KeepsBlanksInsideQuotes)
{
  ReadStack read("STACK \" a  b\n\tc \"; Annotation \"\"; SLICE \"x\"y\" \" \";");
  EXPECT_THAT(read.log(), IsEmpty());
  EXPECT_EQ(read.stack.getName(), " a  b  c ");
  EXPECT_EQ(read.stack.getSlice(0)->getName(), "x\"y");
}

TEST(StackFileKeywords, OlderSpellingsMeanTheSame)
{
  const char* const older =
      "STACK \"s\"; RELDEPTH 2; ASPRATIO 0.5; IMAGESDIR \"d\"; SLICE \"a\" \"a.tif\"; DEPTH 7; ASPECT 3;"
      "IMAGESPATH \"e\"; SLICE \"b\" \"b.tif\"; M2DCLASS \"m\"; M2DPRIMITIVE Polypoint; M2DCOLOR 1 2 3;"
      "M2DFILLEDIN false; M2DHIDDEN3D true; M2DRADIUS 4; M2DTHICKNESS 5; M2DITEM \"m\" \"a\"; M2DDATA 1,2;";
  const char* const current =
      "STACK \"s\"; RELPOSITION 2; PIXASPECT 0.5; ImagesPath \"d\"; SLICE \"a\" \"a.tif\"; POSITION 7; PIXASPECT 3;"
      "ImagesPath \"e\"; SLICE \"b\" \"b.tif\"; MODEL \"m\"; PRIMITIVE Polypoint; COLOR 1 2 3;"
      "FILLEDIN false; HIDDEN3D true; POINTSIZE 4; THICKNESS 5; MODELITEM \"m\" \"a\"; MODELITEMDATA 1,2;";
  const TemporaryFolder folder;
  std::string texts[2];
  for (int i = 0; i < 2; ++i)
  {
    StackReader reader;
    Stack stack;
    reader.read(stack, folder.write("in.sdf", i == 0 ? older : current));
    EXPECT_THAT(reader.getLog(), IsEmpty());
    texts[i] = textOf(stack, folder);
  }
  EXPECT_EQ(texts[0], texts[1]);
  EXPECT_THAT(texts[0], testing::HasSubstr("MODELITEMDATA 1,2;"));
}

TEST(StackFileCalibration, CountsWhatIsStatedInAnyOrder)
{
  const struct
  {
    const char* statements;
    float width, height;
  } cases[] = {
      {"", 2, 1},
      {"PIXWIDTH 4;", 4, 2},
      {"PIXASPECT 3;", 2, 6},
      {"PIXHEIGHT 8;", 2, 8},
      {"PIXHEIGHT 8; PIXWIDTH 16;", 16, 8},
      {"PIXWIDTH 16; PIXHEIGHT 8;", 16, 8},
      {"PIXHEIGHT 8; PIXASPECT 4;", 2, 8},
      {"PIXASPECT 4; PIXHEIGHT 10;", 2.5f, 10},
      {"PIXHEIGHT 8; PIXASPECT 4; PIXWIDTH 1;", 1, 4},
      {"PIXWIDTH 1; PIXASPECT 4; PIXHEIGHT 8;", 1, 4},
  };
  for (const auto& c : cases)
  {
    ReadStack read(std::string("STACK \"s\"; PIXASPECT 0.5; PIXWIDTH 2; SLICE \"a\" \"\";") + c.statements +
                   "SLICE \"b\" \"\"; LengthUnitScale -3;");
    EXPECT_THAT(read.log(), IsEmpty());
    const PixelCalibration& calibration = read.stack.getSlice(0)->getPixelCalibration();
    EXPECT_EQ(calibration.getPixelWidth(), c.width) << c.statements;
    EXPECT_EQ(calibration.getPixelHeight(), c.height) << c.statements;
    EXPECT_EQ(calibration.getAspectRatio(), c.height / c.width) << c.statements;
    EXPECT_EQ(calibration.getLengthUnit().getScale(), -3);
    EXPECT_EQ(read.stack.getSlice(1)->getPixelCalibration(), read.stack.getDefaultPixelCalibration());
  }
}

TEST(StackFileCalibration, IsJudgedAsAWholeWhateverItsOrder)
{
  const struct
  {
    std::vector<std::string> statements;
    float width, height;
    const char* dropped; // the keyword of what does not go with the others
  } cases[] = {
      {{"PIXHEIGHT 1e20;", "PIXWIDTH 1e10;"}, 1e10f, 1e20f, nullptr},
      {{"PIXASPECT 1e-10;", "PIXHEIGHT 1e-20;"}, 1e-10f, 1e-20f, nullptr},
      {{"PIXASPECT 1e-10;", "PIXHEIGHT 1e30;", "PIXWIDTH 1e5;"}, 1e5f, 1e-5f, nullptr}, // the height is computed
      {{"PIXHEIGHT 1e30;"}, 2, 1, "PIXHEIGHT"},
      {{"PIXHEIGHT 1e30;", "PIXWIDTH 4;"}, 4, 2, "PIXHEIGHT"},
      {{"PIXASPECT 1e-15;", "PIXHEIGHT 1e15;"}, 2, 2e-15f, "PIXHEIGHT"},
      {{"PIXHEIGHT 8;", "PIXWIDTH 1e16;"}, 2, 8, "PIXWIDTH"},
  };
  for (const auto& c : cases)
  {
    std::vector<std::string> order = c.statements;
    do
    {
      for (const char* between : {"", "ROTATE 3;", "POSE \"p\";"})
      {
        for (const bool ofStack : {false, true})
        {
          std::string text = "STACK \"s\"; PIXASPECT 0.5; PIXWIDTH 2;";
          if (ofStack) text += "STACK \"t\";"; // what was stated before is the default now
          if (!ofStack) text += "SLICE \"a\" \"\";";
          for (const std::string& statement : order) text += statement + (ofStack ? "" : between);
          ReadStack read(text + "SLICE \"b\" \"\";");
          SCOPED_TRACE(text);
          if (c.dropped)
            EXPECT_THAT(read.log(), ElementsAre("Error on " + std::string(c.dropped) + ": invalid argument."));
          else
            EXPECT_THAT(read.log(), IsEmpty());
          const PixelCalibration& calibration = read.stack.getSlice(0)->getPixelCalibration();
          EXPECT_FLOAT_EQ(calibration.getPixelWidth(), c.width);
          EXPECT_FLOAT_EQ(calibration.getPixelHeight(), c.height);
          EXPECT_EQ(read.stack.getLastSlice()->getPixelCalibration(), read.stack.getDefaultPixelCalibration());
        }
      }
    } while (std::next_permutation(order.begin(), order.end()));
  }
  ReadStack failing("STACK \"s\"; SLICE \"a\" \"\"; PIXHEIGHT 8; SLICE; PIXHEIGHT 3; StackSlice \"b");
  EXPECT_EQ(failing.stack.getSlice(0)->getPixelCalibration().getPixelHeight(), 8);
  EXPECT_EQ(failing.stack.getDefaultPixelCalibration().getPixelHeight(), 1);
}

TEST(StackFileCalibration, OfAnySizeIsReadAgainInTheOrderItIsWritten)
{
  for (const char* statements : {"PIXWIDTH 0.1; PIXASPECT 1e38;", "PIXASPECT 1e14; PIXWIDTH 1e14;", "PIXHEIGHT 1e-45;",
                                 "PIXASPECT 1e-15; PIXHEIGHT 1e15;", "PIXWIDTH 1e-15; PIXHEIGHT 1e15; PIXASPECT 1e15;"})
  {
    SCOPED_TRACE(statements);
    ReadStack read(std::string("STACK \"s\"; PIXWIDTH 10; SLICE \"a\" \"a.tif\"; ") + statements);
    const std::string text = textOf(read.stack, read.folder);
    ReadStack again(text);
    EXPECT_THAT(again.log(), IsEmpty());
    EXPECT_EQ(textOf(again.stack, again.folder), text);
  }
}

TEST(StackFileImages, LieInTheImagesPathOfTheirStatement)
{
  ReadStack read("STACK \"s\"; SLICE \"0\" \"0.tif\"; ImagesPath \"a/b\"; SLICE \"1\" \"1.tif\"; ImagesPath \"../c\";"
                 "SLICE \"2\" \"2.tif\"; SLICE \"3\" \"/x/3.tif\"; ImagesPath \"\"; SLICE \"4\" \"d/4.tif\";"
                 "ImagesPath \"/y\"; SLICE \"5\" 2 2; IMAGE 2 1 \"5.tif\"; IMAGE 3 1 \"6.tif\"; SLICE \"6\" \"\";");
  EXPECT_THAT(read.log(), ElementsAre("Error on IMAGE: invalid argument."));
  const std::string folder = read.folder.getPath();
  const std::string parent = std::filesystem::path(folder).parent_path().string();
  const std::string expected[] = {folder + "/0.tif", folder + "/a/b/1.tif", parent + "/c/2.tif", "/x/3.tif",
                                  folder + "/d/4.tif"};
  for (int i = 0; i < 5; ++i) EXPECT_EQ(fileOf(*read.stack.getSlice(i)), expected[i]);
  const auto& mosaic = static_cast<const ImageSourceFileMosaic&>(*read.stack.getSlice(5)->getImageSource());
  EXPECT_EQ(mosaic.getFilename(1, 0), "/y/5.tif");
  EXPECT_EQ(mosaic.getFilename(0, 0), "");
  EXPECT_TRUE(read.stack.getSlice(6)->isEmpty());
}

TEST(StackFileImages, HaveTheStatedSizeWhenTheyAreMissing)
{
  ReadStack read(
      "STACK \"s\"; StackSlice \"a\" \"a.tif\" 3; SliceSize1 20; SliceSize2 30; StackSlice \"b\" \"b.VM\" 0;");
  EXPECT_EQ(read.stack.getSlice(0)->height(), 20);
  EXPECT_EQ(read.stack.getSlice(0)->width(), 30);
  EXPECT_EQ(read.stack.getSlice(1)->getImageSource()->getType(), ImageSourceType::VoxelMatrixFilePlane);
  EXPECT_THROW(read.stack.getSlice(1)->width(), FileError);

  ReadStack partly("STACK \"s\"; StackSlice \"a\" \"a.tif\" 3; SliceSize2 30;");
  EXPECT_THAT(textOf(partly.stack, partly.folder), testing::HasSubstr("3;\nSliceSize2 30;\n"));
}

TEST(StackFileStandards, AreReadWithTheirSamplesAndCurves)
{
  ReadStack read("STACK \"s\"; ImagesPath \"d\"; STANDARDIMAGE \"wedge\" \"w.tif\"; SAMPLE \"dark\";"
                 "SAMPLECOORDS 1 -2 3 4; SAMPLEVALUE 0.1; SAMPLE \"light\"; SAMPLEVALUE 1e-7;"
                 "CALIBRATIONCURVE 0,0.1 200,2.5\n100,0; FIT Polynomial2;"
                 "STANDARDIMAGE \"bare\" \"\"; SLICE \"a\" \"a.tif\"; CALIBRATIONCURVE 1,2;");
  EXPECT_THAT(read.log(), IsEmpty());
  ASSERT_EQ(read.stack.getNumStandardImages(), 2);
  const StandardImage& image = *read.stack.getStandardImage(0);
  EXPECT_EQ(image.getName(), "wedge");
  EXPECT_EQ(static_cast<const ImageSourceFile&>(*image.getImageSource()).getFilename(), read.folder.file("d/w.tif"));
  EXPECT_THAT(image.getSamples(),
              ElementsAre(StandardSample{"dark", 1, -2, 3, 4, 0.1}, StandardSample{"light", 0, 0, 1, 1, 1e-7}));
  ASSERT_TRUE(image.hasCalibrationCurve());
  EXPECT_EQ(*image.getCalibrationCurve(),
            CalibrationCurve({{0, 0.1}, {200, 2.5}, {100, 0}}, CalibrationFit::Polynomial2));
  EXPECT_FALSE(read.stack.getStandardImage(1)->hasCalibrationCurve());
  EXPECT_EQ(*read.stack.getSlice(0)->getCalibrationCurve(), CalibrationCurve({{1, 2}}, CalibrationFit::Linear));
}

TEST(StackFileStandards, KeepWhatFailsWhereItFailsAgain)
{
  const struct
  {
    const char* statements;
    const char* keeper; // of all of them
  } cases[] = {
      {"FIT Linear; SAMPLE \"x\"", "stack"},
      {"STANDARDIMAGE \"i\" \"f\" 1; SAMPLE \"x\"; CALIBRATIONCURVE 1,2", "stack"},
      {"SLICE \"a\" \"\"; STANDARDIMAGE \"i\"; CALIBRATIONCURVE 1,2; FIT Linear", "stack"},
      {"SLICE \"a\" \"\"; SLICE; CALIBRATIONCURVE 1,2; FIT Linear", "stack"},
      {"STANDARDIMAGE \"i\" \"f\"; SAMPLE; SAMPLEVALUE 1; SAMPLEVALUE x; FIT Linear", "standard image"},
      {"SLICE \"a\" \"\"; CALIBRATIONCURVE Spline 1; FIT Spline; FIT Linear", "slice"},
      {"SLICE \"a\" \"\"; FIT Linear; CALIBRATIONCURVE 1,2", "slice"},
      {"SLICE \"a\" \"\"; CALIBRATIONCURVE 1,2; FIT Polynomial2; MODEL \"m\"; FIT Linear", "model"},
      {"STANDARDIMAGE \"i\" \"f\"; POSE \"p\"; SAMPLE \"x\"", "pose"},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.statements);
    ReadStack read("STACK \"s\";" + std::string(c.statements) + ";");
    const std::size_t numSliceErrors = std::string_view(c.statements).find("SLICE;") != std::string_view::npos ? 1 : 0;
    const std::size_t numFailed = read.log().size() - numSliceErrors; // of those that are kept
    EXPECT_EQ(keeperOf(read.stack, c.keeper).getKeptStatements().size(), numFailed);
    const std::string once = textOf(read.stack, read.folder);
    ReadStack again(once);
    EXPECT_EQ(again.log().size(), numFailed) << once;
    EXPECT_EQ(textOf(again.stack, again.folder), once);
  }
}
