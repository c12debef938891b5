#pragma once

#include <QCoreApplication>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

class LengthUnit;
class NYXRootStatusBar;
class NYXStack;
class ProgressSubject;
class QWidget;
class StackWriter;
struct NewSlices;

/// Opens, saves and closes stacks, with the dialogs that belong to it. Made on demand; parent and status bar are
/// borrowed.
class NYXStackIO
{
  Q_DECLARE_TR_FUNCTIONS(NYXStackIO)

public:
  explicit NYXStackIO(QWidget* parent, NYXRootStatusBar* statusBar = nullptr) : _parent(parent), _statusBar(statusBar)
  {
  }

  /// Makes a stack of image files that the user chooses, from a list that holds the proposed ones at first.
  void newStack(const QStringList& proposed = {});
  /// Makes a stack of the planes of a file that the user chooses.
  void newStackFromFile();
  void newStackFromFile(const QString& filename);
  /// Asks for image files and inserts a slice for each before a place of the stack, as one step that can be undone.
  void insertSlices(NYXStack& stack, int place);

  /// Asks for a stack file and opens it. \return as below
  NYXStack* openStack();

  /// Opens a stack file. Its problems are shown; one that cannot be read or is no stack file opens nothing.
  /// \return its stack, which may have been open before; nullptr when nothing is opened
  NYXStack* openStack(const QString& filename);

  /// Writes a stack to its file, or asks for one when it has none. False when nothing was written.
  bool saveStack(NYXStack& stack);
  bool saveStackAs(NYXStack& stack);

  /// Closes a stack, after the question about unsaved changes. False when the user cancels; the stack stays open then.
  bool closeStack(NYXStack& stack);

  /// Closes the stacks from the last to the first, until one close is cancelled (false).
  bool closeAll();

private:
  enum class Result
  {
    Done,
    Failed,
    Canceled
  };

  bool isDone(const QString& title, ProgressSubject& subject, const std::function<void()>& work) const;
  QString chooseStackFile();
  NYXStack* readStack(const QString& file);
  std::optional<float> askForSpacing(const LengthUnit& unit) const;
  void insertSlices(NYXStack& stack, NewSlices made, int place) const;
  void openNewStack(std::unique_ptr<NYXStack> stack, const QString& name);
  void showFormatError() const;
  void showWarnings(NYXStack& stack, const QString& filename, const StackWriter& writer) const;
  Result write(NYXStack& stack, const QString& filename, QString& reason);
  bool settleLosses(NYXStack& stack) const;
  bool mayOverwrite(const NYXStack& stack, const QString& filename) const;
  bool mayReplace(const QString& typed, const QString& file) const;
  bool writeBeforeClosing(NYXStack& stack);
  bool saveTo(NYXStack& stack, const QString& filename);
  void showMessage(const QString& text, int milliseconds = 0) const;

  QWidget* _parent;
  NYXRootStatusBar* _statusBar;
};
