#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "controller/halvo_controller.h"
#include "platform/avfoundation/audio_session.h"
#include "platform/dispatch/main_queue.h"
#include "platform/foundation/application.h"
#include "platform/foundation/storage/bundle.h"
#include "support/pulse_server.h"

namespace quellaro {
namespace {

TEST(SoundServer, ThatDiesMidPlayGivesOneAnswerAndALaterPlayFindsTheOneThatCameBack) {
  PulseServer server;
  const TemporaryDirectory library;
  NSBundle::setLibraryPath(QUELLARO_BUNDLE);
  setLibraryDirectory(library.path().string());
  std::vector<QLHalvoStatus> codes;
  const auto note = [&](QLHalvoStatus status) { codes.push_back(status); };
  const auto runUntil = [](const char* what, const std::function<bool()>& condition, double seconds = 10) {
    waitUntil(
        what,
        [&] {
          MainQueue::shared().drain();
          return condition();
        },
        seconds);
  };
  AVAudioSession::sharedInstance().setSoundName("Chime of the till");
  const auto controller = QLHalvoController::make();
  const auto merchant = QLHalvoMerchant::make("Corner Shop", "US", std::nullopt, {"5411"}, std::nullopt);
  controller->prepare(QLHalvoType::soundOnly, "quellaro", QLHalvoEnvironment::primary, merchant, false, note);
  runUntil("it is not prepared", [&] { return codes.size() == 1; });

  controller->play(nullptr, note);
  runUntil("it is not heard", [&] { return !server.playingStreams().empty(); });
  server.kill();
  runUntil(
      "not at once, when the sound would have ended", [&] { return codes.size() == 2; }, 1);
  EXPECT_EQ(controller->lastSound(), QLHalvoSound::brokenOff);
  server.start();
  controller->play(nullptr, note);
  runUntil("the new server does not hear it", [&] { return !server.playingStreams().empty(); });
  EXPECT_NE(server.playingStreams().find("media.name = \"Chime of the till\""), std::string::npos);
  runUntil("it is not answered again", [&] { return codes.size() > 2; });
  EXPECT_EQ(controller->lastSound(), QLHalvoSound::heard);
  // A sound that was begun has been played.
  EXPECT_EQ(codes, std::vector(3, QLHalvoStatus::success));
  setLibraryDirectory(std::nullopt);
}

}  // namespace
}  // namespace quellaro
