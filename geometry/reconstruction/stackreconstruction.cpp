#include "geometry/reconstruction/stackreconstruction.h"

#include "geometry/reconstruction/regionboundaries.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stack.h"
#include "model/stackslice.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <memory>

namespace
{

/// Angles and shifts of many slices add up in this type.
template <class T> using Accumulated = std::conditional_t<std::is_same_v<T, float>, double, T>;

/// The registrations of the slices so far, added up.
template <class R> class SliceFrame
{
public:
  /// The shift is turned by the angle of the slices before, the slice itself by its own angle too.
  void add(const Registration& registration, R pixelWidth, R pixelHeight)
  {
    const R shiftX = pixelWidth * registration.getHorizontalShift();
    const R shiftY = pixelHeight * registration.getVerticalShift();
    _translationX += _cosine * shiftX + _sine * shiftY;
    _translationY += _sine * shiftX - _cosine * shiftY;
    _angle -= static_cast<R>(registration.getAngle()) * R(3.141592653589793) / 180;
    _cosine = std::cos(_angle);
    _sine = std::sin(_angle);
  }

  /// The coefficients that take pixels of an image with this centre to physical coordinates.
  template <class T> void writeMap(R pixelWidth, R pixelHeight, R centerU, R centerV, Vector<T>& map) const
  {
    const R x = pixelWidth * centerU, y = pixelHeight * centerV;
    const R coefficients[6] = {pixelWidth * _cosine, pixelHeight * _sine,    _translationX - x * _cosine - y * _sine,
                               pixelWidth * _sine,   -pixelHeight * _cosine, _translationY - x * _sine + y * _cosine};
    for (int i = 0; i < 6; ++i) map[i] = static_cast<T>(coefficients[i]);
  }

private:
  R _angle = 0; // radians
  R _cosine = 1;
  R _sine = 0;
  R _translationX = 0;
  R _translationY = 0;
};

template <class T> void mapPixel(const Vector<T>& map, T z, T u, T v, T* point)
{
  point[0] = map[0] * u + map[1] * v + map[2];
  point[1] = map[3] * u + map[4] * v + map[5];
  point[2] = z;
}

template <class T, class Pixel> void mapVertices(const Vertices<Pixel>& pixels, const Vector<T>& map, T z, T* points)
{
  const Pixel* const data = pixels.data();
  for (std::ptrdiff_t i = 0; i < pixels.getSize(); ++i)
    mapPixel<T>(map, z, static_cast<T>(data[2 * i]), static_cast<T>(data[2 * i + 1]), points + 3 * i);
}

template <class T> void mapRegion(const RLEItemSet& region, const Vector<T>& map, T z, T* points)
{
  for (const RLEItem& run : region.getItems())
    for (int i = 0; i < run.getLength(); ++i, points += 3)
      mapPixel<T>(map, z, static_cast<T>(run.getOriginX()), static_cast<T>(run.begin() + i), points);
}

/// Width and height of each slice's image; 0 without an image source.
std::vector<std::pair<int, int>> imageSizes(const Stack& stack)
{
  std::vector<std::pair<int, int>> sizes;
  for (int i = 0; i < stack.getNumSlices(); ++i)
  {
    const ImageSource* const source = stack.getSlice(i)->getImageSource();
    sizes.emplace_back(source ? source->getSize2() : 0, source ? source->getSize1() : 0);
  }
  return sizes;
}

bool isCurve(MPrimitive geometry)
{
  return geometry == MPrimitive::Polygon || geometry == MPrimitive::Polyline;
}

} // namespace

template <class T> void StackReconstruction<T>::setStack(const Stack& stack)
{
  _stack = &stack;
  computeMaps();
}

template <class T> void StackReconstruction<T>::computeMaps()
{
  if (!_stack) throw UsageError("void StackReconstruction<T>::computeMaps()", "There is no stack");
  using R = Accumulated<T>;
  const int numSlices = _stack->getNumSlices();
  const std::vector<std::pair<int, int>> sizes = imageSizes(*_stack);
  const std::vector<float> depths = _stack->absolutePositions();
  if (_zMap.getSize() != numSlices)
  {
    _maps.assign(static_cast<std::size_t>(numSlices), Vector<T>(6));
    _zMap.setSize(numSlices);
  }
  SliceFrame<R> frame;
  for (int i = 0; i < numSlices; ++i)
  {
    const StackSlice& slice = *_stack->getSlice(i);
    const R pixelWidth = slice.getPixelCalibration().getPixelWidth();
    const R pixelHeight = slice.getPixelCalibration().getPixelHeight();
    const bool isPlaced = i > 0 || _placement == StackPlacement::AsAligned;
    if (isPlaced) frame.add(slice.getRegistration(), pixelWidth, pixelHeight);
    frame.writeMap(pixelWidth, pixelHeight, R(sizes[i].first) / 2, R(sizes[i].second) / 2, _maps[i]);
    _zMap[i] = static_cast<T>(_stack->getInvertZAxis() ? -depths[i] : depths[i]);
  }
}

