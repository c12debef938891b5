#include "slice/nyxcontourvertices.h"

#include "image/imagesource.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/nyxregionbrush.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
bool overlap(const BoundingBox<int>& a, const BoundingBox<int>& b)
{
  for (int k = 0; k < 2; ++k)
    if (a.getMaximum()[k] < b.getMinimum()[k] || a.getMinimum()[k] > b.getMaximum()[k]) return false;
  return true;
}

Vertices<int> verticesInside(const BoundingBox<int>& box, const Vertices<int>& vertices)
{
  Vertices<int> inside(2);
  for (int i = 0; i < vertices.getNumVertices(); ++i)
    if (box.contains(vertices[i])) inside.append(vertices[i]);
  return inside;
}
} // namespace

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

BoundingBox<int> imageBoxOf(const StackSlice& slice)
{
  constexpr int unlimited = std::numeric_limits<int>::max() / 2;
  const Vector<int> origin{0, 0};
  try
  {
    if (const ImageSource* const source = slice.getImageSource())
      return {origin, Vector<int>{source->getSize2() - 1, source->getSize1() - 1}};
  }
  catch (const FileError&) // the file is not there
  {
  }
  return {origin, Vector<int>{unlimited, unlimited}};
}

bool cutTo(const BoundingBox<int>& box, ModelItem& item)
{
  if (item.getSize() == 0 || !overlap(item.boundingBox(), box)) return false;
  if (item.isRegion())
    item.setRLEItemSet(clippedTo(box, item.getRLEItemSet()));
  else if (!isCurve(item))
    item.setVertices(verticesInside(box, item.getVertices()));
  else
  {
    Vertices<int> vertices = item.getVertices();
    clampTo(box, vertices);
    item.setVertices(withoutRepetitions(vertices, item.isClosed()));
  }
  return item.getSize() >= minNumVertices(item.getModel()->getGeometry());
}
