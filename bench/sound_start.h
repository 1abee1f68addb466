#pragma once

#include <string>
#include <vector>

// The recorder hears in steps of so many seconds, so that every time may be too long by one.
inline constexpr double kSoundStartStep = 0.002;

// How long it takes until a sound is heard, seen from the other side of a sound server of the benchmark's own.
struct SoundStart {
  // For each play, from AVAudioPlayer's play() to the first audible sample having left the server and reached a
  // recorder; what is silent at the beginning of the file itself does not count.
  std::vector<double> seconds;
  // Of the server's sink meanwhile, as it tells.
  double sinkLatency = 0;
};

// Throws, with the reason, what cannot be measured. From then on the process knows no other sound server.
SoundStart measureSoundStart(const std::string& soundFile, int plays);
