#pragma once

#include "model/calibrated.h"
#include "model/keptstatements.h"
#include "model/modelitemowner.h"
#include "model/registration.h"
#include "model/slice.h"

class Stack;

/// A slice in a stack: its depth, its alignment and the items drawn on it, which it owns.
///
/// Lengths and depths are in the stack's length unit.
class StackSlice : public Slice, public ModelItemOwner, public KeptStatements, public Calibrated
{
public:
  StackSlice() = default;
  /// Deletes the items.
  ~StackSlice() override;

  void setName(const std::string& name) override;

  /// The stack that holds this slice, or nullptr, and the place there.
  Stack* getStack() const { return _stack; }
  int getIndex() const { return _index; }
  /// Called by the stack.
  void setStack(Stack* stack, int index);
  /// Called by a stack that got its first images path.
  void noteImagesPath() { resolveImageNames(); }

  float getThickness() const { return _thickness; }
  void setThickness(float thickness) { _thickness = thickness; }
  const Registration& getRegistration() const { return _registration; }
  void setRegistration(const Registration& registration) { _registration = registration; }

  /// Distance to the slice before. By default the stack's default relative position; of an absolute slice the
  /// difference to the depth of the slice before, 0 for the first one.
  float getRelativePosition() const;
  void setRelativePosition(float distance);
  /// Depth: as stored for an absolute slice, 0 for the first slice otherwise, else that of the slice before plus the
  /// relative position. Walks back to the next absolute slice: for all depths ask Stack::absolutePositions().
  float getAbsolutePosition() const;
  void setAbsolutePosition(float depth);
  bool useRelativePosition() const { return _usesRelativePosition; }
  bool useDefaultRelativePosition() const { return _usesDefaultPosition; }
  /// The slice lies at the stack's default distance to the slice before.
  void setDefaultRelativePosition();

  bool isFirstSlice() const { return _index == 0; }
  bool isLastSlice() const;
  /// The neighbours in the stack, or nullptr.
  StackSlice* prevSlice() const;
  StackSlice* nextSlice() const;

private:
  std::string imagesPath() const override;
  void noteMembership(ModelItem& item, bool isMember) override;

  Stack* _stack = nullptr;
  int _index = -1;
  float _thickness = 0;
  float _position = 0; // relative or absolute
  bool _usesRelativePosition = true;
  bool _usesDefaultPosition = true;
  Registration _registration;
};
