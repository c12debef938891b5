#include "model/io/stackarguments.h"

#include "model/io/stacklexer.h"
#include "model/io/stackreader.h"
#include "model/storabletext.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

namespace
{
[[noreturn]] void refuse()
{
  throw StackReader::ArgValueError();
}

/// The number that the whole text is; a plus sign before it is allowed.
template <class T> T parsed(std::string_view text)
{
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  T value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size()) refuse();
  return value;
}

/// Takes `count` numbers joined by commas, and the white space behind them, off the text.
template <class T> const char* takeNumbers(const char* text, const char* end, T* values, int count)
{
  for (int i = 0; i < count; ++i)
  {
    const auto result = std::from_chars(text, end, values[i]);
    if (result.ec != std::errc()) refuse();
    text = result.ptr;
    const bool isLast = i == count - 1;
    if (isLast ? text != end && !StackLexer::isBlank(*text) : text == end || *text++ != ',') refuse();
  }
  return std::find_if_not(text, end, StackLexer::isBlank);
}
} // namespace

StackArguments::StackArguments(std::string_view text, std::vector<std::string_view> tokens)
  : _text(text), _tokens(std::move(tokens))
{
}

std::string StackArguments::text(int i) const
{
  return importText(getToken(i));
}

std::string StackArguments::name(int i) const
{
  std::string result = text(i);
  if (!isStorableName(result)) refuse();
  return result;
}

int StackArguments::integer(int i) const
{
  return parsed<int>(getToken(i));
}

int StackArguments::integerFrom(int i, int least) const
{
  const int value = integer(i);
  if (value < least) refuse();
  return value;
}

float StackArguments::real(int i) const
{
  const float value = parsed<float>(getToken(i));
  if (!std::isfinite(value)) refuse();
  return value;
}

double StackArguments::longReal(int i) const
{
  const double value = parsed<double>(getToken(i));
  if (!std::isfinite(value)) refuse();
  return value;
}

float StackArguments::positiveReal(int i) const
{
  const float value = real(i);
  if (value <= 0) refuse();
  return value;
}

float StackArguments::angle(int i) const
{
  const float value = real(i);
  if (std::abs(value) >= static_cast<float>(std::numeric_limits<int>::max())) refuse();
  return value;
}

bool StackArguments::boolean(int i) const
{
  const std::string_view token = getToken(i);
  if (token != "true" && token != "false") refuse();
  return token == "true";
}

Vertices<int> StackArguments::vertices() const
{
  constexpr std::size_t leastLength = 4; // of "x,y "; the last one needs no blank
  const auto numCommas = static_cast<std::size_t>(std::count(_text.begin(), _text.end(), ','));
  if (numCommas > (_text.size() + 1) / leastLength || numCommas > std::numeric_limits<int>::max() / 2) refuse();
  BufferVector<int> coordinates(2 * numCommas);
  const char* text = _text.data();
  const char* const end = text + _text.size();
  for (std::size_t i = 0; i < numCommas; ++i) text = takeNumbers(text, end, &coordinates[2 * i], 2);
  if (text != end) refuse();
  return numCommas == 0 ? Vertices<int>() : Vertices<int>(2, std::move(coordinates));
}

RLEItemSet StackArguments::runs() const
{
  std::vector<RLEItem> runs;
  const char* text = _text.data();
  const char* const end = text + _text.size();
  while (text != end)
  {
    int values[3];
    text = takeNumbers(text, end, values, 3);
    const std::int64_t last = std::int64_t{values[1]} + values[2] - 1;
    if (values[2] < 1 || last > std::numeric_limits<int>::max()) refuse();
    runs.emplace_back(values[0], values[1], values[2]);
  }
  RLEItemSet set(std::move(runs));
  if (set.numVertices() > std::numeric_limits<int>::max()) refuse(); // more than vertices can be counted
  return set;
}

std::vector<CalibrationCurve::Sample> StackArguments::calibrationSamples() const
{
  std::vector<CalibrationCurve::Sample> samples;
  const char* text = _text.data();
  const char* const end = text + _text.size();
  while (text != end)
  {
    double values[2];
    text = takeNumbers(text, end, values, 2);
    if (!std::isfinite(values[0]) || !std::isfinite(values[1])) refuse();
    samples.push_back({values[0], values[1]});
  }
  return samples;
}
