#include "model/io/stackwriter.h"

#include "image/imagesourcefile.h"
#include "image/imagesourcefilemosaic.h"
#include "image/imagesourcelsmstackplane.h"
#include "image/imagesourcetiffstackplane.h"
#include "image/imagesourcevoxelmatrixfileplane.h"
#include "model/io/imagepath.h"
#include "model/io/stackwriterwarnings.h"
#include "model/io/statementbuffer.h"
#include "model/storabletext.h"
#include "numeric/exception.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace fs = std::filesystem;

namespace
{
constexpr const char* writeSignature = "void StackWriter::write(const Stack&, const std::string&)";

using K = StackKeyword;

struct Plane
{
  std::string fileName;
  int index;
};

Plane planeOf(const ImageSource& source)
{
  switch (source.getType())
  {
  case ImageSourceType::TiffStackPlane:
  {
    const auto& plane = static_cast<const ImageSourceTiffStackPlane&>(source);
    return {plane.getTiffStackFilename(), plane.getPlane()};
  }
  case ImageSourceType::LSMStackPlane:
  {
    const auto& plane = static_cast<const ImageSourceLSMStackPlane&>(source);
    return {plane.getLSMStackFilename(), plane.getPlane()};
  }
  case ImageSourceType::VoxelMatrixFilePlane:
  {
    const auto& plane = static_cast<const ImageSourceVoxelMatrixFilePlane&>(source);
    return {plane.getVoxelMatrixFilename(), plane.getPlane()};
  }
  default:
    throw UsageError(writeSignature, "The image of a slice lies in memory only");
  }
}

/// Truncated toward zero, and to what is an integer and a float alike.
int truncated(float value)
{
  constexpr float greatest = 2147483520;
  return std::isnan(value) ? 0 : static_cast<int>(std::clamp(value, -greatest, greatest));
}

long numObjects(const Stack& stack)
{
  long count = stack.getNumSlices();
  for (int i = 0; i < stack.getNumModels(); ++i) count += stack.getModel(i)->getNumItems();
  return count;
}
} // namespace

void StackWriter::write(const Stack& stack, const std::string& fileName)
{
  clearLog();
  _namedDirectory = plainPath(fileName).parent_path();
  _stackDirectory = stackFolder(fileName);
  _imagesPath = ".";
  _numWritten = 0;
  try
  {
    _warnings = stackWriterWarnings(stack);
    AtomicFile file(fileName);
    StatementBuffer out(file);
    _out = &out;
    const ProgressStep progressStep(*this, "Writing " + fileName, numObjects(stack));
    writeHeader(stack);
    writeStandardImages(stack);
    writeSlices(stack);
    writeModels(stack);
    writePoses(stack);
    out.flush();
    throwIfCancelled(writeSignature);
    file.commit(AtomicFile::Durability::FlushToDisk, _beforeReplace);
  }
  catch (const ValueError& error)
  {
    throw FileWriteError(writeSignature, error.getWhat(), fileName);
  }
  catch (const UsageError& error)
  {
    throw FileWriteError(writeSignature, error.getWhat(), fileName);
  }
}

void StackWriter::step()
{
  constexpr long reportInterval = 256;
  if (++_numWritten % reportInterval != 0) return;
  throwIfCancelled(writeSignature);
  progress(_numWritten);
}

void StackWriter::writeHeader(const Stack& stack)
{
  _out->begin(K::FileFormatVersion).decimal(getFileFormatVersion()).end();
  _out->begin(K::Stack).quoted(stack.getName()).end();
  _out->begin(K::LengthUnitScale).integer(stack.getLengthUnit().getScale()).end();
  _out->begin(K::PixelAspect).length(stack.getDefaultPixelCalibration().getAspectRatio()).end();
  _out->begin(K::PixelWidth).length(stack.getDefaultPixelCalibration().getPixelWidth()).end();
  _out->begin(K::RelPosition).length(stack.getDefaultRelativePosition()).end();
  _out->begin(K::LastSegmentedSlice).quoted(stack.getLastSegmentedSlice()).end();
  _out->begin(K::LastRegisteredSlice).quoted(stack.getLastRegisteredSlice()).end();
  _out->begin(K::Annotation).quoted(stack.getAnnotation()).end();
  _out->begin(K::AbsoluteImagesPathPolicy).boolean(stack.getAbsoluteImagesPathPolicy()).end();
  _out->begin(K::InvertZAxis).boolean(stack.getInvertZAxis()).end();
  writeKeptStatements(stack);
}

