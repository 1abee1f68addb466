#include "platform/quartzcore/raster/painter.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "platform/quartzcore/raster/fill.h"
#include "platform/quartzcore/raster/outline.h"
#include "platform/quartzcore/raster/stroker.h"

namespace quellaro {

namespace {

// Of a band, as many as a level-2 cache holds, with the cells of the edges among them. Outlines are walked once for
// each band, so that bands are larger where there are more points than that.
constexpr std::size_t kBandPixels = std::size_t{1} << 17;
constexpr std::size_t kMostBandPixels = std::size_t{1} << 22;

// That wait to be drawn; then the bands begin anew.
constexpr std::size_t kMostShapes = 4096;

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

void Painter::fill(const CGPath& path, const Affine& transform, const CGColor& color) {
  if (const std::optional<Box> box = pointBox(path))
    add({&path, transform, 0, isStar(path, *box) ? Outline::Simple : Outline::Any, {}, {}}, map(transform, *box),
        color);
}

void Painter::stroke(const CGPath& path, const Affine& transform, double lineWidth, const CGColor& color) {
  const std::optional<Box> box = pointBox(path);
  if (!box || !(lineWidth > 0)) return;
  const double width = widthThatShows(lineWidth, *box, visibleBox(transform, {0, 0, surface_.width, surface_.height}));
  add({&path, transform, width, Outline::Stroke, {}, {}}, map(transform, box->grown(StrokeSink::reach(width))), color);
}

void Painter::add(Shape shape, const Box& box, const CGColor& color) {
  shape.paint = paintOf(color);
  shape.pixels = pixelsAround(box, surface_);
  if (shape.paint.alpha() == 0 || shape.pixels.empty()) return;
  shapes_.push_back(shape);
  points_ += shape.path->pointCount();
  if (shapes_.size() == kMostShapes) finish();
}

void Painter::finish() {
  const std::size_t pixels = std::clamp(points_, kBandPixels, kMostBandPixels);
  const int rows = std::max(1, static_cast<int>(pixels) / std::max(1, surface_.width));
  for (int top = 0; top < surface_.height; top += rows)
    for (const Shape& shape : shapes_) {
      PixelRect area = shape.pixels;
      area.top = std::max(area.top, top);
      area.bottom = std::min(area.bottom, top + rows);
      if (!area.empty()) draw(shape, area);
    }
  shapes_.clear();
  points_ = 0;
}

void Painter::draw(const Shape& shape, const PixelRect& area) {
  rasterizer_.begin(area, shape.kind);
  if (shape.lineWidth > 0) {
    StrokeSink sink(rasterizer_, toArea(shape.transform, area), shape.lineWidth, visibleBox(shape.transform, area),
                    buffer_);
    walkOutline(*shape.path, Affine{}, sink);
    sink.finish();
  } else {
    FillSink sink(rasterizer_, subpixelBox(area));
    walkOutline(*shape.path, toArea(shape.transform, area), sink);
    sink.close();
  }
  rasterizer_.sweep(surface_, shape.paint, *spans_);
}

}  // namespace quellaro
