#include "geometry/reconstruction/modelsurface.h"

#include "geometry/curvestacktriangulation2.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <utility>

using Tag = CurveStackTriangulationContourTag;

namespace
{

/// More than any screen or printer shows; a stack file may ask for any size.
constexpr std::int64_t mostQuadMeshVertices = std::int64_t{1} << 22;

std::string quoted(const std::string& text)
{
  return "\"" + text + "\"";
}

constexpr std::size_t mostNamedSlices = 10; // in a warning

/// A line about items of a model, with the slices on which they lie; empty without items.
std::string warningAbout(const Model& model, const std::string& what, const std::vector<const ModelItem*>& items)
{
  if (items.empty()) return "";
  std::vector<std::string> slices;
  const StackSlice* previous = nullptr;
  for (const ModelItem* const item : items)
    if (item->getSlice() != std::exchange(previous, item->getSlice())) slices.push_back(quoted(previous->getName()));
  std::string text = "Model " + quoted(model.getName()) + ": " + what + ", on slice ";
  for (std::size_t i = 0; i < std::min(slices.size(), mostNamedSlices); ++i) text += (i > 0 ? ", " : "") + slices[i];
  if (slices.size() > mostNamedSlices) text += " and " + std::to_string(slices.size() - mostNamedSlices) + " more";
  return text;
}

/// The contours in pixels of their slices' images, each at its height: there it is exact whether they touch, whatever
/// rounding does in space. Unchanged where slices lie at one height, so that contours of several may meet.
template <class T> CurveStack<T> inPixels(const CurveStack<T>& curves, const std::vector<const ModelItem*>& items)
{
  CurveStack<T> drawn(3, curves.isOpen());
  for (int i = 0; i < curves.getNumCurves(); ++i)
  {
    const ModelItem& item = *items[static_cast<std::size_t>(i)];
    const T height = curves[i].data(0)[2];
    const bool isOfOtherSlice = i > 0 && items[static_cast<std::size_t>(i) - 1]->getSlice() != item.getSlice();
    if (isOfOtherSlice && curves[i - 1].data(0)[2] == height) return curves;
    const Vertices<int>& pixels = item.getVertices();
    Curve<T> curve(3, pixels.getSize());
    for (int j = 0; j < pixels.getSize(); ++j)
    {
      curve.data(j)[0] = static_cast<T>(pixels.data(j)[0]);
      curve.data(j)[1] = static_cast<T>(pixels.data(j)[1]);
      curve.data(j)[2] = height;
    }
    curve.setOpen(curves.isOpen());
    drawn.append(curve);
  }
  return drawn;
}

/// Lines about contours that a surface may not be meant to have.
template <class T> std::vector<std::string> warningsAbout(const Model& model, const CurveStack<T>& curves,
                                                          const std::vector<const ModelItem*>& items)
{
  const std::vector<CurveStackFinding> findings = checkCurveStack(inPixels(curves, items));
  const std::pair<CurveStackFinding::Kind, const char*> kinds[] = {
      {CurveStackFinding::OutOfOrder, "the slices do not lie one above the other in their order"},
      {CurveStackFinding::CrossesItself, "contours touch or cross themselves"},
      {CurveStackFinding::Touches, "contours touch or cross each other"},
      {CurveStackFinding::Nested, "contours lie inside others; what they enclose counts twice"},
  };
  std::vector<std::string> warnings;
  for (const auto& [kind, what] : kinds)
  {
    std::vector<const ModelItem*> found;
    for (const CurveStackFinding& finding : findings)
      if (finding.kind == kind) found.push_back(items[static_cast<std::size_t>(finding.curve)]);
    if (!found.empty()) warnings.push_back(warningAbout(model, what, found));
  }
  return warnings;
}

/// Width and height of the model's quad mesh.
std::pair<int, int> quadMeshSize(const Model& model)
{
  const ModelProperties& properties = model.getProperties();
  return {properties.getQuadMeshWidth(), model.getItems().size() > 1 ? properties.getQuadMeshHeight() : 1};
}

/// What is wrong with the size of a model's quad mesh; empty when it is usable.
std::string warningAboutSize(const Model& model)
{
  const auto [width, height] = quadMeshSize(model);
  const int fewestColumns = model.getGeometry() == MPrimitive::Polyline ? 2 : 3;
  const bool isTooSmall = width < fewestColumns || height < 2;
  if (!isTooSmall && std::int64_t{width} * height <= mostQuadMeshVertices) return "";
  return "Model " + quoted(model.getName()) + ": a quad mesh of width " + std::to_string(width) + " and height " +
         std::to_string(height) + " is too " + (isTooSmall ? "small" : "large");
}

/// Whether tags on contours inside the stack ask for a division, which one grid cannot have.
bool hasInnerTags(const std::vector<const ModelItem*>& items)
{
  for (std::size_t i = 0; i < items.size(); ++i)
  {
    const Tag tag = items[i]->getTriangulationTag();
    if ((tag == Tag::Begin && i > 0) || (tag == Tag::End && i + 1 < items.size())) return true;
  }
  return false;
}

} // namespace

