#include <gtest/gtest.h>
#include <zlib.h>

#include <optional>
#include <string>
#include <thread>

#include "import/art/import_frame.h"
#include "import/art/path_text.h"
#include "import/art/region.h"

namespace {

using halvo::ArtError;
using halvo::ArtFrame;
using halvo::ArtLoss;
using namespace halvo::art;

const std::string kRoot =
    R"svg(<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" viewBox="0 0 100 100">)svg";

std::string repeated(const std::string& text, int times) {
  std::string result;
  for (int i = 0; i < times; ++i) result += text;
  return result;
}

std::string packed(const std::string& text) {
  std::string result(compressBound(text.size()) + 64, '\0');
  z_stream stream{};
  deflateInit2(&stream, 1, Z_DEFLATED, 15 + 16, 9, Z_DEFAULT_STRATEGY);
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(result.data());
  stream.avail_out = static_cast<uInt>(result.size());
  deflate(&stream, Z_FINISH);
  result.resize(stream.total_out);
  deflateEnd(&stream);
  return result;
}

TEST(ImportArt, SaysWhyADocumentCannotBeRead) {
  struct Case {
    std::string document;
    std::optional<std::size_t> line;
    const char* reason;
  };
  const std::string rect = R"svg(<rect width="9" height="9"/></svg>)svg";
  const Case cases[] = {
      {"<svg xmlns='http://www.w3.org/2000/svg'>\n<g>\n</svg>", 3, "end of data"},
      {kRoot + "<g>\n<rect width='9'", 2, ""},
      {"", std::nullopt, ""},
      {"no XML at all", 1, ""},
      {"<html><body/></html>", std::nullopt, "svg"},
      {"<svg xmlns='http://www.w3.org/2000/svg' width='0' height='9'/>", std::nullopt, "size"},
      {"<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 9 0'/>", std::nullopt, "size"},
      {"<svg xmlns='http://www.w3.org/2000/svg'><path d='M0 0L9 9'/></svg>", std::nullopt, "size"},
      {"<!DOCTYPE svg [<!ENTITY x SYSTEM 'file:///etc/passwd'>]>" + kRoot + "<text>&x;</text></svg>", 1, "x"},
      {packed(kRoot + rect).substr(0, 60), std::nullopt, "cut off"},
      {packed(kRoot + repeated(" ", 70 << 20) + "</svg>"), std::nullopt, "64 MB"},
      {kRoot + repeated("<g/>", 200000) + "</svg>", std::nullopt, "elements"},
      {kRoot + repeated("<g>", 5000) + repeated("</g>", 5000) + "</svg>", 1, "depth"},
  };
  for (const Case& c : cases) {
    const auto result = halvo::importFrame(c.document, {});
    const auto* error = std::get_if<ArtError>(&result);
    ASSERT_TRUE(error) << c.document.substr(0, 200);
    EXPECT_EQ(error->line, c.line) << error->reason;
    EXPECT_NE(error->reason.find(c.reason), std::string::npos) << error->reason << " of " << c.document.substr(0, 200);
    EXPECT_FALSE(error->reason.empty());
  }
  EXPECT_TRUE(std::holds_alternative<ArtFrame>(halvo::importFrame(packed(kRoot + rect), {})));
}

