#pragma once

#include "analysis/spatial/spatialdescriptor.h"

/// Function F: for each evaluation position the distance to the nearest object. Without objects there is none.
template <class T> class SpatialDescriptorFunctionF : public SpatialDescriptor<T>
{
public:
  void setEvaluationPositions(const Vertices<T>& positions);
  const Vertices<T>& getEvaluationPositions() const { return _positions; }

protected:
  /// \throw SizeError  the positions have another dimension than the pattern
  void distances(const Vertices<T>& pattern, Vector<T>& values) const override;

private:
  Vertices<T> _positions;
  Vertices<T> _path; // the same in an order that makes the searches short
};

GEOMETRY_EXTERN_TEMPLATE_REAL(SpatialDescriptorFunctionF)
