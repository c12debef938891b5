#include "app/core/actions/nyxregistrationaction.h"

#include "app/core/nyxstack.h"

#include <algorithm>

namespace
{
Stack* stackOf(const std::vector<NYXRegistrationAction::Alignment>& alignments)
{
  return alignments.empty() ? nullptr : alignments.front().slice->getStack();
}
} // namespace

NYXRegistrationAction::NYXRegistrationAction(std::vector<Alignment> alignments)
  : NYXStackAction(
        openStack(stackOf(alignments), "NYXRegistrationAction::NYXRegistrationAction(std::vector<Alignment>)")),
    _alignments(std::move(alignments)),
    _otherLastRegisteredSlice(_alignments.back().slice->getName())
{
  for (const Alignment& alignment : _alignments)
    _oldAlignments.push_back({alignment.slice, alignment.slice->getRegistration()});
}

NYXRegistrationAction::NYXRegistrationAction(StackSlice& slice, const Registration& registration)
  : NYXRegistrationAction(std::vector<Alignment>{{&slice, registration}})
{
}

void NYXRegistrationAction::apply()
{
  change(_alignments);
  NYXStackAction::apply();
}

void NYXRegistrationAction::revert()
{
  change(_oldAlignments);
  NYXStackAction::revert();
}

void NYXRegistrationAction::change(const std::vector<Alignment>& alignments)
{
  const std::string name = getStack().getLastRegisteredSlice();
  getStack().setLastRegisteredSlice(_otherLastRegisteredSlice);
  _otherLastRegisteredSlice = name;
  for (const Alignment& alignment : alignments) alignment.slice->setRegistration(alignment.registration);
}

bool NYXRegistrationAction::changes(const StackSlice& slice) const
{
  return std::ranges::find(_alignments, &slice, &Alignment::slice) != _alignments.end();
}

bool NYXRegistrationAction::isNull() const
{
  return _alignments == _oldAlignments && getStack().getLastRegisteredSlice() == _otherLastRegisteredSlice;
}

QString NYXRegistrationAction::description(bool) const
{
  return _alignments.size() == 1 ? tr("Slice registration") : tr("Stack registration");
}

void NYXRegistrationAction::postEvents()
{
  post(NYXStackRegistrationEvent(getStack()));
}

bool NYXRegistrationAction::isEqual(const NYXAction& other) const
{
  return _alignments == static_cast<const NYXRegistrationAction&>(other)._alignments;
}