void StackWriter::writeKeptStatements(const KeptStatements& statements)
{
  for (const std::string& text : statements.getKeptStatements()) _out->statement(text);
}

// Standard images and calibration curves.

void StackWriter::writeStandardImages(const Stack& stack)
{
  for (int i = 0; i < stack.getNumStandardImages(); ++i) writeStandardImage(stack, *stack.getStandardImage(i));
}

void StackWriter::writeStandardImage(const Stack& stack, const StandardImage& image)
{
  const ImageSourceFile noImage;
  const ImageSource& source = image.getImageSource() ? *image.getImageSource() : noImage;
  if (source.getType() != ImageSourceType::File)
    throw UsageError(writeSignature, "The standard image \"" + image.getName() + "\" is no image file of its own");
  const std::string name = enterDirectory(stack, static_cast<const ImageSourceFile&>(source).getFilename());
  _out->begin(K::StandardImage).quoted(image.getName()).quoted(name).end();
  writeKeptStatements(image); // before samples and curve, so that what found none does not find these
  for (const StandardSample& sample : image.getSamples())
  {
    _out->begin(K::Sample).quoted(sample.name).end();
    _out->begin(K::SampleCoords).integer(sample.x).integer(sample.y).integer(sample.width).integer(sample.height).end();
    _out->begin(K::SampleValue).exact(sample.value).end();
  }
  writeCalibrationCurve(image);
}

void StackWriter::writeCalibrationCurve(const Calibrated& calibrated)
{
  const CalibrationCurve* const curve = calibrated.getCalibrationCurve();
  if (!curve) return;
  _out->begin(K::CalibrationCurve);
  for (const CalibrationCurve::Sample& sample : curve->getSamples())
    _out->word(exactText(sample.greyLevel) + "," + exactText(sample.value));
  _out->end();
  _out->begin(K::Fit).word(CalibrationCurve::toString(curve->getFit())).end();
}

// Slices.

void StackWriter::writeSlices(const Stack& stack)
{
  for (int i = 0; i < stack.getNumSlices(); ++i, step()) writeSlice(stack, *stack.getSlice(i));
}

void StackWriter::writeSlice(const Stack& stack, const StackSlice& slice)
{
  writeImage(stack, slice);
  writePosition(stack, slice);
  writeCalibration(stack, slice);
  writeRegistration(slice.getRegistration());
  writeKeptStatements(slice); // before the curve, so that what found no curve does not find this one
  writeCalibrationCurve(slice);
  if (!slice.getAnnotation().empty()) _out->begin(K::Annotation).quoted(slice.getAnnotation()).end();
}

void StackWriter::writeImage(const Stack& stack, const StackSlice& slice)
{
  const ImageSourceFile noImage;
  const ImageSource& source = slice.getImageSource() ? *slice.getImageSource() : noImage;
  if (source.getType() == ImageSourceType::FileMosaic) return writeMosaic(stack, slice);
  if (source.getType() == ImageSourceType::File)
  {
    const std::string name = enterDirectory(stack, static_cast<const ImageSourceFile&>(source).getFilename());
    _out->begin(K::Slice).quoted(slice.getName()).quoted(name).end();
    return;
  }
  const Plane plane = planeOf(source);
  const std::string name = enterDirectory(stack, plane.fileName);
  _out->begin(K::StackSlice).quoted(slice.getName()).quoted(name).integer(plane.index).end();
  writeImageSize(source);
}

void StackWriter::writeMosaic(const Stack& stack, const StackSlice& slice)
{
  const auto& mosaic = static_cast<const ImageSourceFileMosaic&>(*slice.getImageSource());
  _out->begin(K::Slice).quoted(slice.getName()).integer(mosaic.getRows()).integer(mosaic.getCols()).end();
  for (const auto& [place, fileName] : mosaic.getFilenames())
  {
    const std::string name = enterDirectory(stack, fileName);
    _out->begin(K::Image).integer(place.first + 1).integer(place.second + 1).quoted(name).end();
  }
}

