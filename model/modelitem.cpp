#include "model/modelitem.h"

#include "geometry/curve.h"
#include "model/model.h"
#include "model/stackslice.h"
#include "numeric/exception.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace
{
double distance(const int* a, const int* b)
{
  return std::hypot(static_cast<double>(a[0]) - b[0], static_cast<double>(a[1]) - b[1]);
}

int countable(std::int64_t numPositions, const char* where)
{
  if (numPositions > std::numeric_limits<int>::max())
    throw SizeError(where, "The region has more positions than can be counted");
  return static_cast<int>(numPositions);
}

/// The first vertex for which the measure is smallest and within the tolerance.
template <class Measure> int smallestWithin(int size, double tolerance, Measure measure)
{
  int best = -1;
  double smallest = tolerance;
  for (int i = 0; i < size; ++i)
  {
    const double value = measure(i);
    const bool isBetter = best < 0 ? value <= smallest : value < smallest;
    if (!isBetter) continue;
    best = i;
    smallest = value;
  }
  return best;
}
} // namespace

ModelItem::ModelItem(const ModelItem& item)
  : _model(item._model),
    _slice(item._slice),
    _vertices(item._vertices),
    _rleItemSet(item._rleItemSet),
    _properties(item._properties),
    _selection(item._selection),
    _triangulationTag(item._triangulationTag)
{
}

ModelItem::~ModelItem()
{
  detach();
}

ModelItem& ModelItem::create(Model& model, StackSlice& slice)
{
  auto item = std::make_unique<ModelItem>(&model, &slice);
  item->attach();
  return *item.release();
}

void ModelItem::setModel(Model* model)
{
  if (model == _model) return;
  detachFromModel();
  _model = model;
}

void ModelItem::setSlice(StackSlice* slice)
{
  if (slice == _slice) return;
  detachFromSlice();
  _slice = slice;
}

void ModelItem::attach()
{
  attachToModel();
  attachToSlice();
}

void ModelItem::attachToModel()
{
  if (_model && !_isInModel) _model->addItem(this);
}

void ModelItem::attachToSlice()
{
  if (_slice && !_isInSlice) _slice->addItem(this);
}

void ModelItem::detach()
{
  detachFromModel();
  detachFromSlice();
}

void ModelItem::detachFromModel()
{
  if (_isInModel) _model->removeItem(this);
}

void ModelItem::detachFromSlice()
{
  if (_isInSlice) _slice->removeItem(this);
}

void ModelItem::forgetModel()
{
  _model = nullptr;
  _isInModel = false;
}

void ModelItem::forgetSlice()
{
  _slice = nullptr;
  _isInSlice = false;
}

bool ModelItem::isClosed() const
{
  return _model && _model->getGeometry() == MPrimitive::Polygon;
}

bool ModelItem::isRegion() const
{
  return _model && _model->getGeometry() == MPrimitive::Region;
}

int ModelItem::getSize() const
{
  return isRegion() ? countable(_rleItemSet.numVertices(), "int ModelItem::getSize() const") : _vertices.getSize();
}

void ModelItem::setVertices(Vertices<int> vertices)
{
  if (vertices.getSpace() != 2)
    throw SizeError("void ModelItem::setVertices(Vertices<int>)", "The vertices of an item are planar");
  _vertices = std::move(vertices);
  _selection.reset(_vertices.getSize());
}

void ModelItem::setRLEItemSet(RLEItemSet set)
{
  _rleItemSet = std::move(set);
  provideRegionSelection();
}

void ModelItem::addRLEItemSet(const RLEItemSet& set)
{
  _rleItemSet.add(set);
  provideRegionSelection();
}

void ModelItem::provideRegionSelection()
{
  if (isRegion() && _selection.getNumVertices() != 1) _selection.reset(1);
}

void ModelItem::insertVertex(int i, const Vector<int>& point)
{
  _vertices.insert(i, point);
  _selection.insert(i);
}

void ModelItem::appendVertices(const Vertices<int>& vertices)
{
  const int size = _vertices.getSize();
  const int count = vertices.getSize();
  _vertices.append(vertices);
  _selection.insert(size, count);
}

void ModelItem::removeVertices(int first, int last)
{
  _vertices.remove(first, last);
  if (first <= last) _selection.remove(first, last);
}

