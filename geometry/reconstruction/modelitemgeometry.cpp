#include "geometry/reconstruction/modelitemgeometry.h"

#include "geometry/curve.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "numeric/exception.h"

#include <cmath>
#include <limits>

namespace
{
constexpr double unavailable = std::numeric_limits<double>::quiet_NaN();
constexpr int space = 3;
} // namespace

std::array<double, 2> meanPixelOf(const ModelItem& item)
{
  double count = 0, x = 0, y = 0;
  const auto add = [&](double number, double u, double v)
  {
    count += number;
    x += number * u;
    y += number * v;
  };
  if (item.isRegion())
    for (const RLEItem& run : item.getRLEItemSet().getItems())
      add(run.getLength(), run.getOriginX(), (double{1} * run.begin() + run.end()) / 2);
  else
    for (int i = 0; i < item.getVertices().getSize(); ++i)
      add(1, item.getVertices().data(i)[0], item.getVertices().data(i)[1]);
  return {x / count, y / count}; // not finite without any
}

double areaOf(const ModelItem& item, const StackReconstruction<double>& reconstruction)
{
  const Vertices<int>& vertices = item.getVertices();
  double twiceArea = 0;
  for (int i = 0; i < vertices.getSize(); ++i)
  {
    const int *const origin = vertices.data(0), *const a = vertices.data(i),
                     *const b = vertices.data(i + 1 < vertices.getSize() ? i + 1 : 0);
    twiceArea += (double{1} * a[0] - origin[0]) * (double{1} * b[1] - origin[1]) -
                 (double{1} * b[0] - origin[0]) * (double{1} * a[1] - origin[1]);
  }
  return std::abs(twiceArea) / 2 * reconstruction.pixelArea(item.getSlice()->getIndex());
}

void ModelItemGeometry::clear()
{
  _numVertices = 0;
  _vertices = Vertices<double>(space);
  _isobarycenter.setSize(space);
  _isobarycenter.fill(unavailable);
  _length = _area = unavailable;
}

void ModelItemGeometry::run()
{
  constexpr const char* where = "void ModelItemGeometry::run()";
  if (!getModelItem()) throw UsageError(where, "There is no item");
  const ModelItem& item = *getModelItem();
  const int slice = item.getSlice() ? item.getSlice()->getIndex() : -1;
  if (slice < 0) throw UsageError(where, "The item lies on no slice of the stack");
  clear();
  if (item.isRegion()) return measureRegion(slice);
  _reconstruction.map(_vertices, item);
  _numVertices = _vertices.getSize();
  if (_numVertices > 0) _isobarycenter = _vertices.cog();
  const bool isOpen = item.getModel() && item.getModel()->getGeometry() == MPrimitive::Polyline;
  if (!item.isClosed() && !isOpen) return;
  const Curve<double> curve(_vertices, isOpen);
  _length = curve.length();
  if (item.isClosed()) _area = areaOf(item, _reconstruction);
}

void ModelItemGeometry::measureRegion(int slice)
{
  const Vector<double>& map = _reconstruction.getMap(slice);
  for (const RLEItem& run : getModelItem()->getRLEItemSet().getItems()) _numVertices += run.getLength();
  _area = static_cast<double>(_numVertices) * _reconstruction.pixelArea(slice);
  if (_numVertices == 0) return;
  const auto [u, v] = meanPixelOf(*getModelItem());
  _isobarycenter = {map[0] * u + map[1] * v + map[2], map[3] * u + map[4] * v + map[5],
                    _reconstruction.getZMap()[slice]};
}
