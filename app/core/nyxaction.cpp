#include "app/core/nyxaction.h"

#include <typeinfo>

NYXAction::~NYXAction() = default;

void NYXAction::apply()
{
  _state = Applied;
}

void NYXAction::revert()
{
  _state = Reverted;
}

QString NYXAction::description(bool) const
{
  return tr("(No description available for this action)");
}

bool NYXAction::operator==(const NYXAction& other) const
{
  return typeid(*this) == typeid(other) && isEqual(other);
}
