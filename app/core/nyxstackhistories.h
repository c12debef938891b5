#pragma once

#include "app/core/nyxactionhistory.h"

#include <QObject>

#include <memory>
#include <unordered_map>

class StackSlice;

/// The histories of a stack: one for the stack and one for each slice, and the order in which they are undone together.
///
/// What is drawn on a slice belongs into the slice's history; what a dialog changes (properties, models, the list of
/// slices, alignment, several slices at once) into the stack's. The user sees one list: the steps of the stack and of
/// the slice that is shown, the newest first. Four rules keep every step among the objects it was made for:
/// - The newer of the two last steps is undone first, the older of the two next ones is made again first. So a step on
///   a slice waits for a newer one of the stack, as the deletion of a model that the step refers to.
/// - A step of the stack that touches slices waits for newer steps on slices that are not shown: undoObstacle() names
///   such a slice. Making it again waits for older ones. Steps that touch no slice (NYXAction::touchesSlices()) do not.
/// - A step that changes a locked slice waits for the end of the computation: undoLock() names such a slice.
/// - A new step of the stack ends what could be made again everywhere; a new step on a slice that on the slice and,
///   when the stack has something to be made again, that of the stack and with it that of all slices.
class NYXStackHistories : public QObject
{
  Q_OBJECT

public:
  NYXStackHistories();
  ~NYXStackHistories() override;

  NYXActionHistory& history() { return _history; }
  /// Made on first use.
  NYXActionHistory& sliceHistory(const StackSlice& slice);
  /// Clears the stack's history and deletes those of the slices. To be called before a stack is cleared.
  void destroyHistory();
  /// Deletes the history of a slice that ceases to exist.
  void forget(const StackSlice& slice);

  /// Undo and Redo as the user of a window means them that shows this slice, or none.
  void undo(const StackSlice* shown);
  void redo(const StackSlice* shown);
  bool isUndoable(const StackSlice* shown) { return choose(shown, undoing).history != nullptr; }
  bool isRedoable(const StackSlice* shown) { return choose(shown, redoing).history != nullptr; }
  QString undoDescription(const StackSlice* shown, bool isDetailed);
  QString redoDescription(const StackSlice* shown, bool isDetailed);
  /// A slice on which a step has to be undone or made again before the stack's, or nullptr.
  const StackSlice* undoObstacle(const StackSlice* shown) { return choose(shown, undoing).obstacle; }
  const StackSlice* redoObstacle(const StackSlice* shown) { return choose(shown, redoing).obstacle; }
  /// A locked slice that undoing or making again would change, or nullptr.
  const StackSlice* undoLock(const StackSlice* shown) { return choose(shown, undoing).locked; }
  const StackSlice* redoLock(const StackSlice* shown) { return choose(shown, redoing).locked; }

  void setSaved();
  /// Whether every history is at the step at which the stack was saved.
  bool areAtSaved() const;

signals:
  /// A step was made, undone, made again or forgotten; or slices were locked or unlocked, which steps wait for.
  void changed();

private:
  using Step = NYXActionHistory::Step;

  /// What undo and redo differ in: where the next step is, and which of two comes first.
  struct Direction
  {
    const Step* (NYXActionHistory::*next)() const;
    bool (*isBefore)(long number, long other);
  };
  /// The history to take the next step from; or none, and the slice that stands in the way if there is one: for a
  /// step on it, or for its lock.
  struct Choice
  {
    NYXActionHistory* history = nullptr;
    const StackSlice* obstacle = nullptr;
    const StackSlice* locked = nullptr;
  };

  static const Direction undoing;
  static const Direction redoing;

  bool isStepOpen() const;
  NYXActionHistory* find(const StackSlice* slice) const;
  const StackSlice* obstacle(const Step& stackStep, const Direction& direction) const;
  Choice choose(const StackSlice* shown, const Direction& direction);
  static Choice unlessLocked(NYXActionHistory& history, const Step& step);
  void destroySliceHistories();
  void clearSliceRedoLists(const NYXActionHistory* except);
  void noteStep(const NYXActionHistory& history);

  std::unordered_map<const StackSlice*, std::unique_ptr<NYXActionHistory>> _sliceHistories;
  NYXActionHistory _history; // goes first: its actions own slices, with which their histories go
  bool _isSavedStateLost = false;
};
