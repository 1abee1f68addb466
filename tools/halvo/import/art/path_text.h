#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "import/art/outline.h"

namespace halvo::art {

// Path data of the player's commands, each absolute or relative, whichever is shorter. Coordinates are rounded before
// differences are taken, so that errors do not add up.
class PathText {
 public:
  explicit PathText(int decimals);

  void add(const Contour& contour, bool isStroke);
  const std::string& text() const { return text_; }
  std::size_t points() const { return points_; }

 private:
  struct Place {
    std::int64_t x = 0, y = 0;
    friend bool operator==(const Place&, const Place&) = default;
  };

  Place rounded(Point point) const;
  void move(Place to);
  void line(Place to);
  void curve(Place control1, Place control2, Place to);
  // Writes the shorter of both forms; `across` tells of each number whether it is along x or y.
  void command(char letter, std::span<const std::int64_t> absolute, std::span<const bool> across);
  std::string form(char letter, std::span<const std::int64_t> numbers) const;
  void go(Place to);

  int decimals_;
  double scale_;
  std::string text_;
  char last_ = 0;
  Place at_;
  // What a smooth curve goes on from.
  Place control_;
  bool isSmooth_ = false;
  bool isAbsolute_ = false;
  std::size_t points_ = 0;
};

// Of so many decimals, in units of the last of them.
std::string shortNumber(std::int64_t value, int decimals);
std::string shortNumber(double value, int decimals);

}  // namespace halvo::art
