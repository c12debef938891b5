#pragma once

#include "image/imagesourcevoxelmatrixbase.h"
#include "image/voxelmatrix.h"

#include <memory>
#include <utility>
#include <variant>

class Image;
class ProgressSubject;

/// One plane, 0-based, of a voxel matrix in memory, which the source and its clones share.
class ImageSourceVoxelMatrixPlane : public ImageSourceVoxelMatrixBase
{
public:
  ImageSourceVoxelMatrixPlane() : ImageSourceVoxelMatrixBase(0) {}
  template <class T>
  explicit ImageSourceVoxelMatrixPlane(std::shared_ptr<const VoxelMatrix<T>> voxelMatrix, int plane = 0)
    : ImageSourceVoxelMatrixBase(plane), _voxelMatrix(std::move(voxelMatrix))
  {
  }

  ImageSourceType getType() const override { return ImageSourceType::VoxelMatrixPlane; }
  bool isDefined() const override;
  std::unique_ptr<ImageSource> clone() const override { return std::make_unique<ImageSourceVoxelMatrixPlane>(*this); }

  /// The plane as ImageReader::read() gives it. \throw RangeError  the source is not defined \throw Cancelled
  void readImage(Image& image, ProgressSubject& subject) const;
  /// Calls f(matrix) with the matrix, whatever its element type. \throw RangeError  the source is not defined
  template <class Function> void visitMatrix(Function f) const
  {
    requireMatrix("void ImageSourceVoxelMatrixPlane::visitMatrix(Function) const");
    std::visit([&](const auto& matrix) { f(*matrix); }, _voxelMatrix);
  }

private:
  template <class T> using Shared = std::shared_ptr<const VoxelMatrix<T>>;

  ImageHeader readHeader() const override;
  void requireMatrix(const char* where) const;

  std::variant<Shared<unsigned char>, Shared<char>, Shared<short>, Shared<unsigned short>, Shared<int>,
               Shared<unsigned int>, Shared<float>, Shared<double>, Shared<long double>>
      _voxelMatrix;
};
