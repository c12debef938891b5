#include "image/imagesourcefile.h"
#include "image/imagesourcefilemosaic.h"
#include "image/imagesourcelsmstackplane.h"
#include "image/imagesourcetiffstackplane.h"
#include "image/imagesourcevoxelmatrixfileplane.h"
#include "tests/support/stackfiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <sstream>

namespace
{
/// Draws stacks in which everything that a stack file can say occurs.
class RandomStacks
{
public:
  explicit RandomStacks(unsigned seed) : _random(seed) {}

  std::unique_ptr<Stack> draw()
  {
    auto stack = std::make_unique<Stack>();
    stack->setName(text("stack"));
    stack->setAnnotation(text("note;\n\"#") + "\n");
    stack->setLengthUnit(LengthUnit(-3 * below(4)));
    stack->setDefaultPixelCalibration(calibration(*stack));
    stack->setDefaultRelativePosition(number());
    stack->setAbsoluteImagesPathPolicy(chance());
    stack->setInvertZAxis(chance());
    stack->setLastSegmentedSlice(text("last"));
    stack->keepStatement("SAMPLE \"a  b\" 1");
    for (int i = 0; i < below(3); ++i) addStandardImage(*stack);
    for (int i = 0; i < 1 + below(6); ++i) addSlice(*stack, i);
    for (int i = 0; i < below(5); ++i) addModel(*stack, i);
    for (int i = 0; i < below(3); ++i) addPose(*stack);
    return stack;
  }

private:
  int below(int limit) { return static_cast<int>(_random() % static_cast<unsigned>(limit)); }
  bool chance() { return below(2) == 0; }
  float number()
  {
    const float values[] = {0, 1, -0.001f, 0.004f, 2.345f, 1234567.891f, 1e-20f, 0.0645f, -7.5f, 3e20f};
    return values[below(10)];
  }
  float positive()
  {
    const float value = std::abs(number());
    return value > 0 && value < 1e9f && value > 1e-9f ? value : 1;
  }
  std::string text(const std::string& base)
  {
    const char* const ends[] = {"", " two  words", ";semi", "\"quote\"", "#hash", "\xC3\xA4\xC3\xB6", " ", "'$(x)'"};
    return base + ends[below(8)];
  }
  PixelCalibration calibration(const Stack& stack)
  {
    PixelCalibration result;
    result.setPixelWidth(positive());
    result.setAspectRatio(positive());
    result.compute();
    result.setLengthUnit(stack.getLengthUnit());
    return result;
  }
  std::string fileName()
  {
    const char* const folders[] = {"", "a/", "/x/y/", "../up/", "a b;#\"/"};
    return folders[below(5)] + text("image") + ".tif";
  }

  void setImage(StackSlice& slice)
  {
    ImageSourceFileMosaic mosaic(2, 3);
    mosaic.setFilename(below(2), below(3), fileName());
    ImageSourceTiffStackPlane plane(fileName(), below(9));
    plane.setFallbackSize(10, 20);
    switch (below(6))
    {
    case 0:
      return slice.setImageSource(mosaic);
    case 1:
      return slice.setImageSource(plane);
    case 2:
      return slice.setImageSource(ImageSourceLSMStackPlane("s.lsm", below(9)));
    case 3:
      return slice.setImageSource(ImageSourceVoxelMatrixFilePlane("/v.vm", below(9)));
    case 4:
      return;
    default:
      return slice.setImageSource(ImageSourceFile(fileName()));
    }
  }

  void addSlice(Stack& stack, int i)
  {
    StackSlice& slice = stack.addSlice(std::make_unique<StackSlice>());
    slice.setName(text("slice " + std::to_string(i)));
    setImage(slice);
    slice.setPixelCalibration(chance() ? stack.getDefaultPixelCalibration() : calibration(stack));
    if (chance()) chance() ? slice.setAbsolutePosition(number()) : slice.setRelativePosition(number());
    if (chance()) slice.setRegistration(Registration(below(9) - 4, below(3), number()));
    if (chance()) slice.setAnnotation(text("about"));
    if (chance()) slice.setCalibrationCurve(calibrationCurve());
    if (chance()) slice.keepStatement("CALIBRATIONCURVE Linear 1.5");
    if (chance()) slice.keepStatement("FIT Linear");
  }

  CalibrationCurve calibrationCurve()
  {
    std::vector<CalibrationCurve::Sample> samples;
    for (int i = 0; i < below(5); ++i) samples.push_back({0.1 * below(2560), 1e-30 + number() / 3.0});
    return CalibrationCurve(std::move(samples), static_cast<CalibrationFit>(below(3)));
  }

