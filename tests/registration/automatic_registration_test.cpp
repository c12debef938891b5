// Automatic registration in the window: of one slice, of all, and on contours.
#include "app/core/nyxslicelocks.h"
#include "registration_test_support.h"

#include <QCheckBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QRadioButton>

#include <cmath>

namespace
{
/// How far the slice's angle is from the turn of the specimen against the slice before, by -30 degrees.
double angleError(const StackSlice& slice)
{
  return std::abs(std::remainder(static_cast<double>(slice.getRegistration().getAngle()) + 30, 360));
}
} // namespace

using AutomaticRegistration = RegistrationTest;

TEST_F(AutomaticRegistration, AlignsTheCurrentSliceInOneStep)
{
  open(3);
  mediator().setNextSlice();
  part<QPushButton>("runButton").click();
  EXPECT_LE(angleError(*stack->getSlice(2)), 0.3);
  EXPECT_TRUE(stack->getSlice(1)->getRegistration().isNull());
  EXPECT_TRUE(mediator().getRegistration() == stack->getSlice(2)->getRegistration());
  EXPECT_EQ(stack->getLastRegisteredSlice(), "slice 2");
  EXPECT_EQ(stack->history().getUndoListSize(), 1);
  EXPECT_TRUE(stack->getLockedSlices().empty());
  EXPECT_FALSE(part<QWidget>("progress").isVisible());
  const double before = part<QLabel>("correlationBefore").text().toDouble();
  const double after = part<QLabel>("correlationAfter").text().toDouble();
  EXPECT_LT(before, 0.9);
  EXPECT_GT(after, 0.97);
  EXPECT_TRUE(window->statusBar().currentMessage().contains("Undo"));
  mediator().notifyEvent(NYXSliceImageCalibrationEvent(*stack->getSlice(1)));
  EXPECT_EQ(part<QLabel>("correlationAfter").text(), QString("–")); // they were of other pixels
  part<QPushButton>("runButton").click();                           // finds the same again
  EXPECT_EQ(stack->history().getUndoListSize(), 1);
  EXPECT_FALSE(window->statusBar().currentMessage().contains("Undo")); // it would take the run before back
  action("undo").trigger();
  EXPECT_TRUE(window->statusBar().currentMessage().isEmpty()); // the slice is not registered any more
  EXPECT_TRUE(mediator().getRegistration().isNull());
  EXPECT_EQ(part<QLabel>("correlationAfter").text(), part<QLabel>("correlationBefore").text()); // of no run any more
}

TEST_F(AutomaticRegistration, AlignsAllSlicesButTheFirstInOneStep)
{
  open(5);
  stack->getSlice(0)->setRegistration(Registration(3, 2, 1));
  stack->getSlice(3)->setRegistration(Registration(4, 5, 6));
  part<QRadioButton>("allSlices").setChecked(true);
  part<QPushButton>("runButton").click();
  EXPECT_TRUE(stack->getSlice(0)->getRegistration() == Registration(3, 2, 1));
  for (int k = 1; k < 5; ++k) EXPECT_LE(angleError(*stack->getSlice(k)), 0.3) << k;
  EXPECT_EQ(mediator().getSlice(), stack->getSlice(4));
  EXPECT_EQ(stack->getLastRegisteredSlice(), "slice 4");
  EXPECT_FALSE(stack->inRegistration());
  EXPECT_EQ(stack->history().getUndoListSize(), 1);
  action("undo").trigger();
  EXPECT_TRUE(stack->getSlice(3)->getRegistration() == Registration(4, 5, 6));
  EXPECT_TRUE(stack->getSlice(4)->getRegistration().isNull());
  EXPECT_EQ(stack->getLastRegisteredSlice(), "");
  action("redo").trigger();
  EXPECT_LE(angleError(*stack->getSlice(4)), 0.3);
}

