#pragma once

#include <string>

/// Warnings of files that can be read all the same. They are held until the reading has ended well, so that a failure
/// is told in one line, by its error; then one line per file goes to the error stream. Safe to call from any thread.
/// @{

/// Keeps what is to be told of a file; the last warning counts.
void holdWarning(const std::string& filename, const std::string& message);
/// To be called when a file was read: writes what is held, unless the file was told of before. Images of a file are
/// read again and again; one line is enough.
void tellWarning(const std::string& filename);
/// @}
