// A day's work at random in all windows: nothing crashes, and no memory is lost.
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxrootwindow.h"
#include "model/model.h"
#include "random_user.h"
#include "slice/nyxsliceeditwidgetcanvas.h"
#include "tests/support/stackfiles.h"
#include "window_test_support.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QMenu>
#include <QPixmapCache>
#include <QPointer>
#include <QProgressDialog>
#include <QTest>
#include <QThreadPool>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>
#if defined(__SANITIZE_ADDRESS__)
extern "C" std::size_t __sanitizer_get_current_allocated_bytes(); // GCC installs no header for it
#else
#include <malloc.h>
#endif

namespace
{
std::size_t numAllocatedBytes()
{
#if defined(__SANITIZE_ADDRESS__)
  return __sanitizer_get_current_allocated_bytes();
#else
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
#endif
}

/// Visible windows of a class.
template <class Window> QList<Window*> windowsOf()
{
  QList<Window*> windows;
  for (QWidget* widget : QApplication::topLevelWidgets())
    if (auto* const window = qobject_cast<Window*>(widget); window != nullptr && window->isVisible() &&
                                                            window->windowType() != Qt::Popup &&
                                                            window->windowType() != Qt::ToolTip)
      windows.append(window);
  return windows;
}

/// All but what may end the program.
bool mayChoose(const QAction& action)
{
  return action.isEnabled() && action.isVisible() && action.text() != "Quit" && action.text() != "Close window";
}

/// Uses every dialog and menu that comes up, and closes what stays.
class Attendant : public QObject
{
public:
  explicit Attendant(RandomUser& user) : _user(user)
  {
    connect(&_timer, &QTimer::timeout, this, &Attendant::look);
    _timer.start(interval);
  }

  static QWidget* onTop()
  {
    QWidget* const popup = QApplication::activePopupWidget();
    return popup == nullptr ? QApplication::activeModalWidget() : popup;
  }

private:
  static constexpr int interval = 5;        // milliseconds
  static constexpr int patience = 2000;     // milliseconds
  static constexpr int longRun = 10 * 1000; // milliseconds

  /// What is on top is used from the event loop, as a timer does not fire again while it is answered.
  void look()
  {
    QWidget* const top = onTop();
    const bool isNew = top != _top;
    _top = top;
    if (top == nullptr) return;
    if (isNew) _numLooks = 0;
    const bool isProgress = qobject_cast<QProgressDialog*>(top) != nullptr;
    if (isNew && !isProgress)
      QTimer::singleShot(0, top, [this, top] { use(*top); });
    else if (++_numLooks % ((isProgress ? longRun : patience) / interval) == 0)
      QTimer::singleShot(0, top, [top] { top->close(); });
  }

  void use(QWidget& top)
  {
    if (auto* const box = qobject_cast<QMessageBox*>(&top))
      pressOneOf(*box);
    else if (auto* const dialog = qobject_cast<QDialog*>(&top))
      _user.useDialog(*dialog);
    else if (auto* const menu = qobject_cast<QMenu*>(&top); menu != nullptr && !menu->actions().isEmpty())
      choose(*menu);
    else
      QTest::keyClick(top.focusWidget() == nullptr ? &top : top.focusWidget(), Qt::Key_Return);
  }

  void pressOneOf(const QMessageBox& box)
  {
    const QList<QAbstractButton*> buttons = box.buttons();
    buttons[_user.below(buttons.size())]->click();
  }

  void choose(QMenu& menu)
  {
    QAction* const action = menu.actions()[_user.below(menu.actions().size())];
    const bool isChosen = mayChoose(*action);
    if (isChosen) menu.setActiveAction(action);
    QTest::keyClick(&menu, isChosen ? Qt::Key_Return : Qt::Key_Escape);
  }

  RandomUser& _user;
  QTimer _timer;
  QPointer<QWidget> _top;
  int _numLooks = 0;
};

class Endurance : public testing::Test
{
protected:
  Endurance()
  {
    QDir::setCurrent(QString::fromStdString(_folder.getPath()));
    QPixmapCache::setCacheLimit(0); // it keeps the names of icons that are gone
  }
  ~Endurance() override
  {
    QPixmapCache::setCacheLimit(_formerCacheLimit);
    QDir::setCurrent(_formerFolder);
  }

