#pragma once

#include <QString>

/// The commands of a video, for the shell.
namespace VideoCommand
{
/// A name as one word of the shell, whatever is in it.
QString quoted(const QString& name);
/// The file of frame n, counted from 0, in a folder: "<folder>/%04d.png".
QString frameName(const QString& folder, int frame);
/// Tells by its exit status whether the encoder is there.
QString check();
/// Encodes the frames of a folder. The output's name is made absolute, so that it never looks like an option.
QString encode(const QString& folder, int frameRate, const QString& output);
/// Remove the frames, and the folder.
QString emptyFolder(const QString& folder);
QString removeFolder(const QString& folder);
} // namespace VideoCommand
