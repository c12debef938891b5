#pragma once

#include "model/io/stackkeyword.h"
#include "numeric/progresssubject.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the reader and the writer of stack files share: keywords, format version, log and progress.
class StackIO : public ProgressSubject
{
public:
  StackIO();
  ~StackIO() override;

  float getFileFormatVersion() const { return _fileFormatVersion; }
  void setFileFormatVersion(float version) { _fileFormatVersion = version; }
  /// Whether the format is at least of the given version.
  bool ensureFileFormatVersion(float version) const;

  /// The version that this program writes, and that files without a version have.
  static constexpr float currentFileFormatVersion = 1.05f;

  /// Messages in the order of their statements.
  const std::vector<std::string>& getLog() const { return _log; }
  /// Failures after which the stack must not be used.
  int getNumFatalErrors() const { return _numFatalErrors; }

  static constexpr int numKeywords = 54;
  /// All spellings of a keyword, the one that is written first.
  static const std::vector<std::string_view>& getSpellings(StackKeyword keyword);
  /// The spelling that is written.
  static std::string_view getString(StackKeyword keyword);
  /// The keyword of any of its spellings.
  static std::optional<StackKeyword> getKeyword(std::string_view text);
  /// Number of readers and writers that exist.
  static int getNumInstances();

  /// Replaces ";", line ends, double quotes and "#", which a quoted string cannot hold.
  static std::string exportString(std::string_view text);
  /// Undoes exportString().
  static std::string importString(std::string_view text);

protected:
  void clearLog();
  /// Adds a line, control characters shown as "?"; a log that has grown beyond use only counts on.
  void addToLog(const std::string& line);
  /// Whether lines are only counted from now on.
  bool isLogFull() const { return _numLines > maxLines; }
  void addFatalError(const std::string& line);

private:
  static constexpr long maxLines = 10000; // nobody reads more, and a file of garbage must not fill the memory

  float _fileFormatVersion = currentFileFormatVersion;
  std::vector<std::string> _log;
  long _numLines = 0;
  int _numFatalErrors = 0;
};
