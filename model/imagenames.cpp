#include "model/imagenames.h"

#include "image/imagesourcefile.h"
#include "image/imagesourcefilemosaic.h"
#include "image/imagesourcelsmstackplane.h"
#include "image/imagesourcetiffstackplane.h"
#include "image/imagesourcevoxelmatrixfileplane.h"

#include <filesystem>

namespace
{
/// Calls set(name) with the resolved name, when it is another one.
template <class Set> void resolve(const std::string& name, const std::string& folder, const Set& set)
{
  if (!name.empty() && !std::filesystem::path(name).is_absolute())
    set((std::filesystem::absolute(folder) / name).lexically_normal().string());
}

void resolveTiles(ImageSourceFileMosaic& mosaic, const std::string& folder)
{
  const std::map<ImageSourceFileMosaic::Place, std::string> names = mosaic.getFilenames();
  for (const auto& [place, name] : names)
    resolve(name, folder,
            [&, place = place](const std::string& full) { mosaic.setFilename(place.first, place.second, full); });
}
} // namespace

std::unique_ptr<ImageSource> withResolvedNames(const ImageSource& source, const std::string& folder)
{
  std::unique_ptr<ImageSource> copy = source.clone();
  switch (source.getType())
  {
  case ImageSourceType::File:
  {
    auto& file = static_cast<ImageSourceFile&>(*copy);
    resolve(file.getFilename(), folder, [&](const std::string& name) { file.setFilename(name); });
    break;
  }
  case ImageSourceType::FileMosaic:
    resolveTiles(static_cast<ImageSourceFileMosaic&>(*copy), folder);
    break;
  case ImageSourceType::TiffStackPlane:
  {
    auto& plane = static_cast<ImageSourceTiffStackPlane&>(*copy);
    resolve(plane.getTiffStackFilename(), folder, [&](const std::string& name) { plane.setTiffStackFilename(name); });
    break;
  }
  case ImageSourceType::LSMStackPlane:
  {
    auto& plane = static_cast<ImageSourceLSMStackPlane&>(*copy);
    resolve(plane.getLSMStackFilename(), folder, [&](const std::string& name) { plane.setLSMStackFilename(name); });
    break;
  }
  case ImageSourceType::VoxelMatrixFilePlane:
  {
    auto& plane = static_cast<ImageSourceVoxelMatrixFilePlane&>(*copy);
    resolve(plane.getVoxelMatrixFilename(), folder,
            [&](const std::string& name) { plane.setVoxelMatrixFilename(name); });
    break;
  }
  case ImageSourceType::VoxelMatrixPlane:
    break;
  }
  return copy;
}
