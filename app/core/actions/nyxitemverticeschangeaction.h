#pragma once

#include "app/core/actions/nyxitemaction.h"

/// All vertices of an item are replaced; none is selected then.
class NYXItemVerticesChangeAction : public NYXItemVertexAction
{
public:
  /// \throw SizeError  the vertices are not planar
  NYXItemVerticesChangeAction(ModelItem& item, const Vertices<int>& vertices);

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool isNull() const override { return areEqual(_vertices, _oldVertices); }

private:
  bool isEqual(const NYXAction& other) const override;

  Vertices<int> _oldVertices; // shared with the item until either changes
  ModelItemSelection _oldSelection;
  Vertices<int> _vertices;
};
