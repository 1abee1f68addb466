#include "check/document_generator.h"

#include <cstring>

namespace quellaro {

namespace {

constexpr const char* kColors[] = {"#f00", "#3a7", "#336699", "#C0FFEE", "#1188ff80", "#e40c", "none", "#000000"};
constexpr const char* kOddColors[] = {"red",     "beige", "rgb(20,60,200)", "url(#a)",     "12ab34",  "#12345",
                                      " #f00",   "#f00 ", "currentColor",   "transparent", "inherit", "dodgerblue",
                                      "#ff00gg", ""};
constexpr const char* kAttributes[] = {
    "opacity='1'", "fill-rule='nonzero'",    "data-name='x'",         "stroke-linecap='butt'", "clip-rule='evenodd'",
    "class='a b'", "stroke-miterlimit='10'", "stroke-dashoffset='3'", "font-size='12'"};
constexpr const char* kOddAttributes[] = {"opacity='0.4'",
                                          "fill-opacity='.5'",
                                          "stroke-opacity='30%'",
                                          "fill-rule='evenodd'",
                                          "stroke-linejoin='round'",
                                          "stroke-linecap='square'",
                                          "stroke-dasharray='4 3'",
                                          "visibility='hidden'",
                                          "display='none'",
                                          "style='fill:#123456;stroke:none'",
                                          "clip-path='url(#c)'",
                                          "mask='url(#m)'",
                                          "filter='url(#f)'",
                                          "paint-order='stroke'",
                                          "vector-effect='non-scaling-stroke'",
                                          "stroke-miterlimit='1'",
                                          "shape-rendering='crispEdges'",
                                          "systemLanguage='xx'"};
constexpr const char* kTransforms[] = {"translate(4 -3)",
                                       "translate(5,6) rotate(20)",
                                       "scale(.8)",
                                       "rotate(-35)",
                                       "scale(2,2)",
                                       "rotate(15 0 0)",
                                       "",
                                       "translate(3 0)scale(1.2)"};
constexpr const char* kOddTransforms[] = {
    "matrix(1 .2 -.2 1 9 4)", "skewX(20)",         "rotate(30 40 40)", "scale(1.5 .5)",
    "translate(12)",          "TRANSLATE(9 9)",    "rotate(10deg)",    "scale(2 2) rotate(9)",
    "translate(4,,4)",        "translate(5&#9;9)", "translate(5 9",    "scale(-1 1)"};
constexpr const char* kOddValues[] = {"30%", "2em", "7mm", "wide", "", "-20", "0", "12.", " 18 ", "+9", "3e1", "20px"};
constexpr const char* kOddElements[] = {
    "<text x='5' y='50' font-size='40' fill='#000'>A</text>",
    "<defs><rect x='3' y='3' width='40' height='30' fill='#0a0'/></defs>",
    "<defs><linearGradient id='a'><stop offset='0' stop-color='#f00'/></linearGradient></defs>",
    "<clipPath id='c'><circle cx='50' cy='50' r='30' fill='#f0f'/></clipPath>",
    "<mask id='m'><rect x='0' y='0' width='50' height='50' fill='#fff'/></mask>",
    "<symbol id='s'><circle cx='50' cy='50' r='30' fill='#f0f'/></symbol>",
    "<use href='#s'/>",
    "<a fill='#00f'><path d='M5 5H60V60Z'/></a>",
    "<switch><rect x='5' y='5' width='50' height='9' fill='#a00'/><rect x='5' y='50' width='50' height='9' "
    "fill='#a00'/></switch>",
    "<style>path { fill: #123456 }</style>",
    "<svg x='10' y='10' width='50' height='50'><circle cx='25' cy='25' r='40' fill='#ccc'/></svg>",
    "<title>A picture</title>",
    "<metadata><rect x='3' y='3' width='40' height='30' fill='#0a0'/></metadata>",
    "<unheard-of><rect x='3' y='3' width='40' height='30' fill='#0a0'/></unheard-of>",
};

}  // namespace

std::string DocumentGenerator::document() {
  mayTrouble_ = chance(50);
  return root() + content(0) + "</svg>";
}

std::string DocumentGenerator::root() {
  const std::string start = "<svg xmlns='http://www.w3.org/2000/svg' ";
  if (!isTrouble()) return start + "width='100' height='100'" + (chance(50) ? " viewBox='0 0 100 100'>" : ">");
  constexpr const char* kOddRoots[] = {"width='100' height='100' viewBox='0 0 60 60'>",
                                       "width='100' height='50'>",
                                       "viewBox='0 0 100 100'>",
                                       "width='100%' height='100%' viewBox='0 0 100 100'>",
                                       "width='100' height='100' fill='#c00'>",
                                       "width='100' height='100' fill='none'>",
                                       "width='100' height='100' stroke='#00c' stroke-width='4'>",
                                       "width='100' height='100' transform='rotate(30)'>"};
  return start + oneOf(kOddRoots);
}

std::string DocumentGenerator::content(int depth) {
  std::string text;
  for (unsigned i = 0; i <= below(3); ++i) text += element(depth);
  return text;
}

std::string DocumentGenerator::element(int depth) {
  if (isTrouble()) return oneOf(kOddElements);
  if (depth > 2 || chance(70)) return shape();
  return "<g" + (chance(50) ? paint(false) : "") + transform() + attributes() + ">" + content(depth + 1) + "</g>";
}

std::string DocumentGenerator::shape() {
  const std::string end = paint(true) + transform() + attributes() + "/>";
  const auto with = [this](const char* name) {
    return isTrouble() && chance(30) ? std::string() : " " + std::string(name) + "='" + value() + "'";
  };
  switch (below(9)) {
    case 0:
      return "<rect" + with("x") + with("y") + with("width") + with("height") + (isTrouble() ? with("rx") : "") + end;
    case 1:
      return "<circle" + with("cx") + with("cy") + with("r") + end;
    case 2:
      return "<ellipse" + with("cx") + with("cy") + with("rx") + with("ry") + end;
    case 3:
      return "<line" + with("x1") + with("y1") + with("x2") + with("y2") + end;
    case 4:
      return "<polyline points='" + points() + "'" + end;
    case 5:
      return "<polygon points='" + points() + "'" + end;
    default:
      return "<path d='" + pathData() + "'" + end;
  }
}

// The oracle has a mistake of its own: a blank before the comma between two points.
std::string DocumentGenerator::points() {
  std::string text;
  for (unsigned i = 0; i < 3 + below(4); ++i)
    text += (text.empty() ? "" : oneOf({" ", ",", ", ", "\n"})) + number() + separator() + number();
  if (isTrouble()) text = damaged(text);
  for (const char* blank : {" ,", "&#10;,"})
    for (std::size_t at = text.find(blank); at != std::string::npos; at = text.find(blank))
      text.replace(at, std::strlen(blank), ",");
  return text;
}

std::string DocumentGenerator::pathData() {
  char last = 'M';
  bool wasClosed = false;
  std::string text = "M" + number() + separator() + number();
  for (unsigned i = 0; i < 2 + below(6); ++i) text += segment(last, wasClosed);
  return isTrouble() ? damaged(text) : text;
}

// One command with its numbers. Those that the engine reads in its own way come only when trouble is wanted.
std::string DocumentGenerator::segment(char& last, bool& wasClosed) {
  constexpr const char* kCommands = "LLHVCCSQTZMA";
  char command = kCommands[below(12)];
  if (!isTrouble()) {
    if (command == 'A') command = 'L';
    if (command == 'S' && last != 'C' && last != 'S') command = 'C';
    if (command == 'T' && last != 'Q' && last != 'T') command = 'Q';
    if (wasClosed) command = 'M';
  }
  constexpr unsigned kCounts[] = {7, 6, 1, 2, 2, 4, 4, 2, 1, 0};
  const std::string letters = "ACHLMQSTVZ";
  unsigned count = kCounts[letters.find(command)];
  const bool isRelative = chance(40) && (!wasClosed || isTrouble());
  last = command;
  wasClosed = command == 'Z';
  if (chance(20) && (command != 'M' || isTrouble())) count *= 2;
  std::string text(1, isRelative ? static_cast<char>(command + 'a' - 'A') : command);
  if (command == 'A') return text + "20 15 0 0 1 " + number() + " " + number();
  for (unsigned i = 0; i < count; ++i) text += (i == 0 ? std::string() : separator()) + number();
  return chance(20) ? text + "\n" : text;
}

std::string DocumentGenerator::paint(bool isShape) {
  std::string text;
  if (isShape ? !isTrouble() : chance(50)) text += " fill='" + color() + "'";
  if (!chance(40)) return text;
  text += " stroke='" + color() + "'";
  if (!isTrouble()) text += " stroke-width='" + (isTrouble() ? value() : oneOf({"1", "2.5", "6", "0"})) + "'";
  return chance(70) ? text + " stroke-miterlimit='10'" : text;
}

std::string DocumentGenerator::color() { return isTrouble() ? oneOf(kOddColors) : oneOf(kColors); }

std::string DocumentGenerator::attributes() {
  if (isTrouble()) return " " + oneOf(kOddAttributes);
  return chance(20) ? " " + oneOf(kAttributes) : "";
}

std::string DocumentGenerator::transform() {
  if (isTrouble()) return " transform='" + (chance(70) ? oneOf(kOddTransforms) : damaged(oneOf(kTransforms))) + "'";
  return chance(20) ? " transform='" + oneOf(kTransforms) + "'" : "";
}

std::string DocumentGenerator::number() {
  const std::string whole = std::to_string(below(100));
  return chance(30) ? whole + "." + std::to_string(below(100)) : whole;
}

std::string DocumentGenerator::value() { return isTrouble() ? oneOf(kOddValues) : number() + (chance(10) ? "px" : ""); }

std::string DocumentGenerator::separator() { return oneOf({" ", ",", ", ", " \n ", " , ", "  "}); }

std::string DocumentGenerator::damaged(std::string data) {
  constexpr const char* kPieces[] = {"M", "L", "z", "Z", "s", "t", "a",    "h",     "0", "7", ".",
                                     ",", "-", "+", " ", "e", "%", "&#9;", "&#10;", "(", ")", "zM"};
  const std::size_t at = below(static_cast<unsigned>(data.size()) + 1);
  const unsigned way = below(3);
  if (way > 0 && at < data.size()) data.erase(at, 1);
  if (way < 2) data.insert(at, oneOf(kPieces));
  return data;
}

}  // namespace quellaro
