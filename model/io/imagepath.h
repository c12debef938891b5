#pragma once

#include <filesystem>

/// Absolute path without "." and "..", and without a separator at its end.
inline std::filesystem::path plainPath(const std::filesystem::path& path)
{
  const std::filesystem::path plain = std::filesystem::absolute(path).lexically_normal();
  return plain.has_filename() ? plain : plain.parent_path();
}
