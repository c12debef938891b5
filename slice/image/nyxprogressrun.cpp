#include "slice/image/nyxprogressrun.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QMetaObject>
#include <QProgressDialog>

#include <chrono>
#include <future>

namespace
{
constexpr std::chrono::milliseconds patience(150); // without a dialog
constexpr int numSteps = 1000;

/// Passes the news of the working thread on to the dialog and an observer in the thread of the windows.
class ProgressRelay : public ProgressObserver
{
public:
  ProgressRelay(ProgressSubject& subject, QProgressDialog& dialog, ProgressObserver* observer)
    : _subject(subject), _dialog(dialog), _observer(observer)
  {
    _subject.addObserver(*this);
  }
  ProgressRelay(const ProgressRelay&) = delete;
  ProgressRelay& operator=(const ProgressRelay&) = delete;
  ~ProgressRelay() override { _subject.removeObserver(*this); }

  void started(const std::string& message) override
  {
    post(
        [this, message]
        {
          _dialog.setLabelText(QString::fromStdString(message));
          if (_observer) _observer->started(message);
        });
  }
  void progressed(double share) override
  {
    post(
        [this, share]
        {
          _dialog.setValue(qMin(qRound(share * numSteps), numSteps - 1)); // the last step would close it
          if (_observer) _observer->progressed(share);
        });
  }
  void finished() override
  {
    post(
        [this]
        {
          if (_observer) _observer->finished();
        });
  }

private:
  /// Calls the function in the thread of the dialog, while there is one.
  template <class Function> void post(Function function)
  {
    QMetaObject::invokeMethod(&_dialog, function, Qt::QueuedConnection);
  }

  ProgressSubject& _subject;
  QProgressDialog& _dialog;
  ProgressObserver* _observer;
};
/// Lets an event loop, of another thread, end with the scope.
class LoopEnd
{
public:
  explicit LoopEnd(QEventLoop& loop) : _loop(loop) {}
  LoopEnd(const LoopEnd&) = delete;
  LoopEnd& operator=(const LoopEnd&) = delete;
  ~LoopEnd() { QMetaObject::invokeMethod(&_loop, &QEventLoop::quit, Qt::QueuedConnection); }

private:
  QEventLoop& _loop;
};
} // namespace

bool runWithProgress(QWidget* parent, const QString& title, ProgressSubject& subject, ProgressObserver* observer,
                     const std::function<void()>& work)
{
  QProgressDialog dialog(parent);
  dialog.reset(); // it shows itself otherwise
  dialog.setObjectName("progressDialog");
  dialog.setWindowTitle(title);
  dialog.setWindowModality(Qt::ApplicationModal);
  dialog.setAutoClose(false);
  dialog.setAutoReset(false);
  dialog.setRange(0, numSteps);
  QObject::connect(&dialog, &QProgressDialog::canceled, &dialog, [&subject] { subject.cancel(); });
  const ProgressRelay relay(subject, dialog, observer);

  QEventLoop loop;
  std::future<void> done = std::async(std::launch::async,
                                      [&loop, &work]
                                      {
                                        const LoopEnd end(loop);
                                        work();
                                      });
  if (done.wait_for(patience) != std::future_status::ready)
  {
    dialog.show();
    loop.exec();
  }
  QCoreApplication::sendPostedEvents(&dialog, QEvent::MetaCall); // the last news
  try
  {
    done.get();
    return true;
  }
  catch (const Cancelled&)
  {
    return false;
  }
}
