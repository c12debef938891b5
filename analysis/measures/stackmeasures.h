#pragma once

#include "analysis/measures/measuretable.h"
#include "model/modelproperties.h"
#include "numeric/progresssubject.h"

#include <limits>
#include <string>
#include <vector>

class Model;
class Stack;

/// Measures of a reconstructed model, in the stack's length unit; NaN where there is none.
struct ModelMeasures
{
  std::string model;
  MPrimitive geometry = MPrimitive::Polygon;
  double vertices = std::numeric_limits<double>::quiet_NaN();
  double contours = vertices;
  double averageX = vertices;
  double averageY = vertices;
  double averageZ = vertices;
  double area = vertices;
  double volume = vertices;
  std::string remark; ///< why a value cannot be computed or leaves something out; empty otherwise
};

/// \throw FileError  the size of an image is not known
ModelMeasures measureModel(const Model& model);
/// The same where the model cannot be reconstructed: the numbers of vertices and contours, and why there are no others.
ModelMeasures noMeasures(const Model& model, const std::string& remark);

/// The measures, or none with the reason as the remark.
ModelMeasures measureOrTell(const Model& model);

/// The models of one geometry, one row each, whose source is the place in the list. Regions have the columns of closed
/// contours. \param unit  symbol of the length unit
MeasureTable modelTable(const std::vector<ModelMeasures>& models, MPrimitive geometry, const std::string& unit);
/// All models with all columns, and their geometry.
MeasureTable modelTable(const std::vector<ModelMeasures>& models, const std::string& unit);

/// What some models have on each slice: the points of models of points, and the number of items of the other models.
MeasureTable sliceTable(const Stack& stack, const std::vector<const Model*>& models);

/// The columns of a model's items or points, without rows.
MeasureTable emptyItemTable(MPrimitive geometry, const std::string& unit);
/// The items of a model, or its points, slice by slice. The source of a row is the place of its item in that order.
/// \throw FileError  the size of an image is not known \throw Cancelled
MeasureTable itemTable(const Stack& stack, const Model& model, ProgressSubject& progress);
