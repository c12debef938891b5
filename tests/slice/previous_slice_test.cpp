// The items of the slice before: where they are shown and what copies are made of them.
#include "edit_test_support.h"

#include "app/core/actions/nyxsliceorderaction.h"
#include "slice/nyxpreviousslice.h"

namespace
{
class PreviousSlice : public EditTest
{
protected:
  /// Aligns the second slice and shows it.
  void align(const Registration& registration, float pixelSize = 1)
  {
    slice(1).setRegistration(registration);
    setPixelSize(slice(1), pixelSize, pixelSize);
    stack.updateReconstruction();
    show(1);
  }
  ModelItem& addRegion(const RLEItemSet& set)
  {
    auto region = std::make_unique<ModelItem>(&model("tissue"), &slice());
    region->setRLEItemSet(set);
    ModelItem& added = *region.release();
    added.attach();
    return added;
  }
  static RLEItemSet rectangle(int x, int y, int width, int height)
  {
    RLEItemSet set;
    for (int i = 0; i < width; ++i) set.add(RLEItem(x + i, y, height));
    return set;
  }
  QImage picture() { return canvas().grabFramebuffer(); }
};
} // namespace

TEST_F(PreviousSlice, ItemsAreCopiedToWhereTheReconstructionPutsThem)
{
  addItem(model("cells"), slice(), {{100, 50}, {200, 50}, {200, 120}});
  const struct
  {
    Registration registration;
    Points expected;
  } cases[] = {
      {Registration(), {{100, 50}, {200, 50}, {200, 120}}},
      {Registration(10, 5, 0), {{90, 45}, {190, 45}, {190, 115}}},
      {Registration(0, 0, 90), {{100, 250}, {100, 150}, {170, 150}}}, // about (200, 150), u = v + 50, v = 350 - u
      {Registration(0, 0, 180), {{300, 250}, {200, 250}, {200, 180}}},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.registration.getAngle());
    align(c.registration);
    NYXActionHistory& steps = stack.sliceHistory(slice(1));
    const std::string before = file();
    key(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_EQ(slice(1).getNumItems(), 1);
    EXPECT_EQ(pointsOf(slice(1).getItem(0)->getVertices()), c.expected);
    EXPECT_TRUE(slice(1).getItem(0)->getSelection().isComplete());
    ASSERT_EQ(steps.getUndoListSize(), 1);
    steps.undo();
    EXPECT_EQ(file(), before);
  }
}

TEST_F(PreviousSlice, CopiesLieWithinHalfAPixelOfTheOriginalsInSpace)
{
  addItem(model("fibres"), slice(), {{120, 80}, {180, 90}, {210, 140}, {150, 200}});
  setPixelSize(slice(0), 0.3f, 0.2f);
  align(Registration(-7, 12, 33.3f), 0.1f);
  NYXPreviousSlice previous;
  previous.setSlice(&slice(1));
  const ModelItem& copy = *previous.items().getItem(0);
  ModelItem placed(copy);
  placed.setSlice(&slice(1));
  StackReconstruction<double> reconstruction(stack);
  Vertices<double> original(3), mapped(3);
  reconstruction.map(original, item());
  reconstruction.map(mapped, placed);
  for (int i = 0; i < 4; ++i)
    EXPECT_LE(std::hypot(original[i][0] - mapped[i][0], original[i][1] - mapped[i][1]), 0.1 * 0.7072);
}

TEST_F(PreviousSlice, RegionsKeepTheirAreaAndShape)
{
  addRegion(rectangle(180, 140, 40, 20));
  align(Registration(0, 0, 90));
  NYXPreviousSlice previous;
  previous.setSlice(&slice(1));
  EXPECT_EQ(previous.items().getItem(0)->getRLEItemSet(), rectangle(190, 131, 20, 40));
  align(Registration(), 0.5f); // pixels half as large
  previous.setSlice(&slice(1));
  EXPECT_EQ(previous.items().getItem(0)->getRLEItemSet().numVertices(), 4 * 40 * 20);
}

TEST_F(PreviousSlice, CopiesStayOnTheImageAndJoinWhatIsThere)
{
  addItem(model("cells"), slice(), {{10, 10}, {40, 10}, {40, 40}});      // leaves the image
  addItem(model("cells"), slice(), {{60, 100}, {160, 100}, {160, 180}}); // is cut by its border
  addItem(model("spots"), slice(), {{20, 20}, {150, 150}});              // one point leaves
  addItem(model("spots"), slice(1), {{5, 5}});
  align(Registration(100, 0, 0));
  QStringList messages;
  const QObject context;
  QObject::connect(&mediator(), &NYXSliceEditWidgetMediator::messageShown, &context,
                   [&](const QString& text) { messages << text; });
  action("copyFromPreviousSlice").trigger();
  ASSERT_EQ(slice(1).getNumItems(), 2);
  EXPECT_EQ(pointsOf(slice(1).getItem(0)->getVertices()), Points({{5, 5}, {50, 150}}));
  EXPECT_EQ(pointsOf(slice(1).getItem(1)->getVertices()), Points({{0, 100}, {60, 100}, {60, 180}}));
  EXPECT_EQ(messages, QStringList("2 items copied from the previous slice; 1 would lie outside of the image"));
  EXPECT_EQ(stack.sliceHistory(slice(1)).getUndoListSize(), 1);
}

TEST_F(PreviousSlice, IsShownFaintlyOnDemandAndFollowsTheStack)
{
  ModelItem& line = addItem(model("fibres"), slice(), {{20, 20}, {120, 20}});
  EXPECT_FALSE(action("showPreviousSlice").isEnabled()) << "the first slice has none before it";
  EXPECT_FALSE(action("copyFromPreviousSlice").isEnabled());
  align(Registration());
  ASSERT_TRUE(QTest::qWaitFor([this] { return canvas().getImageProxy().hasImage(); }));
  const QImage plain = picture();
  EXPECT_EQ(canvas().getFaintItems(), nullptr);
  key(Qt::Key_P);
  const QImage faint = picture();
  EXPECT_NE(faint.pixel(70, 20), plain.pixel(70, 20));
  EXPECT_EQ(faint.pixel(70, 60), plain.pixel(70, 60));

  line.translate(0, 40);
  mediator().notifyEvent(NYXModelItemVertexEvent(line));
  QTest::qWait(10);
  EXPECT_EQ(picture().pixel(70, 60), faint.pixel(70, 20));
  EXPECT_EQ(picture().pixel(70, 20), plain.pixel(70, 20));

  show(0);
  EXPECT_EQ(canvas().getFaintItems(), nullptr);
  show(1);
  stack.history().pushStep(std::make_unique<NYXSliceOrderAction>(slice(1), 0));
  QTest::qWait(10);
  EXPECT_EQ(canvas().getFaintItems(), nullptr); // the slice is the first one now
  EXPECT_FALSE(action("copyFromPreviousSlice").isEnabled());
}
