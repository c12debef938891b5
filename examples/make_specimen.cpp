// Makes the example stack: the images of a specimen cut into slices that were shifted and turned against each other,
// the stack file with the true registration, and models of every geometry. The same bytes at every run.
//
// Usage: make_specimen FOLDER
#include "examples/anatomy.h"
#include "examples/micrograph.h"
#include "geometry/reconstruction/stackreconstruction.h"
#include "image/image.h"
#include "image/imagesourcefile.h"
#include "image/imagewriter.h"
#include "model/io/stackwriter.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/pose.h"
#include "model/stack.h"
#include "model/stackslice.h"
#include "numeric/exception.h"

#include <cmath>
#include <filesystem>
#include <iostream>
#include <numbers>
#include <sstream>

using namespace anatomy;

namespace
{
namespace fs = std::filesystem;

/// Where the specimen's own frame lies on a slice: shift in micrometres and angle in degrees.
struct Placement
{
  double x, y, angle;
};

Placement placement(int slice)
{
  if (slice == 0) return {0, 0, 0};
  const auto spread = [&](unsigned key) { return 2 * hashed(unsigned(slice), key, 0, 21) - 1; };
  return {1.6 * spread(0), 1.6 * spread(1), 3.5 * spread(2)};
}

/// The registration that brings a slice to its placement, given the angle and the translation reached before it. Shifts
/// are whole pixels and the angle has two decimals, as the stack file stores them; what was reached follows.
Registration registration(const Placement& wanted, Placement& reached)
{
  const double degrees = std::round(100 * (reached.angle - wanted.angle)) / 100;
  const double radians = reached.angle * std::numbers::pi / 180;
  const double co = std::cos(radians), si = std::sin(radians);
  const double dx = wanted.x - reached.x, dy = wanted.y - reached.y;
  const double h = std::round((co * dx + si * dy) / pixelSize), v = std::round((si * dx - co * dy) / pixelSize);
  reached.x += pixelSize * (co * h + si * v);
  reached.y += pixelSize * (si * h - co * v);
  reached.angle -= degrees;
  return Registration(static_cast<int>(h), static_cast<int>(v), static_cast<float>(degrees));
}

PixelCalibration calibration()
{
  PixelCalibration result;
  result.setPixelWidth(pixelSize);
  result.setPixelHeight(pixelSize);
  result.setAspectRatio(1);
  result.setLengthUnit(LengthUnit(-6));
  return result;
}

std::string sliceName(int slice)
{
  return std::string(slice < 10 ? "00" : "0") + std::to_string(slice);
}

void addSlices(Stack& stack, const fs::path& folder)
{
  Placement reached = {0, 0, 0};
  for (int k = 0; k < numSlices; ++k)
  {
    auto slice = std::make_unique<StackSlice>();
    ImageSourceFile source((folder / ("slice-" + sliceName(k) + ".tif")).string());
    source.setFallbackSize(imageSize, imageSize);
    slice->setName(sliceName(k));
    slice->setImageSource(source);
    slice->setPixelCalibration(calibration());
    if (k > 0) slice->setRegistration(registration(placement(k), reached));
    stack.addSlice(std::move(slice));
  }
}

/// Maps pixels of one slice to the specimen's frame and back.
class SliceFrame
{
public:
  SliceFrame(const StackReconstruction<double>& reconstruction, int slice)
    : _m(reconstruction.getMap(slice)), _z(reconstruction.getZMap()[slice])
  {
  }

  Point toSpecimen(double u, double v) const
  {
    return {_m[0] * u + _m[1] * v + _m[2], _m[3] * u + _m[4] * v + _m[5], _z};
  }

  Vector<int> toPixel(const Point& p) const
  {
    const double x = p.x - _m[2], y = p.y - _m[5];
    const double det = _m[0] * _m[4] - _m[1] * _m[3];
    Vector<int> pixel(2);
    pixel[0] = static_cast<int>(std::lround((_m[4] * x - _m[1] * y) / det));
    pixel[1] = static_cast<int>(std::lround((_m[0] * y - _m[3] * x) / det));
    return pixel;
  }