TEST_F(AutomaticRegistration, KeepsWhatWasDoneWhenItIsCanceled)
{
  constexpr int numSlices = 60;
  open(2);
  const SpecimenView large = {700, 700, 0.3, 0.3, 0};
  const StackSlice& pattern = addSpecimenSlice(*stack, large, {100, 100, 30});
  while (stack->getNumSlices() < numSlices)
  {
    StackSlice& slice = addSlice(*stack, 0, 0);
    slice.setImageSource(*pattern.getImageSource());
    slice.setRegistration(Registration(50, 50, 50));
  }
  int numShown = 0;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout,
                   [&]
                   {
                     auto* dialog = window->findChild<QProgressDialog*>("progressDialog");
                     if (dialog == nullptr || !dialog->isVisible() || mediator().getSlice()->getIndex() < 4) return;
                     ++numShown;
                     EXPECT_TRUE(stack->inRegistration());
                     EXPECT_EQ(stack->getLockedSlices().size(), std::size_t(numSlices - 1));
                     emit dialog->canceled();
                   });
  timer.start(1);
  mediator().registerAllSlices();
  ASSERT_GT(numShown, 0);
  const int last = stack->findSlice(stack->getLastRegisteredSlice());
  EXPECT_GE(last, 3);
  ASSERT_LT(last, numSlices - 1);
  EXPECT_FALSE(stack->getSlice(last)->getRegistration() == Registration(50, 50, 50));
  EXPECT_TRUE(stack->getSlice(last + 1)->getRegistration() == Registration(50, 50, 50));
  EXPECT_EQ(stack->history().getUndoListSize(), 1);
  EXPECT_TRUE(stack->getLockedSlices().empty());
  EXPECT_FALSE(stack->inRegistration());
}

TEST_F(AutomaticRegistration, KeepsWhatWasDoneBeforeAnImageThatCannotBeRead)
{
  open(4);
  stack->getSlice(3)->setImageSource(ImageSourceFile("missing.tif"));
  const QStringList texts = answering(QMessageBox::Ok, [&] { mediator().registerAllSlices(); });
  ASSERT_EQ(texts.size(), 1);
  EXPECT_TRUE(texts[0].contains("missing.tif")) << texts[0].toStdString();
  EXPECT_LE(angleError(*stack->getSlice(2)), 0.3);
  EXPECT_TRUE(stack->getSlice(3)->getRegistration().isNull());
  EXPECT_EQ(stack->history().getUndoListSize(), 1);
}

TEST_F(AutomaticRegistration, LeavesLockedSlicesToWhatWorksOnThem)
{
  open(3);
  const NYXSliceLocks lock(mediator(), {stack->getSlice(2)});
  mediator().registerAllSlices();
  mediator().setLastSlice();
  mediator().registerCurrentSlice();
  EXPECT_TRUE(window->statusBar().currentMessage().contains("slice 2 is locked"));
  EXPECT_EQ(stack->history().getUndoListSize(), 0);
  EXPECT_TRUE(stack->isLocked(*stack->getSlice(2)));
}

TEST_F(AutomaticRegistration, TellsThatASliceHasNoSpecimen)
{
  open(2);
  auto empty = std::make_shared<VoxelMatrix<unsigned char>>(50, 50, 1);
  empty->setZeros();
  addSlice(*stack, 0, 0, Registration(1, 2, 3))
      .setImageSource(ImageSourceVoxelMatrixPlane(std::shared_ptr<const VoxelMatrix<unsigned char>>(empty)));
  mediator().setSlice(stack->getLastSlice());
  mediator().registerCurrentSlice();
  EXPECT_TRUE(stack->getLastSlice()->getRegistration().isNull());
  EXPECT_TRUE(window->statusBar().currentMessage().contains("no specimen"));
}

TEST_F(AutomaticRegistration, ContoursProposeARegistration)
{
  open(2);
  Model& model = addModel(*stack, "outline", MPrimitive::Polygon);
  mediator().runICP(*stack->getSlice(1));
  EXPECT_TRUE(window->statusBar().currentMessage().contains("no item"));
  // An L; on the second slice it is turned by 90 degrees clockwise about the centre (100, 100) and moved by (5, -8).
  addItem(model, *stack->getSlice(0), {{60, 60}, {80, 60}, {80, 120}, {130, 120}, {130, 140}, {60, 140}});
  addItem(model, *stack->getSlice(1), {{145, 52}, {145, 72}, {85, 72}, {85, 122}, {65, 122}, {65, 52}});
  mediator().setRegistration(Registration(0, 0, 300)); // a guess
  part<QPushButton>("fitContoursButton").click();
  const Registration& found = mediator().getRegistration();
  EXPECT_NEAR(found.getAngle(), 270, 0.5);
  // R (5, -8) + shift = 0 for a turn of 270 degrees, which takes (x, y) to (y, -x).
  EXPECT_NEAR(found.getHorizontalShift(), 8, 1);
  EXPECT_NEAR(found.getVerticalShift(), 5, 1);
  EXPECT_TRUE(mediator().isEdited());
  EXPECT_TRUE(stack->getSlice(1)->getRegistration().isNull());
  EXPECT_FALSE(stack->history().isUndoable());
  EXPECT_TRUE(mediator().apply());

  stack->getSlice(0)->setImageSource(ImageSourceFile("missing.tif"));
  mediator().runICP(*stack->getSlice(1));
  EXPECT_TRUE(window->statusBar().currentMessage().contains("missing.tif"));
}
