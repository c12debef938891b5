#include "slice/nyxsnakerun.h"

#include "app/core/nyxstack.h"
#include "image/imagereader.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/nyxcontourvertices.h"
#include "slice/nyxroicontour.h"

#include <chrono>

namespace
{
constexpr std::chrono::milliseconds viewInterval(30);

/// The snake's vertices as pixels of the image.
Vertices<int> scaled(Curve<double> curve, int scale)
{
  double* const p = curve.data();
  for (int i = 0; i < 2 * curve.getNumVertices(); ++i) p[i] *= scale;
  return roundedVertices(curve);
}
} // namespace

NYXSnakeRun::NYXSnakeRun(const SnakeConfig& config, const NYXStack& stack, const ModelItem& item, const Image& image)
  : _config(config), _image(image), _curve(realCurve(item))
{
  double* const p = _curve.data();
  for (int i = 0; i < 2 * _curve.getNumVertices(); ++i) p[i] /= config.scale;
  StackSlice* slice = item.getSlice();
  _slices.push_back({slice, slice->getName(), nullptr});
  if (!config.propagates) return;
  for (slice = slice->nextSlice(); slice != nullptr; slice = slice->nextSlice())
  {
    if (stack.isLocked(*slice) || slice->getImageSource() == nullptr)
    {
      _obstacle = slice->getName();
      break;
    }
    _slices.push_back({slice, slice->getName(), slice->getImageSource()->clone()});
  }
}

std::vector<StackSlice*> NYXSnakeRun::slices() const
{
  std::vector<StackSlice*> slices;
  for (const Place& place : _slices) slices.push_back(place.slice);
  return slices;
}

void NYXSnakeRun::run()
{
  const ProgressStep step(_subject, "Running snake...", 2 * static_cast<long>(_slices.size()));
  long numDone = 0;
  for (const Place& place : _slices)
  {
    if (place.source && !read(*place.source)) return;
    _subject.progress(++numDone);
    const bool isDone = runOn(place);
    _subject.throwIfCancelled("void NYXSnakeRun::run()");
    if (!isDone) return;
    _subject.progress(++numDone);
  }
}

bool NYXSnakeRun::read(const ImageSource& source)
{
  try
  {
    ImageReader::read(_image, source, _subject);
    return true;
  }
  catch (const FileError& error)
  {
    _problem = error.getWhat();
    return false;
  }
}

/// \return whether there is a result
bool NYXSnakeRun::runOn(const Place& place)
{
  const PixelMatrix<float> levels = greyLevels(_image);
  ActiveContour snake(_config);
  snake.setOuter(&_subject);
  if (_slices.size() > 1) snake.setMessage("Running snake on slice " + place.name);
  if (_results.empty()) snake.setObserver(observer());
  const SnakeEnd end = snake.apply(levels, _curve);
  _isUnfinished = _isUnfinished || end == SnakeEnd::IterationsUsedUp;
  if (end != SnakeEnd::Converged && end != SnakeEnd::IterationsUsedUp) return false;
  const Vertices<int> vertices = onImage(_curve, levels);
  if (vertices.getNumVertices() < minNumVertices(MPrimitive::Polygon)) return false;
  _results.push_back(vertices);
  return true;
}

ActiveContour::Observer NYXSnakeRun::observer() const
{
  using Clock = std::chrono::steady_clock;
  return [this, last = Clock::time_point()](const Curve<double>& curve) mutable
  {
    const Clock::time_point now = Clock::now();
    if (!_observer || now - last < viewInterval) return;
    last = now;
    _observer(scaled(curve, _config.scale));
  };
}

Vertices<int> NYXSnakeRun::onImage(const Curve<double>& curve, const PixelMatrix<float>& image) const
{
  Vertices<int> vertices = scaled(curve, _config.scale);
  clampTo(BoundingBox<int>({0, 0}, {image.getSize2() - 1, image.getSize1() - 1}), vertices);
  return withoutRepetitions(vertices, true);
}
