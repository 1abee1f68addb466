#pragma once

#include <optional>
#include <string>
#include <vector>

#include "check/report.h"

namespace halvo {

// What there is to hear, from the beginning of the file; a single channel counts as it is heard, from two speakers.
struct SoundFacts {
  double seconds = 0;
  unsigned rate = 0;
  // Absent where nothing is heard.
  std::optional<double> firstHeard;
  // In LUFS, and in dB of full scale; absent too where this tool cannot measure them.
  std::optional<double> loudness;
  std::optional<double> truePeak;
  std::vector<double> onsets;  // where something begins to sound, ascending
};

// Decodes all of it. Nothing when there is nothing that the player could play.
std::optional<SoundFacts> checkSound(const std::string& path, Report& report);

}  // namespace halvo
