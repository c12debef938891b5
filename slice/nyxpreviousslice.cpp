#include "slice/nyxpreviousslice.h"

#include "app/core/nyxeventserver.h"
#include "model/modelitem.h"
#include "slice/nyxcontourvertices.h"

#include <algorithm>
#include <cmath>

namespace
{
PlaneMap planeMap(const Vector<float>& coefficients)
{
  PlaneMap map;
  for (int i = 0; i < 6; ++i) map.m[i] = static_cast<double>(coefficients[i]);
  return map;
}

/// From pixels of the slice before to those of a slice.
PlaneMap mapFromPrevious(const StackReconstruction<float>& reconstruction, const StackSlice& slice)
{
  const int i = slice.getIndex();
  return planeMap(reconstruction.getMap(i)).inverse().after(planeMap(reconstruction.getMap(i - 1)));
}

/// Far beyond any image, where nothing overflows yet.
int nearestPixel(double position)
{
  constexpr double farthest = 1 << 28;
  return static_cast<int>(std::floor(std::clamp(position, -farthest, farthest) + 0.5));
}

Vertices<int> mappedVertices(const Vertices<int>& vertices, const PlaneMap& map)
{
  Vertices<int> mapped = vertices;
  int* position = mapped.data();
  for (int i = 0; i < mapped.getNumVertices(); ++i, position += 2)
  {
    double u = 0, v = 0;
    map.apply(position[0], position[1], u, v);
    position[0] = nearestPixel(u);
    position[1] = nearestPixel(v);
  }
  return mapped;
}

/// The pixels around the mapped box.
BoundingBox<int> mappedBox(const BoundingBox<int>& box, const PlaneMap& map)
{
  BoundingBox<int> mapped;
  for (int corner = 0; corner < 4; ++corner)
  {
    const double x = corner % 2 == 0 ? box.getMinimum()[0] - 0.5 : box.getMaximum()[0] + 0.5;
    const double y = corner < 2 ? box.getMinimum()[1] - 0.5 : box.getMaximum()[1] + 0.5;
    double u = 0, v = 0;
    map.apply(x, y, u, v);
    mapped.add(Vector<int>{nearestPixel(u), nearestPixel(v)});
  }
  return mapped;
}

RLEItemSet mappedRegion(const RLEItemSet& region, const PlaneMap& map, const BoundingBox<int>& limits)
{
  std::vector<RLEItem> runs;
  if (region.isEmpty()) return {};
  const BoundingBox<int> box = mappedBox(region.boundingBox(), map).intersection(limits);
  if (box.isEmpty()) return {};
  const PlaneMap back = map.inverse();
  const auto isInside = [&](int x, int y)
  {
    double u = 0, v = 0;
    back.apply(x, y, u, v);
    return region.contains(nearestPixel(u), nearestPixel(v));
  };
  for (int x = box.getMinimum()[0]; x <= box.getMaximum()[0]; ++x)
  {
    int begin = box.getMinimum()[1];
    for (int y = begin; y <= box.getMaximum()[1] + 1; ++y)
    {
      if (y <= box.getMaximum()[1] && isInside(x, y)) continue;
      if (y > begin) runs.emplace_back(x, begin, y - begin);
      begin = y + 1;
    }
  }
  return RLEItemSet(std::move(runs));
}

} // namespace

void PlaneMap::apply(double x, double y, double& u, double& v) const
{
  u = m[0] * x + m[1] * y + m[2];
  v = m[3] * x + m[4] * y + m[5];
}

PlaneMap PlaneMap::inverse() const
{
  const double determinant = m[0] * m[4] - m[1] * m[3];
  if (!std::isnormal(determinant))
    throw ValueError("PlaneMap PlaneMap::inverse() const", "A slice without extent: check its calibration");
  PlaneMap map;
  map.m[0] = m[4] / determinant;
  map.m[1] = -m[1] / determinant;
  map.m[3] = -m[3] / determinant;
  map.m[4] = m[0] / determinant;
  map.m[2] = -(map.m[0] * m[2] + map.m[1] * m[5]);
  map.m[5] = -(map.m[3] * m[2] + map.m[4] * m[5]);
  return map;
}

PlaneMap PlaneMap::after(const PlaneMap& first) const
{
  PlaneMap map;
  for (int row = 0; row < 2; ++row)
  {
    const double* const r = m + 3 * row;
    for (int column = 0; column < 3; ++column)
      map.m[3 * row + column] = r[0] * first.m[column] + r[1] * first.m[3 + column] + (column == 2 ? r[2] : 0);
  }
  return map;
}

std::unique_ptr<ModelItem> mappedCopy(const ModelItem& item, const PlaneMap& map, const BoundingBox<int>& limits)
{
  auto copy = std::make_unique<ModelItem>(item);
  copy->setSlice(nullptr);
  if (item.isRegion())
    copy->setRLEItemSet(mappedRegion(item.getRLEItemSet(), map, limits));
  else
    copy->setVertices(mappedVertices(item.getVertices(), map));
  copy->removeSelection();
  return copy;
}

NYXPreviousSlice::NYXPreviousSlice(QObject* parent) : QObject(parent)
{
  NYXEventServer::attach(*this);
}

void NYXPreviousSlice::setSlice(StackSlice* slice)
{
  _slice = slice;
  _items.reset();
}

NYXStack& NYXPreviousSlice::stack() const
{
  return static_cast<NYXStack&>(*_slice->getStack());
}

const StackSlice& NYXPreviousSlice::items()
{
  if (_items) return *_items;
  auto items = std::make_unique<StackSlice>();
  if (hasPrevious())
  {
    const PlaneMap map = mapFromPrevious(stack().getReconstruction(), *_slice);
    for (const ModelItem* item : _slice->prevSlice()->getItems())
    {
      ModelItem* const copy = mappedCopy(*item, map, imageBoxOf(*_slice)).release();
      copy->setSlice(items.get());
      copy->attachToSlice();
    }
  }
  _items = std::move(items);
  return *_items;
}

std::vector<std::unique_ptr<ModelItem>> NYXPreviousSlice::copies(int& numLeftOut)
{
  const BoundingBox<int> box = imageBoxOf(*_slice);
  std::vector<std::unique_ptr<ModelItem>> copies;
  numLeftOut = 0;
  for (const ModelItem* item : items().getItems())
  {
    auto copy = std::make_unique<ModelItem>(*item);
    copy->setSlice(_slice);
    if (cutTo(box, *copy))
      copies.push_back(std::move(copy));
    else
      ++numLeftOut;
  }
  return copies;
}

void NYXPreviousSlice::sliceImageCalibrationEvent(const NYXSliceImageCalibrationEvent& event)
{
  forget(event.getSlice().getStack());
}

void NYXPreviousSlice::follow(const NYXModelItemEvent& event)
{
  if (hasPrevious() && event.getItem().getSlice() == _slice->prevSlice()) forget(nullptr);
}

void NYXPreviousSlice::forget(const Stack* stack)
{
  if (_slice == nullptr || (stack != nullptr && _slice->getStack() != stack)) return;
  emit changed();
  _items.reset();
}
