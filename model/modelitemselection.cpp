#include "model/modelitemselection.h"

#include <algorithm>

void ModelItemSelection::reset(int n)
{
  _flags.assign(static_cast<std::size_t>(n), false);
  _numSelected = 0;
}

void ModelItemSelection::set(bool flag)
{
  _flags.assign(_flags.size(), flag);
  _numSelected = flag ? getNumVertices() : 0;
}

void ModelItemSelection::set(bool flag, int i, bool exclusive)
{
  if (exclusive) set(false);
  const auto index = static_cast<std::size_t>(i);
  _numSelected += static_cast<int>(flag) - static_cast<int>(_flags[index]);
  _flags[index] = flag;
}

void ModelItemSelection::invert()
{
  _flags.flip();
  _numSelected = getNumVertices() - _numSelected;
}

void ModelItemSelection::insert(int i, int count)
{
  _flags.insert(_flags.begin() + i, static_cast<std::size_t>(count), false);
}

void ModelItemSelection::remove(int first, int last)
{
  _flags.erase(_flags.begin() + first, _flags.begin() + last + 1);
  count();
}

void ModelItemSelection::count()
{
  _numSelected = static_cast<int>(std::count(_flags.begin(), _flags.end(), true));
}
