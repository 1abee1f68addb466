#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "check/output.h"

namespace halvo {

namespace {

constexpr std::string_view kBold = "\033[1m";
constexpr std::string_view kDim = "\033[2m";
constexpr std::string_view kPlain = "\033[0m";

std::string_view colorOf(Severity severity) {
  constexpr std::string_view kColors[] = {"\033[1;36m", "\033[1;33m", "\033[1;31m"};
  return kColors[static_cast<std::size_t>(severity)];
}

class Writer {
 public:
  explicit Writer(bool withColor) : withColor_(withColor) {}

  void write(const FindingGroup& group) {
    const Finding& first = group.first;
    const FindingKind& kind = kindOf(first.id);
    paint(colorOf(kind.severity), nameOf(kind.severity));
    text_ += ": ";
    paint(kBold, titleOf(first));
    paint(kDim, " [" + std::string(kind.name) + "]");
    text_ += '\n';
    line("at", placeOf(first) + elsewhere(group));
    line("player", kind.player);
    line("instead", kind.instead);
    text_ += '\n';
  }
  void write(std::string_view text) { text_ += text; }
  void paint(std::string_view color, std::string_view text) {
    if (withColor_) text_ += color;
    text_ += text;
    if (withColor_) text_ += kPlain;
  }
  std::string take() { return std::move(text_); }

 private:
  static std::string titleOf(const Finding& finding) {
    std::string what = finding.what + (finding.howFar.empty() ? "" : ", " + finding.howFar);
    if (finding.element.empty()) return what;
    const std::string id = finding.elementId.empty() ? "" : " id=\"" + finding.elementId + "\"";
    const std::string tag = "<" + finding.element + id + ">";
    return finding.what == "<" + finding.element + ">" ? tag : what + " on " + tag;
  }

  static std::string elsewhere(const FindingGroup& group) {
    if (group.count == 1) return "";
    const std::string places = std::to_string(group.count) + " places";
    if (group.frames.size() <= 1) return " (" + places + ")";
    return " (" + (group.count == group.frames.size() ? "" : places + " in ") + "frames " + rangesOf(group.frames) +
           ")";
  }

  void line(std::string_view label, std::string_view text) {
    std::string padded(label);
    padded.resize(8, ' ');
    text_ += "    ";
    paint(kDim, padded);
    text_.append(text).append("\n");
  }

  bool withColor_;
  std::string text_;
};

std::string counted(std::size_t count, const char* noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string factsText(const CueFacts& facts) {
  std::string text = counted(facts.frames, "frame");
  const auto add = [&](const char* name, const std::optional<double>& end) {
    if (end) text += std::string(", ") + name + " " + secondsText(*end);
  };
  add("animation", facts.animationEnd);
  add("sound", facts.soundEnd);
  add("haptics", facts.hapticsEnd);
  return text;
}

std::string decibels(double value, const char* unit) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%.1f %s", value, unit);
  return text.data();
}

std::string soundText(const SoundFacts& sound) {
  std::string text;
  const auto add = [&](const std::string& fact) { text += (text.empty() ? "sound: " : ", ") + fact; };
  add(secondsText(sound.seconds));
  if (sound.loudness) add(decibels(*sound.loudness, "LUFS"));
  if (sound.truePeak) add("true peak " + decibels(*sound.truePeak, "dB"));
  if (sound.firstHeard) add("first heard after " + std::to_string(std::lround(*sound.firstHeard * 1000)) + " ms");
  return text + "\n";
}

std::string distanceText(const std::vector<double>& moments, double moment, const char* name) {
  if (moments.empty()) return "";
  const auto distance = std::lround((nearestOf(moments, moment) - moment) * 1000);
  if (distance == 0) return std::string(", ") + name + " with it";
  return std::string(", ") + name + " " + std::to_string(std::labs(distance)) + " ms " +
         (distance > 0 ? "later" : "earlier");
}

// What is felt, or else what is heard, and how far off the rest is.
std::string momentsText(const Moments& moments) {
  constexpr std::size_t kMost = 12;
  const bool isFelt = !moments.taps.empty();
  const std::vector<double>& leading = isFelt ? moments.taps : moments.sounds;
  std::string text;
  for (std::size_t i = 0; i < leading.size() && i < kMost; ++i) {
    const std::string distances = (isFelt ? distanceText(moments.sounds, leading[i], "sound") : "") +
                                  distanceText(moments.pictures, leading[i], "picture");
    if (!distances.empty()) text += (isFelt ? "tap at " : "sound at ") + secondsText(leading[i]) + distances + "\n";
  }
  if (!text.empty() && leading.size() > kMost) text += std::to_string(leading.size() - kMost) + " more\n";
  return text;
}

}  // namespace

bool wantsColor() {
  const char* const terminal = std::getenv("TERM");
  return isatty(STDOUT_FILENO) == 1 && std::getenv("NO_COLOR") == nullptr && terminal != nullptr &&
         std::string_view(terminal) != "dumb";
}

std::string placeOf(const Finding& finding) {
  std::string place = finding.file;
  if (finding.frame) place += ", frame " + std::to_string(*finding.frame);
  if (finding.position) place += ", line " + std::to_string(finding.position->line);
  if (finding.position && finding.position->column > 0) place += ", column " + std::to_string(finding.position->column);
  return place;
}

std::string findingsText(const Report& report, bool withColor) {
  Writer writer(withColor);
  for (const FindingGroup* group : report.groups()) writer.write(*group);
  if (report.leftOut() > 0) writer.write(counted(report.leftOut(), "further finding") + " left out\n\n");
  return writer.take();
}

std::string reportText(const std::string& source, const Report& report, const CueFacts& facts, bool withColor) {
  Writer writer(withColor);
  writer.write(findingsText(report, withColor));
  if (facts.sound) writer.write(soundText(*facts.sound));
  writer.write(momentsText(facts.moments));
  writer.write(source + ": ");
  const std::size_t errors = report.count(Severity::Error);
  const std::size_t warnings = report.count(Severity::Warning);
  const std::size_t notes = report.count(Severity::Note);
  if (report.isClean())
    writer.paint("\033[1;32m", "clean");
  else
    writer.paint(colorOf(errors > 0 ? Severity::Error : Severity::Warning),
                 counted(errors, "error") + ", " + counted(warnings, "warning"));
  if (notes > 0) writer.write(", " + counted(notes, "note"));
  writer.write(" (" + factsText(facts) + ")\n");
  return writer.take();
}

}  // namespace halvo
