#include "platform/quartzcore/raster/painter.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "platform/quartzcore/raster/fill.h"
#include "platform/quartzcore/raster/outline.h"
#include "platform/quartzcore/raster/stroker.h"

namespace quellaro {

namespace {

// Cells for this many pixels at a time: a huge surface is drawn in bands.
constexpr std::size_t kBandPixels = std::size_t{1} << 22;

// Blocks of cells stand on the same pixels for every shape.
PixelRect pixelsAround(const Box& box, const Surface& surface) {
  const auto within = [](double value, int end) {
    return static_cast<int>(std::min<double>(end, std::max(0.0, value)));
  };
  PixelRect rect{within(std::floor(box.minX), surface.width), within(std::floor(box.minY), surface.height),
                 within(std::ceil(box.maxX), surface.width), within(std::ceil(box.maxY), surface.height)};
  constexpr int kBlock = kBlockPixels;
  rect.left -= rect.left % kBlock;
  rect.right = std::min(surface.width, (rect.right + kBlock - 1) / kBlock * kBlock);
  return rect;
}

// Pixels to subpixels relative to the area's corner.
Affine toArea(const Affine& transform, const PixelRect& area) {
  return concat(transform, {kSubpixels, 0, 0, kSubpixels, -static_cast<double>(area.left) * kSubpixels,
                            -static_cast<double>(area.top) * kSubpixels});
}

Box subpixelBox(const PixelRect& area) {
  return {0, 0, static_cast<double>(area.width()) * kSubpixels, static_cast<double>(area.height()) * kSubpixels};
}

// The user-space box of what the area shows; everything when the transform cannot be undone.
Box visibleBox(const Affine& transform, const PixelRect& area) {
  const double determinant = transform.a * transform.d - transform.b * transform.c;
  const Affine inverse{transform.d / determinant,
                       -transform.b / determinant,
                       -transform.c / determinant,
                       transform.a / determinant,
                       (transform.c * transform.ty - transform.d * transform.tx) / determinant,
                       (transform.b * transform.tx - transform.a * transform.ty) / determinant};
  const Box box = map(inverse, {static_cast<double>(area.left), static_cast<double>(area.top),
                                static_cast<double>(area.right), static_cast<double>(area.bottom)});
  const bool finite = std::isfinite(box.minX + box.maxX + box.minY + box.maxY);
  return finite ? box : Box{-kFarAway, -kFarAway, kFarAway, kFarAway};
}

// Beyond this a wider stroke covers the same pixels, and its far corners would leave its edges too few digits near
// them.
double widthThatShows(double lineWidth, const Box& outline, const Box& visible) {
  constexpr double kFarBeyond = 1000;
  const double width = std::max(outline.maxX, visible.maxX) - std::min(outline.minX, visible.minX);
  const double height = std::max(outline.maxY, visible.maxY) - std::min(outline.minY, visible.minY);
  return std::min({lineWidth, kFarBeyond * (width + height), kFarAway});
}

}  // namespace

template <class AddEdges>
void Painter::paint(const Surface& surface, const Box& box, bool simple, const CGColor& color,
                    const AddEdges& addEdges) {
  const Paint paint = paintOf(color);
  PixelRect band = pixelsAround(box, surface);
  if (paint.alpha() == 0 || band.empty()) return;
  const int bottom = band.bottom;
  const int rows = std::max(1, static_cast<int>(kBandPixels / static_cast<std::size_t>(band.width())));
  for (; band.top < bottom; band.top = band.bottom) {
    band.bottom = std::min(bottom, band.top + rows);
    rasterizer_.begin(band, simple);
    addEdges(band);
    rasterizer_.sweep(surface, paint, *spans_);
  }
}

void Painter::fill(const Surface& surface, const CGPath& path, const Affine& transform, const CGColor& color) {
  const std::optional<Box> box = pointBox(path);
  if (!box) return;
  const Box mapped = map(transform, *box);
  paint(surface, mapped, isStar(path, *box), color, [&](const PixelRect& area) {
    const auto addEdges = [&](auto sink) {
      walkOutline(path, toArea(transform, area), sink);
      sink.close();
    };
    const Box shown{static_cast<double>(area.left), static_cast<double>(area.top), static_cast<double>(area.right),
                    static_cast<double>(area.bottom)};
    if (shown.contains(mapped))
      addEdges(FillSink<false>(rasterizer_, subpixelBox(area)));
    else
      addEdges(FillSink<true>(rasterizer_, subpixelBox(area)));
  });
}

void Painter::stroke(const Surface& surface, const CGPath& path, const Affine& transform, double lineWidth,
                     const CGColor& color) {
  const std::optional<Box> box = pointBox(path);
  if (!box || !(lineWidth > 0)) return;
  const double width = widthThatShows(lineWidth, *box, visibleBox(transform, {0, 0, surface.width, surface.height}));
  paint(surface, map(transform, box->grown(StrokeSink::reach(width))), false, color, [&](const PixelRect& area) {
    StrokeSink sink(rasterizer_, toArea(transform, area), width, visibleBox(transform, area), buffer_);
    walkOutline(path, Affine{}, sink);
    sink.finish();
  });
}

}  // namespace quellaro
