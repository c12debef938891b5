#include "image/segmentation/componentlabelling.h"

#include "image/segmentation/connectedcomponents.h"

template <class T> void ComponentLabelling<T>::apply(PixelMatrix<T>& matrix)
{
  label(matrix);
}

template <class T> void ComponentLabelling<T>::apply(VoxelMatrix<T>& matrix)
{
  label(matrix);
}

template <class T> template <class Matrix> void ComponentLabelling<T>::label(Matrix& matrix)
{
  constexpr long numPhases = 3; // two to find the components, one to write them
  _numLabels = 0;
  const ProgressStep step(*this, "Labelling objects", numPhases);
  try
  {
    ConnectedComponents components(matrix, *this);
    components.writeLabels(matrix, *this);
    _numLabels = components.getNumLabels();
  }
  catch (const Cancelled&)
  {
    return; // before anything was written
  }
}

IMAGE_INSTANTIATE(ComponentLabelling)
