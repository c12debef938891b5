// The dialogs of stacks and slices: properties and annotations.
#include "dialog_test_support.h"

#include "app/core/actions/nyxsliceinsertiondeletionaction.h"
#include "app/core/actions/nyxstackpropertiesaction.h"
#include "app/nyxannotationdialog.h"
#include "app/nyxcalibrationeditor.h"
#include "app/nyxnumberbox.h"
#include "app/nyxslicepropertiesdialog.h"
#include "app/nyxslicepropertieseditor.h"
#include "app/nyxstackpropertiesdialog.h"
#include "numeric/exception.h"
#include "slice/image/nyxdecimalbox.h"
#include "slice/image/nyxintegerbox.h"
#include "tests/support/tifffiles.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>

namespace
{
constexpr int nanometer = -9;

class PropertiesDialogs : public DialogTest
{
protected:
  static double number(const QDialog& dialog, const char* name) { return find<NYXNumberBox>(dialog, name).getNumber(); }

  static void chooseUnit(const QDialog& dialog, int scale)
  {
    choose(dialog, "lengthUnit", find<QComboBox>(dialog, "lengthUnit").findData(scale));
  }
};

TEST_F(PropertiesDialogs, NumbersThatAreNotTouchedStayExact)
{
  stack.setDefaultRelativePosition(1.23456789f); // more digits than are shown
  stack.setDefaultSliceThickness(1e-7f);
  NYXStackPropertiesDialog dialog(stack);
  dialog.show();
  type(dialog, "stackName", "rat");
  press(dialog, "okButton");
  EXPECT_EQ(stack.getName(), "rat");
  EXPECT_EQ(stack.getDefaultRelativePosition(), 1.23456789f);
  EXPECT_EQ(stack.getDefaultSliceThickness(), 1e-7f);
}

TEST_F(PropertiesDialogs, PixelSizesStayConsistent)
{
  const struct
  {
    const char* box;
    const char* typed;
    double width, height, aspectRatio;
  } cases[] = {{"pixelWidth", "2", 2, 2, 1},   {"pixelHeight", "3", 2, 3, 1.5}, {"aspectRatio", "0.5", 2, 1, 0.5},
               {"pixelWidth", "4", 4, 2, 0.5}, {"pixelWidth", "0", 4, 2, 0.5},  {"pixelHeight", "-1", 4, 2, 0.5}};
  NYXStackPropertiesDialog dialog(stack);
  dialog.show();
  for (const auto& c : cases)
  {
    SCOPED_TRACE(std::string(c.box) + " " + c.typed);
    type(dialog, c.box, c.typed);
    EXPECT_EQ(number(dialog, "pixelWidth"), c.width);
    EXPECT_EQ(number(dialog, "pixelHeight"), c.height);
    EXPECT_EQ(number(dialog, "aspectRatio"), c.aspectRatio);
  }
  press(dialog, "okButton");
  EXPECT_EQ(stack.getDefaultPixelCalibration().getPixelWidth(), 4);
  EXPECT_EQ(stack.getDefaultPixelCalibration().getAspectRatio(), 0.5f);
  expectOneStep();
}

TEST_F(PropertiesDialogs, CalibrationGoesToAllSlicesOrNone)
{
  NYXStackPropertiesDialog dialog(stack);
  dialog.show();
  EXPECT_TRUE(find<QCheckBox>(dialog, "applyToAllSlices").isChecked()); // all have that of the stack
  type(dialog, "pixelWidth", "0.5");
  press(dialog, "applyButton");
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(stack.getSlice(i)->getPixelCalibration(), stack.getDefaultPixelCalibration()) << i;
  EXPECT_EQ(stack.getSlice(2)->getPixelCalibration().getPixelHeight(), 0.5f);
  expectOneStep();

  find<QCheckBox>(dialog, "applyToAllSlices").click();
  type(dialog, "pixelWidth", "0.75");
  press(dialog, "applyButton");
  EXPECT_EQ(stack.getDefaultPixelCalibration().getPixelWidth(), 0.75f);
  EXPECT_EQ(stack.getSlice(1)->getPixelCalibration().getPixelWidth(), 0.5f);
}

TEST_F(PropertiesDialogs, LengthUnitConvertsOrNot)
{
  stack.getSlice(1)->setRelativePosition(3);
  before = file();
  {
    NYXStackPropertiesDialog dialog(stack);
    dialog.show();
    EXPECT_FALSE(isEnabled(dialog, "convertLengths"));
    chooseUnit(dialog, nanometer);
    EXPECT_EQ(number(dialog, "pixelWidth"), 325);
    EXPECT_EQ(number(dialog, "sliceSpacing"), 2000);
    find<QRadioButton>(dialog, "changeUnitOnly").click();
    EXPECT_NEAR(number(dialog, "pixelWidth"), 0.325, 1e-7);
    EXPECT_EQ(number(dialog, "sliceSpacing"), 2);
    press(dialog, "okButton");
  }
  EXPECT_EQ(stack.getLengthUnit(), LengthUnit(nanometer));
  EXPECT_EQ(stack.getSlice(1)->getPixelCalibration().getLengthUnit(), LengthUnit(nanometer));
  EXPECT_EQ(stack.getDefaultPixelCalibration().getPixelWidth(), 0.325f);
  EXPECT_EQ(stack.getSlice(1)->getRelativePosition(), 3);
  expectOneStep();
  stack.history().undo();
  stack.history().clear();

  NYXStackPropertiesDialog dialog(stack);
  dialog.show();
  type(dialog, "sliceSpacing", "2.5");
  chooseUnit(dialog, nanometer); // also what was typed
  press(dialog, "okButton");
  EXPECT_EQ(stack.getLengthUnit(), LengthUnit(nanometer));
  EXPECT_EQ(stack.getDefaultRelativePosition(), 2500);
  EXPECT_EQ(stack.getDefaultPixelCalibration().getPixelWidth(), 325);
  EXPECT_EQ(stack.getSlice(1)->getRelativePosition(), 3000);
  EXPECT_EQ(stack.getSlice(2)->getPixelCalibration(), stack.getDefaultPixelCalibration());
  expectOneStep();
}

TEST_F(PropertiesDialogs, CalibrationsThatNoFileCanHoldAreRefused)
{
  NYXStackPropertiesDialog ofStack(stack);
  ofStack.show();
  chooseUnit(ofStack, 18); // of micrometers in exameters
  press(ofStack, "okButton");
  EXPECT_TRUE(ofStack.isVisible());
  EXPECT_THAT(find<QLabel>(ofStack, "message").text().toStdString(), testing::HasSubstr("cannot be saved"));
  NYXSlicePropertiesDialog ofSlice(stack, {stack.getSlice(0)});
  ofSlice.show();
  if (find<QCheckBox>(ofSlice, "calibrationAsStack").isChecked())
    find<QCheckBox>(ofSlice, "calibrationAsStack").click();
  type(ofSlice, "pixelWidth", "1e-9");
  type(ofSlice, "pixelHeight", "1e9"); // each of them could be, but not the aspect ratio
  press(ofSlice, "okButton");
  EXPECT_TRUE(ofSlice.isVisible());
  EXPECT_THAT(find<QLabel>(ofSlice, "message").text().toStdString(), testing::HasSubstr("cannot be saved"));
  expectNoStep();
}

TEST_F(PropertiesDialogs, OtherPropertiesOfAStack)
{
  NYXStackPropertiesDialog dialog(stack);
  dialog.show();
  EXPECT_EQ(find<QLabel>(dialog, "stackInformation").text(),
            QString::fromUtf8("3; size of the first image: 100 × 80 px"));
  type(dialog, "sliceSpacing", "-1.5");
  type(dialog, "sliceThickness", "0.08");
  type(dialog, "imagesPath", "/data/images");
  find<QCheckBox>(dialog, "invertZAxis").click();
  find<QCheckBox>(dialog, "absoluteImagesPath").click();
  QTest::keyClick(&dialog, Qt::Key_Escape);
  expectNoStep();
  dialog.show();
  press(dialog, "okButton");
  EXPECT_EQ(stack.getDefaultRelativePosition(), -1.5f);
  EXPECT_EQ(stack.getDefaultSliceThickness(), 0.08f);
  EXPECT_EQ(stack.getImagesPath(), "/data/images");
  EXPECT_TRUE(stack.getInvertZAxis());
  EXPECT_TRUE(stack.getAbsoluteImagesPathPolicy());
  expectOneStep();
}

TEST_F(PropertiesDialogs, FollowTheStackUnlessTheUserHasChangedAField)
{
  NYXStackPropertiesDialog dialog(stack);
  dialog.show();
  type(dialog, "stackName", "mine");
  NYXStackProperties properties(stack);
  properties.name = "theirs";
  properties.defaultRelativePosition = 9;
  stack.history().pushStep(std::make_unique<NYXStackPropertiesAction>(stack, properties));
  QCoreApplication::processEvents();
  EXPECT_EQ(find<QLineEdit>(dialog, "stackName").text(), "mine");
  EXPECT_EQ(number(dialog, "sliceSpacing"), 9);
  press(dialog, "okButton");
  EXPECT_EQ(stack.getName(), "mine");
  EXPECT_EQ(stack.getDefaultRelativePosition(), 9);
}

TEST_F(PropertiesDialogs, NamesOfSlicesAreUnique)
{
  NYXSlicePropertiesDialog dialog(stack, {stack.getSlice(1)});
  dialog.show();
  for (const char* refused : {"slice 2", "", "a__NL__b"})
  {
    type(dialog, "sliceName", refused);
    EXPECT_FALSE(isEnabled(dialog, "okButton")) << refused;
  }
  type(dialog, "sliceName", "slice 1"); // its own
  EXPECT_TRUE(isEnabled(dialog, "okButton"));
  type(dialog, "sliceName", "section 7");
  press(dialog, "okButton");
  EXPECT_EQ(stack.getSlice(1)->getName(), "section 7");
  expectOneStep();
}

TEST_F(PropertiesDialogs, PositionOfASlice)
{
  const struct
  {
    int position;
    const char* typed; // nullptr: nothing
    const char* shown;
    double relative, absolute;
  } cases[] = {
      {2, nullptr, "4 µm", 2, 4},    {1, nullptr, "4 µm", 2, 4}, {1, "7", "9 µm", 7, 9},     {2, "12", "12 µm", 10, 12},
      {1, nullptr, "12 µm", 10, 12}, {2, "-3", "-3 µm", -5, -3}, {0, nullptr, "4 µm", 2, 4},
  };
  NYXSlicePropertiesDialog dialog(stack, {stack.getSlice(2)});
  dialog.show();
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.shown);
    choose(dialog, "slicePosition", c.position);
    EXPECT_EQ(isEnabled(dialog, "sliceDepth"), c.position > 0);
    if (c.typed) type(dialog, "sliceDepth", c.typed);
    EXPECT_EQ(find<QLabel>(dialog, "resultingDepth").text(), QString::fromUtf8(c.shown));
    press(dialog, "applyButton");
    EXPECT_EQ(stack.getSlice(2)->getRelativePosition(), c.relative);
    EXPECT_EQ(stack.getSlice(2)->getAbsolutePosition(), c.absolute);
    EXPECT_EQ(stack.getSlice(2)->useRelativePosition(), c.position < 2);
  }
  EXPECT_EQ(file(), before);
}

