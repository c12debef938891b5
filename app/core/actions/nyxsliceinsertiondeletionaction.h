#pragma once

#include "app/core/actions/nyxdetacheditems.h"
#include "app/core/actions/nyxsliceaction.h"

#include <memory>

class ImageSource;

/// A slice comes into its stack or leaves it, with the items drawn on it; the action owns them while they are out.
class NYXSliceInsertionDeletionAction : public NYXSliceAction
{
public:
  enum Mode
  {
    Insertion,
    Deletion
  };

  /// Inserts a slice before slice `place`, or behind the last one. \throw RangeError  there is no such place
  NYXSliceInsertionDeletionAction(NYXStack& stack, std::unique_ptr<StackSlice> slice, int place);
  /// Deletes a slice. \throw UsageError  the slice is in no open stack
  explicit NYXSliceInsertionDeletionAction(StackSlice& slice);
  ~NYXSliceInsertionDeletionAction() override;

  Mode getMode() const { return _mode; }
  /// Whether the slice is in the stack now.
  bool isInStack() const { return _slice == nullptr; }
  int getPlace() const { return _place; }

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool changesPlaces() const override { return true; }

private:
  /// There is no event of slices that come and go: clients are told of the action.
  void postEvents() override {}
  bool isEqual(const NYXAction& other) const override;
  void putIn();
  void takeOut();

  Mode _mode;
  int _place;
  std::unique_ptr<StackSlice> _slice;   // while it is not in the stack
  std::unique_ptr<ImageSource> _source; // that it had in the stack
  NYXDetachedItems _items;
};
