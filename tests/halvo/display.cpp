#include "display.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <cstdlib>
#include <vector>

namespace quellaro {

namespace {

// Windows may go at any time; what is asked of one that has gone comes back empty.
int ignoreError(::Display* /*connection*/, XErrorEvent* /*error*/) { return 0; }

}  // namespace

Display::Display() {
  const std::string number = directory_ / "number";
  server_ = ChildProcess({"Xvfb", "-displayfd", "1", "-screen", "0", "1600x1200x24", "-nolisten", "tcp"}, number);
  waitUntil("the display does not come up", [&] { return readFile(number).ends_with('\n'); });
  const std::string text = readFile(number);
  const std::string name = ":" + text.substr(0, text.size() - 1);
  setenv("DISPLAY", name.c_str(), 1);
  XSetErrorHandler(ignoreError);
  connection_.reset(XOpenDisplay(name.c_str()));
  if (!connection_) throw std::runtime_error("no connection to " + name);
}

::Window Display::windowTitled(const std::string& beginning) const {
  ::Window found = None;
  waitUntil("no window is called " + beginning, [&] {
    ::Window root = None;
    ::Window parent = None;
    ::Window* children = nullptr;
    unsigned count = 0;
    XQueryTree(connection_.get(), this->root(), &root, &parent, &children, &count);
    for (unsigned i = 0; i < count; ++i)
      if (title(children[i]).starts_with(beginning)) found = children[i];
    XFree(children);
    return found != None;
  });
  return found;
}

std::string Display::title(::Window window) const {
  char* name = nullptr;
  if (XFetchName(connection_.get(), window, &name) == 0 || name == nullptr) return {};
  std::string title = name;
  XFree(name);
  return title;
}

void Display::resize(::Window window, unsigned width, unsigned height) const {
  XResizeWindow(connection_.get(), window, width, height);
  XSync(connection_.get(), False);
}

Bitmap Display::picture(::Window window) const {
  XWindowAttributes attributes;
  if (XGetWindowAttributes(connection_.get(), window, &attributes) == 0) return {};
  const auto width = static_cast<unsigned>(attributes.width);
  const auto height = static_cast<unsigned>(attributes.height);
  XImage* image = XGetImage(connection_.get(), window, 0, 0, width, height, AllPlanes, ZPixmap);
  if (image == nullptr) return {};
  Bitmap bitmap(attributes.width, attributes.height);
  for (int y = 0; y < bitmap.height; ++y)
    for (int x = 0; x < bitmap.width; ++x)
      bitmap.row(y)[x] = 0xFF000000 | static_cast<std::uint32_t>(XGetPixel(image, x, y));
  XDestroyImage(image);
  return bitmap;
}

void Display::send(XEvent event, long mask) const {
  XSendEvent(connection_.get(), event.xany.window, False, mask, &event);
  XSync(connection_.get(), False);
}

void Display::pressEscape(::Window window) const {
  XEvent event{};
  event.xkey.window = window;
  event.xkey.root = root();
  event.xkey.same_screen = True;
  event.xkey.keycode = XKeysymToKeycode(connection_.get(), XK_Escape);
  event.type = KeyPress;
  send(event, KeyPressMask);
  event.type = KeyRelease;
  send(event, KeyReleaseMask);
}

void Display::askToClose(::Window window) const {
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.message_type = XInternAtom(connection_.get(), "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(connection_.get(), "WM_DELETE_WINDOW", False));
  send(event, NoEventMask);
}

}  // namespace quellaro
