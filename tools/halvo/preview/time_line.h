#pragma once

#include "platform/quartzcore/bitmap.h"
#include "platform/quartzcore/compositor.h"
#include "preview/preview_layout.h"
#include "preview/preview_source.h"
#include "preview/session.h"

namespace halvo {

// Draws the strip below the picture: how it stands, the sound, the haptics, when each frame comes up, and where one is.
class TimeLine {
 public:
  // What follows is drawn for another source or another size.
  void forget() { isDrawn_ = false; }
  // Over the whole surface, which is the layout's strip.
  void draw(const PreviewSource& source, const PreviewLayout& layout, const Session& session,
            const quellaro::Surface& surface);

 private:
  void drawGround(const PreviewSource& source, const PreviewLayout& layout);

  bool isDrawn_ = false;
  quellaro::Bitmap ground_;  // all that stays the same
  quellaro::Compositor compositor_;
};

}  // namespace halvo