TEST(ImportArt, TellsWhatIsLost) {
  struct Case {
    const char* content;
    ArtLoss loss;
    const char* element;
    const char* what;
  };
  const Case cases[] = {
      {R"svg(<filter id="f"><feGaussianBlur stdDeviation="2"/></filter><rect width="9" height="9" filter="url(#f)"/>)svg",
       ArtLoss::LeftOut, "filter#f", "a blur"},
      {R"svg(<filter id="f"><feOffset dx="2"/></filter><rect width="9" height="9" style="filter : url(#f)"/>)svg",
       ArtLoss::LeftOut, "filter#f", "a shadow"},
      {R"svg(<style>.a{filter:url(#f)}</style><rect class="a" width="9" height="9"/>)svg", ArtLoss::LeftOut, "filter",
       "a filter"},
      {R"svg(<image id="logo" href="file:///etc/passwd" width="9" height="9"/>)svg", ArtLoss::LeftOut, "image#logo",
       "not fetched"},
      {R"svg(<image xlink:href="data:image/png;base64,AAAA" width="9" height="9"></image>)svg", ArtLoss::LeftOut,
       "image", "pixels"},
      {R"svg(<use xlink:href="other.svg#a"/>)svg", ArtLoss::LeftOut, "use", "outside of the file"},
      {R"svg(<style>@import url(http://127.0.0.1:9/a.css);</style>)svg", ArtLoss::LeftOut, "style", "not read"},
      {R"svg(<script>while(1);</script>)svg", ArtLoss::LeftOut, "script", "not run"},
      {R"svg(<rect width="9" height="9"><animate attributeName="x" to="5"/></rect>)svg", ArtLoss::LeftOut, "animate",
       "animation"},
      {R"svg(<g style="mix-blend-mode:multiply"><rect width="9" height="9"/></g>)svg", ArtLoss::Approximated, "g",
       "multiply"},
      {R"svg(<mask id="m" maskContentUnits="objectBoundingBox"><rect width="1" height="1"/></mask><rect mask="url(#m)" width="9" height="9"/>)svg",
       ArtLoss::LeftOut, "mask#m", "drawn whole"},
      {R"svg(<pattern id="p" width=".001" height=".001"><rect width=".1" height=".1"/></pattern><rect width="99" height="99" fill="url(#p)"/>)svg",
       ArtLoss::LeftOut, "pattern", "too many"},
      {R"svg(<linearGradient id="g"><stop stop-color="#fff"/><stop offset="1"/></linearGradient><rect width="99" height="99" fill="url(#g)"/>)svg",
       ArtLoss::Approximated, "linearGradient", "bands"},
      {R"svg(<text y="20">a</text>)svg", ArtLoss::Approximated, "text", "fonts"},
  };
  for (const Case& c : cases) {
    const auto imported = halvo::importFrame(kRoot + c.content + "</svg>", {});
    const auto* frame = std::get_if<ArtFrame>(&imported);
    ASSERT_TRUE(frame) << c.content << std::get<ArtError>(imported).reason;
    ASSERT_EQ(frame->notes.size(), 1U) << c.content;
    EXPECT_EQ(frame->notes[0].loss, c.loss) << c.content;
    EXPECT_EQ(frame->notes[0].element, c.element);
    EXPECT_NE(frame->notes[0].what.find(c.what), std::string::npos) << frame->notes[0].what;
  }
}

// Of a small document that asks for much: an answer in seconds, whichever, and no more memory than that takes.
TEST(ImportArt, StopsWhereWorkWouldNotEnd) {
  std::string uses = "<defs><g id='a0'><path d='M1 1h9v9'/></g>";
  for (int i = 1; i < 4; ++i)
    uses += "<g id='a" + std::to_string(i) + "'>" +
            repeated("<use xlink:href='#a" + std::to_string(i - 1) + "'/>", 10) + "</g>";
  const std::string documents[] = {
      uses + "</defs><use xlink:href='#a3'/>",
      "<g id='a'><use xlink:href='#a'/></g><clipPath id='c' clip-path='url(#c)'><rect width='4' height='4'/></clipPath>"
      "<mask id='m'><rect width='9' height='9' mask='url(#m)'/></mask><rect width='9' height='9' mask='url(#m)' "
      "clip-path='url(#c)'/>",
      "<path d='M-1e9 0L1e9 50L1e30 9L-1e300 4z' stroke='red' stroke-width='1e9' stroke-linejoin='round'/><path "
      "d='Mnan 1L1 inf'/>",
      "<path d='M0 5H100' stroke='red' stroke-dasharray='.0000001'/>",
      "<linearGradient id='g' spreadMethod='repeat' x2='1e-9'><stop/><stop offset='1' "
      "stop-color='red'/></linearGradient>"
      "<rect width='9' height='9' fill='url(#g)'/>",
      "<linearGradient id='g'><stop/><stop offset='1' stop-opacity='0'/></linearGradient><g opacity='.5'>" +
          repeated("<circle cx='50' cy='50' r='40' fill='url(#g)'/><circle cx='40' cy='60' r='40' fill='url(#g)'/>",
                   60) +
          "</g>",
      "<path stroke='red' stroke-linejoin='round' d='M9 50" + repeated("l3 1l4-3 1 5-8-3", 20000) + "'/>",
  };
  for (const std::string& document : documents) {
    const auto imported = halvo::importFrame(kRoot + document + "</svg>", {});
    const auto* error = std::get_if<ArtError>(&imported);
    EXPECT_TRUE(!error || !error->reason.empty());
  }
}

TEST(ImportArt, FollowsItsOptionsAndIsTheSameOnEveryThread) {
  const std::string document =
      kRoot + R"svg(<linearGradient id="g"><stop stop-color="#fff"/><stop offset="1"/></linearGradient>
      <path d="M1.23456 1H99V99Z" fill="url(#g)"/></svg>)svg";
  const auto coarse =
      std::get<ArtFrame>(halvo::importFrame(document, {.side = 100, .precision = 0, .gradientSteps = 3}));
  EXPECT_EQ(coarse.elements, 3U) << coarse.document;
  EXPECT_EQ(coarse.document.find('.', coarse.document.find(" d=")), std::string::npos) << coarse.document;
  EXPECT_NE(coarse.document.find(R"svg(width="100" height="100")svg"), std::string::npos);
  std::string documents[2];
  std::thread other([&] { documents[1] = std::get<ArtFrame>(halvo::importFrame(document, {})).document; });
  documents[0] = std::get<ArtFrame>(halvo::importFrame(document, {})).document;
  other.join();
  EXPECT_EQ(documents[0], documents[1]);
}

TEST(PathText, IsShortAndMeansTheSameToThePlayer) {
  struct Case {
    Contour contour;
    bool isStroke;
    const char* text;
  };
  const Case cases[] = {
      {{{1, 2}, {lineTo({3, 2}), lineTo({3, 4}), lineTo({1, 2})}, true}, false, "M1 2h2v2"},
      {{{1, 2}, {lineTo({3, 2}), lineTo({3, 4})}, true}, true, "M1 2h2v2z"},
      {{{-.5, .25}, {lineTo({.5, -.25}), lineTo({-1, 2})}, false}, true, "M-.5.25l1-.5L-1 2"},
      // A control point in the corner is none to the player.
      {{{0, 0}, {curveTo({1, 1}, {0, 0}, {2, 2}), curveTo({4, 4}, {5, 5}, {6, 6})}, false},
       true,
       "M0 0c1 1 0 0 2 2 2 2 3 3 4 4"},
      {{{0, 0}, {curveTo({1, 1}, {3, 1}, {4, 0}), curveTo({5, -1}, {7, -1}, {8, 0})}, false},
       true,
       "M0 0c1 1 3 1 4 0s3-1 4 0"},
      {{{1, 1}, {lineTo({1.001, 1})}, true}, false, ""},
  };
  for (const Case& c : cases) {
    PathText text(2);
    text.add(c.contour, c.isStroke);
    EXPECT_EQ(text.text(), c.text);
  }
}

double areaOf(const Outline& outline) {
  double sum = 0;
  for (const Contour& contour : outline) {
    Point at = contour.start;
    const auto add = [&](Point to) {
      sum += cross(at, to) / 2;
      at = to;
    };
    for (const Segment& segment : contour.segments) {
      const Cubic curve = curveOf(at, segment);
      for (int i = 1; i <= 64; ++i) add(pointAt(curve, i / 64.0));
    }
    add(contour.start);
  }
  return sum;
}

TEST(Region, CutsCurvesAndKeepsThem) {
  const Outline disc{ellipse({100, 100}, {50, 0}, {0, 50})};
  const Outline half = rectangle({0, 0, 100, 300});
  const double area = areaOf(disc);
  struct Case {
    Combination how;
    double area;
  };
  const Case cases[] = {{Combination::Intersection, area / 2},
                        {Combination::Difference, area / 2},
                        {Combination::Union, 100 * 300 + area / 2}};
  for (const Case& c : cases) {
    const Outline result = combine(c.how, {disc}, {half}, Frame{});
    EXPECT_NEAR(areaOf(result), c.area, 0.5);
    ASSERT_EQ(result.size(), 1U);
    EXPECT_LE(result[0].segments.size(), 8U);
  }
}

}  // namespace
