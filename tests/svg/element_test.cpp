#include "svg/element.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "svg/document.h"
#include "svg/hex_color.h"
#include "svg/outline_text.h"
#include "svg/transform_parser.h"

namespace quellaro {
namespace {

// The first element of a document made of this one, which it keeps alive.
std::shared_ptr<SVGElement> elementOf(const std::string& text) {
  const auto document = SVGDocument::parse("<svg>" + text + "</svg>");
  return {document, document->elements()->at(0).get()};
}

// 0xRRGGBBAA, exact because all colours come from bytes.
std::uint32_t bytesOf(const CGColor& color) {
  std::uint32_t bytes = 0;
  for (const double component : {color.red, color.green, color.blue, color.alpha})
    bytes = bytes << 8 | static_cast<std::uint32_t>(component * 255.0 + 0.5);
  return bytes;
}

TEST(Colors, HexadecimalDigitsAndNothingElse) {
  const std::pair<const char*, std::uint32_t> cases[] = {
      {"#abc", 0xaabbccff},
      {"#ABCD", 0xaabbccdd},
      {"f0a8", 0xff00aa88},
      {"#112233", 0x112233ff},
      {"#11223380", 0x11223380},
      {"12345", 0x012345ff},
      {"#1234567", 0x234567ff},
      {"#112233445566", 0x33445566},
      {"#ffffffffffffffffff", 0xffffffff},
      {"", 0x000000ff},
      {"##abc", 0},
      {"none", 0},
      {"red", 0},
      {"url(#a)", 0},
      {" ff0000", 0},
      {"-ff0000", 0},
      // The digits that a word starts with count.
      {"blue", 0x000000bb},
      {"fuchsia", 0x0000000f},
      {"0xabc", 0x000abcff},
      {"#0xf", 0},
      // Characters are counted, not bytes.
      {"f\xC3\xA9"
       "0",
       0x000000ff},
  };
  for (const auto& [text, color] : cases) EXPECT_EQ(bytesOf(colorFromHexString(text)), color) << text;
  EXPECT_EQ(colorFromHexString("#11223380").alpha, 0x80 / 255.0);
}

TEST(Transforms, Keywords) {
  const double root = std::sqrt(0.5);
  const std::pair<const char*, CGPoint> whereOneOneGoes[] = {
      {"", {1, 1}},
      {"translate(5)", {6, 6}},
      {"translate(5, 0)", {6, 1}},
      {"translate()", {1, 1}},
      {"translate(10 20)", {11, 21}},
      {"translate( 10 , 20 )", {11, 21}},
      {"TRANSLATE(10,20)", {11, 21}},
      {"scale(2)", {2, 2}},
      {"scale()", {0, 0}},
      {"scale(2, 3) translate(1)", {2, 2}},
      {"translate(10, 0) scale(2)", {12, 2}},
      {"scale(2)translate(10, 0)", {22, 2}},
      {"rotate(-90)", {1, -1}},
      {"rotate(45, 10, 10) translate(5)", {0, 2 * root}},
      {"matrix(1 0 0 1 50 50)", {1, 1}},
      {"matrix(1 0 0) scale(2)", {2, 2}},
      {"matrix(1 2 3 4 5 6 7) scale(2)", {1, 1}},
      {"translate(1) skewX(5) translate(1)", {2, 2}},
      {"translate(1)\ttranslate(1)", {2, 2}},
      {"rotate(30) translate(-1 -1) translate(10 0)",
       {10 * std::cos(std::numbers::pi / 6), 10 * std::sin(std::numbers::pi / 6)}},
  };
  for (const auto& [text, point] : whereOneOneGoes) {
    const CGPoint mapped = apply(SVGTransformParser::parseTransform(text), {1, 1});
    EXPECT_NEAR(mapped.x, point.x, 1e-12) << text;
    EXPECT_NEAR(mapped.y, point.y, 1e-12) << text;
  }
  EXPECT_EQ(SVGTransformParser::parseTransform("scale(3)").m33, 1);
}

TEST(Elements, CommonAttributes) {
  const auto all = elementOf(
      "<g id='i' title='t' class='c' filter='f' clip-path='p' stroke='#abc' fill='none' transform='' style='s'/>");
  EXPECT_EQ(all->name(), "g");
  EXPECT_EQ(all->id(), "i");
  EXPECT_EQ(all->title(), "t");
  EXPECT_EQ(all->className(), "c");
  EXPECT_EQ(all->filter(), "f");
  EXPECT_EQ(all->clipPath(), "p");
  EXPECT_EQ(all->attr().find("style"), "s");
  EXPECT_EQ(bytesOf(all->strokeColor().value()), 0xaabbccffU);
  EXPECT_EQ(bytesOf(all->fillColor().value()), 0U);
  ASSERT_NE(all->transform(), nullptr);
  EXPECT_EQ(*all->transform(), CATransform3DIdentity);

  const auto none = elementOf("<g/>");
  EXPECT_TRUE(!none->id() && !none->strokeColor() && !none->fillColor() && none->transform() == nullptr);

  const std::pair<const char*, double> widths[] = {{"2", 2}, {"0.1", 0.1F},      {"2px", 0},   {" 2", 0},
                                                   {"", 0},  {"1e50", INFINITY}, {"0x10", 16}, {"-1", -1}};
  for (const auto& [text, width] : widths)
    EXPECT_EQ(elementOf("<g stroke-width='" + std::string(text) + "'/>")->strokeWidth(), width) << text;
}

// The curves of circles and ellipses are among the golden trees.
TEST(Shapes, Outlines) {
  const struct {
    const char* element;
    const char* outline;
    bool clickable;
  } cases[] = {
      {"<line x1='1' y1='2' x2='3px' y2='-4'/>", "M1,2 L3,-4", false},
      {"<line x1='1' y1='2' x2='3'/>", "", false},
      {"<rect x='0' y='0' width='10' height='5' rx='2'/>", "M0,0 L10,0 L10,5 L0,5 Z", true},
      {"<rect x='' y='a' width='10' height='5' id='background'/>", "M0,0 L10,0 L10,5 L0,5 Z", false},
      {"<rect x='0' width='10' height='5'/>", "", false},
      {"<circle cx='1' cy='2' r='0'/>", "M1,2 C1,2 1,2 1,2 C1,2 1,2 1,2 C1,2 1,2 1,2 C1,2 1,2 1,2", true},
      {"<circle cx='1' cy='2'/>", "", false},
      {"<ellipse cx='1' cy='2' rx='0' ry='0'/>", "M1,2 C1,2 1,2 1,2 C1,2 1,2 1,2 C1,2 1,2 1,2 C1,2 1,2 1,2 Z", true},
      {"<ellipse cx='1' cy='2' rx='3'/>", "", false},
      {"<polyline points='0 0 10 0 10'/>", "M0,0 L10,0", false},
      {"<polyline points='10 10,20\n20&#10;30 10'/>", "M10,10 L20,20 L30,10", false},
      {"<polyline points='1 2 3 4&#9;5 6'/>", "M1,2 L3,4", false},
      {"<polyline points='1'/>", "", false},
      {"<polyline/>", "", false},
      {"<polygon points='0,0 10,0 0,10'/>", "M0,0 L10,0 L0,10 Z", true},
      {"<polygon points='0,0 10,0 0,10' id='background'/>", "M0,0 L10,0 L0,10 Z", false},
      {"<polygon points=''/>", "", true},
      {"<polygon/>", "", false},
      {"<g d='M0 0L1 1' points='1 2'/>", "", false},
  };
  for (const auto& one : cases) {
    const auto element = elementOf(one.element);
    EXPECT_EQ(outlineText(element->path().cgPath()), one.outline) << one.element;
    EXPECT_EQ(element->clickable(), one.clickable) << one.element;
  }
}

}  // namespace
}  // namespace quellaro
