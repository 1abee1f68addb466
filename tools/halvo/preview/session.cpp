#include "preview/session.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace halvo {

namespace {

// A position stays below the loop's end, where the next one begins.
constexpr double kLastMoment = 1e-6;

}  // namespace

std::optional<std::size_t> Session::frame() const {
  const auto at = step();
  return at ? std::optional(times_.steps()[*at].frame) : std::nullopt;
}

void Session::replaceTimes(LoopTimes times) {
  const auto before = step();
  const double offset = before ? position_ - times_.steps()[*before].start : 0;
  const auto frameBefore = frame();
  times_ = std::move(times);
  const auto now = frameBefore ? times_.stepOf(*frameBefore) : std::nullopt;
  if (!now) return moveTo(frameBefore ? 0 : position_);
  const double length = times_.endOf(*now) - times_.steps()[*now].start;
  moveTo(times_.steps()[*now].start + (offset < length ? offset : 0));
}

void Session::moveTo(double seconds) {
  position_ = std::clamp(seconds, 0.0, std::max(0.0, times_.duration() - kLastMoment));
  ++jumps_;
}

void Session::stepBy(std::ptrdiff_t steps) {
  isPaused_ = true;
  ++jumps_;
  const auto count = static_cast<std::ptrdiff_t>(times_.steps().size());
  if (count == 0) return;
  const auto at = step();
  // Before the first one there is the last one of the loop before.
  const std::ptrdiff_t from = at ? static_cast<std::ptrdiff_t>(*at) : (steps > 0 ? -1 : 0);
  const std::ptrdiff_t to = ((from + steps) % count + count) % count;
  moveTo(times_.steps()[static_cast<std::size_t>(to)].start);
}

void Session::press(PreviewKey key) {
  const auto flip = [](bool& value) { value = !value; };
  switch (key) {
    case PreviewKey::Pause:
      ++jumps_;
      return flip(isPaused_);
    case PreviewKey::Back:
      return stepBy(-1);
    case PreviewKey::Forward:
      return stepBy(1);
    case PreviewKey::First:
      return moveTo(times_.steps().empty() || !isPaused_ ? 0 : times_.steps().front().start);
    case PreviewKey::Last:
      return moveTo(times_.steps().empty() ? 0 : times_.steps().back().start);
    case PreviewKey::Faster:
    case PreviewKey::Slower:
      ++jumps_;
      slowness_ = std::clamp(slowness_ + (key == PreviewKey::Slower ? 1 : -1), 0, kSlowest);
      return;
    case PreviewKey::Ground:
      look_.ground = static_cast<PreviewGround>((static_cast<int>(look_.ground) + 1) % 3);
      return;
    case PreviewKey::Onion:
      return flip(look_.onion);
    case PreviewKey::Fit:
      return flip(look_.fit);
    case PreviewKey::Source:
      return flip(look_.source);
    case PreviewKey::Findings:
      return flip(look_.findings);
    case PreviewKey::Help:
      return flip(look_.help);
  }
}

void Session::grab(double seconds) {
  isHeld_ = true;
  moveTo(seconds);
}

void Session::advance(double now) {
  const double passed = std::max(0.0, now - since_);
  since_ = now;
  if (!isRunning()) return;
  const auto before = step();
  const double reached = position_ + passed * speed();
  const double loops = std::floor(reached / times_.duration());
  position_ = std::max(0.0, reached - loops * times_.duration());
  loops_ += static_cast<std::uint64_t>(loops);
  countSteps(before, static_cast<std::uint64_t>(loops));
}

void Session::countSteps(std::optional<std::size_t> from, std::uint64_t loops) {
  const auto index = [](std::optional<std::size_t> step) { return step ? *step + 1 : 0; };
  const std::uint64_t gone = index(step()) + loops * times_.steps().size() - index(from);
  if (gone == 0) return;
  // Between the loop's start and its first frame there is nothing to be shown.
  shown_ += step() ? 1 : 0;
  dropped_ += gone - (step() ? 1 : 0);
}

std::optional<double> Session::nextChange() const {
  if (!isRunning()) return std::nullopt;
  const auto at = step();
  const double next = at ? times_.endOf(*at) : times_.steps().empty() ? times_.duration() : times_.steps()[0].start;
  return since_ + std::max(0.0, next - position_) / speed();
}

std::optional<double> Session::timeOf(double position) const {
  if (!isRunning() || position <= position_) return std::nullopt;
  return since_ + (position - position_) / speed();
}

}  // namespace halvo
