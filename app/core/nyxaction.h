#pragma once

#include <QCoreApplication>
#include <QString>

class StackSlice;

/// A change that can be applied, reverted and applied again. An action is made when its object is as the action will
/// find it; actions are applied and reverted in the order of their history, so that each finds it so again.
///
/// An action that throws leaves what it changes as it was, unless it had changed it already and a client threw at the
/// news; reverted() tells the two apart.
class NYXAction
{
  Q_DECLARE_TR_FUNCTIONS(NYXAction)

public:
  NYXAction(const NYXAction&) = delete;
  NYXAction& operator=(const NYXAction&) = delete;
  virtual ~NYXAction();

  /// Derived actions make their change and then call these, which note the state and tell of it.
  virtual void apply() = 0;
  virtual void revert() = 0;

  /// A text for menus; the detailed one names what is changed, where that is known by a name.
  virtual QString description(bool isDetailed) const;
  /// Whether the action changes nothing.
  virtual bool isNull() const { return false; }
  /// Whether the two make the same change to the same object.
  virtual bool operator==(const NYXAction& other) const;
  virtual bool operator!=(const NYXAction& other) const { return !(*this == other); }

  /// Whether the action was applied and not reverted since, and whether it is reverted now.
  bool isApplied() const { return _state == Applied; }
  bool reverted() const { return _state == Reverted; }

  /// Whether it changes slices, or what is drawn on them: then it keeps its place in time among the steps of slices.
  virtual bool touchesSlices() const { return true; }
  /// A slice that it would change although a computation has locked it, or nullptr.
  virtual const StackSlice* lockedSlice() const { return nullptr; }
  /// Called when the action becomes part of a step.
  virtual void record() {}

protected:
  NYXAction() = default;
  /// Whether the other action, of the same class, makes the same change.
  virtual bool isEqual(const NYXAction& other) const { return this == &other; }

private:
  enum State
  {
    New,
    Applied,
    Reverted
  };
  State _state = New;
};
