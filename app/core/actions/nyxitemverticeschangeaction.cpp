#include "app/core/actions/nyxitemverticeschangeaction.h"

#include "numeric/exception.h"

NYXItemVerticesChangeAction::NYXItemVerticesChangeAction(ModelItem& item, const Vertices<int>& vertices)
  : NYXItemVertexAction(item), _oldVertices(item.getVertices()), _oldSelection(item.getSelection()), _vertices(vertices)
{
  if (vertices.getSpace() != 2)
    throw SizeError("NYXItemVerticesChangeAction::NYXItemVerticesChangeAction(ModelItem&, const Vertices<int>&)",
                    "The vertices of an item are planar");
}

void NYXItemVerticesChangeAction::apply()
{
  getItem().setVertices(_vertices);
  if (_oldSelection.isComplete()) getItem().getSelection().set(true); // what works on it next finds it
  NYXItemVertexAction::apply();
}

void NYXItemVerticesChangeAction::revert()
{
  getItem().setVertices(_oldVertices);
  getItem().getSelection() = _oldSelection;
  NYXItemVertexAction::revert();
}

QString NYXItemVerticesChangeAction::description(bool) const
{
  return tr("Change item vertices");
}

bool NYXItemVerticesChangeAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXItemVerticesChangeAction&>(other);
  return &getItem() == &action.getItem() && areEqual(_vertices, action._vertices);
}
