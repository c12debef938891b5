#include "app/core/actions/nyxitemappendpointsaction.h"

#include "numeric/exception.h"

namespace
{
void requirePlanar(const Vertices<int>& vertices)
{
  if (vertices.getSpace() != 2)
    throw SizeError("NYXItemAppendPointsAction::NYXItemAppendPointsAction(ModelItem&, const Vertices<int>&)",
                    "The vertices of an item are planar");
}
} // namespace

NYXItemAppendPointsAction::NYXItemAppendPointsAction(ModelItem& item, const Vertices<int>& vertices)
  : NYXItemVertexAction(item), _vertices(vertices)
{
  requirePlanar(vertices);
}

NYXItemAppendPointsAction::NYXItemAppendPointsAction(ModelItem& item, const ModelItem& other)
  : NYXItemVertexAction(item)
{
  if (!item.isRegion())
  {
    _vertices = other.getVertices();
    return;
  }
  _positions = other.getRLEItemSet();
  _positions.remove(item.getRLEItemSet());
}

void NYXItemAppendPointsAction::apply()
{
  if (getItem().isRegion())
    getItem().addRLEItemSet(_positions);
  else
    getItem().appendVertices(_vertices);
  NYXItemVertexAction::apply();
}

void NYXItemAppendPointsAction::revert()
{
  const int size = getItem().getVertices().getSize();
  if (getItem().isRegion())
    getItem().removeRLEItemSet(_positions);
  else if (_vertices.getSize() > 0)
    getItem().removeVertices(size - _vertices.getSize(), size - 1);
  NYXItemVertexAction::revert();
}

QString NYXItemAppendPointsAction::description(bool) const
{
  return tr("Append points to item");
}

bool NYXItemAppendPointsAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXItemAppendPointsAction&>(other);
  return &getItem() == &action.getItem() && areEqual(_vertices, action._vertices) && _positions == action._positions;
}
