#include "batch/commands.h"
#include "batch/stackfile.h"
#include "batch/terminalprogress.h"
#include "batch/volumefile.h"
#include "batch/volumestep.h"
#include "geometry/outputfile.h"
#include "image/segmentation/marchingcubes.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <map>
#include <sstream>

namespace
{
struct Arguments
{
  std::string in;
  std::string out;
  double level = 0;
  bool open = false;
  bool overwrite = false;
};

using Write = void (TriMesh<float>::*)(std::ostream&) const;

/// How a mesh is written to a file of this name, by its suffix in any case. \throw BatchError  its suffix is none of a
/// mesh file
Write writerFor(const std::string& filename)
{
  static const std::map<std::string, Write> writers = {{".stl", &TriMesh<float>::export2AsciiSTL},
                                                       {".ply", &TriMesh<float>::export2PLY},
                                                       {".obj", &TriMesh<float>::export2OBJ},
                                                       {".mesh", &TriMesh<float>::write}};
  std::string suffix = std::filesystem::path(filename).extension().string();
  std::ranges::transform(suffix, suffix.begin(), [](unsigned char c) { return std::tolower(c); });
  const auto found = writers.find(suffix);
  if (found == writers.end())
    throw BatchError(filename + ": the name of a mesh file ends with .stl, .ply, .obj or .mesh");
  return found->second;
}

/// \throw ValueError  lengths cannot be told
void requireVoxelSize(const VoxelCalibration& calibration)
{
  const Vector<float>& size = calibration.getVoxelSize();
  const auto isLength = [](float length) { return length > 0 && std::isfinite(length); };
  if (std::ranges::all_of(size, isLength)) return;
  std::ostringstream text;
  text << "the voxel size " << size[0] << " x " << size[1] << " x " << size[2]
       << " (height, width, depth) is not finite and above 0";
  throw ValueError("void requireVoxelSize(const VoxelCalibration&)", text.str());
}

/// Moves a mesh into physical units: x along the columns, y along the rows, z along the planes. That is another hand
/// than (row, column, plane), so the triangles are turned to face outward again.
void placeInSpace(TriMesh<float>& mesh, const VoxelCalibration& calibration)
{
  mesh.multiply(Matrix<float>{
      {0, calibration.getVoxelWidth(), 0}, {calibration.getVoxelHeight(), 0, 0}, {0, 0, calibration.getVoxelDepth()}});
  mesh.flip();
  mesh.computeNormals();
}

template <class T>
TriMesh<float> surfaceOf(const VoxelMatrix<T>& volume, const Arguments& arguments, ProgressObserver& progress)
{
  const char* const where = "TriMesh<float> surfaceOf(const VoxelMatrix<T>&, const Arguments&, ProgressObserver&)";
  requireVoxelSize(volume.getVoxelCalibration());
  MarchingCubes<T> step;
  step.addObserver(progress);
  step.setNormalsWanted(false);
  step.setMemoryLimit(machineMemory() - static_cast<double>(volume.getNumVoxels() * sizeof(T)));
  TriMesh<float> mesh = step.buildMesh(volume, levelFor<T>(arguments.level), !arguments.open);
  if (mesh.getNumTriangles() == 0) throw ValueError(where, "there is no surface at this level");
  placeInSpace(mesh, volume.getVoxelCalibration());
  return mesh;
}

ExitStatus isosurface(const Arguments& arguments)
{
  const Write write = writerFor(arguments.out);
  requireFiniteLevel(arguments.level);
  requireWritable(arguments.out, arguments.overwrite);
  const AnyVolume volume = readVolume(arguments.in);
  TerminalProgress progress;
  TriMesh<float> mesh;
  workOn(arguments.in, volume, [&](const auto& matrix) { mesh = surfaceOf(matrix, arguments, progress); });
  mesh.setName(std::filesystem::path(arguments.in).stem().string());
  OutputFile file(arguments.out, true, "mirelo-batch");
  (mesh.*write)(file.stream());
  file.commit();
  return Done;
}
} // namespace

void addIsosurfaceCommand(CLI::App& app, Run& run)
{
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command =
      app.add_subcommand("isosurface", "Write the surface of a volume at a level, in the volume's length "
                                       "unit: x along columns, y along rows, z along planes");
  command->add_option("in", arguments->in, "image file to read: .tif, .tiff, .lsm or .vm")->required();
  command->add_option("--level", arguments->level, "voxels at this level or above are inside")->required();
  command->add_flag("--open", arguments->open, "leave the surface open at the border of the volume");
  command->add_option("--out", arguments->out, "mesh to write: .stl, .ply, .obj or .mesh (the library's text)")
      ->required();
  command->add_flag("--overwrite", arguments->overwrite, "replace an existing file");
  command->callback([=, &run] { run = [=] { return isosurface(*arguments); }; });
}
