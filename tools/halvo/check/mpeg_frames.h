#pragma once

#include <cstddef>
#include <string_view>

namespace halvo {

// What of a file is frames of MPEG audio that follow each other. A decoder looks for the next thing that resembles a
// frame in whatever it is given, and finds some in any noise; here only frames that lead to further ones count.
struct MpegFrames {
  std::size_t frames = 0;
  std::size_t bytes = 0;        // of these frames
  std::size_t fileBytes = 0;    // without tags
  std::size_t highestRate = 0;  // of a frame, in bits a second; 0 where none says

  bool areMostOfFile() const { return frames > 0 && bytes > fileBytes / 2; }
};
MpegFrames findMpegFrames(std::string_view file);

// The file without the tags in front of its sound and behind it.
std::string_view withoutTags(std::string_view file);

}  // namespace halvo
