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

} // namespace

template <class T> void ModelSurface<T>::apply(const Model& model)
{
  const std::unique_ptr<Shape<T>> shape(_reconstruction.apply(model));
  auto* const curves = dynamic_cast<CurveStack<T>*>(shape.get());
  if (!curves)
    throw UsageError("void ModelSurface<T>::apply(const Model&)",
                     "Model " + quoted(model.getName()) + " consists of points, which have no surface");
  for (int i = 0; i < curves->getNumCurves(); ++i) curves->level(i).setClockwise(true, 0, 1);

  CurveStackTriangulation2<T> triangulation;
  triangulation.setContourTags(_reconstruction.contourTags(model));
  triangulation.setTriangulateCaps(_caps.tagged);
  triangulation.setTriangulateFirstCaps(_caps.first || (_caps.tagged && model.getProperties().getBeginCapFlag()));
  triangulation.setTriangulateLastCaps(_caps.last || (_caps.tagged && model.getProperties().getEndCapFlag()));
  triangulation.apply(*curves);

  _numCurves = curves->getNumCurves();
  _warning = warningAbout(model, _reconstruction.itemsInStackOrder(model), triangulation.getIgnoredCurves());
  _mesh = triangulation.getTriMesh();
  _mesh.setName(model.getName());
}

GEOMETRY_INSTANTIATE_REAL(ModelSurface)
