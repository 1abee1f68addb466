#pragma once

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "platform/coregraphics/coder.h"
#include "platform/coregraphics/geometry.h"
#include "platform/dispatch/function.h"
#include "platform/quartzcore/layer.h"
#include "platform/uikit/ui_color.h"

namespace quellaro {

class Compositor;
struct Surface;

// A rectangle of the screen with a layer that holds its picture, and views above it. A view is held by its superview
// and by whoever shows it, always by a shared pointer. Main thread only.
class UIView : public std::enable_shared_from_this<UIView> {
 public:
  static std::shared_ptr<UIView> initWithFrame(CGRect frame);
  // Null when the archive holds no frame.
  static std::shared_ptr<UIView> initWithCoder(const NSCoder& coder);
  UIView(const UIView&) = delete;
  UIView& operator=(const UIView&) = delete;
  virtual ~UIView() = default;

  // Writes what initWithCoder reads.
  void encodeWithCoder(NSCoder& coder) const;

  // Where the view lies in its superview.
  CGRect frame() const;
  void setFrame(CGRect frame);
  // The same rectangle in the view's own coordinates.
  CGRect bounds() const { return layer_->bounds(); }
  void setBounds(CGRect bounds);
  // Never null. Whoever changes the layers below it says so with setNeedsDisplay().
  const std::shared_ptr<CALayer>& layer() const { return layer_; }
  std::optional<UIColor> backgroundColor() const;
  void setBackgroundColor(std::optional<UIColor> color);

  std::shared_ptr<UIView> superview() const { return superview_.lock(); }
  // From the bottom up.
  const std::vector<std::shared_ptr<UIView>>& subviews() const { return subviews_; }
  // Above the others; taken from where it was.
  void addSubview(const std::shared_ptr<UIView>& view);
  void removeFromSuperview();
  // A view counts as its own descendant.
  bool isDescendantOfView(const UIView& view) const;

  void setNeedsLayout() { needsLayout_ = true; }
  // Brings the whole tree of views that this one is part of up to date.
  void layoutIfNeeded();
  // Places the subviews; called by layoutIfNeeded. Where nothing else is said they stay where their frames say.
  virtual void layoutSubviews() {}

  // Says that the picture has changed; kept at the topmost view, where whoever draws it looks.
  void setNeedsDisplay();
  // Whether the picture has changed, or is about to be laid out anew, since it was last drawn.
  bool needsDisplay() const;
  // Called when needsDisplay() becomes true of a topmost view, from inside whatever changed the picture: it can only
  // take a note for later. A view that needs display already waits until it has been drawn. May be empty.
  void setNeedsDisplayHandler(Function<void()> handler) { needsDisplayHandler_ = std::move(handler); }
  // Lays out and draws the view and all above it over what the surface shows, one point of the view to a pixel.
  void display(Compositor& compositor, const Surface& surface);

 protected:
  // The kind of layer that a class of views has; a subclass hands its own to the constructor.
  using LayerClass = std::shared_ptr<CALayer> (*)();
  static std::shared_ptr<CALayer> layerClass();
  explicit UIView(CGRect frame, LayerClass makeLayer = &UIView::layerClass);

 private:
  UIView& topmost();
  bool subtreeNeedsLayout() const;
  void layoutSubtree();

  std::shared_ptr<CALayer> layer_;
  std::weak_ptr<UIView> superview_;
  std::vector<std::shared_ptr<UIView>> subviews_;
  bool needsLayout_ = true;
  bool needsDisplay_ = true;
  Function<void()> needsDisplayHandler_;
};

}  // namespace quellaro
