#include "geometry/reconstruction/modelmorphometry.h"

#include "geometry/curvestacktriangulation2.h"
#include "geometry/reconstruction/modelitemgeometry.h"
#include "geometry/reconstruction/modelsurface.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stack.h"
#include "model/stackslice.h"

#include <cmath>
#include <limits>
#include <memory>

namespace
{

constexpr double notAvailableValue = std::numeric_limits<double>::quiet_NaN();
constexpr int space = 3;

/// The stack on whose slices the model is drawn, or nullptr.
const Stack* stackOf(const Model& model)
{
  for (const ModelItem* item : model.getItems())
    if (item->getSlice() && item->getSlice()->getStack()) return item->getSlice()->getStack();
  return nullptr;
}

/// A run of a region in 3D: `count` positions in equal steps around their middle.
struct Run
{
  double count;
  Vector<double> middle;
  Vector<double> step;
};

/// The runs of a model's regions: positions are summed run by run, since a region may have millions of them.
std::vector<Run> runsOf(const StackReconstruction<double>& reconstruction, const std::vector<const ModelItem*>& items)
{
  std::vector<Run> runs;
  for (const ModelItem* item : items)
  {
    const int slice = item->getSlice()->getIndex();
    const Vector<double>& map = reconstruction.getMap(slice);
    const double z = reconstruction.getZMap()[slice];
    for (const RLEItem& run : item->getRLEItemSet().getItems())
    {
      const double u = run.getOriginX(), v = (double{1} * run.begin() + run.end()) / 2;
      runs.push_back({double{1} * run.getLength(),
                      {map[0] * u + map[1] * v + map[2], map[3] * u + map[4] * v + map[5], z},
                      {map[1], map[4], 0.}});
    }
  }
  return runs;
}

/// The area of each item's pixels.
std::vector<double> pixelAreas(const StackReconstruction<double>& reconstruction,
                               const std::vector<const ModelItem*>& items)
{
  std::vector<double> areas;
  for (const ModelItem* item : items)
    areas.push_back(static_cast<double>(item->getRLEItemSet().numVertices()) *
                    reconstruction.pixelArea(item->getSlice()->getIndex()));
  return areas;
}

double numPositions(const std::vector<Run>& runs)
{
  double count = 0;
  for (const Run& run : runs) count += run.count;
  return count;
}

Vector<double> cogOf(const std::vector<Run>& runs)
{
  Vector<double> center;
  center.setZeros(space);
  for (const Run& run : runs) center += run.middle * run.count;
  return center /= numPositions(runs);
}

/// Mean squared deviations from the centre: those of the runs' middles and, within a run of n positions, (n^2 - 1) / 12
/// squared steps.
SquareMatrix<double> inertiaOf(const std::vector<Run>& runs, const Vector<double>& center)
{
  SquareMatrix<double> moments(space);
  moments.setZeros();
  for (const Run& run : runs)
  {
    const double within = (run.count * run.count - 1) / 12;
    for (int i = 0; i < space; ++i)
      for (int j = 0; j < space; ++j)
        moments(i, j) += run.count * ((run.middle[i] - center[i]) * (run.middle[j] - center[j]) +
                                      within * run.step[i] * run.step[j]);
  }
  moments /= numPositions(runs);
  return moments;
}

CurveStack<double> withoutDegenerateCurves(const CurveStack<double>& curves)
{
  CurveStack<double> kept(space, curves.isOpen());
  for (int i = 0; i < curves.getNumCurves(); ++i)
    if (!CurveStackTriangulation2<double>::isDegenerate(curves[i])) kept.append(curves[i]);
  return kept;
}

/// Turns each axis so that its component of largest magnitude is positive.
void orientAxes(SquareMatrix<double>& axes)
{
  for (int j = 0; j < space; ++j)
  {
    const Vector<double> axis = axes.getColumn(j);
    if (axis[axis.closestAxis()] < 0) axes.setColumn(j, -axis);
  }
}

} // namespace

void ModelMorphometry::setModel(const Model& model)
{
  clear();
  _model = &model;
}

void ModelMorphometry::clear()
{
  _numVertices = _numContours = 0;
  _area = _volume = _equivRadius = notAvailableValue;
  _isobarycenter.setSize(space);
  _isobarycenter.fill(notAvailableValue);
  _mainAxesLengths = _isobarycenter;
  _mainAxes.setSize(space);
  _mainAxes.fill(notAvailableValue);
  _matchingCoordinateAxes.setZeros(space);
  _warning.clear();
}

