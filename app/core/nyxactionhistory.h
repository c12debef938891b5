#pragma once

#include "app/core/nyxactionlist.h"

#include <QObject>

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

/// The steps that were made and can be undone, and those undone that can be made again.
///
/// A step is opened, receives actions and is closed; NYXActionStep does this on every path. When an action throws, in
/// push(), undo() or redo(), the step is taken back as a whole, no step is lost, and none is open.
///
/// Here, where steps are applied and reverted, those are refused that would change a locked slice. A computation that
/// locks a slice takes the lock off before it pushes what it found.
class NYXActionHistory : public QObject
{
  Q_OBJECT

public:
  explicit NYXActionHistory(QObject* parent = nullptr) : QObject(parent) {}
  ~NYXActionHistory() override;

  /// \throw UsageError  a step is open already
  void openStep();
  /// Adds an action to the open step and applies it if asked to; the steps that could be made again are lost.
  /// The history takes the action over, also when it throws.
  /// \throw UsageError  no step is open \throw NYXException  the action is to be applied to a locked slice
  void push(std::unique_ptr<NYXAction> action, const bool apply);
  void push(NYXAction* action, const bool apply) { push(std::unique_ptr<NYXAction>(action), apply); }
  /// A step without actions is dropped. \throw UsageError  no step is open
  void closeStep();
  /// Takes the open step back, as if it had never been opened. Nothing happens when none is open.
  void abandonStep();
  /// Makes a step of one action. A null action is dropped.
  void pushStep(std::unique_ptr<NYXAction> action, const bool apply = true);
  bool isStepOpen() const { return _isStepOpen; }

  /// Nothing happens when there is nothing to undo or redo, or a step is open.
  /// \throw NYXException  the step would change a locked slice
  void undo();
  void redo();
  bool isUndoable() const { return !_isStepOpen && !_undoList.empty(); }
  bool isRedoable() const { return !_isStepOpen && !_redoList.empty(); }
  int getUndoListSize() const { return static_cast<int>(_undoList.size()); }
  int getRedoListSize() const { return static_cast<int>(_redoList.size()); }

  /// Description of the first action of the step in question, or a text that there is none.
  QString getUndoDescription(bool isDetailed) const;
  QString getRedoDescription(bool isDetailed) const;

  /// Forgets all steps.
  void clear();
  void clearRedoList();

  void print(const std::string& prefix) const;
  void print(const std::string& prefix, std::ostream& stream) const;

  /// A closed step of the lists. Its number tells when it was made: the steps of all histories are counted together.
  struct Step
  {
    NYXActionList actions;
    long number = 0;
    bool touchesSlices = false;
  };
  /// The step that undo() or redo() takes, nullptr when there is none.
  const Step* stepToUndo() const { return isUndoable() ? &_undoList.back() : nullptr; }
  const Step* stepToRedo() const { return isRedoable() ? &_redoList.back() : nullptr; }

  /// Notes that the stack is saved as it is now.
  void setSaved() { _savedPosition = position(); }
  /// Whether all that this history tells of is as it was saved; at first it is. A saved state that can no longer be
  /// reached is never met again.
  bool isAtSaved() const { return _savedPosition == position(); }

signals:
  void changed();
  void undoEnabled(bool isEnabled);
  void redoEnabled(bool isEnabled);
  /// A new step stands, before changed() is emitted.
  void stepAdded();

private:
  /// Number of the last step that stands, 0 when there is none.
  long position() const;
  void setRedoListAside();

  std::vector<Step> _undoList;
  std::vector<Step> _redoList;
  std::optional<std::vector<Step>> _redoListAside; // while the step that ends it may still fail
  bool _isStepOpen = false;
  std::optional<long> _savedPosition = 0; // none: out of reach
};
