#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <vector>

#include "platform/dispatch/main_queue.h"
#include "platform/foundation/application.h"
#include "platform/foundation/bundle.h"
#include "platform/foundation/console.h"
#include "public/halvo_controller.h"
#include "support/pulse_server.h"

namespace quellaro {
namespace {

using Codes = std::vector<QLHalvoStatus>;

void runUntil(const std::function<bool()>& condition, double seconds) {
  const auto limit = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!condition() && std::chrono::steady_clock::now() < limit) {
    MainQueue::shared().drain();
    MainQueue::shared().wait(0.01);
  }
}

TEST(SoundServer, ThatDiesMidPlayGivesOneAnswerAndALaterPlayFindsTheOneThatCameBack) {
  PulseServer server;
  const TemporaryDirectory library;
  NSBundle::setLibraryPath(QUELLARO_BUNDLE);
  setLibraryDirectory(library.path().string());
  setConsoleSink([](std::string_view) {});
  const auto controller = QLHalvoController::make();
  const auto merchant = QLHalvoMerchant::make("Corner Shop", "US", std::nullopt, {"5411"}, std::nullopt);
  Codes codes;
  const auto note = [&](QLHalvoStatus status) { codes.push_back(status); };
  const auto isAnswered = [&](std::size_t count) { return [&codes, count] { return codes.size() >= count; }; };
  controller->prepare(QLHalvoType::soundOnly, "quellaro", QLHalvoEnvironment::primary, merchant, false, note);
  runUntil(isAnswered(1), 10);
  ASSERT_EQ(codes, Codes{QLHalvoStatus::success});

  controller->play(nullptr, note);
  runUntil([&] { return !server.playingStreams().empty(); }, 10);
  server.kill();
  runUntil(isAnswered(2), 1);
  EXPECT_EQ(codes.size(), 2U) << "at once, not when the sound would have ended";
  runUntil(isAnswered(3), 3);
  // A sound that was begun has been played.
  EXPECT_EQ(codes, (Codes{QLHalvoStatus::success, QLHalvoStatus::success}));

  server.start();
  controller->play(nullptr, note);
  runUntil([&] { return !server.playingStreams().empty(); }, 10);
  EXPECT_NE(server.playingStreams(), "") << "heard by the new server";
  runUntil(isAnswered(3), 10);
  EXPECT_EQ(codes.back(), QLHalvoStatus::success);
  setConsoleSink({});
  setLibraryDirectory(std::nullopt);
}

}  // namespace
}  // namespace quellaro
