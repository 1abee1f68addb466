#include "preview/source_pictures.h"

#include <algorithm>
#include <utility>

#include "import/motion_frames.h"
#include "platform/dispatch/main_queue.h"

namespace halvo {

using namespace quellaro;

namespace {

// All that are kept; a loop of some seconds in a usual window.
constexpr std::size_t kKeptPixels = std::size_t{48} << 20;

}  // namespace

SourcePictures::SourcePictures(std::function<void()> onArrival)
    : onArrival_(std::move(onArrival)), self_(std::make_shared<SourcePictures*>(this)) {}

SourcePictures::~SourcePictures() {
  queue_.sync([] {});
}

const Bitmap* SourcePictures::show(const ImportedDrawing& drawing, int side) {
  const auto found =
      std::ranges::find_if(pictures_, [&](const Picture& picture) { return picture.isOf(drawing, side); });
  if (found == pictures_.end())
    begin(drawing, side);
  else
    pictures_.splice(pictures_.begin(), pictures_, found);
  if (pictures_.empty()) return nullptr;
  problem_ = pictures_.front().problem;
  return problem_.empty() ? &pictures_.front().bitmap : nullptr;
}

void SourcePictures::begin(const ImportedDrawing& drawing, int side) {
  if (std::exchange(isDrawing_, true)) return;
  queue_.async(
      [weak = std::weak_ptr(self_), file = drawing.file, stamp = drawing.stamp, frame = drawing.motionFrame, side] {
        const auto picture = std::make_shared<Picture>(Picture{file, stamp, frame, side, {}, ""});
        auto drawn = frame ? drawMotionFrame(file, *frame, side) : drawSourceFile(file, side);
        if (auto* bitmap = std::get_if<Bitmap>(&drawn))
          picture->bitmap = std::move(*bitmap);
        else
          picture->problem = std::get<ArtError>(drawn).reason;
        MainQueue::shared().async([weak, picture] {
          if (const auto self = weak.lock()) (*self)->arrive(std::move(*picture));
        });
      });
}

void SourcePictures::arrive(Picture picture) {
  isDrawing_ = false;
  pictures_.push_front(std::move(picture));
  std::size_t pixels = 0;
  for (auto each = pictures_.begin(); each != pictures_.end();) {
    pixels += each->bitmap.pixels.size();
    each = pixels > kKeptPixels && each != pictures_.begin() ? pictures_.erase(each) : std::next(each);
  }
  onArrival_();
}

}  // namespace halvo
