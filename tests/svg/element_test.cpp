#include "svg/element.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "layer_text.h"
#include "svg/color.h"
#include "svg/document.h"
#include "svg/transform_parser.h"

namespace quellaro {
namespace {

// The first element of a document made of this one.
std::shared_ptr<SVGElement> elementOf(const std::string& text) {
  static std::vector<std::shared_ptr<SVGDocument>> kept;
  kept.push_back(SVGDocument::parse("<svg>" + text + "</svg>"));
  return kept.back()->elements()->at(0);
}

TEST(Colors, HexadecimalDigitsAndNothingElse) {
  const std::pair<const char*, const char*> cases[] = {
      {"#abc", "#aabbccff"},
      {"abc", "#aabbccff"},
      {"#ABCD", "#aabbccdd"},
      {"f0a8", "#ff00aa88"},
      {"#112233", "#112233ff"},
      {"#11223380", "#11223380"},
      {"12345", "#012345ff"},
      {"#1234567", "#234567ff"},
      {"#112233445566", "#33445566"},
      {"#ffffffffffffffffff", "#ffffffff"},
      {"#00000000000000000112233445", "#12233445"},
      {"#", "#000000ff"},
      {"", "#000000ff"},
      {"a", "#00000aff"},
      {"##abc", "#00000000"},
      {"none", "#00000000"},
      {"red", "#00000000"},
      {"url(#a)", "#00000000"},
      {" #abc", "#00000000"},
      {" ff0000", "#00000000"},
      {"-ff0000", "#00000000"},
      // The digits that a word starts with count.
      {"black", "#0000000b"},
      {"blue", "#000000bb"},
      {"fuchsia", "#0000000f"},
      {"0xff0000", "#00ff0000"},
      {"0xabc", "#000abcff"},
      {"#0xf", "#00000000"},
      {"f\xC3\xA9"
       "0",
       "#000000ff"},
      {"a\xC3\xA9", "#0000000a"},
  };
  for (const auto& [text, color] : cases) EXPECT_EQ(colorText(colorFromHexString(text)), color) << text;
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
      {"translate10 20", {11, 21}},
      {"scale(2)", {2, 2}},
      {"scale()", {0, 0}},
      {"scale(2, 3) translate(1)", {2, 2}},
      {"translate(10, 0) scale(2)", {12, 2}},
      {"scale(2)translate(10, 0)", {22, 2}},
      {"rotate(-90)", {1, -1}},
      {"rotate(45)", {0, 2 * root}},
      {"rotate(45, 10, 10) translate(5)", {0, 2 * root}},
      {"matrix(1 0 0 1 50 50)", {1, 1}},
      {"matrix(1 0 0) scale(2)", {2, 2}},
      {"matrix(1 2 3 4 5 6 7) scale(2)", {1, 1}},
      {"translate(1) skewX(5) translate(1)", {2, 2}},
      {"translateX(5)", {1, 1}},
      {"translate(1)\ttranslate(1)", {2, 2}},
      {"nonsense", {1, 1}},
  };
  for (const auto& [text, point] : whereOneOneGoes) {
    const CGPoint mapped = apply(SVGTransformParser::parseTransform(text), {1, 1});
    EXPECT_NEAR(mapped.x, point.x, 1e-12) << text;
    EXPECT_NEAR(mapped.y, point.y, 1e-12) << text;
  }
  const CGPoint turned = apply(SVGTransformParser::parseTransform("rotate(30) translate(10 0)"), {0, 0});
  EXPECT_NEAR(turned.x, 10 * std::cos(std::numbers::pi / 6), 1e-12);
  EXPECT_NEAR(turned.y, 10 * std::sin(std::numbers::pi / 6), 1e-12);
  EXPECT_EQ(SVGTransformParser::parseTransform("scale(3)").m33, 1);
  EXPECT_EQ(SVGTransformParser::parseTransform("rotate(90)").m12, 1);
}

TEST(Elements, CommonAttributes) {
  const auto all = elementOf(
      "<g id='i' title='t' class='c' filter='f' clip-path='p' stroke='#abc' stroke-width='2' fill='none' "
      "transform='' style='fill:red'/>");
  EXPECT_EQ(all->name(), "g");
  EXPECT_EQ(all->id(), "i");
  EXPECT_EQ(all->title(), "t");
  EXPECT_EQ(all->className(), "c");
  EXPECT_EQ(all->filter(), "f");
  EXPECT_EQ(all->clipPath(), "p");
  EXPECT_EQ(all->attr().find("style"), "fill:red");
  EXPECT_EQ(colorText(all->strokeColor().value()), "#aabbccff");
  EXPECT_EQ(colorText(all->fillColor().value()), "#00000000");
  ASSERT_NE(all->transform(), nullptr);
  EXPECT_EQ(*all->transform(), CATransform3DIdentity);

  const auto none = elementOf("<g/>");
  EXPECT_TRUE(!none->id() && !none->title() && !none->className() && !none->filter() && !none->clipPath());
  EXPECT_TRUE(!none->strokeColor() && !none->fillColor() && none->transform() == nullptr && !none->clickable());

  const std::pair<const char*, double> widths[] = {{"2", 2}, {"0.1", 0.1F},      {"2px", 0},   {" 2", 0},
                                                   {"", 0},  {"1e50", INFINITY}, {"0x10", 16}, {"-1", -1}};
  for (const auto& [text, width] : widths)
    EXPECT_EQ(elementOf("<g stroke-width='" + std::string(text) + "'/>")->strokeWidth(), width) << text;
}

TEST(Shapes, Outlines) {
  struct Case {
    const char* element;
    const char* outline;
    bool clickable;
  };
  const Case cases[] = {
      {"<line x1='1' y1='2' x2='3px' y2='-4'/>", "M1,2 L3,-4", false},
      {"<line x1='1' y1='2' x2='3'/>", "", false},
      {"<rect x='0' y='0' width='10' height='5' rx='2'/>", "M0,0 L10,0 L10,5 L0,5 Z", true},
      {"<rect x='' y='a' width='10' height='5' id='background'/>", "M0,0 L10,0 L10,5 L0,5 Z", false},
      {"<rect x='0' width='10' height='5'/>", "", false},
      {"<circle cx='1' cy='2' r='0'/>", "M1,2 C1,2 1,2 1,2 C1,2 1,2 1,2 C1,2 1,2 1,2 C1,2 1,2 1,2", true},
      {"<circle cx='1' cy='2'/>", "", false},
      {"<ellipse cx='1' cy='2' rx='3'/>", "", false},
      {"<polyline points='0 0 10 0 10'/>", "M0,0 L10,0", false},
      {"<polyline points='10,10 20,20 30,10'/>", "M10,10 L20,20 L30,10", false},
      {"<polyline points='10 10,20\n20&#10;30 10'/>", "M10,10 L20,20 L30,10", false},
      {"<polyline points='1 2 3 4&#9;5 6'/>", "M1,2 L3,4", false},
      {"<polyline points='1'/>", "", false},
      {"<polyline points='x'/>", "", false},
      {"<polyline/>", "", false},
      {"<polygon points='0,0 10,0 0,10'/>", "M0,0 L10,0 L0,10 Z", true},
      {"<polygon points='0,0 10,0 0,10' id='background'/>", "M0,0 L10,0 L0,10 Z", false},
      {"<polygon points=''/>", "", true},
      {"<polygon/>", "", false},
      {"<path d='M0 0L1 1'/>", "M0,0 L1,1", false},
      {"<path/>", "", false},
      {"<g d='M0 0L1 1' points='1 2'/>", "", false},
  };
  for (const Case& one : cases) {
    const auto element = elementOf(one.element);
    EXPECT_EQ(outlineText(element->path().cgPath()), one.outline) << one.element;
    EXPECT_EQ(element->clickable(), one.clickable) << one.element;
  }
}

// Where a cubic segment is at its middle.
CGPoint middle(CGPoint a, CGPoint b, CGPoint c, CGPoint d) {
  return {(a.x + 3 * b.x + 3 * c.x + d.x) / 8, (a.y + 3 * b.y + 3 * c.y + d.y) / 8};
}

void expectOnOval(const CGPath& path, CGPoint center, double rx, double ry) {
  const auto distance = [&](CGPoint p) { return std::hypot((p.x - center.x) / rx, (p.y - center.y) / ry); };
  const PathPoints points = path.points();
  for (std::size_t i = 0; i + 3 < points.size(); i += 3) {
    EXPECT_NEAR(distance(points[i]), 1, 1e-12);
    EXPECT_NEAR(distance(middle(points[i], points[i + 1], points[i + 2], points[i + 3])), 1, 3e-4);
  }
}

TEST(Shapes, CirclesAndArcsAreRound) {
  const auto circleElement = elementOf("<circle cx='10' cy='20' r='5'/>");
  const CGPath& circle = circleElement->path().cgPath();
  EXPECT_EQ(outlineText(circle).substr(0, 7), "M15,20 ");
  EXPECT_EQ(circle.points()[3], (CGPoint{10, 25}));  // clockwise, y grows downwards
  EXPECT_EQ(circle.points().back(), (CGPoint{15, 20}));
  EXPECT_NE(circle.verbs().back(), PathVerb::Close);
  expectOnOval(circle, {10, 20}, 5, 5);

  const auto ellipseElement = elementOf("<ellipse cx='10' cy='10' rx='5' ry='2'/>");
  const CGPath& ellipse = ellipseElement->path().cgPath();
  EXPECT_EQ(ellipse.verbs().back(), PathVerb::Close);
  EXPECT_EQ(ellipse.points().size(), 13U);
  expectOnOval(ellipse, {10, 10}, 5, 2);

  struct Arc {
    double from, to;
    bool clockwise;
    double turned;
  };
  for (const Arc& arc : {Arc{0, 1, true, 1}, Arc{0, 1, false, 1 - 2 * std::numbers::pi}, Arc{2, 1, false, -1},
                         Arc{-1, 3, true, 4}, Arc{0, 100, true, 2 * std::numbers::pi}, Arc{1, 1, true, 0}}) {
    UIBezierPath path;
    path.moveToPoint({0, 0});
    path.addArcWithCenter({1, 1}, 2, arc.from, arc.to, arc.clockwise);
    EXPECT_EQ(path.cgPath().verbs()[1], PathVerb::Line);
    const double last = arc.from + arc.turned;
    EXPECT_NEAR(path.cgPath().points().back().x, 1 + 2 * std::cos(last), 1e-12);
    EXPECT_NEAR(path.cgPath().points().back().y, 1 + 2 * std::sin(last), 1e-12);
  }
}

}  // namespace
}  // namespace quellaro
