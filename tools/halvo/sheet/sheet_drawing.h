#pragma once

#include <memory>

#include "animation/halvo_view.h"
#include "picture/page.h"
#include "platform/quartzcore/compositor.h"
#include "sheet/curves.h"
#include "sheet/sheet_layout.h"
#include "sheet/sheet_source.h"

namespace halvo {

struct Palette {
  const char* page;
  const char* text;
  const char* faint;      // labels of lesser weight
  const char* line;       // the time axis and its grid
  const char* lane;       // the ground of a lane
  const char* sound;      // the waveform's outline
  const char* soundCore;  // how loud it is
  const char* haptics;    // how strong it is felt
  const char* sharpness;  // how sharp
};

// Puts a contact sheet together on a bitmap.
class SheetDrawing {
 public:
  SheetDrawing(const SheetSource& source, const SheetLayout& layout, quellaro::QLHalvoBackground background);

  // All of it.
  quellaro::Bitmap draw();

 private:
  void drawTitle();
  void drawThumbnails();
  // One frame, square, onto the sheet; what lies outside the square is cut off.
  void drawFrame(std::size_t frame, double x, double y, int side);

  // The lanes below the thumbnails.
  void drawAxis();
  void drawFilm();
  void drawSound();
  void drawHaptics();
  void drawMoments();
  void drawLane(const SheetLayout::Lane& lane, std::string_view name);
  CurveLane curveLane(const SheetLayout::Lane& lane) const;
  double columnOf(double seconds) const;
  double secondsPerPixel() const { return duration_ / layout_.contentWidth; }
  double right() const { return layout_.left + layout_.contentWidth; }

  const SheetSource& source_;
  const SheetLayout& layout_;
  const Palette& palette_;
  const double duration_;
  quellaro::Bitmap sheet_;
  std::shared_ptr<quellaro::QLHalvoView> view_;
  quellaro::Bitmap thumbnail_;
  quellaro::Compositor compositor_;
  Page page_;
};

}  // namespace halvo
