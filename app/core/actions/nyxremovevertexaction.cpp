#include "app/core/actions/nyxremovevertexaction.h"

#include "numeric/exception.h"

#include <cmath>

NYXRemoveVertexAction::NYXRemoveVertexAction(ModelItem& item, int index) : NYXItemVertexAction(item)
{
  if (index < 0 || index >= item.getVertices().getSize())
    throw RangeError("NYXRemoveVertexAction::NYXRemoveVertexAction(ModelItem&, int)", "There is no such vertex");
  note(index);
}

NYXRemoveVertexAction::NYXRemoveVertexAction(ModelItem& item, const Vector<int>& point, double radius)
  : NYXItemVertexAction(item)
{
  const Vertices<int>& vertices = item.getVertices();
  for (int i = 0; i < vertices.getSize(); ++i)
  {
    const double dx = static_cast<double>(vertices.data(i)[0]) - point[0];
    const double dy = static_cast<double>(vertices.data(i)[1]) - point[1];
    if (std::hypot(dx, dy) <= radius) note(i);
  }
}

void NYXRemoveVertexAction::note(int index)
{
  const int* const vertex = getItem().getVertices().data(index);
  _vertices.push_back({index, vertex[0], vertex[1], getItem().getSelection().isSelected(index)});
}

void NYXRemoveVertexAction::apply()
{
  for (auto vertex = _vertices.rbegin(); vertex != _vertices.rend(); ++vertex) getItem().removeVertex(vertex->index);
  NYXItemVertexAction::apply();
}

void NYXRemoveVertexAction::revert()
{
  for (const Vertex& vertex : _vertices)
  {
    getItem().insertVertex(vertex.index, Vector<int>{vertex.x, vertex.y});
    if (vertex.isSelected) getItem().getSelection().set(true, vertex.index, false);
  }
  NYXItemVertexAction::revert();
}

QString NYXRemoveVertexAction::description(bool) const
{
  return tr("Remove item vertex");
}

bool NYXRemoveVertexAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXRemoveVertexAction&>(other);
  return &getItem() == &action.getItem() && _vertices == action._vertices;
}
