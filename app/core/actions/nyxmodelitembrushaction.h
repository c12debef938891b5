#pragma once

#include "app/core/actions/nyxitemaction.h"

/// A brush stroke is added to a region, or erased from it.
class NYXModelItemBrushAction : public NYXItemVertexAction
{
public:
  enum Mode
  {
    Paint,
    Erase
  };

  /// \throw UsageError  the item is no region
  NYXModelItemBrushAction(ModelItem& item, const RLEItemSet& stroke, Mode mode);

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool isNull() const override { return _positions.isEmpty(); }

private:
  void change(bool isPainted);
  bool isEqual(const NYXAction& other) const override;

  RLEItemSet _positions; // that the stroke changes
  Mode _mode;
};
