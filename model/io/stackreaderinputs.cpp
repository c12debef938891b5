// The input routines of StackReader: what each keyword does to the stack.

#include "image/imagesourcefile.h"
#include "image/imagesourcefilemosaic.h"
#include "image/imagesourcelsmstackplane.h"
#include "image/imagesourcetiffstackplane.h"
#include "image/imagesourcevoxelmatrixfileplane.h"
#include "model/io/calibrationlimits.h"
#include "model/io/stackarguments.h"
#include "model/io/stackreader.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <memory>
#include <utility>

namespace
{
std::string lowerCaseSuffix(const std::string& fileName)
{
  std::string suffix = std::filesystem::path(fileName).extension().string();
  std::transform(suffix.begin(), suffix.end(), suffix.begin(), [](unsigned char c) { return std::tolower(c); });
  return suffix;
}

std::unique_ptr<ImageSource> planeSource(const std::string& fileName, int plane)
{
  const std::string suffix = lowerCaseSuffix(fileName);
  if (suffix == ".vm") return std::make_unique<ImageSourceVoxelMatrixFilePlane>(fileName, plane);
  if (suffix == ".lsm") return std::make_unique<ImageSourceLSMStackPlane>(fileName, plane);
  return std::make_unique<ImageSourceTiffStackPlane>(fileName, plane);
}

template <class Enum> Enum known(Enum value)
{
  if (value == Enum::Unknown) throw StackReader::ArgValueError();
  return value;
}

float storableFactor(float factor)
{
  if (!isStorableFactor(factor)) throw StackReader::ArgValueError();
  return factor;
}

/// A mosaic of the given grid; callers loop over it, so that nobody's grid must be believed.
ImageSourceFileMosaic checkedMosaic(int rows, int columns)
{
  constexpr int maxPerSide = 10000, maxTiles = 1000000;
  if (rows > maxPerSide || columns > maxPerSide || rows * columns > maxTiles) throw StackReader::ArgValueError();
  return ImageSourceFileMosaic(rows, columns);
}
} // namespace

void StackReader::inputFileFormatVersion(const StackArguments& arguments)
{
  const float version = arguments.real(0);
  const bool isNewer = !ensureFileFormatVersion(version); // than this program's, to which read() set it
  setFileFormatVersion(version);
  if (isNewer)
    addToLog("Error on FileFormatVersion: the file has version " + std::string(arguments.getToken(0)) +
             ", which is newer than this program; what it does not know is lost.");
}

// The stack.

void StackReader::inputStack(const StackArguments& arguments)
{
  _target->setName(arguments.name(0));
  if (!_context.getSlice()) closePixelSize();
  PixelCalibration calibration = _target->getDefaultPixelCalibration();
  calibration.clearFlags(); // what is stated from now on counts
  _target->setDefaultPixelCalibration(calibration);
  _context.openStack(*_target);
  _target->setImagesPath(_context.getImagesPath());
}

void StackReader::inputAnnotation(const StackArguments& arguments)
{
  if (StackSlice* slice = _context.getSlice())
    slice->setAnnotation(arguments.text(0));
  else
    _context.getStack()->setAnnotation(arguments.text(0));
}

void StackReader::inputImagesPath(const StackArguments& arguments)
{
  _context.setImagesPath(arguments.name(0));
  _context.getStack()->setImagesPath(_context.getImagesPath());
}

void StackReader::inputInvertZAxis(const StackArguments& arguments)
{
  _context.getStack()->setInvertZAxis(arguments.boolean(0));
}

void StackReader::inputAbsoluteImagesPathPolicy(const StackArguments& arguments)
{
  _context.getStack()->setAbsoluteImagesPathPolicy(arguments.boolean(0));
}

void StackReader::inputLastSegmentedSlice(const StackArguments& arguments)
{
  _context.getStack()->setLastSegmentedSlice(arguments.name(0));
}

void StackReader::inputLastRegisteredSlice(const StackArguments& arguments)
{
  _context.getStack()->setLastRegisteredSlice(arguments.name(0));
}

void StackReader::inputLengthUnitScale(const StackArguments& arguments)
{
  constexpr int greatestScale = 24; // of the SI prefixes, in both directions
  const int scale = arguments.integerFrom(0, -greatestScale);
  if (scale > greatestScale) throw ArgValueError();
  _context.getStack()->setLengthUnit(LengthUnit(scale));
}

