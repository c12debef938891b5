#pragma once

#include <QDialog>
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

/// Calls `act` once with each modal dialog that appears while `work` runs.
void inDialogs(const std::function<void(QDialog&)>& act, const std::function<void()>& work);

/// Clicks the button of this text in a dialog.
void click(const QDialog& dialog, const QString& button);

/// Presses the given buttons in the message boxes that appear while `work` runs, one box each, and gives the title and
/// text of every box as "title|text". A box beyond the expected ones is cancelled and listed all the same.
QStringList answering(const QList<QMessageBox::StandardButton>& answers, const std::function<void()>& work);
