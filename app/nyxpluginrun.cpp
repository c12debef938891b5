#include "app/nyxpluginrun.h"

#include "app/core/nyxeventbatch.h"
#include "app/nyxplugin.h"
#include "slice/image/nyxprogressrun.h"

#include <exception>

namespace
{
/// What the plug-in wants to change. \throw Cancelled  the user cancelled it, which it may not have minded
NYXPlugin::Change compute(NYXPlugin& plugin, const QString& name, const NYXStack& stack, QWidget* parent,
                          ProgressObserver& observer)
{
  ProgressSubject subject;
  NYXPlugin::Change change;
  const auto work = [&]
  {
    const ProgressStep whole(subject, name.toStdString(), 1); // the plug-in's steps are parts of it
    change = plugin.run(stack, subject);
  };
  const bool isDone = runWithProgress(parent, name, subject, &observer, work);
  if (!isDone || subject.isCancelled()) throw Cancelled("NYXPlugin::Change compute(NYXPlugin&, ...)");
  return change;
}

void makeStep(const NYXPlugin::Change& change, NYXStack& stack)
{
  if (!change) return;
  const NYXEventBatch batch;
  NYXActionStep step(stack.history());
  change(stack, step);
}

NYXPluginOutcome outcomeOf(const std::function<void()>& work)
{
  try
  {
    work();
    return {NYXPluginOutcome::Done, {}};
  }
  catch (const Cancelled&)
  {
    return {NYXPluginOutcome::Canceled, {}};
  }
  catch (...)
  {
    return {NYXPluginOutcome::Failed, textOfCurrentError()};
  }
}
} // namespace

NYXPluginOutcome runPlugin(NYXPlugin& plugin, const QString& name, NYXStack& stack, QWidget* parent,
                           ProgressObserver& observer)
{
  const NYXPluginOutcome outcome = outcomeOf([&] { makeStep(compute(plugin, name, stack, parent, observer), stack); });
  observer.finished(); // the plug-in may have begun a step and not ended it
  return outcome;
}

QString textOfCurrentError()
{
  QString text;
  try
  {
    throw;
  }
  catch (const Exception& error)
  {
    text = QString::fromStdString(error.getWhat()).simplified();
  }
  catch (const std::exception& error)
  {
    text = QString::fromLocal8Bit(error.what()).simplified();
  }
  catch (...)
  {
  }
  return text.isEmpty() ? "No details available" : text;
}
