// Where a preview is in its loop, and what keys, the mouse, the clock and its sound make of that.
#include <gtest/gtest.h>

#include <string>

#include "platform/avfoundation/audio_session.h"
#include "preview/session.h"
#include "preview/sound_track.h"
#include "support/recording_output.h"

namespace halvo {
namespace {

using Key = PreviewKey;

// Four frames, of which the second is never seen; half a second of nothing before, two after the last frame came up.
LoopTimes fourFrames() { return {{{0.5, 1.0, 1.0, 2.0}, 4.0}, 4.0}; }

// Numbers of frames, from 1; 0: none.
std::size_t seen(const Session& session) { return session.frame() ? *session.frame() + 1 : 0; }

TEST(Session, GoesOnWithTheClockAtItsSpeedAndBeginsAnew) {
  Session session(fourFrames());
  const struct {
    double seconds;  // from one row to the next
    std::size_t frame;
    double position;
  } rows[] = {{0, 0, 0}, {0.5, 1, 0.5}, {0.5, 3, 1.0}, {1.5, 4, 2.5}, {1.75, 0, 0.25}, {0.5, 1, 0.75}};
  double now = 100;
  session.rest(now);
  for (const auto& row : rows) {
    session.advance(now += row.seconds);
    EXPECT_EQ(seen(session), row.frame);
    EXPECT_DOUBLE_EQ(session.position(), row.position);
  }
  EXPECT_EQ(session.loops(), 1u);
  EXPECT_EQ(session.dropped(), 0u);
  EXPECT_DOUBLE_EQ(*session.nextChange(), now + 0.25);

  for (int i = 0; i < 5; ++i) session.press(Key::Slower);
  session.advance(now += 1);
  EXPECT_DOUBLE_EQ(session.position(), 0.875);
  EXPECT_DOUBLE_EQ(*session.nextChange(), now + 1);
  // A loop and a frame too late: from the first frame to the fourth of the next loop are five steps.
  for (int i = 0; i < 5; ++i) session.press(Key::Faster);
  session.advance(now + 5.2);
  EXPECT_EQ(seen(session), 4u);
  EXPECT_EQ(session.dropped(), 4u);
}

TEST(Session, KeysStepThroughWhatIsSeenAndWrapRound) {
  Session session(fourFrames());
  session.rest(0);
  const struct {
    Key key;
    std::size_t frame;
    bool isPaused;
  } rows[] = {{Key::Forward, 1, true}, {Key::Forward, 3, true}, {Key::Forward, 4, true}, {Key::Forward, 1, true},
              {Key::Back, 4, true},    {Key::First, 1, true},   {Key::Last, 4, true},    {Key::Pause, 4, false},
              {Key::First, 0, false},  {Key::Back, 4, true}};
  for (const auto& row : rows) {
    session.press(row.key);
    EXPECT_EQ(seen(session), row.frame);
    EXPECT_EQ(session.isPaused(), row.isPaused);
  }
  session.advance(1000);
  EXPECT_EQ(seen(session), 4u);
  EXPECT_FALSE(session.nextChange());

  Session empty((LoopTimes()));
  for (const Key key : {Key::Forward, Key::Back, Key::First, Key::Last, Key::Pause, Key::Pause}) empty.press(key);
  empty.advance(1);
  EXPECT_EQ(seen(empty), 0u);
}

TEST(Session, ANewSourceIsSeenAtTheFrameWhereOneWas) {
  const struct {
    const char* what;
    FrameTimes times;
    std::size_t frame;
    double position;
  } rows[] = {
      {"other times", {{0.0, 4.0, 5.0, 7.0}, 8.0}, 3, 5.25},
      {"a frame shorter than one was in it", {{0.0, 0.1, 0.2, 0.3}, 0.4}, 3, 0.2},
      {"fewer frames", {{0.0, 1.0}, 2.0}, 2, 1.25},
      {"the frame is never seen now", {{0.0, 3.0, {}, 2.0}, 4.0}, 2, 3.25},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    Session session(fourFrames());
    session.press(Key::Pause);
    session.grab(1.25);
    session.letGo();
    session.replaceTimes({row.times, row.times.end});
    EXPECT_EQ(seen(session), row.frame);
    EXPECT_DOUBLE_EQ(session.position(), row.position);
  }
}

TEST(LoopTimes, ALastFrameThatNoTimeIsLeftForIsSeenAllTheSame) {
  const LoopTimes times({{0.0, 1.0}, 1.0}, 1.0);
  EXPECT_GT(times.duration(), 1.5);
  EXPECT_EQ(times.stepAt(1.5), 1u);
  Session still(LoopTimes(FrameTimes{{-3.0}, 0}, 0));
  EXPECT_EQ(seen(still), 1u);
  EXPECT_FALSE(still.nextChange());
}

class PreviewSound : public testing::Test {
 protected:
  PreviewSound() { quellaro::AVAudioSession::sharedInstance().setOutput(output_); }
  ~PreviewSound() override { quellaro::AVAudioSession::sharedInstance().setOutput(nullptr); }