void StackReader::inputPixelAspect(const StackArguments& arguments)
{
  _pixelSize.aspectRatio = storableFactor(arguments.real(0));
}

void StackReader::inputPixelHeight(const StackArguments& arguments)
{
  _pixelSize.heights.push_back(arguments.positiveReal(0));
}

void StackReader::inputPixelWidth(const StackArguments& arguments)
{
  _pixelSize.width = storableFactor(arguments.real(0));
}

PixelCalibration StackReader::StatedPixelSize::applied(PixelCalibration calibration) const
{
  calibration.clearFlags();
  if (width) calibration.setPixelWidth(*width);
  if (!heights.empty()) calibration.setPixelHeight(heights.back());
  if (aspectRatio) calibration.setAspectRatio(*aspectRatio);
  calibration.compute();
  return calibration;
}

void StackReader::closePixelSize()
{
  StatedPixelSize stated = std::exchange(_pixelSize, {});
  if (!stated.width && stated.heights.empty() && !stated.aspectRatio) return;
  StackSlice* const slice = _context.getSlice();
  Stack* const stack = _context.getStack();
  const PixelCalibration old = slice ? slice->getPixelCalibration() : stack->getDefaultPixelCalibration();
  while (!stated.heights.empty() && !isStorableCalibration(stated.applied(old)))
  {
    stated.heights.pop_back(); // width and aspect ratio were checked where they stood
    addToLog(failureLine(std::string(getString(StackKeyword::PixelHeight)), ArgValueError()));
  }
  if (slice)
    slice->setPixelCalibration(stated.applied(old));
  else
    stack->setDefaultPixelCalibration(stated.applied(old));
}

// Slices.

void StackReader::addSlice(const std::string& name, const ImageSource& source)
{
  closePixelSize();
  if (_context.findSlice(name)) logDuplicate("slice", name);
  auto slice = std::make_unique<StackSlice>();
  slice->setName(name);
  slice->setImageSource(source);
  PixelCalibration calibration = _context.getStack()->getDefaultPixelCalibration();
  calibration.clearFlags(); // what is stated from now on counts
  slice->setPixelCalibration(calibration);
  slice->setThickness(_context.getStack()->getDefaultSliceThickness());
  _context.openSlice(_context.getStack()->addSlice(std::move(slice)));
}

void StackReader::logDuplicate(const char* kind, const std::string& name)
{
  if (isLogFull()) return addToLog("");
  addToLog("There is already a " + std::string(kind) + " named \"" + name + "\": items may go to the wrong one.");
}

void StackReader::inputSlice(const StackArguments& arguments)
{
  const bool isMosaic = arguments.getNumTokens() == 3;
  if (isMosaic)
    addSlice(arguments.name(0), checkedMosaic(arguments.integerFrom(1, 1), arguments.integerFrom(2, 1)));
  else
    addSlice(arguments.name(0), ImageSourceFile(_context.resolved(arguments.name(1))));
}

void StackReader::inputStackSlice(const StackArguments& arguments)
{
  const int plane = arguments.integerFrom(2, 0);
  addSlice(arguments.name(0), *planeSource(_context.resolved(arguments.name(1)), plane));
}

void StackReader::inputImage(const StackArguments& arguments)
{
  auto& mosaic = static_cast<ImageSourceFileMosaic&>(*_context.getSlice()->getImageSource());
  const int row = arguments.integerFrom(0, 1), column = arguments.integerFrom(1, 1);
  if (row > mosaic.getRows() || column > mosaic.getCols()) throw ArgValueError();
  mosaic.setFilename(row - 1, column - 1, _context.resolved(arguments.name(2)));
}

void StackReader::inputSliceHeight(const StackArguments& arguments)
{
  ImageSource& source = *_context.getSlice()->getImageSource();
  source.setFallbackSize(arguments.integerFrom(0, 1), source.getFallbackSize2());
}

void StackReader::inputSliceWidth(const StackArguments& arguments)
{
  ImageSource& source = *_context.getSlice()->getImageSource();
  source.setFallbackSize(source.getFallbackSize1(), arguments.integerFrom(0, 1));
}

