// Image files: TIFF images and stacks, confocal stacks.
#include "fuzz/fuzzedfile.h"
#include "image/image.h"
#include "image/imagereader.h"
#include "image/imagesourcelsmstackplane.h"
#include "image/imagesourcetiffstackplane.h"
#include "image/voxelmatrix.h"

#include <omp.h>
#include <ostream>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
  static std::ostream nowhere(nullptr);
  ImageReader::setMagicNumberStream(nowhere);
  omp_set_num_threads(1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
  const FuzzedFile file(bytes, size);
  Image image;
  attempt([&] { ImageReader::read(image, file.getName()); });
  for (const int plane : {1, 3})
  {
    attempt([&] { ImageReader::read(image, ImageSourceTiffStackPlane(file.getName(), plane)); });
    attempt([&] { ImageReader::read(image, ImageSourceLSMStackPlane(file.getName(), plane)); });
  }
  attempt([&] { VoxelMatrix<unsigned short>().loadTiffStackFile(file.getName()); });
  return 0;
}
