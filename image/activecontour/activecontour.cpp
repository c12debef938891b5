#include "image/activecontour/activecontour.h"

#include "geometry/curveprocessing/curveresampling.h"
#include "image/activecontour/pentadiagonalsystem.h"
#include "image/activecontour/snakeforcefield.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace
{
constexpr double largestWeight = 1000;
constexpr int largestScale = 100;
constexpr double largestDistance = 1000;
constexpr int fewestVertices = 8;
constexpr int mostVertices = 1'000'000;
constexpr double smallestArea = 2;
constexpr double shortestEdge = 0.5, longestEdge = 1.5; // as parts of the mean length
constexpr double largestSurplus = 0.02;                 // of vertices, as a part of their number
constexpr int leastMargin = 16;

void requireWithin(double value, double least, double greatest, const std::string& name)
{
  if (value >= least && value <= greatest) return; // NaN is not
  throw ValueError("ActiveContour::ActiveContour(const SnakeConfig&)", "The snake's " + name + " is out of its range");
}

void requireUsable(const PixelMatrix<float>& image, const Curve<double>& curve)
{
  const char* const where = "SnakeEnd ActiveContour::apply(const PixelMatrix<float>&, Curve<double>&)";
  if (image.getNumElements() == 0) throw SizeError(where, "The image is empty");
  if (curve.getSpace() != 2 || curve.getNumVertices() == 0) throw SizeError(where, "The snake is no planar curve");
  const double* const p = curve.data();
  if (!std::all_of(p, p + 2 * curve.getNumVertices(), [](double x) { return std::isfinite(x); }))
    throw ValueError(where, "The snake has coordinates that are not finite");
}

/// Standard deviations, the last one as configured.
std::vector<double> smoothingLevels(const SnakeConfig& config)
{
  std::vector<double> sigmas;
  for (double sigma = 0.6 * config.reach; sigma > std::max(1.2 * config.smoothing, 1.0); sigma /= 2)
    sigmas.push_back(sigma);
  sigmas.push_back(config.smoothing);
  return sigmas;
}
} // namespace

/// The curve on its way, and the forces upon it.
class ActiveContour::Motion
{
public:
  Motion(const SnakeConfig& config, const PixelMatrix<float>& image, const Curve<double>& start);

  const Curve<double>& getCurve() const { return _curve; }
  bool isCollapsed() const;
  bool hasLeftImage() const { return 2 * _numAtBorder > _curve.getNumVertices(); }

  void setSmoothing(double sigma);
  /// One iteration. \return the mean movement of the vertices
  double advance();

private:
  void provideForces(int margin);
  void resample();
  void keepOnImage();
  void push(int i, double* point) const;
  std::array<double, 2> normal(const double* points, int i) const;
  double greatestForceAlong(const double* point, const std::array<double, 2>& direction) const;

  const SnakeConfig& _config;
  SnakeForceField _field;
  Curve<double> _curve;
  double _orientation; // 1 when outward is to the right
  double _unitForce = 0;
  int _numAtBorder = 0;
  PentadiagonalSystem _system;
  std::vector<double> _before; // the iteration, coordinates
};

ActiveContour::Motion::Motion(const SnakeConfig& config, const PixelMatrix<float>& image, const Curve<double>& start)
  : _config(config), _field(image, config.scale), _curve(start), _orientation(start.twiceArea(0, 1) < 0 ? -1 : 1)
{
  keepOnImage();
  _numAtBorder = 0;
  resample();
}

bool ActiveContour::Motion::isCollapsed() const
{
  return _curve.getNumVertices() < fewestVertices ||
         (_curve.isClosed() && _orientation * _curve.twiceArea(0, 1) < 2 * smallestArea);
}

void ActiveContour::Motion::provideForces(int margin)
{
  const double* p = _curve.data();
  double left = p[0], right = p[0], top = p[1], bottom = p[1];
  for (const double* const end = p + 2 * _curve.getNumVertices(); p != end; p += 2)
  {
    left = std::min(left, p[0]);
    right = std::max(right, p[0]);
    top = std::min(top, p[1]);
    bottom = std::max(bottom, p[1]);
  }
  const int share = static_cast<int>(std::max(right - left, bottom - top)) / 8; // large curves may travel farther
  _field.cover(
      {static_cast<int>(left), static_cast<int>(top), static_cast<int>(right) + 1, static_cast<int>(bottom) + 1},
      std::max(margin, share));
}

std::array<double, 2> ActiveContour::Motion::normal(const double* points, int i) const
{
  const int last = _curve.getNumVertices() - 1;
  const double* const before = points + 2 * (i > 0 ? i - 1 : _curve.isOpen() ? 0 : last);
  const double* const after = points + 2 * (i < last ? i + 1 : _curve.isOpen() ? last : 0);
  const double dx = after[0] - before[0], dy = after[1] - before[1];
  const double length = std::sqrt(dx * dx + dy * dy);
  const double factor = length > 0 ? _orientation / length : 0;
  return {factor * dy, -factor * dx};
}

double ActiveContour::Motion::greatestForceAlong(const double* point, const std::array<double, 2>& direction) const
{
  double greatest = 0;
  const int reach = static_cast<int>(_config.reach);
  for (int k = -reach; k <= reach; ++k)
  {
    const double x = point[0] + k * direction[0], y = point[1] + k * direction[1];
    if (x < 0 || y < 0 || x > _field.getWidth() - 1 || y > _field.getHeight() - 1) continue;
    const std::array<double, 2> force = _field(x, y);
    greatest = std::max(greatest, std::hypot(force[0], force[1]));
  }
  return greatest;
}

