#include "bench/manyitems.h"

#include "image/image.h"
#include "image/imagesourcefile.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "numeric/randomgenerator.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <sstream>

namespace
{
constexpr int numVertices = 100;

Vertices<int> contour(double x, double y, double radius)
{
  Vertices<int> vertices(2, numVertices);
  for (int k = 0; k < numVertices; ++k)
  {
    const double angle = 2 * std::numbers::pi * k / numVertices;
    const double r = radius * (1 + 0.2 * std::sin(5 * angle));
    vertices[k][0] = static_cast<int>(x + r * std::cos(angle));
    vertices[k][1] = static_cast<int>(y + r * std::sin(angle));
  }
  return vertices;
}

/// Contours around the centre of the image, all within a view of 900 x 500 canvas pixels.
void drawItems(StackSlice& slice, Model& model, const ManyItems& settings)
{
  RandomGenerator random(1);
  const double w = std::min(900 / static_cast<double>(settings.zoom), settings.side * 0.9);
  const double h = std::min(500 / static_cast<double>(settings.zoom), settings.side * 0.9);
  for (int i = 0; i < settings.numItems; ++i)
  {
    const double x = (settings.side - w) / 2 + random.uniformLF(0, w);
    const double y = (settings.side - h) / 2 + random.uniformLF(0, h);
    ModelItem::create(model, slice).setVertices(contour(x, y, 6 / static_cast<double>(settings.zoom)));
  }
}
} // namespace

void ManyItems::read(const QStringList& arguments)
{
  if (arguments.size() > 1) side = arguments[1].toInt();
  if (arguments.size() > 2) numItems = arguments[2].toInt();
  if (arguments.size() > 3) zoom = arguments[3].toFloat();
}

void writeTexture(const std::string& filename, int side)
{
  Image image(side, side, 8);
  for (int y = 0; y < side; ++y)
  {
    unsigned char* line = image.getLine(y);
    for (int x = 0; x < side; ++x) line[x] = static_cast<unsigned char>((x ^ y) * 3 + (x * y >> 12));
  }
  image.writeFile(filename, true);
}

std::unique_ptr<NYXStack> makeStack(const std::string& image, const ManyItems& settings)
{
  auto stack = std::make_unique<NYXStack>();
  Model& model = stack->addModel(std::make_unique<Model>("contours"));
  StackSlice& slice = stack->addSlice(std::make_unique<StackSlice>());
  slice.setName("slice");
  slice.setImageSource(ImageSourceFile(image));
  drawItems(slice, model, settings);
  return stack;
}

double millisecondsOf(const QElapsedTimer& clock)
{
  return static_cast<double>(clock.nsecsElapsed()) / 1e6;
}

std::string summaryOf(std::vector<double> milliseconds)
{
  std::sort(milliseconds.begin(), milliseconds.end());
  std::ostringstream text;
  text << "median " << milliseconds[milliseconds.size() / 2] << " ms, 99% "
       << milliseconds[milliseconds.size() * 99 / 100] << " ms, worst " << milliseconds.back() << " ms";
  return text.str();
}
