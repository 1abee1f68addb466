#pragma once

#include <cstddef>

namespace halvo {

// Where everything on a contact sheet stands, in pixels.
struct SheetLayout {
  int width = 0;
  int height = 0;
  double left = 0;
  double contentWidth = 0;

  // The grid of thumbnails; every `step`th frame has one.
  double gridTop = 0;
  std::size_t step = 1;
  std::size_t thumbnails = 0;
  std::size_t columns = 1;
  int side = 0;
  double pitch = 0;  // from one column to the next
  double labelHeight = 0;

  // The lanes on the time axis, from top to bottom; a height of 0 means that there is none.
  struct Lane {
    double top = 0;
    double height = 0;
    double bottom() const { return top + height; }
  };
  Lane axis, moments, film, sound, haptics;

  double cellLeft(std::size_t thumbnail) const;
  double cellTop(std::size_t thumbnail) const;
};

inline constexpr double kMargin = 28;
inline constexpr double kTitleHeight = 13;

// `isTimed`: whether there is a time axis at all.
SheetLayout layOut(std::size_t frames, bool isTimed, bool hasFilm, bool hasSound, bool hasHaptics, bool hasMoments);

}  // namespace halvo
