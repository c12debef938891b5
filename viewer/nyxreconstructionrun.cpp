#include "viewer/nyxreconstructionrun.h"

#include "viewer/errortext.h"

#include <exception>

NYXReconstructionRun::NYXReconstructionRun(QObject* parent) : QObject(parent)
{
  _subject.addObserver(*this);
}

NYXReconstructionRun::~NYXReconstructionRun()
{
  _subject.cancel();
  if (_thread.joinable()) _thread.join();
}

void NYXReconstructionRun::start(ShownStack shown)
{
  _shown = std::move(shown);
  _painted.clear();
  _error.clear();
  _isDone = false;
  _isRunning = true;
  _thread = std::thread([this] { work(); });
}

void NYXReconstructionRun::progressed(double share)
{
  QMetaObject::invokeMethod(
      this, [this, share] { emit progressChanged(share); }, Qt::QueuedConnection);
}

void NYXReconstructionRun::work()
{
  try
  {
    _painted = paintModels(_shown, _subject);
    _isDone = true;
  }
  catch (const Cancelled&)
  {
  }
  catch (const Exception& error)
  {
    _error = errorText(error);
  }
  catch (const std::bad_alloc&)
  {
    _error = tr("There is not enough memory to show the models");
  }
  catch (const std::exception& error)
  {
    _error = QString::fromLocal8Bit(error.what());
  }
  QMetaObject::invokeMethod(
      this, [this] { end(); }, Qt::QueuedConnection);
}

void NYXReconstructionRun::end()
{
  _thread.join();
  _isRunning = false;
  emit ended(_isDone);
}