  double z() const { return _z; }

private:
  Vector<double> _m;
  double _z;
};

bool isOnImage(const Vector<int>& pixel)
{
  return pixel[0] >= 0 && pixel[0] < imageSize && pixel[1] >= 0 && pixel[1] < imageSize;
}

Model& addModel(Stack& stack, const std::string& name, MPrimitive geometry, const ModelItemProperties::Color& color)
{
  auto model = std::make_unique<Model>(name);
  model->getProperties().setDefaults();
  model->getProperties().setGeometry(geometry);
  model->getItemProperties().setDefaults();
  model->getItemProperties().setColor(color);
  model->getItemProperties().setLineWidth(2);
  model->getItemProperties().setPointSize(3);
  return stack.addModel(std::move(model));
}

/// Draws vertices on a slice, without repeating a pixel.
ModelItem& draw(Model& model, StackSlice& slice, const SliceFrame& frame, const std::vector<Point>& points)
{
  Vertices<int> vertices(2);
  for (const Point& p : points)
  {
    const Vector<int> pixel = frame.toPixel(p);
    const int last = vertices.getNumVertices() - 1;
    if (!isOnImage(pixel) || (last >= 0 && vertices[last] == pixel)) continue;
    vertices.append(pixel);
  }
  const bool closes = model.getGeometry() == MPrimitive::Polygon;
  if (closes && vertices[0] == vertices[vertices.getNumVertices() - 1]) vertices.remove(vertices.getNumVertices() - 1);
  ModelItem& item = ModelItem::create(model, slice);
  item.setVertices(vertices);
  return item;
}

std::vector<Point> fibreLine(int fibre, double z)
{
  std::vector<Point> points;
  constexpr int numSteps = 16;
  for (int i = 0; i <= numSteps; ++i)
  {
    const double x = fibres::halfLength * (2.0 * i / numSteps - 1);
    points.push_back({x, fibres::y(fibre, x, z), z});
  }
  return points;
}

/// Each fibre begins and ends a surface of its own.
void drawFibre(Model& model, StackSlice& slice, const SliceFrame& frame, int fibre)
{
  const double z = frame.z();
  if (!fibres::isPresent(fibre, z)) return;
  ModelItem& item = draw(model, slice, frame, fibreLine(fibre, z));
  if (!fibres::isPresent(fibre, z - sliceSpacing)) item.setTriangulationTag(CurveStackTriangulationContourTag::Begin);
  if (!fibres::isPresent(fibre, z + sliceSpacing)) item.setTriangulationTag(CurveStackTriangulationContourTag::End);
}

/// The stained pixels, in runs along the columns of the image.
RLEItemSet stainedRegion(const SliceFrame& frame)
{
  RLEItemSet region;
  for (int u = 0; u < imageSize; ++u)
  {
    for (int v = 0; v < imageSize; ++v)
    {
      if (stain(frame.toSpecimen(u, v)) > 0.5) region.add(u, v);
    }
  }
  return region;
}

void addModels(Stack& stack, const std::vector<SliceFrame>& frames, const std::vector<Vesicle>& allVesicles)
{
  // Colours that people with any colour vision tell apart: Okabe and Ito, "Color universal design", 2008.
  Model& nucleusModel = addModel(stack, "nucleus", MPrimitive::Polygon, {86, 180, 233});
  Model& vesselModel = addModel(stack, "vessel", MPrimitive::Polygon, {213, 94, 0});
  Model& fibreModel = addModel(stack, "fibres", MPrimitive::Polyline, {0, 158, 115});
  Model& vesicleModel = addModel(stack, "vesicles", MPrimitive::Polypoint, {240, 228, 66});
  Model& stainModel = addModel(stack, "stain", MPrimitive::Region, {204, 121, 167});
  for (int k = 0; k < numSlices; ++k)
  {
    StackSlice& slice = *stack.getSlice(k);
    const SliceFrame& frame = frames[static_cast<std::size_t>(k)];
    if (nucleus.sectionScale(frame.z()) > 0) draw(nucleusModel, slice, frame, nucleus.outline(frame.z(), 64));
    for (const auto& outline : vessel::outlines(frame.z(), 32)) draw(vesselModel, slice, frame, outline);
    for (int i = 0; i < fibres::number; ++i) drawFibre(fibreModel, slice, frame, i);
    std::vector<Point> points;
    for (const Vesicle& vesicle : allVesicles)
    {
      if (vesicle.slice == k) points.push_back(vesicle.center);
    }
    if (!points.empty()) draw(vesicleModel, slice, frame, points);
    const RLEItemSet region = stainedRegion(frame);
    if (region.numItems() > 0) ModelItem::create(stainModel, slice).setRLEItemSet(region);
  }
}

void writeImage(const std::string& filename, const Micrograph& micrograph, const SliceFrame& frame, int slice)
{
  Image image(imageSize, imageSize, 8);
  for (int v = 0; v < imageSize; ++v)
  {
    unsigned char* line = image.getLine(v);
    for (int u = 0; u < imageSize; ++u) line[u] = micrograph.greyLevel(frame.toSpecimen(u, v), slice, u, v);
  }
  image.setPixelCalibration(calibration());
  ImageWriter::write(image, filename, true);
}

void describe(Stack& stack)
{
  stack.setName("specimen");
  stack.setAnnotation(
      "A made-up specimen: a nucleus, a vessel that branches and rejoins, fibres, vesicles and a stained region.\n"
      "The slices carry their true registration.");
  stack.setDefaultPixelCalibration(calibration());
  stack.setDefaultRelativePosition(static_cast<float>(sliceSpacing));
  auto pose = std::make_unique<Pose>(&stack);
  pose->setName("from the side");
  pose->setXRotation(-60);
  pose->setZRotation(25);
  pose.release()->attach();
}

void make(const fs::path& folder)
{
  fs::create_directories(folder);
  Stack stack;
  describe(stack);
  addSlices(stack, folder);

  StackReconstruction<double> reconstruction(stack);
  reconstruction.computeMaps();
  std::vector<SliceFrame> frames;
  frames.reserve(numSlices);
  for (int k = 0; k < numSlices; ++k) frames.emplace_back(reconstruction, k);

  const std::vector<Vesicle> allVesicles = vesicles();
  const Micrograph micrograph(allVesicles);
  for (int k = 0; k < numSlices; ++k)
    writeImage((folder / ("slice-" + sliceName(k) + ".tif")).string(), micrograph, frames[static_cast<std::size_t>(k)],
               k);
  addModels(stack, frames, allVesicles);
  StackWriter().write(stack, (folder / "specimen.sdf").string());
}
} // namespace

int main(int argc, char** argv)
{
  const std::string argument = argc == 2 ? argv[1] : "";
  if (argument == "--version") std::cout << "make_specimen " MIRELO_VERSION "\n";
  if (argument == "--help") std::cout << "Usage: make_specimen FOLDER\nMakes the example stack in a folder.\n";
  if (argument == "--version" || argument == "--help") return 0;
  if (argument.empty())
  {
    std::cerr << "Usage: make_specimen FOLDER\n";
    return 2;
  }
  try
  {
    make(fs::absolute(argument));
    return 0;
  }
  catch (const Exception& error)
  {
    std::cerr << "make_specimen: " << error.getWhat() << "\n";
    return 2;
  }
}
