// What motion files look like as frames, beside the pictures of the library that evaluates them.
#include <gmock/gmock.h>

#include <random>

#include "import/motion/drawing.h"
#include "import/motion/renderer.h"
#include "import/motion_frames.h"
#include "import_art/fidelity.h"
#include "import_motion/motion_text.h"
#include "support/temporary_directory.h"

namespace quellaro {
namespace {

using halvo::ArtFrame;
using halvo::MotionFrames;

class MotionDrawing : public testing::Test {
 protected:
  MotionFrames open(const std::string& text) {
    file_ = directory_ / "motion.json";
    writeFile(file_, text);
    auto opened = halvo::openMotionFile(file_, {}, {});
    if (const auto* const error = std::get_if<halvo::ArtError>(&opened)) throw std::runtime_error(error->reason);
    return std::get<MotionFrames>(std::move(opened));
  }
  static ArtFrame frameOf(const MotionFrames& motion, std::size_t moment) {
    auto made = motion.make(moment);
    if (const auto* const error = std::get_if<halvo::ArtError>(&made)) throw std::runtime_error(error->reason);
    return std::get<ArtFrame>(std::move(made));
  }
  Fidelity fidelity(const MotionFrames& motion, std::size_t moment) {
    return fidelityTo(std::get<Bitmap>(halvo::drawMotionFrame(file_, motion.moments[moment].frame, 256)),
                      frameOf(motion, moment));
  }
  // Of the frame as it is shown, in units of a hundredth of its side.
  static std::uint32_t colorAt(const ArtFrame& frame, int x, int y) {
    return fidelityTo(Bitmap(256, 256), frame).shown.row(y * 256 / 100)[x * 256 / 100] & 0xFFFFFFU;
  }

