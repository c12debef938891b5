#include "image/imagesourcefile.h"
#include "image/imagesourcetiffstackplane.h"
#include "model/io/stackwriterwarnings.h"
#include "tests/support/errors.h"
#include "tests/support/stackfiles.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{
/// Files of this process cannot grow beyond a size, as on a full disk.
class FileSizeLimit
{
public:
  explicit FileSizeLimit(rlim_t size)
  {
    getrlimit(RLIMIT_FSIZE, &_old);
    _handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {size, _old.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit()
  {
    setrlimit(RLIMIT_FSIZE, &_old);
    std::signal(SIGXFSZ, _handler);
  }

private:
  rlimit _old = {};
  void (*_handler)(int);
};

StackSlice& addSlice(Stack& stack, const std::string& name, const std::string& file)
{
  StackSlice& slice = stack.addSlice(std::make_unique<StackSlice>());
  slice.setName(name);
  slice.setImageSource(ImageSourceFile(file));
  slice.setPixelCalibration(stack.getDefaultPixelCalibration());
  return slice;
}

void setPixelWidth(Stack& stack, float width)
{
  PixelCalibration calibration = stack.getDefaultPixelCalibration();
  calibration.setPixelWidth(width);
  calibration.compute();
  stack.setDefaultPixelCalibration(calibration);
}
} // namespace

TEST(StackFileText, IsWrittenInItsOrder)
{
  const TemporaryFolder folder;
  Stack stack;
  stack.setName("rat");
  stack.setAnnotation("a;\n\"b\" #1");
  stack.setDefaultSliceSpacing(0.5f);
  StackSlice& first = addSlice(stack, "s 1", folder.file("a.tif"));
  first.setRegistration(Registration(-3, 0, 12.345f));
  StackSlice& second = addSlice(stack, "s2", folder.file("x/b.tif"));
  second.setAbsolutePosition(0.004f);
  second.setAnnotation("note");
  PixelCalibration calibration = second.getPixelCalibration();
  calibration.setAspectRatio(0.5f);
  second.setPixelCalibration(calibration);
  ImageSourceTiffStackPlane plane(folder.file("c.tif"), 7);
  plane.setFallbackSize(4, 5);
  StackSlice& third = addSlice(stack, "s3", "");
  third.setImageSource(plane);
  third.setRelativePosition(0.501f); // reads as the default
  Model& model = stack.addModel(std::make_unique<Model>("m"));
  model.getProperties().setEndCapFlag(true);
  ModelItem& item = ModelItem::create(model, second);
  item.appendVertex(Vector<int>{1, -2});
  item.appendVertex(Vector<int>{30, 4});
  item.getProperties().setRenderingVisibility(false);
  item.getProperties().setColor(1, 2, 3);
  item.setTriangulationTag(CurveStackTriangulationContourTag::End);
  Pose pose(&stack);
  pose.setName("p");
  pose.setYRotation(-90.9f);
  stack.addPose(&pose);
  const std::string text = textOf(stack, folder);
  stack.removePose(0);
  EXPECT_EQ(text, "FileFormatVersion 1.05;\nSTACK \"rat\";\nLengthUnitScale -6;\nPIXASPECT 1.00;\nPIXWIDTH 1.00;\n"
                  "RELPOSITION 0.50;\nLASTSEGMENTEDSLICE \"\";\nLASTREGISTEREDSLICE \"\";\n"
                  "Annotation \"a__SC____NL____DQ__b__DQ__ __HA__1\";\nAbsoluteImagesPathPolicy false;\n"
                  "InvertZAxis false;\n"
                  "SLICE \"s 1\" \"a.tif\";\nROTATE 12.35;\nSHIFT -3 0;\n"
                  "ImagesPath \"x\";\nSLICE \"s2\" \"b.tif\";\nPOSITION 0.004;\nPIXASPECT 0.50;\nAnnotation \"note\";\n"
                  "ImagesPath \".\";\nStackSlice \"s3\" \"c.tif\" 7;\nSliceSize1 4;\nSliceSize2 5;\n"
                  "MODEL \"m\";\nBRILLIANCY 32.00;\nCOLOR 255 0 0;\nECORENDERING false;\nFILLEDIN true;\n"
                  "HIDDEN3D false;\nPOINTSIZE 1.00;\nPRIMITIVE Polygon;\nRENDERINGMODE Surface;\nRESAMPLING 100 100;\n"
                  "MeshVertexSmoothing 0;\nMeshNormalSmoothing 0;\nTHICKNESS 1.00;\nTRANSPARENCY 255.00;\n"
                  "VERTEXSYMBOL Sphere;\nEndCap true;\n"
                  "MODELITEM \"m\" \"s2\";\nCOLOR 1 2 3;\nHIDDEN3D true;\nTriangulationTag End;\n"
                  "MODELITEMDATA 1,-2 30,4;\n"
                  "POSE \"p\";\nPOSEROTATION 0 -90 0;\nPOSESHIFT 0 0;\nPOSEZOOM 100;\nAMBIENTLIGHT 0;\n"
                  "DIFFUSELIGHT 0;\nSPECULARLIGHT 0;\n");
}

TEST(StackFileText, NamesImagesAbsolutelyByPolicy)
{
  const TemporaryFolder folder;
  Stack stack;
  stack.setAbsoluteImagesPathPolicy(true);
  addSlice(stack, "a", folder.file("a.tif"));
  EXPECT_THAT(textOf(stack, folder), HasSubstr("ImagesPath \"" + folder.getPath() + "\";\nSLICE \"a\" \"a.tif\";\n"));
}

TEST(StackSaving, LeavesTheOldFileWhenItFails)
{
  const TemporaryFolder folder;
  const std::string old = folder.write("old.sdf", "old");
  Stack stack;
  Model& model = stack.addModel(std::make_unique<Model>("m"));
  ModelItem::create(model, addSlice(stack, "s", "a.tif")).setVertices(Vertices<int>(2, 1000000));
  {
    const FileSizeLimit full(1 << 20);
    expectError<FileWriteError>("File too large", [&] { StackWriter().write(stack, old); });
  }
  stack.deleteModel(0);
  expectError<FileWriteError>("No such file", [&] { StackWriter().write(stack, folder.file("none/new.sdf")); });
  expectError<FileWriteError>("Is a directory", [&] { StackWriter().write(stack, folder.getPath()); });
  expectError<FileWriteError>("Not a regular file", [&] { StackWriter().write(stack, "/dev/full"); });
  stack.getSlice(0)->setImageSource(ImageSourceFile("tab\t.tif"));
  expectError<FileWriteError>("must not hold", [&] { StackWriter().write(stack, old); });
  stack.setDefaultRelativePosition(std::numeric_limits<float>::infinity());
  expectError<FileWriteError>("not finite", [&] { StackWriter().write(stack, old); });
  stack.clear();
  PixelCalibration reversed;
  reversed.setPixelWidth(-3);
  addSlice(stack, "s", "a.tif").setPixelCalibration(reversed); // which could not be read
  expectError<FileWriteError>("Slice \"s\": the pixel width -3", [&] { StackWriter().write(stack, old); });
  for (const float height : {-4.0f, 0.0f, std::numeric_limits<float>::quiet_NaN()})
  {
    reversed.setPixelWidth(2);
    reversed.setPixelHeight(height);
    stack.getSlice(0)->setPixelCalibration(reversed);
    expectError<FileWriteError>("Slice \"s\": the pixel height", [&] { StackWriter().write(stack, old); });
  }
  stack.getSlice(0)->setPixelCalibration(PixelCalibration());
  Model& regions = stack.addModel(std::make_unique<Model>("r"));
  regions.getProperties().setGeometry(MPrimitive::Region);
  ModelItem& region = ModelItem::create(regions, *stack.getSlice(0));
  constexpr int greatest = std::numeric_limits<int>::max();
  region.setRLEItemSet(RLEItemSet({RLEItem(0, 0, greatest)}));
  EXPECT_EQ(region.getSize(), greatest); // the reader takes no more
  region.addRLEItemSet(RLEItemSet({RLEItem(1, 0, 1)}));
  expectError<SizeError>("more positions", [&] { region.getSize(); });
  expectError<FileWriteError>("Model \"r\", slice \"s\": the region has 2147483648 positions",
                              [&] { StackWriter().write(stack, old); });
  StackWriter cancelled;
  stack.clear();
  for (int i = 0; i < 1000; ++i) addSlice(stack, "s", "a.tif");
  class Stopper : public ProgressObserver
  {
  public:
    explicit Stopper(ProgressSubject& subject) : _subject(subject) { subject.addObserver(*this); }
    void started(const std::string&) override {}
    void progressed(double) override { _subject.cancel(); }
    void finished() override {}

  private:
    ProgressSubject& _subject;
  } stopper(cancelled);
  EXPECT_THROW(cancelled.write(stack, old), Cancelled);
  EXPECT_EQ(contentOf(old), "old");
  EXPECT_EQ(folder.getNumFiles(), 1); // nothing is left beside it
}

TEST(StackSaving, RunsTheHookOnlyBetweenACompleteFileAndItsReplacement)
{
  const TemporaryFolder folder;
  const std::string old = folder.write("old.sdf", "old");
  Stack stack;
  ModelItem::create(stack.addModel(std::make_unique<Model>("m")), addSlice(stack, "s", "a.tif"))
      .setVertices(Vertices<int>(2, 1000000));
  int numCalls = 0;
  StackWriter writer;
  writer.setBeforeReplace(
      [&]
      {
        ++numCalls;
        EXPECT_EQ(contentOf(old), "old");
        EXPECT_EQ(folder.getNumFiles(), 2);
      });
  {
    const FileSizeLimit full(1 << 20);
    EXPECT_THROW(writer.write(stack, old), FileWriteError);
  }
  EXPECT_EQ(numCalls, 0);
  writer.write(stack, old);
  EXPECT_EQ(numCalls, 1);
  EXPECT_THAT(contentOf(old), HasSubstr("STACK"));
  writer.setBeforeReplace([] { throw std::runtime_error("no room for the backup"); });
  folder.write("old.sdf", "old");
  EXPECT_THROW(writer.write(stack, old), std::runtime_error);
  EXPECT_EQ(contentOf(old), "old");
  EXPECT_EQ(folder.getNumFiles(), 1);
}

TEST(StackSaving, RemovesWhatKilledProcessesLeft)
{
  const TemporaryFolder folder;
  const pid_t child = fork();
  if (child == 0) _exit(0);
  waitpid(child, nullptr, 0); // this process is gone
  const std::string dead = ".mirelo-" + std::to_string(child), living = ".mirelo-" + std::to_string(getppid());
  folder.write(dead + "-3.tmp", "half");
  folder.write(dead + "-4.tmp", "written just now, perhaps by another machine");
  const auto dayBeforeYesterday = std::filesystem::file_time_type::clock::now() - std::chrono::hours(48);
  const std::string kept[] = {living + "-3.tmp", dead + "-x.tmp", dead + "-03.tmp",
                              dead + "-3.tmp~",  "-1-3.tmp",      ".mirelo--1-3.tmp"};
  for (const std::string& name : kept) folder.write(name, "other");
  for (const auto& entry : std::filesystem::directory_iterator(folder.file("")))
    if (!entry.path().string().ends_with("-4.tmp")) std::filesystem::last_write_time(entry.path(), dayBeforeYesterday);
  StackWriter().write(Stack(), folder.file("new.sdf"));
  EXPECT_FALSE(std::filesystem::exists(folder.file(dead + "-3.tmp")));
  EXPECT_TRUE(std::filesystem::exists(folder.file(dead + "-4.tmp")));
  for (const std::string& name : kept) EXPECT_TRUE(std::filesystem::exists(folder.file(name))) << name;
}

TEST(StackSaving, LeavesACompleteFileWhenTheProgramIsKilled)
{
  const TemporaryFolder folder;
  const std::string path = folder.file("stack.sdf");
  Stack stack;
  for (int i = 0; i < 50; ++i) addSlice(stack, "s" + std::to_string(i), "a.tif");
  Model& model = stack.addModel(std::make_unique<Model>("m"));
  for (int i = 0; i < 500; ++i) ModelItem::create(model, *stack.getSlice(i % 50)).setVertices(Vertices<int>(2, 500));
  std::string contents[2]; // the old file and the new one
  const auto save = [&](int version)
  {
    stack.setName(version == 0 ? "old" : "new");
    StackWriter().write(stack, path);
  };
  for (const int version : {1, 0})
  {
    save(version);
    contents[version] = contentOf(path);
  }
  std::mt19937 random(5);
  int numHalfWritten = 0;
  for (int round = 0; round < 40; ++round)
  {
    const int numFiles = folder.getNumFiles();
    const pid_t child = fork();
    for (int version = 1; child == 0; version = 1 - version) save(version);
    usleep(random() % 20000);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    const std::string content = contentOf(path);
    ASSERT_TRUE(content == contents[0] || content == contents[1]) << "round " << round;
    numHalfWritten += folder.getNumFiles() - numFiles;
  }
  EXPECT_GT(numHalfWritten, 0); // some were hit in the midst of a save
}

TEST(StackSaving, KeepsLinksAndPermissions)
{
  const TemporaryFolder folder;
  const std::string target = folder.write("deep/target.sdf", "old");
  chmod(target.c_str(), 0640);
  std::filesystem::create_symlink("deep/target.sdf", folder.file("link.sdf"));
  std::filesystem::create_symlink("deep/new.sdf", folder.file("dangling.sdf"));
  for (const char* link : {"link.sdf", "dangling.sdf"})
  {
    StackWriter().write(Stack(), folder.file(link));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file(link)));
    EXPECT_THAT(contentOf(folder.file(link)), HasSubstr("STACK"));
  }
  struct stat status = {};
  stat(target.c_str(), &status);
  EXPECT_EQ(status.st_mode & 0777, 0640u);
  EXPECT_TRUE(std::filesystem::exists(folder.file("deep/new.sdf")));
}

