#include "batch/stackjson.h"

#include "batch/stackfile.h"
#include "image/imagesourcefile.h"
#include "image/imagesourcefilemosaic.h"
#include "image/imagesourcelsmstackplane.h"
#include "image/imagesourcetiffstackplane.h"
#include "image/imagesourcevoxelmatrixfileplane.h"
#include "model/stack.h"
#include "numeric/exception.h"

#include <functional>

namespace
{
namespace fs = std::filesystem;

/// The name relative to the folder when it lies below it, links resolved on both sides.
std::string relativeName(const std::string& filename, const fs::path& folder)
{
  const fs::path file(filename);
  const fs::path relative =
      (fs::weakly_canonical(fs::absolute(file).parent_path()) / file.filename()).lexically_relative(folder);
  const bool isBelow = !relative.empty() && *relative.begin() != "..";
  return isBelow ? relative.string() : filename;
}

Json planeJson(const char* kind, const std::string& file, int plane)
{
  return {{"kind", kind}, {"file", file}, {"plane", plane}};
}

Json mosaicJson(const ImageSourceFileMosaic& source, const fs::path& folder)
{
  Json tiles = Json::array();
  for (int row = 0; row < source.getRows(); ++row)
  {
    Json line = Json::array();
    for (int col = 0; col < source.getCols(); ++col)
    {
      const std::string& file = source.getFilename(row, col);
      line.push_back(file.empty() ? Json(nullptr) : Json(relativeName(file, folder)));
    }
    tiles.push_back(line);
  }
  return {{"kind", "mosaic"}, {"rows", source.getRows()}, {"cols", source.getCols()}, {"tiles", tiles}};
}

Json sourceJson(const ImageSource* source, const fs::path& folder)
{
  const auto name = [&](const std::string& filename) { return relativeName(filename, folder); };
  if (const auto* file = dynamic_cast<const ImageSourceFile*>(source))
    return {{"kind", "file"}, {"file", name(file->getFilename())}};
  if (const auto* mosaic = dynamic_cast<const ImageSourceFileMosaic*>(source)) return mosaicJson(*mosaic, folder);
  if (const auto* tiff = dynamic_cast<const ImageSourceTiffStackPlane*>(source))
    return planeJson("tiff-plane", name(tiff->getTiffStackFilename()), tiff->getPlane());
  if (const auto* lsm = dynamic_cast<const ImageSourceLSMStackPlane*>(source))
    return planeJson("lsm-plane", name(lsm->getLSMStackFilename()), lsm->getPlane());
  if (const auto* matrix = dynamic_cast<const ImageSourceVoxelMatrixFilePlane*>(source))
    return planeJson("vm-plane", name(matrix->getVoxelMatrixFilename()), matrix->getPlane());
  return nullptr;
}

/// [width, height], or null when the image cannot be read.
Json sizeJson(const std::function<int()>& width, const std::function<int()>& height)
{
  try
  {
    return {width(), height()};
  }
  catch (const FileError&)
  {
    return nullptr;
  }
}

Json sliceJson(const StackSlice& slice, float absolutePosition, const fs::path& folder)
{
  const PixelCalibration& calibration = slice.getPixelCalibration();
  const Registration& registration = slice.getRegistration();
  const ImageSource* source = slice.getImageSource();
  return {
      {"name", slice.getName()},
      {"source", sourceJson(source, folder)},
      {"relative", slice.useRelativePosition()},
      {"usesDefault", slice.useDefaultRelativePosition()},
      {"relativePosition", toJson(slice.getRelativePosition())},
      {"absolutePosition", toJson(absolutePosition)},
      {"rotation", toJson(registration.getAngle())},
      {"shift", {registration.getHorizontalShift(), registration.getVerticalShift()}},
      {"pixelAspect", toJson(calibration.getAspectRatio())},
      {"pixelWidth", toJson(calibration.getPixelWidth())},
      {"pixelHeight", toJson(calibration.getPixelHeight())},
      {"annotation", slice.getAnnotation()},
      {"items", slice.getNumItems()},
      {"imageSize", source == nullptr
                        ? Json(nullptr)
                        : sizeJson([&] { return source->getSize2(); }, [&] { return source->getSize1(); })},
      {"correctedSize",
       source == nullptr ? Json(nullptr) : sizeJson([&] { return slice.width(); }, [&] { return slice.height(); })},
  };
}

Json propertiesJson(const ModelItemProperties& properties)
{
  Json json = Json::object();
  if (properties.definesColor()) json["color"] = properties.getColor();
  if (properties.definesVertexSymbolFilling()) json["filled"] = properties.getVertexSymbolFilling();
  if (properties.definesRenderingVisibility()) json["hidden3D"] = !properties.getRenderingVisibility();
  if (properties.definesPointSize()) json["pointSize"] = toJson(properties.getPointSize());
  if (properties.definesLineWidth()) json["lineWidth"] = toJson(properties.getLineWidth());
  if (properties.definesVertexSymbol())
    json["vertexSymbol"] = ModelItemProperties::toString(properties.getVertexSymbol());
  return json;
}

/// Vertices as [x, y], runs of a region as [x, y, length].
Json dataJson(const ModelItem& item)
{
  Json data = Json::array();
  if (item.isRegion())
  {
    for (const RLEItem& run : item.getRLEItemSet().getItems())
      data.push_back(Json::array({run.getOriginX(), run.begin(), run.getLength()}));
    return data;
  }
  const Vertices<int>& vertices = item.getVertices();
  for (int i = 0; i < vertices.getNumVertices(); ++i) data.push_back(Json::array({vertices[i][0], vertices[i][1]}));
  return data;
}

const char* tagName(CurveStackTriangulationContourTag tag)
{
  switch (tag)
  {
  case CurveStackTriangulationContourTag::Begin:
    return "Begin";
  case CurveStackTriangulationContourTag::End:
    return "End";
  default:
    return "None";
  }
}

Json modelJson(const Model& model)
{
  const ModelProperties& properties = model.getProperties();
  Json items = Json::array();
  for (const ModelItem* item : model.getItems())
  {
    items.push_back({{"slice", item->getSlice() == nullptr ? Json(nullptr) : Json(item->getSlice()->getName())},
                     {"tag", tagName(item->getTriangulationTag())},
                     {"data", dataJson(*item)},
                     {"properties", propertiesJson(item->getProperties())}});
  }
  return {
      {"name", model.getName()},
      {"primitive", ModelProperties::toString(properties.getGeometry())},
      {"renderingMode", ModelProperties::toString(properties.getRenderingMode())},
      {"opacity", toJson(properties.getSurfaceOpacity())},
      {"shininess", toJson(properties.getSurfaceShininess())},
      {"quadWidth", properties.getQuadMeshWidth()},
      {"quadHeight", properties.getQuadMeshHeight()},
      {"vertexSmoothing", properties.getVertexSmoothing()},
      {"normalSmoothing", properties.getNormalSmoothing()},
      {"economic", properties.getEconomicRendering()},
      {"beginCap", properties.hasBeginCapFlag() ? Json(properties.getBeginCapFlag()) : Json(nullptr)},
      {"endCap", properties.hasEndCapFlag() ? Json(properties.getEndCapFlag()) : Json(nullptr)},
      {"itemDefaults", propertiesJson(model.getItemProperties())},
      {"items", items},
  };
}

Json poseJson(const Pose& pose)
{
  return {
      {"name", pose.getName()},
      {"rotation", {toJson(pose.getXRotation()), toJson(pose.getYRotation()), toJson(pose.getZRotation())}},
      {"shift", {pose.getXTranslation(), pose.getYTranslation()}},
      {"zoom", pose.getZoom()},
      {"ambient", pose.getAmbientLight()},
      {"diffuse", pose.getDiffuseLight()},
      {"specular", pose.getSpecularLight()},
  };
}
} // namespace