  TemporaryDirectory directory_;
  std::string file_;
};

std::string mask(const char* mode, bool isInverted, int opacity, const std::string& points) {
  return R"({"mode":")" + std::string(mode) + R"(","inv":)" + (isInverted ? "true" : "false") + R"(,"o":{"k":)" +
         std::to_string(opacity) + R"(},"pt":{"k":{"c":true,"v":[)" + points +
         R"(],"i":[[0,0],[0,0],[0,0],[0,0]],"o":[[0,0],[0,0],[0,0],[0,0]]}}})";
}

std::string masked(const std::string& masks) {
  return shapes(box(80, 80) + "," + fill(), R"("hasMask":true,"masksProperties":[)" + masks + "]");
}

const std::string kLeft = "[-30,-30],[5,-30],[5,30],[-30,30]";
const std::string kRight = "[-10,-20],[30,-20],[30,20],[-10,20]";

TEST_F(MotionDrawing, IsWhatTheLibraryDraws) {
  const std::string stroke = R"({"ty":"st","c":{"k":[0,0,1,1]},"o":{"k":80},"w":{"k":7},"lc":2,"lj":1,"ml":4)";
  const std::string oval = R"({"ty":"el","p":{"k":[3,0]},"s":{"k":[60,40]}})";
  const std::string gradient =
      R"({"ty":"gf","o":{"k":100},"r":1,"g":{"p":2,"k":{"k":[0,1,0,0,1,0,0.4,1]}},"s":{"k":[-20,0]},"e":{"k":[20,9]},"t":)";
  const std::pair<const char*, std::string> rows[] = {
      {"fill", shapes(box(40, 30) + "," + fill())},
      {"dashes", shapes(oval + "," + stroke + R"(,"d":[{"n":"d","v":{"k":15}},{"n":"g","v":{"k":12}}]})")},
      {"stroke", shapes(box(40, 30) + "," + stroke + "}")},
      {"linear gradient", shapes(oval + "," + gradient + "1}")},
      {"radial gradient", shapes(oval + "," + gradient + R"(2,"h":{"k":30},"a":{"k":0}})")},
      {"even-odd holes", shapes(box(60, 60) + "," + oval + R"(,{"ty":"fl","c":{"k":[0,0.5,0,1]},"o":{"k":60},"r":2})")},
      {"solid", R"({"ty":1,"nm":"solid","sc":"#10a020","sw":30,"sh":20,)" + placed() + "}"},
      {"one mask", masked(mask("a", false, 100, kLeft))},
      {"what a mask takes away", masked(mask("s", false, 100, kLeft))},
      {"an inverted mask", masked(mask("a", true, 100, kLeft))},
      {"two masks added", masked(mask("a", false, 100, kLeft) + "," + mask("a", false, 100, kRight))},
      {"common to both", masked(mask("a", false, 100, kLeft) + "," + mask("i", false, 100, kRight))},
      {"common to one and not the other", masked(mask("a", false, 100, kLeft) + "," + mask("i", true, 100, kRight))},
      {"in one of both", masked(mask("a", false, 100, kLeft) + "," + mask("f", false, 100, kRight))},
      {"a mask that does nothing", masked(mask("n", false, 100, kLeft))},
      {"a clear composition", R"({"ty":0,"nm":"inner","refId":"c","w":60,"h":60,)" + placed() + "}"},
  };
  for (const auto& [name, layer] : rows) {
    SCOPED_TRACE(name);
    const MotionFrames motion =
        open(R"({"v":"5.7","fr":30,"ip":0,"op":60,"w":100,"h":100,"assets":[{"id":"c","layers":[)" +
             shapes(box(50, 50) + "," + fill()) + "]}],\"layers\":[" + layer + "]}");
    ASSERT_EQ(motion.moments.size(), 1u);
    EXPECT_NEAR(motion.moments[0].milliseconds, 2000, 1e-9);
    const Fidelity fidelity = this->fidelity(motion, 0);
    EXPECT_TRUE(fidelity.isRight()) << fidelity.mean << " " << fidelity.farOff;
    EXPECT_GT(frameOf(motion, 0).elements, 0u);
  }
}

// The library's own pictures lack these, or some of them.
TEST_F(MotionDrawing, MattesAndMasksLetThroughWhatTheySay) {
  const auto matted = [](const char* kind) {
    return shapes(box(40, 80) + "," + fill("1,1,0"), R"("td":1)") + "," +
           shapes(box(80, 40) + "," + fill(), R"("tt":)" + std::string(kind));
  };
  const struct {
    const char* name;
    std::string layers;
    std::uint32_t middle, left, top;
  } rows[] = {{"alpha", matted("1"), 0xFF0000, 0xFFFFFF, 0xFFFFFF},
              {"alpha inverted", matted("2"), 0xFFFFFF, 0xFF0000, 0xFFFFFF},
              {"light", matted("3"), 0xFF1C1C, 0xFFFFFF, 0xFFFFFF},
              {"light inverted", matted("4"), 0xFFE2E2, 0xFF0000, 0xFFFFFF},
              {"half of a mask", masked(mask("a", false, 50, kLeft)), 0xFF8080, 0xFFFFFF, 0xFFFFFF},
              {"half taken away", masked(mask("s", false, 50, kLeft)), 0xFF8080, 0xFF0000, 0xFF0000}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const ArtFrame frame = frameOf(open(motionOf(row.layers)), 0);
    for (const auto& [x, y, meant] : {std::tuple(50, 50, row.middle), {15, 50, row.left}, {50, 15, row.top}})
      for (int shift = 0; shift < 24; shift += 8)
        EXPECT_NEAR(colorAt(frame, x, y) >> shift & 255U, meant >> shift & 255U, 3) << x << " " << y;
  }
}

TEST_F(MotionDrawing, TheSampleLooksAsItIsMeant) {
  const MotionFrames motion = open(readFile(QUELLARO_SAMPLE));
  EXPECT_TRUE(motion.notes.empty());
  // The sun has not come up yet.
  EXPECT_TRUE(fidelity(motion, 5).isRight());
  const ArtFrame last = frameOf(motion, motion.moments.size() - 1);
  EXPECT_EQ(colorAt(last, 50, 45) >> 16, 0xFFU) << "the sun";
  EXPECT_EQ(colorAt(last, 50, 80), 0x288C59U) << "in front of it the ground";
  EXPECT_EQ(colorAt(last, 50, 98), 0xFFFFFFU) << "and below no ring";
  EXPECT_GT(motion.moments.back().milliseconds, 1000) << "nothing moves for a second";
}

// The process that tells of a drawing may be anyone's, once it has broken down.
TEST_F(MotionDrawing, BytesThatAreNoDrawingAreNone) {
  const MotionFrames sample = open(readFile(QUELLARO_SAMPLE));
  const auto file = std::get<halvo::motion::MotionFile>(halvo::motion::readMotion(readFile(QUELLARO_SAMPLE)));
  const std::string good = halvo::motion::Renderer(file.text).tree(40, file.width, file.height);
  const auto read = [](const std::string& bytes) { return halvo::motion::readDrawing(bytes, {}, 240).has_value(); };
  ASSERT_TRUE(read(good));
  EXPECT_FALSE(read(good + "x"));
  for (std::size_t size = 0; size < good.size(); size += 7) EXPECT_FALSE(read(good.substr(0, size))) << size;
  std::mt19937 random(5);
  int refused = 0;
  for (int i = 0; i < 4000; ++i) {
    std::string bytes = good;
    for (int k = 0; k < 3; ++k) {
      const std::size_t where = random() % bytes.size();
      bytes[where] = static_cast<char>(random() % 256);
    }
    refused += read(bytes) ? 0 : 1;
  }
  EXPECT_GT(refused, 400);
}

}  // namespace
}  // namespace quellaro