  void addStandardImage(Stack& stack)
  {
    StandardImage& image = stack.addStandardImage(std::make_unique<StandardImage>());
    image.setName(text("standard"));
    if (chance()) image.setImageSource(ImageSourceFile(fileName()));
    for (int i = 0; i < below(3); ++i)
      image.addSample({text("sample"), below(9) - 4, below(9), 1 + below(9), 1 + below(9), number() / 7.0});
    if (chance()) image.setCalibrationCurve(calibrationCurve());
    if (chance()) image.keepStatement("SAMPLEVALUE 1");
  }

  ModelItemProperties itemProperties()
  {
    ModelItemProperties properties;
    if (chance()) properties.setColor(below(256), below(256), below(256));
    if (chance()) properties.setLineWidth(number());
    if (chance()) properties.setPointSize(number());
    if (chance()) properties.setVertexSymbol(static_cast<VertexSymbol>(below(5)));
    if (chance()) properties.setVertexSymbolFilling(chance());
    if (chance()) properties.setRenderingVisibility(chance());
    return properties;
  }

  void addModel(Stack& stack, int i)
  {
    Model& model = stack.addModel(std::make_unique<Model>(text("model " + std::to_string(i))));
    ModelProperties& properties = model.getProperties();
    properties.setGeometry(static_cast<MPrimitive>(below(4)));
    properties.setRenderingMode(static_cast<RenderingMode>(below(6)));
    properties.setSurfaceOpacity(number());
    if (chance()) properties.setSurfaceShininess(number());
    if (chance()) properties.setQuadMeshWidth(below(200) - 9);
    if (chance()) properties.setNormalSmoothing(below(5));
    if (chance()) properties.setEconomicRendering(chance());
    if (chance()) properties.setVertexSmoothing(below(5));
    if (chance()) properties.setBeginCapFlag(chance());
    if (chance()) properties.setEndCapFlag(chance());
    model.setItemProperties(itemProperties());
    for (int k = 0; k < below(6); ++k) addItem(model, *stack.getSlice(below(stack.getNumSlices())));
    if (chance()) model.keepStatement("SAMPLE 1 2");
  }

  void addItem(Model& model, StackSlice& slice)
  {
    ModelItem& item = ModelItem::create(model, slice);
    item.setProperties(itemProperties());
    item.setTriangulationTag(static_cast<CurveStackTriangulationContourTag>(below(3)));
    for (int i = 0; i < below(5); ++i)
      if (item.isRegion())
        item.addRLEItemSet(RLEItemSet({RLEItem(below(9) - 4, below(9) - 4, 1 + below(4))}));
      else
        item.appendVertex(Vector<int>{below(2000) - 1000, chance() ? 2147483647 : -2147483647 - 1});
  }

  void addPose(Stack& stack)
  {
    auto pose = std::make_unique<Pose>(&stack);
    pose->setName(text("pose"));
    pose->setXRotation(number());
    pose->setZoom(below(200));
    pose->setYTranslation(-below(9));
    pose->attach();
    pose.release();
  }

  std::mt19937 _random;
};

void expectSameCurve(const Calibrated& a, const Calibrated& b)
{
  ASSERT_EQ(a.hasCalibrationCurve(), b.hasCalibrationCurve());
  if (!a.hasCalibrationCurve()) return;
  EXPECT_EQ(*a.getCalibrationCurve(), *b.getCalibrationCurve());
}

/// The keywords of a file that was written: one statement a line.
std::set<std::string> keywordsOf(const std::string& text)
{
  std::set<std::string> keywords;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) keywords.insert(line.substr(0, line.find_first_of(" ;")));
  return keywords;
}

