#pragma once

#include "platform/coregraphics/geometry.h"
#include "platform/quartzcore/layer.h"

namespace halvo {

// How often drawing the layers paints the whole frame over: the area that each shape covers of it, added up, in frames.
// Time grows with it, whatever the scale. An outline that crosses itself counts as what its contours enclose, one by
// one, and a curve as its control points do, which is somewhat more than it is.
double paintedFrames(const quellaro::CALayer& frame, quellaro::CGSize size);

}  // namespace halvo
