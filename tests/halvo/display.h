#pragma once

#include <X11/Xlib.h>

#include <memory>
#include <string>

#include "platform/quartzcore/bitmap.h"
#include "support/child_process.h"
#include "support/temporary_directory.h"

namespace quellaro {

// A display of the test's own, which programs that are started from now on find. Nobody manages its windows.
class Display {
 public:
  Display();

  // Waits for the window with a title that begins so.
  ::Window windowTitled(const std::string& beginning) const;
  std::string title(::Window window) const;
  void resize(::Window window, unsigned width, unsigned height) const;
  // What is seen of a window that lies uncovered on the screen. Empty when there is no such window, or a part of it is
  // not on the screen.
  Bitmap picture(::Window window) const;
  void pressEscape(::Window window) const;
  // As the button in a window's frame does.
  void askToClose(::Window window) const;

 private:
  ::Window root() const { return DefaultRootWindow(connection_.get()); }
  void send(XEvent event, long mask) const;

  TemporaryDirectory directory_;
  ChildProcess server_;
  std::unique_ptr<::Display, int (*)(::Display*)> connection_{nullptr, XCloseDisplay};
};

}  // namespace quellaro
