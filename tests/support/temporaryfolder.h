#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

/// A new folder that is removed with everything in it.
class TemporaryFolder
{
public:
  TemporaryFolder()
  {
    std::string pattern = (std::filesystem::temp_directory_path() / "mirelo-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder");
    _path = pattern;
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() { std::filesystem::remove_all(_path); }

  std::string getPath() const { return _path.string(); }
  /// Path of a file in the folder.
  std::string file(const std::string& name) const { return (_path / name).string(); }
  /// Writes a file and gives its path.
  std::string write(const std::string& name, const std::string& content) const
  {
    std::filesystem::create_directories(std::filesystem::path(file(name)).parent_path());
    std::filesystem::remove(file(name)); // some file systems flush a file to disk when it is written over
    std::ofstream(file(name), std::ios::binary) << content;
    return file(name);
  }
  int getNumFiles() const { return static_cast<int>(std::distance(std::filesystem::directory_iterator(_path), {})); }

private:
  std::filesystem::path _path;
};

inline std::string contentOf(const std::string& path)
{
  std::ifstream stream(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(stream), {});
}
