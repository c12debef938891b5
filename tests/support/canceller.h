#pragma once

#include "numeric/progresssubject.h"

/// Cancels a step when it reports a share of its work.
class Canceller : public ProgressObserver
{
public:
  Canceller(ProgressSubject& subject, double share) : _subject(subject), _share(share) { _subject.addObserver(*this); }
  Canceller(const Canceller&) = delete;
  Canceller& operator=(const Canceller&) = delete;
  ~Canceller() override { _subject.removeObserver(*this); }

  bool isFinished() const { return _isFinished; }

private:
  void started(const std::string&) override {}
  void progressed(double share) override
  {
    if (share >= _share) _subject.cancel();
  }
  void finished() override { _isFinished = true; }

  ProgressSubject& _subject;
  double _share;
  bool _isFinished = false;
};
