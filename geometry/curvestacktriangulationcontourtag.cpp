#include "geometry/curvestacktriangulationcontourtag.h"

#include "numeric/vectorstorage.h"

NUMERIC_INSTANTIATE_VECTOR_STORAGE(CurveStackTriangulationContourTag)
