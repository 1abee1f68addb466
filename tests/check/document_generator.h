#pragma once

#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>

namespace quellaro {

// Makes frames, the same for the same seed: some that the engine draws as everybody does, and as many with one or
// several of the things that it does not know, or with a mistake in their data.
class DocumentGenerator {
 public:
  explicit DocumentGenerator(std::uint32_t seed) : random_(seed) {}

  std::string document() {
    mayTrouble_ = chance(50);
    return "<svg xmlns='http://www.w3.org/2000/svg' " +
           either({"width='100' height='100'>", "width='100' height='100' viewBox='0 0 100 100'>"},
                  {"width='100' height='100' viewBox='0 0 60 60'>", "width='100' height='50'>",
                   "viewBox='0 0 100 100'>", "width='100%' height='100%' viewBox='0 0 100 100'>",
                   "width='100' height='100' fill='#c00'>", "width='100' height='100' stroke='#00c' stroke-width='4'>",
                   "width='100' height='100' transform='rotate(30)'>"}) +
           content(0) + "</svg>";
  }

 private:
  using Texts = std::initializer_list<const char*>;

  unsigned below(std::size_t bound) { return static_cast<unsigned>(random_() % bound); }
  bool chance(unsigned percent) { return below(100) < percent; }
  std::string oneOf(Texts texts) { return texts.begin()[below(texts.size())]; }
  // Whether something troublesome comes next: seldom, and in half of the documents never.
  bool isTrouble() { return mayTrouble_ && chance(12); }
  std::string either(Texts usual, Texts odd) { return oneOf(isTrouble() ? odd : usual); }

  std::string content(int depth) {
    std::string text;
    for (unsigned i = 0; i <= below(3); ++i) text += element(depth);
    return text;
  }

  std::string element(int depth) {
    if (isTrouble())
      return oneOf({"<text x='5' y='50' font-size='40' fill='#000'>A</text>",
                    "<defs><rect x='3' y='3' width='40' height='30' fill='#0a0'/></defs>",
                    "<defs><linearGradient id='a'><stop offset='0' stop-color='#f00'/></linearGradient></defs>",
                    "<clipPath id='c'><circle cx='50' cy='50' r='30' fill='#f0f'/></clipPath>",
                    "<mask id='m'><rect x='0' y='0' width='50' height='50' fill='#fff'/></mask>",
                    "<symbol id='s'><circle cx='50' cy='50' r='30' fill='#f0f'/></symbol>", "<use href='#s'/>",
                    "<a fill='#00f'><path d='M5 5H60V60Z'/></a>",
                    "<switch><rect x='5' y='5' width='50' height='9' fill='#a00'/><rect x='5' y='50' width='50' "
                    "height='9' fill='#a00'/></switch>",
                    "<style>path { fill: #123456 }</style>",
                    "<svg x='10' y='10' width='50' height='50'><circle cx='25' cy='25' r='40' fill='#ccc'/></svg>",
                    "<title>A picture</title>", "<unheard-of><rect x='3' y='3' width='40' height='30'/></unheard-of>"});
    if (depth <= 2 && chance(30))
      return "<g" + paint(chance(25)) + transform() + attribute() + ">" + content(depth + 1) + "</g>";
    return shape() + paint(!isTrouble()) + transform() + attribute() + "/>";
  }

  std::string shape() {
    const std::string text = either(
        {"<rect x='@' y='@' width='@' height='@'", "<circle cx='@' cy='@' r='@'",
         "<ellipse cx='@' cy='@' rx='@' ry='@'", "<line x1='@' y1='@' x2='@' y2='@'", "<polyline points='##,##,##'",
         "<polygon points='##,##\n##,##'", "<path d='", "<path d='", "<path d='"},
        {"<rect x='@' width='@' height='@'", "<rect x='@' y='@' width='@' height='@' rx='@'", "<circle cx='@' r='@'",
         "<polyline points='##,##,#'", "<polyline points='##,##&#9;##'", "<polygon points='##,#e,##,##'"});
    if (text != "<path d='") return filled(text);
    std::string data = filled("M##");
    for (unsigned i = 0; i < 2 + below(6); ++i)
      data += filled(either({"L##", "l####", "H#", "V#", "h##", "v#\n", "C######", "c############", "C######S####",
                             "c######s####s####", "Q####", "q####T##", "Q####t##", "ZM##", "M##l##"},
                            {"A20 15 0 0 1 ##", "S####", "T##", "ZL##", "zm##", "M####", "zzM##"}));
    return text + (isTrouble() ? damaged(data) : data) + "'";
  }