void ModelItem::moveVertex(int i, const Vector<int>& point)
{
  if (i < 0 || i >= _vertices.getSize())
    throw RangeError("void ModelItem::moveVertex(int, const Vector<int>&)", "There is no such vertex");
  _vertices[i] = point;
}

void ModelItem::translate(int dx, int dy)
{
  if (isRegion()) return _rleItemSet.translate(dx, dy);
  _vertices.translate(Vector<int>{dx, dy});
}

Vertices<int> ModelItem::verticesWhere(bool isSelected) const
{
  const int count = isSelected ? _selection.getSize() : _vertices.getSize() - _selection.getSize();
  Vertices<int> vertices(2, count);
  for (int i = 0, k = 0; i < _vertices.getSize(); ++i)
    if (_selection.isSelected(i) == isSelected) std::copy_n(_vertices.data(i), 2, vertices.data(k++));
  return vertices;
}

int ModelItem::findNearestVertex(const Vector<int>& point, double tolerance) const
{
  return smallestWithin(_vertices.getSize(), tolerance,
                        [&](int i) { return distance(_vertices.data(i), point.data()); });
}

int ModelItem::findNearVertex(const Vector<int>& point, double tolerance) const
{
  for (int i = 0; i < _vertices.getSize(); ++i)
    if (distance(_vertices.data(i), point.data()) <= tolerance) return i;
  return -1;
}

int ModelItem::findInsertion(const Vector<int>& point, double tolerance) const
{
  const int size = _vertices.getSize();
  const int numSegments = isClosed() ? size : size - 1;
  const int segment = smallestWithin(numSegments, tolerance,
                                     [&](int i)
                                     {
                                       double result = 0;
                                       pointNearSegment(point.data(), _vertices.data(i), _vertices.data((i + 1) % size),
                                                        tolerance, result);
                                       return result;
                                     });
  return segment < 0 ? -1 : segment + 1;
}

bool ModelItem::pointNearSegment(const int* point, const int* a, const int* b, double tolerance, double& distance)
{
  const double dx = static_cast<double>(b[0]) - a[0], dy = static_cast<double>(b[1]) - a[1];
  const double px = static_cast<double>(point[0]) - a[0], py = static_cast<double>(point[1]) - a[1];
  const double squaredLength = dx * dx + dy * dy;
  const double along = squaredLength > 0 ? std::clamp((px * dx + py * dy) / squaredLength, 0.0, 1.0) : 0.0;
  distance = std::hypot(px - along * dx, py - along * dy);
  return distance <= tolerance;
}

bool ModelItem::isClockwise() const
{
  return isClosed() && Curve<int>(_vertices).twiceArea(0, 1) < 0;
}

void ModelItem::setClockwise(bool clockwise)
{
  if (!isClosed()) return;
  const double twiceArea = Curve<int>(_vertices).twiceArea(0, 1);
  const bool isReversed = clockwise ? twiceArea > 0 : twiceArea < 0;
  if (!isReversed) return;
  ModelItemSelection selection;
  const int size = _vertices.getSize();
  selection.reset(size);
  for (int i = 0; i < size; ++i)
    if (_selection.isSelected(i)) selection.set(true, size - 1 - i, false);
  _vertices.reverse();
  _selection = selection;
}

BoundingBox<int> ModelItem::boundingBox() const
{
  return isRegion() ? _rleItemSet.boundingBox() : _vertices.boundingBox();
}

BoundingBox<int> ModelItem::rectifyBox(const BoundingBox<int>& box) const
{
  const ImageSource* const source = _slice ? _slice->getImageSource() : nullptr;
  if (!source) return box;
  const BoundingBox<int> image(Vector<int>{0, 0}, Vector<int>{source->getSize2() - 1, source->getSize1() - 1});
  return box.intersection(image);
}

