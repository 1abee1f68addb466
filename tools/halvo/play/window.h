#pragma once

#include <memory>
#include <string>

#include "animation/halvo_view.h"
#include "options.h"

namespace halvo {

// A view in a window of the desktop. It draws when the view has changed and sleeps otherwise. Main thread only.
class Window {
 public:
  // Of that size in pixels. Null when there is no display, with the reason in `problem`.
  static std::unique_ptr<Window> open(std::shared_ptr<quellaro::QLHalvoView> view, Size size, std::string& problem);
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;
  ~Window();

  // Draws the view if it has changed.
  void refresh();
  // Sleeps until the main queue has something to do or the window has been used, and sees to the latter.
  void wait();
  // Somebody has closed it, or pressed Escape.
  bool isClosed() const;
  void setTitle(const std::string& title);

 private:
  struct Implementation;
  explicit Window(std::unique_ptr<Implementation> implementation);
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace halvo
