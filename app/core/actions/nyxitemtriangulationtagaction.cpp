#include "app/core/actions/nyxitemtriangulationtagaction.h"

void NYXItemTriangulationTagAction::apply()
{
  getItem().setTriangulationTag(_tag);
  NYXItemAction::apply();
}

void NYXItemTriangulationTagAction::revert()
{
  getItem().setTriangulationTag(_oldTag);
  NYXItemAction::revert();
}

QString NYXItemTriangulationTagAction::description(bool) const
{
  return tr("Item triangulation tag");
}

bool NYXItemTriangulationTagAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXItemTriangulationTagAction&>(other);
  return &getItem() == &action.getItem() && _tag == action._tag;
}
