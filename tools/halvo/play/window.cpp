#include "play/window.h"

#include <SDL2/SDL.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/dispatch/main_queue.h"
#include "platform/quartzcore/compositor.h"
#include "play/queue_watcher.h"

namespace halvo {

using namespace quellaro;

namespace {

// SDL sleeps in whole milliseconds; what is nearer than this is left to the main queue, which is exact.
constexpr double kNear = 0.002;
constexpr int kSmallestSide = 16;

template <class Thing, void (*destroy)(Thing*)>
struct Destroy {
  void operator()(Thing* thing) const { destroy(thing); }
};
using WindowHandle = std::unique_ptr<SDL_Window, Destroy<SDL_Window, SDL_DestroyWindow>>;
using RendererHandle = std::unique_ptr<SDL_Renderer, Destroy<SDL_Renderer, SDL_DestroyRenderer>>;
using TextureHandle = std::unique_ptr<SDL_Texture, Destroy<SDL_Texture, SDL_DestroyTexture>>;

struct VideoSubsystem {
  VideoSubsystem() {
    // Ctrl-C ends the program as it does any other; the desktop's effects go on.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    // Not the drivers that only pretend, unless the environment names one.
    const bool hasServer = std::getenv("DISPLAY") != nullptr || std::getenv("WAYLAND_DISPLAY") != nullptr;
    SDL_SetHint(SDL_HINT_VIDEODRIVER, hasServer ? "x11,wayland,KMSDRM" : "KMSDRM");
    isReady = SDL_InitSubSystem(SDL_INIT_VIDEO) == 0;
  }
  ~VideoSubsystem() {
    if (isReady) SDL_QuitSubSystem(SDL_INIT_VIDEO);
  }
  VideoSubsystem(const VideoSubsystem&) = delete;
  VideoSubsystem& operator=(const VideoSubsystem&) = delete;
  bool isReady = false;
};

// As large as the window is in pixels.
class ViewContent final : public WindowContent {
 public:
  explicit ViewContent(std::shared_ptr<QLHalvoView> view) : view_(std::move(view)) {}
  void resize(int width, int height, double) override {
    view_->setFrame({{0, 0}, {static_cast<double>(width), static_cast<double>(height)}});
  }
  bool needsDisplay() const override { return view_->needsDisplay(); }
  void display(Compositor& compositor, Bitmap& bitmap) override { view_->display(compositor, bitmap); }

 private:
  std::shared_ptr<QLHalvoView> view_;
};

}  // namespace

struct Window::Implementation {
  VideoSubsystem video;
  std::shared_ptr<WindowContent> content;
  WindowHandle window;
  RendererHandle renderer;
  TextureHandle texture;
  Compositor compositor;
  Bitmap bitmap;
  std::optional<QueueWatcher> watcher;
  bool isClosed = false;
  // The window's content has been lost, or its size has changed.
  bool isExposed = true;

