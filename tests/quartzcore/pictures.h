#pragma once

#include <string>

#include "platform/quartzcore/bitmap.h"

namespace quellaro {

struct Tolerance {
  double mean = 0;   // over all bytes, of 255
  int greatest = 0;  // of any byte
};

// Fails the test when the pictures differ by more, and leaves expected | difference | actual as NAME.ppm in the build
// directory's folder "pictures".
void expectSamePicture(const std::string& name, const Bitmap& expected, const Bitmap& actual, Tolerance tolerance);

// The mean difference of two pictures of the same size, over all bytes of all pixels, of 255.
double meanDifference(const Bitmap& a, const Bitmap& b);

}  // namespace quellaro
