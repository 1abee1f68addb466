#include "quartzcore/pictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace quellaro {

namespace {

int byteDifference(std::uint32_t a, std::uint32_t b, int shift) {
  return std::abs(static_cast<int>(a >> shift & 255) - static_cast<int>(b >> shift & 255));
}

void putPixel(std::ofstream& file, std::uint32_t pixel) {
  for (const int shift : {16, 8, 0}) file.put(static_cast<char>(pixel >> shift & 255));
}

std::string writeTriptych(const std::string& name, const Bitmap& expected, const Bitmap& actual) {
  std::filesystem::create_directories(QUELLARO_PICTURES);
  const std::string path = std::string(QUELLARO_PICTURES) + "/" + name + ".ppm";
  std::ofstream file(path, std::ios::binary);
  file << "P6 " << 3 * expected.width << ' ' << expected.height << " 255\n";
  for (int y = 0; y < expected.height; ++y) {
    for (int x = 0; x < expected.width; ++x) putPixel(file, expected.row(y)[x]);
    for (int x = 0; x < expected.width; ++x) {
      std::uint32_t amplified = 0;
      for (const int shift : {16, 8, 0}) {
        const int difference = byteDifference(expected.row(y)[x], actual.row(y)[x], shift);
        amplified |= static_cast<std::uint32_t>(std::min(255, difference * 8)) << shift;
      }
      putPixel(file, amplified);
    }
    for (int x = 0; x < expected.width; ++x) putPixel(file, actual.row(y)[x]);
  }
  return path;
}

int greatestDifference(const Bitmap& a, const Bitmap& b) {
  int greatest = 0;
  for (std::size_t i = 0; i < a.pixels.size(); ++i)
    for (const int shift : {0, 8, 16, 24})
      greatest = std::max(greatest, byteDifference(a.pixels[i], b.pixels[i], shift));
  return greatest;
}

}  // namespace

void expectSamePicture(const std::string& name, const Bitmap& expected, const Bitmap& actual, Tolerance tolerance) {
  ASSERT_EQ(expected.width, actual.width);
  ASSERT_EQ(expected.height, actual.height);
  const double mean = meanDifference(expected, actual);
  const int greatest = greatestDifference(expected, actual);
  if (mean > tolerance.mean || greatest > tolerance.greatest)
    ADD_FAILURE() << name << ": mean difference " << mean << ", greatest " << greatest
                  << "; expected | difference | actual in " << writeTriptych(name, expected, actual);
}

double meanDifference(const Bitmap& a, const Bitmap& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.pixels.size(); ++i)
    for (const int shift : {0, 8, 16, 24}) sum += byteDifference(a.pixels[i], b.pixels[i], shift);
  return a.pixels.empty() ? 0 : sum / (4.0 * static_cast<double>(a.pixels.size()));
}

}  // namespace quellaro