namespace
{
/// Whether a position is left of an edge, on a line that passes it.
bool isLeftOfEdge(int x, std::int64_t y, const int* a, const int* b)
{
  const double share = static_cast<double>(y - a[1]) / (static_cast<double>(b[1]) - a[1]);
  return x < a[0] + share * (static_cast<double>(b[0]) - a[0]);
}

/// The first and last + 1 of the positions of a run that are left of an edge: they follow each other.
std::pair<std::int64_t, std::int64_t> leftOfEdge(const RLEItem& run, const int* a, const int* b)
{
  const int x = run.getOriginX();
  const auto first = std::max<std::int64_t>(run.begin(), std::min(a[1], b[1]));
  const auto last = std::min<std::int64_t>(std::int64_t{run.end()} + 1, std::max(a[1], b[1]));
  if (first >= last) return {first, first};
  const bool beginsLeft = isLeftOfEdge(x, first, a, b);
  std::int64_t turn = first, end = last; // bisected: from `turn` on it is the other way
  while (turn < end)
  {
    const std::int64_t middle = turn + (end - turn) / 2;
    if (isLeftOfEdge(x, middle, a, b) == beginsLeft)
      turn = middle + 1;
    else
      end = middle;
  }
  return beginsLeft ? std::pair(first, turn) : std::pair(turn, last);
}
} // namespace

bool ModelItem::contains(const int* position) const
{
  if (isRegion()) return _rleItemSet.contains(position[0], position[1]);
  if (!isClosed()) return false;
  bool isInside = false;
  const int size = _vertices.getSize();
  for (int i = 0, previous = size - 1; i < size; previous = i++)
  {
    const int *a = _vertices.data(previous), *b = _vertices.data(i);
    if ((a[1] > position[1]) == (b[1] > position[1])) continue;
    if (isLeftOfEdge(position[0], position[1], a, b)) isInside = !isInside;
  }
  return isInside;
}

bool ModelItem::containsAny(const RLEItem& run, std::vector<std::int64_t>& turns) const
{
  if (isRegion()) return _rleItemSet.overlaps(run);
  if (!isClosed()) return false;
  turns.clear();
  const int size = _vertices.getSize();
  for (int i = 0, previous = size - 1; i < size; previous = i++)
  {
    const auto [first, last] = leftOfEdge(run, _vertices.data(previous), _vertices.data(i));
    if (first < last) turns.insert(turns.end(), {first, last});
  }
  std::sort(turns.begin(), turns.end());
  for (std::size_t i = 0; i < turns.size(); i += 2) // from turn to turn inside, outside, inside ...
    if (turns[i] < turns[i + 1]) return true;
  return false;
}

bool ModelItem::partiallyContains(const ModelItem& item) const
{
  if (_slice != item._slice || boundingBox().intersection(item.boundingBox()).isEmpty()) return false;
  if (item.isRegion())
  {
    const std::vector<RLEItem>& runs = item._rleItemSet.getItems();
    std::vector<std::int64_t> turns;
    return std::any_of(runs.begin(), runs.end(), [&](const RLEItem& run) { return containsAny(run, turns); });
  }
  for (int i = 0; i < item._vertices.getSize(); ++i)
    if (contains(item._vertices.data(i))) return true;
  return false;
}

namespace
{
template <class T> Vertices<T> converted(const Vertices<int>& vertices)
{
  Vertices<T> result(2, vertices.getSize());
  const int numCoordinates = 2 * vertices.getSize();
  if (numCoordinates > 0)
    std::transform(vertices.data(), vertices.data() + numCoordinates, result.data(),
                   [](int coordinate) { return static_cast<T>(coordinate); });
  return result;
}

template <class T> Vertices<T> positions(const RLEItemSet& set)
{
  Vertices<T> result(2, countable(set.numVertices(), "Shape<T>* ModelItem::toShape() const"));
  int i = 0;
  for (const RLEItem& run : set.getItems())
  {
    for (int k = 0; k < run.getLength(); ++k, ++i)
    {
      result.data(i)[0] = static_cast<T>(run.getOriginX());
      result.data(i)[1] = static_cast<T>(run.begin() + k);
    }
  }
  return result;
}
} // namespace

template <class T> Shape<T>* ModelItem::toShape() const
{
  if (isRegion()) return new Vertices<T>(positions<T>(_rleItemSet));
  const bool isCurve = isClosed() || (_model && _model->getGeometry() == MPrimitive::Polyline);
  if (!isCurve) return new Vertices<T>(converted<T>(_vertices));
  return new Curve<T>(converted<T>(_vertices), !isClosed());
}

template Shape<float>* ModelItem::toShape<float>() const;
template Shape<double>* ModelItem::toShape<double>() const;
template Shape<long double>* ModelItem::toShape<long double>() const;
