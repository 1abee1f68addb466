#include "platform/corehaptics/haptic_pattern.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "platform/foundation/limits.h"

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

std::string parameter(const std::string& name, const std::string& value) {
  return R"({"ParameterID": ")" + name + R"(", "ParameterValue": )" + value + "}";
}

std::string continuous(const std::string& time, const std::string& duration, const std::string& parameters) {
  return R"({"Event": {"Time": )" + time + R"(, "EventType": "HapticContinuous", "EventDuration": )" + duration +
         R"(, "EventParameters": [)" + parameters + "]}}";
}

std::string change(const std::string& name, const std::string& time, const std::string& value) {
  return R"({"Parameter": {"ParameterID": ")" + name + R"(", "Time": )" + time + R"(, "ParameterValue": )" + value +
         "}}";
}

std::string curve(const std::string& name, const std::string& time, const std::string& points) {
  return R"({"ParameterCurve": {"ParameterID": ")" + name + R"(", "Time": )" + time +
         R"(, "ParameterCurveControlPoints": [)" + points + "]}}";
}

std::string point(const std::string& time, const std::string& value) {
  return R"({"Time": )" + time + R"(, "ParameterValue": )" + value + "}";
}

using Values = std::vector<double>;

TEST(HapticPattern, FeltCurvesWorkedOutByHand) {
  const std::string whole = parameter("HapticSharpness", "1");
  struct Row {
    const char* what;
    std::string entries;
    Values intensity, sharpness;
  };
  const std::vector<Row> rows = {
      {"nothing", "", {}, {}},
      {"a click is full for 30 ms",
       R"({"Event": {"Time": 0.01, "EventType": "HapticTransient"}})",
       {0, 1, 1, 1},
       {0, 0.5, 0.5, 0.5}},
      {"an event begins at the nearest sample and is felt for one at least",
       continuous("0.016", "0", whole) + "," + continuous("0.034", "0.001", whole),
       {0, 0, 1, 1},
       {0, 0, 1, 1}},
      {"rises, holds and fades",
       continuous("0", "0.04",
                  parameter("HapticIntensity", "0.8") + "," + parameter("AttackTime", "0.02") + "," +
                      parameter("ReleaseTime", "0.02") + "," + whole),
       {0, 0.4, 0.8, 0.8, 0.8, 0.4},
       {0, 1, 1, 1, 1, 1}},
      {"released before it has risen",
       continuous("0", "0.02", parameter("AttackTime", "0.04") + "," + parameter("ReleaseTime", "0.02") + "," + whole),
       {0, 0.25, 0.5, 0.25},
       {0, 1, 1, 1}},
      {"unsustained, it decays",
       continuous("0", "0.05", parameter("Sustained", "0") + "," + parameter("DecayTime", "0.02") + "," + whole),
       {1, 0.5, 0, 0, 0},
       {1, 1, 0, 0, 0}},
      {"unsustained, it decays to its end",
       continuous("0", "0.04", parameter("Sustained", "0") + "," + whole),
       {1, 0.75, 0.5, 0.25},
       {1, 1, 1, 1}},
      {"overlapping events add up, their sharpness is the weighted mean",
       continuous("0", "0.02", parameter("HapticIntensity", "0.2") + "," + parameter("HapticSharpness", "0")) + "," +
           continuous("0.01", "0.02", parameter("HapticIntensity", "0.6") + "," + whole) + "," +
           continuous("0.02", "0.01", parameter("HapticIntensity", "0.9") + "," + whole),
       {0.2, 0.8, 1},
       {0, 0.75, 1}},
      {"a change multiplies intensity and shifts sharpness from its time on",
       continuous("0", "0.03", "") + "," + change("HapticIntensityControl", "0.02", "0.25") + "," +
           change("HapticSharpnessControl", "0.01", "-0.2"),
       {1, 1, 0.25},
       {0.5, 0.3, 0.3}},
      {"a curve is straight between its points and holds its last value",
       continuous("0", "0.06", whole) + "," +
           curve("HapticIntensityControl", "0.01",
                 point("0", "0") + "," + point("0.02", "1") + "," + point("0.02", "0.4") + "," + point("0.03", "0.2")),
       {1, 0, 0.5, 0.4, 0.2, 0.2},
       {1, 0, 1, 1, 1, 1}},
      {"of overlapping curves the one that began last rules, of equals the last in the document",
       continuous("0", "0.04", whole) + "," +
           curve("HapticIntensityControl", "0.02", point("0", "0.1") + "," + point("1", "0.1")) + "," +
           curve("HapticIntensityControl", "0",
                 point("0", "0.8") + "," + point("0.02", "0.6") + "," + point("5", "0.6")) +
           "," + change("HapticIntensityControl", "0.03", "0.9") + "," +
           change("HapticIntensityControl", "0.03", "0.3"),
       {0.8, 0.7, 0.1, 0.3},
       {1, 1, 1, 1}},
      {"times are shifted by what holds when the event begins, and never below nothing",
       change("HapticReleaseTimeControl", "0.02", "0.02") + "," + change("HapticAttackTimeControl", "0", "-1") + "," +
           continuous("0", "0.01", parameter("AttackTime", "0.5") + "," + whole) + "," +
           continuous("0.02", "0.01", whole),
       {1, 0, 1, 1, 0.5},
       {1, 0, 1, 1, 1}},
      {"sound is silent and takes its time",
       R"({"Event": {"Time": 0, "EventType": "AudioContinuous", "EventDuration": 0.02, "EventParameters": [)" +
           parameter("AudioVolume", "0.5") +
           R"(]}}, {"Event": {"Time": 0.02, "EventType": "AudioCustom", "EventWaveformPath": "a.wav"}})" + "," +
           change("AudioVolumeControl", "0", "0.1"),
       {0, 0, 0},
       {0, 0, 0}},
  };
  for (const Row& row : rows) {
    const auto pattern = patternOfEntries(row.entries);
    ASSERT_TRUE(pattern) << row.what << ": " << pattern.error().localizedDescription;
    const std::vector<HapticSample>& samples = (*pattern)->curve().samples;
    ASSERT_EQ(samples.size(), row.intensity.size()) << row.what;
    EXPECT_DOUBLE_EQ((*pattern)->duration(), static_cast<double>(samples.size()) / 100) << row.what;
    for (std::size_t k = 0; k < samples.size(); ++k) {
      EXPECT_NEAR(samples[k].intensity, row.intensity[k], 1e-9) << row.what << ", sample " << k;
      EXPECT_NEAR(samples[k].sharpness, row.sharpness[k], 1e-9) << row.what << ", sample " << k;
    }
  }
}

