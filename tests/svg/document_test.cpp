#include "svg/document.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>

#include "platform/quartzcore/shape_layer.h"
#include "support/temporary_directory.h"
#include "svg/outline_text.h"

namespace quellaro {
namespace {

using Document = std::shared_ptr<SVGDocument>;

std::string repeated(std::string_view text, std::size_t times) {
  std::string result;
  result.reserve(text.size() * times);
  for (; times > 0; --times) result += text;
  return result;
}

TEST(Documents, Size) {
  const std::pair<const char*, std::optional<CGSize>> cases[] = {
      {"<svg/>", CGSize{100, 100}},
      {"<svg width='50'/>", CGSize{50, 100}},
      {"<svg width='300px' height='70%' viewBox='0 0 5 5'/>", CGSize{300, 70}},
      {"<svg width='' height='x'/>", CGSize{0, 0}},
      {"<svg width='1'><svg width='2'/></svg>", CGSize{2, 100}},
      {"<svg width='1'", std::nullopt},
      {"<SVG/>", std::nullopt},
      {"<s:svg/>", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& [text, size] : cases) {
    const Document document = SVGDocument::parse(text);
    EXPECT_EQ(document->viewbox(), size) << text;
    EXPECT_EQ(document->makeLayer() != nullptr, size.has_value()) << text;
  }
  EXPECT_EQ(SVGDocument().makeLayer(), nullptr);
  EXPECT_FALSE(SVGDocument().elements());
  EXPECT_EQ(SVGDocument().viewbox(), CGSize{});
}

// What hangs below what is seen in the golden trees.
TEST(Documents, AnElementKnowsItsParent) {
  const Document document = SVGDocument::parse("<svg><g><a><g><path/></g></a></g></svg>");
  const auto& outer = document->elements()->at(0);
  const auto& inner = outer->children().at(0);
  EXPECT_EQ(outer->parent(), nullptr);
  EXPECT_EQ(inner->parent(), outer);
  EXPECT_EQ(inner->children().at(0)->parent(), inner);
}

TEST(Documents, LayersAreNewAndOutlinesShared) {
  const Document document = SVGDocument::parse("<svg><path d='M0 0L1 1'/></svg>");
  const auto shape = [&] { return std::static_pointer_cast<CAShapeLayer>(document->makeLayer()->sublayers()[0]); };
  const auto first = shape();
  const auto second = shape();
  EXPECT_NE(first, second);
  EXPECT_EQ(first->path(), second->path());
}

// What was finished before the mistake stays; what was still open goes.
TEST(Documents, MistakesKeepWhatWasFinished) {
  const std::string texts[] = {
      "<svg><rect/><g><rect/>",
      "<svg><rect/><rect a='1' a='2'/>",
      "<!DOCTYPE svg [<!ENTITY a 'aaaa'><!ENTITY b '&a;&a;'>]><svg><rect/><g>&b;</g></svg>",
      std::string("<svg><rect/>\0<rect/></svg>", 26),
      "<svg><rect/></g><rect/></svg>",
      "<svg><rect/><path d='M0 0\xFFL1 1'/></svg>",
  };
  for (const std::string& text : texts) EXPECT_EQ(SVGDocument::parse(text)->elements()->size(), 1U) << text;
}

TEST(Documents, MillionNestedGroups) {
  constexpr std::size_t kDepth = 1'000'000;
  const Document document =
      SVGDocument::parse("<svg>" + repeated("<g>", kDepth) + "<rect/>" + repeated("</g>", kDepth) + "</svg>");
  std::size_t depth = 0;
  const auto layer = document->makeLayer();
  for (const CALayer* one = layer.get(); !one->sublayers().empty(); one = one->sublayers()[0].get()) ++depth;
  EXPECT_EQ(depth, kDepth + 1);
  EXPECT_EQ(SVGDocument::parse("<svg>" + repeated("<g>", kDepth))->elements()->size(), 0U);
}

TEST(Documents, TenMillionDigits) {
  const std::string digits = repeated("1234567890", 1'000'000);
  const Document document = SVGDocument::parse("<svg><path d='M0." + digits + " " + digits + "'/></svg>");
  EXPECT_EQ(outlineText(document->elements()->at(0)->path().cgPath()), "M0.12345678901234568,inf");
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
  const Document document = SVGDocument::parse(
      "<svg width='1.5' height='1,5'><path d='M0.5,1.25L1234567890123456789.5,2e-1' stroke-width='0.5' "
      "transform='translate(1.5,2.5)'/></svg>");
  const SVGElement& path = *document->elements()->at(0);
  const std::string outline = outlineText(path.path().cgPath());
  std::setlocale(LC_ALL, "C");
  EXPECT_EQ(document->viewbox(), (CGSize{1.5, 1}));
  EXPECT_EQ(path.strokeWidth(), 0.5);
  EXPECT_EQ(path.transform()->m42, 2.5);
  EXPECT_EQ(outline, "M0.5,1.25 L1234567890123456768,0.2");
}

}  // namespace
}  // namespace quellaro
