#include "batch/commands.h"
#include "batch/terminalprogress.h"
#include "batch/volumefile.h"
#include "batch/volumestep.h"
#include "image/segmentation/connectedcomponents.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <limits>

namespace
{
struct Arguments
{
  std::string in;
  std::string out;
  bool overwrite = false;
};

constexpr double bytesPerBit = 1. / 8; // of each voxel, which the components keep

template <class T> class Labelling
{
public:
  Labelling(const VoxelMatrix<T>& mask, const std::string& maskName, ProgressSubject& subject)
    : _mask(mask), _maskName(maskName), _subject(subject), _components(mask, subject, memoryForRuns())
  {
  }

  /// Labels of the fewest bits that hold their number. \throw BatchError  they take too much memory
  void write(const std::string& filename)
  {
    if (fits<unsigned char>())
      writeAs<unsigned char>(filename);
    else if (fits<unsigned short>())
      writeAs<unsigned short>(filename);
    else
      writeAs<int>(filename);
  }

  long getNumLabels() const { return _components.getNumLabels(); }

private:
  /// Of the mask and of what the components take besides the runs. \throw BatchError  more than the machine has
  double memoryInUse() const
  {
    const double numBytes = static_cast<double>(_mask.getNumVoxels() * sizeof(T)) +
                            ConnectedComponents::workingMemory(_mask.getSize1(), _mask.getSize2(), _mask.getSize3());
    requireMemory(_maskName, numBytes);
    return numBytes;
  }
  double memoryForRuns() const { return machineMemory() - memoryInUse(); }
  template <class Label> bool fits() const { return getNumLabels() <= std::numeric_limits<Label>::max(); }

  template <class Label> void writeAs(const std::string& filename)
  {
    requireMemory(_maskName, memoryInUse() + static_cast<double>(_mask.getNumVoxels() * sizeof(Label)));
    VoxelMatrix<Label> labels(_mask.getSize1(), _mask.getSize2(), _mask.getSize3());
    labels.setVoxelCalibration(_mask.getVoxelCalibration());
    _components.writeLabels(labels, _subject);
    writeVolume(std::move(labels), filename);
  }

  const VoxelMatrix<T>& _mask;
  const std::string& _maskName;
  ProgressSubject& _subject;
  ConnectedComponents _components;
};

ExitStatus label(const Arguments& arguments)
{
  requireVolumeOutput(arguments.out, arguments.overwrite);
  const AnyVolume volume = readVolume(arguments.in, 0, bytesPerBit + sizeof(unsigned char));
  TerminalProgress progress;
  ProgressSubject subject;
  subject.addObserver(progress);
  workOn(arguments.in, volume,
         [&](const auto& mask)
         {
           Labelling labelling(mask, arguments.in, subject);
           labelling.write(arguments.out);
           std::cout << labelling.getNumLabels() << "\n";
         });
  return Done;
}
} // namespace

void addLabelCommand(CLI::App& app, Run& run)
{
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = app.add_subcommand(
      "label", "Number the connected components of the voxels that are not 0; print how many there are");
  command->add_option("in", arguments->in, "image file to read: .tif, .tiff, .lsm or .vm")->required();
  command->add_option("--out", arguments->out, "labels to write: .vm or, up to 255 components, .tif or .tiff")
      ->required();
  command->add_flag("--overwrite", arguments->overwrite, "replace an existing file");
  command->callback([=, &run] { run = [=] { return label(*arguments); }; });
}
