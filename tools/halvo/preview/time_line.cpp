#include "preview/time_line.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "picture/page.h"

namespace halvo {

using namespace quellaro;

namespace {

constexpr const char* kGround = "#15171c";
constexpr const char* kLane = "#1d2027";
constexpr const char* kText = "#e3e6ec";
constexpr const char* kFaint = "#8b93a1";
constexpr const char* kLine = "#ffffff1c";
constexpr const char* kSound = "#5a6cf0";
constexpr const char* kLoudness = "#a9b4ff";
constexpr const char* kHaptics = "#e0559d";
constexpr const char* kSharpness = "#ffb45c";
constexpr const char* kHere = "#ffffff";

constexpr double kTickRoom = 60;  // units of the desktop

void drawMarks(const PreviewSource& source, const PreviewLayout& layout, Page& page) {
  double previous = -1;
  for (const LoopTimes::Step& step : source.times.steps()) {
    const double x = std::floor(layout.marks.columnOf(step.start));
    if (x != previous) page.verticalLine(x, layout.marks.top, layout.marks.bottom(), kFaint);
    previous = x;
  }
}

void drawAxis(const PreviewLayout& layout, Page& page) {
  const CurveLane& axis = layout.axis;
  const double step = tickStep(axis, kTickRoom * layout.scale);
  const int digits = std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-9)), 0, 9);
  const int ticks = static_cast<int>(axis.duration / step + 1e-6);
  const double top = layout.textTop + layout.textHeight * 2;
  for (int tick = 0; tick <= ticks; ++tick) {
    const double x = axis.columnOf(tick * step);
    page.verticalLine(x, top, axis.top, kLine);
    const std::string label = fixedNumber(tick * step, digits) + (tick == 0 ? " s" : "");
    const bool isLast = x + kTickRoom * layout.scale / 2 > axis.left + axis.width;
    page.text({tick == 0 ? axis.left : x, axis.top}, axis.height * 0.9, label, kFaint,
              tick == 0 ? Page::Align::Left
              : isLast  ? Page::Align::Right
                        : Page::Align::Middle);
  }
}

std::string standing(const PreviewSource& source, const Session& session) {
  const auto frame = session.frame();
  std::string text = frame ? "frame " + std::to_string(*frame + 1) : "no frame yet,";
  text += " of " + std::to_string(source.frames.size()) + "   " + fixedNumber(session.position(), 3) + " s";
  if (session.slowness() > 0) text += "   speed 1/" + std::to_string(1 << session.slowness());
  if (session.isPaused()) text += "   paused";
  return text;
}

std::string facts(const PreviewSource& source, const Session& session) {
  std::string text = session.look().fit ? "" : "1:1   ";
  if (session.dropped() > 0) text += std::to_string(session.dropped()) + " dropped   ";
  const std::size_t never = source.frames.size() - source.times.steps().size();
  if (never > 0) text += std::to_string(never) + " never seen   ";
  return text + (session.look().help ? "" : "h: keys");
}

}  // namespace

void TimeLine::draw(const PreviewSource& source, const PreviewLayout& layout, const Session& session,
                    const Surface& surface) {
  if (surface.width < 1 || surface.height < 1) return;
  if (!isDrawn_ || ground_.width != surface.width || ground_.height != surface.height) drawGround(source, layout);
  for (int y = 0; y < surface.height; ++y) std::copy_n(ground_.row(y), surface.width, surface.row(y));
  Page page;
  const std::string right = facts(source, session);
  const double end = layout.axis.left + layout.axis.width;
  const double rightWidth = Page::widthOf(right, layout.textHeight);
  page.text({layout.axis.left, layout.textTop}, layout.textHeight, standing(source, session), kText, Page::Align::Left,
            layout.axis.width - rightWidth - layout.textHeight);
  page.text({end, layout.textTop}, layout.textHeight, right, kFaint, Page::Align::Right, layout.axis.width);
  if (source.times.duration() > 0) {
    const double width = std::max(1.0, std::round(layout.scale));
    const double x = std::floor(layout.axis.columnOf(session.position()));
    const double top = layout.textTop + layout.textHeight * 1.5;
    page.rectangle({{x, top}, {width, layout.marks.bottom() - top}}, kHere);
  }
  page.flush(compositor_, surface);
}

void TimeLine::drawGround(const PreviewSource& source, const PreviewLayout& layout) {
  ground_ = Bitmap(layout.strip.width, layout.strip.height);
  isDrawn_ = true;
  Page page;
  page.rectangle({{0, 0}, {static_cast<double>(layout.strip.width), static_cast<double>(layout.strip.height)}},
                 kGround);
  for (const CurveLane* lane : {&layout.sound, &layout.haptics})
    if (lane->height > 0) page.rectangle({{lane->left, lane->top}, {lane->width, lane->height}}, kLane);
  if (source.times.duration() > 0) {
    drawAxis(layout, page);
    if (layout.sound.height > 0) {
      const SoundCurve curve = soundCurve(*source.parts.sound, source.parts.soundStart, layout.sound);
      page.path(curve.peaks, kSound);
      page.path(curve.loudness, kLoudness);
    }
    if (layout.haptics.height > 0) {
      const HapticCurvePaths curve = hapticPaths(*source.parts.haptics, layout.haptics);
      page.path(curve.strength, kHaptics);
      page.path(curve.sharpness, kSharpness, layout.scale);
    }
    drawMarks(source, layout, page);
  }
  page.flush(compositor_, ground_);
}

}  // namespace halvo
