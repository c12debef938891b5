#include "model/model.h"

#include "model/modelitem.h"
#include "model/stack.h"
#include "model/storabletext.h"

#include <unordered_map>

Model::~Model()
{
  for (ModelItem* item : getItems()) item->forgetModel();
}

void Model::setName(const std::string& name)
{
  requireStorableName(name, "void Model::setName(const std::string&)");
  const std::string oldName = _name;
  _name = name;
  if (_stack) _stack->noteRenamed(*this, oldName);
}

void Model::setStack(Stack* stack, int index)
{
  _stack = stack;
  _index = index;
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
