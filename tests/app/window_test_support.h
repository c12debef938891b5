#pragma once

#include <QMessageBox>
#include <QStringList>

#include <functional>
#include <memory>

class NYXRootWindow;
class NYXStack;
class QAction;

/// A root window on a server without stacks, in settings without content. Cleans up after itself.
class WindowTest
{
public:
  WindowTest();
  ~WindowTest();

  NYXRootWindow& window() { return *_window; }
  QAction* action(const QString& text) const;

private:
  NYXRootWindow* _window;
};

/// Adds an empty stack to the server.
NYXStack& addStack(const QString& name, const QString& filename, bool isModified);

/// Presses the given buttons in the message boxes that appear while `work` runs, one box each, and gives the title and
/// text of every box as "title|text". A box beyond the expected ones is cancelled and listed all the same.
QStringList answering(const QList<QMessageBox::StandardButton>& answers, const std::function<void()>& work);
