#include <gtest/gtest.h>

#include <cmath>

#include "media/haptic_pattern_file.h"
#include "platform/foundation/json/json_decoder.h"
#include "support/temporary_directory.h"

namespace quellaro {
namespace {

// The pattern's time counts from the start of the play, as that of a sound without delay does.
TEST(BuiltInPattern, EachBeatOfTheSoundIsFeltAsItIsHeard) {
  const auto pattern = loadHapticPattern(QUELLARO_BUNDLE "/signature_forte.ahap");
  ASSERT_TRUE(pattern) << pattern.error().localizedDescription;
  const auto& samples = (*pattern)->curve().samples;

  const auto beats = JSONDocument::parse(readFile(QUELLARO_TEST_DATA "/../../resources/beats.json"));
  ASSERT_TRUE(beats);
  JSONDecoder decoder(beats->root());
  double delay = 0;
  if (const auto config = JSONDocument::parse(readFile(QUELLARO_BUNDLE "/play_config.json")))
    delay = config->root().member("soundDelayInMillis")->number().value() / 1000;
  const JSONField root = JSONField::root(decoder);
  EXPECT_LT((*pattern)->duration(), delay + root.required("duration").number());
  int count = 0;
  for (const JSONField& beat : root.required("beats").elements()) {
    const double time = delay + beat.required("time").number();
    const auto sample = static_cast<std::size_t>(std::lround(time * HapticCurve::kSamplesPerSecond));
    ASSERT_GT(sample, 0U);
    ASSERT_LT(sample, samples.size());
    EXPECT_LT(samples[sample - 1].intensity, 0.01) << "a breath before the beat at " << time;
    EXPECT_GE(samples[sample].intensity, beat.required("strength").number() - 1e-3) << time;
    ++count;
  }
  EXPECT_FALSE(decoder.error());
  EXPECT_GE(count, 3);
}

}  // namespace
}  // namespace quellaro
