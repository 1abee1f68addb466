#pragma once

#include <memory>
#include <memory_resource>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/coregraphics/color.h"
#include "platform/foundation/xml/xml_attributes.h"
#include "platform/quartzcore/transform3d.h"
#include "platform/uikit/bezier_path.h"

namespace quellaro {

class CAShapeLayer;

// One recognised element of a frame: its attributes and what was made of them. A plain SVGElement is a group; kinds
// with an outline of their own build it during construction. Immutable once its end tag has been read, so that any
// thread may look at it. Its texts view its document's storage.
class SVGElement : public std::enable_shared_from_this<SVGElement> {
 public:
  SVGElement(std::string_view name, XMLAttributes attributes);
  SVGElement(const SVGElement&) = delete;
  SVGElement& operator=(const SVGElement&) = delete;
  // Trees may be a million elements deep, so destruction does not recurse.
  virtual ~SVGElement();

  // The enclosing recognised element; null for a top-level one.
  std::shared_ptr<SVGElement> parent() const { return parent_.lock(); }
  const std::vector<std::shared_ptr<SVGElement>>& children() const { return children_; }
  // As written.
  std::string_view name() const { return name_; }
  XMLAttributes attr() const { return attr_; }

  // Kept as text; the engine makes nothing of them (but see the kinds that ask for `id`).
  std::optional<std::string_view> id() const { return attr_.find("id"); }
  std::optional<std::string_view> title() const { return attr_.find("title"); }
  std::optional<std::string_view> className() const { return attr_.find("class"); }
  std::optional<std::string_view> filter() const { return attr_.find("filter"); }
  std::optional<std::string_view> clipPath() const { return attr_.find("clip-path"); }

  // Null when the attribute is absent; the identity is a transform.
  const CATransform3D* transform() const { return transform_.get(); }
  // Empty when nothing was drawn.
  const UIBezierPath& path() const { return path_; }
  // Absent: not painted. Set by the attribute or taken from the parent.
  const std::optional<CGColor>& strokeColor() const { return strokeColor_; }
  const std::optional<CGColor>& fillColor() const { return fillColor_; }
  double strokeWidth() const { return strokeWidth_; }
  bool clickable() const { return clickable_; }

  // Keeps the outline in the element's own arena.
  void moveOutlineInto(std::pmr::memory_resource& memory) { path_.moveInto(memory); }
  // Takes the colours that the element has not got itself.
  void inheritPaint(const SVGElement& from);
  static void appendChild(const std::shared_ptr<SVGElement>& parent, std::shared_ptr<SVGElement> child);

  // A new layer for this element with those of its children, on every call. The layers share the outlines and keep
  // their elements alive, so that they may outlive the document.
  std::shared_ptr<CAShapeLayer> makeShapeLayer() const;

 protected:
  void applyCommonAttributes(XMLAttributes attributes);
  // Every kind with an outline calls its own at the end of its construction.
  virtual void buildPath(XMLAttributes attributes);

  UIBezierPath path_;
  bool clickable_ = false;

 private:
  std::weak_ptr<SVGElement> parent_;
  std::vector<std::shared_ptr<SVGElement>> children_;
  std::string_view name_;
  XMLAttributes attr_;
  // Few elements have one, and it is large.
  std::unique_ptr<const CATransform3D> transform_;
  std::optional<CGColor> strokeColor_;
  double strokeWidth_ = 0;
  std::optional<CGColor> fillColor_;
};

}  // namespace quellaro
