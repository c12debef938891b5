// A plug-in whose run leaves its name in the environment.
#include "app/nyxplugin.h"

#include <QObject>

class RecordingPlugin : public QObject, public NYXPlugin
{
  Q_OBJECT
  Q_PLUGIN_METADATA(IID "Mirelo.NYXPlugin/1.0")
  Q_INTERFACES(NYXPlugin)

public:
  QString name() const override { return PLUGIN_NAME; }
  void run(NYXStack&) override { qputenv("MIRELO_RECORDED_PLUGIN", PLUGIN_NAME); }
};

#include "recording_plugin.moc"
