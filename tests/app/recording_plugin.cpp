// A plug-in whose run leaves its name in the environment and misbehaves as MIRELO_PLUGIN_DEED says.
#include "app/core/actions/nyxstackpropertiesaction.h"
#include "app/nyxplugin.h"

#include <QObject>
#include <QThread>

#include <stdexcept>

#ifdef CALLS_WHAT_IS_MISSING
void nobodyDefinesThis();
#endif

namespace
{
bool isAskedTo(const char* deed)
{
  return qgetenv("MIRELO_PLUGIN_DEED") == deed;
}

std::unique_ptr<NYXAction> annotating(NYXStack& stack)
{
  NYXStackProperties properties(stack);
  properties.annotation = PLUGIN_NAME;
  return std::make_unique<NYXStackPropertiesAction>(stack, properties);
}
} // namespace

class RecordingPlugin : public QObject, public NYXPlugin
{
  Q_OBJECT
  Q_PLUGIN_METADATA(IID MIRELO_PLUGIN_IID)
  Q_INTERFACES(NYXPlugin)

public:
  RecordingPlugin()
  {
    if (isAskedTo("throw when made")) throw std::runtime_error("not today");
  }

  QString name() const override
  {
    if (isAskedTo("throw when named")) throw 1;
    return isAskedTo("be nameless") ? "" : PLUGIN_NAME;
  }

  Change run(const NYXStack&, ProgressSubject& progress) override
  {
    qputenv("MIRELO_RECORDED_PLUGIN", PLUGIN_NAME);
#ifdef CALLS_WHAT_IS_MISSING
    nobodyDefinesThis();
#endif
    if (isAskedTo("throw Exception")) throw ValueError("here", "bad value");
    if (isAskedTo("throw a std::exception")) throw std::runtime_error("bad\nweather");
    if (isAskedTo("throw a number")) throw 1;
    if (isAskedTo("leave a step open")) progress.start("never finished", 2);
    while (isAskedTo("wait for Cancel")) progress.throwIfCancelled("RecordingPlugin");
    while (isAskedTo("ignore Cancel") && !progress.isCancelled()) QThread::msleep(1);
    return [](NYXStack& stack, NYXActionStep& step)
    {
      step.push(annotating(stack));
      if (isAskedTo("throw half-way")) throw MathError("here", "half-way");
    };
  }
};

#include "recording_plugin.moc"
