#pragma once

#include <memory>

#include "animation/halvo_view.h"
#include "platform/quartzcore/bitmap.h"
#include "platform/quartzcore/compositor.h"
#include "svg/document.h"

namespace halvo {

// Looks at frames, one after the other, as somebody would from a little further away.
class FrameEyes {
 public:
  struct Look {
    bool isSeenOnBlack = false;
    bool isSeenOnWhite = false;
    double change = 0;  // since the frame before it, 0 to 1: of the whole picture from nothing to full paint
  };

  FrameEyes();
  // Null where there is nothing to show.
  Look look(const std::shared_ptr<const quellaro::SVGDocument>& frame);

 private:
  std::shared_ptr<quellaro::QLHalvoView> view_;
  quellaro::Compositor compositor_;
  quellaro::Bitmap picture_;
  quellaro::Bitmap before_;
};

}  // namespace halvo
