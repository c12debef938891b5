#include "model/model.h"

#include "model/modelitem.h"
#include "model/storabletext.h"

#include <unordered_map>

Model::~Model()
{
  for (ModelItem* item : getItems()) item->forgetModel();
}

void Model::setName(const std::string& name)
{
  requireStorableName(name, "void Model::setName(const std::string&)");
  _name = name;
}

bool Model::partiallyContains(const Model& other) const
{
  std::unordered_multimap<const StackSlice*, const ModelItem*> itemsOfSlice;
  for (const ModelItem* item : getItems()) itemsOfSlice.emplace(item->getSlice(), item);
  for (const ModelItem* item : other.getItems())
  {
    const auto [first, last] = itemsOfSlice.equal_range(item->getSlice());
    for (auto mine = first; mine != last; ++mine)
      if (mine->second != item && mine->second->partiallyContains(*item)) return true;
  }
  return false;
}

void Model::noteMembership(ModelItem& item, bool isMember)
{
  item.noteModelMembership(isMember);
}
