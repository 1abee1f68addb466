#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/avfoundation/mp3_decoder.h"
#include "platform/foundation/error.h"
#include "svg/document.h"

namespace halvo {

// A picture from its moment on, until the next.
struct Shot {
  double start = 0;                  // seconds from the start of the play
  std::optional<std::size_t> frame;  // absent: nothing but the ground
};

// What there is to show and to hear.
struct FilmSource {
  std::vector<std::shared_ptr<const quellaro::SVGDocument>> frames;
  std::vector<Shot> shots;  // the first at 0, ascending
  double end = 0;           // of the last
  std::unique_ptr<quellaro::Mp3Decoder> sound;
  double soundStart = 0;
  std::vector<std::string> notes;  // what could not be had, and why
};

// From a cue's directory, an animation.json (with what lies beside it), a folder of SVG files or an SVG document.
// The last picture stays until the sound has ended. Frames without a play_config.json come 60 times a second; one
// document is seen for a second.
quellaro::Result<FilmSource> readFilmSource(const std::string& path, bool withSound);

// The same film at so many pictures a second: what is seen at the moment of each. Without `repeats`, only those that
// differ from the one before.
void resample(FilmSource& film, double picturesPerSecond, bool repeats);

}  // namespace halvo
