#pragma once

#include "app/core/actions/nyxitemaction.h"

/// A vertex of an item is moved. While it is dragged, the point is set and the action applied again and again.
class NYXMoveVertexAction : public NYXItemVertexAction
{
public:
  /// To where the vertex is now. \throw RangeError  there is no such vertex
  NYXMoveVertexAction(ModelItem& item, int index);
  NYXMoveVertexAction(ModelItem& item, int index, const Vector<int>& point);

  int getIndex() const { return _index; }
  const Vector<int>& getPoint() const { return _point; }
  void setPoint(const Vector<int>& point) { _point = point; }

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool isNull() const override { return _point == _oldPoint; }

private:
  bool isEqual(const NYXAction& other) const override;

  int _index;
  Vector<int> _oldPoint;
  Vector<int> _point;
};
