// Registration by hand: what the mouse and the fields make of it, and what is stored of that.
#include "registration_test_support.h"

#include "app/core/actions/nyxsliceinsertiondeletionaction.h"
#include "app/core/nyxslicelocks.h"

#include <QDoubleSpinBox>
#include <QSlider>
#include <QSpinBox>

namespace
{
/// A slice with an image of one grey level.
void addFlatSlice(Stack& stack, int size, unsigned char level)
{
  auto image = std::make_shared<VoxelMatrix<unsigned char>>(size, size, 1);
  image->fill(level);
  addSlice(stack, 0, 0)
      .setImageSource(ImageSourceVoxelMatrixPlane(std::shared_ptr<const VoxelMatrix<unsigned char>>(image)));
}
} // namespace

using ManualRegistration = RegistrationTest;

TEST_F(ManualRegistration, BeginsWhereTheUserStoppedAndStaysOffTheFirstSlice)
{
  stack->setLastRegisteredSlice("slice 2");
  open(4);
  EXPECT_EQ(mediator().getSlice(), stack->getSlice(2));
  mediator().setFirstSlice();
  EXPECT_EQ(mediator().getSlice(), stack->getSlice(1));
  EXPECT_FALSE(action("previous").isEnabled());
  mediator().setPreviousSlice();
  EXPECT_EQ(mediator().getSlice(), stack->getSlice(1));
  mediator().setSlice(stack->getSlice(0));
  mediator().setSlice(std::string("slice 0"));
  mediator().setSlice(std::string("nothing"));
  EXPECT_EQ(mediator().getSlice(), stack->getSlice(1));
  mediator().setSlice(std::string("slice 3"));
  mediator().setNextSlice();
  EXPECT_EQ(mediator().getSlice(), stack->getSlice(3));
  EXPECT_FALSE(action("next").isEnabled());
}

TEST_F(ManualRegistration, HasNothingToDoWithoutTwoSlices)
{
  open(1);
  EXPECT_EQ(mediator().getSlice(), nullptr);
  mediator().setFirstSlice();
  mediator().setNextSlice();
  mediator().registerCurrentSlice();
  mediator().registerAllSlices();
  mediator().runICP(*stack->getSlice(0));
  EXPECT_FALSE(mediator().apply());
  drag(Qt::LeftButton, {{100, 100}, {150, 150}});
  EXPECT_TRUE(mediator().getRegistration().isNull());
  EXPECT_TRUE(stack->getSlice(0)->getRegistration().isNull());
  EXPECT_FALSE(action("apply").isEnabled());
  window->setStack(nullptr);
  EXPECT_FALSE(window->statusBar().hint().isEmpty());
}

TEST_F(ManualRegistration, LeftButtonMovesByImagePixels)
{
  open(2);
  mediator().setScale(2);
  drag(Qt::LeftButton, {{100, 100}, {101, 100}, {109, 95}, {120, 91}});
  EXPECT_TRUE(mediator().getRegistration() == Registration(10, -4, 0)); // -9 pixels of the screen: -4.5, halves up
  drag(Qt::LeftButton, {{100, 100}, {94, 130}});
  EXPECT_TRUE(mediator().getRegistration() == Registration(7, 11, 0));
  EXPECT_EQ(canvas().getMouseMode(), NYXRegistrationCanvas::Translation);
  EXPECT_EQ(part<QSpinBox>("horizontalShift").value(), 7);
  EXPECT_EQ(part<QSpinBox>("verticalShift").value(), 11);
  EXPECT_TRUE(stack->getSlice(1)->getRegistration().isNull()); // not before it is applied
  EXPECT_FALSE(stack->isModified());
}

