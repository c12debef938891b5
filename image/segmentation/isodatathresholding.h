#pragma once

#include "image/segmentation/histogramthresholding.h"

/// The index of the first bin of the upper class that lies in the middle (its integer part) between the mean bins of
/// the two classes of the counted elements. The search starts in the middle between the first and the last bin that is
/// not empty and never leaves the lower class empty unless there is one such bin, which is then the result; 0 when
/// there is none.
/// Source: Ridler and Calvard, "Picture thresholding using an iterative selection method", 1978.
int isodataBin(const Vector<long>& counts);

/// Thresholding at the threshold of isodataBin().
template <class T> class IsodataThresholding : public HistogramThresholding<T>
{
protected:
  int chooseBin(const Vector<long>& counts) const override { return isodataBin(counts); }
};
