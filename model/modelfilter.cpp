#include "model/modelfilter.h"

#include "geometry/curve.h"
#include "model/stack.h"

#include <cmath>
#include <cstddef>

namespace
{
/// The item's vertices as a curve in the slice's unit of length.
Curve<double> scaledCurve(const ModelItem& item)
{
  const PixelCalibration& calibration = item.getSlice()->getPixelCalibration();
  const double width = calibration.getPixelWidth(), height = calibration.getPixelHeight();
  const std::ptrdiff_t size = item.getVertices().getSize();
  Vertices<double> points(2, static_cast<int>(size));
  const int* const from = item.getVertices().data();
  double* const to = points.data();
  for (std::ptrdiff_t i = 0; i < size; ++i)
  {
    to[2 * i] = width * from[2 * i];
    to[2 * i + 1] = height * from[2 * i + 1];
  }
  return Curve<double>(points, !item.isClosed());
}

bool isOneByOne(const PixelCalibration& calibration)
{
  return calibration.getPixelWidth() == 1 && calibration.getPixelHeight() == 1;
}

/// Takes one character, of one or several bytes, off the front.
void dropCharacter(std::string_view& text)
{
  const auto continues = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; };
  do text.remove_prefix(1);
  while (!text.empty() && continues(text.front()));
}
} // namespace

double measureOf(const ModelItem& item, ItemMeasure measure)
{
  if (measure == ItemMeasure::NumVertices) return item.getSize();
  if (!item.getSlice() || !item.getModel()) return std::nan("");
  const PixelCalibration& calibration = item.getSlice()->getPixelCalibration();
  const bool isArea = measure == ItemMeasure::Area;
  switch (item.getModel()->getGeometry())
  {
  case MPrimitive::Polygon:
    return isArea ? std::abs(scaledCurve(item).twiceArea(0, 1)) / 2 : scaledCurve(item).length();
  case MPrimitive::Polyline:
    return isArea ? std::nan("") : scaledCurve(item).length();
  case MPrimitive::Region:
    return isArea ? item.getSize() * double{calibration.getPixelWidth()} * calibration.getPixelHeight() : std::nan("");
  default:
    return std::nan("");
  }
}

bool isCalibrated(const Stack& stack)
{
  if (!isOneByOne(stack.getDefaultPixelCalibration())) return true;
  for (int i = 0; i < stack.getNumSlices(); ++i)
    if (!isOneByOne(stack.getSlice(i)->getPixelCalibration())) return true;
  return false;
}

/// On a mismatch, the last "*" takes in one character more.
bool matchesWildcards(std::string_view name, std::string_view pattern)
{
  if (pattern.empty()) return true;
  std::string_view nameAtStar, patternAfterStar;
  bool hasStar = false;
  while (!name.empty())
  {
    if (!pattern.empty() && pattern.front() == '*')
    {
      pattern.remove_prefix(1);
      patternAfterStar = pattern;
      nameAtStar = name;
      hasStar = true;
    }
    else if (!pattern.empty() && pattern.front() == '?')
    {
      pattern.remove_prefix(1);
      dropCharacter(name);
    }
    else if (!pattern.empty() && pattern.front() == name.front())
    {
      pattern.remove_prefix(1);
      name.remove_prefix(1);
    }
    else if (hasStar)
    {
      dropCharacter(nameAtStar);
      name = nameAtStar;
      pattern = patternAfterStar;
    }
    else
      return false;
  }
  return pattern.find_first_not_of('*') == std::string_view::npos;
}

bool ModelFilter::keepsSize(const ModelItem& item) const
{
  const double size = measureOf(item, measure);
  return std::isnan(size) || (from <= size && size <= to);
}

bool ModelFilter::keeps(const ModelItem& item) const
{
  const StackSlice* const slice = item.getSlice();
  if (slice && (slice->getIndex() < firstSlice || slice->getIndex() > lastSlice)) return false;
  if (slice && !matchesWildcards(slice->getName(), slicePattern)) return false;
  return keepsSize(item);
}

std::vector<ModelItem*> itemsToRemove(const std::vector<const Model*>& models, const ModelFilter& filter)
{
  std::vector<ModelItem*> items;
  for (const Model* model : models)
    for (ModelItem* item : model->getItems())
      if (!filter.keeps(*item)) items.push_back(item);
  return items;
}
