#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

/// What the program remembers by itself between sessions: directories, recent stacks, a dialog's size.
///
/// Loaded once at start-up and saved once at the end; in between everybody uses the shared instance.
class NYXSettings
{
public:
  static constexpr int maxNumRecentFiles = 10;

  static NYXSettings& settings();

  /// Reads each key of the settings store; a missing key keeps the value in memory.
  static void load();
  static void save();

  const QString& getInputDirectory() const { return _inputDirectory; }
  void setInputDirectory(const QString& directory) { _inputDirectory = directory; }
  const QString& getOutputDirectory() const { return _outputDirectory; }
  void setOutputDirectory(const QString& directory) { _outputDirectory = directory; }

  /// Names of the stack files opened last, newest first.
  const QStringList& getRecentFilesList() const { return _recentFiles; }

  /// Puts a file at the front and drops the oldest beyond the limit; a file that is listed already stays where it is.
  void addRecentFile(const QString& file);

  /// Size of the open-stack dialog when it was closed last; invalid when it was never shown.
  QSize getOpenStackDialogSize() const { return _openStackDialogSize; }
  void setOpenStackDialogSize(const QSize& size) { _openStackDialogSize = size; }

private:
  NYXSettings();

  QString _inputDirectory;
  QString _outputDirectory;
  QStringList _recentFiles;
  QSize _openStackDialogSize;
};
