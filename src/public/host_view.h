#pragma once

#include <QuellaroHalvo/host_types.h>
#include <QuellaroHalvo/quellaro_halvo.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <utility>

namespace quellaro {

// Points, which are pixels when the view is drawn; y grows downwards.
struct CGPoint {
  double x = 0;
  double y = 0;
};
struct CGSize {
  double width = 0;
  double height = 0;
};
struct CGRect {
  CGPoint origin;
  CGSize size;
};

// The archive that views are written to and made from, kept in memory.
class NSCoder {
  struct Release {
    void operator()(quellaro_halvo_coder* coder) const { quellaro_halvo_coder_release(coder); }
  };

 public:
  NSCoder() : handle_(quellaro_halvo_coder_create()) {
    if (!handle_) throw std::bad_alloc();
  }
  quellaro_halvo_coder* handle() const { return handle_.get(); }

 private:
  std::unique_ptr<quellaro_halvo_coder, Release> handle_;
};

// The view that a host hands to the controller's play: a backdrop in one of two colours, and above it the animation,
// square, centred and as large as fits. The host draws it into pixels of its own whenever it needs display.
class QLHalvoView {
  struct Release {
    void operator()(quellaro_halvo_view* view) const { quellaro_halvo_view_release(view); }
  };

 public:
  // init: an empty rectangle at the origin. The three give null when memory is short.
  static std::shared_ptr<QLHalvoView> make() { return own(quellaro_halvo_view_create()); }
  // initWithFrame: null also for a frame that setFrame refuses.
  static std::shared_ptr<QLHalvoView> initWithFrame(CGRect frame) {
    return own(quellaro_halvo_view_create_with_frame(plain(frame)));
  }
  // initWithCoder: null also when no view has been encoded with it.
  static std::shared_ptr<QLHalvoView> initWithCoder(const NSCoder& coder) {
    return own(quellaro_halvo_view_create_with_coder(coder.handle()));
  }
  QLHalvoView(const QLHalvoView&) = delete;
  QLHalvoView& operator=(const QLHalvoView&) = delete;

  quellaro_halvo_result encodeWithCoder(NSCoder& coder) const {
    return quellaro_halvo_view_encode(handle_.get(), coder.handle());
  }

  // background, setBackground: black in a new view. Applied at once.
  QLHalvoBackground background() const {
    return static_cast<QLHalvoBackground>(quellaro_halvo_view_background(handle_.get()));
  }
  quellaro_halvo_result setBackground(QLHalvoBackground background) {
    return quellaro_halvo_view_set_background(handle_.get(), rawValueOf(background));
  }

  // Numbers must be finite, at most 1e6 in absolute value, and sizes not negative.
  CGRect frame() const {
    const quellaro_halvo_rectangle frame = quellaro_halvo_view_frame(handle_.get());
    return {{frame.x, frame.y}, {frame.width, frame.height}};
  }
  quellaro_halvo_result setFrame(CGRect frame) { return quellaro_halvo_view_set_frame(handle_.get(), plain(frame)); }
  // layoutSubviews: puts backdrop and animation where they belong now. Drawing does so by itself.
  quellaro_halvo_result layoutSubviews() { return quellaro_halvo_view_layout_subviews(handle_.get()); }

  // Draws the view over what the pixels show: premultiplied 0xAARRGGBB, `stride` bytes from one row to the next.
  quellaro_halvo_result draw(void* pixels, std::int32_t width, std::int32_t height, std::size_t stride) {
    return quellaro_halvo_view_draw(handle_.get(), pixels, width, height, stride);
  }
  // Whether the picture has changed since it was drawn last.
  bool needsDisplay() const { return quellaro_halvo_view_needs_display(handle_.get()); }
  // Called from the main queue, once when the view has come to need display, and not again before it has been drawn. It
  // may draw the view or drop it. An empty handler takes the old one away.
  quellaro_halvo_result setNeedsDisplayHandler(std::function<void()> handler) {
    handler_ = std::make_shared<std::function<void()>>(std::move(handler));
    const bool isEmpty = !*handler_;
    return quellaro_halvo_view_set_needs_display_handler(handle_.get(), isEmpty ? nullptr : tell, this);
  }

  quellaro_halvo_view* handle() const { return handle_.get(); }

 private:
  explicit QLHalvoView(quellaro_halvo_view* handle) : handle_(handle) {}

  static std::shared_ptr<QLHalvoView> own(quellaro_halvo_view* handle) {
    if (handle == nullptr) return nullptr;
    return std::shared_ptr<QLHalvoView>(new QLHalvoView(handle));
  }
  static quellaro_halvo_rectangle plain(CGRect frame) {
    return {frame.origin.x, frame.origin.y, frame.size.width, frame.size.height};
  }
  static void tell(quellaro_halvo_view*, void* view) {
    // Kept while it runs: it may drop the view or choose another.
    const std::shared_ptr<std::function<void()>> handler = static_cast<QLHalvoView*>(view)->handler_;
    (*handler)();
  }

  // Released last: no handler is called after that.
  std::shared_ptr<std::function<void()>> handler_;
  std::unique_ptr<quellaro_halvo_view, Release> handle_;
};

// Embeds an existing view in a declarative interface.
struct QLHalvoSwiftUIView {
  using UIViewType = QLHalvoView;

  // Applies the background to the view.
  QLHalvoSwiftUIView(std::shared_ptr<QLHalvoView> halvoView, QLHalvoBackground background)
      : view(std::move(halvoView)) {
    view->setBackground(background);
  }
  // The very view it was made with.
  std::shared_ptr<QLHalvoView> makeUIView() const { return view; }
  // Changes nothing: the view is its own.
  void updateUIView(const std::shared_ptr<QLHalvoView>&) const {}

  std::shared_ptr<QLHalvoView> view;
};

}  // namespace quellaro