void ModelMorphometry::run()
{
  if (!_model) throw UsageError("void ModelMorphometry::run()", "There is no model");
  clear();
  const Stack* const stack = stackOf(*_model);
  const StackReconstruction<double> reconstruction =
      stack ? StackReconstruction<double>(*stack) : StackReconstruction<double>();
  if (_model->getGeometry() == MPrimitive::Region) return measureRegions(reconstruction);
  const std::unique_ptr<VertexStack<double>> vertices(static_cast<VertexStack<double>*>(reconstruction.apply(*_model)));
  _numContours = vertices->getNumLevels();
  _numVertices = vertices->getNumVertices();
  if (_numVertices > 0) setMoments(vertices->cog(), vertices->inertia());

  const auto* const curves = dynamic_cast<const CurveStack<double>*>(vertices.get());
  if (!curves) return;
  _area = area(*curves);
  if (curves->isOpen()) return;
  std::vector<double> areas;
  for (const ModelItem* item : reconstruction.itemsInStackOrder(*_model))
    areas.push_back(areaOf(*item, reconstruction));
  setVolume(slabVolume(reconstruction, areas));
}

void ModelMorphometry::measureRegions(const StackReconstruction<double>& reconstruction)
{
  const std::vector<const ModelItem*> items = reconstruction.itemsInStackOrder(*_model);
  const std::vector<Run> runs = runsOf(reconstruction, items);
  _numContours = static_cast<int>(items.size());
  _numVertices = static_cast<long>(numPositions(runs));
  const std::unique_ptr<Shape<double>> boundaries(reconstruction.apply(*_model));
  _area = area(static_cast<const CurveStack<double>&>(*boundaries));
  setVolume(slabVolume(reconstruction, pixelAreas(reconstruction, items)));
  if (runs.empty()) return;
  const Vector<double> center = cogOf(runs);
  setMoments(center, inertiaOf(runs, center));
}

void ModelMorphometry::setVolume(double volume)
{
  _volume = volume;
  _equivRadius = std::cbrt(3 * volume / 12.566370614359172);
}

void ModelMorphometry::setMoments(const Vector<double>& center, const SquareMatrix<double>& moments)
{
  _isobarycenter = center;
  Vector<double> variances;
  moments.eigenJacobi(variances, _mainAxes, true);
  orientAxes(_mainAxes);
  for (int i = 0; i < space; ++i)
  {
    _mainAxesLengths[i] = std::sqrt(std::max(variances[i], 0.));
    _matchingCoordinateAxes[i] = _mainAxes.getColumn(i).maxPos();
  }
}

double ModelMorphometry::area(const CurveStack<double>& curves)
{
  if (!simpleCurveStack(withoutDegenerateCurves(curves))) return -1;
  const Stack* const stack = stackOf(*_model);
  if (stack == nullptr) return 0;
  const StackReconstruction<double> upright(*stack, StackPlacement::FirstSliceUpright);
  ModelSurface<double> surface(upright);
  surface.setNormals(false);
  surface.apply(*_model);
  if (!surface.getWarnings().empty()) _warning = surface.getWarnings()[0];
  return surface.getTriMesh().area();
}

// The contours of each slice extend to the next slice with contours, those of the last one over its own distance to
// the slice before it.
double ModelMorphometry::slabVolume(const StackReconstruction<double>& reconstruction,
                                    const std::vector<double>& areas) const
{
  const std::vector<const ModelItem*> items = reconstruction.itemsInStackOrder(*_model);
  double volume = 0, previousHeight = 0, previousArea = 0;
  const StackSlice* lastSlice = nullptr;
  for (std::size_t i = 0; i < items.size();)
  {
    const StackSlice* const slice = items[i]->getSlice();
    double area = 0;
    for (; i < items.size() && items[i]->getSlice() == slice; ++i) area += areas[i];
    if (area == 0) continue;
    const double height = reconstruction.getZMap()[slice->getIndex()];
    volume += std::abs(height - previousHeight) * previousArea;
    previousHeight = height;
    previousArea = area;
    lastSlice = slice;
  }
  return lastSlice ? volume + previousArea * std::abs(lastSlice->getRelativePosition()) : volume;
}
