#pragma once

#include <QString>

/// A name for the file of a stack of this name, without suffix: in one folder, on every file system, and short enough
/// for the suffixes of files and backups. "stack" when nothing of the name can be used.
QString proposedFileName(const QString& stackName);
