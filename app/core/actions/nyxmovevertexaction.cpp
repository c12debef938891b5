#include "app/core/actions/nyxmovevertexaction.h"

#include "numeric/exception.h"

namespace
{
Vector<int> vertexOf(const ModelItem& item, int i)
{
  if (i < 0 || i >= item.getVertices().getSize())
    throw RangeError("NYXMoveVertexAction::NYXMoveVertexAction(ModelItem&, int)", "There is no such vertex");
  const int* const vertex = item.getVertices().data(i);
  return Vector<int>{vertex[0], vertex[1]};
}
} // namespace

NYXMoveVertexAction::NYXMoveVertexAction(ModelItem& item, int index)
  : NYXItemVertexAction(item), _index(index), _oldPoint(vertexOf(item, index)), _point(_oldPoint)
{
}

NYXMoveVertexAction::NYXMoveVertexAction(ModelItem& item, int index, const Vector<int>& point)
  : NYXMoveVertexAction(item, index)
{
  setPoint(point);
}

void NYXMoveVertexAction::apply()
{
  getItem().moveVertex(_index, _point);
  NYXItemVertexAction::apply();
}

void NYXMoveVertexAction::revert()
{
  getItem().moveVertex(_index, _oldPoint);
  NYXItemVertexAction::revert();
}

QString NYXMoveVertexAction::description(bool) const
{
  return tr("Move item vertex");
}

bool NYXMoveVertexAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXMoveVertexAction&>(other);
  return &getItem() == &action.getItem() && _index == action._index && _point == action._point;
}