Json toJson(const StackFile& file, const fs::path& stackFolder)
{
  const Stack& stack = *file.stack;
  const PixelCalibration& calibration = stack.getDefaultPixelCalibration();
  const std::vector<float> positions = stack.absolutePositions();
  Json slices = Json::array(), models = Json::array(), poses = Json::array();
  for (int i = 0; i < stack.getNumSlices(); ++i)
    slices.push_back(sliceJson(*stack.getSlice(i), positions[static_cast<std::size_t>(i)], stackFolder));
  for (int i = 0; i < stack.getNumModels(); ++i) models.push_back(modelJson(*stack.getModel(i)));
  for (int i = 0; i < stack.getNumPoses(); ++i) poses.push_back(poseJson(*stack.getPose(i)));
  return {
      {"version", toJson(file.version)},
      {"name", stack.getName()},
      {"annotation", stack.getAnnotation()},
      {"lengthUnitScale", stack.getLengthUnit().getScale()},
      {"pixelAspect", toJson(calibration.getAspectRatio())},
      {"pixelWidth", toJson(calibration.getPixelWidth())},
      {"pixelHeight", toJson(calibration.getPixelHeight())},
      {"defaultRelativePosition", toJson(stack.getDefaultRelativePosition())},
      {"lastSegmentedSlice", stack.getLastSegmentedSlice()},
      {"lastRegisteredSlice", stack.getLastRegisteredSlice()},
      {"absoluteImagesPathPolicy", stack.getAbsoluteImagesPathPolicy()},
      {"invertZAxis", stack.getInvertZAxis()},
      {"slices", slices},
      {"models", models},
      {"poses", poses},
      {"log", file.log},
      {"fatal", file.isFatal},
  };
}
