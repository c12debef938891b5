#pragma once

#include "image/pixelmatrix.h"
#include "image/voxelcalibration.h"
#include "image/voxelmatrixheader.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

class ProgressSubject;

/// Stack of equally sized planes and the physical size of one voxel.
///
/// Voxel (i, j, k) is row i, column j of plane k, all 0-based. All voxels lie in one block, plane after plane, row
/// after row, so that j runs along contiguous memory; planes and rows are views into it. Sizes count voxels; the
/// calibration gives lengths in its own LengthUnit.
template <class T> class VoxelMatrix
{
public:
  /// Type of sums: long enough for any number of voxels.
  using Sum = std::conditional_t<std::is_same_v<T, long double>, long double, double>;

  VoxelMatrix() = default;
  /// Uninitialised voxels. \throw SizeError  as setSize()
  VoxelMatrix(int size1, int size2, int size3) { setSize(size1, size2, size3); }
  /// See load().
  explicit VoxelMatrix(const std::string& filename) { load(filename); }
  VoxelMatrix(const VoxelMatrix& other);
  VoxelMatrix(VoxelMatrix&& other) noexcept { swap(other); }
  virtual ~VoxelMatrix() { freeElements(_block, getNumVoxels()); }
  VoxelMatrix& operator=(const VoxelMatrix& other);
  VoxelMatrix& operator=(VoxelMatrix&& other) noexcept;

  /// Voxel (i, j, k). Unchecked: the caller guarantees contains(i, j, k).
  T& operator()(int i, int j, int k) { return _block[indexOf(i, j, k)]; }
  const T& operator()(int i, int j, int k) const { return _block[indexOf(i, j, k)]; }
  /// Plane k, a view. Unchecked.
  PixelMatrix<T>& operator[](int k) { return _planes[static_cast<std::size_t>(k)]; }
  const PixelMatrix<T>& operator[](int k) const { return _planes[static_cast<std::size_t>(k)]; }
  /// The block of all voxels, plane after plane.
  T* data() { return _block; }
  const T* data() const { return _block; }

  /// Number of rows.
  int getSize1() const { return _size1; }
  /// Number of columns.
  int getSize2() const { return _size2; }
  /// Number of planes.
  int getSize3() const { return _size3; }
  /// (rows, columns, planes).
  Vector<int> getSize() const { return Vector<int>{_size1, _size2, _size3}; }
  std::size_t getNumVoxels() const
  {
    return static_cast<std::size_t>(_size1) * static_cast<std::size_t>(_size2) * static_cast<std::size_t>(_size3);
  }
  bool contains(int i, int j, int k) const
  {
    return 0 <= i && i < _size1 && 0 <= j && j < _size2 && 0 <= k && k < _size3;
  }
  template <class U> bool sameSizeAs(const VoxelMatrix<U>& other) const
  {
    return _size1 == other.getSize1() && _size2 == other.getSize2() && _size3 == other.getSize3();
  }

  /// Makes room: unchanged sizes keep the values, otherwise they are unspecified.
  /// \throw SizeError  a negative size, more bytes than can be counted, or more than 65536 planes without voxels
  void setSize(int size1, int size2, int size3);
  void swap(VoxelMatrix& other) noexcept;

  const VoxelCalibration& getVoxelCalibration() const { return _voxelCalibration; }
  /// The planes get its pixelCalibration().
  void setVoxelCalibration(const VoxelCalibration& calibration);

  /// Equal sizes and voxels, whatever the calibrations.
  bool operator==(const VoxelMatrix& other) const;
  bool operator!=(const VoxelMatrix& other) const { return !(*this == other); }

  /// Voxel by voxel with the ordinary numeric conversion, for U = unsigned char, int, float, double and long double;
  /// the calibration is kept.
  template <class U> VoxelMatrix<U> toType() const;

  // Filling.
  void setZeros() { fill(T(0)); }
  void setOnes() { fill(T(1)); }
  void fill(T value);
  /// Replaces every voxel x by f(x).
  template <class Function> void apply(Function f)
  {
    T* const end = _block + getNumVoxels();
    for (T* x = _block; x != end; ++x) *x = f(*x);
  }
  /// Reverses the order of the planes.
  void reverse();

  // Arithmetic, voxel by voxel. \throw SizeError  other sizes   \throw MathError  integers divided by zero
  VoxelMatrix& operator+=(const VoxelMatrix& other);
  VoxelMatrix& operator-=(const VoxelMatrix& other);
  VoxelMatrix& operator*=(const VoxelMatrix& other);
  VoxelMatrix& operator/=(const VoxelMatrix& other);
  VoxelMatrix& operator+=(T x);
  VoxelMatrix& operator-=(T x);
  VoxelMatrix& operator*=(T x);
  VoxelMatrix& operator/=(T x);

  // Pieces. RangeError when the piece is not inside this matrix.
  /// Overwrites voxels with those of the block, its first one at (i, j, k).
  void paste(int i, int j, int k, const VoxelMatrix& block);
  /// The voxels from (i0, j0, k0) to (i1, j1, k1), both included, with the same calibration.
  VoxelMatrix copy(int i0, int j0, int k0, int i1, int j1, int k1) const;
  /// All voxels, plane after plane, row after row. \throw SizeError  more than a vector can hold
  Vector<T> cat() const;

  // Statistics. SizeError for an empty matrix; NaN is passed over by min, max and range.
  Sum sum() const;
  T min() const;
  T max() const;
  /// (min, max).
  Vector<T> range() const;
  /// Numbers of voxels per bin, see histogramOf(). \throw ValueError  count < 1
  Vector<long> histogram(Real<T> origin, Real<T> width, int count) const;
  /// Only of voxels whose mask voxel is not 0. \throw SizeError  a mask of another size
  Vector<long> histogram(Real<T> origin, Real<T> width, int count, const VoxelMatrix& mask) const;

  /// Writes a voxel-matrix file; ".vm" is appended to a name without this suffix.
  /// \throw FileWriteError  the file exists and must not be overwritten, cannot be written, or there are no voxels
  void save(const std::string& filename, bool overwrite) const;
  /// The same, plane by plane: a step of the subject counts them. \throw Cancelled  the user stopped it; no file is
  /// written then
  void save(const std::string& filename, bool overwrite, ProgressSubject& subject) const;
  /// Reads a voxel-matrix file or, when the suffix is "tif" or "tiff", a TIFF stack. On an error the matrix stays.
  /// Files of small integers do not tell their type: voxels as wide as T are read as T, others as unsigned numbers.
  /// \throw FileReadError    the file cannot be opened
  /// \throw FileFormatError  it is not what it should be
  /// \throw TypeError        the file holds voxels of another type than T
  /// \throw RangeError       a voxel does not fit T
  void load(const std::string& filename);
  /// Only the header of a voxel-matrix file. \throw FileReadError, FileFormatError
  static VoxelMatrixHeader loadHeader(const std::string& filename);

  /// Reads all planes of a TIFF file but thumbnails. The first two components of the voxel size are crossed: the height
  /// is the pixel width, the width the pixel height. On an error the matrix stays.
  /// \throw FileError  also for planes of different sizes   \throw RangeError  a grey level does not fit T
  void loadTiffStackFile(const std::string& filename);
  /// Writes a TIFF file of 8-bit planes that loadTiffStackFile() reads back, crossing the voxel size again. The
  /// distance of planes is read back when there are several. \throw FileWriteError  the file exists and must not be
  /// overwritten, cannot be written, the voxels are not all whole numbers of 0 to 255, or no resolution can be that of
  /// the voxel size
  void saveAsTiff(const std::string& filename, bool overwrite) const;

  /// Readable text, for debugging.
  void print(std::ostream& stream) const;

private:
  std::size_t indexOf(int i, int j, int k) const
  {
    return (static_cast<std::size_t>(k) * static_cast<std::size_t>(_size1) + static_cast<std::size_t>(i)) *
               static_cast<std::size_t>(_size2) +
           static_cast<std::size_t>(j);
  }
  void requireSameSize(const VoxelMatrix& other, const char* where) const;
  void requireVoxels(const char* where) const;
  template <class Function> void forEachRow(Function f);
  template <class Function> void forEachRow(const VoxelMatrix& other, Function f, const char* where);

  int _size1 = 0;
  int _size2 = 0;
  int _size3 = 0;
  T* _block = nullptr;
  std::vector<PixelMatrix<T>> _planes; // views into the block
  VoxelCalibration _voxelCalibration;
};

IMAGE_EXTERN_TEMPLATE(VoxelMatrix)
