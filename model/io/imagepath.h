#pragma once

#include <filesystem>
#include <system_error>

/// Absolute path without "." and "..", and without a separator at its end.
inline std::filesystem::path plainPath(const std::filesystem::path& path)
{
  const std::filesystem::path plain = std::filesystem::absolute(path).lexically_normal();
  return plain.has_filename() ? plain : plain.parent_path();
}

/// Path without links as far as it exists, so that ".." behind it leads where the file system says.
inline std::filesystem::path pathWithoutLinks(const std::filesystem::path& path)
{
  std::error_code error;
  const std::filesystem::path canonical = std::filesystem::weakly_canonical(std::filesystem::absolute(path), error);
  return plainPath(error ? path : canonical);
}

/// The folder of a stack file, from which the paths in it are counted.
inline std::filesystem::path stackFolder(const std::filesystem::path& stackFileName)
{
  return pathWithoutLinks(std::filesystem::absolute(stackFileName).parent_path());
}
