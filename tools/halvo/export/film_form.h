#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace halvo {

// A kind of film, by the ending of its name.
struct FilmForm {
  std::string_view ending;
  bool hasSound = false;
  bool canBeTransparent = false;
  bool canLoop = false;
  bool wantsEvenSides = false;
  double mostPicturesPerSecond = 0;  // 0: any number
  // Seconds: encoders give the last picture the time of the one before it, or this. So it comes twice, the second time
  // for this long.
  double lastPicture = 1.0 / 60;
};

std::span<const FilmForm> filmForms();
// Null for an ending that none has; capitals do not count.
const FilmForm* filmFormOf(const std::string& path);

struct FilmSettings {
  bool isTransparent = false;
  bool hasSound = false;
  bool loops = false;
};

// What the ffmpeg program is to make of the stream on its standard input, and to write to `output`.
std::vector<std::string> filmArguments(const FilmForm& form, const FilmSettings& settings, const char* output);

}  // namespace halvo
