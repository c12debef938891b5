#include "model/stackslice.h"

#include "model/model.h"
#include "model/modelitem.h"
#include "model/stack.h"

#include <unordered_set>

StackSlice::~StackSlice()
{
  std::unordered_set<Model*> models;
  for (const ModelItem* item : getItems())
    if (item->getModel()) models.insert(item->getModel());
  for (Model* model : models) model->removeItemsIf([this](const ModelItem& item) { return item.getSlice() == this; });
  for (ModelItem* item : getItems())
  {
    item->forgetSlice();
    delete item;
  }
}

void StackSlice::setName(const std::string& name)
{
  const std::string oldName = getName();
  Slice::setName(name);
  if (_stack) _stack->noteRenamed(*this, oldName);
}

std::string StackSlice::imagesPath() const
{
  return _stack ? _stack->getImagesPath() : "";
}

void StackSlice::setStack(Stack* stack, int index)
{
  const bool isNew = stack && stack != _stack;
  _stack = stack;
  _index = index;
  if (isNew) resolveImageNames();
}

void StackSlice::setRelativePosition(float distance)
{
  _position = distance;
  _usesDefaultPosition = false;
  _usesRelativePosition = true;
}

void StackSlice::setAbsolutePosition(float depth)
{
  _position = depth;
  _usesDefaultPosition = false;
  _usesRelativePosition = false;
}

void StackSlice::setDefaultRelativePosition()
{
  _usesDefaultPosition = true;
  _usesRelativePosition = true;
}

float StackSlice::getRelativePosition() const
{
  if (_usesDefaultPosition) return _stack ? _stack->getDefaultRelativePosition() : 0;
  if (_usesRelativePosition) return _position;
  const StackSlice* const previous = prevSlice();
  return previous ? _position - previous->getAbsolutePosition() : 0;
}

float StackSlice::getAbsolutePosition() const
{
  if (!_usesRelativePosition) return _position;
  if (!_stack) return 0;
  int start = _index;
  while (start > 0 && _stack->getSlice(start)->useRelativePosition()) --start;
  const StackSlice* const first = _stack->getSlice(start);
  double depth = first->_usesRelativePosition ? 0 : first->_position;
  for (int i = start + 1; i <= _index; ++i) depth += _stack->getSlice(i)->getRelativePosition();
  return static_cast<float>(depth);
}

bool StackSlice::isLastSlice() const
{
  return _stack && _index == _stack->getNumSlices() - 1;
}

StackSlice* StackSlice::prevSlice() const
{
  return _stack ? _stack->getPreviousSlice(this) : nullptr;
}

StackSlice* StackSlice::nextSlice() const
{
  return _stack ? _stack->getNextSlice(this) : nullptr;
}

void StackSlice::noteMembership(ModelItem& item, bool isMember)
{
  item.noteSliceMembership(isMember);
}
