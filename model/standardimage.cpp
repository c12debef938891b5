#include "model/standardimage.h"

#include "image/image.h"
#include "image/pixelmatrix.h"
#include "model/stack.h"
#include "model/storabletext.h"
#include "numeric/exception.h"

#include <numeric>

namespace
{
constexpr const char* calibrateSignature = "void StandardImage::calibrate(CalibrationFit)";

double meanGreyLevel(const PixelMatrix<float>& levels, const StandardSample& sample)
{
  const bool isInside = sample.x >= 0 && sample.y >= 0 && sample.width > 0 && sample.height > 0 &&
                        sample.width <= levels.getSize2() - sample.x && sample.height <= levels.getSize1() - sample.y;
  if (!isInside) throw RangeError(calibrateSignature, "The sample \"" + sample.name + "\" does not lie in the image");
  double sum = 0;
  for (int i = sample.y; i < sample.y + sample.height; ++i)
  {
    const float* const line = levels.data() + static_cast<std::ptrdiff_t>(i) * levels.getSize2();
    sum = std::accumulate(line + sample.x, line + sample.x + sample.width, sum);
  }
  return sum / (static_cast<double>(sample.width) * sample.height);
}
} // namespace

void StandardImage::setStack(const Stack* stack)
{
  _stack = stack;
  resolveImageNames();
}

std::string StandardImage::imagesPath() const
{
  return _stack ? _stack->getImagesPath() : "";
}

void StandardImage::addSample(const StandardSample& sample)
{
  requireStorableName(sample.name, "void StandardImage::addSample(const StandardSample&)");
  _samples.push_back(sample);
}

void StandardImage::calibrate(CalibrationFit fit)
{
  Image image;
  load(image);
  const PixelMatrix<float> levels(image);
  std::vector<CalibrationCurve::Sample> points;
  for (const StandardSample& sample : _samples) points.push_back({meanGreyLevel(levels, sample), sample.value});
  CalibrationCurve curve(std::move(points), fit);
  if (!curve.isDefined())
    throw UsageError(calibrateSignature, "There are fewer samples of different grey levels than the fit " +
                                             CalibrationCurve::toString(fit) + " needs");
  setCalibrationCurve(std::move(curve));
}
