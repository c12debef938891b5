#pragma once

#include <QString>

class ImageSource;

/// The file of an image, the first one of a mosaic; empty for an image in memory.
QString imageSourceFile(const ImageSource& source);

/// The same text for sources of the same image, and only for them. A file that was written anew holds another one.
QString imageSourceKey(const ImageSource& source);
