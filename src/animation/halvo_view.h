#pragma once

#include <memory>

#include "platform/uikit/view.h"
#include "types/halvo_enums.h"

namespace quellaro {

class QLHalvoAnimationView;

// The view that a host places on its screen and hands to the controller's play: a backdrop in one of two colours, and
// above it the animation, square, centred and as large as fits. Main thread only.
class QLHalvoView : public UIView {
 public:
  // init: an empty rectangle at the origin; whoever shows the view sets its frame.
  static std::shared_ptr<QLHalvoView> make() { return initWithFrame({}); }
  // initWithFrame:
  static std::shared_ptr<QLHalvoView> initWithFrame(CGRect frame);
  // initWithCoder: null when the archive holds no frame.
  static std::shared_ptr<QLHalvoView> initWithCoder(const NSCoder& coder);
  ~QLHalvoView() override;

  // background, setBackground: black in a new view. Applied at once.
  QLHalvoBackground background() const { return background_; }
  void setBackground(QLHalvoBackground background);

  // What the animation's player draws into.
  const std::shared_ptr<QLHalvoAnimationView>& animtionView() const { return animtionView_; }
  const std::shared_ptr<UIView>& backgroundView() const { return backgroundView_; }

  void layoutSubviews() override;

 private:
  explicit QLHalvoView(CGRect frame) : UIView(frame) {}

  // Width divided by height.
  const double animationViewAspectRatio_ = 1.0;
  std::shared_ptr<QLHalvoAnimationView> animtionView_;
  std::shared_ptr<UIView> backgroundView_;
  QLHalvoBackground background_ = QLHalvoBackground::black;
};

}  // namespace quellaro