  void open()
  {
    _test = std::make_unique<WindowTest>();
    _test->window().startupOpenStack(copyExample(_folder));
  }

  void act()
  {
    const QList<QWidget*> windows = windowsOf<QWidget>();
    QWidget& window = *windows[below(windows.size())];
    const int kind = below(20);
    if (kind < 5)
      useMouse(canvas());
    else if (kind < 8)
      draw();
    else if (kind < 11)
      pressKey(canvas());
    else if (kind < 15)
      trigger(window);
    else if (kind < 17)
      _user.changeSomething(window);
    else if (kind < 19)
      useMouseIn(window);
    else if (mayClose(window))
      window.close();
    settle();
  }

  /// Closes all stacks and windows, with what they keep.
  void close()
  {
    for (int i = 0; i < 20 && NYXStackServer::server().getNumStacks() > 0; ++i) _test->action("Close all")->trigger();
    for (QWidget* window : windowsOf<QWidget>())
      if (window != &_test->window()) window->close();
    settle();
    _test.reset();
    settle();
    QThreadPool::globalInstance()->waitForDone();
    settle();
  }

  /// Every stack can be written and read again.
  void expectWritable()
  {
    for (int i = 0; i < NYXStackServer::server().getNumStacks(); ++i)
      EXPECT_THAT(ReadStack(textOf(NYXStackServer::server().getStack(i), _folder)).log(), testing::IsEmpty());
  }

private:
  int below(int n) { return _user.below(n); }

  /// Of one of the root windows, to which the user turns: keys are shortcuts of the active window.
  QWidget& canvas()
  {
    const QList<NYXRootWindow*> roots = windowsOf<NYXRootWindow>();
    NYXRootWindow& root = *roots[below(roots.size())];
    QApplication::setActiveWindow(&root);
    return *root.findChild<NYXSliceEditWidgetCanvas*>();
  }

  QPoint placeIn(const QWidget& widget) { return {below(qMax(widget.width(), 1)), below(qMax(widget.height(), 1))}; }

