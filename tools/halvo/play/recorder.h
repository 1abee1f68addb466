#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "animation/halvo_view.h"
#include "picture/contact_sheet.h"
#include "platform/dispatch/serial_queue.h"
#include "platform/foundation/error.h"
#include "platform/quartzcore/bitmap.h"
#include "platform/quartzcore/compositor.h"

namespace halvo {

// Draws every frame that a view shows into memory, at the moment it is shown, and writes each as a picture if there is
// a directory for it: frame_0001.png, frame_0002.png and so on. Pictures are encoded beside the main thread, so that
// the frames stay on time.
class Recorder {
 public:
  Recorder(std::shared_ptr<quellaro::QLHalvoView> view, std::optional<std::string> directory);
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;
  ~Recorder();

  // Keeps a small picture of each frame as well, for writeContactSheet.
  void keepContactSheet() { contactSheet_.emplace(); }
  // Fails when nothing was kept.
  std::optional<quellaro::NSError> writeContactSheet(const std::string& path) const;
  // Waits until all pictures are written; tells why one could not be.
  std::optional<quellaro::NSError> finish();

 private:
  // Pictures that wait to be written, and the first thing that went wrong.
  struct Backlog {
    std::atomic<std::size_t> bytes = 0;
    std::optional<quellaro::NSError> error;
  };

  void record();

  std::shared_ptr<quellaro::QLHalvoView> view_;
  std::optional<std::string> directory_;
  quellaro::Compositor compositor_;
  quellaro::Bitmap picture_;
  int frames_ = 0;
  std::optional<ContactSheet> contactSheet_;
  std::shared_ptr<Backlog> backlog_ = std::make_shared<Backlog>();
  quellaro::SerialQueue writer_;
};

}  // namespace halvo
