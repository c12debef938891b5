#include "app/core/nyxthreadrun.h"

#include "app/core/errortext.h"

#include <utility>

void NYXThreadRun::startThread(std::function<void(ProgressSubject&)> work)
{
  _error.clear();
  _isCancelled = false;
  _isRunning = true;
  _thread = std::thread([this, work = std::move(work)] { run(work); });
}

void NYXThreadRun::cancel()
{
  _isCancelled = true;
  _subject.cancel();
}

void NYXThreadRun::stop()
{
  cancel();
  if (_thread.joinable()) _thread.join();
}

/// The first step forgets a cancellation that came before it.
void NYXThreadRun::started(const std::string&)
{
  if (_isCancelled) _subject.cancel();
}

void NYXThreadRun::progressed(double share)
{
  QMetaObject::invokeMethod(
      this, [this, share] { emit progressChanged(share); }, Qt::QueuedConnection);
}

void NYXThreadRun::run(const std::function<void(ProgressSubject&)>& work)
{
  bool isDone = false;
  try
  {
    work(_subject);
    isDone = true;
  }
  catch (const Cancelled&)
  {
  }
  catch (...)
  {
    _error = handledErrorText();
  }
  QMetaObject::invokeMethod(
      this, [this, isDone] { end(isDone); }, Qt::QueuedConnection);
}

void NYXThreadRun::end(bool isDone)
{
  _thread.join();
  _isRunning = false;
  emit ended(isDone);
}
