#pragma once

#include <memory>
#include <vector>

class Model;
class ModelItem;
class Stack;

/// Which slice of another stack an item goes to.
enum class SliceMatching
{
  ByIndex, ///< the one at the same place
  ByName   ///< the first one of the same name
};

/// Copies of models with their items, made for another stack but not in it yet.
struct ModelTransfer
{
  struct Copy
  {
    std::unique_ptr<Model> model;                  ///< with a name that is free in the other stack
    std::vector<std::unique_ptr<ModelItem>> items; ///< of this model on slices of the other stack, attached to neither
  };
  std::vector<Copy> copies;
  int numItems = 0;        ///< that are copied
  int numWithoutSlice = 0; ///< left out, since no slice matches theirs
  int numOutside = 0;      ///< that reach beyond the image of their new slice
  int numResized = 0;      ///< that are copied to pixels of another size than theirs
};

/// Copies models, in the given order, for a stack, which is not changed. Pixels stay as they are. Items that reach
/// beyond the image of their new slice are left out unless kept; an image of unknown size leaves none out.
ModelTransfer copyModels(const std::vector<const Model*>& models, const Stack& target, SliceMatching matching,
                         bool keepsItemsOutside);
