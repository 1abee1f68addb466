#include "preview/preview_window.h"

#include <SDL2/SDL.h>

#include <algorithm>
#include <utility>

#include "platform/dispatch/main_queue.h"
#include "preview/frame_report.h"

namespace halvo {

using namespace quellaro;

namespace {

// The time line moves on this often, where frames change less often.
constexpr double kTimeLineInterval = 1.0 / 30;

std::optional<PreviewKey> keyOf(SDL_Keycode code) {
  switch (code) {
    case SDLK_SPACE:
      return PreviewKey::Pause;
    case SDLK_LEFT:
      return PreviewKey::Back;
    case SDLK_RIGHT:
      return PreviewKey::Forward;
    case SDLK_HOME:
      return PreviewKey::First;
    case SDLK_END:
      return PreviewKey::Last;
    case SDLK_UP:
      return PreviewKey::Faster;
    case SDLK_DOWN:
      return PreviewKey::Slower;
    case SDLK_b:
      return PreviewKey::Ground;
    case SDLK_o:
      return PreviewKey::Onion;
    case SDLK_f:
      return PreviewKey::Fit;
    case SDLK_s:
      return PreviewKey::Source;
    case SDLK_c:
      return PreviewKey::Findings;
    case SDLK_h:
      return PreviewKey::Help;
    default:
      return std::nullopt;
  }
}

// Held down, these go on and on; others would flicker.
bool mayRepeat(PreviewKey key) { return key == PreviewKey::Back || key == PreviewKey::Forward; }

std::unique_ptr<SoundTrack> soundOf(const PreviewSource& source) {
  if (!source.parts.sound) return nullptr;
  return std::make_unique<SoundTrack>(source.soundFile, source.parts.soundStart, source.parts.sound->duration());
}

// The window is about one source: where that lies is known.
std::string shortened(const std::string& problem, const PreviewSource& source) {
  const std::string start = source.directory.ends_with('/') ? source.directory : source.directory + "/";
  return problem.starts_with(start) ? problem.substr(start.size()) : problem;
}

std::string notesOf(const PreviewSource& source) {
  std::string text;
  for (const std::string& note : source.parts.notes) text += (text.empty() ? "" : "; ") + shortened(note, source);
  return text;
}

}  // namespace

PreviewWindow::PreviewWindow(std::shared_ptr<const PreviewSource> source, std::optional<double> scale)
    : source_(std::move(source)),
      session_(source_->times),
      sound_(soundOf(*source_)),
      pictures_([this] { ++changes_; }),
      scale_(scale),
      problem_(notesOf(*source_)) {
  begin(MainQueue::shared().clock().now());
}

void PreviewWindow::replaceSource(std::shared_ptr<const PreviewSource> source) {
  source_ = std::move(source);
  session_.replaceTimes(source_->times);
  sound_ = soundOf(*source_);
  problem_ = notesOf(*source_);
  ++changes_;
  layOut();
}

void PreviewWindow::setProblem(const std::string& problem) {
  problem_ = shortened(problem, *source_);
  ++changes_;
}

void PreviewWindow::layOut() {
  if (layout_.width == 0) return;
  const SheetSource& parts = source_->parts;
  layout_ = layOutPreview(layout_.width, layout_.height, scale_.value_or(density_),
                          {parts.sound.has_value(), parts.haptics.has_value(), source_->times.duration()});
  timeLine_.forget();
  isStale_ = true;
}

void PreviewWindow::resize(int width, int height, double density) {
  layout_.width = width;
  layout_.height = height;
  density_ = density;
  ++changes_;
  layOut();
}

void PreviewWindow::advance(double now) {
  now_ = now;
  session_.advance(now);
  // The picture waits for a sound that had to be got ready.
  if (sound_ && sound_->follow(session_)) session_.rest(MainQueue::shared().clock().now());
}

std::optional<double> PreviewWindow::nextAdvance() const {
  const auto change = session_.nextChange();
  if (!change) return std::nullopt;
  double next = std::min(*change, drawnAt_ + kTimeLineInterval);
  if (const auto start = sound_ ? session_.timeOf(sound_->start()) : std::nullopt) next = std::min(next, *start);
  return next;
}

bool PreviewWindow::needsDisplay() const {
  return isStale_ || drawnStage_ != stageKey() || (session_.isRunning() && now_ >= drawnAt_ + kTimeLineInterval);
}

void PreviewWindow::display(Compositor&, Bitmap& bitmap) {
  if (bitmap.width != layout_.width || bitmap.height != layout_.height) return;
  const auto part = [&](const PixelArea& area) {
    return Surface(bitmap.row(area.top) + area.left, area.width, area.height, static_cast<std::size_t>(bitmap.width));
  };
  const StageExtras beside = extras();
  if (drawnStage_ != stageKey()) stage_.draw(*source_, session_, beside, part(layout_.stage), layout_.scale);
  timeLine_.draw(*source_, layout_, session_, part(layout_.strip));
  drawnStage_ = stageKey();
  drawnAt_ = now_;
  isStale_ = false;
}

StageExtras PreviewWindow::extras() {
  StageExtras extras;
  extras.problem = problem_;
  const auto frame = session_.frame();
  if (session_.look().findings)
    extras.findings = frame ? frameReport(*source_, *frame) : std::vector<std::string>{"There is no frame yet"};
  if (!session_.look().source) return extras;
  if (frame && *frame < source_->drawings.size() && canImportArt()) {
    extras.source =
        pictures_.show(*source_->drawings[*frame], StageDrawing::sourceSide(layout_.stage.width, layout_.stage.height));
    extras.sourceProblem = pictures_.problem().empty() ? "one moment" : pictures_.problem();
  } else {
    extras.sourceProblem = "no drawing: this was not imported";
  }
  return extras;
}

void PreviewWindow::used() {
  isStale_ = true;
  advance(MainQueue::shared().clock().now());
}

void PreviewWindow::point(double x, double y, bool isPressed) {
  if (isPressed) isDragging_ = layout_.strip.contains(x, y);
  if (!isDragging_) return;
  session_.grab(layout_.secondsAt(x));
  used();
}

void PreviewWindow::handle(const SDL_Event& event) {
  if (event.type == SDL_KEYDOWN) {
    const auto key = keyOf(event.key.keysym.sym);
    if (!key || (event.key.repeat != 0 && !mayRepeat(*key))) return;
    session_.advance(MainQueue::shared().clock().now());
    session_.press(*key);
    used();
  } else if (event.type == SDL_MOUSEBUTTONDOWN && event.button.button == SDL_BUTTON_LEFT) {
    point(event.button.x * density_, event.button.y * density_, true);
  } else if (event.type == SDL_MOUSEMOTION && (event.motion.state & SDL_BUTTON_LMASK) != 0) {
    point(event.motion.x * density_, event.motion.y * density_, false);
  } else if (event.type == SDL_MOUSEBUTTONUP && event.button.button == SDL_BUTTON_LEFT && isDragging_) {
    isDragging_ = false;
    session_.letGo();
    used();
  }
}

}  // namespace halvo
