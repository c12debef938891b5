#include "numeric/progresssubject.h"

#include <algorithm>

void ProgressSubject::removeObserver(ProgressObserver& observer)
{
  std::erase(_observers, &observer);
}

void ProgressSubject::start(const std::string& message, long steps)
{
  if (_outer) _outer->start(message, steps);
  if (_steps.empty())
  {
    _cancelled = false;
    _share = _reported = 0;
  }
  const double share = _steps.empty() ? 1 : _steps.back().unit;
  _steps.push_back({_share, share / static_cast<double>(std::max(steps, 1L)), share});
  for (ProgressObserver* observer : _observers) observer->started(message);
}

void ProgressSubject::progress(long k)
{
  if (_outer) _outer->progress(k);
  if (_steps.empty()) return;
  const Step& step = _steps.back();
  report(step.done + std::clamp(static_cast<double>(k) * step.unit, 0.0, step.share));
}

void ProgressSubject::finish()
{
  if (_outer) _outer->finish();
  if (_steps.empty()) return;
  if (!isCancelled()) report(_steps.back().done + _steps.back().share);
  _steps.pop_back();
  if (!_steps.empty()) return;
  for (ProgressObserver* observer : _observers) observer->finished();
}

void ProgressSubject::throwIfCancelled(const std::string& where) const
{
  if (isCancelled()) throw Cancelled(where);
}

void ProgressSubject::report(double share)
{
  constexpr double thousandth = 0.001;
  _share = share;
  if (_observers.empty() || (share < _reported + thousandth && share < 1)) return;
  _reported = share;
  for (ProgressObserver* observer : _observers) observer->progressed(share);
}
