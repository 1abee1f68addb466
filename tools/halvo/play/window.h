#pragma once

#include <memory>
#include <optional>
#include <string>

#include "animation/halvo_view.h"
#include "options.h"
#include "platform/quartzcore/bitmap.h"

union SDL_Event;

namespace quellaro {
class Compositor;
}

namespace halvo {

// What a window shows.
class WindowContent {
 public:
  WindowContent() = default;
  WindowContent(const WindowContent&) = delete;
  WindowContent& operator=(const WindowContent&) = delete;
  virtual ~WindowContent() = default;

  // The window's size in pixels, and how many of them one of the desktop's units is wide.
  virtual void resize(int width, int height, double density) = 0;
  virtual bool needsDisplay() const = 0;
  // Over what was drawn before; all of it after a resize.
  virtual void display(quellaro::Compositor& compositor, quellaro::Bitmap& bitmap) = 0;
  // Keys, buttons and the like.
  virtual void handle(const SDL_Event&) {}
};

// A window of the desktop. It draws when its content has changed and sleeps otherwise. Main thread only.
class Window {
 public:
  // Of that size in pixels. Null when there is no display, with the reason in `problem`.
  static std::unique_ptr<Window> open(std::shared_ptr<WindowContent> content, Size size, std::string& problem);
  static std::unique_ptr<Window> open(std::shared_ptr<quellaro::QLHalvoView> view, Size size, std::string& problem);
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;
  ~Window();

  // Draws the content if it has changed.
  void refresh();
  // Sleeps until the main queue has something to do, its clock shows `until`, or the window has been used, and sees to
  // the latter.
  void wait(std::optional<double> until = std::nullopt);
  // Somebody has closed it, or pressed Escape.
  bool isClosed() const;
  void setTitle(const std::string& title);

 private:
  struct Implementation;
  explicit Window(std::unique_ptr<Implementation> implementation);
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace halvo
