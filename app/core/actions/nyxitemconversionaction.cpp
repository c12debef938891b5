#include "app/core/actions/nyxitemconversionaction.h"

#include "model/model.h"
#include "numeric/exception.h"

#include <memory>
#include <string>

namespace
{
constexpr const char* where = "NYXItemConversionAction::NYXItemConversionAction(ModelItem&, Model&)";

RLEItemSet positionsOf(const ModelItem& item)
{
  const Vertices<int>& vertices = item.getVertices();
  RLEItemSet positions;
  if (item.isClosed())
  {
    positions.setContour(vertices, vertices.boundingBox());
    return positions;
  }
  std::vector<RLEItem> runs;
  for (int i = 0; i < vertices.getSize(); ++i) runs.emplace_back(vertices.data(i)[0], vertices.data(i)[1], 1);
  return RLEItemSet(std::move(runs));
}

Vertices<int> verticesOf(const RLEItemSet& positions)
{
  Vertices<int> vertices(2, static_cast<int>(positions.numVertices()));
  int i = 0;
  for (const RLEItem& run : positions.getItems())
  {
    for (int y = run.begin(); i < vertices.getSize() && y - run.begin() < run.getLength(); ++y, ++i)
    {
      vertices.data(i)[0] = run.getOriginX();
      vertices.data(i)[1] = y;
    }
  }
  return vertices;
}
} // namespace

NYXItemConversionAction::NYXItemConversionAction(ModelItem& item, Model& destination)
  : NYXItemAction(item),
    _source(item.getModel()),
    _destination(&destination),
    _oldVertices(item.getVertices()),
    _oldPositions(item.getRLEItemSet()),
    _oldSelection(item.getSelection())
{
  if (!_source) throw UsageError(where, "The item lies in no model");
  if (!isNull()) requireConvertible();
}

void NYXItemConversionAction::requireConvertible() const
{
  const MPrimitive from = _source->getGeometry(), to = _destination->getGeometry();
  const bool isFromRegion = from == MPrimitive::Region, isToRegion = to == MPrimitive::Region;
  const bool isPossible = isFromRegion == isToRegion || (isFromRegion && to == MPrimitive::Polypoint) ||
                          (isToRegion && from != MPrimitive::Polyline);
  const std::string names = ModelProperties::toString(from) + " into " + ModelProperties::toString(to);
  if (!isPossible) throw UsageError(where, "An item cannot be converted from " + names);
  if (getItem().getSize() < minNumVertices(to))
    throw UsageError(where, "The item has too few vertices to be converted from " + names);
}

void NYXItemConversionAction::apply()
{
  ModelItem& item = getItem();
  const bool wasRegion = item.isRegion();
  const bool becomesRegion = _destination->getGeometry() == MPrimitive::Region;
  const RLEItemSet positions = becomesRegion && !wasRegion ? positionsOf(item) : RLEItemSet();
  _sourceNumber = _source->takeItem(&item);
  item.setModel(_destination);
  if (becomesRegion && !wasRegion)
  {
    item.setVertices(Vertices<int>());
    item.setRLEItemSet(positions);
  }
  else if (wasRegion && !becomesRegion)
  {
    item.setVertices(verticesOf(_oldPositions));
    item.setRLEItemSet(RLEItemSet());
  }
  if (_destinationNumber == 0)
    _destination->addItem(&item);
  else
    _destination->restoreItem(&item, _destinationNumber);
  NYXItemAction::apply();
}

void NYXItemConversionAction::revert()
{
  ModelItem& item = getItem();
  const bool changesGeometry = item.isRegion() != (_source->getGeometry() == MPrimitive::Region);
  _destinationNumber = _destination->takeItem(&item);
  item.setModel(_source);
  if (changesGeometry)
  {
    item.setVertices(_oldVertices);
    item.setRLEItemSet(_oldPositions);
    item.getSelection() = _oldSelection;
  }
  _source->restoreItem(&item, _sourceNumber);
  NYXItemAction::revert();
}

QString NYXItemConversionAction::description(bool) const
{
  return tr("Conversion to: ") + QString::fromStdString(_destination->getName());
}

void NYXItemConversionAction::postEvents()
{
  Model& from = reverted() ? *_destination : *_source;
  Model& to = reverted() ? *_source : *_destination;
  post(NYXModelItemConvertEvent(getItem(), from, to));
}

bool NYXItemConversionAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXItemConversionAction&>(other);
  return &getItem() == &action.getItem() && _destination == action._destination;
}
