// A user who clicks at random in windows and dialogs: what is saved follows undo and redo, and all windows show it.
#include "app/core/actions/nyxitemcreationaction.h"
#include "app/core/nyxstack.h"
#include "app/nyxrootwindow.h"
#include "app/nyxstackio.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "random_user.h"
#include "tests/support/stackfiles.h"
#include "window_test_support.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QListWidget>

#include <regex>

namespace
{
class RandomSession : public testing::TestWithParam<unsigned int>
{
protected:
  RandomSession() : _user(GetParam(), _folder.getPath()), _stack(open()) {}

  ~RandomSession() override
  {
    for (NYXRootWindow* window : windows())
      if (window != &_test.window()) delete window;
  }

  NYXStack& stack() { return _stack; }

  void act()
  {
    static const QStringList names = {"Undo",
                                      "Undo",
                                      "Undo",
                                      "Redo",
                                      "Redo",
                                      "Move slice up",
                                      "Move slice down",
                                      "Delete slice",
                                      "Insert slice...",
                                      "Select next slice",
                                      "New window",
                                      "Close window",
                                      "Save stack",
                                      "Edit models...",
                                      "Edit models...",
                                      "Stack properties...",
                                      "Slice properties...",
                                      "Annotate stack...",
                                      "Annotate slice...",
                                      "Filter models...",
                                      "Select first slice",
                                      "Select last slice",
                                      "draw",
                                      "draw",
                                      "filter slices"};
    NYXRootWindow& used = *windows()[below(windows().size())];
    const QString name = names[below(names.size())];
    if (name == "draw") return draw(used);
    if (name == "filter slices") return used.findChild<QLineEdit*>("sliceFilter")->setText(below(2) == 0 ? "" : "1");
    if (name == "Close window" && &used == &_test.window()) return; // which would quit
    inDialogs([this](QDialog& dialog) { _user.useDialog(dialog); }, [&] { used.findChild<QAction*>(name)->trigger(); });
    if (name == "Save stack" && !stack().isModified()) _saved = state();
    QApplication::processEvents();
  }

  /// The file that the stack gives, without the slice drawn on last, which undo on slices in turn does not bring back.
  std::string state()
  {
    return std::regex_replace(textOf(stack(), _folder), std::regex("LASTSEGMENTEDSLICE[^\n]*"), "");
  }
  const std::string& saved() const { return _saved; }

  void expectWindowsShowTheStack()
  {
    for (const NYXRootWindow* window : windows())
    {
      const auto* const list = window->findChild<QListWidget*>("sliceList");
      ASSERT_EQ(list->count(), stack().getNumSlices());
      for (int i = 0; i < list->count(); ++i)
        ASSERT_EQ(list->item(i)->text().toStdString(), stack().getSlice(i)->getName());
      ASSERT_EQ(window->windowTitle(), "Mirelo - " + stack().displayName());
    }
  }

  /// From slice to slice, until nothing is left to be undone or made again.
  void goToTheEnd(bool (NYXStackHistories::*isPossible)(const StackSlice*),
                  void (NYXStackHistories::*go)(const StackSlice*))
  {
    NYXStackHistories& histories = stack().histories();
    for (bool hasGone = true; hasGone;)
    {
      hasGone = false;
      for (int i = -1; i < stack().getNumSlices(); ++i)
        while (i < stack().getNumSlices() && (histories.*isPossible)(i < 0 ? nullptr : stack().getSlice(i)))
        {
          (histories.*go)(i < 0 ? nullptr : stack().getSlice(i));
          hasGone = true;
        }
    }
  }

private:
  NYXStack& open() { return *NYXStackIO(&_test.window()).openStack(copyExample(_folder)); }

  int below(int n) { return _user.below(n); }

  static QList<NYXRootWindow*> windows()
  {
    QList<NYXRootWindow*> windows;
    for (QWidget* widget : QApplication::topLevelWidgets())
      if (auto* const window = qobject_cast<NYXRootWindow*>(widget); window && window->isVisible())
        windows.append(window);
    return windows;
  }

  void draw(const NYXRootWindow& window)
  {
    const int row = window.findChild<QListWidget*>("sliceList")->currentRow();
    if (row < 0 || stack().getNumModels() == 0) return;
    StackSlice& slice = *stack().getSlice(row);
    Model& model = *stack().getModel(below(stack().getNumModels()));
    if (model.getGeometry() == MPrimitive::Region) return;
    auto item = std::make_unique<ModelItem>(&model, &slice);
    for (int i = 0; i < 4; ++i) item->appendVertex(Vector<int>{below(200), below(200)});
    stack().sliceHistory(slice).pushStep(std::make_unique<NYXItemCreationAction>(std::move(item)));
  }

  WindowTest _test;
  TemporaryFolder _folder;
  RandomUser _user;
  NYXStack& _stack;
  std::string _saved = state();
};

TEST_P(RandomSession, IsUndoneAndMadeAgain)
{
  const std::string first = state();
  for (int i = 0; i < 80 && !HasFatalFailure(); ++i)
  {
    act();
    expectWindowsShowTheStack();
    ASSERT_TRUE(stack().isModified() || state() == saved()) << "after " << i << " actions";
  }
  goToTheEnd(&NYXStackHistories::isRedoable, &NYXStackHistories::redo);
  const std::string last = state();
  EXPECT_NE(last, first);
  goToTheEnd(&NYXStackHistories::isUndoable, &NYXStackHistories::undo);
  EXPECT_EQ(state(), first);
  goToTheEnd(&NYXStackHistories::isRedoable, &NYXStackHistories::redo);
  EXPECT_EQ(state(), last);
  expectWindowsShowTheStack();
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomSession, testing::Range(0U, 3U));
} // namespace