TEST_F(PropertiesDialogs, SeveralSlices)
{
  stack.getSlice(1)->setRelativePosition(5); // depths 0, 5, 7
  stack.getSlice(2)->setThickness(1);
  before = file();
  NYXSlicePropertiesDialog dialog(stack, {stack.getSlice(1), stack.getSlice(2)});
  dialog.show();
  EXPECT_FALSE(isEnabled(dialog, "sliceName"));
  EXPECT_FALSE(find<NYXNumberBox>(dialog, "thickness").hasNumber());
  EXPECT_EQ(find<QComboBox>(dialog, "slicePosition").currentIndex(), -1);
  choose(dialog, "slicePosition", 2);
  EXPECT_FALSE(find<NYXNumberBox>(dialog, "sliceDepth").hasNumber());
  find<QCheckBox>(dialog, "calibrationAsStack").click();
  type(dialog, "pixelWidth", "3");
  press(dialog, "okButton");
  EXPECT_FALSE(stack.getSlice(1)->useRelativePosition());
  EXPECT_EQ(stack.getSlice(1)->getAbsolutePosition(), 5);
  EXPECT_EQ(stack.getSlice(2)->getAbsolutePosition(), 7);
  EXPECT_EQ(stack.getSlice(1)->getThickness(), 0);
  EXPECT_EQ(stack.getSlice(2)->getThickness(), 1);
  EXPECT_EQ(stack.getSlice(2)->getPixelCalibration().getPixelHeight(), 3);
  expectOneStep();

  NYXSlicePropertiesDialog back(stack, {stack.getSlice(0), stack.getSlice(2)});
  back.show();
  EXPECT_FALSE(find<NYXNumberBox>(back, "pixelWidth").hasNumber());
  find<QCheckBox>(back, "calibrationAsStack").click();
  press(back, "okButton");
  EXPECT_EQ(stack.getSlice(2)->getPixelCalibration(), stack.getDefaultPixelCalibration());
  EXPECT_EQ(stack.getSlice(1)->getPixelCalibration().getPixelHeight(), 3);
}

