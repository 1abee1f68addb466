#include "import/motion/renderer.h"

#include <rlottie_capi.h>

#include <algorithm>
#include <memory>
#include <new>

#include "import/motion/wire.h"

namespace halvo::motion {

namespace {

struct Destroy {
  void operator()(Lottie_Animation* animation) const { lottie_animation_destroy(animation); }
};
using Animation = std::unique_ptr<Lottie_Animation, Destroy>;

// Afresh for each frame: of what the library keeps from one frame to the next, it trims and dashes some once more. What
// it has parsed it finds by the name.
Animation animationOf(const std::string& text) {
  return Animation(lottie_animation_from_data(text.c_str(), "motion", ""));
}

class TreeWriter {
 public:
  explicit TreeWriter(std::string& bytes) : bytes_(bytes), wire_(bytes) {}

  void layer(const LOTLayerNode& node, int depth = 0) {
    if (bytes_.size() > kMostFrameBytes || depth > kDeepest) throw std::bad_alloc();
    const bool isVisible = node.mVisible != 0;
    wire_.byte(isVisible ? 1 : 0);
    wire_.byte(node.mAlpha);
    wire_.byte(node.mMatte);
    wire_.text(node.keypath ? node.keypath : "");
    path(node.mClipPath);
    list(node.mMaskList.ptr, isVisible ? node.mMaskList.size : 0, [&](const LOTMask& mask) {
      wire_.byte(mask.mMode);
      wire_.byte(mask.mAlpha);
      path(mask.mPath);
    });
    list(node.mNodeList.ptr, isVisible ? node.mNodeList.size : 0, [&](const LOTNode* shape) { this->shape(*shape); });
    list(node.mLayerList.ptr, isVisible ? node.mLayerList.size : 0,
         [&](const LOTLayerNode* inner) { layer(*inner, depth + 1); });
  }

 private:
  template <class Element, class Write>
  void list(const Element* elements, std::size_t size, const Write& write) {
    wire_.count(elements ? size : 0);
    if (elements) std::for_each(elements, elements + size, write);
  }

  // The library counts the points of masks otherwise than those of shapes; so what the elements take is counted.
  template <class Path>
  void path(const Path& path) {
    const bool isThere = path.elmPtr && path.ptPtr && path.elmCount > 0;
    wire_.count(isThere ? path.elmCount : 0);
    if (!isThere) return;
    bytes_.append(path.elmPtr, path.elmCount);
    list(path.ptPtr, numbersOf({path.elmPtr, path.elmCount}), [&](float number) { wire_.real(number); });
    if (bytes_.size() > kMostFrameBytes) throw std::bad_alloc();
  }

  void shape(const LOTNode& node) {
    path(node.mPath);
    wire_.byte(node.mFillRule == FillEvenOdd ? 1 : 0);
    const auto& stroke = node.mStroke;
    wire_.byte(stroke.enable != 0 ? 1 : 0);
    if (stroke.enable) {
      wire_.real(stroke.width);
      wire_.byte(stroke.cap);
      wire_.byte(stroke.join);
      wire_.real(stroke.miterLimit);
    }
    wire_.byte(node.mBrushType == BrushGradient ? 1 : 0);
    if (node.mBrushType == BrushGradient) return gradient(node);
    colour(node.mColor);
  }

  template <class Colour>
  void colour(const Colour& colour) {
    for (const unsigned char part : {colour.r, colour.g, colour.b, colour.a}) wire_.byte(part);
  }

  void gradient(const LOTNode& node) {
    const auto& gradient = node.mGradient;
    const bool isRadial = gradient.type == GradientRadial;
    wire_.byte(isRadial ? 1 : 0);
    for (const auto& point : {isRadial ? gradient.focal : gradient.start, isRadial ? gradient.center : gradient.end}) {
      wire_.real(point.x);
      wire_.real(point.y);
    }
    wire_.real(gradient.fradius);
    wire_.real(gradient.cradius);
    list(gradient.stopPtr, gradient.stopCount, [&](const LOTGradientStop& stop) {
      wire_.real(stop.pos);
      colour(stop);
    });
  }

  std::string& bytes_;
  WireWriter wire_;
};

}  // namespace

bool canEvaluate() { return true; }

Renderer::Renderer(const std::string& text) : text_(text) {}

std::string Renderer::tree(std::size_t frame, std::size_t width, std::size_t height) const {
  const Animation animation = animationOf(text_);
  if (!animation) return {};
  const LOTLayerNode* const root = lottie_animation_render_tree(animation.get(), frame, width, height);
  std::string bytes;
  if (root) TreeWriter(bytes).layer(*root);
  return bytes;
}

std::string Renderer::picture(std::size_t frame, std::size_t side) const {
  const Animation animation = animationOf(text_);
  std::string pixels;
  if (!animation) return pixels;
  pixels.resize(side * side * sizeof(std::uint32_t));
  lottie_animation_render(animation.get(), frame, reinterpret_cast<std::uint32_t*>(pixels.data()), side, side,
                          side * sizeof(std::uint32_t));
  return pixels;
}

}  // namespace halvo::motion
