#include "app/core/actions/nyxitemshiftaction.h"

#include "numeric/exception.h"

#include <cstdint>

namespace
{
void requireInRange(std::int64_t coordinate)
{
  if (coordinate != static_cast<int>(coordinate))
    throw RangeError("void NYXItemShiftAction::apply()", "The item would leave the range of coordinates");
}
} // namespace

void NYXItemShiftAction::apply()
{
  moveTo(_shift);
  NYXItemVertexAction::apply();
}

void NYXItemShiftAction::revert()
{
  moveTo(Shift());
  NYXItemVertexAction::revert();
}

void NYXItemShiftAction::moveTo(const Shift& shift)
{
  const std::int64_t dx = std::int64_t{shift.dx} - _applied.dx, dy = std::int64_t{shift.dy} - _applied.dy;
  requireInRange(dx);
  requireInRange(dy);
  if (const BoundingBox<int> box = getItem().boundingBox(); !box.isEmpty())
  {
    for (const auto& corner : {box.getMinimum(), box.getMaximum()})
    {
      requireInRange(corner[0] + dx);
      requireInRange(corner[1] + dy);
    }
  }
  getItem().translate(static_cast<int>(dx), static_cast<int>(dy));
  _applied = shift;
}

QString NYXItemShiftAction::description(bool) const
{
  return tr("Move item");
}

bool NYXItemShiftAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXItemShiftAction&>(other);
  return &getItem() == &action.getItem() && _shift == action._shift;
}
