#include "bench/timedtask.h"
#include "geometry/curvestacktriangulation2.h"
#include "geometry/kdtree.h"
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

double meanDistance(const std::vector<Neighbour<double>>& neighbours)
{
  double sum = 0;
  for (const Neighbour<double>& neighbour : neighbours) sum += std::sqrt(neighbour.squaredDistance);
  return sum / static_cast<double>(neighbours.size());
}

TimedTask nearestOthersTask(const std::string& input)
{
  const auto prepare = [](const std::string& folder, const std::string& name)
  {
    auto points = std::make_shared<Points>(folder, name);
    auto mean = std::make_shared<double>();
    return TimedWork{[=] { *mean = meanDistance(KdTree<double>(points->space, points->coordinates).nearestOthers()); },
                     static_cast<double>(points->getCount()) / 1e6, "Mpoint",
                     [=] { return formatted("mean=%.6g", *mean); }};
  };
  return {"nn_G", input, {1, 2}, prepare};
}

TimedTask nearestPointsTask(const std::string& input, const std::string& queries)
{
  const auto prepare = [queries](const std::string& folder, const std::string& name)
  {
    auto points = std::make_shared<Points>(folder, name), from = std::make_shared<Points>(folder, queries);
    auto mean = std::make_shared<double>();
    return TimedWork{
        [=] { *mean = meanDistance(KdTree<double>(points->space, points->coordinates).nearest(from->coordinates)); },
        static_cast<double>(from->getCount()) / 1e6, "Mquery", [=] { return formatted("mean=%.6g", *mean); }};
  };
  return {"nn_F", input, {1, 2}, prepare};
}
/// The distances of points from the surface of a mesh.
TimedTask surfaceDistancesTask(const std::string& pointsInput, const std::string& meshInput)
{
  const auto prepare = [=](const std::string& folder, const std::string&)
  {
    auto points = std::make_shared<Points>(folder, pointsInput);
    const Points vertices(folder, meshInput + "_verts");
    const VoxelMatrix<int> corners(folder + "/" + meshInput + "_tris.vm");
    auto mesh = std::make_shared<TriMesh<double>>(3, static_cast<int>(vertices.getCount()), 0);
    std::copy(vertices.coordinates.begin(), vertices.coordinates.end(), mesh->data());
    for (int i = 0; i < corners[0].getSize1(); ++i)
      mesh->addTriangle(corners[0](i, 0), corners[0](i, 1), corners[0](i, 2));
    auto mean = std::make_shared<double>();
    const auto run = [=]
    {
      mesh->data(); // as if it had changed: the search structure is built anew
      Vector<double> point(3), closest;
      double sum = 0;
      for (std::size_t i = 0; i < points->getCount(); ++i)
      {
        std::copy_n(points->coordinates.data() + 3 * i, 3, point.data());
        sum += mesh->closestPoint(point, closest);
      }
      *mean = sum / static_cast<double>(points->getCount());
    };
    return TimedWork{run, static_cast<double>(points->getCount()) / 1e6, "Mpoint",
                     [=] { return formatted("mean=%.6g", *mean); }};
  };
  return {"border_B3", pointsInput + " x " + meshInput, {1}, prepare};
}
} // namespace

std::vector<TimedTask> geometryTasks()
{
  std::vector<TimedTask> tasks;
  for (const char* input : {"poly_star_500", "poly_star_5000", "poly_spiral_5000", "poly_comb_5000"})
    tasks.push_back(polygonTask(input));
  tasks.push_back(stitchTask("contours_200x1000"));
  for (const char* input : {"points2d_10000", "points3d_10000"}) tasks.push_back(nearestOthersTask(input));
  tasks.push_back(nearestPointsTask("points2d_10000", "eval2d_100000"));
  tasks.push_back(nearestPointsTask("points3d_10000", "eval3d_100000"));
  tasks.push_back(surfaceDistancesTask("points3d_10000", "mesh3d"));
  return tasks;
}
