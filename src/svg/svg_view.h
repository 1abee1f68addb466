#pragma once

#include <memory>

#include "platform/uikit/view.h"
#include "svg/document.h"

namespace quellaro {

// Shows one document at a time, stretched over its bounds: the proportions are the business of whoever lays it out.
class SVGView : public UIView {
 public:
  static std::shared_ptr<SVGView> initWithFrame(CGRect frame);
  // Null when the archive holds no frame.
  static std::shared_ptr<SVGView> initWithCoder(const NSCoder& coder);

  // Says how large what is shown is; null when there is none.
  const std::shared_ptr<const SVGDocument>& svgDocument() const { return svgDocument_; }
  void setSvgDocument(std::shared_ptr<const SVGDocument> document) { svgDocument_ = std::move(document); }

  // Shows the layer instead of whatever the view shows; nothing when it is null, or when there is no size to stretch.
  void showLayer(const std::shared_ptr<CALayer>& documentLayer);

 protected:
  using UIView::UIView;

 private:
  std::shared_ptr<const SVGDocument> svgDocument_;
};

}  // namespace quellaro
