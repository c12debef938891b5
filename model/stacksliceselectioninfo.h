#pragma once

#include "geometry/curvestacktriangulationcontourtag.h"
#include "model/mprimitive.h"

#include <optional>
#include <vector>

class Model;
class ModelItem;
class StackSlice;

/// What the selected items of a slice have in common: those with a selected vertex, regions as a whole.
class StackSliceSelectionInfo
{
public:
  StackSliceSelectionInfo() = default;
  explicit StackSliceSelectionInfo(const StackSlice& slice);

  /// In the order of the slice.
  const std::vector<ModelItem*>& getItems() const { return _items; }
  bool isEmpty() const { return _items.empty(); }
  /// More than one item is selected.
  bool isMultiple() const { return _items.size() > 1; }
  /// All selected items belong to one model.
  bool isHomogeneous() const { return _model != nullptr; }
  /// Some selected item has an unselected vertex.
  bool isPartial() const { return _isPartial; }
  /// The model of all selected items, or nullptr.
  Model* getModel() const { return _model; }
  /// The geometry that all selected items have; Unknown when they differ and for an empty selection.
  MPrimitive getGeometry() const { return _geometry; }
  /// The tag that all selected items carry.
  std::optional<CurveStackTriangulationContourTag> getTriangulationTag() const { return _triangulationTag; }

private:
  std::vector<ModelItem*> _items;
  Model* _model = nullptr;
  bool _isPartial = false;
  MPrimitive _geometry = MPrimitive::Unknown;
  std::optional<CurveStackTriangulationContourTag> _triangulationTag;
};
