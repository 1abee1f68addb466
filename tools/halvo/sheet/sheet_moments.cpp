#include <algorithm>
#include <cmath>

#include "picture/frame_look.h"
#include "sheet/sheet_drawing.h"
#include "svg/document.h"

namespace halvo {

using namespace quellaro;

Moments momentsOf(const SheetSource& source) {
  Moments moments;
  if (source.times) {
    FrameEyes eyes;
    std::vector<double> changes;
    for (const std::string& frame : source.frames) changes.push_back(eyes.look(SVGDocument::parse(frame)).change);
    moments.pictures = largeChanges(changes, *source.times);
  }
  if (source.sound)
    for (const double onset : source.sound->onsets) moments.sounds.push_back(source.soundStart + onset);
  if (source.haptics) moments.taps = tapsOf(*source.haptics);
  return moments;
}

// A row of marks for each kind, one below the other, so that distances are seen.
void SheetDrawing::drawMoments() {
  const SheetLayout::Lane& lane = layout_.moments;
  if (lane.height == 0) return;
  constexpr double kMark = 3;
  const Moments& moments = source_.moments;
  drawLane(lane, "large changes of the picture, beginnings of the sound, taps");
  const double row = lane.height / 3;
  double top = lane.top;
  for (const auto& [kind, colour] :
       {std::pair(&moments.pictures, palette_.text), std::pair(&moments.sounds, palette_.soundCore),
        std::pair(&moments.taps, palette_.haptics)}) {
    for (const double moment : *kind)
      page_.rectangle({{std::floor(columnOf(moment)), top + 2}, {kMark, row - 4}}, colour);
    top += row;
  }
}

}  // namespace halvo
