#include "analysis/spatial/spatialmodelevaluator.h"

#include "numeric/randomgenerator.h"

namespace
{

/// Makes one subject a part of another one for a scope.
class OuterSubject
{
public:
  OuterSubject(ProgressSubject& subject, ProgressSubject& outer) : _subject(subject) { _subject.setOuter(&outer); }
  OuterSubject(const OuterSubject&) = delete;
  OuterSubject& operator=(const OuterSubject&) = delete;
  ~OuterSubject() { _subject.setOuter(nullptr); }

private:
  ProgressSubject& _subject;
};

} // namespace

template <class CoordType, class PixelType>
void SpatialModelEvaluator<CoordType, PixelType>::setNumMonteCarloSamples(int numSamples)
{
  if (numSamples < 1)
    throw ValueError("void SpatialModelEvaluator<CoordType, PixelType>::setNumMonteCarloSamples(int)",
                     "There must be a sample");
  _numSamples = numSamples;
}

template <class CoordType, class PixelType> std::vector<SpatialEvaluation<CoordType>>
SpatialModelEvaluator<CoordType, PixelType>::eval(const Vertices<CoordType>& observed)
{
  return compareWithModel(observed, this->getDescriptors());
}

template <class CoordType, class PixelType>
CoordType SpatialModelEvaluator<CoordType, PixelType>::eval(const Vertices<CoordType>& observed,
                                                            const SpatialDescriptor<CoordType>& descriptor,
                                                            CoordType* pValue, DataSet* dataSet)
{
  return this->output(compareWithModel(observed, {&descriptor}).front(), pValue, dataSet);
}

template <class CoordType, class PixelType> std::vector<SpatialEvaluation<CoordType>>
SpatialModelEvaluator<CoordType, PixelType>::compareWithModel(const Vertices<CoordType>& observed,
                                                              const Descriptors& descriptors)
{
  if (!_model)
    throw UsageError("std::vector<SpatialEvaluation<CoordType>> SpatialModelEvaluator<CoordType, "
                     "PixelType>::compareWithModel(const Vertices<CoordType>&, const Descriptors&)",
                     "There is no model");
  const unsigned long seed = drawSeed(_model->getRandomGenerator());
  _drawing.start("", 1); // forgets an earlier error
  _drawing.finish();
  const OuterSubject whole(_drawing, *this), part(*_model, _drawing);
  const auto pattern = [&](int i)
  {
    RandomGenerator generator(seed + static_cast<unsigned long>(i));
    return _model->drawSample(observed.getSize(), generator);
  };
  return this->compare(observed, descriptors, _numSamples, pattern, precision());
}

template <class CoordType, class PixelType> CoordType SpatialModelEvaluator<CoordType, PixelType>::precision() const
{
  if (this->getPrecision() > 0) return this->getPrecision();
  const BoundingBox<CoordType> box = _model->getBoundingBox();
  return box.isEmpty() ? CoordType(0) : box.getMinimum().distance(box.getMaximum()) / 1000;
}

SPATIAL_INSTANTIATE(SpatialModelEvaluator)
