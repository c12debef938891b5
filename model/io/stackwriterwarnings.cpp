#include "model/io/stackwriterwarnings.h"

#include "model/io/calibrationlimits.h"
#include "model/io/stacklexer.h"
#include "model/io/statementbuffer.h"
#include "model/storabletext.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <unordered_set>

namespace
{
constexpr double tolerance = 0.005; // of a length

double valueOf(const std::string& text)
{
  float value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

bool isKept(double length, double written)
{
  return std::abs(written - length) <= tolerance * std::abs(length);
}

std::string shortest(float value)
{
  char digits[64];
  return std::string(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

double writtenLength(float length)
{
  return valueOf(lengthText(length));
}

/// The coarsest unit below the given one in which a length is kept, if there is one. `written` gives what becomes of
/// the length when all lengths are multiplied by a factor.
template <class Written> std::optional<LengthUnit> keepingUnit(float length, int scale, Written written)
{
  const std::vector<int> scales = LengthUnit::availableScales();
  for (auto finer = scales.rbegin(); finer != scales.rend(); ++finer)
  {
    if (*finer >= scale) continue;
    const double factor = std::pow(10.0, scale - *finer);
    if (std::isfinite(static_cast<float>(length * factor)) && isKept(length * factor, written(factor)))
      return LengthUnit(*finer);
  }
  return std::nullopt;
}

/// Collects the losses of one slice or of the stack's defaults.
class LengthCheck
{
public:
  /// Of lengths in the unit, as if they were converted to another one.
  LengthCheck(std::string owner, const LengthUnit& unit, const LengthUnit& target, LengthLosses& losses)
    : _owner(std::move(owner)),
      _unit(target),
      _factor(std::pow(10.0, unit.getScale() - target.getScale())),
      _losses(losses)
  {
  }

  void check(const std::string& name, float unconverted)
  {
    const float length = converted(unconverted);
    checkWritten(name, length, [length](double factor) { return writtenLength(static_cast<float>(length * factor)); });
  }

  void check(const PixelCalibration& calibration)
  {
    const float width = converted(calibration.getPixelWidth()), aspect = calibration.getAspectRatio();
    const double writtenAspect = writtenLength(aspect);
    check("pixel width", calibration.getPixelWidth());
    if (!isKept(aspect, writtenAspect)) // no unit helps here
      _losses.lines.push_back(_owner + ": the pixel aspect ratio " + shortest(aspect) + " is written as " +
                              shortest(static_cast<float>(writtenAspect)) + ".");
    else if (isKept(width, writtenLength(width))) // the height is their product
      checkWritten("pixel height", converted(calibration.getPixelHeight()),
                   [=](double factor) { return writtenAspect * writtenLength(static_cast<float>(width * factor)); });
  }

private:
  float converted(float length) const { return _factor == 1 ? length : static_cast<float>(length * _factor); }

  template <class Written> void checkWritten(const std::string& name, float length, Written written)
  {
    if (isKept(length, written(1))) return;
    const std::optional<LengthUnit> unit = keepingUnit(length, _unit.getScale(), written);
    if (unit) _losses.keepingUnit = unit;
    _losses.lines.push_back(_owner + ": the " + name + " " + shortest(length) + " " + _unit.name() + " is written as " +
                            shortest(static_cast<float>(written(1))) +
                            (unit ? "; the length unit " + unit->name() + " would keep it." : "."));
  }

  std::string _owner;
  LengthUnit _unit;
  double _factor;
  LengthLosses& _losses;
};

void requireStorable(const std::string& owner, const PixelCalibration& calibration)
{
  constexpr const char* where = "void requireStorable(const std::string&, const PixelCalibration&)";
  if (isStorableCalibration(calibration)) return;
  const float width = calibration.getPixelWidth(), aspect = calibration.getAspectRatio();
  if (isStorableFactor(width) && isStorableFactor(aspect))
    throw ValueError(where,
                     owner + ": the pixel height " + shortest(calibration.getPixelHeight()) + " is not positive");
  throw ValueError(where, owner + ": the pixel width " + shortest(width) + " or the aspect ratio " + shortest(aspect) +
                              " is not from 1e-15 to 1e15");
}

void checkLengths(const Stack& stack, const LengthUnit& unit, LengthLosses& losses)
{
  requireStorable("Stack", stack.getDefaultPixelCalibration());
  LengthCheck lengths("Stack", stack.getLengthUnit(), unit, losses);
  lengths.check(stack.getDefaultPixelCalibration());
  lengths.check("relative position", stack.getDefaultRelativePosition());
}

void checkLengths(const Stack& stack, const StackSlice& slice, const LengthUnit& unit, LengthLosses& losses)
{
  requireStorable("Slice \"" + slice.getName() + "\"", slice.getPixelCalibration());
  LengthCheck lengths("Slice \"" + slice.getName() + "\"", stack.getLengthUnit(), unit, losses);
  if (slice.getPixelCalibration() != stack.getDefaultPixelCalibration()) lengths.check(slice.getPixelCalibration());
  if (!slice.useRelativePosition())
    lengths.check("position", slice.getAbsolutePosition());
  else if (!slice.useDefaultRelativePosition())
    lengths.check("relative position", slice.getRelativePosition());
}

void checkAnnotation(const std::string& owner, const std::string& annotation, std::vector<std::string>& warnings)
{
  std::string written = exportText(annotation);
  std::replace_if(written.begin(), written.end(), StackLexer::isBlank, ' '); // as the reader does
  if (importText(written) != annotation)
    warnings.push_back(owner + ": the annotation holds a tab, a carriage return or one of the escapes of stack files " +
                       "and will read differently.");
}

/// Notes names that were seen before.
class NameCheck
{
public:
  NameCheck(const char* kind, std::vector<std::string>& warnings) : _kind(kind), _warnings(warnings) {}

  void check(const std::string& name)
  {
    if (!_names.insert(name).second)
      _warnings.push_back("There are several " + std::string(_kind) + " named \"" + name +
                          "\": items will be read to the first one.");
  }

private:
  const char* _kind;
  std::vector<std::string>& _warnings;
  std::unordered_set<std::string> _names;
};

/// \throw ValueError  a region is larger than the reader takes
void requireReadable(const ModelItem& item)
{
  const std::int64_t numPositions = item.isRegion() ? item.getRLEItemSet().numVertices() : 0;
  if (numPositions <= std::numeric_limits<int>::max()) return;
  throw ValueError("void requireReadable(const ModelItem&)", "Model \"" + item.getModel()->getName() + "\", slice \"" +
                                                                 item.getSlice()->getName() + "\": the region has " +
                                                                 std::to_string(numPositions) +
                                                                 " positions, more than a stack file can hold");
}

void checkItems(const Stack& stack, const Model& model, std::vector<std::string>& warnings)
{
  int numHomeless = 0;
  for (const ModelItem* item : model.getItems())
  {
    const bool isHomeless = !item->getSlice() || item->getSlice()->getStack() != &stack;
    if (isHomeless)
      ++numHomeless;
    else
      requireReadable(*item);
  }
  if (numHomeless > 0)
    warnings.push_back("Model \"" + model.getName() + "\": " + std::to_string(numHomeless) +
                       " items lie on no slice of the stack and are not written.");
}
void checkItems(const Stack& stack, const StackSlice& slice, std::vector<std::string>& warnings)
{
  const auto isForeign = [&stack](const ModelItem* item)
  { return !item->getModel() || item->getModel()->getStack() != &stack; };
  const auto numForeign = std::count_if(slice.getItems().begin(), slice.getItems().end(), isForeign);
  if (numForeign > 0)
    warnings.push_back("Slice \"" + slice.getName() + "\": " + std::to_string(numForeign) +
                       " items belong to no model of the stack and are not written.");
}

bool hasThickness(const Stack& stack)
{
  if (stack.getDefaultSliceThickness() != 0) return true;
  for (int i = 0; i < stack.getNumSlices(); ++i)
    if (stack.getSlice(i)->getThickness() != 0) return true;
  return false;
}
} // namespace

LengthLosses lengthLosses(const Stack& stack)
{
  const auto lossesIn = [&stack](const LengthUnit& unit)
  {
    LengthLosses losses; // keepingUnit: one that keeps some length
    checkLengths(stack, unit, losses);
    for (int i = 0; i < stack.getNumSlices(); ++i) checkLengths(stack, *stack.getSlice(i), unit, losses);
    return losses;
  };
  LengthLosses losses = lossesIn(stack.getLengthUnit());
  if (!losses.keepingUnit) return losses;
  const std::vector<int> scales = LengthUnit::availableScales();
  for (auto finer = scales.rbegin(); finer != scales.rend(); ++finer)
    if (*finer < stack.getLengthUnit().getScale() && !lossesIn(LengthUnit(*finer)).keepingUnit)
    {
      losses.keepingUnit = LengthUnit(*finer);
      return losses;
    }
  losses.keepingUnit.reset();
  return losses;
}

std::vector<std::string> stackWriterWarnings(const Stack& stack)
{
  LengthLosses losses;
  std::vector<std::string>& warnings = losses.lines;
  checkLengths(stack, stack.getLengthUnit(), losses);
  checkAnnotation("Stack", stack.getAnnotation(), warnings);
  if (hasThickness(stack)) warnings.emplace_back("The thickness of slices is not written: stack files do not hold it.");
  NameCheck sliceNames("slices", warnings), modelNames("models", warnings);
  for (int i = 0; i < stack.getNumSlices(); ++i)
  {
    const StackSlice& slice = *stack.getSlice(i);
    checkLengths(stack, slice, stack.getLengthUnit(), losses);
    checkAnnotation("Slice \"" + slice.getName() + "\"", slice.getAnnotation(), warnings);
    checkItems(stack, slice, warnings);
    sliceNames.check(slice.getName());
  }
  for (int i = 0; i < stack.getNumModels(); ++i)
  {
    modelNames.check(stack.getModel(i)->getName());
    checkItems(stack, *stack.getModel(i), warnings);
  }
  return warnings;
}
