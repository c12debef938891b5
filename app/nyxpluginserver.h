#pragma once

#include <QString>
#include <QStringList>

#include <vector>

class NYXPlugin;

/// A plug-in that can be run, under the name that it has in the menu.
struct NYXLoadedPlugin
{
  QString name;
  QString file;      ///< its library, with all links resolved
  NYXPlugin* plugin; ///< lives until the program ends, found again or not
};

/// The plug-ins of the folders named by MIRELO_PLUGIN_PATH, of the user's folder and of the program's, in this order.
class NYXPluginServer
{
public:
  static NYXPluginServer& server();

  /// Looks through the folders again. What cannot be used is named on the error stream, in one line each: a folder of
  /// MIRELO_PLUGIN_PATH that does not exist, a library that is no plug-in, is made for another version, cannot be
  /// loaded, throws meanwhile, has no name or the name of one that was found before.
  void loadPlugins();

  /// What the last call of loadPlugins() could not use, a line each.
  const QStringList& getProblems() const { return _problems; }

  int getNumPlugins() const { return static_cast<int>(_plugins.size()); }
  const NYXLoadedPlugin& getPlugin(int i) const { return _plugins[static_cast<std::size_t>(i)]; }

private:
  NYXPluginServer() = default;
  void loadFolder(const QString& folder);
  void loadPlugin(const QString& file);
  void noteProblem(const QString& text);

  std::vector<NYXLoadedPlugin> _plugins;
  QStringList _problems;
};
