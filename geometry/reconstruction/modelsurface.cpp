#include "geometry/reconstruction/modelsurface.h"

#include "geometry/curvestacktriangulation2.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"

#include <memory>

namespace
{

std::string quoted(const std::string& text)
{
  return "\"" + text + "\"";
}

std::string warningAbout(const Model& model, const std::vector<const ModelItem*>& items,
                         const std::vector<int>& ignoredCurves)
{
  if (ignoredCurves.empty()) return "";
  std::string text = "Model " + quoted(model.getName()) + ": contours without extent are left out, on slice";
  for (std::size_t i = 0; i < ignoredCurves.size(); ++i)
    text += (i == 0 ? " " : ", ") + quoted(items[ignoredCurves[i]]->getSlice()->getName());
  return text;
}

/// Turns closed curves clockwise in the x-y plane. The sense is that of the drawn pixels, which is exact in any length
/// unit; the maps mirror it, because rows run downwards and y upwards.
template <class T> void orient(CurveStack<T>& curves, const std::vector<const ModelItem*>& items)
{
  for (int i = 0; i < curves.getNumCurves(); ++i)
    if (items[i]->isClockwise()) curves.level(i).reverse();
}

} // namespace

template <class T> void ModelSurface<T>::apply(const Model& model)
{
  const std::unique_ptr<Shape<T>> shape(_reconstruction.apply(model));
  auto* const curves = dynamic_cast<CurveStack<T>*>(shape.get());
  if (!curves)
    throw UsageError("void ModelSurface<T>::apply(const Model&)",
                     "Model " + quoted(model.getName()) + " consists of points, which have no surface");
  const std::vector<const ModelItem*> items = _reconstruction.itemsInStackOrder(model);
  orient(*curves, items);

  CurveStackTriangulation2<T> triangulation;
  triangulation.setContourTags(_reconstruction.contourTags(model));
  triangulation.setTriangulateCaps(_caps.tagged);
  triangulation.setTriangulateFirstCaps(_caps.first || (_caps.tagged && model.getProperties().getBeginCapFlag()));
  triangulation.setTriangulateLastCaps(_caps.last || (_caps.tagged && model.getProperties().getEndCapFlag()));
  triangulation.apply(*curves);

  _numCurves = curves->getNumCurves() - static_cast<int>(triangulation.getIgnoredCurves().size());
  _warning = warningAbout(model, items, triangulation.getIgnoredCurves());
  _mesh = triangulation.getTriMesh();
  _mesh.setName(model.getName());
}

GEOMETRY_INSTANTIATE_REAL(ModelSurface)
