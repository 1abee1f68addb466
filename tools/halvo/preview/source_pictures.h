#pragma once

#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>

#include "platform/dispatch/serial_queue.h"
#include "platform/quartzcore/bitmap.h"
#include "preview/preview_source.h"

namespace halvo {

// Drawings as their makers' programs show them, drawn beside the main thread, one at a time. Main thread only.
class SourcePictures {
 public:
  // `onArrival` is called on the main queue when there is another one.
  explicit SourcePictures(std::function<void()> onArrival);
  ~SourcePictures();
  SourcePictures(const SourcePictures&) = delete;
  SourcePictures& operator=(const SourcePictures&) = delete;

  // The picture of a drawing; while it is not there yet, the one that was shown last. Null when there is none at all.
  const quellaro::Bitmap* show(const ImportedDrawing& drawing, int side);
  // Why the last one could not be drawn; empty when it could.
  const std::string& problem() const { return problem_; }

 private:
  struct Picture {
    std::string file;
    std::string stamp;
    std::optional<std::size_t> motionFrame;
    int side = 0;
    quellaro::Bitmap bitmap;
    std::string problem;

    bool isOf(const ImportedDrawing& drawing, int wanted) const {
      return file == drawing.file && stamp == drawing.stamp && motionFrame == drawing.motionFrame && side == wanted;
    }
  };

  void begin(const ImportedDrawing& drawing, int side);
  void arrive(Picture picture);

  std::function<void()> onArrival_;
  std::list<Picture> pictures_;  // the one that was shown last is in front
  bool isDrawing_ = false;
  std::string problem_;
  std::shared_ptr<SourcePictures*> self_;  // for what arrives when this is gone
  quellaro::SerialQueue queue_{"halvo.source", quellaro::QualityOfService::Default};
};

}  // namespace halvo
