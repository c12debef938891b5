#include "batch/commands.h"
#include "batch/stackfile.h"
#include "batch/terminalprogress.h"
#include "batch/volumefile.h"
#include "geometry/outputfile.h"
#include "image/segmentation/marchingcubes.h"

#include <CLI/CLI.hpp>

#include <cmath>
#include <filesystem>
#include <map>

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

/// How a mesh is written to a file of this name. \throw BatchError  its suffix is none of a mesh file
Write writerFor(const std::string& filename)
{
  static const std::map<std::string, Write> writers = {{".stl", &TriMesh<float>::export2AsciiSTL},
                                                       {".ply", &TriMesh<float>::export2PLY},
                                                       {".obj", &TriMesh<float>::export2OBJ},
                                                       {".mesh", &TriMesh<float>::write}};
  const auto found = writers.find(std::filesystem::path(filename).extension().string());
  if (found == writers.end())
    throw BatchError(filename + ": the name of a mesh file ends with .stl, .ply, .obj or .mesh");
  return found->second;
}

/// The mesh in physical units: x along the columns, y along the rows, z along the planes. That is another hand than
/// (row, column, plane), so the triangles are turned to face outward again.
TriMesh<float> inSpace(const TriMesh<float>& mesh, const VoxelCalibration& calibration)
{
  BufferVector<float> coordinates(3 * static_cast<std::size_t>(mesh.getSize()));
  for (int i = 0; i < mesh.getSize(); ++i)
  {
    const float* const voxel = mesh.data(i);
    float* const point = coordinates.data() + 3 * static_cast<std::size_t>(i);
    point[0] = voxel[1] * calibration.getVoxelWidth();
    point[1] = voxel[0] * calibration.getVoxelHeight();
    point[2] = voxel[2] * calibration.getVoxelDepth();
  }
  BufferVector<int> indexes;
  indexes.reserve(3 * static_cast<std::size_t>(mesh.getNumTriangles()));
  for (int i = 0; i < mesh.getNumTriangleSlots(); ++i)
    if (const int* const corner = mesh.corners(i); mesh.hasTriangle(i))
      indexes.insert(indexes.end(), {corner[0], corner[2], corner[1]});
  TriMesh<float> placed(3, std::move(coordinates), std::move(indexes));
  placed.computeNormals();
  return placed;
}

template <class T>
TriMesh<float> surfaceOf(const VoxelMatrix<T>& volume, const Arguments& arguments, ProgressObserver& progress)
{
  MarchingCubes<T> step;
  step.addObserver(progress);
  return step.buildMesh(volume, static_cast<Real<T>>(arguments.level), !arguments.open);
}

ExitStatus isosurface(const Arguments& arguments)
{
  const Write write = writerFor(arguments.out);
  if (!std::isfinite(arguments.level)) throw BatchError("--level is not a finite number");
  requireWritable(arguments.out, arguments.overwrite);
  const AnyVolume volume = readVolume(arguments.in);
  TerminalProgress progress;
  const auto build = [&](const auto& matrix)
  { return inSpace(surfaceOf(matrix, arguments, progress), matrix.getVoxelCalibration()); };
  TriMesh<float> mesh = std::visit(build, volume);
  if (mesh.getNumTriangles() == 0) throw BatchError(arguments.in + ": there is no surface at this level");
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
