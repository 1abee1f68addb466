#include "platform/corehaptics/pattern_reader.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <utility>

#include "platform/corehaptics/haptic_error.h"
#include "platform/foundation/json/json_decoder.h"
#include "platform/foundation/memory/limits.h"
#include "platform/foundation/text/numbers.h"

namespace quellaro {

namespace {

using limits::kHapticSeconds;

struct Range {
  double low;
  double high;
};

constexpr Range kShare{0, 1};
constexpr Range kSigned{-1, 1};
constexpr Range kTime{0, kHapticSeconds};
constexpr Range kTimeOffset{-kHapticSeconds, kHapticSeconds};

struct EventParameter {
  std::string_view name;
  Range range;
  // Absent for what changes a sound.
  void (*apply)(HapticEvent&, double) = nullptr;
};

constexpr EventParameter kEventParameters[] = {
    {"HapticIntensity", kShare, [](HapticEvent& event, double value) { event.intensity = value; }},
    {"HapticSharpness", kShare, [](HapticEvent& event, double value) { event.sharpness = value; }},
    {"AttackTime", kTime, [](HapticEvent& event, double value) { event.envelope.attack = value; }},
    {"DecayTime", kTime, [](HapticEvent& event, double value) { event.envelope.decay = value; }},
    {"ReleaseTime", kTime, [](HapticEvent& event, double value) { event.envelope.release = value; }},
    {"Sustained", kShare, [](HapticEvent& event, double value) { event.envelope.isSustained = value != 0; }},
    {"AudioVolume", kShare},
    {"AudioPan", kSigned},
    {"AudioPitch", kSigned},
    {"AudioBrightness", kShare},
};

struct Control {
  std::string_view name;
  Range range;
  // Absent for what changes a sound.
  std::optional<HapticControl> control = std::nullopt;
};

constexpr Control kControls[] = {
    {"HapticIntensityControl", kShare, HapticControl::Intensity},
    {"HapticSharpnessControl", kSigned, HapticControl::Sharpness},
    {"HapticAttackTimeControl", kTimeOffset, HapticControl::AttackTime},
    {"HapticDecayTimeControl", kTimeOffset, HapticControl::DecayTime},
    {"HapticReleaseTimeControl", kTimeOffset, HapticControl::ReleaseTime},
    {"AudioVolumeControl", kShare},
    {"AudioPanControl", kSigned},
    {"AudioPitchControl", kSigned},
    {"AudioBrightnessControl", kSigned},
    {"AudioAttackTimeControl", kTimeOffset},
    {"AudioDecayTimeControl", kTimeOffset},
    {"AudioReleaseTimeControl", kTimeOffset},
};

constexpr Control kUnknownControl{"", kShare};

std::string textOf(double value) {
  std::string text;
  appendShortest(text, value);
  return text;
}

double numberWithin(const JSONField& field, Range range) {
  const double value = field.number();
  if (value >= range.low && value <= range.high) return value;
  field.fail("a number from " + textOf(range.low) + " to " + textOf(range.high) + " was expected, but this is " +
             textOf(value));
  return range.low;
}

// The row of the table that the field names, or nothing after a failure.
template <class Row, std::size_t size>
const Row* rowNamed(const JSONField& field, const Row (&table)[size]) {
  const std::string name = field.string();
  const auto* row =
      std::find_if(std::begin(table), std::end(table), [&](const Row& each) { return each.name == name; });
  if (row != std::end(table)) return row;
  field.fail("\"" + name + "\" is no name that is known here");
  return nullptr;
}

void readEventParameter(const JSONField& field, HapticEvent& event) {
  field.allowOnly({"ParameterID", "ParameterValue"});
  const EventParameter* parameter = rowNamed(field.required("ParameterID"), kEventParameters);
  if (parameter == nullptr) return;
  const JSONField valueField = field.required("ParameterValue");
  const double value = numberWithin(valueField, parameter->range);
  if (parameter->name == "Sustained" && value != 0 && value != 1) valueField.fail("0 or 1 was expected");
  if (parameter->apply != nullptr) parameter->apply(event, value);
}

struct EventType {
  std::string_view name;
  bool isFelt;
  bool needsDuration;
  bool needsWaveform;
};

constexpr EventType kEventTypes[] = {
    {"HapticTransient", true, false, false},
    {"HapticContinuous", true, true, false},
    {"AudioContinuous", false, true, false},
    {"AudioCustom", false, false, true},
};

HapticEvent readEvent(const JSONField& field) {
  field.allowOnly({"Time", "EventType", "EventDuration", "EventParameters", "EventWaveformPath",
                   "EventWaveformLoopEnabled", "EventWaveformUseVolumeEnvelope"});
  HapticEvent event;
  const EventType* type = rowNamed(field.required("EventType"), kEventTypes);
  if (type == nullptr) return event;
  event.isFelt = type->isFelt;
  event.time = numberWithin(field.required("Time"), kTime);

  const JSONField duration = type->needsDuration ? field.required("EventDuration") : field.optional("EventDuration");
  if (duration.isPresent()) event.duration = numberWithin(duration, kTime);
  if (type->isFelt && !type->needsDuration) event.duration = kTransientSeconds;
  const JSONField waveform =
      type->needsWaveform ? field.required("EventWaveformPath") : field.optional("EventWaveformPath");
  if (waveform.isPresent()) waveform.string();

  if (const JSONField list = field.optional("EventParameters"); list.isPresent())
    for (const JSONField& parameter : list.elements(limits::kHapticEventParameters))
      readEventParameter(parameter, event);
  const double end = event.time + event.duration + event.envelope.release;
  if (end > kHapticSeconds)
    field.fail("the event ends after " + textOf(end) + " seconds; a pattern has at most " + textOf(kHapticSeconds));
  return event;
}

const Control& readControl(const JSONField& field) {
  const Control* control = rowNamed(field.required("ParameterID"), kControls);
  return control == nullptr ? kUnknownControl : *control;
}

void keep(const Control& control, std::vector<HapticControlPoint> points, HapticPatternContent& content) {
  if (control.control) content.changes.push_back({*control.control, std::move(points)});
}

void readParameter(const JSONField& field, HapticPatternContent& content) {
  field.allowOnly({"ParameterID", "ParameterValue", "Time"});
  const Control& control = readControl(field);
  const double time = numberWithin(field.required("Time"), kTime);
  keep(control, {{time, numberWithin(field.required("ParameterValue"), control.range)}}, content);
}

void readParameterCurve(const JSONField& field, HapticPatternContent& content) {
  field.allowOnly({"ParameterID", "ParameterCurveControlPoints", "Time"});
  const Control& control = readControl(field);
  const double start = numberWithin(field.required("Time"), kTime);
  std::vector<HapticControlPoint> points;
  const JSONField list = field.required("ParameterCurveControlPoints");
  for (const JSONField& point : list.elements(limits::kHapticControlPoints)) {
    point.allowOnly({"ParameterValue", "Time"});
    const JSONField timeField = point.required("Time");
    const double time = start + numberWithin(timeField, kTime);
    if (!points.empty() && time < points.back().time) timeField.fail("this is before the point in front of it");
    points.push_back({time, numberWithin(point.required("ParameterValue"), control.range)});
  }
  if (points.empty()) list.fail("a curve needs a control point");
  keep(control, std::move(points), content);
}

void readEntry(const JSONField& entry, HapticPatternContent& content) {
  entry.allowOnly({"Event", "Parameter", "ParameterCurve"});
  const JSONField event = entry.optional("Event");
  const JSONField parameter = entry.optional("Parameter");
  const JSONField curve = entry.optional("ParameterCurve");
  if (int{event.isPresent()} + int{parameter.isPresent()} + int{curve.isPresent()} != 1)
    return entry.fail("exactly one of Event, Parameter and ParameterCurve was expected");
  if (event.isPresent()) content.events.push_back(readEvent(event));
  if (parameter.isPresent()) readParameter(parameter, content);
  if (curve.isPresent()) readParameterCurve(curve, content);
}

}  // namespace

Result<HapticPatternContent> readHapticPattern(const JSONValue& dictionary) {
  JSONDecoder decoder(dictionary);
  const JSONField root = JSONField::root(decoder);
  HapticPatternContent content;
  root.allowOnly({"Version", "Metadata", "Pattern"});
  if (const JSONField version = root.optional("Version"); version.isPresent()) version.number();
  if (const JSONField metadata = root.optional("Metadata"); metadata.isPresent()) metadata.requireObject();
  for (const JSONField& entry : root.required("Pattern").elements(limits::kHapticEntries)) {
    readEntry(entry, content);
    if (decoder.error()) break;
  }
  if (decoder.error())
    return hapticError(CHHapticErrorCode::invalidPatternDictionary, decoder.error()->localizedDescription);
  return content;
}

}  // namespace quellaro