template <class T> void ModelSurface<T>::apply(const Model& model)
{
  const Contours contours = contoursOf(model);
  _numCurves = contours.curves.getNumCurves();
  _warnings.clear();
  if (!contours.warning.empty()) _warnings.push_back(contours.warning);
  if (model.getGeometry() != MPrimitive::Region)
    std::ranges::move(warningsAbout(model, contours.curves, contours.items), std::back_inserter(_warnings));
  _quadMesh = QuadMesh<T>();
  _mesh = TriMesh<T>();
  if (_isResampling && canBeResampled(contours.curves))
    resample(model, contours);
  else
    triangulate(model, contours);
  _quadMesh.setName(model.getName());
  _mesh.setName(model.getName());
}

template <class T> bool ModelSurface<T>::isResampled(const Model& model) const
{
  return _isResampling && canBeResampled(contoursOf(model).curves) && warningAboutSize(model).empty();
}

// Closed curves are turned clockwise in the x-y plane. The sense is that of the drawn pixels, which is exact in any
// length unit; the maps mirror it, because rows run downwards and y upwards. The boundaries of regions have it already.
template <class T> typename ModelSurface<T>::Contours ModelSurface<T>::contoursOf(const Model& model) const
{
  const std::unique_ptr<Shape<T>> shape(_reconstruction.apply(model));
  auto* const all = dynamic_cast<CurveStack<T>*>(shape.get());
  if (!all)
    throw UsageError("void ModelSurface<T>::apply(const Model&)",
                     "Model " + quoted(model.getName()) + " consists of points, which have no surface");
  const std::vector<const ModelItem*> items = _reconstruction.itemsOfLevels(model);
  Contours contours{CurveStack<T>(3, all->isOpen()), {}, ""};
  std::vector<const ModelItem*> ignoredItems;
  for (int i = 0; i < all->getNumCurves(); ++i)
  {
    const ModelItem* const item = items[static_cast<std::size_t>(i)];
    if (CurveStackTriangulation2<T>::isDegenerate((*all)[i]))
    {
      ignoredItems.push_back(item);
      continue;
    }
    if (item->isClockwise()) all->level(i).reverse();
    contours.curves.append((*all)[i]);
    contours.items.push_back(item);
  }
  contours.warning = warningAbout(model, "contours without extent are left out", ignoredItems);
  return contours;
}

template <class T> void ModelSurface<T>::resample(const Model& model, const Contours& contours)
{
  if (const std::string warning = warningAboutSize(model); !warning.empty())
  {
    _warnings.push_back(warning);
    return;
  }
  if (hasInnerTags(contours.items))
    _warnings.push_back(
        "Model " + quoted(model.getName()) +
        ": tags within the stack have no effect on its quad mesh; the drawn contours can be joined instead");
  const auto [width, height] = quadMeshSize(model);
  _quadMesh = QuadMesh<T>(3, width, height);
  contours.curves.resample(_quadMesh);
  const ModelProperties& properties = model.getProperties();
  const bool beginTag = contours.items.front()->getTriangulationTag() == Tag::Begin;
  const bool endTag = contours.items.back()->getTriangulationTag() == Tag::End;
  if (_quadMesh.isClosed())
  {
    if (_caps.first || (_caps.tagged && (properties.getBeginCapFlag() || beginTag))) _quadMesh.buildBeginCap();
    if (_caps.last || (_caps.tagged && (properties.getEndCapFlag() || endTag))) _quadMesh.buildEndCap();
  }
  _mesh = _quadMesh.toTriMesh(true);
  if (_normals) _mesh.computeNormals();
}

template <class T> void ModelSurface<T>::triangulate(const Model& model, const Contours& contours)
{
  Vector<Tag> tags(static_cast<int>(contours.items.size()));
  std::ranges::transform(contours.items, tags.begin(), &ModelItem::getTriangulationTag);
  CurveStackTriangulation2<T> triangulation;
  triangulation.setContourTags(tags);
  triangulation.setNormals(_normals);
  triangulation.setTriangulateCaps(_caps.tagged);
  triangulation.setTriangulateFirstCaps(_caps.first || (_caps.tagged && model.getProperties().getBeginCapFlag()));
  triangulation.setTriangulateLastCaps(_caps.last || (_caps.tagged && model.getProperties().getEndCapFlag()));
  triangulation.apply(contours.curves);
  _mesh = triangulation.getTriMesh();
}

GEOMETRY_INSTANTIATE_REAL(ModelSurface)