void StackReader::inputPosition(const StackArguments& arguments)
{
  _context.getSlice()->setAbsolutePosition(arguments.real(0));
}

void StackReader::inputRelPosition(const StackArguments& arguments)
{
  const float distance = arguments.real(0);
  if (StackSlice* slice = _context.getSlice()) return slice->setRelativePosition(distance);
  _context.setRelativePosition(distance);
  _context.getStack()->setDefaultRelativePosition(distance);
}

void StackReader::inputRotate(const StackArguments& arguments)
{
  Registration registration = _context.getSlice()->getRegistration();
  registration.setAngle(arguments.real(0));
  _context.getSlice()->setRegistration(registration);
}

void StackReader::inputShift(const StackArguments& arguments)
{
  Registration registration = _context.getSlice()->getRegistration();
  registration.setHorizontalShift(arguments.integer(0));
  registration.setVerticalShift(arguments.integer(1));
  _context.getSlice()->setRegistration(registration);
}

// Standard images and calibration curves.

void StackReader::inputStandardImage(const StackArguments& arguments)
{
  auto image = std::make_unique<StandardImage>();
  image->setName(arguments.name(0));
  image->setImageSource(ImageSourceFile(_context.resolved(arguments.name(1))));
  _context.openStandardImage(_context.getStack()->addStandardImage(std::move(image)));
}

void StackReader::inputSample(const StackArguments& arguments)
{
  StandardSample sample;
  sample.name = arguments.name(0);
  _context.getStandardImage()->addSample(sample);
  _context.openSample();
}

void StackReader::inputSampleCoords(const StackArguments& arguments)
{
  const int x = arguments.integer(0), y = arguments.integer(1);
  const int width = arguments.integerFrom(2, 1), height = arguments.integerFrom(3, 1);
  StandardSample& sample = _context.getSample();
  sample.x = x;
  sample.y = y;
  sample.width = width;
  sample.height = height;
}

void StackReader::inputSampleValue(const StackArguments& arguments)
{
  _context.getSample().value = arguments.longReal(0);
}

void StackReader::inputCalibrationCurve(const StackArguments& arguments)
{
  _context.getCalibrated()->setCalibrationCurve(CalibrationCurve(arguments.calibrationSamples()));
  _context.openCurve();
}

void StackReader::inputFit(const StackArguments& arguments)
{
  const CalibrationFit fit = known(CalibrationCurve::toFit(arguments.getToken(0)));
  CalibrationCurve curve = *_context.getCurveOwner()->getCalibrationCurve();
  curve.setFit(fit);
  _context.getCurveOwner()->setCalibrationCurve(std::move(curve));
}

// Models.

void StackReader::inputModel(const StackArguments& arguments)
{
  const std::string name = arguments.name(0);
  if (_context.findModel(name)) logDuplicate("model", name);
  _context.openModel(_context.getStack()->addModel(std::make_unique<Model>(name)));
}

void StackReader::inputBrilliancy(const StackArguments& arguments)
{
  modelProperties().setSurfaceShininess(arguments.real(0));
}

void StackReader::inputTransparency(const StackArguments& arguments)
{
  modelProperties().setSurfaceOpacity(arguments.real(0));
}

void StackReader::inputEcoRendering(const StackArguments& arguments)
{
  modelProperties().setEconomicRendering(arguments.boolean(0));
}

void StackReader::inputBeginCapFlag(const StackArguments& arguments)
{
  modelProperties().setBeginCapFlag(arguments.boolean(0));
}

void StackReader::inputEndCapFlag(const StackArguments& arguments)
{
  modelProperties().setEndCapFlag(arguments.boolean(0));
}

void StackReader::inputPrimitive(const StackArguments& arguments)
{
  const MPrimitive primitive = known(ModelProperties::toPrimitive(arguments.getToken(0)));
  const Model& model = *_context.getModel();
  const bool changesData = (primitive == MPrimitive::Region) != (model.getGeometry() == MPrimitive::Region);
  if (changesData && model.getNumItems() > 0) throw ContextError(); // runs are no vertices
  modelProperties().setGeometry(primitive);
}

