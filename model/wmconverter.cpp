#include "model/wmconverter.h"

#include "numeric/maths.h"

#include <cmath>

namespace
{
Vector<int> makePoint(int x, int y)
{
  return Vector<int>{x, y};
}

template <class Map> BoundingBox<int> mapped(const BoundingBox<int>& box, Map map)
{
  return box.isEmpty() ? box : BoundingBox<int>(map(box.getMinimum()), map(box.getMaximum()));
}

template <class MapX, class MapY> Vertices<int> mapped(Vertices<int> vertices, MapX mapX, MapY mapY)
{
  for (int i = 0; i < vertices.getSize(); ++i)
  {
    int* const vertex = vertices.data(i);
    vertex[0] = mapX(vertex[0]);
    vertex[1] = mapY(vertex[1]);
  }
  return vertices;
}

template <class Map> Registration mapped(const Registration& registration, Map map)
{
  return Registration(map(registration.getHorizontalShift()), map(registration.getVerticalShift()),
                      registration.getAngle());
}
} // namespace

void WMConverter::setWorld(unsigned int x, unsigned int y, unsigned int width, unsigned int height)
{
  _world = {x, y, width, height};
}

void WMConverter::setModel(unsigned int x, unsigned int y, unsigned int width, unsigned int height)
{
  _model = {x, y, width, height};
}

int WMConverter::toModel(int coordinate, std::int64_t worldOrigin, std::int64_t worldSize, std::int64_t modelOrigin,
                         std::int64_t modelSize)
{
  if (worldSize <= 1 || modelSize <= 1) return static_cast<int>(modelOrigin);
  const double scaled = static_cast<double>(coordinate - worldOrigin) * static_cast<double>(modelSize - 1) /
                        static_cast<double>(worldSize - 1);
  return Maths::fround(std::floor(scaled + 0.5) + static_cast<double>(modelOrigin));
}

int WMConverter::toWorld(int coordinate, std::int64_t modelOrigin, std::int64_t modelSize, std::int64_t worldOrigin,
                         std::int64_t worldSize)
{
  if (worldSize <= 1 || modelSize <= 1) return static_cast<int>(worldOrigin);
  const float scaled =
      static_cast<float>((coordinate - modelOrigin) * (worldSize - 1)) / static_cast<float>(modelSize - 1);
  return Maths::fround(scaled) + static_cast<int>(worldOrigin);
}

int WMConverter::lengthToModel(int length) const
{
  return _world.width == 0 ? 0 : static_cast<int>(_model.width * length / _world.width);
}

int WMConverter::lengthToWorld(int length) const
{
  return _model.width == 0 ? 0 : static_cast<int>(_world.width * length / _model.width);
}

Vector<int> WMConverter::toModel(const Vector<int>& point) const
{
  return makePoint(xToModel(point[0]), yToModel(point[1]));
}

Vector<int> WMConverter::toWorld(const Vector<int>& point) const
{
  return makePoint(xToWorld(point[0]), yToWorld(point[1]));
}

BoundingBox<int> WMConverter::toModel(const BoundingBox<int>& box) const
{
  return mapped(box, [this](const Vector<int>& corner) { return toModel(corner); });
}

BoundingBox<int> WMConverter::toWorld(const BoundingBox<int>& box) const
{
  return mapped(box, [this](const Vector<int>& corner) { return toWorld(corner); });
}

Vertices<int> WMConverter::toModel(const Vertices<int>& vertices) const
{
  return mapped(
      vertices, [this](int x) { return xToModel(x); }, [this](int y) { return yToModel(y); });
}

Vertices<int> WMConverter::toWorld(const Vertices<int>& vertices) const
{
  return mapped(
      vertices, [this](int x) { return xToWorld(x); }, [this](int y) { return yToWorld(y); });
}

Registration WMConverter::toModel(const Registration& registration) const
{
  return mapped(registration, [this](int shift) { return lengthToModel(shift); });
}

Registration WMConverter::toWorld(const Registration& registration) const
{
  return mapped(registration, [this](int shift) { return lengthToWorld(shift); });
}
