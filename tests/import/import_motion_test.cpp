// halvo import: from a motion file to a cue.
#include <chrono>
#include <numeric>

#include "animation/frame_file.h"
#include "import/import_fixture.h"
#include "import_motion/motion_text.h"

namespace quellaro {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const std::string kMoving =
    R"({"a":1,"k":[{"t":0,"s":[10,50,0],"i":{"x":1,"y":1},"o":{"x":0,"y":0}},{"t":60,"s":[90,50,0]}]})";

// A box that moves all the time, in a file with markers.
std::string moving() {
  std::string text = motionOf(shapes(box(20, 20) + "," + fill()),
                              R"("markers":[{"tm":10,"cm":"in","dr":20},{"tm":45,"cm":"out","dr":0}])");
  const std::string still = R"({"k":[50,50,0]})";
  return text.replace(text.find(still), still.size(), kMoving);
}

class ImportingMotion : public Importing {
 protected:
  std::vector<double> times() const {
    std::vector<double> times;
    const JSONDocument document = config();
    for (const auto& [name, time] : document.root().member("frameTime")->members()) times.push_back(*time.number());
    return times;
  }
};

TEST_F(ImportingMotion, GivesTheFramesOfThePartThatWasAskedFor) {
  file("m.json", moving());
  const struct {
    const char* options;
    std::size_t frames;
    double milliseconds;
    double first;
  } rows[] = {{"", 60, 2000, 1000.0 / 30},
              {"--fps 12", 24, 2000, 1000.0 / 12},
              {"--fps 7", 14, 2000, 1000.0 / 7},
              {"--fps 48", 60, 2000, 1000.0 / 24},
              {"--frame-time 300", 7, 2000, 300},
              {"--from 15", 45, 1500, 1000.0 / 30},
              {"--to out", 45, 1500, 1000.0 / 30},
              {"--from in --to in", 20, 2000.0 / 3, 1000.0 / 30},
              {"--from in --to out --fps 10", 12, 3500.0 / 3, 100},
              {"--from 58.5", 2, 50, 1000.0 / 30}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.options);
    const Ran ran = import("m.json -o cue --replace " + std::string(row.options));
    ASSERT_EQ(ran.status, 0) << ran.output;
    const std::vector<double> times = this->times();
    EXPECT_EQ(times.size(), row.frames);
    EXPECT_NEAR(std::accumulate(times.begin(), times.end(), 0.0), row.milliseconds, 1e-9);
    EXPECT_NEAR(times.front(), row.first, 1e-9);
  }
  EXPECT_EQ(toldByCheck().status, 0);
}

// Recognised by what is in it, and played like any other.
TEST_F(ImportingMotion, WhatStandsStillIsOneFrameThatStays) {
  file("m", "\n " + motionOf(shapes(box(20, 20) + "," + fill("0,1,0"))));
  ASSERT_EQ(import("m -o cue").status, 0);
  EXPECT_THAT(times(), ElementsAre(2000));
  const auto texts = readFrameFile(directory_ / "cue/animation.json");
  EXPECT_THAT(texts->texts, ElementsAre(HasSubstr("#0f0")));
  EXPECT_THAT(run(QUELLARO_HALVO_TOOL " play --headless " + (directory_ / "cue").string()).output,
              HasSubstr("play: 800 success"));
}