  bool open(Size size);
  void fitContent();
  void present() const;
  void handle(const SDL_Event& event);
};

bool Window::Implementation::open(Size size) {
  if (!video.isReady) return false;
  const Uint32 flags = SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI;
  window.reset(
      SDL_CreateWindow("halvo", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, size.width, size.height, flags));
  if (!window) return false;
  // All is drawn already: the display takes it as it is, which is quicker than the way round by a graphics library that
  // may have no card below it. Elsewhere there is no other way.
  if (SDL_GetCurrentVideoDriver() == std::string_view("x11"))
    renderer.reset(SDL_CreateRenderer(window.get(), -1, SDL_RENDERER_SOFTWARE));
  if (!renderer) renderer.reset(SDL_CreateRenderer(window.get(), -1, 0));
  if (!renderer) return false;
  SDL_SetWindowMinimumSize(window.get(), kSmallestSide, kSmallestSide);
  // On a dense display the window's own units are several pixels wide.
  int width = 0;
  if (SDL_GetRendererOutputSize(renderer.get(), &width, nullptr) == 0 && width > size.width) {
    const double density = static_cast<double>(width) / size.width;
    SDL_SetWindowSize(window.get(), static_cast<int>(std::lround(size.width / density)),
                      static_cast<int>(std::lround(size.height / density)));
  }
  watcher.emplace();
  return true;
}

void Window::Implementation::fitContent() {
  int width = 0;
  int height = 0;
  if (SDL_GetRendererOutputSize(renderer.get(), &width, &height) != 0 || width < 1 || height < 1) return;
  if (texture && bitmap.width == width && bitmap.height == height) return;
  int units = 0;
  SDL_GetWindowSize(window.get(), &units, nullptr);
  content->resize(width, height, units > 0 ? static_cast<double>(width) / units : 1);
  bitmap = Bitmap(width, height);
  texture.reset(
      SDL_CreateTexture(renderer.get(), SDL_PIXELFORMAT_ARGB8888, SDL_TEXTUREACCESS_STREAMING, width, height));
  // What is drawn hides what was there.
  SDL_SetTextureBlendMode(texture.get(), SDL_BLENDMODE_NONE);
}

void Window::Implementation::present() const {
  SDL_RenderCopy(renderer.get(), texture.get(), nullptr, nullptr);
  SDL_RenderPresent(renderer.get());
}

void Window::Implementation::handle(const SDL_Event& event) {
  if (event.type == SDL_QUIT || (event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_ESCAPE)) isClosed = true;
  if (event.type == SDL_RENDER_DEVICE_RESET) texture.reset();
  if (event.type == SDL_WINDOWEVENT || event.type == SDL_RENDER_TARGETS_RESET || event.type == SDL_RENDER_DEVICE_RESET)
    isExposed = true;
  watcher->handle(event);
  content->handle(event);
}

std::unique_ptr<Window> Window::open(std::shared_ptr<QLHalvoView> view, Size size, std::string& problem) {
  return open(std::make_shared<ViewContent>(std::move(view)), size, problem);
}

std::unique_ptr<Window> Window::open(std::shared_ptr<WindowContent> content, Size size, std::string& problem) {
  auto implementation = std::make_unique<Implementation>();
  implementation->content = std::move(content);
  if (!implementation->open(size)) {
    problem = SDL_GetError();
    return nullptr;
  }
  std::unique_ptr<Window> window(new Window(std::move(implementation)));
  window->refresh();
  return window;
}

Window::Window(std::unique_ptr<Implementation> implementation) : implementation_(std::move(implementation)) {}

Window::~Window() = default;

void Window::refresh() {
  Implementation& self = *implementation_;
  const bool wasExposed = std::exchange(self.isExposed, false);
  if (wasExposed) self.fitContent();
  if (!self.texture) return;
  if (self.content->needsDisplay()) {
    self.content->display(self.compositor, self.bitmap);
    SDL_UpdateTexture(self.texture.get(), nullptr, self.bitmap.pixels.data(),
                      self.bitmap.width * static_cast<int>(sizeof self.bitmap.pixels[0]));
    self.present();
  } else if (wasExposed) {
    self.present();
  }
}

void Window::wait(std::optional<double> until) {
  Implementation& self = *implementation_;
  const MainQueue& queue = MainQueue::shared();
  std::optional<double> deadline = queue.nextDeadline();
  if (until) deadline = std::min(*until, deadline.value_or(*until));
  const double left = deadline ? *deadline - queue.clock().now() : HUGE_VAL;
  self.watcher->resume();
  SDL_Event event;
  if (left < kNear) {
    MainQueue::shared().wait(std::max(left, 0.0));
  } else {
    const double millis = std::min((left - kNear / 2) * 1000, 1e9);
    if (SDL_WaitEventTimeout(&event, deadline ? static_cast<int>(millis) : -1) != 0) self.handle(event);
  }
  while (SDL_PollEvent(&event) != 0) self.handle(event);
}

bool Window::isClosed() const { return implementation_->isClosed; }

void Window::setTitle(const std::string& title) { SDL_SetWindowTitle(implementation_->window.get(), title.c_str()); }

}  // namespace halvo
