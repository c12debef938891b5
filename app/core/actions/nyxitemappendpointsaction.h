#pragma once

#include "app/core/actions/nyxitemaction.h"

/// Vertices are appended to an item, or another item's positions are merged into a region.
class NYXItemAppendPointsAction : public NYXItemVertexAction
{
public:
  NYXItemAppendPointsAction(ModelItem& item, const Vertices<int>& vertices);
  /// What the other item holds, which itself stays as it is.
  NYXItemAppendPointsAction(ModelItem& item, const ModelItem& other);

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool isNull() const override { return _vertices.getSize() == 0 && _positions.isEmpty(); }

private:
  bool isEqual(const NYXAction& other) const override;

  Vertices<int> _vertices;
  RLEItemSet _positions; // that the region did not hold
};