TEST_F(ImportingMotion, RefusesWhatCannotBeOneWithAReasonAndInTime) {
  const std::string good = motionOf(shapes(box(20, 20) + "," + fill()));
  const auto with = [&](const std::string& what, const std::string& instead) {
    std::string text = good;
    return text.replace(text.find(what), what.size(), instead);
  };
  const auto inner = [](const std::string& id) {
    return R"({"ty":0,"nm":"inner","refId":")" + id + R"(","w":9,"h":9,)" + placed() + "}";
  };
  std::string bombs;
  for (int i = 0; i < 12; ++i) {
    std::string layers;
    for (int k = 0; k < 10; ++k) layers += (k > 0 ? "," : "") + inner("c" + std::to_string(i + 1));
    bombs += (i > 0 ? "," : "") + std::string(R"({"id":"c)") + std::to_string(i) + R"(","layers":[)" + layers + "]}";
  }
  const struct {
    std::string text, why, options;
  } rows[] = {
      {good.substr(0, good.size() / 2), "not valid JSON", ""},
      {R"({"name": "x", "fr": 3, "more": {"layers": []}})", "no motion file", ""},
      {std::string(100'000, '[').insert(0, R"({"fr":1,"layers":)"), "not valid JSON", ""},
      {with(R"("o":{"k":100})", R"("o":)" + std::string(300, '[') + std::string(300, ']')), "levels deep", ""},
      {with(R"("w":100)", R"("w":1e9)"), "width and height", ""},
      {with(R"("fr":30)", R"("fr":0)"), "frames per second", ""},
      {with(R"("op":60)", R"("op":0)"), "shows no frame", ""},
      {with(R"("op":60)", R"("op":1e7)"), "100,000 frames", ""},
      {motionOf(inner("c"), R"("assets":[{"id":"c","layers":[)" + inner("c") + "]}]"), "contains itself", ""},
      {R"({"fr":30,"ip":0,"op":9,"w":9,"h":9,"layers":[)" + inner("c0") + R"(],"assets":[)" + bombs + "]}",
       "20000 layers", ""},
      {motionOf(shapes(box(9, 9) + "," + fill(), R"("ind":1,"parent":2)") + "," +
                shapes(box(9, 9) + "," + fill(), R"("ind":2,"parent":1)")),
       "its own parent", ""},
      // Copies without end: the process that evaluates it runs out of memory, or of time.
      {motionOf(shapes(
           box(9, 9) + "," + fill() +
           R"(,{"ty":"rp","c":{"k":100000000},"o":{"k":0},"m":1,"tr":{"p":{"k":[1,1]},"a":{"k":[0,0]},"s":{"k":[100,100]},"r":{"k":0},"so":{"k":100},"eo":{"k":100}}})")),
       "evaluat", ""},
      {good, "no marker 'gone'", "--from gone"},
      {good, "is no part of the file", "--from 30 --to 20"},
      {good, "is no part of the file", "--to 61"},
      {good, "import it alone", "m.json"},
      {frame("#f00"), "which this is not", "--from 3"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    file("m.json", row.text);
    const auto begin = std::chrono::steady_clock::now();
    const Ran ran = import("m.json -o cue " + row.options + " 2>&1");
    EXPECT_EQ(ran.status, 1) << ran.output;
    EXPECT_THAT(ran.output, HasSubstr(row.why));
    EXPECT_THAT(names(), ElementsAre("m.json"));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(90));
  }
}

TEST_F(ImportingMotion, TellsOnceOfEachLayerWhatItCannotShow) {
  file("secret.png", "no picture");
  const auto layer = [](int kind, const std::string& name, const std::string& more) {
    return R"({"ty":)" + std::to_string(kind) + R"(,"nm":")" + name + "\"," + placed(more) + "}";
  };
  std::string late = layer(2, "photo", R"("refId":"p")");
  late.replace(late.find(R"("ip":0)"), 6, R"("ip":15)");
  file("m.json", motionOf(shapes(box(20, 20) + "," + fill(),
                                 R"("bm":1,"ef":[{"ty":29,"nm":"x","en":1},{"ty":5,"nm":"control"}])") +
                              "," + late + "," + layer(5, "title", R"("t":{})") + "," +
                              shapes(box(20, 20) + "," + fill() +
                                     R"(,{"ty":"st","c":{"k":[1,0,0,1]},"o":{"k":9,"x":"wiggle"},"w":{"k":1}})"),
                          R"("assets":[{"id":"p","w":9,"h":9,"u":"","p":"secret.png","e":0}])"));
  const Checked told = toldByImport("m.json -o cue");
  EXPECT_EQ(told.status, 0) << told.output;
  for (const char* const what : {"an image outside of the file is left out: secret.png", "from 0.50 s",
                                 "text without outlines is left out", "an effect is left out: blur",
                                 "a blend mode is left out: multiply", "expressions are not computed", R"("photo")"})
    EXPECT_THAT(told.output, HasSubstr(what));
  EXPECT_THAT(told.output, Not(HasSubstr("control")));
  EXPECT_EQ(import("m.json -o strict --strict").status, 1);
}

}  // namespace
}  // namespace quellaro
