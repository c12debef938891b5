#pragma once

#include "image/segmentation/histogramthresholding.h"

/// The index of the first bin of the upper class for which the variance between the two classes of the counted
/// elements is largest, the first one on ties; 0 when all elements are in one bin.
/// Source: Otsu, "A threshold selection method from gray-level histograms", 1979.
int otsuBin(const Vector<long>& counts);

/// Thresholding at the threshold of otsuBin().
template <class T> class OtsuThresholding : public HistogramThresholding<T>
{
protected:
  int chooseBin(const Vector<long>& counts) const override { return otsuBin(counts); }
};
