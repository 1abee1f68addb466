#pragma once

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

#include "platform/quartzcore/bitmap.h"
#include "support/child_process.h"
#include "support/temporary_directory.h"

namespace quellaro {

// A display of the test's own, which programs that are started from now on find. Nobody manages its windows, which may
// go at any time: what is asked of one that has gone comes back empty.
class Display {
 public:
  Display() {
    const std::string number = directory_ / "number";
    server_ = ChildProcess({"Xvfb", "-displayfd", "1", "-screen", "0", "1600x1200x24", "-nolisten", "tcp"}, number);
    waitUntil("the display does not come up", [&] { return readFile(number).ends_with('\n'); });
    const std::string text = readFile(number);
    setenv("DISPLAY", (":" + text.substr(0, text.size() - 1)).c_str(), 1);
    XSetErrorHandler([](::Display*, XErrorEvent*) { return 0; });
    connection_.reset(XOpenDisplay(nullptr));
    if (!connection_) throw std::runtime_error("no connection to the display");
  }

  // Waits for the window with that title.
  ::Window windowTitled(const std::string& wanted) const {
    ::Window found = None;
    waitUntil("no window is called " + wanted, [&] {
      ::Window root = None;
      ::Window parent = None;
      ::Window* children = nullptr;
      unsigned count = 0;
      XQueryTree(display(), this->root(), &root, &parent, &children, &count);
      for (unsigned i = 0; i < count; ++i) {
        char* title = nullptr;
        if (XFetchName(display(), children[i], &title) != 0 && title != nullptr && title == wanted) found = children[i];
        XFree(title);
      }
      XFree(children);
      return found != None;
    });
    return found;
  }

  void resize(::Window window, unsigned width, unsigned height) const {
    XResizeWindow(display(), window, width, height);
    XSync(display(), False);
  }

  // What is seen of a window that lies uncovered on the screen.
  Bitmap picture(::Window window) const {
    XWindowAttributes attributes;
    if (XGetWindowAttributes(display(), window, &attributes) == 0) return {};
    XImage* image = XGetImage(display(), window, 0, 0, static_cast<unsigned>(attributes.width),
                              static_cast<unsigned>(attributes.height), AllPlanes, ZPixmap);
    if (image == nullptr) return {};
    Bitmap bitmap(attributes.width, attributes.height);
    for (int y = 0; y < bitmap.height; ++y)
      for (int x = 0; x < bitmap.width; ++x)
        bitmap.row(y)[x] = 0xFF000000 | static_cast<std::uint32_t>(XGetPixel(image, x, y));
    XDestroyImage(image);
    return bitmap;
  }

  // Held down, a key comes again and again until it is let go.
  void press(::Window window, KeySym key, int times = 1) const {
    XEvent event{};
    event.xkey.window = window;
    event.xkey.root = root();
    event.xkey.same_screen = True;
    event.xkey.keycode = XKeysymToKeycode(display(), key);
    // A key that is let go and pressed in the same moment is taken for one that is held down.
    event.xkey.time = time_ += 100;
    event.xkey.type = KeyPress;
    for (int i = 0; i < times; ++i) send(event, KeyPressMask);
    event.xkey.type = KeyRelease;
    send(event, KeyReleaseMask);
  }

  void pressEscape(::Window window) const { press(window, XK_Escape); }

  // `type` is MotionNotify, ButtonPress or ButtonRelease, of the left button.
  void point(::Window window, int type, int x, int y) const {
    XEvent event{};
    event.xbutton.type = type;
    event.xbutton.window = window;
    event.xbutton.root = root();
    event.xbutton.same_screen = True;
    event.xbutton.x = x;
    event.xbutton.y = y;
    if (type != MotionNotify) event.xbutton.button = Button1;
    send(event, type == MotionNotify ? PointerMotionMask : ButtonPressMask | ButtonReleaseMask);
  }

  // As the button in a window's frame does.
  void askToClose(::Window window) const {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(display(), "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display(), "WM_DELETE_WINDOW", False));
    send(event, NoEventMask);
  }

 private:
  ::Display* display() const { return connection_.get(); }
  ::Window root() const { return DefaultRootWindow(display()); }
  void send(XEvent event, long mask) const {
    XSendEvent(display(), event.xany.window, False, mask, &event);
    XSync(display(), False);
  }

  mutable Time time_ = 0;
  TemporaryDirectory directory_;
  ChildProcess server_;
  std::unique_ptr<::Display, int (*)(::Display*)> connection_{nullptr, XCloseDisplay};
};

}  // namespace quellaro
