// Once it is loaded into the program, this plug-in chooses "Number slices" in the Plugins menu, writes what has become
// of the first stack after that, after Undo and after Redo, and quits.
#include "app/nyxplugin.h"
#include "geometry/curveprocessing/fourierdescriptors.h"
#include "geometry/reconstruction/modelmorphometry.h"
#include "model/stackslice.h"
#include "plugin_test_support.h"

namespace
{
void tellStack(const std::string& when)
{
  NYXStack& stack = NYXStackServer::server().getStack(0);
  std::cout << when << ":";
  for (int i = 0; i < 2; ++i) std::cout << " " << stack.getSlice(i)->getName();
  std::cout << ", " << stack.getSlice(stack.getNumSlices() - 1)->getName();
  if (stack.isModified()) std::cout << ", modified";
  if (stack.history().isUndoable()) std::cout << ", " << stack.history().getUndoDescription(true).toStdString();
  std::cout << std::endl;
}

void drive()
{
  tellStack("opened");
  trigger("Number slices");
  tellStack("run");
  trigger("Undo");
  tellStack("undone");
  trigger("Redo");
  tellStack("redone");
  QCoreApplication::quit();
}
} // namespace

class DrivingPlugin : public QObject, public NYXPlugin
{
  Q_OBJECT
  Q_PLUGIN_METADATA(IID MIRELO_PLUGIN_IID)
  Q_INTERFACES(NYXPlugin)

public:
  DrivingPlugin() { onceOpened(_timer, drive); }

  QString name() const override { return "Drive"; }

  /// Calls what the program itself does not; were it missing, the plug-in could not be loaded.
  Change run(const NYXStack&, ProgressSubject&) override
  {
    FourierDescriptors<float>().compute(Curve<float>(), 1);
    ModelMorphometry().run();
    return {};
  }

private:
  QTimer _timer;
};

#include "driving_plugin.moc"
