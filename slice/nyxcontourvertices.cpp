#include "slice/nyxcontourvertices.h"

#include "model/model.h"
#include "model/modelitem.h"

#include <algorithm>
#include <cmath>

bool isCurve(const ModelItem& item)
{
  return item.isClosed() || item.getModel()->getGeometry() == MPrimitive::Polyline;
}

Curve<double> realCurve(const ModelItem& item)
{
  const Vertices<int>& vertices = item.getVertices();
  Curve<double> curve(2, vertices.getNumVertices());
  curve.setOpen(!item.isClosed());
  double* out = curve.data();
  const int* in = vertices.data();
  for (int i = 0; i < 2 * vertices.getNumVertices(); ++i) out[i] = in[i];
  return curve;
}

Vertices<int> roundedVertices(const Curve<double>& curve)
{
  Vertices<int> vertices(2, curve.getNumVertices());
  int* out = vertices.data();
  const double* in = curve.data();
  for (int i = 0; i < 2 * curve.getNumVertices(); ++i) out[i] = static_cast<int>(std::lround(in[i]));
  return vertices;
}

Vertices<int> withoutRepetitions(const Vertices<int>& vertices, bool isClosed)
{
  Vertices<int> kept(2);
  for (int i = 0; i < vertices.getNumVertices(); ++i)
    if (kept.getNumVertices() == 0 || !(kept[kept.getNumVertices() - 1] == vertices[i])) kept.append(vertices[i]);
  while (isClosed && kept.getNumVertices() > 1 && kept[0] == kept[kept.getNumVertices() - 1])
    kept.remove(kept.getNumVertices() - 1);
  return kept;
}

void clampTo(const BoundingBox<int>& box, Vertices<int>& vertices)
{
  int* position = vertices.data();
  for (int i = 0; i < vertices.getNumVertices(); ++i, position += 2)
    for (int k = 0; k < 2; ++k) position[k] = std::clamp(position[k], box.getMinimum()[k], box.getMaximum()[k]);
}