TEST_F(PropertiesDialogs, ImageOfASlice)
{
  TiffRecipe{.width = 100, .height = 80}.write(folder.file("fits.tif"));
  TiffRecipe{.width = 99, .height = 80}.write(folder.file("small.tif"));
  NYXSlicePropertiesDialog dialog(stack, {stack.getSlice(1)});
  dialog.show();
  auto& editor = find<NYXSlicePropertiesEditor>(dialog, "slicePropertiesEditor");
  EXPECT_THROW(editor.setImageFile(QString::fromStdString(folder.file("small.tif"))), ValueError);
  EXPECT_THROW(editor.setImageFile(QString::fromStdString(folder.file("none.tif"))), FileError);
  EXPECT_FALSE(isEnabled(dialog, "applyButton"));
  editor.setImageFile(QString::fromStdString(folder.file("fits.tif")));
  press(dialog, "okButton");
  EXPECT_EQ(static_cast<const ImageSourceFile*>(stack.getSlice(1)->getImageSource())->getFilename(),
            folder.file("fits.tif"));
  expectOneStep();
}

TEST_F(PropertiesDialogs, CloseWithTheirSlicesAndStack)
{
  NYXSlicePropertiesDialog slices(stack, {stack.getSlice(0), stack.getSlice(1)});
  NYXAnnotationDialog note(stack, *stack.getSlice(1));
  NYXStackPropertiesDialog properties(stack);
  for (NYXStackDialog* dialog : {static_cast<NYXStackDialog*>(&slices), static_cast<NYXStackDialog*>(&note),
                                 static_cast<NYXStackDialog*>(&properties)})
    dialog->show();
  stack.history().pushStep(std::make_unique<NYXSliceInsertionDeletionAction>(*stack.getSlice(1)));
  QCoreApplication::processEvents();
  EXPECT_TRUE(slices.isVisible());
  EXPECT_FALSE(note.isVisible());
  EXPECT_EQ(find<QLineEdit>(slices, "sliceName").text(), "slice 0");
  stack.history().pushStep(std::make_unique<NYXSliceInsertionDeletionAction>(*stack.getSlice(0)));
  EXPECT_FALSE(slices.isVisible());
  NYXStackServer::server().removeStack(stack);
  EXPECT_FALSE(properties.isVisible());
  EXPECT_FALSE(properties.apply());
}

