#pragma once

#include <string>
#include <string_view>

/// Text inside the quotes of a stack file.
/// @{

/// Replaces what a quoted string cannot hold: ";", line ends, double quotes and "#", in this order.
std::string exportText(std::string_view text);
/// Undoes exportText().
std::string importText(std::string_view text);
/// Whether a name or path comes back unchanged: it holds neither one of the replacements nor a tab or line break,
/// and is no longer than 65535 bytes.
bool isStorableName(std::string_view name);
/// \throw ValueError  the name is not storable
void requireStorableName(std::string_view name, const char* where);
/// @}