  // What is heard after a turn of the loop: how many seconds of the sound were passed over, -1 for silence.
  double heard(Session& session, double now) {
    session.advance(now);
    track_.follow(session);
    if (output_->started.empty() || output_->started.back().playback.expired()) return -1;
    std::size_t left = 0;
    std::vector<float> samples(4096);
    const auto& sound = output_->started.back().sound;
    if (output_->started.size() == counted_) return last_;
    counted_ = output_->started.size();
    while (const auto read = sound->read(samples)) {
      if (*read == 0) break;
      left += *read;
    }
    const auto format = sound->format();
    return last_ = kLength - static_cast<double>(left) / format.channels / format.rate;
  }

  static constexpr double kStart = 0.5;
  static constexpr double kLength = 2.7;
  std::shared_ptr<quellaro::RecordingOutput> output_ = std::make_shared<quellaro::RecordingOutput>();
  SoundTrack track_{std::string(QUELLARO_BUNDLE) + "/audio.mp3", kStart, kLength};
  std::size_t counted_ = 0;
  double last_ = -1;
};

TEST_F(PreviewSound, IsHeardInTimeOrNotAtAll) {
  constexpr double kNear = 0.05;  // encoders pad
  Session session(fourFrames());
  session.rest(0);
  EXPECT_EQ(heard(session, 0.4), -1);
  EXPECT_NEAR(heard(session, 0.5), 0, kNear);
  EXPECT_NEAR(heard(session, 1.0), 0, kNear);
  EXPECT_EQ(output_->started.size(), 1u);

  session.press(Key::Pause);
  EXPECT_EQ(heard(session, 2.0), -1);
  session.press(Key::Pause);
  EXPECT_NEAR(heard(session, 2.0), 0.5, kNear) << "it goes on where the picture does";
  session.press(Key::Slower);
  EXPECT_EQ(heard(session, 2.5), -1);
  session.press(Key::Faster);
  EXPECT_NEAR(heard(session, 2.5), 0.75, kNear);
  session.grab(1.5);
  EXPECT_EQ(heard(session, 2.6), -1);
  session.grab(2.5);
  session.letGo();
  EXPECT_NEAR(heard(session, 2.6), 2, kNear);

  // What the output still has of the last loop is heard to its end.
  const auto before = output_->started.back().playback;
  EXPECT_NEAR(heard(session, 2.6 + 1.9), 2, kNear);
  EXPECT_NEAR(heard(session, 2.6 + 2.01), 0, kNear);
  EXPECT_FALSE(before.expired());
  output_->started[output_->started.size() - 2].onEnd({});
  heard(session, 4.8);
  EXPECT_TRUE(before.expired());
}

}  // namespace
}  // namespace halvo
