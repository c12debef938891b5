#include "app/nyxpluginserver.h"

#include "app/nyxplugin.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibrary>
#include <QPluginLoader>
#include <QStandardPaths>

#include <algorithm>
#include <iostream>

namespace
{
QStringList pluginFolders()
{
  QStringList folders = qEnvironmentVariable("MIRELO_PLUGIN_PATH").split(QDir::listSeparator(), Qt::SkipEmptyParts);
  folders += QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).filePath("plugins");
  folders += QDir(QCoreApplication::applicationDirPath()).filePath("../lib/mirelo/plugins");
  return folders;
}
} // namespace

NYXPluginServer& NYXPluginServer::server()
{
  static NYXPluginServer instance;
  return instance;
}

void NYXPluginServer::loadPlugins()
{
  _plugins.clear();
  for (const QString& folder : pluginFolders())
  {
    for (const QFileInfo& file : QDir(folder).entryInfoList(QDir::Files, QDir::Name))
    {
      if (QLibrary::isLibrary(file.fileName())) loadPlugin(file.absoluteFilePath());
    }
  }
}

void NYXPluginServer::loadPlugin(const QString& file)
{
  QPluginLoader loader(file);
  auto* plugin = qobject_cast<NYXPlugin*>(loader.instance());
  if (plugin == nullptr)
  {
    const QString reason = loader.isLoaded() ? "it is no plug-in of this program" : loader.errorString();
    std::cerr << "mirelo: cannot load plug-in " << file.toStdString() << ": " << reason.simplified().toStdString()
              << "\n";
    return;
  }
  if (std::ranges::find(_plugins, plugin) == _plugins.end()) _plugins.push_back(plugin);
}