void ActiveContour::Motion::setSmoothing(double sigma)
{
  _field.setSmoothing(sigma);
  provideForces(leastMargin + static_cast<int>(_config.reach));
  double sum = 0;
  const double* const points = _curve.data();
  for (int i = 0; i < _curve.getNumVertices(); ++i) sum += greatestForceAlong(points + 2 * i, normal(points, i));
  _unitForce = sum / _curve.getNumVertices();
}

double ActiveContour::Motion::advance()
{
  const int n = _curve.getNumVertices();
  provideForces(leastMargin);
  double* const points = _curve.data();
  _before.assign(points, points + 2 * n);
  for (int i = 0; i < n; ++i) push(i, points + 2 * i);
  _system.solve(points);
  keepOnImage();
  double movement = 0;
  for (int i = 0; i < 2 * n; i += 2) movement += std::hypot(points[i] - _before[i], points[i + 1] - _before[i + 1]);
  resample();
  return movement / n;
}

/// Moves a vertex by the forces from outside along its normal: along the curve, they would only crowd the vertices.
void ActiveContour::Motion::push(int i, double* point) const
{
  const std::array<double, 2> outward = normal(_before.data(), i);
  const std::array<double, 2> force = _field(point[0], point[1]);
  const double along = force[0] * outward[0] + force[1] * outward[1];
  const double size = std::max(_unitForce, std::abs(along));
  const double distance = _config.step * ((size > 0 ? _config.imageForce * along / size : 0) + _config.balloonForce);
  for (int k = 0; k < 2; ++k) point[k] += distance * outward[k];
}

void ActiveContour::Motion::keepOnImage()
{
  const double last[] = {_field.getWidth() - 1.0, _field.getHeight() - 1.0};
  double* p = _curve.data();
  _numAtBorder = 0;
  for (int i = 0; i < _curve.getNumVertices(); ++i, p += 2)
  {
    _numAtBorder += p[0] < 0 || p[1] < 0 || p[0] > last[0] || p[1] > last[1];
    for (int k = 0; k < 2; ++k) p[k] = std::clamp(p[k], 0.0, last[k]);
  }
}

/// Back to a vertex per pixel when there are too few or too many, or they are unevenly spread.
void ActiveContour::Motion::resample()
{
  const std::vector<double> edgeLengths = _curve.edgeLengths();
  double length = 0, shortest = HUGE_VAL, longest = 0;
  for (const double edge : edgeLengths)
  {
    length += edge;
    shortest = std::min(shortest, edge);
    longest = std::max(longest, edge);
  }
  const int size = static_cast<int>(std::clamp(std::round(length) + _curve.isOpen(), 1.0, double(mostVertices)));
  const double mean = length / static_cast<double>(edgeLengths.size());
  const bool isEven = shortest >= shortestEdge * mean && longest <= longestEdge * mean;
  const bool isRight = std::abs(size - _curve.getNumVertices()) <= largestSurplus * size;
  if (!isEven || !isRight)
  {
    Curve<double> resampled(2, size);
    CurveResampling<double>().apply(_curve, edgeLengths, resampled);
    _curve = resampled;
  }
  if (_curve.getNumVertices() >= fewestVertices && _curve.getNumVertices() != _system.getNumVertices())
    _system.factorise(_curve.getNumVertices(), _curve.isClosed(), _config.step * _config.elasticity,
                      _config.step * _config.rigidity);
}

// ---------------------------------------------------------------------------------------------------- ActiveContour

ActiveContour::ActiveContour(const SnakeConfig& config) : _config(config)
{
  requireWithin(config.elasticity, 0, largestWeight, "elasticity");
  requireWithin(config.rigidity, 0, largestWeight, "rigidity");
  requireWithin(config.imageForce, 0, largestWeight, "image force");
  requireWithin(config.balloonForce, -largestWeight, largestWeight, "balloon force");
  requireWithin(config.step, 0, largestWeight, "step");
  requireWithin(config.iterations, 1, std::numeric_limits<int>::max(), "number of iterations");
  requireWithin(config.scale, 1, largestScale, "scale");
  requireWithin(config.convergence, 0, largestWeight, "convergence");
  requireWithin(config.smoothing, 0, largestDistance, "smoothing");
  requireWithin(config.reach, 0, largestDistance, "reach");
}

SnakeEnd ActiveContour::apply(const PixelMatrix<float>& image, Curve<double>& curve)
{
  requireUsable(image, curve);
  const ProgressStep step(*this, _message, _config.iterations);
  _numIterations = 0;
  Motion motion(_config, image, curve);
  SnakeEnd end = SnakeEnd::Converged;
  for (const double sigma : smoothingLevels(_config))
  {
    if (motion.isCollapsed()) end = SnakeEnd::Collapsed;
    if (end != SnakeEnd::Converged) break;
    motion.setSmoothing(sigma);
    end = settle(motion);
  }
  curve = motion.getCurve();
  return end;
}

SnakeEnd ActiveContour::settle(Motion& motion)
{
  while (_numIterations < _config.iterations)
  {
    if (isCancelled()) return SnakeEnd::Cancelled;
    const double movement = motion.advance();
    progress(++_numIterations);
    if (_observer) _observer(motion.getCurve());
    if (motion.isCollapsed()) return SnakeEnd::Collapsed;
    if (motion.hasLeftImage()) return SnakeEnd::LeftImage;
    if (movement <= _config.convergence) return SnakeEnd::Converged;
  }
  return SnakeEnd::IterationsUsedUp;
}
