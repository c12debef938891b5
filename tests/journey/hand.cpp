#include "hand.h"

#include "tests/app/window_test_support.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressDialog>
#include <QTest>
#include <QTimer>
#include <QToolButton>

namespace
{
constexpr int patience = 20000; // milliseconds, on a busy machine

/// What a window manager does when the user turns to a window. Without it, keys are shortcuts of the window before.
void activate(const QWidget& widget)
{
  EXPECT_TRUE(QTest::qWaitFor([] { return QApplication::activePopupWidget() == nullptr; }, patience));
  if (QApplication::activeWindow() == widget.window()) return;
  QApplication::setActiveWindow(widget.window());
  EXPECT_TRUE(QTest::qWaitFor([&] { return widget.isActiveWindow(); }, patience));
  QCoreApplication::processEvents();
}

QAction* entry(const QWidget& menu, const QString& text)
{
  for (QAction* action : menu.actions())
    if (action->text().remove('&') == text) return action;
  throw std::runtime_error("there is no entry " + text.toStdString());
}

QString textOf(const QAbstractButton& button)
{
  const auto* const toolButton = qobject_cast<const QToolButton*>(&button);
  const QAction* const action = toolButton == nullptr ? nullptr : toolButton->defaultAction();
  return (action == nullptr ? button.text() : action->text()).remove('&');
}
} // namespace

void hand::choose(QWidget& window, const QStringList& way)
{
  auto& bar = *window.findChild<QMenuBar*>();
  QAction* action = entry(bar, way[0]);
  QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.actionGeometry(action).center());
  for (int i = 1; i < way.size(); ++i)
  {
    QMenu& menu = *action->menu();
    EXPECT_TRUE(QTest::qWaitFor([&] { return menu.isVisible(); }, patience)) << way[i].toStdString();
    action = entry(menu, way[i]);
    EXPECT_TRUE(action->isEnabled()) << way[i].toStdString();
    QTest::mouseMove(&menu, menu.actionGeometry(action).center());
    QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(action).center());
  }
  QCoreApplication::processEvents();
}

void hand::press(QWidget& window, const QString& text)
{
  for (QAbstractButton* button : window.findChildren<QAbstractButton*>())
    if (button->isVisible() && textOf(*button) == text)
    {
      EXPECT_TRUE(button->isEnabled()) << text.toStdString();
      return click(*button);
    }
  throw std::runtime_error("there is no button " + text.toStdString());
}

void hand::click(QWidget& widget, const QPoint& position, Qt::KeyboardModifiers modifiers)
{
  activate(widget);
  QTest::mouseMove(&widget, position);
  QTest::mouseClick(&widget, Qt::LeftButton, modifiers, position);
  QCoreApplication::processEvents();
}

/// Where check boxes and radio buttons react, too.
void hand::click(QWidget& widget)
{
  click(widget, QPoint(qMin(widget.width() / 2, widget.height() / 2), widget.height() / 2));
}

void hand::drag(QWidget& widget, const QPoint& from, const QPoint& to)
{
  activate(widget);
  QTest::mouseMove(&widget, from);
  QTest::mousePress(&widget, Qt::LeftButton, {}, from);
  QTest::mouseMove(&widget, (from + to) / 2);
  QTest::mouseMove(&widget, to);
  QTest::mouseRelease(&widget, Qt::LeftButton, {}, to);
  QCoreApplication::processEvents();
}

void hand::fill(QWidget& window, const char* field, const QString& text)
{
  auto& widget = find<QWidget>(window, field);
  auto* const line = widget.findChild<QLineEdit*>();
  QWidget& input = line == nullptr ? widget : *line;
  activate(input);
  QTest::mouseClick(&input, Qt::LeftButton);
  QTest::keyClick(&input, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClicks(&input, text);
  QTest::keyClick(&input, Qt::Key_Tab);
}

void hand::key(QWidget& widget, int key, Qt::KeyboardModifiers modifiers)
{
  activate(widget);
  QTest::keyClick(&widget, static_cast<Qt::Key>(key), modifiers);
  QCoreApplication::processEvents();
}

void hand::select(QWidget& window, const char* box, const QString& text)
{
  auto& combo = find<QComboBox>(window, box);
  const int wanted = combo.findText(text);
  ASSERT_GE(wanted, 0) << text.toStdString();
  for (int i = 0; i < combo.count() && combo.currentIndex() != wanted; ++i)
    key(combo, combo.currentIndex() < wanted ? Qt::Key_Down : Qt::Key_Up);
  EXPECT_EQ(combo.currentIndex(), wanted) << text.toStdString();
}

void hand::nameFiles(QDialog& dialog, const QStringList& files)
{
  auto& name = find<QLineEdit>(dialog, "fileNameEdit");
  QStringList quoted;
  for (const QString& file : files) quoted.append('"' + file + '"');
  activate(name);
  QTest::keyClick(&name, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClicks(&name, files.size() == 1 ? files[0] : quoted.join(' '));
  if (QWidget* const completions = QApplication::activePopupWidget()) completions->close(); // it would take the key
  QTest::keyClick(&name, Qt::Key_Return);
}

namespace
{
/// What an answer throws does not get through the event loop.
void answer(const std::function<void(QDialog&)>& act, QDialog& dialog)
{
  try
  {
    act(dialog);
  }
  catch (const std::runtime_error& error)
  {
    ADD_FAILURE() << dialog.windowTitle().toStdString() << ": " << error.what();
    dialog.reject();
  }
}
} // namespace

void hand::answering(Answers answers, const std::function<void()>& work)
{
  inDialogs(
      [&](QDialog& dialog)
      {
        if (qobject_cast<QProgressDialog*>(&dialog) != nullptr) return;
        const auto known = answers.find(dialog.windowTitle());
        if (known == answers.end())
        {
          const auto* const box = qobject_cast<QMessageBox*>(&dialog);
          ADD_FAILURE() << "unexpected: " << dialog.windowTitle().toStdString() << " "
                        << (box == nullptr ? std::string() : box->text().toStdString());
          return dialog.reject();
        }
        const auto act = known->second;
        answers.erase(known);
        QTimer::singleShot(0, &dialog, [act, &dialog] { answer(act, dialog); }); // which may open another dialog
      },
      work);
  for (const auto& [title, act] : answers) ADD_FAILURE() << "did not appear: " << title.toStdString();
}

hand::Watchdog::Watchdog()
{
  QObject::connect(&_timer, &QTimer::timeout, [this] { look(); });
  _timer.start(500);
}

void hand::Watchdog::look()
{
  QWidget* const popup = QApplication::activePopupWidget();
  QWidget* const top = popup == nullptr ? QApplication::activeModalWidget() : popup;
  if (top != _top || top == nullptr) _sinceOnTop.start();
  _top = top;
  if (top == nullptr || !_sinceOnTop.hasExpired(patience)) return;
  ADD_FAILURE() << "stays open: " << top->windowTitle().toStdString() << " (" << top->metaObject()->className() << ")";
  auto* const dialog = qobject_cast<QDialog*>(top);
  dialog == nullptr ? static_cast<void>(top->close()) : dialog->reject();
}