void StackWriter::writeImageSize(const ImageSource& source)
{
  const auto writeSize = [this](StackKeyword keyword, const auto& getSize)
  {
    try
    {
      const int size = getSize();
      _out->begin(keyword).integer(size).end();
    }
    catch (const FileError&)
    {
      // A missing image does not prevent saving; this size was never known.
    }
  };
  writeSize(K::SliceSize1, [&] { return source.getSize1(); });
  writeSize(K::SliceSize2, [&] { return source.getSize2(); });
}

std::string StackWriter::enterDirectory(const Stack& stack, const std::string& imageFileName)
{
  if (imageFileName.empty()) return "";
  const fs::path file = plainPath(imageFileName);
  if (!file.has_filename()) return file.string(); // the root
  const fs::path parent = file.parent_path();
  const std::string directory = (stack.getAbsoluteImagesPathPolicy() ? parent : relativeDirectory(parent)).string();
  try
  {
    requireStorableName(directory, writeSignature); // what is written of the path
    requireStorableName(file.filename().string(), writeSignature);
  }
  catch (const ValueError& error)
  {
    throw ValueError(writeSignature, "Image \"" + imageFileName + "\": " + error.getWhat());
  }
  if (directory != _imagesPath) _out->begin(K::ImagesPath).quoted(directory).end();
  _imagesPath = directory;
  return file.filename().string();
}

fs::path StackWriter::relativeDirectory(const fs::path& directory) const
{
  const fs::path path = directory.lexically_relative(_stackDirectory);
  if (_namedDirectory == _stackDirectory) return path;
  const fs::path other = directory.lexically_relative(_namedDirectory);
  const bool isShorter = std::distance(other.begin(), other.end()) < std::distance(path.begin(), path.end());
  const bool isSame = isShorter && pathWithoutLinks(_stackDirectory / other) == pathWithoutLinks(directory);
  return isSame ? other : path;
}

void StackWriter::writePosition(const Stack& stack, const StackSlice& slice)
{
  if (!slice.useRelativePosition())
    _out->begin(K::Position).length(slice.getAbsolutePosition()).end();
  else if (const std::string text = lengthText(slice.getRelativePosition());
           text != lengthText(stack.getDefaultRelativePosition()))
    _out->begin(K::RelPosition).word(text).end();
}

void StackWriter::writeCalibration(const Stack& stack, const StackSlice& slice)
{
  const PixelCalibration& calibration = slice.getPixelCalibration();
  const PixelCalibration& defaults = stack.getDefaultPixelCalibration();
  const std::string aspect = lengthText(calibration.getAspectRatio()), width = lengthText(calibration.getPixelWidth());
  if (aspect != lengthText(defaults.getAspectRatio())) _out->begin(K::PixelAspect).word(aspect).end();
  if (width != lengthText(defaults.getPixelWidth())) _out->begin(K::PixelWidth).word(width).end();
}

void StackWriter::writeRegistration(const Registration& registration)
{
  const std::string angle = decimalText(registration.getAngle());
  if (angle != "0.00") _out->begin(K::Rotate).word(angle).end();
  const int horizontal = registration.getHorizontalShift(), vertical = registration.getVerticalShift();
  if (horizontal != 0 || vertical != 0) _out->begin(K::Shift).integer(horizontal).integer(vertical).end();
}

// Models.

void StackWriter::writeModels(const Stack& stack)
{
  for (int i = 0; i < stack.getNumModels(); ++i)
  {
    const Model& model = *stack.getModel(i);
    writeModel(model);
    for (const ModelItem* item : model.getItems())
      if (item->getSlice() && item->getSlice()->getStack() == &stack) writeItem(*item);
    writeKeptStatements(model);
  }
}

