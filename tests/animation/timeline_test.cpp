#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "animation/halvo_animation_view.h"
#include "platform/dispatch/manual_clock.h"
#include "support/library_fixture.h"

namespace quellaro {

namespace {

using Times = std::map<std::string, double>;
// When which frame (from 1) was shown; 0 is the completion.
using Shown = std::vector<std::pair<double, int>>;

class Timeline : public LibraryFixture {
 protected:
  Timeline() { setWallClock(&wallClock_); }
  ~Timeline() override { setWallClock(nullptr); }

  std::shared_ptr<QLHalvoAnimationView> makeView(std::optional<Times> times) {
    auto view = QLHalvoAnimationView::initWithFrame({{0, 0}, {100, 100}});
    if (times) {
      auto config = std::make_shared<QLHalvoSDKConfig>();
      config->frameTime = std::move(*times);
      view->setSdkConfig(config);
    }
    view->setFrameHandler([this, raw = view.get()] {
      for (std::size_t i = 0; i < frames_.size(); ++i)
        if (raw->svgDocument() == frames_[i]) shown_.emplace_back(driver_.now(), static_cast<int>(i) + 1);
    });
    return view;
  }
  void makeFrames(int count) {
    frames_.clear();
    for (int i = 0; i < count; ++i)
      frames_.push_back(SVGDocument::parse(R"(<svg width="50" height="50"><rect width="9" height="9"/></svg>)"));
  }
  Callback completion() {
    return [this] { shown_.emplace_back(driver_.now(), 0); };
  }

  ManualClock wallClock_{1700000000.25};
  HalvoFrames frames_;
  Shown shown_;
};

TEST_F(Timeline, ShowsFramesWhenTheTimesBeforeThemHaveRunOut) {
  struct Row {
    const char* what;
    int frames;
    std::optional<Times> times;
    Shown shown;
    const char* end;  // in the closing line; null when there is none
  };
  const std::vector<Row> rows = {
      {"every frame has its time",
       3,
       Times{{"Frame_1", 100}, {"Frame_2", 200}, {"Frame_3", 300}},
       {{0, 1}, {0.1, 2}, {0.1 + 0.2, 3}, {0.1 + 0.2 + 0.3, 0}},
       "0.6000000000000001"},
      {"a middle frame has none",
       3,
       Times{{"Frame_1", 100}, {"Frame_3", 300}},
       {{0, 1}, {0.1, 2}, {0.1 + 0.3, 0}},
       "0.4"},
      {"the last frame has none", 2, Times{{"Frame_1", 50}}, {{0, 1}, {0.05, 2}}, nullptr},
      {"other names", 2, Times{{"Frame_01", 5}, {"Frame_0", 5}, {"Frame_3", 5}}, {{0, 1}}, nullptr},
      {"no configuration", 2, std::nullopt, {{0, 1}}, nullptr},
      {"no time at all for a frame",
       3,
       Times{{"Frame_1", 0}, {"Frame_2", 0}, {"Frame_3", 1000}},
       {{0, 1}, {0, 2}, {0, 3}, {1, 0}},
       "1.0"},
      {"less than none", 2, Times{{"Frame_1", 500}, {"Frame_2", -200}}, {{0, 1}, {0.5 + -0.2, 0}, {0.5, 2}}, "0.3"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    makeFrames(row.frames);
    shown_.clear();
    const auto view = makeView(row.times);
    view->playFrames(frames_, completion());
    EXPECT_EQ(takePrinted(), std::vector<std::string>{"===> 0.0 Animation started at 1700000000.25\n"});
    driver_.advance(1e8);
    EXPECT_EQ(shown_, row.shown);
    std::vector<std::string> lines;
    if (row.end != nullptr) lines.push_back(std::string("===> ") + row.end + " Animation ended at 1700000000.25\n");
    EXPECT_EQ(takePrinted(), lines);
    driver_.restart();
  }
}

TEST_F(Timeline, NoFramesCompleteAtOnceAndLeaveTheViewAsItIs) {
  makeFrames(1);
  const auto view = makeView(Times{});
  view->playFrames(frames_, {});
  takePrinted();
  view->playFrames({}, completion());
  EXPECT_EQ(shown_, (Shown{{0, 1}, {0, 0}}));
  EXPECT_EQ(view->layer()->sublayers().size(), 1u);
  EXPECT_TRUE(takePrinted().empty());
}

TEST_F(Timeline, CompletionComesBeforeTheClosingLine) {
  makeFrames(1);
  const auto view = makeView(Times{{"Frame_1", 10}});
  view->playFrames(frames_, [&] { takePrinted(); });
  driver_.advance(1);
  EXPECT_EQ(takePrinted().size(), 1u);
}

TEST_F(Timeline, OnlyTheCompletionIsLeftOfAPlayWhoseViewIsGone) {
  makeFrames(3);
  auto view = makeView(Times{{"Frame_1", 100}, {"Frame_2", 200}, {"Frame_3", 300}});
  const std::weak_ptr<QLHalvoAnimationView> watched = view;
  view->playFrames(frames_, completion());
  driver_.advance(0.15);
  view.reset();
  EXPECT_TRUE(watched.expired());
  driver_.advance(1);
  EXPECT_EQ(shown_, (Shown{{0, 1}, {0.1, 2}, {0.1 + 0.2 + 0.3, 0}}));
  EXPECT_EQ(takePrinted().size(), 2u);
}

TEST_F(Timeline, PlaysThatOverlapKeepTimeOnTheirOwn) {
  makeFrames(2);
  const auto view = makeView(Times{{"Frame_1", 500}, {"Frame_2", 500}});
  view->playFrames(frames_, completion());
  driver_.advance(0.25);
  view->playFrames(frames_, completion());
  driver_.advance(2);
  EXPECT_EQ(shown_, (Shown{{0, 1}, {0.25, 1}, {0.5, 2}, {0.75, 2}, {1, 0}, {1.25, 0}}));
}

// The main thread was busy: what is overdue is shown at once, and the rest stays where it was.
TEST_F(Timeline, ALateFrameDelaysNoOther) {
  makeFrames(4);
  const auto view = makeView(Times{{"Frame_1", 125}, {"Frame_2", 125}, {"Frame_3", 125}, {"Frame_4", 125}});
  view->playFrames(frames_, completion());
  driver_.jump(0.3);
  driver_.advance(1);
  EXPECT_EQ(shown_, (Shown{{0, 1}, {0.3, 2}, {0.3, 3}, {0.375, 4}, {0.5, 0}}));
}

}  // namespace

}  // namespace quellaro
