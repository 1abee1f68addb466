#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "animation/halvo_view.h"
#include "options.h"
#include "play/recorder.h"
#include "play/window.h"

namespace halvo {

// What the arguments say about the view of a play.
struct StageOptions {
  bool noView = false;
  quellaro::QLHalvoBackground background = quellaro::QLHalvoBackground::black;
  Size size;
  std::optional<std::string> recordDirectory;

  std::vector<Option> options();
};

enum class Screen { Desktop, Memory };

// The view of a play, and where it is to be seen: a window, or memory, where every frame is drawn all the same. Runs
// the main queue meanwhile.
class Stage {
 public:
  // Without a display the view is drawn into memory, a contact sheet of what was shown is left in the user's cache
  // directory, and both are said on standard error.
  Stage(const StageOptions& options, Screen screen);

  // Null when the play is to have none.
  const std::shared_ptr<quellaro::QLHalvoView>& view() const { return view_; }
  // Sleeps until something is due or the queue may have become idle, runs what is due and shows what that has changed.
  void turn();
  bool isClosed() const { return window_ && window_->isClosed(); }
  // What is going on, for the window's title.
  void setState(const std::string& state);
  // Whether everything that was to be recorded has been; what has not is said on standard error.
  bool finish();

 private:
  void leaveContactSheet() const;

  std::shared_ptr<quellaro::QLHalvoView> view_;
  std::unique_ptr<Window> window_;
  std::unique_ptr<Recorder> recorder_;
  bool isWithoutDisplay_ = false;
};

}  // namespace halvo
