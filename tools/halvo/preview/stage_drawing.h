#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/quartzcore/bitmap.h"
#include "platform/quartzcore/compositor.h"
#include "preview/overlay.h"
#include "preview/preview_source.h"
#include "preview/session.h"
#include "svg/svg_view.h"

namespace halvo {

// What of the stage there is beside the frame.
struct StageExtras {
  // The drawing that the frame was made of, square; null while there is none to show.
  const quellaro::Bitmap* source = nullptr;
  std::string sourceProblem;  // why there is none
  std::string problem;        // what is wrong with what was saved last; empty when nothing is
  std::vector<std::string> findings;
};

// Draws the picture of the preview: ground, neighbours, frame, and what is written over them.
class StageDrawing {
 public:
  StageDrawing();

  // Over the whole surface.
  void draw(const PreviewSource& source, const Session& session, const StageExtras& extras,
            const quellaro::Surface& surface, double scale);
  // The side of the square that a source's own picture fills on a stage of that size.
  static int sourceSide(int width, int height);

 private:
  using Document = std::shared_ptr<const quellaro::SVGDocument>;

  void drawResult(const PreviewSource& source, const Session& session, const quellaro::Surface& surface);
  void drawFrame(const Document& frame, bool fit, const quellaro::Surface& surface);
  void drawNeighbour(const Document& frame, bool fit, std::uint32_t tint, const quellaro::Surface& surface);
  void drawSource(const StageExtras& extras, const quellaro::Surface& surface, double scale);

  std::shared_ptr<quellaro::SVGView> view_;
  quellaro::Compositor compositor_;
  quellaro::Bitmap neighbour_;
  Overlay problem_, findings_, help_, sourceLabel_, resultLabel_;
};

}  // namespace halvo
