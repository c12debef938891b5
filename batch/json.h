#pragma once

#include <nlohmann/json.hpp>

#include <string>

class Stack;

/// Keys stay in the order in which they are written.
using Json = nlohmann::ordered_json;

/// A float by its shortest decimals, not by those of the nearest double; null when it is not finite.
Json toJson(float value);

/// The text of a JSON value, indented, with a newline at its end. Bytes that are no UTF-8 are replaced.
std::string toText(const Json& json);
