#pragma once

#include <string>
#include <vector>

/// A small font of strokes for labels in the 3D view: digits, signs, and the letters of axes and units of length.
namespace StrokeFont
{
/// Ends of the strokes of a text, x and y in turns, for capitals of height 1 on the line y = 0; other characters than
/// those of the font leave a gap. The text is UTF-8.
std::vector<float> strokes(const std::string& text);
/// Width of the text in the same unit.
float width(const std::string& text);
} // namespace StrokeFont
