// How well surfaces through the outlines of labelled sections keep topology and volume: a table, one line per label.

#include "geometry/curvestacktriangulation2.h"
#include "geometry/overlaparea.h"
#include "geometry/reconstruction/regionboundaries.h"
#include "image/voxelmatrix.h"
#include "model/rleitemset.h"
#include "tests/support/manifold.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <numeric>

namespace
{
using Tag = CurveStackTriangulationContourTag;
using Levels = std::vector<std::vector<Curve<double>>>;

/// The outlines of a label in each plane, clockwise, in units of length.
Levels outlinesOf(const VoxelMatrix<unsigned short>& volume, unsigned short label, double pixel, double distance)
{
  Levels levels;
  for (int k = 0; k < volume.getSize3(); ++k)
  {
    RLEItemSet region;
    region.fromMask(volume[k], label);
    levels.emplace_back();
    for (const Curve<double>& boundary : outerBoundaries(region))
    {
      Curve<double> outline(3, boundary.getSize());
      for (int i = 0; i < boundary.getSize(); ++i)
      {
        outline.data(i)[0] = pixel * boundary.data(i)[0];
        outline.data(i)[1] = pixel * boundary.data(i)[1];
        outline.data(i)[2] = distance * k;
      }
      outline.setClockwise(true, 0, 1);
      levels.back().push_back(outline);
    }
  }
  return levels;
}

bool overlapsAny(const Curve<double>& outline, const std::vector<Curve<double>>& others)
{
  return std::any_of(others.begin(), others.end(),
                     [&outline](const Curve<double>& other) { return overlapArea(outline, other) > 0; });
}

/// Drops outlines that nothing overlaps, neither in the next plane nor in the one before: they enclose no volume.
Levels withoutFlatParts(const Levels& levels)
{
  Levels kept(levels.size());
  for (std::size_t k = 0; k < levels.size(); ++k)
    for (const Curve<double>& outline : levels[k])
      if ((k > 0 && overlapsAny(outline, levels[k - 1])) ||
          (k + 1 < levels.size() && overlapsAny(outline, levels[k + 1])))
        kept[k].push_back(outline);
  return kept;
}

/// Tags outlines that nothing of the next plane, or of the one before, overlaps.
std::vector<Tag> tagsOf(const Levels& levels)
{
  const std::vector<Curve<double>> none;
  std::vector<Tag> tags;
  for (std::size_t k = 0; k < levels.size(); ++k)
    for (const Curve<double>& outline : levels[k])
    {
      const bool begins = !overlapsAny(outline, k > 0 ? levels[k - 1] : none);
      const bool ends = !overlapsAny(outline, k + 1 < levels.size() ? levels[k + 1] : none);
      tags.push_back(begins ? Tag::Begin : ends ? Tag::End : Tag::None);
    }
  return tags;
}

TriMesh<double> surfaceOf(const Levels& levels, unsigned int criterion)
{
  CurveStack<double> stack;
  for (const auto& level : levels)
    for (const Curve<double>& outline : level) stack.append(outline);
  const std::vector<Tag> tags = tagsOf(levels);
  Vector<Tag> contourTags(static_cast<int>(tags.size()));
  std::copy(tags.begin(), tags.end(), contourTags.begin());
  CurveStackTriangulation2<double> triangulation;
  triangulation.setCostCriterion(criterion);
  triangulation.setContourTags(contourTags);
  triangulation.setTriangulateCaps(true);
  triangulation.setTriangulateFirstCaps(true);
  triangulation.setTriangulateLastCaps(true);
  triangulation.apply(stack);
  return triangulation.getTriMesh();
}

int numComponents(const TriMesh<double>& mesh)
{
  std::vector<int> parents(static_cast<std::size_t>(mesh.getSize()));
  std::iota(parents.begin(), parents.end(), 0);
  const auto root = [&parents](int i)
  {
    while (parents[i] != i) i = parents[i] = parents[parents[i]];
    return i;
  };
  std::vector<char> isUsed(parents.size());
  for (int i = 0; i < mesh.getNumTriangleSlots(); ++i)
    for (int k = 0; k < 3; ++k)
    {
      parents[root(mesh.corners(i)[k])] = root(mesh.corners(i)[0]);
      isUsed[mesh.corners(i)[k]] = 1;
    }
  int count = 0;
  for (int i = 0; i < mesh.getSize(); ++i) count += isUsed[i] && root(i) == i;
  return count;
}

/// The volume between the planes: mean areas times the distance.
double volumeBetween(const Levels& levels, double distance)
{
  std::vector<double> areas;
  for (const auto& level : levels)
    areas.push_back(std::transform_reduce(level.begin(), level.end(), 0.0, std::plus<>(),
                                          [](const Curve<double>& outline)
                                          { return std::abs(outline.twiceArea(0, 1)) / 2; }));
  double volume = 0;
  for (std::size_t k = 0; k + 1 < areas.size(); ++k)
    if (areas[k] > 0 && areas[k + 1] > 0) volume += (areas[k] + areas[k + 1]) / 2 * distance;
  return volume;
}

std::vector<unsigned short> largestLabels(const VoxelMatrix<unsigned short>& volume, std::size_t count)
{
  std::map<unsigned short, int> sizes;
  for (int k = 0; k < volume.getSize3(); ++k)
    for (std::size_t i = 0; i < volume[k].getNumElements(); ++i) ++sizes[volume[k].data()[i]];
  sizes.erase(0);
  std::vector<unsigned short> labels;
  for (const auto& [label, size] : sizes) labels.push_back(label);
  std::sort(labels.begin(), labels.end(), [&sizes](auto a, auto b) { return sizes[a] > sizes[b]; });
  if (labels.size() > count) labels.resize(count);
  return labels;
}
} // namespace

int main(int argc, char** argv)
{
  if (argc < 4)
  {
    std::puts("usage: labelled_surfaces LABELS.tif PIXEL_SIZE DISTANCE_OF_PLANES [NUMBER_OF_LABELS [CRITERION]]");
    return 2;
  }
  VoxelMatrix<unsigned short> volume;
  volume.loadTiffStackFile(argv[1]);
  const double pixel = std::atof(argv[2]), distance = std::atof(argv[3]);
  const auto criterion = static_cast<unsigned int>(argc > 5 ? std::atoi(argv[5]) : 6);
  std::puts("label  outlines  triangles  components  boundary  non-manifold  inconsistent  split  Euler    volume  / "
            "between planes");
  for (const unsigned short label : largestLabels(volume, argc > 4 ? std::strtoul(argv[4], nullptr, 10) : 20))
  {
    const Levels levels = withoutFlatParts(outlinesOf(volume, label, pixel, distance));
    std::size_t numOutlines = 0;
    for (const auto& level : levels) numOutlines += level.size();
    const TriMesh<double> mesh = surfaceOf(levels, criterion);
    const EdgeCounts edges = countEdges(mesh);
    const double surfaceVolume = signedVolume(mesh);
    std::printf("%5d  %8zu  %9d  %10d  %8d  %12d  %12d  %5d  %5d  %8.4g  %15.3f\n", label, numOutlines,
                mesh.getNumTriangles(), numComponents(mesh), edges.numBoundary, edges.numNonManifold,
                edges.numInconsistent, numSplitVertices(mesh), eulerCharacteristic(mesh), surfaceVolume,
                surfaceVolume / volumeBetween(levels, distance));
  }
}
