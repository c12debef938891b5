// Once it is loaded into the program, this plug-in saves the first stack again and again, as "old" and as "new" in
// turn, and says when each save begins and when it ends.
#include "app/nyxplugin.h"
#include "plugin_test_support.h"

namespace
{
void save()
{
  NYXStack& stack = NYXStackServer::server().getStack(0);
  stack.setName(stack.getName() == "old" ? "new" : "old");
  stack.setModified(true);
  std::cout << "begin" << std::endl;
  trigger("Save stack");
  std::cout << (stack.isModified() ? "failed" : "end") << std::endl;
}
} // namespace

class SavingPlugin : public QObject, public NYXPlugin
{
  Q_OBJECT
  Q_PLUGIN_METADATA(IID MIRELO_PLUGIN_IID)
  Q_INTERFACES(NYXPlugin)

public:
  SavingPlugin()
  {
    connect(&_saves, &QTimer::timeout, this, save);
    onceOpened(_opening, [this] { _saves.start(0); });
  }

  QString name() const override { return "Save"; }
  Change run(const NYXStack&, ProgressSubject&) override { return {}; }

private:
  QTimer _opening;
  QTimer _saves;
};

#include "saving_plugin.moc"
