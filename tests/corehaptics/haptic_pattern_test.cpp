#include "platform/corehaptics/haptic_pattern.h"

#include <gtest/gtest.h>

#include <chrono>
#include <sstream>
#include <string>
#include <vector>

#include "platform/foundation/memory/limits.h"

namespace quellaro {
namespace {

Result<std::shared_ptr<const CHHapticPattern>> patternOf(const std::string& dictionary) {
  const auto document = JSONDocument::parse(dictionary);
  if (!document) return document.error();
  return CHHapticPattern::initWithDictionary(document->root());
}

Result<std::shared_ptr<const CHHapticPattern>> patternOfEntries(const std::string& entries) {
  return patternOf(R"({"Version": 1.0, "Pattern": [)" + entries + "]}");
}

// "Name Value Name Value": an event's parameters.
std::string parameters(const std::string& pairs) {
  std::istringstream words(pairs);
  std::string list;
  for (std::string name, value; words >> name >> value;)
    list += (list.empty() ? "" : ",") + (R"({"ParameterID": ")" + name + R"(", "ParameterValue": )" + value + "}");
  return list;
}

std::string continuous(const std::string& time, const std::string& duration, const std::string& pairs = "") {
  return R"({"Event": {"Time": )" + time + R"(, "EventType": "HapticContinuous", "EventDuration": )" + duration +
         R"(, "EventParameters": [)" + parameters(pairs) + "]}}";
}

std::string change(const std::string& name, const std::string& time, const std::string& value) {
  return R"({"Parameter": {"ParameterID": ")" + name + R"(", "Time": )" + time + R"(, "ParameterValue": )" + value +
         "}}";
}

// "Time Value Time Value": a curve of the intensity.
std::string curve(const std::string& time, const std::string& pairs) {
  std::istringstream words(pairs);
  std::string points;
  for (std::string at, value; words >> at >> value;)
    points += (points.empty() ? "" : ",") + (R"({"Time": )" + at + R"(, "ParameterValue": )" + value + "}");
  return R"({"ParameterCurve": {"ParameterID": "HapticIntensityControl", "Time": )" + time +
         R"(, "ParameterCurveControlPoints": [)" + points + "]}}";
}

using Values = std::vector<double>;

TEST(HapticPattern, FeltCurvesWorkedOutByHand) {
  struct Row {
    const char* what;
    std::string entries;
    Values intensity;
    // Empty: the default, wherever anything is felt.
    Values sharpness = {};
  };
  const std::vector<Row> rows = {
      {"a click is full for 30 ms", R"({"Event": {"Time": 0.01, "EventType": "HapticTransient"}})", {0, 1, 1, 1}},
      {"an event begins at the nearest sample and is felt for one at least",
       continuous("0.016", "0") + "," + continuous("0.034", "0.001"),
       {0, 0, 1, 1}},
      {"rises, holds and fades",
       continuous("0", "0.04", "HapticIntensity 0.8 AttackTime 0.02 ReleaseTime 0.02"),
       {0, 0.4, 0.8, 0.8, 0.8, 0.4}},
      {"released before it has risen",
       continuous("0", "0.02", "AttackTime 0.04 ReleaseTime 0.02"),
       {0, 0.25, 0.5, 0.25}},
      {"unsustained, it decays", continuous("0", "0.05", "Sustained 0 DecayTime 0.02"), {1, 0.5, 0, 0, 0}},
      {"unsustained, it decays to its end", continuous("0", "0.04", "Sustained 0"), {1, 0.75, 0.5, 0.25}},
      {"overlapping events add up, their sharpness is the weighted mean",
       continuous("0", "0.02", "HapticIntensity 0.2 HapticSharpness 0") + "," +
           continuous("0.01", "0.02", "HapticIntensity 0.6 HapticSharpness 1") + "," +
           continuous("0.02", "0.01", "HapticIntensity 0.9 HapticSharpness 1"),
       {0.2, 0.8, 1},
       {0, 0.75, 1}},
      {"a change multiplies intensity and shifts sharpness from its time on",
       continuous("0", "0.03") + "," + change("HapticIntensityControl", "0.02", "0.25") + "," +
           change("HapticSharpnessControl", "0.01", "-0.2"),
       {1, 1, 0.25},
       {0.5, 0.3, 0.3}},
      {"a curve is straight between its points and holds its last value",
       continuous("0", "0.06") + "," + curve("0.01", "0 0 0.02 1 0.02 0.4 0.03 0.2"),
       {1, 0, 0.5, 0.4, 0.2, 0.2}},
      {"of overlapping curves the one that began last rules, of equals the last in the document",
       continuous("0", "0.04") + "," + curve("0.02", "0 0.1 1 0.1") + "," + curve("0", "0 0.8 0.02 0.6 5 0.6") + "," +
           change("HapticIntensityControl", "0.03", "0.9") + "," + change("HapticIntensityControl", "0.03", "0.3"),
       {0.8, 0.7, 0.1, 0.3}},
      {"times are shifted by what holds when the event begins, and never below nothing",
       change("HapticReleaseTimeControl", "0.02", "0.02") + "," + change("HapticAttackTimeControl", "0", "-1") + "," +
           continuous("0", "0.01", "AttackTime 0.5") + "," + continuous("0.02", "0.01"),
       {1, 0, 1, 1, 0.5}},
      {"sound is silent and takes its time",
       R"({"Event": {"Time": 0, "EventType": "AudioContinuous", "EventDuration": 0.02, "EventParameters": [)" +
           parameters("AudioVolume 0.5") +
           R"(]}}, {"Event": {"Time": 0.02, "EventType": "AudioCustom", "EventWaveformPath": "a.wav"}})" + "," +
           change("AudioVolumeControl", "0", "0.1"),
       {0, 0, 0}},
  };
  for (const Row& row : rows) {
    const auto pattern = patternOfEntries(row.entries);
    ASSERT_TRUE(pattern) << row.what << ": " << pattern.error().localizedDescription;
    const std::vector<HapticSample>& samples = (*pattern)->curve().samples;
    ASSERT_EQ(samples.size(), row.intensity.size()) << row.what;
    EXPECT_DOUBLE_EQ((*pattern)->duration(), static_cast<double>(samples.size()) / 100) << row.what;
    for (std::size_t k = 0; k < samples.size(); ++k) {
      const double byDefault = row.intensity[k] > 0 ? 0.5 : 0;
      EXPECT_NEAR(samples[k].intensity, row.intensity[k], 1e-9) << row.what << ", sample " << k;
      EXPECT_NEAR(samples[k].sharpness, row.sharpness.empty() ? byDefault : row.sharpness[k], 1e-9) << row.what;
    }
  }
}

TEST(HapticPattern, WhatTheFormatDoesNotAllowIsNamed) {
  const std::vector<std::pair<std::string, std::string>> dictionaries = {
      {"{}", "At Pattern: the key is missing"},
      {R"({"Version": "1", "Pattern": []})", "At Version: a number was expected, but this is a string"},
      {R"({"Metadata": 1, "Pattern": []})", "At Metadata: an object was expected, but this is a number"},
      {R"({"Patern": [], "Pattern": []})", R"(At the top level: the key "Patern" is not allowed)"},
      // What it says is printed, and is not to pass for another line.
      {R"({"a\nplay: 800\u001b": 1})", R"(At the top level: the key "a?play: 800?" is not allowed)"},
  };
  for (const auto& [dictionary, message] : dictionaries) {
    const auto pattern = patternOf(dictionary);
    ASSERT_FALSE(pattern) << dictionary;
    EXPECT_EQ(pattern.error().localizedDescription, message);
  }

  const std::string click = R"({"Event": {"Time": 0, "EventType": "HapticTransient"}},)";
  const std::vector<std::pair<std::string, std::string>> entries = {
      {"{}", ": exactly one of Event, Parameter and ParameterCurve was expected"},
      {R"({"Event": {}, "Parameter": {}})", ": exactly one of Event, Parameter and ParameterCurve was expected"},
      {R"({"Sound": {}})", R"(: the key "Sound" is not allowed)"},
      {R"({"Event": {"Time": 0}})", ".Event.EventType: the key is missing"},
      {R"({"Event": {"EventType": "HapticTransient"}})", ".Event.Time: the key is missing"},
      {R"({"Event": {"EventType": "Buzz"}})", R"(.Event.EventType: "Buzz" is no name that is known here)"},
      {R"({"Event": {"Time": 0, "EventType": "HapticContinuous"}})", ".Event.EventDuration: the key is missing"},
      {R"({"Event": {"Time": 0, "EventType": "AudioCustom"}})", ".Event.EventWaveformPath: the key is missing"},
      {continuous("-0.1", "1"), ".Event.Time: a number from 0 to 60 was expected, but this is -0.1"},
      {continuous("40", "15", "ReleaseTime 10"), ".Event: the event ends after 65 seconds; a pattern has at most 60"},
      {continuous("0", "1", "HapticIntensity 1.5"),
       ".Event.EventParameters[0].ParameterValue: a number from 0 to 1 was expected, but this is 1.5"},
      {continuous("0", "1", "Sustained 0.5"), ".Event.EventParameters[0].ParameterValue: 0 or 1 was expected"},
      {change("HapticIntensity", "0", "1"),
       R"(.Parameter.ParameterID: "HapticIntensity" is no name that is known here)"},
      {change("HapticSharpnessControl", "0", "-2"),
       ".Parameter.ParameterValue: a number from -1 to 1 was expected, but this is -2"},
      {curve("0", ""), ".ParameterCurve.ParameterCurveControlPoints: a curve needs a control point"},
      {curve("0", "0.5 1 0.25 1"),
       ".ParameterCurve.ParameterCurveControlPoints[1].Time: this is before the point in front of it"},
  };
  for (const auto& [entry, message] : entries) {
    const auto pattern = patternOfEntries(click + entry);
    ASSERT_FALSE(pattern) << entry;
    EXPECT_EQ(pattern.error().localizedDescription, "At Pattern[1]" + message);
  }
}

std::string repeated(const std::string& element, std::size_t count, const std::string& separator = " ") {
  std::string text = element;
  for (std::size_t i = 1; i < count; ++i) text += separator + element;
  return text;
}

TEST(HapticPattern, BoundsAreMetQuicklyAndNamed) {
  const std::string value = "HapticIntensity 1";
  const struct {
    std::string allowed, refused, message;
  } rows[] = {
      {repeated(continuous("0", "60"), limits::kHapticEntries, ","), repeated("{}", 1'000'000, ","),
       "At Pattern: at most 4096 elements are allowed, and this has more"},
      {continuous("0", "1", repeated(value, limits::kHapticEventParameters)),
       continuous("0", "1", repeated(value, limits::kHapticEventParameters + 1)),
       "At Pattern[0].Event.EventParameters: at most 64 elements are allowed, and this has more"},
      {curve("0", repeated("1 1", limits::kHapticControlPoints)),
       curve("0", repeated("1 1", limits::kHapticControlPoints + 1)),
       "At Pattern[0].ParameterCurve.ParameterCurveControlPoints: at most 512 elements are allowed, and this has more"},
      {continuous("59.999", "0.001") + "," + change("HapticReleaseTimeControl", "0", "60"),
       continuous("59.999", "0.01"),
       "At Pattern[0].Event: the event ends after 60.009 seconds; a pattern has at most 60"},
  };
  for (const auto& row : rows) {
    const auto start = std::chrono::steady_clock::now();
    const auto allowed = patternOfEntries(row.allowed);
    ASSERT_TRUE(allowed) << allowed.error().localizedDescription;
    EXPECT_LE((*allowed)->duration(), limits::kHapticSeconds);
    EXPECT_EQ(patternOfEntries(row.refused).error().localizedDescription, row.message);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  }
}

}  // namespace
}  // namespace quellaro
