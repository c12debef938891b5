// Voxel-matrix files: headers, volumes of every type, planes as images.
#include "fuzz/fuzzedfile.h"
#include "image/image.h"
#include "image/imagereader.h"
#include "image/imagesourcevoxelmatrixfileplane.h"
#include "image/voxelmatrix.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
  const FuzzedFile file(bytes, size);
#define LOAD(T) attempt([&] { VoxelMatrix<T>().load(file.getName()); });
  IMAGE_FOR_EACH_TYPE(LOAD)
#undef LOAD
  Image image;
  for (const int plane : {0, 1, -1})
    attempt([&] { ImageReader::read(image, ImageSourceVoxelMatrixFilePlane(file.getName(), plane)); });
  return 0;
}
