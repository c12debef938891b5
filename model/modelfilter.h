#pragma once

#include <limits>
#include <string>
#include <string_view>
#include <vector>

class Model;
class ModelItem;
class Stack;

/// What the size of an item is told by.
enum class ItemMeasure
{
  NumVertices, ///< of a region, its positions
  Length,      ///< of a curve, the closing edge of a closed one included
  Area         ///< inside a closed curve (of one that crosses itself, by the signed sum), or of a region's pixels
};

/// In the length unit of the item's slice, or its square; NaN for what an item does not have.
double measureOf(const ModelItem& item, ItemMeasure measure);

/// Whether a slice, or the default for slices, has pixels of another size than 1 by 1: otherwise lengths are in pixels.
bool isCalibrated(const Stack& stack);

/// Whether a name is as the pattern says: "*" stands for any text, "?" for any one character, in UTF-8. Upper and lower
/// case count. An empty pattern fits every name.
bool matchesWildcards(std::string_view name, std::string_view pattern);

/// Says which items stay. At first all do.
struct ModelFilter
{
  ItemMeasure measure = ItemMeasure::NumVertices;
  double from = -std::numeric_limits<double>::infinity(); ///< both bounds included
  double to = std::numeric_limits<double>::infinity();
  int firstSlice = 0; ///< both included
  int lastSlice = std::numeric_limits<int>::max();
  std::string slicePattern;

  /// Whether all conditions hold. An item without the measure in question is of any size.
  bool keeps(const ModelItem& item) const;
  bool keepsSize(const ModelItem& item) const;
};

/// The items of the models that do not stay, model by model.
std::vector<ModelItem*> itemsToRemove(const std::vector<const Model*>& models, const ModelFilter& filter);
