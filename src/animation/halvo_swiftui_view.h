#pragma once

#include <memory>

#include "animation/halvo_view.h"
#include "platform/uikit/view_representable.h"

namespace quellaro {

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

static_assert(UIViewRepresentable<QLHalvoSwiftUIView>);

}  // namespace quellaro
