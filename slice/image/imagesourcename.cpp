#include "slice/image/imagesourcename.h"

#include "image/imagesourcefile.h"
#include "image/imagesourcefilemosaic.h"
#include "image/imagesourcelsmstackplane.h"
#include "image/imagesourcetiffstackplane.h"
#include "image/imagesourcevoxelmatrixfileplane.h"
#include "image/imagesourcevoxelmatrixplane.h"

#include <QDateTime>
#include <QFileInfo>
#include <QStringList>

namespace
{
/// The file's name, its size and when it was written last.
QString fileState(const QString& filename)
{
  const QFileInfo info(filename);
  return QString("%1 %2 ").arg(info.size()).arg(info.lastModified().toMSecsSinceEpoch()) + filename;
}

/// The size of the grid, then a line per tile with its place.
QString tiles(const ImageSourceFileMosaic& mosaic)
{
  QStringList tiles{QString("%1 %2").arg(mosaic.getRows()).arg(mosaic.getCols())};
  for (const auto& [place, filename] : mosaic.getFilenames())
    tiles << QString("%1 %2 ").arg(place.first).arg(place.second) + fileState(QString::fromStdString(filename));
  return tiles.join('\n');
}

/// The matrix's address and the plane.
QString matrixPlane(const ImageSourceVoxelMatrixPlane& source)
{
  const void* address = nullptr;
  if (source.isDefined()) source.visitMatrix([&address](const auto& matrix) { address = &matrix; });
  return QString::asprintf("%p %d", address, source.getPlane());
}

/// File and plane.
template <class Source> QString filePlane(const ImageSource& source)
{
  return QString::number(static_cast<const Source&>(source).getPlane()) + ' ' + fileState(imageSourceFile(source));
}
} // namespace

QString imageSourceFile(const ImageSource& source)
{
  const auto name = [&source]() -> std::string
  {
    switch (source.getType())
    {
    case ImageSourceType::File:
      return static_cast<const ImageSourceFile&>(source).getFilename();
    case ImageSourceType::FileMosaic:
      return static_cast<const ImageSourceFileMosaic&>(source).getFilename(0, 0);
    case ImageSourceType::TiffStackPlane:
      return static_cast<const ImageSourceTiffStackPlane&>(source).getTiffStackFilename();
    case ImageSourceType::LSMStackPlane:
      return static_cast<const ImageSourceLSMStackPlane&>(source).getLSMStackFilename();
    case ImageSourceType::VoxelMatrixFilePlane:
      return static_cast<const ImageSourceVoxelMatrixFilePlane&>(source).getVoxelMatrixFilename();
    case ImageSourceType::VoxelMatrixPlane:
      return "";
    }
    return "";
  };
  return QString::fromStdString(name());
}

QString imageSourceKey(const ImageSource& source)
{
  switch (source.getType())
  {
  case ImageSourceType::File:
    return "file " + fileState(imageSourceFile(source));
  case ImageSourceType::FileMosaic:
    return "mosaic " + tiles(static_cast<const ImageSourceFileMosaic&>(source));
  case ImageSourceType::TiffStackPlane:
    return "tiff " + filePlane<ImageSourceTiffStackPlane>(source);
  case ImageSourceType::LSMStackPlane:
    return "lsm " + filePlane<ImageSourceLSMStackPlane>(source);
  case ImageSourceType::VoxelMatrixFilePlane:
    return "vm " + filePlane<ImageSourceVoxelMatrixFilePlane>(source);
  case ImageSourceType::VoxelMatrixPlane:
    return "matrix " + matrixPlane(static_cast<const ImageSourceVoxelMatrixPlane&>(source));
  }
  return QString();
}
