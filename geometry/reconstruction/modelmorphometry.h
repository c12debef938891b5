#pragma once

#include "geometry/curvestack.h"
#include "geometry/reconstruction/stackreconstruction.h"
#include "numeric/squarematrix.h"

#include <string>

/// Measures of a reconstructed model, in the stack's length unit, its square and its cube.
///
/// What a model does not have is NaN: area and volume by its geometry, centre and axes without vertices. Without items
/// area and volume are 0. Nothing but the positions depends on how the stack as a whole is turned and shifted.
class ModelMorphometry
{
public:
  ModelMorphometry() { clear(); }

  /// Sets the model and forgets the measures of the one before. The model must outlive this object.
  void setModel(const Model& model);
  const Model* getModel() const { return _model; }
  /// Measures the model. \throw UsageError  there is no model \throw FileError  an image's size is not known
  void run();
  /// Forgets the measures.
  void clear();

  /// Number of vertices of all items; of regions, of their positions.
  long getNumVertices() const { return _numVertices; }
  /// Number of items.
  int getNumContours() const { return _numContours; }
  /// Area of the surface through the contours, or the outer boundaries of regions, without caps; -1 when they branch.
  /// NaN for points.
  double getArea() const { return _area; }
  /// Volume by slabs between the slices, for closed curves and for regions, by their pixels; NaN for other models.
  double getVolume() const { return _volume; }
  /// Radius of the ball of equal volume.
  double getEquivRadius() const { return _equivRadius; }
  /// Mean of all vertices.
  const Vector<double>& getIsobarycenter() const { return _isobarycenter; }
  /// Standard deviations of the vertices along the main axes, the largest first.
  const Vector<double>& getMainAxesLengths() const { return _mainAxesLengths; }
  /// Unit vectors as columns; the largest component of each is positive.
  const SquareMatrix<double>& getMainAxes() const { return _mainAxes; }
  /// For each main axis, the coordinate axis (0, 1 or 2) of its largest component.
  const Vector<int>& getMatchingCoordinateAxes() const { return _matchingCoordinateAxes; }

  /// One line about contours that the area leaves out, or that it may not be meant to have; empty when there are none.
  const std::string& getWarning() const { return _warning; }

  /// True when no two consecutive curves have exactly the same height.
  bool simpleCurveStack(const CurveStack<double>& stack) const { return !stack.isBranching(); }

private:
  void measureRegions(const StackReconstruction<double>& reconstruction);
  void setMoments(const Vector<double>& center, const SquareMatrix<double>& moments);
  void setVolume(double volume);
  double area(const CurveStack<double>& curves);
  /// \param areas  of each item, in stack order
  double slabVolume(const StackReconstruction<double>& reconstruction, const std::vector<double>& areas) const;

  const Model* _model = nullptr;
  long _numVertices = 0;
  int _numContours = 0;
  double _area = 0;
  double _volume = 0;
  double _equivRadius = 0;
  Vector<double> _isobarycenter;
  Vector<double> _mainAxesLengths;
  SquareMatrix<double> _mainAxes;
  Vector<int> _matchingCoordinateAxes;
  std::string _warning;
};
