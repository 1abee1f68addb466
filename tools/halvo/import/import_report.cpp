#include "import/import_report.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "check/output.h"

namespace halvo {

namespace {

using quellaro::JSONWriter;

template <class... Values>
std::string formatted(const char* format, Values... values) {
  std::array<char, 256> text;
  std::snprintf(text.data(), text.size(), format, values...);
  return text.data();
}

std::string kilobytes(std::size_t bytes) { return formatted("%.1f KB", static_cast<double>(bytes) / 1024); }

// The frame that costs most of something, and how much.
struct Most {
  std::size_t value = 0;
  std::size_t frame = 0;  // from 1
};

Most most(const std::vector<FrameFigures>& frames, std::size_t FrameFigures::*figure) {
  const auto frame = std::max_element(frames.begin(), frames.end(), [&](const FrameFigures& a, const FrameFigures& b) {
    return a.*figure < b.*figure;
  });
  return {*frame.*figure, static_cast<std::size_t>(frame - frames.begin()) + 1};
}

std::string framesText(const std::vector<FrameFigures>& frames) {
  std::size_t total = 0;
  for (const FrameFigures& frame : frames) total += frame.bytes;
  const Most bytes = most(frames, &FrameFigures::bytes);
  const Most elements = most(frames, &FrameFigures::elements);
  const Most points = most(frames, &FrameFigures::points);
  return formatted("    frames  %s in all; at most %s (frame %zu), %zu elements (frame %zu), %zu points (frame %zu)\n",
                   kilobytes(total).c_str(), kilobytes(bytes.value).c_str(), bytes.frame, elements.value,
                   elements.frame, points.value, points.frame);
}

void writeFrame(JSONWriter& json, std::size_t number, const FrameFigures& frame) {
  const auto count = [&](const char* key, std::size_t value) {
    json.key(key).integer(static_cast<std::int64_t>(value));
  };
  json.beginObject().key("file").string(frame.file);
  count("frame", number);
  json.key("width").number(frame.width).key("height").number(frame.height);
  count("bytes", frame.bytes);
  count("elements", frame.elements);
  count("points", frame.points);
  json.endObject();
}

}  // namespace

std::string importText(const Outcome& outcome, const Report& report, bool withColor) {
  if (!outcome.isWritten) return findingsText(report, withColor);
  std::string text =
      reportText("written to " + outcome.target, report, outcome.facts, withColor) + framesText(outcome.frames);
  if (outcome.sound && outcome.sound->loudness)
    text += formatted("    sound   %.1f LUFS, true peak %.1f dB\n", *outcome.sound->loudness, outcome.sound->truePeak);
  return text;
}

std::string importJson(const Outcome& outcome, const Report& report) {
  return reportJson(outcome.target, report, outcome.facts, [&](JSONWriter& json) {
    json.key("written").boolean(outcome.isWritten).key("sources").beginArray();
    for (std::size_t i = 0; i < outcome.frames.size(); ++i) writeFrame(json, i + 1, outcome.frames[i]);
    json.endArray().key("loudness");
    const bool isMeasured = outcome.sound && outcome.sound->loudness;
    isMeasured ? json.number(*outcome.sound->loudness) : json.null();
    json.key("truePeak");
    isMeasured ? json.number(outcome.sound->truePeak) : json.null();
  });
}

}  // namespace halvo
