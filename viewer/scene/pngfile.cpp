#include "viewer/scene/pngfile.h"

#include "geometry/outputfile.h"
#include "numeric/exception.h"

#include <png.h>

namespace
{
constexpr const char* signature = "void writePng(const std::string&, ...)";
}

void writePng(const std::string& filename, const std::vector<std::uint8_t>& pixels, int width, int height,
              bool overwrite)
{
  OutputFile file(filename, overwrite, signature);
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(width);
  image.height = static_cast<png_uint_32>(height);
  image.format = PNG_FORMAT_RGBA;
  png_alloc_size_t size = 0;
  std::vector<char> bytes;
  bool isDone = png_image_write_to_memory(&image, nullptr, &size, 0, pixels.data(), 0, nullptr) != 0;
  bytes.resize(size);
  isDone = isDone && png_image_write_to_memory(&image, bytes.data(), &size, 0, pixels.data(), 0, nullptr) != 0;
  if (!isDone) throw FileWriteError(signature, filename + ": cannot make a PNG picture: " + image.message);
  file.stream().write(bytes.data(), static_cast<std::streamsize>(size));
  file.commit();
}
