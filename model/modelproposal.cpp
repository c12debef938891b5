#include "model/modelproposal.h"

#include "model/stack.h"

#include <algorithm>
#include <array>

namespace
{
/// Source: Okabe and Ito, "Color universal design: how to make figures and presentations that are friendly to
/// colorblind people", 2002; with white in place of black, which cannot be seen on dark tissue.
constexpr ModelItemProperties::Color palette[] = {
    {230, 159, 0},   // orange
    {86, 180, 233},  // sky blue
    {0, 158, 115},   // bluish green
    {240, 228, 66},  // yellow
    {0, 114, 178},   // blue
    {213, 94, 0},    // vermilion
    {204, 121, 167}, // reddish purple
    {255, 255, 255}, // white
};
} // namespace

std::string freeName(const std::string& wished, const std::function<bool(const std::string&)>& isTaken)
{
  std::string name = wished;
  for (int number = 2; isTaken(name); ++number) name = wished + " " + std::to_string(number);
  return name;
}

std::string freeModelName(const Stack& stack, const std::string& wished)
{
  return freeName(wished, [&stack](const std::string& name) { return stack.findModel(name) >= 0; });
}

ModelItemProperties::Color proposedModelColor(const Stack& stack)
{
  std::array<int, std::size(palette)> numModels = {};
  for (int i = 0; i < stack.getNumModels(); ++i)
  {
    const auto color = std::ranges::find(palette, stack.getModel(i)->getItemProperties().getColor());
    if (color != std::end(palette)) ++numModels[static_cast<std::size_t>(color - palette)];
  }
  return palette[std::ranges::min_element(numModels) - numModels.begin()];
}
