#pragma once

#include "geometry/reconstruction/modelitemanalysis.h"
#include "geometry/reconstruction/stackreconstruction.h"

#include <array>

/// The mean of an item's vertices, of a region of its pixels, in pixels of the slice's image; not finite without any.
std::array<double, 2> meanPixelOf(const ModelItem& item);

/// The area that a closed curve encloses (of one that crosses itself, the absolute signed sum), from its pixels: it is
/// 0 for vertices on a line however the slice is turned.
double areaOf(const ModelItem& item, const StackReconstruction<double>& reconstruction);

/// Measures of a reconstructed item, in the stack's length unit and its square. What an item does not have is NaN.
class ModelItemGeometry : public ModelItemAnalysis
{
public:
  /// The reconstruction of the stack on which the items lie; it must outlive this object.
  explicit ModelItemGeometry(const StackReconstruction<double>& reconstruction) : _reconstruction(reconstruction)
  {
    clear();
  }

  /// \throw UsageError  there is no item, or it lies on no slice of the stack
  void run() override;
  void clear() override;

  /// Number of vertices; of a region, of its positions.
  long getNumVertices() const { return _numVertices; }
  /// The vertices in 3D; none for a region, whose positions are measured run by run.
  const Vertices<double>& getVertices() const { return _vertices; }
  /// Mean of the vertices or positions.
  const Vector<double>& getIsobarycenter() const { return _isobarycenter; }
  /// Length of a curve, the closing edge of a closed one included; NaN for points and regions.
  double getLength() const { return _length; }
  /// Area inside a closed curve (of a curve that crosses itself, by the signed sum) or of a region's pixels; NaN for
  /// open curves and points.
  double getArea() const { return _area; }

private:
  void measureRegion(int slice);

  const StackReconstruction<double>& _reconstruction;
  long _numVertices = 0;
  Vertices<double> _vertices;
  Vector<double> _isobarycenter;
  double _length = 0;
  double _area = 0;
};
