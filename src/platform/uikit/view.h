#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "platform/coregraphics/coder.h"
#include "platform/coregraphics/geometry.h"
#include "platform/quartzcore/layer.h"
#include "platform/uikit/layout_anchor.h"
#include "platform/uikit/layout_constraint.h"
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
  // Constraints between what goes and what stays end.
  void removeFromSuperview();
  // A view counts as its own descendant.
  bool isDescendantOfView(const UIView& view) const;

  NSLayoutYAxisAnchor topAnchor() { return {shared_from_this(), NSLayoutAttribute::Top}; }
  NSLayoutYAxisAnchor bottomAnchor() { return {shared_from_this(), NSLayoutAttribute::Bottom}; }
  NSLayoutXAxisAnchor leadingAnchor() { return {shared_from_this(), NSLayoutAttribute::Leading}; }
  NSLayoutXAxisAnchor trailingAnchor() { return {shared_from_this(), NSLayoutAttribute::Trailing}; }
  NSLayoutXAxisAnchor centerXAnchor() { return {shared_from_this(), NSLayoutAttribute::CenterX}; }
  NSLayoutYAxisAnchor centerYAnchor() { return {shared_from_this(), NSLayoutAttribute::CenterY}; }
  NSLayoutDimension widthAnchor() { return {shared_from_this(), NSLayoutAttribute::Width}; }
  NSLayoutDimension heightAnchor() { return {shared_from_this(), NSLayoutAttribute::Height}; }

  // While true (as it starts) the view stays where its frame says; otherwise its constraints place it.
  bool translatesAutoresizingMaskIntoConstraints() const { return translatesAutoresizingMaskIntoConstraints_; }
  void setTranslatesAutoresizingMaskIntoConstraints(bool translates);
  // The active constraints whose nearest common ancestor is this view, in the order of their activation.
  const std::vector<std::shared_ptr<NSLayoutConstraint>>& constraints() const { return constraints_; }

  void setNeedsLayout() { needsLayout_ = true; }
  // Brings the whole tree of views that this one is part of up to date.
  void layoutIfNeeded();
  // Moves the subviews to where the constraints put them. Called by layoutIfNeeded; views that place subviews on their
  // own do so after calling this.
  virtual void layoutSubviews();

  // Says that the picture has changed; kept at the topmost view, where whoever draws it looks.
  void setNeedsDisplay();
  // Whether the picture has changed, or is about to be laid out anew, since it was last drawn.
  bool needsDisplay() const;
  // Called when needsDisplay() becomes true of a topmost view, from inside whatever changed the picture: it can only
  // take a note for later. A view that needs display already waits until it has been drawn. May be empty.
  void setNeedsDisplayHandler(std::function<void()> handler) { needsDisplayHandler_ = std::move(handler); }
  // Lays out and draws the view and all above it over what the surface shows, one point of the view to a pixel.
  void display(Compositor& compositor, const Surface& surface);

 protected:
  // The kind of layer that a class of views has; a subclass hands its own to the constructor.
  using LayerClass = std::shared_ptr<CALayer> (*)();
  static std::shared_ptr<CALayer> layerClass();
  explicit UIView(CGRect frame, LayerClass makeLayer = &UIView::layerClass);

 private:
  friend class NSLayoutConstraint;
  friend class LayoutEngine;

  void addConstraint(std::shared_ptr<NSLayoutConstraint> constraint);
  void removeConstraint(const std::shared_ptr<NSLayoutConstraint>& constraint);
  UIView& topmost();
  bool subtreeNeedsLayout() const;
  void layoutSubtree();

  std::shared_ptr<CALayer> layer_;
  std::weak_ptr<UIView> superview_;
  std::vector<std::shared_ptr<UIView>> subviews_;
  std::vector<std::shared_ptr<NSLayoutConstraint>> constraints_;
  // Where the constraints want the view, until its superview puts it there.
  std::optional<CGRect> solvedFrame_;
  bool translatesAutoresizingMaskIntoConstraints_ = true;
  bool needsLayout_ = true;
  bool needsDisplay_ = true;
  std::function<void()> needsDisplayHandler_;
};

}  // namespace quellaro
