#include "picture/png_writer.h"

#include <png.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace halvo {

namespace {

using quellaro::Bitmap;
using quellaro::NSError;

bool isOpaque(const Bitmap& bitmap) {
  return std::all_of(bitmap.pixels.begin(), bitmap.pixels.end(), [](std::uint32_t p) { return p >> 24 == 255; });
}

}  // namespace

std::vector<std::uint8_t> straightBytes(const Bitmap& bitmap, bool withAlpha) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(bitmap.pixels.size() * 4);
  for (const std::uint32_t pixel : bitmap.pixels) {
    const std::uint32_t alpha = pixel >> 24;
    for (const int shift : {16, 8, 0}) {
      const std::uint32_t component = pixel >> shift & 255;
      bytes.push_back(static_cast<std::uint8_t>(alpha == 0 ? 0 : (component * 255 + alpha / 2) / alpha));
    }
    if (withAlpha) bytes.push_back(static_cast<std::uint8_t>(alpha));
  }
  return bytes;
}

std::optional<NSError> writePng(const Bitmap& bitmap, const std::string& path) {
  const bool opaque = isOpaque(bitmap);
  const std::vector<std::uint8_t> bytes = straightBytes(bitmap, !opaque);
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(bitmap.width);
  image.height = static_cast<png_uint_32>(bitmap.height);
  image.format = opaque ? PNG_FORMAT_RGB : PNG_FORMAT_RGBA;
  image.flags = PNG_IMAGE_FLAG_FAST;
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  std::string file(size, '\0');
  if (png_image_write_to_memory(&image, file.data(), &size, 0, bytes.data(), 0, nullptr) == 0)
    return NSError{"libpng", static_cast<std::int64_t>(image.warning_or_error), image.message};
  file.resize(size);
  // In place: what the user names may be a device or a pipe, which a file that is renamed would replace.
  errno = 0;
  std::ofstream stream(path, std::ios::binary | std::ios::trunc);
  stream.write(file.data(), static_cast<std::streamsize>(file.size()));
  stream.close();
  if (!stream) {
    const int error = errno != 0 ? errno : EIO;
    // Half a picture is none; a device or a pipe is not ours to remove.
    std::error_code ignored;
    if (std::filesystem::is_regular_file(path, ignored)) std::filesystem::remove(path, ignored);
    return quellaro::posixError(error);
  }
  return std::nullopt;
}

}  // namespace halvo
