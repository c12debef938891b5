#include "bench/timedtask.h"
#include "geometry/curvestacktriangulation2.h"
#include "geometry/polygontriangulation.h"
#include "geometry/trimesh.h"
#include "image/voxelmatrix.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <memory>

namespace
{
/// Points from a file: one per row, their coordinates in the columns.
struct Points
{
  Points(const std::string& folder, const std::string& input)
  {
    const VoxelMatrix<double> volume(folder + "/" + input + ".vm");
    const PixelMatrix<double>& rows = volume[0];
    space = rows.getSize2();
    coordinates.assign(rows.data(), rows.data() + rows.getNumElements());
  }
  std::size_t getCount() const { return coordinates.size() / static_cast<std::size_t>(space); }

  int space = 0;
  std::vector<double> coordinates;
};

std::string formatted(const char* format, double a, double b = 0)
{
  std::array<char, 80> text = {};
  std::snprintf(text.data(), text.size(), format, a, b);
  return text.data();
}

std::string triangulationResult(const Curve<double>& polygon, const TriMesh<double>& mesh)
{
  return "tris=" + std::to_string(mesh.getNumTriangles()) +
         formatted(" area_ratio=%.9f", 2 * mesh.area() / polygon.twiceArea(0, 1));
}

TimedTask polygonTask(const std::string& input)
{
  const auto prepare = [](const std::string& folder, const std::string& name)
  {
    const Points points(folder, name);
    auto polygon = std::make_shared<Curve<double>>(2, static_cast<int>(points.getCount()));
    std::copy(points.coordinates.begin(), points.coordinates.end(), polygon->data());
    auto triangulation = std::make_shared<PolygonTriangulation<double>>();
    return TimedWork{[=] { triangulation->apply(*polygon, 0, 1); }, static_cast<double>(points.getCount()) / 1e3,
                     "kvertex", [=] { return triangulationResult(*polygon, triangulation->getTriMesh()); }};
  };
  return {"triangulate_polygon", input, {1}, prepare};
}

/// Strips between closed contours, without normals, whose file holds a row per vertex and a plane per contour.
TimedTask stitchTask(const std::string& input)
{
  const auto prepare = [](const std::string& folder, const std::string& name)
  {
    const VoxelMatrix<double> contours(folder + "/" + name + ".vm");
    auto stack = std::make_shared<CurveStack<double>>();
    for (int k = 0; k < contours.getSize3(); ++k)
    {
      Curve<double> contour(3, contours.getSize1());
      std::copy_n(contours[k].data(), contours[k].getNumElements(), contour.data());
      stack->append(contour);
    }
    auto triangulation = std::make_shared<CurveStackTriangulation2<double>>();
    triangulation->setNormals(false); // as the other programs
    return TimedWork{[=] { triangulation->apply(*stack); }, stack->getNumVertices() / 1e3, "kvertex",
                     [=] { return "tris=" + std::to_string(triangulation->getTriMesh().getNumTriangles()); }};
  };
  return {"contour_stitch", input, {1}, prepare};
}
} // namespace

std::vector<TimedTask> geometryTasks()
{
  std::vector<TimedTask> tasks;
  for (const char* input : {"poly_star_500", "poly_star_5000", "poly_spiral_5000", "poly_comb_5000"})
    tasks.push_back(polygonTask(input));
  tasks.push_back(stitchTask("contours_200x1000"));
  return tasks;
}