TEST_F(ManualRegistration, ADragEndsWithItsButtonAndWhenItIsReset)
{
  open(2);
  mediator().setScale(1);
  const auto moveTo = [&](const QPoint& position, Qt::MouseButtons buttons)
  {
    QMouseEvent move(QEvent::MouseMove, position, Qt::NoButton, buttons, {});
    QApplication::sendEvent(&canvas(), &move);
  };
  QTest::mousePress(&canvas(), Qt::LeftButton, {}, {100, 100});
  moveTo({110, 100}, Qt::LeftButton);
  moveTo({150, 100}, Qt::NoButton); // let go where a dialog stood
  moveTo({150, 150}, Qt::LeftButton);
  EXPECT_TRUE(mediator().getRegistration() == Registration(10, 0, 0));
  QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, {150, 150});
  QTest::mousePress(&canvas(), Qt::LeftButton, {}, {100, 100});
  action("reset").trigger();
  moveTo({110, 100}, Qt::LeftButton);
  EXPECT_TRUE(mediator().getRegistration().isNull());
  QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, {110, 100});
}

TEST_F(ManualRegistration, UndoTakesAnEditBackBeforeItUndoesSteps)
{
  open(3);
  mediator().setRegistration(Registration(5, 0, 0));
  action("apply").trigger();
  action("next").trigger();
  mediator().setRegistration(Registration(0, 0, 40));
  stack->getSlice(1)->setRegistration(Registration(6, 0, 0)); // as another window does
  stack->notifyEvent(NYXStackRegistrationEvent(*stack));
  EXPECT_TRUE(mediator().getRegistration() == Registration(0, 0, 40)) << "the slice itself has not changed";
  stack->getSlice(1)->setRegistration(Registration(5, 0, 0));
  action("undo").trigger();
  EXPECT_TRUE(mediator().getRegistration().isNull());
  EXPECT_TRUE(stack->getSlice(1)->getRegistration() == Registration(5, 0, 0));
  action("undo").trigger();
  EXPECT_TRUE(stack->getSlice(1)->getRegistration().isNull());
}

TEST_F(ManualRegistration, RightButtonTurnsAboutTheShiftedCentre)
{
  open(2);
  mediator().setScale(1);
  mediator().setRegistration(Registration(20, -10, 0));
  const QPoint center = roundedPosition(canvas().foregroundToCanvas().map(QPointF(100, 100)));
  const QPoint corner = canvas().convertToCanvasPosition(QPoint(0, 0));
  EXPECT_NEAR(center.x() - corner.x(), 25 + 120, 1); // the margin, half the image and the shift
  EXPECT_NEAR(center.y() - corner.y(), 25 + 90, 1);
  const QPoint right(200, 0), below(0, 150);
  drag(Qt::RightButton, {center + right, center + right / 2 + below / 2, center + below});
  EXPECT_EQ(canvas().getMouseMode(), NYXRegistrationCanvas::Rotation);
  EXPECT_NEAR(mediator().getRegistration().getAngle(), 90, 0.45); // the centre lies between pixels of the screen
  EXPECT_EQ(mediator().getRegistration().getHorizontalShift(), 20);
  EXPECT_NEAR(part<QDoubleSpinBox>("angle").value(), mediator().getRegistration().getAngle(), 1e-4);

  mediator().setRegistration(Registration(20, -10, 0));
  drag(Qt::RightButton, {center + right, center + right - QPoint(0, 1)}); // by -atan(1 / 200) = -0.286 degrees
  EXPECT_FLOAT_EQ(mediator().getRegistration().getAngle(), 359.7F);
  mediator().setRegistration(Registration(0, 0, -3.01F));
  drag(Qt::RightButton, {center + right, center + right}); // no turn: the digits stay
  EXPECT_FLOAT_EQ(mediator().getRegistration().getAngle(), -3.01F);
}

