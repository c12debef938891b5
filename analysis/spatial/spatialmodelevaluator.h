#pragma once

#include "analysis/spatial/spatialmodel.h"
#include "analysis/spatial/spatialmodelevaluatorbase.h"

/// Compares an observed pattern with patterns of a model.
///
/// Simulated pattern i is drawn as sample i of SpatialModel::drawSamples(): one state of the model's generator gives
/// one result, whatever the number of threads. The patterns are not kept.
template <class CoordType, class PixelType> class SpatialModelEvaluator : public SpatialModelEvaluatorBase<CoordType>
{
public:
  using Evaluation = SpatialEvaluation<CoordType>;
  using SpatialModelEvaluatorBase<CoordType>::eval;

  /// The model is borrowed. While it is evaluated it counts as a part of this step: cancelling this cancels it.
  void setModel(SpatialModel<CoordType, PixelType>& model) { _model = &model; }
  /// 99 at first. \throw ValueError  less than 1
  void setNumMonteCarloSamples(int numSamples);
  int getNumMonteCarloSamples() const { return _numSamples; }

  /// Compares by each of the descriptors, in their order. Without a precision, that is a thousandth of the diagonal of
  /// the box around the model's domain. \throw UsageError  there is no model or no descriptor
  /// \throw Exception  as the model and the descriptors   \throw Cancelled  this step was
  std::vector<Evaluation> eval(const Vertices<CoordType>& observed);
  /// Compares by one descriptor. Gives the rank, and the p-value and curves where asked for.
  CoordType eval(const Vertices<CoordType>& observed, const SpatialDescriptor<CoordType>& descriptor,
                 CoordType* pValue = nullptr, DataSet* dataSet = nullptr);

private:
  using Descriptors = typename SpatialModelEvaluatorBase<CoordType>::Descriptors;

  std::vector<Evaluation> compareWithModel(const Vertices<CoordType>& observed, const Descriptors& descriptors);
  CoordType precision() const;
  void stop() override { _drawing.cancel(); }

  SpatialModel<CoordType, PixelType>* _model = nullptr;
  int _numSamples = 99;
  ProgressSubject _drawing; // between this and the model: stops the model alone
};

SPATIAL_EXTERN_TEMPLATE(SpatialModelEvaluator)
