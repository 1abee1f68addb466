#pragma once

#include "platform/quartzcore/bitmap.h"
#include "platform/quartzcore/layer.h"

namespace quellaro {

// Draws a layer tree with cairo's image surface, over what the bitmap shows: what the compositor is compared with.
void drawWithCairo(const CALayer& root, Bitmap& bitmap);

}  // namespace quellaro
