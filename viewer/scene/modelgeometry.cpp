#include "viewer/scene/modelgeometry.h"

#include "geometry/reconstruction/modelsurface.h"
#include "geometry/reconstruction/stackreconstruction.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "numeric/progresssubject.h"

namespace
{
/// Repeated smoothing changes a mesh less and less; a stack file may ask for any number.
constexpr int mostIterations = 1000;

std::vector<ModelItemProperties> propertiesOfLevels(const Model& model,
                                                    const StackReconstruction<float>& reconstruction)
{
  std::vector<ModelItemProperties> properties;
  for (const ModelItem* item : reconstruction.itemsOfLevels(model))
    properties.push_back(item->getProperties() + model.getItemProperties());
  return properties;
}

/// Calls a function for parts of a number of iterations that take about a second.
template <class Smooth>
void smoothInParts(int numIterations, const TriMesh<float>& mesh, ProgressSubject& subject, const Smooth& smooth)
{
  constexpr int fewest = 16, mostVertices = 1 << 24; // each part finds the vertices' neighbours anew
  const int part = std::max(fewest, mostVertices / std::max(mesh.getSize(), 1));
  const ProgressStep step(subject, "Smoothing surfaces...", numIterations);
  for (int done = 0; done < numIterations; done += part)
  {
    subject.throwIfCancelled("void smoothInParts(int, const TriMesh<float>&, ProgressSubject&, const Smooth&)");
    smooth(std::min(part, numIterations - done));
    subject.progress(std::min(done + part, numIterations));
  }
}

void smooth(TriMesh<float>& mesh, const ModelProperties& properties, ProgressSubject& subject)
{
  const int numSteps = std::min(properties.getVertexSmoothing(), mostIterations);
  if (numSteps > 0) smoothInParts(numSteps, mesh, subject, [&mesh](int count) { mesh.smooth(count); });
  if (numSteps > 0 || !mesh.hasNormals()) mesh.computeNormals();
  const int numNormalSteps = std::min(properties.getNormalSmoothing(), mostIterations);
  if (numNormalSteps > 0)
    smoothInParts(numNormalSteps, mesh, subject, [&mesh](int count) { mesh.smoothNormals(count); });
}

void addSurface(ModelGeometry& geometry, const Model& model, const StackReconstruction<float>& reconstruction,
                ProgressSubject& subject, bool isClosed)
{
  ModelSurface<float> builder(reconstruction);
  builder.setCaps({.tagged = true, .first = isClosed, .last = isClosed});
  builder.setResampling(!isTriangular(geometry.properties.getRenderingMode()));
  builder.apply(model);
  if (builder.getTriMesh().getNumTriangles() == 0)
  {
    geometry.problem = builder.getNumCurves() < 2 ? "there is one contour only, which is drawn as it is"
                                                  : "no two contours are joined; they are drawn as they are";
    return;
  }
  auto mesh = std::make_shared<TriMesh<float>>(builder.getTriMesh());
  smooth(*mesh, geometry.properties, subject);
  geometry.quadMeshWidth = builder.getQuadMesh().getWidth();
  geometry.quadMeshHeight = builder.getQuadMesh().isEmpty() ? 0 : builder.getQuadMesh().getHeight();
  geometry.surface = mesh;
}
} // namespace

ModelGeometry modelGeometry(const Model& model, const StackReconstruction<float>& reconstruction,
                            ProgressSubject& subject, bool isClosed)
{
  ModelGeometry geometry;
  geometry.name = model.getName();
  geometry.properties = model.getProperties();
  geometry.itemProperties = model.getItemProperties();
  std::unique_ptr<Shape<float>> shape(reconstruction.apply(model));
  geometry.levels.reset(&dynamic_cast<const VertexStack<float>&>(*shape.release()));
  geometry.levelProperties = propertiesOfLevels(model, reconstruction);
  if (geometry.levels->getNumVertices() == 0)
    geometry.problem = "there is nothing to show";
  else if (model.getGeometry() != MPrimitive::Polypoint && hasSurface(geometry.properties.getRenderingMode()))
    addSurface(geometry, model, reconstruction, subject, isClosed);
  return geometry;
}

bool needsOtherGeometry(const ModelProperties& before, const ModelProperties& after)
{
  ModelProperties a = before, b = after;
  for (ModelProperties* properties : {&a, &b})
  {
    properties->setSurfaceOpacity(255);
    properties->setSurfaceShininess(0);
    properties->setEconomicRendering(false);
  }
  return a != b;
}
