#pragma once

#include <QStringList>

#include <vector>

class NYXPlugin;

/// The plug-ins found in the program's plug-in folder, the user's, and those named by MIRELO_PLUGIN_PATH.
class NYXPluginServer
{
public:
  static NYXPluginServer& server();

  /// Looks through the folders again. A library that is no plug-in or fails to load is named on the error stream, in
  /// one line.
  void loadPlugins();

  int getNumPlugins() const { return static_cast<int>(_plugins.size()); }
  NYXPlugin& getPlugin(int i) const { return *_plugins[static_cast<std::size_t>(i)]; }

private:
  NYXPluginServer() = default;
  void loadPlugin(const QString& file);

  std::vector<NYXPlugin*> _plugins; // owned by Qt's plug-in loader until the program ends
};
