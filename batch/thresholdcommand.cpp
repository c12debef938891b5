#include "batch/commands.h"
#include "batch/terminalprogress.h"
#include "batch/volumefile.h"
#include "batch/volumestep.h"
#include "image/segmentation/isodatathresholding.h"
#include "image/segmentation/otsuthresholding.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cmath>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>

namespace
{
struct Arguments
{
  std::string in;
  std::string out;
  std::string method;
  std::optional<double> level;
  bool overwrite = false;
};

template <class T> Vector<T> rangeOf(const VoxelMatrix<T>& volume, ProgressSubject& subject)
{
  const ProgressStep step(subject, "Reading the range", volume.getSize3());
  Vector<T> lows(volume.getSize3()), highs(volume.getSize3());
  for (int k = 0; k < volume.getSize3(); ++k)
  {
    const Vector<T> range = volume[k].range();
    lows[k] = range[0];
    highs[k] = range[1];
    subject.progress(k + 1);
  }
  return {lows.min(), highs.max()};
}

/// \throw ValueError  there are no bins from the lowest to the highest voxel
template <class R> void requireBinnable(R low, R high)
{
  const char* const where = "void requireBinnable(R, R)";
  if (std::isnan(low) || std::isnan(high)) throw ValueError(where, "no voxel is a number");
  if (std::isinf(low) || std::isinf(high)) throw ValueError(where, "a voxel is infinite");
  if (std::isinf(high - low)) throw ValueError(where, "the voxels range too far for a histogram");
}

/// One bin per grey level where the range of the voxels has few enough of them, otherwise bins of equal width over it.
template <class T> void setBins(HistogramThresholding<T>& step, const Vector<T>& range)
{
  constexpr int maxNumLevels = 65536, numBins = 256;
  const auto low = static_cast<Real<T>>(range[0]), high = static_cast<Real<T>>(range[1]);
  requireBinnable(low, high);
  if (std::is_integral_v<T> && high - low < maxNumLevels)
    step.setBins(low - Real<T>(0.5), 1, static_cast<int>(high - low) + 1);
  else if (high > low)
    step.setBins(low, (high - low) / numBins, numBins);
  else
    step.setBins(low, 1, 1);
}

/// Chooses in two units of the subject's step: the range of the voxels and their histogram.
template <class T>
Real<T> chooseThreshold(const VoxelMatrix<T>& volume, const std::string& method, ProgressSubject& subject)
{
  std::unique_ptr<HistogramThresholding<T>> step;
  if (method == "otsu")
    step = std::make_unique<OtsuThresholding<T>>();
  else
    step = std::make_unique<IsodataThresholding<T>>();
  if constexpr (!std::is_same_v<T, unsigned char>) setBins(*step, rangeOf(volume, subject));
  subject.progress(1);
  step->setOuter(&subject);
  return step->computeThreshold(volume);
}

/// 255 where voxels are not below the threshold, 0 elsewhere.
template <class T>
VoxelMatrix<unsigned char> maskAbove(const VoxelMatrix<T>& volume, Real<T> threshold, ProgressSubject& subject)
{
  if constexpr (std::is_integral_v<T>)
  {
    constexpr Real<T> lowest = std::numeric_limits<T>::lowest(), highest = std::numeric_limits<T>::max();
    const Real<T> level = std::max(std::ceil(threshold), lowest);
    if (level <= highest) return Thresholding<T>::levelSetMask(volume, static_cast<T>(level), subject);
    VoxelMatrix<unsigned char> mask(volume.getSize1(), volume.getSize2(), volume.getSize3());
    mask.setZeros();
    mask.setVoxelCalibration(volume.getVoxelCalibration());
    return mask;
  }
  else
    return Thresholding<T>::levelSetMask(volume, threshold, subject);
}

template <class T> struct Segmentation
{
  Real<T> threshold;
  VoxelMatrix<unsigned char> mask;
};

template <class T>
Segmentation<T> segment(const VoxelMatrix<T>& volume, const Arguments& arguments, ProgressSubject& subject)
{
  const ProgressStep step(subject, "Thresholding", 3); // the range, the histogram, the mask
  const Real<T> threshold =
      arguments.level ? levelFor<T>(*arguments.level) : chooseThreshold(volume, arguments.method, subject);
  subject.progress(2);
  return {threshold, maskAbove(volume, threshold, subject)};
}

/// The shortest decimals that give the number back.
template <class R> std::string shortest(R number)
{
  char text[64];
  return std::string(text, std::to_chars(text, text + sizeof text, number).ptr);
}

ExitStatus threshold(const Arguments& arguments)
{
  if ((arguments.method == "fixed") != arguments.level.has_value())
    throw BatchError("--level belongs to --method fixed, which needs it");
  if (arguments.level) requireFiniteLevel(*arguments.level);
  requireVolumeOutput(arguments.out, arguments.overwrite);
  const AnyVolume volume = readVolume(arguments.in, 0, sizeof(unsigned char));
  TerminalProgress progress;
  ProgressSubject subject;
  subject.addObserver(progress);
  workOn(arguments.in, volume,
         [&]<class T>(const VoxelMatrix<T>& matrix)
         {
           Segmentation<T> segmentation = segment(matrix, arguments, subject);
           writeVolume(std::move(segmentation.mask), arguments.out);
           std::cout << shortest(segmentation.threshold) << "\n";
         });
  return Done;
}
} // namespace

void addThresholdCommand(CLI::App& app, Run& run)
{
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = app.add_subcommand(
      "threshold", "Make a mask: 255 where voxels are not below a threshold, 0 elsewhere; print the threshold");
  command->add_option("in", arguments->in, "image file to read: .tif, .tiff, .lsm or .vm")->required();
  command->add_option("--method", arguments->method, "how the threshold is chosen")
      ->required()
      ->check(CLI::IsMember({"otsu", "isodata", "fixed"}));
  command->add_option("--level", arguments->level, "the threshold of the method fixed");
  command->add_option("--out", arguments->out, "mask to write: .tif, .tiff or .vm")->required();
  command->add_flag("--overwrite", arguments->overwrite, "replace an existing file");
  command->callback([=, &run] { run = [=] { return threshold(*arguments); }; });
}