  // Each '#' becomes a coordinate, with something between it and the next; each '@' the value of an attribute.
  std::string filled(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] == '@')
        result += isTrouble() ? oneOf({"30%", "2em", "7mm", "wide", "", "-20", "0", "12.", " 18 ", "+9", "3e1", "20px"})
                              : number() + (chance(10) ? "px" : "");
      else
        result += text[i] == '#' ? number() : std::string(1, text[i]);
      if (text.substr(i, 2) == "##") result += oneOf({" ", ",", ", ", "\n", "  "});
    }
    return result;
  }

  std::string number() {
    const std::string whole = std::to_string(below(100));
    return chance(30) ? whole + "." + std::to_string(below(100)) : whole;
  }

  std::string color() {
    return either({"#f00", "#3a7", "#336699", "#C0FFEE", "#1188ff80", "#e40c", "none", "#000000"},
                  {"red", "rgb(20,60,200)", "url(#a)", "12ab34", "#12345", " #f00", "#f00 ", "currentColor",
                   "transparent", "inherit", "dodgerblue", "#ff00gg", ""});
  }

  std::string paint(bool hasFill) {
    std::string text;
    if (hasFill) text += " fill='" + color() + "'";
    if (!chance(40)) return text;
    text += " stroke='" + color() + "'";
    if (!isTrouble()) text += filled(" stroke-width='" + either({"1", "2.5", "6", "0"}, {"@"}) + "'");
    return text + (chance(70) ? " stroke-miterlimit='10'" : "");
  }

  std::string attribute() {
    if (!isTrouble())
      return chance(80) ? ""
                        : " " + oneOf({"opacity='1'", "fill-rule='nonzero'", "data-name='x'", "class='a b'",
                                       "stroke-linecap='butt'", "stroke-dashoffset='3'"});
    return " " +
           oneOf({"opacity='0.4'", "fill-opacity='.5'", "stroke-opacity='30%'", "fill-rule='evenodd'",
                  "stroke-linejoin='round'", "stroke-linecap='square'", "stroke-dasharray='4 3'", "visibility='hidden'",
                  "display='none'", "style='fill:#123456;stroke:none'", "clip-path='url(#c)'", "mask='url(#m)'",
                  "filter='url(#f)'", "paint-order='stroke'", "vector-effect='non-scaling-stroke'",
                  "stroke-miterlimit='1'", "shape-rendering='crispEdges'", "systemLanguage='xx'"});
  }

  std::string transform() {
    if (!isTrouble() && chance(80)) return "";
    const std::string text = either({"translate(4 -3)", "translate(5,6) rotate(20)", "scale(.8)", "rotate(-35)",
                                     "scale(2,2)", "rotate(15 0 0)", "", "translate(3 0)scale(1.2)"},
                                    {"matrix(1 .2 -.2 1 9 4)", "skewX(20)", "rotate(30 40 40)", "scale(1.5 .5)",
                                     "translate(12)", "TRANSLATE(9 9)", "rotate(10deg)", "scale(2 2) rotate(9)",
                                     "translate(4,,4)", "translate(5&#9;9)", "translate(5 9", "scale(-1 1)"});
    return " transform='" + (isTrouble() ? damaged(text) : text) + "'";
  }

  // A character taken out, put in or changed.
  std::string damaged(std::string data) {
    const std::size_t at = below(data.size() + 1);
    const unsigned way = below(3);
    if (way > 0 && at < data.size()) data.erase(at, 1);
    if (way < 2)
      data.insert(at, oneOf({"M", "L", "z", "Z", "s", "t", "a",    "h",     "0", "7", ".",
                             ",", "-", "+", " ", "e", "%", "&#9;", "&#10;", "(", ")", "zM"}));
    return data;
  }

  std::mt19937 random_;
  bool mayTrouble_ = false;
};

}  // namespace quellaro
