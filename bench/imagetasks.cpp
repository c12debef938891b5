#include "bench/timedtask.h"
#include "image/filters/gaussianfilter.h"
#include "image/filters/meanfilter.h"
#include "image/image.h"
#include "image/imagereader.h"
#include "image/imagereduction.h"
#include "image/imagesourcevoxelmatrixfileplane.h"
#include "image/segmentation/connectedcomponents.h"
#include "image/segmentation/isodatathresholding.h"
#include "image/segmentation/marchingcubes.h"
#include "image/segmentation/otsuthresholding.h"
#include "image/voxelmatrix.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <numeric>

namespace
{
const std::vector<int> oneAndTwo = {1, 2};

template <class T> std::shared_ptr<VoxelMatrix<T>> load(const std::string& folder, const std::string& input)
{
  return std::make_shared<VoxelMatrix<T>>(folder + "/" + input + ".vm");
}

template <class T> double megavoxels(const VoxelMatrix<T>& volume)
{
  return static_cast<double>(volume.getNumVoxels()) / 1e6;
}

bool isFloat(const std::string& input)
{
  return input.ends_with("f32");
}

/// A task for unsigned char and float volumes: make(input) gives what is run and its result.
template <class Make> TimedTask volumeTask(const std::string& task, const std::string& input, const Make& make)
{
  const auto prepare = [make](const std::string& folder, const std::string& name)
  { return isFloat(name) ? make(load<float>(folder, name)) : make(load<unsigned char>(folder, name)); };
  return {task, input, oneAndTwo, prepare};
}

std::string foreground(const VoxelMatrix<unsigned char>& mask)
{
  return "fg=" + std::to_string(mask.histogram(-0.5, 1, 256)[255]);
}

template <class T> VoxelMatrix<unsigned char> maskAbove(const VoxelMatrix<T>& volume, Real<T> threshold)
{
  return Thresholding<T>::levelSetMask(volume, static_cast<T>(std::ceil(threshold)));
}

/// Writes the mask that threshold(volume) gives.
template <class Threshold>
TimedTask maskTask(const std::string& task, const std::string& input, const Threshold& threshold)
{
  return volumeTask(task, input,
                    [threshold]<class T>(const std::shared_ptr<VoxelMatrix<T>>& volume)
                    {
                      auto mask = std::make_shared<VoxelMatrix<unsigned char>>();
                      const auto run = [=]
                      {
                        *mask = VoxelMatrix<unsigned char>();
                        *mask = maskAbove(*volume, threshold(*volume));
                      };
                      return TimedWork{run, megavoxels(*volume), "Mvoxel", [mask] { return foreground(*mask); }};
                    });
}

TimedTask histogramTask(const std::string& input)
{
  return volumeTask("histogram", input,
                    []<class T>(const std::shared_ptr<VoxelMatrix<T>>& volume)
                    {
                      const auto run = [=] { static_cast<void>(volume->histogram(Real<T>(-0.5), 1, 256)); };
                      return TimedWork{run, megavoxels(*volume), "Mvoxel", {}};
                    });
}

TimedTask labelTask(const std::string& task, const std::string& input)
{
  const auto prepare = [](const std::string& folder, const std::string& name)
  {
    const auto mask = load<unsigned char>(folder, name);
    const auto labels = std::make_shared<VoxelMatrix<int>>();
    const auto numLabels = std::make_shared<long>();
    const auto run = [=]
    {
      ProgressSubject subject;
      *labels = VoxelMatrix<int>();
      ConnectedComponents components(*mask, subject);
      labels->setSize(mask->getSize1(), mask->getSize2(), mask->getSize3());
      components.writeLabels(*labels, subject);
      *numLabels = components.getNumLabels();
    };
    return TimedWork{run, megavoxels(*mask), "Mvoxel", [numLabels] { return "labels=" + std::to_string(*numLabels); }};
  };
  return {task, input, oneAndTwo, prepare};
}

/// Filters a copy of the volume with Filter<T>, made by makeFilter(T()).
template <class MakeFilter>
TimedTask filterTask(const std::string& task, const std::string& input, const MakeFilter& makeFilter)
{
  return volumeTask(task, input,
                    [makeFilter]<class T>(const std::shared_ptr<VoxelMatrix<T>>& volume)
                    {
                      auto filtered = std::make_shared<VoxelMatrix<T>>();
                      const auto run = [=]
                      {
                        *filtered = VoxelMatrix<T>();
                        *filtered = *volume;
                        makeFilter(T()).apply(*filtered);
                      };
                      const auto mean = [filtered]
                      {
                        const double numVoxels = static_cast<double>(filtered->getNumVoxels());
                        return "mean=" + std::to_string(filtered->sum() / numVoxels);
                      };
                      return TimedWork{run, megavoxels(*volume), "Mvoxel", mean};
                    });
}

/// The upper left 4096 x 4096 pixels of the large plane.
template <class MakeFilter> TimedTask planeFilterTask(const std::string& task, const MakeFilter& makeFilter)
{
  const auto prepare = [makeFilter](const std::string& folder, const std::string&)
  {
    const auto plane = std::make_shared<PixelMatrix<unsigned char>>(
        PixelMatrix<unsigned char>((*load<unsigned char>(folder, "plane16k_u8"))[0].copy(0, 0, 4096, 4096)));
    const auto filtered = std::make_shared<PixelMatrix<unsigned char>>();
    const auto run = [=]
    {
      *filtered = PixelMatrix<unsigned char>();
      *filtered = *plane;
      makeFilter(static_cast<unsigned char>(0)).apply(*filtered);
    };
    return TimedWork{run, static_cast<double>(plane->getNumElements()) / 1e6, "Mpixel", {}};
  };
  return {task, "plane4k_u8", oneAndTwo, prepare};
}

/// All reduced images of the large plane.
TimedTask pyramidTask()
{
  const auto prepare = [](const std::string& folder, const std::string& name)
  {
    const auto image = std::make_shared<Image>();
    ImageReader::read(*image, ImageSourceVoxelMatrixFilePlane(folder + "/" + name + ".vm"));
    const auto levels = std::make_shared<std::vector<Image>>();
    const auto run = [=]
    {
      constexpr int smallest = 64;
      ProgressSubject subject;
      levels->clear();
      for (const Image* last = image.get(); std::min(last->getWidth(), last->getHeight()) >= smallest;
           last = &levels->back())
        levels->push_back(halved(*last, subject));
    };
    const auto result = [levels]
    {
      const Image& first = levels->front();
      const double sum = std::accumulate(first.getData(), first.getData() + first.getSize(), 0.0);
      return "levels=" + std::to_string(levels->size()) +
             " mean1=" + std::to_string(sum / static_cast<double>(first.getSize()));
    };
    return TimedWork{run, static_cast<double>(image->getSize()) / 1e6, "Mpixel", result};
  };
  return {"pyramid", "plane16k_u8", oneAndTwo, prepare};
}

TimedTask surfaceTask(const std::string& input)
{
  return volumeTask("marching_cubes", input,
                    []<class T>(const std::shared_ptr<VoxelMatrix<T>>& volume)
                    {
                      auto mesh = std::make_shared<std::unique_ptr<TriMesh<float>>>();
                      const auto run = [=]
                      {
                        mesh->reset();
                        *mesh = std::make_unique<TriMesh<float>>(
                            MarchingCubes<T>().buildMesh(*volume, static_cast<Real<T>>(127.3), false));
                      };
                      const auto result = [mesh]
                      {
                        return "verts=" + std::to_string((*mesh)->getNumVertices()) +
                               " tris=" + std::to_string((*mesh)->getNumTriangles());
                      };
                      return TimedWork{run, megavoxels(*volume), "Mvoxel", result};
                    });
}

TimedTask stackReadTask(const std::string& input)
{
  const auto prepare = [](const std::string& folder, const std::string& name)
  {
    const auto volume = std::make_shared<VoxelMatrix<unsigned char>>(folder + "/" + name);
    const double megabytes = static_cast<double>(volume->getNumVoxels()) / 1e6;
    const auto run = [=]
    {
      *volume = VoxelMatrix<unsigned char>();
      volume->load(folder + "/" + name);
    };
    return TimedWork{run, megabytes, "MB", {}};
  };
  return {"tiff_stack_read", input, oneAndTwo, prepare};
}

TimedTask planeReadTask()
{
  const auto prepare = [](const std::string& folder, const std::string& name)
  {
    const auto image = std::make_shared<Image>();
    const auto run = [=]
    {
      image->clear();
      ImageReader::read(*image, folder + "/" + name);
    };
    return TimedWork{run, static_cast<double>(std::filesystem::file_size(folder + "/" + name)) / 1e6, "MB", {}};
  };
  return {"tiff_plane_read", "plane16k_u8.tif", {1}, prepare};
}

const std::string voxelFile = "noise_512x512x128_f32.vm";

TimedTask voxelReadTask()
{
  const auto prepare = [](const std::string& folder, const std::string& name)
  {
    const auto volume = std::make_shared<VoxelMatrix<float>>();
    const auto run = [=]
    {
      *volume = VoxelMatrix<float>();
      volume->load(folder + "/" + name);
    };
    return TimedWork{run, static_cast<double>(std::filesystem::file_size(folder + "/" + name)) / 1e6, "MB", {}};
  };
  return {"vm_read", voxelFile, {1}, prepare};
}

TimedTask voxelWriteTask()
{
  const auto prepare = [](const std::string& folder, const std::string& name)
  {
    const auto volume = std::make_shared<VoxelMatrix<float>>(folder + "/" + name);
    const std::string target = "/dev/shm/mirelo-bench.vm"; // a file system in memory
    const auto run = [=] { volume->save(target, true); };
    const auto result = [=] { return std::filesystem::remove(target) ? "to memory" : "nothing was written"; };
    return TimedWork{run, static_cast<double>(std::filesystem::file_size(folder + "/" + name)) / 1e6, "MB", result};
  };
  return {"vm_write", voxelFile, {1}, prepare};
}
} // namespace