void StackWriter::writeModel(const Model& model)
{
  const ModelProperties& properties = model.getProperties();
  const ModelItemProperties& items = model.getItemProperties();
  const ModelItemProperties::Color color = items.getColor();
  _out->begin(K::Model).quoted(model.getName()).end();
  _out->begin(K::Brilliancy).decimal(properties.getSurfaceShininess()).end();
  _out->begin(K::Color).integer(color[0]).integer(color[1]).integer(color[2]).end();
  _out->begin(K::EcoRendering).boolean(properties.getEconomicRendering()).end();
  _out->begin(K::FilledIn).boolean(items.getVertexSymbolFilling()).end();
  _out->begin(K::Hidden3D).boolean(!items.getRenderingVisibility()).end();
  _out->begin(K::PointSize).decimal(items.getPointSize()).end();
  _out->begin(K::Primitive).word(ModelProperties::toString(properties.getGeometry())).end();
  _out->begin(K::RenderingMode).word(ModelProperties::toString(properties.getRenderingMode())).end();
  _out->begin(K::Resampling).integer(properties.getQuadMeshWidth()).integer(properties.getQuadMeshHeight()).end();
  _out->begin(K::MeshVertexSmoothing).integer(properties.getVertexSmoothing()).end();
  _out->begin(K::MeshNormalSmoothing).integer(properties.getNormalSmoothing()).end();
  _out->begin(K::Thickness).decimal(items.getLineWidth()).end();
  _out->begin(K::Transparency).decimal(properties.getSurfaceOpacity()).end();
  _out->begin(K::VertexSymbol).word(ModelItemProperties::toString(items.getVertexSymbol())).end();
  if (properties.hasBeginCapFlag()) _out->begin(K::BeginCap).boolean(properties.getBeginCapFlag()).end();
  if (properties.hasEndCapFlag()) _out->begin(K::EndCap).boolean(properties.getEndCapFlag()).end();
}

void StackWriter::writeItem(const ModelItem& item)
{
  _out->begin(K::ModelItem).quoted(item.getModel()->getName()).quoted(item.getSlice()->getName()).end();
  writeItemProperties(item.getProperties());
  if (item.getTriangulationTag() == CurveStackTriangulationContourTag::Begin)
    _out->begin(K::TriangulationTag).word("Begin").end();
  if (item.getTriangulationTag() == CurveStackTriangulationContourTag::End)
    _out->begin(K::TriangulationTag).word("End").end();
  writeItemData(item);
  step();
}

void StackWriter::writeItemProperties(const ModelItemProperties& properties)
{
  const ModelItemProperties::Color color = properties.getColor();
  if (properties.definesColor()) _out->begin(K::Color).integer(color[0]).integer(color[1]).integer(color[2]).end();
  if (properties.definesVertexSymbolFilling())
    _out->begin(K::FilledIn).boolean(properties.getVertexSymbolFilling()).end();
  if (properties.definesRenderingVisibility())
    _out->begin(K::Hidden3D).boolean(!properties.getRenderingVisibility()).end();
  if (properties.definesPointSize()) _out->begin(K::PointSize).decimal(properties.getPointSize()).end();
  if (properties.definesLineWidth()) _out->begin(K::Thickness).decimal(properties.getLineWidth()).end();
  if (properties.definesVertexSymbol())
    _out->begin(K::VertexSymbol).word(ModelItemProperties::toString(properties.getVertexSymbol())).end();
}

void StackWriter::writeItemData(const ModelItem& item)
{
  _out->begin(K::ModelItemData);
  if (item.isRegion())
    writeRuns(item.getRLEItemSet());
  else
    writeVertices(item.getVertices());
  _out->end();
}

void StackWriter::writeRuns(const RLEItemSet& set)
{
  for (const RLEItem& run : set.getItems())
  {
    const int values[] = {run.getOriginX(), run.begin(), run.getLength()};
    _out->tuple(values, 3);
  }
}

void StackWriter::writeVertices(const Vertices<int>& vertices)
{
  for (int i = 0; i < vertices.getSize(); ++i) _out->tuple(vertices.data(i), 2);
}

// Poses.

void StackWriter::writePoses(const Stack& stack)
{
  for (int i = 0; i < stack.getNumPoses(); ++i)
  {
    const Pose& pose = *stack.getPose(i);
    const int angles[] = {truncated(pose.getXRotation()), truncated(pose.getYRotation()),
                          truncated(pose.getZRotation())};
    _out->begin(K::Pose).quoted(pose.getName()).end();
    _out->begin(K::PoseRotation).integer(angles[0]).integer(angles[1]).integer(angles[2]).end();
    _out->begin(K::PoseShift).integer(pose.getXTranslation()).integer(pose.getYTranslation()).end();
    _out->begin(K::PoseZoom).integer(pose.getZoom()).end();
    _out->begin(K::AmbientLight).integer(pose.getAmbientLight()).end();
    _out->begin(K::DiffuseLight).integer(pose.getDiffuseLight()).end();
    _out->begin(K::SpecularLight).integer(pose.getSpecularLight()).end();
    writeKeptStatements(pose);
  }
}
