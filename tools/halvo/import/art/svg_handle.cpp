#include "import/art/svg_handle.h"

#include <cmath>
#include <string>

namespace halvo::art {

namespace {

// "... on line 3 column 5 of data: Opening and ending tag mismatch: ...\n"
ArtError readingError(const GError& error) {
  const std::string_view message = error.message;
  ArtError result{std::nullopt, std::string(message)};
  constexpr std::string_view kLine = " on line ";
  constexpr std::string_view kData = " of data: ";
  const std::size_t line = message.find(kLine);
  const std::size_t data = message.find(kData);
  if (line == std::string_view::npos || data == std::string_view::npos) return result;
  std::size_t number = 0;
  for (std::size_t i = line + kLine.size(); i < data && message[i] >= '0' && message[i] <= '9'; ++i)
    number = number * 10 + static_cast<std::size_t>(message[i] - '0');
  result.line = number;
  const std::string_view reason = message.substr(data + kData.size());
  result.reason = std::string(reason.substr(0, reason.find('\n')));
  return result;
}

double inPixels(const RsvgLength& length) {
  switch (length.unit) {
    case RSVG_UNIT_PX:
      return length.length;
    case RSVG_UNIT_IN:
      return length.length * 96;
    case RSVG_UNIT_CM:
      return length.length * 96 / 2.54;
    case RSVG_UNIT_MM:
      return length.length * 96 / 25.4;
    case RSVG_UNIT_PT:
      return length.length * 96 / 72;
    case RSVG_UNIT_PC:
      return length.length * 16;
    default:
      return -1;
  }
}

}  // namespace

SourceSize viewportOf(RsvgHandle& handle) {
  SourceSize size;
  if (rsvg_handle_get_intrinsic_size_in_pixels(&handle, &size.width, &size.height)) return size;
  gboolean hasWidth = FALSE, hasHeight = FALSE, hasBox = FALSE;
  RsvgLength width{}, height{};
  RsvgRectangle box{};
  rsvg_handle_get_intrinsic_dimensions(&handle, &hasWidth, &width, &hasHeight, &height, &hasBox, &box);
  if (!hasBox || !(box.width > 0 && box.height > 0)) return {};
  if (hasWidth && inPixels(width) > 0) return {inPixels(width), inPixels(width) / box.width * box.height};
  if (hasHeight && inPixels(height) > 0) return {inPixels(height) / box.height * box.width, inPixels(height)};
  return {box.width, box.height};
}

bool hasExtent(const SourceSize& size) {
  return size.width > 0 && size.height > 0 && std::isfinite(size.width) && std::isfinite(size.height);
}

ArtError noExtent() {
  return {std::nullopt, "the document has no size: its width, height or viewBox are missing or 0"};
}

std::variant<SvgHandle, ArtError> readSvg(std::string_view document) {
  GError* raw = nullptr;
  SvgHandle handle(rsvg_handle_new_from_data(reinterpret_cast<const guint8*>(document.data()), document.size(), &raw));
  const SvgError error(raw);
  if (!handle) return error ? readingError(*error) : ArtError{std::nullopt, "the document cannot be read"};
  rsvg_handle_set_dpi(handle.get(), 96);
  return handle;
}

}  // namespace halvo::art