std::vector<TimedTask> imageTasks()
{
  const auto mean5 = []<class T>(T) { return MeanFilter<T>(FilterOptions{.size = 5}); };
  const auto gauss2 = []<class T>(T) { return GaussianFilter<T>(FilterOptions{.sigma = 2}); };
  std::vector<TimedTask> tasks = {planeReadTask(), voxelReadTask(), voxelWriteTask(), pyramidTask()};
  for (const char* layout : {"strip8", "page", "deflate"})
    tasks.push_back(stackReadTask("stack400_" + std::string(layout) + "_u8.tif"));
  for (const char* input :
       {"noise_256_u8", "noise_512x512x128_u8", "spheres_512x512x128_u8", "noise_256_f32", "noise_512x512x128_f32"})
  {
    tasks.push_back(maskTask("threshold", input, [](const auto&) { return 128.f; }));
    tasks.push_back(maskTask("otsu", input,
                             []<class T>(const VoxelMatrix<T>& volume)
                             { return OtsuThresholding<T>().computeThreshold(volume); }));
    tasks.push_back(maskTask("isodata", input,
                             []<class T>(const VoxelMatrix<T>& volume)
                             { return IsodataThresholding<T>().computeThreshold(volume); }));
    if (!isFloat(input)) tasks.push_back(histogramTask(input));
  }
  for (const char* input : {"blobs_256_u8", "salt_256_u8", "blobs_512x512x128_u8", "salt_512x512x128_u8"})
    tasks.push_back(labelTask("label6", input));
  tasks.push_back(labelTask("label4", "blobs2d_u8"));
  for (const char* input : {"noise_256_u8", "noise_256_f32"})
  {
    tasks.push_back(filterTask("mean_5", input, mean5));
    tasks.push_back(filterTask("gauss_s2", input, gauss2));
  }
  tasks.push_back(planeFilterTask("mean2d_5", mean5));
  tasks.push_back(planeFilterTask("gauss2d_s2", gauss2));
  for (const char* input : {"noise_128_f32", "spheres_128_f32", "noise_256_f32", "spheres_256_f32",
                            "noise_512x512x128_f32", "spheres_512x512x128_f32", "spheres_256_u8"})
    tasks.push_back(surfaceTask(input));
  return tasks;
}
