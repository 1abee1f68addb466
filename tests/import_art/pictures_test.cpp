// What frames look like, beside the drawing library's own picture of their sources.
#include <gtest/gtest.h>

#include <string>

#include "import_art/fidelity.h"

namespace {

struct Drawing {
  const char* what;
  const char* content;
  const char* root = R"svg(viewBox="0 0 100 100")svg";
};

std::string documentOf(const Drawing& drawing) {
  return R"svg(<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" )svg" +
         std::string(drawing.root) + '>' + drawing.content + "</svg>";
}

const Drawing kDrawings[] = {
    {"plain strokes, closed and open",
     R"svg(<path d="M10 10H90V40Z" fill="none" stroke="#00f" stroke-width="6" stroke-miterlimit="10"/>
        <path d="M10 60L50 90L90 60" fill="none" stroke="#a00" stroke-width="4"/>)svg"},
    {"round and square ends and joins, bevels, pointed corners",
     R"svg(<g fill="none" stroke="#000" stroke-width="8"><path d="M10 10L40 40L60 12" stroke-linecap="round" stroke-linejoin="round"/>
        <path d="M70 10L90 40L70 44" stroke-linecap="square" stroke-linejoin="bevel"/>
        <path d="M10 60L50 62L12 70" stroke-miterlimit="20"/><path d="M10 85L50 88L12 92" stroke-miterlimit="2"/></g>)svg"},
    {"curves that bend within the pen, cusps, dots",
     R"svg(<g fill="none" stroke="#063" stroke-width="12" stroke-linecap="round" stroke-linejoin="round">
        <path d="M20 30a4 4 0 0 1 8 0a4 4 0 0 1 8 0"/><path d="M50 20C95 60 45 60 90 20"/><path d="M10 75c30 -30 30 30 0 10"/>
        <path d="M60 80h0"/><path d="M70 80h.01"/><circle cx="85" cy="80" r="7"/></g>)svg"},
    {"dashes on lines, curves and rings",
     R"svg(<g fill="none" stroke="#309" stroke-width="5"><path d="M5 10H95" stroke-dasharray="10 4 2"/>
        <circle cx="30" cy="60" r="22" stroke-dasharray="12 6" stroke-dashoffset="5"/>
        <rect x="62" y="40" width="30" height="40" rx="9" stroke-dasharray="0 8" stroke-linecap="round"/></g>)svg"},
    {"a pen that is no circle",
     R"svg(<g transform="rotate(20 50 50) scale(1 .3)"><circle cx="50" cy="160" r="35" fill="none" stroke="#000" stroke-width="12"/></g>
        <path transform="matrix(-1 .2 .5 1 60 0)" d="M10 10H40V30" fill="none" stroke="#c00" stroke-width="6" stroke-linejoin="round"/>)svg"},
    {"even-odd, nested and crossing, level and slanted",
     R"svg(<path fill-rule="evenodd" d="M5 5H45V45H5ZM15 15H35V35H15Z"/><path fill-rule="evenodd" fill="#900" d="M75 5L90 48L53 20H97L60 48Z"/>
        <path fill-rule="evenodd" fill="#090" d="M30 55a20 20 0 1 0 .1 0zM45 60a15 15 0 1 0 .1 0z"/><path fill-rule="evenodd" d="M60 60H95V70H70V95H60Z"/>)svg"},
    {"clips: of a circle, of a rule of their own, within others, of strokes",
     R"svg(<clipPath id="a"><circle cx="30" cy="30" r="20"/></clipPath><clipPath id="b" clip-path="url(#a)"><rect x="20" y="10" width="40" height="20"/></clipPath>
        <clipPath id="c"><path clip-rule="evenodd" d="M55 55H95V95H55ZM65 65H85V85H65Z"/></clipPath>
        <g clip-path="url(#a)"><rect width="40" height="100" fill="#08f"/></g><rect width="100" height="100" fill="#f80" clip-path="url(#b)"/>
        <path d="M50 75Q75 50 98 75" fill="none" stroke="#000" stroke-width="14" stroke-linecap="round" clip-path="url(#c)"/>)svg"},
    {"round strokes: rings with corners, in a sheer group, sheer themselves",
     R"svg(<g fill="none" stroke="#a20" stroke-width="9" stroke-linejoin="round"><path d="M20 10L40 40H8Z"/><path d="M60 20q20 -20 30 0t-8 25z"/>
        <path d="M10 60L30 90L50 60" stroke-opacity=".5" stroke-linecap="round"/><g opacity=".5"><path d="M60 60L75 90L90 60" stroke-linecap="round"/></g></g>)svg"},
    {"group opacity over members that overlap",
     R"svg(<rect y="40" width="100" height="20" fill="#fc0"/><g opacity=".5"><circle cx="40" cy="50" r="30" fill="#00f"/><circle cx="60" cy="50" r="30" fill="#f00"/>
        <g opacity=".7"><rect x="30" y="20" width="40" height="15"/><rect x="45" y="10" width="10" height="70" fill="#fff" fill-opacity=".5"/></g></g>)svg"},
    {"masks: of light, of holes, of alpha",
     R"svg(<mask id="m"><rect width="80" height="80" fill="#fff"/><circle cx="30" cy="30" r="15" fill="#808080"/><circle cx="30" cy="30" r="8" fill="#000"/></mask>
        <mask id="n" style="mask-type:luminance" maskUnits="userSpaceOnUse" x="50" y="50" width="40" height="20"><path d="M0 0H100V100H0Z" fill="#fff"/></mask>
        <g mask="url(#m)"><circle cx="50" cy="50" r="45" fill="#06c"/></g><g style="mask:url(#n)" transform="translate(5 5)"><rect width="100" height="100" fill="#fa0"/></g>)svg"},
    {"the same drawn twice, whose edges are darker",
     R"svg(<path id="p" d="M5 10L95 14M5 30L95 37M5 50L95 61M5 70L95 84" fill="none" stroke="#000"/><use href="#p"/>)svg"},
    {"a linear gradient, slanted, with three colours",
     R"svg(<linearGradient id="g" gradientTransform="rotate(30)"><stop stop-color="#f00"/><stop offset=".4" stop-color="#ff0"/><stop offset="1" stop-color="#00f"/></linearGradient>
        <path d="M10 10H90V60Q50 110 10 60Z" fill="url(#g)"/>)svg"},
    {"radial gradients: with a focus, beyond the shape, repeated",
     R"svg(<radialGradient id="g" fx=".3" fy=".3"><stop stop-color="#fff"/><stop offset="1" stop-color="#036"/></radialGradient>
        <radialGradient id="h" gradientUnits="userSpaceOnUse" cx="75" cy="25" r="12" spreadMethod="reflect"><stop stop-color="#fd8"/><stop offset="1" stop-color="#c40"/></radialGradient>
        <circle cx="30" cy="65" r="28" fill="url(#g)"/><rect x="55" y="5" width="40" height="40" fill="url(#h)"/>)svg"},
    {"gradients that fade",
     R"svg(<linearGradient id="g"><stop stop-color="#000"/><stop offset="1" stop-color="#000" stop-opacity="0"/></linearGradient>
        <radialGradient id="h"><stop stop-color="#fff" stop-opacity=".9"/><stop offset="1" stop-color="#fff" stop-opacity="0"/></radialGradient>
        <rect x="5" y="5" width="90" height="40" fill="url(#g)"/><circle cx="50" cy="70" r="25" fill="#c00"/><circle cx="45" cy="62" r="15" fill="url(#h)"/>)svg"},
    {"a pattern, in a stroke too",
     R"svg(<pattern id="p" width="16" height="8" patternUnits="userSpaceOnUse"><path d="M0 0H8V8H12V4H0Z" fill="green"/></pattern>
        <rect x="5" y="5" width="50" height="20" fill="url(#p)"/><path d="M10 44H60" stroke="url(#p)" stroke-width="20"/>)svg",
     R"svg(viewBox="0 0 64 64")svg"},
    {"style sheets, symbols, references and viewports",
     R"svg(<style>.a{fill:#0a0}#b{fill:none;stroke:red;stroke-width:3}</style><symbol id="s" viewBox="0 0 10 10"><path class="a" d="M0 0H10L5 10Z"/></symbol>
        <use xlink:href="#s" x="5" y="5" width="30" height="30"/><rect id="b" x="50" y="10" width="30" height="20"/>
        <svg x="10" y="50" width="80" height="40" viewBox="0 0 10 10"><circle cx="5" cy="5" r="8"/></svg>)svg"},
    {"what lies outside of a wide viewport is cut off",
     R"svg(<circle cx="50" cy="25" r="45" fill="#639"/><path d="M-50 25H150" stroke="#fff" stroke-width="9"/>)svg",
     R"svg(width="100" height="50")svg"},
    {"a viewport filled unevenly", R"svg(<circle cx="5" cy="5" r="4" fill="#c63" stroke="#000"/>)svg",
     R"svg(width="60" height="30" viewBox="0 0 10 10" preserveAspectRatio="none")svg"},
};

TEST(ImportedArt, LooksLikeItsSource) {
  for (const Drawing& drawing : kDrawings) {
    const std::string source = documentOf(drawing);
    const auto imported = halvo::importFrame(source, {});
    const auto* frame = std::get_if<halvo::ArtFrame>(&imported);
    ASSERT_TRUE(frame) << drawing.what;
    const Fidelity fidelity = fidelityOf(source, *frame);
    EXPECT_TRUE(fidelity.isRight()) << drawing.what << ": mean " << fidelity.mean << ", far off " << fidelity.farOff
                                    << " %\n"
                                    << frame->document.substr(0, 2000);
    EXPECT_NE(frame->elements, 0U) << drawing.what;
  }
}

// Curves stay curves wherever they are cut, and strokes stay strokes, with dots where they are round and dots show.
TEST(ImportedArt, IsSmall) {
  struct Case {
    Drawing drawing;
    std::size_t mostBytes;
  };
  const Case cases[] = {
      {{"a stroke that the player draws itself",
        R"svg(<path d="M10 10C30 90 70 90 90 10" fill="none" stroke="#000"/>)svg"},
       155},
      {{"a clip that cuts nothing",
        R"svg(<clipPath id="c"><path d="M0 0H100V100H0Z"/></clipPath><circle cx="50" cy="50" r="20" clip-path="url(#c)"/>)svg"},
       177},
      {{"a circle, half of it",
        R"svg(<clipPath id="c"><path d="M0 0H50L51 100H0Z"/></clipPath><circle cx="50" cy="50" r="20" clip-path="url(#c)"/>)svg"},
       208},
      {{"a circle within another",
        R"svg(<path fill-rule="evenodd" d="M50 20a30 30 0 1 0 .1 0zM50 30a20 20 0 1 0 .1 0z"/>)svg"},
       362},
      {{"lines with round ends: a corner, an end upon another line, a dot",
        R"svg(<path d="M10 10L90 50L50 90M50 30V80M20 80h.01" fill="none" stroke="#000" stroke-width="5" stroke-linecap="round" stroke-linejoin="round"/>)svg"},
       353},
      {{"a round corner too blunt to show, in a ring",
        R"svg(<path d="M50 20a30 30 0 1 0 .1 0z" fill="none" stroke="#000" stroke-width="5" stroke-linejoin="round"/>)svg"},
       250},
      {{"neighbours of one colour, in one outline", R"svg(<path d="M1 1h9v9z"/><path d="M20 1h9v9z"/>)svg"}, 124},
      {{"what nobody sees",
        R"svg(<rect x="200" width="9" height="9"/><rect width="9" height="9" opacity="0"/><path d="M5 5"/>)svg"},
       71},
  };
  for (const Case& c : cases) {
    const auto imported = halvo::importFrame(documentOf(c.drawing), {});
    const auto& frame = std::get<halvo::ArtFrame>(imported);
    EXPECT_LE(frame.document.size(), c.mostBytes) << c.drawing.what << '\n' << frame.document;
  }
}

}  // namespace