TEST(StackWarnings, TheKeepingUnitKeepsAllThatAnyUnitKeeps)
{
  // In millimetres the pixel has its own decimals; in micrometres it would have lost one.
  Stack stack;
  stack.setLengthUnit(LengthUnit(-3));
  setPixelWidth(stack, 0.000645f);
  stack.setDefaultRelativePosition(0.0125f);
  const LengthLosses losses = lengthLosses(stack);
  EXPECT_EQ(losses.lines.size(), 1u);
  ASSERT_TRUE(losses.keepingUnit);
  stack.convertLengthUnit(losses.keepingUnit->getScale());
  EXPECT_THAT(lengthLosses(stack).lines, IsEmpty());
}

TEST(StackWarnings, NameWhatTwoDecimalsLose)
{
  const TemporaryFolder folder;
  const auto warnings = [&folder](const Stack& stack)
  {
    StackWriter writer;
    writer.write(stack, folder.file("out.sdf"));
    return writer.getWarnings();
  };
  Stack stack;
  setPixelWidth(stack, 0.001f); // has its own decimals
  StackSlice& slice = addSlice(stack, "s", "a.tif");
  slice.setRelativePosition(1.235f); // 0.4%
  EXPECT_THAT(warnings(stack), IsEmpty());
  setPixelWidth(stack, 0.0645f);
  slice.setPixelCalibration(stack.getDefaultPixelCalibration());
  slice.setRelativePosition(0.0149f);
  EXPECT_THAT(
      warnings(stack),
      ElementsAre("Stack: the pixel width 0.0645 micrometer is written as 0.06; the length unit nanometer would "
                  "keep it.",
                  "Slice \"s\": the relative position 0.0149 micrometer is written as 0.01; the length unit "
                  "nanometer would keep it."));
  stack.convertLengthUnit(-9);
  EXPECT_THAT(warnings(stack), IsEmpty());
  PixelCalibration oblong = stack.getDefaultPixelCalibration();
  oblong.setPixelWidth(1.004f); // by 0.4% each
  oblong.setAspectRatio(1.004f);
  oblong.compute();
  slice.setPixelCalibration(oblong);
  EXPECT_THAT(warnings(stack), ElementsAre(HasSubstr("is written as 1; the length unit picometer would keep it.")));
  slice.setPixelCalibration(stack.getDefaultPixelCalibration());
  addSlice(stack, "s", "b.tif").setAnnotation("__NL__");
  ModelItem loose(&stack.addModel(std::make_unique<Model>("m")));
  loose.attach();
  stack.setAnnotation("a\nb; \"c\"");
  for (const char* text : {"__NL__", "a\tb", "a\r\nb"})
  {
    stack.getSlice(1)->setAnnotation(text);
    EXPECT_THAT(warnings(stack), testing::Contains(HasSubstr("annotation holds"))) << text;
  }
  EXPECT_THAT(warnings(stack), ElementsAre(HasSubstr("annotation holds"), HasSubstr("several slices named \"s\""),
                                           HasSubstr("1 items lie on no slice")));
  ModelItem::create(*stack.getModel(0), *stack.getSlice(0));
  const std::unique_ptr<Model> removed = stack.removeModel(stack.getModel(0));
  EXPECT_THAT(warnings(stack), testing::Contains(HasSubstr("1 items belong to no model of the stack")));
  slice.setThickness(0.5f);
  EXPECT_THAT(warnings(stack), testing::Contains(HasSubstr("thickness of slices is not written")));
}
