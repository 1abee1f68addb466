#include "import/motion/drawing.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "import/art/every_shape.h"
#include "import/art/source_text.h"
#include "import/motion/wire_shapes.h"

namespace halvo::motion {

using namespace art;

namespace {

enum class MaskMode : std::uint8_t { Add, Subtract, Intersect, Difference };
enum class Matte : std::uint8_t { None, Alpha, AlphaInverted, Light, LightInverted };

struct Mask {
  MaskMode mode = MaskMode::Add;
  double alpha = 1;
  Outline outline;
};

struct Layer {
  std::string name;
  Matte matte = Matte::None;
  // Nothing: the layer is not there now.
  std::optional<Item> item;
};

constexpr Colour kDark{0, 0, 0, 1};
constexpr Colour kLight{1, 1, 1, 1};

Item itemOf(DisplayList members, double opacity = 1) {
  return {std::make_shared<Group>(Group{std::move(members), opacity}), {}};
}

Colour faded(Colour colour, double alpha) {
  colour.alpha *= alpha;
  return colour;
}

// `change` is handed every colour of the list.
template <class Change>
DisplayList recoloured(DisplayList list, const Change& change) {
  return rewriteShapes(std::move(list), [&](Item&& item, std::vector<Item>& result) {
    Paint& paint = std::get<Shape>(item.what).paint;
    if (auto* const colour = std::get_if<Colour>(&paint)) *colour = change(*colour);
    if (auto* const gradient = std::get_if<Gradient>(&paint))
      for (GradientStop& stop : gradient->stops) stop.colour = change(stop.colour);
    result.push_back(std::move(item));
  });
}

Colour grey(const Colour& colour, bool isInverted) {
  const double light = 0.299 * colour.red + 0.587 * colour.green + 0.114 * colour.blue;
  const double shade = isInverted ? 1 - light : light;
  return {shade, shade, shade, colour.alpha};
}

class DrawingReader {
 public:
  DrawingReader(std::string_view bytes, const Matrix& toFrame, int side)
      : wire_(bytes), toFrame_(toFrame), everything_(rectangle(Box{0, 0, 1.0 * side, 1.0 * side}.grown(side))) {}

  std::optional<Drawing> read() {
    wire_.byte();  // whether it is seen: past the end it is not, and empty
    wire_.byte();
    wire_.byte();
    wire_.text();
    readOutline(wire_);
    readMasks();
    Drawing drawing;
    readShapes();
    for (auto& [name, item] : inner(0)) {
      drawing.names.push_back(std::move(name));
      drawing.list.items.push_back(std::move(item));
    }
    if (!wire_.isWell() || !wire_.isAtEnd()) return std::nullopt;
    return drawing;
  }

 private:
  struct Named {
    std::string name;
    Item item;
  };

  std::vector<Mask> readMasks() {
    std::vector<Mask> masks(wire_.count(6));
    for (Mask& mask : masks) {
      mask.mode = static_cast<MaskMode>(wire_.byte() & 3U);
      mask.alpha = wire_.byte() / 255.0;
      mask.outline = mapped(readOutline(wire_), toFrame_);
    }
    return masks;
  }

  std::vector<Item> readShapes() {
    std::vector<Item> items;
    const std::size_t count = wire_.count(9);
    for (std::size_t i = 0; i < count && wire_.isWell(); ++i)
      if (auto shape = readShape(wire_)) items.push_back(mapped(Item{std::move(*shape), {}}, toFrame_));
    return items;
  }

  // Back to front. One that is matted takes the next one for its matte, which is not drawn itself.
  std::vector<Named> inner(int depth) {
    std::vector<Named> result;
    const std::size_t count = wire_.count(19);
    std::optional<Layer> matted;
    for (std::size_t i = 0; i < count && wire_.isWell(); ++i) {
      Layer layer = readLayer(depth + 1);
      if (layer.matte != Matte::None) {
        matted = std::move(layer);
        continue;
      }
      if (matted) {
        if (matted->item && layer.item)
          result.push_back({matted->name, matte(std::move(*matted->item), std::move(*layer.item), matted->matte)});
        matted.reset();
      } else if (layer.item) {
        result.push_back({std::move(layer.name), std::move(*layer.item)});
      }
    }
    return result;
  }

