#include "app/core/nyxpreferences.h"
#include "app/core/nyxsettings.h"
#include "app/nyxguardedrun.h"
#include "app/nyxpluginserver.h"
#include "app/nyxrootwindow.h"

#include <QApplication>
#include <QIcon>

#include <clocale>
#include <iostream>
#include <locale>
#include <string_view>

namespace
{
constexpr auto usage = "Usage: mirelo [STACK.sdf ...]\n"
                       "Reconstructs and measures biological structures in 3D from stacks of slice images.\n"
                       "Each argument is a stack file to open.\n\n"
                       "  --help     print this text and exit\n"
                       "  --version  print the version and exit\n";

/// Answers --help and --version, which need no display. False when there is a program to start.
bool answersWithoutWindow(int argc, char** argv)
{
  for (int i = 1; i < argc; ++i)
  {
    const std::string_view argument = argv[i];
    if (argument == "--help") std::cout << usage;
    if (argument == "--version") std::cout << "mirelo " MIRELO_VERSION "\n";
    if (argument == "--help" || argument == "--version") return true;
  }
  return false;
}

int runWindows()
{
  auto* window = new NYXRootWindow; // deletes itself when the program quits
  const QStringList arguments = QCoreApplication::arguments();
  for (int i = 1; i < arguments.size(); ++i) window->startupOpenStack(arguments[i]);
  return QCoreApplication::exec(); // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks)
}
} // namespace

int main(int argc, char** argv)
{
  if (answersWithoutWindow(argc, argv)) return 0;

  QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
  QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
  QCoreApplication::setAttribute(Qt::AA_CompressHighFrequencyEvents, false);
  QCoreApplication::setAttribute(Qt::AA_CompressTabletEvents, false); // a stroke keeps all its points
  QApplication application(argc, argv);
  QCoreApplication::setOrganizationName("VELK");
  QCoreApplication::setApplicationName("Mirelo");
  QCoreApplication::setApplicationVersion(MIRELO_VERSION);
  QApplication::setStyle("Fusion");

  NYXSettings::load();
  NYXPreferences::load();
  NYXPluginServer::server().loadPlugins();
  QObject::connect(&application, &QApplication::lastWindowClosed, &application, &QApplication::quit);

  // Every number that is read or written has a decimal point, whatever the user's locale.
  std::setlocale(LC_NUMERIC, "C");
  std::locale::global(std::locale::classic());

  const int result = guardedRun(runWindows);

  NYXSettings::save();
  NYXPreferences::save();
  return result;
}
