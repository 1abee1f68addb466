#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/quartzcore/bitmap.h"

namespace quellaro {

struct Tolerance {
  double mean = 0;   // over all bytes, of 255
  int greatest = 0;  // of any byte
};

inline int byteDifference(std::uint32_t a, std::uint32_t b, int shift) {
  return std::abs(static_cast<int>(a >> shift & 255) - static_cast<int>(b >> shift & 255));
}

// Of two pictures of the same size.
inline Tolerance differenceOf(const Bitmap& a, const Bitmap& b) {
  double sum = 0;
  int greatest = 0;
  for (std::size_t i = 0; i < a.pixels.size(); ++i)
    for (const int shift : {0, 8, 16, 24}) {
      const int difference = byteDifference(a.pixels[i], b.pixels[i], shift);
      sum += difference;
      greatest = std::max(greatest, difference);
    }
  return {a.pixels.empty() ? 0 : sum / (4.0 * static_cast<double>(a.pixels.size())), greatest};
}

// Expected | difference | actual.
inline std::string writeTriptych(const std::string& name, const Bitmap& expected, const Bitmap& actual) {
  std::filesystem::create_directories(QUELLARO_PICTURES);
  const std::string path = std::string(QUELLARO_PICTURES) + "/" + name + ".ppm";
  std::ofstream file(path, std::ios::binary);
  file << "P6 " << 3 * expected.width << ' ' << expected.height << " 255\n";
  const auto put = [&file](int byte) { file.put(static_cast<char>(byte)); };
  for (int y = 0; y < expected.height; ++y)
    for (int x = 0; x < 3 * expected.width; ++x) {
      const std::uint32_t wanted = expected.row(y)[x % expected.width];
      const std::uint32_t got = actual.row(y)[x % expected.width];
      const int panel = x / expected.width;
      for (const int shift : {16, 8, 0})
        put(panel == 1 ? std::min(255, byteDifference(wanted, got, shift) * 8)
                       : static_cast<int>((panel == 0 ? wanted : got) >> shift & 255));
    }
  return path;
}

// Fails the test when the pictures differ by more, and leaves a triptych in the build directory's folder "pictures".
inline void expectSamePicture(const std::string& name, const Bitmap& expected, const Bitmap& actual,
                              Tolerance tolerance) {
  ASSERT_EQ(expected.width, actual.width);
  ASSERT_EQ(expected.height, actual.height);
  const Tolerance difference = differenceOf(expected, actual);
  if (difference.mean > tolerance.mean || difference.greatest > tolerance.greatest)
    ADD_FAILURE() << name << ": mean difference " << difference.mean << ", greatest " << difference.greatest << "; see "
                  << writeTriptych(name, expected, actual);
}

}  // namespace quellaro
