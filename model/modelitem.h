#pragma once

#include "geometry/boundingbox.h"
#include "geometry/curvestacktriangulationcontourtag.h"
#include "geometry/vertices.h"
#include "model/modelitemproperties.h"
#include "model/modelitemselection.h"
#include "model/rleitemset.h"

#include <cstdint>
#include <memory>
#include <vector>

class Model;
class StackSlice;

/// One object drawn on one slice: a closed curve, an open curve, a set of points or a region, by its model's geometry.
///
/// Vertices are pixels (x, y) of the slice's source image. An item is given its model and slice and then attached to
/// their lists. Attaching to a slice hands an item made by new over to it; a detached item belongs to the caller.
class ModelItem
{
public:
  explicit ModelItem(Model* model = nullptr, StackSlice* slice = nullptr) : _model(model), _slice(slice) {}
  /// A copy that is not attached.
  ModelItem(const ModelItem& item);
  ModelItem& operator=(const ModelItem&) = delete;
  /// Leaves the lists of its model and slice.
  ~ModelItem();
  /// A new item, attached to both; the slice owns it.
  static ModelItem& create(Model& model, StackSlice& slice);

  Model* getModel() const { return _model; }
  /// Leaves the previous model's list. The item is not attached to the new one.
  void setModel(Model* model);
  StackSlice* getSlice() const { return _slice; }
  void setSlice(StackSlice* slice);

  /// Adds the item to its model's and its slice's list, to each only if set and not listed yet.
  void attach();
  void attachToModel();
  void attachToSlice();
  void detach();
  void detachFromModel();
  void detachFromSlice();

  /// True exactly when the model's geometry is "Polygon".
  bool isClosed() const;
  bool isRegion() const;
  /// Number of vertices; of a region, of its positions. \throw SizeError  these are more than int can count
  int getSize() const;

  const Vertices<int>& getVertices() const { return _vertices; }
  /// Replaces the vertices; none is selected then. \throw SizeError  they are not planar
  void setVertices(Vertices<int> vertices);
  /// Inserts a vertex before vertex i. \throw RangeError  there is no such place
  void insertVertex(int i, const Vector<int>& point);
  void appendVertex(const Vector<int>& point) { insertVertex(_vertices.getSize(), point); }
  void appendVertices(const Vertices<int>& vertices);
  /// \throw RangeError  there is no such vertex
  void removeVertex(int i) { removeVertices(i, i); }
  /// Removes the vertices first to last, both included. \throw RangeError  there are no such vertices
  void removeVertices(int first, int last);
  /// \throw RangeError  there is no such vertex
  void moveVertex(int i, const Vector<int>& point);
  /// Moves all vertices or the region.
  void translate(int dx, int dy);

  const ModelItemSelection& getSelection() const { return _selection; }
  ModelItemSelection& getSelection() { return _selection; }
  Vertices<int> selectedVertices() const { return verticesWhere(true); }
  Vertices<int> unselectedVertices() const { return verticesWhere(false); }
  void removeSelectedVertices() { setVertices(unselectedVertices()); }
  void removeUnselectedVertices() { setVertices(selectedVertices()); }
  /// Unselects all vertices.
  void removeSelection() { _selection.set(false); }

  /// The vertex nearest to the point within the tolerance, -1 when there is none.
  int findNearestVertex(const Vector<int>& point, double tolerance) const;
  /// The first vertex within the tolerance, -1 when there is none.
  int findNearVertex(const Vector<int>& point, double tolerance) const;
  /// Index that a new vertex at the point takes so that it splits the nearest segment within the tolerance, -1 when
  /// there is none.
  int findInsertion(const Vector<int>& point, double tolerance) const;
  /// Whether the point lies within the tolerance of the segment from a to b; `distance` is set in any case.
  static bool pointNearSegment(const int* point, const int* a, const int* b, double tolerance, double& distance);

  /// Whether twice the signed area of the closed curve is negative; false for other geometries.
  bool isClockwise() const;
  /// Reverses the vertices of a closed curve when needed.
  void setClockwise(bool clockwise);

  /// Empty without vertices.
  BoundingBox<int> boundingBox() const;
  /// The part of the box that lies on the slice's image. \throw FileError  the image's size is not known
  BoundingBox<int> rectifyBox(const BoundingBox<int>& box) const;
  /// Whether a vertex (or position) of the item lies in this closed curve or region; false for other geometries.
  bool partiallyContains(const ModelItem& item) const;

  const RLEItemSet& getRLEItemSet() const { return _rleItemSet; }
  /// A region is selected as a whole: its selection has one flag.
  void setRLEItemSet(RLEItemSet set);
  void addRLEItemSet(const RLEItemSet& set);
  void removeRLEItemSet(const RLEItemSet& set) { _rleItemSet.remove(set); }

  const ModelItemProperties& getProperties() const { return _properties; }
  ModelItemProperties& getProperties() { return _properties; }
  void setProperties(const ModelItemProperties& properties) { _properties = properties; }

  CurveStackTriangulationContourTag getTriangulationTag() const { return _triangulationTag; }
  void setTriangulationTag(CurveStackTriangulationContourTag tag) { _triangulationTag = tag; }

  /// The vertices as a new planar shape: a curve, or a vertex set for points and regions. The caller owns it.
  /// \throw SizeError  a region has more positions than int can count
  template <class T> Shape<T>* toShape() const;

  /// Called by the lists that the item enters and leaves.
  void noteModelMembership(bool isMember) { _isInModel = isMember; }
  void noteSliceMembership(bool isMember) { _isInSlice = isMember; }
  /// Called by a model or slice that ceases to exist.
  void forgetModel();
  void forgetSlice();

private:
  Vertices<int> verticesWhere(bool isSelected) const;
  void provideRegionSelection();
  /// Whether a position lies in the closed curve (even-odd rule) or region.
  bool contains(const int* position) const;
  /// Whether one of the positions of a run does. `turns` is working memory.
  bool containsAny(const RLEItem& run, std::vector<std::int64_t>& turns) const;

  Model* _model;
  StackSlice* _slice;
  bool _isInModel = false;
  bool _isInSlice = false;
  Vertices<int> _vertices;
  RLEItemSet _rleItemSet;
  ModelItemProperties _properties;
  ModelItemSelection _selection;
  CurveStackTriangulationContourTag _triangulationTag = CurveStackTriangulationContourTag::None;
};
