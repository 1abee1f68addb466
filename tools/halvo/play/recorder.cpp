#include "play/recorder.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "animation/halvo_animation_view.h"
#include "picture/png_writer.h"

namespace halvo {

using namespace quellaro;

namespace {

// Memory that pictures may take while they wait; then the frames wait for them.
constexpr std::size_t kBacklogBytes = std::size_t{128} << 20;

std::string pictureName(int number) {
  char name[32];
  std::snprintf(name, sizeof name, "frame_%04d.png", number);
  return name;
}

}  // namespace

Recorder::Recorder(std::shared_ptr<QLHalvoView> view, std::optional<std::string> directory)
    : view_(std::move(view)),
      directory_(std::move(directory)),
      writer_("halvo.recorder", QualityOfService::Background) {
  view_->animtionView()->setFrameHandler([this] { record(); });
}

Recorder::~Recorder() { view_->animtionView()->setFrameHandler({}); }

void Recorder::record() {
  view_->layoutIfNeeded();
  const CGSize size = view_->bounds().size;
  const int width = static_cast<int>(size.width);
  const int height = static_cast<int>(size.height);
  if (picture_.width != width || picture_.height != height) picture_ = Bitmap(width, height);
  // Not through the view's own drawing: a window that shows it has to see the change, too.
  compositor_.draw(*view_->layer(), picture_);
  if (contactSheet_) contactSheet_->add(picture_);
  if (!directory_) return;

  const std::size_t bytes = picture_.pixels.size() * sizeof picture_.pixels[0];
  if (backlog_->bytes + bytes > kBacklogBytes) writer_.sync([] {});
  backlog_->bytes += bytes;
  writer_.async([backlog = backlog_, bytes, picture = picture_, path = *directory_ + "/" + pictureName(++frames_)] {
    auto error = writePng(picture, path);
    if (error && !backlog->error) {
      error->localizedDescription = path + ": " + error->localizedDescription;
      backlog->error = std::move(error);
    }
    backlog->bytes -= bytes;
  });
}

std::optional<NSError> Recorder::writeContactSheet(const std::string& path) const {
  if (!contactSheet_ || contactSheet_->isEmpty()) return NSError{"", 0, "no frame was shown"};
  return writePng(contactSheet_->picture(), path);
}

std::optional<NSError> Recorder::finish() {
  std::optional<NSError> error;
  writer_.sync([&] { error = backlog_->error; });
  return error;
}

}  // namespace halvo
