#include "image/imagesourcefile.h"
#include "image/imagesourcefilemosaic.h"
#include "image/imagesourcelsmstackplane.h"
#include "image/imagesourcetiffstackplane.h"
#include "image/imagesourcevoxelmatrixfileplane.h"
#include "tests/support/stackfiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

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
    stack->keepStatement("STANDARDIMAGE \"a  b\" 1");
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
    if (chance()) slice.keepStatement("CALIBRATIONCURVE Linear 1.5");
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
    if (chance()) properties.setVertexSmoothing(below(5));
    if (chance()) properties.setBeginCapFlag(chance());
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
  RandomStacks stacks(42);
  for (int round = 0; round < 120; ++round)
  {
    SCOPED_TRACE(round);
    const std::unique_ptr<Stack> stack = stacks.draw();
    const std::string text = textOf(*stack, folder);
    EXPECT_EQ(text.find('#'), std::string::npos);
    Stack read;
    StackReader reader;
    reader.read(read, folder.file("out.sdf"));
    ASSERT_THAT(reader.getLog(), testing::IsEmpty()) << text;
    expectSameObjects(*stack, read);
    ASSERT_EQ(textOf(read, folder), text);
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

TEST(StackFileRoundTrip, BringsAnyReadableFileToAFixedPoint)
{
  const char* const statements[] = {"PIXHEIGHT 3.333",
                                    "PIXWIDTH 0.0001",
                                    "ASPECT 0.3333",
                                    "RELPOSITION 0.004",
                                    "DEPTH -0.001",
                                    "ROTATE 359.999",
                                    "ROTATE -0.001",
                                    "POSEROTATION 0.9 -0.9 1e5",
                                    "FIT Linear",
                                    "SAMPLE \"a\tb\"  c",
                                    "CALIBRATIONCURVE 1",
                                    "MODELITEM \"m\" \"a\"",
                                    "MODELITEM \"m\" \"x\"",
                                    "MODELITEMDATA 1,2 3,4",
                                    "M2DDATA 1,2,3",
                                    "MODEL \"m\"",
                                    "MODEL \"n\"",
                                    "PRIMITIVE Region",
                                    "PRIMITIVE Polyline",
                                    "SLICE \"a\" \"b/../c.tif\"",
                                    "SLICE \"a\" 2 2",
                                    "SLICE \"b\" \"d/\"",
                                    "SLICE \"c\" \"/\"",
                                    "SLICE \"c\" \"..\"",
                                    "IMAGE 2 2 \"t.tif\"",
                                    "StackSlice \"p\" \"./p.lsm\" 3",
                                    "SliceSize1 5",
                                    "SliceSize2 6",
                                    "ImagesPath \"./q/\"",
                                    "ImagesPath \".\"",
                                    "ImagesPath \"/\"",
                                    "AbsoluteImagesPathPolicy true",
                                    "POSE \"p\"",
                                    "POSESHIFT 1 2",
                                    "STANDARDIMAGE \"i\"",
                                    "TriangulationTag None",
                                    "TriangulationTag End",
                                    "COLOR 300 0 0",
                                    "THICKNESS 0.004",
                                    "BeginCap true",
                                    "Annotation \"a\tb\"",
                                    "STACK \"again\"",
                                    "LengthUnitScale -2",
                                    "NONSENSE",
                                    "SHIFT 0 7"};
  std::mt19937 random(7);
  const TemporaryFolder folder;
  for (int round = 0; round < 120; ++round)
  {
    std::string text = "STACK \"s\"; SLICE \"a\" \"a.tif\"; MODEL \"m\";";
    for (int i = 0; i < 40; ++i) text += std::string(statements[random() % std::size(statements)]) + ";\n";
    Stack first, second;
    StackReader reader;
    reader.read(first, folder.write("in.sdf", text));
    const std::string once = textOf(first, folder);
    reader.read(second, folder.file("out.sdf"));
    ASSERT_THAT(reader.getLog(), testing::Each(testing::HasSubstr("There is already a"))) << text << once;
    ASSERT_EQ(textOf(second, folder), once) << text;
  }
}
