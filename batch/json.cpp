#include "batch/json.h"

#include <charconv>
#include <cmath>

Json toJson(float value)
{
  if (!std::isfinite(value)) return nullptr;
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, value).ptr;
  double shortest = 0;
  std::from_chars(text, end, shortest);
  return shortest;
}

std::string toText(const Json& json)
{
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}
