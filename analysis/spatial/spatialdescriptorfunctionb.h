#pragma once

#include "analysis/spatial/spatialboundary.h"
#include "analysis/spatial/spatialdescriptor.h"

#include <memory>

/// Function B: for each object the distance to the border of the domain, a curve in the plane or a mesh in space.
template <class T> class SpatialDescriptorFunctionB : public SpatialDescriptor<T>
{
public:
  /// Makes a closed curve, of which the first two coordinates count, the border. \throw UsageError  as makeBoundary()
  void setCurve(const Curve<T>& curve) { _boundary = makeBoundary(curve); }
  /// Makes a mesh the border. \throw UsageError  as makeBoundary()
  void setTriMesh(const TriMesh<T>& mesh) { _boundary = makeBoundary(mesh); }
  /// Takes a border over that has its index already.
  void setBoundary(std::shared_ptr<const SpatialBoundary<T>> boundary) { _boundary = std::move(boundary); }

  /// As eval(), for a border of that kind. \throw UsageError  there is none   \throw SizeError  as eval()
  /// @{
  void eval2D(const Vertices<T>& pattern, Vector<T>& values, Vector<T>& cdf) const;
  void eval3D(const Vertices<T>& pattern, Vector<T>& values, Vector<T>& cdf) const;
  /// @}

protected:
  /// \throw UsageError  there is no border   \throw SizeError  the pattern has another dimension
  void distances(const Vertices<T>& pattern, Vector<T>& values) const override;

private:
  void requireSpace(int space, const char* where) const;

  std::shared_ptr<const SpatialBoundary<T>> _boundary;
};

GEOMETRY_EXTERN_TEMPLATE_REAL(SpatialDescriptorFunctionB)
