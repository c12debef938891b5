#include "batch/commands.h"
#include "batch/stackfile.h"
#include "batch/terminalprogress.h"
#include "model/model.h"
#include "model/pose.h"
#include "model/stack.h"
#include "viewer/painters/framebuffergl.h"
#include "viewer/scene/offscreencontext.h"
#include "viewer/scene/pngfile.h"
#include "viewer/scene/scenegl.h"
#include "viewer/scene/shownstack.h"
#include "viewer/scene/stackpainters.h"

#include <CLI/CLI.hpp>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>

namespace
{
constexpr int numSamples = 4; // as in the window

struct Arguments
{
  std::string stack;
  std::string output;
  std::string size = "800x600";
  std::string pose;
  std::vector<std::string> models;
  bool overwrite = false;
};

struct PictureSize
{
  int width = 0;
  int height = 0;
};

/// The numbers between the separators; none when there is anything else.
template <class T> std::vector<T> numbersIn(const std::string& text, char separator)
{
  std::vector<T> numbers;
  const char* p = text.data();
  const char* const end = p + text.size();
  for (;; ++p)
  {
    T number{};
    const auto [next, error] = std::from_chars(p, end, number);
    if (error != std::errc()) return {};
    numbers.push_back(number);
    p = next;
    if (p == end) return numbers;
    if (*p != separator) return {};
  }
}

PictureSize pictureSize(const std::string& text)
{
  const std::vector<int> sizes = numbersIn<int>(text, 'x');
  if (sizes.size() != 2 || sizes[0] < 1 || sizes[1] < 1)
    throw BatchError("--size " + text + ": not a width and a height in pixels such as 800x600");
  return {sizes[0], sizes[1]};
}

std::optional<Pose> poseOfAngles(const std::string& text)
{
  const std::vector<float> angles = numbersIn<float>(text, ',');
  if (angles.size() != 3 || !std::isfinite(angles[0] + angles[1] + angles[2])) return std::nullopt;
  Pose pose;
  pose.setXRotation(angles[0]);
  pose.setYRotation(angles[1]);
  pose.setZRotation(angles[2]);
  return pose;
}

/// A pose that is saved in the stack, one of the six standard ones by its key in the window, or three angles.
Pose chosenPose(const StackFile& file, const std::string& text)
{
  if (text.empty()) return Pose();
  for (int i = 0; i < file.stack->getNumPoses(); ++i)
    if (file.stack->getPose(i)->getName() == text) return *file.stack->getPose(i);
  const std::array standard = {Pose::canonicalPose1(),        Pose::canonicalPose2(),
                               Pose::canonicalPose3(),        Pose::reverseCanonicalPose1(),
                               Pose::reverseCanonicalPose2(), Pose::reverseCanonicalPose3()};
  if (text.size() == 1 && text[0] >= '1' && text[0] <= '6') return standard[static_cast<std::size_t>(text[0] - '1')];
  if (const std::optional<Pose> pose = poseOfAngles(text)) return *pose;
  throw BatchError(file.filename + ": the stack has no pose " + text +
                   ", which is neither a standard one (1 to 6) nor three angles such as 30,-45,0");
}

std::vector<PaintedModel> paintModelsOf(const StackFile& file, const std::vector<std::string>& names)
{
  const ShownStack shown = copyShown(*file.stack, selectModels(file, names));
  TerminalProgress progress;
  ProgressSubject subject;
  subject.addObserver(progress);
  std::vector<PaintedModel> painted = paintModels(shown, subject);
  for (std::size_t i = 0; i < painted.size(); ++i)
    if (!painted[i].problem.empty())
      warn(file.filename + ": model \"" + shown.models[i]->getName() + "\": " + painted[i].problem);
  return painted;
}

ExitStatus render(const Arguments& arguments)
{
  const PictureSize size = pictureSize(arguments.size);
  requireWritable(arguments.output, arguments.overwrite);
  const StackFile file = requireStackFile(arguments.stack);
  const OffscreenContext context; // outlives what the painters keep in it
  const std::vector<PaintedModel> painted = paintModelsOf(file, arguments.models);
  SceneGL scene;
  for (const PaintedModel& model : painted)
    if (model.painter) scene.addPainter(*model.painter);
  scene.updateBoundingBox();
  scene.setUnit(file.stack->getLengthUnit().symbol());
  scene.camera().setPose(chosenPose(file, arguments.pose));
  const FramebufferGL picture(size.width, size.height, numSamples);
  scene.paint(size.width, size.height, 1);
  writePng(arguments.output, picture.pixels(false), size.width, size.height, arguments.overwrite);
  return Done;
}
} // namespace

void addRenderCommand(CLI::App& app, Run& run)
{
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = app.add_subcommand("render", "Draw a stack's models in 3D, without a display");
  command->add_option("stack", arguments->stack, "stack file")->required();
  command->add_option("--out", arguments->output, "PNG picture to write")->required();
  command->add_option("--size", arguments->size, "width and height of the picture in pixels")->capture_default_str();
  command->add_option(
      "--pose", arguments->pose,
      "a pose saved in the stack, a standard one by its key in the window (1 to 6), or the angles about "
      "X, Y and Z in degrees, as in 30,-45,0; by default the reset pose");
  command->add_option("--model", arguments->models, "a model to draw, repeatable; by default all")
      ->allow_extra_args(false);
  command->add_flag("--overwrite", arguments->overwrite, "replace an existing picture");
  command->callback([=, &run] { run = [=] { return render(*arguments); }; });
}
