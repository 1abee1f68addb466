#include <cmath>
#include <cstdint>
#include <limits>

#include "animation/halvo_view.h"
#include "c_interface/c_interface.h"
#include "platform/dispatch/main_queue.h"
#include "platform/quartzcore/bitmap.h"

using namespace quellaro;

struct quellaro::NeedsDisplayObserver {
  quellaro_halvo_view* view;
  quellaro_halvo_needs_display_handler handler;
  void* context;
  bool isAnnounced = false;
};

namespace {

// Far beyond any screen, and far from where sums lose their pixels.
constexpr double kLargestCoordinate = 1e6;
constexpr std::int32_t kLargestPictureSide = 32767;

bool isUsable(const quellaro_halvo_rectangle& frame) {
  for (const double number : {frame.x, frame.y, frame.width, frame.height})
    if (!(std::fabs(number) <= kLargestCoordinate)) return false;
  return frame.width >= 0 && frame.height >= 0;
}

CGRect rectOf(const quellaro_halvo_rectangle& frame) { return {{frame.x, frame.y}, {frame.width, frame.height}}; }

quellaro_halvo_view* handleOf(std::shared_ptr<QLHalvoView> view) {
  return view ? new quellaro_halvo_view{std::move(view), {}, {}} : nullptr;
}

// From the main queue: the picture is whole then, while here it may be half changed.
void announceLater(const std::shared_ptr<NeedsDisplayObserver>& observer) {
  if (observer->isAnnounced) return;
  MainQueue::shared().async([weak = std::weak_ptr(observer)] {
    const auto told = weak.lock();
    if (!told) return;
    told->isAnnounced = false;
    if (told->view->view->needsDisplay()) callHost([&] { told->handler(told->view, told->context); });
  });
  observer->isAnnounced = true;
}

// Whether all rows lie below the end of the address space.
bool isAddressable(const void* pixels, std::int32_t height, std::size_t stride) {
  const std::size_t room = std::numeric_limits<std::uintptr_t>::max() - reinterpret_cast<std::uintptr_t>(pixels);
  return stride <= room / static_cast<std::size_t>(height);
}

}  // namespace

quellaro_halvo_view* quellaro_halvo_view_create(void) { return quellaro_halvo_view_create_with_frame({0, 0, 0, 0}); }

quellaro_halvo_view* quellaro_halvo_view_create_with_frame(quellaro_halvo_rectangle frame) {
  if (!isUsable(frame)) return nullptr;
  return guarded<quellaro_halvo_view*>(nullptr, [&] { return handleOf(QLHalvoView::initWithFrame(rectOf(frame))); });
}

quellaro_halvo_view* quellaro_halvo_view_create_with_coder(const quellaro_halvo_coder* coder) {
  if (coder == nullptr) return nullptr;
  return guarded<quellaro_halvo_view*>(nullptr, [&] { return handleOf(QLHalvoView::initWithCoder(coder->coder)); });
}

void quellaro_halvo_view_release(quellaro_halvo_view* view) {
  if (MainQueue::isInherited()) return;
  expectMainThread();
  quellaro_halvo_view_set_needs_display_handler(view, nullptr, nullptr);
  const std::unique_ptr<quellaro_halvo_view> released(view);
}

quellaro_halvo_coder* quellaro_halvo_coder_create(void) {
  return guarded<quellaro_halvo_coder*>(nullptr, [] { return std::make_unique<quellaro_halvo_coder>().release(); });
}

void quellaro_halvo_coder_release(quellaro_halvo_coder* coder) {
  const std::unique_ptr<quellaro_halvo_coder> released(coder);
}

quellaro_halvo_result quellaro_halvo_view_encode(const quellaro_halvo_view* view, quellaro_halvo_coder* coder) {
  if (view == nullptr || coder == nullptr) return quellaro_halvo_result_null_argument;
  return guarded([&] {
    view->view->encodeWithCoder(coder->coder);
    return quellaro_halvo_result_ok;
  });
}

