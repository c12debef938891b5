#include "registration/nyxregistrationrun.h"

#include "model/stackslice.h"

#include <memory>
#include <utility>

namespace
{
/// What the alignment of a slice needs.
std::unique_ptr<StackSlice> copyOf(const StackSlice& slice)
{
  auto copy = std::make_unique<StackSlice>();
  if (slice.getImageSource() != nullptr) copy->setImageSource(*slice.getImageSource());
  copy->setPixelCalibration(slice.getPixelCalibration());
  copy->setRegistration(slice.getRegistration());
  return copy;
}
} // namespace

NYXRegistrationRun::NYXRegistrationRun(std::vector<StackSlice*> slices, bool isSpecimenDark)
  : _slices(std::move(slices)), _isSpecimenDark(isSpecimenDark)
{
  if (_slices.empty()) return;
  _copies.addSlice(copyOf(*_slices.front()->prevSlice()));
  for (const StackSlice* slice : _slices) _copies.addSlice(copyOf(*slice));
}

void NYXRegistrationRun::run()
{
  const ProgressStep step(_subject, "Running automatic registration...", static_cast<long>(_slices.size()));
  for (std::size_t i = 0; i < _slices.size(); ++i)
  {
    _subject.throwIfCancelled("void NYXRegistrationRun::run()");
    _results.push_back(alignOnPreviousSlice(*_copies.getSlice(static_cast<int>(i) + 1), _isSpecimenDark));
    if (_observer) _observer(*_slices[i], _results.back());
    _subject.progress(static_cast<long>(i) + 1);
  }
}
