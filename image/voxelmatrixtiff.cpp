// Voxel matrices as multi-page TIFF files.
#include "image/image.h"
#include "image/imagereader.h"
#include "image/imagesourcetiffstackplane.h"
#include "image/voxelmatrix.h"

template <class T> void VoxelMatrix<T>::loadTiffStackFile(const std::string& filename)
{
  ImageSourceTiffStackPlane source(filename);
  const PixelCalibration pixels = source.getPixelCalibration();
  VoxelCalibration calibration;
  calibration.setVoxelSize({pixels.getPixelWidth(), pixels.getPixelHeight(), source.getVoxelSizeZ()});
  calibration.setLengthUnit(pixels.getLengthUnit());
  VoxelMatrix fresh(source.getSize1(), source.getSize2(), source.getNumImages());
  Image image;
  for (int k = 0; k < fresh.getSize3(); ++k)
  {
    source.setPlane(k);
    ImageReader::read(image, source);
    fresh[k].convertFromImage(image);
  }
  fresh.setVoxelCalibration(calibration);
  swap(fresh);
}

IMAGE_INSTANTIATE(VoxelMatrix)