  void useMouse(QWidget& widget)
  {
    const Qt::KeyboardModifier modifiers[] = {Qt::NoModifier, Qt::NoModifier, Qt::ShiftModifier, Qt::ControlModifier};
    const auto modifier = modifiers[below(4)];
    const QPoint place = placeIn(widget);
    const int kind = below(10);
    if (kind < 4) return QTest::mouseClick(&widget, Qt::LeftButton, modifier, place);
    if (kind < 5) return QTest::mouseClick(&widget, Qt::RightButton, modifier, place);
    if (kind < 6) return QTest::mouseDClick(&widget, Qt::LeftButton, modifier, place);
    if (kind < 8) return drag(widget, modifier, place);
    QWheelEvent event(place, widget.mapToGlobal(place), {}, {0, below(2) == 0 ? 120 : -120}, {}, modifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
  }

  void drag(QWidget& widget, Qt::KeyboardModifiers modifiers, const QPoint& from)
  {
    const Qt::MouseButton button = below(3) == 0 ? Qt::MiddleButton : Qt::LeftButton;
    QTest::mousePress(&widget, button, modifiers, from);
    QPoint to = from;
    for (int i = below(6); i >= 0; --i)
    {
      to = placeIn(widget);
      QMouseEvent event(QEvent::MouseMove, to, widget.mapToGlobal(to), Qt::NoButton, button, modifiers);
      QApplication::sendEvent(&widget, &event);
    }
    QTest::mouseRelease(&widget, button, modifiers, to);
  }

  /// An item of one of the models.
  void draw()
  {
    QWidget& used = canvas();
    QTest::keyClick(&used, Qt::Key_F7); // leaves the panorama
    QTest::keyClick(&used, static_cast<Qt::Key>(Qt::Key_1 + below(4)));
    QTest::keyClick(&used, Qt::Key_D);
    for (int i = below(6); i >= 0; --i) QTest::mouseClick(&used, Qt::LeftButton, {}, placeIn(used));
    QTest::keyClick(&used, below(8) == 0 ? Qt::Key_Escape : Qt::Key_Return);
  }

  void pressKey(QWidget& widget)
  {
    static const QStringList keys = {"D",
                                     "A",
                                     "E",
                                     "S",
                                     "R",
                                     "P",
                                     "1",
                                     "2",
                                     "3",
                                     "[",
                                     "]",
                                     "Esc",
                                     "Return",
                                     "Del",
                                     "Tab",
                                     "Space",
                                     "Left",
                                     "Right",
                                     "Up",
                                     "Down",
                                     "PgUp",
                                     "PgDown",
                                     "Home",
                                     "End",
                                     "F6",
                                     "F7",
                                     "F8",
                                     "Ctrl+A",
                                     "Ctrl+C",
                                     "Ctrl+V",
                                     "Ctrl+Z",
                                     "Ctrl+Z",
                                     "Ctrl+Shift+Z",
                                     "Ctrl+S",
                                     "Ctrl+Shift+C",
                                     "Ctrl+3",
                                     "Ctrl+4",
                                     "Ctrl+Shift+Up"};
    QTest::keySequence(&widget, QKeySequence(keys[below(keys.size())]));
  }

  /// Chooses one of the window's actions.
  void trigger(const QWidget& window)
  {
    const QList<QAction*> actions = window.findChildren<QAction*>();
    if (actions.isEmpty()) return;
    QAction& action = *actions[below(actions.size())];
    if (mayChoose(action) && action.menu() == nullptr) action.trigger();
  }

  /// Of any part but the lists, from which a drag would leave the window.
  void useMouseIn(const QWidget& window)
  {
    const QList<QWidget*> parts = window.findChildren<QWidget*>();
    if (parts.isEmpty()) return;
    QWidget& part = *parts[below(parts.size())];
    if (!part.isVisible() || !part.isEnabled()) return;
    if (qobject_cast<QAbstractItemView*>(part.parentWidget()) != nullptr)
      QTest::mouseClick(&part, Qt::LeftButton, {}, placeIn(part));
    else
      useMouse(part);
  }

  /// Without the end of the program.
  bool mayClose(const QWidget& window) const { return &window != &_test->window(); }

  /// Until no dialog and no menu is left, and what is to be deleted is gone.
  static void settle()
  {
    EXPECT_TRUE(QTest::qWaitFor(
        []
        {
          QCoreApplication::processEvents();
          QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
          return Attendant::onTop() == nullptr;
        },
        60000))
        << Attendant::onTop()->windowTitle().toStdString();
  }

  TemporaryFolder _folder;
  QString _formerFolder = QDir::currentPath();
  int _formerCacheLimit = QPixmapCache::cacheLimit();
  std::unique_ptr<WindowTest> _test;
  RandomUser _user{13, _folder.getPath()};
  Attendant _attendant{_user};
};

std::size_t median(std::vector<std::size_t> sizes)
{
  std::ranges::sort(sizes);
  return sizes[sizes.size() / 2];
}

/// Growth from the second quarter of the rounds to the last; in the first, libraries fill what they keep.
double bytesPerRound(const std::vector<std::size_t>& sizes)
{
  const auto quarter = static_cast<std::ptrdiff_t>(sizes.size() / 4);
  const std::size_t early = median({sizes.begin() + quarter, sizes.begin() + 2 * quarter});
  const std::size_t late = median({sizes.end() - quarter, sizes.end()});
  return (static_cast<double>(late) - static_cast<double>(early)) / static_cast<double>(2 * quarter);
}

TEST_F(Endurance, LongWorkTakesNoMemory)
{
  constexpr int numRounds = 20, numActions = 500;
  std::vector<std::size_t> sizes;
  for (int round = 0; round < numRounds && !HasFailure(); ++round)
  {
    open();
    for (int i = 0; i < numActions && !HasFatalFailure(); ++i) act();
    expectWritable();
    close();
    sizes.push_back(numAllocatedBytes());
  }
  ASSERT_EQ(sizes.size(), numRounds);
  const double growth = bytesPerRound(sizes) / numActions;
  RecordProperty("bytesPerAction", std::to_string(growth));
  EXPECT_LT(growth, 20) << "bytes per action; an item takes about a thousand";
}
} // namespace