quellaro_halvo_background quellaro_halvo_view_background(const quellaro_halvo_view* view) {
  return rawValueOf(view != nullptr ? view->view->background() : QLHalvoBackground::black);
}

quellaro_halvo_result quellaro_halvo_view_set_background(quellaro_halvo_view* view,
                                                         quellaro_halvo_background background) {
  if (view == nullptr) return quellaro_halvo_result_null_argument;
  const auto colour = fromRawValue<QLHalvoBackground>(background);
  if (!colour) return quellaro_halvo_result_invalid_value;
  return guarded([&] {
    view->view->setBackground(*colour);
    return quellaro_halvo_result_ok;
  });
}

quellaro_halvo_rectangle quellaro_halvo_view_frame(const quellaro_halvo_view* view) {
  if (view == nullptr) return {0, 0, 0, 0};
  const CGRect frame = view->view->frame();
  return {frame.origin.x, frame.origin.y, frame.size.width, frame.size.height};
}

quellaro_halvo_result quellaro_halvo_view_set_frame(quellaro_halvo_view* view, quellaro_halvo_rectangle frame) {
  if (view == nullptr) return quellaro_halvo_result_null_argument;
  if (!isUsable(frame)) return quellaro_halvo_result_invalid_value;
  return guarded([&] {
    view->view->setFrame(rectOf(frame));
    return quellaro_halvo_result_ok;
  });
}

quellaro_halvo_result quellaro_halvo_view_set_size(quellaro_halvo_view* view, double width, double height) {
  const quellaro_halvo_rectangle frame = quellaro_halvo_view_frame(view);
  return quellaro_halvo_view_set_frame(view, {frame.x, frame.y, width, height});
}

quellaro_halvo_result quellaro_halvo_view_layout_subviews(quellaro_halvo_view* view) {
  if (view == nullptr) return quellaro_halvo_result_null_argument;
  return guarded([&] {
    view->view->layoutIfNeeded();
    return quellaro_halvo_result_ok;
  });
}

quellaro_halvo_result quellaro_halvo_view_draw(quellaro_halvo_view* view, void* pixels, int32_t width, int32_t height,
                                               size_t stride) {
  if (view == nullptr || pixels == nullptr) return quellaro_halvo_result_null_argument;
  constexpr std::size_t kPixel = sizeof(std::uint32_t);
  if (width < 1 || height < 1 || width > kLargestPictureSide || height > kLargestPictureSide ||
      stride < static_cast<std::size_t>(width) * kPixel || stride % kPixel != 0 ||
      reinterpret_cast<std::uintptr_t>(pixels) % alignof(std::uint32_t) != 0 || !isAddressable(pixels, height, stride))
    return quellaro_halvo_result_invalid_value;
  return guarded([&] {
    view->view->display(view->compositor, {static_cast<std::uint32_t*>(pixels), width, height, stride / kPixel});
    return quellaro_halvo_result_ok;
  });
}

bool quellaro_halvo_view_needs_display(const quellaro_halvo_view* view) {
  expectMainThread();
  return view != nullptr && view->view->needsDisplay();
}

quellaro_halvo_result quellaro_halvo_view_set_needs_display_handler(quellaro_halvo_view* view,
                                                                    quellaro_halvo_needs_display_handler handler,
                                                                    void* context) {
  if (view == nullptr) return quellaro_halvo_result_null_argument;
  return guarded([&] {
    std::shared_ptr<NeedsDisplayObserver> next;
    Function<void()> tell;
    if (handler != nullptr) {
      next = std::make_shared<NeedsDisplayObserver>(NeedsDisplayObserver{view, handler, context});
      tell = [weak = std::weak_ptr(next)] {
        if (const auto observer = weak.lock()) announceLater(observer);
      };
      if (view->view->needsDisplay()) announceLater(next);
    }
    // From here on nothing fails: until then the handler before stays.
    view->observer = std::move(next);
    view->view->setNeedsDisplayHandler(std::move(tell));
    return quellaro_halvo_result_ok;
  });
}
