#pragma once

#include "geometry/reconstruction/slicealignment.h"
#include "model/stack.h"
#include "numeric/progresssubject.h"

#include <functional>
#include <vector>

class StackSlice;

/// The automatic alignment of consecutive slices of a stack, each on the one before it.
///
/// It is made in the thread of the windows and takes copies of what it needs, so that run() may be called in another.
class NYXRegistrationRun
{
public:
  /// The slices are aligned in their order; none of them is the first of its stack.
  NYXRegistrationRun(std::vector<StackSlice*> slices, bool isSpecimenDark);

  ProgressSubject& subject() { return _subject; }
  const std::vector<StackSlice*>& slices() const { return _slices; }

  /// Called with each slice and its alignment, in the thread of run().
  using Observer = std::function<void(StackSlice&, const SliceAlignment&)>;
  void setObserver(Observer observer) { _observer = std::move(observer); }

  /// Aligns as many slices as it can. \throw Cancelled  the subject was, between two slices
  /// \throw FileError, UsageError  of alignOnPreviousSlice()
  void run();

  /// What came out for the first slices, in their order; all of them unless run() threw.
  const std::vector<SliceAlignment>& results() const { return _results; }

private:
  Stack _copies; // of the slice before the first one and of the slices
  std::vector<StackSlice*> _slices;
  bool _isSpecimenDark;
  ProgressSubject _subject;
  Observer _observer;
  std::vector<SliceAlignment> _results;
};
