#include "slice/image/nyximageworker.h"

NYXImageWorker::NYXImageWorker() : _relay(*this)
{
  _subject.addObserver(_relay);
}

NYXImageWorker::~NYXImageWorker() = default;

void NYXImageWorker::cancel()
{
  _isCancelled = true;
  _subject.cancel();
}

void NYXImageWorker::run()
{
  {
    const ProgressStep step(_subject, "Loading the image", 1);
    try
    {
      if (!_isCancelled) work(_subject);
    }
    catch (const Cancelled&)
    {
    }
  }
  _isDone = true;
  emit finished();
}
