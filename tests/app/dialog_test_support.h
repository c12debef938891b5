#pragma once

#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxstackdialog.h"
#include "tests/support/stackfiles.h"
#include "tests/support/stacks.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QPushButton>
#include <QSettings>
#include <QTest>

/// An open stack of three slices, "slice 0" to "slice 2", and four models, with settings without content.
class DialogTest : public testing::Test
{
protected:
  DialogTest() : stack(addStack("cells"))
  {
    QSettings().clear();
    stack.setDefaultRelativePosition(2);
    setDefaultPixels(stack, 0.325f);
    Model& cells = addModel(stack, "cells", MPrimitive::Polygon);
    Model& fibres = addModel(stack, "fibres", MPrimitive::Polyline);
    addModel(stack, "nuclei", MPrimitive::Polygon);
    addModel(stack, "tissue", MPrimitive::Region);
    for (int i = 0; i < 6; ++i)
      addItem(cells, *stack.getSlice(i % 3), {{0, 0}, {10 * i + 10, 0}, {10 * i + 10, 10}, {0, 10}});
    addItem(fibres, *stack.getSlice(0), {{1, 1}, {50, 40}, {90, 70}});
    stack.setModified(false);
    before = file();
  }

  ~DialogTest() override
  {
    NYXStackServer& server = NYXStackServer::server();
    while (server.getNumStacks() > 0) server.removeStack(server.getStack(0));
  }

  /// With three slices of 100 by 80 pixels.
  static NYXStack& addStack(const std::string& name)
  {
    auto added = std::make_unique<NYXStack>();
    added->setName(name);
    added->setImagesPath("/images");
    for (int i = 0; i < 3; ++i) addSlice(*added, 100, 80);
    return NYXStackServer::server().addStack(std::move(added));
  }

  static void setDefaultPixels(Stack& stack, float size)
  {
    setPixelSize(*stack.getSlice(0), size, size);
    PixelCalibration calibration = stack.getSlice(0)->getPixelCalibration();
    calibration.setLengthUnit(stack.getLengthUnit());
    stack.setDefaultPixelCalibration(calibration);
    for (int i = 0; i < stack.getNumSlices(); ++i) stack.getSlice(i)->setPixelCalibration(calibration);
  }

  std::string file() { return textOf(stack, folder); }

  /// One step was made that changed the stack; undone and made again, it gives the very same files.
  void expectOneStep() { expectOneStep(stack, before); }
  void expectOneStep(NYXStack& changed, const std::string& old)
  {
    const std::string now = textOf(changed, folder);
    EXPECT_NE(now, old);
    ASSERT_EQ(changed.history().getUndoListSize(), 1);
    changed.history().undo();
    EXPECT_EQ(textOf(changed, folder), old);
    changed.history().redo();
    EXPECT_EQ(textOf(changed, folder), now);
  }

  void expectNoStep()
  {
    EXPECT_EQ(file(), before);
    EXPECT_EQ(stack.history().getUndoListSize(), 0);
  }

  template <class Widget> static Widget& find(const QDialog& dialog, const char* name)
  {
    auto* const widget = dialog.findChild<Widget*>(name);
    if (!widget) throw std::runtime_error(std::string("there is no ") + name);
    return *widget;
  }

  static void press(const QDialog& dialog, const char* button)
  {
    find<QPushButton>(dialog, button).click();
    QCoreApplication::processEvents();
  }

  static bool isEnabled(const QDialog& dialog, const char* name) { return find<QWidget>(dialog, name).isEnabled(); }

  /// Replaces the text of a line or of a spin box, key by key.
  static void type(const QDialog& dialog, const char* name, const QString& text)
  {
    auto& widget = find<QWidget>(dialog, name);
    QMetaObject::invokeMethod(&widget, "selectAll");
    if (text.isEmpty()) QTest::keyClick(&widget, Qt::Key_Delete);
    QTest::keyClicks(&widget, text);
    QCoreApplication::processEvents();
  }

  static void choose(const QDialog& dialog, const char* name, int index)
  {
    auto& box = find<QComboBox>(dialog, name);
    box.setCurrentIndex(index);
    emit box.activated(index);
    QCoreApplication::processEvents();
  }

  TemporaryFolder folder;
  NYXStack& stack;
  std::string before; // the file at first
};