void StackReader::inputRenderingMode(const StackArguments& arguments)
{
  modelProperties().setRenderingMode(known(ModelProperties::toRenderingMode(arguments.getToken(0))));
}

void StackReader::inputResampling(const StackArguments& arguments)
{
  const int width = arguments.integer(0), height = arguments.integer(1);
  modelProperties().setQuadMeshWidth(width);
  modelProperties().setQuadMeshHeight(height);
}

void StackReader::parseVertexSmoothing(const StackArguments& arguments)
{
  modelProperties().setVertexSmoothing(arguments.integer(0));
}

void StackReader::parseNormalSmoothing(const StackArguments& arguments)
{
  modelProperties().setNormalSmoothing(arguments.integer(0));
}

// Items, and the defaults that models have for them.

void StackReader::inputModelItem(const StackArguments& arguments)
{
  Model* const model = _context.findModel(arguments.name(0));
  StackSlice* const slice = _context.findSlice(arguments.name(1));
  if (!model || !slice) throw ArgValueError();
  _context.openItem(ModelItem::create(*model, *slice));
}

void StackReader::inputModelItemData(const StackArguments& arguments)
{
  ModelItem& item = *_context.getItem();
  if (item.isRegion())
    item.setRLEItemSet(arguments.runs());
  else
    item.setVertices(arguments.vertices());
}

void StackReader::parseTriangulationTag(const StackArguments& arguments)
{
  const std::string_view tag = arguments.getToken(0);
  if (tag != "None" && tag != "Begin" && tag != "End") throw ArgValueError();
  _context.getItem()->setTriangulationTag(tag == "Begin" ? CurveStackTriangulationContourTag::Begin
                                          : tag == "End" ? CurveStackTriangulationContourTag::End
                                                         : CurveStackTriangulationContourTag::None);
}

void StackReader::inputColor(const StackArguments& arguments)
{
  const auto lowByte = [&](int i) { return arguments.integer(i) & 0xFF; };
  itemProperties().setColor(lowByte(0), lowByte(1), lowByte(2));
}

void StackReader::inputFilledIn(const StackArguments& arguments)
{
  itemProperties().setVertexSymbolFilling(arguments.boolean(0));
}

void StackReader::inputHidden3D(const StackArguments& arguments)
{
  itemProperties().setRenderingVisibility(!arguments.boolean(0));
}

void StackReader::inputPointsize(const StackArguments& arguments)
{
  itemProperties().setPointSize(arguments.real(0));
}

void StackReader::inputThickness(const StackArguments& arguments)
{
  itemProperties().setLineWidth(arguments.real(0));
}

void StackReader::inputVertexSymbol(const StackArguments& arguments)
{
  itemProperties().setVertexSymbol(known(ModelItemProperties::toVertexSymbol(arguments.getToken(0))));
}

// Poses.

void StackReader::inputPose(const StackArguments& arguments)
{
  auto pose = std::make_unique<Pose>(_context.getStack());
  pose->setName(arguments.name(0));
  _context.getStack()->addPose(pose.get()); // attach() would look through all poses for it
  _context.openPose(*pose.release());
}

void StackReader::inputPoseRotation(const StackArguments& arguments)
{
  const float x = arguments.angle(0), y = arguments.angle(1), z = arguments.angle(2);
  _context.getPose()->setXRotation(x);
  _context.getPose()->setYRotation(y);
  _context.getPose()->setZRotation(z);
}

void StackReader::inputPoseShift(const StackArguments& arguments)
{
  const int x = arguments.integer(0), y = arguments.integer(1);
  _context.getPose()->setXTranslation(x);
  _context.getPose()->setYTranslation(y);
}

void StackReader::inputPoseZoom(const StackArguments& arguments)
{
  _context.getPose()->setZoom(arguments.integer(0));
}

void StackReader::inputAmbientLight(const StackArguments& arguments)
{
  _context.getPose()->setAmbientLight(arguments.integer(0));
}

void StackReader::inputDiffuseLight(const StackArguments& arguments)
{
  _context.getPose()->setDiffuseLight(arguments.integer(0));
}

void StackReader::inputSpecularLight(const StackArguments& arguments)
{
  _context.getPose()->setSpecularLight(arguments.integer(0));
}
