#include <cmath>
#include <cstdio>
#include <memory>
#include <vector>

#include "commands.h"
#include "input.h"
#include "options.h"
#include "platform/foundation/console.h"
#include "platform/foundation/json/json_writer.h"
#include "platform/foundation/text/numbers.h"
#include "platform/quartzcore/shape_layer.h"
#include "svg/document.h"

namespace halvo {

namespace {

using namespace quellaro;

// Output is handed on when it has grown to this, so that a huge tree needs no second copy of itself in memory.
constexpr std::size_t kChunk = 1 << 20;

// Writes a layer tree as JSON, without recursion: trees may be a million layers deep.
class LayerWriter {
 public:
  void write(const CALayer& root) {
    json_.beginObject();
    const CGRect bounds = root.bounds();
    json_.key("bounds");
    numbers({bounds.origin.x, bounds.origin.y, bounds.size.width, bounds.size.height});
    beginSublayers(root);
    while (!open_.empty()) {
      Level& level = open_.back();
      if (level.next == level.layer->sublayers().size()) {
        json_.endArray().endObject();
        open_.pop_back();
        continue;
      }
      const CALayer& child = *level.layer->sublayers()[level.next++];
      json_.beginObject();
      if (const auto* shape = child.asShapeLayer()) writeShape(*shape);
      beginSublayers(child);
    }
    flush();
  }

 private:
  struct Level {
    const CALayer* layer;
    std::size_t next;
  };

  void beginSublayers(const CALayer& layer) {
    json_.key("sublayers").beginArray();
    open_.push_back({&layer, 0});
  }

  void writeShape(const CAShapeLayer& shape) {
    json_.key("path").beginArray();
    if (shape.path() != nullptr) writeSegments(*shape.path());
    json_.endArray();
    json_.key("strokeColor");
    color(shape.strokeColor());
    json_.key("lineWidth");
    number(shape.lineWidth());
    json_.key("fillColor");
    color(shape.fillColor());
    json_.key("transform");
    if (const auto& t = shape.transform())
      numbers({t->m11, t->m12, t->m13, t->m14, t->m21, t->m22, t->m23, t->m24,  //
               t->m31, t->m32, t->m33, t->m34, t->m41, t->m42, t->m43, t->m44});
    else
      json_.null();
  }

  void writeSegments(const CGPath& path) {
    const PathPoints points = path.points();
    std::size_t next = 0;
    for (const PathVerb verb : path.verbs()) {
      static constexpr const char* kLetters[] = {"M", "L", "Q", "C", "Z"};
      json_.beginArray().string(kLetters[static_cast<std::size_t>(verb)]);
      for (int i = 0; i < pointCount(verb); ++i, ++next) {
        number(points[next].x);
        number(points[next].y);
      }
      json_.endArray();
      if (json_.text().size() > kChunk) flush();
    }
  }

  void color(const std::optional<CGColor>& color) {
    if (color)
      numbers({color->red, color->green, color->blue, color->alpha});
    else
      json_.null();
  }

  void numbers(std::initializer_list<double> values) {
    json_.beginArray();
    for (const double value : values) number(value);
    json_.endArray();
  }

  void number(double value) {
    std::string text;
    appendShortest(text, value);
    if (std::isfinite(value))
      json_.raw(text);
    else
      json_.string(text);
  }

  void flush() {
    const std::string text = json_.take();
    std::fwrite(text.data(), 1, text.size(), stdout);
  }

  JSONWriter json_;
  std::vector<Level> open_;
};

void printLayers(std::string text) {
  const std::shared_ptr<SVGDocument> document = SVGDocument::parse(std::move(text));
  if (const std::shared_ptr<CALayer> layer = document->makeLayer())
    LayerWriter().write(*layer);
  else
    std::fputs("null", stdout);
  std::fputc('\n', stdout);
}

}  // namespace

int layers(int argc, char** argv) {
  CommandLine commandLine;
  commandLine.usage = "layers FILE...";
  commandLine.summary =
      "Prints the layer tree that each SVG document renders to, as one line of JSON; null for a\n"
      "text without an \"svg\" start tag. FILE '-' is standard input.";
  commandLine.minimumPositional = 1;
  commandLine.maximumPositional = static_cast<std::size_t>(-1);
  const Parsed parsed = parse(commandLine, argc, argv);
  if (parsed.exitStatus) return *parsed.exitStatus;

  setConsoleSink([](std::string_view line) { std::fwrite(line.data(), 1, line.size(), stderr); });
  int status = kExitFine;
  for (const std::string& name : parsed.positional) {
    Result<std::string> text = readInput(name);
    if (text)
      printLayers(std::move(*text));
    else
      status = failure(name + ": " + text.error().localizedDescription);
  }
  setConsoleSink({});
  return status;
}

}  // namespace halvo
