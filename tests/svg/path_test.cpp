#include "svg/path_data.h"

#include <gtest/gtest.h>

#include "platform/foundation/console.h"
#include "platform/foundation/memory/limits.h"
#include "svg/outline_text.h"

namespace quellaro {
namespace {

SVGPath pathOf(std::string_view data) {
  const XMLAttribute attribute{"d", data};
  return SVGPath("path", XMLAttributes({&attribute, 1}));
}

TEST(PathData, Outlines) {
  const struct {
    std::string_view data;
    std::string_view outline;
    CGPoint end;
    bool clickable = false;
  } cases[] = {
      {"M10 10 L20 20 30 10", "M10,10 L20,20 L30,10", {30, 10}},
      {"m5 5 l10 0 0 10", "M5,5 L15,5 L15,15", {15, 15}},
      {"m5 5 5 5", "M5,5 M10,10", {10, 10}},
      {"M0 0 h10 v 10 h-10 z", "M0,0 L10,0 L10,10 L0,10 Z", {0, 10}, true},
      {"M1 2H3 4V5 6", "M1,2 L3,2 L4,2 L4,5 L4,6", {4, 6}},
      {"M0 0 C0 10 10 10 10 0 S20 -10 20 0", "M0,0 C0,10 10,10 10,0 C10,-10 20,-10 20,0", {20, 0}},
      {"M0 0 S10 10 20 0", "M0,0 C10,10 10,10 20,0", {20, 0}},
      {"M10 10s1 2 3 4", "M10,10 C11,12 11,12 13,14", {13, 14}},
      {"M10 10c1 1 2 2 3 3 1 1 2 2 3 3", "M10,10 C11,11 12,12 13,13 C14,14 15,15 16,16", {16, 16}},
      {"M0 0 Q5 5 10 0 T20 0", "M0,0 Q5,5 10,0 Q15,-5 20,0", {20, 0}},
      // Having been its own target, the control point is there for the next.
      {"M0 0 T10 0 20 5", "M0,0 Q10,0 10,0 Q10,0 20,5", {20, 5}},
      {"M5 5q1 2 3 4t2 2", "M5,5 Q6,7 8,9 Q10,11 10,11", {10, 11}},
      // Nothing but curves of the same kind touches what is reflected.
      {"M0 0C1 1 2 3 4 4L9 9Q7 7 8 8M5 5S1 2 3 4", "M0,0 C1,1 2,3 4,4 L9,9 Q7,7 8,8 M5,5 C8,7 1,2 3,4", {3, 4}},
      {"M0 0C1 1 0 0 4 4S1 2 3 4", "M0,0 C1,1 0,0 4,4 C1,2 1,2 3,4", {3, 4}},
      {"M0 0 A5 5 0 0 1 10 0 L20 0", "M0,0 L20,0", {20, 0}},
      {"M1 1a5 5 0 0 1 10 0l1 1", "M1,1 L2,2", {2, 2}},
      {"M0 0 L10 10Zm5 5 l1 1", "M0,0 L10,10 Z M15,15 L16,16", {16, 16}, true},
      {"M0 0LM5 5", "M0,0 Z M5,5", {5, 5}, true},
      {"M0 0 1 1zz", "M0,0 M1,1 Z Z", {1, 1}, true},
      {"M0 0 Z 7 8 L1 1", "M0,0 Z L1,1", {1, 1}, true},
      {"M0 0 L10", "M0,0", {0, 0}},
      {"M0 0 L1 2 3", "M0,0 L1,2", {1, 2}},
      {"M0 0 C1 2 3 4 5", "M0,0", {0, 0}},
      {"M 0 , 0\nL,10,\n10", "M0,0 L10,10", {10, 10}},
      {"M0,0\tL10,10", "M0,0", {0, 0}},
      {"M0 0\r\nL1 1", "M0,0", {0, 0}},
      {"M0 0 L1 1 X L2 2", "M0,0 L1,1", {1, 1}},
      {"M0 0 L1 1e L2 2", "M0,0 L1,1", {1, 1}},
      {"M0 0L1-1.5.5+2e1", "M0,0 L1,-1.5 L0.5,20", {0.5, 20}},
      {"5 5 M1 1", "", {0, 0}},
      {"", "", {0, 0}},
      // Before any move nothing is drawn, but the current point is.
      {"L10 10 l5 5 M1 1", "M1,1", {1, 1}},
      {"l10 10 l5 5", "", {15, 15}},
      {"C1 1 2 2 3 3 M0 0 S5 5 6 6", "M0,0 C-2,-2 5,5 6,6", {6, 6}},
      {"Z", "", {0, 0}, true},
      {std::string_view("M0 0\0L1 1", 9), "M0,0", {0, 0}},
  };
  for (const auto& one : cases) {
    const SVGPath path = pathOf(one.data);
    EXPECT_EQ(outlineText(path.path().cgPath()), one.outline) << one.data;
    EXPECT_EQ(path.end(), one.end) << one.data;
    EXPECT_EQ(path.clickable(), one.clickable) << one.data;
  }
  const SVGPath path = pathOf("M0 0C1 2 3 4 5 6Q7 8 9 10L0 0z");
  EXPECT_EQ(path.c_pre(), (CGPoint{3, 4}));
  EXPECT_EQ(path.q_pre(), (CGPoint{7, 8}));
}

TEST(PathData, LongRunsAreReportedAndDrawNothing) {
  std::string printed;
  setConsoleSink([&printed](std::string_view line) { printed += line; });
  EXPECT_EQ(outlineText(pathOf("M0 0 LLL 9 9 L1 1zmM2 2 3 3 L4 4").path().cgPath()), "M0,0 L1,1 L4,4");
  EXPECT_FALSE(pathOf("M0 0 zzz").clickable());
  setConsoleSink({});
  EXPECT_EQ(printed,
            "Don't have any solutions for cmd LLL.\nDon't have any solutions for cmd zmM.\n"
            "Don't have any solutions for cmd zzz.\n");
}

TEST(PathData, OneCommandAtATime) {
  SVGPath path("path", {});
  const double numbers[] = {1, 2, 3, 4, 5};
  path.applyCommand("M", numbers);
  path.applyCommand("l", std::span(numbers).first(3));
  path.applyCommand("z", numbers);
  path.applyCommand("A", numbers);
  path.applyCommand("H", {});
  EXPECT_EQ(outlineText(path.path().cgPath()), "M1,2 M3,4 L4,6 Z");
}

TEST(PathData, OutlinesHaveALimit) {
  std::string data = "M0 0";
  for (std::size_t i = 0; i < limits::kPathPoints + 100; ++i) data += "h1";
  const SVGPath path = pathOf(data);
  EXPECT_EQ(path.path().pointCount(), limits::kPathPoints);
  EXPECT_EQ(path.end().x, static_cast<double>(limits::kPathPoints - 1));
}

}  // namespace
}  // namespace quellaro
