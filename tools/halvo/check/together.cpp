#include "check/together.h"

#include <cmath>
#include <string>
#include <utility>

#include "assets/halvo_file_manager.h"
#include "check/cue.h"

namespace halvo {

namespace {

// In seconds: what people notice, and what nobody takes for one event any more.
constexpr double kNoticed = 0.04;
constexpr double kUnrelated = 1;

struct Kind {
  const std::vector<double>& moments;
  const char* event;
};

void checkPairs(const Kind& first, const Kind& second, const char* file, Report& report) {
  if (second.moments.empty()) return;
  for (const double moment : first.moments) {
    const double other = nearestOf(second.moments, moment);
    const double distance = std::fabs(other - moment);
    if (distance <= kNoticed || distance > kUnrelated || nearestOf(first.moments, other) != moment) continue;
    report.add({FindingId::Apart,
                std::string(first.event) + " at " + secondsText(moment) + ", " + second.event + " at " +
                    secondsText(other) + ", " + std::to_string(std::lround(distance * 1000)) + " ms " +
                    (other > moment ? "later" : "earlier"),
                file, std::nullopt, "", "", std::string(first.event) + second.event, std::nullopt});
  }
}

}  // namespace

void checkTogether(const Moments& moments, Report& report) {
  const Kind taps{moments.taps, "a tap is felt"};
  const Kind sounds{moments.sounds, "a sound begins"};
  const Kind pictures{moments.pictures, "the picture changes"};
  checkPairs(taps, sounds, quellaro::kHapticsFile, report);
  // What is felt with a sound is judged by it.
  if (moments.sounds.empty()) checkPairs(taps, pictures, quellaro::kHapticsFile, report);
  checkPairs(pictures, sounds, quellaro::kPlayConfigFile, report);
}

}  // namespace halvo
