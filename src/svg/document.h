#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/coregraphics/geometry.h"
#include "platform/foundation/memory/arena.h"
#include "svg/element.h"

namespace quellaro {

class CALayer;
class SVGParseObserver;

// Every document has one; neither "style" elements nor "style" attributes are interpreted.
struct SVGStyle {};

// One frame: its text and the elements read from it. Parse on any thread; immutable afterwards.
class SVGDocument {
 public:
  // Without elements, of size zero.
  SVGDocument() = default;
  SVGDocument(const SVGDocument&) = delete;
  SVGDocument& operator=(const SVGDocument&) = delete;

  // Never fails: what was finished before a mistake in the text is the document.
  static std::shared_ptr<SVGDocument> parse(std::string text);
  // The same for a text that lives as long as `owner`, and with everything made in an arena that other documents may
  // share, as the frames of one cue do. The observer, if there is one, is told of everything while it is read.
  static std::shared_ptr<SVGDocument> parse(std::string_view text, std::shared_ptr<const void> owner,
                                            std::shared_ptr<Arena> arena, SVGParseObserver* observer = nullptr);

  // The top-level elements in order; absent until a parse has filled them. They must not outlive the document, whose
  // text they view.
  const std::optional<std::vector<std::shared_ptr<SVGElement>>>& elements() const { return elements_; }
  // In document units; absent when the text had no "svg" start tag: such a document cannot be shown.
  const std::optional<CGSize>& viewbox() const { return viewbox_; }
  const SVGStyle& style() const { return style_; }

  // A new root layer with the layers of all elements, on every call; null when there are no elements to speak of or
  // the document has no size.
  std::shared_ptr<CALayer> makeLayer() const;

 private:
  std::shared_ptr<const void> textOwner_;
  std::shared_ptr<Arena> arena_;
  std::optional<CGSize> viewbox_ = CGSize{};
  SVGStyle style_;
  std::optional<std::vector<std::shared_ptr<SVGElement>>> elements_;
};

}  // namespace quellaro
