#pragma once

#include <string>
#include <vector>

/// Small functions of text, the same in every locale.
namespace StringTools
{
std::string toString(int value);
/// Padded on the left to the given width with '0' or ' ' (or any other character). Zeros stand behind the sign.
std::string toString(int value, int width, char fill = '0');
/// The pieces of text between delimiters, each character of `delimiters` being one; empty pieces are left out.
std::vector<std::string> tokenize(const std::string& text, const std::string& delimiters);
/// The text without the pair of double or single quotes that encloses it, if any.
std::string removeQuotes(const std::string& text);
} // namespace StringTools
