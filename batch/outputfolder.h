#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// The folder that results go to, made with those around it when it is missing, and taken away again with them unless
/// it is kept.
class OutputFolder
{
public:
  /// \throw BatchError  the folder cannot be made
  explicit OutputFolder(const std::string& name);
  OutputFolder(const OutputFolder&) = delete;
  OutputFolder& operator=(const OutputFolder&) = delete;
  ~OutputFolder();

  void keep() { _made.clear(); }

private:
  std::vector<std::filesystem::path> _made; // innermost first
};
