#pragma once

#include <QString>

/// Rotates the backups of a file: its copies "~1" (newest) to "~N" move up by one, the oldest is dropped, and the file
/// itself is copied to "~1". Nothing is done when N is below 1 or the file does not exist.
/// \throw FileWriteError  the copy cannot be made; file and backups are then as they were
void makeBackups(const QString& file, int maxNumBackups);
