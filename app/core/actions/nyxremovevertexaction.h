#pragma once

#include "app/core/actions/nyxitemaction.h"

#include <vector>

/// One vertex of an item, or all those near a point, are removed.
class NYXRemoveVertexAction : public NYXItemVertexAction
{
public:
  /// \throw RangeError  there is no such vertex
  NYXRemoveVertexAction(ModelItem& item, int index);
  /// The vertices at most `radius` away from the point.
  NYXRemoveVertexAction(ModelItem& item, const Vector<int>& point, double radius);

  int getNumVertices() const { return static_cast<int>(_vertices.size()); }

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool isNull() const override { return _vertices.empty(); }

private:
  /// A vertex as it was before the removal.
  struct Vertex
  {
    int index;
    int x;
    int y;
    bool isSelected;

    bool operator==(const Vertex& other) const = default;
  };

  void note(int index);
  bool isEqual(const NYXAction& other) const override;

  std::vector<Vertex> _vertices; // by index
};
