// The properties of what is selected on a slice, and the window while a tool works on the slice.
#include "dialog_test_support.h"
#include "window_test_support.h"

#include "app/nyxitempropertiesdialog.h"
#include "app/nyxnumberbox.h"
#include "app/nyxrootsliceeditwidget.h"
#include "app/nyxrootwindow.h"
#include "slice/nyxsliceeditwidget.h"
#include "slice/nyxsliceeditwidgetmediator.h"

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QListWidget>

namespace
{
class ItemProperties : public DialogTest
{
protected:
  ItemProperties() : slice(*stack.getSlice(0))
  {
    for (int i = 0; i < 2; ++i) slice.getItem(i)->getSelection().set(true);
    slice.getItem(0)->getProperties().setLineWidth(4);
    slice.getItem(0)->getModel()->getItemProperties().setLineWidth(2);
    before = file();
  }
  static Qt::CheckState own(const QDialog& dialog, const char* name)
  {
    return find<QCheckBox>(dialog, name).checkState();
  }

  StackSlice& slice;
};
} // namespace

TEST_F(ItemProperties, AreThoseOfTheModelUnlessTheyAreTheItemsOwn)
{
  NYXItemPropertiesDialog dialog(stack, slice);
  dialog.show();
  EXPECT_EQ(own(dialog, "itemLineWidthOwn"), Qt::PartiallyChecked);
  EXPECT_FALSE(find<NYXNumberBox>(dialog, "itemLineWidth").hasNumber()); // 4 and 2
  EXPECT_EQ(own(dialog, "itemPointSizeOwn"), Qt::Unchecked);

  type(dialog, "itemPointSize", "7");
  EXPECT_EQ(own(dialog, "itemPointSizeOwn"), Qt::Checked);
  find<QCheckBox>(dialog, "itemHidden3D").click();
  press(dialog, "applyButton");
  for (int i = 0; i < 2; ++i)
  {
    const ModelItemProperties& properties = slice.getItem(i)->getProperties();
    EXPECT_EQ(properties.getPointSize(), 7);
    EXPECT_FALSE(properties.getRenderingVisibility());
    EXPECT_FALSE(properties.definesColor());
    EXPECT_EQ(properties.definesLineWidth(), i == 0) << "was not touched";
  }
  EXPECT_FALSE(slice.getItem(2)->getProperties().definesAny()) << "is not selected";

  find<QCheckBox>(dialog, "itemLineWidthOwn").click(); // what each item shows becomes its own
  press(dialog, "applyButton");
  EXPECT_EQ(slice.getItem(0)->getProperties().getLineWidth(), 4);
  EXPECT_TRUE(slice.getItem(1)->getProperties().definesLineWidth());
  EXPECT_EQ(slice.getItem(1)->getProperties().getLineWidth(), 2);

  find<QCheckBox>(dialog, "itemPointSizeOwn").click();
  find<QCheckBox>(dialog, "itemHidden3DOwn").click();
  find<QCheckBox>(dialog, "itemLineWidthOwn").click();
  press(dialog, "okButton");
  for (int i = 0; i < 2; ++i) EXPECT_FALSE(slice.getItem(i)->getProperties().definesAny());

  NYXActionHistory& history = stack.sliceHistory(slice);
  ASSERT_EQ(history.getUndoListSize(), 3);
  for (int i = 0; i < 3; ++i) history.undo();
  EXPECT_EQ(file(), before);
}

TEST_F(ItemProperties, GoWithTheirSelectionAndSlice)
{
  NYXItemPropertiesDialog dialog(stack, slice);
  dialog.show();
  press(dialog, "applyButton");
  EXPECT_EQ(stack.sliceHistory(slice).getUndoListSize(), 0);
  for (ModelItem* item : slice.getSelectedItems()) item->removeSelection();
  stack.notifyEvent(NYXModelItemSelectEvent(*slice.getItem(0)));
  QTest::qWait(1);
  EXPECT_FALSE(find<QPushButton>(dialog, "okButton").isEnabled());
  NYXStackServer::server().removeStack(stack);
  EXPECT_FALSE(dialog.isVisible());
}

TEST(SliceEditor, KeepsTheSliceWhileAToolIsAtWork)
{
  WindowTest test;
  test.window().show();
  const TemporaryFolder folder;
  NYXStack& stack = addStack("cells", "", false);
  for (int i = 0; i < 3; ++i) addSlice(stack, 100, 80);
  addModel(stack, "cells", MPrimitive::Polygon);
  test.window().findChild<QListWidget*>("stackList")->setCurrentRow(-1);
  test.window().findChild<QListWidget*>("stackList")->setCurrentRow(0);
  auto& sliceList = *test.window().findChild<QListWidget*>("sliceList");
  sliceList.setCurrentRow(1);
  NYXSliceEditWidgetMediator& editor = test.window().findChild<NYXRootSliceEditWidget*>()->sliceWidget().editMediator();
  const auto isFree = [&]
  {
    for (const char* name : {"Select next slice", "Select first slice", "Display stack panorama", "Open stack"})
      if (!test.action(name)->isEnabled()) return false;
    return sliceList.isEnabled();
  };
  EXPECT_TRUE(isFree());
  test.action("Draw")->trigger();
  EXPECT_FALSE(isFree());
  EXPECT_EQ(test.action("Select next slice")->toolTip(), "Finish or cancel the tool at work first");
  EXPECT_TRUE(test.window().findChild<QLabel*>("hint")->text().startsWith("cells: click or drag to add vertices"));
  stack.setName("other"); // nothing that ends the drawing
  stack.notifyEvent(NYXStackNameEvent(stack));
  EXPECT_NE(editor.activeTool(), nullptr);
  test.action("Cancel")->trigger();
  EXPECT_TRUE(isFree());
  EXPECT_EQ(sliceList.currentRow(), 1);
  NYXStackServer::server().removeStack(stack);
}