TEST(HapticPattern, WhatTheFormatDoesNotAllowIsNamed) {
  const std::vector<std::pair<std::string, std::string>> dictionaries = {
      {"{}", "At Pattern: the key is missing"},
      {R"({"Version": "1", "Pattern": []})", "At Version: a number was expected, but this is a string"},
      {R"({"Metadata": 1, "Pattern": []})", "At Metadata: an object was expected, but this is a number"},
      {R"({"Patern": [], "Pattern": []})", R"(At the top level: the key "Patern" is not allowed)"},
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
      {continuous("-0.1", "1", ""), ".Event.Time: a number from 0 to 60 was expected, but this is -0.1"},
      {continuous("40", "15", parameter("ReleaseTime", "10")),
       ".Event: the event ends after 65 seconds; a pattern has at most 60"},
      {continuous("0", "1", parameter("HapticIntensity", "1.5")),
       ".Event.EventParameters[0].ParameterValue: a number from 0 to 1 was expected, but this is 1.5"},
      {continuous("0", "1", parameter("Sustained", "0.5")),
       ".Event.EventParameters[0].ParameterValue: 0 or 1 was expected"},
      {change("HapticIntensity", "0", "1"),
       R"(.Parameter.ParameterID: "HapticIntensity" is no name that is known here)"},
      {change("HapticSharpnessControl", "0", "-2"),
       ".Parameter.ParameterValue: a number from -1 to 1 was expected, but this is -2"},
      {curve("HapticIntensityControl", "0", ""),
       ".ParameterCurve.ParameterCurveControlPoints: a curve needs a control point"},
      {curve("HapticIntensityControl", "0", point("0.5", "1") + "," + point("0.25", "1")),
       ".ParameterCurve.ParameterCurveControlPoints[1].Time: this is before the point in front of it"},
  };
  for (const auto& [entry, message] : entries) {
    const auto pattern = patternOfEntries(click + entry);
    ASSERT_FALSE(pattern) << entry;
    EXPECT_EQ(pattern.error().localizedDescription, "At Pattern[1]" + message);
  }
}

std::string repeated(const std::string& element, std::size_t count) {
  std::string text = element;
  for (std::size_t i = 1; i < count; ++i) text += "," + element;
  return text;
}

TEST(HapticPattern, BoundsAreMetQuicklyAndNamed) {
  const std::string longest = continuous("0", "60", "");
  const std::string value = parameter("HapticIntensity", "1");
  struct Row {
    std::string allowed, refused, message;
  };
  const auto pointsOf = [](std::size_t count) {
    return curve("HapticIntensityControl", "0", repeated(point("1", "1"), count));
  };
  const std::vector<Row> rows = {
      {repeated(longest, limits::kHapticEntries), repeated("{}", 1'000'000),
       "At Pattern: at most 4096 elements are allowed, and this has more"},
      {continuous("0", "1", repeated(value, limits::kHapticEventParameters)),
       continuous("0", "1", repeated(value, limits::kHapticEventParameters + 1)),
       "At Pattern[0].Event.EventParameters: at most 64 elements are allowed, and this has more"},
      {pointsOf(limits::kHapticControlPoints), pointsOf(limits::kHapticControlPoints + 1),
       "At Pattern[0].ParameterCurve.ParameterCurveControlPoints: at most 512 elements are allowed, and this has more"},
      {continuous("59.999", "0.001", "") + "," + change("HapticReleaseTimeControl", "0", "60"),
       continuous("59.999", "0.01", ""),
       "At Pattern[0].Event: the event ends after 60.009 seconds; a pattern has at most 60"},
  };
  for (const Row& row : rows) {
    const auto start = std::chrono::steady_clock::now();
    const auto allowed = patternOfEntries(row.allowed);
    ASSERT_TRUE(allowed) << allowed.error().localizedDescription;
    EXPECT_LE((*allowed)->duration(), limits::kHapticSeconds);
    const auto refused = patternOfEntries(row.refused);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().localizedDescription, row.message);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  }
}

}  // namespace
}  // namespace quellaro
