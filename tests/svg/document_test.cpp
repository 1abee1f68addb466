#include "svg/document.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdlib>

#include "layer_text.h"
#include "support/temporary_directory.h"

namespace quellaro {
namespace {

using Document = std::shared_ptr<SVGDocument>;

std::string layersOf(const std::string& text) {
  const Document document = SVGDocument::parse(text);
  const auto layer = document->makeLayer();
  return layer == nullptr ? "none" : layerText(*layer);
}

std::string repeated(std::string_view text, std::size_t times) {
  std::string result;
  result.reserve(text.size() * times);
  for (; times > 0; --times) result += text;
  return result;
}

TEST(Documents, Size) {
  const std::pair<const char*, const char*> cases[] = {
      {"<svg/>", "layer 100 x 100\n"},
      {"<svg width='50'/>", "layer 50 x 100\n"},
      {"<svg width='300px' height='100%'/>", "layer 300 x 100\n"},
      {"<svg width='' height=' x' viewBox='0 0 5 5'/>", "layer 0 x 0\n"},
      {"<svg width='1e999' height='-1'/>", "layer inf x -1\n"},
      {"<svg width='1'><svg width='2'/></svg>", "layer 2 x 100\n"},
      {"<svg width='1'", "none"},
      {"<svg width='1' width='2'/>", "none"},
      {"<SVG/>", "none"},
      {"<s:svg/>", "none"},
      {"<g/>", "none"},
      {"", "none"},
  };
  for (const auto& [text, layers] : cases) EXPECT_EQ(layersOf(text), layers) << text;
  EXPECT_EQ(SVGDocument().makeLayer(), nullptr);
  EXPECT_FALSE(SVGDocument().elements());
  EXPECT_EQ(SVGDocument().viewbox(), CGSize{});
  EXPECT_TRUE(SVGDocument::parse("")->elements());
  EXPECT_FALSE(SVGDocument::parse("")->viewbox());
}

TEST(Documents, ElementsFormATree) {
  const Document document = SVGDocument::parse(
      "<svg><g id='1'><a><g id='2'><path id='3'/></g></a><rect id='4'/><text>x</text></g><defs><stop/>"
      "<linearGradient id='5'><circle id='6'/></linearGradient></defs></svg>");
  const auto& elements = *document->elements();
  ASSERT_EQ(elements.size(), 2U);
  EXPECT_EQ(elements[0]->parent(), nullptr);
  ASSERT_EQ(elements[0]->children().size(), 2U);
  const auto& inner = elements[0]->children()[0];
  EXPECT_EQ(inner->id(), "2");
  EXPECT_EQ(inner->parent(), elements[0]);
  EXPECT_EQ(inner->children().at(0)->id(), "3");
  EXPECT_EQ(elements[0]->children()[1]->id(), "4");
  EXPECT_EQ(elements[1]->children().at(0)->id(), "6");
}

TEST(Documents, LayersAreNewAndOutlinesShared) {
  Document document = SVGDocument::parse("<svg><path d='M0 0L1 1'/></svg>");
  const auto first = document->makeLayer();
  const auto second = document->makeLayer();
  EXPECT_NE(first, second);
  const auto shape = [](const CALayer& root) { return std::static_pointer_cast<CAShapeLayer>(root.sublayers()[0]); };
  EXPECT_NE(shape(*first), shape(*second));
  EXPECT_EQ(shape(*first)->path(), shape(*second)->path());
  // A view may still show a frame that has been replaced.
  document.reset();
  EXPECT_EQ(outlineText(*shape(*first)->path()), "M0,0 L1,1");
}

// What was finished before the mistake stays; what was still open goes.
TEST(Documents, MistakesKeepWhatWasFinished) {
  const std::pair<std::string, int> cases[] = {
      {"<svg><rect/><rect/></svg>", 2},
      {"<svg><rect/><g><rect/>", 1},
      {"<svg><rect/><rect", 1},
      {"<svg><rect/><rect a='1' a='2'/>", 1},
      {"<svg><rect/>&bomb;<rect/></svg>", 1},
      {"<!DOCTYPE svg [<!ENTITY a 'aaaa'><!ENTITY b '&a;&a;'>]><svg><rect/><g>&b;</g></svg>", 1},
      {"<svg><rect/>\x80<rect/></svg>", 1},
      {std::string("<svg><rect/>\0<rect/></svg>", 26), 1},
      {"<svg><rect/></g><rect/></svg>", 1},
      {"<svg><rect/></svg><rect/>", 1},
      {"<svg><rect/><path d='M0 0\xFFL1 1'/></svg>", 1},
  };
  for (const auto& [text, count] : cases) {
    const auto layer = SVGDocument::parse(text)->makeLayer();
    EXPECT_EQ(layer->sublayers().size(), static_cast<std::size_t>(count)) << text;
  }
}

TEST(Documents, EveryTruncationIsAPrefix) {
  const std::string text =
      "<?xml version='1.0'?><!-- c --><svg width='10' height='20'><g fill='#f00' transform='scale(2) rotate(3)'>"
      "<path d='M0 0C1 2 3 4 5 6S1 2 3 4Zm1 1' stroke='#12345678' stroke-width='2'/></g><polygon points='1 2 3 4'/>"
      "<text>&lt;&#65;<![CDATA[x]]></text><circle cx='&#49;' cy='2' r='3'/></svg>";
  const std::string whole = layersOf(text);
  for (std::size_t length = 0; length < text.size(); ++length) {
    const std::string part = layersOf(text.substr(0, length));
    EXPECT_TRUE(part == "none" || whole.substr(0, part.size()) == part) << length;
    std::string damaged = text;
    damaged[length] = static_cast<char>(damaged[length] ^ 0x15);
    layersOf(damaged);
  }
}

TEST(Documents, MillionNestedGroups) {
  constexpr std::size_t kDepth = 1'000'000;
  const Document document =
      SVGDocument::parse("<svg>" + repeated("<g>", kDepth) + "<rect/>" + repeated("</g>", kDepth) + "</svg>");
  std::size_t depth = 0;
  auto layer = document->makeLayer();
  for (const CALayer* one = layer.get(); !one->sublayers().empty(); one = one->sublayers()[0].get()) ++depth;
  EXPECT_EQ(depth, kDepth + 1);
  EXPECT_EQ(SVGDocument::parse("<svg>" + repeated("<g>", kDepth))->elements()->size(), 0U);
}

TEST(Documents, LongTexts) {
  const Document path = SVGDocument::parse("<svg><path d='M0 0L" + repeated("10.125 -20.25,", 1'000'000) + "'/></svg>");
  EXPECT_EQ(path->elements()->at(0)->path().pointCount(), 1'000'001U);
  const std::string digits = repeated("1234567890", 1'000'000);
  EXPECT_EQ(layersOf("<svg><path d='M0." + digits + " " + digits + "L" + repeated("M", 1) + "'/></svg>"),
            "layer 100 x 100\n  shape width 0 path M0.12345678901234568,inf Z\n");
  layersOf("<svg>" + repeated("<rect/>", 100'000) + "</svg>");
}

// A host may set a locale whose numbers have commas.
TEST(Documents, LocaleDoesNotMatter) {
  const TemporaryDirectory directory;
  const std::string command = "localedef -i de_DE -f UTF-8 '" + (directory / "de_DE.UTF-8").string() + "' 2> /dev/null";
  const bool made = std::system(command.c_str()) == 0;
  setenv("LOCPATH", directory.path().c_str(), 1);
  const bool set = made && std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
  unsetenv("LOCPATH");
  if (!set) GTEST_SKIP() << "no locale with commas: Debian's package 'locales' is missing";
  EXPECT_EQ(std::strtod("1,5", nullptr), 1.5);
  const std::string layers = layersOf(
      "<svg width='1.5' height='1,5'><path d='M0.5,1.25L1234567890123456789.5,2e-1' stroke-width='0.5' "
      "transform='translate(1.5,2.5)'/></svg>");
  std::setlocale(LC_ALL, "C");
  EXPECT_EQ(layers,
            "layer 1.5 x 1\n  shape width 0.5 transform [1 0 0 1 1.5 2.5] path M0.5,1.25 "
            "L1234567890123456768,0.2\n");
}

}  // namespace
}  // namespace quellaro
