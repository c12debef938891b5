#include "app/nyxpluginserver.h"

#include "app/core/nyxexception.h"
#include "app/nyxplugin.h"
#include "app/nyxpluginrun.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonObject>
#include <QLibrary>
#include <QPluginLoader>
#include <QStandardPaths>

#include <algorithm>
#include <iostream>

namespace
{
QStringList namedFolders()
{
  return qEnvironmentVariable("MIRELO_PLUGIN_PATH").split(QDir::listSeparator(), Qt::SkipEmptyParts);
}

QStringList standardFolders()
{
  return {QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).filePath("plugins"),
          QDir(QCoreApplication::applicationDirPath()).filePath(MIRELO_PLUGIN_DIR)};
}

/// Why a library was not loaded, without the name of its file, which Qt and the system repeat.
QString reasonOf(const QPluginLoader& loader, const QString& file)
{
  QString reason = loader.errorString();
  const QString failure = "Cannot load library " + file + ": (";
  if (reason.startsWith(failure) && reason.endsWith(')')) reason = reason.mid(failure.size()).chopped(1);
  reason.remove(file + ": ");
  return reason.replace("The file '" + file + "'", "it").replace("'" + file + "'", "it");
}

/// What keeps a library from being loaded, by what it says of itself; no code of it runs before this is known.
QString objection(const QPluginLoader& loader, const QString& file)
{
  const QString iid = loader.metaData().value("IID").toString();
  if (iid == MIRELO_PLUGIN_IID) return {};
  if (iid.isEmpty()) return reasonOf(loader, file);
  const QString family = MIRELO_PLUGIN_FAMILY;
  if (!iid.startsWith(family)) return "it is no plug-in of this program";
  return QString("it is made for version %1, this is " MIRELO_VERSION).arg(iid.mid(family.size()));
}

/// \throw anything  what the code of the library throws
NYXLoadedPlugin load(const QString& file)
{
  const std::string where = "NYXLoadedPlugin load(const QString&)";
  QPluginLoader loader(file);
  if (const QString reason = objection(loader, file); !reason.isEmpty())
    throw NYXException(where, reason.toStdString());
  // A symbol that is missing is found now and not when it is called; actions of the plug-in may outlive its last run.
  loader.setLoadHints(QLibrary::ResolveAllSymbolsHint | QLibrary::PreventUnloadHint);
  auto* const plugin = qobject_cast<NYXPlugin*>(loader.instance());
  if (plugin == nullptr)
    throw NYXException(where, (loader.isLoaded() ? "it holds no NYXPlugin" : reasonOf(loader, file)).toStdString());
  const QString name = plugin->name().simplified();
  if (name.isEmpty()) throw NYXException(where, "it has no name");
  return {name, file, plugin};
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
  _problems.clear();
  for (const QString& folder : namedFolders())
  {
    if (!QDir(folder).exists()) noteProblem("MIRELO_PLUGIN_PATH names a folder that does not exist: " + folder);
    loadFolder(folder);
  }
  for (const QString& folder : standardFolders()) loadFolder(folder);
}

void NYXPluginServer::loadFolder(const QString& folder)
{
  for (const QFileInfo& info : QDir(folder).entryInfoList(QDir::Files, QDir::Name))
  {
    const QString file = info.canonicalFilePath();
    if (!QLibrary::isLibrary(info.fileName()) || file.isEmpty()) continue;
    const bool isKnown = std::ranges::find(_plugins, file, &NYXLoadedPlugin::file) != _plugins.end();
    if (!isKnown) loadPlugin(file);
  }
}

void NYXPluginServer::loadPlugin(const QString& file)
{
  try
  {
    NYXLoadedPlugin loaded = load(file);
    const auto first = std::ranges::find(_plugins, loaded.name, &NYXLoadedPlugin::name);
    if (first == _plugins.end()) return _plugins.push_back(std::move(loaded));
    noteProblem(QString("cannot use plug-in %1: %2 is named %3, too").arg(file, first->file, loaded.name));
  }
  catch (...)
  {
    noteProblem(QString("cannot load plug-in %1: %2").arg(file, textOfCurrentError()));
  }
}

void NYXPluginServer::noteProblem(const QString& text)
{
  _problems.append(text.simplified());
  std::cerr << "mirelo: " << _problems.last().toStdString() << "\n";
}
