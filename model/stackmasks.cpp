// The masks of stacks: label volumes of what is drawn on the slices.

#include "image/voxelmatrix.h"
#include "model/contourscan.h"
#include "model/stack.h"
#include "numeric/exception.h"

#include <algorithm>
#include <cstdint>

namespace
{
template <class T> T checkedLabel(int label, const char* where)
{
  const T value = static_cast<T>(label);
  if (static_cast<std::int64_t>(value) != label)
    throw RangeError(where, "The label " + std::to_string(label) + " does not fit the type of the volume");
  return value;
}

template <class T> void paintContour(PixelMatrix<T>& plane, const Vertices<int>& contour, T label)
{
  const int width = plane.getSize2();
  ContourScan scan(contour, ContourScan::Lines::Rows, 0, plane.getSize1() - 1);
  while (scan.next())
  {
    T* const row = plane.data() + static_cast<std::ptrdiff_t>(scan.getLine()) * width;
    for (const ContourScan::Run& run : scan.getRuns())
    {
      const auto first = std::max<std::int64_t>(run.first, 0), last = std::min<std::int64_t>(run.last, width - 1);
      if (first <= last) std::fill(row + first, row + last + 1, label);
    }
  }
}

template <class T> void paintItem(PixelMatrix<T>& plane, const ModelItem& item, T label)
{
  if (item.isRegion())
    item.getRLEItemSet().toMask(plane, label);
  else if (item.isClosed())
    paintContour(plane, item.getVertices(), label);
}

template <class T> void requirePlanes(const VoxelMatrix<T>& volume, const Stack& stack, const char* where)
{
  if (volume.getSize3() != stack.getNumSlices())
    throw SizeError(where, "The volume has " + std::to_string(volume.getSize3()) + " planes, the stack " +
                               std::to_string(stack.getNumSlices()) + " slices");
}
} // namespace

template <class T> void Stack::writeModelItemMask(VoxelMatrix<T>& volume, const ModelItem& item, int label) const
{
  constexpr const char* where = "void Stack::writeModelItemMask(VoxelMatrix<T>&, const ModelItem&, int) const";
  requirePlanes(volume, *this, where);
  const int k = findSlice(item.getSlice());
  if (k < 0) throw UsageError(where, "The item lies on no slice of the stack");
  paintItem(volume[k], item, checkedLabel<T>(label, where));
}

template <class T> void Stack::writeModelMask(VoxelMatrix<T>& volume, const Model& model, int label) const
{
  constexpr const char* where = "void Stack::writeModelMask(VoxelMatrix<T>&, const Model&, int) const";
  requirePlanes(volume, *this, where);
  const T value = checkedLabel<T>(label, where);
  for (const ModelItem* item : model.getItems())
    if (const int k = findSlice(item->getSlice()); k >= 0) paintItem(volume[k], *item, value);
}

template <class T> void Stack::writeModelMasks(VoxelMatrix<T>& volume) const
{
  checkedLabel<T>(getNumModels(), "void Stack::writeModelMasks(VoxelMatrix<T>&) const"); // before anything is painted
  for (int i = 0; i < getNumModels(); ++i) writeModelMask(volume, *getModel(i), i + 1);
}

#define INSTANTIATE_MASKS(T)                                                                                           \
  template void Stack::writeModelItemMask<T>(VoxelMatrix<T>&, const ModelItem&, int) const;                            \
  template void Stack::writeModelMask<T>(VoxelMatrix<T>&, const Model&, int) const;                                    \
  template void Stack::writeModelMasks<T>(VoxelMatrix<T>&) const;
IMAGE_FOR_EACH_TYPE(INSTANTIATE_MASKS)
