#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "analytics/analytics_manager.h"
#include "platform/dispatch/manual_clock.h"
#include "platform/foundation/application.h"
#include "support/library_fixture.h"

namespace quellaro {

inline constexpr const char* kAccepted = R"({"status":1})";
inline constexpr const char* kRefused = R"({"status":0,"error":"no"})";

// In the place of the network: keeps the requests until the test answers.
class FakeEndpoint {
 public:
  MixpanelAnalyticsServiceProvider service() {
    return MixpanelAnalyticsServiceProvider([this](const NSURL&, std::string body, URLSessionCompletion completion) {
      open_.push_back({std::move(body), std::move(completion)});
      ++sent;
    });
  }

  std::size_t open() const { return open_.size(); }
  const std::string& oldestBody() const { return open_.front().body; }
  // Answers the oldest open request, inside this call; nothing means a transport error.
  void answer(std::optional<std::string> data) {
    const URLSessionCompletion completion = std::move(open_.front().completion);
    open_.erase(open_.begin());
    std::optional<NSError> error;
    if (!data) error = NSError{"NSURLErrorDomain", -1004, "Could not connect to the server."};
    completion(std::move(data), std::nullopt, std::move(error));
  }

  int sent = 0;

 private:
  struct Request {
    std::string body;
    URLSessionCompletion completion;
  };
  std::vector<Request> open_;
};

// A Library of the test's own, a wall clock that it sets (noon of 15 February 2024, UTC, in a device in UTC) and an
// endpoint that it answers for.
class AnalyticsFixture : public LibraryFixture {
 protected:
  static constexpr double kStart = 1707998400;
  static constexpr double kDay = 86400;

  AnalyticsFixture() {
    setenv("TZ", "UTC", 1);
    setWallClock(&wallClock_);
    setApplicationIdentifier("shopapp");
    manager_ = newManager();
  }
  ~AnalyticsFixture() override {
    setApplicationIdentifier(std::nullopt);
    setWallClock(nullptr);
    unsetenv("TZ");
  }

  static std::shared_ptr<const QLHalvoMerchant> merchantNamed(const std::string& name) {
    return QLHalvoMerchant::make(name, "US", std::nullopt, {"5411"}, std::nullopt);
  }
  std::shared_ptr<MixpanelAnalyticsManager> newManager() {
    auto manager = MixpanelAnalyticsManager::make(endpoint_.service());
    manager->merchant = merchantNamed("Shop");
    manager->environment = QLHalvoEnvironment::primary;
    manager->config = QLHalvoAnalyticsInfo{true, "M", "http://127.0.0.1:9/track"};
    return manager;
  }
  // One successful play of a cue with sound and animation.
  void play(const std::string& cue = "shop", const std::string& version = "1") { play(*manager_, cue, version); }
  static void play(MixpanelAnalyticsManager& manager, const std::optional<std::string>& cue,
                   const std::optional<std::string>& version) {
    manager.recordPlay(cue, version, QLHalvoType::animationAndSound, 800, {}, 800, false);
  }

  std::filesystem::path currentPath() const { return library() / "mixpanel-analytics-data.json"; }
  std::filesystem::path failedPath() const { return library() / "sync-failed-analytics-data.json"; }
  // "cue/merchant:total" for each record of a file, in order; what else is in its place as it is.
  static std::string summary(const std::filesystem::path& path) {
    if (!std::filesystem::exists(path)) return "absent";
    const auto events = decodeAggregatedCueEvents(readFile(path));
    if (!events) return "unreadable";
    std::string text;
    for (const MixpanelAggregatedCueEvent& event : *events)
      text += (text.empty() ? "" : " ") + event.properties.cueName + "/" + event.properties.merchant->merchantId + ":" +
              std::to_string(event.properties.totalCount);
    return text;
  }
  std::string current() const { return summary(currentPath()); }
  // What replaces the current file once that has been delivered.
  std::string next() const { return summary(library() / "mixpanel-analytics-data-next.json"); }
  std::string failed() const { return summary(failedPath()); }
  // Of all plays that a file has counted.
  static long long playsIn(const std::filesystem::path& path) {
    long long plays = 0;
    if (!std::filesystem::exists(path)) return 0;
    const auto events = decodeAggregatedCueEvents(readFile(path));
    for (const MixpanelAggregatedCueEvent& event : *events) plays += event.properties.totalCount;
    return plays;
  }

  ManualClock wallClock_{kStart};
  FakeEndpoint endpoint_;
  std::shared_ptr<MixpanelAnalyticsManager> manager_;
};

}  // namespace quellaro
