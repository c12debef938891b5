#include "app/core/actions/nyxinsertvertexaction.h"

void NYXInsertVertexAction::apply()
{
  const bool isWhollySelected = getItem().getSelection().isComplete();
  getItem().insertVertex(_index, _point);
  if (isWhollySelected) getItem().getSelection().set(true);
  NYXItemVertexAction::apply();
}

void NYXInsertVertexAction::revert()
{
  getItem().removeVertex(_index);
  NYXItemVertexAction::revert();
}

QString NYXInsertVertexAction::description(bool) const
{
  return tr("Insert item vertex");
}

bool NYXInsertVertexAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXInsertVertexAction&>(other);
  return &getItem() == &action.getItem() && _index == action._index && _point == action._point;
}
