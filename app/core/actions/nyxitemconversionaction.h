#pragma once

#include "app/core/actions/nyxitemaction.h"

/// An item goes to the end of another model. Closed and open curves and points keep their vertices; a closed curve that
/// becomes a region is filled, points become the region of their pixels and a region becomes the points of its pixels.
class NYXItemConversionAction : public NYXItemAction
{
public:
  /// \throw UsageError  the item lies in no model, or cannot be converted: too few vertices or no rule above
  NYXItemConversionAction(ModelItem& item, Model& destination);

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool isNull() const override { return _source == _destination; }

private:
  void postEvents() override;
  bool isEqual(const NYXAction& other) const override;
  void requireConvertible() const;

  Model* _source;
  Model* _destination;
  long _sourceNumber = 0; // in the list of each model, once the item has left it
  long _destinationNumber = 0;
  Vertices<int> _oldVertices;
  RLEItemSet _oldPositions;
  ModelItemSelection _oldSelection;
};
