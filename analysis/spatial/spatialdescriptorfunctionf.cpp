#include "analysis/spatial/spatialdescriptorfunctionf.h"

#include "analysis/spatial/nearestdistances.h"
#include "numeric/exception.h"

template <class T> void SpatialDescriptorFunctionF<T>::setEvaluationPositions(const Vertices<T>& positions)
{
  _positions = positions;
  _path = inPathOrder(positions);
}

template <class T> void SpatialDescriptorFunctionF<T>::distances(const Vertices<T>& pattern, Vector<T>& values) const
{
  values.setSize(pattern.getSize() > 0 ? _positions.getSize() : 0);
  if (values.isEmpty()) return;
  if (pattern.getSpace() != _positions.getSpace())
    throw SizeError("void SpatialDescriptorFunctionF<T>::distances(const Vertices<T>&, Vector<T>&) const",
                    "The evaluation positions have another dimension than the pattern");
  NearestDistances<T>(pattern).toNearest(_path.data(), _path.getSize(), values.data());
}

GEOMETRY_INSTANTIATE_REAL(SpatialDescriptorFunctionF)