TEST_F(ManualRegistration, FieldsEditWhatTheyShowAndKeepTheRest)
{
  open(2);
  mediator().setRegistration(Registration(1, 2, 10.0072F));
  part<QSpinBox>("horizontalShift").setValue(-30);
  EXPECT_TRUE(mediator().getRegistration() == Registration(-30, 2, 10.0072F)); // not the rounded angle
  part<QDoubleSpinBox>("angle").stepUp();
  EXPECT_NEAR(mediator().getRegistration().getAngle(), 10.11, 1e-4);
  EXPECT_TRUE(canvas().getRegistration() == mediator().getRegistration());

  part<QSpinBox>("verticalShift").setFocus();
  part<QSpinBox>("verticalShift").selectAll();
  QTest::keyClicks(&part<QSpinBox>("verticalShift"), "44");
  action("apply").trigger(); // with a number that was typed and not left
  EXPECT_EQ(stack->getSlice(1)->getRegistration().getVerticalShift(), 44);
}

TEST_F(ManualRegistration, ANumberThatWasTypedIsToldOfBeforeTheWindowIsDestroyed)
{
  open(2);
  auto& field = part<QSpinBox>("verticalShift");
  field.selectAll();
  QTest::keyClicks(&field, "44");
  int numTold = 0;
  QObject::connect(&mediator(), &NYXRegistrationMediator::stateChanged,
                   [&]
                   {
                     ++numTold;
                     EXPECT_NE(dynamic_cast<NYXRegistrationWindow*>(field.window()), nullptr);
                   });
  window.reset();
  EXPECT_EQ(numTold, 1);
}