TEST_F(PropertiesDialogs, AnnotationsOfStackAndSlice)
{
  {
    NYXAnnotationDialog dialog(stack);
    dialog.show();
    find<QPlainTextEdit>(dialog, "annotation").setPlainText("fixed;\n\"stained\" # 3");
    press(dialog, "okButton");
    EXPECT_EQ(stack.getAnnotation(), "fixed;\n\"stained\" # 3");
    expectOneStep();
  }
  stack.history().clear();
  before = file();
  NYXAnnotationDialog dialog(stack, *stack.getSlice(2));
  dialog.show();
  auto& text = find<QPlainTextEdit>(dialog, "annotation");
  for (const char* refused : {"__SC__", "a\tb"})
  {
    text.setPlainText(refused);
    EXPECT_FALSE(isEnabled(dialog, "okButton")) << refused;
  }
  text.setPlainText("fold at the left");
  press(dialog, "applyButton");
  EXPECT_TRUE(dialog.isVisible());
  EXPECT_EQ(stack.getSlice(2)->getAnnotation(), "fold at the left");
  expectOneStep();
  text.setPlainText("other");
  press(dialog, "cancelButton");
  EXPECT_EQ(stack.getSlice(2)->getAnnotation(), "fold at the left");
}

TEST(NumberBox, StepsByTheSecondDigitAndShowsWhatCounts)
{
  const struct
  {
    double number;
    const char* shown;
    double next;
  } cases[] = {{0, "0", 0.1},           {1, "1", 1.1},           {0.325f, "0.325", 0.33},          {1200, "1200", 1300},
               {99, "99", 100},         {1e-6, "1e-06", 1.1e-6}, {12345678, "12345678", 13000000}, {-2.5, "-2.5", -2.4},
               {-1e-6, "-1e-06", -9e-7}};
  QLocale::setDefault(QLocale::c());
  for (const auto& c : cases)
  {
    NYXNumberBox box;
    box.setRange(-1e15, 1e15);
    box.setNumber(c.number);
    EXPECT_EQ(box.text(), c.shown);
    EXPECT_EQ(box.getNumber(), c.number);
    box.stepBy(1);
    EXPECT_NEAR(box.getNumber(), c.next, 1e-12 + 1e-9 * std::abs(c.next)) << c.shown;
  }
}

