#pragma once

#include "numeric/exception.h"

#include <atomic>
#include <string>
#include <vector>

/// Somebody who shows how far a long step has come: a progress bar, a terminal.
/// Called by the thread that does the work; one that belongs to another thread passes the news on. Its functions must
/// not throw: a step that an error ends still tells it so, from the destructor of ProgressStep.
class ProgressObserver
{
public:
  virtual ~ProgressObserver() = default;
  /// A step, or a step inside a step, begins.
  virtual void started(const std::string& message) = 0;
  /// The share of the whole that is done, 0 to 1, told when it has grown by a thousandth.
  virtual void progressed(double share) = 0;
  /// The outermost step is over: done, cancelled or failed.
  virtual void finished() = 0;
};

/// Thrown by ProgressSubject::throwIfCancelled(): the user asked to stop. Not a failure, and nothing to report.
class Cancelled : public Exception
{
public:
  explicit Cancelled(std::string where) : Exception(std::move(where), "Cancelled") {}
};

/// Long processing steps derive from this (virtually) or are handed one: they report how far they are and honour
/// cancellation.
///
/// A step started before another one has finished is a part of it: it fills the share of the outer step's current
/// unit, so that progress(k) of n inside unit j of m is (j + k / n) / m of the whole. A subject with an outer subject
/// is a part of that one in the same way. Only the working thread calls start(), progress() and finish(); any thread
/// may call cancel() and isCancelled(). With no observer, progress() costs a few instructions: report per plane or row.
class ProgressSubject
{
public:
  ProgressSubject() = default;
  ProgressSubject(const ProgressSubject&) = delete;
  ProgressSubject& operator=(const ProgressSubject&) = delete;
  virtual ~ProgressSubject() = default;

  /// Observers and the outer subject are borrowed, and changed only between steps.
  void addObserver(ProgressObserver& observer) { _observers.push_back(&observer); }
  void removeObserver(ProgressObserver& observer);
  /// Makes this subject's steps parts of the outer subject's current step; nullptr: on its own.
  void setOuter(ProgressSubject* outer) { _outer = outer; }

  /// Begins a step of `steps` units; the outermost one forgets an earlier cancellation.
  void start(const std::string& message, long steps);
  /// k units of the innermost step are done.
  void progress(long k);
  /// Ends the innermost step and, unless it was cancelled, completes its share of the step around it.
  void finish();

  void cancel() { _cancelled = true; }
  bool isCancelled() const { return _cancelled || (_outer && _outer->isCancelled()); }
  /// \throw Cancelled  somebody called cancel()
  void throwIfCancelled(const std::string& where) const;

private:
  struct Step
  {
    double done;  // share of the whole done before this step
    double unit;  // share of the whole that one unit is
    double share; // share of the whole that this step is
  };

  void report(double share);

  std::vector<ProgressObserver*> _observers;
  ProgressSubject* _outer = nullptr;
  std::vector<Step> _steps; // innermost last
  double _share = 0;
  double _reported = 0;
  std::atomic<bool> _cancelled = false;
};

/// Starts a step and finishes it on every path out of the scope.
class ProgressStep
{
public:
  ProgressStep(ProgressSubject& subject, const std::string& message, long steps) : _subject(subject)
  {
    _subject.start(message, steps);
  }
  ProgressStep(const ProgressStep&) = delete;
  ProgressStep& operator=(const ProgressStep&) = delete;
  ~ProgressStep() { _subject.finish(); }

private:
  ProgressSubject& _subject;
};
