#include "batch/commands.h"
#include "batch/imageinfo.h"
#include "batch/stackfile.h"
#include "batch/stackjson.h"
#include "batch/volumefile.h"
#include "model/stack.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <iomanip>
#include <iostream>

namespace
{
namespace fs = std::filesystem;

struct Arguments
{
  std::string file;
  bool json = false;
};

/// "256 x 256", or why it is not known.
std::string sizeText(const StackSlice& slice)
{
  if (slice.getImageSource() == nullptr) return "no image";
  try
  {
    const ImageSource& source = *slice.getImageSource();
    return std::to_string(source.getSize2()) + " x " + std::to_string(source.getSize1());
  }
  catch (const FileError& error)
  {
    return "image unreadable: " + describe(error);
  }
}

void printSlices(const Stack& stack, const std::string& unit)
{
  const std::vector<float> positions = stack.absolutePositions();
  for (int i = 0; i < stack.getNumSlices(); ++i)
  {
    const StackSlice& slice = *stack.getSlice(i);
    const PixelCalibration& calibration = slice.getPixelCalibration();
    const Registration& registration = slice.getRegistration();
    std::cout << "  " << slice.getName() << ": " << sizeText(slice) << ", depth " << positions[std::size_t(i)] << " "
              << unit << ", pixel " << calibration.getPixelWidth() << " x " << calibration.getPixelHeight() << " "
              << unit << ", turned " << registration.getAngle() << " deg, shifted " << registration.getHorizontalShift()
              << ", " << registration.getVerticalShift() << " px, items " << slice.getNumItems() << "\n";
  }
}

void printModels(const Stack& stack)
{
  for (int i = 0; i < stack.getNumModels(); ++i)
  {
    const Model& model = *stack.getModel(i);
    long vertices = 0;
    for (const ModelItem* item : model.getItems()) vertices += item->getSize();
    std::cout << "  " << model.getName() << ": " << ModelProperties::toString(model.getGeometry()) << ", items "
              << model.getNumItems() << ", vertices " << vertices << "\n";
  }
}

void printText(const StackFile& file)
{
  const Stack& stack = *file.stack;
  const PixelCalibration& calibration = stack.getDefaultPixelCalibration();
  const std::string unit = stack.getLengthUnit().symbol();
  std::cout << "Stack: " << stack.getName() << " (format " << file.version << ")\n";
  if (!stack.getAnnotation().empty()) std::cout << "Annotation: " << stack.getAnnotation() << "\n";
  std::cout << "Length unit: " << stack.getLengthUnit().name() << "\n"
            << "Pixel: " << calibration.getPixelWidth() << " x " << calibration.getPixelHeight() << " " << unit << "\n"
            << "Distance of slices: " << stack.getDefaultRelativePosition() << " " << unit
            << (stack.getInvertZAxis() ? ", z axis inverted" : "") << "\n"
            << "Slices: " << stack.getNumSlices() << "\n";
  printSlices(stack, unit);
  std::cout << "Models: " << stack.getNumModels() << "\n";
  printModels(stack);
  std::cout << "Poses: " << stack.getNumPoses() << "\n";
  for (int i = 0; i < stack.getNumPoses(); ++i) std::cout << "  " << stack.getPose(i)->getName() << "\n";
}

ExitStatus info(const Arguments& arguments)
{
  if (volumeFormat(arguments.file) != VolumeFormat::Unknown)
  {
    std::cout << (arguments.json ? toText(imageInfo(arguments.file)) : imageText(arguments.file));
    return Done;
  }
  const StackFile file = requireStackFile(arguments.file);
  if (!arguments.json)
    printText(file);
  else
    std::cout << toText(toJson(file, fs::weakly_canonical(fs::absolute(arguments.file).parent_path())));
  return Done;
}
} // namespace

void addInfoCommand(CLI::App& app, Run& run)
{
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = app.add_subcommand(
      "info", "Print what a stack holds (slices, calibration, registration, models, items) or what an image is");
  command->add_option("file", arguments->file, "stack file, or image file (.tif, .tiff, .lsm, .vm)")->required();
  command->add_flag("--json", arguments->json, "print JSON");
  command->callback([=, &run] { run = [=] { return info(*arguments); }; });
}