/// What must survive exactly, whatever the decimals.
void expectSameObjects(const Stack& a, const Stack& b)
{
  EXPECT_EQ(a.getName(), b.getName());
  EXPECT_EQ(a.getAnnotation(), b.getAnnotation());
  EXPECT_EQ(a.getLengthUnit(), b.getLengthUnit());
  EXPECT_EQ(a.getInvertZAxis(), b.getInvertZAxis());
  EXPECT_EQ(a.getKeptStatements(), b.getKeptStatements());
  ASSERT_EQ(a.getNumSlices(), b.getNumSlices());
  ASSERT_EQ(a.getNumModels(), b.getNumModels());
  ASSERT_EQ(a.getNumPoses(), b.getNumPoses());
  for (int i = 0; i < a.getNumSlices(); ++i)
  {
    EXPECT_EQ(a.getSlice(i)->getName(), b.getSlice(i)->getName());
    EXPECT_EQ(a.getSlice(i)->getAnnotation(), b.getSlice(i)->getAnnotation());
    EXPECT_EQ(a.getSlice(i)->useRelativePosition(), b.getSlice(i)->useRelativePosition());
    EXPECT_EQ(a.getSlice(i)->getKeptStatements(), b.getSlice(i)->getKeptStatements());
    EXPECT_EQ(a.getSlice(i)->getNumItems(), b.getSlice(i)->getNumItems());
    expectSameCurve(*a.getSlice(i), *b.getSlice(i));
  }
  ASSERT_EQ(a.getNumStandardImages(), b.getNumStandardImages());
  for (int i = 0; i < a.getNumStandardImages(); ++i)
  {
    EXPECT_EQ(a.getStandardImage(i)->getName(), b.getStandardImage(i)->getName());
    EXPECT_EQ(a.getStandardImage(i)->getSamples(), b.getStandardImage(i)->getSamples());
    EXPECT_EQ(a.getStandardImage(i)->getKeptStatements(), b.getStandardImage(i)->getKeptStatements());
    expectSameCurve(*a.getStandardImage(i), *b.getStandardImage(i));
  }
  for (int i = 0; i < a.getNumModels(); ++i)
  {
    const Model &mine = *a.getModel(i), &read = *b.getModel(i);
    EXPECT_EQ(mine.getName(), read.getName());
    EXPECT_EQ(mine.getGeometry(), read.getGeometry());
    EXPECT_EQ(mine.getProperties().hasBeginCapFlag(), read.getProperties().hasBeginCapFlag());
    ASSERT_EQ(mine.getNumItems(), read.getNumItems());
    for (int k = 0; k < mine.getNumItems(); ++k)
    {
      const ModelItem &item = *mine.getItem(k), &other = *read.getItem(k);
      EXPECT_EQ(item.getSlice()->getIndex(), other.getSlice()->getIndex());
      EXPECT_EQ(item.getTriangulationTag(), other.getTriangulationTag());
      EXPECT_EQ(item.getProperties().definesLineWidth(), other.getProperties().definesLineWidth());
      EXPECT_EQ(item.getRLEItemSet(), other.getRLEItemSet());
      ASSERT_EQ(item.getVertices().getSize(), other.getVertices().getSize());
      for (int v = 0; v < item.getVertices().getSize(); ++v) EXPECT_EQ(item.getVertices()[v], other.getVertices()[v]);
    }
  }
}
} // namespace

TEST(StackFileRoundTrip, ASecondSaveChangesNothing)
{
  const TemporaryFolder folder;
  std::set<std::string> written;
  for (unsigned seed = 0; seed < 60; ++seed)
  {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const std::unique_ptr<Stack> stack = RandomStacks(seed).draw();
    const std::string text = textOf(*stack, folder);
    written.merge(keywordsOf(text));
    EXPECT_EQ(text.find('#'), std::string::npos);
    Stack read;
    StackReader reader;
    reader.read(read, folder.file("out.sdf"));
    ASSERT_THAT(reader.getLog(), testing::Each(saysThatACalibrationFailed())) << text;
    expectSameObjects(*stack, read);
    ASSERT_EQ(textOf(read, folder), text);
  }
  for (int keyword = 0; keyword < StackIO::numKeywords; ++keyword)
  {
    const auto value = static_cast<StackKeyword>(keyword);
    EXPECT_EQ(written.count(std::string(StackIO::getString(value))), value == StackKeyword::PixelHeight ? 0 : 1)
        << StackIO::getString(value);
  }
}

TEST(StackFileRoundTrip, FindsImagesThroughLinkedFolders)
{
  const TemporaryFolder folder;
  folder.write("a/b/old.sdf", "STACK \"s\"; ImagesPath \"../img\"; SLICE \"1\" \"1.tif\";");
  folder.write("a/img/1.tif", "");
  std::filesystem::create_directory_symlink("a/b", folder.file("l"));
  const auto imageOf = [&folder](const std::string& name)
  {
    Stack stack;
    StackReader().read(stack, folder.file(name));
    return static_cast<const ImageSourceFile&>(*stack.getSlice(0)->getImageSource()).getFilename();
  };
  EXPECT_EQ(imageOf("l/old.sdf"), folder.file("a/img/1.tif"));
  const struct
  {
    const char* image;
    const char* path;
  } cases[] = {
      {"a/img/1.tif", "ImagesPath \"../img\";"},
      {"l/sub/1.tif", "ImagesPath \"sub\";"},     // as the user names it
      {"img/1.tif", "ImagesPath \"../../img\";"}, // "../img" from the link would lead elsewhere
  };
  for (const auto& c : cases)
  {
    Stack stack;
    StackSlice& slice = stack.addSlice(std::make_unique<StackSlice>());
    slice.setImageSource(ImageSourceFile(folder.file(c.image)));
    StackWriter().write(stack, folder.file("l/new.sdf"));
    EXPECT_THAT(contentOf(folder.file("a/b/new.sdf")), testing::HasSubstr(c.path));
    EXPECT_TRUE(std::filesystem::weakly_canonical(folder.file(c.image)) ==
                std::filesystem::weakly_canonical(imageOf("l/new.sdf")));
  }
}