TEST_F(ManualRegistration, UndoInAFieldIsThatOfTheWindowUnlessANumberIsBeingTyped)
{
  open(2);
  window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
  auto& field = part<QSpinBox>("verticalShift");
  field.setFocus();
  field.selectAll();
  QTest::keyClicks(&field, "44");
  QTest::keyClick(&field, Qt::Key_Enter, Qt::KeypadModifier); // as Return
  EXPECT_EQ(stack->getSlice(1)->getRegistration().getVerticalShift(), 44);
  QTest::keyClicks(&field, "5");
  QTest::keyClick(&field, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(field.cleanText(), "44");
  QTest::keyClick(&field, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(stack->getSlice(1)->getRegistration().isNull());
  EXPECT_EQ(field.value(), 0);
  QTest::keyClick(&field, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(stack->getSlice(1)->getRegistration().getVerticalShift(), 44);
}

TEST_F(ManualRegistration, ApplyIsAStepThatCanBeUndone)
{
  open(3);
  stack->getSlice(1)->setRegistration(Registration(1, 1, 1));
  stack->setLastRegisteredSlice("slice 2");
  mediator().setFirstSlice();
  QSignalSpy changes(&stack->history(), &NYXActionHistory::changed);
  mediator().setRegistration(Registration(5, 6, 7.5F));
  EXPECT_TRUE(mediator().isEdited());
  EXPECT_TRUE(mediator().apply());
  EXPECT_EQ(changes.count(), 1);
  EXPECT_FALSE(mediator().isEdited());
  EXPECT_TRUE(stack->isModified());
  EXPECT_EQ(stack->getLastRegisteredSlice(), "slice 1");
  action("undo").trigger();
  EXPECT_TRUE(stack->getSlice(1)->getRegistration() == Registration(1, 1, 1));
  EXPECT_TRUE(mediator().getRegistration() == Registration(1, 1, 1));
  EXPECT_EQ(stack->getLastRegisteredSlice(), "slice 2");
  action("redo").trigger();
  EXPECT_TRUE(stack->getSlice(1)->getRegistration() == Registration(5, 6, 7.5F));
  mediator().setRegistration(Registration(0, 0, 9));
  mediator().reset();
  EXPECT_TRUE(mediator().getRegistration() == Registration(5, 6, 7.5F));
  // An unchanged registration that is applied makes the slice the one registered last.
  mediator().setNextSlice();
  EXPECT_TRUE(mediator().apply());
  EXPECT_EQ(stack->getLastRegisteredSlice(), "slice 2");
  EXPECT_TRUE(mediator().apply());
  EXPECT_EQ(stack->history().getUndoListSize(), 2);
}

TEST_F(ManualRegistration, AsksBeforeAnEditIsLost)
{
  open(3);
  const auto goOn = [&](QMessageBox::StandardButton answer)
  {
    mediator().setFirstSlice();
    mediator().setRegistration(Registration(9, 9, 9));
    EXPECT_EQ(answering(answer, [&] { action("next").trigger(); }).size(), 1);
  };
  goOn(QMessageBox::Cancel);
  EXPECT_EQ(mediator().getSlice(), stack->getSlice(1));
  EXPECT_TRUE(mediator().getRegistration() == Registration(9, 9, 9));
  goOn(QMessageBox::Discard);
  EXPECT_EQ(mediator().getSlice(), stack->getSlice(2));
  EXPECT_TRUE(stack->getSlice(1)->getRegistration().isNull());
  goOn(QMessageBox::Apply);
  EXPECT_EQ(mediator().getSlice(), stack->getSlice(2));
  EXPECT_TRUE(stack->getSlice(1)->getRegistration() == Registration(9, 9, 9));
  EXPECT_TRUE(answering(QMessageBox::Cancel, [&] { window->close(); }).isEmpty());
}

TEST_F(ManualRegistration, ALockedSliceIsLeftAlone)
{
  open(2);
  {
    const NYXSliceLocks lock(mediator(), {stack->getSlice(1)});
    EXPECT_FALSE(action("apply").isEnabled());
    EXPECT_FALSE(part<QSpinBox>("horizontalShift").isEnabled());
    drag(Qt::LeftButton, {{100, 100}, {150, 150}});
    EXPECT_TRUE(mediator().getRegistration().isNull());
    mediator().setRegistration(Registration(1, 1, 1));
    EXPECT_FALSE(mediator().apply());
    EXPECT_TRUE(stack->getSlice(1)->getRegistration().isNull());
  }
  EXPECT_TRUE(mediator().apply());
}

TEST_F(ManualRegistration, FollowsTheStack)
{
  open(3);
  mediator().setSlice(stack->getSlice(2));
  mediator().setRegistration(Registration(1, 2, 3));
  StackSlice* const slice = stack->getSlice(2);
  stack->history().pushStep(std::make_unique<NYXSliceInsertionDeletionAction>(*stack->getSlice(1)));
  EXPECT_EQ(mediator().getSlice(), slice); // now the second, and still edited
  EXPECT_TRUE(mediator().getRegistration() == Registration(1, 2, 3));
  stack->history().pushStep(std::make_unique<NYXSliceInsertionDeletionAction>(*slice));
  EXPECT_EQ(mediator().getSlice(), nullptr);
  stack->history().undo();
  EXPECT_EQ(mediator().getSlice(), slice);
  NYXStack& other = NYXStackServer::server().addStack(std::make_unique<NYXStack>());
  NYXStackServer::server().removeStack(other);
  EXPECT_EQ(mediator().getStack(), stack);
  NYXStackServer::server().removeStack(*stack);
  EXPECT_EQ(mediator().getStack(), nullptr);
  EXPECT_EQ(mediator().getSlice(), nullptr);
  EXPECT_FALSE(canvas().hasSlice());
  QTest::qWait(50); // paints without a slice
}

TEST_F(ManualRegistration, SuperposesTheSlicesWithTransparencyAndInTurn)
{
  addFlatSlice(*stack, 64, 60);
  addFlatSlice(*stack, 64, 160);
  stack->getSlice(1)->setRegistration(Registration(10, 0, 0));
  show();
  mediator().setScale(4);
  const auto levelAt = [&](int column) // of the slice before, in the middle of the height
  {
    const QPoint place = canvas().backgroundToCanvas().map(QPointF(column, 32)).toPoint();
    return qGray(canvas().grabFramebuffer().pixel(place));
  };
  canvas().setTransparency(75);
  EXPECT_NEAR(levelAt(5), 60, 2); // left of the slice that was moved to the right
  EXPECT_NEAR(levelAt(50), 85, 2);
  EXPECT_NEAR(levelAt(70), 0.25 * 160 + 0.75 * 128, 3); // beyond the slice before: on dark grey
  part<QSlider>("transparency").setValue(0);
  EXPECT_NEAR(levelAt(50), 160, 2);
  EXPECT_EQ(qAlpha(canvas().getTransparencyMap()[7]), 255);
  canvas().setShownSlices(NYXShownSlices::Background);
  EXPECT_NEAR(levelAt(50), 60, 2);
  action("flicker").trigger();
  EXPECT_EQ(canvas().getShownSlices(), NYXShownSlices::Foreground);
  EXPECT_NEAR(levelAt(50), 160, 2);
  EXPECT_TRUE(QTest::qWaitFor([&] { return canvas().getShownSlices() == NYXShownSlices::Background; }));
  action("flicker").trigger();
  EXPECT_EQ(canvas().getShownSlices(), NYXShownSlices::Both);
  canvas().setLevels(0.5F, 1);
  EXPECT_NEAR(levelAt(5), 0, 2);
}

TEST_F(ManualRegistration, TellsThatTheImageOfThePreviousSliceIsMissing)
{
  addFlatSlice(*stack, 64, 0);
  addFlatSlice(*stack, 64, 0);
  addFlatSlice(*stack, 64, 0);
  stack->getSlice(1)->setImageSource(ImageSourceFile("missing.tif"));
  stack->setLastRegisteredSlice("slice 2");
  window->setStack(stack);
  window->show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
  const auto& previous = canvas().getPreviousProxy();
  ASSERT_TRUE(QTest::qWaitFor([&] { return !previous.problem().isEmpty() && canvas().getImageProxy().hasImage(); }));
  const QColor band = canvas().palette().color(QPalette::Window);
  EXPECT_EQ(canvas().grabFramebuffer().pixelColor(canvas().width() / 2, 18), band); // behind the text
}

TEST_F(ManualRegistration, NarrowWindowsHavePlaceForTheHint)
{
  open(2);
  window->resize(640, 480);
  QTest::qWait(50);
  const auto& hint = part<QLabel>("hint");
  EXPECT_GE(hint.width(), hint.fontMetrics().horizontalAdvance(hint.text()));
}

TEST_F(ManualRegistration, DrawsTheItemsOfBothSlicesWhereTheyAreSeen)
{
  addFlatSlice(*stack, 64, 0);
  addFlatSlice(*stack, 64, 0);
  Model& model = addModel(*stack, "outline", MPrimitive::Polygon);
  model.getItemProperties().setColor({255, 0, 0});
  addItem(model, *stack->getSlice(0), {{10, 10}, {30, 10}, {30, 30}, {10, 30}});
  addItem(model, *stack->getSlice(1), {{40, 40}, {50, 40}, {50, 50}, {40, 50}});
  stack->getSlice(1)->setRegistration(Registration(0, 0, 90));
  show();
  mediator().setScale(4);
  const auto rednessAt = [&](const QPointF& position)
  { return qRed(canvas().grabFramebuffer().pixel(canvas().backgroundToCanvas().map(position).toPoint())); };
  EXPECT_GT(rednessAt({20, 10}), 100); // of the slice before, where it is drawn
  // (45, 40) lies (13, 8) from the centre; turned clockwise by 90 degrees (-8, 13).
  EXPECT_GT(rednessAt({24, 45}), 150);
  EXPECT_LT(rednessAt({45, 40}), 50);
  EXPECT_EQ(canvas().imagePixelAt(canvas().backgroundToCanvas().map(QPointF(24, 45)).toPoint()), QPoint(45, 40));
}

TEST_F(ManualRegistration, RemembersItsPlaceAndSize)
{
  open(2);
  window->move(35, 45);
  window->resize(820, 510);
  QTest::qWait(50);
  const NYXRegistrationWindow again;
  EXPECT_EQ(again.pos(), window->pos());
  EXPECT_EQ(again.size(), QSize(820, 510));
}
