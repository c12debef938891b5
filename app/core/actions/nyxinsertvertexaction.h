#pragma once

#include "app/core/actions/nyxitemaction.h"

/// A vertex is inserted before vertex i of an item.
class NYXInsertVertexAction : public NYXItemVertexAction
{
public:
  NYXInsertVertexAction(ModelItem& item, int index, const Vector<int>& point)
    : NYXItemVertexAction(item), _index(index), _point(point)
  {
  }

  /// \throw RangeError  there is no such place
  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;

private:
  bool isEqual(const NYXAction& other) const override;

  int _index;
  Vector<int> _point;
};
