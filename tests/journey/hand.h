#pragma once

#include <QElapsedTimer>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <map>
#include <stdexcept>

class QDialog;

/// A user's hand: what it does goes through mouse and keyboard events of the windows only.
namespace hand
{
/// Clicks an entry of a window's menu bar, by the texts on the way to it.
void choose(QWidget& window, const QStringList& way);
/// Clicks a button by its text, or a tool button by its action's.
void press(QWidget& window, const QString& text);
void click(QWidget& widget, const QPoint& position, Qt::KeyboardModifiers modifiers = {});
void click(QWidget& widget);
void drag(QWidget& widget, const QPoint& from, const QPoint& to);
/// Replaces the text of a field, which is found by its object name.
void fill(QWidget& window, const char* field, const QString& text);
void key(QWidget& widget, int key, Qt::KeyboardModifiers modifiers = {});
/// Opens a combo box and goes to an entry by the keyboard.
void select(QWidget& window, const char* box, const QString& text);
/// Writes names into a file dialog and presses Return.
void nameFiles(QDialog& dialog, const QStringList& files);

template <class Widget> Widget& find(QWidget& window, const char* name)
{
  auto* const widget = window.findChild<Widget*>(name);
  if (widget == nullptr) throw std::runtime_error(std::string("there is no ") + name);
  return *widget;
}

/// What is done in modal dialogs by their titles, in turn for dialogs of the same title.
using Answers = std::multimap<QString, std::function<void(QDialog&)>>;
/// Does something that opens dialogs. A dialog without an answer is a failure, and is closed.
void answering(Answers answers, const std::function<void()>& work);

/// Closes a dialog or menu that stays open much longer than anything that is done in it, which would wait for ever: as
/// a failure that names it.
class Watchdog
{
public:
  Watchdog();

private:
  void look();

  QTimer _timer;
  QPointer<QWidget> _top;
  QElapsedTimer _sinceOnTop;
};
} // namespace hand