template <class T> T StackReconstruction<T>::pixelArea(int i) const
{
  const Vector<T>& map = _maps[i];
  return std::abs(map[0] * map[4] - map[1] * map[3]);
}

template <class T> void StackReconstruction<T>::map(Vertices<T>& output, const ModelItem& item) const
{
  const int slice = findSlice(item);
  if (slice < 0) return;
  Vertices<T> vertices(3, item.getSize());
  if (item.isRegion())
    mapRegion(item.getRLEItemSet(), _maps[slice], _zMap[slice], vertices.data());
  else
    mapVertices(item.getVertices(), _maps[slice], _zMap[slice], vertices.data());
  output.assign(vertices);
}

template <class T> Shape<T>* StackReconstruction<T>::apply(const ModelItem& item) const
{
  const MPrimitive geometry = item.getModel() ? item.getModel()->getGeometry() : MPrimitive::Unknown;
  std::unique_ptr<Vertices<T>> vertices;
  if (isCurve(geometry))
    vertices = std::make_unique<Curve<T>>(Vertices<T>(3), geometry == MPrimitive::Polyline);
  else
    vertices = std::make_unique<Vertices<T>>(3);
  map(*vertices, item);
  return vertices.release();
}

template <class T> Shape<T>* StackReconstruction<T>::apply(const Model& model) const
{
  const MPrimitive geometry = model.getGeometry();
  std::unique_ptr<VertexStack<T>> stack;
  if (isCurve(geometry) || geometry == MPrimitive::Region)
    stack = std::make_unique<CurveStack<T>>(3, geometry == MPrimitive::Polyline);
  else
    stack = std::make_unique<VertexStack<T>>(3);
  stack->setName(model.getName());
  for (const ModelItem* item : model.getItems()) findSlice(*item); // tells of those that are elsewhere
  Vertices<T> vertices(3);
  for (const ModelItem* item : itemsInStackOrder(model))
  {
    if (item->isRegion())
      appendBoundaries(*stack, *item);
    else
    {
      map(vertices, *item);
      stack->append(vertices);
    }
  }
  return stack.release();
}

template <class T> void StackReconstruction<T>::appendBoundaries(VertexStack<T>& stack, const ModelItem& item) const
{
  const int slice = item.getSlice()->getIndex();
  for (const Curve<double>& boundary : outerBoundaries(item.getRLEItemSet()))
  {
    Vertices<T> vertices(3, boundary.getSize());
    mapVertices(boundary, _maps[slice], _zMap[slice], vertices.data());
    stack.append(vertices);
  }
}

template <class T>
Vector<CurveStackTriangulationContourTag> StackReconstruction<T>::contourTags(const Model& model) const
{
  const std::vector<const ModelItem*> items = itemsOfLevels(model);
  Vector<CurveStackTriangulationContourTag> tags(static_cast<int>(items.size()));
  std::ranges::transform(items, tags.begin(), &ModelItem::getTriangulationTag);
  return tags;
}

template <class T> std::vector<const ModelItem*> StackReconstruction<T>::itemsOfLevels(const Model& model) const
{
  std::vector<const ModelItem*> items;
  for (const ModelItem* item : itemsInStackOrder(model))
    items.insert(items.end(), item->isRegion() ? outerBoundaries(item->getRLEItemSet()).size() : 1, item);
  return items;
}

template <class T> std::vector<const ModelItem*> StackReconstruction<T>::itemsInStackOrder(const Model& model) const
{
  std::vector<const ModelItem*> items;
  const int numSlices = _stack ? std::min(_zMap.getSize(), _stack->getNumSlices()) : 0;
  for (int i = 0; i < numSlices; ++i)
    for (const ModelItem* item : _stack->getSlice(i)->getItems())
      if (item->getModel() == &model) items.push_back(item);
  return items;
}

template <class T> int StackReconstruction<T>::findSlice(const ModelItem& item) const
{
  const StackSlice* const slice = item.getSlice();
  if (_stack && slice && slice->getStack() == _stack && slice->getIndex() < _zMap.getSize()) return slice->getIndex();
  std::cerr << "invalid stack/item pair in StackReconstruction (ignored)" << std::endl;
  return -1;
}

GEOMETRY_INSTANTIATE_REAL(StackReconstruction)