  Layer readLayer(int depth) {
    Layer layer;
    if (depth > kDeepest) wire_.fail();
    const bool isVisible = wire_.byte() != 0;
    const double alpha = wire_.byte() / 255.0;
    layer.matte = static_cast<Matte>(std::min(wire_.byte(), 4U));
    layer.name = wire_.text();
    Outline clip = mapped(readOutline(wire_), toFrame_);
    const std::vector<Mask> masks = readMasks();
    DisplayList members{readShapes()};
    if (wire_.isWell())
      for (Named& named : inner(depth)) members.items.push_back(std::move(named.item));
    if (!isVisible || alpha <= 0 || members.items.empty()) return layer;
    Item item = itemOf(std::move(members), alpha);
    if (!clip.empty()) item.clips.push_back(std::make_shared<const Clip>(Clip{std::move(clip), Rule::NonZero}));
    layer.item = masks.empty() ? std::move(item) : masked(std::move(item), masks);
    return layer;
  }

  static Shape filled(Outline outline, const Colour& colour) {
    Shape shape;
    shape.outline = std::move(outline);
    shape.paint = colour;
    return shape;
  }

  static Item under(Item item, DisplayList mask, double kind) {
    return itemOf({{std::move(item), itemOf(std::move(mask), kind)}}, kMaskedGroup);
  }

  // Masks are painted one after the other: light lets through, dark does not.
  Item masked(Item item, const std::vector<Mask>& masks) const {
    const Mask& first = masks.front();
    if (masks.size() == 1 && first.alpha > 0.999 && first.mode != MaskMode::Subtract) {
      Item whole = itemOf({{std::move(item)}});
      whole.clips.push_back(std::make_shared<const Clip>(Clip{first.outline, Rule::NonZero}));
      return whole;
    }
    DisplayList light;
    const auto paint = [&](Outline outline, const Colour& colour) {
      if (!outline.empty()) light.items.push_back({filled(std::move(outline), colour), {}});
    };
    if (first.mode == MaskMode::Subtract || first.mode == MaskMode::Intersect) paint(everything_, kLight);
    for (const Mask& mask : masks) {
      if (mask.mode == MaskMode::Subtract) {
        paint(mask.outline, faded(kDark, mask.alpha));
      } else if (mask.mode == MaskMode::Intersect) {
        light.items.push_back({around(mask.outline), {}});
        if (mask.alpha < 0.999) paint(mask.outline, faded(kDark, 1 - mask.alpha));
      } else if (mask.mode == MaskMode::Difference && mask.alpha > 0.999 && isLit(light)) {
        Shape& lit = std::get<Shape>(light.items.back().what);
        lit.outline.insert(lit.outline.end(), mask.outline.begin(), mask.outline.end());
        lit.rule = Rule::EvenOdd;
      } else {
        paint(mask.outline, faded(kLight, mask.alpha));
      }
    }
    return under(std::move(item), std::move(light), kLightMask);
  }

  static bool isLit(const DisplayList& light) {
    return !light.items.empty() && std::get<Colour>(std::get<Shape>(light.items.back().what).paint) == kLight;
  }

  // Everything around it. Right for outlines that do not cross themselves, as masks hardly ever do.
  Shape around(Outline outline) const {
    outline.insert(outline.end(), everything_.begin(), everything_.end());
    Shape shape = filled(std::move(outline), kDark);
    shape.rule = Rule::EvenOdd;
    return shape;
  }

  Item matte(Item item, Item source, Matte matte) const {
    DisplayList mask{{std::move(source)}};
    if (matte == Matte::Alpha) return under(std::move(item), std::move(mask), kAlphaMask);
    DisplayList light;
    const bool isInverted = matte != Matte::Light;
    if (isInverted) light.items.push_back({filled(everything_, kLight), {}});
    mask = recoloured(std::move(mask), [&](const Colour& colour) {
      return matte == Matte::AlphaInverted ? faded(kDark, colour.alpha) : grey(colour, isInverted);
    });
    for (Item& each : mask.items) light.items.push_back(std::move(each));
    return under(std::move(item), std::move(light), kLightMask);
  }

  WireReader wire_;
  Matrix toFrame_;
  Outline everything_;
};

}  // namespace

std::optional<Drawing> readDrawing(std::string_view bytes, const Matrix& toFrame, int side) {
  return DrawingReader(bytes, toFrame, side).read();
}

}  // namespace halvo::motion