TEST(NumberBox, TakesPointAndCommaForDecimalSignsInEachLanguage)
{
  const struct
  {
    QLocale locale;
    const char* typed;
    double number;
  } cases[] = {{QLocale::German, "1.234", 1.234},    {QLocale::German, "1,234", 1.234},
               {QLocale::German, "1.234,5", 1.2345}, // the second sign is not taken
               {QLocale::French, "1.234", 1.234},    {QLocale::English, "1.234", 1.234},
               {QLocale::English, "1,5", 1.5},       {QLocale::English, "nan", 7},
               {QLocale::English, "inf", 7},         {QLocale::English, "1e3", 1000}};
  for (const auto& c : cases)
  {
    NYXNumberBox box;
    box.setLocale(c.locale);
    box.setRange(-1e15, 1e15);
    box.setUnit("mm");
    box.setNumber(7);
    box.selectAll();
    QTest::keyClicks(&box, c.typed);
    EXPECT_EQ(box.getNumber(), c.number) << c.locale.name().toStdString() << " " << c.typed;
  }
}

TEST(NumberBox, TakesNoSignBetweenGroupsOfDigits)
{
  const struct
  {
    const char* typed;
    double number; // of a box with two decimals, which held 7
    int whole;     // of a box of whole numbers, which held 7
  } cases[] = {{"4.5", 4.5, 4},      {"4,5", 4.5, 4}, {"-1200.5", -1200.5, -1200},
               {"1.234,5", 1.23, 1}, {"1.000", 1, 1}, {"9,99", 9.99, 9},
               {"12", 12, 12},       {"", 7, 7}};
  for (const QLocale& locale : {QLocale(QLocale::German), QLocale(QLocale::French), QLocale(QLocale::English)})
    for (const auto& c : cases)
    {
      SCOPED_TRACE(locale.name().toStdString() + " " + c.typed);
      NYXDecimalBox fixed;
      NYXIntegerBox whole;
      NYXNumberBox number;
      number.setDecimals(0);
      fixed.setSuffix(" %");
      const auto type = [&](auto& box)
      {
        box.setLocale(locale);
        box.setRange(-100000, 100000);
        box.setValue(7);
        box.selectAll();
        QTest::keyClick(&box, Qt::Key_Delete);
        QTest::keyClicks(&box, c.typed);
        QTest::keyClick(&box, Qt::Key_Return);
        return box.cleanText();
      };
      number.setRange(-100000, 100000);
      number.setNumber(7);
      EXPECT_EQ(locale.toDouble(type(fixed)), c.number);
      EXPECT_EQ(fixed.value(), c.number);
      EXPECT_EQ(type(whole), QString::number(c.whole));
      EXPECT_EQ(whole.value(), c.whole);
      const QString shown = type(number);
      EXPECT_EQ(shown, QString::number(number.getNumber())) << "what is shown is what counts";
    }
}
} // namespace
