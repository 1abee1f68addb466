#pragma once

#include "sheet/curves.h"

namespace halvo {

// A rectangle of pixels.
struct PixelArea {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;

  bool contains(double x, double y) const { return x >= left && x < left + width && y >= top && y < top + height; }
  friend bool operator==(const PixelArea&, const PixelArea&) = default;
};

// Where everything in the window stands, in pixels: the stage with the picture, and the time line below it.
struct PreviewLayout {
  int width = 0;
  int height = 0;
  double scale = 1;  // pixels to a unit of the desktop
  PixelArea stage;
  PixelArea strip;
  // Within the strip, from its top left corner. A height of 0 means that there is none.
  double textTop = 0;
  double textHeight = 0;
  CurveLane sound, haptics, marks, axis;

  // The time that a column of the window stands for, within the loop.
  double secondsAt(double x) const;
};

struct PreviewLanes {
  bool sound = false;
  bool haptics = false;
  double duration = 0;
};

PreviewLayout layOutPreview(int width, int height, double scale, const PreviewLanes& lanes);

}  // namespace halvo
