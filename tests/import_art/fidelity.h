#pragma once

#include <string>

#include "import/art/import_frame.h"
#include "platform/quartzcore/bitmap.h"

// How well a frame keeps its source: both 256 pixels wide, on white.
struct Fidelity {
  // Of 255.
  double mean = 0;
  // Of the pixels, those off by more than 64, in percent.
  double farOff = 0;
  quellaro::Bitmap shown, meant;

  bool isRight() const { return mean <= 0.6 && farOff <= 0.15; }
};

Fidelity fidelityOf(const std::string& source, const halvo::ArtFrame& frame);
// `meant` is as large, and may let something through.
Fidelity fidelityTo(quellaro::Bitmap meant, const halvo::ArtFrame& frame);
